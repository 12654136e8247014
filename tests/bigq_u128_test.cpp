// The tool: what `bigq u128` prints, says and returns. What every filter does alike is tested with
// `bigq time`.

#include "command_cases.h"

#include <random>

namespace {

#define LARGEST "340282366920938463463374607431768211455" // 2^128 - 1
#define TOO_LARGE_LITERAL "is too large: expected at most " LARGEST "\n"
#define NO_NUMBER "is not a whole number: expected decimal digits, or hexadecimal ones behind 0x\n"
#define NO_EXPRESSION " is not an expression: expected "
#define NO_OPERAND NO_EXPRESSION "a number or ("
#define NO_OPERATOR NO_EXPRESSION "an operator (+ - * / %)"

TEST(BigqU128, Computes) {
    // clang-format off
    run_cases({
        // why                        command                                                 input  out  err  status
        {"a number",                  "bigq u128 5",                                          "", "5\n", "", 0},
        {"0 has a digit",             "bigq u128 0 '7 - 7'",                                  "", "0\n0\n", "", 0},
        {"a plus sign",               "bigq u128 +5",                                         "", "5\n", "", 0},
        {"zeros in front",            "bigq u128 00012 0x000F",                               "", "12\n15\n", "", 0},
        {"sum",                       "bigq u128 '18446744073709551615 + 1'",                 "", "18446744073709551616\n", "", 0},
        {"difference",                "bigq u128 '18446744073709551616 - 1'",                 "", "18446744073709551615\n", "", 0},
        {"product",                   "bigq u128 '18446744073709551615 * 18446744073709551615'", "", "340282366920938463426481119284349108225\n", "", 0},
        {"quotient, rounded down",    "bigq u128 '" LARGEST " / 2'",                          "", "170141183460469231731687303715884105727\n", "", 0},
        {"remainder",                 "bigq u128 '" LARGEST " % 1000'",                       "", "455\n", "", 0},
        {"the largest",               "bigq u128 0xffffffffffffffffffffffffffffffff " LARGEST, "", LARGEST "\n" LARGEST "\n", "", 0},
        {"the largest, computed",     "bigq u128 '" LARGEST " - 1 + 1' '" LARGEST " * 1'",    "", LARGEST "\n" LARGEST "\n", "", 0},
        {"hexadecimal",               "bigq u128 0xFF 0Xab '0x10 * 0x10'",                    "", "255\n171\n256\n", "", 0},
        {"from left to right",        "bigq u128 '10 - 3 - 2' '100 / 10 / 5' '7 % 4 * 5'",    "", "5\n2\n15\n", "", 0},
        {"products first",            "bigq u128 '2 + 3 * 4' '20 - 6 / 2'",                   "", "14\n17\n", "", 0},
        {"parentheses",               "bigq u128 '(2 + 3) * 4' '20 - (6 - (2 - 1))'",         "", "20\n15\n", "", 0},
        {"without blanks",            "bigq u128 '2+3*(4-1)'",                                "", "11\n", "", 0},
        {"blanks anywhere",           "bigq u128 ' ( 2\t+ 3 )  ' ",                           "", "5\n", "", 0},
        {"lines",                     "bigq u128", "1 + 1\n2 * 3\r\n7 % 4",                       "2\n6\r\n3", "", 0},
        {"a field",                   "bigq u128 -d , --field 2", "a,1 + 1,b\n",                  "a,2,b\n", "", 0},
        {"a hundred parentheses",     "bigq u128", std::string(100, '(') + "1" + std::string(100, ')') + "\n", "1\n", "", 0},
        {"in hexadecimal",            "bigq u128 --to hex 0 255 18446744073709551616 " LARGEST, "", "0x0\n0xff\n0x10000000000000000\n0xffffffffffffffffffffffffffffffff\n", "", 0},
        {"in hexadecimal, its zeros", "bigq u128 --to h '18446744073709551616 + 10'",         "", "0x1000000000000000a\n", "", 0},
        {"in decimal by name",        "bigq u128 --to hex --to dec 0x10",                     "", "16\n", "", 0},
    });
    // clang-format on
}

TEST(BigqU128, NeverWraps) {
    // clang-format off
    run_cases({
        {"a sum",                     "bigq u128 '" LARGEST " + 1'",                          "", "", "bigq: argument 1: \"" LARGEST " + 1\" is too large: a sum in it does not fit 128 bits\n", 1},
        {"a difference",              "bigq u128 '1 - 2'",                                    "", "", "bigq: argument 1: \"1 - 2\" is negative: a difference in it is below 0\n", 1},
        {"a difference on the way",   "bigq u128 '1 - 2 + 5'",                                "", "", "bigq: argument 1: \"1 - 2 + 5\" is negative: a difference in it is below 0\n", 1},
        {"a product",                 "bigq u128 '18446744073709551616 * 18446744073709551616'", "", "", "bigq: argument 1: \"18446744073709551616 * 18446744073709551616\" is too large: a product in it does not fit 128 bits\n", 1},
        {"a product by a carry",      "bigq u128 '" LARGEST " * 2'",                          "", "", "bigq: argument 1: \"" LARGEST " * 2\" is too large: a product in it does not fit 128 bits\n", 1},
        {"a quotient by 0",           "bigq u128 '1 / (2 - 2)'",                              "", "", "bigq: argument 1: \"1 / (2 - 2)\" has no value: it divides by 0\n", 1},
        {"a remainder by 0",          "bigq u128 '1 % 0'",                                    "", "", "bigq: argument 1: \"1 % 0\" has no value: it divides by 0\n", 1},
        {"a decimal number",          "bigq u128 340282366920938463463374607431768211456",    "", "", "bigq: argument 1: \"340282366920938463463374607431768211456\" " TOO_LARGE_LITERAL, 1},
        {"a hexadecimal number",      "bigq u128 0x100000000000000000000000000000000",        "", "", "bigq: argument 1: \"0x100000000000000000000000000000000\" " TOO_LARGE_LITERAL, 1},
        {"a number among others",     "bigq u128 '1 + 0x100000000000000000000000000000000'",  "", "", "bigq: argument 1: \"1 + 0x100000000000000000000000000000000\" holds \"0x100000000000000000000000000000000\", which " TOO_LARGE_LITERAL, 1},
        {"a negative number",         "bigq u128 -1",                                         "", "", "bigq: argument 1: \"-1\" is negative: expected 0 or more\n", 1},
        {"a negative operand",        "bigq u128 '1 + -2'",                                   "", "", "bigq: argument 1: \"1 + -2\" holds \"-2\", which is negative: expected 0 or more\n", 1},
    });
    // clang-format on
}

TEST(BigqU128, SaysWhyATextIsRefused) {
    // clang-format off
    run_cases({
        {"nothing",                   "bigq u128 ''",        "", "", "bigq: argument 1: \"\"" NO_OPERAND " at its end\n", 1},
        {"an empty line",             "bigq u128", "1\n\n",      "1\n", "bigq: standard input:2: \"\"" NO_OPERAND " at its end\n", 1},
        {"no operand behind",         "bigq u128 '2 +'",     "", "", "bigq: argument 1: \"2 +\"" NO_OPERAND " at its end\n", 1},
        {"no operand between",        "bigq u128 '2 ** 3'",  "", "", "bigq: argument 1: \"2 ** 3\"" NO_OPERAND ", not \"*\"\n", 1},
        {"no operator",               "bigq u128 '1 2'",     "", "", "bigq: argument 1: \"1 2\"" NO_OPERATOR ", not \"2\"\n", 1},
        {"another operator",          "bigq u128 '2^64'",    "", "", "bigq: argument 1: \"2^64\"" NO_OPERATOR ", not \"^\"\n", 1},
        {"a character of two bytes",  "bigq u128 '1 \xC3\xA9'", "", "", "bigq: argument 1: \"1 \xC3\xA9\"" NO_OPERATOR ", not \"\xC3\xA9\"\n", 1},
        {"a byte of no character",    "bigq u128 '1 \xFF'",  "", "", "bigq: argument 1: \"1 \\xFF\"" NO_OPERATOR ", not \"\\xFF\"\n", 1},
        {"open parentheses",          "bigq u128 '(1'",      "", "", "bigq: argument 1: \"(1\"" NO_OPERATOR " or ) at its end\n", 1},
        {"closed ones",               "bigq u128 '1)'",      "", "", "bigq: argument 1: \"1)\"" NO_OPERATOR ", not \")\"\n", 1},
        {"empty ones",                "bigq u128 '()'",      "", "", "bigq: argument 1: \"()\"" NO_OPERAND ", not \")\"\n", 1},
        {"a sign alone",              "bigq u128 '1 - + 2'", "", "", "bigq: argument 1: \"1 - + 2\"" NO_EXPRESSION "a number directly behind its sign, not \" \"\n", 1},
        {"a sign of parentheses",     "bigq u128 -- '-(1)'", "", "", "bigq: argument 1: \"-(1)\"" NO_EXPRESSION "a number directly behind its sign, not \"(\"\n", 1},
        {"a separator",               "bigq u128 1_000",     "", "", "bigq: argument 1: \"1_000\" " NO_NUMBER, 1},
        {"a point",                   "bigq u128 1.5",       "", "", "bigq: argument 1: \"1.5\" " NO_NUMBER, 1},
        {"hexadecimal without 0x",    "bigq u128 '1 + FF'",  "", "", "bigq: argument 1: \"1 + FF\" holds \"FF\", which " NO_NUMBER, 1},
        {"0x alone",                  "bigq u128 0x",        "", "", "bigq: argument 1: \"0x\" " NO_NUMBER, 1},
        {"two signs",                 "bigq u128 --invalid fail '1 ++2' '+-2'", "", "3\n+-2\n", "bigq: argument 2: \"+-2\"" NO_EXPRESSION "a number directly behind its sign, not \"-\"\n", 1},
        {"too many parentheses",      "bigq u128 --invalid warn | wc -c", std::string(101, '(') + "1" + std::string(101, ')') + "\n", "204\n", "bigq: standard input:1: \"" + std::string(100, '(') + "...\"" NO_EXPRESSION "at most 100 open parentheses\n", 0},
        {"very many of them",         "bigq u128 --invalid ignore | wc -c", std::string(10'000'000, '(') + "\n", "10000001\n", "", 0},
        {"a very long number",        "bigq u128 --invalid ignore | wc -c", std::string(10'000'000, '9') + "\n", "10000001\n", "", 0},
        {"each in its place",         "bigq u128 --invalid fail", "1 - 2\n3\nx\n", "1 - 2\n3\nx\n", "bigq: standard input:1: \"1 - 2\" is negative: a difference in it is below 0\nbigq: standard input:3: \"x\" " NO_NUMBER, 1},
    });
    // clang-format on
}

TEST(BigqU128, JsonSaysWhatBecameOfEachText) {
    // clang-format off
    run_cases({
        {"a value",   "bigq u128 --json '15 + 1'", "", R"({"input":"15 + 1","ok":true,"value":"16","hex":"0x10","text":"16"})" "\n", "", 0},
        {"0",         "bigq u128 --json --to hex 0", "", R"({"input":"0","ok":true,"value":"0","hex":"0x0","text":"0x0"})" "\n", "", 0},
        {"a refusal", "bigq u128 --json --invalid ignore '1 / 0'", "", R"({"input":"1 / 0","ok":false,"error":"\"1 / 0\" has no value: it divides by 0"})" "\n", "", 0},
    });
    // clang-format on
}

