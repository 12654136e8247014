#ifndef BIG_PLAIN_NUMBER_H
#define BIG_PLAIN_NUMBER_H

/// @file
/// Reading 64-bit integers of the plain form that nearly all texts have.

#include "big_digits.h"
#include "big_text.h"

#include <string>

/// The largest number of which ten times still fit 64 bits. That is all that is asked before a
/// twentieth digit is added, so that the sum may wrap: 18446744073709551619 reads as 3. Texts have
/// always been read so, and callers rely on which ones are refused.
inline constexpr unsigned long long BIG_LARGEST_BEFORE_20TH_DIGIT = ~0ull / 10;

/// One to seven characters as the last of eight digits, behind zeros. They are taken from both ends
/// and from the middle, where the takes may overlap.
inline unsigned long long big_load_few_digits(char const* from, std::size_t count) {
    auto const digit = [&](std::size_t i) {
        auto const character = static_cast<unsigned char>(from[i]);
        return static_cast<unsigned long long>(character ^ 0x30u) << 8 * (8 - count + i);
    };
    if (count < 4)
        return digit(0) | digit(count / 2) | digit(count - 1);
    return digit(0) | digit(1) | digit(2) | digit(3) | digit(count - 3) | digit(count - 2)
           | digit(count - 1);
}

/// Reads what numbers mostly are: 1 to 20 digits, at most one other character in front of them.
/// They are taken in words of eight, the first of which may have fewer:
///
///     -12345678901234567    1, 23456789, 01234567
///
/// @return false, with the number untouched, for any other text and when there is no room for a
///         twentieth digit
inline bool big_read_plain_number(std::string const& text, unsigned long long& number) {
    if (text.empty())
        return false;
    bool const has_sign = !big_is_digit(text.front());
    char const* at = text.data() + has_sign;
    std::size_t const count = text.size() - has_sign;
    if (count < 8) {
        if (count == 0)
            return false;
        unsigned long long const digits = big_load_few_digits(at, count);
        if (!big_all_are_digits(digits))
            return false;
        number = big_number_of_eight_digits(digits);
        return true;
    }
    if (count > 20)
        return false;

    // The bytes behind the first word's digits move out of the word.
    std::size_t const in_first_word = count % 8;
    unsigned long long digits = big_load_eight_digits(at) << 8 << (56 - 8 * in_first_word);
    bool all_are_digits = big_all_are_digits(digits);
    unsigned long long upper = big_number_of_eight_digits(digits);
    at += in_first_word;

    digits = big_load_eight_digits(at);
    all_are_digits &= big_all_are_digits(digits);
    unsigned long long lower = big_number_of_eight_digits(digits);

    if (count >= 16) {
        digits = big_load_eight_digits(at + 8);
        all_are_digits &= big_all_are_digits(digits);
        upper = upper * 100000000 + lower;
        lower = big_number_of_eight_digits(digits);
    }
    if (!all_are_digits
        || (count == 20 && upper * 10000000 + lower / 10 > BIG_LARGEST_BEFORE_20TH_DIGIT))
        return false;
    number = upper * 100000000 + lower;
    return true;
}

#endif
