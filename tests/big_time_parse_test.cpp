// Times read from text.

#include "time_library.h"
#include "time_samples.h"

#include <climits>
#include <functional>

namespace {

using REPORTS = std::vector<recording::CALL>;

REPORTS const SILENCE;

recording::CALL illegal(std::string const& number) {
    return recording::debug("Illegal input \"%s\" in big_get_time_value()",
                            "Illegal input \"" + number + "\" in big_get_time_value()");
}
recording::CALL const CONSTRUCTOR_FAILED = recording::debug("BIG_TIME constructor failed");
recording::CALL const NEGATIVE_FREQUENCY =
    recording::debug("Wrong concept: Non-positive frequency!");
recording::CALL const NEGATIVE_RATE = recording::debug("Wrong concept: Negative BPS!");

/// The reports that come when no messages are asked for: the debug messages.
REPORTS without_messages(REPORTS const& reports) {
    REPORTS kept;
    for (recording::CALL const& report : reports)
        if (report.operation != "err_post_enumerated_msg")
            kept.push_back(report);
    return kept;
}

class BigTimeParse : public testing::Test {
protected:
    BigTimeParse() { recording::clear(); }
};

// ------------------------------------------------------------------------------------------------
// Splitting number and unit
// ------------------------------------------------------------------------------------------------

struct SPLIT_ROW {
    char const* why;
    std::string text;
    std::string number;
    std::string unit;
};

// clang-format off
SPLIT_ROW const SPLITS[] = {
    // why                                       text                           number    unit
    {"a number and its unit",                   "10ns",                        "10",     "ns"},
    {"a number and its unit",                   "10 ns",                       "10",     "ns"},
    {"a number and its unit",                   "10 \t\n\v\f\r ns",            "10",     "ns"},
    {"white space at both ends goes",           " \t\n\v\f\r10 ns\r\f\v\n\t ", "10",     "ns"},
    {"white space at both ends goes",           " 10\r\n",                     "10",     ""},
    {"a number alone",                          "10",                          "10",     ""},
    {"a number alone",                          "-1.5",                        "-1.5",   ""},
    {"nothing",                                 "",                            "",       ""},
    {"nothing",                                 " \t\n\v\f\r",                 "",       ""},
    {"a unit alone",                            "ns",                          "",       "ns"},
    {"a unit alone",                            " ns ",                        "",       "ns"},
    {"the number is any run of its characters", "-+..1-",                      "-+..1-", ""},
    {"the number is any run of its characters", "1.2.3ns",                     "1.2.3",  "ns"},
    {"the number is any run of its characters", "5-ns",                        "5-",     "ns"},
    {"all the rest is the unit",                "1.5e3 ns",                    "1.5",    "e3 ns"},
    {"all the rest is the unit",                "1,000 ns",                    "1",      ",000 ns"},
    {"all the rest is the unit",                "1 0 ns",                      "1",      "0 ns"},
    {"all the rest is the unit",                "10 ns ps",                    "10",     "ns ps"},
    {"all the rest is the unit",                "+ 5 ns",                      "+",      "5 ns"},
    {"all the rest is the unit",                "10 ns 5",                     "10",     "ns 5"},
    {"bytes above 127 are no white space",      "10\xa0ns",                    "10",     "\xa0ns"},
    {"NUL is no white space",                   std::string("10\0ns", 5),      "10",     std::string("\0ns", 3)},
    {"NUL is no white space",                   std::string("10\0", 3),        "10",     std::string("\0", 1)},
};
// clang-format on

TEST_F(BigTimeParse, ATextIsSplitIntoNumberAndUnit) {
    for (SPLIT_ROW const& row : SPLITS) {
        SCOPED_TRACE(words(std::string(row.why), row.text));
        expect_of_both(
            [&](auto& times) {
                std::string number = "before";
                std::string unit = "before";
                times.separate_time_num_and_unit(row.text, number, unit);
                return words(number, unit);
            },
            {words(row.number, row.unit), SILENCE});
    }
}

TEST_F(BigTimeParse, ATextMayBeSplitIntoItself) {
    for (SPLIT_ROW const& row : SPLITS) {
        SCOPED_TRACE(words(std::string(row.why), row.text));
        std::string text = row.text;
        std::string other = "before";
        BIG_TIME::separate_time_num_and_unit(text, text, other);
        EXPECT_EQ(text, row.number);
        EXPECT_EQ(other, row.unit);
        text = row.text;
        BIG_TIME::separate_time_num_and_unit(text, other, text);
        EXPECT_EQ(other, row.number);
        EXPECT_EQ(text, row.unit);
    }
}

// ------------------------------------------------------------------------------------------------
// Canonical numbers
// ------------------------------------------------------------------------------------------------

struct FORMAT_ROW {
    char const* why;
    int unit;
    char const* text;
    char const* result; // null: refused
    bool truncated = false;
};

// clang-format off
FORMAT_ROW const FORMATS[] = {
    // why                                             unit text                         result                       truncated
    {"digits that the unit holds stay",               3,   "1.234",                     "1.234"},
    {"digits that the unit holds stay",               3,   "12",                        "12"},
    {"digits that the unit holds stay",               3,   "0.05",                      "0.05"},
    {"digits that the unit holds stay",               11,  "1.25",                      "1.25"},
    {"digits that the unit holds stay",               6,   "0.123456789012",            "0.123456789012"},
    {"digits that the unit holds stay",               10,  "1.000000001",               "1.000000001"},
    {"digits that the unit holds stay",               8,   "+1.5",                      "1.5"},
    {"needless zeros go",                             3,   "1.23400",                   "1.234"},
    {"needless zeros go",                             3,   "007.500",                   "7.5"},
    {"needless zeros go",                             3,   "5.000",                     "5.0"},
    {"needless zeros go",                             2,   "2.0",                       "2"},
    {"needless zeros go",                             2,   "-2.0",                      "-2"},
    {"needless zeros go",                             0,   "000",                       "0"},
    {"a point at the end goes",                       6,   "5.",                        "5"},
    {"a point at the end goes",                       2,   "5.",                        "5"},
    {"a point at the end goes",                       3,   "-0.",                       "0"},
    {"digits finer than the unit are cut",            3,   "1.23456",                   "1.234",
     true},
    {"digits finer than the unit are cut",            2,   "1.5",                       "1",
     true},
    {"digits finer than the unit are cut",            2,   "1.9999",                    "1",
     true},
    {"digits finer than the unit are cut",            0,   "1.5",                       "1",
     true},
    {"digits finer than the unit are cut",            0,   "0.25",                      "0",
     true},
    {"digits finer than the unit are cut",            7,   "2.75",                      "2",
     true},
    {"digits finer than the unit are cut",            11,  "1.259",                     "1.25",
     true},
    {"digits finer than the unit are cut",            6,   "1.0000000000001",           "1.000000000000",
     true},
    {"digits finer than the unit are cut",            3,   "0.0001",                    "0.000",
     true},
    {"zeros finer than the unit are nothing lost",    2,   "1.000",                     "1"},
    {"zeros finer than the unit are nothing lost",    7,   "0.0",                       "0"},
    {"a point may stand first",                       3,   ".5",                        ".5"},
    {"a point may stand first",                       3,   ".1234",                     ".123",
     true},
    {"a point may stand first",                       3,   "+.5",                       ".5"},
    {"a point may stand first",                       3,   "-.05",                      "-.05"},
    {"a point may stand first",                       2,   ".5",                        "0",
     true},
    {"a point may stand first",                       2,   "-.5",                       "0",
     true},
    {"zeros after a leading point go first",          3,   ".05",                       ".5"},
    {"zeros after a leading point go first",          3,   ".0001",                     ".1"},
    {"zeros after a leading point go first",          2,   ".05",                       "0",
     true},
    {"a sign before the point saves them",            3,   "+.05",                      ".05"},
    {"a sign before the point saves them",            3,   "+.0001",                    ".000",
     true},
    {"nothing that is cut to zero has a sign",        2,   "-0.4",                      "0",
     true},
    {"nothing that is cut to zero has a sign",        2,   "-0.0",                      "0"},
    {"nothing that is cut to zero has a sign",        2,   "-0",                        "0"},
    {"but zeros after a point keep it",               3,   "-0.0",                      "-0.0"},
    {"but zeros after a point keep it",               3,   "-0.0001",                   "-0.000",
     true},
    {"but zeros after a point keep it",               3,   "-.000",                     "-.0"},
    {"a point with only zeros after it is no number", 3,   ".000",                      nullptr},
    {"a point with only zeros after it is no number", 2,   ".000",                      nullptr},
    {"a point with only zeros after it is no number", 0,   ".0",                        nullptr},
    {"a point with only zeros after it is no number", 3,   "+.",                        nullptr},
    {"except in femtoseconds",                        1,   ".000",                      "0"},
    {"except in femtoseconds",                        1,   ".0",                        "0"},
    {"except in femtoseconds",                        1,   "+.",                        "0"},
    {"after a sign it is a number",                   3,   "+.000",                     ".0"},
    {"after a sign it is a number",                   2,   "+.000",                     "0"},
    {"after a sign it is a number",                   1,   "-.000",                     "0"},
    {"femtoseconds are cut to thousands",             1,   "1234",                      "1000",
     true},
    {"femtoseconds are cut to thousands",             1,   "1500",                      "1000",
     true},
    {"femtoseconds are cut to thousands",             1,   "1234.5",                    "1000",
     true},
    {"femtoseconds are cut to thousands",             1,   "1000",                      "1000"},
    {"femtoseconds are cut to thousands",             1,   "1000.000",                  "1000"},
    {"femtoseconds are cut to thousands",             1,   "1000.001",                  "1000",
     true},
    {"femtoseconds are cut to thousands",             1,   "-12345",                    "-12000",
     true},
    {"femtoseconds are cut to thousands",             1,   "1500.",                     "1000",
     true},
    {"femtoseconds are cut to thousands",             1,   "999",                       "0",
     true},
    {"femtoseconds are cut to thousands",             1,   "-999",                      "0",
     true},
    {"femtoseconds are cut to thousands",             1,   "5.",                        "0",
     true},
    {"femtoseconds are cut to thousands",             1,   "00012.500",                 "0",
     true},
    {"femtoseconds are cut to thousands",             1,   "0",                         "0"},
    {"femtoseconds are cut to thousands",             1,   "-0",                        "0"},
    {"femtoseconds are cut to thousands",             1,   "000",                       "0"},
    {"femtoseconds are cut to thousands",             1,   "0000",                      "0"},
    {"femtoseconds are cut to thousands",             1,   ".5",                        "0",
     true},
    {"femtoseconds are cut to thousands",             1,   "0.5",                       "0",
     true},
    {"femtoseconds are cut to thousands",             1,   "100",                       "0",
     true},
    {"white space around goes",                       3,   " \t1.50\r\n",               "1.5"},
    {"any length",                                    2,   "1234567890123456789012345",
     "1234567890123456789012345"},
    {"any length",                                    1,   "1234567890123456789012345", "1234567890123456789012000",
     true},
};
// clang-format on

TEST_F(BigTimeParse, ANumberIsBroughtIntoTheCanonicalFormOfAUnit) {
    for (FORMAT_ROW const& row : FORMATS) {
        for (bool const post : {false, true}) {
            std::string const name = BIG_TIME::s_unit_strings[row.unit];
            SCOPED_TRACE(words(std::string(row.why), name, std::string(row.text), post));
            bool const legal = row.result != nullptr;
            REPORTS reports;
            if (post && row.truncated)
                reports = {
                    recording::message(2, row.text + (" " + name), row.result + (" " + name))};
            expect_of_both(
                [&](auto& times) {
                    std::string text = row.text;
                    bool const result = times.format_time_string(text, row.unit, post);
                    return words(result, text);
                },
                {words(legal, std::string(legal ? row.result : row.text)), reports});
        }
    }
}

TEST_F(BigTimeParse, AnIllegalNumberKeepsItsTextAndOnlyDebugs) {
    for (std::string const text : {"", " ", "1.2.3", "-", ".", "-.", "+", "1e3", "5ns", "1 2"}) {
        for (int unit = 0; unit < 15; ++unit) {
            for (bool const post : {false, true}) {
                SCOPED_TRACE(words(text, unit, post));
                expect_of_both(
                    [&](auto& times) {
                        std::string t = text;
                        bool const result = times.format_time_string(t, unit, post);
                        return words(result, t);
                    },
                    {words(false, text), {illegal(text)}});
            }
        }
    }
}

TEST_F(BigTimeParse, AUnitOutsideTheTableIsRefusedBeforeTheNumberIsLookedAt) {
    for (int const unit : {15, 16, -1, INT_MAX, INT_MIN}) {
        for (std::string const text : {"5", "", "x"}) {
            SCOPED_TRACE(words(text, unit));
            expect_of_both(
                [&](auto& times) {
                    std::string t = text;
                    long long value = 77;
                    bool const formatted = times.format_time_string(t, unit, true);
                    int const status = times.string_to_big_int(text, unit, value, true);
                    int const legality = times.is_legal(text, unit);
                    return words(formatted, t, status, value, legality);
                },
                {words(false, text, 2, 77, 2), SILENCE});
        }
    }
}

// ------------------------------------------------------------------------------------------------
// Stored counts
// ------------------------------------------------------------------------------------------------

struct VALUE_ROW {
    char const* why;
    char const* text;
    int unit;
    int status;
    long long count; // when the status is 0
    REPORTS reports; // when messages are asked for; message 1 is the setters'
};

REPORTS truncated(char const* given, char const* stored) {
    return {recording::message(2, given, stored)};
}

// clang-format off
VALUE_ROW const VALUES[] = {
    // why                                          text                          unit status count         reports
    {"scaled by the unit",                         "1.5",                        3,   0,     1500,         {}},
    {"scaled by the unit",                         "3",                          9,   0,     3000000,      {}},
    {"scaled by the unit",                         "1.25",                       11,  0,     125,          {}},
    {"scaled by the unit",                         "-1.5",                       4,   0,     -1500000,     {}},
    {"scaled by the unit",                         "2.5",                        14,  0,     2500000000,   {}},
    {"scaled by the unit",                         "0.000000000001",             6,   0,     1,            {}},
    {"scaled by the unit",                         "1000",                       1,   0,     1,            {}},
    {"scaled by the unit",                         "-12000",                     1,   0,     -12,          {}},
    {"scaled by the unit",                         "15",                         0,   0,     15,           {}},
    {"scaled by the unit",                         "5.",                         3,   0,     5000,         {}},
    {"scaled by the unit",                         ".5",                         3,   0,     500,          {}},
    {"scaled by the unit",                         "+.5",                        3,   0,     500,          {}},
    {"zeros after a leading point do not count",   ".05",                        3,   0,     500,          {}},
    {"zeros after a leading point do not count",   ".0000001",                   6,   0,     100000000000, {}},
    {"zeros after a leading point do not count",   ".0001",                      3,   0,     100,          {}},
    {"they do after a zero or a sign",             "0.05",                       3,   0,     50,           {}},
    {"they do after a zero or a sign",             "-.05",                       3,   0,     -50,          {}},
    {"they do after a zero or a sign",             "+.05",                       3,   0,     50,           {}},
    {"they do after a zero or a sign",             "0.0000001",                  6,   0,     100000,       {}},
    {"finer digits are cut toward zero",           "1.5",                        0,   0,     1,
     truncated("1.5 ", "1 ")},
    {"finer digits are cut toward zero",           "0.25",                       0,   0,     0,
     truncated("0.25 ", "0 ")},
    {"finer digits are cut toward zero",           "-0.5",                       2,   0,     0,
     truncated("-0.5 ps", "0 ps")},
    {"finer digits are cut toward zero",           "-1.9",                       2,   0,     -1,
     truncated("-1.9 ps", "-1 ps")},
    {"finer digits are cut toward zero",           "1500",                       1,   0,     1,
     truncated("1500 fs", "1000 fs")},
    {"finer digits are cut toward zero",           "1999.999",                   1,   0,     1,
     truncated("1999.999 fs", "1000 fs")},
    {"finer digits are cut toward zero",           "-1999",                      1,   0,     -1,
     truncated("-1999 fs", "-1000 fs")},
    {"finer digits are cut toward zero",           "999",                        1,   0,     0,
     truncated("999 fs", "0 fs")},
    {"finer digits are cut toward zero",           "00012.500",                  1,   0,     0,
     truncated("00012.500 fs", "0 fs")},
    {"finer digits are cut toward zero",           " 1.23456 ",                  3,   0,     1234,
     truncated(" 1.23456  ns", "1.234 ns")},
    {"finer digits are cut toward zero",           "0.1234567890123",            6,   0,     123456789012,
     truncated("0.1234567890123 s", "0.123456789012 s")},
    {"finer digits are cut toward zero",           "-0.0000001",                 9,   0,     0,
     truncated("-0.0000001 MHz", "-0.000000 MHz")},
    {"zeros of every kind",                        "0",                          3,   0,     0,            {}},
    {"zeros of every kind",                        "-0",                         3,   0,     0,            {}},
    {"zeros of every kind",                        "-0.0",                       3,   0,     0,            {}},
    {"zeros of every kind",                        "-.0",                        3,   0,     0,            {}},
    {"zeros of every kind",                        "0.",                         0,   0,     0,            {}},
    {"zeros of every kind",                        "0",                          1,   0,     0,            {}},
    {"zeros of every kind",                        "0000",                       1,   0,     0,            {}},
    {"zeros of every kind",                        ".000",                       1,   0,     0,            {}},
    {"zeros of every kind",                        "+.",                         1,   0,     0,            {}},
    {"zero frequencies and rates may be read",     "0",                          9,   0,     0,            {}},
    {"zero frequencies and rates may be read",     "-0",                         7,   0,     0,            {}},
    {"zero frequencies and rates may be read",     "-0.0",                       14,  0,     0,            {}},
    {"the ends of the range",                      "9223372036854775807",        2,   0,     HIGHEST,      {}},
    {"the ends of the range",                      "9223372036854775807",        7,   0,     HIGHEST,      {}},
    {"the ends of the range",                      "9223372036854775807",        12,  0,     HIGHEST,      {}},
    {"the ends of the range",                      "9223372036854775807",        0,   0,     HIGHEST,      {}},
    {"the ends of the range",                      "-9223372036854775807",       2,   0,     -HIGHEST,     {}},
    {"the ends of the range",                      "9223372.036854775807",       6,   0,     HIGHEST,      {}},
    {"the ends of the range",                      "9223372036854775.807",       3,   0,     HIGHEST,      {}},
    {"the ends of the range",                      "92233720368547758.07",       11,  0,     HIGHEST,      {}},
    {"the ends of the range",                      "-9223372036.854775807",      5,   0,     -HIGHEST,     {}},
    {"the ends of the range",                      "9223372036854775807000",     1,   0,     HIGHEST,      {}},
    {"the ends of the range",                      "9223372036854775807999",     1,   0,     HIGHEST,
     truncated("9223372036854775807999 fs", "9223372036854775807000 fs")},
    {"the ends of the range",                      "9223372036854775807.9",      2,   0,     HIGHEST,
     truncated("9223372036854775807.9 ps", "9223372036854775807 ps")},
    {"leading zeros do not count for the range",   "00000000000000000000000005", 2,   0,     5,            {}},
    {"leading zeros do not count for the range",   "0009223372036854775807",     2,   0,     HIGHEST,      {}},
    {"leading zeros do not count for the range",   "-0000000000000000000001",    3,   0,     -1000,        {}},
    {"too large",                                  "9223372036854775808",        2,   1,     0,            {}},
    // no text gives the lowest count
    {"too large",                                  "-9223372036854775808",       2,   1,     0,            {}},
    {"too large",                                  "9999999999999999999",        0,   1,     0,            {}},
    {"too large",                                  "10000000000000000000",       0,   1,     0,            {}},
    {"too large",                                  "9223372.036854775808",       6,   1,     0,            {}},
    {"too large",                                  "9223373",                    6,   1,     0,            {}},
    {"too large",                                  "9223372036854775.808",       3,   1,     0,            {}},
    {"too large",                                  "9223372036854775808000",     1,   1,     0,            {}},
    {"too large",                                  "9223372036855",              9,   1,     0,            {}},
    {"too large",                                  "1234567890123456789012345",  2,   1,     0,            {}},
    {"too large, and cut before",                  "9223372036854775808.5",      2,   1,     0,
     truncated("9223372036854775808.5 ps", "9223372036854775808 ps")},
    {"too large, and cut before",                  "9223372036854775808001",     1,   1,     0,
     truncated("9223372036854775808001 fs", "9223372036854775808000 fs")},
    {"negative frequencies and rates",             "-3",                         9,   1,     0,
     {NEGATIVE_FREQUENCY}},
    {"negative frequencies and rates",             "-0.001",                     8,   1,     0,
     {NEGATIVE_FREQUENCY}},
    {"negative frequencies and rates",             "-1",                         7,   1,     0,
     {NEGATIVE_FREQUENCY}},
    {"negative frequencies and rates",             "-1",                         10,  1,     0,
     {NEGATIVE_FREQUENCY}},
    {"negative frequencies and rates",             "-1",                         12,  1,     0,
     {NEGATIVE_RATE}},
    {"negative frequencies and rates",             "-1",                         13,  1,     0,
     {NEGATIVE_RATE}},
    {"negative frequencies and rates",             "-1",                         14,  1,     0,
     {NEGATIVE_RATE}},
    {"negative frequencies and rates, cut before", "-1.5",                       7,   1,     0,
     {recording::message(2, "-1.5 Hz", "-1 Hz"), NEGATIVE_FREQUENCY}},
    {"too large comes before negative",            "-9223372036854775808",       7,   1,     0,            {}},
    {"no number",                                  "",                           3,   1,     0,
     {illegal("")}},
    {"no number",                                  " ",                          3,   1,     0,
     {illegal(" ")}},
    {"no number",                                  "1.2.3",                      3,   1,     0,
     {illegal("1.2.3")}},
    {"no number",                                  "-",                          3,   1,     0,
     {illegal("-")}},
    {"no number",                                  "+",                          1,   1,     0,
     {illegal("+")}},
    {"no number",                                  ".",                          1,   1,     0,
     {illegal(".")}},
    {"no number",                                  "-.",                         1,   1,     0,
     {illegal("-.")}},
    {"no number",                                  "5-",                         3,   1,     0,
     {illegal("5-")}},
    {"no number, but nothing is said",             "+.",                         3,   1,     0,            {}},
    {"no number, but nothing is said",             "+.",                         0,   1,     0,            {}},
    {"no number, but nothing is said",             ".000",                       3,   1,     0,            {}},
    {"no number, but nothing is said",             ".0",                         2,   1,     0,            {}},
};
// clang-format on

TEST_F(BigTimeParse, ANumberIsReadIntoTheStoredCount) {
    for (VALUE_ROW const& row : VALUES) {
        for (bool const post : {false, true}) {
            SCOPED_TRACE(words(std::string(row.why), std::string(row.text), row.unit, post));
            expect_of_both(
                [&](auto& times) {
                    long long value = 77;
                    int const status = times.string_to_big_int(row.text, row.unit, value, post);
                    return words(status, value);
                },
                {words(row.status, row.status == 0 ? row.count : 77ll),
                 post ? row.reports : without_messages(row.reports)});
        }
    }
}

TEST_F(BigTimeParse, LegalityIsTheStatusOfReadingWithoutMessages) {
    for (VALUE_ROW const& row : VALUES) {
        std::string const name = BIG_TIME::s_unit_strings[row.unit];
        SCOPED_TRACE(words(std::string(row.why), std::string(row.text), name));
        REPORTS const reports = without_messages(row.reports);
        expect_of_both([&](auto& times) { return words(times.is_legal(row.text, row.unit)); },
                       {words(row.status), reports});
        expect_of_both([&](auto& times) { return words(times.is_legal(row.text, " " + name)); },
                       {words(row.status), reports});
    }
}

TEST_F(BigTimeParse, TheSettersHoldTheCountOrTheDefaultState) {
    for (VALUE_ROW const& row : VALUES) {
        std::string const name = BIG_TIME::s_unit_strings[row.unit];
        for (bool const post : {false, true}) {
            SCOPED_TRACE(words(std::string(row.why), std::string(row.text), name, post));
            bool const legal = row.status == 0;
            REPORTS reports = row.reports;
            if (!legal)
                reports.push_back(recording::message(1, row.text + name));
            if (!post)
                reports = without_messages(reports);
            OBSERVATION const set = {words(legal, legal ? row.count : 0ll, legal ? row.unit : 0),
                                     reports};
            expect_of_both(
                [&](auto& times) {
                    HELD held = {42, 9};
                    bool const result = times.set_time(held, row.text, row.unit, post);
                    return words(result, held.count, held.unit);
                },
                set);
            expect_of_both(
                [&](auto& times) {
                    HELD held = {42, 9};
                    bool const result = times.set_time(held, row.text, "\t" + name + "\n", post);
                    return words(result, held.count, held.unit);
                },
                set);

            if (!legal)
                reports.push_back(CONSTRUCTOR_FAILED);
            OBSERVATION const constructed = {words(legal ? row.count : 0ll, legal ? row.unit : 0),
                                             reports};
            EXPECT_EQ(observe([&] {
                          HELD const held = held_by(BIG_TIME(row.text, unit_of(row.unit), post));
                          return words(held.count, held.unit);
                      }),
                      constructed);
            EXPECT_EQ(observe([&] {
                          HELD const held = held_by(BIG_TIME(row.text, name, post));
                          return words(held.count, held.unit);
                      }),
                      constructed);
        }
    }
}

// Without post_messages a unit would be taken for it, and be lost. (Only a template asks whether
// code compiles.)
template <typename TIME>
concept IS_BUILT_WITHOUT_POST_MESSAGES = requires {
    TIME("10", TIME::UNIT_NS);
}
|| requires {
    TIME("10", "ns");
};
template <typename TIME>
concept IS_SET_WITHOUT_POST_MESSAGES = requires(TIME time) {
    time.set_time("10", TIME::UNIT_NS);
}
|| requires(TIME time) {
    time.set_time("10", "ns");
};
static_assert(!IS_BUILT_WITHOUT_POST_MESSAGES<BIG_TIME>);
static_assert(!IS_SET_WITHOUT_POST_MESSAGES<BIG_TIME>);

template <typename TIME>
concept TAKES_A_TEXT_WITH_POST_MESSAGES = requires(TIME time) {
    TIME("10", TIME::UNIT_NS, true);
    TIME("10", "ns", true);
    TIME("10 ns", true);
    time.set_time("10", TIME::UNIT_NS, true);
    time.set_time("10", "ns", true);
    time.set_time("10 ns", true);
};
static_assert(TAKES_A_TEXT_WITH_POST_MESSAGES<BIG_TIME>);

// ------------------------------------------------------------------------------------------------
// Number and unit in one text
// ------------------------------------------------------------------------------------------------

struct TEXT_ROW {
    char const* why;
    std::string text;
    int status;
    long long count;
    int unit;
    REPORTS reports; // of a setter that was asked for messages
};

REPORTS refused(char const* text) {
    return {recording::message(1, text)};
}

// clang-format off
TEXT_ROW const TEXTS[] = {
    // why                                        text                       status count          unit reports
    {"number and unit",                          "10ns",                    0,     10000,         3,   {}},
    {"number and unit",                          "10 ns",                   0,     10000,         3,   {}},
    {"number and unit",                          "  10 NS\t\n",             0,     10000,         3,   {}},
    {"number and unit",                          "+10ns",                   0,     10000,         3,   {}},
    {"number and unit",                          "-20 ps",                  0,     -20,           2,   {}},
    {"number and unit",                          "3 MHz",                   0,     3000000,       9,   {}},
    {"number and unit",                          "1.5ten_th_ns",            0,     150,           11,  {}},
    {"number and unit",                          "2.5Gbps",                 0,     2500000000,    14,  {}},
    {"number and unit",                          "1 s",                     0,     1000000000000, 6,   {}},
    {"number and unit",                          "1\v\f\rms",               0,     1000000000,    5,   {}},
    {"number and unit",                          "1000 fs",                 0,     1,             1,   {}},
    {"number alone",                             "15",                      0,     15,            0,   {}},
    {"number alone",                             "250",                     0,     250,           0,   {}},
    {"number alone",                             " -7 ",                    0,     -7,            0,   {}},
    {"digits are cut",                           "1.5",                     0,     1,             0,
     truncated("1.5 ", "1 ")},
    {"digits are cut",                           "-0.5 ps",                 0,     0,             2,
     truncated("-0.5 ps", "0 ps")},
    {"digits are cut",                           "1500 FS",                 0,     1,             1,
     truncated("1500 fs", "1000 fs")},
    {"the zeros after a leading point are lost", ".05 ns",                  0,     500,           3,   {}},
    {"the zeros after a leading point are lost", "0.05 ns",                 0,     50,            3,   {}},
    {"zero",                                     "0 MHz",                   0,     0,             9,   {}},
    {"zero",                                     ".000 fs",                 0,     0,             1,   {}},
    {"zero",                                     "+. fs",                   0,     0,             1,   {}},
    {"no such unit",                             "1e3 ns",                  2,     0,             0,
     refused("1e3 ns")},
    {"no such unit",                             "10 nanoseconds",          2,     0,             0,
     refused("10nanoseconds")},
    {"no such unit",                             "10 ns ps",                2,     0,             0,
     refused("10ns ps")},
    {"no such unit",                             "1,000 ns",                2,     0,             0,
     refused("1,000 ns")},
    {"no such unit",                             "1 0 ns",                  2,     0,             0,
     refused("10 ns")},
    {"no such unit",                             "+ 5 ns",                  2,     0,             0,
     refused("+5 ns")},
    {"no such unit",                             "x",                       2,     0,             0,
     refused("x")},
    // the number is not looked at
    {"no such unit",                             "--5 x",                   2,     0,             0,
     refused("--5x")},
    {"no such unit",                             "5 n s",                   2,     0,             0,
     refused("5n s")},
    {"no such unit",                             "5 \xc2\xb5s",             2,     0,             0,
     refused("5\xc2\xb5s")},
    {"no such unit",                             std::string("5 \0ns", 5),  2,     0,             0,
     refused("5")},
    {"no number",                                "ns",                      1,     0,             0,
     {illegal(""), recording::message(1, "ns")}},
    {"no number",                                "NS",                      1,     0,             0,
     {illegal(""), recording::message(1, "ns")}},
    {"no number",                                "",                        1,     0,             0,
     {illegal(""), recording::message(1, "")}},
    {"no number",                                " \t ",                    1,     0,             0,
     {illegal(""), recording::message(1, "")}},
    {"no number",                                "- ns",                    1,     0,             0,
     {illegal("-"), recording::message(1, "-ns")}},
    {"no number",                                "1.2.3 Ns",                1,     0,             0,
     {illegal("1.2.3"), recording::message(1, "1.2.3ns")}},
    {"no number",                                "5-ns",                    1,     0,             0,
     {illegal("5-"), recording::message(1, "5-ns")}},
    {"no number",                                ".000 ns",                 1,     0,             0,
     refused(".000ns")},
    {"no number",                                "+. ns",                   1,     0,             0,
     refused("+.ns")},
    {"too large",                                "9223372036854775808 ps",  1,     0,             0,
     refused("9223372036854775808ps")},
    {"too large",                                "-9223372036854775808 ps", 1,     0,             0,
     refused("-9223372036854775808ps")},
    {"negative",                                 "-3 MHz",                  1,     0,             0,
     {NEGATIVE_FREQUENCY, recording::message(1, "-3MHz")}},
    {"negative",                                 "-1 bps",                  1,     0,             0,
     {NEGATIVE_RATE, recording::message(1, "-1bps")}},
};
// clang-format on

TEST_F(BigTimeParse, NumberAndUnitAreReadFromOneText) {
    for (TEXT_ROW const& row : TEXTS) {
        for (bool const post : {false, true}) {
            SCOPED_TRACE(words(std::string(row.why), row.text, post));
            expect_of_both(
                [&](auto& times) {
                    HELD held = {42, 9};
                    bool const result = times.set_time(held, row.text, post);
                    return words(result, held.count, held.unit);
                },
                {words(row.status == 0, row.count, row.unit),
                 post ? row.reports : without_messages(row.reports)});
        }
        SCOPED_TRACE(words(std::string(row.why), row.text));
        expect_of_both([&](auto& times) { return words(times.is_legal(row.text)); },
                       {words(row.status), without_messages(row.reports)});
    }
}

TEST_F(BigTimeParse, ConstructorsReadOneTextAndSayWhenTheyFail) {
    for (TEXT_ROW const& row : TEXTS) {
        for (bool const post : {false, true}) {
            SCOPED_TRACE(words(std::string(row.why), row.text, post));
            REPORTS reports = post ? row.reports : without_messages(row.reports);
            if (row.status != 0)
                reports.push_back(CONSTRUCTOR_FAILED);
            EXPECT_EQ(observe([&] {
                          HELD const held = held_by(BIG_TIME(row.text, post));
                          return words(held.count, held.unit);
                      }),
                      (OBSERVATION{words(row.count, row.unit), reports}));
        }
    }
}

TEST_F(BigTimeParse, AssignmentOfATextAlwaysPosts) {
    for (TEXT_ROW const& row : TEXTS) {
        SCOPED_TRACE(words(std::string(row.why), row.text));
        BIG_TIME time = time_of(42, 9);
        recording::clear();
        EXPECT_EQ(&(time = row.text), &time);
        EXPECT_EQ(held_by(time), (HELD{row.count, row.unit}));
        EXPECT_EQ(recording::reports(), row.reports);
    }
}

TEST_F(BigTimeParse, AUnitTextThatNamesNoUnitIsRefusedWithBothTextsAsGiven) {
    struct {
        char const* number;
        char const* unit;
        char const* message;
        // clang-format off
    } const rows[] = {
        // number unit text message 1
        {"5",   "furlong", "5furlong"},
        {" 5 ", " ns ps ", " 5  ns ps "},
        {"5",   "ns\r",    "5ns\r"},
        {"5",   "\r",      "5\r"},
        {"x",   "y",       "xy"},
        {"",    "5",       "5"},
    };
    // clang-format on
    for (auto const& row : rows) {
        for (bool const post : {false, true}) {
            SCOPED_TRACE(words(std::string(row.number), std::string(row.unit), post));
            REPORTS const reports = post ? refused(row.message) : SILENCE;
            std::string const number = row.number;
            std::string const unit = row.unit;
            expect_of_both(
                [&](auto& times) {
                    HELD held = {42, 9};
                    bool const result = times.set_time(held, number, unit, post);
                    return words(result, held.count, held.unit);
                },
                {"false 0 0", reports});
            REPORTS failed = reports;
            failed.push_back(CONSTRUCTOR_FAILED);
            EXPECT_EQ(observe([&] { return words(held_by(BIG_TIME(number, unit, post)).count); }),
                      (OBSERVATION{"0", failed}));
            expect_of_both([&](auto& times) { return words(times.is_legal(number, unit)); },
                           {"2", SILENCE});
        }
    }
}

TEST_F(BigTimeParse, AUnitOutsideTheTableIsRefusedWithTheNumberAlone) {
    for (int const unit : {15, -1, INT_MAX, INT_MIN}) {
        for (bool const post : {false, true}) {
            SCOPED_TRACE(words(unit, post));
            REPORTS reports = post ? refused(" 5 ") : SILENCE;
            expect_of_both(
                [&](auto& times) {
                    HELD held = {42, 9};
                    bool const result = times.set_time(held, " 5 ", unit, post);
                    return words(result, held.count, held.unit);
                },
                {"false 0 0", reports});
            reports.push_back(CONSTRUCTOR_FAILED);
            EXPECT_EQ(
                observe([&] { return words(held_by(BIG_TIME(" 5 ", unit_of(unit), post)).count); }),
                (OBSERVATION{"0", reports}));
        }
    }
}

TEST_F(BigTimeParse, ABlankUnitTextIsNoUnit) {
    for (std::string const unit : {"", " ", "\t\n"}) {
        expect_of_both(
            [&](auto& times) {
                HELD held = {42, 9};
                bool const result = times.set_time(held, "5", unit, true);
                int const status = times.is_legal("5", unit);
                return words(result, held.count, held.unit, status);
            },
            {"true 5 0 0", SILENCE});
    }
}

TEST_F(BigTimeParse, OneStringMayBeNumberAndUnit) {
    struct {
        std::string text;
        REPORTS reports;
        // clang-format off
    } const rows[] = {
        // number and unit reports
        {"5",          {recording::message(1, "55")}},
        {"ns",         {illegal("ns"), recording::message(1, "nsns")}},
        {"",           {illegal(""), recording::message(1, "")}},
    };
    // clang-format on
    for (auto const& row : rows) {
        BIG_TIME time = time_of(42, 9);
        recording::clear();
        EXPECT_FALSE(time.set_time(row.text, row.text, true));
        EXPECT_EQ(held_by(time), HELD());
        EXPECT_EQ(recording::reports(), row.reports);
    }
}

TEST_F(BigTimeParse, AFailedSetterForgetsTheOldValue) {
    BIG_TIME time(5, BIG_TIME::UNIT_NS);
    EXPECT_FALSE(time.set_time("x", BIG_TIME::UNIT_NS, false));
    EXPECT_EQ(held_by(time), HELD());
    time.set_time(5, BIG_TIME::UNIT_NS);
    EXPECT_FALSE(time.set_time("5", "furlong", false));
    EXPECT_EQ(held_by(time), HELD());
    time.set_time(5, BIG_TIME::UNIT_NS);
    EXPECT_FALSE(time.set_time("5 furlong", false));
    EXPECT_EQ(held_by(time), HELD());
    time.set_time(5, BIG_TIME::UNIT_NS);
    time = std::string("furlong");
    EXPECT_EQ(held_by(time), HELD());
}

TEST_F(BigTimeParse, AMessageMayThrowAndTheTimeHoldsAValidValue) {
    recording::CALL const cut = recording::message(2, "1.5 ps", "1 ps");
    recording::CALL const refusal = recording::message(1, "-ps");
    BIG_TIME::TIME_UNIT const ps = BIG_TIME::UNIT_PS;
    HELD const old = {5000, BIG_TIME::UNIT_NS};
    struct {
        char const* why;
        recording::CALL message;
        std::function<void(BIG_TIME&)> set;
        HELD held;
        // clang-format off
    } const rows[] = {
        // why                                     message  setter                                          held afterwards
        {"the value changes after the number",    cut,     [=](BIG_TIME& t) { t.set_time("1.5", ps, true); },   old},
        {"the value goes before the number",      cut,     [](BIG_TIME& t) { t.set_time("1.5", "ps", true); },  {}},
        {"the value goes before the number",      cut,     [](BIG_TIME& t) { t.set_time("1.5 ps", true); },     {}},
        {"the value goes before the number",      cut,     [](BIG_TIME& t) { t = std::string("1.5 ps"); },      {}},
        {"a refusal comes after the value went",  refusal, [=](BIG_TIME& t) { t.set_time("-", ps, true); },     {}},
        {"a refusal comes after the value went",  refusal, [](BIG_TIME& t) { t.set_time("-", "ps", true); },    {}},
        {"a refusal comes after the value went",  refusal, [](BIG_TIME& t) { t.set_time("- ps", true); },       {}},
    };
    // clang-format on
    for (auto const& row : rows) {
        SCOPED_TRACE(row.why + (": " + testing::PrintToString(row.message)));
        BIG_TIME time = time_of(old.count, old.unit);
        recording::THROWING_CALL const thrower(row.message);
        EXPECT_THROW(row.set(time), recording::THROWN);
        EXPECT_EQ(held_by(time), row.held);
    }
}

TEST_F(BigTimeParse, AMessageMayThrowAndLeavesTextAndValue) {
    recording::THROWING_CALL const thrower(recording::message(2, "01.5 ps", "1 ps"));
    std::string text = "01.5";
    EXPECT_THROW(BIG_TIME::format_time_string(text, BIG_TIME::UNIT_PS, true), recording::THROWN);
    EXPECT_EQ(text, "01.5");
    long long value = 77;
    EXPECT_THROW(BIG_TIME::string_to_big_int(text, BIG_TIME::UNIT_PS, value, true),
                 recording::THROWN);
    EXPECT_EQ(value, 77);
    EXPECT_THROW(BIG_TIME("01.5", BIG_TIME::UNIT_PS, true), recording::THROWN);
}

// ------------------------------------------------------------------------------------------------
// The preview
// ------------------------------------------------------------------------------------------------

struct PREVIEW_ROW {
    char const* why;
    char const* text;
    bool truncated;
    char const* preview; // null: the text as given
};

// clang-format off
PREVIEW_ROW const PREVIEWS[] = {
    // why                                                         text                         truncated preview
    {"lost digits",                                               "1.23456ns",                 true,
     "1.234 ns"},
    {"lost digits",                                               " 1.23456 NS ",              true,
     "1.234 ns"},
    {"lost digits",                                               "0.0000001 MHz",             true,
     "0.000000 MHz"},
    {"lost digits",                                               "12.345ten_th_ns",           true,
     "12.34 ten_th_ns"},
    {"lost digits",                                               "9.9999999999999 s",         true,
     "9.999999999999 s"},
    {"no digit lost",                                             "1.23400ns",                 false,    nullptr},
    {"no digit lost",                                             "1.234 ns",                  false,    nullptr},
    {"no digit lost",                                             "  1.5\tns ",                false,    nullptr},
    {"no digit lost",                                             "2.0 ps",                    false,    nullptr},
    {"no digit lost",                                             "5. ps",                     false,    nullptr},
    {"no digit lost",                                             ". ns",                      false,    nullptr},
    {"the point stays when no digit does",                        "1.5ps",                     true,     "1. ps"},
    {"the point stays when no digit does",                        "0.0001 ps",                 true,     "0. ps"},
    {"the point stays when no digit does",                        "25.75 Hz",                  true,     "25. Hz"},
    {"nothing left of a leading point",                           ".5 ps",                     true,     "0 ps"},
    {"nothing left of a leading point",                           ".05 ps",                    true,     "0 ps"},
    {"a leading point",                                           ".12345 ns",                 true,     ".123 ns"},
    // the zeros after a leading point, which reading drops, are kept here
    {"a leading point",                                           ".00012 ns",                 true,     ".000 ns"},
    {"a sign of either kind is a minus, the point early",         "-1.23456ns",                true,
     "-.1234 ns"},
    {"a sign of either kind is a minus, the point early",         "+1.23456ns",                true,
     "-.1234 ns"},
    {"a sign of either kind is a minus, the point early",         "-12.3456 ns",               true,
     "-1.2345 ns"},
    {"a sign of either kind is a minus, the point early",         "+1.5 ps",                   true,     "-.1 ps"},
    {"a sign of either kind is a minus, the point early",         "-.12345 ns",                true,
     ".-123 ns"},
    {"a sign is no digit lost",                                   "-1.5 ns",                   false,    nullptr},
    {"a sign is no digit lost",                                   "-0.5 ns",                   false,    nullptr},
    {"a sign that goes with the digits",                          "-.5 ps",                    true,     "0 ps"},
    {"femtoseconds without a point",                              "1500 fs",                   true,     "1 fs"},
    {"femtoseconds without a point",                              "1999fs",                    true,     "1 fs"},
    {"femtoseconds without a point",                              "12345 fs",                  true,     "12 fs"},
    {"femtoseconds without a point",                              "-12345 fs",                 true,     "-12 fs"},
    {"femtoseconds without a point",                              "1000 fs",                   false,    nullptr},
    {"femtoseconds without a point",                              "12000 fs",                  false,    nullptr},
    {"so few digits that nothing is left, zeros too",             "999 fs",                    true,     "0 fs"},
    {"so few digits that nothing is left, zeros too",             "0 fs",                      true,     "0 fs"},
    {"so few digits that nothing is left, zeros too",             "000 fs",                    true,     "0 fs"},
    {"so few digits that nothing is left, zeros too",             "0.5 fs",                    true,     "0 fs"},
    {"so few digits that nothing is left, zeros too",             "0.0 fs",                    true,     "0 fs"},
    {"so few digits that nothing is left, zeros too",             "-5 fs",                     true,     "0 fs"},
    {"so few digits that nothing is left, zeros too",             "5. fs",                     true,     "0 fs"},
    {"so few digits that nothing is left, zeros too",             ". fs",                      true,     "0 fs"},
    {"femtoseconds with a point and only zeros after it",         "12000.0 fs",                false,    nullptr},
    {"femtoseconds with a point and only zeros after it",         "1000. fs",                  false,    nullptr},
    {"no unit",                                                   "25",                        false,    nullptr},
    {"no unit",                                                   "1.5",                       false,    nullptr},
    {"no unit",                                                   " 1.5 \t",                   false,    nullptr},
    {"no unit",                                                   "1.5 furlong",               false,    nullptr},
    {"no unit",                                                   "1.5 ns ps",                 false,    nullptr},
    {"no unit",                                                   "1.5e3 n",                   false,    nullptr},
    {"no number",                                                 "ns",                        false,    nullptr},
    {"no number",                                                 " \t\n",                     false,    nullptr},
    {"no number",                                                 "- ns",                      false,    nullptr},
    // the number ends at the last digit or point and is not checked
    {"anything before the last digit is the number",              "x1.23456 ns",               true,
     "x1.234 ns"},
    {"anything before the last digit is the number",              "1 1.23456 ns",              true,
     "1 1.234 ns"},
    {"anything before the last digit is the number",              "1.5e-3 ns",                 true,
     "1.5e- ns"},
    {"anything before the last digit is the number",              "1.2.3456 ps",               true,     "1. ps"},
    {"anything before the last digit is the number",              "1.2.3456 ns",               true,
     "1.2.3 ns"},
    {"a final point goes before the point is put back",           "12.34.567 ns",              true,
     "12.34 ns"},
    {"a point further right than 20 characters counts no digits", "12345678901234567890.5 ps", false,    nullptr},
    {"a point at the twentieth character counts",                 "1234567890123456789.5 ps",  true,
     "1234567890123456789. ps"},
    {"such a point stays, and is put in once more",               "12345678901234567890.1234 fs", true,
     "12345678901234567890..1 fs"},
    {"such a point stays, and is put in once more",               "12345678901234567890.123 fs", true,
     "12345678901234567890. fs"},
    // white space is that of texts around, but of tokens between number and unit
    {"a carriage return before the unit is part of it",           "1.23456\rns",               false,    nullptr},
    {"white space at both ends",                                  "\r\v\f1.23456ns\r\v\f",     true,
     "1.234 ns"},
};
// clang-format on

TEST_F(BigTimeParse, APreviewShowsTheTextAsItWouldBeStored) {
    for (PREVIEW_ROW const& row : PREVIEWS) {
        SCOPED_TRACE(words(std::string(row.why), std::string(row.text)));
        expect_of_both(
            [&](auto& times) {
                std::string preview = "before";
                bool const truncated = times.will_value_be_truncated(row.text, preview);
                return words(truncated, preview);
            },
            {words(row.truncated, std::string(row.preview == nullptr ? row.text : row.preview)),
             SILENCE});
    }
}

TEST_F(BigTimeParse, APreviewOfNothingLeavesTheOldText) {
    for (char const* const text : {static_cast<char const*>(nullptr), ""}) {
        expect_of_both(
            [&](auto& times) {
                std::string preview = "before";
                bool const truncated = times.will_value_be_truncated(text, preview);
                return words(truncated, preview);
            },
            {words(false, std::string("before")), SILENCE});
    }
}

TEST_F(BigTimeParse, APreviewMayReplaceItsOwnText) {
    for (PREVIEW_ROW const& row : PREVIEWS) {
        SCOPED_TRACE(words(std::string(row.why), std::string(row.text)));
        std::string text = row.text;
        std::string const preview = row.preview == nullptr ? row.text : row.preview;
        EXPECT_EQ(BIG_TIME::will_value_be_truncated(text.c_str(), text), row.truncated);
        EXPECT_EQ(text, preview);
        text = std::string("  ") + row.text;
        EXPECT_EQ(BIG_TIME::will_value_be_truncated(text.c_str() + 2, text), row.truncated);
        EXPECT_EQ(text, preview);
    }
}

// The point would have to stand further right than there are digits left. Callers know the
// exception and do not want a guess in its place.
TEST_F(BigTimeParse, APreviewOfFemtosecondsWithAPointIsOutOfRange) {
    for (char const* const text :
         {"12345.6fs", "12345.6 fs", "1234. fs", "12340.5 fs", "-12345.6 fs", "+1234.5 fs"}) {
        SCOPED_TRACE(text);
        expect_of_both(
            [&](auto& times) {
                std::string preview = "before";
                bool const truncated = times.will_value_be_truncated(text, preview);
                return words(truncated, preview);
            },
            {"std::out_of_range of basic_string::replace", SILENCE});
    }
}

TEST_F(BigTimeParse, APreviewThatIsOutOfRangeLeavesTheDigitsThatWereKept) {
    struct {
        char const* text;
        char const* left;
        // clang-format off
    } const rows[] = {
        // text          left
        {"12345.6fs",   "12"},
        {"1234. fs",    "1"},
        {"-12345.6 fs", "-12"},
        {"+12345.6 fs", "-12"},
    };
    // clang-format on
    for (auto const& row : rows) {
        SCOPED_TRACE(row.text);
        std::string preview = "before";
        EXPECT_THROW(BIG_TIME::will_value_be_truncated(row.text, preview), std::out_of_range);
        EXPECT_EQ(preview, row.left);
        preview = "before";
        EXPECT_THROW(TIME_ORACLE().will_value_be_truncated(row.text, preview), std::out_of_range);
        EXPECT_EQ(preview, row.left);
    }
}

// ------------------------------------------------------------------------------------------------
// Properties
// ------------------------------------------------------------------------------------------------

TEST_F(BigTimeParse, ReadsAnyTextAsTheOracleDoes) {
    constexpr unsigned int seed = 20401;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(250000); ++i) {
        std::string const text = samples.once_in(30) ? samples.bytes(10) : samples.time_text();
        bool const post = samples.once_in(2);
        ASSERT_TRUE(library_obeys([&](auto& times) {
            HELD held = {42, 9};
            std::string number = "before";
            std::string unit = "before";
            bool const result = times.set_time(held, text, post);
            times.separate_time_num_and_unit(text, number, unit);
            return words(result, held.count, held.unit, number, unit);
        })) << in_quotes(text)
            << (post ? ", posting" : "") << ", case " << i << " of seed " << seed;
    }
}

