// String helpers of the standalone platform.

#include "gen_sys.h"

#include "support/comma_locale.h"
#include "support/standalone_error.h"

#include <algorithm>
#include <climits>
#include <random>
#include <vector>

namespace {

int sign(int number) {
    return (number > 0) - (number < 0);
}

/// Every byte but the terminator, each as a text of its own.
std::vector<std::string> every_byte() {
    std::vector<std::string> bytes;
    for (int byte = 1; byte <= 255; ++byte)
        bytes.emplace_back(1, static_cast<char>(byte));
    return bytes;
}

TEST(PlatformGen, TextsAreComparedByteByByte) {
    struct CASE {
        char const* a;
        char const* b;
        int exact;
        int folded;
    };
    CASE const cases[] = {
        // a       b      strcmp  stricmp
        {"", "", 0, 0},           {"", "a", -1, -1},      {"ns", "ns", 0, 0},  {"ns", "NS", 1, 0},
        {"MHz", "mhZ", -1, 0},    {"abc", "abd", -1, -1}, {"abc", "ab", 1, 1}, {"ABC", "ab", -1, 1},
        {"a", "B", 1, -1},        {"_", "A", 1, -1}, // between the cases: after Z, before a
        {"[", "z", -1, -1},                          // next to the letters
        {"@", "`", -1, -1},                          // 32 apart, but no letters
        {"[", "{", -1, -1},                          // 32 apart, but no letters
        {"\x80", "a", 1, 1},                         // bytes count from 0 to 255
        {"\xc4", "\xe4", -1, -1},                    // a letter of Latin-1 is none here
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(std::string(c.a) + " with " + c.b);
        EXPECT_EQ(sign(gen_strcmp(c.a, c.b)), c.exact);
        EXPECT_EQ(sign(gen_strcmp(c.b, c.a)), -c.exact);
        EXPECT_EQ(sign(gen_stricmp(c.a, c.b)), c.folded);
        EXPECT_EQ(sign(gen_stricmp(c.b, c.a)), -c.folded);
    }
}

TEST(PlatformGen, OnlyTheLettersOfAsciiHaveTwoCases) {
    std::string const lower = "abcdefghijklmnopqrstuvwxyz";
    std::string const upper = "ABCDEFGHIJKLMNOPQRSTUVWXYZ";
    for (std::string const& a : every_byte()) {
        std::size_t const letter = lower.find(a);
        std::string raised = a;
        stl_toupper(raised);
        EXPECT_EQ(raised, letter == std::string::npos ? a : upper.substr(letter, 1));
        for (std::string const& b : every_byte()) {
            std::string raised_b = b;
            stl_toupper(raised_b);
            EXPECT_EQ(gen_stricmp(a.c_str(), b.c_str()) == 0, raised == raised_b) << a << ' ' << b;
        }
    }
}

TEST(PlatformGen, UpperCaseIsMadeInPlaceToTheLastByte) {
    std::string text("aZ\0z9 \xe4", 7);
    stl_toupper(text);
    EXPECT_EQ(text, std::string("AZ\0Z9 \xe4", 7));
}

TEST(PlatformGen, AnIntegerIsWrittenInEveryRadix) {
    struct CASE {
        int value;
        int radix;
        char const* text;
    };
    CASE const cases[] = {
        {0, 10, "0"},
        {7, 10, "7"},
        {-7, 10, "-7"},
        {1234567, 10, "1234567"},
        {INT_MAX, 10, "2147483647"},
        {INT_MIN, 10, "-2147483648"},
        {INT_MIN, 2, "-10000000000000000000000000000000"},
        {INT_MAX, 2, "1111111111111111111111111111111"},
        {255, 16, "ff"},
        {-255, 16, "-ff"},
        {35, 36, "z"},
        {8, 8, "10"},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(std::to_string(c.value) + " in radix " + std::to_string(c.radix));
        std::string text = "what was there before";
        gen_itoa(c.value, text, c.radix);
        EXPECT_EQ(text, c.text);
        for (int radix = 2; radix <= 36; ++radix) {
            gen_itoa(c.value, text, radix);
            EXPECT_EQ(std::stol(text, nullptr, radix), c.value) << "radix " << radix;
        }
    }
}

TEST(PlatformGen, ARadixOutsideTwoToThirtySixIsAnInternalError) {
    std::string text = "as it was";
    for (int const radix : {INT_MIN, -10, 0, 1, 37, INT_MAX})
        EXPECT_STANDALONE_ERROR(gen_itoa(1, text, radix), "radix >= 2 && radix <= 36",
                                "platform/standalone/gen");
    EXPECT_EQ(text, "as it was");
}

TEST(PlatformGen, WhiteSpaceIsStrippedAtBothEnds) {
    struct CASE {
        std::string text;
        std::string stripped;
    };
    CASE const cases[] = {
        {"", ""},
        {" ", ""},
        {" \t\n\v\f\r", ""},
        {"2.5 ns", "2.5 ns"},
        {"  2.5 ns\r\n", "2.5 ns"},
        {"\v\f a \v b \f\v", "a \v b"},
        {std::string(" \0 ", 3), std::string(1, '\0')}, // a zero byte is no white space
        {"\xa0 x \x85", "\xa0 x \x85"},                 // nor is a blank of Latin-1
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.text);
        EXPECT_EQ(gen_remove_leading_and_trailing_white_spaces(c.text), c.stripped);
    }
}

TEST(PlatformGen, SixBytesAreWhiteSpace) {
    for (std::string const& byte : every_byte()) {
        bool const white = std::string(" \t\n\v\f\r").find(byte) != std::string::npos;
        std::string const stripped =
            gen_remove_leading_and_trailing_white_spaces(byte + "x" + byte);
        EXPECT_EQ(stripped, white ? "x" : byte + "x" + byte) << "byte " << +byte[0];
    }
}

TEST(PlatformGen, NothingDependsOnTheProcessLocale) {
    COMMA_LOCALE const locale;
    if (!locale.available())
        GTEST_SKIP() << "the build made no locale";
    EXPECT_NE(gen_stricmp("\xc4", "\xe4"), 0);
    std::string text = "\xe4\xc3\xa4z";
    stl_toupper(text);
    EXPECT_EQ(text, "\xe4\xc3\xa4Z");
    EXPECT_EQ(gen_remove_leading_and_trailing_white_spaces("\xa0x"), "\xa0x");
    gen_itoa(1234567, text, 10);
    EXPECT_EQ(text, "1234567");
}

} // namespace
