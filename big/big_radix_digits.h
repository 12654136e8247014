#ifndef BIG_RADIX_DIGITS_H
#define BIG_RADIX_DIGITS_H

/// @file
/// Digits in text and numbers in machine words: many digits at a time, by arithmetic on whole words
/// of text ("SIMD within a register", Lamport 1975; Fisher & Dietz 1998) or, on processors that
/// have them, SSE2 instructions. The two give the same results; defining BIG_PORTABLE leaves out
/// the second.
///
/// A number is an array of words, least significant first; a text is most significant digit first.

#include "big_digits.h"
#include "big_limb.h"

#include <array>
#include <bit>
#include <cstring>

#if defined(__SSE2__) && !defined(BIG_PORTABLE)
#define BIG_SSE2 1
#include <emmintrin.h>
#else
#define BIG_SSE2 0
#endif

#pragma GCC visibility push(hidden)

namespace big_digits {

using big_natural::WORD;

constexpr std::size_t BITS_PER_WORD = 64;

/// A byte in every byte of a word.
constexpr WORD everywhere(unsigned char byte) {
    return byte * WORD{0x0101010101010101};
}

constexpr WORD reverse_bytes(WORD word) {
    return __builtin_bswap64(word);
}

/// Reads up to eight characters, the first into the lowest byte; the bytes above are 0.
template <std::size_t COUNT = 8>
WORD load_characters(char const* text) {
    WORD word = 0;
    std::memcpy(&word, text, COUNT);
    return std::endian::native == std::endian::little ? word : reverse_bytes(word);
}

/// Reads n <= 8 characters into the upper bytes of a word, the last one into the highest. Below
/// them stands '0', like zeros in front of a number. Two reads that overlap leave no loop whose end
/// could be mispredicted.
inline WORD load_padded(char const* text, std::size_t n) {
    std::size_t const first = 64 - 8 * n; // bit of the first character
    WORD word = 0;
    if (n >= 4)
        word = load_characters<4>(text) << first | load_characters<4>(text + n - 4) << 32;
    else if (n > 0)
        word = load_characters<1>(text) << first
               | load_characters<1>(text + n / 2) << (first + 8 * (n / 2))
               | load_characters<1>(text + n - 1) << 56;
    return word | everywhere('0') >> 4 * n >> 4 * n;
}

/// Reads the first n % 8 of n characters like load_padded(), so that whole words are left.
inline WORD load_first(char const* text, std::size_t n) {
    std::size_t const count = n % 8;
    if (n < 8)
        return load_padded(text, count);
    return load_characters(text) << 8 * (7 - count) << 8 | everywhere('0') >> 8 * count;
}

/// Writes eight characters, the first from the lowest byte.
inline void store_characters(WORD word, char* text) {
    if (std::endian::native != std::endian::little)
        word = reverse_bytes(word);
    std::memcpy(text, &word, sizeof word);
}

/// Writes zeros until at most so many of n digits are left, and returns the place behind them.
inline char* write_zeros(std::size_t& n, std::size_t left, char* text) {
    if (n <= left)
        return text;
    std::size_t const count = n - left;
    std::memset(text, '0', count);
    n = left;
    return text + count;
}

// ------------------------------------------------------------------------------------------------
// Binary digits
// ------------------------------------------------------------------------------------------------

/// Whether characters, as load_characters() reads them, are all 0 or 1.
constexpr bool are_bits(WORD characters) {
    return (characters & everywhere(0xFE)) == everywhere('0');
}

/// The number that characters 0 and 1 form. The product puts character i, whose lowest bit is bit
/// 8i, at bit 63 - i: no two of its 64 terms meet in one bit.
constexpr WORD number_of_bits(WORD characters) {
    return (characters & everywhere(1)) * 0x8040201008040201 >> 56;
}

/// Writes eight binary digits. Each byte of the spread word keeps one bit of the number, the first
/// byte its highest, and adding 0x7F carries that bit to the byte's top.
constexpr WORD eight_bit_characters(WORD number) {
    WORD const spread = (number * everywhere(1)) & 0x0102040810204080;
    return ((spread + everywhere(0x7F)) >> 7 & everywhere(1)) | everywhere('0');
}

#if BIG_SSE2
/// Collects the lowest bit of each of 64 characters, the first as bit 0. Returns false when one of
/// them is not 0 or 1.
inline bool collect_64_bits(char const* text, WORD& collected) {
    __m128i others = _mm_setzero_si128(); // what the characters have in other bits than '0' and '1'
    collected = 0;
#pragma GCC unroll 4
    for (int i = 0; i < 4; ++i) {
        __m128i const part = _mm_loadu_si128(reinterpret_cast<__m128i const*>(text) + i);
        others = _mm_or_si128(others, _mm_xor_si128(part, _mm_set1_epi8('0')));
        auto const bits = static_cast<unsigned>(_mm_movemask_epi8(_mm_slli_epi16(part, 7)));
        collected |= static_cast<WORD>(bits) << 16 * i;
    }
    __m128i const legal = _mm_cmpeq_epi8(_mm_or_si128(others, _mm_set1_epi8(1)), _mm_set1_epi8(1));
    return _mm_movemask_epi8(legal) == 0xFFFF;
}

/// The bits of each half byte in opposite order.
constexpr WORD reverse_half_bytes(WORD word) {
    word = (word >> 2 & everywhere(0x33)) | (word & everywhere(0x33)) << 2;
    return (word >> 1 & everywhere(0x55)) | (word & everywhere(0x55)) << 1;
}
#endif

/// Reads 64 binary digits. Returns false when one of them is not 0 or 1.
inline bool read_64_bits(char const* text, WORD& word) {
#if BIG_SSE2
    bool const legal = collect_64_bits(text, word);
    word = reverse_bytes(reverse_half_bytes(word));
    word = (word >> 4 & everywhere(0x0F)) | (word & everywhere(0x0F)) << 4;
    return legal;
#else
    bool legal = true;
    word = 0;
    for (int i = 0; i < 8; ++i) {
        WORD const characters = load_characters(text + 8 * i);
        legal = legal && are_bits(characters);
        word = word << 8 | number_of_bits(characters);
    }
    return legal;
#endif
}

/// Reads n binary digits into (n + 63) / 64 words. Returns false when one of them is not 0 or 1.
inline bool read_bits(char const* text, std::size_t n, WORD* words) {
    for (; n >= BITS_PER_WORD; n -= BITS_PER_WORD)
        if (!read_64_bits(text + n - BITS_PER_WORD, *words++))
            return false;
    if (n == 0)
        return true;
    WORD others = 0; // what the characters have in other bits than '0' and '1'
    WORD word = 0;
    auto const append = [&](WORD characters) {
        others |= (characters ^ everywhere('0')) & everywhere(0xFE);
        word = word << 8 | number_of_bits(characters);
    };
    if (n % 8 != 0)
        append(load_first(text, n));
    for (text += n % 8; n >= 8; n -= 8, text += 8)
        append(load_characters(text));
    *words = word;
    return others == 0;
}

/// Writes the n lowest bits of a number; bits above its words are 0.
inline void write_bits(WORD const* words, std::size_t used, std::size_t n, char* text) {
    text = write_zeros(n, BITS_PER_WORD * used, text);
    for (; n % 8 != 0; --n)
        *text++ = static_cast<char>('0' + (words[(n - 1) / 64] >> (n - 1) % 64 & 1));
    for (; n != 0; n -= 8, text += 8)
        store_characters(eight_bit_characters(words[(n - 1) / 64] >> (n - 8) % 64 & 0xFF), text);
}

// ------------------------------------------------------------------------------------------------
// Octal digits
// ------------------------------------------------------------------------------------------------

/// Whether eight characters are all octal digits.
constexpr bool are_octal(WORD characters) {
    return (characters & everywhere(0xF8)) == everywhere('0');
}

/// The 24 bits that eight octal digits form: neighbours are joined to pairs, pairs to groups of
/// four, and these to one.
constexpr WORD eight_octal(WORD characters) {
    WORD const digits = characters & everywhere(0x07);
    WORD const pairs = (digits << 3 | digits >> 8) & 0x003F003F003F003F;
    WORD const fours = (pairs << 6 | pairs >> 16) & 0x00000FFF00000FFF;
    return (fours << 12 | fours >> 32) & 0xFFFFFF;
}

/// Writes 24 bits as eight octal digits, by the same steps back.
constexpr WORD eight_octal_characters(WORD number) {
    WORD const fours = (number >> 12 | number << 32) & 0x00000FFF00000FFF;
    WORD const pairs = (fours >> 6 | fours << 16) & 0x003F003F003F003F;
    return ((pairs >> 3 | pairs << 8) & everywhere(0x07)) | everywhere('0');
}

/// Reads n octal digits into (3n + 63) / 64 words. Returns false when one of them is none.
inline bool read_octal(char const* text, std::size_t n, WORD* words) {
    bool legal = true;
    WORD word = 0;
    std::size_t filled = 0; // bits of the word
    auto const append = [&](WORD number, std::size_t bits) {
        word |= number << filled;
        filled += bits;
        if (filled >= BITS_PER_WORD) {
            filled -= BITS_PER_WORD;
            *words++ = word;
            word = number >> (bits - filled);
        }
    };
    for (; n >= 8; n -= 8) {
        WORD const characters = load_characters(text + n - 8);
        legal = legal && are_octal(characters);
        append(eight_octal(characters), 24);
    }
    if (n != 0) {
        WORD const characters = load_padded(text, n);
        legal = legal && are_octal(characters);
        append(eight_octal(characters), 3 * n);
    }
    if (filled != 0)
        *words = word;
    return legal;
}

/// Writes the n lowest octal digits of a number; digits above its words are 0.
inline void write_octal(WORD const* words, std::size_t used, std::size_t n, char* text) {
    auto const bits_from = [&](std::size_t bit) { // 24 of them or more
        std::size_t const i = bit / BITS_PER_WORD;
        std::size_t const shift = bit % BITS_PER_WORD;
        WORD const lower = i < used ? words[i] >> shift : 0;
        WORD const upper = shift != 0 && i + 1 < used ? words[i + 1] << (BITS_PER_WORD - shift) : 0;
        return lower | upper;
    };
    for (; n % 8 != 0; --n)
        *text++ = static_cast<char>('0' + (bits_from(3 * (n - 1)) & 7));
    for (; n != 0; n -= 8, text += 8)
        store_characters(eight_octal_characters(bits_from(3 * (n - 8)) & 0xFFFFFF), text);
}

// ------------------------------------------------------------------------------------------------
// Hexadecimal digits
// ------------------------------------------------------------------------------------------------

constexpr std::size_t HEX_DIGITS_PER_WORD = 16;
constexpr unsigned char NO_DIGIT = 0xFF;

/// The value of each hexadecimal digit, in either letter case.
constexpr std::array<unsigned char, 256> HEX_VALUE = [] {
    std::array<unsigned char, 256> values{};
    values.fill(NO_DIGIT);
    for (unsigned char i = 0; i < 10; ++i)
        values['0' + i] = i;
    for (unsigned char i = 10; i < 16; ++i)
        values['A' + i - 10] = values['a' + i - 10] = i;
    return values;
}();

#if BIG_SSE2
/// The values of 16 hexadecimal digits. Returns false when one of them is none.
inline bool hex_values_of(__m128i characters, __m128i& values) {
    __m128i const digit = _mm_sub_epi8(characters, _mm_set1_epi8('0'));
    __m128i const letter =
        _mm_sub_epi8(_mm_or_si128(characters, _mm_set1_epi8(0x20)), _mm_set1_epi8('a'));
    // An unsigned comparison: x <= limit where the minimum of both is x.
    __m128i const is_digit = _mm_cmpeq_epi8(_mm_min_epu8(digit, _mm_set1_epi8(9)), digit);
    __m128i const is_letter = _mm_cmpeq_epi8(_mm_min_epu8(letter, _mm_set1_epi8(5)), letter);
    values = _mm_or_si128(_mm_and_si128(is_digit, digit),
                          _mm_and_si128(is_letter, _mm_add_epi8(letter, _mm_set1_epi8(10))));
    return _mm_movemask_epi8(_mm_or_si128(is_digit, is_letter)) == 0xFFFF;
}

/// The number that 16 hexadecimal digits form. Returns false when one of them is none.
inline bool hex_value_of(__m128i characters, WORD& word) {
    __m128i values;
    bool const legal = hex_values_of(characters, values);
    // Two digits to a byte, the first one (the lower half of each pair of bytes) above the second.
    __m128i const pairs = _mm_and_si128(
        _mm_or_si128(_mm_slli_epi16(values, 4), _mm_srli_epi16(values, 8)), _mm_set1_epi16(0xFF));
    __m128i const bytes = _mm_packus_epi16(pairs, pairs);
    word = reverse_bytes(static_cast<WORD>(_mm_cvtsi128_si64(bytes)));
    return legal;
}

/// The 16 hexadecimal digits whose values are the half bytes of a word, the lowest one first.
inline __m128i hex_characters(WORD half_bytes) {
    __m128i const even = _mm_cvtsi64_si128(static_cast<long long>(half_bytes & everywhere(0x0F)));
    __m128i const odd =
        _mm_cvtsi64_si128(static_cast<long long>(half_bytes >> 4 & everywhere(0x0F)));
    __m128i const values = _mm_unpacklo_epi8(even, odd);
    __m128i const is_letter = _mm_cmpgt_epi8(values, _mm_set1_epi8(9));
    __m128i const offsets =
        _mm_add_epi8(_mm_set1_epi8('0'), _mm_and_si128(is_letter, _mm_set1_epi8('A' - '0' - 10)));
    return _mm_add_epi8(values, offsets);
}
#endif

/// The two hexadecimal digits of each byte.
constexpr std::array<std::array<char, 2>, 256> HEX_PAIRS = [] {
    std::array<std::array<char, 2>, 256> pairs{};
    for (std::size_t i = 0; i < pairs.size(); ++i)
        pairs[i] = {"0123456789ABCDEF"[i / 16], "0123456789ABCDEF"[i % 16]};
    return pairs;
}();

/// Reads up to 16 hexadecimal digits. Returns false when one of them is none.
inline bool read_hex_digits(char const* text, std::size_t n, WORD& word) {
#if BIG_SSE2
    bool const is_long = n >= 8; // then the first and the last eight digits, some of them twice
    WORD const first = is_long ? load_characters(text) : everywhere('0');
    WORD const last = is_long ? load_characters(text + n - 8) : load_padded(text, n);
    bool const legal = hex_value_of(
        _mm_set_epi64x(static_cast<long long>(last), static_cast<long long>(first)), word);
    if (is_long)
        word = word >> 32 << 4 * (n - 8) | (word & 0xFFFFFFFF);
    return legal;
#else
    unsigned seen = 0;
    word = 0;
    for (std::size_t i = 0; i < n; ++i) {
        unsigned const value = HEX_VALUE[static_cast<unsigned char>(text[i])];
        seen |= value;
        word = word << 4 | (value & 15);
    }
    return seen < 16;
#endif
}

/// Reads 16 hexadecimal digits. Returns false when one of them is none.
inline bool read_16_hex_digits(char const* text, WORD& word) {
#if BIG_SSE2
    return hex_value_of(_mm_loadu_si128(reinterpret_cast<__m128i const*>(text)), word);
#else
    return read_hex_digits(text, HEX_DIGITS_PER_WORD, word);
#endif
}

/// Reads n hexadecimal digits into (n + 15) / 16 words. Returns false when one of them is none.
inline bool read_hex(char const* text, std::size_t n, WORD* words) {
    for (; n >= HEX_DIGITS_PER_WORD; n -= HEX_DIGITS_PER_WORD)
        if (!read_16_hex_digits(text + n - HEX_DIGITS_PER_WORD, *words++))
            return false;
    return n == 0 || read_hex_digits(text, n, *words);
}

/// Writes a word as 16 hexadecimal digits in upper case.
inline void write_16_hex_digits(WORD word, char* text) {
#if BIG_SSE2
    WORD const swapped = reverse_bytes(word); // first the highest byte, in it first the upper half
    WORD const half_bytes = (swapped >> 4 & everywhere(0x0F)) | (swapped & everywhere(0x0F)) << 4;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(text), hex_characters(half_bytes));
#else
    for (int i = 0; i < 16; ++i)
        text[i] = "0123456789ABCDEF"[word >> (60 - 4 * i) & 15];
#endif
}

