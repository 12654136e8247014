// sdfpaths: sums the delays of paths in a standard delay file and compares them with a clock.

#include "big_sys.h"
#include "delay_graph.h"
#include "longest_paths.h"
#include "path_list.h"
#include "path_report.h"
#include "sdf_reader.h"

#include <CLI/CLI.hpp>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

enum EXIT_STATUS : int {
    STATUS_MET = 0,      ///< the clock is slow enough for every path
    STATUS_VIOLATED = 1, ///< it is too fast for at least one, or that is undecided
    STATUS_FAILED = 2,   ///< the command line or a file is wrong
};

// ------------------------------------------------------------------------------------------------
// Command line
// ------------------------------------------------------------------------------------------------

struct OPTIONS {
    std::string sdf;
    std::string path_file; ///< empty for none
    std::vector<std::string> paths;
    std::size_t longest = 0;
    std::optional<BIG_TIME> clock;
    std::string corner = "max";
    std::string edge = "slowest";
    bool with_float = false;
    bool is_strict = false;
};

/// Reads a frequency with its unit. One that the library would cut is refused.
BIG_TIME clock_of(std::string const& text) {
    bool is_cut = false;
    err_set_message_sink([&](MSG_ENUMERATED_POST_MSG id, char const*, char const*) {
        is_cut = is_cut || id == MSG_BIG_TIME_TRUNCATED;
    });
    BIG_TIME clock;
    bool const is_read = clock.set_time(text, true);
    err_set_message_sink({});
    if (is_cut) {
        throw CLI::ValidationError("--clock", '"' + text + "\" has digits below a hertz");
    }
    if (!is_read || clock.get_time_value() == 0
        || BIG_TIME::get_unit_category(clock.get_time_unit()) != BIG_TIME::FREQUENCY_CATEGORY) {
        throw CLI::ValidationError("--clock",
                                   '"' + text
                                       + "\" is no frequency above 0; expected a number and a "
                                         "unit, such as \"125 MHz\"");
    }
    return clock;
}

SDF_CORNER corner_named(std::string const& name) {
    return name == "min" ? CORNER_MIN : name == "typ" ? CORNER_TYP : CORNER_MAX;
}

EDGE edge_named(std::string const& name) {
    return name == "rise"      ? EDGE::RISE
           : name == "fall"    ? EDGE::FALL
           : name == "fastest" ? EDGE::FASTEST
                               : EDGE::SLOWEST;
}

constexpr char const* DESCRIPTION =
    "Sums the delays of paths in a standard delay file (SDF) exactly, and compares the sums with "
    "the period of a clock.";

constexpr char const* FOOTER =
    "A line of PATHS is \"path NAME: PIN PIN ...\"; a PIN is named as in the SDF, and may be "
    "followed by (rise) or (fall).\n"
    "Exit status: 0 every path fits into the period; 1 some path does not, or that depends on "
    "digits that were cut off; 2 the command line or a file is wrong.";

/// Sets the options; throws CLI::ParseError.
void read_command_line(CLI::App& app, OPTIONS& options, int argc, char** argv) {
    app.add_option("SDF", options.sdf, "The delays; - is standard input")->required();
    app.add_option("PATHS", options.path_file, "A file with paths");
    app.add_option_function<std::string>(
           "-c,--clock", [&](std::string const& text) { options.clock = clock_of(text); },
           "The clock, such as \"125 MHz\"")
        ->type_name("FREQUENCY")
        ->required();
    app.add_option("-p,--path", options.paths, "A path; may be given again")
        ->type_name("\"NAME: PIN PIN ...\"")
        ->allow_extra_args(false);
    app.add_option("-n,--longest", options.longest, "The N longest paths of the file too")
        ->type_name("N")
        ->check(CLI::Range(1, 1'000'000).description(""));
    app.add_option("--corner", options.corner, "min, typ or max (the default)")
        ->type_name("CORNER")
        ->check(CLI::IsMember({"min", "typ", "max"}).description(""));
    app.add_option("--edge", options.edge,
                   "Of the delays between two pins the slowest (the default) or the fastest, or "
                   "that of a rise or a fall")
        ->type_name("EDGE")
        ->check(CLI::IsMember({"slowest", "fastest", "rise", "fall"}).description(""));
    app.add_flag("--float", options.with_float,
                 "Show beside each sum what floating point makes of it");
    app.add_flag("--strict", options.is_strict,
                 "Refuse a delay with digits below a picosecond instead of cutting them off");
    app.parse(argc, argv);
    if (options.path_file.empty() && options.paths.empty() && options.longest == 0) {
        throw CLI::RequiredError("PATHS, --path or --longest");
    }
}

