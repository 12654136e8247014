#include "time_command.h"

#include "command_line.h"
#include "filter.h"
#include "text.h"
#include "units.h"

#include "big_sys.h"
#include "err_sys.h"

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

/// The library drops the zeros between a leading point and the first other digit: .05 is read as
/// .5, and .0 is no number.
constexpr char const* LEADING_POINT_ADVICE =
    "zeros directly behind a leading point do not count: write 0 before the point";

constexpr long long HERTZ_TIMES_PICOSECONDS = 1000000000000;

/// The name of the unit in which a category of units is stored.
char const* storage_unit_of(BIG_TIME::TIME_UNIT unit) {
    switch (BIG_TIME::get_unit_category(unit)) {
    case BIG_TIME::FREQUENCY_CATEGORY: return "Hz";
    case BIG_TIME::DATA_RATE_CATEGORY: return "bps";
    default: return "ps";
    }
}

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

/// White space as the library strips it around a text.
bool is_blank(char c) {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// Whether a text has no unit behind its number: its last byte but for white space belongs to a
/// number.
bool is_bare_number(std::string const& text) {
    std::size_t length = text.size();
    while (length > 0 && is_blank(text[length - 1])) {
        --length;
    }
    return length > 0 && (is_digit(text[length - 1]) || text[length - 1] == '.');
}

/// Whether a number loses zeros that matter, as .05 does.
bool loses_leading_zeros(std::string const& text) {
    std::size_t i = 0;
    while (is_blank(text[i])) {
        ++i;
    }
    if (text[i] != '.' || text[i + 1] != '0') {
        return false;
    }
    i = text.find_first_not_of('0', i + 1);
    return i != std::string::npos && is_digit(text[i]);
}

/// Why the library refused a text.
std::string why_refused(std::string const& text, std::optional<BIG_TIME::TIME_UNIT> bare_unit) {
    std::string number;
    std::string unit_text;
    BIG_TIME::separate_time_num_and_unit(text, number, unit_text);
    BIG_TIME::TIME_UNIT unit = big_get_time_unit(unit_text);
    if (unit == BIG_TIME::UNIT_NONE) {
        unit = bare_unit.value_or(unit);
    }
    std::string const canonical = big_get_time_value(number);
    if (canonical.empty() || canonical == "+.") {
        return "is not a time: expected a number and one of " + unit_names();
    }
    if (unit == BIG_TIME::MAX_TIME_UNIT) {
        return "is not a time: " + in_quotes(unit_text) + " is not a unit: expected one of "
               + unit_names();
    }
    if (canonical == ".") { // of .0
        return std::string("is not a time: ") + LEADING_POINT_ADVICE;
    }
    std::string const storage_unit = storage_unit_of(unit);
    if (number[0] == '-' && storage_unit != "ps") {
        return "is not a time: expected a frequency or data rate of 0 or more";
    }
    return "is too large: expected at most " + std::to_string(LLONG_MAX) + ' ' + storage_unit;
}

class TIME_CONVERSION : public CONVERSION {
public:
    explicit TIME_CONVERSION(TIME_OPTIONS const& options);
    ~TIME_CONVERSION() override;

    OUTCOME convert(std::string const& text, std::string& result, std::string& problem) override;
    void add_members(JSON_OBJECT& object) const override;

private:
    bool read(std::string const& text);
    bool is_convertible() const;
    void print(std::string& result) const;
    bool lost_digits(std::string const& text, std::string& problem) const;

    TIME_OPTIONS const m_options;
    BIG_TIME::UNIT_CATEGORY const m_target_category;
    ERR_MESSAGE_SINK const m_previous_sink;

    BIG_TIME m_time;      ///< the value at hand
    std::string m_stored; ///< what is stored of it when digits were cut off, else empty
};

TIME_CONVERSION::TIME_CONVERSION(TIME_OPTIONS const& options)
    : m_options(options), m_target_category(BIG_TIME::get_unit_category(options.target_unit)),
      m_previous_sink(
          err_set_message_sink([this](MSG_ENUMERATED_POST_MSG id, char const*, char const* stored) {
              if (id == MSG_BIG_TIME_TRUNCATED) {
                  m_stored = stored;
              }
          })) {}

TIME_CONVERSION::~TIME_CONVERSION() {
    err_set_message_sink(m_previous_sink);
}

OUTCOME TIME_CONVERSION::convert(std::string const& text, std::string& result,
                                 std::string& problem) {
    m_stored.clear();
    if (!read(text)) {
        problem = why_refused(text, m_options.unit);
        return OUTCOME::REFUSED;
    }
    if (!is_convertible()) {
        problem = std::string("cannot be given in ")
                  + BIG_TIME::get_unit_name(m_options.target_unit)
                  + ": a data rate is no time and no frequency";
        return OUTCOME::REFUSED;
    }
    print(result);
    return lost_digits(text, problem) ? OUTCOME::LOST_DIGITS : OUTCOME::CONVERTED;
}

bool TIME_CONVERSION::read(std::string const& text) {
    return m_options.unit && is_bare_number(text) ? m_time.set_time(text, *m_options.unit, true)
                                                  : m_time.set_time(text, true);
}

/// Whether the value can be given in the target unit. The library would take the count of a data
/// rate for picoseconds or hertz.
bool TIME_CONVERSION::is_convertible() const {
    if (m_options.target != TARGET::UNIT) {
        return true;
    }
    BIG_TIME::UNIT_CATEGORY const own = BIG_TIME::get_unit_category(m_time.get_time_unit());
    return (own == BIG_TIME::DATA_RATE_CATEGORY)
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

/// Whether the result says less than the text did, and how. Rounding to --precision is what the
/// user asked for, and not a loss.
bool TIME_CONVERSION::lost_digits(std::string const& text, std::string& problem) const {
    bool const lost_zeros = loses_leading_zeros(text);
    if (lost_zeros || !m_stored.empty()) {
        std::string stored = m_stored.empty() ? m_time.to_raw_string() : m_stored;
        big_trim_end_blankspace(stored); // of a number without a unit
        problem = "loses digits: it is stored as " + in_quotes(stored);
        if (lost_zeros) {
            problem += std::string(" (") + LEADING_POINT_ADVICE + ')';
        }
        return true;
    }
    if (m_options.target != TARGET::UNIT) {
        return false;
    }
    BIG_TIME::UNIT_CATEGORY const own = BIG_TIME::get_unit_category(m_time.get_time_unit());
    long long const count = m_time.get_time_value();
    if (own == m_target_category || count == 0 || HERTZ_TIMES_PICOSECONDS % count == 0) {
        return false;
    }
    bool const is_period = own == BIG_TIME::FREQUENCY_CATEGORY;
    problem = std::string("loses digits: its ") + (is_period ? "period" : "frequency")
              + " is cut to " + std::to_string(HERTZ_TIMES_PICOSECONDS / count) + ' '
              + storage_unit_of(m_options.target_unit);
    return true;
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

void add_time_options(CLI::App& app, TIME_OPTIONS& options) {
    CLI::Option* const to = add_text_option(
        app, "--to", "UNIT", [&options](std::string const& name) { set_target(options, name); },
        "Print in UNIT; own (default) is the unit of the text, auto the one from ps to s that "
        "suits the magnitude, without trailing zeros");
    CLI::Option* const precision = add_number_option(
        app, "--precision", 0, USHRT_MAX,
        [&options](unsigned long places) {
            options.precision = static_cast<unsigned short>(places);
        },
        "Round half up to N decimal places (default: keep every digit)");
    CLI::Option* const trim =
        app.add_flag("--trim", options.trim, "Drop trailing zeros, all but one behind the point");
    app.add_flag_callback(
           "--raw", [&options] { options.target = TARGET::RAW; },
           "Print every digit in the unit of the text, without trailing zeros; a number without a "
           "unit has a blank behind it")
        ->excludes(to, precision, trim);
    add_text_option(
        app, "--unit", "UNIT",
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
    CLI::App app;
    describe_command(app, "time", "[TEXT]...", description(),
                     FILTER_HELP + ('\n' + std::string(EXAMPLES)));
    add_time_options(app, options);
    add_filter_options(app, filter_options);
    std::vector<std::string> const texts = read_command_line(app, arguments);
    TIME_CONVERSION conversion(options);
    return run_filter(filter_options, texts, conversion);
}
