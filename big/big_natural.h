#ifndef BIG_NATURAL_H
#define BIG_NATURAL_H

/// @file
/// Natural numbers of any size in base 2^64 and in base 10^19: their products, and the change from
/// one base into the other, which is what the conversion between binary and decimal text costs.
///
/// A number is an array of limbs, least significant first. A limb of base 2^64 is any word, one of
/// base 10^19 is a word below 10^19. Everything here is written once for both bases, BINARY and
/// DECIMAL, and none of it knows about text.
///
/// How long a change of base of n limbs takes:
///
///     up to SHORT_CHANGE limbs   n^2 / 2 steps of a few cycles, without memory of its own
///     more                       log n products of halves, quarters, eighths, ... of the number
///
/// and a product of n by n limbs:
///
///     up to SHORT_PRODUCT limbs  n^2
///     up to TRANSFORM_PRODUCT    n^1.585 (Karatsuba & Ofman 1962)
///     more                       n log n (big_transform.h)

#include "big_transform.h"

#include <algorithm>
#include <bit>
#include <memory>
#include <optional>
#include <type_traits>
#include <utility>

#pragma GCC visibility push(hidden)

namespace big_natural {

/// The limbs of a number of the other base up to which Horner's rule is faster than cutting it in
/// two, measured.
template <class BASE>
constexpr std::size_t SHORT_CHANGE = std::is_same_v<BASE, DECIMAL> ? 20 : 40;

// ------------------------------------------------------------------------------------------------
// Sums and products
// ------------------------------------------------------------------------------------------------

/// The limbs in use of a number: without the zeros at its upper end.
inline std::size_t limbs_in_use(WORD const* a, std::size_t n) {
    while (n > 0 && a[n - 1] == 0)
        --n;
    return n;
}

/// a += b, for n >= m limbs. The sum must fit n limbs.
template <class BASE>
void add(WORD* a, std::size_t n, WORD const* b, std::size_t m) {
    bool carry = false;
    for (std::size_t i = 0; i < m; ++i)
        a[i] = BASE::add(a[i], b[i], carry);
    for (std::size_t i = m; carry && i < n; ++i)
        a[i] = BASE::add(a[i], 0, carry);
}

/// out = a * b, column by column, for n and m > 0 limbs into n + m.
template <class BASE>
void multiply(WORD const* a, std::size_t n, WORD const* b, std::size_t m, WORD* out) {
    COLUMN carry;
    for (std::size_t k = 0; k + 1 < n + m; ++k) {
        COLUMN column = column_of(a, n, b, m, k); // does not wait for the carry
        column.add(carry);
        out[k] = BASE::take_digit(column);
        carry = column;
    }
    out[n + m - 1] = BASE::take_digit(carry);
}

// ------------------------------------------------------------------------------------------------
// The change of base
// ------------------------------------------------------------------------------------------------

/// Limbs of BASE that n limbs of the other base need at most: n * log(other base) / log(base).
template <class BASE>
constexpr std::size_t limbs_for(std::size_t n) {
    // 64 / log2(10^19) = 1.013995899...; log2(10^19) / 64 = 0.986197403...
    constexpr double ratio = std::is_same_v<BASE, DECIMAL> ? 1.0139959 : 0.9861975;
    return static_cast<std::size_t>(static_cast<double>(n) * ratio) + 1;
}

/// Writes a number of n limbs of the other base in BASE by Horner's rule. Returns its limbs in use,
/// at most limbs_for(n).
template <class BASE>
std::size_t change_short(WORD const* from, std::size_t n, WORD* to) {
    std::size_t used = 0;
    while (n > 0) {
        WORD carry = from[--n];
        for (std::size_t i = 0; i < used; ++i)
            carry = BASE::shift_in(to[i], carry);
        if (carry > BASE::LARGEST_DIGIT) {
            to[used++] = carry - BASE::LARGEST_DIGIT - 1;
            carry = 1;
        }
        if (carry != 0)
            to[used++] = carry;
    }
    return used;
}

/// The change of base of a long number. It is cut into 2^k blocks of equal length, each block is
/// changed by itself, and then neighbours are joined, level by level, as
///
///     upper * weight + lower        weight = (other base)^(limbs of the lower one)
///
/// where the weight of a level is the square of the one before (Knuth, "The Art of Computer
/// Programming", volume 2, section 4.4, gives the method to Schoenhage).
template <class BASE, class CONVOLUTION>
class LONG_CHANGE {
public:
    LONG_CHANGE(WORD const* from, std::size_t n) : m_result_limbs(limbs_for<BASE>(n)) {
        while (n > SHORT_CHANGE<BASE> * m_blocks)
            m_blocks *= 2;
        m_block_from_limbs = (n - 1) / m_blocks + 1;
        m_block_limbs = limbs_for<BASE>(m_block_from_limbs);
        for (auto* const buffer : {&m_values, &m_joined, &m_weight, &m_next_weight, &m_product})
            *buffer = std::make_unique_for_overwrite<WORD[]>(m_blocks * m_block_limbs);
        change_blocks(from, n);
        set_first_weight();
    }

