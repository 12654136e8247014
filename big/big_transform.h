#ifndef BIG_TRANSFORM_H
#define BIG_TRANSFORM_H

/// @file
/// Products of long numbers in time n log n: number-theoretic transforms (Pollard, "The fast
/// Fourier transform in a finite field", 1971) modulo three primes.
///
/// The limbs of both factors are taken as coefficients of polynomials. The coefficients of their
/// product are sums of products of two words; they are computed modulo each prime, put together by
/// the Chinese remainder theorem, and their carries are propagated in the base of the numbers. All
/// of this is exact.
///
/// There are two arithmetics modulo the primes: `words`, for every processor, and `fma`, for those
/// with AVX2 and fused multiply-add, which is two to three times as fast. What is built on them is
/// written once, in big_convolution.h, and compiled for each. Defining BIG_PORTABLE leaves out the
/// second.

#include "big_limb.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cfenv>
#include <memory>

#if defined(__x86_64__) && !defined(BIG_PORTABLE)
#define BIG_FMA 1
#include <immintrin.h>
#else
#define BIG_FMA 0
#endif

#pragma GCC visibility push(hidden)

namespace big_natural {

/// There are roots of unity of order 2^k and 3 * 2^k modulo each prime: it is c * 3 * 2^40 + 1 for
/// `words`, c * 3 * 2^28 + 1 for `fma`, and the next one is more than the limbs of any product.
constexpr std::size_t PRIMES = 3;

// ------------------------------------------------------------------------------------------------
// Arithmetic modulo a prime below 2^62
// ------------------------------------------------------------------------------------------------

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

/// A root of unity of order m, for every m that divides 3 * 2^k in p - 1: a power of the least
/// number that is neither a square nor a cube.
constexpr WORD root_of_unity(WORD m, WORD p) {
    WORD candidate = 2;
    while (power_modulo(candidate, (p - 1) / 2, p) == 1
           || power_modulo(candidate, (p - 1) / 3, p) == 1)
        ++candidate;
    return power_modulo(candidate, (p - 1) / m, p);
}

/// The roots of unity of order 1, 2, 4, ... 2^LARGEST, each the square of the next.
template <std::size_t LARGEST>
constexpr std::array<WORD, LARGEST + 1> roots_of_unity(WORD p) {
    std::array<WORD, LARGEST + 1> roots{};
    WORD root = root_of_unity(WORD{1} << LARGEST, p);
    for (std::size_t k = LARGEST + 1; k-- > 0; root = multiply_modulo(root, root, p))
        roots[k] = root;
    return roots;
}

/// The inverse of a number that divides p - 1: n * (p - 1) / n is -1.
constexpr WORD inverse_of_divisor(WORD n, WORD p) {
    return p - (p - 1) / n;
}

/// A fixed factor w < p with floor(w * 2^64 / p), which makes a product modulo p cheap (Shoup; see
/// Harvey, "Faster arithmetic for number-theoretic transforms", 2014).
struct WORD_FACTOR {
    WORD value;
    WORD ratio;

