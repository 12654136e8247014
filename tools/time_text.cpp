#include "time_text.h"

#include "text.h"
#include "units.h"

#include <climits>

namespace {

/// The library drops the zeros between a leading point and the first other digit: .05 is read as
/// .5, and .0 is no number.
constexpr char const* LEADING_POINT_ADVICE =
    "zeros directly behind a leading point do not count: write 0 before the point";

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

} // namespace

TIME_READER::TIME_READER(std::optional<BIG_TIME::TIME_UNIT> bare_unit)
    : m_bare_unit(bare_unit),
      m_previous_sink(
          err_set_message_sink([this](MSG_ENUMERATED_POST_MSG id, char const*, char const* stored) {
              if (id == MSG_BIG_TIME_TRUNCATED) {
                  m_stored = stored;
              }
          })) {}

TIME_READER::~TIME_READER() {
    err_set_message_sink(m_previous_sink);
}

OUTCOME TIME_READER::read(std::string const& text, BIG_TIME& time, std::string& problem) {
    m_stored.clear();
    bool const is_read = m_bare_unit && is_bare_number(text)
                             ? time.set_time(text, *m_bare_unit, true)
                             : time.set_time(text, true);
    if (!is_read) {
        problem = why_refused(text, m_bare_unit);
        return OUTCOME::REFUSED;
    }
    bool const lost_zeros = loses_leading_zeros(text);
    if (!lost_zeros && m_stored.empty()) {
        return OUTCOME::CONVERTED;
    }
    std::string stored = m_stored.empty() ? time.to_raw_string() : m_stored;
    big_trim_end_blankspace(stored); // of a number without a unit
    problem = "loses digits: it is stored as " + in_quotes(stored);
    if (lost_zeros) {
        problem += std::string(" (") + LEADING_POINT_ADVICE + ')';
    }
    return OUTCOME::LOST_DIGITS;
}

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

BIG_TIME::UNIT_CATEGORY category_of(BIG_TIME const& time) {
    return BIG_TIME::get_unit_category(time.get_time_unit());
}

char const* storage_unit_of(BIG_TIME::TIME_UNIT unit) {
    switch (BIG_TIME::get_unit_category(unit)) {
    case BIG_TIME::FREQUENCY_CATEGORY: return "Hz";
    case BIG_TIME::DATA_RATE_CATEGORY: return "bps";
    default: return "ps";
    }
}

bool is_cut_when_inverted(BIG_TIME const& time, std::string& problem) {
    long long const count = time.get_time_value();
    if (count == 0 || HERTZ_TIMES_PICOSECONDS % count == 0) {
        return false;
    }
    bool const is_period = category_of(time) == BIG_TIME::FREQUENCY_CATEGORY;
    problem = std::string("loses digits: its ") + (is_period ? "period" : "frequency")
              + " is cut to " + std::to_string(HERTZ_TIMES_PICOSECONDS / count)
              + (is_period ? " ps" : " Hz");
    return true;
}
