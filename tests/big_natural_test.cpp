// Products and changes of base of long numbers, against the schoolbook.

#include "big_natural.h"
#include "big_number.h"

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace big_natural;

using LIMBS = std::vector<WORD>;

// --- Limbs, their bases, and the plain way of doing things ---------------------------------------

struct CASE {
    char const* why;
    LIMBS limbs;
};

WORD largest_digit(bool is_decimal) {
    return is_decimal ? DECIMAL::LARGEST_DIGIT : BINARY::LARGEST_DIGIT;
}

/// Numbers that carry everywhere, nowhere, and at random.
std::vector<CASE> numbers_of(std::mt19937_64& random, std::size_t n, bool is_decimal) {
    WORD const largest = largest_digit(is_decimal);
    LIMBS any(n);
    LIMBS sparse(n);
    for (std::size_t i = 0; i < n; ++i) {
        any[i] = largest == ~WORD{0} ? random() : random() % (largest + 1);
        sparse[i] = random() % 4 == 0 ? any[i] : random() % 2 == 0 ? 0 : largest;
    }
    LIMBS power(n, 0);
    power.back() = 1;
    return {{"at random", any},
            {"all digits largest", LIMBS(n, largest)},
            {"zeros and largest digits", sparse},
            {"a power of the base", power},
            {"zero", LIMBS(n, 0)}};
}

/// The product by the schoolbook, in unsigned 128-bit steps.
LIMBS product_of(LIMBS const& a, LIMBS const& b, bool is_decimal) {
    LIMBS out(a.size() + b.size(), 0);
    for (std::size_t i = 0; i < a.size(); ++i) {
        WORD carry = 0;
        for (std::size_t j = 0; j < b.size() || carry != 0; ++j) {
            WIDE sum = out[i + j] + static_cast<WIDE>(carry);
            if (j < b.size())
                sum += static_cast<WIDE>(a[i]) * b[j];
            WIDE const base = static_cast<WIDE>(largest_digit(is_decimal)) + 1;
            out[i + j] = static_cast<WORD>(sum % base);
            carry = static_cast<WORD>(sum / base);
        }
    }
    return out;
}

std::string describe(LIMBS const& a, LIMBS const& b, bool is_decimal) {
    return std::to_string(a.size()) + " by " + std::to_string(b.size())
           + (is_decimal ? " decimal limbs" : " binary limbs");
}

template <class BASE>
constexpr bool IS_DECIMAL = std::is_same_v<BASE, DECIMAL>;

// --- Single steps --------------------------------------------------------------------------------

TEST(BigNatural, DivisorDividesTwoWordsLikeTheLanguageDoes) {
    std::mt19937_64 random(611);
    for (WORD const value :
         {TEN_TO_19, WORD{1} << 63, ~WORD{0}, (WORD{1} << 63) + 1, 4 * words::PRIME[0]}) {
        DIVISOR const divisor(value);
        for (int i = 0; i < 20000; ++i) {
            WORD const high = i % 3 == 0 ? value - 1 - random() % 4 : random() % value;
            WORD const low = i % 5 == 0 ? ~WORD{0} - random() % 4 : random();
            WIDE const dividend = static_cast<WIDE>(high) << 64 | low;
            WORD remainder = high;
            ASSERT_EQ(divisor.divide(remainder, low), static_cast<WORD>(dividend / value));
            ASSERT_EQ(remainder, static_cast<WORD>(dividend % value));
        }
    }
}

TEST(BigNatural, DecimalLimbsAddWithCarry) {
    WORD const largest = DECIMAL::LARGEST_DIGIT;
    for (WORD const a : {WORD{0}, WORD{1}, WORD{5} << 60, largest - 1, largest})
        for (WORD const b : {WORD{0}, WORD{1}, WORD{5} << 60, largest - 1, largest})
            for (bool const carried : {false, true}) {
                bool carry = carried;
                WIDE const sum = static_cast<WIDE>(a) + b + carried;
                EXPECT_EQ(DECIMAL::add(a, b, carry), static_cast<WORD>(sum % TEN_TO_19));
                EXPECT_EQ(carry, sum >= TEN_TO_19);
            }
}

// --- Products ------------------------------------------------------------------------------------

