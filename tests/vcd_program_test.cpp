// vcdshow as a user runs it.

#include "page_examples.h"
#include "run_program.h"

#include <string>

#include <unistd.h>

#include <gtest/gtest.h>

namespace {

std::string const EXAMPLES = BIG_SOURCE_ROOT "/examples";

/// A dump with a variable of every kind and these records.
std::string dump_of(std::string const& records, std::string const& timescale = "1 ns") {
    return "$timescale " + timescale
           + " $end $scope module t $end $var wire 1 ! bit $end $var reg 8 \" byte [7:0] $end "
             "$var real 64 # number $end $var event 1 $ tick $end $var string 1 % text $end "
             "$var wire 8 \" alias [7:0] $end $upscope $end $enddefinitions $end\n"
           + records + "\n";
}

/// Expects what vcdshow writes for a dump on its standard input, and that all is well.
void expect_output(std::string const& options, std::string const& dump,
                   std::string const& expected) {
    RUN const run = run_shell("vcdshow " + options + " -", dump);
    EXPECT_EQ(run.out, expected) << options;
    EXPECT_EQ(run.err, "") << options;
    EXPECT_EQ(run.status, 0) << options;
}

/// Expects vcdshow to refuse with a message and a status.
void expect_refusal(std::string const& arguments, std::string const& dump, int status,
                    std::string const& message) {
    RUN const run = run_shell("vcdshow " + arguments, dump, EXAMPLES);
    EXPECT_EQ(run.err, message) << arguments;
    EXPECT_EQ(run.status, status) << arguments;
}

// ------------------------------------------------------------------------------------------------
// The table
// ------------------------------------------------------------------------------------------------

TEST(VcdProgram, LineForEachTimeAtWhichAChosenSignalHasChanged) {
    expect_output("--signal t.bit --signal t.byte",
                  dump_of("#0 $dumpvars 0! bx \" r0 # $end #5 1! #6 r1 # #70 b101 \" 0! #80"),
                  "         time/ns  t.bit  t.byte[7:0]\n"
                  "           0.000      0           XX\n"
                  "           5.000      1           XX\n"
                  "          70.000      0           05\n");
}

TEST(VcdProgram, CommaSeparatedValuesHaveNoBlanks) {
    expect_output("--csv -s t.bit -s 't.by*'", dump_of("#0 0! b11111111 \" #5 1!"),
                  "time/ns,t.bit,t.byte[7:0]\n"
                  "0.000,0,FF\n"
                  "5.000,1,FF\n");
}

TEST(VcdProgram, CommaSeparatedValuesAreQuotedWhereTheyMustBe) {
    expect_output("--csv -s '*'",
                  "$timescale 1 ps $end $var string 1 ! \\a,b $end $var reg 1 \" \\\"c $end "
                  "$enddefinitions $end\n#1 sx,\"y\" !\n",
                  "time/ps,\"\\a,b\",\"\\\"\"c\"\n"
                  "1,\"x,\"\"y\"\"\",X\n");
}

TEST(VcdProgram, ColumnsStandInTheOrderOfTheirNamesAndEachOnce) {
    expect_output("--csv -s t.byte -s t.bit -s 't.*i*'", dump_of("#0 0! b1 \""),
                  "time/ns,t.byte[7:0],t.bit,t.tick,t.alias[7:0]\n"
                  "0.000,01,0,0,01\n");
}

TEST(VcdProgram, OtherRecordOfTheSameValueIsNoChange) {
    expect_output("--csv -s t.byte",
                  dump_of("#0 b1 \" #1 b00000001 \" #2 $dumpall b1 \" $end #3 b10 \""),
                  "time/ns,t.byte[7:0]\n"
                  "0.000,01\n"
                  "3.000,02\n");
}

TEST(VcdProgram, LastValueOfATimeIsShown) {
    expect_output("--csv -s t.byte", dump_of("#0 b1 \" b10 \" b11 \" #4 b100 \" #4 b101 \""),
                  "time/ns,t.byte[7:0]\n"
                  "0.000,03\n"
                  "4.000,05\n");
}

TEST(VcdProgram, VariablesAreUnknownBeforeTheirFirstChange) {
    expect_output("--csv -s 't.*'", dump_of("#1 1! #2 s %"),
                  "time/ns,t.bit,t.byte[7:0],t.number,t.tick,t.text,t.alias[7:0]\n"
                  "1.000,1,XX,-,0,-,XX\n");
}

TEST(VcdProgram, NumbersTextsAndEventsAreShownAsTheyAre) {
    expect_output("--csv --radix sdec -s t.number -s t.tick -s t.text",
                  dump_of("#1 r-1.50e3 # #2 1$ #3 1$ sIDLE % #4 $dumpall 1$ r-1.5e3 # $end"),
                  "time/ns,t.number,t.tick,t.text\n"
                  "1.000,-1.50e3,0,-\n"
                  "2.000,-1.50e3,1,-\n"
                  "3.000,-1.50e3,1,IDLE\n"
                  "4.000,-1.5e3,0,IDLE\n");
}

TEST(VcdProgram, ValuesAreShownInEveryRadix) {
    struct ROW {
        char const* radix;
        char const* of_5;        // b101
        char const* of_minus_63; // b11000001
        char const* of_0x;       // b0x: only the last bit is unknown
        char const* of_z1;       // bz1: all but the last bit are undriven
        char const* of_a;        // b01000001
    };
    // clang-format off
    ROW const rows[] = {
        // radix  b101         b11000001   b0x         bz1         b01000001
        {"bin",   "00000101",  "11000001", "0000000X", "ZZZZZZZ1", "01000001"},
        {"b",     "00000101",  "11000001", "0000000X", "ZZZZZZZ1", "01000001"},
        {"oct",   "005",       "301",      "00X",      "ZZX",      "101"},
        {"o",     "005",       "301",      "00X",      "ZZX",      "101"},
        {"hex",   "05",        "C1",       "0X",       "ZX",       "41"},
        {"h",     "05",        "C1",       "0X",       "ZX",       "41"},
        {"sdec",  "5",         "-63",      "X",        "X",        "65"},
        {"d",     "5",         "-63",      "X",        "X",        "65"},
        {"udec",  "5",         "193",      "X",        "X",        "65"},
        {"u",     "5",         "193",      "X",        "X",        "65"},
        {"fix",   "0.0390625", "-0.4921875", "X",      "X",        "0.5078125"},
        {"f",     "0.0390625", "-0.4921875", "X",      "X",        "0.5078125"},
        {"ascii", "[5]",       "[193]",    "[0]",      "[1]",      "A"},
        {"a",     "[5]",       "[193]",    "[0]",      "[1]",      "A"},
    };
    // clang-format on
    for (ROW const& row : rows) {
        SCOPED_TRACE(row.radix);
        expect_output(std::string("--csv -s t.byte --radix ") + row.radix,
                      dump_of("#1 b101 \" #2 b11000001 \" #3 b0x \" #4 bz1 \" #5 b01000001 \""),
                      std::string("time/ns,t.byte[7:0]\n1.000,") + row.of_5 + "\n2.000,"
                          + row.of_minus_63 + "\n3.000," + row.of_0x + "\n4.000," + row.of_z1
                          + "\n5.000," + row.of_a + "\n");
    }
}

TEST(VcdProgram, ColumnsAreWideEnoughForEveryValue) {
    // What every bit set or the first one alone gives, the longest in one radix or another.
    std::string const dump = "$timescale 1 ns $end $var reg 64 ! a $end $enddefinitions $end\n"
                             "#1 b"
                             + std::string(64, '1') + " !\n#2 b1" + std::string(63, '0') + " !\n";
    expect_output("-s a -r udec", dump,
                  "         time/ns                     a\n"
                  "           1.000  18446744073709551615\n"
                  "           2.000   9223372036854775808\n");
    expect_output("-s a -r sdec", dump,
                  "         time/ns                     a\n"
                  "           1.000                    -1\n"
                  "           2.000  -9223372036854775808\n");
    expect_output("-s a -r oct", dump,
                  "         time/ns                       a\n"
                  "           1.000  1777777777777777777777\n"
                  "           2.000  1000000000000000000000\n");
}

TEST(VcdProgram, FixedPointNumberOfTooManyBitsIsRefused) {
    std::string const dump = "$timescale 1 ns $end $var reg 1025 ! a [0:1024] $end "
                             "$var reg 1024 \" b $end $enddefinitions $end\n#1 b1 \"\n";
    expect_refusal("-r fix -s a -", dump, 1,
                   "vcdshow: a[0:1024] has 1025 bits; expected at most 1024 for a fixed-point "
                   "number\n");
    expect_refusal("-r fix -s b -", dump, 0, "");
}

// ------------------------------------------------------------------------------------------------
// Times
// ------------------------------------------------------------------------------------------------

TEST(VcdProgram, TimesAreShownInAChosenUnitAndPrecision) {
    struct ROW {
        char const* timescale;
        char const* options;
        char const* header;
        char const* time; // of #1234567
    };
    ROW const rows[] = {
        // timescale  options                 header     time
        {"1 ps", "", "time/ps", "1234567"},
        {"10 ps", "", "time/ps", "12345670"},
        {"1 ns", "", "time/ns", "1234567.000"},
        {"100 us", "", "time/us", "123456700.000000"},
        {"1 s", "", "time/s", "1234567.000000000000"},
        {"1 ps", "--time-unit fs", "time/fs", "1234567000"},
        {"1 ps", "--time-unit ns", "time/ns", "1234.567"},
        {"1 ps", "--time-unit us", "time/us", "1.234567"},
        {"1 ps", "-t US", "time/us", "1.234567"},
        {"1 ps", "-t ms", "time/ms", "0.001234567"},
        {"1 ps", "-t s", "time/s", "0.000001234567"},
        {"1 ps", "-t us --precision 3", "time/us", "1.235"},
        {"1 ps", "-t us -p 2", "time/us", "1.23"},
        {"1 ps", "-t ns -p 0", "time/ns", "1235"},
        {"1 ps", "-t ns -p 9", "time/ns", "1234.567"},
        {"1 ps", "-p 65535", "time/ps", "1234567"},
    };
    for (ROW const& row : rows) {
        SCOPED_TRACE(row.timescale);
        expect_output(std::string("--csv -s t.bit ") + row.options,
                      dump_of("#1234567 1!", row.timescale),
                      std::string(row.header) + ",t.bit\n" + row.time + ",1\n");
    }
}

TEST(VcdProgram, PartOfTheTimesIsShown) {
    std::string const dump = dump_of("#0 0! #10 1! #20 0! 1$ #30 1! #40 0!");
    std::string const header = "time/ns,t.bit,t.tick\n";
    struct ROW {
        char const* why;
        char const* options;
        char const* lines;
    };
    ROW const rows[] = {
        // why                          options                      lines
        {"both ends belong to it", "--from 10ns --to 30ns", "10.000,1,0\n20.000,0,1\n30.000,1,0\n"},
        {"other units", "--from '0.02 us' --to 30000ps", "20.000,0,1\n30.000,1,0\n"},
        {"between two changes", "--from 11ns --to 39ns", "20.000,0,1\n30.000,1,0\n"},
        {"only a start", "--from 30ns", "30.000,1,0\n40.000,0,0\n"},
        {"only an end", "--to 9999ps", "0.000,0,0\n"},
        {"after the last change", "--from 41ns", ""},
        {"before the first change", "--to=-1ps", ""},
        {"an end before the start", "--from 30ns --to 10ns", ""},
    };
    for (ROW const& row : rows) {
        SCOPED_TRACE(row.why);
        expect_output(std::string("--csv -s t.bit -s t.tick ") + row.options, dump,
                      header + row.lines);
    }
}

TEST(VcdProgram, ValuesFromBeforeThePartAreKnownInIt) {
    expect_output("--csv -s t.bit -s t.byte --from 15ns", dump_of("#0 0! #10 b1 \" #20 1!"),
                  "time/ns,t.bit,t.byte[7:0]\n"
                  "20.000,1,01\n");
}

TEST(VcdProgram, NothingBehindTheEndIsRead) {
    expect_output("--csv -s t.bit --to 10ns", dump_of("#10 1! #11 0! broken"),
                  "time/ns,t.bit\n"
                  "10.000,1\n");
}

TEST(VcdProgram, TimesBelowAPicosecondAreCutWithOneWarning) {
    RUN const run = run_shell("vcdshow --csv -s t.bit -t ps -",
                              dump_of("#1000\n1!\n#2000\n0!\n#2500\n1!\n#3999\n0!\n", "1 fs"));
    EXPECT_EQ(run.out, "time/ps,t.bit\n1,1\n2,0\n2,1\n3,0\n");
    EXPECT_EQ(run.err,
              "vcdshow: standard input:7: a change at 2500 fs, which is no whole number of "
              "picoseconds: the times of this dump are cut to picoseconds\n");
    EXPECT_EQ(run.status, 0);
}

TEST(VcdProgram, FemtosecondsThatAreWholePicosecondsNeedNoWarning) {
    expect_output("--csv -s t.bit", dump_of("#0 0! #20 1! #1000 0!", "100 fs"),
                  "time/fs,t.bit\n"
                  "0,0\n"
                  "2000,1\n"
                  "100000,0\n");
}

// ------------------------------------------------------------------------------------------------
// The list
// ------------------------------------------------------------------------------------------------

TEST(VcdProgram, ListNamesEveryVariableWithItsTypeAndBits) {
    expect_output("--list", dump_of("broken"),
                  "t.bit  wire  1\n"
                  "t.byte[7:0]  reg  8\n"
                  "t.number  real  64\n"
                  "t.tick  event  1\n"
                  "t.text  string  1\n"
                  "t.alias[7:0]  wire  8\n");
    expect_output("--list -s '*[7:0]'", dump_of(""),
                  "t.byte[7:0]  reg  8\nt.alias[7:0]  wire  8\n");
    expect_output("--list", "$timescale 1 ns $end $enddefinitions $end\n", "");
}

// ------------------------------------------------------------------------------------------------
// Refusals
// ------------------------------------------------------------------------------------------------

TEST(VcdProgram, UnknownSignalIsRefusedWithNearNames) {
    expect_refusal(
        "-s accumulator_tb.dut.totl accumulator.vcd", "", 1,
        "vcdshow: accumulator.vcd has no signal \"accumulator_tb.dut.totl\"; the nearest "
        "are accumulator_tb.total[7:0]; --list shows all\n");
    expect_refusal("-s accumulator_tb.clock -s '*.nothing' accumulator.vcd", "", 1,
                   "vcdshow: accumulator.vcd has no signal \"*.nothing\"; --list shows all\n");
    expect_refusal("--list -s totale -", dump_of(""), 1,
                   "vcdshow: standard input has no signal \"totale\"; --list shows all\n");
}

TEST(VcdProgram, BrokenDumpIsRefusedBehindWhatIsGood) {
    RUN const run =
        run_shell("vcdshow --csv -s t.bit -", dump_of("#0\n0!\n#10\n1!\n#20\n0!\n2!\n"));
    EXPECT_EQ(run.out, "time/ns,t.bit\n0.000,0\n10.000,1\n");
    EXPECT_EQ(run.err,
              "vcdshow: standard input:8: unexpected \"2!\"; expected #time, a $command, or "
              "a value: one of 0 1 x z b r s and the rest\n");
    EXPECT_EQ(run.status, 1);
}

TEST(VcdProgram, WhatCannotBeReadIsRefused) {
    expect_refusal("-s a .", "", 1,
                   "vcdshow: .: Is a directory; expected a file with a value change dump\n");
    expect_refusal("-s a no/such/file.vcd", "", 1,
                   "vcdshow: no/such/file.vcd: No such file or directory; expected a file with a "
                   "value change dump\n");
    expect_refusal("-s a /proc/self/mem", "", 1,
                   "vcdshow: /proc/self/mem: Input/output error; expected a file with a value "
                   "change dump\n");
    expect_refusal("-s a - <&-", "", 1,
                   "vcdshow: standard input: Bad file descriptor; expected a file with a value "
                   "change dump\n");
    expect_refusal("-s a -", "", 1,
                   "vcdshow: standard input:1: the file is empty; expected a value change dump\n");
    expect_refusal("-s a accumulator.v", "", 1,
                   "vcdshow: accumulator.v:1: unexpected \"//\" in the declarations; expected a "
                   "command such as $var or $enddefinitions\n");
}

TEST(VcdProgram, FileWithoutReadPermissionIsRefused) {
    if (::geteuid() == 0) {
        GTEST_SKIP() << "the superuser may read everything";
    }
    RUN const run = run_shell("file=$(mktemp) && chmod 0 $file && vcdshow -s a $file;"
                              " status=$?; rm -f $file; exit $status");
    EXPECT_NE(run.err.find(": Permission denied; expected a file"), std::string::npos) << run.err;
    EXPECT_EQ(run.status, 1);
}

TEST(VcdProgram, OutputThatCannotBeWrittenIsRefused) {
    expect_refusal("-s '*' accumulator.vcd >/dev/full", "", 1,
                   "vcdshow: standard output: No space left on device\n");
}

TEST(VcdProgram, WrongCommandLineIsRefused) {
    struct ROW {
        char const* arguments;
        char const* message;
    };
    ROW const rows[] = {
        // arguments                          message
        {"", "DUMP is required"},
        {"a.vcd", "--signal (--list shows the names) is required"},
        {"-s a -r decimal a.vcd",
         "--radix: \"decimal\" is no radix; expected bin, oct, hex, sdec, udec, fix or ascii"},
        {"-s a -t MHz a.vcd",
         "--time-unit: \"MHz\" is no unit of time; expected fs, ps, ns, us, ms or s"},
        {"-s a -t '' a.vcd",
         "--time-unit: \"\" is no unit of time; expected fs, ps, ns, us, ms or s"},
        {"-s a -p -1 a.vcd", "--precision: Value -1 not in range 0 to 65535"},
        {"-s a --from 20 a.vcd",
         "--from: \"20\" is no time; expected a number and a unit, such as \"1.5 us\""},
        {"-s a --to soon a.vcd",
         "--to: \"soon\" is no time; expected a number and a unit, such as \"1.5 us\""},
        {"-s a --to 10MHz a.vcd",
         "--to: \"10MHz\" is no time; expected a number and a unit, such as \"1.5 us\""},
        {"-s a --to 0.0005ns a.vcd", "--to: \"0.0005ns\" has digits below a picosecond"},
        {"-s a a.vcd --frm", "The following argument was not expected: --frm"},
        {"-s a a.vcd b.vcd", "The following argument was not expected: b.vcd"},
    };
    for (ROW const& row : rows) {
        RUN const run = run_shell(std::string("vcdshow ") + row.arguments);
        EXPECT_EQ(run.err, "vcdshow: " + std::string(row.message)
                               + "\nRun with --help for more information.\n")
            << row.arguments;
        EXPECT_EQ(run.status, 2) << row.arguments;
    }
}

TEST(VcdProgram, HelpNamesEveryOption) {
    RUN const run = run_shell("vcdshow --help");
    EXPECT_EQ(run.status, 0);
    for (char const* option : {"--list", "--signal", "--radix", "--time-unit", "--precision",
                               "--from", "--to", "--csv", "DUMP"}) {
        EXPECT_NE(run.out.find(option), std::string::npos) << option;
    }
}

TEST(VcdProgram, ExamplesOfItsPageAreTrue) {
    expect_true_examples(examples_of_page("examples/vcdshow/README.md"), 4, EXAMPLES);
}

// ------------------------------------------------------------------------------------------------
// Long dumps
// ------------------------------------------------------------------------------------------------

#if defined(__SANITIZE_ADDRESS__)
#define IS_SANITIZED true
#elif defined(__has_feature)
#define IS_SANITIZED __has_feature(address_sanitizer)
#else
#define IS_SANITIZED false
#endif

TEST(VcdProgram, MemoryDoesNotGrowWithTheDump) {
    if (IS_SANITIZED) {
        GTEST_SKIP() << "the sanitizer takes memory of its own";
    }
    // 64 MB of records, eight bytes at a time, through a program that may have 50 MB.
    RUN const run =
        run_shell("{ cat; yes \"$(printf 'b1 \"\\n0!')\" | head -c 64000000; echo '#1 1!'; } |"
                  " (ulimit -v 50000; exec vcdshow --csv -s t.bit -)",
                  dump_of("#0"));
    EXPECT_EQ(run.out, "time/ns,t.bit\n0.000,0\n1.000,1\n");
    EXPECT_EQ(run.err, "");
}

TEST(VcdProgram, ProgressIsShownOnATerminalWhileTheWorkIsLong) {
    if (run_shell("script -qec true /dev/null").status != 0) {
        GTEST_SKIP() << "no terminal can be had: script (package bsdutils) or /dev/pts is missing";
    }
    // In a terminal of its own, with a dump that takes its time. The dump is longer than a pipe
    // holds, so that the writer does not rest before the reader is at work. A busy machine may take
    // longer still, and then the line is written more than once.
    std::string const shown = "\r\x1B[Kvcdshow: standard input: 0 MB";
    std::string const erased = "\r\x1B[K";
    std::string dump = dump_of("#0");
    for (int i = 0; i < 60000; ++i)
        dump += "0!\n";
    auto const in_terminal = [&](std::string const& rest) {
        std::string out =
            run_shell("dump=$(mktemp) && cat >$dump && script -qec \""
                      "{ cat $dump; sleep 1.2; echo '#1 1!'; } | vcdshow --csv -s t.bit - "
                          + rest + "\" /dev/null; rm -f $dump",
                      dump)
                .out;
        while (out.compare(0, 2 * shown.size(), shown + shown) == 0)
            out.erase(0, shown.size());
        return out;
    };
    EXPECT_EQ(in_terminal(">/dev/null"), shown + erased);
    // Lines do not run into it.
    EXPECT_EQ(in_terminal(""), shown + erased + "time/ns,t.bit\r\n0.000,0\r\n1.000,1\r\n");
    EXPECT_EQ(in_terminal("2>/dev/null"), "time/ns,t.bit\r\n0.000,0\r\n1.000,1\r\n");
}

} // namespace
