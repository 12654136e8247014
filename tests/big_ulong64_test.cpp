// Unsigned 64-bit integers as text.

#include "recording_platform.h"

#include "big_sys.h"

#include <cstdio>
#include <random>
#include <string>

namespace {

#ifdef NDEBUG
constexpr int FEWER = 1;
#else
constexpr int FEWER = 20; // random operands for a build that is slow
#endif

constexpr char PATH[] = "big/big_ulong64";
constexpr char TOO_BIG[] = "big number over flow";

using NUMBER = unsigned long long;

std::string printf_text(NUMBER value) {
    char text[24];
    std::snprintf(text, sizeof text, "%llu", value);
    return text;
}

// ------------------------------------------------------------------------------------------------
// Writing
// ------------------------------------------------------------------------------------------------

/// Both forms, the one that writes into a string over contents of several lengths.
void expect_text(NUMBER value, std::string const& text) {
    EXPECT_EQ(big_ulong64_to_string(value), text);
    for (std::string const& old : {std::string(), std::string("old"), std::string(100, '9')}) {
        std::string out = old;
        EXPECT_EQ(big_ulong64_to_string(value, &out), &out);
        EXPECT_EQ(out, text) << "over " << old.size() << " characters";
    }
}

TEST(BigUlong64, IsWrittenAsPrintfWritesIt) {
    expect_text(0, "0");
    expect_text(7, "7");
    expect_text(1234, "1234");
    expect_text(18446744073709551615ull, "18446744073709551615");
}

TEST(BigUlong64, IsWrittenWithItsDigitsAtEveryLength) {
    NUMBER power = 1;
    std::string one_and_zeros = "1";
    std::string nines;
    for (int digits = 1; digits <= 20; ++digits, one_and_zeros += '0', nines += '9', power *= 10) {
        SCOPED_TRACE(digits);
        expect_text(power, one_and_zeros);
        expect_text(power - 1, digits == 1 ? "0" : nines);
        expect_text(power + 1, printf_text(power + 1));
    }
}

TEST(BigUlong64, IsWrittenRightAtRandom) {
    constexpr unsigned int seed = 64;
    std::mt19937_64 random(seed);
    std::string out;
    for (int round = 0; round < 1000000 / FEWER; ++round) {
        NUMBER const value = random() >> random() % 64;
        std::string const text = printf_text(value);
        ASSERT_EQ(*big_ulong64_to_string(value, &out), text)
            << "seed " << seed << ", round " << round;
        ASSERT_EQ(big_ulong64_to_string(value), text);
    }
}

TEST(BigUlong64, IsWrittenIntoAStringWithRoomWithoutAnAllocation) {
    std::string out;
    out.reserve(24);
    char const* const place = out.data();
    for (NUMBER const value : {0ull, 123456789012345ull, ~0ull})
        EXPECT_EQ(big_ulong64_to_string(value, &out)->data(), place);
    std::string short_out;
    char const* const short_place = short_out.data();
    for (NUMBER const value : {0ull, 7ull, 999999999999999ull})
        EXPECT_EQ(big_ulong64_to_string(value, &short_out)->data(), short_place);
}

// ------------------------------------------------------------------------------------------------
// Reading
// ------------------------------------------------------------------------------------------------

struct CASE {
    char const* why;
    std::string text;
    NUMBER value;
};

// clang-format off
CASE const CASES[] = {
    // why                                          text                          value
    {"nothing",                                     "",                           0},
    {"no digit",                                    " ",                          0},
    {"no digit in many characters",                 "                         ",  0},
    {"letters",                                     "abc",                        0},
    {"a unit",                                      "ns",                         0},
    {"a digit",                                     "7",                          7},

    {"separators are skipped",                      "1,234",                      1234},
    {"a point is skipped",                          "12.5",                       125},
    {"a minus sign is skipped",                     "-7",                         7},
    {"a plus sign is skipped",                      "+12345678",                  12345678},
    {"an exponent's letter is skipped",             "1e3",                        13},
    {"blanks are skipped",                          "  12 34\t5\n",               12345},
    {"what stands behind is skipped",               "12345678 ns",                12345678},
    {"two signs are skipped",                       "--12345678",                 12345678},
    {"every digit is apart",                        "1a2b3c4d5e6f7g8h9",          123456789},
    {"neighbours of the digits are none",           "1/2:3",                      123},
    {"no byte from 128 on is a digit",              "1\xB2\xB9\xFF" "2",          12},
    {"a zero byte is no digit",                     std::string("1\0" "2", 3),    12},
    {"text in text of eight",                       "1234567x12345678",           123456712345678},

    {"leading zeros are digits",                    "00000000000000000007",       7},
    {"the largest number",                          "18446744073709551615",       18446744073709551615ull},
    {"19 digits at their largest",                  "9999999999999999999",        9999999999999999999ull},
    {"the largest with a sign",                     "+18446744073709551615",      18446744073709551615ull},
    {"the largest, cut in pieces",                  "18,446,744,073,709,551,615", 18446744073709551615ull},

    // The twentieth digit is added without a look at the carry.
    {"2^64 wraps",                                  "18446744073709551616",       0},
    {"2^64 + 3 wraps",                              "18446744073709551619",       3},
    {"so it does in pieces",                        "18,446,744,073,709,551,619", 3},
};
// clang-format on

TEST(BigUlong64, IsReadFromTheDigitsOfAText) {
    recording::clear();
    for (CASE const& c : CASES) {
        SCOPED_TRACE(std::string(c.why) + ": \"" + c.text + '"');
        EXPECT_EQ(big_ulong64_from_string(c.text), c.value);
    }
    EXPECT_TRUE(recording::calls().empty());
}

struct TOO_BIG_CASE {
    char const* why;
    char const* text;
};

// clang-format off
TOO_BIG_CASE const TOO_BIG_CASES[] = {
    // why                          text
    {"20 digits from 2 on",         "20000000000000000000"},
    {"the first that ten times is", "18446744073709551620"},
    {"20 nines",                    "99999999999999999999"},
    {"in pieces",                   "18,446,744,073,709,551,620"},
    {"with a sign",                 "+20000000000000000000"},
    {"21 digits",                   "100000000000000000000"},
    {"21 digits, 20 of them zeros", "000000000000000000001"},
    {"21 zeros",                    "000000000000000000000"},
    {"21 digits, in pieces",        "1 00000 00000 00000 00000"},
    {"many digits",                 "1234567890123456789012345678901234567890"},
};
// clang-format on

TEST(BigUlong64, IsNotReadFromTooManyDigits) {
    for (TOO_BIG_CASE const& c : TOO_BIG_CASES) {
        SCOPED_TRACE(std::string(c.why) + ": \"" + c.text + '"');
        EXPECT_INTERNAL_ERROR(big_ulong64_from_string(c.text), TOO_BIG, "2", PATH);
    }
}

/// The number by the rule, a character at a time.
NUMBER number_by_the_rule(std::string const& text, bool& too_big) {
    NUMBER number = 0;
    int digits = 0;
    too_big = false;
    for (char const c : text) {
        if (c < '0' || c > '9')
            continue;
        ++digits;
        too_big = digits >= 21 || (digits == 20 && number > ~0ull / 10);
        if (too_big)
            return 0;
        number = number * 10 + static_cast<NUMBER>(c - '0');
    }
    return number;
}

TEST(BigUlong64, IsReadByTheRuleFromAnyText) {
    constexpr unsigned int seed = 65;
    std::mt19937_64 random(seed);
    int too_big_seen = 0;
    for (int round = 0; round < 400000 / FEWER; ++round) {
        std::string text(random() % 24, '\0');
        for (char& c : text)
            c = static_cast<char>('0' + random() % 10);
        for (std::size_t others = random() % 3; others > 0 && !text.empty(); --others)
            text[random() % 2 * (random() % text.size())] = static_cast<char>(random());
        if (random() % 2 == 0 && text.size() > 2)
            text.replace(0, 2, "18446744073709551", text.size() % 18);
        bool too_big = false;
        NUMBER const number = number_by_the_rule(text, too_big);
        SCOPED_TRACE("seed " + std::to_string(seed) + ", round " + std::to_string(round) + ": \""
                     + text + '"');
        if (too_big) {
            ++too_big_seen;
            ASSERT_THROW(big_ulong64_from_string(text), recording::INTERNAL_ERROR);
            recording::clear();
        } else {
            ASSERT_EQ(big_ulong64_from_string(text), number);
        }
    }
    EXPECT_GT(too_big_seen, 0);
}

TEST(BigUlong64, ReadsWhatItWrites) {
    constexpr unsigned int seed = 66;
    std::mt19937_64 random(seed);
    for (int round = 0; round < 1000000 / FEWER; ++round) {
        NUMBER const value = random() >> random() % 64;
        ASSERT_EQ(big_ulong64_from_string(big_ulong64_to_string(value)), value)
            << "seed " << seed << ", round " << round;
    }
}

} // namespace
