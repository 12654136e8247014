// Variables of a dump as a user names them.

#include "signal_choice.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

/// Variables with these names; what is behind a blank is the range.
std::vector<VCD_VARIABLE> variables_named(std::vector<std::string> const& names) {
    std::vector<VCD_VARIABLE> variables;
    for (std::string const& name : names) {
        std::size_t const blank = std::min(name.find(' '), name.size() - 1);
        bool const has_range = name[blank] == ' ';
        variables.push_back({has_range ? name.substr(0, blank) : name,
                             has_range ? name.substr(blank + 1) : "", "wire", VCD_KIND::BITS, 1,
                             variables.size()});
    }
    return variables;
}

std::vector<VCD_VARIABLE> const DESIGN =
    variables_named({"tb.clock", "tb.total [7:0]", "tb.dut.clock", "tb.dut.total [7:0]",
                     "tb.dut.bus [0]", "tb.dut.bus [1]", "tb.\\a*b"});

std::string found(std::string const& text) {
    std::string names;
    for (std::size_t const position : find_variables(DESIGN, text)) {
        names += (names.empty() ? "" : " ") + DESIGN[position].name + DESIGN[position].range;
    }
    return names;
}

TEST(VcdChoice, NamesAndPatternsFindVariables) {
    struct CASE {
        char const* why;
        char const* text;
        char const* found;
    };
    CASE const cases[] = {
        // why                               text              found
        {"a name", "tb.clock", "tb.clock"},
        {"a name without its range", "tb.total", "tb.total[7:0]"},
        {"a name with its range", "tb.total[7:0]", "tb.total[7:0]"},
        {"another range", "tb.total[3:0]", ""},
        {"several with one name", "tb.dut.bus", "tb.dut.bus[0] tb.dut.bus[1]"},
        {"one of them", "tb.dut.bus[1]", "tb.dut.bus[1]"},
        {"a part of a name", "clock", ""},
        {"a scope", "tb.dut", ""},
        {"nothing", "", ""},
        {"another letter case", "tb.Clock", ""},

        {"all", "*",
         "tb.clock tb.total[7:0] tb.dut.clock tb.dut.total[7:0] tb.dut.bus[0] "
         "tb.dut.bus[1] tb.\\a*b"},
        {"a name in any scope", "*.clock", "tb.clock tb.dut.clock"},
        {"a scope with all in it", "tb.dut.*",
         "tb.dut.clock tb.dut.total[7:0] tb.dut.bus[0] tb.dut.bus[1]"},
        {"several stars", "*d*t*t*", "tb.dut.total[7:0]"},
        {"a star for nothing", "tb.clock*", "tb.clock"},
        {"two stars in a row", "tb**.clock", "tb.clock tb.dut.clock"},
        {"a star that has to take more", "*to*al", "tb.total[7:0] tb.dut.total[7:0]"},
        {"question marks", "tb.??ock", "tb.clock"},
        {"a question mark for nothing", "tb.clock?", ""},
        {"a pattern with a range", "*[7:0]", "tb.total[7:0] tb.dut.total[7:0]"},
        {"brackets are no pattern", "tb.[ct]*", ""},
        {"a star in a name", "tb.\\a*b", "tb.\\a*b"},
        {"a pattern that fits nothing", "*.reset", ""},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(found(c.text), c.found) << c.text;
    }
}

std::string near_to(std::vector<VCD_VARIABLE> const& variables, std::string const& text) {
    std::string names;
    for (std::string const& name : near_names(variables, text)) {
        names += (names.empty() ? "" : " ") + name;
    }
    return names;
}

TEST(VcdChoice, UnknownNamesHaveNearOnes) {
    struct CASE {
        char const* why;
        char const* text;
        char const* names;
    };
    CASE const cases[] = {
        // why                               text             nearest names
        {"a wrong letter", "tb.clack", "tb.clock tb.dut.clock"},
        {"a missing letter", "tb.dut.cock", "tb.dut.clock tb.clock"},
        {"a letter too many", "tb.dut.buss", "tb.dut.bus[0] tb.dut.bus[1]"},
        {"no scope", "total", "tb.dut.total[7:0] tb.total[7:0]"},
        {"another scope", "tb.dut.adder.total", "tb.dut.total[7:0] tb.total[7:0]"},
        {"another range", "tb.total[3:0]", "tb.total[7:0] tb.dut.total[7:0]"},
        {"capitals", "TB.CLOCK", ""},
        {"nothing like it", "tb.reset_n", ""},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(near_to(DESIGN, c.text), c.names) << c.text;
    }
}

TEST(VcdChoice, NoMoreThanFiveNamesAreNearAndEachOnlyOnce) {
    EXPECT_EQ(near_to(variables_named({"a.x1", "a.x2", "a.x3", "a.x4", "a.x5", "a.x6"}), "a.x"),
              "a.x1 a.x2 a.x3 a.x4 a.x5");
    EXPECT_EQ(near_to(variables_named({"a.x1", "a.x1", "a.x1"}), "a.x"), "a.x1");
}

} // namespace
