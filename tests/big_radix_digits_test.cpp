// Many digits at a time: each operation against the digit-by-digit way.

#include "big_radix_digits.h"
#include "radix_oracle.h"

#include <array>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

using namespace big_digits;

using WORDS = std::vector<WORD>;

constexpr std::array<WORD, 20> POWER_OF_TEN = [] {
    std::array<WORD, 20> powers{1};
    for (std::size_t i = 1; i < powers.size(); ++i)
        powers[i] = 10 * powers[i - 1];
    return powers;
}();

#ifdef NDEBUG
constexpr int MANY = 20000;
#else
constexpr int MANY = 2000;
#endif

/// The digits of a number in a base that is a power of two, one by one.
std::string digits_of(WORDS const& words, std::size_t bits, std::size_t n) {
    std::string text;
    for (std::size_t i = n; i-- > 0;) {
        unsigned digit = 0;
        for (std::size_t bit = bits * (i + 1); bit-- > bits * i;) {
            bool const is_set = bit / 64 < words.size() && (words[bit / 64] >> bit % 64 & 1) != 0;
            digit = 2 * digit + (is_set ? 1 : 0);
        }
        text += "0123456789ABCDEF"[digit];
    }
    return text;
}

WORDS random_words(std::mt19937_64& random, std::size_t count) {
    WORDS words(count);
    for (WORD& word : words)
        word = random() % 4 == 0 ? 0 : random() % 4 == 0 ? ~WORD{0} : random();
    return words;
}

struct RADIX {
    char const* name;
    std::size_t bits;
    char const* digits;
    bool (*read)(char const*, std::size_t, WORD*);
    void (*write)(WORD const*, std::size_t, std::size_t, char*);
};
RADIX const RADIXES[] = {
    // name      bits  digits                    reader       writer
    {"binary", 1, "01", read_bits, write_bits},
    {"octal", 3, "01234567", read_octal, write_octal},
    {"hexadecimal", 4, "0123456789ABCDEFabcdef", read_hex, write_hex},
};

TEST(BigRadixDigits, NumbersAreWrittenAtEveryLength) {
    std::mt19937_64 random(601);
    for (RADIX const& radix : RADIXES)
        for (std::size_t n = 0; n <= 200; ++n)
            for (std::size_t count = 0; count <= 4; ++count) {
                SCOPED_TRACE(std::string(radix.name) + ", " + std::to_string(n) + " digits of "
                             + std::to_string(count) + " words");
                WORDS const words = random_words(random, count);
                std::string text(n + 2, '?');
                radix.write(words.data(), count, n, text.data() + 1);
                ASSERT_EQ(text,
                          std::string("?").append(digits_of(words, radix.bits, n)).append("?"));
            }
}

TEST(BigRadixDigits, NumbersAreReadAtEveryLength) {
    std::mt19937_64 random(602);
    for (RADIX const& radix : RADIXES)
        for (std::size_t n = 1; n <= 200; ++n) {
            WORDS const words = random_words(random, n * radix.bits / 64 + 1);
            std::string text = digits_of(words, radix.bits, n);
            if (n % 2 == 0)
                for (char& c : text) // the other letter case
                    c = c >= 'A' ? static_cast<char>(c - 'A' + 'a') : c;
            SCOPED_TRACE(std::string(radix.name) + " " + text);
            std::size_t const count = (n * radix.bits + 63) / 64;
            WORDS read(count + 1, 0x5555);
            ASSERT_TRUE(radix.read(text.data(), n, read.data()));
            EXPECT_EQ(read[count], 0x5555u) << "written behind the end";
            read.pop_back();
            EXPECT_EQ(digits_of(read, radix.bits, n), digits_of(words, radix.bits, n));
        }
}

TEST(BigRadixDigits, OneOtherCharacterAnywhereIsNoticed) {
    for (RADIX const& radix : RADIXES) {
        std::string const digits = radix.digits;
        for (std::size_t n : {1u, 5u, 8u, 15u, 16u, 17u, 24u, 63u, 64u, 70u, 130u})
            for (std::size_t at = 0; at < n; ++at)
                for (int byte = 0; byte < 256; ++byte) {
                    std::string text(n, '1');
                    text[at] = static_cast<char>(byte);
                    WORDS read(9);
                    bool const is_digit = digits.find(text[at]) != std::string::npos;
                    ASSERT_EQ(radix.read(text.data(), n, read.data()), is_digit)
                        << radix.name << ", byte " << byte << " at " << at << " of " << n;
                }
    }
}

