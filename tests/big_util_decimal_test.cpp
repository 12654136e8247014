// Decimal numbers held as text: trimming, cutting, rounding and reading them.

#include "time_library.h"
#include "time_samples.h"

namespace {

std::vector<recording::CALL> const SILENCE;

std::vector<recording::CALL> const TOO_BIG = {
    {"err_report_internal_error",
     {"The input time is too big. It is over 64 bits.", "2", "big/big_util"}}};

// ------------------------------------------------------------------------------------------------
// Blanks
// ------------------------------------------------------------------------------------------------

struct BLANKS_ROW {
    char const* why;
    std::string text;
    std::string without_leading;
    std::string without_trailing;
};

// clang-format off
BLANKS_ROW const BLANKS[] = {
    // why                             text                       begin                  end
    {"nothing",                       "",                        "",                    ""},
    {"no blank",                      "12 ns",                   "12 ns",               "12 ns"},
    {"blanks only",                   " \t\n\v\f\r",             "",                    ""},
    {"blanks of all six kinds",       "\t\n\v\f\r 5 \r\f\v\n\t", "5 \r\f\v\n\t",        "\t\n\v\f\r 5"},
    {"a blank inside stays",          " 1 2 ",                   "1 2 ",                " 1 2"},
    {"neighbours of the six bytes",   "\x08\x0e",                "\x08\x0e",            "\x08\x0e"},
    {"bytes above 127 are not blank", "\xa0 5 \x85",             "\xa0 5 \x85",         "\xa0 5 \x85"},
    {"NUL is not blank",              std::string(" \0 ", 3),    std::string("\0 ", 2), std::string(" \0", 2)},
};
// clang-format on

TEST(BigUtilDecimal, BlanksGoFromOneEnd) {
    for (BLANKS_ROW const& row : BLANKS) {
        SCOPED_TRACE(row.why);
        expect_of_both(
            [&](auto& times) {
                std::string leading = row.text;
                std::string trailing = row.text;
                times.trim_begin_blankspace(leading);
                times.trim_end_blankspace(trailing);
                return words(leading, trailing);
            },
            {words(row.without_leading, row.without_trailing), SILENCE});
    }
}

// ------------------------------------------------------------------------------------------------
// Cutting
// ------------------------------------------------------------------------------------------------

struct CUT_ROW {
    char const* why;
    char const* text;
    unsigned int precision;
    char const* result;
};

// clang-format off
CUT_ROW const CUTS[] = {
    // why                               text           precision    result
    {"digits beyond the precision go",  "1.23456",     2,           "1.23"},
    {"digits beyond the precision go",  "1.23456",     5,           "1.23456"},
    {"digits beyond the precision go",  "-1.999",      1,           "-1.9"},
    {"digits beyond the precision go",  "1.23456",     1,           "1.2"},
    {"0 takes the point along",         "7.9",         0,           "7"},
    {"0 takes the point along",         "12.0",        0,           "12"},
    {"0 takes the point along",         ".5",          0,           ""},
    {"0 takes the point along",         "-.5",         0,           "-"},
    {"but not a point without digits",  "12.",         0,           "12."},
    {"but not a point without digits",  ".",           0,           "."},
    {"but not a point without digits",  "5. ns",       0,           "5. ns"},
    {"what follows the digits stays",   "1.23456ns",   2,           "1.23ns"},
    {"what follows the digits stays",   "1.23456 ns",  0,           "1 ns"},
    {"what follows the digits stays",   "1.2.3456",    0,           "1.3456"},
    {"only the first point counts",     "1.2345.6789", 2,           "1.23.6789"},
    {"only the first point counts",     "1.2.3456",    1,           "1.2.3456"},
    {"nothing is added",                "1.2",         3,           "1.2"},
    {"nothing is added",                "1.",          3,           "1."},
    {"nothing is added",                "1.2",         4294967295u, "1.2"},
    {"without a point nothing changes", "12345",       0,           "12345"},
    {"without a point nothing changes", "",            0,           ""},
    {"bytes above 127 end the digits",  "1.2\xb2" "5", 0,           "1\xb2" "5"},
};
// clang-format on

TEST(BigUtilDecimal, DigitsBeyondAPrecisionAreCut) {
    for (CUT_ROW const& row : CUTS) {
        SCOPED_TRACE(words(std::string(row.why), std::string(row.text)));
        expect_of_both(
            [&](auto& times) {
                std::string s = row.text;
                times.truncate_to_precision(s, row.precision);
                return words(s);
            },
            {words(std::string(row.result)), SILENCE});
    }
}

struct ZERO_ROW {
    char const* why;
    char const* text;
    char const* result;
};

// clang-format off
ZERO_ROW const ZEROS[] = {
    // why                                                   text       result
    {"one digit after the point stays",                     "1.000",   "1.0"},
    {"one digit after the point stays",                     "10.00",   "10.0"},
    {"one digit after the point stays",                     "1.0",     "1.0"},
    {"one digit after the point stays",                     ".000",    ".0"},
    {"one digit after the point stays",                     ".0",      ".0"},
    {"zeros after the last other digit go",                 "1.0500",  "1.05"},
    {"zeros after the last other digit go",                 "-0.10",   "-0.1"},
    {"a point without digits stays",                        "1.",      "1."},
    {"a point without digits stays",                        ".",       "."},
    {"zeros before the point stay",                         "100",     "100"},
    {"zeros before the point stay",                         "100.",    "100."},
    {"nothing",                                             "",        ""},
    {"a text that ends in anything else stays",             "1.500ns", "1.500ns"},
    {"a text that ends in anything else stays",             "1.500 ",  "1.500 "},
    // only the end of the text is looked at, not where the digits after the point end
    {"a zero that ends a unit goes as well",                "1.5 x0",  "1.5 x"},
    {"a second point is not special",                       "1.2.000", "1.2."},
    {"the character after the point stays, whatever it is", "1.x000",  "1.x"},
};
// clang-format on

TEST(BigUtilDecimal, TrailingZerosAfterThePointGo) {
    for (ZERO_ROW const& row : ZEROS) {
        SCOPED_TRACE(words(std::string(row.why), std::string(row.text)));
        expect_of_both(
            [&](auto& times) {
                std::string s = row.text;
                times.trim_end_zero(s);
                return words(s);
            },
            {words(std::string(row.result)), SILENCE});
    }
}

// ------------------------------------------------------------------------------------------------
// Reading
// ------------------------------------------------------------------------------------------------

struct NUMBER_ROW {
    char const* why;
    char const* text;
    long long value;
};

// clang-format off
NUMBER_ROW const NUMBERS[] = {
    // why                                           text                   value
    {"digits are a number",                         "0",                   0},
    {"digits are a number",                         "42",                  42},
    {"digits are a number",                         "9223372036854775807", HIGHEST},
    {"digits are a number",                         "1000000000000000000", 1000000000000000000},
    {"leading zeros count for nothing but length",  "0000000000000000001", 1},
    {"nothing is 0",                                "",                    0},
    {"the next number wraps",                       "9223372036854775808", LOWEST},
    {"so do all up to nineteen nines",              "9999999999999999999", -8446744073709551617},
    // a digit's power is counted from the end of the whole text, whether or not a point comes
    {"a point ends the number and keeps its place", "12.5",                1200},
    {"a point ends the number and keeps its place", "1.",                  10},
    {"a point ends the number and keeps its place", ".",                   0},
    {"a point ends the number and keeps its place", ".5",                  0},
    {"a point ends the number and keeps its place", "1.00000000000000000", 1000000000000000000},
    {"a point ends the number and keeps its place", "93.0000000000000000", -9146744073709551616},
    // characters are not checked: each counts by its distance from '0'
    {"a sign is three or five below 0",             "-5",                  -25},
    {"a sign is three or five below 0",             "+5",                  -45},
    {"a letter is above 9",                         "1a",                  59},
    {"a blank is sixteen below 0",                  " 5",                  -155},
};
// clang-format on

TEST(BigUtilDecimal, DigitsAreReadIntoANumber) {
    for (NUMBER_ROW const& row : NUMBERS) {
        SCOPED_TRACE(words(std::string(row.why), std::string(row.text)));
        expect_of_both([&](auto& times) { return words(times.atoi64(row.text)); },
                       {words(row.value), SILENCE});
    }
}

TEST(BigUtilDecimal, TwentyCharactersAreTooManyForANumber) {
    for (char const* const text :
         {"00000000000000000001", "12345678901234567890", "1.000000000000000000",
          "100000000000000000000000000", "....................", "                    "}) {
        SCOPED_TRACE(text);
        expect_of_both([&](auto& times) { return words(times.atoi64(text)); },
                       {LEFT_BY_INTERNAL_ERROR, TOO_BIG});
    }
    EXPECT_INTERNAL_ERROR(big_atoi64("00000000000000000000"),
                          "The input time is too big. It is over 64 bits.", "2", "big/big_util");
}

// ------------------------------------------------------------------------------------------------
// Rounding
// ------------------------------------------------------------------------------------------------

struct INCREMENT_ROW {
    char const* why;
    char const* text;
    char const* result;
};

// clang-format off
INCREMENT_ROW const INCREMENTS[] = {
    // why                                   text         result
    {"the last digit grows",                "4",         "5"},
    {"the last digit grows",                "0",         "1"},
    {"the last digit grows",                "-1.28",     "-1.29"},
    {"the last digit grows",                "+10",       "+11"},
    {"a nine carries",                      "19",        "20"},
    {"a nine carries",                      "1.99",      "2.00"},
    {"a nine carries",                      "19.9",      "20.0"},
    {"a nine carries",                      "-0.9",      "-1.0"},
    {"a nine carries",                      "1.0999",    "1.1000"},
    {"digits before the carry stay",        "989",       "990"},
    {"only nines grow by a digit",          "9",         "10"},
    {"only nines grow by a digit",          "99",        "100"},
    {"only nines grow by a digit",          "9.99",      "10.00"},
    {"only nines grow by a digit",          ".99",       "1.00"},
    {"the new digit comes after a sign",    "-9",        "-10"},
    {"the new digit comes after a sign",    "+9.9",      "+10.0"},
    {"the new digit comes after a sign",    "-.9",       "-1.0"},
    {"a point at the end is passed over",   "12.",       "13."},
    {"a point at the end is passed over",   "9.",        "10."},
    {"a sign at the end is passed over",    "12-",       "13-"},
    {"a text without digits becomes a one", ".",         "1."},
    {"a text without digits becomes a one", "-",         "-1"},
    {"a text without digits becomes a one", "+.",        "+1."},
    {"a sign inside is passed over",        "1-9",       "2-0"},
    {"a sign inside is passed over",        "9-9",       "10-0"},
    {"blanks at both ends go",              " \t19\r\n", "20"},
    {"blanks at both ends go",              "\v4\f",     "5"},
    {"blanks alone become nothing",         " \t ",      ""},
};
// clang-format on

TEST(BigUtilDecimal, RoundingAddsOneInTheLastPlace) {
    for (INCREMENT_ROW const& row : INCREMENTS) {
        SCOPED_TRACE(words(std::string(row.why), std::string(row.text)));
        expect_of_both(
            [&](auto& times) {
                std::string s = row.text;
                times.rounding(s);
                return words(s);
            },
            {words(std::string(row.result)), SILENCE});
    }
}

TEST(BigUtilDecimal, RoundingOfNothingIsAnInternalError) {
    std::string empty;
    EXPECT_INTERNAL_ERROR(big_rounding(&empty), "!str->empty()", "2", "big/big_util");
    EXPECT_EQ(empty, "");
}

struct ROUND_ROW {
    char const* why;
    char const* text;
    unsigned int precision;
    char const* kept;    // trailing zeros kept
    char const* trimmed; // trailing zeros trimmed
};

// clang-format off
ROUND_ROW const ROUNDS[] = {
    // why                                           text                    precision kept                    trimmed
    {"half goes up",                                "2.5",                  0,        "3",                    "3"},
    {"half goes up",                                "3.14159",              3,        "3.142",
     "3.142"},
    {"half goes up",                                "0.005",                2,        "0.01",
     "0.01"},
    {"half goes up",                                "0.05",                 0,        "0",                    "0"},
    {"half of a negative goes down",                "-2.5",                 0,        "-3",                   "-3"},
    {"half of a negative goes down",                "-2.45",                1,        "-2.5",
     "-2.5"},
    {"half of a negative goes down",                "-0.5",                 0,        "-1",                   "-1"},
    {"less goes",                                   "2.4",                  0,        "2",                    "2"},
    {"less goes",                                   "1.2",                  0,        "1",                    "1"},
    {"only one digit decides",                      "0.45",                 0,        "0",                    "0"},
    {"only one digit decides",                      "1.4499",               1,        "1.4",
     "1.4"},
    {"only one digit decides",                      "0.4999999999",         0,        "0",                    "0"},
    {"a carry runs through the point",              "9.996",                2,        "10.00",
     "10.0"},
    {"a carry runs through the point",              "99.95",                1,        "100.0",
     "100.0"},
    {"a carry runs through the point",              "-0.96",                1,        "-1.0",
     "-1.0"},
    {"a carry runs through the point",              "999.9",                0,        "1000",
     "1000"},
    {"a carry runs through the point",              "+9.5",                 0,        "+10",
     "+10"},
    {"a zero keeps its sign",                       "-0.4",                 0,        "-0",                   "-0"},
    {"a zero keeps its sign",                       "-0.04",                1,        "-0.0",
     "-0.0"},
    {"trailing zeros go if asked to",               "1.250",                3,        "1.250",
     "1.25"},
    {"trailing zeros go if asked to",               "0.000",                1,        "0.0",
     "0.0"},
    {"trailing zeros go if asked to",               "0.000",                3,        "0.000",
     "0.0"},
    {"trailing zeros go if asked to",               "1.2995",               3,        "1.300",
     "1.3"},
    {"nothing is added",                            "1.2",                  3,        "1.2",
     "1.2"},
    {"nothing is added",                            "5.",                   1,        "5.",                   "5."},
    {"nothing is added",                            "5.",                   0,        "5.",                   "5."},
    {"without a point nothing changes",             "125",                  0,        "125",
     "125"},
    {"without a point nothing changes",             "100",                  2,        "100",
     "100"},
    {"without a point nothing changes",             "",                     0,        "",                     ""},
    {"without a point nothing changes",             " 5 ",                  0,        " 5 ",
     " 5 "},
    {"blanks go only when something is rounded up", " 1.5",                 0,        "2",                    "2"},
    {"blanks go only when something is rounded up", " 1.4",                 0,        " 1",                   " 1"},
    {"no digit may be left before the point",       ".4",                   0,        "",                     ""},
    {"a sign alone may be left",                    "-.4",                  0,        "-",                    "-"},
    {"a sign alone may be left and become one",     "-.5",                  0,        "-1",                   "-1"},
    {"exact to nineteen digits",                    "9223372036.854775807", 8,        "9223372036.85477581",
     "9223372036.85477581"},
    {"exact to nineteen digits",                    "9999999.999999999999", 11,       "10000000.00000000000",
     "10000000.0"},
};
// clang-format on

TEST(BigUtilDecimal, NumbersAreRoundedHalfUpOnTheMagnitude) {
    for (ROUND_ROW const& row : ROUNDS) {
        for (bool const trim : {false, true}) {
            SCOPED_TRACE(words(std::string(row.why), std::string(row.text), trim));
            expect_of_both(
                [&](auto& times) {
                    std::string s = row.text;
                    times.round_to_precision(s, row.precision, trim);
                    return words(s);
                },
                {words(std::string(trim ? row.trimmed : row.kept)), SILENCE});
        }
    }
}

// Cutting .5 to no places leaves no text at all, which cannot be rounded up.
TEST(BigUtilDecimal, RoundingALeadingPointAwayIsAnInternalError) {
    for (bool const trim : {false, true}) {
        std::string s = ".5";
        EXPECT_INTERNAL_ERROR(big_round_to_precision(&s, 0, trim), "!str->empty()", "2",
                              "big/big_util");
    }
}

// ------------------------------------------------------------------------------------------------
// Properties
// ------------------------------------------------------------------------------------------------

// Digits, points, signs and blanks around them: all that may stand where a number is rounded.
std::string decimal_text(TIME_SAMPLES& samples) {
    std::string const blanks = samples.once_in(8) ? samples.blanks() : "";
    std::string number = samples.number_text();
    for (char& c : number)
        if (c == 'e' || c == ',' || c == ' ')
            c = '.';
    return blanks + number;
}

TEST(BigUtilDecimal, RoundsAsTheOracleDoes) {
    constexpr unsigned int seed = 40201;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(1000000, 40000); ++i) {
        std::string const text = decimal_text(samples);
        unsigned int const precision = samples.precision();
        bool const trim = samples.once_in(2);
        ASSERT_TRUE(library_obeys([&](auto& times) {
            std::string s = text;
            times.round_to_precision(s, precision, trim);
            return words(s);
        })) << in_quotes(text)
            << " to " << precision << (trim ? " trimmed" : "") << ", case " << i << " of seed "
            << seed;
    }
}

