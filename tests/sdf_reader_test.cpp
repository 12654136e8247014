// The reader of standard delay files: every construct, every refusal, every cut.

#include "decimal.h"
#include "sdf_reader.h"

#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

// ------------------------------------------------------------------------------------------------
// What a file says, as text
// ------------------------------------------------------------------------------------------------

/// "design by program / 3", the last being the power of ten to picoseconds; or the refusal.
std::string header_of(std::string const& text) {
    try {
        SDF_READER const reader(text, "f.sdf");
        SDF_HEADER const& header = reader.header();
        return std::string(header.design) + " by " + std::string(header.program) + ' '
               + header.divider + ' ' + std::to_string(header.power);
    } catch (SDF_ERROR const& error) {
        return error.what();
    }
}

/// The delays: "3 u1 if A posedge A>Y +1:2:3 4:5:6;", with the line in front, a plus for an
/// increment, and then how many were passed over; or the refusal.
std::string delays_of(std::string const& text) {
    std::ostringstream out;
    try {
        SDF_READER reader(text, "f.sdf");
        reader.read_delays([&](SDF_DELAY const& delay) {
            out << delay.line << ' ' << (delay.instance.empty() ? "top" : delay.instance) << ' ';
            if (!delay.condition.empty()) {
                out << "if " << delay.condition << ' ';
            }
            out << delay.edge << (delay.edge.empty() ? "" : " ") << delay.from << '>' << delay.to;
            for (SDF_VALUE const& value : delay.values) {
                out << (delay.is_increment ? " +" : " ") << value[CORNER_MIN] << ':'
                    << value[CORNER_TYP] << ':' << value[CORNER_MAX];
            }
            out << "; ";
        });
        out << reader.passed_over();
    } catch (SDF_ERROR const& error) {
        return error.what();
    }
    return out.str();
}

std::string file_of(std::string const& header_and_cells) {
    return "(DELAYFILE\n" + header_and_cells + "\n)\n";
}

/// A file with a cell u1 that has these lists, which begin on line 3.
std::string cell_of(std::string const& lists) {
    return file_of("(CELL (CELLTYPE \"X\") (INSTANCE u1)\n" + lists + ")");
}

/// A file with a cell u1 that has these absolute delays, which are on line 3.
std::string absolute(std::string const& delays) {
    return cell_of("(DELAY (ABSOLUTE " + delays + "))");
}

struct CASE {
    char const* why;
    std::string text;
    std::string expected;
};

// ------------------------------------------------------------------------------------------------
// The header
// ------------------------------------------------------------------------------------------------

TEST(SdfReader, HeaderIsRead) {
    std::vector<CASE> const cases = {
        // why, header, design by program divider power
        {"nothing said: the standard's divider and 1 ns", "", " by  . 3"},
        {"a design", "(DESIGN \"top\")", "top by  . 3"},
        {"a program", "(PROGRAM \"STA\")", " by STA . 3"},
        {"what does not matter is passed over",
         "(SDFVERSION \"3.0\")(DATE \"a ) b\")(VENDOR \"v\")(VERSION \"1\")(VOLTAGE 3.3::3.3)"
         "(PROCESS \"1.0\")(TEMPERATURE 25)",
         " by  . 3"},
        {"the empty voltage", "(VOLTAGE )", " by  . 3"},
        {"dividers", "(DIVIDER /)", " by  / 3"},
        {"", "(DIVIDER .)", " by  . 3"},
        {"keywords in lower case", "(divider /)(timescale 1ps)", " by  / 0"},
        {"comments", "// (DIVIDER /)\n(DIVIDER/*\n*/ / // x\n)", " by  / 3"},

        {"timescales", "(TIMESCALE 1ps)", " by  . 0"},
        {"", "(TIMESCALE 10ps)", " by  . 1"},
        {"", "(TIMESCALE 100 ps)", " by  . 2"},
        {"", "(TIMESCALE 1.0ns)", " by  . 3"},
        {"", "(TIMESCALE 10.0 ns)", " by  . 4"},
        {"", "(TIMESCALE 100.0us)", " by  . 8"},
        {"", "(TIMESCALE 1ms)", " by  . 9"},
        {"", "(TIMESCALE 1 s)", " by  . 12"},
        {"", "(TIMESCALE 100fs)", " by  . -1"},
        {"", "(TIMESCALE 1FS)", " by  . -3"},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(std::string(c.why) + ": " + c.text);
        EXPECT_EQ(header_of(file_of(c.text)), c.expected);
    }
}

