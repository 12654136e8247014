#include "store_command.h"

#include "command_line.h"
#include "line_reader.h"
#include "output.h"
#include "text.h"
#include "time_text.h"
#include "units.h"

#include "big_fraction_sys.h"
#include "big_sys.h"
#include "pdb_store_sys.h"
#include "store_text.h"

#include <charconv>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

struct STORE_OPTIONS {
    std::string prefix;
    std::optional<std::string> class_name;
    std::optional<BIG_TIME::TIME_UNIT> unit; ///< of bare numbers
    bool is_array = false;
    bool strict = false;
    PDB_STORE_OPTIONS open;
};

/// What a verb works on.
struct STORE_RUN {
    std::string const& address;
    STORE_OPTIONS const& options;
    std::vector<std::string> const& texts; ///< behind the verb
    OUTPUT& output;

    /// Opens the store, and makes it where the verb does that.
    PDB_STORE open() const { return PDB_STORE(address, options.open); }
};

// ------------------------------------------------------------------------------------------------
// Texts of values
// ------------------------------------------------------------------------------------------------

/// A text is refused; what() says how.
class TEXT_ERROR : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A text on the command line, or a line of standard input.
struct GIVEN_TEXT {
    std::string text;
    unsigned long long line; ///< its number; 0 on the command line
};

using GIVEN_TEXTS = std::vector<GIVEN_TEXT>;

/// What stands in front of a message about a text.
std::string place_of(GIVEN_TEXT const& given) {
    return given.line == 0 ? "" : INPUT_NAME + (':' + std::to_string(given.line)) + ": ";
}

template <typename NUMBER>
bool read_number(std::string_view text, NUMBER& number) {
    auto const result = std::from_chars(text.data(), text.data() + text.size(), number);
    return result.ec == std::errc() && result.ptr == text.data() + text.size();
}

OUTCOME read_fraction(std::string const& text, BIG_FRACTION& fraction, std::string& problem) {
    std::size_t const bar = text.find('/');
    long long numerator = 0;
    long long denominator = 0;
    double value = 0;
    if (bar != std::string::npos && read_number(std::string_view(text).substr(0, bar), numerator)
        && read_number(std::string_view(text).substr(bar + 1), denominator) && denominator != 0) {
        fraction = BIG_FRACTION(numerator, denominator);
        return OUTCOME::CONVERTED;
    }
    if (bar == std::string::npos && read_number(text, value) && std::isfinite(value)) {
        fraction = BIG_FRACTION(value);
        return OUTCOME::CONVERTED;
    }
    problem = "is not a fraction: expected two integers as in 3/2, or a decimal number";
    return OUTCOME::REFUSED;
}

std::string text_of(double value) {
    char buffer[32];
    return {buffer, std::to_chars(buffer, buffer + sizeof buffer, value).ptr};
}

std::string text_of(BIG_TIME const& time) {
    if (time.get_time_unit() < BIG_TIME::MIN_TIME_UNITS
        || time.get_time_unit() >= BIG_TIME::MAX_TIME_UNIT) {
        return std::to_string(time.get_time_value()) + " in unit "
               + std::to_string(static_cast<int>(time.get_time_unit())) + ", which is none";
    }
    std::string text = time.to_raw_string();
    big_trim_end_blankspace(text); // of a number without a unit
    return text;
}

std::string text_of(BIG_FREQUENCY const& frequency) {
    return text_of(frequency.get_value()) + " Hz";
}

std::string text_of(BIG_FRACTION const& fraction) {
    if (!fraction.is_fractional()) {
        return text_of(fraction.get_value());
    }
    return std::to_string(fraction.get_numerator()) + '/'
           + std::to_string(fraction.get_denominator());
}

// ------------------------------------------------------------------------------------------------
// The classes that bigq can read and show
// ------------------------------------------------------------------------------------------------

/// Reads texts with a function, and then saves what they say. Reports each that loses digits.
///
/// Throws TEXT_ERROR for one that is refused. The store is not opened then.
template <typename T, typename READ>
void put_as(STORE_RUN const& run, GIVEN_TEXTS const& texts, READ const& read) {
    std::vector<T> values(texts.size());
    for (std::size_t i = 0; i < texts.size(); ++i) {
        std::string const& text = texts[i].text;
        std::string problem = "holds a NUL byte: expected text";
        OUTCOME const outcome = text.find('\0') != std::string::npos
                                    ? OUTCOME::REFUSED
                                    : read(text, values[i], problem);
        if (outcome == OUTCOME::CONVERTED) {
            continue;
        }
        std::string const message = place_of(texts[i]) + in_quotes(text) + ' ' + problem;
        if (outcome == OUTCOME::REFUSED || run.options.strict) {
            throw TEXT_ERROR(message);
        }
        run.output.report(message);
    }
    std::string const& name = run.texts.front();
    PDB_STORE store = run.open();
    if (run.options.is_array) {
        store.put_array(name, values.data(), values.size());
    } else {
        store.put(name, values.front());
    }
}

