#ifndef BIG_TRANSFORM_H
#define BIG_TRANSFORM_H

/// @file
/// Products of long numbers in time n log n: number-theoretic transforms (Pollard, "The fast
/// Fourier transform in a finite field", 1971) modulo three primes just below 2^62.
///
/// The limbs of both factors are taken as coefficients of polynomials. Their product's coefficients
/// are sums of up to n products of two words; they are computed modulo each prime, put together by
/// the Chinese remainder theorem (the primes' product exceeds 2^185, so this is exact for every n
/// up to 2^57), and their carries are propagated in the base of the numbers.
///
/// A transform of length N multiplies polynomials modulo x^N - 1. N is 2^k or 3 * 2^k.

#include "big_limb.h"

#include <algorithm>
#include <bit>
#include <memory>

#pragma GCC visibility push(hidden)

namespace big_natural {

// ------------------------------------------------------------------------------------------------
// Arithmetic modulo a prime
// ------------------------------------------------------------------------------------------------

/// The transform's primes are c * 3 * 2^40 + 1, so that there are roots of unity for every length
/// that memory can hold, and below 2^62, so that values up to 4p fit a word and need not be reduced
/// fully after each step (Harvey, "Faster arithmetic for number-theoretic transforms", 2014).
constexpr std::size_t PRIMES = 3;
constexpr WORD PRIME[PRIMES] = {
    0x3fff810000000001, // c = 1398059
    0x3fff840000000001, // c = 1398060
    0x3fffc00000000001, // c = 1398080
};

constexpr WORD multiply_modulo(WORD a, WORD b, WORD p) {
    return static_cast<WORD>(static_cast<WIDE>(a) * b % p);
}

constexpr WORD power_modulo(WORD base, WORD exponent, WORD p) {
    WORD power = 1;
    for (; exponent != 0; exponent >>= 1) {
        if ((exponent & 1) != 0)
            power = multiply_modulo(power, base, p);
        base = multiply_modulo(base, base, p);
    }
    return power;
}

constexpr WORD inverse_modulo(WORD a, WORD p) {
    return power_modulo(a, p - 2, p);
}

/// A fixed factor w with floor(w * 2^64 / p), which makes a product modulo p cheap (Shoup; see
/// Harvey 2014).
struct FACTOR {
    WORD value = 0;
    WORD ratio = 0;

    constexpr FACTOR() = default;
    constexpr FACTOR(WORD w, WORD p)
        : value(w), ratio(low_word((static_cast<WIDE>(w) << 64) / p)) {}

    /// a * w modulo p, in [0, 2p), for any word a.
    constexpr WORD times(WORD a, WORD p) const { return a * value - high_product(a, ratio) * p; }
};

/// One prime and what belongs to it.
struct FIELD {
    WORD p;
    WORD minus_inverse; ///< -1/p modulo 2^64
    WORD root;          ///< its (p - 1) / m-th power has order m, for every m | 3 * 2^40
    DIVISOR divisor;    ///< 4p, whose top bit is set
    FACTOR minus_one;
    FACTOR cube_root; ///< of 1

    constexpr explicit FIELD(WORD prime)
        : p(prime), minus_inverse(find_minus_inverse(prime)), root(find_root(prime)),
          divisor(4 * prime), minus_one(prime - 1, prime), cube_root(root_of_order(3), prime) {}

    constexpr WORD root_of_order(WORD m) const { return power_modulo(root, (p - 1) / m, p); }

    /// The factor w < p at run time, without a division instruction.
    FACTOR factor(WORD w) const {
        FACTOR f;
        f.value = w;
        WORD high = 4 * w;
        f.ratio = divisor.divide(high, 0);
        return f;
    }

