// Fractions: both forms of a number, and what is asked of the platform for them.

#include "fractions.h"
#include "recording_platform.h"

#include <limits>
#include <type_traits>

namespace {

using recording::CALL;

__extension__ using WIDE = __int128;

constexpr long long MAX = std::numeric_limits<long long>::max();
constexpr long long MIN = std::numeric_limits<long long>::min();
constexpr double INF = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

#ifdef NDEBUG
constexpr int ROUNDS = 50000;
#else
constexpr int ROUNDS = 20000;
#endif

// What the platform was asked for.

CALL gcd_simplify(long long a, long long b) {
    return {"GEN_MATH::gcd_simplify", {std::to_string(a), std::to_string(b)}};
}

CALL multiply_of(long long a, long long b) {
    return {"GEN_MATH::multiply_of", {std::to_string(a), std::to_string(b)}};
}

CALL add_fractions_of(long long num_a, long long den_a, long long num_b, long long den_b) {
    return {"GEN_MATH::add_fractions_of",
            {std::to_string(num_a), std::to_string(den_a), std::to_string(num_b),
             std::to_string(den_b)}};
}

// --- The class ---

TEST(BigFraction, IsAPlainValueOfThreeMembers) {
    EXPECT_TRUE(std::is_trivially_copyable_v<BIG_FRACTION>);
    EXPECT_TRUE(std::is_trivially_destructible_v<BIG_FRACTION>);
    EXPECT_FALSE(std::is_polymorphic_v<BIG_FRACTION>);
    EXPECT_EQ(sizeof(BIG_FRACTION), 24u);
    EXPECT_EQ(BIG_FRACTION::EQUALITY_PRECISION, 1e-10);
}

TEST(BigFraction, DefaultIsZeroOverOne) {
    EXPECT_EQ(text_of(BIG_FRACTION()), "0/1 and 0");
}

TEST(BigFraction, CopiesTakeAllThreeMembers) {
    for (BIG_FRACTION const& f : {make_fraction(7, -3, 1.25), make_fraction(9, 0, -0.0)}) {
        BIG_FRACTION const copy(f);
        BIG_FRACTION assigned;
        BIG_FRACTION& result = assigned = f;
        EXPECT_EQ(&result, &assigned);
        EXPECT_EQ(text_of(copy), text_of(f));
        EXPECT_EQ(text_of(assigned), text_of(f));
    }
}

TEST(BigFraction, NumeratorOfAnInexactFractionIsAnInternalError) {
    EXPECT_INTERNAL_ERROR(BIG_FRACTION(0.25).get_numerator(), "is_fractional()", "BIG",
                          "h/big_fraction_sys");
    EXPECT_EQ(BIG_FRACTION(0.25).get_denominator(), 0);
    EXPECT_EQ(BIG_FRACTION(6, 4).get_numerator(), 3);
}

// --- Construction ---

TEST(BigFraction, TwoIntegersAreReducedByThePlatform) {
    struct CASE {
        const char* why;
        long long numerator;
        long long denominator;
        const char* fraction;
    };
    static const CASE cases[] = {
        // why                            numerator denominator  fraction
        {"a common divisor", 6, 4, "3/2 and 1.5"},
        {"none", 1, 3, "1/3 and 0.3333333333333333"},
        {"an integer", 12, 4, "3/1 and 3"},
        {"zero", 0, 5, "0/1 and 0"},
        {"a sign stays where it is", -6, 4, "-3/2 and -1.5"},
        {"there too", 6, -4, "3/-2 and -1.5"},
        {"and both", -6, -4, "-3/-2 and 1.5"},
        {"zero over a negative", 0, -5, "0/-1 and -0"},
        {"the smallest integer", MIN, 2,
         "-4611686018427387904/1 and "
         "-4611686018427387904"},
        {"twice", MIN, MIN, "-1/-1 and 1"},
        // A denominator of 0 is no exact form, and no error.
        {"a number over zero", 5, 0, "1/0 and inf"},
        {"a negative over zero", -5, 0, "-1/0 and -inf"},
        {"zero over zero", 0, 0, "0/0 and nan"},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(c.why);
        recording::clear();
        EXPECT_EQ(text_of(BIG_FRACTION(c.numerator, c.denominator)), c.fraction);
        EXPECT_EQ(recording::calls(), std::vector<CALL>{gcd_simplify(c.numerator, c.denominator)});
    }
}

TEST(BigFraction, DoubleIsTheQuotientOfTheIntegersAsGiven) {
    // Beyond 2^53 the integers round before the division, so the reduced ones give another double.
    long long const numerator = 9007199254740993 * 7;
    long long const denominator = 5 * 7;
    BIG_FRACTION const f(numerator, denominator);
    EXPECT_EQ(f.get_numerator(), 9007199254740993);
    EXPECT_EQ(f.get_value(), static_cast<double>(numerator) / static_cast<double>(denominator));
    EXPECT_NE(f.get_value(), static_cast<double>(9007199254740993) / 5.0);
}

TEST(BigFraction, OnlyTheDoubleZeroIsExactAtOnce) {
    struct CASE {
        double value;
        const char* fraction;
    };
    static const CASE cases[] = {
        {0.0, "0/1 and 0"},
        {-0.0, "0/1 and -0"},
        {0.25, "0/0 and 0.25"},
        {1.0, "0/0 and 1"},
        {5e-324, "0/0 and 5e-324"},
        {-INF, "0/0 and -inf"},
        {NOT_A_NUMBER, "0/0 and nan"},
    };
    recording::clear();
    for (const CASE& c : cases)
        EXPECT_EQ(text_of(BIG_FRACTION(c.value)), c.fraction);
    EXPECT_EQ(recording::calls(), std::vector<CALL>()) << "the platform has no part in it";
}

// --- fractionalize ---

TEST(BigFraction, FractionalizeFindsMillionths) {
    struct CASE {
        const char* why;
        double value;
        bool found;
        const char* fraction;
    };
    static const CASE cases[] = {
        // At most six decimal places.
        {"a quarter", 0.25, true, "1/4 and 0.25"},
        {"an integer", 3.0, true, "3/1 and 3"},
        {"six places", 0.000001, true, "1/1000000 and 1e-06"},
        {"six places", 123.456789, true, "123456789/1000000 and 123.456789"},
        // More do not, unless the rest is below a millionth of a millionth.
        {"a third", 1.0 / 3.0, false, "0/0 and 0.3333333333333333"},
        {"seven places", 0.0000001, false, "0/0 and 1e-07"},
        {"far below", 1e-13, true, "0/1 and 1e-13"},
        {"just below", 9.9e-13, true, "0/1 and 9.9e-13"},
        {"at it", 1e-12, false, "0/0 and 1e-12"},
        {"scales to just above 123", 0.000123, true, "123/1000000 and 0.000123"},
        {"scales to just below 249", 0.000249, false, "0/0 and 0.000249"},
        {"scales to just below 2010000", 2.01, false, "0/0 and 2.01"},
        // The test is one-sided on purpose: a negative number is always cut.
        {"minus a third", -1.0 / 3.0, true, "-333333/1000000 and -0.3333333333333333"},
        {"minus a half", -0.5, true, "-1/2 and -0.5"},
        {"cut to nothing", -1e-7, true, "0/1 and -1e-07"},
        {"below every place", -5e-324, true, "0/1 and -5e-324"},
        // From 2^53 millionths on, every double is a whole number of them.
        {"large", 9007199255.5, true, "18014398511/2 and 9007199255.5"},
        {"the largest", 9223372036854.773, true, "28823037615171168/3125 and 9223372036854.773"},
        // What does not fit an integer is not tried.
        {"one more", 9223372036854.775, false, "0/0 and 9223372036854.775"},
        {"too large", 1e13, false, "0/0 and 1e+13"},
        {"too small", -1e13, false, "0/0 and -1e+13"},
        {"overflows when scaled", 1e308, false, "0/0 and 1e+308"},
        {"infinity", INF, false, "0/0 and inf"},
        {"minus infinity", -INF, false, "0/0 and -inf"},
        {"not-a-number", NOT_A_NUMBER, false, "0/0 and nan"},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(testing::Message() << c.why << ": " << text_of(c.value));
        BIG_FRACTION f(c.value);
        EXPECT_EQ(f.fractionalize(), c.found);
        EXPECT_EQ(text_of(f), c.fraction);
    }
}

TEST(BigFraction, FractionalizeKeepsAnExactFormAsItIs) {
    for (BIG_FRACTION const& given : {make_fraction(2, 4, 0.5), make_fraction(7, -1, NOT_A_NUMBER),
                                      BIG_FRACTION(0.0), make_fraction(MIN, MAX, INF)}) {
        BIG_FRACTION f = given;
        recording::clear();
        EXPECT_TRUE(f.fractionalize());
        EXPECT_EQ(text_of(f), text_of(given));
        EXPECT_EQ(recording::calls(), std::vector<CALL>());
    }
}

TEST(BigFraction, FractionalizeAsksThePlatformToReduce) {
    BIG_FRACTION f(-2.5);
    recording::clear();
    EXPECT_TRUE(f.fractionalize());
    EXPECT_EQ(recording::calls(), std::vector<CALL>{gcd_simplify(-2500000, 1000000)});
}

TEST(BigFraction, FailedFractionalizeChangesNothing) {
    // A numerator without a denominator means nothing, but it stays.
    BIG_FRACTION f = make_fraction(5, 0, 1.0 / 3.0);
    recording::clear();
    EXPECT_FALSE(f.fractionalize());
    EXPECT_EQ(text_of(f), "5/0 and 0.3333333333333333");
    EXPECT_EQ(recording::calls(), std::vector<CALL>());
}

/// The greatest common divisor of the magnitudes.
WIDE slow_gcd(WIDE a, WIDE b) {
    while (b != 0) {
        WIDE const remainder = a % b;
        a = b;
        b = remainder;
    }
    return a < 0 ? -a : a;
}

/// The rule of fractionalize in exact arithmetic: x is what the double product gives; what
/// truncation cuts off it is exact in double.
bool fractionalize_slowly(double value, long long& numerator, long long& denominator) {
    double const x = 1e6 * value;
    if (std::isnan(x) || x < -0x1p63 || x >= 0x1p63)
        return false;
    double const whole = std::trunc(x);
    if (x - whole >= 1e-6)
        return false;
    numerator = static_cast<long long>(whole);
    denominator = 1000000;
    auto const divisor = static_cast<long long>(slow_gcd(numerator, denominator));
    numerator /= divisor;
    denominator /= divisor;
    return true;
}

TEST(BigFraction, FractionalizeAgreesWithItsRule) {
    constexpr unsigned long long seed = 20260101;
    FRACTION_SOURCE source(seed);
    int found = 0;
    for (int round = 0; round < ROUNDS; ++round) {
        double const value = source.number();
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", " << text_of(value));
        if (value == 0.0)
            continue; // exact already
        BIG_FRACTION f(value);
        long long numerator = 0;
        long long denominator = 0;
        bool const expected = fractionalize_slowly(value, numerator, denominator);
        ASSERT_EQ(f.fractionalize(), expected);
        ASSERT_EQ(f.get_denominator(), denominator);
        ASSERT_TRUE(same_bits(f.get_value(), value));
        if (expected) {
            ASSERT_EQ(f.get_numerator(), numerator);
            ++found;
        }
        if (round % 1000 == 0)
            recording::clear();
    }
    EXPECT_GT(found, ROUNDS / 10);
}