TEST(BigqU128, AWrongCommandLineReturns2) {
    run_cases({
        {"a radix", "bigq u128 --to oct 1", "", "",
         "bigq: u128: --to: \"oct\" is not a radix: expected dec (d) or hex (h)\n"
         "Try 'bigq u128 --help'.\n",
         2},
    });
    expect_help("bigq u128", {"Usage: bigq u128 [OPTION]... [EXPRESSION]... ", "--to RADIX",
                              "--field", "--invalid", "--json", "never wraps", "Examples"});
}

// ------------------------------------------------------------------------------------------------
// Against the machine's own integer
// ------------------------------------------------------------------------------------------------

__extension__ using WIDE = unsigned __int128;

std::string digits_of(WIDE value) {
    std::string digits;
    do {
        digits.insert(digits.begin(), static_cast<char>('0' + static_cast<int>(value % 10)));
        value /= 10;
    } while (value != 0);
    return digits;
}

/// The result of an operator; an empty text when there is none in 128 bits.
std::string result_of(WIDE a, char op, WIDE b) {
    WIDE result = 0;
    bool fails = false;
    switch (op) {
    case '+': fails = __builtin_add_overflow(a, b, &result); break;
    case '-': fails = __builtin_sub_overflow(a, b, &result); break;
    case '*': fails = __builtin_mul_overflow(a, b, &result); break;
    case '/':
        fails = b == 0;
        result = fails ? 0 : a / b;
        break;
    default:
        fails = b == 0;
        result = fails ? 0 : a % b;
        break;
    }
    return fails ? "" : digits_of(result);
}