TEST(SdfReader, BrokenHeaderIsRefused) {
    std::string const timescale = "; expected 1, 10 or 100 and one of the units s, ms, us, ns, ps "
                                  "and fs";
    std::vector<CASE> const cases = {
        {"an empty file", "", "f.sdf:1: found the end of the file; expected (DELAYFILE"},
        {"another file", "\n$timescale", "f.sdf:2: found \"$timescale\"; expected (DELAYFILE"},
        {"another list", "(DESIGN", "f.sdf:1: found \"DESIGN\"; expected DELAYFILE"},
        {"an unknown entry", "(DELAYFILE\n(COLOR red))",
         "f.sdf:2: found \"COLOR\"; expected an entry of the header or a CELL"},
        {"a design without quotes", "(DELAYFILE (DESIGN top))",
         "f.sdf:1: found \"top\"; expected the design's name in quotes"},
        {"a number for a program", "(DELAYFILE (PROGRAM 1))",
         "f.sdf:1: found \"1\"; expected the program's name in quotes"},
        {"two words", "(DELAYFILE (DESIGN \"a\" \"b\"))", "f.sdf:1: found \"b\"; expected )"},
        {"another divider", "(DELAYFILE (DIVIDER :))",
         "f.sdf:1: found \":\"; expected the divider . or /"},
        {"no divider", "(DELAYFILE (DIVIDER ))",
         "f.sdf:1: found \")\"; expected the divider . or /"},
        {"timescales", "(DELAYFILE\n(TIMESCALE 2ns))",
         "f.sdf:2: found the timescale \"2NS\"" + timescale},
        {"", "(DELAYFILE (TIMESCALE 1))", "f.sdf:1: found the timescale \"1\"" + timescale},
        {"", "(DELAYFILE (TIMESCALE ns))", "f.sdf:1: found the timescale \"NS\"" + timescale},
        {"", "(DELAYFILE (TIMESCALE 1 parsec))",
         "f.sdf:1: found the timescale \"1PARSEC\"" + timescale},
        {"", "(DELAYFILE (TIMESCALE))", "f.sdf:1: found the timescale \"\"" + timescale},
        {"a string without an end", "(DELAYFILE\n(DATE \"today)\n)",
         "f.sdf:2: found a string without an end; expected \" on the same line"},
        {"a comment without an end", "(DELAYFILE\n/* (CELL\n",
         "f.sdf:2: found a comment without an end; expected */"},
        {"the end within a list", "(DELAYFILE\n(VOLTAGE (3.3\n)",
         "f.sdf:3: found the end of the file; expected the ) of the list that begins on line 2"},
        {"a long word is not shown whole", std::string(100, 'x'),
         "f.sdf:1: found \"" + std::string(60, 'x') + "...\"; expected (DELAYFILE"},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(std::string(c.why) + ": " + c.text);
        EXPECT_EQ(header_of(c.text), c.expected);
    }
}

// ------------------------------------------------------------------------------------------------
// Cells
// ------------------------------------------------------------------------------------------------

