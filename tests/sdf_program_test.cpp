// sdfpaths as a user runs it.

#include "page_examples.h"
#include "run_program.h"

#include <algorithm>
#include <cstdio>
#include <fstream>
#include <map>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

std::string const FOLDER = BIG_SOURCE_ROOT "/examples/sdfpaths";

/// A file whose top has these absolute delays.
std::string file_of(std::string const& delays, std::string const& timescale = "1ns") {
    return "(DELAYFILE (TIMESCALE " + timescale
           + ") (CELL (CELLTYPE \"T\") (INSTANCE) (DELAY (ABSOLUTE\n" + delays + "))))\n";
}

/// A path of delays from p0 to p1 and so on, as a file and as an argument.
struct CHAIN {
    std::string file;
    std::string path;
};

CHAIN chain_of(std::vector<std::string> const& delays, std::string const& timescale = "1ns") {
    CHAIN chain{"", "--path 'chain: p0"};
    for (std::size_t i = 0; i < delays.size(); ++i) {
        chain.file += "(IOPATH p" + std::to_string(i) + " p" + std::to_string(i + 1) + " ("
                      + delays[i] + "))\n";
        chain.path += " p" + std::to_string(i + 1);
    }
    chain.file = file_of(chain.file, timescale);
    chain.path += "' ";
    return chain;
}

/// The line of a text that begins in some way, without its end.
std::string line_that_begins(std::string const& text, std::string const& beginning) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.starts_with(beginning)) {
            return line;
        }
    }
    return "none";
}

// ------------------------------------------------------------------------------------------------
// Reports
// ------------------------------------------------------------------------------------------------

TEST(SdfProgram, EachDelayAndSumIsShown) {
    RUN const run =
        run_shell("sdfpaths --clock '250 MHz' --path 'x: a b (fall) c' -",
                  "(DELAYFILE (DESIGN \"d\") (PROGRAM \"p\") (CELL (CELLTYPE \"T\") (INSTANCE "
                  ") (DELAY (ABSOLUTE (PORT a (1)) (IOPATH a b (1.5) (0.25)) (INTERCONNECT "
                  "b c (2))))))");
    EXPECT_EQ(run.out, "standard input: design d, written by p, 2 delays between 3 pins\n"
                       "delays of single pins (PORT, NETDELAY, DEVICE) left out: 1\n"
                       "corner max, slowest edge; clock 250 MHz, period 4.000 ns\n"
                       "\n"
                       "path x\n"
                       "    delay/ns      sum/ns  pin\n"
                       "                   0.000  a\n"
                       "       0.250       0.250  b (fall)\n"
                       "       2.000       2.250  c\n"
                       "total 2.250 ns, period 4.000 ns, slack 1.750 ns: met\n"
                       "\n"
                       "1 path: 1 met, 0 violated\n");
    EXPECT_EQ(run.err, "");
    EXPECT_EQ(run.status, 0);
}

TEST(SdfProgram, StatusIsThatOfTheWorstPath) {
    CHAIN const chain = chain_of({"1", "2"});
    std::string const both = "--path 'a: p0 p1' --path 'b: p0 p1 p2' -";
    struct ROW {
        char const* clock;
        char const* counts;
        int status;
    };
    ROW const rows[] = {
        {"'333333333 Hz'", "2 paths: 2 met, 0 violated", 0},
        {"'333333334 Hz'", "2 paths: 1 met, 1 violated", 1},
        {"'1 GHz'", "2 paths: 1 met, 1 violated", 1},
        {"'1000000001 Hz'", "2 paths: 0 met, 2 violated", 1},
    };
    for (ROW const& row : rows) {
        RUN const run = run_shell(std::string("sdfpaths -c ") + row.clock + ' ' + both, chain.file);
        EXPECT_EQ(line_that_begins(run.out, "2 paths"), row.counts) << row.clock;
        EXPECT_EQ(run.status, row.status) << row.clock;
        EXPECT_EQ(run.err, "");
    }
}

