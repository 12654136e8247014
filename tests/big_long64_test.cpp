// Signed 64-bit integers as text.

#include "recording_platform.h"

#include "big_sys.h"

#include <climits>
#include <cstdio>
#include <random>
#include <string>

namespace {

#ifdef NDEBUG
constexpr int FEWER = 1;
#else
constexpr int FEWER = 20; // random operands for a build that is slow
#endif

using NUMBER = long long;

std::string printf_text(NUMBER value) {
    char text[24];
    std::snprintf(text, sizeof text, "%lli", value);
    return text;
}

// ------------------------------------------------------------------------------------------------
// Writing
// ------------------------------------------------------------------------------------------------

/// Both forms, the one that writes into a string over contents of several lengths.
void expect_text(NUMBER value, std::string const& text) {
    EXPECT_EQ(big_long64_to_string(value), text);
    for (std::string const& old : {std::string(), std::string("old"), std::string(100, '9')}) {
        std::string out = old;
        EXPECT_EQ(big_long64_to_string(value, &out), &out);
        EXPECT_EQ(out, text) << "over " << old.size() << " characters";
    }
}

TEST(BigLong64, IsWrittenAsPrintfWritesIt) {
    expect_text(0, "0");
    expect_text(7, "7");
    expect_text(-7, "-7");
    expect_text(LLONG_MAX, "9223372036854775807");
    expect_text(LLONG_MIN, "-9223372036854775808");
}

TEST(BigLong64, IsWrittenWithItsDigitsAtEveryLength) {
    NUMBER power = 1;
    for (int digits = 1; digits <= 18; ++digits, power *= 10) {
        for (NUMBER const value : {power - 1, power, power + 1}) {
            expect_text(value, printf_text(value));
            expect_text(-value, printf_text(-value));
        }
    }
}

TEST(BigLong64, IsWrittenRightAtRandom) {
    constexpr unsigned int seed = 64;
    std::mt19937_64 random(seed);
    std::string out;
    for (int round = 0; round < 1000000 / FEWER; ++round) {
        NUMBER const value = static_cast<NUMBER>(random()) >> random() % 64;
        std::string const text = printf_text(value);
        ASSERT_EQ(*big_long64_to_string(value, &out), text)
            << "seed " << seed << ", round " << round;
        ASSERT_EQ(big_long64_to_string(value), text);
    }
}

// ------------------------------------------------------------------------------------------------
// Reading
// ------------------------------------------------------------------------------------------------

struct CASE {
    char const* why;
    char const* text;
    NUMBER value;
};

// clang-format off
CASE const CASES[] = {
    // why                                    text                      value
    {"nothing",                               "",                       0},
    {"a minus sign alone",                    "-",                      0},
    {"no sign",                               "42",                     42},
    {"a sign in front",                       "-42",                    -42},
    {"a sign behind",                         "42-",                    -42},
    {"a sign between",                        "4-2",                    -42},
    {"two signs count as one",                "--42",                   -42},
    {"a sign and a blank",                    "- 5",                    -5},
    {"a sign behind what is skipped",         "(x = -12,345,678)",      -12345678},
    {"a plus sign",                           "+42",                    42},
    {"an exponent's letter is skipped",       "1e3",                    13},
    {"an exponent's sign is the number's",    "1e-3",                   -13},

    {"the largest",                           "9223372036854775807",    LLONG_MAX},
    {"the smallest",                          "-9223372036854775808",   LLONG_MIN},

    // From 2^63 on the number is what the same bits mean with a sign.
    {"2^63",                                  "9223372036854775808",    LLONG_MIN},
    {"2^64 - 1",                              "18446744073709551615",   -1},
    {"-(2^64 - 1)",                           "-18446744073709551615",  1},
    {"2^64 + 3 wraps",                        "18446744073709551619",   3},
    {"-(2^64 + 3) wraps",                     "-18446744073709551619",  -3},
};
// clang-format on

TEST(BigLong64, IsReadFromTheDigitsOfATextAndAnyMinusSign) {
    recording::clear();
    for (CASE const& c : CASES) {
        SCOPED_TRACE(std::string(c.why) + ": \"" + c.text + '"');
        EXPECT_EQ(big_long64_from_string(c.text), c.value);
    }
    EXPECT_TRUE(recording::calls().empty());
}

TEST(BigLong64, IsNotReadFromTooManyDigits) {
    for (char const* const text : {"20000000000000000000", "-20000000000000000000",
                                   "000000000000000000000", "-000000000000000000001"}) {
        SCOPED_TRACE(text);
        EXPECT_INTERNAL_ERROR(big_long64_from_string(text), "big number over flow", "2",
                              "big/big_ulong64");
    }
}

TEST(BigLong64, ReadsWhatItWrites) {
    constexpr unsigned int seed = 66;
    std::mt19937_64 random(seed);
    for (int round = 0; round < 1000000 / FEWER; ++round) {
        NUMBER const value = static_cast<NUMBER>(random()) >> random() % 64;
        ASSERT_EQ(big_long64_from_string(big_long64_to_string(value)), value)
            << "seed " << seed << ", round " << round;
    }
}

} // namespace
