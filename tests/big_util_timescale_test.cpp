// Delays re-expressed in another timescale.

#include "comma_locale.h"
#include "printing.h"
#include "recording_platform.h"

#include "big_sys.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <random>
#include <vector>

namespace {

constexpr int LONGEST_DELAY = std::numeric_limits<int>::max();
constexpr long long LONGEST_TIME = std::numeric_limits<long long>::max();

#ifdef NDEBUG
constexpr int ROUNDS = 200000;
#else
constexpr int ROUNDS = 50000;
#endif

BIG_TIME ps(long long count) {
    return BIG_TIME(count, BIG_TIME::UNIT_PS);
}

/// A frequency whose period is too long for its unit, so that 0 Hz are stored.
BIG_TIME zero_hertz() {
    BIG_TIME frequency(1, BIG_TIME::UNIT_HZ);
    frequency.set_storage_number(2000000000000);
    return frequency;
}

struct CASE {
    const char* why;
    int delay;
    BIG_TIME default_timescale;
    BIG_TIME current_timescale;
    const char* text;
};

std::vector<CASE> const& cases() {
    static std::vector<CASE> const all = {
        // An integer carries no point.
        {"1 ns in ps", 5, ps(1000), ps(1), "5000"},
        {"zeros before the point stay", 1, ps(1000000), ps(1), "1000000"},
        {"units of both", 2, ps(1000), ps(400), "5"},
        {"1 ns in 10 ps", 5, BIG_TIME(1, BIG_TIME::UNIT_NS), BIG_TIME(10, BIG_TIME::UNIT_PS),
         "500"},
        {"a timescale of 0", 7, ps(0), ps(1), "0"},
        // At most nine decimal places, without trailing zeros.
        {"1 ps in ns", 3, ps(1), ps(1000), "0.003"},
        {"a third", 1, ps(1), ps(3), "0.333333333"},
        {"two thirds, rounded", 2, ps(1), ps(3), "0.666666667"},
        {"one and a half", 3, ps(1), ps(2), "1.5"},
        {"1 ps in s", 12, ps(1), ps(1000000000000), "0"},
        {"below half of the last place", 499, ps(1), ps(1000000000000), "0"},
        {"half of the last place and more", 501, ps(1), ps(1000000000000), "0.000000001"},
        {"rounded up to an integer", LONGEST_DELAY, ps(1), ps(1LL << 31), "1"},
        // The quotient comes first, the product second: 436666666666.666687012 the other way round.
        {"the order decides the last digits", 262, ps(5000000000), ps(3), "436666666666.666625977"},
        // A frequency contributes its period, a data rate its number.
        {"1 GHz", 3, BIG_TIME(1, BIG_TIME::UNIT_GHZ), ps(1), "3000"},
        {"in 1 GHz", 3, ps(1), BIG_TIME(1, BIG_TIME::UNIT_GHZ), "0.003"},
        {"3 MHz, whose period is cut", 1, BIG_TIME(3, BIG_TIME::UNIT_MHZ), ps(1), "333333"},
        {"2 kbps", 1, BIG_TIME(2000, BIG_TIME::UNIT_BPS), ps(1), "2000"},
        {"plain counts", 3, BIG_TIME(4, BIG_TIME::UNIT_NONE), BIG_TIME(2, BIG_TIME::UNIT_NONE),
         "6"},
        {"a frequency above 1 THz as default has no period", 9, BIG_TIME(1001, BIG_TIME::UNIT_GHZ),
         ps(1), "0"},
        {"0 Hz as default", 9, zero_hertz(), ps(1), "0"},
        // The ends of the range.
        {"the largest result", LONGEST_DELAY, ps(LONGEST_TIME), ps(1),
         "19807040619342712361531211776"},
        {"the smallest result", 1, ps(1), ps(LONGEST_TIME), "0"},
    };
    return all;
}

TEST(BigUtilTimescale, DelayIsWrittenInTheCurrentTimescale) {
    for (const CASE& c : cases()) {
        SCOPED_TRACE(c.why);
        recording::clear();
        EXPECT_EQ(big_delay_in_current_timescale(c.delay, c.default_timescale, c.current_timescale),
                  c.text);
        EXPECT_EQ(recording::reports(), std::vector<recording::CALL>());
    }
}

TEST(BigUtilTimescale, NoProcessLocaleChangesTheText) {
    COMMA_LOCALE const locale;
    if (!locale.available())
        GTEST_SKIP() << "the build made no such locale";
    for (const CASE& c : cases()) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(big_delay_in_current_timescale(c.delay, c.default_timescale, c.current_timescale),
                  c.text);
    }
}

TEST(BigUtilTimescale, ChecksComeInThisOrder) {
    struct ERROR_CASE {
        const char* why;
        int delay;
        BIG_TIME default_timescale;
        BIG_TIME current_timescale;
        const char* text;
    };
    const ERROR_CASE errors[] = {
        {"all four", 0, ps(-1), ps(-1), "!default_timescale.is_negative()"},
        {"the last three", 0, ps(1), ps(-1), "!current_timescale.is_negative()"},
        {"the last two", 0, ps(1), ps(0), "delay > 0"},
        {"a negative delay", -5, ps(1), ps(1), "delay > 0"},
        {"the last", 1, ps(1), ps(0), "cur_ts != 0"},
        {"no timescale at all", 1, BIG_TIME(), BIG_TIME(), "cur_ts != 0"},
        {"0 Hz", 1, ps(1), zero_hertz(), "cur_ts != 0"},
        {"a frequency above 1 THz has no period", 1, ps(1), BIG_TIME(1001, BIG_TIME::UNIT_GHZ),
         "cur_ts != 0"},
    };
    for (const ERROR_CASE& c : errors) {
        SCOPED_TRACE(c.why);
        EXPECT_INTERNAL_ERROR(
            big_delay_in_current_timescale(c.delay, c.default_timescale, c.current_timescale),
            c.text, "2", "big/big_util");
    }
}

/// The rule written out: "%.9f" in the "C" locale, in which this program runs, then the zeros.
std::string slow_delay(int delay, long long default_ts, long long current_ts) {
    double const result = static_cast<double>(delay) / static_cast<double>(current_ts)
                          * static_cast<double>(default_ts);
    char text[1024];
    std::snprintf(text, sizeof text, "%.9f", result);
    std::string out = text;
    std::size_t const point = out.find('.');
    std::size_t last = point + 9;
    while (last > point && out[last] == '0')
        --last;
    out.erase(last == point ? point : last + 1);
    return out;
}

TEST(BigUtilTimescale, AgreesWithPrintfOnRandomOperands) {
    constexpr unsigned long long seed = 20260107;
    std::mt19937_64 random(seed);
    for (int round = 0; round < ROUNDS; ++round) {
        // Numbers of every length, and those that make short results.
        auto const number = [&random] {
            static long long const round_numbers[] = {1, 10, 100, 1000, 1000000, 1000000000, 4, 8};
            return random() % 3 == 0 ? round_numbers[random() % 8]
                                     : static_cast<long long>(random() >> (1 + random() % 63));
        };
        int const delay = 1 + static_cast<int>((random() >> 33) >> (random() % 31)) % LONGEST_DELAY;
        long long const default_ts = number();
        long long const current_ts = std::max(1LL, number());
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", delay " << delay << " x "
                                        << default_ts << " / " << current_ts);
        ASSERT_EQ(big_delay_in_current_timescale(delay, ps(default_ts), ps(current_ts)),
                  slow_delay(delay, default_ts, current_ts));
    }
}

} // namespace