TEST(BigqU128, AgreesWithTheMachineOnRandomOperands) {
    constexpr unsigned SEED = 20260521;
    SCOPED_TRACE("seed " + std::to_string(SEED));
    std::mt19937_64 random(SEED);
    auto const operand = [&random]() -> WIDE {
        WIDE const bits = static_cast<WIDE>(random()) << 64 | random();
        return random() % 16 == 0 ? ~static_cast<WIDE>(0) >> random() % 128 // all ones
                                  : bits >> random() % 128;
    };
    std::string input;
    std::string expected;
    int failures = 0;
    for (int i = 0; i < 20000; ++i) {
        WIDE const a = operand();
        WIDE const b = random() % 32 == 0 ? 0 : operand();
        char const op = "+-*/%"[random() % 5];
        std::string const line = digits_of(a) + ' ' + op + ' ' + digits_of(b);
        std::string const result = result_of(a, op, b);
        failures += result.empty();
        input += line + '\n';
        expected += (result.empty() ? line : result) + '\n';
    }
    RUN const run = run_shell("bigq u128 --invalid ignore", input);
    EXPECT_TRUE(run.out == expected);
    EXPECT_EQ(run.err, "");
    EXPECT_GT(failures, 3000);
    EXPECT_LT(failures, 15000);
    // What was written in hexadecimal is read again.
    RUN const there =
        run_shell("bigq u128 --invalid ignore --to hex | grep -v ' ' | bigq u128", input);
    RUN const direct = run_shell("bigq u128 --invalid ignore | grep -v ' '", input);
    EXPECT_TRUE(there.out == direct.out);
    EXPECT_FALSE(there.out.empty());
}

} // namespace