TEST(BigRadixDigits, BlocksOfBinaryDigitsAreWrittenInHexadecimalEvenOverThemselves) {
    std::mt19937_64 random(603);
    for (int i = 0; i < MANY; ++i) {
        WORDS const words = random_words(random, 1);
        std::string binary = digits_of(words, 1, 64);
        std::string text(16, '?');
        ASSERT_TRUE(write_64_bits_as_hex(binary.data(), text.data()));
        ASSERT_EQ(text, digits_of(words, 4, 16));
        ASSERT_TRUE(write_64_bits_as_hex(binary.data(), binary.data()));
        ASSERT_EQ(binary.substr(0, 16), text);
    }
    for (std::size_t at = 0; at < 64; ++at)
        for (char const c : {'X', '/', '2', '\x80', '\xB0', '\xB1'}) {
            std::string binary(64, '1');
            binary[at] = c;
            std::string text(16, '?');
            EXPECT_FALSE(write_64_bits_as_hex(binary.data(), text.data()));
            EXPECT_EQ(text, std::string(16, '?'));
        }
}

#if BIG_SSE2
TEST(BigRadixDigits, BlocksOfLogicValuesAreWrittenInHexadecimalEvenOverThemselves) {
    std::mt19937_64 random(605);
    std::string const digits = "01XZUW-HLxzuwhl";
    for (int i = 0; i < MANY; ++i) {
        std::string binary;
        while (binary.size() < 64) // any digits, one digit four times, or a number
            switch (random() % 3) {
            case 0:
                for (int j = 0; j < 4; ++j)
                    binary += digits[random() % digits.size()];
                break;
            case 1: binary += std::string(4, digits[random() % digits.size()]); break;
            default: binary += digits_of(random_words(random, 1), 1, 4);
            }
        SCOPED_TRACE(binary);
        std::string text(16, '?');
        ASSERT_TRUE(write_64_logic_values_as_hex(binary.data(), text.data()));
        ASSERT_EQ(text, radix_oracle::groups_of(binary, 4));
        ASSERT_TRUE(write_64_logic_values_as_hex(binary.data(), binary.data()));
        ASSERT_EQ(binary.substr(0, 16), text);
    }
    for (std::size_t at = 0; at < 64; ++at)
        for (int byte = 0; byte < 256; ++byte) {
            std::string binary(64, 'z');
            binary[at] = static_cast<char>(byte);
            std::string text(16, '?');
            bool const is_digit = digits.find(binary[at]) != std::string::npos;
            ASSERT_EQ(write_64_logic_values_as_hex(binary.data(), text.data()), is_digit)
                << "byte " << byte << " at " << at;
            if (!is_digit) {
                ASSERT_EQ(text, std::string(16, '?'));
            }
        }
}

TEST(BigRadixDigits, BlocksOfHexadecimalDigitsAreWrittenInBinary) {
    std::mt19937_64 random(607);
    for (int i = 0; i < MANY; ++i) {
        WORDS const words = random_words(random, 1);
        std::string const text = digits_of(words, 4, 16);
        std::string binary(64, '?');
        ASSERT_TRUE(write_16_hex_digits_as_bits(text.data(), binary.data()));
        ASSERT_EQ(binary, digits_of(words, 1, 64));
    }
    for (std::size_t at = 0; at < 16; ++at)
        for (int byte = 0; byte < 256; ++byte) {
            std::string text(16, 'f');
            text[at] = static_cast<char>(byte);
            std::string binary(64, '?');
            bool const is_digit = HEX_VALUE[static_cast<std::size_t>(byte)] != NO_DIGIT;
            ASSERT_EQ(write_16_hex_digits_as_bits(text.data(), binary.data()), is_digit)
                << "byte " << byte << " at " << at;
            if (!is_digit) {
                ASSERT_EQ(binary, std::string(64, '?'));
            }
        }
}
#endif

TEST(BigRadixDigits, FewCharactersAreReadBehindZeros) {
    std::string const text = "abcdefghijklmnopqrstuvwx";
    for (std::size_t n = 0; n <= text.size(); ++n) {
        std::string const exact = text.substr(0, n); // whose end the sanitizers guard
        std::vector<char> const characters(exact.begin(), exact.end());
        char read[8];
        if (n <= 8) {
            store_characters(load_padded(characters.data(), n), read);
            EXPECT_EQ(std::string(read, 8), std::string(8 - n, '0') + exact);
        }
        store_characters(load_first(characters.data(), n), read);
        EXPECT_EQ(std::string(read, 8), std::string(8 - n % 8, '0') + exact.substr(0, n % 8));
    }
}

TEST(BigRadixDigits, EveryByteIsWrittenAndReadInBinary) {
    for (WORD number = 0; number < 256; ++number) {
        WORD const characters = eight_bit_characters(number);
        EXPECT_TRUE(are_bits(characters));
        EXPECT_EQ(number_of_bits(characters), number);
        std::string text(8, '?');
        store_characters(characters, text.data());
        EXPECT_EQ(text, digits_of({number}, 1, 8));
    }
}

// --- Decimal -------------------------------------------------------------------------------------

