// The tool: what `bigq fraction` prints, says and returns. How expressions are read is tested with
// `bigq u128`, what every filter does alike with `bigq time`.

#include "command_cases.h"

#include <climits>
#include <numeric>
#include <random>

namespace {

#define NO_NUMBER "is not a number: expected decimal digits with at most one point\n"
#define TOO_LONG "has too many digits: expected a numerator and a denominator of 64 bits\n"
#define LOST                                                                                       \
    " loses its exact form: a numerator or denominator in it does not fit 64 bits, which leaves "  \
    "about "

TEST(BigqFraction, ComputesInLowestTerms) {
    // clang-format off
    run_cases({
        // why                        command                                         input  out  err  status
        {"a whole number",            "bigq fraction 5 -5 0 -0",                      "", "5\n-5\n0\n0\n", "", 0},
        {"a quotient",                "bigq fraction 6/4 6/3 0/5",                    "", "3/2\n2\n0\n", "", 0},
        {"the sign is in front",      "bigq fraction 6/-4 -6/4 -6/-4",                "", "-3/2\n-3/2\n3/2\n", "", 0},
        {"0 has no sign",             "bigq fraction 0/-5 '(1 - 1) / -5' '0 * -5'; bigq fraction --double 0/-5", "", "0\n0\n0\n0\n", "", 0},
        {"decimal places",            "bigq fraction 0.25 -0.125 2.50 .5 5. 1.000",   "", "1/4\n-1/8\n5/2\n1/2\n5\n1\n", "", 0},
        {"more than six places",      "bigq fraction 0.000249 0.333333333 0.000000000000000001", "", "249/1000000\n333333333/1000000000\n1/1000000000000000000\n", "", 0},
        {"zeros at the end, many",    "bigq fraction 1.00000000000000000000000",      "", "1\n", "", 0},
        {"sum",                       "bigq fraction '1/3 + 1/6'",                    "", "1/2\n", "", 0},
        {"difference",                "bigq fraction '1/3 - 1/2'",                    "", "-1/6\n", "", 0},
        {"product",                   "bigq fraction '2/3 * 3/4' '5 * 0' '0 * 5'",    "", "1/2\n0\n0\n", "", 0},
        {"quotient of fractions",     "bigq fraction '(1/2) / (1/2)' '1/2/2'",        "", "1\n1/4\n", "", 0},
        {"no binary rounding",        "bigq fraction '0.1 + 0.2 - 0.3'",              "", "0\n", "", 0},
        {"lines",                     "bigq fraction", "1/2 + 1/3\r\n1/4\n",              "5/6\r\n1/4\n", "", 0},
        {"the double",                "bigq fraction --double 1/3 1/4 3 0.000001",    "", "0.3333333333333333\n0.25\n3\n1e-06\n", "", 0},
        {"of rounded integers",       "bigq fraction --double 2920221497670770862/729505659519834128", "", "4.003014177563586\n", "", 0}, // ...5872 is nearer
    });
    // clang-format on
}

TEST(BigqFraction, IsExactUpToTheLastBit) {
    // clang-format off
    run_cases({
        {"the extremes",              "bigq fraction 9223372036854775807 -9223372036854775808", "", "9223372036854775807\n-9223372036854775808\n", "", 0},
        {"in a denominator",          "bigq fraction 1/9223372036854775807 1/-9223372036854775808", "", "1/9223372036854775807\n-1/9223372036854775808\n", "", 0},
        {"the least by itself",       "bigq fraction '-9223372036854775808 / -9223372036854775808'", "", "1\n", "", 0},
        {"the least taken away",      "bigq fraction '-1 - -9223372036854775808' '-1/3 - -9223372036854775808/3'", "", "9223372036854775807\n9223372036854775807/3\n", "", 0},
        {"sums whose products do not fit", "bigq fraction '1/4294967296 + 1/4294967296' '9223372036854775807/2 - 9223372036854775806/2'", "", "1/2147483648\n1/2\n", "", 0},
        {"products whose parts do not fit", "bigq fraction '(4611686018427387904/3) * (3/4611686018427387904)'", "", "1\n", "", 0},
        {"quotients, too",            "bigq fraction '(4611686018427387904/3) / (4611686018427387904/7)'", "", "7/3\n", "", 0},
    });
    // clang-format on
}

TEST(BigqFraction, ReportsThatTheExactFormIsLost) {
    // clang-format off
    run_cases({
        {"a product",                 "bigq fraction '(1/4294967296) * (1/4294967296)'", "", "5.421010862427522e-20\n", "bigq: argument 1: \"(1/4294967296) * (1/4294967296)\"" LOST "5.421010862427522e-20\n", 0},
        {"a sum",                     "bigq fraction '9223372036854775807 + 1'",      "", "9223372036854775808\n", "bigq: argument 1: \"9223372036854775807 + 1\"" LOST "9223372036854775808\n", 0},
        {"the least, taken away from 0", "bigq fraction '0 - -9223372036854775808'",  "", "9223372036854775808\n", "bigq: argument 1: \"0 - -9223372036854775808\"" LOST "9223372036854775808\n", 0},
        {"it does not come back",     "bigq fraction '9223372036854775807 * 2 * 0'",  "", "0\n", "bigq: argument 1: \"9223372036854775807 * 2 * 0\"" LOST "0\n", 0},
        {"--strict refuses",          "bigq fraction --strict '9223372036854775807 + 1'", "", "", "bigq: argument 1: \"9223372036854775807 + 1\"" LOST "9223372036854775808\n", 1},
    });
    // clang-format on
}

TEST(BigqFraction, SaysWhyATextIsRefused) {
    std::string huge = "9223372036854775807";
    for (int i = 0; i < 20; ++i) {
        huge += "*9223372036854775807";
    }
    // clang-format off
    run_cases({
        {"division by 0",             "bigq fraction 1/0",                            "", "", "bigq: argument 1: \"1/0\" has no value: it divides by 0\n", 1},
        {"by what cancels out",       "bigq fraction '5 / (0.1 + 0.2 - 0.3)'",        "", "", "bigq: argument 1: \"5 / (0.1 + 0.2 - 0.3)\" has no value: it divides by 0\n", 1},
        {"a remainder",               "bigq fraction 1%2",                            "", "", "bigq: argument 1: \"1%2\" has no value: fractions have no remainder (%)\n", 1},
        {"another operator",          "bigq fraction 2^3",                            "", "", "bigq: argument 1: \"2^3\" is not an expression: expected an operator (+ - * /), not \"^\"\n", 1},
        {"an exponent",               "bigq fraction 1e5",                            "", "", "bigq: argument 1: \"1e5\" " NO_NUMBER, 1},
        {"two points",                "bigq fraction '1 + 1.2.3'",                    "", "", "bigq: argument 1: \"1 + 1.2.3\" holds \"1.2.3\", which " NO_NUMBER, 1},
        {"a point alone",             "bigq fraction --invalid fail . -. 0.",         "", ".\n-.\n0\n", "bigq: argument 1: \".\" " NO_NUMBER "bigq: argument 2: \"-.\" " NO_NUMBER, 1},
        {"hexadecimal",               "bigq fraction 0x10",                           "", "", "bigq: argument 1: \"0x10\" " NO_NUMBER, 1},
        {"a numerator of 65 bits",    "bigq fraction 9223372036854775808",            "", "", "bigq: argument 1: \"9223372036854775808\" " TOO_LONG, 1},
        {"a denominator of 65 bits",  "bigq fraction 0.0000000000000000001",          "", "", "bigq: argument 1: \"0.0000000000000000001\" " TOO_LONG, 1},
        {"nothing",                   "bigq fraction ''",                             "", "", "bigq: argument 1: \"\" is not an expression: expected a number or ( at its end\n", 1},
        {"no double either",          "bigq fraction --invalid warn 2>&1 >/dev/null", huge + "\n", "bigq: standard input:1: \"" + huge.substr(0, 100) + "...\" is too large: expected a number that fits a double\n", "", 0},
    });
    // clang-format on
}

TEST(BigqFraction, JsonHelpAndWrongCommandLines) {
    // clang-format off
    run_cases({
        {"exact",   "bigq fraction --json 6/-4", "", R"({"input":"6/-4","ok":true,"numerator":"-3","denominator":"2","double":"-1.5","text":"-3/2"})" "\n", "", 0},
        {"lost",    "bigq fraction --json '9223372036854775807 + 1' 2>/dev/null", "", R"({"input":"9223372036854775807 + 1","ok":true,"double":"9223372036854775808","text":"9223372036854775808","warning":"\"9223372036854775807 + 1\")" LOST R"(9223372036854775808"})" "\n", "", 0},
        {"refused", "bigq fraction --json --invalid ignore 1/0", "", R"({"input":"1/0","ok":false,"error":"\"1/0\" has no value: it divides by 0"})" "\n", "", 0},
        {"an option", "bigq fraction --decimal 1", "", "", "bigq: fraction: The following argument was not expected: --decimal\nTry 'bigq fraction --help'.\n", 2},
    });
    // clang-format on
    expect_help("bigq fraction", {"Usage: bigq fraction [OPTION]... [EXPRESSION]... ", "--double",
                                  "--field", "--strict", "--json", "Examples"});
}

