#ifndef BIG_LIMB_H
#define BIG_LIMB_H

/// @file
/// The two bases in which natural numbers are held, and their single steps.
///
/// A number is an array of limbs, least significant first. In base 2^64 (BINARY) a limb is any
/// word; in base 10^19 (DECIMAL), the largest power of ten in a word, it is a word below 10^19.
/// Both bases have the same operations, so that products and the change of base are written once.

#include <cstddef>
#include <cstdint>

#pragma GCC visibility push(hidden)

namespace big_natural {

using WORD = std::uint64_t;
__extension__ using WIDE = unsigned __int128;

constexpr WORD TEN_TO_19 = 10'000'000'000'000'000'000u;
constexpr std::size_t DIGITS_PER_LIMB = 19;

constexpr WORD high_word(WIDE a) {
    return static_cast<WORD>(a >> 64);
}

constexpr WORD low_word(WIDE a) {
    return static_cast<WORD>(a);
}

/// The value if the condition holds, else 0, without a branch: the conditions here are as good as
/// random, and a branch would be mispredicted half of the time.
constexpr WORD only_if(bool condition, WORD value) {
    return value & (WORD{0} - static_cast<WORD>(condition));
}

/// The upper half of a product.
constexpr WORD high_product(WORD a, WORD b) {
    return high_word(static_cast<WIDE>(a) * b);
}

/// A divisor whose top bit is set, for dividing two words by it without a division instruction: by
/// a product with its reciprocal and two corrections (Moeller & Granlund, "Improved division by
/// invariant integers", 2011, algorithm 4).
class DIVISOR {
public:
    constexpr explicit DIVISOR(WORD value)
        : m_value(value), m_reciprocal(low_word(~WIDE{0} / value)) {} // its bit 64 is left out

    /// Divides high:low. Takes high < value, returns the quotient and sets high to the remainder.
    constexpr WORD divide(WORD& high, WORD low) const {
        WIDE const estimate =
            static_cast<WIDE>(m_reciprocal) * high + (static_cast<WIDE>(high) << 64 | low);
        WORD const quotient = high_word(estimate) + 1;
        WORD const remainder = low - quotient * m_value;
        bool const too_large = remainder > low_word(estimate);
        WORD const corrected = remainder + only_if(too_large, m_value);
        if (corrected >= m_value) [[unlikely]] {
            high = corrected - m_value;
            return quotient - too_large + 1;
        }
        high = corrected;
        return quotient - too_large;
    }

    constexpr WORD reciprocal() const { return m_reciprocal; }

private:
    WORD m_value;
    WORD m_reciprocal; ///< floor((2^128 - 1) / value) - 2^64
};

/// A sum of products of limbs: 192 bits.
struct COLUMN {
    WIDE low = 0;
    WORD high = 0;

    constexpr void add(WIDE a) {
        low += a;
        high += low < a;
    }
    constexpr void add(COLUMN const& other) {
        add(other.low);
        high += other.high;
    }
    constexpr void subtract(COLUMN const& other) {
        high -= other.high + (low < other.low);
        low -= other.low;
    }
};

/// Base 2^64.
struct BINARY {
    static constexpr WORD LARGEST_DIGIT = ~WORD{0};

    /// a + b + carry.
    static WORD add(WORD a, WORD b, bool& carry) {
        WIDE const sum = static_cast<WIDE>(a) + b + carry;
        carry = high_word(sum) != 0;
        return low_word(sum);
    }

    /// Takes the lowest digit off a sum; the rest stays as the carry into the next column.
    static WORD take_digit(COLUMN& sum) {
        WORD const digit = low_word(sum.low);
        sum.low = sum.low >> 64 | static_cast<WIDE>(sum.high) << 64;
        sum.high = 0;
        return digit;
    }

    /// One step of x * 10^19 + carry, which appends a digit of the other base to a number x: the
    /// digit becomes that of the result and the new carry is returned.
    static WORD shift_in(WORD& digit, WORD carry) {
        WIDE const product = static_cast<WIDE>(digit) * TEN_TO_19 + carry;
        digit = low_word(product);
        return high_word(product);
    }
};

/// Base 10^19.
struct DECIMAL {
    static constexpr WORD LARGEST_DIGIT = TEN_TO_19 - 1;
    static constexpr DIVISOR BASE{TEN_TO_19};

    /// a + b + carry, which may be more than a word holds.
    static WORD add(WORD a, WORD b, bool& carry) {
        WORD const room = TEN_TO_19 - b - carry; // 0 to 10^19
        carry = a >= room;
        return a - room + only_if(!carry, TEN_TO_19);
    }

    /// Takes the lowest digit off a sum; the rest stays as the carry into the next column. The sum
    /// must be below 10^19 * 2^128, which 2^60 products of two digits are.
    static WORD take_digit(COLUMN& sum) {
        WORD remainder = sum.high;
        WORD const high = BASE.divide(remainder, high_word(sum.low));
        WORD const low = BASE.divide(remainder, low_word(sum.low));
        sum.low = static_cast<WIDE>(high) << 64 | low;
        sum.high = 0;
        return remainder;
    }

    /// One step of x * 2^64 + carry, which appends a digit of the other base to a number x: the
    /// digit becomes that of the result and the new carry is returned.
    static WORD shift_in(WORD& digit, WORD carry) { return BASE.divide(digit, carry); }
};

/// Column k of the product a * b: the sum of a[i] * b[k - i].
inline COLUMN column_of(WORD const* a, std::size_t n, WORD const* b, std::size_t m, std::size_t k) {
    COLUMN sum;
    std::size_t const end = k < n ? k + 1 : n;
    std::size_t i = k < m ? 0 : k - m + 1;
#ifndef __clang__ // which makes too much of it
#pragma GCC unroll 4
#endif
    for (; i < end; ++i)
        sum.add(static_cast<WIDE>(a[i]) * b[k - i]);
    return sum;
}

} // namespace big_natural

#pragma GCC visibility pop

#endif
