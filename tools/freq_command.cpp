#include "freq_command.h"

#include "command_line.h"
#include "filter.h"
#include "number_text.h"
#include "time_text.h"
#include "units.h"

#include "big_sys.h"

#include <charconv>
#include <climits>
#include <optional>

namespace {

struct FREQ_OPTIONS {
    std::optional<BIG_TIME::TIME_UNIT> to;
    std::optional<BIG_TIME::TIME_UNIT> unit; ///< of a bare number
    std::optional<unsigned short> precision; ///< decimal places to keep
};

/// The shortest text that reads as a frequency, without an exponent.
std::string text_of(double hertz) {
    char text[40]; // 1E-7 with 17 digits to 1E12
    return {text, std::to_chars(text, text + sizeof text, hertz, std::chars_format::fixed).ptr};
}

/// A number in a unit 10^places times as large: the point moves, and needless zeros go.
std::string scaled_down(std::string number, std::size_t places) {
    std::size_t point = std::min(number.find('.'), number.size());
    number.erase(point, 1);
    if (point <= places) {
        number.insert(0, places - point + 1, '0');
        point = places + 1;
    }
    number.insert(point - places, 1, '.');
    number.erase(number.find_last_not_of('0') + 1);
    if (number.back() == '.') {
        number.pop_back();
    }
    return number;
}

std::size_t places_of(std::string const& number) {
    std::size_t const point = number.find('.');
    return point == std::string::npos ? 0 : number.size() - point - 1;
}

class FREQ_CONVERSION : public CONVERSION {
public:
    explicit FREQ_CONVERSION(FREQ_OPTIONS const& options)
        : m_options(options), m_reader(options.unit) {}

    OUTCOME convert(std::string const& text, std::string& result, std::string& problem) override;
    void add_members(JSON_OBJECT& object) const override;

private:
    OUTCOME invert_period(std::string& result, std::string& problem);
    OUTCOME invert_frequency(std::string& result, std::string& problem);

    FREQ_OPTIONS const m_options;
    TIME_READER m_reader;

