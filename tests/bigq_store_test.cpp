// The tool: what `bigq store` prints, says and returns.

#include "page_examples.h"
#include "run_program.h"
#include "store_places.h"

#include <fstream>
#include <iterator>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct CASE {
    char const* why;
    char const* command;
    std::string input;
    std::string out;
    std::string err;
    int status;
};

/// Runs commands one after the other in a folder that is empty at first.
void run_cases(std::vector<CASE> const& cases) {
    TEMPORARY_FOLDER const folder;
    for (CASE const& c : cases) {
        SCOPED_TRACE(std::string(c.why) + "\n$ " + c.command);
        RUN const run = run_shell(c.command, c.input, folder.path());
        EXPECT_EQ(run.out, c.out);
        EXPECT_EQ(run.err, c.err);
        EXPECT_EQ(run.status, c.status);
    }
}

#define UNITS "fs, ps, ns, us, ms, s, Hz, kHz, MHz, GHz, ten_th_ns, bps, Mbps, Gbps"
#define NO_TIME " is not a time: expected a number and one of " UNITS "\n"
#define TRY "\nTry 'bigq store --help'.\n"

TEST(BigqStore, PutsAndGets) {
    // clang-format off
    run_cases({
        // why                      command                                            input  out  err  status
        {"a time",                  "bigq store s put t 2.5ns",                        "", "", "", 0},
        {"in its unit",             "bigq store s get t",                              "", "2.5 ns\n", "", 0},
        {"in its place",            "bigq store s put t -- '-3 us'; bigq store s get t", "", "-3.0 us\n", "", 0},
        {"from standard input",     "bigq store s put t; bigq store s get t",          "7 ps\n", "7 ps\n", "", 0},
        {"a bare number",           "bigq store s put t 12; bigq store s get t",       "", "12\n", "", 0},
        {"with a unit for it",      "bigq store s put t 12 --unit ns; bigq store s get t", "", "12.0 ns\n", "", 0},
        {"a frequency",             "bigq store s put --class frequency f 250MHz; bigq store s get f", "", "2.5e+08 Hz\n", "", 0},
        {"a fraction",              "bigq store s put --class fraction q 6/4; bigq store s get q", "", "3/2\n", "", 0},
        {"a decimal fraction",      "bigq store s put --class fraction d 0.1; bigq store s get d", "", "0.1\n", "", 0},
        {"an array",                "bigq store s put --array a 1ns 2ns; bigq store s get a", "", "1.0 ns\n2.0 ns\n", "", 0},
        {"an array of lines",       "bigq store s put --array b; bigq store s get b",  "1ps\r\n2ps", "1 ps\n2 ps\n", "", 0},
        {"an empty array",          "bigq store s put --array e; bigq store s get e",  "", "", "", 0},
        {"several names",           "bigq store s get t a",                            "", "12.0 ns\n1.0 ns\n2.0 ns\n", "", 0},
        {"a list",                  "bigq store s list",                               "", "t\tBIG_TIME\na\tBIG_TIME[2]\nb\tBIG_TIME[2]\ne\tBIG_TIME[0]\nf\tBIG_FREQUENCY\nd\tBIG_FRACTION\nq\tBIG_FRACTION\n", "", 0},
        {"of a class",              "bigq store s list --class frequency",             "", "f\tBIG_FREQUENCY\n", "", 0},
        {"of a prefix",             "bigq store s put ab 1ps; bigq store s list --prefix a", "", "ab\tBIG_TIME\na\tBIG_TIME[2]\n", "", 0},
        {"all is well",             "bigq store s check",                              "", "ok\n", "", 0},
        {"gone",                    "bigq store s erase t a b e f q d ab; bigq store s list", "", "", "", 0},
    });
    // clang-format on
}

TEST(BigqStore, ListsNamesSoThatALineIsAName) {
    // clang-format off
    run_cases({
        {"odd names", "bigq store s put \"$(printf 'a\\nb\\\\\\377')\" 1ps; bigq store s put '\"q' 1ps; bigq store s put 'a b\\c' 1ps",
                                                   "", "", "", 0},
        {"a list",    "bigq store s list",         "", "\"\\\"q\"\tBIG_TIME\n\"a\\x0Ab\\\\\\xFF\"\tBIG_TIME\na b\\c\tBIG_TIME\n", "", 0},
    });
    // clang-format on
}

