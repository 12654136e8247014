#ifndef RECORDING_PLATFORM_H
#define RECORDING_PLATFORM_H

/// @file
/// A platform for tests, put in front of any other at link time: it remembers every call of the
/// library, in order and with its arguments.

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace recording {

/// One call of a platform operation.
struct CALL {
    std::string operation;              ///< the operation's name, "~" in front of a destructor's
    std::vector<std::string> arguments; ///< as text; "(null)" for a null pointer

    friend bool operator==(CALL const&, CALL const&) = default;
};
void PrintTo(CALL const& call, std::ostream* out);

/// The calls since the process started or since clear(), registrations at load included.
std::vector<CALL> const& calls();
void clear();

/// From now on also writes each call on standard error, one on a line: the only way to see those
/// that are made when the process ends.
void echo_calls();

/// The calls of one operation.
std::vector<CALL> calls_of(std::string const& operation);

/// A debug message: mem_msg_local_vdebug("BIG", format, ...) with its text as formatted.
CALL debug(std::string const& format, std::string const& text);
/// A debug message whose format has no argument.
CALL debug(std::string const& text);
/// A numbered message with one or two arguments.
CALL message(int id, std::string const& arg1);
CALL message(int id, std::string const& arg1, std::string const& arg2);
/// A switch that was asked for.
CALL switch_read(std::string const& name);

/// The reports (internal errors, debug and numbered messages, in order) since clear(). The other
/// operations (string helpers, the tokenizer) are left out: when they are called is not fixed.
std::vector<CALL> reports();

/// Makes cfg_is_on(name) answer `on`; a switch that was not set is off.
void set_switch(std::string const& name, bool on);

/// What a call that a THROWING_CALL names throws.
struct THROWN {
    CALL call;
};

/// While it lives, the platform records one call, by its operation and arguments, and throws THROWN
/// instead of doing it. It cannot be an internal error. There is one at a time.
class THROWING_CALL {
public:
    explicit THROWING_CALL(CALL const& call);
    ~THROWING_CALL();
    THROWING_CALL(THROWING_CALL const&) = delete;
    THROWING_CALL& operator=(THROWING_CALL const&) = delete;
};

/// What the recording err_report_internal_error() throws.
struct INTERNAL_ERROR {
    std::string text;
    std::string tag;
    std::string source_path;
    int line;
};

/// Whether line `line` of the source file `source_path` (without extension) holds `text`: an error
/// must name the line of its own check.
testing::AssertionResult line_holds(std::string const& source_path, int line,
                                    std::string const& text);

/// Whether the statement reports exactly the internal error with this text, tag and path.
testing::AssertionResult reports_internal_error(void (*run)(void*), void* statement,
                                                std::string const& text, std::string const& tag,
                                                std::string const& source_path);

template <typename STATEMENT>
testing::AssertionResult reports_internal_error(STATEMENT statement, std::string const& text,
                                                std::string const& tag,
                                                std::string const& source_path) {
    return reports_internal_error([](void* s) { (*static_cast<STATEMENT*>(s))(); }, &statement,
                                  text, tag, source_path);
}

} // namespace recording

/// Expects a statement to report one internal error: its text, its tag, its source path, and a line
/// of that file which holds the text.
#define EXPECT_INTERNAL_ERROR(statement, text, tag, source_path)                                   \
    EXPECT_TRUE(recording::reports_internal_error([&] { statement; }, text, tag, source_path))

#endif
