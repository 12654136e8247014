// Laws that bind the reading and the printing of times together, and both to exact arithmetic.

#include "time_library.h"
#include "time_samples.h"

#include <algorithm>

#include <boost/multiprecision/cpp_int.hpp>

namespace {

using EXACT = boost::multiprecision::cpp_int;
using REPORTS = std::vector<recording::CALL>;

REPORTS const SILENCE;

class BigTimeRoundtrip : public testing::Test {
protected:
    BigTimeRoundtrip() { recording::clear(); }
};

bool is_time(int unit) {
    return BIG_TIME::get_unit_category(unit_of(unit)) == BIG_TIME::TIME_CATEGORY;
}

/// A count that a text can give in the unit: not the lowest one, and no negative frequency or rate.
long long writable_count(TIME_SAMPLES& samples, int unit) {
    long long const count = samples.count();
    if (count == LOWEST)
        return HIGHEST;
    return count < 0 && !is_time(unit) ? -count : count;
}

EXACT power_of_ten(int exponent) {
    EXACT power = 1;
    for (int i = 0; i < exponent; ++i)
        power *= 10;
    return power;
}

// ------------------------------------------------------------------------------------------------
// Printed, then read
// ------------------------------------------------------------------------------------------------

TEST_F(BigTimeRoundtrip, TheRawTextReadsBackAsTheSameTime) {
    constexpr unsigned int seed = 25001;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(1000000, 25000); ++i) {
        int const unit = samples.unit();
        long long const count = writable_count(samples, unit);
        recording::clear();
        std::string const text = time_of(count, unit).to_raw_string();
        BIG_TIME read;
        ASSERT_TRUE(read.set_time(text, true)) << text;
        ASSERT_EQ(held_by(read), (HELD{count, unit}))
            << in_quotes(text) << ", case " << i << " of seed " << seed;
        ASSERT_EQ(recording::reports(), SILENCE) << in_quotes(text);
        ASSERT_EQ(read.to_raw_string(), text);
    }
}

TEST_F(BigTimeRoundtrip, ATimePrintedInAnyTimeUnitReadsBackAsTheSameCount) {
    constexpr unsigned int seed = 25002;
    TIME_SAMPLES samples(seed);
    int const time_units[] = {0, 1, 2, 3, 4, 5, 6, 11};
    for (int i = 0; i < cases(1000000, 25000); ++i) {
        int const own_unit = time_units[samples.below(8)];
        int const unit = time_units[samples.below(8)];
        long long const count = writable_count(samples, own_unit);
        bool const trim = samples.once_in(2);
        recording::clear();
        std::string const text = time_of(count, own_unit).to_string(unit_of(unit), 12, trim);
        BIG_TIME read;
        ASSERT_TRUE(read.set_time(text, true)) << text;
        ASSERT_EQ(held_by(read), (HELD{count, unit}))
            << in_quotes(text) << ", case " << i << " of seed " << seed;
        ASSERT_EQ(recording::reports(), SILENCE) << in_quotes(text);
    }
}

TEST_F(BigTimeRoundtrip, AFrequencyOrRatePrintedInItsKindReadsBackAsTheSameCount) {
    constexpr unsigned int seed = 25003;
    TIME_SAMPLES samples(seed);
    int const frequencies[] = {7, 8, 9, 10};
    int const rates[] = {12, 13, 14};
    for (int i = 0; i < cases(1000000, 15000); ++i) {
        bool const rate = samples.once_in(2);
        int const own_unit = rate ? rates[samples.below(3)] : frequencies[samples.below(4)];
        int const unit = rate ? rates[samples.below(3)] : frequencies[samples.below(4)];
        long long const count = writable_count(samples, own_unit);
        recording::clear();
        std::string const text = time_of(count, own_unit).to_string(unit_of(unit), 9, false);
        BIG_TIME read;
        ASSERT_TRUE(read.set_time(text, true)) << text;
        ASSERT_EQ(held_by(read), (HELD{count, unit}))
            << in_quotes(text) << ", case " << i << " of seed " << seed;
        ASSERT_EQ(recording::reports(), SILENCE) << in_quotes(text);
    }
}

