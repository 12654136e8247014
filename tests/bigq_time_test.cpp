// The tool: what `bigq time` prints, says and returns, and how it behaves as a filter.

#include "command_cases.h"
#include "json_reader.h"

#include <map>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#ifdef BIGQ_HAS_STORE
#define STORE "store, "
#else
#define STORE ""
#endif

namespace {

#if defined(__SANITIZE_ADDRESS__)
#define BIG_SANITIZED
#elif defined(__has_feature)
#if __has_feature(address_sanitizer)
#define BIG_SANITIZED
#endif
#endif

#define ALL_UNITS "fs, ps, ns, us, ms, s, Hz, kHz, MHz, GHz, ten_th_ns, bps, Mbps, Gbps"
#define NO_TIME " is not a time: expected a number and one of " ALL_UNITS

/// A text with its NULs.
template <std::size_t SIZE>
std::string bytes(char const (&text)[SIZE]) {
    return std::string(text, SIZE - 1);
}

// ------------------------------------------------------------------------------------------------
// Conversion
// ------------------------------------------------------------------------------------------------

TEST(BigqTime, ConvertsTextsAndLines) {
    // clang-format off
    run_cases({
        // why                             command                                       input  out  err  status
        {"a text",                         "bigq time --to ps '2.5 ns'",                 "", "2500 ps\n", "", 0},
        {"texts",                          "bigq time --to ps 2.5ns 1us",                "", "2500 ps\n1000000 ps\n", "", 0},
        {"lines",                          "bigq time --to ps", "2.5 ns\n1us\n",             "2500 ps\n1000000 ps\n", "", 0},
        {"no lines",                       "bigq time --to ps", "",                          "", "", 0},
        {"own unit by default",            "bigq time 2.5ns '3 MHz' 1.5gbps",            "", "2.500 ns\n3.000000 MHz\n1.500000000 Gbps\n", "", 0},
        {"own unit by name",               "bigq time --to own 2.5ns",                   "", "2.500 ns\n", "", 0},
        {"unit in any case",               "bigq time --to MHZ 1.5GHz",                  "", "1500.000000 MHz\n", "", 0},
        {"every digit by default",         "bigq time --to s 1ps",                       "", "0.000000000001 s\n", "", 0},
        {"suitable unit",                  "bigq time --to auto 2500ps 2ps 1234567us",   "", "2.5 ns\n2 ps\n1.234567 s\n", "", 0},
        {"suitable unit, rounded",         "bigq time --to auto --precision 2 1234567ps", "", "1.23 us\n", "", 0},
        {"femtoseconds",                   "bigq time --to fs 2ps",                      "", "2000 fs\n", "", 0},
        {"tenths of a nanosecond",         "bigq time --to ten_th_ns 2.5ns",             "", "25.00 ten_th_ns\n", "", 0},
        {"blanks around the text",         "bigq time --to ps", " \t2.5  ns \n",             "2500 ps\n", "", 0},
    });
    // clang-format on
}

TEST(BigqTime, RoundsTrimsAndPrintsRaw) {
    // clang-format off
    run_cases({
        {"half up",                        "bigq time --precision 1 2.25ns 2.24ns -- -2.25ns", "", "2.3 ns\n2.2 ns\n-2.3 ns\n", "", 0},
        {"to whole numbers",               "bigq time --precision 0 2.5ns",              "", "3 ns\n", "", 0},
        {"never more digits than the unit has", "bigq time --precision 65535 2.5ns",     "", "2.500 ns\n", "", 0},
        {"trailing zeros",                 "bigq time --trim 2.5ns 1ns",                 "", "2.5 ns\n1.0 ns\n", "", 0},
        {"raw",                            "bigq time --raw 2.50ns 1us 20ps 0007ns",     "", "2.5 ns\n1.0 us\n20 ps\n7.0 ns\n", "", 0},
        {"raw number without a unit",      "bigq time --raw 5",                          "", "5 \n", "", 0},
    });
    // clang-format on
}

TEST(BigqTime, NumbersWithoutAUnit) {
    // clang-format off
    run_cases({
        {"stay without a unit",            "bigq time 5",                                "", "5\n", "", 0},
        {"count as picoseconds",           "bigq time --to ns 2500",                     "", "2.500 ns\n", "", 0},
        {"take the unit that is named",    "bigq time --unit ns --to ps 2.5 '3 ns' '4 us ' ' 5 '", "", "2500 ps\n3000 ps\n4000000 ps\n5000 ps\n", "", 0},
        {"the named unit is theirs",       "bigq time --unit us 2.5",                    "", "2.500000 us\n", "", 0},
        {"a named unit does not help",     "bigq time --unit ns x", "", "", "bigq: argument 1: \"x\"" NO_TIME "\n", 1},
        {"nothing is no number",           "bigq time --unit ns ''", "", "", "bigq: argument 1: \"\"" NO_TIME "\n", 1},
    });
    // clang-format on
}

TEST(BigqTime, FrequenciesAndTheirPeriods) {
    // clang-format off
    run_cases({
        {"frequency to period",            "bigq time --to ns 400MHz",                   "", "2.500 ns\n", "", 0},
        {"period to frequency",            "bigq time --to MHz 2.5ns",                   "", "400.000000 MHz\n", "", 0},
        {"frequency to frequency",         "bigq time --to GHz 400MHz",                  "", "0.400000000 GHz\n", "", 0},
        {"no frequency for 0",             "bigq time --to MHz 0ns",                     "", "INF MHz\n", "", 0},
        {"no period for 0",                "bigq time --to ns 0Hz",                      "", "INF ns\n", "", 0},
        {"a period that is cut is reported", "bigq time --to ps 3MHz", "", "333333 ps\n", "bigq: argument 1: \"3MHz\" loses digits: its period is cut to 333333 ps\n", 0},
        {"and a frequency",                "bigq time --to MHz 7ns", "", "142.857142 MHz\n", "bigq: argument 1: \"7ns\" loses digits: its frequency is cut to 142857142 Hz\n", 0},
        {"data rates stay data rates",     "bigq time --to Mbps 1.5Gbps",                "", "1500.000000 Mbps\n", "", 0},
        {"and are no times",               "bigq time --to ns 5Mbps", "", "", "bigq: argument 1: \"5Mbps\" cannot be given in ns: a data rate is no time and no frequency\n", 1},
        {"nor are times data rates",       "bigq time --to bps 5ns",  "", "", "bigq: argument 1: \"5ns\" cannot be given in bps: a data rate is no time and no frequency\n", 1},
    });
    // clang-format on
}

TEST(BigqTime, NegativeTextsAreNoOptions) {
    // clang-format off
    run_cases({
        {"behind --",                      "bigq time -- -5ns",                          "", "-5.000 ns\n", "", 0},
        {"anywhere",                       "bigq time '-5 ns' -2ps --to ps -.5ns",       "", "-5000 ps\n-2 ps\n-500 ps\n", "", 0},
        {"behind -- nothing is an option", "bigq time -- --to", "", "", "bigq: argument 1: \"--to\"" NO_TIME "\n", 1},
        {"a single - is a text",           "bigq time -", "", "", "bigq: argument 1: \"-\"" NO_TIME "\n", 1},
        {"the smallest storage number",    "bigq time -9223372036854775807ps",           "", "-9223372036854775807 ps\n", "", 0},
    });
    // clang-format on
}

// ------------------------------------------------------------------------------------------------
// What is refused or lost
// ------------------------------------------------------------------------------------------------

TEST(BigqTime, SaysWhyATextIsRefused) {
    // clang-format off
    run_cases({
        {"no number",          "bigq time ns",                     "", "", "bigq: argument 1: \"ns\"" NO_TIME "\n", 1},
        {"nothing",            "bigq time ''",                     "", "", "bigq: argument 1: \"\"" NO_TIME "\n", 1},
        {"no digit",           "bigq time +.ns",                   "", "", "bigq: argument 1: \"+.ns\"" NO_TIME "\n", 1},
        {"two points",         "bigq time 1.2.3ns",                "", "", "bigq: argument 1: \"1.2.3ns\"" NO_TIME "\n", 1},
        {"an exponent",        "bigq time 1e3ns",                  "", "", "bigq: argument 1: \"1e3ns\" is not a time: \"e3ns\" is not a unit: expected one of " ALL_UNITS "\n", 1},
        {"a unit of its own",  "bigq time '10 nanoseconds'",       "", "", "bigq: argument 1: \"10 nanoseconds\" is not a time: \"nanoseconds\" is not a unit: expected one of " ALL_UNITS "\n", 1},
        {"two units",          "bigq time '10 ns ps'",             "", "", "bigq: argument 1: \"10 ns ps\" is not a time: \"ns ps\" is not a unit: expected one of " ALL_UNITS "\n", 1},
        {"zeros behind a leading point", "bigq time .0ns",         "", "", "bigq: argument 1: \".0ns\" is not a time: zeros directly behind a leading point do not count: write 0 before the point\n", 1},
        {"one too large",      "bigq time 9223372036854775808ps",  "", "", "bigq: argument 1: \"9223372036854775808ps\" is too large: expected at most 9223372036854775807 ps\n", 1},
        {"the largest in s",   "bigq time 9223372.036854775808s",  "", "", "bigq: argument 1: \"9223372.036854775808s\" is too large: expected at most 9223372036854775807 ps\n", 1},
        {"in hertz",           "bigq time 9223372037GHz",          "", "", "bigq: argument 1: \"9223372037GHz\" is too large: expected at most 9223372036854775807 Hz\n", 1},
        {"below 0",            "bigq time -- '-3 MHz'",            "", "", "bigq: argument 1: \"-3 MHz\" is not a time: expected a frequency or data rate of 0 or more\n", 1},
        {"below 0, by --unit", "bigq time --unit bps -- -1",       "", "", "bigq: argument 1: \"-1\" is not a time: expected a frequency or data rate of 0 or more\n", 1},
        {"quotation marks",    "bigq time '\"\\'",                 "", "", "bigq: argument 1: \"\\\"\\\\\"" NO_TIME "\n", 1},
        {"control characters", "bigq time", "\x1B[31m\t\x7F\xC2\x85\n", "", "bigq: standard input:1: \"\\x1B[31m\\x09\\x7F\\xC2\\x85\"" NO_TIME "\n", 1},
        {"bytes of no text",   "bigq time", "\xB5s \xC3\xA9 \xED\xA0\x80\xF4\x90\x80\x80\xC0\xAF\n", "", "bigq: standard input:1: \"\\xB5s \xC3\xA9 \\xED\\xA0\\x80\\xF4\\x90\\x80\\x80\\xC0\\xAF\"" NO_TIME "\n", 1},
        {"micro with its sign", "bigq time '5 \xC2\xB5s'",         "", "", "bigq: argument 1: \"5 \xC2\xB5s\" is not a time: \"\xC2\xB5s\" is not a unit: expected one of " ALL_UNITS "\n", 1},
        {"a long text",        "bigq time", std::string(101, 'x') + "\n", "", "bigq: standard input:1: \"" + std::string(100, 'x') + "...\"" NO_TIME "\n", 1},
        {"a NUL",              "bigq time --invalid fail", bytes("5 ns\0x\n1 ns\n"), bytes("5 ns\0x\n1.000 ns\n"), "bigq: standard input:1: \"5 ns\\x00x\" holds a NUL byte: expected text\n", 1},
    });
    // clang-format on
}

TEST(BigqTime, EachModeTreatsARefusedLineInItsWay) {
    std::string const input = "1 ns\nx\n2 ns\n\n3 ns\n";
    std::string const whole = "1.000 ns\nx\n2.000 ns\n\n3.000 ns\n";
    std::string const first = "bigq: standard input:2: \"x\"" NO_TIME "\n";
    std::string const both = first + "bigq: standard input:4: \"\"" NO_TIME "\n";
    // clang-format off
    run_cases({
        {"abort is the default", "bigq time",                  input, "1.000 ns\n", first, 1},
        {"abort",                "bigq time --invalid abort",  input, "1.000 ns\n", first, 1},
        {"fail",                 "bigq time --invalid fail",   input, whole, both, 1},
        {"warn",                 "bigq time --invalid=warn",   input, whole, both, 0},
        {"ignore",               "bigq time --invalid ignore", input, whole, "", 0},
        {"texts as well",        "bigq time --invalid warn 1ns x 2ns", "", "1.000 ns\nx\n2.000 ns\n", "bigq: argument 2: \"x\"" NO_TIME "\n", 0},
    });
    // clang-format on
}

TEST(BigqTime, ReportsLostDigits) {
    // clang-format off
    run_cases({
        {"finer than the storage",  "bigq time '1.23456789 us'", "", "1.234567 us\n", "bigq: argument 1: \"1.23456789 us\" loses digits: it is stored as \"1.234567 us\"\n", 0},
        {"femtoseconds",            "bigq time 1500fs", "", "1000 fs\n", "bigq: argument 1: \"1500fs\" loses digits: it is stored as \"1000 fs\"\n", 0},
        {"below one",               "bigq time -- -0.4ps", "", "0 ps\n", "bigq: argument 1: \"-0.4ps\" loses digits: it is stored as \"0 ps\"\n", 0},
        {"no unit, no places",      "bigq time 1.5", "", "1\n", "bigq: argument 1: \"1.5\" loses digits: it is stored as \"1\"\n", 0},
        {"zeros are no digits",     "bigq time 1.23400000us 2.0ps 0.0fs", "", "1.234000 us\n2 ps\n0000 fs\n", "", 0},
        {"zeros behind a leading point", "bigq time .05ns ' .005 ns'", "", "0.500 ns\n0.500 ns\n",
         "bigq: argument 1: \".05ns\" loses digits: it is stored as \"0.5 ns\" (zeros directly behind a leading point do not count: write 0 before the point)\n"
         "bigq: argument 2: \" .005 ns\" loses digits: it is stored as \"0.5 ns\" (zeros directly behind a leading point do not count: write 0 before the point)\n", 0},
        {"and digits too",          "bigq time .05678ns", "", "0.567 ns\n", "bigq: argument 1: \".05678ns\" loses digits: it is stored as \".567 ns\" (zeros directly behind a leading point do not count: write 0 before the point)\n", 0},
        {"zeros that do count",     "bigq time 0.05ns -.05ns .5ns 0.0ns -.0ns", "", "0.050 ns\n-0.050 ns\n0.500 ns\n0.000 ns\n0.000 ns\n", "", 0},
        {"rounding is asked for",   "bigq time --precision 0 1.234ns", "", "1 ns\n", "", 0},
        {"--strict refuses",        "bigq time --strict 1ns 1.5ps 2ns", "", "1.000 ns\n", "bigq: argument 2: \"1.5ps\" loses digits: it is stored as \"1 ps\"\n", 1},
        {"--strict passes on",      "bigq time --strict --invalid fail --to ns 1ns 1.5ps 3MHz", "", "1.000 ns\n1.5ps\n3MHz\n",
         "bigq: argument 2: \"1.5ps\" loses digits: it is stored as \"1 ps\"\n"
         "bigq: argument 3: \"3MHz\" loses digits: its period is cut to 333333 ps\n", 1},
        {"--strict in silence",     "bigq time --strict --invalid ignore 1.5ps", "", "1.5ps\n", "", 0},
        {"a loss is no refusal",    "bigq time --invalid ignore 1.5ps", "", "1 ps\n", "bigq: argument 1: \"1.5ps\" loses digits: it is stored as \"1 ps\"\n", 0},
        {"no message of the line before", "bigq time --unit ns", "1.2345\n1.5\n", "1.234 ns\n1.500 ns\n", "bigq: standard input:1: \"1.2345\" loses digits: it is stored as \"1.234 ns\"\n", 0},
    });
    // clang-format on
}

// ------------------------------------------------------------------------------------------------
// Lines and fields
// ------------------------------------------------------------------------------------------------

TEST(BigqTime, LinesKeepTheirEnds) {
    // clang-format off
    run_cases({
        {"no line feed at the end",   "bigq time", "1 ns\n2 ns", "1.000 ns\n2.000 ns", "", 0},
        {"carriage returns",          "bigq time", "1 ns\r\n2 ns\n3 ns\r\n", "1.000 ns\r\n2.000 ns\n3.000 ns\r\n", "", 0},
        {"none without a line feed",  "bigq time", "1 ns\r", "1.000 ns", "", 0},
        {"carriage return alone",     "bigq time --invalid warn", "\r\n", "\r\n", "bigq: standard input:1: \"\"" NO_TIME "\n", 0},
        {"a line as it was",          "bigq time --invalid ignore", " x \r\n y", " x \r\n y", "", 0},
    });
    // clang-format on
}

TEST(BigqTime, ConvertsOneFieldAndKeepsTheRest) {
    // clang-format off
    run_cases({
        {"of a character's",          "bigq time --to ps --field 2 --delimiter ,", "a,1 ns,b\n,2ns\n", "a,1000 ps,b\n,2000 ps\n", "", 0},
        {"short and attached",        "bigq time --to ps --field=2 -d,", "a,1 ns,b\n", "a,1000 ps,b\n", "", 0},
        {"the first by default",      "bigq time --to ps -d ';'", "1 ns;a\n", "1000 ps;a\n", "", 0},
        {"with a carriage return",    "bigq time --to ps --field 2 -d ,", "a,1 ns\r\n", "a,1000 ps\r\n", "", 0},
        {"of runs of blanks",         "bigq time --to ps --field 2", "  a \t 1ns  b \n\t2 3ns", "  a \t 1000 ps  b \n\t2 3000 ps", "", 0},
        {"with a unit apart",         "bigq time --to ps --field 2 --unit ns", "a 1.5 ns\n", "a 1500 ps ns\n", "", 0},
        {"of texts",                  "bigq time --to ps --field 2 -d = a=1ns b=2ns", "", "a=1000 ps\nb=2000 ps\n", "", 0},
        {"a byte that is no ASCII",   "bigq time --to ps --field 2 -d \xE9", "a\xE9" "1ns\xE9" "b\n", "a\xE9" "1000 ps\xE9" "b\n", "", 0},
        {"an empty one",              "bigq time --field 2 -d , --invalid warn", "a,,b\n", "a,,b\n", "bigq: standard input:1: \"\"" NO_TIME "\n", 0},
        {"one that is not there",     "bigq time --field 3 -d , --invalid fail", "1,2\n1,2,3 ns\n", "1,2\n1,2,3.000 ns\n", "bigq: standard input:1: \"1,2\" has no field 3\n", 1},
        {"not there among blanks",    "bigq time --field 3 --invalid warn", "1 2 \n\n", "1 2 \n\n", "bigq: standard input:1: \"1 2 \" has no field 3\nbigq: standard input:2: \"\" has no field 3\n", 0},
        {"far away",                  "bigq time --field 18446744073709551615 --invalid ignore", "1 2\n", "1 2\n", "", 0},
        {"only the field is named",   "bigq time --field 2 -d ,", "a,b\n", "", "bigq: standard input:1: \"b\"" NO_TIME "\n", 1},
        {"the header stays",          "bigq time --header --to ps --field 2 -d ,", "name,delay\na,1 ns\n", "name,delay\na,1000 ps\n", "", 0},
        {"lines count from there",    "bigq time --header", "x\r\ny\n", "x\r\n", "bigq: standard input:2: \"y\"" NO_TIME "\n", 1},
        {"nothing but a header",      "bigq time --header", "x", "x", "", 0},
        {"not even a header",         "bigq time --header", "", "", "", 0},
    });
    // clang-format on
}

TEST(BigqTime, LinesMayBeVeryLong) {
    std::string const blanks(3'000'000, ' ');
    RUN const run =
        run_shell("bigq time --to ps", "1 ns\n" + blanks + "2 ns" + blanks + "\n3 ns\n");
    EXPECT_EQ(run.out, "1000 ps\n2000 ps\n3000 ps\n");
    EXPECT_EQ(run.status, 0);

    std::string const tail(3'000'000, 't');
    RUN const field = run_shell("bigq time --to ps --field 1", "2ns " + tail + "\n");
    EXPECT_EQ(field.out.size(), tail.size() + sizeof "2000 ps \n" - 1);
    EXPECT_EQ(field.out, "2000 ps " + tail + "\n");
}

TEST(BigqTime, ALineThatIsTooLongIsAnError) {
    std::string const too_long(16 * 1024 * 1024, ' ');
    RUN const run = run_shell("bigq time --invalid ignore", "1 ns\n" + too_long + "\n2 ns\n");
    EXPECT_EQ(run.out, "1.000 ns\n");
    EXPECT_EQ(run.err, "bigq: standard input:2: the line is longer than 16777216 bytes\n");
    EXPECT_EQ(run.status, 1);

    RUN const longest = run_shell("bigq time", "1 ns" + too_long.substr(5) + "\n2 ns\n");
    EXPECT_EQ(longest.out, "1.000 ns\n2.000 ns\n");
    EXPECT_EQ(longest.err, "");
}

TEST(BigqTime, LinesAreFoundWhereverTheReadsEnd) {
    std::string input;
    std::string expected;
    for (int i = 1; i <= 60000; ++i) { // about 600 KB: several buffers
        input += std::to_string(i) + " ns" + (i % 3 == 0 ? "\r\n" : "\n");
        expected += std::to_string(i) + "000 ps" + (i % 3 == 0 ? "\r\n" : "\n");
    }
    EXPECT_EQ(run_shell("bigq time --to ps", input).out, expected);
    EXPECT_EQ(run_shell("cat | bigq time --to ps | cat", input).out, expected);
}

// ------------------------------------------------------------------------------------------------
// JSON
// ------------------------------------------------------------------------------------------------

TEST(BigqTime, JsonSaysWhatBecameOfEachText) {
    // clang-format off
    run_cases({
        {"converted", "bigq time --json --to ps '2.5 ns'", "",
         R"({"input":"2.5 ns","ok":true,"value":"2500","storage_unit":"ps","unit":"ns","text":"2500 ps"})" "\n", "", 0},
        {"a frequency", "bigq time --json 3MHz", "",
         R"({"input":"3MHz","ok":true,"value":"3000000","storage_unit":"Hz","unit":"MHz","text":"3.000000 MHz"})" "\n", "", 0},
        {"a data rate", "bigq time --json 3kbps 3bps --invalid ignore", "",
         R"({"input":"3kbps","ok":false,"error":"\"3kbps\" is not a time: \"kbps\" is not a unit: expected one of )" ALL_UNITS "\"}\n"
         R"({"input":"3bps","ok":true,"value":"3","storage_unit":"bps","unit":"bps","text":"3 bps"})" "\n", "", 0},
        {"beyond the 53 bits of a double", "bigq time --json 9223372036854775807ps", "",
         R"({"input":"9223372036854775807ps","ok":true,"value":"9223372036854775807","storage_unit":"ps","unit":"ps","text":"9223372036854775807 ps"})" "\n", "", 0},
        {"without a unit", "bigq time --json 5", "",
         R"({"input":"5","ok":true,"value":"5","storage_unit":"ps","unit":"","text":"5"})" "\n", "", 0},
        {"lost digits", "bigq time --json 1.5ps", "",
         R"({"input":"1.5ps","ok":true,"value":"1","storage_unit":"ps","unit":"ps","text":"1 ps","warning":"\"1.5ps\" loses digits: it is stored as \"1 ps\""})" "\n",
         "bigq: argument 1: \"1.5ps\" loses digits: it is stored as \"1 ps\"\n", 0},
        {"strict", "bigq time --json --strict 1.5ps", "",
         R"({"input":"1.5ps","ok":false,"error":"\"1.5ps\" loses digits: it is stored as \"1 ps\""})" "\n",
         "bigq: argument 1: \"1.5ps\" loses digits: it is stored as \"1 ps\"\n", 1},
        {"stops behind the refused one", "bigq time --json x 1ns", "",
         R"({"input":"x","ok":false,"error":"\"x\")" NO_TIME "\"}\n", "bigq: argument 1: \"x\"" NO_TIME "\n", 1},
        {"fields, header, line ends", "bigq time --json --header --field 2 -d ,", "name,delay\r\na,1 ns\r\nb,2 ns",
         R"({"input":"1 ns","ok":true,"value":"1000","storage_unit":"ps","unit":"ns","text":"1.000 ns"})" "\n"
         R"({"input":"2 ns","ok":true,"value":"2000","storage_unit":"ps","unit":"ns","text":"2.000 ns"})" "\n", "", 0},
        {"bytes that are no UTF-8", "bigq time --json --invalid ignore", "5 \xB5s\n",
         R"({"input":"5 \ufffds","input_hex":"3520b573","ok":false,"error":"\"5 \\xB5s\" is not a time: \"\\xB5s\" is not a unit: expected one of )" ALL_UNITS "\"}\n", "", 0},
    });
    // clang-format on
}