TEST_F(BigTimeParse, ReadsANumberInEveryUnitAsTheOracleDoes) {
    constexpr unsigned int seed = 20402;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(250000); ++i) {
        std::string text = samples.number_text();
        if (samples.once_in(8))
            text = samples.damaged(samples.blanks() + text);
        int const unit =
            samples.once_in(30) ? static_cast<int>(samples.below(40)) - 20 : samples.unit();
        bool const post = samples.once_in(2);
        ASSERT_TRUE(library_obeys([&](auto& times) {
            long long value = 77;
            std::string formatted = text;
            int const status = times.string_to_big_int(text, unit, value, post);
            bool const canonical = times.format_time_string(formatted, unit, post);
            return words(status, value, canonical, formatted);
        })) << in_quotes(text)
            << " in unit " << unit << (post ? ", posting" : "") << ", case " << i << " of seed "
            << seed;
    }
}

TEST_F(BigTimeParse, ReadsNumberAndUnitApartAsTheOracleDoes) {
    constexpr unsigned int seed = 20403;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(150000); ++i) {
        std::string number = samples.number_text();
        std::string unit = samples.blanks();
        unit += samples.unit_text();
        if (samples.once_in(8))
            unit = samples.damaged(unit);
        if (samples.once_in(8))
            number = samples.damaged(number);
        bool const post = samples.once_in(2);
        ASSERT_TRUE(library_obeys([&](auto& times) {
            HELD held = {42, 9};
            bool const result = times.set_time(held, number, unit, post);
            int const status = times.is_legal(number, unit);
            int const joined_status = times.is_legal(number + unit);
            return words(result, held.count, held.unit, status, joined_status);
        })) << in_quotes(number)
            << " and " << in_quotes(unit) << (post ? ", posting" : "") << ", case " << i
            << " of seed " << seed;
    }
}

