#include "time_command.h"

#include "command_line.h"
#include "filter.h"
#include "time_text.h"
#include "units.h"

#include "big_sys.h"

#include <climits>
#include <optional>

namespace {

/// The unit of a result.
enum class TARGET {
    OWN,  ///< the unit that the text gave
    AUTO, ///< the one that suits the magnitude
    RAW,  ///< the unit that the text gave, in the library's canonical form
    UNIT, ///< TIME_OPTIONS::target_unit
};

struct TIME_OPTIONS {
    TARGET target = TARGET::OWN;
    BIG_TIME::TIME_UNIT target_unit = BIG_TIME::UNIT_NONE;
    /// The unit of a bare number.
    std::optional<BIG_TIME::TIME_UNIT> unit;
    /// Decimal places to keep; as many as there are by default.
    unsigned short precision = USHRT_MAX;
    bool trim = false;
};

class TIME_CONVERSION : public CONVERSION {
public:
    explicit TIME_CONVERSION(TIME_OPTIONS const& options)
        : m_options(options), m_target_category(BIG_TIME::get_unit_category(options.target_unit)),
          m_reader(options.unit) {}

    OUTCOME convert(std::string const& text, std::string& result, std::string& problem) override;
    void add_members(JSON_OBJECT& object) const override;

private:
    bool is_convertible() const;
    void print(std::string& result) const;
    bool is_inverted() const;

    TIME_OPTIONS const m_options;
    BIG_TIME::UNIT_CATEGORY const m_target_category;
    TIME_READER m_reader;

    BIG_TIME m_time; ///< the value at hand
};

OUTCOME TIME_CONVERSION::convert(std::string const& text, std::string& result,
                                 std::string& problem) {
    OUTCOME const outcome = m_reader.read(text, m_time, problem);
    if (outcome == OUTCOME::REFUSED) {
        return outcome;
    }
    if (!is_convertible()) {
        problem = std::string("cannot be given in ")
                  + BIG_TIME::get_unit_name(m_options.target_unit)
                  + ": a data rate is no time and no frequency";
        return OUTCOME::REFUSED;
    }
    print(result);
    // Rounding to --precision is what the user asked for, and not a loss.
    if (outcome == OUTCOME::CONVERTED && is_inverted() && is_cut_when_inverted(m_time, problem)) {
        return OUTCOME::LOST_DIGITS;
    }
    return outcome;
}

/// Whether the value can be given in the target unit. The library would take the count of a data
/// rate for picoseconds or hertz.
bool TIME_CONVERSION::is_convertible() const {
    if (m_options.target != TARGET::UNIT) {
        return true;
    }
    return (category_of(m_time) == BIG_TIME::DATA_RATE_CATEGORY)
           == (m_target_category == BIG_TIME::DATA_RATE_CATEGORY);
}

void TIME_CONVERSION::print(std::string& result) const {
    switch (m_options.target) {
    case TARGET::OWN:
        m_time.to_string(&result, m_time.get_time_unit(), m_options.precision, m_options.trim);
        break;
    case TARGET::AUTO: m_time.to_string(&result, m_options.precision); break;
    case TARGET::RAW: result = m_time.to_raw_string(); break;
    case TARGET::UNIT:
        m_time.to_string(&result, m_options.target_unit, m_options.precision, m_options.trim);
        break;
    }
}

/// Whether the result is the period of a frequency or the frequency of a period.
bool TIME_CONVERSION::is_inverted() const {
    return m_options.target == TARGET::UNIT && category_of(m_time) != m_target_category;
}

void TIME_CONVERSION::add_members(JSON_OBJECT& object) const {
    object.add("value", m_time.get_time_value());
    object.add("storage_unit", storage_unit_of(m_time.get_time_unit()));
    object.add("unit", BIG_TIME::get_time_unit_string(m_time.get_time_unit()));
}

void set_target(TIME_OPTIONS& options, std::string const& name) {
    if (name == "own") {
        options.target = TARGET::OWN;
    } else if (name == "auto") {
        options.target = TARGET::AUTO;
    } else {
        options.target_unit = unit_named(name, "--to");
        options.target = TARGET::UNIT;
    }
}

void add_time_options(COMMAND_LINE& line, TIME_OPTIONS& options) {
    line.add_text(
        "--to", "UNIT", [&options](std::string const& name) { set_target(options, name); },
        "Print in UNIT; own (default) is the unit of the text, auto the one from ps to s that "
        "suits the magnitude, without trailing zeros");
    line.add_number(
        "--precision", 0, USHRT_MAX,
        [&options](unsigned long places) {
            options.precision = static_cast<unsigned short>(places);
        },
        "Round half up to N decimal places (default: keep every digit)");
    line.add_flag("--trim", options.trim, "Drop trailing zeros, all but one behind the point");
    line.add_flag(
        "--raw", [&options] { options.target = TARGET::RAW; },
        "Print every digit in the unit of the text, without trailing zeros; a number without a "
        "unit has a blank behind it");
    line.exclude("--raw", {"--to", "--precision", "--trim"});
    line.add_text(
        "--unit", "UNIT",
        [&options](std::string const& name) { options.unit = unit_named(name, "--unit"); },
        "The unit of numbers that have none (default: they stay without a unit and count as "
        "picoseconds)");
}

std::string description() {
    return "Convert times, frequencies and data rates, exactly.\n"
           "\n"
           "A text is a decimal number and a unit: 2.5ns, \"-20 ps\", \"3 MHz\". Without a "
           "TEXT the lines of standard input are converted. The units, in any letter case: "
           + unit_names()
           + ". A frequency given in a unit of time is its period, and the other way round; for 0 "
             "that is INF.";
}

char const* const EXAMPLES =
    "Digits finer than a picosecond, a hertz or a bit per second are cut off and reported. (So are "
    "zeros directly behind a leading point, which do not count: .05 is read as .5, 0.05 is not.)\n"
    "\n"
    "Examples:\n"
    "  $ bigq time --to ps '2.5 ns' 1us\n"
    "  2500 ps\n"
    "  1000000 ps\n"
    "  $ printf 'a,2.5 ns\\nb,20 ps\\n' | bigq time --to ns -d , --field 2\n"
    "  a,2.500 ns\n"
    "  b,0.020 ns\n"
    "  $ bigq time --to auto --precision 1 -- '-1234567 ps' '250 MHz'\n"
    "  -1.2 us\n"
    "  250.0 MHz\n"
    "  $ bigq time --to ns '400 MHz'\n"
    "  2.500 ns\n";

} // namespace

EXIT_STATUS run_time(std::vector<std::string> const& arguments) {
    TIME_OPTIONS options;
    FILTER_OPTIONS filter_options;
    COMMAND_LINE line("time", "[TEXT]...", description(),
                      FILTER_HELP + ('\n' + std::string(EXAMPLES)));
    add_time_options(line, options);
    add_filter_options(line, filter_options);
    std::vector<std::string> const texts = line.read(arguments);
    TIME_CONVERSION conversion(options);
    return run_filter(filter_options, texts, conversion);
}
