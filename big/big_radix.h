#ifndef BIG_RADIX_H
#define BIG_RADIX_H

/// @file
/// The operations and tables of big_radix.cpp that are not exported, for its tests.
///
/// Every conversion goes through a string of *binary digits*, most significant first: 0, 1 and the
/// logic values X (unknown), Z (high impedance), U, W, - (don't care), H and L, in upper case.

#include "big_sys.h"

#include <string>
#include <vector>

#pragma GCC visibility push(hidden)

// ------------------------------------------------------------------------------------------------
// Tables
// ------------------------------------------------------------------------------------------------

/// The characters of each radix, letters in upper case. The digits that the conversions write are
/// those of BIG_HEXMAP.
extern char const* BIG_BINMAP;
extern char const* BIG_OCTMAP;
extern char const* BIG_HEXMAP;
extern char const* BIG_SIGNED_DECMAP;
extern char const* BIG_UNSIGNED_DECMAP;
extern char const* BIG_FRAC_FIX_POINTMAP;

/// The binary digits of each octal and hexadecimal digit, and those of an illegal one at the end.
extern char const* const big_oct_string[9];
extern char const* const big_hex_string[17];

// ------------------------------------------------------------------------------------------------
// Characters and binary digit strings
// ------------------------------------------------------------------------------------------------

/// The eight binary digits of a byte.
std::string big_get_ascii_char_value(char c);

/// Whether a decimal text holds a number: it has no X, Z, H or L, in either letter case. U, W and -
/// do not make it unreadable, on which callers rely.
bool value_is_fractional_readable(std::string value);

/// Takes the two's complement of binary digits: the lowest 1 and what is below it stay, a higher 1
/// becomes 0 and any other higher digit, logic values included, becomes 1. Without a 1 nothing
/// changes.
void big_complement(std::string* bits);

// ------------------------------------------------------------------------------------------------
// Into binary digits
// ------------------------------------------------------------------------------------------------
//
// The converters append to *result and return whether the source was legal. The letters of a source
// may be of either case.

/// An illegal character gives X, XXX or XXXX, and the conversion goes on.
bool big_bin_to_binary(std::string const& source, std::string* result);
bool big_oct_to_binary(std::string const& source, std::string* result);
bool big_hex_to_binary(std::string const& source, std::string* result);

/// A signed number gets a sign digit in front and is in two's complement. H and L are the digits 1
/// and 0. A text of Z alone, or without digits, is Z; with any other logic value the whole is X. An
/// illegal character appends nothing.
///
/// @pre *result is empty
bool big_dec_to_binary(std::string const& source, std::string* result, bool is_signed);

/// Eight digits for each character. Codes 2 and 3 of *check replace *result by the offending code.
///
/// @param emit whether to append anything on success
bool big_ascii_to_binary(std::string const& source, std::string* result,
                         BIG_ASCII_CHECK_RESULT* check, bool emit);

/// Converts and fits to the width (0 for the natural one).
///
/// @pre *result is empty
/// @return 0 exact; 2 digits were cut off; 1 not convertible. Internal error "Invalid radix."
unsigned int big_convert_to_binary(std::string const& source, std::string* result, BIG_RADIX radix,
                                   unsigned int width);

// ------------------------------------------------------------------------------------------------
// Arithmetic on vectors of decimal digits, one digit to an element
// ------------------------------------------------------------------------------------------------
//
// The plain arithmetic of the decimal conversions. They work on machine words instead, and are
// tested against these.

/// Halves a number, most significant digit first, in place. Returns whether the quotient is not 0.
int big_divide_dec_by_two(std::vector<int>* digits);

/// Doubles a number, least significant digit first, in place.
void big_multiply_dec_by_two(std::vector<int>* digits);

/// Adds a number to another, least significant digit first, in place.
///
/// @pre addend has as many digits as sum, or more
void big_add_vectors(std::vector<int>* sum, std::vector<int>* addend);

// ------------------------------------------------------------------------------------------------
// Out of binary digits
// ------------------------------------------------------------------------------------------------
//
// The writers append to *result and leave *binary alone.

/// Writes one digit for each group of binary digits, counted from the least significant end: a
/// group of one logic value gives that value, any other group that is not a number gives X. Returns
/// true.
///
/// @param group_bits 1, 3 or 4
bool big_binary_to_number(std::string* binary, std::string* result, int group_bits);

/// Writes a decimal number. The lowest logic value decides about all: Z, H or L as the last digit
/// gives itself, anything else X. Returns true.
bool big_binary_to_dec(std::string* binary, std::string* result, bool is_signed);

/// Writes the digits in a radix. A fixed-point number replaces *result.
///
/// @param width places the binary point of a fixed-point number
/// @return whether the digits can be written. Internal error "Invalid radix."
bool big_convert_from_binary(std::string* binary, std::string* result, BIG_RADIX radix,
                             unsigned int width);

#pragma GCC visibility pop

#endif