template <class BASE>
void check_short_products() {
    std::mt19937_64 random(612);
    for (std::size_t n : {1u, 2u, 3u, 7u, 20u})
        for (std::size_t m : {1u, 2u, 5u, 19u})
            for (CASE const& a : numbers_of(random, n, IS_DECIMAL<BASE>))
                for (CASE const& b : numbers_of(random, m, IS_DECIMAL<BASE>)) {
                    SCOPED_TRACE(describe(a.limbs, b.limbs, IS_DECIMAL<BASE>) + ", " + a.why + ", "
                                 + b.why);
                    LIMBS out(n + m);
                    multiply<BASE>(a.limbs.data(), n, b.limbs.data(), m, out.data());
                    ASSERT_EQ(out, product_of(a.limbs, b.limbs, IS_DECIMAL<BASE>));
                }
}

TEST(BigNatural, ShortBinaryProductsAreThoseOfTheSchoolbook) {
    check_short_products<BINARY>();
}

TEST(BigNatural, ShortDecimalProductsAreThoseOfTheSchoolbook) {
    check_short_products<DECIMAL>();
}

/// Products by transforms of every length up to some hundred limbs: one row, three rows, and
/// coefficients beyond the length.
template <class CONVOLUTION, class BASE>
void check_transforms() {
#ifdef NDEBUG
    std::size_t const longest = 300;
#else
    std::size_t const longest = 110;
#endif
    std::mt19937_64 random(613);
    CONVOLUTION convolution(4 * longest);
    for (std::size_t n = 1; n <= longest; n += 1 + n / 16)
        for (std::size_t m : {n, n / 2 + 1, 2 * n - 1}) {
            std::vector<CASE> const factors = numbers_of(random, m, IS_DECIMAL<BASE>);
            CASE const& b = factors[random() % 4];
            convolution.set_factor(b.limbs.data(), m, n + m);
            for (CASE const& a : numbers_of(random, n, IS_DECIMAL<BASE>)) {
                SCOPED_TRACE(describe(a.limbs, b.limbs, IS_DECIMAL<BASE>) + ", " + a.why + ", "
                             + b.why);
                LIMBS out(n + m);
                convolution.template multiply<BASE>(a.limbs.data(), n, out.data());
                ASSERT_EQ(out, product_of(a.limbs, b.limbs, IS_DECIMAL<BASE>));
            }
            LIMBS square(2 * m);
            convolution.set_factor(b.limbs.data(), m, 2 * m);
            convolution.template square_factor<BASE>(square.data());
            ASSERT_EQ(square, product_of(b.limbs, b.limbs, IS_DECIMAL<BASE>));
        }
}

/// A product whose upper limbs are known to be zero is computed without them.
template <class CONVOLUTION>
void check_products_that_fit_fewer_limbs() {
    std::mt19937_64 random(614);
    CONVOLUTION convolution(200);
    for (std::size_t n = 2; n <= 100; ++n) {
        LIMBS a = numbers_of(random, n, false).front().limbs;
        LIMBS const b = a;
        std::fill(a.begin() + static_cast<std::ptrdiff_t>((n + 1) / 2), a.end(), WORD{0});
        std::size_t const count = n + (n + 1) / 2;
        SCOPED_TRACE(n);
        convolution.set_factor(b.data(), n, count);
        LIMBS out(count);
        convolution.template multiply<BINARY>(a.data(), n, out.data());
        LIMBS expected = product_of(a, b, false);
        expected.resize(count);
        ASSERT_EQ(out, expected);
    }
}

TEST(BigNatural, TransformsInWordsGiveBinaryProducts) {
    check_transforms<words::CONVOLUTION, BINARY>();
    check_products_that_fit_fewer_limbs<words::CONVOLUTION>();
}

TEST(BigNatural, TransformsInWordsGiveDecimalProducts) {
    check_transforms<words::CONVOLUTION, DECIMAL>();
}

#if BIG_FMA
TEST(BigNatural, TransformsByFusedMultiplyAddGiveBinaryProducts) {
    if (!fma::is_available())
        GTEST_SKIP() << "this processor has no AVX2 or no fused multiply-add";
    check_transforms<fma::CONVOLUTION, BINARY>();
    check_products_that_fit_fewer_limbs<fma::CONVOLUTION>();
}