/// Writes what a name holds, a line for each element.
template <typename T>
void print_as(PDB_STORE& store, PDB_STORE_ENTRY const& entry, OUTPUT& output) {
    auto const print = [&](T const& value) { output.add(text_of(value) + '\n'); };
    if (entry.is_array) {
        store.for_each_element<T>(entry.name,
                                  [&](unsigned long long, T const& element) { print(element); });
        return;
    }
    T value;
    if (store.get(entry.name, value)) {
        print(value);
    }
}

void put_times(STORE_RUN const& run, GIVEN_TEXTS const& texts);
void put_frequencies(STORE_RUN const& run, GIVEN_TEXTS const& texts);
void put_fractions(STORE_RUN const& run, GIVEN_TEXTS const& texts);

struct CLASS_ROW {
    std::string_view name; ///< on the command line
    unsigned class_id;
    void (*put)(STORE_RUN const& run, GIVEN_TEXTS const& texts);
    void (*print)(PDB_STORE& store, PDB_STORE_ENTRY const& entry, OUTPUT& output);
};

constexpr CLASS_ROW CLASSES[] = {
    {"time", 0xd16780d1, put_times, print_as<BIG_TIME>},
    {"frequency", 0x4d709ad8, put_frequencies, print_as<BIG_FREQUENCY>},
    {"fraction", 0xa7a44bef, put_fractions, print_as<BIG_FRACTION>},
};

CLASS_ROW const& class_named(std::string const& name) {
    for (CLASS_ROW const& row : CLASSES) {
        if (row.name == name) {
            return row;
        }
    }
    throw USAGE_ERROR("--class: " + in_quotes(name)
                      + " is not a class: expected time, frequency or fraction");
}

void put_times(STORE_RUN const& run, GIVEN_TEXTS const& texts) {
    TIME_READER reader(run.options.unit);
    put_as<BIG_TIME>(run, texts,
                     [&](std::string const& text, BIG_TIME& time, std::string& problem) {
                         return reader.read(text, time, problem);
                     });
}

void put_frequencies(STORE_RUN const& run, GIVEN_TEXTS const& texts) {
    TIME_READER reader(run.options.unit);
    auto const read = [&](std::string const& text, BIG_FREQUENCY& frequency, std::string& problem) {
        BIG_TIME time;
        OUTCOME const outcome = reader.read(text, time, problem);
        if (outcome == OUTCOME::REFUSED) {
            return outcome;
        }
        if (category_of(time) != BIG_TIME::FREQUENCY_CATEGORY) {
            problem = "is not a frequency: expected a number and one of Hz, kHz, MHz, GHz";
            return OUTCOME::REFUSED;
        }
        frequency = BIG_FREQUENCY(time);
        return outcome;
    };
    put_as<BIG_FREQUENCY>(run, texts, read);
}

void put_fractions(STORE_RUN const& run, GIVEN_TEXTS const& texts) {
    put_as<BIG_FRACTION>(run, texts, read_fraction);
}

// ------------------------------------------------------------------------------------------------
// Verbs
// ------------------------------------------------------------------------------------------------

/// A line on a terminal that says how far long work is, at most five times in a second.
class PROGRESS {
public:
    /// @param writes whether the work writes to standard output, which may be the same terminal
    PROGRESS(char const* what, bool writes)
        : m_what(what),
          m_is_shown(isatty(STDERR_FILENO) == 1 && !(writes && isatty(STDOUT_FILENO) == 1)) {}
    ~PROGRESS() {
        if (m_length > 0) {
            write('\r' + std::string(m_length, ' ') + '\r');
        }
    }
    PROGRESS(PROGRESS const&) = delete;
    PROGRESS& operator=(PROGRESS const&) = delete;

    void tell(unsigned long long count) {
        auto const now = std::chrono::steady_clock::now();
        if (!m_is_shown || now < m_next) {
            return;
        }
        m_next = now + std::chrono::milliseconds(200);
        std::string const text = std::to_string(count) + ' ' + m_what;
        m_length = text.size();
        write('\r' + text);
    }

private:
    static void write(std::string const& text) {
        ssize_t const ignored = ::write(STDERR_FILENO, text.data(), text.size());
        static_cast<void>(ignored);
    }

