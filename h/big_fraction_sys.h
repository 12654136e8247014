#ifndef BIG_FRACTION_SYS_H
#define BIG_FRACTION_SYS_H

/// @file
/// Exact fractions with a floating-point shadow.

#include "big_sys.h"
#include "gen_math_sys.h"

#include <cmath>

/// A number kept in two forms at once: a fraction of two signed 64-bit integers, when one is known,
/// and a double that is always carried along. What overflows the integers goes on as the double
/// alone.
///
/// The integers are not always in lowest terms, and the sign may sit in either.
class BIG_API BIG_FRACTION {
public:
    /// The relative tolerance of operator== where it falls back to the doubles.
    static constexpr double EQUALITY_PRECISION = 1e-10;

    /// 0/1.
    BIG_INLINE BIG_FRACTION() : m_numerator(0), m_denominator(1), m_value(0.0) {}
    /// A fraction, reduced; the double is the quotient of the arguments as given. A denominator of
    /// 0 is not refused: it gives no exact form and an infinity or not-a-number.
    BIG_FRACTION(long long numerator, long long denominator);
    /// A double. Only 0 has an exact form at once; fractionalize() looks for another.
    BIG_INLINE BIG_FRACTION(double value)
        : m_numerator(0), m_denominator(value == 0.0 ? 1 : 0), m_value(value) {}

    /// Whether there is an exact form.
    BIG_INLINE bool is_fractional() const { return m_denominator != 0; }
    /// The numerator. Internal error without an exact form: "is_fractional()", tag "BIG", path
    /// "h/big_fraction_sys".
    BIG_INLINE long long get_numerator() const {
        if (!(is_fractional()))
            err_report_internal_error("is_fractional()", "BIG", "h/big_fraction_sys", __LINE__);
        return m_numerator;
    }
    /// The denominator; 0 when there is no exact form.
    BIG_INLINE long long get_denominator() const { return m_denominator; }
    /// The number as a double.
    BIG_INLINE double get_value() const { return m_value; }

    /// Looks for an exact form in millionths if there is none: takes the double times 1,000,000,
    /// cut toward zero, if it fits 64 bits and less than a millionth of 1 was cut off. So a
    /// negative number is cut to six decimal places. A positive one with more places has no exact
    /// form, up to 2^53 millionths; nor have some with fewer, such as 0.000249 and 2.01, whose
    /// products come out just below a whole number. Magnitudes from about 9.2e12 on, infinities and
    /// not-a-number have none.
    /// @return whether there is an exact form now
    bool fractionalize();

    /// Sum, difference and quotient of both forms. The exact form is lost when an operand has none,
    /// when it does not fit, and on division by 0.
    BIG_FRACTION& operator+=(BIG_FRACTION const& other);
    BIG_FRACTION& operator-=(BIG_FRACTION const& other);
    BIG_INLINE BIG_FRACTION& operator/=(BIG_FRACTION const& other);

    /// Names the members to a segment, which reads or writes them; its end_object() is the result.
    bool operator<<(PDB_SEGMENT_TEMPLATE<PDB_ANY_SEG_BASE>& segment);

    /// The class's registration record.
    static PDB_CLASS_THUNK<BIG_FRACTION> s_thunk;

private:
    friend bool operator==(BIG_FRACTION const& a, BIG_FRACTION const& b);

    long long m_numerator;
    long long m_denominator; ///< 0 when there is no exact form
    double m_value;
};

BIG_INLINE BIG_FRACTION& BIG_FRACTION::operator/=(BIG_FRACTION const& other) {
    bool lost = !(is_fractional() && other.is_fractional());
    long long numerator = 0;
    long long denominator = 0;
    if (!lost) {
        numerator = GEN_MATH::multiply_of<long long>(m_numerator, other.m_denominator, lost);
        denominator = GEN_MATH::multiply_of<long long>(m_denominator, other.get_numerator(), lost);
    }
    // Only now, because other may be this fraction. The quotient is not reduced.
    m_numerator = lost ? 0 : numerator;
    m_denominator = lost ? 0 : denominator;
    m_value = m_value / other.m_value;
    return *this;
}

/// The quotient of two fractions.
BIG_INLINE BIG_API BIG_FRACTION operator/(BIG_FRACTION dividend, BIG_FRACTION const& divisor) {
    return dividend /= divisor;
}

/// Exact when both have an exact form whose cross products fit 64 bits; otherwise the doubles are
/// compared to a tolerance relative to b. Infinities and not-a-number then equal nothing, not even
/// their like; a fraction always equals itself.
BIG_INLINE BIG_API bool operator==(BIG_FRACTION const& a, BIG_FRACTION const& b) {
    if (&a == &b)
        return true;
    if (a.is_fractional() && b.is_fractional()) {
        if (a.m_numerator == b.m_numerator && a.m_denominator == b.m_denominator)
            return true;
        bool overflow = false;
        long long const left =
            GEN_MATH::multiply_of<long long>(a.m_numerator, b.m_denominator, overflow);
        long long const right =
            GEN_MATH::multiply_of<long long>(a.m_denominator, b.m_numerator, overflow);
        if (!overflow)
            return left == right;
    }
    // The tolerance is relative to b, so a == b and b == a may differ; callers rely on it.
    if (b.m_value == 0.0)
        return a.m_value == 0.0;
    return std::fabs(a.m_value / b.m_value - 1.0) < BIG_FRACTION::EQUALITY_PRECISION;
}

#endif
