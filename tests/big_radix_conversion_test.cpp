// The conversion from any radix to any other at a width.

#include "big_radix.h"
#include "radix_oracle.h"
#include "recording_platform.h"

#include <gtest/gtest.h>

namespace {

using radix_oracle::CONVERSION;
using radix_oracle::describe;
using radix_oracle::random_source;

/// Converts with a result that holds something already.
CONVERSION convert(std::string const& source, BIG_RADIX from, BIG_RADIX to, unsigned int width,
                   std::string const& previous = "before") {
    CONVERSION conversion{0, previous};
    conversion.status = big_radix_conversion(source, &conversion.result, from, to, width);
    return conversion;
}

// --- Examples ------------------------------------------------------------------------------------

struct CASE {
    char const* why;
    char const* source;
    BIG_RADIX from;
    BIG_RADIX to;
    unsigned int width;
    unsigned int status;
    char const* result;
};

CASE const CASES[] = {
    // why, source, from, to, width, status, result
    {"hexadecimal to decimal", "1F", BIG_HEX, BIG_UNSIGNED_DEC, 8, 0, "31"},
    {"letters of either case", "fF", BIG_HEX, BIG_UNSIGNED_DEC, 8, 0, "255"},
    {"the same bits signed", "fF", BIG_HEX, BIG_SIGNED_DEC, 8, 0, "-1"},
    {"with room for the sign", "fF", BIG_HEX, BIG_SIGNED_DEC, 9, 0, "255"},
    {"the natural width has none", "1F", BIG_HEX, BIG_SIGNED_DEC, 0, 0, "-1"},
    {"sign extension", "-1", BIG_SIGNED_DEC, BIG_HEX, 8, 0, "FF"},
    {"the natural width of -1 has two bits", "-1", BIG_SIGNED_DEC, BIG_HEX, 0, 0, "3"},
    {"too large", "300", BIG_UNSIGNED_DEC, BIG_HEX, 8, 2, "2C"},
    {"an illegal digit", "1G", BIG_HEX, BIG_UNSIGNED_DEC, 8, 1, "X"},
    {"an illegal digit above the width", "G001", BIG_HEX, BIG_HEX, 4, 1, "X"},
    {"logic values are kept", "1XZ0", BIG_BIN, BIG_BIN, 0, 0, "1XZ0"},
    {"and fill", "Z", BIG_HEX, BIG_HEX, 8, 0, "ZZ"},
    {"a fixed-point number", "0.75", BIG_FRAC_FIX_POINT, BIG_FRAC_FIX_POINT, 8, 0, "0.75"},
    {"a negative one", "-1.5E-1", BIG_FRAC_FIX_POINT, BIG_FRAC_FIX_POINT, 8, 0, "-0.1484375"},
    {"a byte", "A", BIG_ASCII, BIG_HEX, 8, 0, "41"},
    {"and back", "41", BIG_HEX, BIG_ASCII, 8, 0, "A"},
    {"a bad escape", "\\a", BIG_ASCII, BIG_HEX, 8, 1, "X"},
    {"a bad code leaves no trace", "[256]", BIG_ASCII, BIG_BIN, 8, 1, "X"},
    {"octal to hexadecimal", "777", BIG_OCT, BIG_HEX, 9, 0, "1FF"},
    {"hexadecimal to octal", "1FF", BIG_HEX, BIG_OCT, 0, 0, "777"},
    {"a short binary vector is filled", "x01", BIG_BIN, BIG_HEX, 8, 0, "XX"},
    {"a number is filled with zeros", "101", BIG_BIN, BIG_HEX, 8, 0, "05"},
    {"a long one loses its zeros first", "000101", BIG_BIN, BIG_OCT, 3, 0, "5"},
    {"and then its bits", "1101", BIG_BIN, BIG_OCT, 3, 2, "5"},
    {"a minus sign is don't care in binary", "-", BIG_BIN, BIG_HEX, 4, 0, "-"},
    {"Z in decimal", "z", BIG_UNSIGNED_DEC, BIG_HEX, 8, 0, "ZZ"},
    {"a sign alone has no digit: Z", "-", BIG_SIGNED_DEC, BIG_HEX, 0, 0, "Z"},
    {"which fills", "-", BIG_SIGNED_DEC, BIG_HEX, 8, 0, "ZZ"},
    {"in octal too", "-", BIG_SIGNED_DEC, BIG_OCT, 0, 0, "Z"},
    {"and in a width", "-", BIG_SIGNED_DEC, BIG_OCT, 6, 0, "ZZ"},
    {"and comes back", "-", BIG_SIGNED_DEC, BIG_SIGNED_DEC, 0, 0, "Z"},
    {"in a width", "-", BIG_SIGNED_DEC, BIG_SIGNED_DEC, 8, 0, "Z"},
    {"without a sign", "-", BIG_SIGNED_DEC, BIG_UNSIGNED_DEC, 8, 0, "Z"},
    {"unsigned it is don't care", "-", BIG_UNSIGNED_DEC, BIG_HEX, 0, 0, "X"},
    {"unknown in decimal", "1x", BIG_SIGNED_DEC, BIG_UNSIGNED_DEC, 8, 0, "X"},
    {"levels as digits", "hL", BIG_UNSIGNED_DEC, BIG_UNSIGNED_DEC, 0, 0, "10"},
    {"unknown bits cut off leave a number", "XX05", BIG_HEX, BIG_UNSIGNED_DEC, 8, 2, "5"},
    {"zero signed in one bit", "0", BIG_SIGNED_DEC, BIG_SIGNED_DEC, 1, 2, "0"},
    {"the lowest number of a width", "-128", BIG_SIGNED_DEC, BIG_SIGNED_DEC, 8, 0, "-128"},
    {"one below", "-129", BIG_SIGNED_DEC, BIG_SIGNED_DEC, 8, 2, "127"},
    {"one above the highest", "128", BIG_SIGNED_DEC, BIG_SIGNED_DEC, 8, 2, "-128"},
    {"a multiple of 2^width", "-256", BIG_SIGNED_DEC, BIG_SIGNED_DEC, 8, 2, "0"},
    {"negative as unsigned", "-1", BIG_SIGNED_DEC, BIG_UNSIGNED_DEC, 64, 0, "18446744073709551615"},
    {"beyond a word", "-1", BIG_SIGNED_DEC, BIG_UNSIGNED_DEC, 65, 0, "36893488147419103231"},
    {"minus 2^63", "8000000000000000", BIG_HEX, BIG_SIGNED_DEC, 64, 0, "-9223372036854775808"},
    {"2^63 - 1", "7FFFFFFFFFFFFFFF", BIG_HEX, BIG_SIGNED_DEC, 64, 0, "9223372036854775807"},
    {"2^64", "18446744073709551616", BIG_UNSIGNED_DEC, BIG_HEX, 64, 2, "0000000000000000"},
    {"infinity is no fixed-point number", "inf", BIG_FRAC_FIX_POINT, BIG_HEX, 8, 1, "X"},
    {"the widest fixed-point target", "0", BIG_HEX, BIG_FRAC_FIX_POINT, 1024, 0, "0"},
};

TEST(BigRadixConversion, ValueIsWrittenInTheOtherRadix) {
    for (CASE const& c : CASES) {
        SCOPED_TRACE(std::string(c.why) + ": " + describe(c.source, c.from, c.to, c.width));
        EXPECT_EQ(convert(c.source, c.from, c.to, c.width), (CONVERSION{c.status, c.result}));
        EXPECT_EQ(radix_oracle::convert(c.source, "before", c.from, c.to, c.width),
                  (CONVERSION{c.status, c.result}));
    }
}

// --- Failures ------------------------------------------------------------------------------------

TEST(BigRadixConversion, TooWideAFixedPointTargetAppendsItsX) {
    EXPECT_EQ(convert("1", BIG_HEX, BIG_FRAC_FIX_POINT, 1025, "abc"), (CONVERSION{1, "abcX"}));
    // Before anything is looked at, even the radix of the source.
    EXPECT_EQ(convert("?", static_cast<BIG_RADIX>(7), BIG_FRAC_FIX_POINT, 0xFFFFFFFFu, "abc"),
              (CONVERSION{1, "abcX"}));
    std::string itself = "12";
    EXPECT_EQ(big_radix_conversion(itself, &itself, BIG_HEX, BIG_FRAC_FIX_POINT, 1025), 1u);
    EXPECT_EQ(itself, "12X");
}

TEST(BigRadixConversion, EmptySourceIsAnInternalErrorBeforeAnythingElse) {
    std::string result = "abc";
    for (unsigned from = 0; from <= 7; ++from)
        for (unsigned to = 0; to <= 7; ++to) {
            SCOPED_TRACE(std::to_string(from) + " to " + std::to_string(to));
            EXPECT_INTERNAL_ERROR(big_radix_conversion("", &result, static_cast<BIG_RADIX>(from),
                                                       static_cast<BIG_RADIX>(to), 2000),
                                  "source.size() > 0", "2", "big/big_radix");
        }
    EXPECT_EQ(result, "abc");
}

TEST(BigRadixConversion, UnknownSourceRadixIsAnInternalErrorThatKeepsTheResult) {
    for (unsigned from : {7u, 8u, 0xFFFFFFFFu})
        for (unsigned to = 0; to <= 7; ++to) {
            SCOPED_TRACE(std::to_string(from) + " to " + std::to_string(to));
            std::string result = "abc";
            EXPECT_INTERNAL_ERROR(big_radix_conversion("1", &result, static_cast<BIG_RADIX>(from),
                                                       static_cast<BIG_RADIX>(to), 8),
                                  "Invalid radix.", "2", "big/big_radix");
            EXPECT_EQ(result, "abc");
        }
}

TEST(BigRadixConversion, UnknownTargetRadixIsAnInternalErrorThatClearsTheResult) {
    for (unsigned from = 0; from <= BIG_ASCII; ++from)
        for (unsigned to : {7u, 8u, 0xFFFFFFFFu}) {
            SCOPED_TRACE(std::to_string(from) + " to " + std::to_string(to));
            std::string result = "abc";
            EXPECT_INTERNAL_ERROR(big_radix_conversion("1", &result, static_cast<BIG_RADIX>(from),
                                                       static_cast<BIG_RADIX>(to), 8),
                                  "Invalid radix.", "2", "big/big_radix");
            EXPECT_EQ(result, "");
        }
}

TEST(BigRadixConversion, IllegalSourceHidesAnUnknownTargetRadix) {
    EXPECT_EQ(convert("G", BIG_HEX, static_cast<BIG_RADIX>(7), 8), (CONVERSION{1, "X"}));
    EXPECT_EQ(convert("1.5", BIG_SIGNED_DEC, static_cast<BIG_RADIX>(9), 8), (CONVERSION{1, "X"}));
}

TEST(BigRadixConversion, UnprintableBytesWriteTheirDebugMessagesWhateverTheTarget) {
    recording::CALL const message = recording::debug("Default non printable character to NULL");
    for (unsigned to = 0; to <= BIG_ASCII; ++to) {
        recording::clear();
        EXPECT_EQ(convert("a\tb\x80", BIG_ASCII, static_cast<BIG_RADIX>(to), 32).status, 0u);
        EXPECT_EQ(recording::reports(), std::vector<recording::CALL>(2, message));
    }
}

// --- Every pair of radixes -----------------------------------------------------------------------

std::vector<unsigned int> widths() {
    std::vector<unsigned int> all;
    for (unsigned int width = 0; width <= 130; ++width)
        all.push_back(width);
    for (unsigned int width : {191u, 192u, 193u, 255u, 256u, 257u, 511u, 512u, 1000u, 1023u, 1024u,
                               1025u, 2048u, 2500u, 4095u, 4096u})
        all.push_back(width);
    return all;
}

/// Characters of a source of about so many bits.
std::size_t length_of(BIG_RADIX radix, std::size_t bits) {
    switch (radix) {
    case BIG_BIN: return bits;
    case BIG_OCT: return bits / 3;
    case BIG_HEX: return bits / 4;
    case BIG_ASCII: return bits / 8;
    default: return bits * 3 / 10;
    }
}

TEST(BigRadixConversion, EveryPairOfRadixesAtEveryWidthAgreesWithTheRules) {
#ifdef NDEBUG
    int const rounds = 3;
#else
    int const rounds = 1;
#endif
    std::mt19937_64 random(540);
    for (int round = 0; round < rounds; ++round)
        for (unsigned int const width : widths())
            for (unsigned pair = 0; pair < 49; ++pair) {
                auto const from = static_cast<BIG_RADIX>(pair / 7);
                auto const to = static_cast<BIG_RADIX>(pair % 7);
#ifndef NDEBUG
                if (width > 130 && random() % 4 != 0)
                    continue;
#endif
                // Shorter than the width, about as long, or longer.
                std::size_t const bits = width * (1 + random() % 3) / 2 + random() % 9;
                std::string const source =
                    random_source(random, from, 1 + length_of(from, bits), random() % 2 == 0);
                SCOPED_TRACE(describe(source, from, to, width));
                ASSERT_EQ(convert(source, from, to, width),
                          radix_oracle::convert(source, "before", from, to, width));
                recording::clear();
            }
}

TEST(BigRadixConversion, EveryPairOfRadixesAgreesOnShortSources) {
#ifdef NDEBUG
    int const count = 200000;
#else
    int const count = 15000;
#endif
    std::mt19937_64 random(541);
    for (int i = 0; i < count; ++i) {
        auto const from = static_cast<BIG_RADIX>(random() % 7);
        auto const to = static_cast<BIG_RADIX>(random() % 7);
        auto const width = static_cast<unsigned int>(random() % 20);
        std::string source = random_source(random, from, 1 + random() % 6, random() % 2 == 0);
        if (random() % 16 == 0)
            source[random() % source.size()] = static_cast<char>(1 + random() % 255);
        SCOPED_TRACE(describe(source, from, to, width));
        ASSERT_EQ(convert(source, from, to, width),
                  radix_oracle::convert(source, "before", from, to, width));
        recording::clear();
    }
}

TEST(BigRadixConversion, ShortNumbersInWideVectorsAgreeWithTheRules) {
    std::mt19937_64 random(546);
    for (int i = 0; i < 200; ++i)
        for (unsigned pair = 0; pair < 25; ++pair) {
            auto const from = static_cast<BIG_RADIX>(pair / 5);
            auto const to = static_cast<BIG_RADIX>(pair % 5);
            auto const width = static_cast<unsigned int>(random() % 140);
            std::string source(random() % 60, '0');
            source += random_source(random, from, 1 + random() % 24, random() % 8 == 0);
            SCOPED_TRACE(describe(source, from, to, width));
            ASSERT_EQ(convert(source, from, to, width),
                      radix_oracle::convert(source, "before", from, to, width));
        }
}

TEST(BigRadixConversion, EverySmallSignedNumberFitsItsWidthByTheRules) {
    for (unsigned int width = 0; width <= 9; ++width)
        for (int number = -300; number <= 300; ++number)
            for (BIG_RADIX const to : {BIG_BIN, BIG_HEX, BIG_SIGNED_DEC, BIG_UNSIGNED_DEC})
                for (BIG_RADIX const from : {BIG_SIGNED_DEC, BIG_UNSIGNED_DEC}) {
                    std::string const source = std::to_string(number);
                    SCOPED_TRACE(describe(source, from, to, width));
                    ASSERT_EQ(convert(source, from, to, width),
                              radix_oracle::convert(source, "before", from, to, width));
                }
}

/// Numbers about the powers of two, where lengths change and signs turn.
TEST(BigRadixConversion, NeighboursOfPowersOfTwoAgreeWithTheRules) {
    for (unsigned int exponent = 0; exponent <= 200; ++exponent) {
        std::string const zeros(exponent, '0');
        std::string const ones(exponent, '1');
        for (std::string const& bits : {"1" + zeros, "0" + ones, "1" + ones, "01" + zeros})
            for (BIG_RADIX const to : {BIG_SIGNED_DEC, BIG_UNSIGNED_DEC})
                for (int offset = -1; offset <= 1; ++offset) {
                    auto const width =
                        static_cast<unsigned int>(static_cast<int>(bits.size()) + offset);
                    SCOPED_TRACE(describe(bits, BIG_BIN, to, width));
                    CONVERSION const there = convert(bits, BIG_BIN, to, width);
                    ASSERT_EQ(there, radix_oracle::convert(bits, "", BIG_BIN, to, width));
                    for (BIG_RADIX const back : {BIG_HEX, BIG_SIGNED_DEC, BIG_UNSIGNED_DEC})
                        ASSERT_EQ(convert(there.result, to, back, width),
                                  radix_oracle::convert(there.result, "", to, back, width));
                }
    }
}

TEST(BigRadixConversion, ResultDoesNotDependOnWhatItHeldBefore) {
    std::mt19937_64 random(542);
    for (unsigned pair = 0; pair < 49; ++pair) {
        auto const from = static_cast<BIG_RADIX>(pair / 7);
        auto const to = static_cast<BIG_RADIX>(pair % 7);
        for (unsigned int const width : {0u, 7u, 64u, 100u}) {
            std::string const source = random_source(random, from, 12, pair % 2 == 0);
            SCOPED_TRACE(describe(source, from, to, width));
            CONVERSION const expected = convert(source, from, to, width, "");
            for (std::size_t length : {1u, 2u, 15u, 16u, 64u, 300u})
                ASSERT_EQ(convert(source, from, to, width, std::string(length, '?')), expected);

            std::string itself = source;
            EXPECT_EQ(big_radix_conversion(itself, &itself, from, to, width), expected.status);
            EXPECT_EQ(itself, expected.result);
        }
    }
    recording::clear();
}

// --- Round trips ---------------------------------------------------------------------------------

/// Binary digits at their own width survive every radix that writes all bits of a number.
TEST(BigRadixConversion, NumbersComeBackFromEveryRadix) {
#ifdef NDEBUG
    int const count = 3000;
#else
    int const count = 300;
#endif
    std::mt19937_64 random(543);
    for (int i = 0; i < count; ++i) {
        std::string const bits = random_source(random, BIG_BIN, 1 + random() % 300, false);
        auto const width = static_cast<unsigned int>(bits.size());
        for (BIG_RADIX const radix :
             {BIG_OCT, BIG_HEX, BIG_SIGNED_DEC, BIG_UNSIGNED_DEC, BIG_ASCII}) {
            SCOPED_TRACE(describe(bits, BIG_BIN, radix, width));
            CONVERSION const there = convert(bits, BIG_BIN, radix, width);
            ASSERT_EQ(there.status, 0u);
            // A zero signed is two digits, which one bit does not hold.
            unsigned int const status = radix == BIG_SIGNED_DEC && bits == "0" ? 2 : 0;
            // The top digit of octal, hexadecimal and ASCII text may say more than the width holds,
            // and what it has too much is zero.
            CONVERSION const back = convert(there.result, radix, BIG_BIN, width);
            ASSERT_EQ(back.result, bits);
            if (radix != BIG_ASCII) {
                ASSERT_EQ(back.status, status);
            }
        }
    }
}

TEST(BigRadixConversion, LogicValuesOfWholeDigitsComeBack) {
    std::mt19937_64 random(544);
    std::string const digits = "0123456789ABCDEFXZUW-HL";
    for (int i = 0; i < 2000; ++i) {
        std::string source;
        for (std::size_t length = 1 + random() % 40; length > 0; --length)
            source += digits[random() % digits.size()];
        auto const width = static_cast<unsigned int>(4 * source.size());
        SCOPED_TRACE(source);
        CONVERSION const there = convert(source, BIG_HEX, BIG_BIN, width);
        ASSERT_EQ(there.status, 0u);
        ASSERT_EQ(convert(there.result, BIG_BIN, BIG_HEX, width), (CONVERSION{0, source}));
    }
}

/// Up to 53 bits a fixed-point number is exact.
TEST(BigRadixConversion, FixedPointNumbersComeBackUpTo53Bits) {
    std::mt19937_64 random(545);
    for (int i = 0; i < 2000; ++i) {
        auto const width = static_cast<unsigned int>(1 + random() % 53);
        std::string const bits = random_source(random, BIG_BIN, width, false);
        SCOPED_TRACE(bits);
        CONVERSION const there = convert(bits, BIG_BIN, BIG_FRAC_FIX_POINT, width);
        ASSERT_EQ(there.status, 0u);
        CONVERSION const back = convert(there.result, BIG_FRAC_FIX_POINT, BIG_BIN, width);
        ASSERT_EQ(back.result, bits);
        ASSERT_EQ(back.status, bits == "0" ? 2u : 0u);
    }
    recording::clear();
}

} // namespace
