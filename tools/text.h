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

/// The character at a place of a text, all its bytes; one byte when it is not UTF-8.
std::string_view character_at(std::string_view text, std::size_t place);

/// A text between quotation marks for a message: one line, safe for a terminal and not too long.
/// Control characters and bytes that are not UTF-8 come out as \x1B; a text of more than 100 bytes
/// ends in "..." inside the quotation marks.
std::string in_quotes(std::string_view text);

/// What is wrong with a text because of a part of it.
///
/// @param problem a sentence whose subject is the part
/// @return a sentence whose subject is the text
std::string problem_of_part(std::string_view text, std::string_view part,
                            std::string const& problem);

/// A text with line feeds in place of blanks so that no line is longer than `width`, as far as its
/// words allow.
std::string wrapped(std::string_view text, std::size_t width);

#endif
