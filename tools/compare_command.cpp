#include "compare_command.h"

#include "command_line.h"
#include "json.h"
#include "number_text.h"
#include "output.h"
#include "text.h"
#include "time_text.h"
#include "units.h"

#include "big_sys.h"

#include <optional>

namespace {

struct COMPARE_OPTIONS {
    std::optional<BIG_TIME::TIME_UNIT> unit; ///< of a bare number
    bool by_period = false;                  ///< a frequency is compared with a time as its period
    bool is_strict = false;
    bool is_silent = false;
    bool json = false;
};

/// The name of what a value is.
char const* kind_of(BIG_TIME const& time) {
    switch (category_of(time)) {
    case BIG_TIME::FREQUENCY_CATEGORY: return "a frequency";
    case BIG_TIME::DATA_RATE_CATEGORY: return "a data rate";
    default: return "a time";
    }
}

char const* order_of(bool is_equal, bool is_less) {
    return is_equal ? "=" : is_less ? "<" : ">";
}

/// Compares a time with the period of a frequency, exactly: time x frequency with 10^12.
char const* order_with_period(BIG_TIME const& time, BIG_TIME const& frequency) {
    if (time.get_time_value() <= 0) { // a period is above 0
        return "<";
    }
    BIG_ULONG128 const product =
        u128_of(time.get_time_value()) * u128_of(frequency.get_time_value());
    BIG_ULONG128 const one = u128_of(HERTZ_TIMES_PICOSECONDS);
    return order_of(product == one, product < one);
}

/// One comparison of two texts.
class COMPARISON {
public:
    COMPARISON(COMPARE_OPTIONS const& options, std::vector<std::string> const& texts)
        : m_options(options), m_texts(texts) {}

    EXIT_STATUS run();

private:
    bool read();
    bool compare();
    char const* order_by_period() const;
    bool is_mixed_pair() const;
    std::string both() const;
    void note(std::string const& problem);
    void write_object(bool is_answered);

