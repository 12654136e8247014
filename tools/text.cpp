#include "text.h"

#include <algorithm>

namespace {

constexpr std::size_t LONGEST_QUOTE = 100;

void append_hex_escape(std::string& out, unsigned char byte) {
    static char const DIGITS[] = "0123456789ABCDEF";
    out += "\\x";
    out += DIGITS[byte >> 4];
    out += DIGITS[byte & 15];
}

/// Whether a well-formed character is a control character: U+0000 to U+001F, U+007F to U+009F.
bool is_control(std::string_view character) {
    unsigned char const first = static_cast<unsigned char>(character[0]);
    if (character.size() == 1) {
        return first < 0x20 || first == 0x7F;
    }
    return first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
}

} // namespace

// The well-formed byte sequences, by first byte (Unicode, table 3-7):
//
//   first     second    length
//   00 to 7F  -         1
//   C2 to DF  80 to BF  2
//   E0        A0 to BF  3
//   E1 to EC  80 to BF  3
//   ED        80 to 9F  3
//   EE to EF  80 to BF  3
//   F0        90 to BF  4
//   F1 to F3  80 to BF  4
//   F4        80 to 8F  4
//
// Every later byte is 80 to BF.
std::size_t utf8_length(std::string_view text) {
    auto const byte = [text](std::size_t i) {
        return i < text.size() ? static_cast<unsigned char>(text[i]) : 0u;
    };
    auto const is_between = [](unsigned value, unsigned low, unsigned high) {
        return low <= value && value <= high;
    };
    unsigned const first = byte(0);
    if (text.empty() || is_between(first, 0x80, 0xC1) || first > 0xF4) {
        return 0;
    }
    if (first < 0x80) {
        return 1;
    }
    unsigned const lowest = first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
    unsigned const highest = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
    if (!is_between(byte(1), lowest, highest)) {
        return 0;
    }
    std::size_t const length = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    for (std::size_t i = 2; i < length; ++i) {
        if (!is_between(byte(i), 0x80, 0xBF)) {
            return 0;
        }
    }
    return length;
}

std::string_view character_at(std::string_view text, std::size_t place) {
    return text.substr(place, std::max<std::size_t>(utf8_length(text.substr(place)), 1));
}

std::string in_quotes(std::string_view text) {
    std::string out = "\"";
    std::size_t taken = 0;
    while (taken < text.size() && taken < LONGEST_QUOTE) {
        std::string_view const rest = text.substr(taken);
        std::size_t const length = utf8_length(rest);
        if (length == 0 || is_control(rest.substr(0, length))) {
            append_hex_escape(out, static_cast<unsigned char>(rest[0]));
            ++taken;
            continue;
        }
        if (rest[0] == '"' || rest[0] == '\\') {
            out += '\\';
        }
        out += rest.substr(0, length);
        taken += length;
    }
    out += taken < text.size() ? "...\"" : "\"";
    return out;
}

std::string problem_of_part(std::string_view text, std::string_view part,
                            std::string const& problem) {
    return part == text ? problem : "holds " + in_quotes(part) + ", which " + problem;
}

std::string wrapped(std::string_view text, std::size_t width) {
    std::string out(text);
    std::size_t line_begin = 0;
    std::size_t last_blank = std::string::npos; // in the line at hand
    for (std::size_t i = 0; i < out.size(); ++i) {
        if (out[i] == '\n') {
            line_begin = i + 1;
            last_blank = std::string::npos;
            continue;
        }
        if (out[i] == ' ') {
            last_blank = i;
        }
        if (i - line_begin >= width && last_blank != std::string::npos) {
            out[last_blank] = '\n';
            line_begin = last_blank + 1;
            last_blank = std::string::npos;
        }
    }
    return out;
}
