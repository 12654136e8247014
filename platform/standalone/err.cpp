// Failure reports and numbered user messages.
//
// An internal error goes to the program's handler, else it is thrown as ERR_INTERNAL_ERROR. A
// numbered message goes to the program's sink, else it is printed in the wording of CATALOGUE.

#include "err_sys.h"

#include "replaceable.h"

#include <cstdio>
#include <cstdlib>

// ------------------------------------------------------------------------------------------------
// Internal errors
// ------------------------------------------------------------------------------------------------

namespace {

REPLACEABLE<ERR_INTERNAL_ERROR_HANDLER>& internal_error_handler() {
    static auto* const handler = new REPLACEABLE<ERR_INTERNAL_ERROR_HANDLER>;
    return *handler;
}

/// The four parts of an internal error in one line.
std::string one_line(char const* text, char const* tag, char const* source_path, int line) {
    return std::string("internal error at ") + source_path + ":" + std::to_string(line) + " (tag "
           + tag + "): " + text;
}

} // namespace

void err_report_internal_error(char const* text, char const* tag, char const* source_path,
                               int line) {
    auto const handler = internal_error_handler().get();
    if (!handler)
        throw ERR_INTERNAL_ERROR(text, tag, source_path, line);
    (*handler)(text, tag, source_path, line);
    // No code may run after a report, so a handler that returns ends the process.
    std::fprintf(stderr,
                 "internal error at %s:%d (tag %s): %s\n"
                 "the handler of internal errors returned; the process is aborted\n",
                 source_path, line, tag, text);
    std::abort();
}

ERR_INTERNAL_ERROR_HANDLER err_set_internal_error_handler(ERR_INTERNAL_ERROR_HANDLER handler) {
    return internal_error_handler().replace(std::move(handler));
}

ERR_INTERNAL_ERROR::ERR_INTERNAL_ERROR(char const* text, char const* tag, char const* source_path,
                                       int line)
    : std::logic_error(one_line(text, tag, source_path, line)), m_text(text), m_tag(tag),
      m_source_path(source_path), m_line(line) {}

ERR_INTERNAL_ERROR::~ERR_INTERNAL_ERROR() = default;

// ------------------------------------------------------------------------------------------------
// Numbered messages
// ------------------------------------------------------------------------------------------------

namespace {

struct CATALOGUE_ROW {
    MSG_ENUMERATED_POST_MSG id;
    char const* wording;
};

// In a wording, %1 and %2 stand for the arguments in double quotes.
constexpr CATALOGUE_ROW CATALOGUE[] = {
    // number               wording
    {MSG_BIG_ILLEGAL_TIME, "%1 cannot be read as a time, a frequency or a data rate"},
    {MSG_BIG_TIME_TRUNCATED, "%1 has digits finer than its unit can hold; it is stored as %2"},
};

/// For a number without a row: the message is not lost, whatever it meant.
constexpr char const* UNKNOWN_NUMBER = "no wording for this number; its texts are %1 and %2";

char const* wording_of(MSG_ENUMERATED_POST_MSG id) {
    for (CATALOGUE_ROW const& row : CATALOGUE)
        if (row.id == id)
            return row.wording;
    return UNKNOWN_NUMBER;
}

std::string quoted(char const* argument) {
    return argument == nullptr ? "(none)" : std::string("\"") + argument + '"';
}

REPLACEABLE<ERR_MESSAGE_SINK>& message_sink() {
    static auto* const sink = new REPLACEABLE<ERR_MESSAGE_SINK>;
    return *sink;
}

} // namespace

void err_post_enumerated_msg(MSG_ENUMERATED_POST_MSG id, char const* arg1, char const* arg2) {
    if (auto const sink = message_sink().get()) {
        (*sink)(id, arg1, arg2);
        return;
    }
    std::string line = "message " + std::to_string(id) + ": ";
    for (char const* c = wording_of(id); *c != '\0'; ++c) {
        if (*c == '%')
            line += quoted(*++c == '1' ? arg1 : arg2);
        else
            line += *c;
    }
    line += '\n';
    std::fwrite(line.data(), 1, line.size(), stderr); // one write, so that threads do not mix lines
}

ERR_MESSAGE_SINK err_set_message_sink(ERR_MESSAGE_SINK sink) {
    return message_sink().replace(std::move(sink));
}