TEST(SdfReader, DelaysAreRead) {
    std::vector<CASE> const cases = {
        {"no cell", file_of(""), "0"},
        {"a cell without delays", cell_of(""), "0"},
        {"an empty list", cell_of("(DELAY (ABSOLUTE))"), "0"},
        {"a path with one value", absolute("(IOPATH A Y (1.5))"), "3 u1 A>Y 1.5:1.5:1.5; 0"},
        {"rise and fall", absolute("(IOPATH A Y (1:2:3) (4:5:6))"), "3 u1 A>Y 1:2:3 4:5:6; 0"},
        {"blanks in values", absolute("(IOPATH A Y ( 1 : 2:\n3 ))"), "3 u1 A>Y 1:2:3; 0"},
        {"corners that are not given", absolute("(IOPATH A Y (1::3) (:2:) (::) ())"),
         "3 u1 A>Y 1::3 :2: :: ::; 0"},
        {"numbers of every form", absolute("(IOPATH A Y (-.5:+5.:1.5E-3))"),
         "3 u1 A>Y -.5:+5.:1.5E-3; 0"},
        {"pulse limits", absolute("(IOPATH A Y ((1:2:3) (4) (5)) ((6) (7)))"),
         "3 u1 A>Y 1:2:3 6:6:6; 0"},
        {"RETAIN is passed over", absolute("(IOPATH A Y (RETAIN (1) (2)) (3))"),
         "3 u1 A>Y 3:3:3; 0"},
        {"an edge", absolute("(IOPATH (posedge CLK) Q (1)) (IOPATH (0z CLK) Q (2))"),
         "3 u1 posedge CLK>Q 1:1:1; 3 u1 0z CLK>Q 2:2:2; 0"},
        {"a wire", absolute("(INTERCONNECT a/Y b/A (1))"), "3 u1 a/Y>b/A 1:1:1; 0"},
        {"increments", cell_of("(DELAY (INCREMENT (IOPATH A Y (1))))"), "3 u1 A>Y +1:1:1; 0"},
        {"both in one list",
         cell_of("(DELAY (ABSOLUTE (IOPATH A Y (1))) (INCREMENT\n(IOPATH A Y "
                 "(2))))"),
         "3 u1 A>Y 1:1:1; 4 u1 A>Y +2:2:2; 0"},

        {"a condition", absolute("(COND B (IOPATH A Y (1)))"), "3 u1 if B A>Y 1:1:1; 0"},
        {"with parentheses", absolute("(COND (B && (C == 1'b0)) (IOPATH A Y (1)))"),
         "3 u1 if (B && (C == 1'b0)) A>Y 1:1:1; 0"},
        {"with a name", absolute("(COND \"x\" B (IOPATH A Y (1)))"),
         "3 u1 if \"x\" B A>Y 1:1:1; 0"},
        {"none is left for the next", absolute("(COND B (IOPATH A Y (1))) (IOPATH A Y (2))"),
         "3 u1 if B A>Y 1:1:1; 3 u1 A>Y 2:2:2; 0"},
        {"otherwise", absolute("(CONDELSE (IOPATH A Y (1)))"), "3 u1 if CONDELSE A>Y 1:1:1; 0"},

        {"delays of single pins are passed over",
         absolute("(PORT A (1)) (NETDELAY n (2)) (DEVICE (3)) (IOPATH A Y (4))"),
         "3 u1 A>Y 4:4:4; 3"},
        {"lists that have no delays",
         cell_of("(DELAY (PATHPULSE A Y (1)) (PATHPULSEPERCENT (50)))"
                 "(TIMINGCHECK (HOLD (COND \\~D\\&\\) (posedge S)) "
                 "(posedge C) (1)))(TIMINGENV)(LABEL)"),
         "0"},
        {"escaped characters", absolute("(IOPATH a\\[0\\]\\(\\\" \\\\b\\/\\/c (1))"),
         "3 u1 a\\[0\\]\\(\\\">\\\\b\\/\\/c 1:1:1; 0"},
        {"a comment ends a word", absolute("(IOPATH A//x\nY/*y*/(1))"), "3 u1 A>Y 1:1:1; 0"},
        {"a divider does not", absolute("(INTERCONNECT a/b c/ (1))"), "3 u1 a/b>c/ 1:1:1; 0"},
        {"the top",
         file_of("(CELL (CELLTYPE \"X\") (INSTANCE ) (DELAY (ABSOLUTE (INTERCONNECT a b "
                 "(1)))))"),
         "2 top a>b 1:1:1; 0"},
        {"every cell has its own name",
         file_of("(CELL (CELLTYPE \"X\") (INSTANCE a.b))\n(CELL (CELLTYPE \"X\") (INSTANCE) (DELAY "
                 "(ABSOLUTE (IOPATH A Y (1)))))\n(cell (celltype \"X\") (instance c) (delay "
                 "(absolute (iopath A Y (1)))))"),
         "3 top A>Y 1:1:1; 4 c A>Y 1:1:1; 0"},
        {"lines that end as on other systems",
         "(DELAYFILE\r\n(CELL (CELLTYPE \"X\") (INSTANCE)\r\n"
         "(DELAY (ABSOLUTE (IOPATH A Y (1)\r\n)))))\r\n",
         "3 top A>Y 1:1:1; 0"},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(std::string(c.why) + ": " + c.text);
        EXPECT_EQ(delays_of(c.text), c.expected);
    }
}