// --- Sum, difference, quotient ---

BIG_FRACTION sum(BIG_FRACTION a, BIG_FRACTION const& b) {
    return a += b;
}

BIG_FRACTION difference(BIG_FRACTION a, BIG_FRACTION const& b) {
    return a -= b;
}

TEST(BigFraction, ArithmeticUpdatesBothForms) {
    BIG_FRACTION const inexact(0.25);
    struct CASE {
        const char* why;
        BIG_FRACTION result;
        const char* fraction;
    };
    const CASE cases[] = {
        {"a sum is reduced", sum({1, 3}, {1, 6}), "1/2 and 0.5"},
        {"a difference is reduced", difference({1, 2}, {1, 6}), "1/3 and 0.33333333333333337"},
        {"a quotient is not", BIG_FRACTION(1, 2) / BIG_FRACTION(2, 4), "2/2 and 1"},
        {"signs multiply where they are", BIG_FRACTION(-1, 2) / BIG_FRACTION(1, -3), "3/2 and 1.5"},
        {"a sign moves with the divisor", BIG_FRACTION(1, 2) / BIG_FRACTION(-1, 3),
         "3/-2 and -1.5"},
        // An operand without an exact form leaves none.
        {"inexact added", sum({1, 2}, inexact), "0/0 and 0.75"},
        {"inexact added to", sum(inexact, {1, 2}), "0/0 and 0.75"},
        {"inexact subtracted", difference({1, 2}, inexact), "0/0 and 0.25"},
        {"inexact subtracted from", difference(inexact, {1, 2}), "0/0 and -0.25"},
        {"inexact divisor", BIG_FRACTION(1, 2) / inexact, "0/0 and 2"},
        {"inexact dividend", inexact / BIG_FRACTION(1, 2), "0/0 and 0.5"},
        // What does not fit leaves none.
        {"sum too large", sum({MAX, 1}, {1, 1}), "0/0 and 9223372036854775808"},
        {"difference too small", difference({MIN, 1}, {1, 1}), "0/0 and -9223372036854775808"},
        {"numerator too large", BIG_FRACTION(MAX, 1) / BIG_FRACTION(1, 2),
         "0/0 and 18446744073709551616"},
        {"denominator too large", BIG_FRACTION(1, MAX) / BIG_FRACTION(2, 1),
         "0/0 and 5.421010862427522e-20"},
        // Division by zero follows the double.
        {"by zero", BIG_FRACTION(1, 2) / BIG_FRACTION(0, 1), "1/0 and inf"},
        {"by minus zero", BIG_FRACTION(1, 2) / BIG_FRACTION(-0.0), "1/0 and -inf"},
        {"zero by zero", BIG_FRACTION() / BIG_FRACTION(), "0/0 and nan"},
        {"zero by a number", BIG_FRACTION() / BIG_FRACTION(3, 7), "0/3 and 0"},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(text_of(c.result), c.fraction);
    }
}

