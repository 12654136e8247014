#include "radix_oracle.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <ostream>
#include <vector>

namespace radix_oracle {

namespace {

char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

bool is_one_of(char c, std::string const& set) {
    return set.find(c) != std::string::npos;
}

bool is_logic_value(char c) {
    return is_one_of(c, "-HLUWXZ");
}

bool is_decimal_digit(char c) {
    return c >= '0' && c <= '9';
}

bool is_printable(char c) {
    return c >= 0x20 && c <= 0x7E;
}

/// A number's binary digits, at least `least` of them.
std::string binary_of(unsigned long long number, std::size_t least) {
    std::string digits;
    for (; number != 0 || digits.size() < least; number /= 2)
        digits.insert(digits.begin(), number % 2 != 0 ? '1' : '0');
    return digits;
}

/// The binary digits of a decimal number, without zeros in front. Long division, sixteen bits at a
/// time.
std::string binary_of_decimal(std::string const& decimal) {
    std::vector<unsigned> dividend;
    for (char const c : decimal)
        dividend.push_back(static_cast<unsigned>(c - '0'));
    std::string digits;
    while (std::any_of(dividend.begin(), dividend.end(), [](unsigned d) { return d != 0; })) {
        unsigned remainder = 0;
        for (unsigned& digit : dividend) {
            unsigned const part = 10 * remainder + digit;
            digit = part / 65536;
            remainder = part % 65536;
        }
        digits = binary_of(remainder, 16) + digits;
    }
    std::size_t const first = digits.find('1');
    return first == std::string::npos ? "0" : digits.substr(first);
}

/// The decimal number that binary digits form, by Horner's rule, sixteen bits at a time.
std::string decimal_of_binary(std::string const& binary) {
    std::string const padded = std::string((16 - binary.size() % 16) % 16, '0') + binary;
    std::vector<unsigned> sum{0}; // least significant digit first
    for (std::size_t i = 0; i < padded.size(); i += 16) {
        auto carry = static_cast<unsigned>(std::stoul(padded.substr(i, 16), nullptr, 2));
        for (unsigned& digit : sum) {
            carry += 65536 * digit;
            digit = carry % 10;
            carry /= 10;
        }
        for (; carry != 0; carry /= 10)
            sum.push_back(carry % 10);
    }
    std::string decimal;
    for (std::size_t i = sum.size(); i-- > 0;)
        decimal += static_cast<char>('0' + sum[i]);
    return decimal.substr(std::min(decimal.find_first_not_of('0'), decimal.size() - 1));
}

} // namespace

BITS bits_of_group_digits(std::string const& source, BIG_RADIX radix) {
    unsigned const base = radix == BIG_BIN ? 2 : radix == BIG_OCT ? 8 : 16;
    std::size_t const width = radix == BIG_BIN ? 1 : radix == BIG_OCT ? 3 : 4;
    BITS bits;
    for (char c : source) {
        c = upper(c);
        std::size_t const digit = std::string("0123456789ABCDEF").find(c);
        if (is_logic_value(c)) {
            bits.digits += std::string(width, c);
        } else if (digit < base) {
            bits.digits += binary_of(digit, width);
        } else {
            bits.digits += std::string(width, 'X');
            bits.is_legal = false;
        }
    }
    return bits;
}

std::string two_s_complement(std::string digits) {
    std::size_t i = digits.size();
    while (i > 0 && digits[i - 1] != '1')
        --i;
    if (i == 0)
        return digits;
    for (--i; i > 0; --i)
        digits[i - 1] = digits[i - 1] == '1' ? '0' : '1';
    return digits;
}

BITS bits_of_decimal(std::string const& source, bool is_signed) {
    BITS bits;
    bool const is_negative = is_signed && !source.empty() && source[0] == '-';
    std::string const rest = source.substr(is_negative ? 1 : 0);
    std::string number;
    bool has_unknown = false;
    bool has_z = false;
    bool has_other = false;
    for (char c : rest) {
        c = upper(c);
        has_unknown = has_unknown || is_one_of(c, "XUW-");
        has_z = has_z || c == 'Z';
        has_other = has_other || c != 'Z';
        if (!is_one_of(c, "XUW-ZHL") && !is_decimal_digit(c)) {
            bits.is_legal = false;
            return bits;
        }
        number += c == 'H' ? '1' : c == 'L' ? '0' : c;
    }
    if (!has_other) {
        bits.digits = 'Z';
    } else if (has_unknown || has_z) {
        bits.digits = 'X';
    } else {
        std::string const sign_digit = is_signed ? "0" : "";
        bits.digits = sign_digit + binary_of_decimal(number);
        if (is_negative)
            bits.digits = two_s_complement(bits.digits);
    }
    return bits;
}

BITS bits_of_ascii(std::string const& source) {
    BITS bits;
    auto const failed = [&](BIG_ASCII_CHECK_RESULT check) {
        bits.check = check;
        bits.is_legal = false;
        return bits;
    };
    std::size_t i = 0;
    while (i < source.size()) {
        char const c = source[i];
        if (!is_printable(c)) {
            ++bits.debug_messages;
            bits.digits += "00000000";
            i += 1;
        } else if (c == '\\') {
            if (i + 1 == source.size() || !is_one_of(source[i + 1], "[\\]"))
                return failed(BIG_ASCII_BAD_ESCAPE);
            bits.digits += binary_of(static_cast<unsigned char>(source[i + 1]), 8);
            i += 2;
        } else if (c == '[') {
            std::size_t const end = source.find(']', i + 1);
            if (end == std::string::npos)
                return failed(BIG_ASCII_UNTERMINATED_CODE);
            std::string const code = source.substr(i + 1, end - (i + 1));
            if (code.empty())
                return failed(BIG_ASCII_EMPTY_CODE);
            if (code.size() == 1 && is_one_of(code[0], " \t\n\v\f\r")) {
                bits.digits += "00100000";
            } else {
                bits.offending_code = code;
                if (!std::all_of(code.begin(), code.end(), is_decimal_digit))
                    return failed(BIG_ASCII_BAD_CODE);
                auto const number =
                    static_cast<unsigned int>(std::strtol(code.c_str(), nullptr, 10));
                if (number > 255)
                    return failed(BIG_ASCII_CODE_TOO_LARGE);
                bits.offending_code.clear();
                std::string const digits = bits_of_decimal(code, false).digits;
                bits.digits += std::string(digits.size() < 8 ? 8 - digits.size() : 0, '0') + digits;
            }
            i = end + 1;
        } else if (c == ']' && (i == 0 || source[i - 1] != '\\')) {
            return failed(BIG_ASCII_UNMATCHED_BRACKET);
        } else {
            bits.digits += binary_of(static_cast<unsigned char>(c), 8);
            i += 1;
        }
    }
    return bits;
}

namespace {

std::string without_redundant_digits(std::string const& digits) {
    if (digits.size() < 2 || digits[0] == '1')
        return digits;
    char const c = digits[0];
    std::size_t run = 1;
    while (run < digits.size() && digits[run] == c)
        ++run;
    if (digits[1] == c && c == '0')
        return run == digits.size() ? "0" : digits.substr(run);
    if (digits[1] == c)
        return run == digits.size() ? std::string(2, c) : digits.substr(run - 1);
    return c == '0' ? digits.substr(1) : digits;
}

std::string extension(std::string const& digits, std::size_t count) {
    bool const repeats = !digits.empty() && is_one_of(digits[0], "-UWXZ");
    return std::string(count, repeats ? digits[0] : '0');
}

/// Signed decimal, fixed point and ASCII.
unsigned int fit_as_it_is(std::string& digits, bool is_signed, bool is_ascii, unsigned int width) {
    std::size_t const n = digits.size();
    if (width == 0 || n == width)
        return 0;
    if (n < width) {
        std::size_t const missing = width - n;
        if (is_signed && digits[0] == '1')
            digits = std::string(missing, '1') + digits;
        else if (is_ascii)
            digits = std::string(missing, '0') + digits;
        else
            digits = extension(digits, missing) + digits;
        return 0;
    }
    bool is_lowest =
        is_signed && n == width + std::size_t{1} && digits[0] == '1' && digits[1] == '1';
    for (std::size_t i = 2; i + 1 < n; ++i)
        is_lowest = is_lowest && digits[i] == '0';
    digits = digits.substr(n - width);
    return is_lowest ? 0 : 2;
}

} // namespace

unsigned int fit(std::string& digits, BIG_RADIX radix, unsigned int width) {
    bool const is_signed = radix == BIG_SIGNED_DEC || radix == BIG_FRAC_FIX_POINT;
    if (is_signed || radix == BIG_ASCII)
        return fit_as_it_is(digits, is_signed, radix == BIG_ASCII, width);
    if (digits.size() == width)
        return 0;
    digits = without_redundant_digits(digits);
    if (width == 0 || digits.size() == width)
        return 0;
    if (digits.size() < width) {
        digits = extension(digits, width - digits.size()) + digits;
        return 0;
    }
    digits = digits.substr(digits.size() - width);
    return 2;
}

std::string groups_of(std::string const& digits, std::size_t group_bits) {
    std::string reversed;
    for (std::size_t end = digits.size(); end > 0;) {
        std::size_t const begin = end > group_bits ? end - group_bits : 0;
        std::string group = digits.substr(begin, end - begin);
        std::transform(group.begin(), group.end(), group.begin(), upper);
        end = begin;
        if (group.find_first_not_of("01") == std::string::npos)
            reversed += "0123456789ABCDEF"[std::stoul(group, nullptr, 2)];
        else if (is_one_of(group[0], "Z-UWHL")
                 && group.find_first_not_of(group[0]) == std::string::npos)
            reversed += group[0];
        else
            reversed += 'X';
    }
    return {reversed.rbegin(), reversed.rend()};
}

std::string decimal_of(std::string const& digits, bool is_signed) {
    for (std::size_t i = digits.size(); i-- > 0;) {
        char const c = digits[i];
        if (c != '0' && c != '1')
            return std::string(1, i + 1 == digits.size() && is_one_of(c, "ZHL") ? c : 'X');
    }
    if (digits.empty())
        return "";
    bool const is_negative = is_signed && digits[0] == '1';
    std::string const sign = is_negative ? "-" : "";
    return sign + decimal_of_binary(is_negative ? two_s_complement(digits) : digits);
}

std::string fixed_point_of(std::string const& digits, unsigned int width) {
    std::string const decimal = decimal_of(digits, true);
    if (decimal.find_first_of("XZHL") != std::string::npos)
        return decimal;
    double const quotient =
        std::strtod(decimal.c_str(), nullptr) / std::pow(2.0, static_cast<int>(width - 1));
    char text[64];
    std::snprintf(text, sizeof text, "%.17g", quotient);
    return text;
}

std::string ascii_of(std::string const& digits) {
    std::string text;
    for (std::size_t end = digits.size(); end > 0;) {
        std::size_t const begin = end > 8 ? end - 8 : 0;
        int byte = 0;
        for (std::size_t i = begin; i < end; ++i)
            byte = 2 * byte + (digits[i] == '1' ? 1 : 0);
        end = begin;
        char const c = static_cast<char>(byte);
        std::string piece(1, c);
        if (c == ' ')
            piece = "[ ]";
        else if (!is_printable(c))
            piece = std::string("[").append(std::to_string(byte)).append("]");
        else if (is_one_of(c, "[\\]"))
            piece = std::string("\\") + c;
        text = piece + text;
    }
    return text;
}

CONVERSION convert(std::string const& source, std::string const& previous_result, BIG_RADIX from,
                   BIG_RADIX to, unsigned int width) {
    if (to == BIG_FRAC_FIX_POINT && width > 1024)
        return {1, previous_result + "X"};
    BITS bits;
    switch (from) {
    case BIG_BIN:
    case BIG_OCT:
    case BIG_HEX: bits = bits_of_group_digits(source, from); break;
    case BIG_SIGNED_DEC: bits = bits_of_decimal(source, true); break;
    case BIG_UNSIGNED_DEC: bits = bits_of_decimal(source, false); break;
    case BIG_ASCII: bits = bits_of_ascii(source); break;
    case BIG_FRAC_FIX_POINT: {
        double const scaled =
            std::strtod(source.c_str(), nullptr) * std::pow(2.0, static_cast<int>(width - 1));
        if (std::isnan(scaled) || scaled < -0x1p63 || scaled >= 0x1p63)
            return {1, "X"};
        bits = bits_of_decimal(std::to_string(static_cast<long long>(scaled)), true);
        break;
    }
    }
    if (!bits.is_legal)
        return {1, "X"};
    unsigned int const status = fit(bits.digits, from, width);
    switch (to) {
    case BIG_BIN: return {status, bits.digits};
    case BIG_OCT: return {status, groups_of(bits.digits, 3)};
    case BIG_HEX: return {status, groups_of(bits.digits, 4)};
    case BIG_SIGNED_DEC: return {status, decimal_of(bits.digits, true)};
    case BIG_UNSIGNED_DEC: return {status, decimal_of(bits.digits, false)};
    case BIG_FRAC_FIX_POINT: return {status, fixed_point_of(bits.digits, width)};
    case BIG_ASCII: return {status, ascii_of(bits.digits)};
    }
    return {};
}

void PrintTo(CONVERSION const& conversion, std::ostream* out) {
    static char const* const meanings[] = {"exact", "not convertible", "cut off"};
    *out << "\"" << conversion.result << "\" (status " << conversion.status << ", "
         << (conversion.status <= 2 ? meanings[conversion.status] : "none") << ")";
}

char const* name_of(BIG_RADIX radix) {
    static char const* const names[] = {
        "binary",           "octal",       "hexadecimal", "signed decimal",
        "unsigned decimal", "fixed point", "ASCII"};
    return radix <= BIG_ASCII ? names[radix] : "no radix";
}

std::string describe(std::string const& source, BIG_RADIX from, BIG_RADIX to, unsigned int width) {
    return std::string(name_of(from)) + " \"" + source + "\" to " + name_of(to) + ", width "
           + std::to_string(width);
}

std::string random_source(std::mt19937_64& random, BIG_RADIX radix, std::size_t length,
                          bool with_logic) {
    static std::string const logic = "xXzZuUwW-hHlL";
    static std::string const digits[] = {"01",         "01234567",   "0123456789abcdefABCDEF",
                                         "0123456789", "0123456789", "0123456789"};
    auto const below = [&](std::size_t bound) {
        return static_cast<std::size_t>(random() % bound);
    };
    std::string source;
    if (radix == BIG_ASCII) {
        for (std::size_t i = 0; i < length; ++i)
            switch (below(12)) {
            case 0: source.append("[").append(std::to_string(below(256))).append("]"); break;
            case 1: source += std::string("\\") + "[\\]"[below(3)]; break;
            case 2: source += "[ ]"; break;
            case 3: source += with_logic ? static_cast<char>(random()) : 'a'; break;
            default: {
                char const c = static_cast<char>(' ' + below(95));
                source += is_one_of(c, "[\\]") && below(8) != 0 ? 'A' : c;
            }
            }
        return source;
    }
    if (radix == BIG_FRAC_FIX_POINT) {
        double const value = std::ldexp(static_cast<double>(static_cast<long long>(random())),
                                        -63 - static_cast<int>(below(12)))
                             * (below(3) == 0 ? 4 : 1);
        char text[64];
        std::snprintf(text, sizeof text, below(2) == 0 ? "%.17g" : "%.6f", value);
        return text;
    }
    // Runs of one digit, since these are what widths and signs turn on, as well as single digits.
    std::string const& set = digits[radix];
    std::size_t const one_in = below(2) == 0 ? 3 : 40;
    while (source.size() < length) {
        bool const is_logic = with_logic && below(one_in) == 0;
        char const digit = is_logic ? logic[below(logic.size())] : set[below(set.size())];
        source += std::string(below(4) == 0 ? 1 + below(length) : 1, digit);
    }
    source.resize(length);
    if (radix == BIG_SIGNED_DEC && below(2) == 0)
        source.insert(source.begin(), '-');
    return source;
}

} // namespace radix_oracle