/// Writes 16 hexadecimal digits as 64 binary ones: each value is put into four bytes, and each of
/// these looks at one of its bits. Returns false, with nothing written, when one of them is none,
/// and always without SSE2.
inline bool write_16_hex_digits_as_bits([[maybe_unused]] char const* text,
                                        [[maybe_unused]] char* binary) {
#if BIG_SSE2
    __m128i values;
    if (!hex_values_of(_mm_loadu_si128(reinterpret_cast<__m128i const*>(text)), values))
        return false;
    __m128i const first = _mm_unpacklo_epi8(values, values);
    __m128i const last = _mm_unpackhi_epi8(values, values);
    auto const write_fours = [binary](__m128i fours, int at) {
        __m128i const weights = _mm_set1_epi32(0x01020408); // 8 in the first byte
        __m128i const is_set = _mm_cmpeq_epi8(_mm_and_si128(fours, weights), weights); // -1
        _mm_storeu_si128(reinterpret_cast<__m128i*>(binary) + at,
                         _mm_sub_epi8(_mm_set1_epi8('0'), is_set));
    };
    write_fours(_mm_unpacklo_epi16(first, first), 0);
    write_fours(_mm_unpackhi_epi16(first, first), 1);
    write_fours(_mm_unpacklo_epi16(last, last), 2);
    write_fours(_mm_unpackhi_epi16(last, last), 3);
    return true;
#else
    return false;
#endif
}

