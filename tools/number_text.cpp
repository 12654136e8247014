#include "number_text.h"

#include "err_sys.h"
#include "text.h"

#include <algorithm>

namespace {

/// The value of a digit of any radix up to 16; 16 for anything else.
unsigned int digit_value(char c) {
    if (c >= '0' && c <= '9') {
        return static_cast<unsigned int>(c - '0');
    }
    if (c >= 'a' && c <= 'f') {
        return static_cast<unsigned int>(c - 'a') + 10;
    }
    return c >= 'A' && c <= 'F' ? static_cast<unsigned int>(c - 'A') + 10 : 16;
}

bool has_hexadecimal_prefix(std::string_view text) {
    return text.size() >= 2 && text[0] == '0' && (text[1] == 'x' || text[1] == 'X');
}

/// The number that digits form. Throws ERR_INTERNAL_ERROR when it does not fit.
BIG_ULONG128 number_of(std::string_view digits, unsigned int radix) {
    BIG_ULONG128 number;
    for (char const c : digits) {
        number = number * BIG_ULONG128(radix) + BIG_ULONG128(digit_value(c));
    }
    return number;
}

} // namespace

bool read_u128(std::string_view text, BIG_ULONG128& value, std::string& problem) {
    bool const is_hexadecimal = has_hexadecimal_prefix(text);
    unsigned int const radix = is_hexadecimal ? 16 : 10;
    std::string_view const digits = text.substr(is_hexadecimal ? 2 : 0);
    if (digits.empty() || !std::all_of(digits.begin(), digits.end(), [radix](char c) {
            return digit_value(c) < radix;
        })) {
        problem = "is not a whole number: expected decimal digits, or hexadecimal ones behind 0x";
        return false;
    }
    try {
        value = number_of(digits, radix);
        return true;
    } catch (ERR_INTERNAL_ERROR const&) {
        problem = std::string("is too large: expected at most ") + LARGEST_U128;
        return false;
    }
}

std::string decimal_text(BIG_ULONG128 const& value) {
    std::string const text = value.to_string();
    return text.empty() ? "0" : text;
}

std::string hexadecimal_text(BIG_ULONG128 value) {
    auto const high = static_cast<long long>(value.get_high_qword());
    auto const low = static_cast<long long>(value.get_low_qword());
    if (high == 0) {
        return "0x" + big_64_to_string(low, "", BIG_64_HEX_LOWER);
    }
    return "0x" + big_64_to_string(high, "", BIG_64_HEX_LOWER)
           + big_64_to_string(low, "016", BIG_64_HEX_LOWER);
}

bool is_quotient(std::string_view decimal, BIG_ULONG128 const& dividend,
                 BIG_ULONG128 const& divisor) {
    std::size_t const point = std::min(decimal.find('.'), decimal.size());
    std::string digits(decimal.substr(0, point));
    std::size_t places = 0;
    if (point < decimal.size()) {
        digits += decimal.substr(point + 1);
        places = decimal.size() - point - 1;
    }
    return number_of(digits, 10) * divisor == dividend * BIG_ULONG128::s_table.m_powers[places];
}
