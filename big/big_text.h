#ifndef BIG_TEXT_H
#define BIG_TEXT_H

/// @file
/// Bytes, whatever the locale.

#include <string_view>

/// The characters a number of a time is made of.
inline constexpr std::string_view big_number_characters = "1234567890.-+";

/// Whether a byte is one of the six blanks: 9 to 13 and 32.
inline bool big_is_blank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Whether a byte is a decimal digit.
inline bool big_is_digit(char c) {
    return c >= '0' && c <= '9';
}

/// The magnitude of a signed number; that of -2^63 is 2^63.
inline unsigned long long big_magnitude(long long value) {
    auto const bits = static_cast<unsigned long long>(value);
    unsigned long long const ones_if_negative = 0 - (bits >> 63);
    return (bits ^ ones_if_negative) - ones_if_negative; // no branch: signs come in no order
}

/// The number of this magnitude with a sign, in two's complement.
inline long long big_with_sign(unsigned long long magnitude, bool negative) {
    return static_cast<long long>(negative ? 0 - magnitude : magnitude);
}

#endif
