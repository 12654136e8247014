#ifndef BENCH_PLAIN_H
#define BENCH_PLAIN_H

/// @file
/// Row 15: what times, frequencies and fractions do, written inline on plain integers and doubles.
/// What cannot happen to the inputs at hand, an internal error or an exact form that does not fit,
/// is tested for all the same.

#include <climits>
#include <cmath>
#include <cstdlib>
#include <numeric>

namespace bench {

/// BIG_TIME
struct PLAIN_TIME {
    long long value;
    int unit;
};

/// The switches of the comparisons, as they were found when the program started
struct PLAIN_SWITCHES {
    bool debug = std::getenv("BIG_TIME_DEBUG_UNIT_MISMATCHES") != nullptr;
    bool strict = std::getenv("BIG_TIME_STRICT_UNIT_MODE") != nullptr;
    bool mismatch = std::getenv("BIG_TIME_IE_ON_UNIT_MISMATCH") != nullptr;
};
inline PLAIN_SWITCHES plain_switches;

inline constexpr unsigned char plain_categories[16] = {0, 0, 0, 0, 0, 0, 0, 1,
                                                       1, 1, 1, 0, 2, 2, 2, 4};

inline bool operator<(PLAIN_TIME a, PLAIN_TIME b) {
    if (a.value != 0 && b.value != 0 && plain_categories[a.unit] != plain_categories[b.unit]
        && (plain_switches.debug | plain_switches.strict | plain_switches.mismatch))
        std::abort();
    return a.value < b.value;
}

inline bool operator==(PLAIN_TIME a, PLAIN_TIME b) {
    if (a.value != b.value)
        return false;
    int const left = plain_categories[a.unit];
    int const right = plain_categories[b.unit];
    return left == right || (plain_switches.strict ? left == 2 && right == 1 : left + right == 3);
}

inline PLAIN_TIME operator+(PLAIN_TIME a, PLAIN_TIME b) {
    return {static_cast<long long>(static_cast<unsigned long long>(a.value)
                                   + static_cast<unsigned long long>(b.value)),
            a.unit < b.unit ? a.unit : b.unit};
}

inline PLAIN_TIME operator-(PLAIN_TIME a, PLAIN_TIME b) {
    return {static_cast<long long>(static_cast<unsigned long long>(a.value)
                                   - static_cast<unsigned long long>(b.value)),
            a.unit < b.unit ? a.unit : b.unit};
}

inline PLAIN_TIME operator*(PLAIN_TIME a, long long factor) {
    return {static_cast<long long>(static_cast<unsigned long long>(a.value)
                                   * static_cast<unsigned long long>(factor)),
            a.unit};
}

inline PLAIN_TIME operator/(PLAIN_TIME a, long long divisor) {
    if (divisor == 0 || (divisor == -1 && a.value == LLONG_MIN))
        std::abort();
    return {a.value / divisor, a.unit};
}

/// BIG_FREQUENCY: hertz, 0 for none
struct PLAIN_FREQUENCY {
    double value;

    static PLAIN_FREQUENCY of_period(int picoseconds) {
        return {picoseconds == -INT_MAX ? 0.0 : 1e12 / picoseconds};
    }

    long long period() const {
        if (value == 0.0)
            return 0;
        double const picoseconds = 1e12 / value;
        return picoseconds >= -0x1p63 && picoseconds < 0x1p63 ? static_cast<long long>(picoseconds)
                                                              : LLONG_MIN;
    }
};

inline PLAIN_FREQUENCY operator*(PLAIN_FREQUENCY a, long long factor) {
    return {static_cast<double>(factor) * a.value};
}

/// BIG_FRACTION
struct PLAIN_FRACTION {
    long long numerator;
    long long denominator; ///< positive; 0 when there is no exact form
    double value;

    PLAIN_FRACTION(long long n, long long d)
        : numerator(n), denominator(d), value(static_cast<double>(n) / static_cast<double>(d)) {
        reduce();
    }

    PLAIN_FRACTION& operator+=(PLAIN_FRACTION const& other) {
        return add(other.numerator, other.denominator, value + other.value);
    }

    PLAIN_FRACTION& operator-=(PLAIN_FRACTION const& other) {
        return add(static_cast<long long>(0 - static_cast<unsigned long long>(other.numerator)),
                   other.denominator, value - other.value);
    }

    PLAIN_FRACTION& operator/=(PLAIN_FRACTION const& other) {
        bool lost = denominator == 0 || other.denominator == 0;
        lost |= __builtin_mul_overflow(numerator, other.denominator, &numerator);
        lost |= __builtin_mul_overflow(denominator, other.numerator, &denominator);
        numerator = lost ? 0 : numerator;
        denominator = lost ? 0 : denominator;
        value /= other.value;
        return *this;
    }

private:
    void reduce() {
        long long const divisor = std::gcd(numerator, denominator);
        if (divisor != 0) {
            numerator /= divisor;
            denominator /= divisor;
        }
    }

    /// Adds to both forms.
    PLAIN_FRACTION& add(long long n, long long d, double sum) {
        long long left = 0;
        long long right = 0;
        bool lost = denominator == 0 || d == 0;
        lost |= __builtin_mul_overflow(numerator, d, &left);
        lost |= __builtin_mul_overflow(n, denominator, &right);
        lost |= __builtin_add_overflow(left, right, &numerator);
        lost |= __builtin_mul_overflow(denominator, d, &denominator);
        if (lost)
            numerator = denominator = 0;
        else
            reduce();
        value = sum;
        return *this;
    }
};

inline PLAIN_FRACTION operator/(PLAIN_FRACTION dividend, PLAIN_FRACTION const& divisor) {
    return dividend /= divisor;
}

inline bool operator==(PLAIN_FRACTION const& a, PLAIN_FRACTION const& b) {
    if (&a == &b)
        return true;
    if (a.denominator != 0 && b.denominator != 0) {
        if (a.numerator == b.numerator && a.denominator == b.denominator)
            return true;
        long long left = 0;
        long long right = 0;
        bool overflow = __builtin_mul_overflow(a.numerator, b.denominator, &left);
        overflow |= __builtin_mul_overflow(a.denominator, b.numerator, &right);
        if (!overflow)
            return left == right;
    }
    return b.value == 0.0 ? a.value == 0.0 : std::fabs(a.value / b.value - 1.0) < 1e-10;
}

} // namespace bench

#endif