TEST(BigFraction, ArithmeticReturnsTheFractionItself) {
    BIG_FRACTION f(1, 2);
    EXPECT_EQ(&(f += BIG_FRACTION(1, 2)), &f);
    EXPECT_EQ(&(f -= BIG_FRACTION(1, 4)), &f);
    EXPECT_EQ(&(f /= BIG_FRACTION(1, 3)), &f);
    EXPECT_EQ(text_of(f), "9/4 and 2.25");
}

TEST(BigFraction, ArithmeticAsksThePlatformInThisOrder) {
    struct CASE {
        const char* why;
        void (*run)(BIG_FRACTION& a, BIG_FRACTION const& b);
        BIG_FRACTION a;
        BIG_FRACTION b;
        std::vector<CALL> calls; // but for what the platform asks itself
    };
    auto const add = [](BIG_FRACTION& a, BIG_FRACTION const& b) { a += b; };
    auto const subtract = [](BIG_FRACTION& a, BIG_FRACTION const& b) { a -= b; };
    auto const divide = [](BIG_FRACTION& a, BIG_FRACTION const& b) { a /= b; };
    const CASE cases[] = {
        {"sum", add, {2, 3}, {5, 7}, {add_fractions_of(2, 3, 5, 7)}},
        {"difference", subtract, {2, 3}, {5, 7}, {add_fractions_of(2, 3, -5, 7)}},
        {"negation in two's complement",
         subtract,
         {2, 3},
         {MIN, 1},
         {add_fractions_of(2, 3, MIN, 1)}},
        {"quotient", divide, {2, 3}, {5, 7}, {multiply_of(2, 7), multiply_of(3, 5)}},
        {"both products, though the first overflows",
         divide,
         {MAX, 3},
         {5, 7},
         {multiply_of(MAX, 7), multiply_of(3, 5)}},
        {"nothing, without an exact form", add, {2, 3}, {0.5}, {}},
        {"nothing, without an exact form", subtract, {0.5}, {2, 3}, {}},
        {"nothing, without an exact form", divide, {0.5}, {0.5}, {}},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(c.why);
        BIG_FRACTION a = c.a;
        recording::clear();
        c.run(a, c.b);
        std::vector<CALL> calls = recording::calls();
        std::erase_if(calls,
                      [](CALL const& call) { return call.operation == "GEN_MATH::gcd_simplify"; });
        EXPECT_EQ(calls, c.calls);
    }
}

