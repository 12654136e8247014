// A fraction carries its number twice: as m_numerator / m_denominator, exact, and as the double
// m_value, always there. An operation works on each form by itself, so the double is what double
// arithmetic gives whatever happens to the integers:
//
//     1/3 += 1/6                   1/2                  0.5
//     1/3 += (no exact form, 0.1)  no exact form        0.43333333333333335
//     1/2 /= 0/1                   1/0: no exact form   infinity
//
// A denominator of 0 is the mark of "no exact form"; the numerator then means nothing.
//
// Quotient and comparison are compiled into their callers, in big_fraction_sys.h. A sum of doubles
// is not: a caller may be compiled to fuse it with a product, and then rounds once.

#include "big_frame.h"

#include "big_fraction_sys.h"
#include "gen_math_sys.h"

#define BIG_SOURCE_PATH "big/big_fraction"

static MEM_INITIALIZER s_mem_initializer("BIG");

BIG_FRACTION::BIG_FRACTION(long long numerator, long long denominator)
    : m_numerator(numerator), m_denominator(denominator),
      m_value(static_cast<double>(numerator) / static_cast<double>(denominator)) {
    GEN_MATH::gcd_simplify<long long>(m_numerator, m_denominator);
}

bool BIG_FRACTION::fractionalize() {
    if (is_fractional())
        return true;
    constexpr long long millionths_in_one = 1000000;
    constexpr double two_to_63 = 0x1p63;
    double const millionths = static_cast<double>(millionths_in_one) * m_value;
    bool const fits = millionths >= -two_to_63 && millionths < two_to_63; // not-a-number does not
    if (!fits)
        return false;
    long long numerator = static_cast<long long>(millionths); // cut toward zero
    // The difference is taken without its sign on purpose: a negative number, whose difference is
    // never above 0, always gets the form it has when cut to millionths.
    double const cut_off = millionths - static_cast<double>(numerator);
    if (!(1e-6 > cut_off))
        return false;
    long long denominator = millionths_in_one;
    GEN_MATH::gcd_simplify<long long>(numerator, denominator);
    m_numerator = numerator;
    m_denominator = denominator;
    return true;
}

namespace {

/// Adds a fraction to an exact form. What remains is no exact form (0/0) when either is none or the
/// sum does not fit.
void add_exact_form(long long other_numerator, long long other_denominator, long long& numerator,
                    long long& denominator) {
    bool lost = denominator == 0 || other_denominator == 0;
    if (!lost)
        GEN_MATH::add_fractions_of<long long>(numerator, denominator, other_numerator,
                                              other_denominator, numerator, denominator, lost);
    if (lost) {
        numerator = 0;
        denominator = 0;
    }
}

} // namespace

BIG_FRACTION& BIG_FRACTION::operator+=(BIG_FRACTION const& other) {
    add_exact_form(other.m_numerator, other.m_denominator, m_numerator, m_denominator);
    m_value = m_value + other.m_value;
    return *this;
}

BIG_FRACTION& BIG_FRACTION::operator-=(BIG_FRACTION const& other) {
    // In two's complement, so that -2^63 stays what it is.
    auto const negative =
        static_cast<long long>(0 - static_cast<unsigned long long>(other.m_numerator));
    add_exact_form(negative, other.m_denominator, m_numerator, m_denominator);
    m_value = m_value - other.m_value;
    return *this;
}
