#include "u128_command.h"

#include "command_line.h"
#include "expression.h"
#include "filter.h"
#include "number_text.h"
#include "text.h"

#include "big_sys.h"
#include "err_sys.h"

namespace {

/// What the library's internal error about a result means.
char const* problem_of(char op) {
    switch (op) {
    case '+': return "is too large: a sum in it does not fit 128 bits";
    case '-': return "is negative: a difference in it is below 0";
    case '*': return "is too large: a product in it does not fit 128 bits";
    default: return "has no value: it divides by 0";
    }
}

/// Arithmetic as the library does it, which reports what does not fit.
struct U128_ARITHMETIC {
    using VALUE = BIG_ULONG128;
    static constexpr char const* OPERATORS = "+ - * / %";

    static bool read(std::string_view text, BIG_ULONG128& value, std::string& problem) {
        if (text[0] == '-') {
            problem = "is negative: expected 0 or more";
            return false;
        }
        return read_u128(text.substr(text[0] == '+'), value, problem);
    }

    static BIG_ULONG128 result(char op, BIG_ULONG128 const& a, BIG_ULONG128 const& b) {
        try {
            switch (op) {
            case '+': return a + b;
            case '-': return a - b;
            case '*': return a * b;
            case '/': return a / b;
            default: return a % b;
            }
        } catch (ERR_INTERNAL_ERROR const&) {
            throw EXPRESSION_ERROR(problem_of(op));
        }
    }
};

class U128_CONVERSION : public CONVERSION {
public:
    explicit U128_CONVERSION(bool is_hexadecimal) : m_is_hexadecimal(is_hexadecimal) {}

    OUTCOME convert(std::string const& text, std::string& result, std::string& problem) override;
    void add_members(JSON_OBJECT& object) const override;

private:
    bool const m_is_hexadecimal;
    BIG_ULONG128 m_value; ///< of the text at hand
};

OUTCOME U128_CONVERSION::convert(std::string const& text, std::string& result,
                                 std::string& problem) {
    try {
        m_value = EXPRESSION<U128_ARITHMETIC>(text).value();
    } catch (EXPRESSION_ERROR const& error) {
        problem = error.what();
        return OUTCOME::REFUSED;
    }
    result = m_is_hexadecimal ? hexadecimal_text(m_value) : decimal_text(m_value);
    return OUTCOME::CONVERTED;
}

void U128_CONVERSION::add_members(JSON_OBJECT& object) const {
    object.add("value", decimal_text(m_value));
    object.add("hex", hexadecimal_text(m_value));
}

bool is_hexadecimal_named(std::string const& name) {
    if (name == "hex" || name == "h") {
        return true;
    }
    if (name == "dec" || name == "d") {
        return false;
    }
    throw USAGE_ERROR("--to: " + in_quotes(name) + " is not a radix: expected dec (d) or hex (h)");
}

char const* const DESCRIPTION =
    "Compute with whole numbers from 0 to 2^128 - 1; what does not fit is an error, and never "
    "wraps.\n"
    "\n"
    "An EXPRESSION has numbers, the operators + - * / (rounded down) and % (the remainder), and "
    "parentheses. A number is decimal, or hexadecimal behind 0x. Without an EXPRESSION the lines "
    "of standard input are computed.";

char const* const EXAMPLES = "Examples:\n"
                             "  $ bigq u128 '18446744073709551615 * 18446744073709551615'\n"
                             "  340282366920938463426481119284349108225\n"
                             "  $ bigq u128 --to hex 255 '0xFF * 0x10 + 1'\n"
                             "  0xff\n"
                             "  0xff1\n"
                             "  $ bigq u128 '(7 + 5) / 5' '12 % 5'\n"
                             "  2\n"
                             "  2\n"
                             "  $ printf 'a,3 - 2\\nb,2 - 3\\n' | bigq u128 -d, --field 2\n"
                             "  a,1\n"
                             "  bigq: standard input:2: \"2 - 3\" is negative: a difference in it "
                             "is below 0\n";

} // namespace

EXIT_STATUS run_u128(std::vector<std::string> const& arguments) {
    bool is_hexadecimal = false;
    FILTER_OPTIONS filter_options;
    COMMAND_LINE line("u128", "[EXPRESSION]...", DESCRIPTION,
                      FILTER_HELP + ('\n' + std::string(EXAMPLES)));
    line.add_text(
        "--to", "RADIX",
        [&is_hexadecimal](std::string const& name) { is_hexadecimal = is_hexadecimal_named(name); },
        "Print in dec (d, the default) or hex (h)");
    add_filter_options(line, filter_options);
    std::vector<std::string> const texts = line.read(arguments);
    U128_CONVERSION conversion(is_hexadecimal);
    return run_filter(filter_options, texts, conversion);
}
