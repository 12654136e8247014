// Times written as text.

#include "comma_locale.h"
#include "time_library.h"
#include "time_samples.h"

#include <climits>

namespace {

using REPORTS = std::vector<recording::CALL>;

REPORTS const SILENCE;

class BigTimePrint : public testing::Test {
protected:
    BigTimePrint() { recording::clear(); }
};

// ------------------------------------------------------------------------------------------------
// The decimal point
// ------------------------------------------------------------------------------------------------

struct POINT_ROW {
    char const* why;
    char const* text;
    int unit;
    char const* result;
};

// clang-format off
POINT_ROW const POINTS[] = {
    // why                                        text                   unit result
    {"as many places as the unit has",           "1500",                3,   "1.500"},
    {"as many places as the unit has",           "1500",                11,  "15.00"},
    {"as many places as the unit has",           "12345678",            4,   "12.345678"},
    {"as many places as the unit has",           "9223372036854775807", 6,   "9223372.036854775807"},
    {"as many places as the unit has",           "1000000000",          10,  "1.000000000"},
    {"small numbers are filled with zeros",      "5",                   3,   "0.005"},
    {"small numbers are filled with zeros",      "500",                 3,   "0.500"},
    {"small numbers are filled with zeros",      "0",                   3,   "0.000"},
    {"small numbers are filled with zeros",      "7",                   6,   "0.000000000007"},
    {"small numbers are filled with zeros",      "1",                   13,  "0.000001"},
    {"units without places change nothing",      "1234567",             2,   "1234567"},
    {"units without places change nothing",      "0",                   0,   "0"},
    {"units without places change nothing",      "42",                  7,   "42"},
    {"units without places change nothing",      "42",                  12,  "42"},
    {"femtoseconds are a thousand to the count", "5",                   1,   "5000"},
    {"femtoseconds are a thousand to the count", "-5",                  1,   "-5000"},
    // zeros are put behind any digits
    {"femtoseconds are a thousand to the count", "0",                   1,   "0000"},
    {"a minus sign stays in front",              "-5",                  3,   "-0.005"},
    {"a minus sign stays in front",              "-1500",               3,   "-1.500"},
    {"a minus sign stays in front",              "-5",                  2,   "-5"},
    {"a minus sign stays in front",              "-0",                  3,   "-0.000"},
    {"a plus sign goes",                         "+5",                  3,   "0.005"},
    {"a plus sign goes",                         "+1500",               3,   "1.500"},
    {"a plus sign goes",                         "+5",                  2,   "5"},
    {"no digits count as none",                  "",                    3,   "0.000"},
    {"no digits count as none",                  "-",                   3,   "-0.000"},
    {"no digits count as none",                  "",                    1,   "000"},
    {"no digits count as none",                  "",                    2,   ""},
    {"leading zeros are digits",                 "0005",                3,   "0.005"},
    {"leading zeros are digits",                 "000005",              3,   "000.005"},
    {"any length",                               "123456789012345678901234567890", 4,
     "123456789012345678901234.567890"},
};
// clang-format on

TEST_F(BigTimePrint, ADecimalPointIsPlacedByTheUnit) {
    for (POINT_ROW const& row : POINTS) {
        SCOPED_TRACE(words(std::string(row.why), std::string(row.text), row.unit));
        expect_of_both(
            [&](auto& times) {
                std::string text = row.text;
                times.add_decimal(text, row.unit);
                return words(text);
            },
            {words(std::string(row.result)), SILENCE});
    }
}

TEST_F(BigTimePrint, TheDecimalPointDoesNotDependOnTheTime) {
    for (int unit = 0; unit < 15; ++unit) {
        std::string text = "1500";
        time_of(77, unit).add_decimal(&text, BIG_TIME::UNIT_NS);
        EXPECT_EQ(text, "1.500");
    }
}

TEST_F(BigTimePrint, ANullTextIsAnInternalError) {
    EXPECT_INTERNAL_ERROR(BIG_TIME().add_decimal(nullptr, BIG_TIME::UNIT_NS),
                          "result_string != NULL", "2", "big/big_time");
    EXPECT_INTERNAL_ERROR(BIG_TIME().add_decimal(nullptr, BIG_TIME::MAX_TIME_UNIT),
                          "result_string != NULL", "2", "big/big_time");
}

TEST_F(BigTimePrint, AUnitOutsideTheTableIsAnInternalError) {
    BIG_TIME const time = time_of(1500, BIG_TIME::UNIT_NS);
    std::string text = "1500";
    for (int const unit : {-1, -2, INT_MIN})
        EXPECT_INTERNAL_ERROR(time.add_decimal(&text, unit_of(unit)), "unit >= MIN_TIME_UNITS", "2",
                              "big/big_time");
    // -1 stands for the own unit
    for (int const unit : {-2, -15, INT_MIN}) {
        EXPECT_INTERNAL_ERROR(time.to_string_without_unit(unit_of(unit), 3, false),
                              "unit >= MIN_TIME_UNITS", "2", "big/big_time");
        EXPECT_INTERNAL_ERROR(time.to_string(unit_of(unit), 3, false), "unit >= MIN_TIME_UNITS",
                              "2", "big/big_time");
    }
    for (int const unit : {15, 16, INT_MAX}) {
        EXPECT_INTERNAL_ERROR(time.add_decimal(&text, unit_of(unit)), "unit < MAX_TIME_UNIT", "2",
                              "big/big_time");
        EXPECT_INTERNAL_ERROR(time.to_string_without_unit(unit_of(unit), 3, false),
                              "unit < MAX_TIME_UNIT", "2", "big/big_time");
        EXPECT_INTERNAL_ERROR(time.to_string(unit_of(unit), 3, false), "unit < MAX_TIME_UNIT", "2",
                              "big/big_time");
    }
}

TEST_F(BigTimePrint, AUnitOutsideTheTableIsFoundAfterTheOldTextIsCleared) {
    BIG_TIME const time = time_of(1500, BIG_TIME::UNIT_NS);
    for (int const unit : {-2, INT_MIN, 15, INT_MAX}) {
        SCOPED_TRACE(unit);
        std::string text = "before";
        EXPECT_THROW(time.to_string_without_unit(&text, unit_of(unit), 3, false),
                     recording::INTERNAL_ERROR);
        EXPECT_EQ(text, "");
        text = "before";
        EXPECT_THROW(time.to_string(&text, unit_of(unit), 3, false), recording::INTERNAL_ERROR);
        EXPECT_EQ(text, "");
    }
}

// ------------------------------------------------------------------------------------------------
// A number in a unit
// ------------------------------------------------------------------------------------------------

struct PRINT_ROW {
    char const* why;
    long long count;
    int own_unit;
    int unit; // -1: the own one
    unsigned short precision;
    bool trim;
    char const* number;
    char const* text; // with the unit
};

// clang-format off
PRINT_ROW const PRINTS[] = {
    // why                                              count          own unit precision trim   number                    text
    {"rounded half up",                                1234567,       2,  4,   3,        false, "1.235",
     "1.235 us"},
    {"rounded half up",                                1500,          3,  3,   0,        false, "2",
     "2 ns"},
    {"rounded half up",                                5,             2,  3,   2,        false, "0.01",
     "0.01 ns"},
    {"rounded half up",                                5,             2,  3,   1,        false, "0.0",
     "0.0 ns"},
    {"rounded half up",                                499,           2,  3,   0,        false, "0",
     "0 ns"},
    {"rounded half up",                                500,           2,  3,   0,        false, "1",
     "1 ns"},
    {"rounded half up",                                999999,        2,  3,   0,        false, "1000",
     "1000 ns"},
    {"rounded half up",                                999999999999,  2,  6,   11,       false, "1.00000000000",
     "1.00000000000 s"},
    {"rounded half up",                                HIGHEST,       2,  6,   3,        false, "9223372.037",
     "9223372.037 s"},
    {"negatives on the magnitude",                     -2500,         2,  3,   0,        false, "-3",
     "-3 ns"},
    {"negatives on the magnitude",                     -2499,         2,  3,   0,        false, "-2",
     "-2 ns"},
    {"negatives on the magnitude",                     -1500,         2,  3,   1,        true,  "-1.5",
     "-1.5 ns"},
    {"negatives on the magnitude",                     LOWEST,        2,  6,   0,        false, "-9223372",
     "-9223372 s"},
    {"negatives on the magnitude",                     LOWEST,        2,  6,   12,       false, "-9223372.036854775808",
     "-9223372.036854775808 s"},
    {"negatives on the magnitude",                     LOWEST,        2,  2,   5,        false, "-9223372036854775808",
     "-9223372036854775808 ps"},
    {"a negative keeps its sign when rounded to zero", -400,          2,  3,   0,        false, "-0",
     "-0 ns"},
    {"a negative keeps its sign when rounded to zero", -4,            2,  3,   2,        false, "-0.00",
     "-0.00 ns"},
    {"a negative keeps its sign when rounded to zero", -4,            2,  3,   2,        true,  "-0.0",
     "-0.0 ns"},
    {"trimmed to one place",                           1234567,       2,  3,   6,        true,  "1234.567",
     "1234.567 ns"},
    {"trimmed to one place",                           1000,          3,  3,   3,        true,  "1.0",
     "1.0 ns"},
    {"trimmed to one place",                           1250,          3,  3,   3,        true,  "1.25",
     "1.25 ns"},
    {"trimmed to one place",                           0,             3,  3,   3,        true,  "0.0",
     "0.0 ns"},
    {"trimmed after rounding",                         1299500,       3,  4,   3,        true,  "1.3",
     "1.3 us"},
    {"not trimmed",                                    0,             3,  3,   3,        false, "0.000",
     "0.000 ns"},
    {"not trimmed",                                    1000,          3,  3,   3,        false, "1.000",
     "1.000 ns"},
    {"never more places than the unit has",            1500,          3,  3,   6,        false, "1.500",
     "1.500 ns"},
    {"never more places than the unit has",            1500,          3,  3,   65535,    false, "1.500",
     "1.500 ns"},
    {"never more places than the unit has",            1234567,       2,  2,   2,        false, "1234567",
     "1234567 ps"},
    {"never more places than the unit has",            150,           11, 11,  9,        false, "1.50",
     "1.50 ten_th_ns"},
    {"whole units have no zeros to trim",              1000,          2,  2,   3,        true,  "1000",
     "1000 ps"},
    {"whole units have no zeros to trim",              1000,          2,  1,   3,        true,  "1000000",
     "1000000 fs"},
    {"femtoseconds",                                   1234567,       2,  1,   0,        false, "1234567000",
     "1234567000 fs"},
    {"femtoseconds",                                   -5,            1,  1,   3,        false, "-5000",
     "-5000 fs"},
    {"femtoseconds",                                   HIGHEST,       1,  1,   0,        true,  "9223372036854775807000",
     "9223372036854775807000 fs"},
    // the three zeros of femtoseconds are put behind any digits
    {"zero femtoseconds have four zeros",              0,             1,  1,   0,        false, "0000",
     "0000 fs"},
    {"zero femtoseconds have four zeros",              0,             2,  1,   6,        true,  "0000",
     "0000 fs"},
    {"no unit prints no unit",                         5,             0,  0,   3,        false, "5",
     "5"},
    {"no unit prints no unit",                         5,             3,  0,   3,        false, "5",
     "5"},
    {"no unit prints no unit",                         -5,            0,  -1,  3,        false, "-5",
     "-5"},
    {"no unit prints no unit",                         1500,          0,  3,   3,        false, "1.500",
     "1.500 ns"},
    {"the own unit",                                   1500,          3,  -1,  3,        false, "1.500",
     "1.500 ns"},
    {"the own unit",                                   1500,          11, -1,  3,        false, "15.00",
     "15.00 ten_th_ns"},
    {"the own unit",                                   1500000,       13, -1,  3,        true,  "1.5",
     "1.5 Mbps"},
    {"a frequency in its kind",                        1500000,       9,  9,   2,        true,  "1.5",
     "1.5 MHz"},
    {"a frequency in its kind",                        1500000,       9,  7,   2,        true,  "1500000",
     "1500000 Hz"},
    {"a frequency in its kind",                        0,             9,  10,  2,        false, "0.00",
     "0.00 GHz"},
    {"a frequency in its kind",                        -1500000,      9,  10,  9,        false, "-0.001500000",
     "-0.001500000 GHz"},
    {"a frequency as its period",                      1000000000,    10, 3,   3,        false, "1.000",
     "1.000 ns"},
    {"a frequency as its period",                      3000000,       9,  3,   3,        false, "333.333",
     "333.333 ns"},
    {"a frequency as its period",                      3000000,       9,  2,   3,        false, "333333",
     "333333 ps"},
    {"a frequency as its period",                      3000000,       9,  0,   3,        false, "333333",
     "333333"},
    {"a frequency as its period",                      1,             7,  6,   3,        true,  "1.0",
     "1.0 s"},
    {"a frequency as its period",                      -3,            7,  2,   0,        false, "-333333333333",
     "-333333333333 ps"},
    {"a frequency as its period",                      1000000000001, 7,  2,   0,        false, "0",
     "0 ps"},
    {"a frequency as its period",                      LOWEST,        7,  3,   3,        false, "0.000",
     "0.000 ns"},
    {"a time as its frequency",                        1000,          3,  9,   3,        false, "1000.000",
     "1000.000 MHz"},
    {"a time as its frequency",                        3,             2,  7,   0,        false, "333333333333",
     "333333333333 Hz"},
    {"a time as its frequency",                        5,             0,  10,  3,        true,  "200.0",
     "200.0 GHz"},
    {"a time as its frequency",                        -1000,         11, 10,  1,        false, "-1.0",
     "-1.0 GHz"},
    {"a time as its frequency",                        2000000000000, 6,  7,   0,        false, "0",
     "0 Hz"},
    {"a time in bits per second is a plain count",     1500,          3,  13,  6,        false, "0.001500",
     "0.001500 Mbps"},
    {"bits per second in a time are a plain count",    1500,          12, 3,   3,        false, "1.500",
     "1.500 ns"},
    {"bits per second in hertz are inverted",          2000000,       13, 7,   0,        false, "500000",
     "500000 Hz"},
    {"hertz in bits per second are inverted",          2000000,       9,  12,  0,        false, "500000",
     "500000 bps"},
    {"the inverse of zero",                            0,             9,  3,   3,        false, "INF",
     "INF ns"},
    {"the inverse of zero",                            0,             3,  9,   0,        true,  "INF",
     "INF MHz"},
    {"the inverse of zero",                            0,             7,  0,   0,        true,  "INF",
     "INF"},
    {"the inverse of zero",                            0,             7,  1,   0,        false, "INF",
     "INF fs"},
    {"the inverse of zero",                            0,             12, 8,   0,        false, "INF",
     "INF kHz"},
};
// clang-format on

TEST_F(BigTimePrint, ANumberIsPrintedInAUnit) {
    for (PRINT_ROW const& row : PRINTS) {
        HELD const held = {row.count, row.own_unit};
        SCOPED_TRACE(row.why + (": " + testing::PrintToString(held)) + " in unit "
                     + words(row.unit, row.precision + 0, row.trim));
        OBSERVATION const expected = {words(std::string(row.number), std::string(row.text)),
                                      SILENCE};
        expect_of_both(
            [&](auto& times) {
                int const unit = row.unit == -1 ? row.own_unit : row.unit;
                std::string const number =
                    times.to_string_without_unit(held, unit, row.precision, row.trim);
                std::string const text = times.to_string(held, row.unit, row.precision, row.trim);
                return words(number, text);
            },
            expected);
        EXPECT_EQ(
            observe([&] {
                BIG_TIME const time = time_of(row.count, row.own_unit);
                BIG_TIME::TIME_UNIT const unit = unit_of(row.unit == -1 ? row.own_unit : row.unit);
                std::string number = "before";
                std::string text = "before";
                EXPECT_EQ(time.to_string_without_unit(&number, unit, row.precision, row.trim),
                          &number);
                EXPECT_EQ(time.to_string(&text, unit_of(row.unit), row.precision, row.trim), &text);
                return words(number, text);
            }),
            expected);
    }
}

// The number alone looks at the sentinel before it is resolved, and it is no frequency.
TEST_F(BigTimePrint, AFrequencyWithoutUnitInItsOwnUnitIsInverted) {
    struct {
        HELD held;
        unsigned short precision;
        char const* number;
        // clang-format off
    } const rows[] = {
        // held             precision number
        {{3000000, 9},     6,        "0.333333"},
        {{3000000, 9},     2,        "0.33"},
        {{1000000000, 10}, 9,        "0.000001000"},
        {{1000, 7},        0,        "1000000000"},
        {{0, 8},           3,        "INF"},
    };
    // clang-format on
    for (auto const& row : rows) {
        SCOPED_TRACE(testing::PrintToString(row.held));
        expect_of_both(
            [&](auto& times) {
                return words(times.to_string_without_unit(row.held, -1, row.precision, false));
            },
            {words(std::string(row.number)), SILENCE});
    }
    for (int unit : {0, 1, 2, 3, 4, 5, 6, 11, 12, 13, 14}) {
        SCOPED_TRACE(unit);
        BIG_TIME const time = time_of(1234567, unit);
        EXPECT_EQ(time.to_string_without_unit(unit_of(-1), 12, false),
                  time.to_string_without_unit(unit_of(unit), 12, false));
    }
}

// ------------------------------------------------------------------------------------------------
// A unit by magnitude
// ------------------------------------------------------------------------------------------------

struct CHOICE_ROW {
    char const* why;
    long long count;
    int own_unit;
    unsigned short precision;
    char const* text;
};

// clang-format off
CHOICE_ROW const CHOICES[] = {
    // why                                      count           own precision text
    {"a unit by magnitude",                    999,            2,  3,        "999 ps"},
    {"a unit by magnitude",                    1000,           2,  3,        "1.0 ns"},
    {"a unit by magnitude",                    1234567,        2,  2,        "1.23 us"},
    {"a unit by magnitude",                    999999,         2,  3,        "999.999 ns"},
    {"a unit by magnitude",                    1000000,        2,  3,        "1.0 us"},
    {"a unit by magnitude",                    999999999,      2,  6,        "999.999999 us"},
    {"a unit by magnitude",                    1000000000,     2,  6,        "1.0 ms"},
    {"a unit by magnitude",                    999999999999,   2,  9,        "999.999999999 ms"},
    {"a unit by magnitude",                    1000000000000,  2,  9,        "1.0 s"},
    {"a unit by magnitude",                    HIGHEST,        2,  12,       "9223372.036854775807 s"},
    {"negatives by their magnitude",           -999,           2,  1,        "-999 ps"},
    {"negatives by their magnitude",           -1500,          2,  1,        "-1.5 ns"},
    {"negatives by their magnitude",           -1000000000000, 2,  1,        "-1.0 s"},
    {"negatives by their magnitude",           LOWEST,         2,  12,       "-9223372.036854775808 s"},
    {"negatives by their magnitude",           LOWEST,         0,  2,        "-9223372.04 s"},
    {"zero in picoseconds",                    0,              2,  1,        "0 ps"},
    {"zero in picoseconds",                    0,              6,  0,        "0 ps"},
    {"chosen before rounding",                 999999,         2,  1,        "1000.0 ns"},
    {"chosen before rounding",                 -999999,        2,  2,        "-1000.0 ns"},
    {"chosen before rounding",                 999999999999,   2,  3,        "1000.0 ms"},
    {"0 places are taken as one",              1500,           3,  0,        "1.5 ns"},
    {"0 places are taken as one",              1550,           3,  0,        "1.6 ns"},
    {"0 places are taken as one",              1500000,        9,  0,        "1.5 MHz"},
    {"trimmed",                                1000,           3,  3,        "1.0 ns"},
    {"trimmed",                                1500,           3,  65535,    "1.5 ns"},
    {"the own unit of a time does not matter", 5,              1,  3,        "5 ps"},
    {"the own unit of a time does not matter", 5,              0,  3,        "5 ps"},
    {"the own unit of a time does not matter", 5000,           6,  3,        "5.0 ns"},
    {"the own unit of a time does not matter", 100,            11, 3,        "100 ps"},
    {"the own unit of a time does not matter", 0,              1,  3,        "0 ps"},
    {"frequencies in their own unit",          1500000,        9,  2,        "1.5 MHz"},
    {"frequencies in their own unit",          1500000,        10, 2,        "0.0 GHz"},
    {"frequencies in their own unit",          1500000,        7,  2,        "1500000 Hz"},
    {"frequencies in their own unit",          0,              9,  2,        "0.0 MHz"},
    {"rates in their own unit",                1500000,        13, 2,        "1.5 Mbps"},
    {"rates in their own unit",                1500000,        14, 4,        "0.0015 Gbps"},
    {"rates in their own unit",                -7,             12, 4,        "-7 bps"},
};
// clang-format on

TEST_F(BigTimePrint, AUnitIsChosenByMagnitude) {
    for (CHOICE_ROW const& row : CHOICES) {
        HELD const held = {row.count, row.own_unit};
        SCOPED_TRACE(row.why + (": " + testing::PrintToString(held)) + " to "
                     + words(row.precision + 0));
        OBSERVATION const expected = {words(std::string(row.text)), SILENCE};
        expect_of_both([&](auto& times) { return words(times.to_string(held, row.precision)); },
                       expected);
        EXPECT_EQ(observe([&] {
                      std::string text = "before";
                      EXPECT_EQ(time_of(row.count, row.own_unit).to_string(&text, row.precision),
                                &text);
                      return words(text);
                  }),
                  expected);
    }
}

// A unit would be taken for the precision. (Only a template asks whether code compiles.)
template <typename TIME>
concept PRINTS_IN_A_UNIT_ALONE = requires(TIME time) {
    time.to_string(TIME::UNIT_US);
}
|| requires(TIME time, std::string text) {
    time.to_string(&text, TIME::UNIT_US);
};
static_assert(!PRINTS_IN_A_UNIT_ALONE<BIG_TIME>);

template <typename TIME>
concept PRINTS_TO_A_PRECISION = requires(TIME time, std::string text) {
    time.to_string(2);
    time.to_string(&text, 2);
    time.to_string(TIME::UNIT_US, 2, true);
};
static_assert(PRINTS_TO_A_PRECISION<BIG_TIME>);

// ------------------------------------------------------------------------------------------------
// Every digit
// ------------------------------------------------------------------------------------------------

struct RAW_ROW {
    char const* why;
    long long count;
    int own_unit;
    char const* text;
};

// clang-format off
RAW_ROW const RAWS[] = {
    // why                                 count     own text
    {"every digit in the own unit",       1234567,  2,  "1234567 ps"},
    {"every digit in the own unit",       1234567,  3,  "1234.567 ns"},
    {"every digit in the own unit",       1234567,  6,  "0.000001234567 s"},
    {"every digit in the own unit",       -1234567, 11, "-12345.67 ten_th_ns"},
    {"every digit in the own unit",       3000003,  9,  "3.000003 MHz"},
    {"every digit in the own unit",       1,        14, "0.000000001 Gbps"},
    {"every digit in the own unit",       HIGHEST,  5,  "9223372036.854775807 ms"},
    {"every digit in the own unit",       LOWEST,   6,  "-9223372.036854775808 s"},
    {"every digit in the own unit",       -5,       7,  "-5 Hz"},
    {"trailing zeros go, all but one",    1500,     3,  "1.5 ns"},
    {"trailing zeros go, all but one",    1000,     3,  "1.0 ns"},
    {"trailing zeros go, all but one",    0,        3,  "0.0 ns"},
    {"trailing zeros go, all but one",    0,        9,  "0.0 MHz"},
    {"trailing zeros go, all but one",    -5000000, 4,  "-5.0 us"},
    {"zeros of whole units stay",         1000,     2,  "1000 ps"},
    {"zeros of whole units stay",         0,        2,  "0 ps"},
    {"zeros of whole units stay",         0,        12, "0 bps"},
    {"femtoseconds",                      5,        1,  "5000 fs"},
    {"femtoseconds",                      -5,       1,  "-5000 fs"},
    {"femtoseconds",                      0,        1,  "0 fs"},
    {"femtoseconds",                      HIGHEST,  1,  "9223372036854775807000 fs"},
    {"femtoseconds",                      LOWEST,   1,  "-9223372036854775808000 fs"},
    // the raw form always has the blank, also before the empty name
    {"no unit leaves a blank at the end", 5,        0,  "5 "},
    {"no unit leaves a blank at the end", 0,        0,  "0 "},
    {"no unit leaves a blank at the end", LOWEST,   0,  "-9223372036854775808 "},
};
// clang-format on

TEST_F(BigTimePrint, TheRawTextHasEveryDigit) {
    for (RAW_ROW const& row : RAWS) {
        HELD const held = {row.count, row.own_unit};
        SCOPED_TRACE(row.why + (": " + testing::PrintToString(held)));
        expect_of_both([&](auto& times) { return words(times.to_raw_string(held)); },
                       {words(std::string(row.text)), SILENCE});
    }
}

TEST_F(BigTimePrint, TheProcessLocaleDoesNotMatter) {
    COMMA_LOCALE const locale;
    if (!locale.available())
        GTEST_SKIP() << "the build made no locale with a comma";
    EXPECT_EQ(time_of(1234567, BIG_TIME::UNIT_NS).to_string(BIG_TIME::UNIT_US, 3, false),
              "1.235 us");
    EXPECT_EQ(time_of(1234567, BIG_TIME::UNIT_NS).to_raw_string(), "1234.567 ns");
    EXPECT_EQ(held_by(BIG_TIME("1.5 us", false)), (HELD{1500000, BIG_TIME::UNIT_US}));
    EXPECT_EQ(held_by(BIG_TIME(".05 us", false)), (HELD{500000, BIG_TIME::UNIT_US}));
    EXPECT_FALSE(BIG_TIME().set_time("1,5 us", false));
}

// ------------------------------------------------------------------------------------------------
// Properties
// ------------------------------------------------------------------------------------------------

TEST_F(BigTimePrint, PrintsAsTheOracleDoes) {
    constexpr unsigned int seed = 20501;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(250000); ++i) {
        long long const count = samples.once_in(20) ? 0 : samples.count();
        HELD const held = {count, samples.unit()};
        int const unit = static_cast<int>(samples.below(16)) - 1;
        unsigned short const precision = samples.precision();
        bool const trim = samples.once_in(2);
        ASSERT_TRUE(library_obeys([&](auto& times) {
            std::string const number = times.to_string_without_unit(held, unit, precision, trim);
            std::string const text = times.to_string(held, unit, precision, trim);
            std::string const chosen = times.to_string(held, precision);
            std::string const raw = times.to_raw_string(held);
            return words(number, text, chosen, raw);
        })) << testing::PrintToString(held)
            << " in unit " << unit << " to " << precision << (trim ? " trimmed" : "") << ", case "
            << i << " of seed " << seed;
    }
}

TEST_F(BigTimePrint, PlacesThePointAsTheOracleDoes) {
    constexpr unsigned int seed = 20502;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(1000000, 40000); ++i) {
        std::string text = samples.digits(22);
        if (samples.once_in(3))
            text.insert(0, 1, samples.once_in(3) ? '+' : '-');
        int const unit = samples.unit();
        ASSERT_TRUE(library_obeys([&](auto& times) {
            std::string s = text;
            times.add_decimal(s, unit);
            return words(s);
        })) << in_quotes(text)
            << " in unit " << unit << ", case " << i << " of seed " << seed;
    }
}

} // namespace
