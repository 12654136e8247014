// The tool: what `bigq radix` prints, says and returns. What every filter does alike is tested with
// `bigq time`.

#include "command_cases.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

#define LOGIC_VALUES "X, Z, U, W, -, H or L"
#define HEX_DIGITS "expected 0 to 9, A to F or " LOGIC_VALUES "\n"
#define NO_HEX " is not a hexadecimal number: "
#define NO_FIX " is not a fixed-point number: expected a decimal number such as 0.75 or -1.5E-1\n"
#define NO_PREFIX "expected no prefix 0x (the logic value, behind a 0, is a capital X)\n"
#define CUT " its high bits are cut off, which leaves "
#define ALL_RADIXES                                                                                \
    "bin (b), oct (o), hex (h), dec (d), sdec, udec, fix or ascii, in any letter case"

// ------------------------------------------------------------------------------------------------
// Conversion
// ------------------------------------------------------------------------------------------------

TEST(BigqRadix, ConvertsBetweenRadixes) {
    // clang-format off
    run_cases({
        // why                        command                                                 input  out  err  status
        {"values",                    "bigq radix --from hex --to udec 1F ff",                "", "31\n255\n", "", 0},
        {"lines",                     "bigq radix --from hex --to udec",          "1F\nff\r\n0",  "31\n255\r\n0", "", 0},
        {"no lines",                  "bigq radix --from hex --to udec",                      "", "", "", 0},
        {"a field",                   "bigq radix --from b --to h --field 2 -d ,", "a,11111,b\n", "a,1F,b\n", "", 0},
        {"a field among blanks",      "bigq radix --from b --to h --field 2",    " a  11111 b\n", " a  1F b\n", "", 0},
        {"to binary",                 "bigq radix --from hex --to bin 1f",                    "", "11111\n", "", 0},
        {"to octal",                  "bigq radix --from bin --to oct 101111",                "", "57\n", "", 0},
        {"from octal",                "bigq radix --from oct --to bin 57",                    "", "101111\n", "", 0},
        {"from unsigned decimal",     "bigq radix --from udec --to hex 18446744073709551616", "", "10000000000000000\n", "", 0},
        {"from signed decimal",       "bigq radix --from sdec --to bin --width 8 -- -128 -0 5", "", "10000000\n00000000\n00000101\n", "", 0},
        {"to signed decimal",         "bigq radix --from hex --to sdec --width 8 FF 7F 80",   "", "-1\n127\n-128\n", "", 0},
        {"from fixed point",          "bigq radix --from fix --to bin --width 4 0.5 -.5 5e-1 -1", "", "0100\n1100\n0100\n1000\n", "", 0},
        {"to fixed point",            "bigq radix --from hex --to fix --width 8 60 C0 x",     "", "0.75\n-0.5\nX\n", "", 0},
        {"from ASCII",                "bigq radix --from ascii --to hex A '[65]' '\\[' '[ ]'", "", "41\n41\n5B\n20\n", "", 0},
        {"to ASCII",                  "bigq radix --from hex --to ascii 41 5B 20 0A",         "", "A\n\\[\n[ ]\n[10]\n", "", 0},
        {"whole lines of ASCII",      "bigq radix --from ascii --to hex", " A b \n",              "2041206220\n", "", 0},
    });
    // clang-format on
}

TEST(BigqRadix, FitsValuesToAWidth) {
    // clang-format off
    run_cases({
        {"natural by default",        "bigq radix --from hex --to bin 001F",                  "", "11111\n", "", 0},
        {"natural by number",         "bigq radix --from hex --to bin --width 0 001F",        "", "11111\n", "", 0},
        {"zeros in front",            "bigq radix --from hex --to bin --width 8 1F",          "", "00011111\n", "", 0},
        {"the sign in front",         "bigq radix --from sdec --to hex --width 16 -1",        "", "FFFF\n", "", 0},
        {"an unknown digit in front", "bigq radix --from hex --to hex --width 16 Z x1",       "", "ZZZZ\nXXX1\n", "", 0},
        {"one bit",                   "bigq radix --from bin --to bin --width 1 0 1",         "", "0\n1\n", "", 0},
        {"zeros are no loss",         "bigq radix --from hex --to hex --width 4 00001",       "", "1\n", "", 0},
        {"the last of two counts",    "bigq radix --from hex --to bin --width 4 --width 8 1", "", "00000001\n", "", 0},
    });
    // clang-format on
    RUN const widest = run_shell("bigq radix --from bin --to bin --width 16777216 1 | wc -c");
    EXPECT_EQ(std::stoul(widest.out), 16777217u);
}