TEST(BigqTime, JsonIsWellFormedWhateverTheBytes) {
    constexpr unsigned SEED = 20260117;
    SCOPED_TRACE("seed " + std::to_string(SEED));
    std::mt19937 random(SEED);
    std::vector<std::string> lines;
    for (int byte = 0; byte < 256; ++byte) {
        lines.push_back(std::string("5 ") + static_cast<char>(byte) + "s");
    }
    // Bytes that begin, continue and end UTF-8 characters, and those that JSON escapes.
    std::string const pieces =
        bytes("\0\x1F\x20\"\\/\x7F\x80\x8F\x90\x9F\xA0\xBF\xC1\xC2\xDF\xE0\xE1\xEC"
              "\xED\xEE\xEF\xF0\xF1\xF3\xF4\xF5\xFF"
              "5ns");
    for (int i = 0; i < 3000; ++i) {
        std::string line;
        for (std::size_t length = random() % 8; length > 0; --length) {
            line += pieces[random() % pieces.size()];
        }
        lines.push_back(line);
    }
    std::string input;
    for (std::string& line : lines) {
        line.erase(0, line == "5 \ns" ? 3 : 0); // a line feed ends a line
        input += line + "\n";
    }

    RUN const run = run_shell("bigq time --json --invalid ignore | iconv -f UTF-8 -t UTF-8", input);
    std::string_view rest = run.out;
    for (std::string const& line : lines) {
        std::string_view const object = rest.substr(0, rest.find('\n'));
        SCOPED_TRACE(object);
        ASSERT_FALSE(object.empty()) << "an object for each line, and each of them UTF-8";
        rest.remove_prefix(object.size() + 1);
        std::map<std::string, std::string> const members = read_json_object(object);
        if (auto const hex = members.find("input_hex"); hex != members.end()) {
            std::string text;
            for (std::size_t i = 0; i < hex->second.size(); i += 2) {
                text += static_cast<char>(std::stoi(hex->second.substr(i, 2), nullptr, 16));
            }
            EXPECT_EQ(text, line);
        } else {
            EXPECT_EQ(members.at("input"), line);
        }
    }
    EXPECT_EQ(rest, "");
}