    BIG_TIME m_time;           ///< the value at hand
    std::string m_hertz;       ///< it or its frequency
    std::string m_picoseconds; ///< it or its period
};

OUTCOME FREQ_CONVERSION::convert(std::string const& text, std::string& result,
                                 std::string& problem) {
    OUTCOME const read = m_reader.read(text, m_time, problem);
    if (read == OUTCOME::REFUSED) {
        return read;
    }
    BIG_TIME::UNIT_CATEGORY const category = category_of(m_time);
    if (category == BIG_TIME::DATA_RATE_CATEGORY) {
        problem = "is a data rate: expected a period or a frequency";
        return OUTCOME::REFUSED;
    }
    bool const is_period = category == BIG_TIME::TIME_CATEGORY;
    if (m_options.to && BIG_TIME::get_unit_category(*m_options.to) == category) {
        problem = std::string(is_period ? "is a period" : "is a frequency")
                  + " already: expected a " + (is_period ? "frequency" : "period")
                  + " to convert to " + BIG_TIME::get_time_unit_string(*m_options.to);
        return OUTCOME::REFUSED;
    }
    std::string inversion_problem;
    OUTCOME const inverted = is_period ? invert_period(result, inversion_problem)
                                       : invert_frequency(result, inversion_problem);
    if (read == OUTCOME::CONVERTED) {
        problem = inversion_problem;
    } else if (inverted == OUTCOME::REFUSED) {
        problem += ", which " + inversion_problem;
    }
    return inverted == OUTCOME::REFUSED || read == OUTCOME::CONVERTED ? inverted : read;
}

OUTCOME FREQ_CONVERSION::invert_period(std::string& result, std::string& problem) {
    long long const picoseconds = m_time.get_time_value();
    if (picoseconds <= 0) {
        problem = "has no frequency: expected a period above 0 ps";
        return OUTCOME::REFUSED;
    }
    // A period of 1 ps divided down, as the class takes a period itself only in 32 bits.
    m_hertz = text_of((BIG_FREQUENCY(1) / picoseconds).get_value());
    m_picoseconds = std::to_string(picoseconds);
    BIG_TIME::TIME_UNIT const unit = m_options.to.value_or(BIG_TIME::UNIT_HZ);
    result = scaled_down(m_hertz, static_cast<std::size_t>(BIG_TIME::s_fraction_digits[unit]));
    // Rounding to --precision is what the user asked for, and not a loss.
    bool const is_asked_for = m_options.precision && *m_options.precision < places_of(result);
    if (is_asked_for) {
        big_round_to_precision(&result, *m_options.precision, false);
    }
    result += std::string(" ") + BIG_TIME::get_time_unit_string(unit);
    if (is_asked_for
        || is_quotient(m_hertz, u128_of(HERTZ_TIMES_PICOSECONDS), u128_of(picoseconds))) {
        return OUTCOME::CONVERTED;
    }
    problem = "loses digits: its frequency is rounded to " + m_hertz + " Hz";
    return OUTCOME::LOST_DIGITS;
}

OUTCOME FREQ_CONVERSION::invert_frequency(std::string& result, std::string& problem) {
    BIG_FREQUENCY frequency(m_time);
    if (frequency.get_value() == 0.0) { // none, or above 1 THz
        problem = "has no period in whole picoseconds: expected a frequency from 1 Hz to "
                  + std::to_string(HERTZ_TIMES_PICOSECONDS) + " Hz";
        return OUTCOME::REFUSED;
    }
    long long picoseconds = 0;
    frequency.compute_period(&picoseconds);
    m_hertz = std::to_string(m_time.get_time_value());
    m_picoseconds = std::to_string(picoseconds);
    BIG_TIME(picoseconds, BIG_TIME::UNIT_PS)
        .to_string(&result, m_options.to.value_or(BIG_TIME::UNIT_PS),
                   m_options.precision.value_or(USHRT_MAX), false);
    return is_cut_when_inverted(m_time, problem) ? OUTCOME::LOST_DIGITS : OUTCOME::CONVERTED;
}

void FREQ_CONVERSION::add_members(JSON_OBJECT& object) const {
    object.add("hertz", m_hertz);
    object.add("picoseconds", m_picoseconds);
}

/// Throws USAGE_ERROR for anything but a unit of time or frequency.
BIG_TIME::TIME_UNIT clock_unit_named(std::string const& name, std::string const& option) {
    BIG_TIME::TIME_UNIT const unit = unit_named(name, option);
    if (BIG_TIME::get_unit_category(unit) == BIG_TIME::DATA_RATE_CATEGORY) {
        throw USAGE_ERROR(option + ": " + name
                          + " is a unit of data rates: expected one of time or "
                            "frequency");
    }
    return unit;
}

void add_freq_options(COMMAND_LINE& line, FREQ_OPTIONS& options) {
    line.add_text(
        "--to", "UNIT",
        [&options](std::string const& name) { options.to = clock_unit_named(name, "--to"); },
        "Print in UNIT: of frequency for periods, of time for frequencies (default: Hz and ps)");
    line.add_number(
        "--precision", 0, USHRT_MAX,
        [&options](unsigned long places) {
            options.precision = static_cast<unsigned short>(places);
        },
        "Round half up to N decimal places (default: keep every digit)");
    line.add_text(
        "--unit", "UNIT",
        [&options](std::string const& name) { options.unit = clock_unit_named(name, "--unit"); },
        "The unit of numbers that have none (default: they are periods in picoseconds)");
}

char const* const DESCRIPTION =
    "Convert clock periods into frequencies, and frequencies into periods.\n"
    "\n"
    "A TEXT is a decimal number and a unit: 8ns, \"125 MHz\". Without a TEXT the lines of standard "
    "input are converted. A period, in whole picoseconds, gives the nearest frequency that a "
    "double holds; a frequency, in whole hertz, gives a period that is cut to whole picoseconds.";

char const* const EXAMPLES = "A result that is not exact is reported; --strict refuses it.\n"
                             "\n"
                             "Examples:\n"
                             "  $ bigq freq 8ns '125 MHz'\n"
                             "  125000000 Hz\n"
                             "  8000 ps\n"
                             "  $ bigq freq --to MHz --precision 3 3ns\n"
                             "  333.333 MHz\n"
                             "  $ bigq freq --to ns 400MHz\n"
                             "  2.500 ns\n"
                             "  $ printf 'clk,3 MHz\\n' | bigq freq -d, --field 2\n"
                             "  bigq: standard input:1: \"3 MHz\" loses digits: its period is cut "
                             "to 333333 ps\n"
                             "  clk,333333 ps\n";

} // namespace

EXIT_STATUS run_freq(std::vector<std::string> const& arguments) {
    FREQ_OPTIONS options;
    FILTER_OPTIONS filter_options;
    COMMAND_LINE line("freq", "[TEXT]...", DESCRIPTION,
                      FILTER_HELP + ('\n' + std::string(EXAMPLES)));
    add_freq_options(line, options);
    add_filter_options(line, filter_options);
    std::vector<std::string> const texts = line.read(arguments);
    FREQ_CONVERSION conversion(options);
    return run_filter(filter_options, texts, conversion);
}