    /// w * a modulo p, in [0, 2p), for any word a.
    constexpr WORD times(WORD a, WORD p) const { return a * value - high_product(a, ratio) * p; }
};

constexpr WORD_FACTOR word_factor(WORD w, WORD p) {
    return {w, low_word((static_cast<WIDE>(w) << 64) / p)};
}

/// What residues modulo a prime are multiplied by for number_with_residues().
template <std::array<WORD, PRIMES> P>
constexpr WORD residue_scale(std::size_t i) {
    WORD scale = 1;
    for (std::size_t j = 0; j < PRIMES; ++j)
        if (j != i)
            scale = multiply_modulo(scale, inverse_modulo(P[j] % P[i], P[i]), P[i]);
    return scale;
}

/// a * b, below 2^192.
constexpr COLUMN times(WIDE a, WORD b) {
    WIDE const upper = static_cast<WIDE>(high_word(a)) * b;
    COLUMN product;
    product.add(static_cast<WIDE>(low_word(a)) * b);
    product.add(upper << 64);
    product.high += high_word(upper);
    return product;
}

/// The number with the given residues modulo the primes P, which are multiplied by residue_scale()
/// and fully reduced. It must be at most 3/4 of the product of the primes.
///
/// The Chinese remainder theorem: with M = P[0] P[1] P[2], the sum of residue[i] * (M / P[i]) is
/// the number plus k * M, and k is the integral part of the sum of residue[i] / P[i], whose
/// fractional part, the number divided by M, is far enough below 1 for double precision.
template <std::array<WORD, PRIMES> P>
[[gnu::always_inline]] inline COLUMN
number_with_residues(std::array<WORD, PRIMES> const& residues) {
    constexpr std::array<WIDE, PRIMES> others = {static_cast<WIDE>(P[1]) * P[2],
                                                 static_cast<WIDE>(P[0]) * P[2],
                                                 static_cast<WIDE>(P[0]) * P[1]};
    constexpr std::array<COLUMN, PRIMES> multiples = {times(others[0], 0), times(others[0], P[0]),
                                                      times(others[0], 2 * P[0])};
    double quotient = 0.125;
    WIDE lower = 0; // each of the two sums of three products fits
    WIDE upper = 0;
    for (std::size_t i = 0; i < PRIMES; ++i) {
        quotient += static_cast<double>(static_cast<long long>(residues[i]))
                    * (1.0 / static_cast<double>(P[i]));
        lower += static_cast<WIDE>(residues[i]) * low_word(others[i]);
        upper += static_cast<WIDE>(residues[i]) * high_word(others[i]);
    }
    COLUMN number;
    number.add(lower);
    number.add(upper << 64);
    number.high += high_word(upper);
    number.subtract(multiples[static_cast<std::size_t>(static_cast<int>(quotient))]);
    return number;
}

// ------------------------------------------------------------------------------------------------
// Words: three primes just below 2^62, one after the other
// ------------------------------------------------------------------------------------------------

namespace words {

constexpr std::array<WORD, PRIMES> PRIME = {0x3fff810000000001, 0x3fff840000000001,
                                            0x3fffc00000000001};

/// The largest product in limbs: its coefficients stay below the product of the primes, 2^185,
/// while fewer than 2^57 terms are added, and the order of a root is at most 2^40.
constexpr std::size_t LARGEST_PRODUCT = std::size_t{1} << 40;

/// The limbs of a factor from which on this is faster than adding up products, measured.
constexpr std::size_t LONG_FACTOR = 200;

using VALUE = WORD;

constexpr std::array<std::array<WORD, 41>, PRIMES> ROOTS = {
    roots_of_unity<40>(PRIME[0]), roots_of_unity<40>(PRIME[1]), roots_of_unity<40>(PRIME[2])};
constexpr std::array<WORD, PRIMES> CUBE_ROOT = {
    root_of_unity(3, PRIME[0]), root_of_unity(3, PRIME[1]), root_of_unity(3, PRIME[2])};
constexpr std::array<WORD, PRIMES> RESIDUE_SCALE = {
    residue_scale<PRIME>(0), residue_scale<PRIME>(1), residue_scale<PRIME>(2)};

/// One prime. Values are reduced as far as a word needs it, 4p being less than 2^64 (Harvey 2014).
class FIELD {
public:
    using FACTOR = WORD_FACTOR;

    explicit FIELD(std::size_t index)
        : m_index(index), m_p(PRIME[index]), m_minus_inverse(find_minus_inverse(m_p)),
          m_divisor(4 * m_p) {}

    FACTOR minus_one() const { return factor(m_p - 1); }
    FACTOR cube_root() const { return factor(CUBE_ROOT[m_index]); }
    /// The root of unity of order 2^k.
    FACTOR root(int k) const { return factor(ROOTS[m_index][static_cast<std::size_t>(k)]); }

