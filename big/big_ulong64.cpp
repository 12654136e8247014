#include "big_frame.h"

#define BIG_SOURCE_PATH "big/big_ulong64"

static MEM_INITIALIZER s_mem_initializer("BIG");

#include "big_digits.h"
#include "big_sys.h"

std::string* big_ulong64_to_string(unsigned long long value, std::string* out) {
    big_assign_number(out, value, false);
    return out;
}

std::string big_ulong64_to_string(unsigned long long value) {
    std::string text;
    big_assign_number(&text, value, false);
    return text;
}

namespace {

/// The largest number of which ten times still fit 64 bits. That is all that is asked before a
/// twentieth digit is added, so that the sum may wrap: 18446744073709551619 reads as 3. Texts have
/// always been read so, and callers rely on which ones are refused.
constexpr unsigned long long LARGEST_BEFORE_20TH_DIGIT = ~0ull / 10;

/// Reads what numbers mostly are: 8 to 20 digits, at most one other character in front of them.
/// They are taken in words of eight, the first of which may have fewer:
///
///     -12345678901234567    1, 23456789, 01234567
///
/// @param text not empty
/// @return false, with the number untouched, for any other text and when there is no room for a
///         twentieth digit
bool read_plain_number(std::string const& text, unsigned long long& number) {
    bool const has_sign = text.front() < '0' || text.front() > '9';
    char const* at = text.data() + has_sign;
    std::size_t const count = text.size() - has_sign;
    if (count < 8 || count > 20)
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
        || (count == 20 && upper * 10000000 + lower / 10 > LARGEST_BEFORE_20TH_DIGIT))
        return false;
    number = upper * 100000000 + lower;
    return true;
}

} // namespace

//     text := { digit | other }
//
// The digits form the number wherever they stand; everything else is passed over.
unsigned long long big_ulong64_from_string(std::string const& text) {
    unsigned long long number = 0;
    if (text.empty() || read_plain_number(text, number))
        return number;

    int digits_seen = 0;
    for (char const c : text) {
        if (c < '0' || c > '9')
            continue;
        ++digits_seen;
        if (digits_seen > 20 || (digits_seen == 20 && number > LARGEST_BEFORE_20TH_DIGIT))
            BIG_FAIL("big number over flow");
        number = number * 10 + static_cast<unsigned int>(c - '0');
    }
    return number;
}