// ------------------------------------------------------------------------------------------------
// The command line
// ------------------------------------------------------------------------------------------------

TEST(BigqTime, AWrongCommandLineReturns2AndDoesNothing) {
    std::string const hint = "\nTry 'bigq time --help'.\n";
    std::string const top_hint = "\nTry 'bigq --help'.\n";
    // clang-format off
    run_cases({
        {"no command",             "bigq",                             "1 ns\n", "", "bigq: expected a command" + top_hint, 2},
        {"no such command",        "bigq tame",                        "1 ns\n", "", "bigq: \"tame\" is not a command: expected compare, delay, fraction, freq, gcd, radix, " STORE "time, u128" + top_hint, 2},
        {"no such option",         "bigq time --tos ns",               "1 ns\n", "", "bigq: time: The following argument was not expected: --tos" + hint, 2},
        {"no such letter",         "bigq time -x",                     "1 ns\n", "", "bigq: time: The following argument was not expected: -x" + hint, 2},
        {"no value",               "bigq time --to",                   "1 ns\n", "", "bigq: time: --to: expected a value" + hint, 2},
        {"an empty value",         "bigq time --to= 1ns",              "1 ns\n", "", "bigq: time: --to: expected a value" + hint, 2},
        {"no unit",                "bigq time --to furlong",           "1 ns\n", "", "bigq: time: --to: \"furlong\" is not a unit: expected one of " ALL_UNITS + hint, 2},
        {"an empty unit",          "bigq time --to ''",                "1 ns\n", "", "bigq: time: --to: \"\" is not a unit: expected one of " ALL_UNITS + hint, 2},
        {"no unit for numbers",    "bigq time --unit own",             "1 ns\n", "", "bigq: time: --unit: \"own\" is not a unit: expected one of " ALL_UNITS + hint, 2},
        {"no precision",           "bigq time --precision -1",         "1 ns\n", "", "bigq: time: --precision: \"-1\" is not a whole number from 0 to 65535" + hint, 2},
        {"too much of it",         "bigq time --precision 65536",      "1 ns\n", "", "bigq: time: --precision: \"65536\" is not a whole number from 0 to 65535" + hint, 2},
        {"not a number",           "bigq time --precision 2x",         "1 ns\n", "", "bigq: time: --precision: \"2x\" is not a whole number from 0 to 65535" + hint, 2},
        {"no field 0",             "bigq time --field 0",              "1 ns\n", "", "bigq: time: --field: \"0\" is not a whole number from 1 to 18446744073709551615" + hint, 2},
        {"two characters",         "bigq time -d ::",                  "1 ns\n", "", "bigq: time: --delimiter: \"::\" is not one character of one byte, other than a line feed" + hint, 2},
        {"a line feed",            "bigq time -d '\n'",                "1 ns\n", "", "bigq: time: --delimiter: \"\\x0A\" is not one character of one byte, other than a line feed" + hint, 2},
        {"no mode",                "bigq time --invalid maybe",        "1 ns\n", "", "bigq: time: --invalid: \"maybe\" is not a mode: expected abort, fail, warn or ignore" + hint, 2},
        {"raw in a unit",          "bigq time --raw --to ns",          "1 ns\n", "", "bigq: time: --to excludes --raw" + hint, 2},
        {"a header of texts",      "bigq time --header 1ns",           "1 ns\n", "", "bigq: time: --header: it is for the lines of standard input, not for arguments" + hint, 2},
    });
    // clang-format on
}

