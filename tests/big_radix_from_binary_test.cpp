// From binary digits to text in a radix.

#include "big_radix.h"
#include "radix_oracle.h"
#include "recording_platform.h"

#include <algorithm>

#include <gtest/gtest.h>

namespace {

using radix_oracle::name_of;
using radix_oracle::random_source;

#ifdef NDEBUG
constexpr int MANY = 20000;
#else
constexpr int MANY = 2000;
#endif

// --- Groups of digits ----------------------------------------------------------------------------

struct GROUP_CASE {
    char const* why;
    char const* binary;
    int group_bits;
    char const* text;
};

GROUP_CASE const GROUP_CASES[] = {
    // why                                     binary       group  text
    {"nothing", "", 4, ""},
    {"a digit", "1111", 4, "F"},
    {"a short group in front", "11111", 4, "1F"},
    {"a group of one logic value", "ZZZZ0001", 4, "Z1"},
    {"a short group of one", "ZZ0001", 4, "Z1"},
    {"a group of several values", "1X00", 4, "X"},
    {"a logic value beside a number", "000Z", 4, "X"},
    {"octal digits", "101111", 3, "57"},
    {"octal X", "XXX000", 3, "X0"},
    {"octal Z", "ZZZ", 3, "Z"},
    {"two octal logic values", "ZZXHHH", 3, "XH"},
    {"every logic value", "ZZZZ----UUUUWWWWHHHHLLLLXXXX", 4, "Z-UWHLX"},
    {"in lower case too", "zzzz----uuuuwwwwhhhhllllxxxx", 4, "Z-UWHLX"},
    {"and mixed", "zZZz", 4, "Z"},
    {"single digits", "01XZUW-HL", 1, "01XZUW-HL"},
    {"single digits in lower case", "01xzuwhl", 1, "01XZUWHL"},
    {"what is no digit is X", "0?2", 1, "0XX"},
    {"and so is its group", "???1", 4, "X"},
};

TEST(BigRadixFromBinary, EachGroupBecomesOneDigitBehindWhatIsThere) {
    for (GROUP_CASE const& c : GROUP_CASES) {
        SCOPED_TRACE(std::string(c.why) + ": \"" + c.binary + "\" by "
                     + std::to_string(c.group_bits));
        std::string binary = c.binary;
        std::string result = "before";
        EXPECT_TRUE(big_binary_to_number(&binary, &result, c.group_bits));
        EXPECT_EQ(result, std::string("before") + c.text);
        EXPECT_EQ(binary, c.binary);
    }
}

TEST(BigRadixFromBinary, EveryPairOfDigitsInAGroupIsANumberOrOneValueOrX) {
    std::string const all = "01XZUW-HLxzuwhl";
    for (char const a : all)
        for (char const b : all)
            for (int const bits : {1, 3, 4})
                for (std::string binary : {std::string{a, b}, std::string{a, b, b},
                                           std::string{a, a, b, b}, std::string{b, a, a, a, a}}) {
                    SCOPED_TRACE(binary + " by " + std::to_string(bits));
                    std::string result;
                    EXPECT_TRUE(big_binary_to_number(&binary, &result, bits));
                    EXPECT_EQ(result,
                              radix_oracle::groups_of(binary, static_cast<std::size_t>(bits)));
                }
}

TEST(BigRadixFromBinary, RandomDigitsAreGroupedByTheRules) {
    std::mt19937_64 random(531);
    for (int i = 0; i < MANY / 4; ++i) {
        std::string binary = random_source(random, BIG_BIN, 1 + random() % 300, i % 2 == 0);
        if (i % 10 == 0) // a single logic value in a long number
            binary[random() % binary.size()] = 'z';
        for (int const bits : {1, 3, 4}) {
            SCOPED_TRACE(binary + " by " + std::to_string(bits));
            std::string result;
            ASSERT_TRUE(big_binary_to_number(&binary, &result, bits));
            ASSERT_EQ(result, radix_oracle::groups_of(binary, static_cast<std::size_t>(bits)));
        }
    }
}

TEST(BigRadixFromBinary, NumbersAndLogicValuesTakeTurnsInAnyOrder) {
    std::mt19937_64 random(533);
    std::string const digits = "01XZxz-H";
    for (int i = 0; i < MANY / 4; ++i) {
        std::string binary;
        std::size_t const kinds = 2 + random() % (digits.size() - 1); // the first two are numbers
        for (std::size_t length = 1 + random() % 200; binary.size() < length;)
            binary.append(random() % 2 == 0 ? 1 : 4, digits[random() % kinds]);
        bool const is_legal = i % 8 != 0;
        if (!is_legal)
            binary[random() % binary.size()] = static_cast<char>(random() % 2 == 0 ? '2' : 0xB1);
        for (int const bits : {1, 3, 4}) {
            SCOPED_TRACE(binary + " by " + std::to_string(bits));
            std::string const text =
                radix_oracle::groups_of(binary, static_cast<std::size_t>(bits));
            std::string result;
            ASSERT_TRUE(big_binary_to_number(&binary, &result, bits));
            ASSERT_EQ(result, text);
            BIG_RADIX const to = bits == 1 ? BIG_BIN : bits == 3 ? BIG_OCT : BIG_HEX;
            auto const width = static_cast<unsigned int>(binary.size());
            ASSERT_EQ(big_radix_conversion(binary, &result, BIG_BIN, to, width),
                      is_legal ? 0u : 1u);
            ASSERT_EQ(result, !is_legal ? "X" : text);
        }
    }
}

// --- Decimal -------------------------------------------------------------------------------------

struct DECIMAL_CASE {
    char const* why;
    char const* binary;
    bool is_signed;
    char const* text;
};

DECIMAL_CASE const DECIMAL_CASES[] = {
    // why                                   binary        signed  text
    {"nothing", "", true, ""},
    {"unsigned", "1011", false, "11"},
    {"signed", "1011", true, "-5"},
    {"one signed digit", "1", true, "-1"},
    {"positive", "0101", true, "5"},
    {"zero", "00", false, "0"},
    {"zero", "00", true, "0"},
    {"lowest of a width", "10000000", true, "-128"},
    {"unsigned of that", "10000000", false, "128"},
    {"minus one", "11111111", true, "-1"},
    {"Z last", "1Z", false, "Z"},
    {"H last", "1H", true, "H"},
    {"L last", "XXL", false, "L"},
    {"Z last below X", "XZ", false, "Z"},
    {"Z not last", "Z0", false, "X"},
    {"X last", "0X", true, "X"},
    {"U last", "0U", false, "X"},
    {"W last", "W", false, "X"},
    {"don't care last", "-", true, "X"},
    {"lower case is not known here", "1z", false, "X"},
};

TEST(BigRadixFromBinary, NumbersAreWrittenInDecimalBehindWhatIsThere) {
    for (DECIMAL_CASE const& c : DECIMAL_CASES) {
        SCOPED_TRACE(std::string(c.why) + ": \"" + c.binary + "\""
                     + (c.is_signed ? " signed" : " unsigned"));
        std::string binary = c.binary;
        std::string result = "before";
        EXPECT_TRUE(big_binary_to_dec(&binary, &result, c.is_signed));
        EXPECT_EQ(result, std::string("before") + c.text);
        EXPECT_EQ(binary, c.binary);
    }
}

TEST(BigRadixFromBinary, RandomNumbersAgreeWithHornersRule) {
    std::mt19937_64 random(532);
    for (int i = 0; i < MANY; ++i) {
        bool const is_signed = i % 2 == 0;
        std::string binary =
            random_source(random, BIG_BIN, 1 + random() % (i % 50 == 0 ? 2500 : 200), i % 5 == 0);
        SCOPED_TRACE(binary + (is_signed ? " signed" : " unsigned"));
        std::string result;
        ASSERT_TRUE(big_binary_to_dec(&binary, &result, is_signed));
        ASSERT_EQ(result, radix_oracle::decimal_of(binary, is_signed));
    }
}

// The conversion as it is defined: powers of two are added up.
TEST(BigRadixFromBinary, NumbersAgreeWithTheSumOfTheirPowersOfTwo) {
    std::mt19937_64 random(533);
    for (int i = 0; i < MANY / 20; ++i) {
        std::string binary = random_source(random, BIG_BIN, 1 + random() % 200, false);
        SCOPED_TRACE(binary);
        std::vector<int> sum{0};
        std::vector<int> power{1};
        for (std::size_t bit = binary.size(); bit-- > 0;) {
            if (binary[bit] == '1')
                big_add_vectors(&sum, &power);
            big_multiply_dec_by_two(&power);
        }
        std::string expected;
        for (std::size_t k = sum.size(); k-- > 0;)
            expected += static_cast<char>('0' + sum[k]);
        std::string result;
        ASSERT_TRUE(big_binary_to_dec(&binary, &result, false));
        ASSERT_EQ(result, expected);
    }
}

// --- Fixed point, ASCII, and the choice of the radix ---------------------------------------------

struct TEXT_CASE {
    char const* why;
    char const* binary;
    BIG_RADIX radix;
    unsigned int width;
    char const* text;
};

TEXT_CASE const TEXT_CASES[] = {
    // why                                  binary      radix               width  text
    {"binary", "0x1", BIG_BIN, 3, "0X1"},
    {"octal", "101111", BIG_OCT, 6, "57"},
    {"hexadecimal", "11111", BIG_HEX, 5, "1F"},
    {"signed decimal", "1011", BIG_SIGNED_DEC, 4, "-5"},
    {"unsigned decimal", "1011", BIG_UNSIGNED_DEC, 4, "11"},
    {"half", "0100", BIG_FRAC_FIX_POINT, 4, "0.5"},
    {"minus half", "1100", BIG_FRAC_FIX_POINT, 4, "-0.5"},
    {"minus one", "1000", BIG_FRAC_FIX_POINT, 4, "-1"},
    {"zero", "0000", BIG_FRAC_FIX_POINT, 4, "0"},
    {"width 0 doubles", "0101", BIG_FRAC_FIX_POINT, 0, "10"},
    {"unknown is kept", "X", BIG_FRAC_FIX_POINT, 8, "X"},
    {"and Z", "Z", BIG_FRAC_FIX_POINT, 8, "Z"},
    {"and H", "0H", BIG_FRAC_FIX_POINT, 8, "H"},
    {"and L", "0L", BIG_FRAC_FIX_POINT, 8, "L"},
    {"U is unknown", "U", BIG_FRAC_FIX_POINT, 8, "X"},
    {"seventeen digits at most", "01", BIG_FRAC_FIX_POINT, 60, "1.7347234759768071e-18"},
    {"nothing is zero", "", BIG_FRAC_FIX_POINT, 8, "0"},
    {"two bytes", "0100000101000010", BIG_ASCII, 16, "AB"},
    {"a blank", "00100000", BIG_ASCII, 8, "[ ]"},
    {"a byte that is not printable", "00001010", BIG_ASCII, 8, "[10]"},
    {"0x7F", "01111111", BIG_ASCII, 8, "[127]"},
    {"the largest byte", "11111111", BIG_ASCII, 8, "[255]"},
    {"a NUL", "0", BIG_ASCII, 1, "[0]"},
    {"an opening bracket", "01011011", BIG_ASCII, 8, "\\["},
    {"a backslash", "01011100", BIG_ASCII, 8, "\\\\"},
    {"a closing bracket", "01011101", BIG_ASCII, 8, "\\]"},
    {"a short byte in front", "101000010", BIG_ASCII, 9, "[1]B"},
    {"logic values are zero bits", "X1Z0000H", BIG_ASCII, 8, "@"},
    {"nothing", "", BIG_ASCII, 0, ""},
};

TEST(BigRadixFromBinary, DigitsAreWrittenInTheRadixAskedFor) {
    for (TEXT_CASE const& c : TEXT_CASES) {
        SCOPED_TRACE(std::string(c.why) + ": \"" + c.binary + "\" in " + name_of(c.radix));
        std::string binary = c.binary;
        std::string result;
        EXPECT_TRUE(big_convert_from_binary(&binary, &result, c.radix, c.width));
        EXPECT_EQ(result, c.text);
        EXPECT_EQ(binary, c.binary);
    }
}

TEST(BigRadixFromBinary, AFixedPointNumberReplacesWhatIsThereAndALogicValueDoesNot) {
    std::string binary = "0100";
    std::string result = "before";
    EXPECT_TRUE(big_convert_from_binary(&binary, &result, BIG_FRAC_FIX_POINT, 4));
    EXPECT_EQ(result, "0.5");
    binary = 'Z';
    EXPECT_TRUE(big_convert_from_binary(&binary, &result, BIG_FRAC_FIX_POINT, 4));
    EXPECT_EQ(result, "0.5Z");
    binary = "01000001";
    EXPECT_TRUE(big_convert_from_binary(&binary, &result, BIG_ASCII, 8));
    EXPECT_EQ(result, "0.5ZA");
}

TEST(BigRadixFromBinary, UnknownRadixIsAnInternalError) {
    std::string binary = "1";
    std::string result = "before";
    for (unsigned radix : {7u, 8u, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_INTERNAL_ERROR(
            big_convert_from_binary(&binary, &result, static_cast<BIG_RADIX>(radix), 8),
            "Invalid radix.", "2", "big/big_radix");
    EXPECT_EQ(result, "before");
}

TEST(BigRadixFromBinary, AsciiGivesEveryByteBack) {
    std::string bytes;
    for (int byte = 0; byte < 256; ++byte)
        bytes += big_get_ascii_char_value(static_cast<char>(byte));
    std::string text;
    EXPECT_TRUE(big_convert_from_binary(&bytes, &text, BIG_ASCII, 2048));
    std::string back;
    EXPECT_EQ(big_convert_to_binary(text, &back, BIG_ASCII, 2048), 0u);
    EXPECT_EQ(back, bytes);
}

} // namespace
