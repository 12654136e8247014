#include "command_line.h"

#include "text.h"

#include <algorithm>
#include <charconv>
#include <memory>

namespace {

/// The help text's usage line.
class HELP_FORMAT : public CLI::Formatter {
public:
    explicit HELP_FORMAT(std::string operands) : m_operands(std::move(operands)) {
        column_width(28);
    }

    std::string make_usage(CLI::App const*, std::string name) const override {
        return "\nUsage: " + name + " [OPTION]... " + m_operands + "\n";
    }

    std::string make_option_opts(CLI::Option const* option) const override {
        return option->get_type_size() == 0 ? "" : " " + option->get_type_name();
    }

private:
    std::string m_operands;
};

/// Whether an argument in front of "--" is an option.
bool is_option(std::string const& argument) {
    return argument.size() > 1 && argument[0] == '-'
           && std::string_view("0123456789.").find(argument[1]) == std::string_view::npos;
}

/// Whether the value of an option is the argument behind it. An option that does not exist takes
/// none; CLI11 refuses it later.
bool takes_next_argument(CLI::App& app, std::string const& argument) {
    bool const is_long = argument[1] == '-';
    std::string const name =
        is_long ? argument.substr(0, argument.find('=')) : argument.substr(0, 2);
    CLI::Option const* const option = app.get_option_no_throw(name);
    if (option == nullptr || option->get_items_expected_max() == 0) {
        return false;
    }
    if (argument.back() == '=' && is_long) {
        throw USAGE_ERROR(name + ": expected a value behind the =");
    }
    return argument.size() == name.size();
}

} // namespace

void describe_command(CLI::App& app, std::string const& command, std::string const& operands,
                      std::string const& description, std::string const& footer) {
    app.name("bigq " + command);
    app.description(description);
    app.footer(footer);
    app.formatter(std::make_shared<HELP_FORMAT>(operands));
    app.set_help_flag("-h,--help", "Print this help and exit");
}

void add_number_option(CLI::App& app, std::string const& name, unsigned long lowest,
                       unsigned long highest, std::function<void(unsigned long)> const& set,
                       std::string const& description) {
    auto const read = [=](std::string const& text) {
        unsigned long number = 0;
        char const* const end = text.data() + text.size();
        auto const result = std::from_chars(text.data(), end, number);
        if (result.ec != std::errc() || result.ptr != end || number < lowest || number > highest) {
            throw USAGE_ERROR(name + ": " + in_quotes(text) + " is not a whole number from "
                              + std::to_string(lowest) + " to " + std::to_string(highest));
        }
        set(number);
    };
    app.add_option_function<std::string>(name, read, description)->type_name("N");
}

std::vector<std::string> read_command_line(CLI::App& app,
                                           std::vector<std::string> const& arguments) {
    std::vector<std::string> options;
    std::vector<std::string> texts;
    for (auto argument = arguments.begin(); argument != arguments.end(); ++argument) {
        if (*argument == "--") {
            texts.insert(texts.end(), argument + 1, arguments.end());
            break;
        }
        if (!is_option(*argument)) {
            texts.push_back(*argument);
            continue;
        }
        options.push_back(*argument);
        if (takes_next_argument(app, *argument) && argument + 1 != arguments.end()) {
            options.push_back(*++argument);
        }
    }
    try {
        std::reverse(options.begin(), options.end()); // CLI11 takes the last one first
        app.parse(options);
    } catch (CLI::CallForHelp const&) {
        throw HELP_REQUEST(app.help());
    } catch (CLI::ParseError const& error) {
        throw USAGE_ERROR(error.what());
    }
    return texts;
}