TEST(BigNatural, TransformsByFusedMultiplyAddGiveDecimalProducts) {
    if (!fma::is_available())
        GTEST_SKIP() << "this processor has no AVX2 or no fused multiply-add";
    check_transforms<fma::CONVOLUTION, DECIMAL>();
}
#endif

template <std::array<WORD, PRIMES> P>
void check_residues() {
    std::mt19937_64 random(615);
    for (int i = 0; i < 10000; ++i) {
        WIDE const number =
            (i % 7 == 0 ? 0 : static_cast<WIDE>(random()) << 64) | (i % 5 == 0 ? 0 : random());
        std::array<WORD, PRIMES> residues{};
        for (std::size_t k = 0; k < PRIMES; ++k)
            residues[k] =
                multiply_modulo(static_cast<WORD>(number % P[k]), residue_scale<P>(k), P[k]);
        COLUMN const found = number_with_residues<P>(residues);
        ASSERT_TRUE(found.low == number && found.high == 0);
    }
}

TEST(BigNatural, NumbersAreFoundFromTheirResidues) {
    check_residues<words::PRIME>();
#if BIG_FMA
    check_residues<fma::PRIME>();
#endif
}

TEST(BigNatural, PrimesHaveTheRootsThatTheTransformsNeed) {
    auto const check = [](std::array<WORD, PRIMES> const& primes, auto const& roots,
                          std::array<WORD, PRIMES> const& cube_roots) {
        for (std::size_t i = 0; i < PRIMES; ++i) {
            WORD const p = primes[i];
            EXPECT_EQ(power_modulo(3, p - 1, p), 1u); // Fermat
            EXPECT_EQ(roots[i][0], 1u);
            EXPECT_EQ(roots[i][1], p - 1);
            for (std::size_t k = 1; k < roots[i].size(); ++k)
                EXPECT_EQ(multiply_modulo(roots[i][k], roots[i][k], p), roots[i][k - 1]);
            EXPECT_NE(cube_roots[i], 1u);
            EXPECT_EQ(power_modulo(cube_roots[i], 3, p), 1u);
        }
    };
    check(words::PRIME, words::ROOTS, words::CUBE_ROOT);
#if BIG_FMA
    check(fma::PRIME, fma::ROOTS, fma::CUBE_ROOT);
#endif
}

// --- Changes of base -----------------------------------------------------------------------------

/// Horner's rule, a digit of the other base at a time.
template <class BASE>
LIMBS changed(LIMBS const& from) {
    LIMBS to;
    WIDE const base = static_cast<WIDE>(BASE::LARGEST_DIGIT) + 1;
    WIDE const other = IS_DECIMAL<BASE> ? static_cast<WIDE>(1) << 64 : TEN_TO_19;
    for (std::size_t i = from.size(); i-- > 0;) {
        WIDE carry = from[i];
        for (WORD& digit : to) { // digit * other may be 2^128 - 2^64, and carry a word more
            WIDE const sum = digit * other + carry;
            digit = static_cast<WORD>(sum % base);
            carry = sum / base;
        }
        for (; carry != 0; carry /= base)
            to.push_back(static_cast<WORD>(carry % base));
    }
    return to;
}

template <class BASE>
void check_changes() {
#ifdef NDEBUG
    std::size_t const longest = 1500;
#else
    std::size_t const longest = 400;
#endif
    std::mt19937_64 random(616);
    for (std::size_t n = 1; n <= longest; n += n < 90 ? 1 : n / 9)
        for (CASE const& from : numbers_of(random, n, !IS_DECIMAL<BASE>)) {
            SCOPED_TRACE(std::to_string(n) + (IS_DECIMAL<BASE> ? " binary" : " decimal")
                         + " limbs, " + from.why);
            LIMBS to(limbs_for<BASE>(n) + 1, 0x5555);
            std::size_t const used = change_base<BASE>(from.limbs.data(), n, to.data());
            ASSERT_LE(used, limbs_for<BASE>(n));
            ASSERT_EQ(to.back(), 0x5555u) << "written behind the end";
            to.resize(used);
            ASSERT_EQ(to, changed<BASE>(from.limbs));
        }
}