TEST(SdfReader, BrokenCellIsRefused) {
    auto const value = [](std::string const& text) {
        return "f.sdf:3: found the delay value (" + text
               + "); expected one decimal number, or min:typ:max";
    };
    std::vector<CASE> const cases = {
        {"another list", file_of("(CELL (CELLTYPE \"X\") (INSTANCE))\n(DESIGN \"x\")"),
         "f.sdf:3: found \"DESIGN\"; expected a CELL"},
        {"a word", file_of("(CELL (CELLTYPE \"X\") (INSTANCE))\nx"),
         "f.sdf:3: found \"x\"; expected a CELL or the ) that ends the DELAYFILE"},
        {"more behind the end", "(DELAYFILE)\n)",
         "f.sdf:2: found \")\"; expected the end of the file behind the DELAYFILE"},
        {"no type", file_of("(CELL (INSTANCE a))"),
         "f.sdf:2: found \"INSTANCE\"; expected CELLTYPE"},
        {"a type without quotes", file_of("(CELL (CELLTYPE X))"),
         "f.sdf:2: found \"X\"; expected the cell's type in quotes"},
        {"no instance", file_of("(CELL (CELLTYPE \"X\") (DELAY))"),
         "f.sdf:2: found \"DELAY\"; expected INSTANCE"},
        {"nothing behind the type", file_of("(CELL (CELLTYPE \"X\"))"),
         "f.sdf:2: found \")\"; expected (INSTANCE"},
        {"every instance", file_of("(CELL (CELLTYPE \"X\") (INSTANCE *))"),
         "f.sdf:2: found \"*\"; expected the name of one instance, as the file does not say which "
         "there are"},
        {"two instances", file_of("(CELL (CELLTYPE \"X\") (INSTANCE a b))"),
         "f.sdf:2: found \"b\"; expected )"},
        {"an unknown list of a cell", cell_of("(SPEED)"),
         "f.sdf:3: found \"SPEED\"; expected DELAY, TIMINGCHECK, TIMINGENV or LABEL"},
        {"an unknown list of delays", cell_of("(DELAY (RELATIVE))"),
         "f.sdf:3: found \"RELATIVE\"; expected ABSOLUTE, INCREMENT, PATHPULSE or "
         "PATHPULSEPERCENT"},
        {"an unknown delay", absolute("(OPATH A Y (1))"),
         "f.sdf:3: found \"OPATH\"; expected IOPATH, INTERCONNECT, COND, CONDELSE, PORT, NETDELAY "
         "or DEVICE"},
        {"a word among delays", absolute("A"), "f.sdf:3: found \"A\"; expected )"},
        {"no start", absolute("(IOPATH)"),
         "f.sdf:3: found \")\"; expected the pin that the delay starts from"},
        {"no end", absolute("(IOPATH A (1))"),
         "f.sdf:3: found \"(\"; expected the pin that the delay leads to"},
        {"an unknown edge", absolute("(IOPATH (both A) Y (1))"),
         "f.sdf:3: found \"both\"; expected an edge: posedge, negedge, 01, 10, 0z, z1, 1z or z0"},
        {"two pins with an edge", absolute("(IOPATH (posedge A B) Y (1))"),
         "f.sdf:3: found \"B\"; expected )"},
        {"no value", absolute("(IOPATH A Y)"),
         "f.sdf:3: found \")\"; expected a delay value in parentheses"},
        {"RETAIN alone", absolute("(IOPATH A Y (RETAIN (1)))"),
         "f.sdf:3: found \")\"; expected a delay value in parentheses"},
        {"a value without parentheses", absolute("(IOPATH A Y 1)"),
         "f.sdf:3: found \"1\"; expected a delay value in parentheses"},
        {"no number", absolute("(IOPATH A Y (fast))"), value("fast")},
        {"a comma for a point", absolute("(IOPATH A Y (1,5))"), value("1,5")},
        {"two numbers", absolute("(IOPATH A Y (1:2))"), value("1:2")},
        {"four numbers", absolute("(IOPATH A Y (1:2:3:4))"), value("1:2:3:4")},
        {"a fourth that is empty", absolute("(IOPATH A Y (1:2:3:))"), value("1:2:3:")},
        {"numbers without colons", absolute("(IOPATH A Y (1 2 3))"), value("1 2 3")},
        {"a bad one of three", absolute("(IOPATH A Y (1:2:x))"), value("1:2:x")},
        {"a unit", absolute("(IOPATH A Y (1ns))"), value("1ns")},
        {"a string", absolute("(IOPATH A Y (\"1\"))"), "f.sdf:3: found \"1\"; expected )"},
        {"a condition without a path", absolute("(COND A)"),
         "f.sdf:3: found \")\"; expected the IOPATH of a condition"},
        {"a condition of a wire", absolute("(COND A (INTERCONNECT a b (1)))"),
         "f.sdf:3: found \")\"; expected the IOPATH of a condition"},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(std::string(c.why) + ": " + c.text);
        EXPECT_EQ(delays_of(c.text), c.expected);
    }
}

