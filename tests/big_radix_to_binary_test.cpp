// From text in a radix to binary digits, and their fitting to a width.

#include "big_radix.h"
#include "radix_oracle.h"
#include "recording_platform.h"

#include <algorithm>
#include <limits>

#include <gtest/gtest.h>

namespace {

using radix_oracle::BITS;
using radix_oracle::name_of;
using radix_oracle::random_source;

/// Many random inputs, fewer where each costs more.
#ifdef NDEBUG
constexpr int MANY = 20000;
#else
constexpr int MANY = 2000;
#endif

// --- Binary, octal and hexadecimal ---------------------------------------------------------------

struct DIGITS_CASE {
    char const* why;
    char const* source;
    BIG_RADIX radix;
    char const* digits;
    bool is_legal;
};

DIGITS_CASE const DIGITS_CASES[] = {
    // why                                source     radix    digits                       legal
    {"nothing", "", BIG_BIN, "", true},
    {"nothing", "", BIG_OCT, "", true},
    {"nothing", "", BIG_HEX, "", true},
    {"digits are copied", "0110", BIG_BIN, "0110", true},
    {"logic values in upper case", "XZUW-HL", BIG_BIN, "XZUW-HL", true},
    {"logic values in lower case", "xzuw-hl", BIG_BIN, "XZUW-HL", true},
    {"an illegal digit is X", "120", BIG_BIN, "1X0", false},
    {"an illegal letter is X", "1a0", BIG_BIN, "1X0", false},
    {"each digit is three bits", "017", BIG_OCT, "000001111", true},
    {"each logic value too", "xZ", BIG_OCT, "XXXZZZ", true},
    {"9 is illegal", "9", BIG_OCT, "XXX", false},
    {"the rest is converted all the same", "181", BIG_OCT, "001XXX001", false},
    {"each digit is four bits", "09AF", BIG_HEX, "0000100110101111", true},
    {"letters of either case", "af", BIG_HEX, "10101111", true},
    {"each logic value too", "-wL", BIG_HEX, "----WWWWLLLL", true},
    {"G is illegal", "1G", BIG_HEX, "0001XXXX", false},
    {"a blank is illegal", " 1", BIG_HEX, "XXXX0001", false},
    {"a sign is don't care", "-1", BIG_BIN, "-1", true},
};

bool convert_digits(std::string const& source, std::string* result, BIG_RADIX radix) {
    return radix == BIG_BIN   ? big_bin_to_binary(source, result)
           : radix == BIG_OCT ? big_oct_to_binary(source, result)
                              : big_hex_to_binary(source, result);
}

TEST(BigRadixToBinary, EachDigitBecomesItsPatternBehindWhatIsThere) {
    for (DIGITS_CASE const& c : DIGITS_CASES) {
        SCOPED_TRACE(std::string(c.why) + ": \"" + c.source + "\" in " + name_of(c.radix));
        std::string result = "before";
        EXPECT_EQ(convert_digits(c.source, &result, c.radix), c.is_legal);
        EXPECT_EQ(result, std::string("before") + c.digits);
    }
}

TEST(BigRadixToBinary, EveryByteIsADigitOrALogicValueOrIllegal) {
    for (BIG_RADIX const radix : {BIG_BIN, BIG_OCT, BIG_HEX})
        for (int byte = 0; byte < 256; ++byte) {
            std::string const source = std::string("1") + static_cast<char>(byte) + "0";
            SCOPED_TRACE("byte " + std::to_string(byte) + " in " + name_of(radix));
            BITS const expected = radix_oracle::bits_of_group_digits(source, radix);
            std::string result;
            EXPECT_EQ(convert_digits(source, &result, radix), expected.is_legal);
            EXPECT_EQ(result, expected.digits);
        }
}

TEST(BigRadixToBinary, LongTextsConvertLikeShortOnes) {
    std::mt19937_64 random(521);
    for (int i = 0; i < MANY / 10; ++i)
        for (BIG_RADIX const radix : {BIG_BIN, BIG_OCT, BIG_HEX}) {
            std::string source = random_source(random, radix, 1 + random() % 150, i % 3 == 0);
            if (i % 5 == 0)
                source[random() % source.size()] = static_cast<char>(random());
            SCOPED_TRACE(std::string(name_of(radix)) + " " + source);
            BITS const expected = radix_oracle::bits_of_group_digits(source, radix);
            std::string result;
            ASSERT_EQ(convert_digits(source, &result, radix), expected.is_legal);
            ASSERT_EQ(result, expected.digits);
        }
}

TEST(BigRadixToBinary, SourceMayBeTheResult) {
    std::string text = "1A";
    EXPECT_TRUE(big_hex_to_binary(text, &text));
    EXPECT_EQ(text, "1A00011010");
    text = "17";
    EXPECT_TRUE(big_oct_to_binary(text, &text));
    EXPECT_EQ(text, "17001111");
    text = "1z";
    EXPECT_TRUE(big_bin_to_binary(text, &text));
    EXPECT_EQ(text, "1z1Z");
}

// --- Decimal -------------------------------------------------------------------------------------

struct DECIMAL_CASE {
    char const* why;
    char const* source;
    bool is_signed;
    char const* digits; ///< null when the source is illegal
};

DECIMAL_CASE const DECIMAL_CASES[] = {
    // why                                            source    signed  digits
    {"a number", "5", false, "101"},
    {"a sign digit in front", "5", true, "0101"},
    {"two's complement", "-5", true, "1011"},
    {"zero is one digit", "0", false, "0"},
    {"and a sign digit", "0", true, "00"},
    {"there is no negative zero", "-0", true, "00"},
    {"nor with more digits", "-000", true, "00"},
    {"zeros in front say nothing", "0005", false, "101"},
    {"the lowest number of eight bits has nine", "-128", true, "110000000"},
    {"eight bits", "-127", true, "10000001"},
    {"an unsigned number has no sign", "-5", false, "X"},
    {"H is the digit 1", "1H", false, "1011"},
    {"L is the digit 0", "1L", false, "1010"},
    {"in either case", "-hl", true, "10110"},
    {"only levels", "H", false, "1"},
    {"Z in a number", "12Z", false, "X"},
    {"Z in a signed number", "-z", true, "Z"},
    {"Z alone", "ZZ", false, "Z"},
    {"Z alone, in either case", "zZz", true, "Z"},
    {"Z and unknown", "ZX", false, "X"},
    {"Z and level", "ZH", false, "X"},
    {"unknown", "x", true, "X"},
    {"uninitialised", "1u", false, "X"},
    {"weak unknown", "w1", false, "X"},
    {"a second sign is don't care", "--1", true, "X"},
    {"and so is one behind", "1-", true, "X"},
    {"nothing", "", false, "Z"},
    {"nothing signed", "", true, "Z"},
    {"nothing but a sign", "-", true, "Z"},
    {"an unsigned text of a sign", "-", false, "X"},
    {"a letter", "1A", false, nullptr},
    {"a plus sign", "+1", true, nullptr},
    {"a point", "1.5", true, nullptr},
    {"a blank", " 1", false, nullptr},
    {"illegal wins over unknown", "X1Q", false, nullptr},
    {"and over Z", "ZZ ", true, nullptr},
};

TEST(BigRadixToBinary, DecimalNumbersBecomeTheirBits) {
    for (DECIMAL_CASE const& c : DECIMAL_CASES) {
        SCOPED_TRACE(std::string(c.why) + ": \"" + c.source + "\""
                     + (c.is_signed ? " signed" : " unsigned"));
        std::string result;
        EXPECT_EQ(big_dec_to_binary(c.source, &result, c.is_signed), c.digits != nullptr);
        EXPECT_EQ(result, c.digits == nullptr ? "" : c.digits);
        BITS const expected = radix_oracle::bits_of_decimal(c.source, c.is_signed);
        EXPECT_EQ(expected.is_legal, c.digits != nullptr);
        EXPECT_EQ(expected.digits, result);
    }
}

TEST(BigRadixToBinary, EveryByteInADecimalNumberIsClassified) {
    for (int byte = 0; byte < 256; ++byte)
        for (bool const is_signed : {false, true})
            for (std::string const& source :
                 {std::string(1, static_cast<char>(byte)),
                  std::string("1") + static_cast<char>(byte) + "234567890123456789012"}) {
                SCOPED_TRACE("byte " + std::to_string(byte) + (is_signed ? " signed" : ""));
                BITS const expected = radix_oracle::bits_of_decimal(source, is_signed);
                std::string result;
                EXPECT_EQ(big_dec_to_binary(source, &result, is_signed), expected.is_legal);
                EXPECT_EQ(result, expected.digits);
            }
}

TEST(BigRadixToBinary, RandomDecimalNumbersAgreeWithLongDivision) {
    std::mt19937_64 random(522);
    for (int i = 0; i < MANY; ++i) {
        bool const is_signed = i % 2 == 0;
        std::size_t const length = 1 + random() % (i % 50 == 0 ? 700 : 60);
        std::string const source = random_source(
            random, is_signed ? BIG_SIGNED_DEC : BIG_UNSIGNED_DEC, length, i % 3 == 0);
        SCOPED_TRACE(source + (is_signed ? " signed" : " unsigned"));
        BITS const expected = radix_oracle::bits_of_decimal(source, is_signed);
        std::string result;
        ASSERT_EQ(big_dec_to_binary(source, &result, is_signed), expected.is_legal);
        ASSERT_EQ(result, expected.digits);
    }
}

TEST(BigRadixToBinary, PowersOfTwoAndTheirNeighboursAreExact) {
    std::string power = "1"; // least significant digit last
    for (int exponent = 0; exponent < 300; ++exponent) {
        std::vector<int> digits;
        for (char const c : power)
            digits.push_back(c - '0');
        std::reverse(digits.begin(), digits.end());

        std::string const zeros(static_cast<std::size_t>(exponent), '0');
        std::string const ones(static_cast<std::size_t>(exponent), '1');
        std::string result;
        EXPECT_TRUE(big_dec_to_binary(power, &result, false));
        EXPECT_EQ(result, std::string("1").append(zeros));
        std::string below = power; // a power of two above 1 does not end in 0
        if (exponent > 0) {
            --below.back();
            result.clear();
            EXPECT_TRUE(big_dec_to_binary(below, &result, false));
            EXPECT_EQ(result, ones);
        }
        result.clear();
        EXPECT_TRUE(big_dec_to_binary(std::string("-").append(power), &result, true));
        EXPECT_EQ(result, std::string("11").append(zeros));

        big_multiply_dec_by_two(&digits);
        power.clear();
        for (std::size_t i = digits.size(); i-- > 0;)
            power += static_cast<char>('0' + digits[i]);
    }
}

// The conversion as it is defined: the number is halved until it is zero.
TEST(BigRadixToBinary, DecimalNumbersAgreeWithRepeatedHalving) {
    std::mt19937_64 random(523);
    for (int i = 0; i < MANY / 20; ++i) {
        std::string const source =
            random_source(random, BIG_UNSIGNED_DEC, 1 + random() % 80, false);
        SCOPED_TRACE(source);
        std::vector<int> digits;
        for (char const c : source)
            digits.push_back(c - '0');
        std::string halved;
        do {
            halved += digits.back() % 2 != 0 ? '1' : '0';
        } while (big_divide_dec_by_two(&digits) != 0);
        std::string result;
        ASSERT_TRUE(big_dec_to_binary(source, &result, false));
        ASSERT_EQ(result, std::string(halved.rbegin(), halved.rend()));
    }
}

// --- ASCII ---------------------------------------------------------------------------------------

struct ASCII_CASE {
    char const* why;
    std::string source;
    BIG_ASCII_CHECK_RESULT check;
    char const* digits; ///< what is appended, to the failure if there is one
    char const* code;   ///< for the checks 2 and 3
};

ASCII_CASE const ASCII_CASES[] = {
    // why, source, check, digits, code
    {"nothing", "", BIG_ASCII_OK, "", ""},
    {"characters", "AB", BIG_ASCII_OK, "0100000101000010", ""},
    {"first and last printable", " ~", BIG_ASCII_OK, "0010000001111110", ""},
    {"a code", "[65]", BIG_ASCII_OK, "01000001", ""},
    {"code 0", "[0]", BIG_ASCII_OK, "00000000", ""},
    {"the largest code", "[255]", BIG_ASCII_OK, "11111111", ""},
    {"zeros in front of a code", "[00000000000000000000000000065]", BIG_ASCII_OK, "01000001", ""},
    {"a blank code", "[ ]", BIG_ASCII_OK, "00100000", ""},
    {"any blank is a space", "[\t][\n][\v][\f][\r]", BIG_ASCII_OK,
     "0010000000100000001000000010000000100000", ""},
    {"an escaped bracket", "\\[", BIG_ASCII_OK, "01011011", ""},
    {"an escaped backslash", "\\\\", BIG_ASCII_OK, "01011100", ""},
    {"the other escaped bracket", "\\]", BIG_ASCII_OK, "01011101", ""},
    {"a bracket after an escaped backslash counts as escaped", "\\\\]", BIG_ASCII_OK,
     "0101110001011101", ""},
    {"but only the first", "\\\\]]", BIG_ASCII_UNMATCHED_BRACKET, "0101110001011101", ""},
    {"other bytes are NUL", "A\x01\x7F\x80\xFF", BIG_ASCII_OK,
     "0100000100000000000000000000000000000000", ""},
    {"a NUL too", std::string("A\0B", 3), BIG_ASCII_OK, "010000010000000001000010", ""},
    {"a backslash last", "A\\", BIG_ASCII_BAD_ESCAPE, "01000001", ""},
    {"a backslash before a letter", "A\\n", BIG_ASCII_BAD_ESCAPE, "01000001", ""},
    {"a code above 255", "A[256]", BIG_ASCII_CODE_TOO_LARGE, "01000001", "256"},
    {"a much larger code", "[99999999999999999999]", BIG_ASCII_CODE_TOO_LARGE, "",
     "99999999999999999999"},
    {"2^32 - 1", "[4294967295]", BIG_ASCII_CODE_TOO_LARGE, "", "4294967295"},
    {"only the lower 32 bits are compared: 2^32", "[4294967296]", BIG_ASCII_OK,
     "100000000000000000000000000000000", ""},
    {"2^32 + 65, with all its digits", "[4294967361]", BIG_ASCII_OK,
     "100000000000000000000000001000001", ""},
    {"2^33 + 256", "[8589934848]", BIG_ASCII_CODE_TOO_LARGE, "", "8589934848"},
    {"2^63 - 2^32 + 1, the largest group that fits", "[9223372032559808513]", BIG_ASCII_OK,
     "111111111111111111111111111111100000000000000000000000000000001", ""},
    {"from 2^63 on a code stays at 2^63 - 1", "[9223372036854775808]", BIG_ASCII_CODE_TOO_LARGE, "",
     "9223372036854775808"},
    {"2^64 + 65 as well", "[18446744073709551681]", BIG_ASCII_CODE_TOO_LARGE, "",
     "18446744073709551681"},
    {"a letter in a code", "[6x]", BIG_ASCII_BAD_CODE, "", "6x"},
    {"a sign in a code", "A[-1]", BIG_ASCII_BAD_CODE, "01000001", "-1"},
    {"two blanks", "[  ]", BIG_ASCII_BAD_CODE, "", "  "},
    {"a blank beside a digit", "[ 65]", BIG_ASCII_BAD_CODE, "", " 65"},
    {"a bracket in a code", "[[65]", BIG_ASCII_BAD_CODE, "", "[65"},
    {"a control character that is no blank", "[\x08]", BIG_ASCII_BAD_CODE, "", "\x08"},
    {"an empty code", "A[]", BIG_ASCII_EMPTY_CODE, "01000001", ""},
    {"a code without end", "A[65", BIG_ASCII_UNTERMINATED_CODE, "01000001", ""},
    {"a bracket last", "A[", BIG_ASCII_UNTERMINATED_CODE, "01000001", ""},
    {"the other bracket first", "]A", BIG_ASCII_UNMATCHED_BRACKET, "", ""},
    {"the other bracket without any", "A]", BIG_ASCII_UNMATCHED_BRACKET, "01000001", ""},
    {"the other bracket after a code", "[65]]", BIG_ASCII_UNMATCHED_BRACKET, "01000001", ""},
    {"an escaped bracket does not begin a code", "\\[65]", BIG_ASCII_UNMATCHED_BRACKET,
     "010110110011011000110101", ""},
};

TEST(BigRadixToBinary, AsciiTextBecomesBytesBehindWhatIsThere) {
    for (ASCII_CASE const& c : ASCII_CASES) {
        SCOPED_TRACE(std::string(c.why) + ": \"" + c.source + "\"");
        std::string result = "before";
        BIG_ASCII_CHECK_RESULT check = BIG_ASCII_UNMATCHED_BRACKET;
        EXPECT_EQ(big_ascii_to_binary(c.source, &result, &check, true), c.check == BIG_ASCII_OK);
        EXPECT_EQ(check, c.check);
        EXPECT_EQ(result, *c.code != '\0' ? c.code : std::string("before") + c.digits);
    }
}

TEST(BigRadixToBinary, ValidationLeavesTheResultAloneUnlessACodeIsWrong) {
    for (ASCII_CASE const& c : ASCII_CASES) {
        SCOPED_TRACE(std::string(c.why) + ": \"" + c.source + "\"");
        std::string result = "before";
        BIG_ASCII_CHECK_RESULT check = BIG_ASCII_UNMATCHED_BRACKET;
        EXPECT_EQ(big_validate_ascii_string(c.source, &result, &check), c.check == BIG_ASCII_OK);
        EXPECT_EQ(check, c.check);
        EXPECT_EQ(result, *c.code != '\0' ? c.code : "before");

        std::string itself = c.source;
        EXPECT_EQ(big_validate_ascii_string(itself, &itself, &check), c.check == BIG_ASCII_OK);
        EXPECT_EQ(check, c.check);
        EXPECT_EQ(itself, *c.code != '\0' ? c.code : c.source);
    }
}

TEST(BigRadixToBinary, EachUnprintableByteWritesADebugMessage) {
    recording::CALL const message = recording::debug("Default non printable character to NULL");
    for (bool const emit : {false, true}) {
        recording::clear();
        std::string result;
        BIG_ASCII_CHECK_RESULT check = BIG_ASCII_OK;
        // None for the bytes of a blank code, and none for what stands behind a failure.
        EXPECT_FALSE(big_ascii_to_binary("\x01"
                                         "A\xFF[\n]\t[]\x02",
                                         &result, &check, emit));
        EXPECT_EQ(check, BIG_ASCII_EMPTY_CODE);
        EXPECT_EQ(recording::reports(), std::vector<recording::CALL>(3, message));
    }
}

TEST(BigRadixToBinary, RandomAsciiTextsAgreeWithTheRules) {
    std::mt19937_64 random(524);
    std::string const alphabet = "[[]]\\\\0159 \tAz\x80";
    for (int i = 0; i < MANY; ++i) {
        std::string source;
        for (std::size_t length = random() % 12; length > 0; --length)
            source += alphabet[random() % alphabet.size()];
        SCOPED_TRACE("\"" + source + "\"");
        BITS const expected = radix_oracle::bits_of_ascii(source);
        recording::clear();
        std::string result;
        BIG_ASCII_CHECK_RESULT check = BIG_ASCII_OK;
        ASSERT_EQ(big_ascii_to_binary(source, &result, &check, true), expected.is_legal);
        ASSERT_EQ(check, expected.check);
        ASSERT_EQ(result,
                  expected.offending_code.empty() ? expected.digits : expected.offending_code);
        ASSERT_EQ(recording::reports().size(), expected.debug_messages);
    }
    recording::clear();
}

TEST(BigRadixToBinary, AsciiSourceMayBeTheResult) {
    std::string text = "A[66]\\[";
    BIG_ASCII_CHECK_RESULT check = BIG_ASCII_OK;
    EXPECT_TRUE(big_ascii_to_binary(text, &text, &check, true));
    EXPECT_EQ(text, "A[66]\\[010000010100001001011011");
    text = "A[666]";
    EXPECT_FALSE(big_ascii_to_binary(text, &text, &check, true));
    EXPECT_EQ(text, "666");
}

// --- Width ---------------------------------------------------------------------------------------

struct WIDTH_CASE {
    char const* why;
    char const* source;
    BIG_RADIX radix;
    unsigned int width;
    unsigned int status;
    char const* digits;
};

WIDTH_CASE const WIDTH_CASES[] = {
    // why                                       source    radix     width  status  digits
    {"zeros in front go", "1f", BIG_HEX, 0, 0, "11111"},
    {"zeros are added", "1f", BIG_HEX, 8, 0, "00011111"},
    {"bits are cut off", "1f", BIG_HEX, 4, 2, "1111"},
    {"the exact width stays", "0X", BIG_BIN, 2, 0, "0X"},
    {"unknown fills", "x", BIG_HEX, 8, 0, "XXXXXXXX"},
    {"a run of X keeps two", "x", BIG_HEX, 0, 0, "XX"},
    {"however long", "xxxx", BIG_HEX, 0, 0, "XX"},
    {"which may be one too many", "x", BIG_HEX, 1, 2, "X"},
    {"a run before another digit keeps one", "zz01", BIG_BIN, 0, 0, "Z01"},
    {"one X alone stays", "x", BIG_BIN, 0, 0, "X"},
    {"Z fills", "z", BIG_BIN, 3, 0, "ZZZ"},
    {"U fills", "u", BIG_BIN, 3, 0, "UUU"},
    {"W fills", "w", BIG_BIN, 3, 0, "WWW"},
    {"don't care fills", "-1", BIG_BIN, 4, 0, "---1"},
    {"H does not", "h", BIG_BIN, 3, 0, "00H"},
    {"L does not", "l1", BIG_BIN, 4, 0, "00L1"},
    {"a run of H goes all the same", "hhh1", BIG_BIN, 0, 0, "H1"},
    {"0 before X goes, then X fills", "0X", BIG_BIN, 4, 0, "XXXX"},
    {"a run of zeros before X too", "000X1", BIG_BIN, 0, 0, "X1"},
    {"and then nothing more", "00XX", BIG_BIN, 0, 0, "XX"},
    {"1 in front is not redundant", "11X", BIG_BIN, 0, 0, "11X"},
    {"1 does not fill an unsigned value", "1", BIG_BIN, 4, 0, "0001"},
    {"zeros leave one", "0000", BIG_BIN, 0, 0, "0"},
    {"zeros leave one", "00", BIG_HEX, 1, 0, "0"},
    {"an illegal digit", "9", BIG_OCT, 0, 1, "XXX"},
    {"is not fitted", "9", BIG_OCT, 8, 1, "XXX"},
    {"sign extension", "-1", BIG_SIGNED_DEC, 8, 0, "11111111"},
    {"zeros in front of a positive one", "5", BIG_SIGNED_DEC, 8, 0, "00000101"},
    {"the lowest number fits", "-128", BIG_SIGNED_DEC, 8, 0, "10000000"},
    {"the one above the highest does not", "128", BIG_SIGNED_DEC, 8, 2, "10000000"},
    {"nor the one below the lowest", "-129", BIG_SIGNED_DEC, 8, 2, "01111111"},
    {"the lowest number of one bit", "-1", BIG_SIGNED_DEC, 1, 0, "1"},
    {"of two", "-2", BIG_SIGNED_DEC, 2, 0, "10"},
    {"zero has two digits", "0", BIG_SIGNED_DEC, 1, 2, "0"},
    {"a positive one loses its sign", "5", BIG_SIGNED_DEC, 2, 2, "01"},
    {"the natural width has a sign", "5", BIG_SIGNED_DEC, 0, 0, "0101"},
    {"and is never shortened", "-1", BIG_SIGNED_DEC, 0, 0, "11"},
    {"unknown fills a signed value", "X", BIG_SIGNED_DEC, 3, 0, "XXX"},
    {"Z fills a signed value", "Z", BIG_SIGNED_DEC, 3, 0, "ZZZ"},
    {"an unsigned value", "255", BIG_UNSIGNED_DEC, 4, 2, "1111"},
    {"an unsigned value", "255", BIG_UNSIGNED_DEC, 10, 0, "0011111111"},
    {"half", "0.5", BIG_FRAC_FIX_POINT, 4, 0, "0100"},
    {"minus half", "-0.5", BIG_FRAC_FIX_POINT, 4, 0, "1100"},
    {"one does not fit", "1", BIG_FRAC_FIX_POINT, 4, 2, "1000"},
    {"minus one does", "-1", BIG_FRAC_FIX_POINT, 4, 0, "1000"},
    {"cut toward zero", "0.3", BIG_FRAC_FIX_POINT, 4, 0, "0010"},
    {"cut toward zero", "-0.3", BIG_FRAC_FIX_POINT, 4, 0, "1110"},
    {"width 0 halves", "5", BIG_FRAC_FIX_POINT, 0, 0, "010"},
    {"what follows the number", "0.5abc", BIG_FRAC_FIX_POINT, 4, 0, "0100"},
    {"no number is 0", "abc", BIG_FRAC_FIX_POINT, 4, 0, "0000"},
    {"no number", "nan", BIG_FRAC_FIX_POINT, 4, 1, ""},
    {"more than 64 bits", "1e30", BIG_FRAC_FIX_POINT, 4, 1, ""},
    {"a byte", "A", BIG_ASCII, 8, 0, "01000001"},
    {"zeros in front of a byte", "A", BIG_ASCII, 16, 0, "0000000001000001"},
    {"a byte is cut off", "A", BIG_ASCII, 4, 2, "0001"},
    {"the natural width has whole bytes", "[1]", BIG_ASCII, 0, 0, "00000001"},
    {"bad ASCII keeps what came before", "A]", BIG_ASCII, 4, 1, "01000001"},
    {"or the code", "A[256]", BIG_ASCII, 4, 1, "256"},
    {"nothing is filled with zeros", "", BIG_HEX, 4, 0, "0000"},
    {"nothing stays nothing", "", BIG_BIN, 0, 0, ""},
    {"nothing is filled with zeros", "", BIG_ASCII, 3, 0, "000"},
    {"no decimal digit is Z", "", BIG_UNSIGNED_DEC, 3, 0, "ZZZ"},
};

TEST(BigRadixToBinary, DigitsAreFittedToTheWidth) {
    for (WIDTH_CASE const& c : WIDTH_CASES) {
        SCOPED_TRACE(std::string(c.why) + ": " + name_of(c.radix) + " \"" + c.source + "\", width "
                     + std::to_string(c.width));
        std::string result;
        EXPECT_EQ(big_convert_to_binary(c.source, &result, c.radix, c.width), c.status);
        EXPECT_EQ(result, c.digits);
    }
}

TEST(BigRadixToBinary, RandomDigitsAreFittedByTheRules) {
    std::mt19937_64 random(525);
    for (int i = 0; i < MANY; ++i) {
        BIG_RADIX const radix = static_cast<BIG_RADIX>(random() % 5);
        auto const width = static_cast<unsigned int>(random() % 24);
        std::string const source = random_source(random, radix, 1 + random() % 8, i % 2 == 0);
        SCOPED_TRACE(std::string(name_of(radix)) + " \"" + source + "\", width "
                     + std::to_string(width));
        BITS bits = radix == BIG_SIGNED_DEC || radix == BIG_UNSIGNED_DEC
                        ? radix_oracle::bits_of_decimal(source, radix == BIG_SIGNED_DEC)
                        : radix_oracle::bits_of_group_digits(source, radix);
        unsigned int const status = radix_oracle::fit(bits.digits, radix, width);
        std::string result;
        ASSERT_EQ(big_convert_to_binary(source, &result, radix, width), status);
        ASSERT_EQ(result, bits.digits);
    }
}

TEST(BigRadixToBinary, UnknownRadixIsAnInternalError) {
    std::string result;
    for (unsigned radix : {7u, 8u, 0x80000000u, 0xFFFFFFFFu})
        EXPECT_INTERNAL_ERROR(big_convert_to_binary("1", &result, static_cast<BIG_RADIX>(radix), 8),
                              "Invalid radix.", "2", "big/big_radix");
    EXPECT_EQ(result, "");
}

// --- Vectors of decimal digits -------------------------------------------------------------------

using DIGITS = std::vector<int>;

TEST(BigRadixDigitVectors, HalvingDividesFromTheMostSignificantDigit) {
    struct {
        DIGITS digits;
        DIGITS quotient;
        bool is_not_zero;
    } const cases[] = {
        // digits     quotient     not zero
        {{}, {}, false},
        {{0}, {0}, false},
        {{1}, {0}, false},
        {{2}, {1}, true},
        {{1, 0}, {0, 5}, true},
        {{9, 9, 9}, {4, 9, 9}, true},
        {{0, 0, 1}, {0, 0, 0}, false},
        {{0, 1, 1}, {0, 0, 5}, true},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.digits));
        DIGITS digits = c.digits;
        EXPECT_EQ(big_divide_dec_by_two(&digits) != 0, c.is_not_zero);
        EXPECT_EQ(digits, c.quotient);
    }
}