TEST(BigNatural, BinaryNumbersBecomeDecimal) {
    check_changes<DECIMAL>();
}

TEST(BigNatural, DecimalNumbersBecomeBinary) {
    check_changes<BINARY>();
}

/// Both arithmetics of the transforms, whichever this processor would take.
template <class CONVOLUTION, class BASE>
void check_long_changes() {
    std::mt19937_64 random(617);
    for (std::size_t n : {100u, 350u, 700u})
        for (CASE const& from : numbers_of(random, n, !IS_DECIMAL<BASE>)) {
            LIMBS to(limbs_for<BASE>(n));
            to.resize(LONG_CHANGE<BASE, CONVOLUTION>(from.limbs.data(), n).run(to.data()));
            ASSERT_EQ(to, changed<BASE>(from.limbs)) << n << " limbs, " << from.why;
        }
}

TEST(BigNatural, LongNumbersChangeTheirBaseThroughTransformsInWords) {
    check_long_changes<words::CONVOLUTION, DECIMAL>();
    check_long_changes<words::CONVOLUTION, BINARY>();
}

#if BIG_FMA
TEST(BigNatural, LongNumbersChangeTheirBaseThroughTransformsByFusedMultiplyAdd) {
    if (!fma::is_available())
        GTEST_SKIP() << "this processor has no AVX2 or no fused multiply-add";
    check_long_changes<fma::CONVOLUTION, DECIMAL>();
    check_long_changes<fma::CONVOLUTION, BINARY>();
}
#endif

TEST(BigNatural, LimbsSufficeForTheLargestNumber) {
    for (std::size_t n = 1; n < 200; ++n) {
        LIMBS const binary(n, BINARY::LARGEST_DIGIT);
        LIMBS const decimal(n, DECIMAL::LARGEST_DIGIT);
        EXPECT_LE(changed<DECIMAL>(binary).size(), limbs_for<DECIMAL>(n));
        EXPECT_LE(changed<BINARY>(decimal).size(), limbs_for<BINARY>(n));
    }
}

// --- Numbers of one word and of many -------------------------------------------------------------

TEST(BigNatural, NumbersOfOneWordAndOfManyAgree) {
    std::mt19937_64 random(618);
    for (int i = 0; i < 5000; ++i) {
        WORD const word = i % 9 == 0 ? WORD{1} << random() % 64 : random() >> random() % 64;
        std::string const text = std::to_string(word);
        SHORT_NUMBER one;
        NUMBER many;
        ASSERT_TRUE(read_decimal(text, one));
        ASSERT_TRUE(read_decimal(text, many));
        auto const bits = static_cast<std::size_t>(1 + random() % 64);
        one.truncate(bits);
        many.truncate(bits);
        for (int twice = 0; twice < 2; ++twice) {
            SCOPED_TRACE(text + ", " + std::to_string(bits) + " bits");
            ASSERT_EQ(one.used(), many.used());
            ASSERT_EQ(one.bit_length(), many.bit_length());
            ASSERT_EQ(one.is_power_of_two(), many.is_power_of_two());
            ASSERT_EQ(one.has_bit(bits - 1), many.has_bit(bits - 1));
            std::string from_one;
            std::string from_many;
            write_decimal(one, false, &from_one, 0);
            write_decimal(many, false, &from_many, 0);
            ASSERT_EQ(from_one, from_many);
            if (one.used() == 0)
                break;
            one.complement(bits);
            many.complement(bits);
        }
    }
}

TEST(BigNatural, AWordRefusesWhatDoesNotFitIt) {
    struct {
        char const* text;
        bool fits;
    } const cases[] = {
        // text                      fits
        {"0", true},
        {"9999999999999999999", true},
        {"10000000000000000000", true},
        {"18446744073709551615", true},
        {"18446744073709551616", false},
        {"19999999999999999999", false},
        {"20000000000000000000", false},
        {"00000000000000000001", true},
        {"000000000000000000001", false}, // more than 20 digits
        {"1844674407370955161X", false},
        {"X8446744073709551615", false},
    };
    for (auto const& c : cases) {
        SHORT_NUMBER number;
        EXPECT_EQ(read_decimal(c.text, number), c.fits) << c.text;
    }
}

} // namespace
