#ifndef RADIX_ORACLE_H
#define RADIX_ORACLE_H

/// @file
/// The rules of radix conversion, written down as plainly as possible: one character and one digit
/// at a time, every step through a string of binary digits.

#include "big_sys.h"

#include <iosfwd>
#include <random>
#include <string>

namespace radix_oracle {

/// What a converter into binary digits does: whether the source is legal, and what it appends.
struct BITS {
    bool is_legal = true;
    std::string digits;
    BIG_ASCII_CHECK_RESULT check = BIG_ASCII_OK;
    std::string offending_code; ///< what replaces the result for the codes 2 and 3
    std::size_t debug_messages = 0;
};

BITS bits_of_group_digits(std::string const& source, BIG_RADIX radix); ///< bin, oct, hex
BITS bits_of_decimal(std::string const& source, bool is_signed);
BITS bits_of_ascii(std::string const& source);

/// Fits binary digits to a width. Returns the status.
unsigned int fit(std::string& digits, BIG_RADIX radix, unsigned int width);

std::string two_s_complement(std::string digits);

std::string groups_of(std::string const& digits, std::size_t group_bits);
std::string decimal_of(std::string const& digits, bool is_signed);
std::string fixed_point_of(std::string const& digits, unsigned int width);
std::string ascii_of(std::string const& digits);

/// A conversion: its status and what the result then holds.
struct CONVERSION {
    unsigned int status = 0;
    std::string result;

    friend bool operator==(CONVERSION const&, CONVERSION const&) = default;
};
void PrintTo(CONVERSION const& conversion, std::ostream* out);

CONVERSION convert(std::string const& source, std::string const& previous_result, BIG_RADIX from,
                   BIG_RADIX to, unsigned int width);

/// What a test puts into a conversion, as its failure shows it.
std::string describe(std::string const& source, BIG_RADIX from, BIG_RADIX to, unsigned int width);
char const* name_of(BIG_RADIX radix);

/// A random source in a radix.
///
/// @param length     characters, more or less, at least 1
/// @param with_logic whether logic values of both letter cases may appear
std::string random_source(std::mt19937_64& random, BIG_RADIX radix, std::size_t length,
                          bool with_logic);

} // namespace radix_oracle

#endif
