#ifndef ERR_SYS_H
#define ERR_SYS_H

/// @file
/// Failure reports and numbered user messages: what the library asks of the platform.
///
/// A platform defines err_report_internal_error() and err_post_enumerated_msg(). Everything from
/// ERR_INTERNAL_ERROR on belongs to the standalone platform alone; the library never uses it.

#include <functional>
#include <stdexcept>
#include <string>

#pragma GCC visibility push(default)

/// The numbered user messages. The numbers are fixed; the wording belongs to the platform.
enum MSG_ENUMERATED_POST_MSG : int {
    /// A text that cannot be read as a time. One argument: its number and its unit without blanks
    /// between them. A unit is written as its name where the text names one ("1.2.3 Ns" gives
    /// "1.2.3ns") and as given where it names none.
    MSG_BIG_ILLEGAL_TIME = 1,
    /// A time with digits finer than its unit can hold. Two arguments: the number as given and the
    /// number as stored, each with a blank and the unit's name behind it. The name of no unit is
    /// empty: "1.5 " and "1 ".
    MSG_BIG_TIME_TRUNCATED = 2,
};

/// Reports a failed precondition or an impossible value. Never returns: a platform aborts or
/// throws an exception that nothing in the library catches.
///
/// No argument is null.
///
/// @param text        the failed condition as written in the source, or a short message
/// @param tag         "2" for a check in a source file of the library, "BIG" for one in a public
///                    header
/// @param source_path the file that holds the check, without its extension ("big/big_time")
/// @param line        the line of the check in that file
[[noreturn]] void err_report_internal_error(char const* text, char const* tag,
                                            char const* source_path, int line);

/// Posts a numbered user message from the platform's catalogue and returns; the library goes on.
///
/// The standalone platform prints one line on standard error, which names the number and the
/// arguments in double quotes:
///
///     message 1: "3parsecs" cannot be read as a time, a frequency or a data rate
///     message 2: "1.5 ps" has digits finer than its unit can hold; it is stored as "1 ps"
///
/// It prints a number that it has no wording for too.
///
/// @param id   the message
/// @param arg1 first text argument, null when absent
/// @param arg2 second text argument, null when absent
void err_post_enumerated_msg(MSG_ENUMERATED_POST_MSG id, char const* arg1, char const* arg2);

/// What the standalone err_report_internal_error() throws. what() gives all four parts in one line:
///
///     internal error at big/big_ulong128:210 (tag 2): Division by Zero
class ERR_INTERNAL_ERROR : public std::logic_error {
public:
    ERR_INTERNAL_ERROR(char const* text, char const* tag, char const* source_path, int line);
    ERR_INTERNAL_ERROR(ERR_INTERNAL_ERROR const&) = default;
    ERR_INTERNAL_ERROR& operator=(ERR_INTERNAL_ERROR const&) = default;
    ~ERR_INTERNAL_ERROR() override;

    /// The failed condition or the message.
    std::string const& text() const noexcept { return m_text; }
    /// "2" for a source file of the library, "BIG" for a public header.
    std::string const& tag() const noexcept { return m_tag; }
    /// The file of the check, without its extension.
    std::string const& source_path() const noexcept { return m_source_path; }
    /// The line of the check.
    int line() const noexcept { return m_line; }

private:
    std::string m_text;
    std::string m_tag;
    std::string m_source_path;
    int m_line;
};

/// Receives an internal error: text, tag, source path and line. It must not return (throw, exit
/// or jump away); when it does, the process is aborted with the four parts on standard error.
///
/// It may be called from several threads at once, and may report an internal error itself. No lock
/// is held meanwhile. The texts live until it ends.
using ERR_INTERNAL_ERROR_HANDLER =
    std::function<void(char const* text, char const* tag, char const* source_path, int line)>;

/// Puts a program's own report in place of throwing ERR_INTERNAL_ERROR; an empty handler puts the
/// throwing back. Returns the previous handler (empty at first). Safe to call from any thread.
ERR_INTERNAL_ERROR_HANDLER err_set_internal_error_handler(ERR_INTERNAL_ERROR_HANDLER handler);

/// Receives a numbered message: its number and its two arguments (null when absent).
///
/// It may be called from several threads at once. No lock is held meanwhile. The texts live until
/// it returns. An exception that it throws reaches the caller of the library.
using ERR_MESSAGE_SINK =
    std::function<void(MSG_ENUMERATED_POST_MSG id, char const* arg1, char const* arg2)>;

/// Puts a program's own receiver of numbered messages in place of printing them on standard error;
/// an empty sink puts the printing back. Returns the previous sink (empty at first). Safe to call
/// from any thread.
ERR_MESSAGE_SINK err_set_message_sink(ERR_MESSAGE_SINK sink);

#pragma GCC visibility pop

#endif
