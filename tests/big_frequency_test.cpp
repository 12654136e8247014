// Clock frequencies as doubles and clock periods as whole picoseconds.

#include "time_library.h"
#include "time_samples.h"

#include <climits>
#include <cmath>

namespace {

constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

class BigFrequency : public testing::Test {
protected:
    BigFrequency() { recording::clear(); }
    ~BigFrequency() override {
        EXPECT_EQ(recording::calls(), std::vector<recording::CALL>())
            << "frequencies report nothing";
    }
};

/// Equal bit for bit, but for which not-a-number.
testing::AssertionResult is(double actual, double expected) {
    bool const same = std::isnan(expected)
                          ? std::isnan(actual)
                          : actual == expected && std::signbit(actual) == std::signbit(expected);
    if (same)
        return testing::AssertionSuccess();
    return testing::AssertionFailure()
           << testing::PrintToString(actual) << " instead of " << testing::PrintToString(expected);
}

/// A frequency of any double that is a quotient of 64-bit numbers.
BIG_FREQUENCY frequency_of(long long hertz, long long divisor = 1) {
    return BIG_FREQUENCY(1000) * hertz / 1000000000 / divisor;
}

TEST_F(BigFrequency, TheDefaultIsNone) {
    EXPECT_TRUE(is(BIG_FREQUENCY().get_value(), 0.0));
    EXPECT_TRUE(is(BIG_FREQUENCY::BIG_INVALID_FREQUENCY.get_value(), 0.0));
}

TEST_F(BigFrequency, ComesFromAPeriodInPicoseconds) {
    struct {
        char const* why;
        int period;
        double hertz;
        // clang-format off
    } const rows[] = {
        // why                   period       hertz
        {"10^12 by the period", 1000,        1e9},
        {"10^12 by the period", 1,           1e12},
        {"10^12 by the period", 3,           1e12 / 3},
        {"10^12 by the period", INT_MAX,     1e12 / 2147483647},
        {"negatives too",       -1000,       -1e9},
        {"negatives too",       INT_MIN,     1e12 / -2147483648.0},
        {"negatives too",       -2147483646, 1e12 / -2147483646.0},
        {"no period",           -2147483647, 0.0}, // the marker of a delay that does not fit
        {"zero",                0,           INF},
    };
    // clang-format on
    for (auto const& row : rows) {
        SCOPED_TRACE(words(std::string(row.why), row.period));
        EXPECT_TRUE(is(BIG_FREQUENCY(row.period).get_value(), row.hertz));
        BIG_FREQUENCY computed(77);
        computed.compute_from_period(row.period);
        EXPECT_TRUE(is(computed.get_value(), row.hertz));
    }
}

// A double would be cut to a period though it says hertz.
static_assert(!std::is_constructible_v<BIG_FREQUENCY, double>);
static_assert(!std::is_constructible_v<BIG_FREQUENCY, float>);
static_assert(!std::is_convertible_v<double, BIG_FREQUENCY>);
static_assert(std::is_convertible_v<int, BIG_FREQUENCY>);
static_assert(std::is_convertible_v<short, BIG_FREQUENCY>);

TEST_F(BigFrequency, ComesFromATime) {
    struct {
        char const* why;
        long long count;
        int unit;
        double hertz;
        // clang-format off
    } const rows[] = {
        // why                                count           unit hertz
        {"a time is a period",               4000,           3,   250000000.0},
        {"a time is a period",               3,              0,   1e12 / 3},
        {"a time is a period",               -5,             2,   -2e11},
        {"a time of zero",                   0,              3,   INF},
        {"a time that does not fit 32 bits", 3000000000,     5,   0.0},
        {"a time that does not fit 32 bits", LOWEST,         2,   0.0},
        {"a time that is the marker",        -2147483647,    2,   0.0},
        {"a frequency stays what it is",     2000000000,     10,  2000000000.0},
        {"a frequency stays what it is",     3,              7,   3.0},
        {"a frequency stays what it is",     1000000000000,  8,   1e12},
        {"a frequency stays what it is",     -3,             9,   -3.0},
        {"a period below 1 ps is none",      2000000000000,  10,  0.0},
        {"a period below 1 ps is none",      1000000000001,  7,   0.0},
        {"a period below 1 ps is none",      -1000000000001, 7,   0.0},
        {"a period below 1 ps is none",      HIGHEST,        7,   0.0},
        {"a frequency of zero",              0,              9,   0.0},
        {"a rate is taken for a period",     1000,           12,  1e9},
        {"a rate is taken for a period",     3000000000,     14,  0.0},
        {"a rate is taken for a period",     0,              13,  INF},
    };
    // clang-format on
    for (auto const& row : rows) {
        SCOPED_TRACE(words(std::string(row.why), row.count, row.unit));
        BIG_TIME time = time_of(row.count, row.unit);
        EXPECT_TRUE(is(BIG_FREQUENCY(time).get_value(), row.hertz));
        EXPECT_EQ(held_by(time), (HELD{row.count, row.unit}));
        BIG_FREQUENCY computed(77);
        computed.compute_from_big_time(time);
        EXPECT_TRUE(is(computed.get_value(), row.hertz));
    }
}

TEST_F(BigFrequency, GivesThePeriodInPicoseconds) {
    struct {
        char const* why;
        BIG_FREQUENCY frequency;
        int period;
        long long long_period;
        // clang-format off
    } const rows[] = {
        // why                             frequency                    period      long period
        {"10^12 by the frequency",        BIG_FREQUENCY(1000),         1000,       1000},
        {"10^12 by the frequency",        BIG_FREQUENCY(3),            3,          3},
        {"10^12 by the frequency",        BIG_FREQUENCY(-7),           -7,         -7},
        {"10^12 by the frequency",        BIG_FREQUENCY(INT_MAX),      INT_MAX,    INT_MAX},
        {"10^12 by the frequency",        BIG_FREQUENCY(INT_MIN),      INT_MIN,    INT_MIN},
        {"cut toward zero",               frequency_of(3000000),       333333,     333333},
        {"cut toward zero",               frequency_of(-3000000),      -333333,    -333333},
        {"cut toward zero",               frequency_of(2000000000000), 0,          0},
        {"an infinite frequency",         BIG_FREQUENCY(0),            0,          0},
        {"an infinite frequency",         BIG_FREQUENCY(0) * -1,       0,          0},
        // what the conversion of a number too large gives on common hardware
        {"too long for 32 bits",          frequency_of(1),             INT_MIN,    1000000000000},
        {"too long for 32 bits",          frequency_of(-1),            INT_MIN,    -1000000000000},
        {"too long for 32 bits",          frequency_of(465),           INT_MIN,    2150537634},
        {"just short enough for 32 bits", frequency_of(466),           2145922746, 2145922746},
        {"too long for 64 bits",          frequency_of(1, 10000000),   INT_MIN,    LOWEST},
        {"too long for 64 bits",          frequency_of(-1, 10000000),  INT_MIN,    LOWEST},
        {"just short enough for 64 bits", frequency_of(1, 9000000),    INT_MIN,    9000000000000000000},
        {"2^31 is one too long",          BIG_FREQUENCY(1) / 2147483648,  INT_MIN, 2147483648},
        {"-2^31 is not",                  BIG_FREQUENCY(1) / -2147483648, INT_MIN, -2147483648},
        {"2^63 is one too long",          BIG_FREQUENCY(1) / LOWEST * -1, INT_MIN, LOWEST},
        {"-2^63 is not",                  BIG_FREQUENCY(1) / LOWEST,      INT_MIN, LOWEST},
        {"not a number",                  BIG_FREQUENCY(0) * 0,        INT_MIN,    LOWEST},
    };
    // clang-format on
    for (auto const& row : rows) {
        SCOPED_TRACE(words(std::string(row.why)) + " of "
                     + testing::PrintToString(row.frequency.get_value()));
        BIG_FREQUENCY frequency = row.frequency;
        int period = 77;
        long long long_period = 77;
        frequency.compute_period(&period);
        frequency.compute_period(&long_period);
        EXPECT_EQ(period, row.period);
        EXPECT_EQ(long_period, row.long_period);
        EXPECT_TRUE(is(frequency.get_value(), row.frequency.get_value()));
    }
}

TEST_F(BigFrequency, NoneLeavesThePeriodAsItWas) {
    for (BIG_FREQUENCY none : {BIG_FREQUENCY(), BIG_FREQUENCY(-2147483647), BIG_FREQUENCY(1000) * 0,
                               BIG_FREQUENCY(-1000) * 0 /* -0.0 */}) {
        int period = 77;
        long long long_period = 77;
        none.compute_period(&period);
        none.compute_period(&long_period);
        EXPECT_EQ(period, 77);
        EXPECT_EQ(long_period, 77);
    }
}

TEST_F(BigFrequency, IsMultipliedAndDividedInDouble) {
    BIG_FREQUENCY const f(1000);
    EXPECT_TRUE(is((f * 2).get_value(), 2e9));
    EXPECT_TRUE(is((f / 4).get_value(), 2.5e8));
    EXPECT_TRUE(is((f * -1).get_value(), -1e9));
    EXPECT_TRUE(is((f * 0).get_value(), 0.0));
    EXPECT_TRUE(is((f * HIGHEST).get_value(), 9223372036854775808.0 * 1e9));
    EXPECT_TRUE(is((f / LOWEST).get_value(), 1e9 / -9223372036854775808.0));
    EXPECT_TRUE(is((f / 0).get_value(), INF));
    EXPECT_TRUE(is((f * -1 / 0).get_value(), -INF));
    EXPECT_TRUE(is((BIG_FREQUENCY() / 0).get_value(), NOT_A_NUMBER));
    EXPECT_TRUE(is((BIG_FREQUENCY(0) * 0).get_value(), NOT_A_NUMBER));
    EXPECT_TRUE(is(f.get_value(), 1e9));
}

TEST_F(BigFrequency, EveryPeriodComesBack) {
    constexpr unsigned int seed = 20601;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(1000000, 40000); ++i) {
        int const period = static_cast<int>(samples.count());
        if (period == 0 || period == -2147483647)
            continue;
        BIG_FREQUENCY frequency(period);
        ASSERT_TRUE(is(frequency.get_value(), 1e12 / period))
            << period << ", case " << i << " of seed " << seed;
        int back = 0;
        long long long_back = 0;
        frequency.compute_period(&back);
        frequency.compute_period(&long_back);
        // the quotient of the quotient, cut: it may be one below the period
        double const quotient = 1e12 / (1e12 / period);
        ASSERT_EQ(back, static_cast<int>(quotient)) << period << ", seed " << seed;
        ASSERT_EQ(long_back, static_cast<long long>(quotient)) << period << ", seed " << seed;
        ASSERT_LE(std::abs(static_cast<long long>(period) - long_back), 1) << period;
    }
}

TEST_F(BigFrequency, ScalesAsDoublesDo) {
    constexpr unsigned int seed = 20602;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(1000000, 40000); ++i) {
        BIG_FREQUENCY const frequency(static_cast<int>(samples.count()));
        double const hertz = frequency.get_value();
        long long const number = samples.count();
        ASSERT_TRUE(is((frequency * number).get_value(), static_cast<double>(number) * hertz))
            << hertz << " by " << number << ", case " << i << " of seed " << seed;
        ASSERT_TRUE(is((frequency / number).get_value(), hertz / static_cast<double>(number)))
            << hertz << " by " << number << ", case " << i << " of seed " << seed;
    }
}

} // namespace
