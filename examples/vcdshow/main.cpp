// vcdshow: prints the values of chosen signals of a value change dump over time.

#include "big_sys.h"
#include "dump_file.h"
#include "progress.h"
#include "signal_choice.h"
#include "signal_table.h"
#include "vcd_reader.h"

#include <CLI/CLI.hpp>

#include <cerrno>
#include <climits>
#include <cstdio>
#include <cstring>
#include <numeric>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

enum EXIT_STATUS : int {
    STATUS_OK = 0,     ///< everything was read and written
    STATUS_FAILED = 1, ///< the dump is broken or lacks a signal, or reading or writing failed
    STATUS_USAGE = 2,  ///< the command line is wrong; nothing was read
};

// ------------------------------------------------------------------------------------------------
// Command line
// ------------------------------------------------------------------------------------------------

struct OPTIONS {
    std::string dump;
    bool is_list = false;
    std::vector<std::string> signals;
    TABLE_FORMAT format;
    std::optional<BIG_TIME::TIME_UNIT> time_unit; ///< none for that of the dump's timescale
    std::optional<BIG_TIME> from;
    std::optional<BIG_TIME> to;
};

BIG_RADIX radix_named(std::string const& name) {
    struct ROW {
        char letter;
        char const* name;
        BIG_RADIX radix;
    };
    static constexpr ROW ROWS[] = {
        {'b', "bin", BIG_BIN},           {'o', "oct", BIG_OCT},
        {'h', "hex", BIG_HEX},           {'d', "sdec", BIG_SIGNED_DEC},
        {'u', "udec", BIG_UNSIGNED_DEC}, {'f', "fix", BIG_FRAC_FIX_POINT},
        {'a', "ascii", BIG_ASCII},
    };
    for (ROW const& row : ROWS) {
        if (name == row.name || name == std::string(1, row.letter)) {
            return row.radix;
        }
    }
    throw CLI::ValidationError(
        "--radix", '"' + name + "\" is no radix; expected bin, oct, hex, sdec, udec, fix or ascii");
}

bool is_time_unit(BIG_TIME::TIME_UNIT unit) {
    return unit != BIG_TIME::UNIT_NONE
           && BIG_TIME::get_unit_category(unit) == BIG_TIME::TIME_CATEGORY;
}

BIG_TIME::TIME_UNIT time_unit_named(std::string const& name) {
    BIG_TIME::TIME_UNIT unit = BIG_TIME::UNIT_NONE;
    BIG_TIME::extract_time_units(name.c_str(), unit);
    if (!is_time_unit(unit)) {
        throw CLI::ValidationError("--time-unit", '"' + name
                                                      + "\" is no unit of time; expected fs, ps, "
                                                        "ns, us, ms or s");
    }
    return unit;
}

/// Reads a time with its unit. A time that the library would cut is refused.
BIG_TIME time_of(std::string const& option, std::string const& text) {
    bool is_cut = false;
    err_set_message_sink([&](MSG_ENUMERATED_POST_MSG id, char const*, char const*) {
        is_cut = is_cut || id == MSG_BIG_TIME_TRUNCATED;
    });
    BIG_TIME time;
    bool const is_time = time.set_time(text, true);
    err_set_message_sink({});
    if (!is_time || !is_time_unit(time.get_time_unit())) {
        throw CLI::ValidationError(option, '"' + text
                                               + "\" is no time; expected a number and a unit, "
                                                 "such as \"1.5 us\"");
    }
    if (is_cut) {
        throw CLI::ValidationError(option, '"' + text + "\" has digits below a picosecond");
    }
    return time;
}

constexpr char const* DESCRIPTION =
    "Prints the values of chosen signals of a value change dump (VCD) over time: one line for each "
    "time at which one of them has changed.";

constexpr char const* FOOTER =
    "NAME is a signal's full name, such as tb.dut.total, with or without its range, or a pattern: "
    "* stands for any characters, points included, and ? for one.\n"
    "Exit status: 0 done; 1 the dump is broken, has no such signal, or cannot be read; 2 the "
    "command line is wrong.";