    /// What the transformed factor is multiplied by for a length: 1 / length, the scale of the
    /// residues, and 2^64, by which product() divides.
    FACTOR scale(std::size_t length) const {
        WORD const two_to_64 = low_word((WIDE{1} << 64) % m_p);
        return factor(multiply_modulo(multiply_modulo(two_to_64, RESIDUE_SCALE[m_index], m_p),
                                      inverse_of_divisor(length, m_p), m_p));
    }

    /// The factor for a value in [0, 2p).
    FACTOR factor(VALUE a) const {
        FACTOR factor{reduced(a), 0};
        WORD high = 4 * factor.value; // the top bit of the divisor 4p is set
        factor.ratio = m_divisor.divide(high, 0);
        return factor;
    }

    VALUE from_limb(WORD limb) const { return trim(trim(limb)); }

    // The sum, the difference, and the product with a factor, of values in [0, 2p) and any word.
    VALUE add(VALUE a, VALUE b) const { return a + b; }
    VALUE subtract(VALUE a, VALUE b) const { return a - b + 2 * m_p; }
    VALUE times(FACTOR const& w, VALUE a) const { return w.times(a, m_p); }

    /// a in [0, 4p), brought below 2p. The two kinds of arithmetic need it in different places.
    VALUE trim(VALUE a) const { return a >= 2 * m_p ? a - 2 * m_p : a; }
    VALUE settle(VALUE a) const { return trim(a); }

    /// a in [0, 4p), brought below p.
    VALUE reduced(VALUE a) const {
        a = trim(a);
        return a >= m_p ? a - m_p : a;
    }

    /// a * b / 2^64, in [0, 2p), for a < 4p and b < p (Montgomery 1985).
    VALUE product(VALUE a, VALUE b) const {
        WIDE const wide = static_cast<WIDE>(a) * b;
        WORD const multiple = low_word(wide) * m_minus_inverse;
        return high_word(wide + static_cast<WIDE>(multiple) * m_p);
    }

private:
    /// Newton's iteration doubles the correct bits: 3, 6, 12, ... of 64.
    static WORD find_minus_inverse(WORD prime) {
        WORD inverse = prime;
        for (int i = 0; i < 5; ++i)
            inverse *= 2 - prime * inverse;
        return 0 - inverse;
    }

