// Comparison of times and change of their unit, under one setting of the switches.
//
// An operation reads its switches on its first call and keeps them for the life of the process, so
// a run of this program tests one setting: the switches that the environment variable
// BIG_TEST_SWITCHES names, with commas between. All that follows the first calls runs with every
// switch turned around, which must not matter.

#include "time_library.h"
#include "time_samples.h"

#include <climits>
#include <cstdlib>
#include <map>

namespace {

using REPORTS = std::vector<recording::CALL>;

REPORTS const SILENCE;

char const* const STRICT = "big_time_strict_unit_mode";
char const* const MISMATCH = "big_time_ie_on_unit_mismatch";
char const* const DEBUG = "big_time_debug_unit_mismatches";
char const* const CONVERSION = "big_time_ie_on_unit_conversion_error";

bool is_on(std::string const& name) {
    char const* const names = std::getenv("BIG_TEST_SWITCHES");
    return names != nullptr
           && ("," + std::string(names) + ",").find("," + name + ",") != std::string::npos;
}

/// The switches of operator<, in order, the last one only if it can matter.
std::vector<std::string> switches_of_less() {
    std::vector<std::string> names = {DEBUG, STRICT};
    if (!is_on(STRICT))
        names.push_back(MISMATCH);
    return names;
}

/// The calls that the library made of the platform on the first call of each operation.
struct FIRST_CALLS {
    std::vector<recording::CALL> of_equal;
    std::vector<recording::CALL> of_less;
    std::vector<recording::CALL> of_set_time_unit;
} first_calls;

/// The same on calls before the first, which an exception of the platform ends while a switch is
/// read, by the switch.
std::map<std::string, FIRST_CALLS> ended_calls;

/// Makes the first call of each operation, and each one leave early: the switches are read all the
/// same.
class FIRST_CALL_MAKER : public testing::Environment {
public:
    void SetUp() override {
        for (char const* const name : {STRICT, MISMATCH, DEBUG, CONVERSION})
            recording::set_switch(name, is_on(name));

        BIG_TIME time(2, BIG_TIME::UNIT_NS);
        auto const calls_of = [](std::string const& name, auto statement) {
            recording::THROWING_CALL const thrower(recording::switch_read(name));
            recording::clear();
            EXPECT_THROW(statement(), recording::THROWN) << name;
            return recording::calls();
        };
        ended_calls[STRICT].of_equal = calls_of(STRICT, [&] { return time == BIG_TIME(); });
        for (std::string const& name : switches_of_less())
            ended_calls[name].of_less = calls_of(name, [&] { return BIG_TIME() < time; });
        ended_calls[CONVERSION].of_set_time_unit =
            calls_of(CONVERSION, [&] { time.set_time_unit(BIG_TIME::UNIT_PS); });
        EXPECT_EQ(held_by(time), (HELD{2000, BIG_TIME::UNIT_NS}));

        recording::clear();
        EXPECT_FALSE(time == BIG_TIME(3, BIG_TIME::UNIT_NS)); // other counts
        first_calls.of_equal = recording::calls();
        recording::clear();
        EXPECT_TRUE(BIG_TIME() < time); // a zero
        first_calls.of_less = recording::calls();
        recording::clear();
        EXPECT_INTERNAL_ERROR(time.set_time_unit(BIG_TIME::UNIT_NONE), "Time Unit out of range",
                              "2", "big/big_time");
        first_calls.of_set_time_unit = recording::calls();

        for (char const* const name : {STRICT, MISMATCH, DEBUG, CONVERSION})
            recording::set_switch(name, !is_on(name));
    }
};

testing::Environment* const first_call_maker =
    testing::AddGlobalTestEnvironment(new FIRST_CALL_MAKER);

class BigTimeCompare : public testing::Test {
protected:
    BigTimeCompare() { recording::clear(); }
    ~BigTimeCompare() override {
        EXPECT_EQ(recording::calls_of("cfg_is_on"), SILENCE) << "a switch was read a second time";
    }
};

// ------------------------------------------------------------------------------------------------
// Switches
// ------------------------------------------------------------------------------------------------

TEST_F(BigTimeCompare, EqualReadsItsSwitchFirst) {
    EXPECT_EQ(first_calls.of_equal, std::vector<recording::CALL>({recording::switch_read(STRICT)}));
}

TEST_F(BigTimeCompare, LessReadsItsSwitchesInOrderAndTheLastOnlyIfItCanMatter) {
    REPORTS reads;
    for (std::string const& name : switches_of_less())
        reads.push_back(recording::switch_read(name));
    EXPECT_EQ(first_calls.of_less, reads);
}

TEST_F(BigTimeCompare, ChangeOfUnitReadsItsSwitchBeforeItLooksAtTheUnit) {
    ASSERT_EQ(first_calls.of_set_time_unit.size(), 2u);
    EXPECT_EQ(first_calls.of_set_time_unit[0], recording::switch_read(CONVERSION));
    EXPECT_EQ(first_calls.of_set_time_unit[1].operation, "err_report_internal_error");
}

TEST_F(BigTimeCompare, ASwitchThatCannotBeReadEndsTheCallAndIsReadAgainByTheNext) {
    // that the first calls read everything again, the tests above show
    EXPECT_EQ(ended_calls[STRICT].of_equal, REPORTS({recording::switch_read(STRICT)}));
    REPORTS reads;
    for (std::string const& name : switches_of_less()) {
        reads.push_back(recording::switch_read(name));
        EXPECT_EQ(ended_calls[name].of_less, reads);
    }
    EXPECT_EQ(ended_calls[CONVERSION].of_set_time_unit,
              REPORTS({recording::switch_read(CONVERSION)}));
}

// ------------------------------------------------------------------------------------------------
// Equality
// ------------------------------------------------------------------------------------------------

struct EQUAL_ROW {
    char const* why;
    HELD a;
    HELD b;
    bool equal;
    bool equal_in_strict_mode;
};

// clang-format off
EQUAL_ROW const EQUALS[] = {
    // why                            a              b              equal  strictly
    {"one count in two time units",  {2000, 3},     {2000, 2},     true,  true},
    {"one count in two time units",  {100, 11},     {100, 6},      true,  true},
    {"no unit is a time",            {2000, 0},     {2000, 3},     true,  true},
    {"other counts",                 {2000, 3},     {2001, 3},     false, false},
    {"other counts",                 {5, 9},        {6, 13},       false, false},
    {"other counts",                 {HIGHEST, 2},  {LOWEST, 2},   false, false},
    {"one count in two frequencies", {5000000, 9},  {5000000, 7},  true,  true},
    {"one count in two rates",       {5000000, 13}, {5000000, 12}, true,  true},
    {"a frequency and a rate",       {5000000, 9},  {5000000, 13}, true,  false},
    // with the strict switch the order decides
    {"a rate and a frequency",       {5000000, 13}, {5000000, 9},  true,  true},
    {"a time and a frequency",       {1000000, 2},  {1000000, 9},  false, false},
    {"a frequency and a time",       {1000000, 9},  {1000000, 2},  false, false},
    {"a time and a rate",            {1000000, 4},  {1000000, 13}, false, false},
    {"a rate and a time",            {1000000, 13}, {1000000, 0},  false, false},
    {"zeros of two categories",      {0, 3},        {0, 9},        false, false},
    {"zeros of two categories",      {0, 10},       {0, 12},       true,  false},
    {"zeros of two categories",      {0, 12},       {0, 10},       true,  true},
};
// clang-format on

TEST_F(BigTimeCompare, TimesAreEqualByCountAndCategory) {
    for (EQUAL_ROW const& row : EQUALS) {
        SCOPED_TRACE(row.why + (": " + testing::PrintToString(row.a)) + " and "
                     + testing::PrintToString(row.b));
        EXPECT_EQ(time_of(row.a.count, row.a.unit) == time_of(row.b.count, row.b.unit),
                  is_on(STRICT) ? row.equal_in_strict_mode : row.equal);
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

TEST_F(BigTimeCompare, EqualityOfAllPairsOfUnits) {
    constexpr int frequency = 1;
    constexpr int rate = 2;
    for (int a = 0; a < 15; ++a) {
        for (int b = 0; b < 15; ++b) {
            int const left = TIME_ORACLE().get_unit_category(a);
            int const right = TIME_ORACLE().get_unit_category(b);
            bool equal = left == right || (left == rate && right == frequency);
            if (!is_on(STRICT))
                equal = equal || (left == frequency && right == rate);
            for (long long const count : {LOWEST, -1ll, 0ll, 7ll, HIGHEST})
                EXPECT_EQ(time_of(count, a) == time_of(count, b), equal)
                    << count << " in units " << a << " and " << b;
            EXPECT_FALSE(time_of(7, a) == time_of(8, b)) << "units " << a << " and " << b;
        }
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

// ------------------------------------------------------------------------------------------------
// Order
// ------------------------------------------------------------------------------------------------

/// The message about two times of different categories, each in its own unit.
recording::CALL deprecated(std::string const& a, std::string const& b) {
    return recording::debug(
        "Attempting to compare incompatible times \"%s\" with \"%s\"!  This behavior is "
        "deprecated!",
        "Attempting to compare incompatible times \"" + a + "\" with \"" + b
            + "\"!  This behavior is deprecated!");
}

recording::CALL const CANNOT_COMPARE = {
    "err_report_internal_error", {"Cannot compare incompatible units!", "2", "big/big_time"}};

/// What a comparison of two times does, each printed as given.
OBSERVATION comparison(HELD const& a, HELD const& b, std::string const& a_text,
                       std::string const& b_text) {
    constexpr int frequency = 1;
    constexpr int rate = 2;
    int const left = TIME_ORACLE().get_unit_category(a.unit);
    int const right = TIME_ORACLE().get_unit_category(b.unit);
    OBSERVATION const compared = {words(a.count < b.count), SILENCE};
    if (a.count == 0 || b.count == 0 || left == right)
        return compared;
    if (!is_on(STRICT) && !is_on(MISMATCH) && !is_on(DEBUG))
        return compared;
    recording::CALL const message = deprecated(a_text, b_text);
    bool const frequency_and_rate =
        (left == frequency && right == rate) || (left == rate && right == frequency);
    if (is_on(STRICT) || (is_on(MISMATCH) && !frequency_and_rate))
        return {LEFT_BY_INTERNAL_ERROR, {message, CANNOT_COMPARE}};
    return {compared.result, {message}};
}

OBSERVATION less(HELD const& a, HELD const& b) {
    return observe([&] { return words(time_of(a.count, a.unit) < time_of(b.count, b.unit)); });
}

struct LESS_ROW {
    char const* why;
    HELD a;
    HELD b;
    char const* a_text;
    char const* b_text;
};

// clang-format off
LESS_ROW const LESSES[] = {
    // why                     a                 b                 a printed    b printed
    {"one category",           {1000, 3},        {2000, 2},        "1.0 ns",   "2.0 ns"},
    {"one category",           {2000, 3},        {2000, 2},        "2.0 ns",   "2.0 ns"},
    {"one category",           {LOWEST, 0},      {HIGHEST, 6},     "",         ""},
    {"one category",           {-1, 7},          {1, 10},          "",         ""},
    {"one category",           {5, 12},          {4, 14},          "",         ""},
    {"a zero",                 {0, 2},           {5000000, 9},     "",         ""},
    {"a zero",                 {5000000, 9},     {0, 2},           "",         ""},
    {"a zero",                 {0, 9},           {0, 13},          "",         ""},
    {"a zero",                 {0, 13},          {-1, 3},          "",         ""},
    {"a time and a frequency", {3000, 3},        {5000000, 9},     "3.0 ns",   "5.0 MHz"},
    {"a time and a frequency", {5, 0},           {4, 7},           "5 ps",     "4 Hz"},
    {"a frequency and a time", {5000000, 9},     {3000, 3},        "5.0 MHz",  "3.0 ns"},
    {"a frequency and a time", {5000000, 9},     {-3456, 11},      "5.0 MHz",  "-3.46 ns"},
    {"a time and a rate",      {1, 1},           {1234567, 13},    "1 ps",     "1.23 Mbps"},
    {"a rate and a time",      {1234567, 14},    {1999999, 2},     "0.0 Gbps", "2.0 us"},
    {"a frequency and a rate", {5000000, 9},     {5000000000, 14}, "5.0 MHz",  "5.0 Gbps"},
    {"a rate and a frequency", {5000000000, 14}, {5000000, 9},     "5.0 Gbps", "5.0 MHz"},
    {"equal counts",           {1000000, 2},     {1000000, 9},     "1.0 us",   "1.0 MHz"},
};
// clang-format on

TEST_F(BigTimeCompare, TimesAreOrderedByTheirCounts) {
    for (LESS_ROW const& row : LESSES) {
        SCOPED_TRACE(row.why + (": " + testing::PrintToString(row.a)) + " and "
                     + testing::PrintToString(row.b));
        EXPECT_EQ(less(row.a, row.b), comparison(row.a, row.b, row.a_text, row.b_text));
    }
}

TEST_F(BigTimeCompare, OrderOfAllPairsOfUnits) {
    long long const counts[] = {LOWEST, -1234567, -1, 0, 1, 1000, 1234567, HIGHEST};
    for (int a_unit = 0; a_unit < 15; ++a_unit) {
        for (int b_unit = 0; b_unit < 15; ++b_unit) {
            for (long long const a_count : counts) {
                for (long long const b_count : counts) {
                    HELD const a = {a_count, a_unit};
                    HELD const b = {b_count, b_unit};
                    ASSERT_EQ(less(a, b), comparison(a, b, TIME_ORACLE().to_string(a, 2),
                                                     TIME_ORACLE().to_string(b, 2)))
                        << testing::PrintToString(a) << " and " << testing::PrintToString(b);
                }
            }
        }
    }
}

TEST_F(BigTimeCompare, TheErrorNamesItsLine) {
    if (!is_on(STRICT) && !is_on(MISMATCH))
        GTEST_SKIP() << "no error without its switches";
    EXPECT_INTERNAL_ERROR(void(BIG_TIME(3, BIG_TIME::UNIT_NS) < BIG_TIME(5, BIG_TIME::UNIT_MHZ)),
                          "Cannot compare incompatible units!", "2", "big/big_time");
}

TEST_F(BigTimeCompare, ATimeMayBeComparedWithItself) {
    for (int unit = 0; unit < 15; ++unit) {
        BIG_TIME const time = time_of(7, unit);
        BIG_TIME const& same = time;
        EXPECT_TRUE(time == same);
        EXPECT_FALSE(time < same);
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

// ------------------------------------------------------------------------------------------------
// Change of unit
// ------------------------------------------------------------------------------------------------

TEST_F(BigTimeCompare, AChangeOfUnitKeepsTheCount) {
    BIG_TIME time(2000, BIG_TIME::UNIT_PS);
    time.set_time_unit(BIG_TIME::UNIT_US);
    EXPECT_EQ(held_by(time), (HELD{2000, BIG_TIME::UNIT_US}));
    time.set_time_unit(BIG_TIME::UNIT_NS);
    EXPECT_EQ(time.to_raw_string(), "2.0 ns");
    EXPECT_EQ(recording::reports(), SILENCE);
}

struct REFUSAL_ROW {
    int own_unit;
    int unit;
    char const* text;
};

// clang-format off
REFUSAL_ROW const REFUSALS[] = {
    // own new text
    {9,  10, R"(Can't assign "GHz" time unit to BIG_TIME object already in "MHz" units)"},
    {3,  9,  R"(Can't assign "MHz" time unit to BIG_TIME object already in "ns" units)"},
    {0,  7,  R"(Can't assign "Hz" time unit to BIG_TIME object already in "" units)"},
    {7,  2,  R"(Can't assign "ps" time unit to BIG_TIME object already in "Hz" units)"},
    {13, 14, R"(Can't assign "Gbps" time unit to BIG_TIME object already in "Mbps" units)"},
    {12, 11, R"(Can't assign "ten_th_ns" time unit to BIG_TIME object already in "bps" units)"},
    {9,  13, R"(Can't assign "Mbps" time unit to BIG_TIME object already in "MHz" units)"},
};
// clang-format on

char const* const REFUSAL_FORMAT =
    "Can't assign \"%s\" time unit to BIG_TIME object already in \"%s\" units";

/// What a refused change does: the message, and with the switch the error of the same text.
OBSERVATION refusal(HELD const& held, std::string const& text) {
    OBSERVATION observation = {words(held.count, held.unit),
                               {recording::debug(REFUSAL_FORMAT, text)}};
    if (is_on(CONVERSION)) {
        observation.result = LEFT_BY_INTERNAL_ERROR;
        observation.reports.push_back({"err_report_internal_error", {text, "2", "big/big_time"}});
    }
    return observation;
}

OBSERVATION change(HELD const& held, int unit) {
    return observe([&] {
        BIG_TIME time = time_of(held.count, held.unit);
        time.set_time_unit(unit_of(unit));
        return words(time.get_time_value(), static_cast<int>(time.get_time_unit()));
    });
}

TEST_F(BigTimeCompare, AChangeFromOrToAFrequencyOrRateIsRefused) {
    for (REFUSAL_ROW const& row : REFUSALS) {
        SCOPED_TRACE(row.text);
        HELD const held = {2000, row.own_unit};
        EXPECT_EQ(change(held, row.unit), refusal(held, row.text));
    }
}

TEST_F(BigTimeCompare, ARefusedChangeLeavesTheTime) {
    BIG_TIME time(3, BIG_TIME::UNIT_MHZ);
    try {
        time.set_time_unit(BIG_TIME::UNIT_GHZ);
        EXPECT_FALSE(is_on(CONVERSION));
    } catch (recording::INTERNAL_ERROR const& error) {
        EXPECT_TRUE(is_on(CONVERSION));
        EXPECT_TRUE(recording::line_holds("big/big_time", error.line, ""));
    }
    EXPECT_EQ(held_by(time), (HELD{3000000, BIG_TIME::UNIT_MHZ}));
}

TEST_F(BigTimeCompare, ChangesBetweenAllPairsOfUnits) {
    for (int own_unit = 0; own_unit < 15; ++own_unit) {
        for (int unit = 1; unit < 15; ++unit) {
            HELD const held = {-7, own_unit};
            bool const both_times = TIME_ORACLE().get_unit_category(own_unit) == 0
                                    && TIME_ORACLE().get_unit_category(unit) == 0;
            OBSERVATION const changed = {words(held.count, unit), SILENCE};
            std::string const text = std::string("Can't assign \"") + BIG_TIME::s_unit_strings[unit]
                                     + "\" time unit to BIG_TIME object already in \""
                                     + BIG_TIME::s_unit_strings[own_unit] + "\" units";
            EXPECT_EQ(change(held, unit),
                      both_times || unit == own_unit ? changed : refusal(held, text))
                << "from unit " << own_unit << " to " << unit;
        }
    }
}

TEST_F(BigTimeCompare, AUnitOutsideOneToFourteenIsAnInternalError) {
    for (int own_unit = 0; own_unit < 15; ++own_unit) {
        for (int const unit : {0, 15, 16, -1, INT_MAX, INT_MIN}) {
            SCOPED_TRACE(words(own_unit, unit));
            BIG_TIME time = time_of(7, own_unit);
            recording::clear();
            EXPECT_INTERNAL_ERROR(time.set_time_unit(unit_of(unit)), "Time Unit out of range", "2",
                                  "big/big_time");
            EXPECT_EQ(held_by(time), (HELD{7, own_unit}));
            EXPECT_EQ(recording::reports().size(), 1u);
        }
    }
}

} // namespace