TEST(BigqTime, TheLastOfTwoEqualOptionsCounts) {
    EXPECT_EQ(run_shell("bigq time --to ps --to ns --field 1 --field 2 'a 1us'").out,
              "a 1000.000 ns\n");
}

TEST(BigqTime, HelpAndVersionGoToStandardOutput) {
    RUN const version = run_shell("bigq --version");
    EXPECT_EQ(version.out, "bigq " BIGQ_VERSION "\n");
    EXPECT_EQ(version.err, "");
    EXPECT_EQ(version.status, 0);

    for (char const* command : {"bigq --help", "bigq -h"}) {
        RUN const run = run_shell(command);
        EXPECT_NE(run.out.find("  time "), std::string::npos) << run.out;
        EXPECT_EQ(run.status, 0);
    }
    for (char const* command : {"bigq time --help", "bigq time -h", "bigq time x --help --to ns"}) {
        RUN const run = run_shell(command);
        EXPECT_NE(run.out.find("Usage: bigq time [OPTION]... [TEXT]...\n"), std::string::npos);
        EXPECT_EQ(run.err, "");
        EXPECT_EQ(run.status, 0);
    }
}

TEST(BigqTime, HelpNamesEveryOptionAndFitsATerminal) {
    expect_help("bigq time",
                {"--to", "--precision", "--trim", "--raw", "--unit", "--field", "-d,--delimiter",
                 "--header", "--invalid", "abort", "fail", "warn", "ignore", "--strict", "--json",
                 ALL_UNITS, "Exit status", "Examples"});
}

