#ifndef STORE_TEXT_H
#define STORE_TEXT_H

/// @file
/// Texts as the store reads and writes them, whatever the process's locale is.

#include <string>
#include <string_view>

inline std::string in_lower_case(std::string_view text) {
    std::string lower(text);
    for (char& c : lower)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c - 'A' + 'a');
    return lower;
}

#endif