TEST(SdfProgram, CornerAndEdgeAreChosen) {
    std::string const file = file_of("(IOPATH a y (1:2:3) (4:5:6))");
    struct ROW {
        char const* options;
        char const* total;
    };
    ROW const rows[] = {
        {"", "6.000"},
        {"--corner min", "4.000"},
        {"--corner typ --edge rise", "2.000"},
        {"--corner max --edge fall", "6.000"},
        {"--corner max --edge fastest", "3.000"},
    };
    for (ROW const& row : rows) {
        RUN const run =
            run_shell(std::string("sdfpaths -c 1MHz -p 'x: a y' - ") + row.options, file);
        EXPECT_EQ(line_that_begins(run.out, "total").substr(6, 5), row.total) << row.options;
    }
}

// ------------------------------------------------------------------------------------------------
// What exactness is worth
// ------------------------------------------------------------------------------------------------

TEST(SdfProgram, FloatingPointMissesPeriodsThatArePathsExactly) {
    struct CASE {
        char const* why;
        std::vector<std::string> delays;
        char const* timescale;
        char const* clock;
        char const* exact;
        char const* in_double;
    };
    CASE const cases[] = {
        {"whole nanoseconds in tenths of 10 ns",
         {"0.1", "0.1", "0.1"},
         "10ns",
         "'1 GHz'",
         "total 3.000 ns, period 1.000 ns, slack -2.000 ns: violated",
         "in double: total 3 ns, period 1 ns, slack -2 ns: violated"},
        {"ten tenths, too short", std::vector<std::string>(10, "0.1"), "1ns", "'1 GHz'",
         "total 1.000 ns, period 1.000 ns, slack 0.000 ns: met",
         "in double: total 0.9999999999999999 ns, period 1 ns, slack 1.1102230246251565e-16 ns: "
         "met (another total)"},
        {"forty twentieths, too long", std::vector<std::string>(40, "0.05"), "1ns", "'500 MHz'",
         "total 2.000 ns, period 2.000 ns, slack 0.000 ns: met",
         "in double: total 2.000000000000001 ns, period 2 ns, slack -8.881784197001252e-16 ns: "
         "violated (another verdict)"},
        {"hops that are exact",
         {"0.5", "0.25"},
         "1ns",
         "'1 GHz'",
         "total 0.750 ns, period 1.000 ns, slack 0.250 ns: met",
         "in double: total 0.75 ns, period 1 ns, slack 0.25 ns: met"},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.why);
        CHAIN const chain = chain_of(c.delays, c.timescale);
        RUN const run = run_shell(
            std::string("sdfpaths --float -c ") + c.clock + ' ' + chain.path + '-', chain.file);
        EXPECT_EQ(line_that_begins(run.out, "total"), c.exact);
        EXPECT_EQ(line_that_begins(run.out, "in double: total"), c.in_double);
    }
}

TEST(SdfProgram, SampleIsDecidedOtherwiseByFloatingPoint) {
    RUN const run = run_shell("sdfpaths --float --clock '200 MHz' accumulator_ice40.sdf "
                              "accumulator_ice40.paths",
                              "", FOLDER);
    EXPECT_EQ(line_that_begins(run.out, "total"),
              "total 5.000 ns, period 5.000 ns, slack 0.000 ns: met");
    EXPECT_EQ(line_that_begins(run.out, "in double: total"),
              "in double: total 5.000000000000001 ns, period 5 ns, slack -8.881784197001252e-16 "
              "ns: violated (another verdict)");
    EXPECT_EQ(run.status, 0);
}

// ------------------------------------------------------------------------------------------------
// Digits below a picosecond
// ------------------------------------------------------------------------------------------------

TEST(SdfProgram, DigitsBelowAPicosecondAreReported) {
    CHAIN const chain = chain_of({"0.0014", "0.002", "0.0017065", "-0.00101"});
    RUN const run = run_shell("sdfpaths -c '200 GHz' " + chain.path + "-", chain.file);
    EXPECT_EQ(line_that_begins(run.out, "total"),
              "total 0.003 ns, period 0.005 ns, slack 0.002 ns: met");
    EXPECT_EQ(line_that_begins(run.out, "3 delays"),
              "3 delays have digits below a picosecond, which were cut off: the true total is less "
              "than 2 ps larger and less than 1 ps smaller. The largest loss is 0.7065 ps, at "
              "standard input:4.");
    EXPECT_EQ(run.status, 0);
}

