// The decimal text of BIG_ULONG128 and the powers of ten behind it.

#include "printing.h"
#include "recording_platform.h"
#include "ulong128_inspector.h"

#include "big_sys.h"

#include <iterator>
#include <random>
#include <string>

namespace {

__extension__ using WIDE = unsigned __int128;

#ifdef NDEBUG
constexpr int FEWER = 1;
#else
constexpr int FEWER = 20; // random operands for a build that is slow
#endif

BIG_ULONG128 value_of(WIDE number) {
    unsigned int const cells[] = {
        static_cast<unsigned int>(number), static_cast<unsigned int>(number >> 32),
        static_cast<unsigned int>(number >> 64), static_cast<unsigned int>(number >> 96)};
    int length = 4;
    while (length > 1 && cells[length - 1] == 0)
        --length;
    BIG_ULONG128 value;
    BIG_ULONG128_INSPECTOR::set(value, length, {cells[0], cells[1], cells[2], cells[3]});
    return value;
}

WIDE power_of_ten(int exponent) {
    WIDE power = 1;
    for (int i = 0; i < exponent; ++i)
        power *= 10;
    return power;
}

/// The text by the rule: digit by digit from the highest power of ten down, inserted in front of
/// what the string held, which is cut off at the end.
std::string text_by_the_rule(WIDE number, std::string out) {
    std::size_t position = 0;
    bool started = false;
    for (int exponent = 38; exponent >= 0; --exponent) {
        WIDE const power = power_of_ten(exponent);
        WIDE const digit = number / power;
        out.insert(position, 1, static_cast<char>('0' + static_cast<int>(digit)));
        number -= digit * power;
        started = started || digit != 0;
        position += started ? 1 : 0;
    }
    out.resize(position);
    return out;
}

struct CASE {
    char const* why;
    WIDE number;
    char const* text;
};

// clang-format off
CASE const CASES[] = {
    // why                                number                              text
    {"zero has no digit; callers add it", 0,                                  ""},
    {"one",                               1,                                  "1"},
    {"ten",                               10,                                 "10"},
    {"the largest word",                  ~0ull,                              "18446744073709551615"},
    {"2^64",                              WIDE(1) << 64,                      "18446744073709551616"},
    {"10^19, the first group's end",      power_of_ten(19),                   "10000000000000000000"},
    {"one less",                          power_of_ten(19) - 1,               "9999999999999999999"},
    {"zeros in the last group",           power_of_ten(19) * 7 + 5,           "70000000000000000005"},
    {"an upper part of 20 digits",        (WIDE(1) << 127),                   "170141183460469231731687303715884105728"},
    {"an upper part above 2^64",          power_of_ten(19) * (WIDE(1) << 64), "184467440737095516160000000000000000000"},
    {"10^38",                             power_of_ten(38),                   "100000000000000000000000000000000000000"},
    {"one less",                          power_of_ten(38) - 1,               "99999999999999999999999999999999999999"},
    {"2^128 - 1",                         ~WIDE(0),                           "340282366920938463463374607431768211455"},
};
// clang-format on

TEST(BigUlong128Text, IsTheDecimalDigits) {
    for (CASE const& c : CASES) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(value_of(c.number).to_string(), c.text);
        EXPECT_EQ(text_by_the_rule(c.number, "old"), c.text);
    }
}

TEST(BigUlong128Text, ReplacesWhatTheStringHeld) {
    for (CASE const& c : CASES) {
        for (std::string const& old : {std::string(), std::string("7"), std::string(200, '9')}) {
            SCOPED_TRACE(std::string(c.why) + " over \"" + old + "\"");
            std::string text = old;
            EXPECT_EQ(value_of(c.number).to_string(&text), &text);
            EXPECT_EQ(text, c.text);
        }
    }
}

TEST(BigUlong128Text, OfAnErasedValueIsEmpty) {
    BIG_ULONG128 value = value_of(power_of_ten(30));
    value.erase();
    std::string text = "old";
    EXPECT_EQ(*value.to_string(&text), "");
    EXPECT_EQ(value.to_string(), "");
}

TEST(BigUlong128Text, LeavesOutTheCellsAboveTheLength) {
    BIG_ULONG128 value;
    BIG_ULONG128_INSPECTOR::set(value, 1, {5, 6, 7, 8});
    EXPECT_EQ(value.to_string(), "5");
    BIG_ULONG128_INSPECTOR::set(value, 3, {0, 0, 1, 8});
    EXPECT_EQ(value.to_string(), "18446744073709551616");
}

TEST(BigUlong128Text, ReportsNothing) {
    recording::clear();
    for (CASE const& c : CASES)
        value_of(c.number).to_string();
    EXPECT_TRUE(recording::calls().empty());
}

TEST(BigUlong128Text, IsThatOfTheRule) {
    constexpr unsigned int seed = 38;
    std::mt19937_64 random(seed);
    std::string text;
    for (int round = 0; round < 50000 / FEWER; ++round) {
        WIDE const all = WIDE(random()) << 64 | random();
        WIDE const number = round % 4 == 0
                                ? power_of_ten(static_cast<int>(random() % 39)) + random() % 3 - 1
                                : all >> random() % 128;
        value_of(number).to_string(&text);
        ASSERT_EQ(text, text_by_the_rule(number, "")) << "seed " << seed << ", round " << round;
    }
}

TEST(BigUlong128Text, ReadsBackAsTheValue) {
    constexpr unsigned int seed = 39;
    std::mt19937_64 random(seed);
    std::string text;
    for (int round = 0; round < 1000000 / FEWER; ++round) {
        WIDE const number = (WIDE(random()) << 64 | random()) >> random() % 128;
        value_of(number).to_string(&text);
        WIDE read = 0;
        for (char const digit : text)
            read = read * 10 + static_cast<unsigned int>(digit - '0');
        ASSERT_TRUE(read == number && text.find_first_not_of("0123456789") == std::string::npos
                    && text.front() != '0' && text.size() <= 39)
            << "seed " << seed << ", round " << round << ": \"" << text << '"';
    }
}

static_assert(sizeof(BIG_ULONG128_DECIMAL_TABLE) == 800, "40 values and nothing else");

TEST(BigUlong128DecimalTable, HoldsThePowersOfTen) {
    WIDE power = 1;
    std::string text = "1";
    for (int k = 0; k <= 38; ++k, power *= 10, text += '0') {
        EXPECT_TRUE(BIG_ULONG128::s_table.m_powers[k] == value_of(power)) << "10^" << k;
        EXPECT_EQ(BIG_ULONG128::s_table.m_powers[k].to_string(), text);
    }
}

TEST(BigUlong128DecimalTable, EndsWithAZeroThatIsNeverRead) {
    EXPECT_EQ(std::size(BIG_ULONG128::s_table.m_powers), 40u);
    EXPECT_TRUE(BIG_ULONG128::s_table.m_powers[39] == BIG_ULONG128());
}

TEST(BigUlong128DecimalTable, CanBeBuiltAgain) {
    BIG_ULONG128_DECIMAL_TABLE const table;
    for (std::size_t k = 0; k < std::size(table.m_powers); ++k)
        EXPECT_TRUE(table.m_powers[k] == BIG_ULONG128::s_table.m_powers[k]) << "entry " << k;
}

} // namespace