TEST(BigFraction, OperandMayBeTheFractionItself) {
    struct CASE {
        BIG_FRACTION fraction;
        const char* doubled;
        const char* subtracted;
        const char* divided;
    };
    const CASE cases[] = {
        {{2, 3}, "4/3 and 1.3333333333333333", "0/1 and 0", "6/6 and 1"},
        {{-5, 7}, "-10/7 and -1.4285714285714286", "0/1 and 0", "-35/-35 and 1"},
        {{0, 1}, "0/1 and 0", "0/1 and 0", "0/0 and nan"},
        {{0.1}, "0/0 and 0.2", "0/0 and 0", "0/0 and 1"},
        {{MAX, 2}, "0/0 and 9223372036854775808", "0/0 and 0", "0/0 and 1"},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(text_of(c.fraction));
        BIG_FRACTION f = c.fraction;
        EXPECT_EQ(text_of(f += f), c.doubled);
        f = c.fraction;
        EXPECT_EQ(text_of(f -= f), c.subtracted);
        f = c.fraction;
        EXPECT_EQ(text_of(f /= f), c.divided);
        f = c.fraction;
        EXPECT_EQ(text_of(f / f), c.divided);
        EXPECT_EQ(text_of(f), text_of(c.fraction)) << "the dividend is a copy";
    }
}

