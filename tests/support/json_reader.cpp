#include "json_reader.h"

#include <stdexcept>

namespace {

class READER {
public:
    explicit READER(std::string_view text) : m_rest(text) {}

    bool take(std::string_view text) {
        bool const is_next = m_rest.substr(0, text.size()) == text;
        m_rest.remove_prefix(is_next ? text.size() : 0);
        return is_next;
    }

    void expect(std::string_view text) {
        if (!take(text)) {
            fail("expected " + std::string(text));
        }
    }

    std::string string() {
        std::string value;
        expect("\"");
        while (!take("\"")) {
            if (m_rest.empty() || static_cast<unsigned char>(m_rest[0]) < 0x20) {
                fail("a string does not end");
            }
            if (take("\\")) {
                value += escaped();
            } else {
                value += m_rest[0];
                m_rest.remove_prefix(1);
            }
        }
        return value;
    }

    bool at_end() const { return m_rest.empty(); }

    [[noreturn]] void fail(std::string const& why) const {
        throw std::runtime_error(why + " at: " + std::string(m_rest));
    }

private:
    /// What stands behind a backslash, of which the tool writes three kinds.
    std::string escaped() {
        if (take("\"")) {
            return "\"";
        }
        if (take("\\")) {
            return "\\";
        }
        if (take("ufffd")) {
            return "\xEF\xBF\xBD";
        }
        expect("u00");
        std::string const digits(m_rest.substr(0, 2));
        if (digits.find_first_not_of("0123456789abcdef") != std::string::npos
            || digits.size() < 2) {
            fail("an escape is cut short");
        }
        m_rest.remove_prefix(2);
        return std::string(1, static_cast<char>(std::stoi(digits, nullptr, 16)));
    }

    std::string_view m_rest;
};

} // namespace

std::map<std::string, std::string> read_json_object(std::string_view text) {
    std::map<std::string, std::string> members;
    READER reader(text);
    reader.expect("{");
    do {
        std::string const name = reader.string();
        reader.expect(":");
        std::string const value = reader.take("true")    ? "true"
                                  : reader.take("false") ? "false"
                                                         : reader.string();
        if (!members.emplace(name, value).second) {
            reader.fail("\"" + name + "\" stands twice before");
        }
    } while (reader.take(","));
    reader.expect("}");
    if (!reader.at_end()) {
        reader.fail("something stands behind the object");
    }
    return members;
}
