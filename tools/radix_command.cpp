#include "radix_command.h"

#include "command_line.h"
#include "filter.h"
#include "text.h"

#include "big_sys.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <optional>

namespace {

/// A radix as a user names it.
struct RADIX {
    char const* name;
    char const* letter; ///< its short name, or the name again
    BIG_RADIX radix;
    char const* title;    ///< what a message calls a number of that radix
    char const* digits;   ///< the characters that a conversion reads
    char const* expected; ///< the same for a message
};

#define LOGIC_VALUES "X, Z, U, W, -, H or L"
#define LOGIC_DIGITS "XZUW-HLxzuwhl"

// clang-format off
constexpr std::array<RADIX, 7> RADIXES = {{
    // name   letter   radix               title                         digits                                 expected
    {"bin",   "b",     BIG_BIN,            "a binary number",            "01" LOGIC_DIGITS,                     "0, 1 or " LOGIC_VALUES},
    {"oct",   "o",     BIG_OCT,            "an octal number",            "01234567" LOGIC_DIGITS,               "0 to 7 or " LOGIC_VALUES},
    {"hex",   "h",     BIG_HEX,            "a hexadecimal number",       "0123456789ABCDEFabcdef" LOGIC_DIGITS, "0 to 9, A to F or " LOGIC_VALUES},
    {"udec",  "udec",  BIG_UNSIGNED_DEC,   "an unsigned decimal number", "0123456789" LOGIC_DIGITS,             "0 to 9 or " LOGIC_VALUES},
    {"sdec",  "sdec",  BIG_SIGNED_DEC,     "a signed decimal number",    "0123456789" LOGIC_DIGITS,             "- and 0 to 9 or " LOGIC_VALUES},
    {"fix",   "fix",   BIG_FRAC_FIX_POINT, "a fixed-point number",       "",                                    "a decimal number such as 0.75 or -1.5E-1"},
    {"ascii", "ascii", BIG_ASCII,          "an ASCII text",              "",                                    "printable characters, and [10] for the byte 10"},
}};
// clang-format on

#undef LOGIC_VALUES
#undef LOGIC_DIGITS

constexpr char const* RADIX_NAMES =
    "bin (b), oct (o), hex (h), dec (d), sdec, udec, fix or ascii, in any letter case";

/// The widest fixed-point number.
constexpr unsigned int FIX_WIDTH_LIMIT = 1024;

/// No result is much longer than the longest line that is read.
constexpr unsigned int WIDTH_LIMIT = 16 * 1024 * 1024;

RADIX const& row_of(BIG_RADIX radix) {
    return *std::find_if(RADIXES.begin(), RADIXES.end(),
                         [radix](RADIX const& row) { return row.radix == radix; });
}

/// What the command line says.
struct RADIX_OPTIONS {
    std::string from;
    std::string to;
    std::string check;
    bool is_signed = false;
    unsigned int width = 0;
};

bool is_dec(std::string const& lower_name) {
    return lower_name == "dec" || lower_name == "d";
}

std::string lowered(std::string text) {
    for (char& c : text) {
        c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
    }
    return text;
}

/// The radix with a name.
///
/// Throws USAGE_ERROR for anything else.
RADIX const& radix_named(std::string const& name, bool is_signed, std::string const& option) {
    std::string const lower_name = lowered(name);
    if (is_dec(lower_name)) {
        return row_of(is_signed ? BIG_SIGNED_DEC : BIG_UNSIGNED_DEC);
    }
    for (RADIX const& row : RADIXES) {
        if (lower_name == row.name || lower_name == row.letter) {
            return row;
        }
    }
    throw USAGE_ERROR(option + ": " + in_quotes(name) + " is not a radix: expected " + RADIX_NAMES);
}

std::string is_not_a(RADIX const& radix) {
    return std::string("is not ") + radix.title + ": ";
}

std::string expected(RADIX const& radix) {
    return std::string("expected ") + radix.expected;
}

/// Reads a whole text as a decimal number, as the library does, which stops at the first character
/// that does not belong to it. Nothing when there is such a character.
std::optional<double> fixed_point_number(std::string const& text) {
    if (!big_string_is_legal(text, BIG_FRAC_FIX_POINT)) {
        return {};
    }
    // What is too small for a double stays this instead of becoming 0: it is a fraction, and lost.
    // What is too large the library refuses.
    double number = std::numeric_limits<double>::denorm_min();
    char const* const end = text.data() + text.size();
    return std::from_chars(text.data(), end, number).ptr == end ? std::optional(number)
                                                                : std::nullopt;
}

/// What is wrong with the ASCII notation of a text of printable characters.
std::string ascii_problem(std::string const& text) {
    std::string code;
    BIG_ASCII_CHECK_RESULT check = BIG_ASCII_OK;
    big_validate_ascii_string(text, &code, &check);
    switch (check) {
    case BIG_ASCII_BAD_ESCAPE: return "expected [, \\ or ] behind a backslash";
    case BIG_ASCII_CODE_TOO_LARGE:
        return "the code " + in_quotes(code) + " is too large: expected at most 255";
    case BIG_ASCII_BAD_CODE:
        return in_quotes(code) + " is not a code: expected a decimal number from 0 to 255";
    case BIG_ASCII_EMPTY_CODE: return "[] holds no code: expected a decimal number from 0 to 255";
    case BIG_ASCII_UNTERMINATED_CODE: return "[ has no ] behind it: write \\[ for the character";
    default: return "] has no [ in front of it: write \\] for the character";
    }
}

// ------------------------------------------------------------------------------------------------
// Conversion
// ------------------------------------------------------------------------------------------------

class RADIX_CONVERSION : public CONVERSION {
public:
    RADIX_CONVERSION(RADIX const& from, RADIX const& to, unsigned int width)
        : m_from(from), m_to(to), m_width(width) {}

