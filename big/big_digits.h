#ifndef BIG_DIGITS_H
#define BIG_DIGITS_H

/// @file
/// Decimal digits of unsigned 64-bit integers: writing them in front of a place in a caller's
/// buffer, and reading them.
///
/// Digits go by eights, side by side in the bytes of one word with the most significant digit in
/// the lowest byte, as a text lies in memory. A word is computed without a loop, and a number
/// without a branch on its length: numbers of mixed lengths cost as little as equal ones.

#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <string>

/// What writing a number may overwrite: this many bytes in front of `end`.
inline constexpr std::size_t BIG_DIGITS_ROOM = 24;

// ------------------------------------------------------------------------------------------------
// Eight digits
// ------------------------------------------------------------------------------------------------
//
// A word of eight digits and its number are the two ends of one ladder of lanes; writing steps down
// and reading steps up. Splitting a lane in two is a division by a multiplication and a shift,
// exact over the lane's range; joining two lanes is a multiplication and a sum.
//
//     lanes          hold            split by
//     1 of 64 bits   below 10^8      10000
//     2 of 32 bits   below 10^4      100:  x 10486 / 2^20
//     4 of 16 bits   below 100       10:   x 103 / 2^10
//     8 of 8 bits    below 10
//
// Sources: P. Khuong, "How to print integers really fast", 2017; D. Lemire, "Quickly parsing eight
// digits", 2018.

/// The digits of a number below 10^8.
inline unsigned long long big_eight_digits(unsigned int number) {
    unsigned long long const thousands = number / 10000;
    unsigned long long const fours = thousands | ((number - thousands * 10000) << 32);

    unsigned long long const hundreds = ((fours * 10486) >> 20) & 0x0000007F'0000007Full;
    unsigned long long const twos = hundreds | ((fours - hundreds * 100) << 16);

    unsigned long long const tens = ((twos * 103) >> 10) & 0x000F'000F'000F'000Full;
    return tens | ((twos - tens * 10) << 8);
}

/// The number that eight digits form.
inline unsigned int big_number_of_eight_digits(unsigned long long digits) {
    unsigned long long const twos = (digits * 10 + (digits >> 8)) & 0x00FF'00FF'00FF'00FFull;
    unsigned long long const fours = (twos * 100 + (twos >> 16)) & 0x0000FFFF'0000FFFFull;
    return static_cast<unsigned int>(fours * 10000 + (fours >> 32));
}

/// Eight characters as digits; whether they all are some, big_all_are_digits() tells.
inline unsigned long long big_load_eight_digits(char const* from) {
    unsigned long long text = 0;
    std::memcpy(&text, from, sizeof text);
    if constexpr (std::endian::native == std::endian::big)
        text = __builtin_bswap64(text);
    return text ^ 0x3030'3030'3030'3030ull;
}

/// Whether every byte is below 10: no byte has its top bit, before or after adding 118 to each.
inline bool big_all_are_digits(unsigned long long digits) {
    return (((digits + 0x7676'7676'7676'7676ull) | digits) & 0x8080'8080'8080'8080ull) == 0;
}

/// Writes eight digits as text.
inline void big_store_eight_digits(char* to, unsigned long long digits) {
    unsigned long long text = digits | 0x3030'3030'3030'3030ull;
    if constexpr (std::endian::native == std::endian::big)
        text = __builtin_bswap64(text);
    std::memcpy(to, &text, sizeof text);
}

// ------------------------------------------------------------------------------------------------
// A number
// ------------------------------------------------------------------------------------------------

/// How many decimal digits a number has; zero has one.
inline std::size_t big_digit_count(unsigned long long value) {
    // Entry n is the smallest number of more than n digits.
    static constexpr auto longer_than = [] {
        std::array<unsigned long long, 20> powers_of_ten{};
        unsigned long long power = 1;
        for (std::size_t n = 1; n < powers_of_ten.size(); ++n)
            powers_of_ten[n] = power *= 10;
        return powers_of_ten; // and 0 in front, so that zero has a digit
    }();
    // A number of b bits has b x log10(2) digits, cut to an integer, or one more; 1233 / 2^12 is
    // log10(2) closely enough for 64 bits.
    auto const bits = static_cast<std::size_t>(std::bit_width(value | 1));
    std::size_t const digits = bits * 1233 >> 12;
    return digits + (value >= longer_than[digits] ? 1 : 0);
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
/// [first, end). The BIG_DIGITS_ROOM bytes in front of `end` are all overwritten.
inline char* big_write_digits(char* end, unsigned long long value) {
    big_write_24_digits(end, value);
    return end - big_digit_count(value);
}

/// Where a number's text is made that becomes a string's content: in front of end(), with as much
/// room behind it.
struct BIG_DIGITS_BUFFER {
    char m_bytes[2 * BIG_DIGITS_ROOM] = {};

    char* end() { return m_bytes + BIG_DIGITS_ROOM; }
};

/// Makes the text [first, buffer.end()) the whole content of a string.
///
/// The string takes a fixed number of characters, so that the copy goes one way for numbers of
/// every length, and is then cut back. One without room for every number is taken for new: it gets
/// no more than a short number needs, which new strings hold without an allocation.
inline void big_assign_digits(std::string* out, BIG_DIGITS_BUFFER& buffer, char const* first) {
    constexpr std::size_t short_number = 15;
    std::size_t const length = static_cast<std::size_t>(buffer.end() - first);
    if (out->capacity() >= BIG_DIGITS_ROOM || length > short_number)
        out->assign(first, BIG_DIGITS_ROOM);
    else
        out->assign(first, short_number);
    out->resize(length);
}

#endif
