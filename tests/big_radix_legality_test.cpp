// Which characters belong to a radix, and the small operations on single characters and binary
// digits.

#include "big_radix.h"
#include "radix_oracle.h"
#include "recording_platform.h"

#include <gtest/gtest.h>

namespace {

using radix_oracle::name_of;

// --- Legality ------------------------------------------------------------------------------------

struct LEGALITY_CASE {
    char const* why;
    std::string text;
    BIG_RADIX radix;
    bool is_legal;
};

LEGALITY_CASE const LEGALITY_CASES[] = {
    // why                                        text           radix               legal
    {"both binary digits", "1010", BIG_BIN, true},
    {"logic values are not legal", "10X1", BIG_BIN, false},
    {"2 is no binary digit", "102", BIG_BIN, false},
    {"all octal digits", "01234567", BIG_OCT, true},
    {"8 is no octal digit", "8", BIG_OCT, false},
    {"all hexadecimal digits", "0123456789ABCDEF", BIG_HEX, true},
    {"letters of either case", "ff", BIG_HEX, true},
    {"g is no hexadecimal digit", "fg", BIG_HEX, false},
    {"Z is no hexadecimal digit", "Z", BIG_HEX, false},
    {"a sign of a signed number", "-12", BIG_SIGNED_DEC, true},
    {"whose place is not checked", "12-", BIG_SIGNED_DEC, true},
    {"nor its number", "1-2--", BIG_SIGNED_DEC, true},
    {"a plus sign belongs to no radix", "+12", BIG_SIGNED_DEC, false},
    {"an unsigned number has no sign", "-12", BIG_UNSIGNED_DEC, false},
    {"all decimal digits", "0123456789", BIG_UNSIGNED_DEC, true},
    {"a hexadecimal digit is not decimal", "1A", BIG_UNSIGNED_DEC, false},
    {"an exponent of either case", "1.5e3", BIG_FRAC_FIX_POINT, true},
    {"any order of sign, point, exponent", "..E-", BIG_FRAC_FIX_POINT, true},
    {"no plus sign", "1.5E+3", BIG_FRAC_FIX_POINT, false},
    {"no blank", " 1.5", BIG_FRAC_FIX_POINT, false},
    {"printable characters", "a b~", BIG_ASCII, true},
    {"brackets are not looked at", "[", BIG_ASCII, true},
    {"a tab is not printable", "a\tb", BIG_ASCII, false},
    {"nor is 0x7F", "a\x7F", BIG_ASCII, false},
    {"nor is a byte with the top bit", "\x80", BIG_ASCII, false},
    {"a NUL inside belongs to no radix",
     std::string("1\0"
                 "1",
                 3),
     BIG_BIN, false},
    {"nor is it printable", std::string("a\0", 2), BIG_ASCII, false},
};

TEST(BigRadixLegality, TextHasOnlyCharactersOfItsRadix) {
    for (LEGALITY_CASE const& c : LEGALITY_CASES) {
        SCOPED_TRACE(std::string(c.why) + ": \"" + c.text + "\" as " + name_of(c.radix));
        EXPECT_EQ(big_string_is_legal(c.text, c.radix), c.is_legal);
    }
}

TEST(BigRadixLegality, EveryByteAloneIsLegalWhereItsSetHasIt) {
    for (int byte = 0; byte < 256; ++byte) {
        std::string const text(1, static_cast<char>(byte));
        std::string upper = text;
        if (byte >= 'a' && byte <= 'z')
            upper[0] = static_cast<char>(byte - 'a' + 'A');
        auto const in = [&](std::string const& set) { return set.find(upper) != set.npos; };
        SCOPED_TRACE("byte " + std::to_string(byte));
        EXPECT_EQ(big_string_is_legal(text, BIG_BIN), in("01"));
        EXPECT_EQ(big_string_is_legal(text, BIG_OCT), in("01234567"));
        EXPECT_EQ(big_string_is_legal(text, BIG_HEX), in("0123456789ABCDEF"));
        EXPECT_EQ(big_string_is_legal(text, BIG_SIGNED_DEC), in("0123456789-"));
        EXPECT_EQ(big_string_is_legal(text, BIG_UNSIGNED_DEC), in("0123456789"));
        EXPECT_EQ(big_string_is_legal(text, BIG_FRAC_FIX_POINT), in("0123456789-.E"));
        EXPECT_EQ(big_string_is_legal(text, BIG_ASCII), byte >= 0x20 && byte <= 0x7E);
        EXPECT_EQ(big_char_is_printable(text[0]), byte >= 0x20 && byte <= 0x7E);
    }
}

TEST(BigRadixLegality, EmptyTextIsAnInternalErrorInEveryRadix) {
    for (unsigned radix = 0; radix <= 8; ++radix) {
        SCOPED_TRACE(radix);
        EXPECT_INTERNAL_ERROR(big_string_is_legal("", static_cast<BIG_RADIX>(radix)),
                              "source.size() > 0", "2", "big/big_radix");
    }
}

TEST(BigRadixLegality, UnknownRadixIsAnInternalError) {
    for (unsigned radix : {7u, 8u, 0xFFFFFFFFu}) {
        SCOPED_TRACE(radix);
        EXPECT_INTERNAL_ERROR(big_string_is_legal("1", static_cast<BIG_RADIX>(radix)),
                              "Invalid radix.", "2", "big/big_radix");
    }
}

// --- Tables --------------------------------------------------------------------------------------

TEST(BigRadixTables, CharacterSetsAreTheDocumentedOnes) {
    EXPECT_STREQ(BIG_BINMAP, "01");
    EXPECT_STREQ(BIG_OCTMAP, "01234567");
    EXPECT_STREQ(BIG_HEXMAP, "0123456789ABCDEF");
    EXPECT_STREQ(BIG_SIGNED_DECMAP, "0123456789-");
    EXPECT_STREQ(BIG_UNSIGNED_DECMAP, "0123456789");
    EXPECT_STREQ(BIG_FRAC_FIX_POINTMAP, "0123456789-.E");
}

TEST(BigRadixTables, DigitPatternsCountInBinaryAndEndWithUnknown) {
    for (unsigned digit = 0; digit < 16; ++digit) {
        std::string pattern;
        for (unsigned bit = 8; bit != 0; bit /= 2)
            pattern += (digit & bit) != 0 ? '1' : '0';
        EXPECT_EQ(big_hex_string[digit], pattern);
        if (digit < 8) {
            EXPECT_EQ(big_oct_string[digit], pattern.substr(1));
        }
    }
    EXPECT_STREQ(big_hex_string[16], "XXXX");
    EXPECT_STREQ(big_oct_string[8], "XXX");
}

/// Puts another character set in place of one for the life of a test.
class OTHER_SET {
public:
    OTHER_SET(char const*& set, char const* other) : m_set(set), m_old(set) { m_set = other; }
    ~OTHER_SET() { m_set = m_old; }
    OTHER_SET(OTHER_SET const&) = delete;
    OTHER_SET& operator=(OTHER_SET const&) = delete;

private:
    char const*& m_set;
    char const* m_old;
};

TEST(BigRadixTables, LegalityFollowsTheSetThatIsInPlace) {
    OTHER_SET const other(BIG_BINMAP, "AB");
    EXPECT_TRUE(big_string_is_legal("aBb", BIG_BIN));
    EXPECT_FALSE(big_string_is_legal("01", BIG_BIN));
}

TEST(BigRadixTables, WrittenDigitsFollowTheSetThatIsInPlace) {
    OTHER_SET const other(BIG_HEXMAP, "0123456789abcdef");
    std::string binary = std::string(70, '1') + "01X1" + std::string(64, '1');
    std::string result;
    big_binary_to_number(&binary, &result, 4);
    EXPECT_EQ(result, "3" + std::string(17, 'f') + "X" + std::string(16, 'f'));
    EXPECT_EQ(big_radix_conversion("255", &result, BIG_UNSIGNED_DEC, BIG_HEX, 8), 0u);
    EXPECT_EQ(result, "ff");
}

// --- Single characters and binary digits ---------------------------------------------------------

TEST(BigRadixCharacters, PatternOfAByteIsItsEightBits) {
    EXPECT_EQ(big_get_ascii_char_value(65), "01000001");
    EXPECT_EQ(big_get_ascii_char_value(32), "00100000");
    EXPECT_EQ(big_get_ascii_char_value(static_cast<char>(0xFF)), "11111111");
    for (unsigned byte = 0; byte < 256; ++byte) {
        std::string pattern;
        for (unsigned mask = 128; mask != 0; mask /= 2)
            pattern += (byte & mask) != 0 ? '1' : '0';
        EXPECT_EQ(big_get_ascii_char_value(static_cast<char>(byte)), pattern) << "byte " << byte;
    }
}

TEST(BigRadixCharacters, ValueWithXOrZOrALevelIsNotReadable) {
    struct {
        char const* value;
        bool is_readable;
    } const cases[] = {
        // value   readable
        {"0", true},    {"-12.5E3", true}, {"", true},     {"0u1", true}, {"U", true},
        {"W", true},    {"-", true},       {"u-w", true},  {"X", false},  {"x", false},
        {"Z", false},   {"1z", false},     {"0h1", false}, {"H", false},  {"l", false},
        {"12L", false}, {"UX", false},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.value);
        EXPECT_EQ(value_is_fractional_readable(c.value), c.is_readable);
    }
}