TEST(BigqRadix, NamesOfRadixes) {
    // clang-format off
    run_cases({
        {"letters",                   "bigq radix --from h --to b F",                         "", "1111\n", "", 0},
        {"more letters",              "bigq radix --from o --to d 17",                        "", "15\n", "", 0},
        {"capitals",                  "bigq radix --from HEX --to Bin F",                     "", "1111\n", "", 0},
        {"dec is unsigned",           "bigq radix --from hex --to dec --width 8 FF",          "", "255\n", "", 0},
        {"so is d",                   "bigq radix --from hex --to D --width 8 FF",            "", "255\n", "", 0},
        {"dec, signed",               "bigq radix --from hex --to dec --width 8 --signed FF", "", "-1\n", "", 0},
        {"signed in front, too",      "bigq radix --signed --from d --to h --width 8 -1",     "", "FF\n", "", 0},
        {"udec stays unsigned",       "bigq radix --signed --from d --to udec --width 8 -1",  "", "255\n", "", 0},
    });
    // clang-format on
}

TEST(BigqRadix, LogicValues) {
    // clang-format off
    run_cases({
        {"stand for all their bits",  "bigq radix --from hex --to bin 1z 1u",                 "", "1ZZZZ\n1UUUU\n", "", 0},
        {"one value in a digit",      "bigq radix --from bin --to hex 1111ZZZZ",              "", "FZ\n", "", 0},
        {"several in a digit",        "bigq radix --from bin --to hex 1ZZ0",                  "", "X\n", "", 0},
        {"in decimal",                "bigq radix --from hex --to udec 1X 1Z",                "", "X\nZ\n", "", 0},
        {"a decimal one",             "bigq radix --from udec --to hex --width 8 1X Z 1H",    "", "XX\nZZ\n0B\n", "", 0},
        {"a - is one",                "bigq radix --from bin --to bin -- -1 1-",              "", "-1\n1-\n", "", 0},
        {"behind a 0, as written",    "bigq radix --from hex --to hex --width 12 0X1",        "", "0X1\n", "", 0},
        {"behind a 0, in binary",     "bigq radix --from bin --to bin --width 3 0x1",         "", "0X1\n", "", 0},
    });
    // clang-format on
}

// ------------------------------------------------------------------------------------------------
// What is refused or lost
// ------------------------------------------------------------------------------------------------

