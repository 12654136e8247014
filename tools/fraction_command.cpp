#include "fraction_command.h"

#include "command_line.h"
#include "expression.h"
#include "filter.h"

#include "big_fraction_sys.h"

#include <charconv>
#include <climits>
#include <cmath>

namespace {

/// The shortest text that reads as a double.
std::string text_of(double value) {
    char text[32];
    return {text, std::to_chars(text, text + sizeof text, value).ptr};
}

/// The digits of a number without its sign.
std::string magnitude_text(long long value) {
    auto const bits = static_cast<unsigned long long>(value);
    return big_ulong64_to_string(value < 0 ? 0 - bits : bits);
}

// Every number that has an exact form is in lowest terms here, and its double is the quotient of
// its integers. Then a product and a quotient have an exact form whenever one exists.

BIG_FRACTION reduced(BIG_FRACTION const& a) {
    if (!a.is_fractional()) {
        return a;
    }
    bool const is_zero = a.get_numerator() == 0; // 0/-1 is a double of -0 otherwise
    return is_zero ? BIG_FRACTION() : BIG_FRACTION(a.get_numerator(), a.get_denominator());
}

/// The library adds a numerator of -2^63, which has no negative, to the exact form where it should
/// subtract it. Its denominator, which is odd, has one.
BIG_FRACTION difference(BIG_FRACTION a, BIG_FRACTION const& b) {
    if (b.is_fractional() && b.get_numerator() == LLONG_MIN) {
        return a += BIG_FRACTION(LLONG_MIN, -b.get_denominator());
    }
    return a -= b;
}

/// (n / d) / (m / e) is (n / m) / (d / e), of which each part is reduced before the quotient.
BIG_FRACTION quotient(BIG_FRACTION const& a, BIG_FRACTION const& b) {
    if (!a.is_fractional() || !b.is_fractional()) {
        return a / b;
    }
    return BIG_FRACTION(a.get_numerator(), b.get_numerator())
           / BIG_FRACTION(a.get_denominator(), b.get_denominator());
}

/// The library has no product, but a product is a quotient.
BIG_FRACTION product(BIG_FRACTION const& a, BIG_FRACTION const& b) {
    bool const is_zero = a.is_fractional() && b.get_value() == 0.0 && b.is_fractional();
    return is_zero ? BIG_FRACTION() : quotient(a, BIG_FRACTION(1, 1) / b);
}

struct FRACTION_ARITHMETIC {
    using VALUE = BIG_FRACTION;
    static constexpr char const* OPERATORS = "+ - * /";

    static bool read(std::string_view text, BIG_FRACTION& value, std::string& problem);
    static BIG_FRACTION result(char op, BIG_FRACTION const& a, BIG_FRACTION const& b);
};

/// Reads a decimal number exactly: as an integer over a power of ten.
bool FRACTION_ARITHMETIC::read(std::string_view text, BIG_FRACTION& value, std::string& problem) {
    std::string digits(text.substr(text[0] == '+'));
    std::size_t places = 0;
    std::size_t const point = digits.find('.');
    if (point != std::string::npos) {
        digits.erase(digits.find_last_not_of('0') + 1); // zeros behind the point
        places = digits.size() - point - 1;
        digits.erase(point, 1);
    }
    std::size_t const sign = digits[0] == '-';
    if (digits.size() == sign
        || digits.find_first_not_of("0123456789", sign) != std::string::npos) {
        problem = "is not a number: expected decimal digits with at most one point";
        return false;
    }
    long long numerator = 0;
    auto const status = std::from_chars(digits.data(), digits.data() + digits.size(), numerator).ec;
    if (status != std::errc() || places >= BIG_TIME::MAX_DIGITS_IN_SMALLEST_TIME_UNIT) {
        problem = "has too many digits: expected a numerator and a denominator of 64 bits";
        return false;
    }
    value = BIG_FRACTION(numerator, BIG_TIME::get_power_table(places));
    return true;
}

BIG_FRACTION FRACTION_ARITHMETIC::result(char op, BIG_FRACTION const& a, BIG_FRACTION const& b) {
    switch (op) {
    case '+': return reduced(BIG_FRACTION(a) += b);
    case '-': return reduced(difference(a, b));
    case '*': return reduced(product(a, b));
    case '/':
        if (b.get_value() == 0.0) {
            throw EXPRESSION_ERROR("has no value: it divides by 0");
        }
        return reduced(quotient(a, b));
    default: throw EXPRESSION_ERROR("has no value: fractions have no remainder (%)");
    }
}

class FRACTION_CONVERSION : public CONVERSION {
public:
    explicit FRACTION_CONVERSION(bool prints_double) : m_prints_double(prints_double) {}

