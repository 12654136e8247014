#ifndef BIG_NUMBER_H
#define BIG_NUMBER_H

/// @file
/// Numbers between their texts: read from digits, changed as their width asks, written as digits.
///
/// There are two kinds with the same operations, one for numbers of a single word and one for all,
/// so that what is done with them is written once.

#include "big_natural.h"
#include "big_radix_digits.h"

#include <algorithm>
#include <bit>
#include <limits>
#include <memory>
#include <string>
#include <string_view>
#include <utility>

#pragma GCC visibility push(hidden)

namespace big_natural {

using big_digits::BITS_PER_WORD;

/// A natural number in one machine word.
class SHORT_NUMBER {
public:
    static constexpr std::size_t LARGEST_WIDTH = BITS_PER_WORD;

    WORD* allocate(std::size_t) { return &m_word; }
    void set_size(std::size_t) {}

    WORD const* words() const { return &m_word; }
    std::size_t used() const { return m_word != 0; }
    std::size_t bit_length() const { return static_cast<std::size_t>(std::bit_width(m_word)); }
    bool has_bit(std::size_t i) const { return i < BITS_PER_WORD && (m_word >> i & 1) != 0; }
    bool is_power_of_two() const { return std::has_single_bit(m_word); }

    void truncate(std::size_t bits) {
        if (bits < BITS_PER_WORD)
            m_word &= (WORD{1} << bits) - 1;
    }
    void complement(std::size_t bits) {
        m_word = 0 - m_word;
        truncate(bits);
    }

private:
    WORD m_word = 0;
};

/// A natural number of any size in machine words, least significant first. One of up to 2048 bits
/// needs no memory of its own.
class NUMBER {
public:
    static constexpr std::size_t LARGEST_WIDTH = std::numeric_limits<std::size_t>::max();

    /// Makes room for words, whose content is then undefined.
    WORD* allocate(std::size_t count) {
        if (count > OWN_WORDS) {
            m_long = std::make_unique_for_overwrite<WORD[]>(count);
            m_words = m_long.get();
        }
        return m_words;
    }

    /// Says how many words the number has, zeros at the upper end included.
    void set_size(std::size_t count) { m_used = limbs_in_use(m_words, count); }

    WORD const* words() const { return m_words; }
    std::size_t used() const { return m_used; }

    /// The number's bits, 0 for the number 0.
    std::size_t bit_length() const {
        return m_used == 0 ? 0
                           : m_used * BITS_PER_WORD
                                 - static_cast<std::size_t>(std::countl_zero(m_words[m_used - 1]));
    }

    bool has_bit(std::size_t i) const {
        return i / BITS_PER_WORD < m_used
               && (m_words[i / BITS_PER_WORD] >> i % BITS_PER_WORD & 1) != 0;
    }

    bool is_power_of_two() const {
        return m_used != 0 && std::has_single_bit(m_words[m_used - 1])
               && limbs_in_use(m_words, m_used - 1) == 0;
    }

    /// Keeps the lowest bits.
    void truncate(std::size_t bits) {
        std::size_t const whole = bits / BITS_PER_WORD;
        if (whole >= m_used)
            return;
        m_words[whole] &= (WORD{1} << bits % BITS_PER_WORD) - 1;
        set_size(whole + 1);
    }

    /// Becomes 2^bits less itself. It must be below 2^bits and not 0.
    void complement(std::size_t bits) {
        std::size_t const count = (bits - 1) / BITS_PER_WORD + 1;
        extend(count);
        bool carry = true;
        for (std::size_t i = 0; i < count; ++i)
            m_words[i] = BINARY::add(~m_words[i], 0, carry);
        m_used = count;
        truncate(bits);
        set_size(m_used);
    }

private:
    static constexpr std::size_t OWN_WORDS = 36; ///< 2048 bits in either base

    /// Writes zeros above the words in use, up to a number of words.
    void extend(std::size_t count) {
        if (count > OWN_WORDS && count > m_used) {
            auto longer = std::make_unique_for_overwrite<WORD[]>(count);
            std::copy_n(m_words, m_used, longer.get());
            m_long = std::move(longer);
            m_words = m_long.get();
        }
        std::fill(m_words + m_used, m_words + count, WORD{0});
    }

