#ifndef DECIMAL_H
#define DECIMAL_H

/// @file
/// Decimal numbers as text: [+|-] digits [. digits] [e [+|-] digits], with at least one digit on
/// one side of the point and at most three in the exponent.

#include <string>
#include <string_view>

/// Whether a text is a decimal number.
bool is_decimal(std::string_view text);

/// A decimal number times 10^power without an exponent, with at least one digit before the point
/// and no point without a digit behind it: "1.5e-1" times 10^3 is "150", "-.05" is "-0.05".
std::string shifted(std::string_view number, int power);

/// The nearest double; 0 for a number that is closer to 0 than any. The number must not be above
/// the largest double.
double to_double(std::string_view number);

/// The shortest text that gives the same double again.
std::string shortest_text(double value);

#endif
