// The tool: what `bigq gcd` prints, says and returns. What every filter does alike is tested with
// `bigq time`.

#include "command_cases.h"

#include <numeric>
#include <random>

namespace {

#define LARGEST "340282366920938463463374607431768211455" // 2^128 - 1
#define NO_NUMBER "is not a whole number: expected decimal digits, or hexadecimal ones behind 0x\n"
#define TOO_SHORT "is too short: expected two whole numbers or more with blanks between them\n"

TEST(BigqGcd, FindsTheGreatestCommonDivisor) {
    // clang-format off
    run_cases({
        // why                        command                                 input  out  err  status
        {"of two",                    "bigq gcd 12 18",                       "", "6\n", "", 0},
        {"coprime",                   "bigq gcd 17 5",                        "", "1\n", "", 0},
        {"equal",                     "bigq gcd 48 48",                       "", "48\n", "", 0},
        {"of many",                   "bigq gcd 12 18 27 0",                  "", "3\n", "", 0},
        {"with 0",                    "bigq gcd 0 7; bigq gcd 7 0",           "", "7\n7\n", "", 0},
        {"of zeros",                  "bigq gcd 0 0",                         "", "0\n", "", 0},
        {"signs do not count",        "bigq gcd -12 18; bigq gcd -12 -18; bigq gcd +12 -0", "", "6\n6\n12\n", "", 0},
        {"2^100 and 2^64 x 3",        "bigq gcd 0x10000000000000000000000000 55340232221128654848", "", "18446744073709551616\n", "", 0},
        {"the largest",               "bigq gcd " LARGEST " " LARGEST,        "", LARGEST "\n", "", 0},
        {"the largest and 1",         "bigq gcd 1 " LARGEST,                  "", "1\n", "", 0},
        {"one text is many numbers",  "bigq gcd '12 18'",                     "", "6\n", "", 0},
        {"lines",                     "bigq gcd", "12 18\n 7\t21 \r\n0x10 24",    "6\n7\r\n8", "", 0},
        {"a field",                   "bigq gcd -d, --field 2", "a,12 18,b\n",    "a,6,b\n", "", 0},
    });
    // clang-format on
}

TEST(BigqGcd, ReducesAPair) {
    // clang-format off
    run_cases({
        {"one negative",              "bigq gcd --reduce 6 -9",               "", "2 -3\n", "", 0},
        {"the other",                 "bigq gcd -6 9 --reduce",               "", "-2 3\n", "", 0},
        {"two negatives",             "bigq gcd --reduce -6 -9",              "", "2 3\n", "", 0},
        {"a zero",                    "bigq gcd --reduce 0 5",                "", "0 1\n", "", 0},
        {"two zeros",                 "bigq gcd --reduce 0 0",                "", "0 0\n", "", 0},
        {"the widest",                "bigq gcd --reduce -9223372036854775807 9223372036854775807", "", "-1 1\n", "", 0},
        {"lines",                     "bigq gcd --reduce", "4 6\n10 5\n",         "2 3\n2 1\n", "", 0},
        {"what is too wide",          "bigq gcd --reduce 1 -9223372036854775808", "", "", "bigq: arguments 1 to 2: \"1 -9223372036854775808\" is too large: expected a magnitude of at most 9223372036854775807\n", 1},
        {"three",                     "bigq gcd --reduce 1 2 3",              "", "", "bigq: arguments 1 to 3: \"1 2 3\" is too long: expected two whole numbers\n", 1},
    });
    // clang-format on
}

TEST(BigqGcd, SaysWhyNumbersAreRefused) {
    // clang-format off
    run_cases({
        {"one number",                "bigq gcd 12",                          "", "", "bigq: argument 1: \"12\" " TOO_SHORT, 1},
        {"none",                      "bigq gcd ''",                          "", "", "bigq: argument 1: \"\" " TOO_SHORT, 1},
        {"no number",                 "bigq gcd 12 x 18",                     "", "", "bigq: arguments 1 to 3: \"12 x 18\" holds \"x\", which " NO_NUMBER, 1},
        {"a comma",                   "bigq gcd 12,18",                       "", "", "bigq: argument 1: \"12,18\" " NO_NUMBER, 1},
        {"a point",                   "bigq gcd 1.5 3",                       "", "", "bigq: arguments 1 to 2: \"1.5 3\" holds \"1.5\", which " NO_NUMBER, 1},
        {"a sign alone",              "bigq gcd - 3",                         "", "", "bigq: arguments 1 to 2: \"- 3\" holds \"-\", which " NO_NUMBER, 1},
        {"one too large",             "bigq gcd 1 340282366920938463463374607431768211456", "", "", "bigq: arguments 1 to 2: \"1 340282366920938463463374607431768211456\" holds \"340282366920938463463374607431768211456\", which is too large: expected at most " LARGEST "\n", 1},
        {"on their lines",            "bigq gcd --invalid fail", "4 6\n\n5\n", "2\n\n5\n", "bigq: standard input:2: \"\" " TOO_SHORT "bigq: standard input:3: \"5\" " TOO_SHORT, 1},
        {"JSON",                      "bigq gcd --json 12 18",                "", R"({"input":"12 18","ok":true,"gcd":"6","text":"6"})" "\n", "", 0},
        {"JSON of a pair",            "bigq gcd --json --reduce 12 -18",      "", R"({"input":"12 -18","ok":true,"gcd":"6","text":"2 -3"})" "\n", "", 0},
        {"an unknown option",         "bigq gcd --binary 1 2",                "", "", "bigq: gcd: The following argument was not expected: --binary\nTry 'bigq gcd --help'.\n", 2},
    });
    // clang-format on
    expect_help("bigq gcd", {"Usage: bigq gcd [OPTION]... [NUMBER]... ", "--reduce", "--field",
                             "--invalid", "--json", "Examples"});
}

TEST(BigqGcd, AgreesWithTheStandardLibraryOnRandomNumbers) {
    constexpr unsigned SEED = 20260522;
    SCOPED_TRACE("seed " + std::to_string(SEED));
    std::mt19937_64 random(SEED);
    auto const number = [&random] {
        unsigned long long const factor = random() >> random() % 64;
        return random() % 8 == 0 ? 0 : factor;
    };
    std::string input;
    std::string expected;
    for (int i = 0; i < 10000; ++i) {
        unsigned long long const common = random() % 1000 + 1;
        unsigned long long const a = number() / 1000 * common;
        unsigned long long const b = number() / 1000 * common;
        input += std::to_string(a) + (i % 2 == 0 ? " " : " -") + std::to_string(b) + '\n';
        expected += std::to_string(std::gcd(a, b)) + '\n';
    }
    RUN const run = run_shell("bigq gcd", input);
    EXPECT_TRUE(run.out == expected);
    EXPECT_EQ(run.err, "");
}

} // namespace
