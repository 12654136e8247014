#ifndef GEN_MATH_SYS_H
#define GEN_MATH_SYS_H

/// @file
/// Checked arithmetic on fractions: what the library asks of the platform, for long long.

#pragma GCC visibility push(default)

namespace GEN_MATH {

/// The product of two integers.
///
/// @param overflow set to true when the product does not fit T, otherwise left as it is, so that
///                 one flag can watch several products
/// @return the product; when it does not fit, its low bits in two's complement
template <typename T>
T multiply_of(T a, T b, bool& overflow);

/// Divides both integers by their greatest common divisor, which is taken on the magnitudes and is
/// not negative, so that each keeps its own sign. Two zeros stay as they are; beside one zero, the
/// other integer becomes 1 or -1.
///
/// It never overflows: the magnitude of the least value is a divisor only of that value and 0,
/// which become -1 and 0. So of long long -2^63 and -2^63 become -1 and -1, -2^63 and 0 become -1
/// and 0, and -2^63 and -1 stay as they are.
template <typename T>
void gcd_simplify(T& a, T& b);

/// The sum num_a / den_a + num_b / den_b in lowest terms with a positive denominator; a sum of 0 is
/// 0 / 1. It is exact whenever that form fits T, even where an intermediate product does not. The
/// operands may be in any terms and carry their sign in either integer.
///
/// @param num      receives the sum's numerator; untouched when the sum does not fit or a
///                 denominator is 0
/// @param den      receives the sum's denominator, likewise
/// @param overflow set to true when the sum does not fit or a denominator is 0, otherwise left as
///                 it is
template <typename T>
void add_fractions_of(T num_a, T den_a, T num_b, T den_b, T& num, T& den, bool& overflow);

template <>
long long multiply_of<long long>(long long a, long long b, bool& overflow);
template <>
void gcd_simplify<long long>(long long& a, long long& b);
template <>
void add_fractions_of<long long>(long long num_a, long long den_a, long long num_b, long long den_b,
                                 long long& num, long long& den, bool& overflow);

} // namespace GEN_MATH

#pragma GCC visibility pop

#endif