TEST(SdfReader, FileCutAnywhereIsRefused) {
    std::string const text = "(DELAYFILE (DESIGN \"x\") // no\n (TIMESCALE 1ps) /* no */ (CELL "
                             "(CELLTYPE \"X\") (INSTANCE "
                             "u\\[1\\]) (DELAY (ABSOLUTE (COND (A && B) (IOPATH (posedge A) Y "
                             "(1:2:3) (4))) (PORT A (1))))"
                             "(TIMINGCHECK (HOLD A (posedge C) (1)))))";
    ASSERT_EQ(delays_of(text), "2 u\\[1\\] if (A && B) posedge A>Y 1:2:3 4:4:4; 1");
    for (std::size_t size = 0; size < text.size(); ++size) {
        std::string const refusal = delays_of(text.substr(0, size));
        EXPECT_TRUE(refusal.starts_with("f.sdf:1: found ")
                    || refusal.starts_with("f.sdf:2: found "))
            << text.substr(0, size) << "\ngives " << refusal;
    }
}

// ------------------------------------------------------------------------------------------------
// Decimal numbers
// ------------------------------------------------------------------------------------------------

TEST(SdfDecimal, PointIsShifted) {
    struct ROW {
        char const* number;
        int power;
        char const* shifted;
    };
    ROW const rows[] = {
        // number     10^  result
        {"0", 0, "0"},         {"1", 3, "1000"},          {"1.5", 3, "1500"},
        {"0.308", 3, "0308"},  {"1.23456", 3, "1234.56"}, {"1.", 0, "1"},
        {"5.", -1, "0.5"},     {".5", 0, "0.5"},          {".05", 0, "0.05"},
        {".05", 1, "0.5"},     {"-.05", 2, "-05"},        {"+1.5", 0, "1.5"},
        {"12", -2, "0.12"},    {"12", -3, "0.012"},       {"-12", -1, "-1.2"},
        {"1.5e3", 0, "1500"},  {"1.5E+3", 0, "1500"},     {"1.5e-1", 3, "150"},
        {"1.5e-1", 0, "0.15"}, {"15e-999", 997, "0.15"},
    };
    for (ROW const& row : rows) {
        EXPECT_EQ(shifted(row.number, row.power), row.shifted) << row.number << " " << row.power;
    }
}

TEST(SdfDecimal, OnlyDecimalNumbersAreSuch) {
    for (char const* const number :
         {"0", "1.5", "-1", "+1", ".5", "5.", "1e3", "1.5E-03", "-.5e+999", "00012"}) {
        EXPECT_TRUE(is_decimal(number)) << number;
    }
    for (char const* const text :
         {"",       "+",     "-",   ".",  "-.", "e3", ".e3", "1e",  "1e+", "1e1000",
          "1e-1.5", "1.2.3", "--1", "1-", " 1", "1 ", "0x1", "inf", "nan", "1'000"}) {
        EXPECT_FALSE(is_decimal(text)) << text;
    }
}

} // namespace