    std::size_t m_index;
    WORD m_p;
    WORD m_minus_inverse; ///< -1/p modulo 2^64
    DIVISOR m_divisor;    ///< 4p
};

/// All fields, each with an array of values of its own.
constexpr std::size_t FIELDS = PRIMES;
inline std::array<FIELD, FIELDS> fields() {
    return {FIELD(0), FIELD(1), FIELD(2)};
}

/// The number whose residues are the values at a place of each array.
inline COLUMN coefficient(std::array<FIELD, FIELDS> const& fields, VALUE const* values,
                          std::size_t length, std::size_t at) {
    return number_with_residues<PRIME>({fields[0].reduced(values[at]),
                                        fields[1].reduced(values[length + at]),
                                        fields[2].reduced(values[2 * length + at])});
}

} // namespace words

#define BIG_ARITHMETIC words
#define BIG_TARGET
#include "big_convolution.h"
#undef BIG_ARITHMETIC
#undef BIG_TARGET

// ------------------------------------------------------------------------------------------------
// Fused multiply-add: three primes just below 2^50, side by side in one register
// ------------------------------------------------------------------------------------------------

#if BIG_FMA
#define BIG_TARGET __attribute__((target("avx2,fma")))

namespace fma {

constexpr std::array<WORD, PRIMES> PRIME = {0x3fff300000001, 0x3fff960000001, 0x3fff990000001};

/// The largest product in limbs: its coefficients stay below 3/4 of the product of the primes,
/// 2^149.9, while at most 2^21 terms are added.
constexpr std::size_t LARGEST_PRODUCT = std::size_t{1} << 22;

/// The limbs of a factor from which on this is faster than adding up products, measured.
constexpr std::size_t LONG_FACTOR = 110;

constexpr std::array<std::array<WORD, 29>, PRIMES> ROOTS = {
    roots_of_unity<28>(PRIME[0]), roots_of_unity<28>(PRIME[1]), roots_of_unity<28>(PRIME[2])};
constexpr std::array<WORD, PRIMES> CUBE_ROOT = {
    root_of_unity(3, PRIME[0]), root_of_unity(3, PRIME[1]), root_of_unity(3, PRIME[2])};
constexpr std::array<WORD, PRIMES> RESIDUE_SCALE = {
    residue_scale<PRIME>(0), residue_scale<PRIME>(1), residue_scale<PRIME>(2)};

/// Whether this processor has the instructions, and rounds to nearest.
inline bool is_available() {
    return __builtin_cpu_supports("avx2") && __builtin_cpu_supports("fma")
           && std::fegetround() == FE_TONEAREST;
}

/// A coefficient modulo each prime, as integers in double precision; the fourth place repeats the
/// third.
struct VALUE {
    __m256d lanes;
};

/// All three primes. Values are integers of either sign. One of at most 4p < 2^52, which sums and
/// differences of a few stay below, may be multiplied, and the product is then at most 3/4 p:
///
/// The quotient q of x * w by p is x * (w / p), rounded to an integer. As |w| <= p / 2 and a
/// little, w / p is off by at most 2^-54 and x * (w / p) by at most 1/4. Then x * w - q * p comes
/// out exactly: h = x * w as rounded and its error l = x * w - h, which one fused operation gives,
/// are exact (Dekker 1971); h - q * p is a small integer, of which another one gives all bits; and
/// so is its sum with l. All of this is for rounding to nearest.
class FIELD {
public:
    /// A fixed factor w with w / p.
    struct FACTOR {
        VALUE value;
        VALUE ratio;
    };

    BIG_TARGET FIELD()
        : m_p(values(PRIME)), m_inverse{_mm256_div_pd(_mm256_set1_pd(1), m_p.lanes)},
          m_two_to_32(factor(values({WORD{1} << 32, WORD{1} << 32, WORD{1} << 32}))) {}

    BIG_TARGET FACTOR minus_one() const {
        return factor(values({PRIME[0] - 1, PRIME[1] - 1, PRIME[2] - 1}));
    }
    BIG_TARGET FACTOR cube_root() const { return factor(values(CUBE_ROOT)); }
    /// The root of unity of order 2^k.
    BIG_TARGET FACTOR root(int k) const {
        auto const i = static_cast<std::size_t>(k);
        return factor(values({ROOTS[0][i], ROOTS[1][i], ROOTS[2][i]}));
    }
    /// What the transformed factor is multiplied by for a length: 1 / length, and the scales of the
    /// residues.
    BIG_TARGET FACTOR scale(std::size_t length) const {
        std::array<WORD, PRIMES> scales{};
        for (std::size_t i = 0; i < PRIMES; ++i)
            scales[i] =
                multiply_modulo(RESIDUE_SCALE[i], inverse_of_divisor(length, PRIME[i]), PRIME[i]);
        return factor(values(scales));
    }
    /// The factor for any value.
    BIG_TARGET FACTOR factor(VALUE a) const {
        VALUE const w = settle(a);
        return {w, {_mm256_div_pd(w.lanes, m_p.lanes)}};
    }

    BIG_TARGET VALUE from_limb(WORD limb) const { // its halves are exact
        VALUE const upper{_mm256_set1_pd(static_cast<double>(limb >> 32))};
        VALUE const lower{_mm256_set1_pd(static_cast<double>(limb & 0xFFFFFFFF))};
        return add(times(m_two_to_32, upper), lower);
    }