TEST_F(BigTimeRoundtrip, ATimeInTheUnitOfItsMagnitudeReadsBackAsTheSameCount) {
    constexpr unsigned int seed = 25004;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(1000000, 15000); ++i) {
        int const unit = samples.unit();
        long long const count = writable_count(samples, unit);
        std::string const text = time_of(count, unit).to_string(12);
        BIG_TIME read;
        ASSERT_TRUE(read.set_time(text, false)) << text;
        ASSERT_EQ(read.get_time_value(), count)
            << in_quotes(text) << ", case " << i << " of seed " << seed;
    }
}

// The lowest count prints, but its magnitude is above the largest that a text can give.
TEST_F(BigTimeRoundtrip, TheLowestCountPrintsAndIsNotRead) {
    for (int const unit : {0, 1, 2, 3, 4, 5, 6, 11}) {
        BIG_TIME const lowest = time_of(LOWEST, unit);
        BIG_TIME read(5, BIG_TIME::UNIT_NS);
        EXPECT_FALSE(read.set_time(lowest.to_raw_string(), false)) << lowest.to_raw_string();
        EXPECT_EQ(held_by(read), HELD());
    }
}

TEST_F(BigTimeRoundtrip, ANumberScaledAndANumberReadAreTheSameTime) {
    constexpr unsigned int seed = 25005;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(1000000, 15000); ++i) {
        int const unit = samples.unit();
        int const digits = BIG_TIME::s_fraction_digits[unit];
        long long value = writable_count(samples, unit);
        if (digits > 0)
            value /= BIG_TIME::s_power_10_table[digits];
        if (value == 0)
            continue;
        BIG_TIME const scaled(value, unit_of(unit));
        BIG_TIME const read(std::to_string(value), unit_of(unit), false);
        ASSERT_EQ(held_by(scaled), held_by(read))
            << value << " in unit " << unit << ", case " << i << " of seed " << seed;
    }
}

// ------------------------------------------------------------------------------------------------
// Read, against exact arithmetic on what the digits mean
// ------------------------------------------------------------------------------------------------

/// Decimal digits as a number; none are 0.
EXACT number_of(std::string const& digits) {
    EXACT number = 0;
    for (char const c : digits)
        number = number * 10 + (c - '0');
    return number;
}

TEST_F(BigTimeRoundtrip, ReadsWhatTheDigitsMeanCutTowardZero) {
    constexpr unsigned int seed = 25006;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(150000); ++i) {
        std::string const sign = samples.once_in(2) ? "" : samples.once_in(3) ? "+" : "-";
        std::string const whole = samples.digits(samples.once_in(2) ? 19 : 8);
        std::string const places = samples.digits(samples.once_in(4) ? 20 : 6);
        bool const point = !places.empty() || samples.once_in(4);
        int const unit = samples.unit();
        std::string text = sign + whole;
        if (point)
            text += '.';
        text += places;
        if (whole.empty() && places.empty())
            continue;

        // a number of 10^-scale, but for the zeros after a point that stands first
        std::string meant = places;
        if (sign.empty() && whole.empty())
            meant.erase(0, meant.find_first_not_of('0'));
        int const scale = static_cast<int>(meant.size());
        bool const has_digits = !whole.empty() || !meant.empty();
        EXACT const number = number_of(whole + meant);
        int const resolution = BIG_TIME::s_fraction_digits[unit];
        EXACT const scaled = number * power_of_ten(resolution < 0 ? 0 : resolution);
        EXACT const divisor = power_of_ten(scale + (resolution < 0 ? -resolution : 0));
        EXACT const count = scaled / divisor;
        bool const lost = count * divisor != scaled;
        bool const too_large = count > HIGHEST;
        bool const refused_sign = sign == "-" && count != 0 && !is_time(unit);
        bool const legal = (has_digits || unit == BIG_TIME::UNIT_FS) && !too_large && !refused_sign;

        recording::clear();
        long long value = 77;
        int const status = BIG_TIME::string_to_big_int(text, unit_of(unit), value, true);
        std::string const input = in_quotes(text) + " in unit " + std::to_string(unit) + ", case "
                                  + std::to_string(i) + " of seed " + std::to_string(seed);
        ASSERT_EQ(status, legal ? 0 : 1) << input;
        if (legal)
            ASSERT_EQ(value, static_cast<long long>(sign == "-" ? EXACT(-count) : count)) << input;
        else
            ASSERT_EQ(value, 77) << input;
        ASSERT_EQ(recording::calls_of("err_post_enumerated_msg").size(), lost ? 1u : 0u) << input;
    }
}