TEST(BigqStore, SaysWhatIsRefused) {
    // clang-format off
    run_cases({
        {"no such file",     "bigq store s get t",                        "", "", "bigq: store s: there is no such file\n", 1},
        {"to erase in",      "bigq store s erase t",                      "", "", "bigq: store s: there is no such file\n", 1},
        {"no time",          "bigq store s put t abc",                    "", "", "bigq: \"abc\"" NO_TIME, 1},
        {"too long a time",  "bigq store s put t 9223372036854775808ps",  "", "", "bigq: \"9223372036854775808ps\" is too large: expected at most 9223372036854775807 ps\n", 1},
        {"a NUL byte",       "bigq store s put t",                        std::string("1\0ns", 4), "", "bigq: standard input:1: \"1\\x00ns\" holds a NUL byte: expected text\n", 1},
        {"one of many",      "bigq store s put --array t",                "1ns\n\n2ns\n", "", "bigq: standard input:2: \"\"" NO_TIME, 1},
        {"no infinity",      "bigq store s put --class fraction f inf",   "", "", "bigq: \"inf\" is not a fraction: expected two integers as in 3/2, or a decimal number\n", 1},
        {"nothing was made", "bigq store s list",                         "", "", "bigq: store s: there is no such file\n", 1},
        {"lost digits",      "bigq store s put t 1.2345ps; bigq store s get t", "", "1 ps\n", "bigq: \"1.2345ps\" loses digits: it is stored as \"1 ps\"\n", 0},
        {"strictly",         "bigq store s put --strict u 1.2345ps",      "", "", "bigq: \"1.2345ps\" loses digits: it is stored as \"1 ps\"\n", 1},
        {"lost zeros",       "bigq store s put t .05ns; bigq store s get t", "", "0.5 ns\n", "bigq: \".05ns\" loses digits: it is stored as \"0.5 ns\" (zeros directly behind a leading point do not count: write 0 before the point)\n", 0},
        {"strictly",         "bigq store s put --strict u .05ns",         "", "", "bigq: \".05ns\" loses digits: it is stored as \"0.5 ns\" (zeros directly behind a leading point do not count: write 0 before the point)\n", 1},
        {"of a bare number", "bigq store s put t 1.5; bigq store s get t", "", "1\n", "bigq: \"1.5\" loses digits: it is stored as \"1\"\n", 0},
        {"in a line",        "bigq store s put --array a; bigq store s get a", "1ps\n1.5ps\n", "1 ps\n1 ps\n", "bigq: standard input:2: \"1.5ps\" loses digits: it is stored as \"1 ps\"\n", 0},
        {"put it back",      "bigq store s put t 1ps",                    "", "", "", 0},
        {"no frequency",     "bigq store s put --class frequency f 1ns",  "", "", "bigq: \"1ns\" is not a frequency: expected a number and one of Hz, kHz, MHz, GHz\n", 1},
        {"no fraction",      "bigq store s put --class fraction f 1/x",   "", "", "bigq: \"1/x\" is not a fraction: expected two integers as in 3/2, or a decimal number\n", 1},
        {"a fraction of 0",  "bigq store s put --class fraction f 1/0",   "", "", "bigq: \"1/0\" is not a fraction: expected two integers as in 3/2, or a decimal number\n", 1},
        {"another class",    "bigq store s put --class fraction t 1/2",   "", "", "bigq: store s: \"t\" holds a BIG_TIME, not a BIG_FRACTION\n", 1},
        {"no such name",     "bigq store s get x t",                      "", "1 ps\n", "bigq: \"x\" holds nothing\n", 1},
        {"to erase",         "bigq store s erase x t",                    "", "", "bigq: \"x\" holds nothing\n", 1},
        {"an empty name",    "bigq store s get ''",                       "", "", "bigq: store s: a name is empty\n", 1},
        {"another file",     "echo x y >f; bigq store f list",            "", "", "bigq: store f: the file is no SQLite database, and so no store\n", 1},
        {"no dump",          "bigq store s load",                         "x\n", "", "bigq: store s: line 1 of the dump: expected \"big-store dump 1\"\n", 1},
    });
    run_cases({
        {"nothing",          "bigq store",                "", "", "bigq: store: expected a store and one of put, get, list, erase, check, dump, load" TRY, 2},
        {"no verb",          "bigq store s",              "", "", "bigq: store: expected a store and one of put, get, list, erase, check, dump, load" TRY, 2},
        {"an unknown verb",  "bigq store s frob",         "", "", "bigq: store: \"frob\" is not a verb: expected put, get, list, erase, check, dump or load" TRY, 2},
        {"no name",          "bigq store s get",          "", "", "bigq: store: get: expected a name" TRY, 2},
        {"more than enough", "bigq store s list x",       "", "", "bigq: store: list: expected nothing behind it" TRY, 2},
        {"an unknown class", "bigq store s put --class x t 1ns", "", "", "bigq: store: --class: \"x\" is not a class: expected time, frequency or fraction" TRY, 2},
        {"two values",       "bigq store s put t 1ns 2ns", "", "", "bigq: store: put: expected one value, or --array" TRY, 2},
        {"made no store",    "ls",                        "", "", "", 0},
    });
    // clang-format on
}