    COMPARE_OPTIONS const& m_options;
    std::vector<std::string> const& m_texts;
    BIG_TIME m_values[2];
    bool m_has_lost_digits = false;
    char const* m_order = ""; ///< "<", "=" or ">"
    std::string m_problem;    ///< what was reported, with "; " between two
    OUTPUT m_output;
};

EXIT_STATUS COMPARISON::run() {
    bool const is_answered = read() && compare();
    if (m_options.json) {
        write_object(is_answered);
    } else if (is_answered && !m_options.is_silent) {
        m_output.add(m_order + std::string("\n"));
    }
    m_output.flush();
    return !is_answered ? STATUS_TROUBLE : *m_order == '=' ? STATUS_EQUAL : STATUS_DIFFERENT;
}

/// Reads both texts, so that all that is wrong is reported at once.
bool COMPARISON::read() {
    TIME_READER reader(m_options.unit);
    bool is_read = true;
    for (std::size_t i = 0; i < 2; ++i) {
        std::string problem;
        OUTCOME const outcome = reader.read(m_texts[i], m_values[i], problem);
        if (outcome == OUTCOME::CONVERTED) {
            continue;
        }
        note("argument " + std::to_string(i + 1) + ": " + in_quotes(m_texts[i]) + ' ' + problem);
        m_has_lost_digits = true;
        is_read = is_read && outcome == OUTCOME::LOST_DIGITS && !m_options.is_strict
                  && !loses_leading_zeros(m_texts[i]);
    }
    return is_read;
}

/// Compares the values. The library would compare the counts of different categories.
bool COMPARISON::compare() {
    BIG_TIME const& a = m_values[0];
    BIG_TIME const& b = m_values[1];
    bool const is_mixed = category_of(a) != category_of(b);
    if (is_mixed && !(is_mixed_pair() && m_options.by_period)) {
        note(
            both() + " cannot be compared: " + kind_of(a) + " and " + kind_of(b)
            + (is_mixed_pair() ? " (--period compares the time with the frequency's period)" : ""));
        return false;
    }
    m_order = is_mixed ? order_by_period() : order_of(a == b, a < b);
    // Digits that are cut off do not change which of two different counts is less.
    if (m_has_lost_digits && (is_mixed || *m_order == '=')) {
        note(both() + " cannot be compared: the digits that are lost decide");
        return false;
    }
    return true;
}

/// The order of a time and a frequency, or the other way round.
char const* COMPARISON::order_by_period() const {
    if (category_of(m_values[0]) == BIG_TIME::TIME_CATEGORY) {
        return order_with_period(m_values[0], m_values[1]);
    }
    char const* const order = order_with_period(m_values[1], m_values[0]);
    return order_of(*order == '=', *order == '>');
}

std::string COMPARISON::both() const {
    return "arguments 1 and 2: " + in_quotes(m_texts[0]) + " and " + in_quotes(m_texts[1]);
}

/// Whether values of different categories are a time and a frequency.
bool COMPARISON::is_mixed_pair() const {
    return category_of(m_values[0]) != BIG_TIME::DATA_RATE_CATEGORY
           && category_of(m_values[1]) != BIG_TIME::DATA_RATE_CATEGORY;
}

void COMPARISON::note(std::string const& problem) {
    m_output.report(problem);
    m_problem += m_problem.empty() ? problem : "; " + problem;
}

void COMPARISON::write_object(bool is_answered) {
    std::string text;
    {
        JSON_OBJECT object(text);
        object.add("a", m_texts[0]);
        object.add("b", m_texts[1]);
        object.add("ok", is_answered);
        if (is_answered) {
            object.add("order", m_order);
        }
        if (!m_problem.empty()) {
            object.add(is_answered ? "warning" : "error", m_problem);
        }
    }
    text += '\n';
    m_output.add(text);
}

void add_compare_options(COMMAND_LINE& line, COMPARE_OPTIONS& options) {
    line.add_flag("--period", options.by_period,
                  "Compare a time with a frequency's period, exactly; that of 0 Hz is longer than "
                  "any time");
    line.add_text(
        "--unit", "UNIT",
        [&options](std::string const& name) { options.unit = unit_named(name, "--unit"); },
        "The unit of numbers that have none (default: they count as picoseconds)");
    line.add_flag("-s,--silent", options.is_silent, "Print nothing; the status is the answer");
    line.add_flag("--strict", options.is_strict, "Refuse a text that would lose digits");
    line.add_flag("--json", options.json, "Write a JSON object");
    line.exclude("--json", {"--silent"});
}

char const* const DESCRIPTION =
    "Compare two times, two frequencies or two data rates, in whatever units.\n"
    "\n"
    "Prints <, = or >: how A stands to B. A text is a decimal number and a unit: 2.5ns, \"-20 "
    "ps\", "
    "\"3 MHz\". Digits finer than a picosecond, a hertz or a bit per second are cut off and "
    "reported; "
    "where they would decide, there is no answer.";

char const* const EXAMPLES =
    "Messages go to standard error and name the argument, the text and what was expected.\n"
    "\n"
    "Exit status: 0 when A and B are equal, 1 when they are not, 2 when they cannot be compared, "
    "for a wrong command line, and when writing failed.\n"
    "\n"
    "Examples:\n"
    "  $ bigq compare '2 ns' '2000 ps'\n"
    "  =\n"
    "  $ bigq compare 1.5GHz 900MHz || echo not equal\n"
    "  >\n"
    "  not equal\n"
    "  $ bigq compare --period 7.9ns '125 MHz'\n"
    "  <\n"
    "  $ bigq compare --silent 1ns 1us; echo $?\n"
    "  1\n";

} // namespace

EXIT_STATUS run_compare(std::vector<std::string> const& arguments) {
    COMPARE_OPTIONS options;
    COMMAND_LINE line("compare", "A B", DESCRIPTION, EXAMPLES);
    add_compare_options(line, options);
    std::vector<std::string> const texts = line.read(arguments);
    if (texts.size() != 2) {
        throw USAGE_ERROR("expected two texts, not " + std::to_string(texts.size()));
    }
    return COMPARISON(options, texts).run();
}