// ------------------------------------------------------------------------------------------------
// Printed, against exact arithmetic
// ------------------------------------------------------------------------------------------------

/// |count| / 10^resolution, rounded half up to some places.
std::string printed(long long count, int resolution, unsigned int precision, bool trim) {
    EXACT const magnitude = count < 0 ? EXACT(-EXACT(count)) : EXACT(count);
    std::string const sign = count < 0 ? "-" : "";
    if (resolution <= 0)
        return sign + magnitude.str() + std::string(static_cast<std::size_t>(-resolution), '0');
    int const places = std::min(static_cast<int>(precision), resolution);
    EXACT const unit = power_of_ten(resolution - places);
    EXACT const rounded = (2 * magnitude + unit) / (2 * unit); // no digit goes when unit is 1
    if (places == 0)
        return sign + rounded.str();
    EXACT const whole = rounded / power_of_ten(places);
    EXACT const rest = rounded % power_of_ten(places);
    std::string fraction = rest.str();
    fraction.insert(0, static_cast<std::size_t>(places) - fraction.size(), '0');
    while (trim && fraction.size() > 1 && fraction.back() == '0')
        fraction.pop_back();
    return sign + whole.str() + '.' + fraction;
}

TEST_F(BigTimeRoundtrip, PrintsTheExactQuotientRoundedHalfUp) {
    constexpr unsigned int seed = 25007;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(1000000, 15000); ++i) {
        HELD const held = {samples.count(), samples.unit()};
        int const unit = samples.unit();
        unsigned short const precision = samples.precision();
        bool const trim = samples.once_in(2);
        bool const inverted = (held.unit >= 7 && held.unit <= 10) != (unit >= 7 && unit <= 10);
        int const resolution = BIG_TIME::s_fraction_digits[unit];
        std::string expected = "INF";
        if (!inverted)
            expected = printed(held.count, resolution, precision, trim);
        else if (held.count != 0)
            expected = printed(1000000000000 / held.count, resolution, precision, trim);
        ASSERT_EQ(
            time_of(held.count, held.unit).to_string_without_unit(unit_of(unit), precision, trim),
            expected)
            << testing::PrintToString(held) << " in unit " << unit << " to " << precision
            << (trim ? " trimmed" : "") << ", case " << i << " of seed " << seed;
    }
}

TEST_F(BigTimeRoundtrip, APreviewIsWhatReadingKeepsWhereTheTextIsPlain) {
    constexpr unsigned int seed = 25008;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(150000); ++i) {
        int unit = samples.unit();
        if (unit == BIG_TIME::UNIT_NONE || unit == BIG_TIME::UNIT_FS)
            unit = BIG_TIME::UNIT_NS;
        std::string text = std::to_string(samples.below(1000000));
        text += '.';
        text += samples.digits(16);
        std::string const name = BIG_TIME::s_unit_strings[unit];
        std::string stored = text;
        recording::clear();
        ASSERT_TRUE(BIG_TIME::format_time_string(stored, unit_of(unit), true));
        bool const lost = !recording::reports().empty();
        std::string preview;
        ASSERT_EQ(BIG_TIME::will_value_be_truncated((text + name).c_str(), preview), lost)
            << in_quotes(text + name) << ", case " << i << " of seed " << seed;
        if (!lost)
            continue;
        // a unit without places keeps its point in the preview
        std::string const plain =
            BIG_TIME::s_fraction_digits[unit] == 0 ? stored + ". " + name : stored + " " + name;
        ASSERT_EQ(preview, plain) << in_quotes(text + name) << ", case " << i << " of seed "
                                  << seed;
    }
}

} // namespace
