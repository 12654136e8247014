// The tool: what `bigq delay` prints, says and returns. What every filter does alike is tested with
// `bigq time`.

#include "command_cases.h"

#include <cstdio>
#include <random>

namespace {

#define NO_DELAY "is not a delay: expected a whole number from 1 to 2147483647\n"
#define TRY "\nTry 'bigq delay --help'.\n"
#define NO_TIMESCALE " is not a timescale: expected a time or a frequency above 0" TRY
#define BAD_FLAGS ": expected any of the flags -+ #0 and then a width of at most 23" TRY

TEST(BigqDelay, WritesDelaysInAnotherTimescale) {
    // clang-format off
    run_cases({
        // why                        command                                             input  out  err  status
        {"a finer one",               "bigq delay --from 1ns --to 1ps 5",                 "", "5000\n", "", 0},
        {"a coarser one",             "bigq delay --from 1ps --to 1ns 3",                 "", "0.003\n", "", 0},
        {"whole all the same",        "bigq delay --from 1ns --to 400ps 2",               "", "5\n", "", 0},
        {"the same",                  "bigq delay --from 1ps --to 1ps 1 2147483647",      "", "1\n2147483647\n", "", 0},
        {"blanks in a timescale",     "bigq delay --from '1 ns' --to ' 10 ps ' 5",        "", "500\n", "", 0},
        {"picoseconds without a unit", "bigq delay --from 1000 --to 1 5",                 "", "5000\n", "", 0},
        {"the period of a frequency", "bigq delay --from 125MHz --to 10ps 5",             "", "4000\n", "", 0},
        {"nine places",               "bigq delay --from 1ps --to 1ms 1",                 "", "0.000000001\n", "", 0},
        {"lines",                     "bigq delay --from 1ns --to 1ps", "5\n6\r\n7",          "5000\n6000\r\n7000", "", 0},
        {"a field",                   "bigq delay --from 1ns --to 1ps --field 2", "a 5 b\n",  "a 5000 b\n", "", 0},
        {"digits of another radix",   "bigq delay --from 1ns --to 1ps --radix hex 5; bigq delay --from 1ns --to 1ps --radix HEX 5002", "", "1388\n4C5310\n", "", 0},
        {"octal and decimal",         "bigq delay --from 1ns --to 1ps --radix oct 5; bigq delay --from 1ns --to 1ps --radix dec 5", "", "11610\n5000\n", "", 0},
        {"flags",                     "bigq delay --from 1ns --to 1ps --radix hex --flags 08 5; bigq delay --from 1ns --to 1ps --radix hex --flags '#' 5", "", "00001388\n0x1388\n", "", 0},
        {"flags of a decimal number", "bigq delay --from 1ns --to 1ps --flags +8 5; bigq delay --from 1ns --to 1ps --flags=-8 5", "", "   +5000\n5000    \n", "", 0},
    });
    // clang-format on
}

TEST(BigqDelay, ReportsWhatIsRounded) {
    // clang-format off
    run_cases({
        {"a third",                   "bigq delay --from 1ps --to 3ps 1 3",               "", "0.333333333\n1\n", "bigq: argument 1: \"1\" loses digits: its delay is rounded to 0.333333333\n", 0},
        {"less than nine places show", "bigq delay --from 1ps --to 1s 1",                 "", "0\n", "bigq: argument 1: \"1\" loses digits: its delay is rounded to 0\n", 0},
        {"whole, but for the double",  "bigq delay --from 1ns --to 100ps 835413",          "", "8354129.999999999\n", "bigq: argument 1: \"835413\" loses digits: its delay is rounded to 8354129.999999999\n", 0},
        {"more than a double holds",  "bigq delay --from 1s --to 1ps 2147483647",         "", "2147483647000000069632\n", "bigq: argument 1: \"2147483647\" loses digits: its delay is rounded to 2147483647000000069632\n", 0},
        {"--strict refuses",          "bigq delay --strict --from 1ps --to 3ps 1",        "", "", "bigq: argument 1: \"1\" loses digits: its delay is rounded to 0.333333333\n", 1},
        {"the widest of all",         "bigq delay --strict --from 9223372036854775807ps --to 9223372036854775807ps 2147483647", "", "2147483647\n", "", 0},
        {"the longest of all",        "bigq delay --from 9223372036854775807ps --to 1ps 2147483647 2>/dev/null", "", "19807040619342712361531211776\n", "", 0},
    });
    // clang-format on
}

TEST(BigqDelay, SaysWhyADelayIsRefused) {
    // clang-format off
    run_cases({
        {"0",                         "bigq delay --from 1ns --to 1ps 0",          "", "", "bigq: argument 1: \"0\" " NO_DELAY, 1},
        {"a negative one",            "bigq delay --from 1ns --to 1ps -5",         "", "", "bigq: argument 1: \"-5\" " NO_DELAY, 1},
        {"33 bits",                   "bigq delay --from 1ns --to 1ps 2147483648", "", "", "bigq: argument 1: \"2147483648\" " NO_DELAY, 1},
        {"33 bits that wrap to 1",    "bigq delay --from 1ns --to 1ps 4294967297", "", "", "bigq: argument 1: \"4294967297\" " NO_DELAY, 1},
        {"a point",                   "bigq delay --from 1ns --to 1ps 1.5",        "", "", "bigq: argument 1: \"1.5\" " NO_DELAY, 1},
        {"a unit",                    "bigq delay --from 1ns --to 1ps 5ns",        "", "", "bigq: argument 1: \"5ns\" " NO_DELAY, 1},
        {"a blank",                   "bigq delay --from 1ns --to 1ps ' 5'",       "", "", "bigq: argument 1: \" 5\" " NO_DELAY, 1},
        {"nothing",                   "bigq delay --from 1ns --to 1ps", "5\n\n",       "5000\n", "bigq: standard input:2: \"\" " NO_DELAY, 1},
        {"not whole in a radix",      "bigq delay --from 1ps --to 1ns --radix hex 5", "", "", "bigq: argument 1: \"5\" cannot be given with --radix or --flags: it is 0.005, expected a whole number of at most 9223372036854775807\n", 1},
        {"too large for a radix",     "bigq delay --from 1s --to 1ps --flags 08 2147483647", "", "", "bigq: argument 1: \"2147483647\" cannot be given with --radix or --flags: it is 2147483647000000069632, expected a whole number of at most 9223372036854775807\n", 1},
    });
    // clang-format on
}

TEST(BigqDelay, AWrongCommandLineReturns2) {
    // clang-format off
    run_cases({
        {"no timescales",             "bigq delay 5",                              "", "", "bigq: delay: --from: expected a timescale, such as 1ns" TRY, 2},
        {"no second one",             "bigq delay --from 1ns 5",                   "", "", "bigq: delay: --to: expected a timescale, such as 1ns" TRY, 2},
        {"no time",                   "bigq delay --from ns --to 1ps 5 2>&1 | cut -c 1-36", "", "bigq: delay: --from: \"ns\" is not a t\nTry 'bigq delay --help'.\n", "", 0},
        {"0",                         "bigq delay --from 0ns --to 1ps 5",          "", "", "bigq: delay: --from: \"0ns\"" NO_TIMESCALE, 2},
        {"0 Hz",                      "bigq delay --from 1ns --to 0Hz 5",          "", "", "bigq: delay: --to: \"0Hz\"" NO_TIMESCALE, 2},
        {"a negative one",            "bigq delay --from -1ns --to 1ps 5",         "", "", "bigq: delay: --from: \"-1ns\"" NO_TIMESCALE, 2},
        {"a data rate",               "bigq delay --from 1ns --to 1Mbps 5",        "", "", "bigq: delay: --to: \"1Mbps\"" NO_TIMESCALE, 2},
        {"lost digits",               "bigq delay --from 1.5ps --to 1ps 5",        "", "", "bigq: delay: --from: \"1.5ps\" loses digits: it is stored as \"1 ps\"" TRY, 2},
        {"a period that is cut",      "bigq delay --from 3MHz --to 1ps 5",         "", "", "bigq: delay: --from: \"3MHz\" loses digits: its period is cut to 333333 ps" TRY, 2},
        {"a period below 1 ps",       "bigq delay --from 1ns --to 2000GHz 5",      "", "", "bigq: delay: --to: \"2000GHz\" loses digits: its period is cut to 0 ps" TRY, 2},
        {"a radix",                   "bigq delay --from 1ns --to 1ps --radix bin 5", "", "", "bigq: delay: --radix: \"bin\" is not a radix: expected dec, oct, hex or HEX" TRY, 2},
        {"a percent sign",            "bigq delay --from 1ns --to 1ps --flags '%n' 5", "", "", "bigq: delay: --flags: \"%n\"" BAD_FLAGS, 2},
        {"a width of 24",             "bigq delay --from 1ns --to 1ps --flags 24 5", "", "", "bigq: delay: --flags: \"24\"" BAD_FLAGS, 2},
        {"a width from an argument",  "bigq delay --from 1ns --to 1ps --flags '*' 5", "", "", "bigq: delay: --flags: \"*\"" BAD_FLAGS, 2},
    });
    // clang-format on
    expect_help("bigq delay",
                {"Usage: bigq delay [OPTION]... [DELAY]... ", "--from TIME", "--to TIME",
                 "--radix RADIX", "--flags FLAGS", "--strict", "--json", "Examples"});
}

TEST(BigqDelay, Json) {
    run_cases({
        {"a delay", "bigq delay --json --from 1ns --to 125MHz 4", "",
         R"({"input":"4","ok":true,"from":"1.0 ns","to":"125.0 MHz","text":"0.5"})"
         "\n",
         "", 0},
    });
}

// ------------------------------------------------------------------------------------------------
// Against integers
// ------------------------------------------------------------------------------------------------

/// A number without the zeros that end its decimal places.
std::string trimmed(std::string text) {
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.') {
        text.pop_back();
    }
    return text;
}