    /// a in [0, 4p) less 2p if it is 2p or more.
    WORD halved(WORD a) const { return a >= 2 * p ? a - 2 * p : a; }
    /// a in [0, 4p) fully reduced.
    WORD reduced(WORD a) const {
        WORD const half = halved(a);
        return half >= p ? half - p : half;
    }
    /// a * b / 2^64 modulo p, in [0, 2p), for a < 4p and b < p (Montgomery 1985).
    WORD product(WORD a, WORD b) const {
        WIDE const wide = static_cast<WIDE>(a) * b;
        WORD const multiple = low_word(wide) * minus_inverse;
        return high_word(wide + static_cast<WIDE>(multiple) * p);
    }

private:
    /// Newton's iteration doubles the correct bits: 3, 6, 12, ... of 64.
    static constexpr WORD find_minus_inverse(WORD prime) {
        WORD inverse = prime;
        for (int i = 0; i < 5; ++i)
            inverse *= 2 - prime * inverse;
        return 0 - inverse;
    }
    /// The least number that is neither a square nor a cube.
    static constexpr WORD find_root(WORD prime) {
        WORD candidate = 2;
        while (power_modulo(candidate, (prime - 1) / 2, prime) == 1
               || power_modulo(candidate, (prime - 1) / 3, prime) == 1)
            ++candidate;
        return candidate;
    }
};
constexpr FIELD FIELDS[PRIMES] = {FIELD(PRIME[0]), FIELD(PRIME[1]), FIELD(PRIME[2])};

// ------------------------------------------------------------------------------------------------
// The transform of length 2^k
// ------------------------------------------------------------------------------------------------
//
// The ring of polynomials modulo x^N - 1 is split in halves, x^2m - w^2 = (x^m - w)(x^m + w), until
// the moduli are linear. The factor of block b at any depth is w[b], where w[0] = 1 and w[2b],
// w[2b + 1] are the square roots of w[b] and -w[b]; as fractions of a full turn:
//
//     b      0    1    2    3    4     5     6     7
//     w[b]   0   1/4  1/8  3/8  1/16  5/16  3/16  7/16
//
// so one table serves every length, and no pass puts anything into bit-reversed order: the
// transformed values stay in the order in which the splitting leaves them. Two depths are done in
// one pass over the values.

/// Splits x, n = 2^k values in [0, 4p), into its n values at the roots of unity, in [0, 4p).
inline void transform(WORD* x, std::size_t n, FIELD const& field, FACTOR const* w) {
    WORD const p = field.p;
    std::size_t length = n; // of a block
    if (std::countr_zero(n) % 2 != 0) {
        length = n / 2;
        for (std::size_t j = 0; j < length; ++j) {
            WORD const a = field.halved(x[j]);
            WORD const b = field.halved(x[j + length]);
            x[j] = a + b;
            x[j + length] = a - b + 2 * p;
        }
    }
    for (; length > 1; length /= 4) {
        std::size_t const m = length / 4;
        for (std::size_t block = 0; block < n / length; ++block) {
            FACTOR const outer = w[block];
            FACTOR const lower = w[2 * block];
            FACTOR const upper = w[2 * block + 1];
            WORD* const y = x + block * length;
            for (std::size_t j = 0; j < m; ++j) {
                WORD const a = field.halved(y[j]);
                WORD const b = field.halved(y[j + m]);
                WORD const c = outer.times(y[j + 2 * m], p);
                WORD const d = outer.times(y[j + 3 * m], p);
                WORD const ac = field.halved(a + c);
                WORD const bd = lower.times(b + d, p);
                WORD const a_c = field.halved(a - c + 2 * p);
                WORD const b_d = upper.times(b - d + 2 * p, p);
                y[j] = ac + bd;
                y[j + m] = ac - bd + 2 * p;
                y[j + 2 * m] = a_c + b_d;
                y[j + 3 * m] = a_c - b_d + 2 * p;
            }
        }
    }
}

/// -1 / w[b] is w[mirrored(b)] for b > 0: within 2^i <= b < 2^(i+1) the turns of w are symmetric
/// about a quarter.
inline std::size_t mirrored(std::size_t block) {
    return 3 * std::bit_floor(block) - 1 - block;
}

/// Undoes transform() up to the factor n: x, n = 2^k values in [0, 2p), from the values at the
/// roots of unity back to coefficients, in [0, 2p).
inline void transform_back(WORD* x, std::size_t n, FIELD const& field, FACTOR const* w) {
    WORD const p = field.p;
    std::size_t length = 4;
    for (; length <= n; length *= 4) {
        std::size_t const m = length / 4;
        for (std::size_t block = 0; block < n / length; ++block) {
            FACTOR const outer = block == 0 ? field.minus_one : w[mirrored(block)];
            FACTOR const lower = block == 0 ? field.minus_one : w[mirrored(2 * block)];
            FACTOR const upper = w[mirrored(2 * block + 1)];
            WORD* const y = x + block * length;
            for (std::size_t j = 0; j < m; ++j) {
                WORD const a = y[j];
                WORD const b = y[j + m];
                WORD const c = y[j + 2 * m];
                WORD const d = y[j + 3 * m];
                WORD const ab = field.halved(a + b);
                WORD const b_a = lower.times(b - a + 2 * p, p);
                WORD const cd = field.halved(c + d);
                WORD const d_c = upper.times(d - c + 2 * p, p);
                y[j] = field.halved(ab + cd);
                y[j + m] = field.halved(b_a + d_c);
                y[j + 2 * m] = outer.times(cd - ab + 2 * p, p);
                y[j + 3 * m] = outer.times(d_c - b_a + 2 * p, p);
            }
        }
    }
    if (length == 2 * n) {
        for (std::size_t j = 0; j < n / 2; ++j) {
            WORD const a = x[j];
            WORD const b = x[j + n / 2];
            x[j] = field.halved(a + b);
            x[j + n / 2] = field.halved(a - b + 2 * p);
        }
    }
}

// ------------------------------------------------------------------------------------------------
// Products
// ------------------------------------------------------------------------------------------------

/// Multiplies many numbers by one factor, whose transform is made once.
class CONVOLUTION {
public:
    /// @param largest limbs of the largest product to come
    explicit CONVOLUTION(std::size_t largest)
        : m_capacity(std::bit_ceil(largest)),
          m_work(std::make_unique_for_overwrite<WORD[]>(PRIMES * m_capacity)),
          m_spectrum(std::make_unique_for_overwrite<WORD[]>(PRIMES * m_capacity)),
          m_wrapped(std::make_unique_for_overwrite<COLUMN[]>(LARGEST_EXCESS)) {
        for (std::size_t i = 0; i < PRIMES; ++i)
            m_roots[i] = std::make_unique_for_overwrite<FACTOR[]>(m_capacity / 2);
    }

