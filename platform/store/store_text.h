#ifndef STORE_TEXT_H
#define STORE_TEXT_H

/// @file
/// How the store, and the tool that lists what it holds, write and read bytes in texts.

#include <cstddef>
#include <string>
#include <string_view>

/// Letters of ASCII alone are changed.
inline std::string in_lower_case(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

/// Bytes between quotation marks, as ASCII: what is not printable is written as \x1B, a quotation
/// mark as \" and a backslash as \\.
inline std::string quoted_bytes(std::string_view bytes) {
    std::string text = "\"";
    for (char const c : bytes) {
        auto const byte = static_cast<unsigned char>(c);
        if (byte < 0x20 || byte > 0x7e) {
            text += "\\x";
            text += "0123456789ABCDEF"[byte >> 4];
            text += "0123456789ABCDEF"[byte & 15];
            continue;
        }
        if (c == '"' || c == '\\')
            text += '\\';
        text += c;
    }
    return text += '"';
}

/// The value of a digit as quoted_bytes() writes it; 16 for any other character.
inline unsigned hexadecimal_digit(char c) {
    return c >= '0' && c <= '9'   ? static_cast<unsigned>(c - '0')
           : c >= 'A' && c <= 'F' ? static_cast<unsigned>(c - 'A' + 10)
                                  : 16;
}

/// Takes a text of quoted_bytes() from the front of another. Returns false, and takes nothing, when
/// there is none.
inline bool take_quoted(std::string_view& text, std::string& bytes) {
    bytes.clear();
    if (text.empty() || text[0] != '"')
        return false;
    for (std::size_t i = 1; i < text.size(); ++i) {
        char const c = text[i];
        if (c == '"') {
            text.remove_prefix(i + 1);
            return true;
        }
        if (c < 0x20 || c > 0x7e)
            return false;
        if (c != '\\') {
            bytes += c;
            continue;
        }
        char const escaped = ++i < text.size() ? text[i] : '\0';
        if (escaped == '"' || escaped == '\\') {
            bytes += escaped;
            continue;
        }
        if (escaped != 'x' || i + 2 >= text.size() || hexadecimal_digit(text[i + 1]) > 15
            || hexadecimal_digit(text[i + 2]) > 15)
            return false;
        bytes +=
            static_cast<char>(16 * hexadecimal_digit(text[i + 1]) + hexadecimal_digit(text[i + 2]));
        i += 2;
    }
    return false;
}

#endif