    char const* m_what;
    bool m_is_shown;
    std::size_t m_length = 0; ///< of the line that is shown
    std::chrono::steady_clock::time_point m_next = std::chrono::steady_clock::now();
};

/// The lines of standard input.
GIVEN_TEXTS lines_of_input(OUTPUT& output) {
    GIVEN_TEXTS lines;
    LINE_READER reader(output);
    for (LINE line; reader.next(line);) {
        lines.push_back({std::string(line.text), line.number});
    }
    return lines;
}

EXIT_STATUS run_put(STORE_RUN const& run) {
    GIVEN_TEXTS texts;
    for (std::size_t i = 1; i < run.texts.size(); ++i) {
        texts.push_back({run.texts[i], 0});
    }
    if (texts.empty()) {
        texts = lines_of_input(run.output);
    }
    if (!run.options.is_array && texts.size() != 1) {
        throw USAGE_ERROR("put: expected one value, or --array");
    }
    try {
        class_named(run.options.class_name.value_or("time")).put(run, texts);
    } catch (TEXT_ERROR const& error) {
        run.output.report(error.what());
        return STATUS_FAILED;
    }
    return STATUS_OK;
}

EXIT_STATUS run_get(STORE_RUN const& run) {
    EXIT_STATUS status = STATUS_OK;
    PDB_STORE store = run.open();
    for (std::string const& name : run.texts) {
        PDB_STORE_ENTRY entry;
        if (!store.find(name, entry)) {
            run.output.report(in_quotes(name) + " holds nothing");
            status = STATUS_FAILED;
            continue;
        }
        CLASS_ROW const* found = nullptr;
        for (CLASS_ROW const& row : CLASSES) {
            found = row.class_id == entry.class_id ? &row : found;
        }
        if (found == nullptr) {
            run.output.report(in_quotes(name) + " holds a " + entry.class_name
                              + ", which bigq cannot show: use dump");
            status = STATUS_FAILED;
            continue;
        }
        found->print(store, entry, run.output);
    }
    run.output.flush();
    return status;
}

/// A name as it stands in a list: as it is, or where it holds more than printable ASCII, or begins
/// with a quotation mark, as in a dump.
std::string listed_name(std::string const& name) {
    bool is_plain = name[0] != '"';
    for (char const c : name) {
        is_plain = is_plain && c >= 0x20 && c <= 0x7e;
    }
    return is_plain ? name : quoted_bytes(name);
}

EXIT_STATUS run_list(STORE_RUN const& run) {
    PDB_STORE_SELECTION selection;
    selection.prefix = run.options.prefix;
    if (run.options.class_name) {
        selection.class_id = class_named(*run.options.class_name).class_id;
    }
    PDB_STORE store = run.open();
    store.list(selection, [&](PDB_STORE_ENTRY const& entry) {
        std::string line = listed_name(entry.name) + '\t' + entry.class_name;
        if (entry.is_array) {
            line += '[' + std::to_string(entry.count) + ']';
        }
        run.output.add(line + '\n');
    });
    run.output.flush();
    return STATUS_OK;
}

EXIT_STATUS run_erase(STORE_RUN const& run) {
    EXIT_STATUS status = STATUS_OK;
    PDB_STORE store = run.open();
    for (std::string const& name : run.texts) {
        if (!store.erase(name)) {
            run.output.report(in_quotes(name) + " holds nothing");
            status = STATUS_FAILED;
        }
    }
    return status;
}

EXIT_STATUS run_check(STORE_RUN const& run) {
    PDB_STORE store = run.open();
    bool is_good = true;
    std::string problems;
    {
        PROGRESS progress("records checked", false); // which is gone when the answer is written
        is_good = store.check([&](std::string const& problem) { problems += problem + '\n'; },
                              [&](unsigned long long count) { progress.tell(count); });
    }
    run.output.add(is_good ? "ok\n" : problems);
    run.output.flush();
    return is_good ? STATUS_OK : STATUS_FAILED;
}

EXIT_STATUS run_dump(STORE_RUN const& run) {
    PDB_STORE store = run.open();
    PROGRESS progress("lines written", true);
    unsigned long long lines = 0;
    store.dump([&](std::string_view line) {
        run.output.add(line);
        progress.tell(++lines);
    });
    run.output.flush();
    return STATUS_OK;
}

EXIT_STATUS run_load(STORE_RUN const& run) {
    PDB_STORE store = run.open();
    PROGRESS progress("lines read", false);
    LINE_READER reader(run.output);
    LINE line;
    store.load([&](std::string& text) {
        if (!reader.next(line)) {
            return false;
        }
        text = line.text;
        text += line.end;
        progress.tell(line.number);
        return true;
    });
    return STATUS_OK;
}