    /// Sets the factor b.
    ///
    /// @param count limbs of the products to come: each fits this many, and this is at most
    ///              `largest`
    void set_factor(WORD const* b, std::size_t m, std::size_t count) {
        choose_length(count);
        m_factor = b;
        m_factor_limbs = m;
        m_count = count;
        make_roots();
        load(b, m);
        for (std::size_t i = 0; i < PRIMES; ++i) {
            FIELD const& field = FIELDS[i];
            // The transforms give N times the product, and FIELD::product() divides by 2^64.
            WORD const two_to_64 = low_word((WIDE{1} << 64) % field.p);
            FACTOR const scale = field.factor(
                multiply_modulo(two_to_64, inverse_modulo(m_length, field.p), field.p));
            for (std::size_t j = 0; j < m_length; ++j)
                spectrum(i)[j] = field.reduced(scale.times(work(i)[j], field.p));
        }
    }

    /// out = a * b, `count` limbs in the base.
    template <class BASE>
    void multiply(WORD const* a, std::size_t n, WORD* out) {
        load(a, n);
        finish<BASE>(a, n, out);
    }

    /// out = b * b, `count` limbs in the base. Only directly after set_factor().
    template <class BASE>
    void square_factor(WORD* out) {
        finish<BASE>(m_factor, m_factor_limbs, out);
    }

private:
    static constexpr std::size_t LARGEST_EXCESS = 1024;

