#ifndef TEXT_H
#define TEXT_H

/// @file
/// Foreign bytes inside our own text.

#include <cstddef>
#include <string>
#include <string_view>

/// The length of the UTF-8 character at the start of a text; 0 when there is none, or when it is
/// not well-formed (cut short, overlong, a surrogate, above U+10FFFF).
std::size_t utf8_length(std::string_view text);

/// A text between quotation marks for a message: one line, safe for a terminal and not too long.
/// Control characters and bytes that are not UTF-8 come out as \x1B; a text of more than 100 bytes
/// ends in "..." inside the quotation marks.
std::string in_quotes(std::string_view text);

/// A text with line feeds in place of blanks so that no line is longer than `width`, as far as its
/// words allow.
std::string wrapped(std::string_view text, std::size_t width);

#endif