TEST_F(BigTimeParse, PreviewsAnyTextAsTheOracleDoes) {
    constexpr unsigned int seed = 20404;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(250000); ++i) {
        std::string const text = samples.once_in(30) ? samples.bytes(10) : samples.time_text();
        ASSERT_TRUE(library_obeys([&](auto& times) {
            std::string preview = "before";
            bool const truncated = times.will_value_be_truncated(text.c_str(), preview);
            return words(truncated, preview);
        })) << in_quotes(text)
            << ", case " << i << " of seed " << seed;
    }
}

// Every number of up to five of the characters that decide, in a unit of each resolution.
TEST_F(BigTimeParse, ReadsEveryShortNumberAsTheOracleDoes) {
    std::string const alphabet = "05.-+";
    std::string text;
    auto const extend = [&](auto& self) -> void {
        for (int const unit : {0, 1, 3, 7, 11, 12})
            ASSERT_TRUE(library_obeys([&](auto& times) {
                long long value = 77;
                std::string formatted = text;
                std::string preview = "before";
                int const status = times.string_to_big_int(text, unit, value, true);
                bool const canonical = times.format_time_string(formatted, unit, true);
                std::string const whole = text + BIG_TIME::s_unit_strings[unit];
                bool const truncated = times.will_value_be_truncated(whole.c_str(), preview);
                return words(status, value, canonical, formatted, truncated, preview);
            })) << in_quotes(text)
                << " in unit " << unit;
        if (text.size() == 5)
            return;
        for (char const c : alphabet) {
            text += c;
            self(self);
            if (testing::Test::HasFatalFailure())
                return;
            text.pop_back();
        }
    };
    extend(extend);
}

} // namespace