/// Writes the n <= 16 lowest hexadecimal digits of a word.
inline void write_hex_digits(WORD word, std::size_t n, char* text) {
    if (n < 8) {
        for (; n != 0; word >>= 4)
            text[--n] = "0123456789ABCDEF"[word & 15];
        return;
    }
    char digits[16]; // the first and the last eight of the n, some of them twice
    write_16_hex_digits(word, digits);
    std::memcpy(text, digits + 16 - n, 8);
    std::memcpy(text + n - 8, digits + 8, 8);
}

/// Writes 64 binary digits as 16 hexadecimal ones. The two may begin at the same place. Returns
/// false, with nothing written, when one of them is not 0 or 1.
inline bool write_64_bits_as_hex(char const* binary, char* text) {
    WORD word = 0;
#if BIG_SSE2
    if (!collect_64_bits(binary, word))
        return false;
    _mm_storeu_si128(reinterpret_cast<__m128i*>(text), hex_characters(reverse_half_bytes(word)));
#else
    if (!read_64_bits(binary, word))
        return false;
    write_16_hex_digits(word, text);
#endif
    return true;
}

/// Whether a binary digit, in upper case, is a logic value; of a vector of digits, which of them
/// are.
template <typename DIGITS>
constexpr auto is_logic_value(DIGITS upper) {
    return ((upper | '\2') == 'W') | ((upper | '\2') == 'Z') // U W, X Z
           | ((upper | '\4') == 'L') | (upper == '-');       // H L, -
}

