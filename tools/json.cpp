#include "json.h"

#include "text.h"

namespace {

char const HEX_DIGITS[] = "0123456789abcdef";

/// Appends a character as it stands in a JSON string.
void append_escaped(std::string& out, char c) {
    unsigned char const byte = static_cast<unsigned char>(c);
    if (c == '"' || c == '\\') {
        out += '\\';
        out += c;
    } else if (byte < 0x20) {
        out += "\\u00";
        out += HEX_DIGITS[byte >> 4];
        out += HEX_DIGITS[byte & 15];
    } else {
        out += c;
    }
}

/// Appends a JSON string. Returns whether the text was UTF-8.
bool append_string(std::string& out, std::string_view text) {
    bool is_utf8 = true;
    out += '"';
    while (!text.empty()) {
        std::size_t const length = utf8_length(text);
        if (length == 0) {
            is_utf8 = false;
            out += "\\ufffd";
            text.remove_prefix(1);
        } else if (length == 1) {
            append_escaped(out, text[0]);
            text.remove_prefix(1);
        } else {
            out += text.substr(0, length);
            text.remove_prefix(length);
        }
    }
    out += '"';
    return is_utf8;
}

} // namespace

JSON_OBJECT::JSON_OBJECT(std::string& out) : m_out(out) {}

JSON_OBJECT::~JSON_OBJECT() {
    m_out += m_separator == '{' ? "{}" : "}";
}

void JSON_OBJECT::add_name(std::string_view name) {
    m_out += m_separator;
    m_out += '"';
    m_out += name;
    m_out += "\":";
    m_separator = ',';
}

void JSON_OBJECT::add(std::string_view name, std::string_view value) {
    add_name(name);
    if (append_string(m_out, value)) {
        return;
    }
    add_name(std::string(name) + "_hex");
    m_out += '"';
    for (char const c : value) {
        m_out += HEX_DIGITS[static_cast<unsigned char>(c) >> 4];
        m_out += HEX_DIGITS[static_cast<unsigned char>(c) & 15];
    }
    m_out += '"';
}

void JSON_OBJECT::add(std::string_view name, bool value) {
    add_name(name);
    m_out += value ? "true" : "false";
}

void JSON_OBJECT::add(std::string_view name, long long value) {
    add(name, std::to_string(value));
}
