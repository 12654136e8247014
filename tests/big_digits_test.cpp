// The digits of unsigned integers, eight at a time.

#include "big_digits.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

namespace {

#ifdef NDEBUG
constexpr unsigned int STEP = 11; // from one number of eight digits to the next that is tested
#else
constexpr unsigned int STEP = 9973;
#endif

std::string printf_text(char const* format, unsigned long long value) {
    char text[32];
    std::snprintf(text, sizeof text, format, value);
    return text;
}

/// Powers of ten and numbers of random length, all with their neighbours.
std::vector<unsigned long long> numbers() {
    std::vector<unsigned long long> all;
    for (unsigned long long power = 1;; power *= 10) {
        for (unsigned long long const number : {power - 1, power, power + 1})
            all.push_back(number);
        if (power == 10000000000000000000ull)
            break;
    }
    std::mt19937_64 random(8);
    for (int bits = 1; bits <= 64; ++bits) {
        all.push_back(~0ull >> (64 - bits));
        for (int i = 0; i < 100; ++i)
            all.push_back(random() >> (64 - bits));
    }
    return all;
}

TEST(BigDigits, EightDigitsAreWrittenAndReadBack) {
    char text[8];
    for (unsigned int number = 0; number < 100000000; number += STEP) {
        unsigned long long const digits = big_eight_digits(number);
        ASSERT_EQ(big_number_of_eight_digits(digits), number);
        big_store_eight_digits(text, digits);
        ASSERT_EQ(big_load_eight_digits(text), digits) << number;
        ASSERT_TRUE(big_all_are_digits(digits)) << number;
    }
}

TEST(BigDigits, EightDigitsLieInTheirOrder) {
    char text[9] = "";
    big_store_eight_digits(text, big_eight_digits(1234567));
    EXPECT_STREQ(text, "01234567");
    EXPECT_EQ(big_number_of_eight_digits(big_load_eight_digits("98765432")), 98765432u);
}

TEST(BigDigits, AnyOtherCharacterIsNoDigitAtEveryPlace) {
    for (std::size_t place = 0; place < 8; ++place) {
        for (int c = 0; c < 256; ++c) {
            for (char const* const others : {"00000000", "99999999"}) {
                std::string text = others;
                text[place] = static_cast<char>(c);
                EXPECT_EQ(big_all_are_digits(big_load_eight_digits(text.data())),
                          c >= '0' && c <= '9')
                    << "character " << c << " at " << place << " of " << others;
            }
        }
    }
}

std::string text_of(BIG_SIXTEEN_DIGITS const& digits) {
    char text[16];
    digits.store(text);
    return std::string(text, sizeof text);
}

TEST(BigDigits, SixteenDigitsAreTwiceEight) {
    // Every number of eight digits stands once in each half.
    for (unsigned int number = 0; number < 100000000; number += STEP) {
        unsigned int const other = 99999999 - number;
        char text[16];
        big_store_eight_digits(text, big_eight_digits(number));
        big_store_eight_digits(text + 8, big_eight_digits(other));
        ASSERT_EQ(text_of(big_sixteen_digits(number, other)), std::string(text, sizeof text));
    }
    EXPECT_EQ(text_of(big_sixteen_digits(120034005600078ull)), "0120034005600078");
}

TEST(BigDigits, ANumberIsWrittenWithoutLeadingZeros) {
    for (unsigned long long const number : numbers()) {
        std::string const text = printf_text("%llu", number);
        std::string buffer(32, '?');
        char* const end = big_put_number(buffer.data(), number);
        ASSERT_EQ(std::string(buffer.data(), end), text);
        EXPECT_EQ(big_digit_count(number), text.size()) << number;
        std::size_t const overwritten = std::max<std::size_t>(text.size(), 8);
        EXPECT_EQ(buffer.substr(overwritten), std::string(32 - overwritten, '?')) << number;
    }
}

TEST(BigDigits, AStringTakesExactlyTheNumber) {
    for (std::size_t const room : {0u, 8u, 15u, 16u, 20u, 21u, 100u}) {
        for (unsigned long long const number : numbers()) {
            std::string out(room, 'x');
            big_assign_number(&out, number, false);
            ASSERT_EQ(out, printf_text("%llu", number)) << "over " << room << " characters";
            big_assign_number(&out, number, true);
            ASSERT_EQ(out, printf_text("-%llu", number)) << "over " << room << " characters";
        }
    }
}

TEST(BigDigits, AShortNumberNeedsNoMemoryOfItsOwn) {
    std::string const fresh;
    for (auto const& [number, negative] :
         {std::pair{0ull, false}, {999999999999999ull, false}, {99999999999999ull, true}}) {
        std::string out;
        big_assign_number(&out, number, negative);
        EXPECT_EQ(out.capacity(), fresh.capacity()) << number;
    }
}

} // namespace