#if BIG_SSE2
/// In each byte a where the mask is set, else b.
inline __m128i choose(__m128i mask, __m128i a, __m128i b) {
    return _mm_or_si128(_mm_and_si128(mask, a), _mm_andnot_si128(mask, b));
}

/// Which of 16 binary digits, in upper case, are logic values.
inline __m128i are_logic_values(__m128i upper) {
    using BYTES [[gnu::vector_size(16)]] = char;
    return reinterpret_cast<__m128i>(is_logic_value(reinterpret_cast<BYTES>(upper)));
}

/// What groups of four binary digits are: each stands in a lane of 32 bits.
struct GROUPS {
    __m128i are_legal;   ///< each character by itself
    __m128i are_numbers; ///< each lane
    __m128i are_equal;   ///< each lane, whether its characters are
    __m128i characters;  ///< the first of each lane
};

inline GROUPS classified(__m128i digits) {
    __m128i const all = _mm_set1_epi8(-1);
    __m128i const case_bits = _mm_srli_epi16(_mm_and_si128(digits, _mm_set1_epi8(0x40)), 1);
    __m128i const upper = _mm_andnot_si128(case_bits, digits); // letters alone have both bits
    __m128i const are_bits =
        _mm_cmpeq_epi8(_mm_or_si128(upper, _mm_set1_epi8(1)), _mm_set1_epi8('1'));
    __m128i const turned = _mm_or_si128(_mm_srli_epi32(upper, 8), _mm_slli_epi32(upper, 24));
    return {_mm_or_si128(are_bits, are_logic_values(upper)), _mm_cmpeq_epi32(are_bits, all),
            _mm_cmpeq_epi32(_mm_cmpeq_epi8(upper, turned), all),
            _mm_and_si128(upper, _mm_set1_epi32(0xFF))};
}