/// A fraction by a plain transcription of the rules, in 128 bits.
struct SLOW_FRACTION {
    long long numerator;
    long long denominator; ///< 0 when there is no exact form
    double value;

    SLOW_FRACTION(BIG_FRACTION const& f)
        : numerator(f.is_fractional() ? f.get_numerator() : 0), denominator(f.get_denominator()),
          value(f.get_value()) {}

    void set(WIDE wide_numerator, WIDE wide_denominator, bool reduce) {
        bool const fits = wide_numerator == static_cast<long long>(wide_numerator)
                          && wide_denominator == static_cast<long long>(wide_denominator);
        numerator = fits ? static_cast<long long>(wide_numerator) : 0;
        denominator = fits ? static_cast<long long>(wide_denominator) : 0;
        if (fits && reduce) {
            WIDE const divisor = slow_gcd(wide_numerator, wide_denominator);
            numerator = static_cast<long long>(wide_numerator / divisor);
            denominator = static_cast<long long>(wide_denominator / divisor);
        }
    }

    void add(SLOW_FRACTION const& other, int sign) {
        if (denominator != 0 && other.denominator != 0) {
            WIDE const left = WIDE{numerator} * other.denominator;
            // The negative of the smallest number is itself.
            WIDE const right =
                (other.numerator == MIN ? WIDE{MIN} : WIDE{other.numerator} * sign) * denominator;
            // The recorder refuses intermediate products that do not fit.
            bool const fits =
                left == static_cast<long long>(left) && right == static_cast<long long>(right);
            set(fits ? left + right : WIDE{MAX} * 2, WIDE{denominator} * other.denominator, true);
        } else {
            set(0, 0, false);
        }
        value = sign > 0 ? value + other.value : value - other.value;
    }