// ------------------------------------------------------------------------------------------------
// A well-behaved filter
// ------------------------------------------------------------------------------------------------

TEST(BigqTime, AnswersEachLineBeforeItAsksForTheNext) {
    CONVERSATION bigq("bigq time --to ps");
    for (char const* line : {"1 ns\n", "2 ns\n", "3 ns\n"}) {
        bigq.say(line);
        EXPECT_EQ(bigq.hear(8), std::string(1, line[0]) + "000 ps\n");
    }
    bigq.say("4 n");
    EXPECT_TRUE(bigq.is_silent());
    bigq.say("s\n");
    EXPECT_EQ(bigq.hear(8), "4000 ps\n");
}

TEST(BigqTime, MessagesStandBehindTheLinesBeforeThem) {
    EXPECT_EQ(run_shell("bigq time --invalid warn 2>&1", "1 ns\nx\n2 ns\n").out,
              "1.000 ns\nbigq: standard input:2: \"x\"" NO_TIME "\nx\n2.000 ns\n");
}

TEST(BigqTime, StopsQuietlyWhenItsReaderGoesAway) {
    RUN const run = run_shell("{ yes '2.5 ns' | bigq time; echo $? >&2; } | head -n 1");
    EXPECT_EQ(run.out, "2.500 ns\n");
    EXPECT_EQ(run.err, "141\n") << "128 + SIGPIPE";
}