    /// Writes the number and returns its limbs in use.
    std::size_t run(WORD* to) {
        while (m_blocks > 1)
            join_neighbours();
        std::size_t const used = limbs_in_use(m_values.get(), m_block_limbs);
        std::copy_n(m_values.get(), used, to);
        return used;
    }

private:
    void change_blocks(WORD const* from, std::size_t n) {
        for (std::size_t i = 0; i < m_blocks; ++i) {
            std::size_t const begin = std::min(n, i * m_block_from_limbs);
            std::size_t const end = std::min(n, begin + m_block_from_limbs);
            WORD* const block = m_values.get() + i * m_block_limbs;
            std::size_t const used = change_short<BASE>(from + begin, end - begin, block);
            std::fill(block + used, block + m_block_limbs, WORD{0});
        }
    }

    void set_first_weight() {
        auto const power = std::make_unique<WORD[]>(m_block_from_limbs + 1);
        power[m_block_from_limbs] = 1;
        m_weight_limbs = change_short<BASE>(power.get(), m_block_from_limbs + 1, m_weight.get());
        strip_weight();
    }

    /// Takes the zeros off both ends of the weight. Powers of 10^19 = 5^19 * 2^19 have many at the
    /// lower end in base 2^64.
    void strip_weight() {
        m_weight_limbs = limbs_in_use(m_weight.get(), m_weight_limbs);
        std::size_t zeros = 0;
        while (m_weight[zeros] == 0)
            ++zeros;
        std::copy(m_weight.get() + zeros, m_weight.get() + m_weight_limbs, m_weight.get());
        m_weight_limbs -= zeros;
        m_weight_zeros += zeros;
    }

    void join_neighbours() {
        bool const is_last = m_blocks == 2;
        std::size_t const joined_limbs =
            is_last ? m_result_limbs : limbs_for<BASE>(2 * m_block_from_limbs);
        std::size_t const product_limbs = joined_limbs - m_weight_zeros;
        bool const transforms = m_weight_limbs >= CONVOLUTION::LONG_FACTOR;
        if (transforms) {
            if (!m_convolution)
                m_convolution.emplace(m_result_limbs);
            m_convolution->set_factor(m_weight.get(), m_weight_limbs, product_limbs);
        }

        std::size_t next_limbs = 0;
        if (!is_last && transforms) {
            m_convolution->template square_factor<BASE>(m_next_weight.get());
            next_limbs = product_limbs;
        } else if (!is_last) {
            multiply<BASE>(m_weight.get(), m_weight_limbs, m_weight.get(), m_weight_limbs,
                           m_next_weight.get());
            next_limbs = 2 * m_weight_limbs;
        }

        for (std::size_t i = 0; i < m_blocks / 2; ++i) {
            WORD const* const lower = m_values.get() + 2 * i * m_block_limbs;
            WORD const* const upper = lower + m_block_limbs;
            WORD* const joined = m_joined.get() + i * joined_limbs;
            std::size_t const kept = std::min(m_block_limbs, joined_limbs);
            std::copy_n(lower, kept, joined);
            std::fill(joined + kept, joined + joined_limbs, WORD{0});
            std::size_t const upper_limbs = limbs_in_use(upper, m_block_limbs);
            if (upper_limbs == 0)
                continue;
            std::size_t used = product_limbs;
            if (transforms) {
                m_convolution->template multiply<BASE>(upper, upper_limbs, m_product.get());
            } else {
                multiply<BASE>(m_weight.get(), m_weight_limbs, upper, upper_limbs, m_product.get());
                used = m_weight_limbs + upper_limbs;
            }
            add<BASE>(joined + m_weight_zeros, product_limbs, m_product.get(),
                      limbs_in_use(m_product.get(), used));
        }

        std::swap(m_values, m_joined);
        std::swap(m_weight, m_next_weight);
        m_weight_limbs = next_limbs;
        m_weight_zeros *= 2;
        if (!is_last)
            strip_weight();
        m_blocks /= 2;
        m_block_from_limbs *= 2;
        m_block_limbs = joined_limbs;
    }

    std::size_t m_blocks = 2;           ///< a power of two
    std::size_t m_block_from_limbs = 0; ///< limbs of a block in the other base
    std::size_t m_block_limbs = 0;      ///< and in this one, zeros included
    std::size_t m_result_limbs;
    std::unique_ptr<WORD[]> m_values;      ///< the blocks
    std::unique_ptr<WORD[]> m_joined;      ///< the blocks of the next level
    std::unique_ptr<WORD[]> m_weight;      ///< without its zeros at the lower end
    std::unique_ptr<WORD[]> m_next_weight; ///< and that of the next level
    std::unique_ptr<WORD[]> m_product;
    std::size_t m_weight_limbs = 0;
    std::size_t m_weight_zeros = 0;
    std::optional<CONVOLUTION> m_convolution;
};

/// Writes a number of n limbs of the other base in BASE. Returns its limbs in use, at most
/// limbs_for(n); `to` must hold limbs_for(n).
template <class BASE>
std::size_t change_base(WORD const* from, std::size_t n, WORD* to) {
    if (n <= SHORT_CHANGE<BASE>)
        return change_short<BASE>(from, n, to);
#if BIG_FMA
    if (fma::is_available() && limbs_for<BASE>(n) <= fma::LARGEST_PRODUCT)
        return LONG_CHANGE<BASE, fma::CONVOLUTION>(from, n).run(to);
#endif
    return LONG_CHANGE<BASE, words::CONVOLUTION>(from, n).run(to);
}

} // namespace big_natural

#pragma GCC visibility pop

#endif
