// String helpers. Letters, digits and white space are those of ASCII whatever the process locale,
// so nothing here asks <cctype>.

#include "gen_sys.h"

#include "frame.h"

#include <charconv>
#include <cstring>

#define PLATFORM_SOURCE_PATH "platform/standalone/gen"

namespace {

constexpr bool is_white(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

constexpr char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

constexpr char upper(char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
}

} // namespace

int gen_strcmp(char const* a, char const* b) {
    return std::strcmp(a, b);
}

int gen_stricmp(char const* a, char const* b) {
    while (*a != '\0' && lower(*a) == lower(*b)) {
        ++a;
        ++b;
    }
    return static_cast<unsigned char>(lower(*a)) - static_cast<unsigned char>(lower(*b));
}

void gen_itoa(int value, std::string& out, int radix) {
    PLATFORM_REQUIRE(radix >= 2 && radix <= 36);
    char text[1 + 32]; // a sign and the bits of an int
    char* const end = std::to_chars(text, text + sizeof text, value, radix).ptr;
    out.assign(text, end);
}

std::string gen_remove_leading_and_trailing_white_spaces(std::string const& text) {
    std::size_t begin = 0;
    std::size_t end = text.size();
    while (begin < end && is_white(text[begin]))
        ++begin;
    while (end > begin && is_white(text[end - 1]))
        --end;
    return text.substr(begin, end - begin);
}

void stl_toupper(std::string& text) {
    for (char& c : text)
        c = upper(c);
}