/// delay x from / to in decimal; an empty text when that needs more than nine places.
std::string exact_delay(long long delay, long long from, long long to) {
    long long rest = delay * from % to;
    std::string text = std::to_string(delay * from / to) + '.';
    for (int place = 0; place < 9; ++place) {
        text += static_cast<char>('0' + rest * 10 / to);
        rest = rest * 10 % to;
    }
    return rest == 0 ? trimmed(text) : "";
}

/// The same in double arithmetic, which is not exact even for some whole results.
std::string rounded_delay(int delay, int from, int to) {
    char text[40];
    std::snprintf(text, sizeof text, "%.9f", static_cast<double>(delay) / to * from);
    return trimmed(text);
}

TEST(BigqDelay, IsExactOrReportedOnRandomDelays) {
    constexpr unsigned SEED = 20260524;
    SCOPED_TRACE("seed " + std::to_string(SEED));
    std::mt19937 random(SEED);
    int exact_count = 0;
    int inexact_whole_count = 0;
    for (int from : {1, 10, 64, 1000, 1001}) {
        for (int to : {1, 3, 7, 8, 100, 625, 1024, 1000000}) {
            std::string input;
            std::string expected;
            for (int i = 0; i < 300; ++i) {
                int const delay = 1 + static_cast<int>(random() % 1000000);
                std::string const exact = exact_delay(delay, from, to);
                bool const is_exact = exact == rounded_delay(delay, from, to);
                exact_count += is_exact;
                inexact_whole_count += !is_exact && !exact.empty();
                input += std::to_string(delay) + '\n';
                expected += (is_exact ? exact : std::to_string(delay)) + '\n'; // refused as it is
            }
            std::string const command = "bigq delay --strict --invalid ignore --from "
                                        + std::to_string(from) + "ps --to " + std::to_string(to)
                                        + "ps";
            EXPECT_EQ(run_shell(command, input).out, expected) << command;
        }
    }
    EXPECT_GT(exact_count, 5000);
    EXPECT_GT(inexact_whole_count, 0);
}

} // namespace
