// The tool: what `bigq freq` prints, says and returns. How times are read is tested with `bigq
// time`, as is what every filter does alike.

#include "command_cases.h"

#include <cstdlib>
#include <random>
#include <sstream>

namespace {

#define ALL_UNITS "fs, ps, ns, us, ms, s, Hz, kHz, MHz, GHz, ten_th_ns, bps, Mbps, Gbps"
#define NO_TIME " is not a time: expected a number and one of " ALL_UNITS "\n"
#define NO_FREQUENCY "has no frequency: expected a period above 0 ps\n"
#define NO_PERIOD                                                                                  \
    "has no period in whole picoseconds: expected a frequency from 1 Hz to 1000000000000 Hz\n"
#define ROUNDED " loses digits: its frequency is rounded to "
#define CUT " loses digits: its period is cut to "
#define TRY "\nTry 'bigq freq --help'.\n"

TEST(BigqFreq, TurnsPeriodsIntoFrequenciesAndBack) {
    // clang-format off
    run_cases({
        // why                        command                                     input  out  err  status
        {"a period",                  "bigq freq 8ns",                            "", "125000000 Hz\n", "", 0},
        {"a frequency",               "bigq freq '125 MHz'",                      "", "8000 ps\n", "", 0},
        {"1000 ps",                   "bigq freq 1000ps",                         "", "1000000000 Hz\n", "", 0},
        {"picoseconds without a unit", "bigq freq 1000",                          "", "1000000000 Hz\n", "", 0},
        {"another unit of bare numbers", "bigq freq --unit MHz 5; bigq freq --unit ns 5", "", "200000 ps\n200000000 Hz\n", "", 0},
        {"below 1 Hz",                "bigq freq 10s 1000s",                      "", "0.1 Hz\n0.001 Hz\n", "", 0},
        {"the shortest period",       "bigq freq 1ps 1000GHz",                    "", "1000000000000 Hz\n1 ps\n", "", 0},
        {"more than 32 bits",         "bigq freq 5ms 4s 1Hz",                     "", "200 Hz\n0.25 Hz\n1000000000000 ps\n", "", 0},
        {"frequencies in a unit",     "bigq freq --to MHz 8ns 8us 1000s",         "", "125 MHz\n0.125 MHz\n0.000000001 MHz\n", "", 0},
        {"periods in a unit",         "bigq freq --to ns 400MHz 1GHz",            "", "2.500 ns\n1.000 ns\n", "", 0},
        {"rounded",                   "bigq freq --to MHz --precision 3 3ns 8us 7us", "", "333.333 MHz\n0.125 MHz\n0.143 MHz\n", "", 0},
        {"to whole numbers",          "bigq freq --precision 0 3ns; bigq freq --precision 0 --to ns 400MHz", "", "333333333 Hz\n3 ns\n", "", 0},
        {"lines",                     "bigq freq", "8ns\n125MHz\r\n2 ns",             "125000000 Hz\n8000 ps\r\n500000000 Hz", "", 0},
        {"a field",                   "bigq freq -d , --field 2", "clk,8 ns,x\n",     "clk,125000000 Hz,x\n", "", 0},
    });
    // clang-format on
}

TEST(BigqFreq, ReportsWhatIsNotExact) {
    // clang-format off
    run_cases({
        {"a frequency",               "bigq freq 3ps",                            "", "333333333333.3333 Hz\n", "bigq: argument 1: \"3ps\"" ROUNDED "333333333333.3333 Hz\n", 0},
        {"in another unit",           "bigq freq --to MHz 3ns",                   "", "333.3333333333333 MHz\n", "bigq: argument 1: \"3ns\"" ROUNDED "333333333.3333333 Hz\n", 0},
        {"a period",                  "bigq freq 3MHz",                           "", "333333 ps\n", "bigq: argument 1: \"3MHz\"" CUT "333333 ps\n", 0},
        {"the longest period",        "bigq freq 9223372036854775807ps",          "", "0.00000010842021724855044 Hz\n", "bigq: argument 1: \"9223372036854775807ps\"" ROUNDED "0.00000010842021724855044 Hz\n", 0},
        {"digits that are not read",  "bigq freq 1000.5ps",                       "", "1000000000 Hz\n", "bigq: argument 1: \"1000.5ps\" loses digits: it is stored as \"1000 ps\"\n", 0},
        {"rounding is asked for",     "bigq freq --precision 4 3ns",              "", "333333333.3333 Hz\n", "", 0},
        {"no rounding to many places", "bigq freq --precision 40 3ns",            "", "333333333.3333333 Hz\n", "bigq: argument 1: \"3ns\"" ROUNDED "333333333.3333333 Hz\n", 0},
        {"a cut is not rounding",     "bigq freq --precision 0 3MHz",             "", "333333 ps\n", "bigq: argument 1: \"3MHz\"" CUT "333333 ps\n", 0},
        {"exact in binary, not in text", "bigq freq 1099511627776ps",             "", "0.9094947017729282 Hz\n", "bigq: argument 1: \"1099511627776ps\"" ROUNDED "0.9094947017729282 Hz\n", 0},
        {"--strict refuses",          "bigq freq --strict --invalid fail 3ns 8ns 3MHz", "", "3ns\n125000000 Hz\n3MHz\n", "bigq: argument 1: \"3ns\"" ROUNDED "333333333.3333333 Hz\nbigq: argument 3: \"3MHz\"" CUT "333333 ps\n", 1},
    });
    // clang-format on
}

TEST(BigqFreq, SaysWhyATextIsRefused) {
    // clang-format off
    run_cases({
        {"no period",                 "bigq freq 0",                              "", "", "bigq: argument 1: \"0\" " NO_FREQUENCY, 1},
        {"a negative one",            "bigq freq -5ns",                           "", "", "bigq: argument 1: \"-5ns\" " NO_FREQUENCY, 1},
        {"the marker of a bad delay", "bigq freq -2147483647ps",                  "", "", "bigq: argument 1: \"-2147483647ps\" " NO_FREQUENCY, 1},
        {"no frequency",              "bigq freq 0Hz",                            "", "", "bigq: argument 1: \"0Hz\" " NO_PERIOD, 1},
        {"a period below 1 ps",       "bigq freq 1001GHz 2000GHz --invalid fail", "", "1001GHz\n2000GHz\n", "bigq: argument 1: \"1001GHz\" " NO_PERIOD "bigq: argument 2: \"2000GHz\" " NO_PERIOD, 1},
        {"less than 1 Hz",            "bigq freq 0.5Hz",                          "", "", "bigq: argument 1: \"0.5Hz\" loses digits: it is stored as \"0 Hz\", which " NO_PERIOD, 1},
        {"a data rate",               "bigq freq 5Mbps",                          "", "", "bigq: argument 1: \"5Mbps\" is a data rate: expected a period or a frequency\n", 1},
        {"what is converted already", "bigq freq --to MHz 8MHz",                  "", "", "bigq: argument 1: \"8MHz\" is a frequency already: expected a period to convert to MHz\n", 1},
        {"the other way round",       "bigq freq --to ns 8ns",                    "", "", "bigq: argument 1: \"8ns\" is a period already: expected a frequency to convert to ns\n", 1},
        {"no time at all",            "bigq freq x",                              "", "", "bigq: argument 1: \"x\"" NO_TIME, 1},
        {"nothing",                   "bigq freq", "1ns\n\n",                         "1000000000 Hz\n", "bigq: standard input:2: \"\"" NO_TIME, 1},
    });
    // clang-format on
}

TEST(BigqFreq, JsonHelpAndWrongCommandLines) {
    // clang-format off
    run_cases({
        {"a period",      "bigq freq --json --to MHz 8ns", "", R"({"input":"8ns","ok":true,"hertz":"125000000","picoseconds":"8000","text":"125 MHz"})" "\n", "", 0},
        {"a frequency",   "bigq freq --json 3MHz 2>/dev/null", "", R"({"input":"3MHz","ok":true,"hertz":"3000000","picoseconds":"333333","text":"333333 ps","warning":"\"3MHz\" loses digits: its period is cut to 333333 ps"})" "\n", "", 0},
        {"a unit of data rates", "bigq freq --to Mbps 1ns", "", "", "bigq: freq: --to: Mbps is a unit of data rates: expected one of time or frequency" TRY, 2},
        {"no unit",       "bigq freq --unit x 1", "", "", "bigq: freq: --unit: \"x\" is not a unit: expected one of " ALL_UNITS TRY, 2},
        {"a precision",   "bigq freq --precision 65536 1ns", "", "", "bigq: freq: --precision: \"65536\" is not a whole number from 0 to 65535" TRY, 2},
    });
    // clang-format on
    expect_help("bigq freq", {"Usage: bigq freq [OPTION]... [TEXT]... ", "--to UNIT",
                              "--precision N", "--unit UNIT", "--strict", "--json", "Examples"});
}

