#ifndef JSON_H
#define JSON_H

/// @file
/// JSON objects, one to a line.

#include <string>
#include <string_view>

/// Writes one object at the end of a string, member by member; its destructor closes it.
///
/// Every object is well-formed whatever bytes go in. A value that is not UTF-8 has U+FFFD in place
/// of each offending byte, and a second member, named with "_hex" behind, has all its bytes in
/// hexadecimal.
class JSON_OBJECT {
public:
    explicit JSON_OBJECT(std::string& out);
    ~JSON_OBJECT();
    JSON_OBJECT(JSON_OBJECT const&) = delete;
    JSON_OBJECT& operator=(JSON_OBJECT const&) = delete;

    /// @param name plain ASCII without quotation marks and backslashes
    void add(std::string_view name, std::string_view value);
    void add(std::string_view name, char const* value) { add(name, std::string_view(value)); }
    void add(std::string_view name, bool value);
    /// An integer, as a string: many readers keep no more than 53 bits of a number.
    void add(std::string_view name, long long value);

private:
    void add_name(std::string_view name);

    std::string& m_out;
    char m_separator = '{';
};

#endif