TEST(SdfProgram, VerdictThatDependsOnThemIsNone) {
    CHAIN const chain = chain_of({"1.4", "2", "1.7"}, "1ps");
    RUN const run = run_shell("sdfpaths -c '200 GHz' " + chain.path + "-", chain.file);
    EXPECT_EQ(line_that_begins(run.out, "total"),
              "total 0.004 ns, period 0.005 ns, slack 0.001 ns: undecided");
    EXPECT_EQ(line_that_begins(run.out, "1 path"), "1 path: 0 met, 0 violated, 1 undecided");
    EXPECT_EQ(run.status, 1);
}

TEST(SdfProgram, StrictRefusesThem) {
    CHAIN const chain = chain_of({"1", "1.70", "1.0"}, "1ps");
    RUN const run = run_shell("sdfpaths --strict -c '1 GHz' " + chain.path + "-", chain.file);
    EXPECT_EQ(run.out, "");
    EXPECT_EQ(run.err, "sdfpaths: standard input:3: path chain: found a delay with 0.7 ps below a "
                       "whole picosecond; expected none with --strict\n");
    EXPECT_EQ(run.status, 2);
    EXPECT_EQ(run_shell("sdfpaths --strict -c '1 GHz' -p 'x: p0 p1' -", chain.file).status, 0);
}

// ------------------------------------------------------------------------------------------------
// The samples against another reading
// ------------------------------------------------------------------------------------------------

/// The delays of a file in picoseconds at the corner max, the slower of rise and fall, read line
/// by line as the tools of the samples lay them out.
std::map<std::string, std::map<std::string, long long>> delays_of(std::string const& path) {
    std::map<std::string, std::map<std::string, long long>> delays;
    bool is_in_ns = false;
    std::string cell;
    std::ifstream file(path);
    for (std::string line; std::getline(file, line);) {
        line.erase(std::remove(line.begin(), line.end(), '\\'), line.end());
        std::istringstream words(line);
        std::string keyword;
        words >> keyword;
        if (keyword == "(TIMESCALE") {
            is_in_ns = line.find("1ns") != std::string::npos;
        } else if (keyword.starts_with("(INSTANCE")) {
            words >> cell;
            cell =
                cell.starts_with(")") || cell.empty() ? "" : cell.substr(0, cell.find(')')) + "/";
        } else if (keyword == "(IOPATH" || keyword == "(INTERCONNECT") {
            std::string from;
            std::string to;
            words >> from >> to;
            long long slowest = -1;
            for (std::string value; words >> value;) {
                std::string digits; // behind the last colon
                for (char const c : value.substr(value.rfind(':') + 1)) {
                    digits += c >= '0' && c <= '9' ? std::string(1, c) : "";
                }
                EXPECT_TRUE(digits.empty() || !is_in_ns || value.find('.') + 3 < value.size());
                slowest = std::max(slowest, digits.empty() ? -1 : std::stoll(digits));
            }
            delays[cell + from][cell + to] = slowest;
        }
        if (keyword == "(CELL") {
            cell.clear();
        }
    }
    return delays;
}

