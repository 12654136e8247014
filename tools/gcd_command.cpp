#include "gcd_command.h"

#include "command_line.h"
#include "filter.h"
#include "number_text.h"
#include "text.h"

#include "big_sys.h"

#include <climits>

namespace {

/// A whole number with its sign.
struct INTEGER {
    bool is_negative;
    BIG_ULONG128 magnitude;
};

/// Reads the numbers of a text, which blanks separate.
///
/// @param problem receives what is wrong when there is a number that is none
bool read_integers(std::string_view text, std::vector<INTEGER>& integers, std::string& problem) {
    constexpr std::string_view BLANKS = " \t";
    integers.clear();
    std::size_t begin = text.find_first_not_of(BLANKS);
    while (begin != std::string_view::npos) {
        std::size_t const end = std::min(text.find_first_of(BLANKS, begin), text.size());
        std::string_view const word = text.substr(begin, end - begin);
        INTEGER integer = {word[0] == '-', {}};
        bool const has_sign = word[0] == '-' || word[0] == '+';
        if (!read_u128(word.substr(has_sign), integer.magnitude, problem)) {
            problem = problem_of_part(text, word, problem);
            return false;
        }
        integers.push_back(integer);
        begin = text.find_first_not_of(BLANKS, end);
    }
    return true;
}

/// Finds the divisor of any count of numbers, or reduces a pair by it.
class GCD_CONVERSION : public CONVERSION {
public:
    explicit GCD_CONVERSION(bool reduces) : m_reduces(reduces) {}

    OUTCOME convert(std::string const& text, std::string& result, std::string& problem) override;
    void add_members(JSON_OBJECT& object) const override;

private:
    bool reduce(std::string& result, std::string& problem);

    bool const m_reduces;
    std::vector<INTEGER> m_integers; ///< of the text at hand
    BIG_ULONG128 m_divisor;          ///< theirs
};

OUTCOME GCD_CONVERSION::convert(std::string const& text, std::string& result,
                                std::string& problem) {
    if (!read_integers(text, m_integers, problem)) {
        return OUTCOME::REFUSED;
    }
    if (m_integers.size() < 2) {
        problem = "is too short: expected two whole numbers or more with blanks between them";
        return OUTCOME::REFUSED;
    }
    m_divisor = BIG_ULONG128();
    for (INTEGER const& integer : m_integers) {
        m_divisor = big_gcd_binary(m_divisor, integer.magnitude);
    }
    if (m_reduces) {
        return reduce(result, problem) ? OUTCOME::CONVERTED : OUTCOME::REFUSED;
    }
    result = decimal_text(m_divisor);
    return OUTCOME::CONVERTED;
}

/// Divides two numbers by their divisor.
bool GCD_CONVERSION::reduce(std::string& result, std::string& problem) {
    if (m_integers.size() > 2) {
        problem = "is too long: expected two whole numbers";
        return false;
    }
    long long numbers[2];
    for (std::size_t i = 0; i < 2; ++i) {
        INTEGER& integer = m_integers[i];
        // The library leaves -2^63 negative where it would have to negate it.
        if (integer.magnitude > u128_of(LLONG_MAX)) {
            problem = "is too large: expected a magnitude of at most " + std::to_string(LLONG_MAX);
            return false;
        }
        auto const magnitude = static_cast<long long>(integer.magnitude.get_low_qword());
        numbers[i] = integer.is_negative ? -magnitude : magnitude;
    }
    big_suppress_gcd(numbers[0], numbers[1]);
    result = big_long64_to_string(numbers[0]) + ' ' + big_long64_to_string(numbers[1]);
    return true;
}

void GCD_CONVERSION::add_members(JSON_OBJECT& object) const {
    object.add("gcd", decimal_text(m_divisor));
}

char const* const DESCRIPTION =
    "Find the greatest common divisor of two whole numbers or more.\n"
    "\n"
    "A NUMBER is decimal, or hexadecimal behind 0x, of up to 128 bits; its sign does not count. "
    "The divisor of a number and 0 is the number, that of zeros 0. Without a NUMBER each line of "
    "standard input holds numbers, with blanks between them.";

char const* const EXAMPLES = "Examples:\n"
                             "  $ bigq gcd 12 18\n"
                             "  6\n"
                             "  $ bigq gcd 0x100000000000000000000000000 55340232221128654848\n"
                             "  18446744073709551616\n"
                             "  $ bigq gcd --reduce 6 -9\n"
                             "  2 -3\n"
                             "  $ printf 'a,12 18 27\\nb,0 7\\n' | bigq gcd -d, --field 2\n"
                             "  a,3\n"
                             "  b,7\n";

} // namespace

EXIT_STATUS run_gcd(std::vector<std::string> const& arguments) {
    bool reduces = false;
    FILTER_OPTIONS filter_options;
    filter_options.joins_texts = true;
    COMMAND_LINE line("gcd", "[NUMBER]...", DESCRIPTION,
                      FILTER_HELP + ('\n' + std::string(EXAMPLES)));
    line.add_flag("--reduce", reduces,
                  "Print two numbers of up to 64 bits divided by their divisor; two negative ones "
                  "become positive");
    add_filter_options(line, filter_options);
    std::vector<std::string> const texts = line.read(arguments);
    GCD_CONVERSION conversion(reduces);
    return run_filter(filter_options, texts, conversion);
}
