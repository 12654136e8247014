#ifndef COMMAND_LINE_H
#define COMMAND_LINE_H

/// @file
/// The command line of a command: CLI11 reads the options, texts stay as they were typed.

#include <CLI/CLI.hpp>

#include <functional>
#include <stdexcept>
#include <string>
#include <vector>

/// The command line is wrong; what() says how.
class USAGE_ERROR : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// The user asks for help; what() is the help text.
class HELP_REQUEST : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Makes the reader of a command's options.
///
/// @param command     the command's name: "time"
/// @param operands    what may follow the options, for the usage line: "[TEXT]..."
/// @param description the first lines of the help
/// @param footer      its last lines
void describe_command(CLI::App& app, std::string const& command, std::string const& operands,
                      std::string const& description, std::string const& footer);

/// Adds an option that takes a text. Given twice, the last one counts.
///
/// @param value_name what the help calls the text: "UNIT"
/// @param set        receives the text; may throw USAGE_ERROR
CLI::Option* add_text_option(CLI::App& app, std::string const& name, std::string const& value_name,
                             std::function<void(std::string const&)> const& set,
                             std::string const& description);

/// Adds an option that takes a whole number from `lowest` to `highest`. Given twice, the last one
/// counts.
CLI::Option* add_number_option(CLI::App& app, std::string const& name, unsigned long lowest,
                               unsigned long highest, std::function<void(unsigned long)> const& set,
                               std::string const& description);

/// Reads a command's arguments: sets its options and returns its texts in order.
///
/// A text is an argument that is neither an option nor an option's value. Options may stand before,
/// between and behind the texts. "-5 ns" and "-.5" are texts, as no option starts with a digit or a
/// point, and so is everything behind "--".
///
/// Throws HELP_REQUEST and USAGE_ERROR.
std::vector<std::string> read_command_line(CLI::App& app,
                                           std::vector<std::string> const& arguments);

#endif
