// Checked arithmetic on fractions of the standalone platform, against whole numbers without limits.

#include "gen_math_sys.h"

#include <limits>
#include <ostream>
#include <random>
#include <string>
#include <vector>

#include <boost/multiprecision/cpp_int.hpp>
#include <gtest/gtest.h>

namespace {

using WHOLE = boost::multiprecision::cpp_int;

constexpr long long MIN = std::numeric_limits<long long>::min();
constexpr long long MAX = std::numeric_limits<long long>::max();

#ifdef NDEBUG
constexpr int ROUNDS = 100000;
#else
constexpr int ROUNDS = 5000;
#endif

constexpr unsigned SEED = 20240229;

bool fits(WHOLE const& number) {
    return number >= MIN && number <= MAX;
}

/// Numbers where something changes: around 0, around powers of two, at both ends.
std::vector<long long> boundaries() {
    std::vector<long long> numbers = {0, MIN, MIN + 1, MIN / 2, MAX, MAX - 1, 6, -6, 1000000};
    for (int bit : {0, 1, 31, 32, 62})
        for (long long const beside : {-1, 0, 1}) {
            numbers.push_back((1LL << bit) + beside);
            numbers.push_back(-(1LL << bit) + beside);
        }
    return numbers;
}

/// Numbers of every length, small ones as often as large ones.
class RANDOM_NUMBERS {
public:
    long long next() {
        long long const bits = static_cast<long long>(m_engine());
        return bits >> (m_engine() % 64);
    }
    long long next_but_zero() {
        long long const number = next();
        return number == 0 ? 1 : number;
    }

private:
    std::mt19937_64 m_engine{SEED};
};

// Products

void expect_product(long long a, long long b) {
    SCOPED_TRACE(std::to_string(a) + " * " + std::to_string(b));
    WHOLE const exact = WHOLE(a) * b;
    bool overflow = false;
    long long const product = GEN_MATH::multiply_of(a, b, overflow);
    EXPECT_EQ(overflow, !fits(exact));
    EXPECT_EQ((exact - product) % (WHOLE(1) << 64), 0); // the low bits in any case
}

TEST(PlatformGenMath, AProductIsExactOrOverflows) {
    for (long long const a : boundaries())
        for (long long const b : boundaries())
            expect_product(a, b);
    RANDOM_NUMBERS random;
    for (int i = 0; i < ROUNDS; ++i)
        expect_product(random.next(), random.next());
}

TEST(PlatformGenMath, AProductThatDoesNotFitGivesItsLowBits) {
    struct CASE {
        long long a;
        long long b;
        long long product;
    };
    CASE const cases[] = {
        {MIN, -1, MIN}, {MAX, 2, -2},  {MIN, 2, 0},
        {MIN, MIN, 0},  {MAX, MAX, 1}, {1LL << 32, 1LL << 31, MIN},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(std::to_string(c.a) + " * " + std::to_string(c.b));
        bool overflow = false;
        EXPECT_EQ(GEN_MATH::multiply_of(c.a, c.b, overflow), c.product);
        EXPECT_TRUE(overflow);
    }
}

TEST(PlatformGenMath, OneFlagWatchesSeveralProducts) {
    bool overflow = false;
    GEN_MATH::multiply_of(2LL, 3LL, overflow);
    EXPECT_FALSE(overflow);
    GEN_MATH::multiply_of(MAX, 2LL, overflow);
    EXPECT_TRUE(overflow);
    EXPECT_EQ(GEN_MATH::multiply_of(2LL, 3LL, overflow), 6);
    EXPECT_TRUE(overflow); // still
}

// Reduction

TEST(PlatformGenMath, APairIsReducedWithItsSigns) {
    struct CASE {
        long long a, b;
        long long reduced_a, reduced_b;
    };
    CASE const cases[] = {
        //  a      b      a/g    b/g
        {6, 4, 3, 2},
        {-6, 4, -3, 2},
        {6, -4, 3, -2},
        {-6, -4, -3, -2},
        {3, 7, 3, 7},
        // a zero
        {0, 0, 0, 0},
        {0, 5, 0, 1},
        {0, -5, 0, -1},
        {5, 0, 1, 0},
        {-5, 0, -1, 0},
        // the ends of the range
        {MIN, MIN, -1, -1},
        {MIN, 0, -1, 0},
        {0, MIN, 0, -1},
        {MIN, -1, MIN, -1},
        {-1, MIN, -1, MIN},
        {MIN, 1, MIN, 1},
        {MIN, MAX, MIN, MAX},
        {MIN, -2, MIN / 2, -1},
        {MIN, 1LL << 62, -2, 1},
        {MAX, MAX, 1, 1},
        {MAX, -MAX, 1, -1},
        {MAX, 7, MAX / 7, 1},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(std::to_string(c.a) + " and " + std::to_string(c.b));
        long long a = c.a;
        long long b = c.b;
        GEN_MATH::gcd_simplify(a, b);
        EXPECT_EQ(a, c.reduced_a);
        EXPECT_EQ(b, c.reduced_b);
    }
}

void expect_reduction(long long a, long long b) {
    SCOPED_TRACE(std::to_string(a) + " and " + std::to_string(b));
    WHOLE const divisor = gcd(WHOLE(a), WHOLE(b));
    long long reduced_a = a;
    long long reduced_b = b;
    GEN_MATH::gcd_simplify(reduced_a, reduced_b);
    if (divisor == 0) {
        EXPECT_EQ(reduced_a, 0);
        EXPECT_EQ(reduced_b, 0);
    } else {
        EXPECT_EQ(reduced_a, WHOLE(a) / divisor);
        EXPECT_EQ(reduced_b, WHOLE(b) / divisor);
    }
}

TEST(PlatformGenMath, EveryPairIsReduced) {
    for (long long const a : boundaries())
        for (long long const b : boundaries())
            expect_reduction(a, b);
    RANDOM_NUMBERS random;
    for (int i = 0; i < ROUNDS; ++i) {
        long long const factor = random.next() >> 32;
        expect_reduction(factor * (random.next() >> 33), factor * (random.next() >> 33));
        expect_reduction(random.next(), random.next());
    }
}

TEST(PlatformGenMath, BothIntegersMayBeTheSameObject) {
    long long number = -12;
    GEN_MATH::gcd_simplify(number, number);
    EXPECT_EQ(number, -1);
}

// Sums

struct FRACTION {
    long long num;
    long long den;
};

/// What add_fractions_of() makes of two fractions: the sum, or no sum with everything untouched.
std::string sum_of(FRACTION const& a, FRACTION const& b) {
    constexpr long long UNTOUCHED_NUM = 1111;
    constexpr long long UNTOUCHED_DEN = 2222;
    long long num = UNTOUCHED_NUM;
    long long den = UNTOUCHED_DEN;
    bool overflow = false;
    GEN_MATH::add_fractions_of(a.num, a.den, b.num, b.den, num, den, overflow);
    if (!overflow)
        return std::to_string(num) + "/" + std::to_string(den);
    return num == UNTOUCHED_NUM && den == UNTOUCHED_DEN ? "overflow"
                                                        : "overflow, but not untouched";
}

/// The same by whole numbers without limits.
std::string exact_sum_of(FRACTION const& a, FRACTION const& b) {
    if (a.den == 0 || b.den == 0)
        return "overflow";
    WHOLE num = WHOLE(a.num) * b.den + WHOLE(b.num) * a.den;
    WHOLE den = WHOLE(a.den) * b.den;
    WHOLE const divisor = den < 0 ? WHOLE(-gcd(num, den)) : WHOLE(gcd(num, den));
    num /= divisor;
    den /= divisor;
    return fits(num) && fits(den) ? num.str() + "/" + den.str() : "overflow";
}

std::string text_of(FRACTION const& a, FRACTION const& b) {
    return std::to_string(a.num) + "/" + std::to_string(a.den) + " + " + std::to_string(b.num) + "/"
           + std::to_string(b.den);
}

TEST(PlatformGenMath, FractionsAreAddedInLowestTerms) {
    struct CASE {
        char const* why;
        FRACTION a;
        FRACTION b;
        char const* sum;
    };
    CASE const cases[] = {
        {"different denominators", {1, 2}, {1, 3}, "5/6"},
        {"the same denominator", {1, 6}, {1, 6}, "1/3"},
        {"a whole number", {1, 2}, {1, 2}, "1/1"},
        {"operands in other terms", {2, 4}, {50, 100}, "1/1"},
        // signs
        {"a negative numerator", {-1, 2}, {1, 3}, "-1/6"},
        {"a negative denominator", {1, -2}, {1, 3}, "-1/6"},
        {"both negative", {-1, -2}, {1, 3}, "5/6"},
        {"the second in magnitude decides", {1, 3}, {1, -2}, "-1/6"},
        // zeros
        {"a sum of zero", {1, 2}, {-1, 2}, "0/1"},
        {"zeros", {0, 5}, {0, -7}, "0/1"},
        {"a zero in front", {0, -5}, {2, 4}, "1/2"},
        {"a zero behind", {-2, 4}, {0, MIN}, "-1/2"},
        // intermediate products that do not fit 64 bits
        {"a large common denominator", {1, MAX}, {1, MAX}, ("2/9223372036854775807")},
        {"it cancels", {MAX, 3}, {-MAX, 3}, "0/1"},
        {"the denominator cancels", {1, MAX}, {MAX - 1, MAX}, "1/1"},
        {"lowest terms fit, the given ones do not", {MAX, MAX}, {MIN, MIN}, "2/1"},
        // the ends of the range
        {"2^127 in between", {MIN, MIN}, {MIN, MIN}, "2/1"},
        {"a denominator of -2^63", {1, MIN}, {1, MIN}, "-1/4611686018427387904"},
        {"-2^63 itself", {MIN, 1}, {0, 1}, "-9223372036854775808/1"},
        {"-2^63 from two halves", {MIN, 2}, {MIN, 2}, "-9223372036854775808/1"},
        {"-2^63 by a negative denominator", {MIN, -1}, {-1, 1}, "9223372036854775807/1"},
        {"2^63 - 1", {MAX, 1}, {0, -1}, "9223372036854775807/1"},
        // what does not fit
        {"2^63", {MAX, 1}, {1, 1}, "overflow"},
        {"2^63 by a negative denominator", {MIN, -1}, {0, 1}, "overflow"},
        {"-2^63 - 1", {MIN, 1}, {-1, 1}, "overflow"},
        {"a denominator of 2^63", {1, MIN}, {0, 1}, "overflow"},
        {"a denominator of 2^64 and more", {1, MAX}, {1, MAX - 1}, "overflow"},
        {"a numerator near 2^127", {MIN, MAX}, {MIN, MAX - 2}, "overflow"},
        // no fraction
        {"a denominator of 0", {1, 0}, {1, 2}, "overflow"},
        {"a denominator of 0 behind", {1, 2}, {0, 0}, "overflow"},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(std::string(c.why) + ": " + text_of(c.a, c.b));
        EXPECT_EQ(sum_of(c.a, c.b), c.sum);
        EXPECT_EQ(sum_of(c.b, c.a), c.sum);
        EXPECT_EQ(exact_sum_of(c.a, c.b), c.sum); // the row itself is right
    }
}

TEST(PlatformGenMath, EverySumOfExtremesIsExactOrOverflows) {
    long long const numbers[] = {0,   1,   -1,   2,       -2,      3,         -6,
                                 MIN, MAX, -MAX, MIN / 2, MAX - 1, 1LL << 32, 4294967291};
    for (long long const num_a : numbers)
        for (long long const den_a : numbers)
            for (long long const num_b : numbers)
                for (long long const den_b : numbers) {
                    FRACTION const a = {num_a, den_a};
                    FRACTION const b = {num_b, den_b};
                    ASSERT_EQ(sum_of(a, b), exact_sum_of(a, b)) << text_of(a, b);
                }
}

TEST(PlatformGenMath, EveryRandomSumIsExactOrOverflows) {
    RANDOM_NUMBERS random;
    for (int i = 0; i < ROUNDS; ++i) {
        FRACTION const a = {random.next(), random.next()};
        FRACTION const b = {random.next(), random.next()};
        ASSERT_EQ(sum_of(a, b), exact_sum_of(a, b)) << text_of(a, b) << ", seed " << SEED;
    }
}

// The difference of two fractions over nearly the same large denominator, added to the second
// again, gives the first: most intermediate products are far beyond 64 bits, and the sum fits.
TEST(PlatformGenMath, ASumThatFitsIsFoundThroughProductsThatDoNot) {
    RANDOM_NUMBERS random;
    int found = 0;
    for (int i = 0; i < ROUNDS; ++i) {
        long long const common = (random.next_but_zero() >> 8) | 1;
        long long const den_sum = common * (1 + (random.next() & 15));
        FRACTION const a = {random.next(), common * (1 + (random.next() & 15))};
        long long const num_sum = random.next();
        WHOLE num = WHOLE(num_sum) * a.den - WHOLE(a.num) * den_sum;
        WHOLE den = WHOLE(den_sum) * a.den;
        WHOLE const divisor = gcd(num, den);
        num /= divisor;
        den /= divisor;
        if (!fits(num) || !fits(den))
            continue;
        ++found;
        FRACTION const b = {num.convert_to<long long>(), den.convert_to<long long>()};
        FRACTION const expected = {num_sum, den_sum};
        ASSERT_EQ(sum_of(a, b), exact_sum_of(expected, {0, 1}))
            << text_of(a, b) << ", seed " << SEED;
    }
    EXPECT_GT(found, ROUNDS / 4);
}

TEST(PlatformGenMath, AnOverflowOfAnEarlierSumIsKept) {
    long long num = 0;
    long long den = 0;
    bool overflow = true;
    GEN_MATH::add_fractions_of(1LL, 2LL, 1LL, 3LL, num, den, overflow);
    EXPECT_TRUE(overflow);
    EXPECT_EQ(num, 5);
    EXPECT_EQ(den, 6);
}

TEST(PlatformGenMath, TheSumMayTakeThePlaceOfAnOperand) {
    long long num = 1;
    long long den = 2;
    bool overflow = false;
    GEN_MATH::add_fractions_of(num, den, num, den, num, den, overflow);
    EXPECT_FALSE(overflow);
    EXPECT_EQ(num, 1);
    EXPECT_EQ(den, 1);
}

} // namespace
