// bigq: the library's conversions on the command line.

#include "command_line.h"
#include "exit_status.h"
#include "output.h"
#include "radix_command.h"
#ifdef BIGQ_HAS_STORE
#include "store_command.h"
#endif
#include "text.h"
#include "time_command.h"

#include <cerrno>
#include <exception>
#include <string>
#include <string_view>
#include <vector>

namespace {

struct COMMAND {
    std::string_view name;
    char const* summary;
    EXIT_STATUS (*run)(std::vector<std::string> const& arguments);
};

constexpr COMMAND COMMANDS[] = {
    {"radix", "convert bit vectors between radixes", run_radix},
#ifdef BIGQ_HAS_STORE
    {"store", "keep values in a database", run_store},
#endif
    {"time", "convert times, frequencies and data rates", run_time},
};

char const* const HELP = "bigq: exact quantities for electronic design\n"
                         "\n"
                         "Usage: bigq COMMAND [ARGUMENT]...\n"
                         "       bigq --help | --version\n"
                         "\n"
                         "Commands (bigq COMMAND --help says more):\n";

std::string help() {
    std::string text = HELP;
    for (COMMAND const& command : COMMANDS) {
        text += "  ";
        text += command.name;
        text.append(12 - command.name.size(), ' ');
        text += command.summary;
        text += '\n';
    }
    return text;
}

COMMAND const& command_named(std::string const& name) {
    std::string names;
    for (COMMAND const& command : COMMANDS) {
        if (command.name == name) {
            return command;
        }
        names += names.empty() ? "" : ", ";
        names += command.name;
    }
    throw USAGE_ERROR(in_quotes(name) + " is not a command: expected " + names);
}

void print(std::string_view text) {
    OUTPUT output;
    output.add(text);
    output.flush();
}

EXIT_STATUS run(std::vector<std::string> const& arguments) {
    if (arguments.empty()) {
        throw USAGE_ERROR("expected a command");
    }
    std::string const& first = arguments.front();
    if (first == "--help" || first == "-h") {
        print(help());
        return STATUS_OK;
    }
    if (first == "--version") {
        print("bigq " BIGQ_VERSION "\n");
        return STATUS_OK;
    }
    COMMAND const& command = command_named(first);
    try {
        return command.run({arguments.begin() + 1, arguments.end()});
    } catch (HELP_REQUEST const& request) {
        print(request.what());
        return STATUS_OK;
    } catch (USAGE_ERROR const& error) {
        report(first + ": " + error.what() + "\nTry 'bigq " + first + " --help'.");
        return STATUS_USAGE;
    }
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run({argv + (argc > 0 ? 1 : 0), argv + argc});
    } catch (USAGE_ERROR const& error) {
        report(std::string(error.what()) + "\nTry 'bigq --help'.");
        return STATUS_USAGE;
    } catch (IO_ERROR const& error) {
        if (error.error() != EPIPE) { // the reader of the output has gone, and needs no message
            report(error.what());
        }
        return STATUS_FAILED;
    } catch (std::exception const& error) {
        report(error.what());
        return STATUS_FAILED;
    }
}