TEST(SdfProgram, LongestPathsOfTheSamplesAreThoseOfAnotherReading) {
    for (char const* const name : {"accumulator_ice40.sdf", "accumulator_osu035.sdf"}) {
        SCOPED_TRACE(name);
        auto const delays = delays_of(FOLDER + '/' + name);
        std::map<std::string, int> starts;
        for (auto const& [from, ends] : delays) {
            starts.emplace(from, 0);
            for (auto const& [to, delay] : ends) {
                ++starts[to];
            }
        }
        std::vector<long long> sums;
        auto const walk = [&](auto const& self, std::string const& from, long long sum) -> void {
            auto const place = delays.find(from);
            if (place == delays.end()) {
                sums.push_back(sum);
                return;
            }
            for (auto const& [to, delay] : place->second) {
                self(self, to, sum + delay);
            }
        };
        for (auto const& [pin, count] : starts) {
            if (count == 0) {
                walk(walk, pin, 0);
            }
        }
        std::sort(sums.rbegin(), sums.rend());
        ASSERT_GT(sums.size(), 90u);

        RUN const run = run_shell(std::string("sdfpaths --longest 1000000 --clock '1 GHz' ") + name,
                                  "", FOLDER);
        std::vector<long long> found;
        std::istringstream lines(run.out);
        for (std::string line; std::getline(lines, line);) {
            if (line.starts_with("total ")) {
                std::string digits = line.substr(6, line.find(' ', 6) - 6);
                digits.erase(digits.find('.'), 1);
                found.push_back(std::stoll(digits));
            }
        }
        EXPECT_EQ(found, sums);
        EXPECT_EQ(run.err, "");
    }
}

TEST(SdfProgram, LongFileIsRead) {
    // A chain of 2000 inverters and their wires.
    constexpr int CELLS = 2000;
    std::string file = "(DELAYFILE (DIVIDER .) (TIMESCALE 1 ps)\n";
    for (int i = 0; i < CELLS; ++i) {
        std::string const cell = "chain.u" + std::to_string(i);
        file += "(CELL (CELLTYPE \"INV\") (INSTANCE " + cell
                + ") (DELAY (ABSOLUTE (IOPATH A Y (1:2:3) (2:3:4)))))\n(CELL (CELLTYPE \"T\") "
                  "(INSTANCE) "
                  "(DELAY (ABSOLUTE (INTERCONNECT "
                + cell + ".Y chain.u" + std::to_string(i + 1) + ".A (10)))))\n";
    }
    RUN const run = run_shell("sdfpaths --longest 2 --clock '1 MHz' -", file + ")\n");
    EXPECT_EQ(line_that_begins(run.out, "total"),
              "total 28.000 ns, period 1000.000 ns, slack 972.000 ns: met");
    EXPECT_EQ(line_that_begins(run.out, "1 path:"), "1 path: 1 met, 0 violated");
    EXPECT_EQ(run.status, 0);
}

// ------------------------------------------------------------------------------------------------
// Refusals
// ------------------------------------------------------------------------------------------------

TEST(SdfProgram, RefusalNamesThePlaceAndWhatWasExpected) {
    struct ROW {
        char const* arguments;
        std::string file;
        char const* message;
    };
    ROW const rows[] = {
        {"-p 'x: a y' missing.sdf", "",
         "missing.sdf: No such file or directory; expected a standard delay file"},
        {"-p 'x: a y' .", "", ".: Is a directory; expected a standard delay file"},
        {"- missing.paths", "",
         "missing.paths: No such file or directory; expected a file with paths"},
        {"-p 'x a y' -", "",
         "--path: found \"x\"; expected the path's name and a colon, as in \"NAME: PIN PIN\""},
        {"-p 'x: a' -", "", "--path: found a path of 1 pin; expected at least two"},
        {"- accumulator_ice40.sdf", "",
         "accumulator_ice40.sdf:1: found \"(DELAYFILE\"; expected \"path NAME: PIN PIN ...\""},
        {"-p 'x: a y' -", "", "standard input:1: found the end of the file; expected (DELAYFILE"},
        {"-p 'x: a y' -", file_of("(IOPATH a y (1,5))"),
         "standard input:2: found the delay value (1,5); expected one decimal number, or "
         "min:typ:max"},
        {"-p 'x: a z' -", file_of("(IOPATH a y (1))"),
         "--path: path x: no delay starts or ends at \"z\"; expected a pin"},
        {"-p 'x: y a' -", file_of("(IOPATH a y (1))"),
         "--path: path x: no delay leads from \"y\" to \"a\"; expected another start, as none does "
         "from there"},
        {"-c 1Hz -p 'x: a b c' -", file_of("(IOPATH a b (4e15)) (IOPATH b c (4e15))"),
         "--path: path x: found a sum of more than 2^62 picoseconds at c; expected less"},
        {"--longest 1 -", file_of("(IOPATH a b (4e15)) (IOPATH b c (4e15))"),
         "the longest paths: found a sum of more than 2^62 picoseconds at c; expected less"},
        {"--longest 1 -", file_of("(IOPATH a a (1))"),
         "the longest paths: found a loop: a -> a; expected none, as its paths have no end"},
        {"--corner typ accumulator_osu035.sdf accumulator_osu035.paths", "",
         "accumulator_osu035.sdf:24: found no typ value in the delay clock -> _88_/CLK; expected "
         "one (another corner or edge may have it)"},
    };
    for (ROW const& row : rows) {
        std::string const clock =
            std::string(row.arguments).starts_with("-c") ? "" : "--clock '1 GHz' ";
        RUN const run = run_shell("sdfpaths " + clock + row.arguments, row.file, FOLDER);
        EXPECT_EQ(run.err, std::string("sdfpaths: ") + row.message + '\n') << row.arguments;
        EXPECT_EQ(run.out, "") << row.arguments;
        EXPECT_EQ(run.status, 2) << row.arguments;
    }
}