    WORD* work(std::size_t prime) { return m_work.get() + prime * m_length; }
    WORD* spectrum(std::size_t prime) { return m_spectrum.get() + prime * m_length; }

    /// The upper coefficients of a product that a length does not hold. A few of them are cheaper
    /// to compute one by one than to go to the next length for. Numbers whose width is a power of
    /// two need 1.4 % more decimal limbs than binary ones, so this is the common case.
    static constexpr std::size_t allowed_excess(std::size_t length) {
        return std::min(std::size_t{4} << std::bit_width(length) / 2, LARGEST_EXCESS);
    }

    /// Takes the least length that serves.
    void choose_length(std::size_t count) {
        m_rows = 1;
        m_row_length = 4;
        while (m_row_length + allowed_excess(m_row_length) < count)
            m_row_length *= 2;
        std::size_t const shorter = m_row_length / 4 * 3;
        if (m_row_length > 16 && shorter + allowed_excess(shorter) >= count) {
            m_rows = 3;
            m_row_length /= 4;
        }
        m_length = m_rows * m_row_length;
    }

    /// Extends the table of roots as far as the length needs it.
    void make_roots() {
        for (; m_root_count < m_row_length / 2;
             m_root_count = m_root_count == 0 ? 1 : 2 * m_root_count)
            for (std::size_t i = 0; i < PRIMES; ++i) {
                FIELD const& field = FIELDS[i];
                FACTOR* const w = m_roots[i].get();
                if (m_root_count == 0) {
                    w[0] = field.factor(1);
                    continue;
                }
                FACTOR const turn = field.factor(field.root_of_order(4 * m_root_count));
                for (std::size_t j = 0; j < m_root_count; ++j)
                    w[m_root_count + j] =
                        field.factor(field.reduced(turn.times(w[j].value, field.p)));
            }
    }

    /// Transforms a number into m_work, modulo each prime.
    void load(WORD const* a, std::size_t n) {
        for (std::size_t i = 0; i < PRIMES; ++i) {
            FIELD const& field = FIELDS[i];
            WORD* const x = work(i);
            if (m_rows == 1) {
                for (std::size_t j = 0; j < n; ++j)
                    x[j] = field.halved(field.halved(a[j]));
                std::fill(x + n, x + m_length, WORD{0});
                transform(x, m_length, field, m_roots[i].get());
            } else {
                std::fill(x, x + m_length, WORD{0});
                for (std::size_t j = 0; j < n; ++j)
                    x[position(j)] = field.halved(field.halved(a[j]));
                transform_columns(x, field, 1, 2);
                for (std::size_t row = 0; row < m_rows; ++row)
                    transform(x + row * m_row_length, m_row_length, field, m_roots[i].get());
            }
        }
    }

    /// A length 3m is three rows of m values: coefficient j stands in row j modulo 3 and place j
    /// modulo m, and the two directions are transformed without factors between them (Good 1958,
    /// Thomas 1963).
    std::size_t position(std::size_t j) const {
        return m_rows == 1 ? j : j % 3 * m_row_length + j % m_row_length;
    }

    /// The transforms of length 3 down the columns, from values in [0, 2p) to [0, 4p): with c the
    /// cube root of 1, a + b + c, a + b r + c r^2, a + b r^2 + c r. Going back is the same with the
    /// second and third result exchanged.
    void transform_columns(WORD* x, FIELD const& field, std::size_t second, std::size_t third) {
        WORD const p = field.p;
        for (std::size_t j = 0; j < m_row_length; ++j) {
            WORD const a = x[j];
            WORD const b = x[j + m_row_length];
            WORD const c = x[j + 2 * m_row_length];
            WORD const turned = field.cube_root.times(b - c + 2 * p, p);
            x[j] = field.halved(a + b) + c;
            x[j + second * m_row_length] = field.halved(a - c + 2 * p) + turned;
            x[j + third * m_row_length] = field.halved(a - b + 2 * p) + 2 * p - turned;
        }
    }

