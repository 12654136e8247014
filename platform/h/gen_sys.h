#ifndef GEN_SYS_H
#define GEN_SYS_H

/// @file
/// String helpers: what the library asks of the platform. None depends on the process locale: white
/// space is the six bytes 9 to 13 and 32, a letter is one of the 52 of ASCII.

#include <string>

#pragma GCC visibility push(default)

/// Compares byte by byte (as unsigned char). Negative, zero or positive as a sorts before, with or
/// after b. Neither may be null.
int gen_strcmp(char const* a, char const* b);

/// Compares as gen_strcmp() does, after folding ASCII letters to lower case. Neither may be null.
int gen_stricmp(char const* a, char const* b);

/// Writes an integer as text.
///
/// @param value the integer
/// @param out   receives the text as its whole content: a '-' for a negative value, then digits,
///              lower-case letters above 9
/// @param radix 2 to 36; the library always passes 10. Another value is an internal error of the
///              standalone platform, which leaves out as it was.
void gen_itoa(int value, std::string& out, int radix);

/// The text without the white space at both of its ends.
std::string gen_remove_leading_and_trailing_white_spaces(std::string const& text);

/// Upper-cases the ASCII letters of a string in place.
void stl_toupper(std::string& text);

#pragma GCC visibility pop

#endif