TEST(BigqRadix, ReportsBitsThatAreCutOff) {
    std::string const cut = "bigq: argument 1: \"300\" does not fit 8 bits:" CUT "\"2C\"\n";
    // clang-format off
    run_cases({
        {"with what is left",         "bigq radix --from udec --to hex --width 8 300",         "", "2C\n", cut, 0},
        {"one bit",                   "bigq radix --from hex --to bin --width 1 2",            "", "0\n", "bigq: argument 1: \"2\" does not fit 1 bit:" CUT "\"0\"\n", 0},
        {"of a signed value",         "bigq radix --from sdec --to sdec --width 8 128",        "", "-128\n", "bigq: argument 1: \"128\" does not fit 8 bits:" CUT "\"-128\"\n", 0},
        {"of a text",                 "bigq radix --from ascii --to ascii --width 8 AB",       "", "B\n", "bigq: argument 1: \"AB\" does not fit 8 bits:" CUT "\"B\"\n", 0},
        {"on its line",               "bigq radix --from h --to h --width 4", "1\n12\n3\n",        "1\n2\n3\n", "bigq: standard input:2: \"12\" does not fit 4 bits:" CUT "\"2\"\n", 0},
        {"--strict refuses",          "bigq radix --strict --from udec --to hex --width 8 300 1", "", "", cut, 1},
        {"--strict passes on",        "bigq radix --strict --invalid fail --from udec --to hex --width 8 300 1", "", "300\n01\n", cut, 1},
        {"a fraction",                "bigq radix --from fix --to hex --width 8 0.1",          "", "0C\n", "bigq: argument 1: \"0.1\" loses digits: its fraction is cut to 7 bits, which leaves \"0C\"\n", 0},
        {"a fraction, two bits",      "bigq radix --from fix --to bin --width 2 0.25",         "", "00\n", "bigq: argument 1: \"0.25\" loses digits: its fraction is cut to 1 bit, which leaves \"00\"\n", 0},
        {"a very small one",          "bigq radix --from fix --to hex --width 8 1E-999",       "", "00\n", "bigq: argument 1: \"1E-999\" loses digits: its fraction is cut to 7 bits, which leaves \"00\"\n", 0},
        {"nothing of nothing",        "bigq radix --from fix --to hex --width 8 0E-999",       "", "00\n", "", 0},
        {"a fixed-point 1",           "bigq radix --from fix --to hex --width 8 1",            "", "80\n", "bigq: argument 1: \"1\" does not fit 8 bits:" CUT "\"80\"\n", 0},
    });
    // clang-format on
}

TEST(BigqRadix, SaysWhyAValueIsRefused) {
    // clang-format off
    run_cases({
        {"no binary digit",           "bigq radix --from bin --to hex 102",     "", "", "bigq: argument 1: \"102\" is not a binary number: \"2\" is none of its digits: expected 0, 1 or " LOGIC_VALUES "\n", 1},
        {"no octal digit",            "bigq radix --from oct --to hex 8",       "", "", "bigq: argument 1: \"8\" is not an octal number: \"8\" is none of its digits: expected 0 to 7 or " LOGIC_VALUES "\n", 1},
        {"no hexadecimal digit",      "bigq radix --from hex --to bin 1G",      "", "", "bigq: argument 1: \"1G\"" NO_HEX "\"G\" is none of its digits: " HEX_DIGITS, 1},
        {"no unsigned digit",         "bigq radix --from udec --to hex 12A",    "", "", "bigq: argument 1: \"12A\" is not an unsigned decimal number: \"A\" is none of its digits: expected 0 to 9 or " LOGIC_VALUES "\n", 1},
        {"no signed digit",           "bigq radix --from sdec --to hex -1.5",   "", "", "bigq: argument 1: \"-1.5\" is not a signed decimal number: \".\" is none of its digits: expected - and 0 to 9 or " LOGIC_VALUES "\n", 1},
        {"nothing",                   "bigq radix --from hex --to bin", "1\n\n",     "1\n", "bigq: standard input:2: \"\"" NO_HEX HEX_DIGITS, 1},
        {"nothing, in ASCII",         "bigq radix --from ascii --to bin ''",    "", "", "bigq: argument 1: \"\" is not an ASCII text: expected printable characters, and [10] for the byte 10\n", 1},
        {"a blank",                   "bigq radix --from hex --to bin '1 '",    "", "", "bigq: argument 1: \"1 \"" NO_HEX "\" \" is none of its digits: " HEX_DIGITS, 1},
        {"an underscore",             "bigq radix --from hex --to bin 1_0",     "", "", "bigq: argument 1: \"1_0\"" NO_HEX "\"_\" is none of its digits: " HEX_DIGITS, 1},
        {"a base",                    "bigq radix --from hex --to bin \"8'hFF\"", "", "", "bigq: argument 1: \"8'hFF\"" NO_HEX "\"'\" is none of its digits: " HEX_DIGITS, 1},
        {"a character of two bytes",  "bigq radix --from hex --to bin 1\xC3\xA9", "", "", "bigq: argument 1: \"1\xC3\xA9\"" NO_HEX "\"\xC3\xA9\" is none of its digits: " HEX_DIGITS, 1},
        {"a prefix",                  "bigq radix --from hex --to bin 0x1F",    "", "", "bigq: argument 1: \"0x1F\"" NO_HEX NO_PREFIX, 1},
        {"a prefix, unsigned",        "bigq radix --from udec --to bin 0x10",   "", "", "bigq: argument 1: \"0x10\" is not an unsigned decimal number: " NO_PREFIX, 1},
        {"a prefix, negative",        "bigq radix --from sdec --to bin -0x10",  "", "", "bigq: argument 1: \"-0x10\" is not a signed decimal number: " NO_PREFIX, 1},
        {"a binary prefix",           "bigq radix --from bin --to hex 0b1",     "", "", "bigq: argument 1: \"0b1\" is not a binary number: \"b\" is none of its digits: expected 0, 1 or " LOGIC_VALUES "\n", 1},
        {"a negative value",          "bigq radix --from dec --to hex -5",      "", "", "bigq: argument 1: \"-5\" is negative: expected 0 or more, or a signed decimal number (--from sdec)\n", 1},
        {"a NUL",                     "bigq radix --from ascii --to hex --json --invalid ignore | grep -c '\"ok\":false'", std::string("a\0b\n", 4), "1\n", "", 0},
    });
    // clang-format on
}

