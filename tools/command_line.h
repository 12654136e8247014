#ifndef COMMAND_LINE_H
#define COMMAND_LINE_H

/// @file
/// The command line of a command. CLI11 reads the options; its headers, which take long to compile,
/// are included by one file.

#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

namespace CLI {
class App;
} // namespace CLI

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

/// The options and texts of a command. Texts stay as they were typed.
class COMMAND_LINE {
public:
    /// @param command     the command's name: "time"
    /// @param operands    what may follow the options, for the usage line: "[TEXT]..."
    /// @param description the first lines of the help
    /// @param footer      its last lines
    COMMAND_LINE(std::string const& command, std::string const& operands,
                 std::string const& description, std::string const& footer);
    ~COMMAND_LINE();
    COMMAND_LINE(COMMAND_LINE const&) = delete;
    COMMAND_LINE& operator=(COMMAND_LINE const&) = delete;

    /// Adds an option that takes a text. Given twice, the last one counts.
    ///
    /// @param names      "--unit", or with a short form "-d,--delimiter"
    /// @param value_name what the help calls the text: "UNIT"
    /// @param set        receives the text; may throw USAGE_ERROR
    void add_text(std::string const& names, std::string const& value_name,
                  std::function<void(std::string const&)> const& set,
                  std::string const& description);

    /// Adds an option that takes a whole number from `lowest` to `highest`. Given twice, the last
    /// one counts.
    void add_number(std::string const& names, unsigned long lowest, unsigned long highest,
                    std::function<void(unsigned long)> const& set, std::string const& description);

    /// Adds an option without a value.
    ///
    /// @param is_given receives whether it is there
    void add_flag(std::string const& names, bool& is_given, std::string const& description);
    /// @param set is called when it is there
    void add_flag(std::string const& names, std::function<void()> const& set,
                  std::string const& description);

    /// Refuses an option beside any of the others. All have been added.
    void exclude(std::string const& name, std::vector<std::string> const& others);

    /// Lists the options that are added from now on under a heading of their own.
    void begin_group(std::string const& heading);

    /// Reads a command's arguments: sets its options and returns its texts in order.
    ///
    /// A text is an argument that is neither an option nor an option's value. Options may stand
    /// before, between and behind the texts. "-5 ns" and "-.5" are texts, as no option starts with
    /// a digit or a point, and so is everything behind "--".
    ///
    /// Throws HELP_REQUEST and USAGE_ERROR.
    std::vector<std::string> read(std::vector<std::string> const& arguments);

private:
    std::unique_ptr<CLI::App> m_app;
};

#endif