    OUTCOME convert(std::string const& text, std::string& result, std::string& problem) override;
    void add_members(JSON_OBJECT& object) const override;

private:
    std::string numerator() const;
    std::string denominator() const;

    bool const m_prints_double;
    BIG_FRACTION m_value; ///< of the text at hand
};

OUTCOME FRACTION_CONVERSION::convert(std::string const& text, std::string& result,
                                     std::string& problem) {
    try {
        m_value = EXPRESSION<FRACTION_ARITHMETIC>(text).value();
    } catch (EXPRESSION_ERROR const& error) {
        problem = error.what();
        return OUTCOME::REFUSED;
    }
    if (!std::isfinite(m_value.get_value())) {
        problem = "is too large: expected a number that fits a double";
        return OUTCOME::REFUSED;
    }
    std::string const approximation = text_of(m_value.get_value());
    if (!m_value.is_fractional()) {
        result = approximation;
        problem = "loses its exact form: a numerator or denominator in it does not fit 64 bits, "
                  "which leaves about "
                  + result;
        return OUTCOME::LOST_DIGITS;
    }
    result = m_prints_double        ? approximation
             : denominator() == "1" ? numerator()
                                    : numerator() + '/' + denominator();
    return OUTCOME::CONVERTED;
}

/// The numerator, with the sign of the fraction.
std::string FRACTION_CONVERSION::numerator() const {
    long long const numerator = m_value.get_numerator();
    bool const is_negative = (numerator < 0) != (m_value.get_denominator() < 0);
    std::string const magnitude = magnitude_text(numerator);
    return is_negative ? '-' + magnitude : magnitude;
}

std::string FRACTION_CONVERSION::denominator() const {
    return magnitude_text(m_value.get_denominator());
}

void FRACTION_CONVERSION::add_members(JSON_OBJECT& object) const {
    if (m_value.is_fractional()) {
        object.add("numerator", numerator());
        object.add("denominator", denominator());
    }
    object.add("double", text_of(m_value.get_value()));
}

char const* const DESCRIPTION =
    "Compute with fractions, exactly as long as numerator and denominator fit 64 bits.\n"
    "\n"
    "An EXPRESSION has numbers, the operators + - * / and parentheses. A number is decimal, with "
    "at most one point; 1/3 is a quotient. Without an EXPRESSION the lines of standard input are "
    "computed. Results are in lowest terms.";

char const* const EXAMPLES = "What does not fit 64 bits goes on as a double, and is reported.\n"
                             "\n"
                             "Examples:\n"
                             "  $ bigq fraction '1/3 + 1/6' 0.25 '6/-4'\n"
                             "  1/2\n"
                             "  1/4\n"
                             "  -3/2\n"
                             "  $ bigq fraction --double '1/3 + 1/6'\n"
                             "  0.5\n"
                             "  $ bigq fraction '0.1 + 0.2 - 0.3' '2/3 * (1 - 1/4)'\n"
                             "  0\n"
                             "  1/2\n"
                             "  $ printf 'a,1/3 - 1/4\\n' | bigq fraction -d, --field 2\n"
                             "  a,1/12\n";

} // namespace

EXIT_STATUS run_fraction(std::vector<std::string> const& arguments) {
    bool prints_double = false;
    FILTER_OPTIONS filter_options;
    COMMAND_LINE line("fraction", "[EXPRESSION]...", DESCRIPTION,
                      FILTER_HELP + ('\n' + std::string(EXAMPLES)));
    line.add_flag(
        "--double", prints_double,
        "Print a double: the numerator divided by the denominator, each rounded to a double");
    add_filter_options(line, filter_options);
    std::vector<std::string> const texts = line.read(arguments);
    FRACTION_CONVERSION conversion(prints_double);
    return run_filter(filter_options, texts, conversion);
}
