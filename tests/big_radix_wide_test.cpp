// Vectors of up to a million bits, against GMP.

#include "big_radix.h"
#include "radix_oracle.h"
#include "recording_platform.h"

#include <algorithm>
#include <vector>

#include <gmp.h>
#include <gtest/gtest.h>

namespace {

using radix_oracle::name_of;

/// A GMP integer.
class INTEGER {
public:
    INTEGER() { mpz_init(m_value); }
    explicit INTEGER(unsigned long value) { mpz_init_set_ui(m_value, value); }
    INTEGER(INTEGER const& other) { mpz_init_set(m_value, other.m_value); }
    INTEGER& operator=(INTEGER const& other) {
        mpz_set(m_value, other.m_value);
        return *this;
    }
    ~INTEGER() { mpz_clear(m_value); }

    mpz_t& operator*() { return m_value; }
    mpz_t const& operator*() const { return m_value; }

    std::size_t bit_length() const {
        return mpz_sgn(m_value) == 0 ? 1 : mpz_sizeinbase(m_value, 2);
    }

    /// The number modulo 2^width, of which 2^(width - 1) and more are negative if it is signed.
    INTEGER reduced(std::size_t width, bool is_signed) const {
        INTEGER result;
        mpz_fdiv_r_2exp(*result, m_value, width);
        if (is_signed && mpz_tstbit(*result, width - 1) != 0) {
            INTEGER modulus(1);
            mpz_mul_2exp(*modulus, *modulus, width);
            mpz_sub(*result, *result, *modulus);
        }
        return result;
    }