    OUTCOME convert(std::string const& text, std::string& result, std::string& problem) override;
    void add_members(JSON_OBJECT& object) const override;

private:
    bool is_misleading(std::string const& text, std::string& problem) const;
    std::string why_refused(std::string const& text) const;
    bool loses_fraction(std::string const& text) const;

    RADIX const& m_from;
    RADIX const& m_to;
    unsigned int const m_width;
};

OUTCOME RADIX_CONVERSION::convert(std::string const& text, std::string& result,
                                  std::string& problem) {
    if (is_misleading(text, problem)) {
        return OUTCOME::REFUSED;
    }
    unsigned int const status =
        big_radix_conversion(text, &result, m_from.radix, m_to.radix, m_width);
    if (status == 1) {
        problem = why_refused(text);
        return OUTCOME::REFUSED;
    }
    if (status == 2) {
        problem = "does not fit " + std::to_string(m_width) + (m_width == 1 ? " bit" : " bits")
                  + ": its high bits are cut off, which leaves " + in_quotes(result);
        return OUTCOME::LOST_DIGITS;
    }
    if (m_from.radix == BIG_FRAC_FIX_POINT && loses_fraction(text)) {
        problem = "loses digits: its fraction is cut to " + std::to_string(m_width - 1)
                  + (m_width == 2 ? " bit" : " bits") + ", which leaves " + in_quotes(result);
        return OUTCOME::LOST_DIGITS;
    }
    return OUTCOME::CONVERTED;
}

/// Whether the library would take a text for something that its writer did not mean, and what is
/// wrong then. Nothing may reach the library without a character.
bool RADIX_CONVERSION::is_misleading(std::string const& text, std::string& problem) const {
    if (text.empty()) {
        problem = is_not_a(m_from) + expected(m_from);
        return true;
    }
    switch (m_from.radix) {
    case BIG_UNSIGNED_DEC: // a - is the logic value, and the result would be X
        if (text[0] == '-' && text.size() > 1 && text[1] >= '0' && text[1] <= '9') {
            problem = "is negative: expected 0 or more, or a signed decimal number (--from sdec)";
            return true;
        }
        [[fallthrough]];
    case BIG_SIGNED_DEC:
    case BIG_HEX: // the x is a logic value
        if (text.compare(text[0] == '-' ? 1 : 0, 2, "0x") == 0) {
            problem = is_not_a(m_from)
                      + "expected no prefix 0x (the logic value, behind a 0, is a capital X)";
            return true;
        }
        return false;
    case BIG_FRAC_FIX_POINT: // whatever is no number would be 0
        if (!fixed_point_number(text)) {
            problem = is_not_a(m_from) + expected(m_from);
            return true;
        }
        return false;
    case BIG_ASCII: // any other byte would be 0
        if (auto const bad = std::find_if_not(text.begin(), text.end(), big_char_is_printable);
            bad != text.end()) {
            problem = is_not_a(m_from)
                      + in_quotes(character_at(text, static_cast<std::size_t>(bad - text.begin())))
                      + " is not printable: " + expected(m_from);
            return true;
        }
        return false;
    default: return false;
    }
}

/// Why the library refused a text.
std::string RADIX_CONVERSION::why_refused(std::string const& text) const {
    switch (m_from.radix) {
    case BIG_FRAC_FIX_POINT:
        return "is too large: at " + std::to_string(m_width)
               + " bits a magnitude below 2 to the power of "
               + std::to_string(64 - static_cast<int>(m_width)) + " is expected";
    case BIG_ASCII: return is_not_a(m_from) + ascii_problem(text);
    default:
        std::size_t const sign = m_from.radix == BIG_SIGNED_DEC && text[0] == '-';
        return is_not_a(m_from)
               + in_quotes(character_at(text, text.find_first_not_of(m_from.digits, sign)))
               + " is none of its digits: " + expected(m_from);
    }
}

/// Whether a fixed-point number has bits below the lowest one that is kept.
bool RADIX_CONVERSION::loses_fraction(std::string const& text) const {
    double const scaled =
        std::ldexp(fixed_point_number(text).value(), static_cast<int>(m_width) - 1);
    return scaled != std::trunc(scaled);
}

void RADIX_CONVERSION::add_members(JSON_OBJECT& object) const {
    object.add("from", m_from.name);
    object.add("to", m_to.name);
    object.add("width", static_cast<long long>(m_width));
}

/// Both radixes and the width, checked together.
///
/// Throws USAGE_ERROR for options that do not go together.
RADIX_CONVERSION conversion_of(RADIX_OPTIONS const& options) {
    if (options.from.empty() || options.to.empty()) {
        throw USAGE_ERROR(std::string(options.from.empty() ? "--from" : "--to")
                          + ": expected a radix: " + RADIX_NAMES);
    }
    RADIX const& from = radix_named(options.from, options.is_signed, "--from");
    RADIX const& to = radix_named(options.to, options.is_signed, "--to");
    bool const is_fixed = from.radix == BIG_FRAC_FIX_POINT || to.radix == BIG_FRAC_FIX_POINT;
    if (is_fixed && (options.width == 0 || options.width > FIX_WIDTH_LIMIT)) {
        throw USAGE_ERROR("--width: fix needs a width from 1 to "
                          + std::to_string(FIX_WIDTH_LIMIT));
    }
    // A natural width leaves no room for a sign: hexadecimal 5 would be -3.
    bool const has_sign = from.radix == BIG_SIGNED_DEC || from.radix == BIG_ASCII;
    if (to.radix == BIG_SIGNED_DEC && !has_sign && options.width == 0) {
        throw USAGE_ERROR(std::string("--width: from ") + from.name
                          + " to sdec it is needed: the highest bit is the sign");
    }
    return {from, to, options.width};
}

// ------------------------------------------------------------------------------------------------
// Legality
// ------------------------------------------------------------------------------------------------

/// Puts "legal" or "illegal" behind each text.
class LEGALITY : public CONVERSION {
public:
    explicit LEGALITY(RADIX const& radix) : m_radix(radix) {}