TEST(BigqRadix, SaysWhyAFixedPointNumberOrATextIsRefused) {
    // clang-format off
    run_cases({
        {"letters",                   "bigq radix --from fix --to hex --width 8 abc",   "", "", "bigq: argument 1: \"abc\"" NO_FIX, 1},
        {"behind a number",           "bigq radix --from fix --to hex --width 8 0.5.5", "", "", "bigq: argument 1: \"0.5.5\"" NO_FIX, 1},
        {"in front of one",           "bigq radix --from fix --to hex --width 8 ' 0.5'", "", "", "bigq: argument 1: \" 0.5\"" NO_FIX, 1},
        {"hexadecimal",               "bigq radix --from fix --to hex --width 8 0x1",   "", "", "bigq: argument 1: \"0x1\"" NO_FIX, 1},
        {"infinity",                  "bigq radix --from fix --to hex --width 8 inf",   "", "", "bigq: argument 1: \"inf\"" NO_FIX, 1},
        {"nothing",                   "bigq radix --from fix --to hex --width 8 ''",    "", "", "bigq: argument 1: \"\"" NO_FIX, 1},
        {"too large",                 "bigq radix --from fix --to hex --width 8 1E17",  "", "", "bigq: argument 1: \"1E17\" is too large: at 8 bits a magnitude below 2 to the power of 56 is expected\n", 1},
        {"no double",                 "bigq radix --from fix --to hex --width 8 1E999", "", "", "bigq: argument 1: \"1E999\" is too large: at 8 bits a magnitude below 2 to the power of 56 is expected\n", 1},
        {"too wide",                  "bigq radix --from fix --to hex --width 128 .5",  "", "", "bigq: argument 1: \".5\" is too large: at 128 bits a magnitude below 2 to the power of -64 is expected\n", 1},
        {"not printable",             "bigq radix --from ascii --to hex", "a\tb\n",         "", "bigq: standard input:1: \"a\\x09b\" is not an ASCII text: \"\\x09\" is not printable: expected printable characters, and [10] for the byte 10\n", 1},
        {"an escape",                 "bigq radix --from ascii --to hex 'a\\n'",        "", "", "bigq: argument 1: \"a\\\\n\" is not an ASCII text: expected [, \\ or ] behind a backslash\n", 1},
        {"a code too large",          "bigq radix --from ascii --to hex '[256]'",       "", "", "bigq: argument 1: \"[256]\" is not an ASCII text: the code \"256\" is too large: expected at most 255\n", 1},
        {"no code",                   "bigq radix --from ascii --to hex '[x]'",         "", "", "bigq: argument 1: \"[x]\" is not an ASCII text: \"x\" is not a code: expected a decimal number from 0 to 255\n", 1},
        {"an empty code",             "bigq radix --from ascii --to hex '[]'",          "", "", "bigq: argument 1: \"[]\" is not an ASCII text: [] holds no code: expected a decimal number from 0 to 255\n", 1},
        {"an open bracket",           "bigq radix --from ascii --to hex 'a['",          "", "", "bigq: argument 1: \"a[\" is not an ASCII text: [ has no ] behind it: write \\[ for the character\n", 1},
        {"a closing bracket",         "bigq radix --from ascii --to hex 'a]'",          "", "", "bigq: argument 1: \"a]\" is not an ASCII text: ] has no [ in front of it: write \\] for the character\n", 1},
    });
    // clang-format on
}

