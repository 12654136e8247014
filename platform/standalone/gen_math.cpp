// Checked arithmetic on fractions.
//
// A number is split into its sign and its magnitude, an unsigned number of 64 bits. The magnitude
// of the most negative number is 2^63, so every number has one and no negation can overflow.

#include "gen_math_sys.h"

#include <limits>
#include <numeric>

namespace {

using MAGNITUDE = unsigned long long;
__extension__ using WIDE_MAGNITUDE = unsigned __int128;

constexpr MAGNITUDE MAX_POSITIVE = std::numeric_limits<long long>::max();

constexpr MAGNITUDE magnitude_of(long long value) {
    return value < 0 ? 0 - static_cast<MAGNITUDE>(value) : static_cast<MAGNITUDE>(value);
}

/// The magnitude with a sign again. A negative one is at most 2^63, another at most 2^63 - 1.
constexpr long long with_sign(bool negative, MAGNITUDE magnitude) {
    return static_cast<long long>(negative ? 0 - magnitude : magnitude);
}

/// A fraction in lowest terms. The denominator is not 0, and 1 when the numerator is 0.
struct REDUCED {
    bool negative;
    MAGNITUDE num;
    MAGNITUDE den;
};

REDUCED reduced(long long num, long long den) {
    MAGNITUDE const divisor = std::gcd(magnitude_of(num), magnitude_of(den));
    return {(num < 0) != (den < 0), magnitude_of(num) / divisor, magnitude_of(den) / divisor};
}

/// Adds two fractions whose sum, over the product of the denominators, fits before it is reduced,
/// as that of nearly all does: one common divisor is taken in place of four. False, with nothing
/// changed, for any other.
bool add_short_fractions(long long num_a, long long den_a, long long num_b, long long den_b,
                         long long& num, long long& den) {
    long long term_a = 0;
    long long term_b = 0;
    long long sum = 0;
    long long product = 0;
    if (__builtin_mul_overflow(num_a, den_b, &term_a)
        || __builtin_mul_overflow(num_b, den_a, &term_b)
        || __builtin_add_overflow(term_a, term_b, &sum)
        || __builtin_mul_overflow(den_a, den_b, &product))
        return false;
    MAGNITUDE const divisor = std::gcd(magnitude_of(sum), magnitude_of(product));
    MAGNITUDE const sum_den = magnitude_of(product) / divisor;
    MAGNITUDE const sum_num = magnitude_of(sum) / divisor;
    if (sum_num > MAX_POSITIVE || sum_den > MAX_POSITIVE)
        return false; // -2^63 is one of the sum's magnitudes that need a second look
    num = with_sign((sum < 0) != (product < 0), sum_num);
    den = static_cast<long long>(sum_den);
    return true;
}

} // namespace

template <>
long long GEN_MATH::multiply_of<long long>(long long a, long long b, bool& overflow) {
    long long product = 0;
    if (__builtin_mul_overflow(a, b, &product)) // the product's low bits in either case
        overflow = true;
    return product;
}

template <>
void GEN_MATH::gcd_simplify<long long>(long long& a, long long& b) {
    MAGNITUDE const size_a = magnitude_of(a);
    MAGNITUDE const size_b = magnitude_of(b);
    MAGNITUDE const divisor = std::gcd(size_a, size_b);
    if (divisor == 0)
        return;
    // A magnitude of 2^63 belongs to a negative number, so the quotients fit.
    bool const negative_a = a < 0;
    bool const negative_b = b < 0;
    a = with_sign(negative_a, size_a / divisor);
    b = with_sign(negative_b, size_b / divisor);
}

/// Adds a/a' and b/b', both in lowest terms, as Knuth does (The Art of Computer Programming,
/// volume 2, 4.5.1):
///
///     d   = gcd(a', b')
///     t   = a (b'/d) + b (a'/d)      the sum is t / ((a'/d) b')
///     g   = gcd(t, d)                nothing else of the denominator divides t
///     sum = (t/g) / ((a'/d) (b'/g))  in lowest terms
///
/// Every magnitude is at most 2^63, so a product is at most 2^126 and t at most 2^127: each step is
/// exact in 128 unsigned bits, and what does not fit at the end has no 64-bit form.
template <>
void GEN_MATH::add_fractions_of<long long>(long long num_a, long long den_a, long long num_b,
                                           long long den_b, long long& num, long long& den,
                                           bool& overflow) {
    if (den_a == 0 || den_b == 0) {
        overflow = true;
        return;
    }
    if (add_short_fractions(num_a, den_a, num_b, den_b, num, den))
        return;
    REDUCED const a = reduced(num_a, den_a);
    REDUCED const b = reduced(num_b, den_b);
    MAGNITUDE const d = std::gcd(a.den, b.den);
    WIDE_MAGNITUDE const term_a = static_cast<WIDE_MAGNITUDE>(a.num) * (b.den / d);
    WIDE_MAGNITUDE const term_b = static_cast<WIDE_MAGNITUDE>(b.num) * (a.den / d);

    // t, with the sign of the term of greater magnitude.
    bool negative = a.negative;
    WIDE_MAGNITUDE t = 0;
    if (a.negative == b.negative) {
        t = term_a + term_b;
    } else if (term_a >= term_b) {
        t = term_a - term_b;
    } else {
        t = term_b - term_a;
        negative = b.negative;
    }

    MAGNITUDE const g = std::gcd(static_cast<MAGNITUDE>(t % d), d);
    WIDE_MAGNITUDE const sum_num = t / g;
    WIDE_MAGNITUDE const sum_den = static_cast<WIDE_MAGNITUDE>(a.den / d) * (b.den / g);
    if (sum_num > MAX_POSITIVE + (negative ? 1 : 0) || sum_den > MAX_POSITIVE) {
        overflow = true;
        return;
    }
    num = with_sign(negative, static_cast<MAGNITUDE>(sum_num));
    den = static_cast<long long>(sum_den);
}