    /// Multiplies what load() left by the factor and writes the product.
    template <class BASE>
    void finish(WORD const* a, std::size_t n, WORD* out) {
        for (std::size_t i = 0; i < PRIMES; ++i) {
            FIELD const& field = FIELDS[i];
            WORD* const x = work(i);
            for (std::size_t j = 0; j < m_length; ++j)
                x[j] = field.product(x[j], spectrum(i)[j]);
            for (std::size_t row = 0; row < m_rows; ++row)
                transform_back(x + row * m_row_length, m_row_length, field, m_roots[i].get());
            if (m_rows == 3)
                transform_columns(x, field, 2, 1);
        }

        // Coefficient k + N has been added to coefficient k, which is undone.
        std::size_t const excess = m_count > m_length ? m_count - m_length : 0;
        for (std::size_t k = 0; k < excess; ++k)
            m_wrapped[k] = column_of(a, n, m_factor, m_factor_limbs, k + m_length);
        COLUMN carry;
        for (std::size_t k = 0; k < m_count; ++k) {
            COLUMN column = k < m_length ? coefficient(position(k)) : m_wrapped[k - m_length];
            if (k < excess)
                column.subtract(m_wrapped[k]);
            column.add(carry);
            out[k] = BASE::take_digit(column);
            carry = column;
        }
    }

    /// The coefficient whose residues stand at a position (Garner 1959).
    COLUMN coefficient(std::size_t at) {
        constexpr WORD p0 = PRIME[0];
        constexpr WORD p1 = PRIME[1];
        constexpr WORD p2 = PRIME[2];
        constexpr FACTOR by_p0_mod_p1(inverse_modulo(p0, p1), p1);
        constexpr FACTOR by_p0p1_mod_p2(inverse_modulo(multiply_modulo(p0, p1, p2), p2), p2);
        constexpr FACTOR by_p1_mod_p2(inverse_modulo(p1, p2), p2);
        constexpr WIDE p0p1 = static_cast<WIDE>(p0) * p1;

        WORD const r0 = FIELDS[0].reduced(work(0)[at]);
        WORD const r1 = FIELDS[1].reduced(work(1)[at]);
        WORD const r2 = FIELDS[2].reduced(work(2)[at]);
        WORD const t1 = FIELDS[1].reduced(by_p0_mod_p1.times(r1 + p1 - r0, p1));
        WORD const t2 = FIELDS[2].reduced(by_p0p1_mod_p2.times(r2 + p2 - r0, p2) + 2 * p2
                                          - by_p1_mod_p2.times(t1, p2));
        COLUMN value;
        value.low = static_cast<WIDE>(p0) * t1 + r0;
        WIDE const middle = static_cast<WIDE>(high_word(p0p1)) * t2;
        value.high = high_word(middle);
        value.add(static_cast<WIDE>(low_word(middle)) << 64);
        value.add(static_cast<WIDE>(low_word(p0p1)) * t2);
        return value;
    }

    std::size_t m_capacity;              ///< of m_work and m_spectrum, in values
    std::unique_ptr<WORD[]> m_work;      ///< values of each prime, one after the other
    std::unique_ptr<WORD[]> m_spectrum;  ///< the transformed factor, scaled, in [0, p)
    std::unique_ptr<COLUMN[]> m_wrapped; ///< coefficients beyond the length
    std::unique_ptr<FACTOR[]> m_roots[PRIMES];
    std::size_t m_root_count = 0;

    std::size_t m_rows = 1;
    std::size_t m_row_length = 0;
    std::size_t m_length = 0; ///< rows times row length

    WORD const* m_factor = nullptr;
    std::size_t m_factor_limbs = 0;
    std::size_t m_count = 0;
};

} // namespace big_natural

#pragma GCC visibility pop

#endif