TEST(BigUtilDecimal, AddsOneInTheLastPlaceAsTheOracleDoes) {
    constexpr unsigned int seed = 40202;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(1000000, 40000); ++i) {
        std::string text = decimal_text(samples);
        text += samples.blanks();
        ASSERT_TRUE(library_obeys([&](auto& times) {
            std::string s = text;
            times.rounding(s);
            return words(s);
        })) << in_quotes(text)
            << ", case " << i << " of seed " << seed;
    }
}

TEST(BigUtilDecimal, CutsAndTrimsAnyBytesAsTheOracleDoes) {
    constexpr unsigned int seed = 40203;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(400000); ++i) {
        std::string text = samples.time_text();
        if (samples.once_in(4))
            text = samples.bytes(12);
        unsigned int const precision = samples.precision();
        ASSERT_TRUE(library_obeys([&](auto& times) {
            std::string begin = text;
            std::string end = text;
            std::string zero = text;
            std::string cut = text;
            times.trim_begin_blankspace(begin);
            times.trim_end_blankspace(end);
            times.trim_end_zero(zero);
            times.truncate_to_precision(cut, precision);
            return words(begin, end, zero, cut);
        })) << in_quotes(text)
            << " to " << precision << ", case " << i << " of seed " << seed;
    }
}

TEST(BigUtilDecimal, ReadsDigitsAsTheOracleDoes) {
    constexpr unsigned int seed = 40204;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(400000); ++i) {
        std::string text = samples.digits(20);
        if (samples.once_in(4))
            text = samples.number_text();
        ASSERT_TRUE(library_obeys([&](auto& times) { return words(times.atoi64(text)); }))
            << in_quotes(text) << ", case " << i << " of seed " << seed;
    }
}

} // namespace