/// The lowest byte of each lane. Lanes are -1 or below 128.
inline __m128i lowest_bytes(__m128i a, __m128i b, __m128i c, __m128i d) {
    return _mm_packs_epi16(_mm_packs_epi32(a, b), _mm_packs_epi32(c, d));
}
#endif

/// Writes 64 binary digits, of either letter case and logic values among them, as 16 hexadecimal
/// ones: a group of one logic value is that value, and another that is no number is X. The two may
/// begin at the same place. Returns false, with nothing written, when one of them is no binary
/// digit, and always without SSE2.
///
/// What each group is is found in all lanes at once, and its digit is chosen by masks: a branch for
/// each group could not be predicted where numbers and logic values take turns.
inline bool write_64_logic_values_as_hex([[maybe_unused]] char const* binary,
                                         [[maybe_unused]] char* text) {
#if BIG_SSE2
    auto const part = [binary](int i) {
        return classified(_mm_loadu_si128(reinterpret_cast<__m128i const*>(binary) + i));
    };
    GROUPS const a = part(0);
    GROUPS const b = part(1);
    GROUPS const c = part(2);
    GROUPS const d = part(3);
    __m128i const are_legal = _mm_and_si128(_mm_and_si128(a.are_legal, b.are_legal),
                                            _mm_and_si128(c.are_legal, d.are_legal));
    if (_mm_movemask_epi8(are_legal) != 0xFFFF)
        return false;
    WORD numbers = 0;
    collect_64_bits(binary, numbers);
    __m128i const logic_values = choose(
        lowest_bytes(a.are_equal, b.are_equal, c.are_equal, d.are_equal),
        lowest_bytes(a.characters, b.characters, c.characters, d.characters), _mm_set1_epi8('X'));
    __m128i const digits =
        choose(lowest_bytes(a.are_numbers, b.are_numbers, c.are_numbers, d.are_numbers),
               hex_characters(reverse_half_bytes(numbers)), logic_values);
    _mm_storeu_si128(reinterpret_cast<__m128i*>(text), digits);
    return true;
#else
    return false;
#endif
}

