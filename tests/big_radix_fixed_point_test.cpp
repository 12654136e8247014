// Fixed-point numbers: which texts are read, what fits, and that the process locale plays no part.

#include "big_radix.h"
#include "comma_locale.h"
#include "radix_oracle.h"
#include "recording_platform.h"

#include <cmath>
#include <cstdio>
#include <locale>

#include <gtest/gtest.h>

namespace {

using radix_oracle::CONVERSION;
using radix_oracle::describe;

CONVERSION convert(std::string const& source, BIG_RADIX from, BIG_RADIX to, unsigned int width) {
    CONVERSION conversion;
    conversion.status = big_radix_conversion(source, &conversion.result, from, to, width);
    return conversion;
}

// --- Reading -------------------------------------------------------------------------------------

struct READ_CASE {
    char const* why;
    std::string source;
    unsigned int width;
    unsigned int status;
    char const* result; ///< signed decimal
};

READ_CASE const READ_CASES[] = {
    // why, source, width, status, signed decimal
    {"a fraction", "0.5", 8, 0, "64"},
    {"without the zero", ".5", 8, 0, "64"},
    {"with a point last", "0.", 8, 0, "0"},
    {"negative", "-.5", 8, 0, "-64"},
    {"with a plus sign", "+0.5", 8, 0, "64"},
    {"with an exponent", "5e-1", 8, 0, "64"},
    {"in upper case, signed", "0.05E+1", 8, 0, "64"},
    {"an exponent without digits is what follows", "0.5e", 8, 0, "64"},
    {"so is one with a sign only", "0.5e-", 8, 0, "64"},
    {"blanks in front", " \t\n\v\f\r0.5", 8, 0, "64"},
    {"hexadecimal", "0x.8", 8, 0, "64"},
    {"hexadecimal with an exponent", "-0X1P-1", 8, 0, "-64"},
    {"hexadecimal without digits is 0", "0x", 8, 0, "0"},
    {"what follows the number", "0.5ns", 8, 0, "64"},
    {"a comma is what follows", "0,5", 8, 0, "0"},
    {"another point too", "0.5.5", 8, 0, "64"},
    {"a NUL inside too",
     std::string("0.5\0"
                 "9",
                 5),
     8, 0, "64"},
    {"a sign alone is no number", "-", 8, 0, "0"},
    {"two signs are none", "--0.5", 8, 0, "0"},
    {"nor is a word", "abc", 8, 0, "0"},
    {"a logic value is none", "X", 8, 0, "0"},
    {"minus zero is zero", "-0.0", 8, 0, "0"},
    {"less than the last bit is cut off", "0.0078124", 8, 0, "0"},
    {"the last bit", "0.0078125", 8, 0, "1"},
    {"toward zero", "-0.0155", 8, 0, "-1"},
    {"the lowest number", "-1", 8, 0, "-128"},
    {"one does not fit", "1", 8, 2, "-128"},
    {"nor does more", "1.5", 8, 2, "-64"},
    {"nor less than minus one", "-1.5", 8, 2, "64"},
    {"one bit", "-1", 1, 0, "-1"},
    {"zero in one bit", "0", 1, 2, "0"},
    {"width 0 halves", "6", 0, 0, "3"},
    {"and cuts toward zero", "-7", 0, 0, "-3"},
    {"the lowest number of 64 bits", "-1", 64, 0, "-9223372036854775808"},
    {"the highest double below one", "0.99999999999999989", 64, 0, "9223372036854774784"},
    {"one is more than 64 bits", "1", 64, 1, "X"},
    {"below minus one as well", "-1.0000000000000003", 64, 1, "X"},
    {"a wide one of few bits", "0.25", 65, 0, "4611686018427387904"},
    {"a wide one of more than 64", "0.5", 65, 1, "X"},
    {"the lowest that a wide one can have", "-0.5", 65, 0, "-9223372036854775808"},
    {"a tiny number in a wide one", "1e-300", 1024, 0, "89884656"},
    {"2^1024 is infinite", "0", 1025, 1, "X"},
    {"infinity", "inf", 8, 1, "X"},
    {"in any case", "-Infinity", 8, 1, "X"},
    {"not a number", "nan", 8, 1, "X"},
    {"with a code", "-NaN(7)", 8, 1, "X"},
    {"overflow is infinite", "1e400", 8, 1, "X"},
    {"underflow is zero", "1e-400", 8, 0, "0"},
    {"the smallest number there is", "4.9e-324", 8, 0, "0"},
};

TEST(BigRadixFixedPoint, TextIsReadAsTheCLibraryReadsIt) {
    for (READ_CASE const& c : READ_CASES) {
        SCOPED_TRACE(std::string(c.why) + ": \"" + c.source + "\", width "
                     + std::to_string(c.width));
        CONVERSION const expected{c.status, c.result};
        EXPECT_EQ(convert(c.source, BIG_FRAC_FIX_POINT, BIG_SIGNED_DEC, c.width), expected);
        EXPECT_EQ(radix_oracle::convert(c.source, "", BIG_FRAC_FIX_POINT, BIG_SIGNED_DEC, c.width),
                  expected);
    }
}

TEST(BigRadixFixedPoint, ScaledNumberIsPrintedByThePlatform) {
    recording::clear();
    EXPECT_EQ(convert("-0.5", BIG_FRAC_FIX_POINT, BIG_SIGNED_DEC, 8).status, 0u);
    EXPECT_EQ(recording::calls_of("MEM_DETAIL::stl_raw_sprintf"),
              (std::vector<recording::CALL>{{"MEM_DETAIL::stl_raw_sprintf", {"%lli", "-64"}}}));
}

// --- Writing -------------------------------------------------------------------------------------

TEST(BigRadixFixedPoint, NumberIsWrittenAsPrintfWritesIt) {
#ifdef NDEBUG
    int const count = 30000;
#else
    int const count = 3000;
#endif
    std::mt19937_64 random(551);
    for (int i = 0; i < count; ++i) {
        auto const width = static_cast<unsigned int>(random() % 1025);
        std::string const bits = radix_oracle::random_source(
            random, BIG_BIN, 1 + random() % (i % 10 == 0 ? 1100 : 70), i % 20 == 0);
        SCOPED_TRACE(describe(bits, BIG_BIN, BIG_FRAC_FIX_POINT, width));
        ASSERT_EQ(convert(bits, BIG_BIN, BIG_FRAC_FIX_POINT, width),
                  radix_oracle::convert(bits, "", BIG_BIN, BIG_FRAC_FIX_POINT, width));
    }
    recording::clear();
}

TEST(BigRadixFixedPoint, WidestTargetHasItsPointInFrontOf1023Bits) {
    std::string const lowest = "1" + std::string(1023, '0');
    EXPECT_EQ(convert(lowest, BIG_BIN, BIG_FRAC_FIX_POINT, 1024), (CONVERSION{0, "-1"}));
    EXPECT_EQ(convert("1", BIG_BIN, BIG_FRAC_FIX_POINT, 1024),
              (CONVERSION{0, "1.1125369292536007e-308"}));
}

// --- Locale --------------------------------------------------------------------------------------

/// What a conversion must give whatever the locale.
void expect_points_not_commas() {
    EXPECT_EQ(convert("0.5", BIG_FRAC_FIX_POINT, BIG_HEX, 8), (CONVERSION{0, "40"}));
    EXPECT_EQ(convert("0,5", BIG_FRAC_FIX_POINT, BIG_HEX, 8), (CONVERSION{0, "00"}));
    EXPECT_EQ(convert("-1.5e-1", BIG_FRAC_FIX_POINT, BIG_SIGNED_DEC, 8), (CONVERSION{0, "-19"}));
    EXPECT_EQ(convert("60", BIG_HEX, BIG_FRAC_FIX_POINT, 8), (CONVERSION{0, "0.75"}));
    EXPECT_EQ(convert("0.75", BIG_FRAC_FIX_POINT, BIG_FRAC_FIX_POINT, 8), (CONVERSION{0, "0.75"}));
    EXPECT_EQ(convert("1234567", BIG_UNSIGNED_DEC, BIG_FRAC_FIX_POINT, 2), (CONVERSION{2, "-0.5"}));
}

TEST(BigRadixFixedPoint, CommaLocaleOfTheProcessChangesNothing) {
    COMMA_LOCALE const comma;
    if (!comma.available())
        GTEST_SKIP() << "the build made no locale";
    char text[16];
    std::snprintf(text, sizeof text, "%.1f", 0.5);
    ASSERT_STREQ(text, "0,5"); // the locale is at work
    expect_points_not_commas();
}

TEST(BigRadixFixedPoint, CommaLocaleOfTheStreamsChangesNothing) {
    struct COMMA : std::numpunct<char> {
        char do_decimal_point() const override { return ','; }
        char do_thousands_sep() const override { return '.'; }
        std::string do_grouping() const override { return "\3"; }
    };
    std::locale const old = std::locale::global(std::locale(std::locale(), new COMMA));
    expect_points_not_commas();
    std::locale::global(old);
}

} // namespace
