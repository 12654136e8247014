// bigq: the library's conversions on the command line.

#include "command_line.h"
#include "compare_command.h"
#include "delay_command.h"
#include "exit_status.h"
#include "fraction_command.h"
#include "freq_command.h"
#include "gcd_command.h"
#include "output.h"
#include "radix_command.h"
#ifdef BIGQ_HAS_STORE
#include "store_command.h"
#endif
#include "text.h"
#include "time_command.h"
#include "u128_command.h"

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
    EXIT_STATUS failed; ///< the status when reading or writing fails
};

// clang-format off
constexpr COMMAND COMMANDS[] = {
    // name      summary                                                 run           failed
    {"compare",  "compare two times, frequencies or data rates",         run_compare,  STATUS_TROUBLE},
    {"delay",    "write delays counted in one timescale in another",     run_delay,    STATUS_FAILED},
    {"fraction", "compute with exact fractions",                         run_fraction, STATUS_FAILED},
    {"freq",     "convert clock periods into frequencies and back",      run_freq,     STATUS_FAILED},
    {"gcd",      "find the greatest common divisor of whole numbers",    run_gcd,      STATUS_FAILED},
    {"radix",    "convert bit vectors between radixes",                  run_radix,    STATUS_FAILED},
#ifdef BIGQ_HAS_STORE
    {"store",    "keep values in a database",                            run_store,    STATUS_FAILED},
#endif
    {"time",     "convert times, frequencies and data rates",            run_time,     STATUS_FAILED},
    {"u128",     "compute with whole numbers of up to 128 bits",         run_u128,     STATUS_FAILED},
};
// clang-format on

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

/// Reports an error that ends the program, but for a reader of the output that has gone: that needs
/// no message.
void report_failure(std::exception const& error) {
    auto const* const io_error = dynamic_cast<IO_ERROR const*>(&error);
    if (io_error == nullptr || io_error->error() != EPIPE) {
        report(error.what());
    }
}

EXIT_STATUS run_command(COMMAND const& command, std::vector<std::string> const& arguments) {
    try {
        return command.run(arguments);
    } catch (HELP_REQUEST const& request) {
        print(request.what());
        return STATUS_OK;
    } catch (USAGE_ERROR const& error) {
        std::string const name(command.name);
        report(name + ": " + error.what() + "\nTry 'bigq " + name + " --help'.");
        return STATUS_USAGE;
    } catch (std::exception const& error) {
        report_failure(error);
        return command.failed;
    }
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
    return run_command(command_named(first), {arguments.begin() + 1, arguments.end()});
}

} // namespace

int main(int argc, char** argv) {
    try {
        return run({argv + (argc > 0 ? 1 : 0), argv + argc});
    } catch (USAGE_ERROR const& error) {
        report(std::string(error.what()) + "\nTry 'bigq --help'.");
        return STATUS_USAGE;
    } catch (std::exception const& error) {
        report_failure(error);
        return STATUS_FAILED;
    }
}
