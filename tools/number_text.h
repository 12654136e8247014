#ifndef NUMBER_TEXT_H
#define NUMBER_TEXT_H

/// @file
/// Integers of up to 128 bits as every command reads and writes them.

#include "big_sys.h"

#include <string>
#include <string_view>

/// The largest number of 128 bits, for a message.
inline constexpr char const* LARGEST_U128 = "340282366920938463463374607431768211455";

/// A number of 0 or more.
inline BIG_ULONG128 u128_of(long long value) {
    return BIG_ULONG128(static_cast<unsigned long long>(value));
}

/// Reads a whole text as decimal digits, or as 0x (or 0X) and hexadecimal digits.
///
/// @param value   receives the number; any value when there is none
/// @param problem receives what is wrong when there is none: a sentence whose subject is the text
bool read_u128(std::string_view text, BIG_ULONG128& value, std::string& problem);

/// The digits of a number in decimal. (The library's text of 0 is empty.)
std::string decimal_text(BIG_ULONG128 const& value);

/// The digits of a number in hexadecimal, in small letters behind 0x.
std::string hexadecimal_text(BIG_ULONG128 value);

/// Whether a decimal number is exactly dividend / divisor.
///
/// @param decimal digits with at most one point and at most 38 digits behind it
///
/// decimal x divisor and the dividend, both without a point as they are multiplied by a power of
/// ten, have to fit 128 bits; otherwise the library reports the overflow.
bool is_quotient(std::string_view decimal, BIG_ULONG128 const& dividend,
                 BIG_ULONG128 const& divisor);

#endif
