// The tool: what `bigq compare` prints, says and returns. How times are read is tested with `bigq
// time`.

#include "command_cases.h"

namespace {

#define ALL_UNITS "fs, ps, ns, us, ms, s, Hz, kHz, MHz, GHz, ten_th_ns, bps, Mbps, Gbps"
#define NO_TIME " is not a time: expected a number and one of " ALL_UNITS "\n"
#define NOT_COMPARED " cannot be compared: "
#define PERIOD_ADVICE " (--period compares the time with the frequency's period)\n"
#define LOST_DECIDES NOT_COMPARED "the digits that are lost decide\n"
#define TRY "\nTry 'bigq compare --help'.\n"

TEST(BigqCompare, ReturnsWhatCmpDoes) {
    // clang-format off
    run_cases({
        // why                        command                                     input  out  err  status
        {"equal across units",        "bigq compare '2 ns' '2000 ps'",            "", "=\n", "", 0},
        {"less",                      "bigq compare 1ns 2000ps",                  "", "<\n", "", 1},
        {"more",                      "bigq compare 1us 2ns",                     "", ">\n", "", 1},
        {"negative ones",             "bigq compare -1us -1ns; bigq compare -1ns 1ps", "", "<\n<\n", "", 1},
        {"zeros",                     "bigq compare 0 0.0ns; bigq compare -0s 0ps", "", "=\n=\n", "", 0},
        {"tenths of a nanosecond",    "bigq compare 5ten_th_ns 0.5ns",            "", "=\n", "", 0},
        {"frequencies",               "bigq compare 1.5GHz 1500MHz; bigq compare 1Hz 1kHz", "", "=\n<\n", "", 1},
        {"data rates",                "bigq compare 1.5Gbps 1500Mbps; bigq compare 1Mbps 1bps", "", "=\n>\n", "", 1},
        {"no unit counts as ps",      "bigq compare 1000 1ns",                    "", "=\n", "", 0},
        {"or as the unit asked for",  "bigq compare --unit us 1 1000ns",          "", "=\n", "", 0},
        {"the extremes",              "bigq compare -9223372036854775807ps 9223372036854775807ps", "", "<\n", "", 1},
        {"beyond a double",           "bigq compare 9223372036854775806ps 9223372036854775807ps", "", "<\n", "", 1},
        {"silently",                  "bigq compare -s 1ns 1ns; echo $?; bigq compare --silent 1ns 2ns", "", "0\n", "", 1},
        {"nothing is read",           "bigq compare 1ns 1ns", "2ns\n",                "=\n", "", 0},
    });
    // clang-format on
}

TEST(BigqCompare, ComparesATimeWithAPeriod) {
    // clang-format off
    run_cases({
        {"equal",                     "bigq compare --period 8ns 125MHz; bigq compare --period 125MHz 8ns", "", "=\n=\n", "", 0},
        {"less",                      "bigq compare --period 7.999ns 125MHz",     "", "<\n", "", 1},
        {"the other way round",       "bigq compare --period 125MHz 7.999ns",     "", ">\n", "", 1},
        {"a period that is not whole", "bigq compare --period 333333ps 3MHz; bigq compare --period 333334ps 3MHz", "", "<\n>\n", "", 1},
        {"longer than 64 bits count", "bigq compare --period 9223372036854775807ps 9223372036854775807Hz", "", ">\n", "", 1},
        {"0 Hz repeats never",        "bigq compare --period 9223372036854775807ps 0Hz; bigq compare --period 0Hz 1s", "", "<\n>\n", "", 1},
        {"no time",                   "bigq compare --period 0ps 1000GHz; bigq compare --period -1s 0Hz", "", "<\n<\n", "", 1},
        {"two times all the same",    "bigq compare --period 1ns 2ns",            "", "<\n", "", 1},
        {"frequencies all the same",  "bigq compare --period 1MHz 2MHz",          "", "<\n", "", 1},
        {"not a data rate",           "bigq compare --period 1ns 5Mbps",          "", "", "bigq: arguments 1 and 2: \"1ns\" and \"5Mbps\"" NOT_COMPARED "a time and a data rate\n", 2},
    });
    // clang-format on
}

TEST(BigqCompare, HasNoAnswerForDifferentKinds) {
    // clang-format off
    run_cases({
        {"a time and a frequency",    "bigq compare 3ns 5MHz",                    "", "", "bigq: arguments 1 and 2: \"3ns\" and \"5MHz\"" NOT_COMPARED "a time and a frequency" PERIOD_ADVICE, 2},
        {"equal counts",              "bigq compare 1MHz 1000000ps",              "", "", "bigq: arguments 1 and 2: \"1MHz\" and \"1000000ps\"" NOT_COMPARED "a frequency and a time" PERIOD_ADVICE, 2},
        {"a zero",                    "bigq compare 0ps 5MHz",                    "", "", "bigq: arguments 1 and 2: \"0ps\" and \"5MHz\"" NOT_COMPARED "a time and a frequency" PERIOD_ADVICE, 2},
        {"a frequency and a rate",    "bigq compare 5MHz 5Mbps",                  "", "", "bigq: arguments 1 and 2: \"5MHz\" and \"5Mbps\"" NOT_COMPARED "a frequency and a data rate\n", 2},
        {"a rate and a frequency",    "bigq compare 5Mbps 5MHz",                  "", "", "bigq: arguments 1 and 2: \"5Mbps\" and \"5MHz\"" NOT_COMPARED "a data rate and a frequency\n", 2},
        {"whatever the switches",     "BIG_TIME_STRICT_UNIT_MODE=on bigq compare -s 3ns 5ns", "", "", "", 1},
    });
    // clang-format on
}

TEST(BigqCompare, LostDigitsNeverDecide) {
    // clang-format off
    run_cases({
        {"equal but for them",        "bigq compare 1.5ps 1ps",                   "", "", "bigq: argument 1: \"1.5ps\" loses digits: it is stored as \"1 ps\"\nbigq: arguments 1 and 2: \"1.5ps\" and \"1ps\"" LOST_DECIDES, 2},
        {"different without them",    "bigq compare 1.5ps 2ps",                   "", "<\n", "bigq: argument 1: \"1.5ps\" loses digits: it is stored as \"1 ps\"\n", 1},
        {"with a period",             "bigq compare --period 1GHz 1.5ps",         "", "", "bigq: argument 2: \"1.5ps\" loses digits: it is stored as \"1 ps\"\nbigq: arguments 1 and 2: \"1GHz\" and \"1.5ps\"" LOST_DECIDES, 2},
        {"zeros behind a leading point", "bigq compare .05ns 1ns",                "", "", "bigq: argument 1: \".05ns\" loses digits: it is stored as \"0.5 ns\" (zeros directly behind a leading point do not count: write 0 before the point)\n", 2},
        {"--strict refuses",          "bigq compare --strict 1.5ps 2ps",          "", "", "bigq: argument 1: \"1.5ps\" loses digits: it is stored as \"1 ps\"\n", 2},
    });
    // clang-format on
}

TEST(BigqCompare, TroubleReturns2) {
    // clang-format off
    run_cases({
        {"both are reported",         "bigq compare x y",                         "", "", "bigq: argument 1: \"x\"" NO_TIME "bigq: argument 2: \"y\"" NO_TIME, 2},
        {"the second one",            "bigq compare 1ns ''",                      "", "", "bigq: argument 2: \"\"" NO_TIME, 2},
        {"too large",                 "bigq compare 1ns 9223372036854775808ps",   "", "", "bigq: argument 2: \"9223372036854775808ps\" is too large: expected at most 9223372036854775807 ps\n", 2},
        {"silence is for answers",    "bigq compare -s 1ns ns",                   "", "", "bigq: argument 2: \"ns\"" NO_TIME, 2},
        {"one text",                  "bigq compare 1ns",                         "", "", "bigq: compare: expected two texts, not 1" TRY, 2},
        {"three texts",               "bigq compare 1 2 3",                       "", "", "bigq: compare: expected two texts, not 3" TRY, 2},
        {"nothing to write",          "bigq compare --json -s 1 2",               "", "", "bigq: compare: --silent excludes --json" TRY, 2},
        {"a full disk",               "bigq compare 1ns 1ns >/dev/full",          "", "", "bigq: standard output: No space left on device\n", 2},
        {"a bad switch",              "BIG_TIME_STRICT_UNIT_MODE=maybe bigq compare 1ns 1ns", "", "", "bigq: the environment variable BIG_TIME_STRICT_UNIT_MODE is \"maybe\"; expected on, true, yes or 1, or off, false, no or 0\n", 2},
    });
    // clang-format on
}

TEST(BigqCompare, JsonAndHelp) {
    // clang-format off
    run_cases({
        {"an answer",   "bigq compare --json 1ns 2us", "", R"({"a":"1ns","b":"2us","ok":true,"order":"<"})" "\n", "", 1},
        {"a warning",   "bigq compare --json 2ps 1.5ps 2>/dev/null", "", R"({"a":"2ps","b":"1.5ps","ok":true,"order":">","warning":"argument 2: \"1.5ps\" loses digits: it is stored as \"1 ps\""})" "\n", "", 1},
        {"no answer",   "bigq compare --json 5MHz 5Mbps 2>/dev/null", "", R"({"a":"5MHz","b":"5Mbps","ok":false,"error":"arguments 1 and 2: \"5MHz\" and \"5Mbps\" cannot be compared: a frequency and a data rate"})" "\n", "", 2},
    });
    // clang-format on
    expect_help("bigq compare", {"Usage: bigq compare [OPTION]... A B ", "--period", "--unit UNIT",
                                 "-s,--silent", "--strict", "--json", "Exit status", "Examples"});
}

} // namespace