TEST(BigRadixDigits, DecimalLengthTurnsAtThePowersOfTen) {
    EXPECT_EQ(big_digit_count(0), 1u);
    for (std::size_t length = 1; length <= 19; ++length) {
        WORD const power = POWER_OF_TEN[length];
        EXPECT_EQ(big_digit_count(power - 1), length);
        EXPECT_EQ(big_digit_count(power), length + 1);
        EXPECT_EQ(big_digit_count(power + 1), length + 1);
    }
    EXPECT_EQ(big_digit_count(~WORD{0}), 20u);
    for (int bit = 0; bit < 64; ++bit) {
        WORD const power = WORD{1} << bit;
        EXPECT_EQ(big_digit_count(power), std::to_string(power).size());
        EXPECT_EQ(big_digit_count(power - 1), std::to_string(power - 1).size());
    }
}

TEST(BigRadixDigits, EveryFourDecimalDigitsAreWrittenInEitherHalfOfEight) {
    for (WORD number = 0; number < 10000; ++number) {
        std::string const four = std::to_string(10000 + number).substr(1);
        std::string text(8, '?');
        big_write_last_of_eight(text.data(), static_cast<unsigned int>(number), 0);
        ASSERT_EQ(text, "0000" + four);
        big_write_last_of_eight(text.data(),
                                static_cast<unsigned int>(10000 * number + 9999 - number), 0);
        ASSERT_EQ(text, four + std::to_string(19999 - number).substr(1));
    }
}

TEST(BigRadixDigits, EveryFourDecimalDigitsAreWrittenAndReadInEachQuarterOfSixteen) {
    for (WORD number = 0; number < 10000; ++number)
        for (int quarter = 0; quarter < 4; ++quarter) {
            WORD const placed = number * POWER_OF_TEN[static_cast<std::size_t>(4 * quarter)];
            for (WORD const whole : {placed, POWER_OF_TEN[16] - 1 - placed}) {
                std::string const expected = std::to_string(POWER_OF_TEN[16] + whole).substr(1);
                std::string text(16, '?');
                big_sixteen_digits(whole).store(text.data());
                ASSERT_EQ(text, expected);
                WORD read = 0;
                ASSERT_TRUE(read_16_decimal_digits(text.data(), read));
                ASSERT_EQ(read, whole);
            }
        }
}

TEST(BigRadixDigits, DecimalNumbersAreWrittenAndReadAtEveryLength) {
    std::mt19937_64 random(604);
    for (std::size_t n = 1; n <= 20; ++n)
        for (int i = 0; i < MANY / 20; ++i) {
            WORD const bound = n < 20 ? POWER_OF_TEN[n] : ~WORD{0};
            WORD const number = i == 0 ? 0 : i == 1 ? bound - 1 : random() % bound;
            std::string expected = std::to_string(number);
            expected.insert(0, n - expected.size(), '0');
            SCOPED_TRACE(expected);
            std::string text(n + 2, '?');
            write_decimal_digits(number, n, text.data() + 1);
            ASSERT_EQ(text, std::string("?").append(expected).append("?"));
            if (n == 20)
                continue;
            WORD read = 0;
            ASSERT_TRUE(read_decimal_digits(expected.data(), n, read));
            ASSERT_EQ(read, number);
        }
}

TEST(BigRadixDigits, DecimalNumbersAreWrittenInFrontOfAPlace) {
    std::mt19937_64 random(606);
    char text[LONGEST_DECIMAL];
    char* const end = text + sizeof text;
    auto const expect_written = [&](WORD number) {
        ASSERT_EQ(std::string(write_decimal_before(number, end), end), std::to_string(number));
    };
    for (WORD const power : POWER_OF_TEN)
        for (WORD const number : {power - 1, power, power + 1})
            expect_written(number);
    expect_written(~WORD{0});
    for (int i = 0; i < MANY; ++i)
        expect_written(random() >> random() % 64);
}

TEST(BigRadixDigits, OneCharacterThatIsNoDecimalDigitIsNoticed) {
    for (std::size_t n = 1; n <= 40; ++n)
        for (std::size_t at = 0; at < n; ++at)
            for (int byte = 0; byte < 256; ++byte) {
                std::string text(n, '7');
                text[at] = static_cast<char>(byte);
                WORDS limbs(3);
                ASSERT_EQ(read_decimal(text.data(), n, limbs.data()), byte >= '0' && byte <= '9')
                    << "byte " << byte << " at " << at << " of " << n;
            }
}

TEST(BigRadixDigits, LongDecimalNumbersAreReadInLimbsOf19Digits) {
    std::mt19937_64 random(605);
    for (std::size_t n = 1; n <= 100; ++n) {
        std::string text;
        for (std::size_t i = 0; i < n; ++i)
            text += static_cast<char>('0' + random() % 10);
        SCOPED_TRACE(text);
        WORDS expected;
        for (std::size_t end = n; end > 0;) {
            std::size_t const begin = end > 19 ? end - 19 : 0;
            expected.push_back(std::stoull(text.substr(begin, end - begin)));
            end = begin;
        }
        WORDS limbs(expected.size());
        ASSERT_TRUE(read_decimal(text.data(), n, limbs.data()));
        ASSERT_EQ(limbs, expected);
    }
}

} // namespace
