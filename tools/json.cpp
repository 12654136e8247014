#include "json.h"

#include "text.h"

namespace {

char const HEX_DIGITS[] = "0123456789abcdef";

/// Whether a byte stands for itself in a JSON string.
bool is_plain(char c) {
    return c >= 0x20 && c < 0x7F && c != '"' && c != '\\';
}

/// Appends an ASCII character as it stands in a JSON string.
void append_escaped(std::string& out, char c) {
    if (c == '"' || c == '\\') {
        out += '\\';
        out += c;
    } else if (c < 0x20) {
        out += "\\u00";
        out += HEX_DIGITS[c >> 4];
        out += HEX_DIGITS[c & 15];
    } else {
        out += c;
    }
}

/// Appends a JSON string. Returns whether the text was UTF-8.
bool append_string(std::string& out, std::string_view text) {
    bool is_utf8 = true;
    out += '"';
    while (true) {
        std::size_t plain = 0;
        while (plain < text.size() && is_plain(text[plain])) {
            ++plain;
        }
        out += text.substr(0, plain);
        text.remove_prefix(plain);
        if (text.empty()) {
            break;
        }
        std::size_t const length = utf8_length(text);
        if (length == 0) {
            is_utf8 = false;
            out += "\\ufffd";
        } else if (length == 1) {
            append_escaped(out, text[0]);
        } else {
            out += text.substr(0, length);
        }
        text.remove_prefix(length == 0 ? 1 : length);
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