// ------------------------------------------------------------------------------------------------
// Against fractions of 128 bits
// ------------------------------------------------------------------------------------------------

__extension__ using WIDE = __int128;

/// A fraction's text in lowest terms; an empty text when it does not fit 64 bits.
std::string text_of(WIDE numerator, WIDE denominator) {
    WIDE a = numerator < 0 ? -numerator : numerator;
    for (WIDE b = denominator; b != 0;) {
        WIDE const rest = a % b;
        a = b;
        b = rest;
    }
    numerator /= a;
    denominator /= a;
    if (numerator < LLONG_MIN || numerator > LLONG_MAX || denominator > LLONG_MAX) {
        return "";
    }
    std::string const whole = std::to_string(static_cast<long long>(numerator));
    return denominator == 1 ? whole
                            : whole + '/' + std::to_string(static_cast<long long>(denominator));
}

TEST(BigqFraction, AgreesWithWiderFractionsOnRandomOperands) {
    constexpr unsigned SEED = 20260523;
    SCOPED_TRACE("seed " + std::to_string(SEED));
    std::mt19937_64 random(SEED);
    auto const integer = [&random] {
        return static_cast<long long>((random() >> 2 >> random() % 62) + 1); // 1 to 2^62
    };
    std::string input;
    std::string expected;
    int lost = 0;
    for (int i = 0; i < 20000; ++i) {
        WIDE const a = integer() * (i % 3 == 0 ? -1 : 1);
        WIDE const b = integer();
        WIDE const c = integer();
        WIDE const d = integer();
        char const op = "+-*/"[random() % 4];
        auto const digits = [](WIDE value) {
            return std::to_string(static_cast<long long>(value));
        };
        std::string const line = '(' + digits(a) + '/' + digits(b) + ") " + op + " (" + digits(c)
                                 + '/' + digits(d) + ')';
        std::string const result = op == '+'   ? text_of(a * d + c * b, b * d)
                                   : op == '-' ? text_of(a * d - c * b, b * d)
                                   : op == '*' ? text_of(a * c, b * d)
                                               : text_of(a * d, b * c);
        lost += result.empty();
        input += line + '\n';
        expected += (result.empty() ? line : result) + '\n';
    }
    RUN const run = run_shell("bigq fraction --strict --invalid ignore", input);
    EXPECT_TRUE(run.out == expected);
    EXPECT_EQ(run.err, "");
    EXPECT_GT(lost, 2000);
    EXPECT_LT(lost, 18000);
}

} // namespace