TEST(BigqStore, ADumpLoadsBitForBit) {
    // clang-format off
    run_cases({
        {"values",     "bigq store s put t 2.5ns; bigq store s put --class fraction --array q 1/3 0.1; bigq store s put --class frequency f 7GHz", "", "", "", 0},
        {"a copy",     "bigq store s dump >d && bigq store c load <d && bigq store c dump | cmp - d", "", "", "", 0},
        {"is checked", "bigq store c check",              "", "ok\n", "", 0},
        {"cut short",  "head -n 3 d | bigq store x load", "", "", "bigq: store x: line 4 of the dump: the dump is cut short: expected another line\n", 1},
        {"is empty",   "bigq store x list",               "", "", "", 0},
    });
    // clang-format on
}

TEST(BigqStore, CheckTellsWhatIsDamaged) {
    TEMPORARY_FOLDER const folder;
    ASSERT_EQ(run_shell("bigq store s put t 1ns", "", folder.path()).status, 0);
    std::ifstream file(folder.path("s"), std::ios::binary);
    std::string content{std::istreambuf_iterator<char>(file), {}};
    for (std::size_t page = 1; page * 4096 < content.size(); ++page)
        content[page * 4096 + 2000] = static_cast<char>(content[page * 4096 + 2000] ^ 1);
    std::ofstream(folder.path("s"), std::ios::binary) << content;
    RUN const run = run_shell("bigq store s check", "", folder.path());
    EXPECT_EQ(run.status, 1);
    EXPECT_NE((run.out + run.err).find("does not match its checksum"), std::string::npos)
        << testing::PrintToString(run);
}

TEST(BigqStore, LongWorkShowsItsProgressOnATerminal) {
    if (run_shell("script -qec true /dev/null").status != 0)
        GTEST_SKIP() << "no terminal can be had: script (package bsdutils) or /dev/pts is missing";
    TEMPORARY_FOLDER const folder;
    std::string dump = "big-store dump 1\n"
                       "class 0x4d709ad8 8 \"BIG_FREQUENCY\" \"m_value\" double\n";
    for (int i = 0; i < 1500; ++i)
        dump += "value \"" + std::to_string(i) + "\" 0x3ff0000000000000\n";
    std::ofstream(folder.path("d")) << dump << "end 1500\n";
    RUN const load =
        run_shell("script -qec 'bigq store s load <d' /dev/null </dev/null", "", folder.path());
    EXPECT_EQ(load.out.substr(0, 13), "\r1 lines read") << testing::PrintToString(load);
    EXPECT_EQ(load.out.substr(load.out.size() - 3), "  \r") << "the line is not removed";
    RUN const check =
        run_shell("script -qec 'bigq store s check' /dev/null </dev/null", "", folder.path());
    std::string const line = "1000 records checked";
    EXPECT_EQ(check.out, '\r' + line + '\r' + std::string(line.size(), ' ') + "\rok\r\n");
}

TEST(BigqStore, ExamplesAreTrue) {
    TEMPORARY_FOLDER const page_folder;
    expect_true_examples(examples_of_page("docs/store.md"), 14, page_folder.path());
    TEMPORARY_FOLDER const help_folder;
    std::istringstream help(run_shell("bigq store --help").out);
    expect_true_examples(examples_in(help, "Examples:", "", "  "), 5, help_folder.path());
}

} // namespace