TEST(BigRadixCharacters, ComplementKeepsTheLowestOneAndInvertsAbove) {
    struct {
        char const* why;
        char const* bits;
        char const* complement;
    } const cases[] = {
        // why                                     bits     complement
        {"nothing", "", ""},
        {"zero is its own complement", "0000", "0000"},
        {"one digit", "1", "1"},
        {"lowest digit is 1", "0101", "1011"},
        {"zeros below the lowest 1 stay", "0110", "1010"},
        {"so does the lowest value", "10", "10"},
        {"minus three", "0011", "1101"},
        {"what is no 1 becomes 1 above", "X100", "1100"},
        {"every logic value above", "XZUW-HL1", "11111111"},
        {"a logic value below stays", "01Z0", "11Z0"},
        {"only logic values", "XZ0", "XZ0"},
    };
    for (auto const& c : cases) {
        SCOPED_TRACE(c.why);
        std::string bits = c.bits;
        big_complement(&bits);
        EXPECT_EQ(bits, c.complement);
        EXPECT_EQ(bits, radix_oracle::two_s_complement(c.bits));
    }
}

TEST(BigRadixCharacters, ComplementTwiceGivesANumberBack) {
    std::mt19937_64 random(510);
    for (int i = 0; i < 1000; ++i) {
        std::string const bits =
            radix_oracle::random_source(random, BIG_BIN, 1 + random() % 200, false);
        SCOPED_TRACE(bits);
        std::string twice = bits;
        big_complement(&twice);
        EXPECT_EQ(twice, radix_oracle::two_s_complement(bits));
        big_complement(&twice);
        EXPECT_EQ(twice, bits);
    }
}

} // namespace