/// Sets the options; throws CLI::ParseError.
void read_command_line(CLI::App& app, OPTIONS& options, int argc, char** argv) {
    app.add_option("DUMP", options.dump, "The dump; - is standard input")->required();
    app.add_flag("--list", options.is_list, "List the signals (or those chosen) and end");
    app.add_option("-s,--signal", options.signals, "Show a signal; may be given again")
        ->type_name("NAME")
        ->allow_extra_args(false);
    app.add_option_function<std::string>(
           "-r,--radix", [&](std::string const& name) { options.format.radix = radix_named(name); },
           "bin, oct, hex (the default), sdec, udec, fix or ascii; b, o, h, d, u, f, a for short")
        ->type_name("RADIX");
    app.add_option_function<std::string>(
           "-t,--time-unit",
           [&](std::string const& name) { options.time_unit = time_unit_named(name); },
           "fs, ps, ns, us, ms or s; by default the unit of the dump")
        ->type_name("UNIT");
    app.add_option("-p,--precision", options.format.precision,
                   "Round times to N decimal places; by default every digit is shown")
        ->type_name("N")
        ->check(CLI::Range(0, USHRT_MAX).description(""));
    app.add_option_function<std::string>(
           "--from", [&](std::string const& text) { options.from = time_of("--from", text); },
           "Show nothing before a time, such as \"1.5 us\"")
        ->type_name("TIME");
    app.add_option_function<std::string>(
           "--to", [&](std::string const& text) { options.to = time_of("--to", text); },
           "Show nothing after a time, and read no further")
        ->type_name("TIME");
    app.add_flag("--csv", options.format.is_csv, "Write comma-separated values");
    app.parse(argc, argv);
    if (options.signals.empty() && !options.is_list) {
        throw CLI::RequiredError("--signal (--list shows the names)");
    }
}

// ------------------------------------------------------------------------------------------------
// Output
// ------------------------------------------------------------------------------------------------

/// Standard output behind a big buffer, and standard error. The progress is taken away before
/// anything is written.
class OUTPUT {
public:
    explicit OUTPUT(PROGRESS& progress) : m_progress(progress) {}

    /// Where to append what is to be written.
    std::string& text() { return m_text; }

    /// Writes the text when it has become long. Throws as flush() does.
    void flush_if_long() {
        if (m_text.size() >= LONG) {
            flush();
        }
    }

    /// Writes the text. Throws std::runtime_error when the system refuses; the text is gone then.
    void flush() {
        m_progress.erase();
        for (std::size_t written = 0; written < m_text.size();) {
            ssize_t const size =
                ::write(STDOUT_FILENO, m_text.data() + written, m_text.size() - written);
            if (size < 0 && errno != EINTR) {
                int const error = errno;
                m_text.clear();
                throw std::runtime_error(std::string("standard output: ") + std::strerror(error));
            }
            written += size < 0 ? 0 : static_cast<std::size_t>(size);
        }
        m_text.clear();
    }

    void warn(std::string const& message) {
        flush();
        std::fprintf(stderr, "vcdshow: %s\n", message.c_str());
    }

private:
    static constexpr std::size_t LONG = 64 * 1024;

    PROGRESS& m_progress;
    std::string m_text;
};

// ------------------------------------------------------------------------------------------------
// The job
// ------------------------------------------------------------------------------------------------

/// The chosen variables as positions in the list, each once: in the order of the names, and for one
/// name in that of the dump. Throws std::runtime_error for a name without a variable.
std::vector<std::size_t> choose(std::string const& dump, std::vector<VCD_VARIABLE> const& variables,
                                std::vector<std::string> const& names) {
    std::vector<std::size_t> chosen;
    std::vector<bool> is_chosen(variables.size());
    for (std::string const& name : names) {
        std::vector<std::size_t> const found = find_variables(variables, name);
        if (found.empty()) {
            std::string message = dump + " has no signal \"" + name + '"';
            char const* separator = "; the nearest are ";
            for (std::string const& near : near_names(variables, name)) {
                message += separator + near;
                separator = ", ";
            }
            throw std::runtime_error(message + "; --list shows all");
        }
        for (std::size_t const variable : found) {
            if (!is_chosen[variable]) {
                is_chosen[variable] = true;
                chosen.push_back(variable);
            }
        }
    }
    return chosen;
}

