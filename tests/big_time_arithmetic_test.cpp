// Times built from numbers, their stored counts and the arithmetic on them.

#include "printing.h"
#include "time_library.h"
#include "time_samples.h"

#include <algorithm>
#include <climits>

namespace {

__extension__ using WIDE = __int128;

std::vector<recording::CALL> const SILENCE;

class BigTimeArithmetic : public testing::Test {
protected:
    BigTimeArithmetic() { recording::clear(); }
};

// ------------------------------------------------------------------------------------------------
// Construction
// ------------------------------------------------------------------------------------------------

TEST_F(BigTimeArithmetic, DefaultStateIsZeroWithoutUnit) {
    BIG_TIME const time;
    EXPECT_EQ(held_by(time), (HELD{0, BIG_TIME::UNIT_NONE}));
    EXPECT_FALSE(time.is_negative());
}

TEST_F(BigTimeArithmetic, CopiesTakeCountAndUnit) {
    BIG_TIME const source = time_of(-5, BIG_TIME::UNIT_GHZ);
    BIG_TIME const constructed = source;
    BIG_TIME assigned(1, BIG_TIME::UNIT_NS);
    EXPECT_EQ(&(assigned = source), &assigned);
    EXPECT_EQ(held_by(constructed), (HELD{-5, BIG_TIME::UNIT_GHZ}));
    EXPECT_EQ(held_by(assigned), (HELD{-5, BIG_TIME::UNIT_GHZ}));
    EXPECT_TRUE(assigned.is_negative());
}

TEST_F(BigTimeArithmetic, AssignmentToItselfChangesNothing) {
    BIG_TIME time = time_of(77, BIG_TIME::UNIT_MBPS);
    BIG_TIME const& same = time;
    time = same;
    EXPECT_EQ(held_by(time), (HELD{77, BIG_TIME::UNIT_MBPS}));
}

TEST_F(BigTimeArithmetic, AssignmentOfANumberDropsTheUnit) {
    BIG_TIME time(5, BIG_TIME::UNIT_NS);
    for (long long const count : {0ll, 42ll, -42ll, HIGHEST, LOWEST}) {
        time.set_smaller_unit(BIG_TIME::UNIT_NS, BIG_TIME::UNIT_NS);
        EXPECT_EQ(&(time = count), &time);
        EXPECT_EQ(held_by(time), (HELD{count, BIG_TIME::UNIT_NONE}));
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

// The number 0 would be taken for a null text. (Only a template asks whether code compiles.)
template <typename TIME>
concept TAKES_A_UNIT_BY_ITS_NUMBER = requires {
    TIME(5, 0);
}
|| requires(TIME time) {
    time.set_time(5, 0);
};
static_assert(!TAKES_A_UNIT_BY_ITS_NUMBER<BIG_TIME>);

template <typename TIME>
concept TAKES_A_UNIT_FOR_A_NUMBER = requires(TIME time) {
    TIME(5, TIME::UNIT_NS);
    TIME(0, TIME::UNIT_NONE);
    TIME(5ull, TIME::UNIT_NS);
    TIME(5, {});
    TIME(5, "ns");
    time.set_time(5, TIME::UNIT_NS);
    time.set_time(5, "");
};
static_assert(TAKES_A_UNIT_FOR_A_NUMBER<BIG_TIME>);

struct SCALE_ROW {
    char const* why;
    long long value;
    BIG_TIME::TIME_UNIT unit;
    long long count;
};

// clang-format off
SCALE_ROW const SCALES[] = {
    // why                                        value     unit                      count
    {"times are kept in picoseconds",            5,        BIG_TIME::UNIT_PS,        5},
    {"times are kept in picoseconds",            5,        BIG_TIME::UNIT_NS,        5000},
    {"times are kept in picoseconds",            5,        BIG_TIME::UNIT_TEN_TH_NS, 500},
    {"times are kept in picoseconds",            5,        BIG_TIME::UNIT_US,        5000000},
    {"times are kept in picoseconds",            5,        BIG_TIME::UNIT_MS,        5000000000},
    {"times are kept in picoseconds",            5,        BIG_TIME::UNIT_S,         5000000000000},
    {"times are kept in picoseconds",            -5,       BIG_TIME::UNIT_NS,        -5000},
    {"times are kept in picoseconds",            0,        BIG_TIME::UNIT_S,         0},
    {"femtoseconds are cut toward zero",         1999,     BIG_TIME::UNIT_FS,        1},
    {"femtoseconds are cut toward zero",         -1999,    BIG_TIME::UNIT_FS,        -1},
    {"femtoseconds are cut toward zero",         999,      BIG_TIME::UNIT_FS,        0},
    {"femtoseconds are cut toward zero",         -999,     BIG_TIME::UNIT_FS,        0},
    {"femtoseconds are cut toward zero",         1000,     BIG_TIME::UNIT_FS,        1},
    {"femtoseconds are cut toward zero",         0,        BIG_TIME::UNIT_FS,        0},
    {"femtoseconds are cut toward zero",         HIGHEST,  BIG_TIME::UNIT_FS,        9223372036854775},
    {"femtoseconds are cut toward zero",         LOWEST,   BIG_TIME::UNIT_FS,        -9223372036854775},
    {"without a unit a number is a plain count", 7,        BIG_TIME::UNIT_NONE,      7},
    {"without a unit a number is a plain count", 0,        BIG_TIME::UNIT_NONE,      0},
    {"without a unit a number is a plain count", HIGHEST,  BIG_TIME::UNIT_NONE,      HIGHEST},
    {"without a unit a number is a plain count", LOWEST,   BIG_TIME::UNIT_NONE,      LOWEST},
    {"frequencies are kept in hertz",            3,        BIG_TIME::UNIT_HZ,        3},
    {"frequencies are kept in hertz",            3,        BIG_TIME::UNIT_KHZ,       3000},
    {"frequencies are kept in hertz",            3,        BIG_TIME::UNIT_MHZ,       3000000},
    {"frequencies are kept in hertz",            3,        BIG_TIME::UNIT_GHZ,       3000000000},
    {"rates are kept in bits per second",        3,        BIG_TIME::UNIT_BPS,       3},
    {"rates are kept in bits per second",        3,        BIG_TIME::UNIT_MBPS,      3000000},
    {"rates are kept in bits per second",        3,        BIG_TIME::UNIT_GBPS,      3000000000},
    {"the ends of the range",                    HIGHEST,  BIG_TIME::UNIT_PS,        HIGHEST},
    {"the ends of the range",                    LOWEST,   BIG_TIME::UNIT_PS,        LOWEST},
    {"the ends of the range",                    HIGHEST,  BIG_TIME::UNIT_HZ,        HIGHEST},
    {"the ends of the range",                    HIGHEST,  BIG_TIME::UNIT_BPS,       HIGHEST},
    {"the ends of the range",                    9223372,  BIG_TIME::UNIT_S,         9223372000000000000},
    {"the ends of the range",                    -9223372, BIG_TIME::UNIT_S,         -9223372000000000000},
};
// clang-format on

TEST_F(BigTimeArithmetic, NumbersAreScaledIntoTheStoredUnit) {
    for (SCALE_ROW const& row : SCALES) {
        SCOPED_TRACE(words(std::string(row.why), row.value, static_cast<int>(row.unit)));
        BIG_TIME const constructed(row.value, row.unit);
        BIG_TIME set(9, BIG_TIME::UNIT_MHZ);
        EXPECT_TRUE(set.set_time(row.value, row.unit));
        EXPECT_EQ(held_by(constructed), (HELD{row.count, row.unit}));
        EXPECT_EQ(held_by(set), (HELD{row.count, row.unit}));
        EXPECT_EQ(BIG_TIME::compute_storage_number(row.value, row.unit), row.count);
        EXPECT_EQ(TIME_ORACLE().compute_storage_number(row.value, row.unit), row.count);
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

TEST_F(BigTimeArithmetic, NumbersAreScaledByTheUnitThatATextNames) {
    struct {
        char const* text;
        long long count;
        int unit;
        // clang-format off
    } const rows[] = {
        // text        count of 5  unit
        {"",          5,          0},
        {" \t\n",     5,          0},
        {"ns",        5000,       3},
        {" NS ",      5000,       3},
        {"ten_TH_ns", 500,        11},
        {"gbps",      5000000000, 14},
        {"fs",        0,          1},
    };
    // clang-format on
    for (auto const& row : rows) {
        SCOPED_TRACE(row.text);
        BIG_TIME const constructed(5ll, std::string(row.text));
        BIG_TIME set(9, BIG_TIME::UNIT_MHZ);
        EXPECT_TRUE(set.set_time(5, std::string(row.text)));
        EXPECT_EQ(held_by(constructed), (HELD{row.count, row.unit}));
        EXPECT_EQ(held_by(set), (HELD{row.count, row.unit}));
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

TEST_F(BigTimeArithmetic, AUnitTextInQuotesGoesWithEveryIntegerZeroIncluded) {
    BIG_TIME set;
    EXPECT_EQ(held_by(BIG_TIME(0, "ns")), (HELD{0, BIG_TIME::UNIT_NS}));
    EXPECT_EQ(held_by(BIG_TIME(5, "ns")), (HELD{5000, BIG_TIME::UNIT_NS}));
    EXPECT_EQ(held_by(BIG_TIME(5L, "ns")), (HELD{5000, BIG_TIME::UNIT_NS}));
    EXPECT_EQ(held_by(BIG_TIME(5000000000L, "ps")), (HELD{5000000000, BIG_TIME::UNIT_PS}));
    EXPECT_EQ(held_by(BIG_TIME(5u, "ns")), (HELD{5000, BIG_TIME::UNIT_NS}));
    EXPECT_EQ(held_by(BIG_TIME(5, {})), (HELD{5, BIG_TIME::UNIT_NONE})); // no text
    std::string name = "ns";
    EXPECT_EQ(held_by(BIG_TIME(0, name.c_str())), (HELD{0, BIG_TIME::UNIT_NS}));
    EXPECT_EQ(held_by(BIG_TIME(5, name.data())), (HELD{5000, BIG_TIME::UNIT_NS}));
    EXPECT_TRUE(set.set_time(0, "us"));
    EXPECT_EQ(held_by(set), (HELD{0, BIG_TIME::UNIT_US}));
    EXPECT_TRUE(set.set_time(5, {}));
    EXPECT_EQ(held_by(set), (HELD{5, BIG_TIME::UNIT_NONE}));
    EXPECT_TRUE(set.set_time(5000000000L, "ps"));
    EXPECT_EQ(held_by(set), (HELD{5000000000, BIG_TIME::UNIT_PS}));
    EXPECT_EQ(recording::reports(), SILENCE);
    EXPECT_FALSE(set.set_time(0, "furlong"));
    EXPECT_EQ(held_by(BIG_TIME(0, "furlong")), (HELD{0, BIG_TIME::UNIT_NONE}));
}

TEST_F(BigTimeArithmetic, AConstructorThatIsRefusedSaysSoAndKeepsTheDefaultState) {
    std::vector<recording::CALL> const failed = {recording::debug("BIG_TIME constructor failed")};
    for (int const unit : {15, -1, 16, INT_MAX, INT_MIN}) {
        SCOPED_TRACE(unit);
        recording::clear();
        BIG_TIME const time(1, unit_of(unit));
        EXPECT_EQ(held_by(time), HELD());
        EXPECT_EQ(recording::reports(), failed);
    }
    for (char const* const text : {"furlong", "ns ps", "n s", "ns\r", "15", "-"}) {
        SCOPED_TRACE(text);
        recording::clear();
        BIG_TIME const time(1ll, std::string(text));
        EXPECT_EQ(held_by(time), HELD());
        EXPECT_EQ(recording::reports(), failed);
    }
}

TEST_F(BigTimeArithmetic, ASetterThatIsRefusedChangesNothingInSilence) {
    BIG_TIME time(3, BIG_TIME::UNIT_US);
    for (int const unit : {15, -1, 16, INT_MAX, INT_MIN})
        EXPECT_FALSE(time.set_time(1, unit_of(unit))) << unit;
    for (char const* const text : {"furlong", "ns ps", "n s", "ns\r", "15", "-"})
        EXPECT_FALSE(time.set_time(1, std::string(text))) << text;
    EXPECT_EQ(held_by(time), (HELD{3000000, BIG_TIME::UNIT_US}));
    EXPECT_EQ(recording::reports(), SILENCE);
}

// ------------------------------------------------------------------------------------------------
// Scaling that fails
// ------------------------------------------------------------------------------------------------

TEST_F(BigTimeArithmetic, NegativeFrequenciesAndRatesAreInternalErrors) {
    for (int const unit : {7, 8, 9, 10, 12, 13, 14}) {
        for (long long const value : {-1ll, -1000000000ll, LOWEST}) {
            SCOPED_TRACE(words(value, unit));
            EXPECT_INTERNAL_ERROR(BIG_TIME::compute_storage_number(value, unit_of(unit)),
                                  "Wrong concept: Negative frequency!", "2", "big/big_time");
            EXPECT_INTERNAL_ERROR(BIG_TIME(value, unit_of(unit)),
                                  "Wrong concept: Negative frequency!", "2", "big/big_time");
        }
    }
}

TEST_F(BigTimeArithmetic, ZeroFrequenciesAndRatesAreInternalErrors) {
    for (int const unit : {7, 8, 9, 10, 12, 13, 14}) {
        SCOPED_TRACE(unit);
        EXPECT_INTERNAL_ERROR(BIG_TIME::compute_storage_number(0, unit_of(unit)),
                              "Wrong concept: 0 MHz!", "2", "big/big_time");
        EXPECT_INTERNAL_ERROR(BIG_TIME(0, unit_of(unit)), "Wrong concept: 0 MHz!", "2",
                              "big/big_time");
    }
}

TEST_F(BigTimeArithmetic, CountsBeyondSixtyFourBitsAreAnOverflow) {
    struct {
        long long largest; // value that fits
        BIG_TIME::TIME_UNIT unit;
        // clang-format off
    } const rows[] = {
        // largest value     unit
        {9223372036854775,  BIG_TIME::UNIT_NS},
        {92233720368547758, BIG_TIME::UNIT_TEN_TH_NS},
        {9223372036854,     BIG_TIME::UNIT_US},
        {9223372036,        BIG_TIME::UNIT_MS},
        {9223372,           BIG_TIME::UNIT_S},
        {9223372036854775,  BIG_TIME::UNIT_KHZ},
        {9223372036854,     BIG_TIME::UNIT_MHZ},
        {9223372036,        BIG_TIME::UNIT_GHZ},
        {9223372036854,     BIG_TIME::UNIT_MBPS},
        {9223372036,        BIG_TIME::UNIT_GBPS},
    };
    // clang-format on
    for (auto const& row : rows) {
        SCOPED_TRACE(words(row.largest, static_cast<int>(row.unit)));
        long long const power = BIG_TIME::s_power_10_table[BIG_TIME::s_fraction_digits[row.unit]];
        bool const signed_unit = BIG_TIME::get_unit_category(row.unit) == BIG_TIME::TIME_CATEGORY;
        EXPECT_EQ(BIG_TIME::compute_storage_number(row.largest, row.unit), row.largest * power);
        EXPECT_INTERNAL_ERROR(BIG_TIME::compute_storage_number(row.largest + 1, row.unit),
                              "Overflow", "BIG", "h/big_sys");
        EXPECT_INTERNAL_ERROR(BIG_TIME::compute_storage_number(HIGHEST, row.unit), "Overflow",
                              "BIG", "h/big_sys");
        if (!signed_unit)
            continue;
        EXPECT_EQ(BIG_TIME::compute_storage_number(-row.largest, row.unit), -row.largest * power);
        EXPECT_INTERNAL_ERROR(BIG_TIME::compute_storage_number(-row.largest - 1, row.unit),
                              "Overflow", "BIG", "h/big_sys");
        EXPECT_INTERNAL_ERROR(BIG_TIME::compute_storage_number(LOWEST, row.unit), "Overflow", "BIG",
                              "h/big_sys");
    }
}

TEST_F(BigTimeArithmetic, AFailedSetterLeavesTheOldValue) {
    BIG_TIME time(3, BIG_TIME::UNIT_US);
    EXPECT_INTERNAL_ERROR(time.set_time(9223373, BIG_TIME::UNIT_S), "Overflow", "BIG", "h/big_sys");
    EXPECT_INTERNAL_ERROR(time.set_time(-1, std::string("Hz")),
                          "Wrong concept: Negative frequency!", "2", "big/big_time");
    EXPECT_EQ(held_by(time), (HELD{3000000, BIG_TIME::UNIT_US}));
}

TEST_F(BigTimeArithmetic, ScalingByAUnitOutsideTheTableIsAnInternalError) {
    for (long long const value : {0ll, 1ll, -1ll}) {
        for (int const unit : {-1, INT_MIN})
            EXPECT_INTERNAL_ERROR(BIG_TIME::compute_storage_number(value, unit_of(unit)),
                                  "unit >= MIN_TIME_UNITS", "2", "big/big_time");
        for (int const unit : {15, INT_MAX})
            EXPECT_INTERNAL_ERROR(BIG_TIME::compute_storage_number(value, unit_of(unit)),
                                  "unit < MAX_TIME_UNIT", "2", "big/big_time");
    }
}

TEST_F(BigTimeArithmetic, ScalesAsArithmeticIn128BitsDoes) {
    constexpr unsigned int seed = 20201;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(400000); ++i) {
        int const unit = samples.unit();
        long long value = samples.count();
        if (samples.once_in(3)) { // near the end of the unit's range
            int const digits = BIG_TIME::s_fraction_digits[unit];
            long long const limit =
                digits > 0 ? HIGHEST / BIG_TIME::s_power_10_table[digits] : HIGHEST;
            value = limit - 3 + samples.below(digits > 0 ? 7 : 4);
            if (samples.once_in(2))
                value = -value;
        }
        ASSERT_TRUE(library_obeys([&](auto& times) {
            return words(times.compute_storage_number(value, unit));
        })) << value
            << " in unit " << unit << ", case " << i << " of seed " << seed;
    }
}

// ------------------------------------------------------------------------------------------------
// Stored counts and periods
// ------------------------------------------------------------------------------------------------

struct PERIOD_ROW {
    char const* why;
    long long count;
    int unit;
    long long storage_number;
};

// clang-format off
PERIOD_ROW const PERIODS[] = {
    // why                                          count          unit storage number
    {"a time is its own storage number",           5000,          3,   5000},
    {"a time is its own storage number",           -5,            6,   -5},
    {"a time is its own storage number",           LOWEST,        2,   LOWEST},
    {"a plain count is its own storage number",    HIGHEST,       0,   HIGHEST},
    {"a rate is its own storage number",           3000000,       13,  3000000},
    {"a rate is its own storage number",           0,             12,  0},
    {"a tenth of a nanosecond is a time",          100,           11,  100},
    {"a frequency is its period",                  3000000,       9,   333333},
    {"a frequency is its period",                  1,             7,   1000000000000},
    {"a frequency is its period",                  1000000000000, 10,  1},
    {"a frequency is its period",                  999999999999,  8,   1},
    {"a frequency above 10^12 Hz has no period",   1000000000001, 10,  0},
    {"a frequency above 10^12 Hz has no period",   HIGHEST,       7,   0},
    {"a zero frequency stays zero",                0,             7,   0},
    {"a zero frequency stays zero",                0,             10,  0},
    {"a negative frequency has a negative period", -3,            7,   -333333333333},
    {"a negative frequency has a negative period", -1,            9,   -1000000000000},
    {"a negative frequency has a negative period", LOWEST,        8,   0},
};
// clang-format on

TEST_F(BigTimeArithmetic, TheStorageNumberOfAFrequencyIsItsPeriod) {
    for (PERIOD_ROW const& row : PERIODS) {
        SCOPED_TRACE(words(std::string(row.why), row.count, row.unit));
        BIG_TIME const time = time_of(row.count, row.unit);
        EXPECT_EQ(time.get_storage_number(), row.storage_number);
        EXPECT_EQ(time.get_time_value(), row.count);
        EXPECT_EQ(time.get_time_unit(), row.unit);
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

struct STORE_ROW {
    char const* why;
    int unit;
    long long number;
    long long count;
};

// clang-format off
STORE_ROW const STORES[] = {
    // why                                       unit number         count
    {"a frequency takes a period",              9,   333333,        3000003},
    {"a frequency takes a period",              7,   1,             1000000000000},
    {"a frequency takes a period",              10,  1000000000000, 1},
    {"a frequency takes a period",              8,   -3,            -333333333333},
    {"a period above a second leaves no hertz", 7,   1000000000001, 0},
    {"a period above a second leaves no hertz", 7,   HIGHEST,       0},
    {"a period above a second leaves no hertz", 10,  LOWEST,        0},
    {"everything else takes the count",         3,   0,             0},
    {"everything else takes the count",         3,   -7,            -7},
    {"everything else takes the count",         0,   LOWEST,        LOWEST},
    {"everything else takes the count",         11,  12,            12},
    {"everything else takes the count",         1,   12,            12},
    {"everything else takes the count",         13,  333333,        333333},
    {"everything else takes the count",         12,  0,             0},
    {"everything else takes the count",         14,  -1,            -1},
};
// clang-format on

TEST_F(BigTimeArithmetic, AFrequencyTakesAStorageNumberAsItsPeriod) {
    for (STORE_ROW const& row : STORES) {
        SCOPED_TRACE(words(std::string(row.why), row.unit, row.number));
        BIG_TIME time = time_of(5, row.unit);
        time.set_storage_number(row.number);
        EXPECT_EQ(held_by(time), (HELD{row.count, row.unit}));
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

TEST_F(BigTimeArithmetic, APeriodOfZeroIsAnInternalError) {
    for (int const unit : {7, 8, 9, 10}) {
        BIG_TIME time = time_of(5, unit);
        EXPECT_INTERNAL_ERROR(time.set_storage_number(0), "Integer division by zero", "2",
                              "big/big_time");
        EXPECT_EQ(held_by(time), (HELD{5, unit}));
    }
}

struct WIDTH_ROW {
    char const* why;
    unsigned int byte_count;
    long long lowest;  // that fits
    long long highest; // that fits
};

// clang-format off
WIDTH_ROW const WIDTHS[] = {
    // why                                    bytes        lowest              highest
    {"a signed integer of that width",       1,           -128,               127},
    {"a signed integer of that width",       2,           -32768,             32767},
    {"a signed integer of that width",       3,           -8388608,           8388607},
    {"a signed integer of that width",       4,           -2147483648ll,      2147483647},
    {"a signed integer of that width",       5,           -549755813888,      549755813887},
    {"a signed integer of that width",       6,           -140737488355328,   140737488355327},
    // 2^55 - 1 as a double is 2^55: the limit is computed in double
    {"seven bytes hold one number too many", 7,           -36028797018963968, 36028797018963968},
    {"eight bytes and more hold everything", 8,           LOWEST,             HIGHEST},
    {"eight bytes and more hold everything", 9,           LOWEST,             HIGHEST},
    {"eight bytes and more hold everything", 100,         LOWEST,             HIGHEST},
    {"eight bytes and more hold everything", UINT_MAX,    LOWEST,             HIGHEST},
    {"no byte holds zero alone",             0,           0,                  0},
    // the number of bits is a 32-bit product
    {"2^29 bytes and one are one byte",      0x20000001u, -128,               127},
    {"2^29 bytes are none",                  0x20000000u, 0,                  0},
};
// clang-format on

TEST_F(BigTimeArithmetic, SafeToConvertTellsWhetherTheStorageNumberFits) {
    for (WIDTH_ROW const& row : WIDTHS) {
        SCOPED_TRACE(words(std::string(row.why), static_cast<long long>(row.byte_count)));
        auto const fits = [&](long long count) {
            return time_of(count, BIG_TIME::UNIT_PS).safe_to_convert(row.byte_count);
        };
        EXPECT_TRUE(fits(0));
        EXPECT_TRUE(fits(row.lowest));
        EXPECT_TRUE(fits(row.highest));
        if (row.lowest == LOWEST)
            continue;
        EXPECT_FALSE(fits(row.lowest - 1));
        EXPECT_FALSE(fits(row.highest + 1));
        EXPECT_FALSE(fits(LOWEST));
        EXPECT_FALSE(fits(HIGHEST));
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

TEST_F(BigTimeArithmetic, SafeToConvertLooksAtTheTimeOrPeriodAndNotAtTheUnit) {
    EXPECT_TRUE(BIG_TIME(127, BIG_TIME::UNIT_NONE).safe_to_convert(1));
    EXPECT_FALSE(BIG_TIME(1, BIG_TIME::UNIT_NS).safe_to_convert(1));
    EXPECT_TRUE(BIG_TIME(10, BIG_TIME::UNIT_GHZ).safe_to_convert(1));  // 100 ps
    EXPECT_FALSE(BIG_TIME(5, BIG_TIME::UNIT_GHZ).safe_to_convert(1));  // 200 ps
    EXPECT_FALSE(BIG_TIME(1, BIG_TIME::UNIT_MBPS).safe_to_convert(1)); // a rate has no period
}

struct DELAY_ROW {
    char const* why;
    long long count;
    int unit;
    int delay;
};

// clang-format off
DELAY_ROW const DELAYS[] = {
    // why                         count          unit delay
    {"picoseconds that fit",      2000000000,    5,   2000000000},
    {"picoseconds that fit",      0,             2,   0},
    {"picoseconds that fit",      2147483647,    2,   2147483647},
    {"picoseconds that fit",      -2147483648ll, 2,   INT_MIN},
    {"picoseconds that fit",      -2147483647,   2,   -2147483647}, // not told from the marker
    {"picoseconds that do not",   3000000000,    5,   -2147483647},
    {"picoseconds that do not",   2147483648,    2,   -2147483647},
    {"picoseconds that do not",   -2147483649ll, 2,   -2147483647},
    {"picoseconds that do not",   LOWEST,        0,   -2147483647},
    {"the period of a frequency", 3000000,       9,   333333},
    {"the period of a frequency", 1,             7,   -2147483647},
    {"the period of a frequency", 0,             7,   0},
    {"the period of a frequency", HIGHEST,       10,  0},
    {"a rate as it is",           3000,          12,  3000},
};
// clang-format on

TEST_F(BigTimeArithmetic, DelaysThatDoNotFitBecomeTheMarker) {
    for (DELAY_ROW const& row : DELAYS) {
        SCOPED_TRACE(words(std::string(row.why), row.count, row.unit));
        EXPECT_EQ(time_of(row.count, row.unit).convert_to_tsm_delay(), row.delay);
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

TEST_F(BigTimeArithmetic, OnlyAZeroFrequencyIsIllegal) {
    for (int unit = 0; unit < 15; ++unit) {
        SCOPED_TRACE(unit);
        bool const frequency = unit >= 7 && unit <= 10;
        EXPECT_EQ(time_of(0, unit).is_legal(), !frequency);
        EXPECT_TRUE(time_of(1, unit).is_legal());
        EXPECT_TRUE(time_of(-1, unit).is_legal());
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

// The text says non-positive, the test is negative only.
TEST_F(BigTimeArithmetic, NegativeFrequenciesAndRatesAreLogicallyIllegal) {
    for (int unit = -1; unit < 16; ++unit) {
        for (long long const value : {LOWEST, -1ll, 0ll, 1ll, HIGHEST}) {
            SCOPED_TRACE(words(value, unit));
            bool const frequency = unit >= 7 && unit <= 10;
            bool const rate = unit >= 12 && unit <= 14;
            std::vector<recording::CALL> reports;
            if (value < 0 && frequency)
                reports = {recording::debug("Wrong concept: Non-positive frequency!")};
            if (value < 0 && rate)
                reports = {recording::debug("Wrong concept: Negative BPS!")};
            expect_of_both(
                [&](auto& times) { return words(times.is_logically_legal(value, unit)); },
                {words(reports.empty()), reports});
        }
    }
}

// ------------------------------------------------------------------------------------------------
// Operators
// ------------------------------------------------------------------------------------------------

struct SUM_ROW {
    char const* why;
    HELD a;
    HELD b;
    HELD sum;
    HELD difference;
};

// clang-format off
SUM_ROW const SUMS[] = {
    // why                           a             b                 sum              difference
    {"the smaller unit",            {2000, 3},    {3, 2},           {2003, 2},       {1997, 2}},
    {"the smaller unit",            {3, 2},       {2000, 3},        {2003, 2},       {-1997, 2}},
    {"the smaller unit",            {1, 6},       {1, 11},          {2, 6},          {0, 6}},
    {"no unit is the smallest",     {5, 0},       {2000, 3},        {2005, 0},       {-1995, 0}},
    {"categories do not matter",    {2000, 3},    {3000000000, 10}, {3000002000, 3}, {-2999998000, 3}},
    {"categories do not matter",    {5, 12},      {7, 9},           {12, 9},         {-2, 9}},
    {"zero frequencies come about", {3000000, 9}, {3000000, 9},     {6000000, 9},    {0, 9}},
    {"sums wrap",                   {HIGHEST, 2}, {1, 2},           {LOWEST, 2},     {HIGHEST - 1, 2}},
    {"sums wrap",                   {HIGHEST, 3}, {HIGHEST, 4},     {-2, 3},         {0, 3}},
    {"differences wrap",            {LOWEST, 2},  {1, 2},           {LOWEST + 1, 2}, {HIGHEST, 2}},
    {"differences wrap",            {0, 2},       {LOWEST, 2},      {LOWEST, 2},     {LOWEST, 2}},
    {"differences wrap",            {LOWEST, 5},  {LOWEST, 5},      {0, 5},          {0, 5}},
};
// clang-format on

TEST_F(BigTimeArithmetic, SumsAndDifferencesTakeTheSmallerUnit) {
    for (SUM_ROW const& row : SUMS) {
        SCOPED_TRACE(testing::PrintToString(row.a) + " and " + testing::PrintToString(row.b));
        BIG_TIME const a = time_of(row.a.count, row.a.unit);
        BIG_TIME const b = time_of(row.b.count, row.b.unit);
        EXPECT_EQ(held_by(a + b), row.sum) << row.why;
        EXPECT_EQ(held_by(a - b), row.difference) << row.why;
        BIG_TIME sum = a;
        BIG_TIME difference = a;
        EXPECT_EQ(&(sum += b), &sum);
        EXPECT_EQ(&(difference -= b), &difference);
        EXPECT_EQ(held_by(sum), row.sum) << row.why;
        EXPECT_EQ(held_by(difference), row.difference) << row.why;
        EXPECT_EQ(held_by(a), row.a);
        EXPECT_EQ(held_by(b), row.b);
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

TEST_F(BigTimeArithmetic, BothOperandsMayBeTheSameTime) {
    BIG_TIME time = time_of(7, BIG_TIME::UNIT_GHZ);
    BIG_TIME const& same = time;
    time += same;
    EXPECT_EQ(held_by(time), (HELD{14, BIG_TIME::UNIT_GHZ}));
    EXPECT_EQ(held_by(time + same), (HELD{28, BIG_TIME::UNIT_GHZ}));
    EXPECT_EQ(held_by(time - same), (HELD{0, BIG_TIME::UNIT_GHZ}));
    EXPECT_EQ(time / same, 1);
    EXPECT_EQ(time % same, 0);
    time -= same;
    EXPECT_EQ(held_by(time), (HELD{0, BIG_TIME::UNIT_GHZ}));
}

TEST_F(BigTimeArithmetic, NegationDropsTheUnit) {
    for (int unit = 0; unit < 15; ++unit) {
        for (long long const count : {5000ll, -5000ll, 0ll, HIGHEST, LOWEST + 1}) {
            BIG_TIME time = time_of(count, unit);
            EXPECT_EQ(held_by(-time), (HELD{-count, BIG_TIME::UNIT_NONE}));
            EXPECT_EQ(held_by(time), (HELD{count, unit}));
        }
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

TEST_F(BigTimeArithmetic, NegationOfTheMostNegativeCountIsAnInternalError) {
    for (int unit = 0; unit < 15; ++unit) {
        BIG_TIME time = time_of(LOWEST, unit);
        EXPECT_INTERNAL_ERROR(-time, "Overflow", "2", "big/big_time");
        EXPECT_EQ(held_by(time), (HELD{LOWEST, unit}));
    }
}

struct QUOTIENT_ROW {
    char const* why;
    long long dividend;
    long long divisor;
    long long quotient;
    long long remainder;
};

// clang-format off
QUOTIENT_ROW const QUOTIENTS[] = {
    // why                     dividend divisor  quotient              remainder
    {"cut toward zero",       7,       2,       3,                    1},
    {"cut toward zero",       -7,      2,       -3,                   -1},
    {"cut toward zero",       7,       -2,      -3,                   1},
    {"cut toward zero",       -7,      -2,      3,                    -1},
    {"cut toward zero",       5000,    3,       1666,                 2},
    {"zero",                  0,       5,       0,                    0},
    {"zero",                  0,       LOWEST,  0,                    0},
    {"the ends of the range", LOWEST,  1,       LOWEST,               0},
    {"the ends of the range", LOWEST,  LOWEST,  1,                    0},
    {"the ends of the range", LOWEST,  2,       -4611686018427387904, 0},
    {"the ends of the range", LOWEST,  10,      -922337203685477580,  -8},
    {"the ends of the range", HIGHEST, -1,      -HIGHEST,             0},
    {"the ends of the range", HIGHEST, LOWEST,  0,                    HIGHEST},
    {"the ends of the range", LOWEST,  HIGHEST, -1,                   -1},
};
// clang-format on

TEST_F(BigTimeArithmetic, QuotientsAreCutTowardZeroAndRemaindersFollowTheDividend) {
    for (QUOTIENT_ROW const& row : QUOTIENTS) {
        SCOPED_TRACE(words(std::string(row.why), row.dividend, row.divisor));
        BIG_TIME const a = time_of(row.dividend, BIG_TIME::UNIT_MHZ);
        BIG_TIME const b = time_of(row.divisor, BIG_TIME::UNIT_NS); // units do not matter
        EXPECT_EQ(a / b, row.quotient);
        EXPECT_EQ(a % b, row.remainder);
        EXPECT_EQ(held_by(a / row.divisor), (HELD{row.quotient, BIG_TIME::UNIT_MHZ}));
        BIG_TIME quotient = a;
        BIG_TIME remainder = a;
        EXPECT_EQ(&(quotient /= row.divisor), &quotient);
        EXPECT_EQ(&(remainder %= row.divisor), &remainder);
        EXPECT_EQ(held_by(quotient), (HELD{row.quotient, BIG_TIME::UNIT_MHZ}));
        EXPECT_EQ(held_by(remainder), (HELD{row.remainder, BIG_TIME::UNIT_NONE}));
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

TEST_F(BigTimeArithmetic, DivisionByZeroIsAnInternalError) {
    for (long long const count : {0ll, 5ll, LOWEST}) {
        BIG_TIME time = time_of(count, BIG_TIME::UNIT_US);
        BIG_TIME const zero = time_of(0, BIG_TIME::UNIT_NS);
        EXPECT_INTERNAL_ERROR(time / zero, "Division by Zero", "2", "big/big_time");
        EXPECT_INTERNAL_ERROR(time % zero, "Modulo by Zero", "2", "big/big_time");
        EXPECT_INTERNAL_ERROR(time / 0ll, "Division by Zero", "2", "big/big_time");
        EXPECT_INTERNAL_ERROR(time /= 0, "Division by Zero", "2", "big/big_time");
        EXPECT_INTERNAL_ERROR(time %= 0, "Modulo by Zero", "2", "big/big_time");
        EXPECT_EQ(held_by(time), (HELD{count, BIG_TIME::UNIT_US}));
    }
}

TEST_F(BigTimeArithmetic, TheQuotientThatDoesNotFitIsAnOverflow) {
    BIG_TIME time = time_of(LOWEST, BIG_TIME::UNIT_US);
    BIG_TIME const minus_one = time_of(-1, BIG_TIME::UNIT_NS);
    EXPECT_INTERNAL_ERROR(time / minus_one, "Overflow", "BIG", "h/big_sys");
    EXPECT_INTERNAL_ERROR(time % minus_one, "Overflow", "BIG", "h/big_sys");
    EXPECT_INTERNAL_ERROR(time / -1ll, "Overflow", "BIG", "h/big_sys");
    EXPECT_INTERNAL_ERROR(time /= -1, "Overflow", "BIG", "h/big_sys");
    EXPECT_INTERNAL_ERROR(time %= -1, "Overflow", "BIG", "h/big_sys");
    EXPECT_EQ(held_by(time), (HELD{LOWEST, BIG_TIME::UNIT_US}));
}

TEST_F(BigTimeArithmetic, ProductsKeepTheUnitAndWrap) {
    struct {
        long long count;
        long long factor;
        long long product;
        // clang-format off
    } const rows[] = {
        // count      factor      product
        {5000,       3,          15000},
        {5000,       0,          0},
        {5000,       -1,         -5000},
        {HIGHEST,    2,          -2},
        {LOWEST,     -1,         LOWEST},
        {LOWEST,     LOWEST,     0},
        {4294967296, 4294967296, 0},
        {HIGHEST,    HIGHEST,    1},
    };
    // clang-format on
    for (auto const& row : rows) {
        SCOPED_TRACE(words(row.count, row.factor));
        for (int unit = 0; unit < 15; ++unit) {
            BIG_TIME time = time_of(row.count, unit);
            EXPECT_EQ(held_by(time * row.factor), (HELD{row.product, unit}));
            EXPECT_EQ(&(time *= row.factor), &time);
            EXPECT_EQ(held_by(time), (HELD{row.product, unit}));
        }
    }
    EXPECT_EQ(recording::reports(), SILENCE);
}

// What arithmetic in 128 bits gives, cut to 64.
long long low_64_bits(WIDE value) {
    return static_cast<long long>(static_cast<unsigned long long>(value));
}

TEST_F(BigTimeArithmetic, ComputesAsArithmeticIn128BitsDoes) {
    constexpr unsigned int seed = 20202;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(400000); ++i) {
        HELD const x = {samples.count(), samples.unit()};
        HELD const y = {samples.count(), samples.unit()};
        BIG_TIME const a = time_of(x.count, x.unit);
        BIG_TIME const b = time_of(y.count, y.unit);
        WIDE const wide = x.count;
        int const smaller = std::min(x.unit, y.unit);
        std::string const input = testing::PrintToString(x) + " and " + testing::PrintToString(y)
                                  + ", case " + std::to_string(i) + " of seed "
                                  + std::to_string(seed);
        ASSERT_EQ(held_by(a + b), (HELD{low_64_bits(wide + y.count), smaller})) << input;
        ASSERT_EQ(held_by(a - b), (HELD{low_64_bits(wide - y.count), smaller})) << input;
        ASSERT_EQ(held_by(a * y.count), (HELD{low_64_bits(wide * y.count), x.unit})) << input;
        if (y.count == 0 || (x.count == LOWEST && y.count == -1))
            continue;
        ASSERT_EQ(a / b, low_64_bits(wide / y.count)) << input;
        ASSERT_EQ(a % b, low_64_bits(wide % y.count)) << input;
        ASSERT_EQ(held_by(a / y.count), (HELD{a / b, x.unit})) << input;
    }
}

TEST_F(BigTimeArithmetic, APeriodIsTenToTheTwelveByTheFrequency) {
    constexpr unsigned int seed = 20203;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(1000000, 20000); ++i) {
        HELD const x = {samples.count(), samples.unit()};
        long long const number = samples.count();
        bool const frequency = x.unit >= 7 && x.unit <= 10;
        BIG_TIME time = time_of(x.count, x.unit);
        ASSERT_EQ(time.get_storage_number(),
                  frequency && x.count != 0 ? 1000000000000 / x.count : x.count)
            << testing::PrintToString(x) << ", case " << i << " of seed " << seed;
        if (frequency && number == 0)
            continue;
        time.set_storage_number(number);
        ASSERT_EQ(held_by(time), (HELD{frequency ? 1000000000000 / number : number, x.unit}))
            << number << " into " << testing::PrintToString(x) << ", case " << i << " of seed "
            << seed;
    }
}

} // namespace