/// Writes the n lowest hexadecimal digits of a number; digits above its words are 0.
inline void write_hex(WORD const* words, std::size_t used, std::size_t n, char* text) {
    text = write_zeros(n, HEX_DIGITS_PER_WORD * used, text);
    if (std::size_t const first = n % HEX_DIGITS_PER_WORD; first != 0) {
        write_hex_digits(words[n / HEX_DIGITS_PER_WORD], first, text);
        text += first;
        n -= first;
    }
    for (; n != 0; n -= HEX_DIGITS_PER_WORD, text += HEX_DIGITS_PER_WORD)
        write_16_hex_digits(words[n / HEX_DIGITS_PER_WORD - 1], text);
}

// ------------------------------------------------------------------------------------------------
// Decimal digits
// ------------------------------------------------------------------------------------------------

using big_natural::DIGITS_PER_LIMB;

constexpr WORD TEN_TO_8 = 100'000'000;
constexpr WORD TEN_TO_16 = TEN_TO_8 * TEN_TO_8;

/// Reads 16 decimal digits. Returns false when one of them is none. With SSE2 the steps are those
/// of big_number_of_eight_digits(), in 16 bytes at once (Mula, "Parsing decimal numbers - part 2:
/// SSE", 2014).
inline bool read_16_decimal_digits(char const* text, WORD& number) {
#if BIG_SSE2
    __m128i const characters = _mm_loadu_si128(reinterpret_cast<__m128i const*>(text));
    __m128i const digits = _mm_sub_epi8(characters, _mm_set1_epi8('0'));
    __m128i const are_digits = _mm_cmpeq_epi8(_mm_min_epu8(digits, _mm_set1_epi8(9)), digits);
    __m128i const tens =
        _mm_mullo_epi16(_mm_and_si128(digits, _mm_set1_epi16(0xFF)), _mm_set1_epi16(10));
    __m128i const pairs = _mm_add_epi16(tens, _mm_srli_epi16(digits, 8));
    __m128i const fours = _mm_madd_epi16(pairs, _mm_set1_epi32(1 << 16 | 100));
    __m128i const eights =
        _mm_madd_epi16(_mm_packs_epi32(fours, fours), _mm_set1_epi32(1 << 16 | 10000));
    auto const both = static_cast<WORD>(_mm_cvtsi128_si64(eights));
    number = (both & 0xFFFFFFFF) * TEN_TO_8 + (both >> 32);
    return _mm_movemask_epi8(are_digits) == 0xFFFF;
#else
    WORD const upper = load_characters(text) ^ everywhere('0');
    WORD const lower = load_characters(text + 8) ^ everywhere('0');
    number = big_number_of_eight_digits(upper) * TEN_TO_8 + big_number_of_eight_digits(lower);
    return big_all_are_digits(upper) && big_all_are_digits(lower);
#endif
}