    WORD m_own[OWN_WORDS];
    std::unique_ptr<WORD[]> m_long;
    WORD* m_words = m_own;
    std::size_t m_used = 0;
};

// ------------------------------------------------------------------------------------------------
// Reading: every operation returns false when a character is no digit, and logic values are none
// ------------------------------------------------------------------------------------------------

/// Reads binary digits.
template <class VALUE>
bool read_bits(std::string_view digits, VALUE& value) {
    std::size_t const count = (digits.size() + BITS_PER_WORD - 1) / BITS_PER_WORD;
    if (!big_digits::read_bits(digits.data(), digits.size(), value.allocate(count)))
        return false;
    value.set_size(count);
    return true;
}

/// Reads octal digits.
template <class VALUE>
bool read_octal(std::string_view digits, VALUE& value) {
    std::size_t const count = (3 * digits.size() + BITS_PER_WORD - 1) / BITS_PER_WORD;
    if (!big_digits::read_octal(digits.data(), digits.size(), value.allocate(count)))
        return false;
    value.set_size(count);
    return true;
}

/// Reads hexadecimal digits.
template <class VALUE>
bool read_hex(std::string_view digits, VALUE& value) {
    std::size_t const count = (4 * digits.size() + BITS_PER_WORD - 1) / BITS_PER_WORD;
    if (!big_digits::read_hex(digits.data(), digits.size(), value.allocate(count)))
        return false;
    value.set_size(count);
    return true;
}

/// Reads at most 16 hexadecimal digits.
inline bool read_hex(std::string_view digits, SHORT_NUMBER& value) {
    return big_digits::read_hex_digits(digits.data(), digits.size(), *value.allocate(1));
}

/// Reads decimal digits, at least one. A number that does not fit is refused too, and more than 20
/// digits are.
inline bool read_decimal(std::string_view digits, SHORT_NUMBER& value) {
    WORD& word = *value.allocate(1);
    if (digits.size() <= DIGITS_PER_LIMB)
        return big_digits::read_decimal_digits(digits.data(), digits.size(), word);
    if (digits.size() != DIGITS_PER_LIMB + 1 || (digits[0] != '0' && digits[0] != '1')
        || !big_digits::read_decimal_digits(digits.data() + 1, DIGITS_PER_LIMB, word))
        return false;
    return digits[0] == '0' || !__builtin_add_overflow(word, TEN_TO_19, &word);
}

/// Reads decimal digits, at least one.
inline bool read_decimal(std::string_view digits, NUMBER& value) {
    digits.remove_prefix(std::min(digits.find_first_not_of('0'), digits.size() - 1));
    std::size_t const count = (digits.size() + DIGITS_PER_LIMB - 1) / DIGITS_PER_LIMB;
    NUMBER limbs;
    WORD* const target = limbs.allocate(count);
    if (!big_digits::read_decimal(digits.data(), digits.size(), target))
        return false;
    value.set_size(change_base<BINARY>(target, count, value.allocate(limbs_for<BINARY>(count))));
    return true;
}

// ------------------------------------------------------------------------------------------------
// Writing
// ------------------------------------------------------------------------------------------------

/// Resizes a string that is about to be overwritten. Repeated conversions of one width find their
/// result as long as it must be, and then this is all they pay.
[[gnu::noinline]] inline void resize(std::string* text, std::size_t size) {
    text->resize(size);
}
inline void make_room(std::string* text, std::size_t size) {
    if (text->size() != size)
        resize(text, size);
}

/// Writes the lowest binary digits of a number as the whole of *result.
template <class VALUE>
void write_bits(VALUE const& value, std::size_t digits, std::string* result) {
    make_room(result, digits);
    big_digits::write_bits(value.words(), value.used(), digits, result->data());
}

/// Writes the lowest octal digits of a number as the whole of *result.
template <class VALUE>
void write_octal(VALUE const& value, std::size_t digits, std::string* result) {
    make_room(result, digits);
    big_digits::write_octal(value.words(), value.used(), digits, result->data());
}

/// Writes the lowest hexadecimal digits of a number as the whole of *result.
template <class VALUE>
void write_hex(VALUE const& value, std::size_t digits, std::string* result) {
    make_room(result, digits);
    big_digits::write_hex(value.words(), value.used(), digits, result->data());
}

/// Writes limbs in decimal into *result from a place on, which ends the result.
///
/// @param digits limbs of base 10^19, but a single one may be any word
inline void write_limbs(WORD const* digits, std::size_t count, bool has_minus, std::string* result,
                        std::size_t at) {
    WORD const top = count == 0 ? 0 : digits[count - 1];
    std::size_t const top_length = big_digit_count(top);
    std::size_t const others = count == 0 ? 0 : count - 1;

    make_room(result, at + has_minus + top_length + DIGITS_PER_LIMB * others);
    char* text = result->data() + at;
    if (has_minus)
        *text++ = '-';
    big_digits::write_decimal_digits(top, top_length, text);
    text += top_length;
    for (std::size_t i = others; i-- > 0; text += DIGITS_PER_LIMB)
        big_digits::write_decimal_digits(digits[i], DIGITS_PER_LIMB, text);
}

/// Writes a number in decimal into *result from a place on, which ends the result.
inline void write_decimal(SHORT_NUMBER const& value, bool has_minus, std::string* result,
                          std::size_t at) {
    char text[big_digits::LONGEST_DECIMAL];
    char* const end = text + sizeof text;
    char* begin = big_digits::write_decimal_before(*value.words(), end);
    if (has_minus)
        *--begin = '-';
    // Not make_room(), whose branch would be mispredicted: lengths change from number to number.
    result->resize(at);
    result->append(begin, static_cast<std::size_t>(end - begin));
}

inline void write_decimal(NUMBER const& value, bool has_minus, std::string* result,
                          std::size_t at) {
    if (value.used() <= 1)
        return write_limbs(value.words(), value.used(), has_minus, result, at);
    NUMBER limbs;
    WORD* const digits = limbs.allocate(limbs_for<DECIMAL>(value.used()));
    std::size_t const count = change_base<DECIMAL>(value.words(), value.used(), digits);
    write_limbs(digits, count, has_minus, result, at);
}

} // namespace big_natural

#pragma GCC visibility pop

#endif