TEST(BigqFreq, AFrequencyIsTheDoubleNearestToIt) {
    constexpr unsigned SEED = 20260525;
    SCOPED_TRACE("seed " + std::to_string(SEED));
    std::mt19937_64 random(SEED);
    std::vector<long long> periods;
    std::string input;
    for (int i = 0; i < 3000; ++i) {
        periods.push_back(static_cast<long long>((random() >> 1 >> random() % 63) | 1));
        input += std::to_string(periods.back()) + " ps\n";
    }
    std::istringstream lines(run_shell("bigq freq 2>/dev/null", input).out);
    for (long long const period : periods) {
        std::string line;
        std::getline(lines, line);
        char* end = nullptr;
        EXPECT_EQ(std::strtod(line.c_str(), &end), 1e12 / static_cast<double>(period)) << period;
        EXPECT_STREQ(end, " Hz");
    }
}

TEST(BigqFreq, PeriodsBelowAMicrosecondComeBack) {
    constexpr unsigned SEED = 20260526;
    SCOPED_TRACE("seed " + std::to_string(SEED));
    std::mt19937 random(SEED);
    std::string periods;
    for (unsigned int i = 0; i < 3000; ++i) {
        periods += std::to_string(1 + random() % 999'999 / (1 + i % 100)) + " ps\n";
    }
    EXPECT_TRUE(run_shell("(bigq freq | bigq freq) 2>/dev/null", periods).out == periods);
}

} // namespace