/// Reads up to 19 decimal digits. Returns false when one of them is none.
inline bool read_decimal_digits(char const* text, std::size_t n, WORD& number) {
    bool legal = true;
    WORD upper = 0;
    if (n % 8 != 0) {
        WORD const digits = load_first(text, n) ^ everywhere('0');
        legal = big_all_are_digits(digits);
        upper = big_number_of_eight_digits(digits);
    }
    text += n % 8;
    if (n < 8) {
        number = upper;
    } else if (n < 16) {
        WORD const digits = load_characters(text) ^ everywhere('0');
        legal &= big_all_are_digits(digits);
        number = upper * TEN_TO_8 + big_number_of_eight_digits(digits);
    } else {
        legal &= read_16_decimal_digits(text, number);
        number += upper * TEN_TO_16;
    }
    return legal;
}

/// Reads n decimal digits into (n + 18) / 19 limbs of base 10^19. Returns false when one of them is
/// none.
inline bool read_decimal(char const* text, std::size_t n, WORD* limbs) {
    for (; n >= DIGITS_PER_LIMB; n -= DIGITS_PER_LIMB)
        if (!read_decimal_digits(text + n - DIGITS_PER_LIMB, DIGITS_PER_LIMB, *limbs++))
            return false;
    return n == 0 || read_decimal_digits(text, n, *limbs);
}

/// Writes a number of at most n decimal digits, n at most 20, with zeros in front.
inline void write_decimal_digits(WORD number, std::size_t n, char* text) {
    if (n < 8) {
        for (; n != 0; number /= 10)
            text[--n] = static_cast<char>('0' + number % 10);
        return;
    }
    // The first digits are written as eight; what these are too many is written over.
    if (n < 16) {
        big_write_last_of_eight(text, static_cast<unsigned int>(number / TEN_TO_8), (16 - n) % 8);
        big_write_last_of_eight(text + n - 8, static_cast<unsigned int>(number % TEN_TO_8), 0);
    } else {
        big_write_last_of_eight(text, static_cast<unsigned int>(number / TEN_TO_16), (24 - n) % 8);
        big_sixteen_digits(number % TEN_TO_16).store(text + n - 16);
    }
}

/// Room for write_decimal_before() and a sign in front.
constexpr std::size_t LONGEST_DECIMAL = 33;

/// Writes a number in decimal in front of a place and returns where its text begins. There are
/// zeros in front of that, up to a multiple of 16 characters.
inline char* write_decimal_before(WORD number, char* end) {
    char* const begin = end - big_digit_count(number);
    if (number < TEN_TO_8) {
        big_write_last_of_eight(end - 8, static_cast<unsigned int>(number), 0);
        return begin;
    }
    do {
        end -= 16;
        big_sixteen_digits(number % TEN_TO_16).store(end);
        number /= TEN_TO_16;
    } while (number != 0);
    return begin;
}

} // namespace big_digits

#pragma GCC visibility pop

#endif
