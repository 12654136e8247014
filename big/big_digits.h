#ifndef BIG_DIGITS_H
#define BIG_DIGITS_H

/// @file
/// Decimal digits of unsigned integers: writing them, and reading them.
///
/// Digits go by eights, side by side in the bytes of one word with the most significant digit in
/// the lowest byte, as a text lies in memory. A word is computed without a loop, and nearly every
/// number without a branch on its length: numbers of mixed lengths cost as little as equal ones.

#include <algorithm>
#include <array>
#include <bit>
#include <cstddef>
#include <cstring>
#include <string>

#if defined(__SSE2__) && !defined(BIG_PORTABLE)
#include <emmintrin.h>
#endif

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

/// Writes the last digits of a number below 10^8, the first `left_out` of eight left out. Eight
/// characters at the place are overwritten.
inline void big_write_last_of_eight(char* to, unsigned int number, std::size_t left_out) {
    big_store_eight_digits(to, big_eight_digits(number) >> 8 * left_out);
}

// ------------------------------------------------------------------------------------------------
// Sixteen digits
// ------------------------------------------------------------------------------------------------

/// Sixteen digits, most significant first.
struct BIG_SIXTEEN_DIGITS {
    unsigned long long m_upper; ///< the first eight
    unsigned long long m_lower; ///< the last eight

    /// Writes them as text.
    void store(char* to) const {
        big_store_eight_digits(to, m_upper);
        big_store_eight_digits(to + 8, m_lower);
    }
};

/// The digits of two numbers below 10^8, one after the other.
///
/// Where there are vectors of 16 bytes, both go down the ladder above side by side (W. Mula, "SSE:
/// conversion integers to decimal representation", 2011). The reciprocals are wider than there,
/// as its multiplications allow:
///
///     lanes          hold            split by
///     2 of 64 bits   below 10^8      10000:  x 3518437209 / 2^45
///     4 of 32 bits   below 10^4      100:    x 5243 / 2^19
///     8 of 16 bits   below 100       10:     x 6554 / 2^16
inline BIG_SIXTEEN_DIGITS big_sixteen_digits(unsigned int upper, unsigned int lower) {
#if defined(__SSE2__) && !defined(BIG_PORTABLE)
    __m128i const number = _mm_set_epi64x(lower, upper);
    __m128i const thousands =
        _mm_srli_epi64(_mm_mul_epu32(number, _mm_set1_epi64x(3518437209)), 45);
    __m128i const below_thousands =
        _mm_sub_epi64(number, _mm_mul_epu32(thousands, _mm_set1_epi64x(10000)));
    __m128i const fours = _mm_or_si128(thousands, _mm_slli_epi64(below_thousands, 32));

    __m128i const hundreds = _mm_srli_epi16(_mm_mulhi_epu16(fours, _mm_set1_epi16(5243)), 3);
    __m128i const below_hundreds =
        _mm_sub_epi16(fours, _mm_mullo_epi16(hundreds, _mm_set1_epi16(100)));
    __m128i const twos = _mm_or_si128(hundreds, _mm_slli_epi32(below_hundreds, 16));

    __m128i const tens = _mm_mulhi_epu16(twos, _mm_set1_epi16(6554));
    __m128i const ones = _mm_sub_epi16(twos, _mm_mullo_epi16(tens, _mm_set1_epi16(10)));
    __m128i const digits = _mm_or_si128(tens, _mm_slli_epi16(ones, 8));
    return {static_cast<unsigned long long>(_mm_cvtsi128_si64(digits)),
            static_cast<unsigned long long>(_mm_cvtsi128_si64(_mm_unpackhi_epi64(digits, digits)))};
#else
    return {big_eight_digits(upper), big_eight_digits(lower)};
#endif
}