    BIG_TARGET VALUE add(VALUE a, VALUE b) const { return {_mm256_add_pd(a.lanes, b.lanes)}; }
    BIG_TARGET VALUE subtract(VALUE a, VALUE b) const { return {_mm256_sub_pd(a.lanes, b.lanes)}; }
    BIG_TARGET VALUE times(FACTOR const& w, VALUE a) const {
        return remainder(a, w.value, rounded_product(a, w.ratio));
    }

    BIG_TARGET VALUE trim(VALUE a) const { return a; }

    /// a modulo p: at most p / 2 and a little.
    BIG_TARGET VALUE settle(VALUE a) const {
        VALUE const quotient = rounded_product(a, m_inverse);
        return {_mm256_fnmadd_pd(quotient.lanes, m_p.lanes, a.lanes)};
    }
    BIG_TARGET VALUE reduced(VALUE a) const { return settle(a); }

    /// a * b, at most 7/8 p, for |a| <= 2p and |b| <= p / 2: here the quotient is off by up to 3/8.
    BIG_TARGET VALUE product(VALUE a, VALUE b) const {
        VALUE const product{_mm256_mul_pd(a.lanes, b.lanes)};
        return remainder(a, b, rounded_product(product, m_inverse));
    }

    /// The residues, in [0, p), of which the fourth one is of no use.
    BIG_TARGET std::array<WORD, 4> residues(VALUE a) const {
        VALUE const w = settle(a);
        __m256d const missing =
            _mm256_and_pd(m_p.lanes, _mm256_cmp_pd(w.lanes, _mm256_setzero_pd(), _CMP_LT_OQ));
        alignas(32) double lanes[4];
        _mm256_store_pd(lanes, _mm256_add_pd(w.lanes, missing));
        return {static_cast<WORD>(static_cast<long long>(lanes[0])),
                static_cast<WORD>(static_cast<long long>(lanes[1])),
                static_cast<WORD>(static_cast<long long>(lanes[2])), 0};
    }

private:
    BIG_TARGET static VALUE values(std::array<WORD, PRIMES> const& w) {
        return {_mm256_set_pd(static_cast<double>(w[2]), static_cast<double>(w[2]),
                              static_cast<double>(w[1]), static_cast<double>(w[0]))};
    }
    /// a * b, below 2^51, rounded to an integer: added to 1.5 * 2^52 it has no bit below the point.
    BIG_TARGET static VALUE rounded_product(VALUE a, VALUE b) {
        __m256d const shift = _mm256_set1_pd(0x1.8p52);
        return {_mm256_sub_pd(_mm256_fmadd_pd(a.lanes, b.lanes, shift), shift)};
    }
    /// a * b - quotient * p.
    BIG_TARGET VALUE remainder(VALUE a, VALUE b, VALUE quotient) const {
        __m256d const product = _mm256_mul_pd(a.lanes, b.lanes);
        __m256d const error = _mm256_fmsub_pd(a.lanes, b.lanes, product);
        return {_mm256_add_pd(_mm256_fnmadd_pd(quotient.lanes, m_p.lanes, product), error)};
    }

    VALUE m_p;
    VALUE m_inverse;
    FACTOR m_two_to_32;
};

constexpr std::size_t FIELDS = 1;
BIG_TARGET inline std::array<FIELD, FIELDS> fields() {
    return {FIELD()};
}

BIG_TARGET inline COLUMN coefficient(std::array<FIELD, FIELDS> const& fields, VALUE const* values,
                                     std::size_t, std::size_t at) {
    std::array<WORD, 4> const residues = fields[0].residues(values[at]);
    return number_with_residues<PRIME>({residues[0], residues[1], residues[2]});
}

} // namespace fma

#define BIG_ARITHMETIC fma
#include "big_convolution.h"
#undef BIG_ARITHMETIC
#undef BIG_TARGET
#endif

} // namespace big_natural

#pragma GCC visibility pop

#endif