TEST(BigqRadix, EachModeTreatsARefusedLineInItsWay) {
    std::string const input = "1\nG\n2\n";
    std::string const message =
        "bigq: standard input:2: \"G\"" NO_HEX "\"G\" is none of its digits: " HEX_DIGITS;
    // clang-format off
    run_cases({
        {"abort is the default", "bigq radix --from h --to b",                  input, "1\n", message, 1},
        {"fail",                 "bigq radix --from h --to b --invalid fail",   input, "1\nG\n10\n", message, 1},
        {"warn",                 "bigq radix --from h --to b --invalid warn",   input, "1\nG\n10\n", message, 0},
        {"ignore",               "bigq radix --from h --to b --invalid ignore", input, "1\nG\n10\n", "", 0},
    });
    // clang-format on
}

// ------------------------------------------------------------------------------------------------
// Legality and JSON
// ------------------------------------------------------------------------------------------------

TEST(BigqRadix, SaysWhichValuesAreLegal) {
    std::string const nothing =
        "bigq: argument 2: \"\" is neither legal nor illegal: expected at least one character\n";
    // clang-format off
    run_cases({
        {"all of them",               "bigq radix --check hex 1F ff",           "", "1F legal\nff legal\n", "", 0},
        {"some",                      "bigq radix --check hex 1G 1F",           "", "1G illegal\n1F legal\n", "", 1},
        {"the last one",              "bigq radix --check h 1F 1G",             "", "1F legal\n1G illegal\n", "", 1},
        {"logic values are not",      "bigq radix --check bin 10X1",            "", "10X1 illegal\n", "", 1},
        {"octal",                     "bigq radix --check oct 7 8",             "", "7 legal\n8 illegal\n", "", 1},
        {"a sign",                    "bigq radix --check dec -12",             "", "-12 illegal\n", "", 1},
        {"a sign, signed",            "bigq radix --check dec --signed -12 12-", "", "-12 legal\n12- legal\n", "", 0},
        {"fixed point",               "bigq radix --check fix 1.5e3 ..E",       "", "1.5e3 legal\n..E legal\n", "", 0},
        {"ASCII",                     "bigq radix --check ascii", "a b~\na\tb\n",   "a b~ legal\na\tb illegal\n", "", 1},
        {"a field",                   "bigq radix --check hex --field 2 -d ,", "a,1F,b\n", "a,1F legal,b\n", "", 0},
        {"nothing is refused",        "bigq radix --check hex 1 '' 2",          "", "1 legal\n", nothing, 1},
        {"as the mode says",          "bigq radix --check hex --invalid warn 1 '' 2", "", "1 legal\n\n2 legal\n", nothing, 0},
        {"the mode is no answer",     "bigq radix --check hex --invalid warn G", "", "G illegal\n", "", 1},
        {"JSON",                      "bigq radix --check d --json 1 A", "",
         R"({"input":"1","ok":true,"radix":"udec","legal":true,"text":"1 legal"})" "\n"
         R"({"input":"A","ok":true,"radix":"udec","legal":false,"text":"A illegal"})" "\n", "", 1},
    });
    // clang-format on
}

