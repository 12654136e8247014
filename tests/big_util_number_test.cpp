// The canonical text of the number of a time.

#include "time_library.h"
#include "time_samples.h"

namespace {

struct NUMBER_ROW {
    char const* why;
    std::string text;
    char const* canonical; // null: illegal
};

// clang-format off
NUMBER_ROW const NUMBERS[] = {
    // why                                                 text                         canonical
    {"whole numbers",                                     "0",                         "0"},
    {"whole numbers",                                     "7",                         "7"},
    {"whole numbers",                                     "120",                       "120"},
    {"leading zeros go",                                  "007",                       "7"},
    {"leading zeros go",                                  "-007",                      "-7"},
    {"leading zeros go",                                  "+007",                      "+7"},
    {"leading zeros go",                                  "00100",                     "100"},
    {"the last zero of a whole number stays",             "000",                       "0"},
    {"the last zero of a whole number stays",             "-00",                       "-0"},
    {"the last zero of a whole number stays",             "+00",                       "+0"},
    {"trailing zeros after the point go",                 "-007.50",                   "-7.5"},
    {"trailing zeros after the point go",                 "1.23400",                   "1.234"},
    {"trailing zeros after the point go",                 ".50",                       ".5"},
    {"one digit after the point stays",                   "0.000",                     "0.0"},
    {"one digit after the point stays",                   "5.00",                      "5.0"},
    {"one digit after the point stays",                   "-0.0",                      "-0.0"},
    {"one zero before the point stays",                   "000.5",                     "0.5"},
    {"one zero before the point stays",                   "+00.50",                    "+0.5"},
    {"one zero before the point stays",                   "0.05",                      "0.05"},
    {"one zero before the point stays",                   "-000.05",                   "-0.05"},
    {"one zero before the point stays",                   "00.",                       "0."},
    {"one zero before the point stays",                   "000.000",                   "0.0"},
    {"a point at the end stays",                          "5.",                        "5."},
    {"a point at the end stays",                          "100.",                      "100."},
    {"a point at the end stays",                          "0005.",                     "5."},
    {"a plus sign stays",                                 "+12",                       "+12"},
    {"a plus sign stays",                                 "+.5",                       "+.5"},
    {"a plus sign stays",                                 "+5.",                       "+5."},
    {"a negative zero keeps its sign",                    "-0",                        "-0"},
    // The zeros after a point that stands first are taken for leading ones. Callers rely on it.
    {"zeros after a leading point go",                    ".05",                       ".5"},
    {"zeros after a leading point go",                    ".005",                      ".5"},
    {"zeros after a leading point go",                    ".0050",                     ".5"},
    {"zeros after a leading point go",                    ".0105",                     ".105"},
    {"zeros after a leading point go",                    ".5",                        ".5"},
    {"zeros alone after a leading point leave the point", ".000",                      "."},
    {"zeros alone after a leading point leave the point", ".0",                        "."},
    {"a sign before the point saves the zeros",           "-.05",                      "-.05"},
    {"a sign before the point saves the zeros",           "+.005",                     "+.005"},
    {"a sign before the point saves the zeros",           "-.000",                     "-.0"},
    {"white space of all six kinds around",               "\t\n\v\f\r 007 \r\f\v\n\t", "7"},
    {"white space of all six kinds around",               " -0.50\r\n",                "-0.5"},
    {"any length",                                        "123456789012345678901234567890.5",
     "123456789012345678901234567890.5"},
    {"any length",                                        "000000000000000000000000000001", "1"},
    // refused
    {"nothing",                                           "",                          nullptr},
    {"white space alone",                                 " \t\r\n",                   nullptr},
    {"a point alone",                                     ".",                         nullptr},
    {"a sign alone",                                      "-",                         nullptr},
    {"a sign alone",                                      "+",                         nullptr},
    {"a sign and a point",                                "-.",                        nullptr},
    {"two points",                                        "1.2.3",                     nullptr},
    {"two points",                                        "..",                        nullptr},
    {"two points",                                        "1..",                       nullptr},
    {"two points",                                        ".5.",                       nullptr},
    {"a sign inside",                                     "1-2",                       nullptr},
    {"a sign inside",                                     "1+",                        nullptr},
    {"a sign inside",                                     ".-5",                       nullptr},
    {"two signs",                                         "--5",                       nullptr},
    {"two signs",                                         "+-5",                       nullptr},
    {"two signs",                                         "++",                        nullptr},
    {"a unit",                                            "12ns",                      nullptr},
    {"an exponent",                                       "1e3",                       nullptr},
    {"a separator",                                       "1,000",                     nullptr},
    {"a blank inside",                                    "1 2",                       nullptr},
    {"a blank inside",                                    "- 5",                       nullptr},
    {"a blank inside",                                    "1\r2",                      nullptr},
    {"hexadecimal",                                       "0x10",                      nullptr},
    {"a word",                                            "INF",                       nullptr},
    {"a printf format",                                   "%s%n",                      nullptr},
    {"bytes above 127",                                   "\xb2",                      nullptr},
    {"bytes above 127",                                   "1\xa0",                     nullptr},
};
// clang-format on

std::vector<recording::CALL> illegal(std::string const& text) {
    return {recording::debug("Illegal input \"%s\" in big_get_time_value()",
                             "Illegal input \"" + text + "\" in big_get_time_value()")};
}

TEST(BigUtilNumber, NumbersAreBroughtIntoCanonicalForm) {
    for (NUMBER_ROW const& row : NUMBERS) {
        SCOPED_TRACE(words(std::string(row.why), row.text));
        bool const legal = row.canonical != nullptr;
        expect_of_both([&](auto& times) { return words(times.get_time_value(row.text)); },
                       {words(std::string(legal ? row.canonical : "")),
                        legal ? std::vector<recording::CALL>() : illegal(row.text)});
    }
}

// A plus sign and a point are not refused, though a minus sign and a point are, and each alone.
TEST(BigUtilNumber, PlusPointPassesAsItStands) {
    expect_of_both([](auto& times) { return words(times.get_time_value(" +. ")); },
                   {words(std::string("+.")), {}});
}

TEST(BigUtilNumber, ARefusalShowsTheInputUntrimmed) {
    expect_of_both([](auto& times) { return words(times.get_time_value("\t 1e3 \n")); },
                   {words(std::string()), illegal("\t 1e3 \n")});
}

TEST(BigUtilNumber, ARefusalShowsTheInputUpToNul) {
    expect_of_both(
        [](auto& times) { return words(times.get_time_value(std::string(" 1\0 5", 5))); },
        {words(std::string()), illegal(" 1")});
}

TEST(BigUtilNumber, ACanonicalTextStaysUnlessItsPointStandsFirst) {
    constexpr unsigned int seed = 40501;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(200000); ++i) {
        std::string const text = samples.number_text();
        std::string const canonical = big_get_time_value(text);
        if (canonical.empty() || canonical == ".")
            continue;
        ASSERT_EQ(big_get_time_value(canonical), canonical)
            << in_quotes(text) << ", case " << i << " of seed " << seed;
    }
}

TEST(BigUtilNumber, ReadsAnyTextAsTheOracleDoes) {
    constexpr unsigned int seed = 40502;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(400000); ++i) {
        std::string text = samples.once_in(3) ? samples.blanks() : "";
        text += samples.number_text();
        if (samples.once_in(3))
            text += samples.blanks();
        if (samples.once_in(8))
            text = samples.damaged(text);
        if (samples.once_in(20))
            text = samples.bytes(6);
        ASSERT_TRUE(library_obeys([&](auto& times) { return words(times.get_time_value(text)); }))
            << in_quotes(text) << ", case " << i << " of seed " << seed;
    }
}

// Every text of up to five of the characters that decide.
TEST(BigUtilNumber, ReadsEveryShortTextAsTheOracleDoes) {
    std::string const alphabet = "0.5-+ x";
    std::string text;
    auto const extend = [&](auto& self) -> void {
        ASSERT_TRUE(library_obeys([&](auto& times) { return words(times.get_time_value(text)); }))
            << in_quotes(text);
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
