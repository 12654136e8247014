#include "expression.h"

#include <algorithm>

namespace {

bool is_of_number(char c) {
    return (c >= '0' && c <= '9') || (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '.'
           || c == '_';
}

} // namespace

char EXPRESSION_SCANNER::take(std::string_view characters) {
    char const c = next();
    if (c == '\0' || characters.find(c) == std::string_view::npos) {
        return '\0';
    }
    m_text.remove_prefix(1);
    skip_blanks();
    return c;
}

std::string_view EXPRESSION_SCANNER::take_number() {
    std::string_view const text = m_text;
    bool const has_sign = next() == '+' || next() == '-';
    std::size_t length = has_sign;
    while (length < text.size() && is_of_number(text[length])) {
        ++length;
    }
    m_text.remove_prefix(length);
    if (length == has_sign) {
        refuse(has_sign ? "a number directly behind its sign" : "a number or (");
    }
    skip_blanks();
    return text.substr(0, length);
}

void EXPRESSION_SCANNER::refuse_number(std::string_view number, std::string const& problem) const {
    throw EXPRESSION_ERROR(problem_of_part(m_whole, number, problem));
}

void EXPRESSION_SCANNER::refuse(std::string const& expected) const {
    throw EXPRESSION_ERROR(
        "is not an expression: expected " + expected
        + (m_text.empty() ? " at its end" : ", not " + in_quotes(character_at(m_text, 0))));
}

void EXPRESSION_SCANNER::skip_blanks() {
    m_text.remove_prefix(std::min(m_text.find_first_not_of(" \t"), m_text.size()));
}