TEST(BigqRadix, JsonSaysWhatBecameOfEachValue) {
    // clang-format off
    run_cases({
        {"converted",                 "bigq radix --json --signed --from h --to d --width 8 FF", "",
         R"({"input":"FF","ok":true,"from":"hex","to":"sdec","width":"8","text":"-1"})" "\n", "", 0},
        {"cut off",                   "bigq radix --json --from udec --to hex --width 8 300", "",
         R"({"input":"300","ok":true,"from":"udec","to":"hex","width":"8","text":"2C","warning":"\"300\" does not fit 8 bits:)" CUT R"(\"2C\""})" "\n",
         "bigq: argument 1: \"300\" does not fit 8 bits:" CUT "\"2C\"\n", 0},
        {"refused",                   "bigq radix --json --from dec --to hex --invalid ignore -- -5", "",
         R"json({"input":"-5","ok":false,"error":"\"-5\" is negative: expected 0 or more, or a signed decimal number (--from sdec)"})json" "\n", "", 0},
    });
    // clang-format on
}

// ------------------------------------------------------------------------------------------------
// The command line
// ------------------------------------------------------------------------------------------------

TEST(BigqRadix, AWrongCommandLineReturns2AndDoesNothing) {
    std::string const hint = "\nTry 'bigq radix --help'.\n";
    // clang-format off
    run_cases({
        {"no radixes",                "bigq radix",                             "1\n", "", "bigq: radix: --from: expected a radix: " ALL_RADIXES + hint, 2},
        {"no target",                 "bigq radix --from hex",                  "1\n", "", "bigq: radix: --to: expected a radix: " ALL_RADIXES + hint, 2},
        {"no source",                 "bigq radix --to hex",                    "1\n", "", "bigq: radix: --from: expected a radix: " ALL_RADIXES + hint, 2},
        {"no such radix",             "bigq radix --from roman --to hex",       "1\n", "", "bigq: radix: --from: \"roman\" is not a radix: expected " ALL_RADIXES + hint, 2},
        {"an empty one",              "bigq radix --check ''",                  "1\n", "", "bigq: radix: --check: \"\" is not a radix: expected " ALL_RADIXES + hint, 2},
        {"no width",                  "bigq radix --from h --to b --width x",   "1\n", "", "bigq: radix: --width: \"x\" is not a whole number from 0 to 16777216" + hint, 2},
        {"too much of it",            "bigq radix --from h --to b --width 16777217", "1\n", "", "bigq: radix: --width: \"16777217\" is not a whole number from 0 to 16777216" + hint, 2},
        {"fixed point of no width",   "bigq radix --from fix --to b",           "1\n", "", "bigq: radix: --width: fix needs a width from 1 to 1024" + hint, 2},
        {"fixed point too wide",      "bigq radix --from b --to fix --width 1025", "1\n", "", "bigq: radix: --width: fix needs a width from 1 to 1024" + hint, 2},
        {"no place for a sign",       "bigq radix --from hex --to sdec",        "5\n", "", "bigq: radix: --width: from hex to sdec it is needed: the highest bit is the sign" + hint, 2},
        {"nothing is signed",         "bigq radix --signed --from hex --to udec", "5\n", "", "bigq: radix: --signed: it says what dec is: expected dec (d) as a radix" + hint, 2},
        {"two jobs",                  "bigq radix --check hex --from bin",      "1\n", "", "bigq: radix: --from excludes --check" + hint, 2},
        {"a width to check",          "bigq radix --check hex --width 8",       "1\n", "", "bigq: radix: --width excludes --check" + hint, 2},
    });
    // clang-format on
    EXPECT_EQ(run_shell("bigq radix --from sdec --to sdec -- -5").out, "-5\n")
        << "a signed value has its sign";
    EXPECT_EQ(run_shell("bigq radix --from ascii --to sdec A").out, "65\n") << "a byte has 8 bits";
}

TEST(BigqRadix, HelpNamesEveryOptionAndFitsATerminal) {
    expect_help("bigq radix", {"Usage: bigq radix [OPTION]... [VALUE]... ", "--from RADIX",
                               "--to RADIX", "--width N", "--signed", "--check RADIX", "--field",
                               "--invalid", "--strict", "--json", "Examples"});
}

} // namespace
