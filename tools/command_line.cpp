#include "command_line.h"

#include "text.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <charconv>

namespace {

constexpr std::size_t HELP_WIDTH = 80;
constexpr std::size_t HELP_COLUMN = 22; // where the options' descriptions begin

/// The layout of the help.
class HELP_FORMAT : public CLI::Formatter {
public:
    explicit HELP_FORMAT(std::string operands) : m_operands(std::move(operands)) {
        column_width(HELP_COLUMN);
    }

    std::string make_description(CLI::App const* app) const override {
        return wrapped(app->get_description(), HELP_WIDTH) + "\n\n";
    }

    std::string make_usage(CLI::App const*, std::string name) const override {
        return "Usage: " + name + " [OPTION]... " + m_operands + "\n\n";
    }

    std::string make_option_opts(CLI::Option const* option) const override {
        return option->get_type_size() == 0 ? "" : " " + option->get_type_name();
    }

    std::string make_option_desc(CLI::Option const* option) const override {
        return wrapped(option->get_description(), HELP_WIDTH - HELP_COLUMN);
    }

    std::string make_group(std::string group, bool is_positional,
                           std::vector<CLI::Option const*> options) const override {
        std::string text = group + ":\n";
        for (CLI::Option const* option : options) {
            text += make_option(option, is_positional);
        }
        return text;
    }

    std::string make_footer(CLI::App const* app) const override {
        return wrapped(app->get_footer(), HELP_WIDTH);
    }

private:
    std::string m_operands;
};

/// Whether an argument in front of "--" is an option.
bool is_option(std::string const& argument) {
    return argument.size() > 1 && argument[0] == '-'
           && std::string_view("0123456789.").find(argument[1]) == std::string_view::npos;
}

/// The name in an argument that is an option: "--to" in "--to=ns", "-d" in "-d,".
std::string option_name(std::string const& argument) {
    return argument[1] == '-' ? argument.substr(0, argument.find('=')) : argument.substr(0, 2);
}

/// Whether an option takes a value. One that does not exist takes none; CLI11 refuses it later.
bool takes_value(CLI::App const& app, std::string const& name) {
    CLI::Option const* const option = app.get_option_no_throw(name);
    return option != nullptr && option->get_items_expected_max() > 0;
}

} // namespace

COMMAND_LINE::COMMAND_LINE(std::string const& command, std::string const& operands,
                           std::string const& description, std::string const& footer)
    : m_app(std::make_unique<CLI::App>(description, "bigq " + command)) {
    m_app->footer(footer);
    m_app->formatter(std::make_shared<HELP_FORMAT>(operands));
    m_app->set_help_flag("-h,--help", "Print this help and exit");
}

COMMAND_LINE::~COMMAND_LINE() = default;

void COMMAND_LINE::add_text(std::string const& names, std::string const& value_name,
                            std::function<void(std::string const&)> const& set,
                            std::string const& description) {
    m_app->add_option_function<std::string>(names, set, description)
        ->type_name(value_name)
        ->take_last();
}

void COMMAND_LINE::add_number(std::string const& names, unsigned long lowest, unsigned long highest,
                              std::function<void(unsigned long)> const& set,
                              std::string const& description) {
    auto const read = [=](std::string const& text) {
        unsigned long number = 0;
        char const* const end = text.data() + text.size();
        auto const result = std::from_chars(text.data(), end, number);
        if (result.ec != std::errc() || result.ptr != end || number < lowest || number > highest) {
            throw USAGE_ERROR(names + ": " + in_quotes(text) + " is not a whole number from "
                              + std::to_string(lowest) + " to " + std::to_string(highest));
        }
        set(number);
    };
    add_text(names, "N", read, description);
}

void COMMAND_LINE::add_flag(std::string const& names, bool& is_given,
                            std::string const& description) {
    m_app->add_flag(names, is_given, description);
}

void COMMAND_LINE::add_flag(std::string const& names, std::function<void()> const& set,
                            std::string const& description) {
    m_app->add_flag_callback(names, set, description);
}

void COMMAND_LINE::exclude(std::string const& name, std::vector<std::string> const& others) {
    for (std::string const& other : others) {
        m_app->get_option(name)->excludes(m_app->get_option(other));
    }
}

void COMMAND_LINE::begin_group(std::string const& heading) {
    m_app->option_defaults()->group(heading);
}

std::vector<std::string> COMMAND_LINE::read(std::vector<std::string> const& arguments) {
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
        std::string const name = option_name(*argument);
        if (!takes_value(*m_app, name)) {
            continue;
        }
        bool const value_follows = *argument == name;
        bool const is_empty = name[1] == '-' && *argument == name + '=';
        if (is_empty || (value_follows && argument + 1 == arguments.end())) {
            throw USAGE_ERROR(name + ": expected a value");
        }
        if (value_follows) {
            options.push_back(*++argument);
        }
    }
    try {
        std::reverse(options.begin(), options.end()); // CLI11 takes the last one first
        m_app->parse(options);
    } catch (CLI::CallForHelp const&) {
        throw HELP_REQUEST(m_app->help());
    } catch (CLI::ParseError const& error) {
        throw USAGE_ERROR(error.what());
    }
    return texts;
}