    /// The digits in a base, with zeros in front up to a number of digits.
    std::string text(int base, std::size_t least = 1) const {
        std::string digits(mpz_sizeinbase(m_value, base) + 2, '\0');
        mpz_get_str(digits.data(), base == 16 ? -16 : base, m_value);
        digits.resize(digits.find('\0'));
        digits.insert(0, least > digits.size() ? least - digits.size() : 0, '0');
        return digits;
    }

private:
    mpz_t m_value;
};

INTEGER random_integer(gmp_randstate_t random, std::size_t bits) {
    INTEGER value;
    mpz_urandomb(*value, random, bits);
    mpz_setbit(*value, bits - 1);
    return value;
}

/// The text of a number that has been fitted to a width, in a radix.
std::string text_of(INTEGER const& value, BIG_RADIX radix, std::size_t width) {
    switch (radix) {
    case BIG_BIN: return value.reduced(width, false).text(2, width);
    case BIG_OCT: return value.reduced(width, false).text(8, (width + 2) / 3);
    case BIG_HEX: return value.reduced(width, false).text(16, (width + 3) / 4);
    case BIG_SIGNED_DEC: return value.reduced(width, true).text(10);
    default: return value.reduced(width, false).text(10);
    }
}

BIG_RADIX const NUMBER_RADIXES[] = {BIG_BIN, BIG_OCT, BIG_HEX, BIG_SIGNED_DEC, BIG_UNSIGNED_DEC};

/// Numbers of some bits that carry everywhere, nowhere, and at random.
struct CASE {
    char const* why;
    INTEGER value;
};

std::vector<CASE> numbers_of(gmp_randstate_t random, std::size_t bits) {
    INTEGER ones(1);
    mpz_mul_2exp(*ones, *ones, bits);
    mpz_sub_ui(*ones, *ones, 1);
    INTEGER top(1);
    mpz_mul_2exp(*top, *top, bits - 1);
    INTEGER ten(10); // the largest power of ten of so many bits, and what is below
    mpz_pow_ui(*ten, *ten, std::max<std::size_t>(bits * 30102 / 100000, 1) - 1);
    INTEGER nines;
    mpz_sub_ui(*nines, *ten, 1);
    return {{"at random", random_integer(random, bits)},
            {"all ones", ones},
            {"one bit", top},
            {"a power of ten", ten},
            {"all nines", nines}};
}

#ifdef NDEBUG
std::size_t const WIDTHS[] = {100,   2000,  4095,  4096,   4097,   8192,   16384,
                              20000, 65536, 65537, 100003, 262144, 1048576};
#else
std::size_t const WIDTHS[] = {100, 4096, 20000, 65537, 262144};
#endif

TEST(BigRadixWide, NumbersAreWrittenAndReadInDecimal) {
    gmp_randstate_t random;
    gmp_randinit_mt(random);
    gmp_randseed_ui(random, 561);
    for (std::size_t const bits : WIDTHS)
        for (CASE const& c : numbers_of(random, bits)) {
            SCOPED_TRACE(std::to_string(bits) + " bits, " + c.why);
            auto const width = static_cast<unsigned int>(bits);
            std::string const hex = c.value.text(16, (bits + 3) / 4);
            std::string const decimal = c.value.text(10);
            std::string result;
            // ASSERT_TRUE: a failure does not print a million digits.
            ASSERT_EQ(big_radix_conversion(hex, &result, BIG_HEX, BIG_UNSIGNED_DEC, width), 0u);
            ASSERT_TRUE(result == decimal);
            ASSERT_EQ(big_radix_conversion(decimal, &result, BIG_UNSIGNED_DEC, BIG_HEX, width), 0u);
            ASSERT_TRUE(result == hex);
            ASSERT_EQ(big_radix_conversion("-" + decimal, &result, BIG_SIGNED_DEC, BIG_SIGNED_DEC,
                                           width + 1),
                      0u);
            ASSERT_TRUE(result == (decimal == "0" ? "0" : "-" + decimal));
        }
    gmp_randclear(random);
}

TEST(BigRadixWide, EveryPairOfRadixesConvertsAMillionBits) {
    gmp_randstate_t random;
    gmp_randinit_mt(random);
    gmp_randseed_ui(random, 562);
#ifdef NDEBUG
    std::size_t const bits = 1048576;
#else
    std::size_t const bits = 131072;
#endif
    INTEGER const value = random_integer(random, bits);
    for (BIG_RADIX const from : NUMBER_RADIXES) {
        // A signed source has a digit more.
        bool const is_signed = from == BIG_SIGNED_DEC;
        std::string const source = text_of(value, from, is_signed ? bits + 1 : bits);
        for (BIG_RADIX const to : NUMBER_RADIXES)
            for (std::size_t const width : {bits, bits + 77, bits - 77}) {
                SCOPED_TRACE(std::string(name_of(from)) + " to " + name_of(to) + ", width "
                             + std::to_string(width));
                std::string result;
                unsigned int const status = big_radix_conversion(source, &result, from, to,
                                                                 static_cast<unsigned int>(width));
                ASSERT_EQ(status, width < (is_signed ? bits + 1 : bits) ? 2u : 0u);
                ASSERT_TRUE(result == text_of(value, to, width));
            }
    }
    gmp_randclear(random);
}

TEST(BigRadixWide, AMillionBitsPassThroughAscii) {
    gmp_randstate_t random;
    gmp_randinit_mt(random);
    gmp_randseed_ui(random, 563);
    std::size_t const bits = 1048576;
    std::string const hex = random_integer(random, bits).text(16);
    std::string text;
    ASSERT_EQ(big_radix_conversion(hex, &text, BIG_HEX, BIG_ASCII, bits), 0u);
    std::string back;
    ASSERT_EQ(big_radix_conversion(text, &back, BIG_ASCII, BIG_HEX, bits), 0u);
    EXPECT_TRUE(back == hex);
    gmp_randclear(random);
    recording::clear();
}

TEST(BigRadixWide, OneLogicValueInAMillionBitsIsKept) {
    std::string source(262144, 'F');
    source[100000] = 'z';
    source[200001] = 'x';
    std::string binary;
    ASSERT_EQ(big_radix_conversion(source, &binary, BIG_HEX, BIG_BIN, 1048576), 0u);
    EXPECT_EQ(binary.substr(400000, 4), "ZZZZ");
    std::string hex;
    ASSERT_EQ(big_radix_conversion(binary, &hex, BIG_BIN, BIG_HEX, 1048576), 0u);
    source[100000] = 'Z';
    source[200001] = 'X';
    EXPECT_TRUE(hex == source);
    std::string decimal;
    ASSERT_EQ(big_radix_conversion(source, &decimal, BIG_HEX, BIG_UNSIGNED_DEC, 1048576), 0u);
    EXPECT_EQ(decimal, "X");
}

/// Every width up to 600 bits, where numbers of one word turn into longer ones and limbs are added.
TEST(BigRadixWide, NumbersOfEveryWidthAgreeInEveryPairOfRadixes) {
#ifdef NDEBUG
    int const rounds = 4;
#else
    int const rounds = 1;
#endif
    gmp_randstate_t random;
    gmp_randinit_mt(random);
    gmp_randseed_ui(random, 564);
    for (int round = 0; round < rounds; ++round)
        for (std::size_t bits = 1; bits <= 600; ++bits) {
            INTEGER const value = random_integer(random, bits);
            for (BIG_RADIX const from : NUMBER_RADIXES) {
                bool const is_signed = from == BIG_SIGNED_DEC;
                std::string const source = text_of(value, from, is_signed ? bits + 1 : bits);
                for (BIG_RADIX const to : NUMBER_RADIXES) {
                    std::size_t const width =
                        bits + gmp_urandomm_ui(random, 5) - std::min<std::size_t>(bits - 1, 2);
                    SCOPED_TRACE(
                        radix_oracle::describe(source, from, to, static_cast<unsigned int>(width)));
                    std::string result;
                    unsigned int const status = big_radix_conversion(
                        source, &result, from, to, static_cast<unsigned int>(width));
                    ASSERT_EQ(status, width < (is_signed ? bits + 1 : bits) ? 2u : 0u);
                    ASSERT_EQ(result, text_of(value, to, width));
                }
            }
        }
    gmp_randclear(random);
}

} // namespace