struct VERB {
    std::string_view name;
    PDB_STORE_OPTIONS::ACCESS access;
    std::size_t least; ///< texts behind the verb
    std::size_t most;
    EXIT_STATUS (*run)(STORE_RUN const& run);
};

constexpr VERB VERBS[] = {
    // name    access                         texts         what it does
    {"put", PDB_STORE_OPTIONS::CREATE, 1, SIZE_MAX, run_put},
    {"get", PDB_STORE_OPTIONS::READ, 1, SIZE_MAX, run_get},
    {"list", PDB_STORE_OPTIONS::READ, 0, 0, run_list},
    {"erase", PDB_STORE_OPTIONS::READ_WRITE, 1, SIZE_MAX, run_erase},
    {"check", PDB_STORE_OPTIONS::READ, 0, 0, run_check},
    {"dump", PDB_STORE_OPTIONS::READ, 0, 0, run_dump},
    {"load", PDB_STORE_OPTIONS::CREATE, 0, 0, run_load},
};

VERB const& verb_named(std::string const& name) {
    for (VERB const& verb : VERBS) {
        if (verb.name == name) {
            return verb;
        }
    }
    throw USAGE_ERROR(in_quotes(name)
                      + " is not a verb: expected put, get, list, erase, check, dump or load");
}

void require_texts(VERB const& verb, std::size_t count) {
    std::string const name(verb.name);
    if (count < verb.least) {
        throw USAGE_ERROR(name + ": expected a name");
    }
    if (count > verb.most) {
        throw USAGE_ERROR(name + ": expected nothing behind it");
    }
}

// ------------------------------------------------------------------------------------------------
// The command line
// ------------------------------------------------------------------------------------------------

void add_store_options(COMMAND_LINE& line, STORE_OPTIONS& options) {
    line.add_text(
        "--class", "CLASS",
        [&options](std::string const& name) {
            class_named(name);
            options.class_name = name;
        },
        "What put reads, and what list shows: time (default of put), frequency or fraction");
    line.add_flag("--array", options.is_array, "Put an array of all the values");
    line.add_text(
        "--unit", "UNIT",
        [&options](std::string const& name) { options.unit = unit_named(name, "--unit"); },
        "The unit of numbers that have none");
    line.add_flag("--strict", options.strict, "Refuse a text that would lose digits");
    line.add_text(
        "--prefix", "TEXT", [&options](std::string const& text) { options.prefix = text; },
        "List names that start with TEXT");
    line.add_number(
        "--wait", 0, 86400,
        [&options](unsigned long seconds) { options.open.wait = std::chrono::seconds(seconds); },
        "Wait at most N seconds for other programs (default: 10)");
    line.add_flag("--allow-network-files", options.open.allow_network_files,
                  "Open a file on a network file system, at the risk of losing it");
}

char const* const DESCRIPTION =
    "Keep times, frequencies and fractions in a store.\n"
    "\n"
    "STORE is a file, or postgresql://... for a server. The verbs:\n"
    "  put NAME [VALUE]...  save a value, or with --array all; without a VALUE those\n"
    "                       in the lines of standard input\n"
    "  get NAME...          print what the names hold, a line for each value\n"
    "  list                 print each name, its class and an array's length\n"
    "  erase NAME...        remove the names\n"
    "  check                read and check everything\n"
    "  dump                 write everything as text, exactly\n"
    "  load                 read such a text from standard input";

char const* const EXAMPLES = "Examples:\n"
                             "  $ bigq store delays put clk '2.5 ns'\n"
                             "  $ bigq store delays put --array edges 1ns 2ns 30ps\n"
                             "  $ bigq store delays get clk edges\n"
                             "  2.5 ns\n"
                             "  1.0 ns\n"
                             "  2.0 ns\n"
                             "  30 ps\n"
                             "  $ bigq store delays dump | bigq store copy load\n"
                             "  $ bigq store copy check\n"
                             "  ok\n";

} // namespace

EXIT_STATUS run_store(std::vector<std::string> const& arguments) {
    STORE_OPTIONS options;
    COMMAND_LINE line("store", "STORE VERB [TEXT]...", DESCRIPTION, EXAMPLES);
    add_store_options(line, options);
    std::vector<std::string> texts = line.read(arguments);
    if (texts.size() < 2) {
        throw USAGE_ERROR("expected a store and one of put, get, list, erase, check, dump, load");
    }
    VERB const& verb = verb_named(texts[1]);
    std::string const address = texts[0];
    texts.erase(texts.begin(), texts.begin() + 2);
    require_texts(verb, texts.size());
    options.open.access = verb.access;

    OUTPUT output;
    return verb.run({address, options, texts, output});
}