/// Writes one line for each variable: its name, its type and its bits.
void write_list(std::vector<VCD_VARIABLE> const& variables, std::vector<std::size_t> const& chosen,
                OUTPUT& output) {
    for (std::size_t const number : chosen) {
        VCD_VARIABLE const& variable = variables[number];
        output.text() += variable.name + variable.range + "  " + variable.type + "  "
                         + std::to_string(variable.width) + '\n';
        output.flush_if_long();
    }
}

/// Writes a line for each time at which a chosen signal has changed.
void write_changes(VCD_READER& reader, SIGNAL_TABLE& table, OPTIONS const& options,
                   OUTPUT& output) {
    VCD_TIMESCALE const& scale = reader.timescale();
    long long count = -1; // the time that is being read; none yet
    BIG_TIME time;
    bool has_warned = false;

    auto const finish_time = [&] {
        if (!table.has_changed()) {
            return;
        }
        if (options.from && time < *options.from) {
            table.skip_line();
            return;
        }
        table.write_line(time, output.text());
        output.flush_if_long();
    };

    VCD_CHANGE change;
    while (reader.next(change)) {
        if (change.time != count) {
            finish_time();
            count = change.time;
            time = scale.time_of(count);
            if (options.to && *options.to < time) {
                return;
            }
            if (!scale.is_exact(count) && !has_warned) {
                has_warned = true;
                output.warn(reader.place() + ": a change at " + scale.text_of(count)
                            + ", which is no whole number of picoseconds: the times of this dump "
                              "are cut to picoseconds");
            }
        }
        table.take(change);
    }
    finish_time();
}

/// Does what the options ask for. Throws std::runtime_error.
void run(OPTIONS options) {
    DUMP_FILE file(options.dump);
    PROGRESS progress(::isatty(STDERR_FILENO) != 0 ? std::optional(STDERR_FILENO) : std::nullopt,
                      "vcdshow: " + file.name(), file.size(), PROGRESS::CLOCK::now());
    file.report_to([&](unsigned long long bytes) { progress.show(bytes, PROGRESS::CLOCK::now()); });
    OUTPUT output(progress);

    VCD_READER reader(file, file.name());
    std::vector<VCD_VARIABLE> const& variables = reader.variables();
    std::vector<std::size_t> chosen = choose(file.name(), variables, options.signals);
    if (options.is_list && options.signals.empty()) {
        chosen.resize(variables.size());
        std::iota(chosen.begin(), chosen.end(), std::size_t{0});
    }
    if (options.is_list) {
        write_list(variables, chosen, output);
        output.flush();
        return;
    }
    for (std::size_t const variable : chosen) {
        reader.select(variables[variable].signal);
    }
    options.format.time_unit = options.time_unit.value_or(reader.timescale().unit());
    SIGNAL_TABLE table(options.format, variables, chosen, reader.signal_count());
    table.write_header(output.text());
    try {
        write_changes(reader, table, options, output);
    } catch (std::runtime_error const&) {
        output.flush(); // everything in front of the place that cannot be read is good
        throw;
    }
    output.flush();
}

} // namespace

int main(int argc, char** argv) {
    OPTIONS options;
    CLI::App app(DESCRIPTION, "vcdshow");
    app.footer(FOOTER);
    app.failure_message([](CLI::App const* program, CLI::Error const& error) {
        return program->get_name() + ": " + CLI::FailureMessage::simple(program, error);
    });
    try {
        read_command_line(app, options, argc, argv);
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? STATUS_OK : STATUS_USAGE;
    }
    try {
        run(options);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "vcdshow: %s\n", error.what());
        return STATUS_FAILED;
    }
    return STATUS_OK;
}