    void divide(SLOW_FRACTION const& other) {
        if (denominator != 0 && other.denominator != 0)
            set(WIDE{numerator} * other.denominator, WIDE{denominator} * other.numerator, false);
        else
            set(0, 0, false);
        value = value / other.value;
    }

    bool equals(SLOW_FRACTION const& other) const {
        if (denominator != 0 && other.denominator != 0) {
            if (numerator == other.numerator && denominator == other.denominator)
                return true;
            WIDE const left = WIDE{numerator} * other.denominator;
            WIDE const right = WIDE{denominator} * other.numerator;
            if (left == static_cast<long long>(left) && right == static_cast<long long>(right))
                return left == right;
        }
        if (other.value == 0.0)
            return value == 0.0;
        double const ratio = value / other.value;
        return ratio - 1.0 > -1e-10 && ratio - 1.0 < 1e-10;
    }
};

testing::AssertionResult agree(BIG_FRACTION const& f, SLOW_FRACTION const& slow) {
    if (f.get_denominator() == slow.denominator
        && (!f.is_fractional() || f.get_numerator() == slow.numerator)
        && same_bits(f.get_value(), slow.value))
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << text_of(f) << " instead of " << slow.numerator << '/'
                                       << slow.denominator << " and " << text_of(slow.value);
}

TEST(BigFraction, ArithmeticAgreesWithItsRulesBitForBit) {
    constexpr unsigned long long seed = 20260102;
    FRACTION_SOURCE source(seed);
    int exact = 0;
    for (int round = 0; round < ROUNDS; ++round) {
        BIG_FRACTION const a = source.fraction();
        BIG_FRACTION const b = source.fraction();
        SCOPED_TRACE(testing::Message()
                     << "seed " << seed << ", " << text_of(a) << " and " << text_of(b));
        SLOW_FRACTION slow_sum(a);
        slow_sum.add(b, 1);
        ASSERT_TRUE(agree(sum(a, b), slow_sum)) << "sum";
        SLOW_FRACTION slow_difference(a);
        slow_difference.add(b, -1);
        ASSERT_TRUE(agree(difference(a, b), slow_difference)) << "difference";
        SLOW_FRACTION slow_quotient(a);
        slow_quotient.divide(b);
        ASSERT_TRUE(agree(a / b, slow_quotient)) << "quotient";
        ASSERT_EQ(a == b, SLOW_FRACTION(a).equals(b)) << "equality";
        exact += slow_sum.denominator != 0;
        if (round % 1000 == 0)
            recording::clear();
    }
    EXPECT_GT(exact, ROUNDS / 20);
}

// --- Equality ---

