// Configuration switches: the environment first, then the TOML file that BIG_CONFIG names.
//
// Nothing is cached. The library asks for a switch at most once in each of its operations, so a
// file is read a handful of times in the life of a process.

#include "cfg_sys.h"

#include "gen_sys.h"

#include <cstdlib>
#include <stdexcept>

namespace {

/// The value of an environment variable; null when it is absent or empty, which is the same here.
char const* configured(char const* variable) {
    char const* const value = std::getenv(variable);
    return value == nullptr || *value == '\0' ? nullptr : value;
}

struct SWITCH_WORD {
    char const* word;
    bool on;
};

constexpr SWITCH_WORD SWITCH_WORDS[] = {
    {"on", true},   {"true", true},   {"yes", true}, {"1", true},
    {"off", false}, {"false", false}, {"no", false}, {"0", false},
};

bool value_in_environment(std::string const& variable, char const* value) {
    for (SWITCH_WORD const& row : SWITCH_WORDS)
        if (gen_stricmp(row.word, value) == 0)
            return row.on;
    throw std::runtime_error("the environment variable " + variable + " is \"" + value
                             + "\"; expected on, true, yes or 1, or off, false, no or 0");
}

} // namespace

#if BIG_PLATFORM_HAS_TOML

// The parser is compiled into this file, so that the library needs none at run time. Its errors
// come as results, which give the line.
#define TOML_HEADER_ONLY 1
#define TOML_EXCEPTIONS 0
#include <toml++/toml.h>

#include <cerrno>
#include <cstdio>
#include <memory>
#include <sstream>
#include <system_error>

namespace {

struct CLOSE_FILE {
    void operator()(std::FILE* file) const { std::fclose(file); }
};

std::string content_of(char const* path) {
    std::unique_ptr<std::FILE, CLOSE_FILE> const file(std::fopen(path, "rb"));
    std::string content;
    char block[4096];
    std::size_t length = sizeof block;
    while (file && length == sizeof block) {
        length = std::fread(block, 1, sizeof block, file.get());
        content.append(block, length);
    }
    if (!file || std::ferror(file.get()) != 0)
        throw std::runtime_error("the environment variable BIG_CONFIG names the file \""
                                 + std::string(path) + "\", which cannot be read: "
                                 + std::generic_category().message(errno));
    return content;
}

/// An error in the configuration file, placed as compilers place theirs.
[[noreturn]] void refuse(char const* path, toml::source_region const& where,
                         std::string const& what) {
    throw std::runtime_error(std::string(path) + ":" + std::to_string(where.begin.line) + ": "
                             + what);
}

bool value_in_file(char const* path, std::string const& name) {
    toml::parse_result const file = toml::parse(content_of(path));
    if (!file) {
        toml::parse_error const& error = file.error();
        refuse(path, error.source(),
               std::string(error.description()) + " (BIG_CONFIG must name a TOML file)");
    }
    toml::node const* const value = file.table().get(name);
    if (value == nullptr)
        return false;
    if (toml::value<bool> const* const on = value->as_boolean())
        return on->get();
    std::ostringstream type;
    type << value->type();
    refuse(path, value->source(),
           name + " is of type " + type.str() + "; expected true or false, without quotes");
}

} // namespace

#else

namespace {

bool value_in_file(char const* path, std::string const&) {
    throw std::runtime_error("the environment variable BIG_CONFIG names the file \""
                             + std::string(path)
                             + "\", but this build of the platform reads no configuration files "
                               "(it was built without toml++); set each switch as an environment "
                               "variable instead");
}

} // namespace

#endif

bool cfg_is_on(std::string const& name) {
    std::string variable = name;
    stl_toupper(variable);
    if (char const* const value = configured(variable.c_str()))
        return value_in_environment(variable, value);
    if (char const* const path = configured("BIG_CONFIG"))
        return value_in_file(path, name);
    return false;
}
