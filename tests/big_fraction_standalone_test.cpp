// Fractions on the standalone platform, against rational numbers without limits.

#include "fractions.h"

#include <limits>

#include <boost/multiprecision/cpp_int.hpp>
#include <gtest/gtest.h>

namespace {

using WHOLE = boost::multiprecision::cpp_int;
using RATIONAL = boost::multiprecision::cpp_rational;

constexpr long long MAX = std::numeric_limits<long long>::max();
constexpr long long MIN = std::numeric_limits<long long>::min();

#ifdef NDEBUG
constexpr int ROUNDS = 100000;
#else
constexpr int ROUNDS = 5000;
#endif

BIG_FRACTION sum(BIG_FRACTION a, BIG_FRACTION const& b) {
    return a += b;
}

BIG_FRACTION difference(BIG_FRACTION a, BIG_FRACTION const& b) {
    return a -= b;
}

TEST(BigFractionStandalone, BothFormsAreExactWhereTheyCanBe) {
    BIG_FRACTION quarter(0.25);
    EXPECT_EQ(text_of(quarter), "0/0 and 0.25");
    EXPECT_TRUE(quarter.fractionalize());
    BIG_FRACTION minus_a_third(-1.0 / 3.0);
    EXPECT_TRUE(minus_a_third.fractionalize());
    struct CASE {
        const char* why;
        BIG_FRACTION result;
        const char* fraction;
    };
    const CASE cases[] = {
        {"reduced", {6, 4}, "3/2 and 1.5"},
        {"signs stay where they are", {6, -4}, "3/-2 and -1.5"},
        {"over zero", {6, 0}, "1/0 and inf"},
        {"zero over zero", {0, 0}, "0/0 and nan"},
        {"the smallest number", {MIN, MIN}, "-1/-1 and 1"},
        {"zero", {0.0}, "0/1 and 0"},
        {"found in millionths", quarter, "1/4 and 0.25"},
        {"cut to millionths", minus_a_third, "-333333/1000000 and -0.3333333333333333"},
        {"sum", sum({1, 3}, {1, 6}), "1/2 and 0.5"},
        {"a sum moves the sign up", sum({1, -3}, {1, -6}), "-1/2 and -0.5"},
        {"a sum whose products do not fit", sum({1, MAX}, {2, MAX}),
         "3/9223372036854775807 and 3.2526065174565133e-19"},
        {"a difference that vanishes", difference({MAX, 7}, {MAX, 7}), "0/1 and 0"},
        {"a sum that does not fit", sum({MAX, 1}, {1, 1}), "0/0 and 9223372036854775808"},
        {"minus the smallest number is itself", difference({0, 1}, {MIN, 1}),
         "-9223372036854775808/1 and 9223372036854775808"},
        {"a quotient is not reduced", BIG_FRACTION(1, 2) / BIG_FRACTION(1, 2), "2/2 and 1"},
        {"by zero", BIG_FRACTION(1, 2) / BIG_FRACTION(0, 1), "1/0 and inf"},
        {"inexact operand", sum({1, 2}, {0.1}), "0/0 and 0.6"},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(text_of(c.result), c.fraction);
    }
    EXPECT_TRUE(BIG_FRACTION(1, 2) == make_fraction(2, 4, 0.5));
    EXPECT_TRUE(BIG_FRACTION(1, 3) == BIG_FRACTION(1.0 / 3.0));
    EXPECT_FALSE(BIG_FRACTION(1, 2) == BIG_FRACTION(1, 3));
}

RATIONAL exact_form(BIG_FRACTION const& f) {
    return RATIONAL(f.get_numerator()) / RATIONAL(f.get_denominator());
}

/// Whether the exact form of a result is this number, which is there exactly when `expected` fits
/// 64 bits, and whether the double is what double arithmetic gives.
testing::AssertionResult is(BIG_FRACTION const& result, bool expected_to_fit,
                            RATIONAL const& expected, double value) {
    if (result.is_fractional() != expected_to_fit)
        return testing::AssertionFailure()
               << text_of(result) << ", but " << expected
               << (expected_to_fit ? " fits" : " does not fit or is not known");
    if (expected_to_fit && exact_form(result) != expected)
        return testing::AssertionFailure() << text_of(result) << " instead of " << expected;
    if (!same_bits(result.get_value(), value))
        return testing::AssertionFailure()
               << text_of(result) << " instead of the double " << text_of(value);
    return testing::AssertionSuccess();
}

bool fits(WHOLE const& number) {
    return number >= MIN && number <= MAX;
}

TEST(BigFractionStandalone, ArithmeticIsExactWheneverTheResultFits) {
    constexpr unsigned long long seed = 20260110;
    FRACTION_SOURCE source(seed);
    int exact = 0;
    for (int round = 0; round < ROUNDS; ++round) {
        BIG_FRACTION const a = source.fraction();
        BIG_FRACTION const b = source.fraction();
        SCOPED_TRACE(testing::Message()
                     << "seed " << seed << ", " << text_of(a) << " and " << text_of(b));
        bool const both = a.is_fractional() && b.is_fractional();
        RATIONAL const x = both ? exact_form(a) : RATIONAL(0);
        RATIONAL const y = both ? exact_form(b) : RATIONAL(0);
        // The negative of the smallest numerator is itself.
        bool const wraps = both && b.get_numerator() == MIN;
        RATIONAL const total = x + y;
        RATIONAL const rest = wraps ? total : RATIONAL(x - y);
        bool const total_fits = both && fits(numerator(total)) && fits(denominator(total));
        bool const rest_fits = both && fits(numerator(rest)) && fits(denominator(rest));
        ASSERT_TRUE(is(sum(a, b), total_fits, total, a.get_value() + b.get_value())) << "sum";
        ASSERT_TRUE(is(difference(a, b), rest_fits, rest, a.get_value() - b.get_value()))
            << "difference";

        // A quotient is exact when its two products fit; division by zero leaves no exact form.
        bool const quotient_fits = both && b.get_numerator() != 0
                                   && fits(WHOLE(a.get_numerator()) * b.get_denominator())
                                   && fits(WHOLE(a.get_denominator()) * b.get_numerator());
        RATIONAL const quotient = quotient_fits ? RATIONAL(x / y) : RATIONAL(0);
        ASSERT_TRUE(is(a / b, quotient_fits, quotient, a.get_value() / b.get_value()))
            << "quotient";
        exact += total_fits;

        // Equality is that of the numbers wherever the cross products fit.
        if (both && fits(WHOLE(a.get_numerator()) * b.get_denominator())
            && fits(WHOLE(a.get_denominator()) * b.get_numerator())) {
            ASSERT_EQ(a == b, x == y);
        }
    }
    EXPECT_GT(exact, ROUNDS / 20);
}

TEST(BigFractionStandalone, SumsAreInLowestTermsWithAPositiveDenominator) {
    constexpr unsigned long long seed = 20260111;
    FRACTION_SOURCE source(seed);
    for (int round = 0; round < ROUNDS; ++round) {
        BIG_FRACTION const a = source.fraction();
        BIG_FRACTION const b = source.fraction();
        BIG_FRACTION const total = sum(a, b);
        if (!total.is_fractional())
            continue;
        SCOPED_TRACE(testing::Message()
                     << "seed " << seed << ", " << text_of(a) << " and " << text_of(b));
        ASSERT_GT(total.get_denominator(), 0);
        ASSERT_EQ(gcd(WHOLE(total.get_numerator()), WHOLE(total.get_denominator())), 1);
    }
}

} // namespace
