#ifndef BIG_DIGITS_H
#define BIG_DIGITS_H

/// @file
/// Decimal digits of an unsigned 64-bit integer, written in front of a place in a caller's buffer.
///
/// A number is cut into groups of eight digits (24 digits, of which a 64-bit integer uses at most
/// 20), and the eight digits of a group are computed side by side in one 64-bit word: no loop, no
/// table, and no division but by constants.

#include <bit>
#include <cstddef>
#include <cstring>

/// What writing digits may overwrite: this many bytes in front of `end`.
inline constexpr std::size_t BIG_DIGITS_ROOM = 24;

/// The decimal digits of a group below 10^8, one in each byte, the most significant digit in the
/// lowest byte.
///
/// Each step splits every lane of the word in two by a division that is a multiplication and a
/// shift, exact over the lane's range:
///
///     lanes         holds        quotient by
///     2 x 32 bits   below 10^4   100: x 10486 / 2^20
///     4 x 16 bits   below 100    10:  x 103 / 2^10
///     8 x 8 bits    below 10
///
/// Source: P. Khuong, "How to print integers really fast", 2017.
inline unsigned long long big_eight_digits(unsigned int group) {
    unsigned long long const thousands = group / 10000;
    unsigned long long const fours = thousands | ((group - thousands * 10000) << 32);

    unsigned long long const hundreds = ((fours * 10486) >> 20) & 0x0000007F'0000007Full;
    unsigned long long const twos = hundreds | ((fours - hundreds * 100) << 16);

    unsigned long long const tens = ((twos * 103) >> 10) & 0x000F'000F'000F'000Full;
    return tens | ((twos - tens * 10) << 8);
}

/// Writes eight digits, as big_eight_digits() gives them, as text.
inline void big_store_eight_digits(char* to, unsigned long long digits) {
    unsigned long long text = digits | 0x3030303030303030ull;
    if constexpr (std::endian::native == std::endian::big)
        text = __builtin_bswap64(text);
    std::memcpy(to, &text, sizeof text);
}

/// The leading zeros of eight digits, of which the last counts as a digit even when it is 0.
inline int big_leading_zeros(unsigned long long digits) {
    return std::countr_zero(digits | (1ull << 56)) / 8;
}

/// Writes the 24 digits of a number, leading zeros included, so that they end before `end`.
inline void big_write_24_digits(char* end, unsigned long long value) {
    unsigned long long const upper = value / 100000000;
    unsigned long long const top = upper / 100000000;
    big_store_eight_digits(end - 8, big_eight_digits(static_cast<unsigned int>(value % 100000000)));
    big_store_eight_digits(end - 16,
                           big_eight_digits(static_cast<unsigned int>(upper % 100000000)));
    big_store_eight_digits(end - 24, big_eight_digits(static_cast<unsigned int>(top)));
}

/// Writes a number so that it ends before `end`, and returns its first digit: the text is
/// [first, end). Zero is one digit. Bytes in front of the first digit may change too, up to
/// BIG_DIGITS_ROOM bytes in front of `end`.
inline char* big_write_digits(char* end, unsigned long long value) {
    unsigned long long digits = 0;
    char* first = end;
    // Of the groups, the highest that is not zero decides where the text begins.
    do {
        digits = big_eight_digits(static_cast<unsigned int>(value % 100000000));
        first -= 8;
        big_store_eight_digits(first, digits);
        value /= 100000000;
    } while (value != 0);
    return first + big_leading_zeros(digits);
}

#endif
