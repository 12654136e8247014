#include "decimal.h"

#include <algorithm>
#include <charconv>

namespace {

/// Where the digits that begin at a position end.
std::size_t digits_end(std::string_view text, std::size_t at) {
    return std::min(text.find_first_not_of("0123456789", at), text.size());
}

std::size_t sign_size(std::string_view text) {
    return !text.empty() && (text[0] == '+' || text[0] == '-') ? 1 : 0;
}

} // namespace

bool is_decimal(std::string_view text) {
    constexpr std::size_t MOST_EXPONENT_DIGITS = 3;
    text.remove_prefix(sign_size(text));
    std::size_t const point = digits_end(text, 0);
    std::size_t end = point;
    if (end < text.size() && text[end] == '.') {
        end = digits_end(text, end + 1);
    }
    bool const has_digits = end > (end > point ? 1u : 0u);
    text.remove_prefix(end);
    if (text.empty() || !has_digits) {
        return has_digits;
    }
    if (text[0] != 'e' && text[0] != 'E') {
        return false;
    }
    text.remove_prefix(1);
    text.remove_prefix(sign_size(text));
    return !text.empty() && text.size() <= MOST_EXPONENT_DIGITS
           && digits_end(text, 0) == text.size();
}

std::string shifted(std::string_view number, int power) {
    std::size_t const sign = sign_size(number);
    bool const is_negative = number[0] == '-';
    std::size_t const mantissa_end = std::min(number.find_first_of("eE"), number.size());
    if (mantissa_end < number.size()) {
        std::string_view exponent_text = number.substr(mantissa_end + 1);
        exponent_text.remove_prefix(exponent_text[0] == '+' ? 1 : 0); // from_chars knows no plus
        int exponent = 0;
        std::from_chars(exponent_text.data(), exponent_text.data() + exponent_text.size(),
                        exponent);
        power += exponent;
    }

    // The digits without their point, and how many of them stand before it afterwards.
    std::string digits(number.substr(sign, mantissa_end - sign));
    std::size_t const point = std::min(digits.find('.'), digits.size());
    digits.erase(point, 1);
    long const before_point = static_cast<long>(point) + power;
    if (before_point < 1) {
        digits.insert(0, static_cast<std::size_t>(1 - before_point), '0');
    } else if (static_cast<std::size_t>(before_point) > digits.size()) {
        digits.resize(static_cast<std::size_t>(before_point), '0');
    }
    std::size_t const new_point = static_cast<std::size_t>(std::max(before_point, 1L));
    if (new_point < digits.size()) {
        digits.insert(new_point, 1, '.');
    }
    return is_negative ? '-' + digits : digits;
}

double to_double(std::string_view number) {
    number.remove_prefix(number[0] == '+' ? 1 : 0);
    double value = 0.0;
    std::from_chars(number.data(), number.data() + number.size(), value);
    return value;
}

std::string shortest_text(double value) {
    char text[32];
    auto const result = std::to_chars(text, text + sizeof text, value);
    return {text, result.ptr};
}