TEST(BigRadixDigitVectors, DoublingCarriesIntoANewDigit) {
    struct {
        DIGITS digits;
        DIGITS product;
    } const cases[] = {
        // digits     product, least significant first
        {{}, {}}, {{0}, {0}}, {{4}, {8}}, {{5}, {0, 1}}, {{9, 9}, {8, 9, 1}}, {{5, 0}, {0, 1}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.digits));
        DIGITS digits = c.digits;
        big_multiply_dec_by_two(&digits);
        EXPECT_EQ(digits, c.product);
    }
}

TEST(BigRadixDigitVectors, AddingExtendsTheSumAndCarries) {
    struct {
        DIGITS sum;
        DIGITS addend;
        DIGITS result;
    } const cases[] = {
        // sum        addend      result, least significant first
        {{}, {}, {}},
        {{}, {1, 2}, {1, 2}},
        {{1}, {2}, {3}},
        {{5}, {5}, {0, 1}},
        {{9}, {1, 9}, {0, 0, 1}},
        {{9, 9}, {9, 9}, {8, 9, 1}},
        {{1, 2}, {3, 0, 0}, {4, 2, 0}},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(testing::PrintToString(c.sum) + " + " + testing::PrintToString(c.addend));
        DIGITS sum = c.sum;
        DIGITS addend = c.addend;
        big_add_vectors(&sum, &addend);
        EXPECT_EQ(sum, c.result);
        EXPECT_EQ(addend, c.addend);
    }
}

TEST(BigRadixDigitVectors, ANumberAddedToItselfIsDoubled) {
    DIGITS sum = {7, 6, 5};
    big_add_vectors(&sum, &sum);
    EXPECT_EQ(sum, (DIGITS{4, 3, 1, 1}));
}

} // namespace