/// The digits of a number below 10^16.
inline BIG_SIXTEEN_DIGITS big_sixteen_digits(unsigned long long number) {
    return big_sixteen_digits(static_cast<unsigned int>(number / 100000000),
                              static_cast<unsigned int>(number % 100000000));
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

/// The longest text that big_assign_text() takes.
inline constexpr std::size_t BIG_TEXT_ROOM = 64;

/// Makes a text the whole content of a string, in place where the standard library can.
///
/// @param room  how many characters `write` may overwrite, besides the zero byte behind them; of
///              these it overwrites at most BIG_TEXT_ROOM. A new string holds 15 without an
///              allocation.
/// @param write `std::size_t (char* to)`: writes the text and returns its length
template <typename WRITE>
void big_assign_text(std::string* out, std::size_t room, WRITE write) {
#ifdef __cpp_lib_string_resize_and_overwrite
    out->resize_and_overwrite(room, [&](char* to, std::size_t) { return write(to); });
#else
    static_cast<void>(room);
    char text[BIG_TEXT_ROOM + 1];
    out->assign(text, write(text));
#endif
}

/// Writes a number that has `count` digits. Eight bytes at `to` are overwritten at least.
inline void big_put_digits(char* to, unsigned long long number, std::size_t count) {
    constexpr unsigned long long ten_to_8 = 100000000;
    unsigned long long upper = number / ten_to_8;
    unsigned long long const lower = number % ten_to_8;
    if (count > 16) {
        auto const top = static_cast<unsigned int>(upper / ten_to_8); // at most 1844
        upper %= ten_to_8;
        big_write_last_of_eight(to, top, 24 - count);
        to += count - 16;
        count = 16;
    }
    // Leading zeros are shifted out. Where no digit stands in front of the last eight, eight zeros
    // would be: they stay, and the last eight overwrite them.
    BIG_SIXTEEN_DIGITS const digits =
        big_sixteen_digits(static_cast<unsigned int>(upper), static_cast<unsigned int>(lower));
    std::size_t const behind = std::min<std::size_t>(count, 8);
    std::size_t const front = count - behind;
    big_store_eight_digits(to, digits.m_upper >> 8 * (8 - front) % 64);
    big_store_eight_digits(to + front, digits.m_lower >> 8 * (8 - behind));
}

/// Writes a number without leading zeros and returns its end. Eight bytes at `to` are overwritten
/// at least.
inline char* big_put_number(char* to, unsigned long long number) {
    std::size_t const count = big_digit_count(number);
    big_put_digits(to, number, count);
    return to + count;
}

/// Writes a number that has `count` digits, with a minus sign or not, and returns its length. Nine
/// bytes at `to` are overwritten at least.
inline std::size_t big_put_signed_digits(char* to, unsigned long long magnitude, bool negative,
                                         std::size_t count) {
    *to = '-'; // which the first digit overwrites when there is no sign
    std::size_t const signs = negative ? 1 : 0;
    big_put_digits(to + signs, magnitude, count);
    return signs + count;
}

/// A number's text, with a minus sign or not.
inline std::string big_number_text(unsigned long long magnitude, bool negative) {
    constexpr std::size_t least_room = 15; // a longer text needs an allocation
    std::size_t const digits = big_digit_count(magnitude);
    std::string text;
    big_assign_text(&text, std::max(digits + (negative ? 1 : 0), least_room), [=](char* to) {
        return big_put_signed_digits(to, magnitude, negative, digits);
    });
    return text;
}

/// What big_assign_number() does when there is too little room. It stands by itself, so that what
/// is done for every number needs no registers for this.
[[gnu::noinline]] inline void
big_assign_number_elsewhere(std::string* out, unsigned long long magnitude, bool negative) {
    *out = big_number_text(magnitude, negative);
}

/// Makes a number's text, with a minus sign or not, the whole content of a string.
inline void big_assign_number(std::string* out, unsigned long long magnitude, bool negative) {
    std::size_t const digits = big_digit_count(magnitude);
    std::size_t const room = out->capacity();
    if (room < digits + (negative ? 1 : 0) || room < 9)
        return big_assign_number_elsewhere(out, magnitude, negative);
    big_assign_text(out, room, [=](char* to) {
        return big_put_signed_digits(to, magnitude, negative, digits);
    });
}

#endif