TEST(BigqTime, StopsQuietlyWhenNobodyMayTellIt) {
    RUN const run = run_shell(
        "trap '' PIPE; { yes '2.5 ns' 2>/dev/null | bigq time; echo $? >&2; } | head -n 1");
    EXPECT_EQ(run.out, "2.500 ns\n");
    EXPECT_EQ(run.err, "1\n");
}

TEST(BigqTime, ReportsWhatTheSystemRefuses) {
    // clang-format off
    run_cases({
        {"a full disk",            "bigq time 1ns >/dev/full",          "", "", "bigq: standard output: No space left on device\n", 1},
        {"a full disk, streaming", "yes 1ns | bigq time >/dev/full",    "", "", "bigq: standard output: No space left on device\n", 1},
        {"a full disk, help",      "bigq time --help >/dev/full",       "", "", "bigq: standard output: No space left on device\n", 1},
        {"a full disk, version",   "bigq --version >/dev/full",         "", "", "bigq: standard output: No space left on device\n", 1},
        {"a closed output",        "bigq time 1ns >&-",                 "", "", "bigq: standard output: Bad file descriptor\n", 1},
        {"a folder as input",      "bigq time </",                      "", "", "bigq: standard input: Is a directory\n", 1},
        {"no input",               "bigq time <&-",                     "", "", "bigq: standard input: Bad file descriptor\n", 1},
        {"nowhere to complain",    "bigq time x 2>&-",                  "", "", "", 1},
        {"a broken configuration is no concern", "BIG_CONFIG=/nowhere bigq time 1ns", "", "1.000 ns\n", "", 0},
    });
    // clang-format on
}

TEST(BigqTime, StreamsInConstantMemory) {
#ifdef BIG_SANITIZED
    GTEST_SKIP() << "a sanitizer needs memory of its own";
#endif
#ifdef NDEBUG
    std::string const input_bytes = "105000000";
#else
    std::string const input_bytes = "21000000";
#endif
    RUN const run = run_shell("ulimit -v 16000; yes '2.5 ns' | head -c " + input_bytes
                              + " | bigq time --to ps | tail -n 1");
    EXPECT_EQ(run.out, "2500 ps\n") << "within 16 megabytes";
    EXPECT_EQ(run.err, "");
}

} // namespace