TEST(BigFraction, EqualityIsExactWhereItCanBe) {
    struct CASE {
        const char* why;
        BIG_FRACTION a;
        BIG_FRACTION b;
        bool equal;
        std::vector<CALL> calls;
    };
    const CASE cases[] = {
        {"equal members, whatever the doubles",
         make_fraction(1, 2, 0.5),
         make_fraction(1, 2, NOT_A_NUMBER),
         true,
         {}},
        {"equal cross products",
         make_fraction(1, 2, 0.5),
         make_fraction(2, 4, 7.0),
         true,
         {multiply_of(1, 4), multiply_of(2, 2)}},
        {"the sign may sit in either",
         make_fraction(-1, 2, -0.5),
         make_fraction(1, -2, -0.5),
         true,
         {multiply_of(-1, -2), multiply_of(2, 1)}},
        {"different cross products, though the doubles are equal",
         make_fraction(1000000000, 3000000001, 0.0),
         make_fraction(1, 3, 0.0),
         false,
         {multiply_of(1000000000, 3), multiply_of(3000000001, 1)}},
        // A product that does not fit: the doubles decide.
        {"first product too large",
         make_fraction(MAX, 1, 1.0),
         make_fraction(1, 3, 1.0 + 1e-11),
         true,
         {multiply_of(MAX, 3), multiply_of(1, 1)}},
        {"second product too large",
         make_fraction(1, MAX, 1.0),
         make_fraction(3, 2, 2.0),
         false,
         {multiply_of(1, 2), multiply_of(MAX, 3)}},
        // No exact form: the doubles decide.
        {"a third", {1, 3}, {1.0 / 3.0}, true, {}},
        {"a third", {1.0 / 3.0}, {1, 3}, true, {}},
        {"a half", {0.5}, {1, 3}, false, {}},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(testing::Message() << c.why << ": " << text_of(c.a) << " == " << text_of(c.b));
        recording::clear();
        EXPECT_EQ(c.a == c.b, c.equal);
        EXPECT_EQ(recording::calls(), c.calls);
    }
}

TEST(BigFraction, EqualityOfDoublesIsRelativeToTheRightSide) {
    struct CASE {
        double a;
        double b;
        bool equal;
    };
    static const CASE cases[] = {
        {1.0, 1.0 + 0.9e-10, true},
        {1.0, 1.0 + 1.1e-10, false},
        {1e300, 1e300 * (1.0 + 0.9e-10), true},
        {1e-300, 1.000001e-300, false},
        {-2.0, 2.0, false},
        // Only zero equals zero, of either sign.
        {0.0, 1e-300, false},
        {1e-300, 0.0, false},
        {-0.0, 0.0, true},
        // An infinity has no ratio to itself.
        {INF, INF, false},
        {INF, 1.0, false},
        {1.0, INF, false},
        {NOT_A_NUMBER, 1.0, false},
        {1.0, NOT_A_NUMBER, false},
        {NOT_A_NUMBER, 0.0, false},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(text_of(c.a) + " == " + text_of(c.b));
        EXPECT_EQ(make_fraction(0, 0, c.a) == make_fraction(0, 0, c.b), c.equal);
    }
}

TEST(BigFraction, EqualityAgreesWithItsRuleNearTheTolerance) {
    constexpr unsigned long long seed = 20260103;
    FRACTION_SOURCE source(seed);
    int equal = 0;
    for (int round = 0; round < ROUNDS; ++round) {
        BIG_FRACTION const a = source.fraction();
        BIG_FRACTION const b =
            make_fraction(0, 0, a.get_value() * (1.0 + 1e-11 * (round % 41 - 20)));
        SCOPED_TRACE(testing::Message()
                     << "seed " << seed << ", " << text_of(a) << " and " << text_of(b));
        ASSERT_EQ(a == b, SLOW_FRACTION(a).equals(b));
        ASSERT_EQ(b == a, SLOW_FRACTION(b).equals(a));
        equal += a == b;
    }
    EXPECT_GT(equal, ROUNDS / 4);
    EXPECT_LT(equal, ROUNDS * 3 / 4);
}

TEST(BigFraction, EqualityMayDependOnTheSide) {
    // The tolerance is relative to the right side; callers rely on it.
    BIG_FRACTION const a = make_fraction(0, 0, 1.0543127504184295);
    BIG_FRACTION const b = make_fraction(0, 0, 1.0543127505238608);
    EXPECT_TRUE(a == b);
    EXPECT_FALSE(b == a);
}

TEST(BigFraction, AFractionEqualsItselfWhateverItHolds) {
    BIG_FRACTION const f(NOT_A_NUMBER);
    recording::clear();
    EXPECT_TRUE(f == f);
    EXPECT_FALSE(f == BIG_FRACTION(f));
    EXPECT_EQ(recording::calls(), std::vector<CALL>());
}

} // namespace