// ------------------------------------------------------------------------------------------------
// The job
// ------------------------------------------------------------------------------------------------

/// The content of a file. Throws std::runtime_error.
std::string content_of(std::string const& path, std::string const& name, char const* expected) {
    std::FILE* const file = path == "-" ? stdin : std::fopen(path.c_str(), "rb");
    std::string content;
    std::size_t size = 0;
    while (file != nullptr && (size == content.size() || content.size() == 0)) {
        content.resize(std::max(2 * content.size(), std::size_t{64 * 1024}));
        size += std::fread(content.data() + size, 1, content.size() - size, file);
    }
    if (file == nullptr || std::ferror(file) != 0) {
        throw std::runtime_error(name + ": " + std::strerror(errno) + "; expected " + expected);
    }
    std::fclose(file);
    content.resize(size);
    return content;
}

/// The first line of the report: what was read.
std::string heading(SDF_READER const& reader, DELAY_GRAPH const& graph, OPTIONS const& options,
                    CLOCK const& clock) {
    std::string text = reader.file() + ": ";
    if (!reader.header().design.empty()) {
        text += "design " + std::string(reader.header().design) + ", ";
    }
    if (!reader.header().program.empty()) {
        text += "written by " + std::string(reader.header().program) + ", ";
    }
    text += std::to_string(graph.delay_count()) + " delays between "
            + std::to_string(graph.pin_count()) + " pins\n";
    if (reader.passed_over() > 0) {
        text += "delays of single pins (PORT, NETDELAY, DEVICE) left out: "
                + std::to_string(reader.passed_over()) + '\n';
    }
    return text + "corner " + options.corner + ", " + options.edge + " edge; clock " + clock.text()
           + ", period " + nanoseconds_text(clock.period()) + " ns" + clock.rest() + '\n';
}

void write(std::string const& text) {
    if (std::fwrite(text.data(), 1, text.size(), stdout) != text.size()
        || std::fflush(stdout) != 0) {
        throw std::runtime_error(std::string("standard output: ") + std::strerror(errno));
    }
}

/// Does what the options ask for. Throws std::runtime_error.
EXIT_STATUS run(OPTIONS const& options) {
    std::vector<NAMED_PATH> paths;
    if (!options.path_file.empty()) {
        paths = read_paths(content_of(options.path_file, options.path_file, "a file with paths"),
                           options.path_file);
    }
    for (std::string const& path : options.paths) {
        paths.push_back(read_path(path, "--path"));
    }

    std::string const file = options.sdf == "-" ? "standard input" : options.sdf;
    std::string const content = content_of(options.sdf, file, "a standard delay file");
    SDF_READER reader(content, file);
    DELAY_GRAPH const graph(reader, corner_named(options.corner));
    CLOCK const clock(*options.clock);
    EDGE const edge = edge_named(options.edge);

    PATH_REPORT report(graph, clock, file, options.with_float, options.is_strict);
    std::string out = heading(reader, graph, options, clock);
    for (NAMED_PATH const& path : paths) {
        report.write(path.name, path.place, hops_of(path, graph, edge), out);
    }
    if (options.longest > 0) {
        std::size_t number = 0;
        for (std::vector<HOP> const& hops : longest_paths(graph, edge, options.longest)) {
            report.write("longest " + std::to_string(++number), file, hops, out);
        }
    }
    report.write_counts(out);
    write(out);
    PATH_COUNTS const& counts = report.counts();
    return counts.met == counts.paths ? STATUS_MET : STATUS_VIOLATED;
}

} // namespace

int main(int argc, char** argv) {
    OPTIONS options;
    CLI::App app(DESCRIPTION, "sdfpaths");
    app.footer(FOOTER);
    app.failure_message([](CLI::App const* program, CLI::Error const& error) {
        return program->get_name() + ": " + CLI::FailureMessage::simple(program, error);
    });
    try {
        read_command_line(app, options, argc, argv);
    } catch (CLI::ParseError const& error) {
        return app.exit(error) == 0 ? STATUS_MET : STATUS_FAILED;
    }
    try {
        return run(options);
    } catch (std::exception const& error) {
        std::fprintf(stderr, "sdfpaths: %s\n", error.what());
        return STATUS_FAILED;
    }
}