TEST(SdfProgram, WrongCommandLineIsRefused) {
    struct ROW {
        char const* arguments;
        char const* message;
    };
    ROW const rows[] = {
        {"", "SDF is required"},
        {"f.sdf -p 'x: a b'", "--clock is required"},
        {"-c '1 GHz' f.sdf", "PATHS, --path or --longest is required"},
        {"-c '8 ns' f.sdf -n 1",
         "--clock: \"8 ns\" is no frequency above 0; expected a number and a unit, such as \"125 "
         "MHz\""},
        {"-c '125' f.sdf -n 1",
         "--clock: \"125\" is no frequency above 0; expected a number and a unit, such as \"125 "
         "MHz\""},
        {"-c '0 MHz' f.sdf -n 1",
         "--clock: \"0 MHz\" is no frequency above 0; expected a number and a unit, such as \"125 "
         "MHz\""},
        {"-c '-1 MHz' f.sdf -n 1",
         "--clock: \"-1 MHz\" is no frequency above 0; expected a number and a unit, such as \"125 "
         "MHz\""},
        {"-c '1.5 Hz' f.sdf -n 1", "--clock: \"1.5 Hz\" has digits below a hertz"},
        {"-c '1 GHz' f.sdf -n 0", "--longest: Value 0 not in range 1 to 1000000"},
        {"-c '1 GHz' f.sdf -n 1 --corner best", "--corner: best not in {min,typ,max}"},
        {"-c '1 GHz' f.sdf -n 1 --edge up", "--edge: up not in {slowest,fastest,rise,fall}"},
    };
    for (ROW const& row : rows) {
        RUN const run = run_shell(std::string("sdfpaths ") + row.arguments);
        EXPECT_EQ(run.err, "sdfpaths: " + std::string(row.message)
                               + "\nRun with --help for more information.\n")
            << row.arguments;
        EXPECT_EQ(run.status, 2) << row.arguments;
    }
}

TEST(SdfProgram, HelpNamesEveryOption) {
    RUN const run = run_shell("sdfpaths --help");
    EXPECT_EQ(run.status, 0);
    for (char const* const option : {"--clock", "--path", "--longest", "--corner", "--edge",
                                     "--float", "--strict", "SDF", "PATHS"}) {
        EXPECT_NE(run.out.find(option), std::string::npos) << option;
    }
}

TEST(SdfProgram, FullDiskIsNoticed) {
    RUN const run =
        run_shell("sdfpaths -c 1MHz -p 'x: a y' - >/dev/full", file_of("(IOPATH a y (1))"));
    EXPECT_EQ(run.err, "sdfpaths: standard output: No space left on device\n");
    EXPECT_EQ(run.status, 2);
}

TEST(SdfProgram, ExamplesOfItsPageAreTrue) {
    expect_true_examples(examples_of_page("examples/sdfpaths/README.md"), 3, FOLDER);
}

} // namespace
