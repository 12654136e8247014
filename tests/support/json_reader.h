#ifndef JSON_READER_H
#define JSON_READER_H

/// @file
/// A strict reader of the flat JSON objects that the tool writes.

#include <map>
#include <string>
#include <string_view>

/// The members of a JSON object whose values are strings, true or false. Anything that is not such
/// an object (RFC 8259), a member given twice included, throws std::runtime_error.
std::map<std::string, std::string> read_json_object(std::string_view text);

#endif
