#ifndef FILTER_H
#define FILTER_H

/// @file
/// What every command shares that turns texts into texts: its common options, its lines and fields,
/// its messages and its exit status. A command brings a CONVERSION.

#include "exit_status.h"
#include "json.h"

#include <optional>
#include <string>
#include <vector>

class COMMAND_LINE;

/// What became of a text.
enum class OUTCOME {
    CONVERTED,   ///< the result says all that the text said
    LOST_DIGITS, ///< there is a result, but part of what was given is lost; --strict refuses it
    REFUSED,     ///< there is no result
};

/// What a command does with one text.
class CONVERSION {
public:
    virtual ~CONVERSION();

    /// Converts a text. An ERR_INTERNAL_ERROR that it throws refuses the text.
    ///
    /// @param text    any bytes but NUL
    /// @param result  receives the converted text, unless it is refused
    /// @param problem receives what is wrong, unless all is well: a sentence whose subject is the
    ///                text ("is not a time: expected ...")
    virtual OUTCOME convert(std::string const& text, std::string& result, std::string& problem) = 0;

    /// Adds what --json says about the value converted last, in front of the result.
    virtual void add_members(JSON_OBJECT& object) const = 0;
};

/// What is done about a text that is refused.
enum class INVALID {
    ABORT,  ///< stop there
    FAIL,   ///< report it, write the line as it is, go on, and fail in the end
    WARN,   ///< report it, write the line as it is, go on
    IGNORE, ///< write the line as it is, go on
};

struct FILTER_OPTIONS {
    /// The number of the field to convert, from 1; without one the whole line is converted.
    std::optional<unsigned long> field;
    /// What separates fields; without one every run of spaces and tabs does.
    std::optional<char> delimiter;
    bool header = false; ///< the first line of the input is not converted
    INVALID invalid = INVALID::ABORT;
    bool strict = false;
    bool json = false;
    bool joins_texts = false; ///< the command's texts are one, with a blank between each two
};

/// Adds the options that set FILTER_OPTIONS.
void add_filter_options(COMMAND_LINE& line, FILTER_OPTIONS& options);

/// The end of a filter's help: what its exit status means.
extern char const* const FILTER_HELP;

/// Converts the texts, or without any the lines of standard input, to standard output.
///
/// Throws IO_ERROR, std::length_error for a line that is too long, and USAGE_ERROR for options that
/// do not go together.
EXIT_STATUS run_filter(FILTER_OPTIONS const& options, std::vector<std::string> const& texts,
                       CONVERSION& conversion);

#endif