    OUTCOME convert(std::string const& text, std::string& result, std::string& problem) override;
    void add_members(JSON_OBJECT& object) const override;

    /// Whether a text was illegal.
    bool has_seen_illegal() const { return m_has_seen_illegal; }

private:
    RADIX const& m_radix;
    bool m_is_legal = false; ///< the text at hand
    bool m_has_seen_illegal = false;
};

OUTCOME LEGALITY::convert(std::string const& text, std::string& result, std::string& problem) {
    if (text.empty()) {
        problem = "is neither legal nor illegal: expected at least one character";
        return OUTCOME::REFUSED;
    }
    m_is_legal = big_string_is_legal(text, m_radix.radix);
    m_has_seen_illegal = m_has_seen_illegal || !m_is_legal;
    result = text;
    result += m_is_legal ? " legal" : " illegal";
    return OUTCOME::CONVERTED;
}

void LEGALITY::add_members(JSON_OBJECT& object) const {
    object.add("radix", m_radix.name);
    object.add("legal", m_is_legal);
}

// ------------------------------------------------------------------------------------------------
// The command line
// ------------------------------------------------------------------------------------------------

void add_radix_options(COMMAND_LINE& line, RADIX_OPTIONS& options) {
    auto const keep_in = [](std::string& place, char const* option) {
        return [&place, option](std::string const& name) {
            radix_named(name, false, option);
            place = name;
        };
    };
    line.add_text("--from", "RADIX", keep_in(options.from, "--from"), "The radix of the values");
    line.add_text("--to", "RADIX", keep_in(options.to, "--to"), "Print in RADIX");
    line.add_number(
        "--width", 0, WIDTH_LIMIT,
        [&options](unsigned long bits) { options.width = static_cast<unsigned int>(bits); },
        "Fit each value to N bits: a shorter one is extended, a longer one loses its high bits; 0 "
        "(default) keeps as many bits as the value has");
    line.add_flag("--signed", options.is_signed,
                  "dec is signed: the same as sdec (default: unsigned, the same as udec)");
    line.add_text(
        "--check", "RADIX", keep_in(options.check, "--check"),
        "Convert nothing: write \"legal\" or \"illegal\" behind each value; status 1 when one is "
        "illegal");
    line.exclude("--check", {"--from", "--to", "--width"});
}

/// Throws USAGE_ERROR for a --signed that would change nothing.
void check_signed(RADIX_OPTIONS const& options) {
    bool const names_dec = is_dec(lowered(options.from)) || is_dec(lowered(options.to))
                           || is_dec(lowered(options.check));
    if (options.is_signed && !names_dec) {
        throw USAGE_ERROR("--signed: it says what dec is: expected dec (d) as a radix");
    }
}

char const* const DESCRIPTION =
    "Convert bit vectors from one radix to another, at any width.\n"
    "\n"
    "Radixes, in any letter case: bin (b), oct (o), hex (h), dec (d), sdec (signed decimal), udec "
    "(unsigned decimal), fix (decimal fraction, --width bits with all but one behind the point), "
    "ascii (eight bits to a character). Without a VALUE the lines of standard input are "
    "converted.\n"
    "\n"
    "A digit may be a logic value: X, Z, U, W, -, H or L, in either letter case. Prefixes (0x), "
    "underscores and blanks are refused; in ascii a blank is a character, [10] the byte 10, and "
    "\\[ \\\\ \\] stand for [ \\ ].";

char const* const EXAMPLES =
    "Bits that are cut off to meet --width, and fractions finer than it, are reported; --strict "
    "refuses them.\n"
    "\n"
    "Examples:\n"
    "  $ bigq radix --from hex --to udec 1F ff\n"
    "  31\n"
    "  255\n"
    "  $ bigq radix --signed --from d --to h --width 8 -1 100\n"
    "  FF\n"
    "  64\n"
    "  $ printf 'bus,1XZ0\\n' | bigq radix --from b --to b --width 8 -d, --field 2\n"
    "  bus,00001XZ0\n"
    "  $ bigq radix --check hex 1F 1G\n"
    "  1F legal\n"
    "  1G illegal\n";

} // namespace

EXIT_STATUS run_radix(std::vector<std::string> const& arguments) {
    RADIX_OPTIONS options;
    FILTER_OPTIONS filter_options;
    COMMAND_LINE line("radix", "[VALUE]...", DESCRIPTION,
                      FILTER_HELP + ('\n' + std::string(EXAMPLES)));
    add_radix_options(line, options);
    add_filter_options(line, filter_options);
    std::vector<std::string> const texts = line.read(arguments);
    check_signed(options);
    if (options.check.empty()) {
        RADIX_CONVERSION conversion = conversion_of(options);
        return run_filter(filter_options, texts, conversion);
    }
    LEGALITY legality(radix_named(options.check, options.is_signed, "--check"));
    EXIT_STATUS const status = run_filter(filter_options, texts, legality);
    return legality.has_seen_illegal() ? STATUS_FAILED : status;
}
