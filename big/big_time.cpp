// Times, frequencies and data rates.
//
// A value is a signed 64-bit count of the storage unit of its category, and the unit in which it
// was given:
//
//     text        count      unit        the count is in
//     2.5 ns      2500       UNIT_NS     picoseconds
//     3 MHz       3000000    UNIT_MHZ    hertz
//     1.5 Gbps    1500000000 UNIT_GBPS   bits per second
//     7           7          UNIT_NONE   whatever the caller means
//
// Counts run from -2^63 to 2^63 - 1; as picoseconds that is about 106 days. Parsing scales decimal
// text by moving the point and cuts what the storage unit cannot hold; printing places the point
// and rounds half up on the magnitude. No floating point takes part in either.

#include "big_frame.h"

#include "big_digits.h"
#include "big_sys.h"
#include "big_text.h"
#include "big_unit_names.h"
#include "big_units.h"
#include "cfg_sys.h"
#include "gen_sys.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cmath>
#include <cstring>
#include <iterator>
#include <string_view>

#define BIG_SOURCE_PATH "big/big_time"

static MEM_INITIALIZER s_mem_initializer("BIG");

BIG_FREQUENCY BIG_FREQUENCY::BIG_INVALID_FREQUENCY;

// ------------------------------------------------------------------------------------------------
// Units and their tables
// ------------------------------------------------------------------------------------------------

namespace {

#define ENUMERATOR(unit, text, power) BIG_TIME::unit,
constexpr BIG_TIME::TIME_UNIT unit_of_row[] = {BIG_UNIT_ROWS(ENUMERATOR)};
#undef ENUMERATOR

constexpr bool every_unit_has_its_row() {
    for (int row = 0; row < BIG_TIME::MAX_TIME_UNIT; ++row)
        if (unit_of_row[row] != row)
            return false;
    return true;
}
static_assert(std::size(unit_of_row) == BIG_TIME::MAX_TIME_UNIT && every_unit_has_its_row(),
              "BIG_UNIT_ROWS must list every unit, in the order of its number");

/// The unit argument of the printing operations that stands for the value's own unit.
constexpr int own_unit = -1;

} // namespace

#define TEXT(unit, text, power) text,
char const* const BIG_TIME::s_unit_strings[] = {BIG_UNIT_ROWS(TEXT)};
#undef TEXT

#define POWER(unit, text, power) power,
int const BIG_TIME::s_fraction_digits[] = {BIG_UNIT_ROWS(POWER)};
#undef POWER

long long const BIG_TIME::s_power_10_table[] = {
    1LL,
    10LL,
    100LL,
    1000LL,
    10000LL,
    100000LL,
    1000000LL,
    10000000LL,
    100000000LL,
    1000000000LL,
    10000000000LL,
    100000000000LL,
    1000000000000LL,
    10000000000000LL,
    100000000000000LL,
    1000000000000000LL,
    10000000000000000LL,
    100000000000000000LL,
    1000000000000000000LL,
};

char const* BIG_TIME::get_time_unit_string(TIME_UNIT unit) {
    BIG_REQUIRE(unit >= MIN_TIME_UNITS);
    BIG_REQUIRE(unit < MAX_TIME_UNIT);
    return s_unit_strings[unit];
}

char const* BIG_TIME::get_unit_name(int index) {
    BIG_REQUIRE(index >= MIN_TIME_UNITS && index < MAX_TIME_UNIT);
    return s_unit_strings[index];
}

unsigned short BIG_TIME::get_max_precision_for(TIME_UNIT unit) {
    BIG_REQUIRE(unit >= MIN_TIME_UNITS);
    BIG_REQUIRE(unit < MAX_TIME_UNIT);
    int const max_precision = s_fraction_digits[unit];
    // Fails for femtoseconds on purpose: none of their decimal places survives in picoseconds.
    BIG_REQUIRE(max_precision >= 0 && max_precision <= USHRT_MAX);
    return static_cast<unsigned short>(max_precision);
}

long long BIG_TIME::get_power_table(unsigned long index) {
    BIG_REQUIRE(index < MAX_DIGITS_IN_SMALLEST_TIME_UNIT);
    return s_power_10_table[index];
}

bool BIG_TIME::extract_time_units(char const* text, TIME_UNIT& unit) {
    if (text == nullptr) {
        unit = UNIT_NONE;
        mem_msg_vdebug("BIG_TIME::extract_time_units: Time unit string is NULL.");
        return true;
    }
    TIME_UNIT const named = big_get_time_unit(text);
    if (named == MAX_TIME_UNIT) {
        mem_msg_vdebug("BAD Time Unit. Please checking your time unit input");
        return false;
    }
    unit = named;
    return true;
}

// ------------------------------------------------------------------------------------------------
// Construction and setting from numbers
// ------------------------------------------------------------------------------------------------

BIG_TIME::BIG_TIME(long long value, std::string const& unit_text) {
    if (!set_time(value, unit_text))
        tell_constructor_failed();
}

void BIG_TIME::tell_constructor_failed() {
    mem_msg_vdebug("BIG_TIME constructor failed");
}

bool BIG_TIME::set_time(long long value, std::string const& unit_text) {
    return set_time(value, big_get_time_unit(unit_text));
}

// ------------------------------------------------------------------------------------------------
// Construction and setting from text
// ------------------------------------------------------------------------------------------------
//
//     text   = blanks [number] blanks [unit] blanks
//     number = ["+" | "-"] digits ["." [digits]] | ["+" | "-"] "." digits
//     unit   = a name of BIG_UNIT_ROWS in either letter case
//
// Nearly all texts are plain: at least one digit before the point, at most 18 digits, and a value
// that fits and needs no report. The plain reader below takes those in one pass over the
// characters, without a copy, and is compiled into both functions that use it as one piece.
// Whatever it does not take, for whatever reason, goes through the general reader, which edits the
// number as text and settles every oddity and every report.

namespace {

/// A plain number as scanned: digits x 10^-places.
struct PLAIN_NUMBER {
    unsigned long long digits = 0; ///< all digits, at most 18, as one integer
    int places = 0;                ///< how many of them stand after the point
    bool negative = false;
};

constexpr std::ptrdiff_t plain_digits_at_most = 18; // any 18 digits fit 64 bits

/// Scans ["+" | "-"] digits ["." [digits]] from `at` and moves `at` behind it.
[[gnu::always_inline]] inline bool scan_plain_number(char const*& at, char const* end,
                                                     PLAIN_NUMBER& number) {
    char const* p = at;
    if (p != end && (*p == '-' || *p == '+'))
        number.negative = *p++ == '-';
    char const* const first = p;
    unsigned long long digits = 0; // wraps only on texts that are refused below
    for (; p != end && big_is_digit(*p); ++p)
        digits = digits * 10 + static_cast<unsigned long long>(*p - '0');
    std::ptrdiff_t count = p - first;
    if (count == 0)
        return false; // zeros after a leading point are the general reader's
    if (p != end && *p == '.') {
        char const* const behind_point = ++p;
        for (; p != end && big_is_digit(*p); ++p)
            digits = digits * 10 + static_cast<unsigned long long>(*p - '0');
        number.places = static_cast<int>(std::min(p - behind_point, plain_digits_at_most + 1));
        count += p - behind_point;
    }
    number.digits = digits;
    at = p;
    return count <= plain_digits_at_most;
}

/// Scales a plain number into the storage unit. False for what the general reader must settle.
[[gnu::always_inline]] inline bool store_plain_number(PLAIN_NUMBER const& number,
                                                      BIG_TIME::TIME_UNIT unit, bool post_messages,
                                                      long long& value) {
    int const resolution = BIG_TIME::s_fraction_digits[unit]; // below 0 for femtoseconds
    unsigned long long magnitude = number.digits;
    if (number.places <= resolution) {
        auto const scale =
            static_cast<unsigned long long>(BIG_TIME::s_power_10_table[resolution - number.places]);
        if (__builtin_mul_overflow(magnitude, scale, &magnitude) || magnitude > LLONG_MAX)
            return false;
    } else {
        // At most 18 digits are cut to nothing by that many places and more.
        auto const scale = static_cast<unsigned long long>(BIG_TIME::s_power_10_table[std::min(
            number.places - resolution, static_cast<int>(plain_digits_at_most))]);
        unsigned long long const kept = magnitude / scale;
        if (post_messages && kept * scale != magnitude)
            return false;
        magnitude = kept;
    }
    if (number.negative && magnitude != 0
        && BIG_TIME::get_unit_category(unit) != BIG_TIME::TIME_CATEGORY)
        return false;
    value = big_with_sign(magnitude, number.negative);
    return true;
}

[[gnu::always_inline]] inline std::string_view without_blanks_around(std::string_view text) {
    while (!text.empty() && big_is_blank(text.front()))
        text.remove_prefix(1);
    while (!text.empty() && big_is_blank(text.back()))
        text.remove_suffix(1);
    return text;
}

/// Reads a plain number in a unit.
bool read_plain_number(std::string_view text, BIG_TIME::TIME_UNIT unit, bool post_messages,
                       long long& value) {
    text = without_blanks_around(text);
    char const* at = text.data();
    char const* const end = at + text.size();
    PLAIN_NUMBER number;
    return scan_plain_number(at, end, number) && at == end
           && store_plain_number(number, unit, post_messages, value);
}

/// Reads a plain number and its unit.
bool read_plain_time(std::string_view text, bool post_messages, long long& value,
                     BIG_TIME::TIME_UNIT& unit) {
    text = without_blanks_around(text);
    char const* at = text.data();
    char const* const end = at + text.size();
    PLAIN_NUMBER number;
    if (!scan_plain_number(at, end, number))
        return false;
    while (at != end && big_is_blank(*at))
        ++at;
    unit =
        at == end ? BIG_TIME::UNIT_NONE : big_plain_unit({at, static_cast<std::size_t>(end - at)});
    return unit != BIG_TIME::MAX_TIME_UNIT
           && store_plain_number(number, unit, post_messages, value);
}

/// Whether a digit other than 0 stands in a text.
bool has_nonzero_digit(std::string_view digits) {
    return digits.find_first_not_of('0') != std::string_view::npos;
}

/// Cuts the digits of `number` (an unsigned number) that are finer than a unit of this resolution
/// holds, and says whether any of them was not 0. What is cut from the integer part, as
/// femtoseconds are, comes back as zeros.
bool cut_to_resolution(std::string& number, int resolution) {
    std::size_t const point = number.find('.');
    std::size_t const digits_before_point = std::min(point, number.size());
    std::ptrdiff_t places = 0;
    if (point != std::string::npos) {
        places = static_cast<std::ptrdiff_t>(number.size() - point - 1);
        number.erase(point, 1);
    }
    bool truncated = false;
    if (places > resolution) { // without a point only for femtoseconds
        auto const drop = static_cast<std::size_t>(places - resolution);
        if (drop >= number.size()) {
            truncated = has_nonzero_digit(number);
            number.assign(1, '0');
            return truncated;
        }
        truncated = has_nonzero_digit(std::string_view(number).substr(number.size() - drop));
        number.erase(number.size() - drop);
    }
    if (digits_before_point < number.size())
        number.insert(digits_before_point, 1, '.');
    else
        number.append(digits_before_point - number.size(), '0');
    return truncated;
}

} // namespace

BIG_TIME::BIG_TIME(std::string const& number_text, TIME_UNIT unit, bool post_messages) {
    if (!set_time(number_text, unit, post_messages))
        tell_constructor_failed();
}

BIG_TIME::BIG_TIME(std::string const& number_text, std::string const& unit_text,
                   bool post_messages) {
    if (!set_time(number_text, unit_text, post_messages))
        tell_constructor_failed();
}

BIG_TIME::BIG_TIME(std::string const& text, bool post_messages) {
    if (!set_time(text, post_messages))
        tell_constructor_failed();
}

bool BIG_TIME::set_time(std::string const& number_text, TIME_UNIT unit, bool post_messages) {
    long long value = 0;
    int const status = string_to_big_int(number_text, unit, value, post_messages);
    *this = BIG_TIME();
    if (status == 0) {
        m_value = value;
        m_unit = unit;
        return true;
    }
    if (post_messages) {
        std::string const given = is_unit(unit) ? number_text + s_unit_strings[unit] : number_text;
        err_post_enumerated_msg(MSG_BIG_ILLEGAL_TIME, given.c_str(), nullptr);
    }
    return false;
}

bool BIG_TIME::set_time(std::string const& number_text, std::string const& unit_text,
                        bool post_messages) {
    TIME_UNIT const unit = big_get_time_unit(unit_text);
    *this = BIG_TIME();
    if (unit == MAX_TIME_UNIT) {
        if (post_messages)
            err_post_enumerated_msg(MSG_BIG_ILLEGAL_TIME, (number_text + unit_text).c_str(),
                                    nullptr);
        return false;
    }
    return set_time(number_text, unit, post_messages);
}

bool BIG_TIME::set_time(std::string const& text, bool post_messages) {
    *this = BIG_TIME();
    long long value = 0;
    TIME_UNIT unit = UNIT_NONE;
    if (read_plain_time(text, post_messages, value, unit)) {
        m_value = value;
        m_unit = unit;
        return true;
    }
    std::string number_text;
    std::string unit_text;
    separate_time_num_and_unit(text, number_text, unit_text);
    return set_time(number_text, unit_text, post_messages);
}

BIG_TIME& BIG_TIME::operator=(std::string const& text) {
    set_time(text, true);
    return *this;
}

void BIG_TIME::separate_time_num_and_unit(std::string const& text, std::string& number,
                                          std::string& unit) {
    std::string const stripped = gen_remove_leading_and_trailing_white_spaces(text);
    std::size_t const number_length =
        std::min(stripped.find_first_not_of(big_number_characters), stripped.size());
    number.assign(stripped, 0, number_length);
    unit.assign(stripped, number_length);
    big_trim_begin_blankspace(unit);
}

bool BIG_TIME::format_time_string(std::string& text, TIME_UNIT const& unit, bool post_messages) {
    if (!is_unit(unit))
        return false;
    std::string number = big_get_time_value(text);
    if (number.empty())
        return false;
    bool const negative = number.front() == '-';
    if (negative || number.front() == '+')
        number.erase(0, 1);
    bool const truncated = cut_to_resolution(number, s_fraction_digits[unit]);
    if (negative && number != "0")
        number.insert(0, 1, '-');
    if (post_messages && truncated) {
        std::string const suffix = std::string(" ") + get_unit_name(unit);
        err_post_enumerated_msg(MSG_BIG_TIME_TRUNCATED, (text + suffix).c_str(),
                                (number + suffix).c_str());
    }
    if (number.empty())
        return false; // a lone point
    text = number;
    return true;
}

int BIG_TIME::string_to_big_int(std::string const& text, TIME_UNIT const& unit, long long& value,
                                bool post_messages) {
    constexpr int legal = 0;
    constexpr int illegal = 1;
    constexpr int unit_out_of_range = 2;

    if (!is_unit(unit))
        return unit_out_of_range;
    if (read_plain_number(text, unit, post_messages, value))
        return legal;

    std::string digits = text;
    if (!format_time_string(digits, unit, post_messages))
        return illegal;
    bool const negative = digits.front() == '-';
    if (negative)
        digits.erase(0, 1);
    int places = 0;
    if (std::size_t const point = digits.find('.'); point != std::string::npos) {
        digits.erase(point, 1);
        places = static_cast<int>(digits.size() - point);
    }

    // Move the point to the storage unit: what is left is the count in decimal.
    int const shift = s_fraction_digits[unit] - places;
    if (shift < 0) {
        auto const drop = static_cast<std::size_t>(-shift);
        digits.erase(drop < digits.size() ? digits.size() - drop : 1);
    } else {
        std::size_t const new_size = digits.size() + static_cast<std::size_t>(shift);
        BIG_REQUIRE(new_size > 0);
        digits.resize(new_size, '0');
    }

    char const* const largest = "9223372036854775807";
    std::size_t const largest_length = std::strlen(largest);
    if (digits.size() > largest_length
        || (digits.size() == largest_length && gen_strcmp(digits.c_str(), largest) > 0))
        return illegal;
    long long const count = negative ? -big_atoi64(digits) : big_atoi64(digits);
    if (!is_logically_legal(count, unit))
        return illegal;
    value = count;
    return legal;
}

int BIG_TIME::is_legal(std::string const& number_text, TIME_UNIT unit) {
    long long value = 0;
    return string_to_big_int(number_text, unit, value, false);
}

int BIG_TIME::is_legal(std::string const& number_text, std::string const& unit_text) {
    return is_legal(number_text, big_get_time_unit(unit_text));
}

int BIG_TIME::is_legal(std::string const& text) {
    std::string number_text;
    std::string unit_text;
    separate_time_num_and_unit(text, number_text, unit_text);
    return is_legal(number_text, unit_text);
}

bool BIG_TIME::will_value_be_truncated(char const* text, std::string& truncated_text) {
    if (text == nullptr || *text == '\0')
        return false;
    std::string const given = text; // text may be the content of truncated_text
    truncated_text = given;         // the answer wherever nothing is cut

    std::string number = given;
    big_trim_begin_blankspace(number);
    big_trim_end_blankspace(number);
    std::size_t const number_end = number.find_last_of("0123456789.");
    if (number_end == std::string::npos)
        return false;
    std::string const unit_text = number.substr(number_end + 1);
    number.erase(number_end + 1);
    if (big_is_no_token(unit_text))
        return false;
    TIME_UNIT const unit = big_get_time_unit(unit_text);
    if (unit == MAX_TIME_UNIT)
        return false;

    bool const has_sign = number.front() == '+' || number.front() == '-';
    if (has_sign)
        number.erase(0, 1);
    constexpr std::size_t last_point_looked_at = 19;
    std::size_t const point = number.find('.');
    std::ptrdiff_t places = 0;
    if (point <= last_point_looked_at) {
        number.erase(point, 1);
        places = static_cast<std::ptrdiff_t>(number.size() - point);
    }
    int const resolution = s_fraction_digits[unit];
    if (resolution >= places)
        return false;
    auto const drop = static_cast<std::size_t>(places - resolution);
    if (drop >= number.size()) {
        truncated_text = std::string("0 ") + s_unit_strings[unit];
        return true;
    }
    if (!has_nonzero_digit(std::string_view(number).substr(number.size() - drop)))
        return false;

    // Callers rely on what follows to the letter: a '-' for either sign, the point at its index in
    // the number without sign (so one place early behind a sign), and std::out_of_range where
    // fewer digits are kept than stood before the point.
    number.erase(number.size() - drop);
    truncated_text = has_sign ? "-" + number : number;
    if (truncated_text.back() == '.')
        truncated_text.pop_back();
    if (point != std::string::npos)
        truncated_text.replace(point, 0, 1, '.');
    truncated_text += ' ';
    truncated_text += s_unit_strings[unit];
    return true;
}

// ------------------------------------------------------------------------------------------------
// Storage
// ------------------------------------------------------------------------------------------------

long long BIG_TIME::scale_by_all_rules(long long value, TIME_UNIT unit) {
    if (is_frequency(unit) || is_data_rate(unit)) {
        if (value < 0)
            BIG_FAIL("Wrong concept: Negative frequency!");
        if (value == 0)
            BIG_FAIL("Wrong concept: 0 MHz!");
    }
    if (unit == UNIT_NONE)
        return value;
    get_time_unit_string(unit); // refuses what is no unit
    unsigned long long magnitude = big_magnitude(value);
    int const power = s_fraction_digits[unit];
    if (power < 0)
        magnitude /= static_cast<unsigned long long>(s_power_10_table[-power]);
    else if (__builtin_mul_overflow(
                 magnitude, static_cast<unsigned long long>(s_power_10_table[power]), &magnitude))
        overflow_error();
    if (magnitude > static_cast<unsigned long long>(LLONG_MAX) + (value < 0 ? 1 : 0))
        overflow_error();
    return big_with_sign(magnitude, value < 0);
}

void BIG_TIME::report_period_of_zero() {
    BIG_FAIL("Integer division by zero");
}

bool BIG_TIME::safe_to_convert(unsigned int byte_count) const {
    unsigned int const bits = 8 * byte_count;
    if (bits > 64)
        return true;
    long long const count = get_storage_number();
    // In double, as callers rely on: 2^55 - 1 and 2^63 - 1 round up by one.
    double const limit = std::ldexp(1.0, static_cast<int>(bits) - 1) - (count < 0 ? 0.0 : 1.0);
    return static_cast<unsigned long long>(limit) >= big_magnitude(count);
}

bool BIG_TIME::is_logically_legal(long long const& value, TIME_UNIT const& unit) {
    if (value >= 0)
        return true;
    if (is_frequency(unit)) {
        mem_msg_vdebug("Wrong concept: Non-positive frequency!");
        return false;
    }
    if (is_data_rate(unit)) {
        mem_msg_vdebug("Wrong concept: Negative BPS!");
        return false;
    }
    return true;
}

// ------------------------------------------------------------------------------------------------
// Arithmetic
// ------------------------------------------------------------------------------------------------

// The operators are compiled into their callers; here are their reports.

void BIG_TIME::report_negation_overflow() {
    BIG_FAIL("Overflow");
}

void BIG_TIME::report_division_by_zero() {
    BIG_FAIL("Division by Zero");
}

void BIG_TIME::report_modulo_by_zero() {
    BIG_FAIL("Modulo by Zero");
}

// ------------------------------------------------------------------------------------------------
// Comparison and change of unit
// ------------------------------------------------------------------------------------------------

namespace {

/// The switches of operator<, read in this order. Strict mode implies the last one, which is then
/// not read.
struct LESS_SWITCHES {
    bool debug_messages_on = cfg_is_on("big_time_debug_unit_mismatches");
    bool ie_on_unit_mismatch_strict = cfg_is_on("big_time_strict_unit_mode");
    bool ie_on_unit_mismatch =
        ie_on_unit_mismatch_strict || cfg_is_on("big_time_ie_on_unit_mismatch");
};

} // namespace

std::atomic<bool> BIG_TIME::s_equal_is_by_default = false;
std::atomic<bool> BIG_TIME::s_less_is_by_default = false;

bool BIG_TIME::is_equal_by_switches(BIG_TIME const& other) const {
    static bool const strict_unit_mode = cfg_is_on("big_time_strict_unit_mode");
    if (!strict_unit_mode) {
        s_equal_is_by_default.store(true, std::memory_order_relaxed);
        return *this == other;
    }
    if (m_value != other.m_value)
        return false;
    UNIT_CATEGORY const a = get_unit_category(get_time_unit());
    UNIT_CATEGORY const b = get_unit_category(other.get_time_unit());
    // Strict mode knows only one order of the two, as callers rely on.
    return a == b || (a == DATA_RATE_CATEGORY && b == FREQUENCY_CATEGORY);
}

bool BIG_TIME::is_less_by_switches(BIG_TIME const& other) const {
    static LESS_SWITCHES const switches;
    bool const is_less = m_value < other.m_value;
    if (!(switches.debug_messages_on || switches.ie_on_unit_mismatch)) {
        s_less_is_by_default.store(true, std::memory_order_relaxed);
        return is_less;
    }
    if (m_value == 0 || other.m_value == 0)
        return is_less;
    UNIT_CATEGORY const a = get_unit_category(get_time_unit());
    UNIT_CATEGORY const b = get_unit_category(other.get_time_unit());
    if (a == b)
        return is_less;
    mem_msg_vdebug("Attempting to compare incompatible times \"%s\" with \"%s\"!  This behavior is "
                   "deprecated!",
                   to_string(2).c_str(), other.to_string(2).c_str());
    if (!switches.ie_on_unit_mismatch)
        return is_less;
    if (!switches.ie_on_unit_mismatch_strict && is_frequency_against_rate(a, b))
        return is_less;
    BIG_FAIL("Cannot compare incompatible units!");
}

void BIG_TIME::set_time_unit(TIME_UNIT unit) {
    static bool const ie_on_unit_conversion_error =
        cfg_is_on("big_time_ie_on_unit_conversion_error");
    if (unit <= UNIT_NONE || unit >= MAX_TIME_UNIT)
        BIG_FAIL("Time Unit out of range");
    if (unit == m_unit)
        return;
    if (get_unit_category(unit) == TIME_CATEGORY
        && get_unit_category(get_time_unit()) == TIME_CATEGORY) {
        m_unit = unit;
        return;
    }
    char const* const wanted = get_time_unit_string(unit);
    char const* const current = get_time_unit_string(get_time_unit());
    mem_msg_vdebug("Can't assign \"%s\" time unit to BIG_TIME object already in \"%s\" units",
                   wanted, current);
    if (ie_on_unit_conversion_error)
        BIG_FAIL((std::string("Can't assign \"") + wanted
                  + "\" time unit to BIG_TIME object already in \"" + current + "\" units")
                     .c_str());
}

// ------------------------------------------------------------------------------------------------
// Text
// ------------------------------------------------------------------------------------------------

namespace {

// Each of these writes at `to` and returns the end of what it wrote; up to 16 bytes behind it are
// overwritten too. A whole text, with sign, 19 digits, point, 12 decimal places, a blank and the
// longest unit, keeps within BIG_TEXT_ROOM.

char* put_text(char* to, std::string_view text) {
    std::memcpy(to, text.data(), text.size());
    return to + text.size();
}

/// A blank and the name of a unit: copied by their fixed room, so that no length is looked at.
struct UNIT_SUFFIX {
    static constexpr std::size_t room = 16;
    char text[room];
    std::size_t length;
};
#define SUFFIX(unit, text, power) {" " text, sizeof(" " text) - 1},
constexpr UNIT_SUFFIX suffix_of_unit[] = {BIG_UNIT_ROWS(SUFFIX)};
#undef SUFFIX

char* put_unit(char* to, int unit) {
    std::memcpy(to, suffix_of_unit[unit].text, UNIT_SUFFIX::room);
    return to + suffix_of_unit[unit].length;
}

/// How many of sixteen digits, given as two numbers of eight, are left when the zeros at the end
/// are dropped, all but the first digit.
int digits_without_zeros_at_end(unsigned long long first, unsigned long long second) {
    if (second != 0)
        return 16 - std::countl_zero(second) / 8;
    return first != 0 ? 8 - std::countl_zero(first) / 8 : 1;
}

/// The decimal places of a number: `fraction` / 10^places. With `trim`, zeros at the end are
/// dropped, all but the first place.
char* put_fraction(char* to, unsigned long long fraction, int places, bool trim) {
    constexpr int eight = 8;
    bool const is_short = places <= eight;
    auto const power = [](int exponent) {
        return static_cast<unsigned long long>(BIG_TIME::s_power_10_table[exponent]);
    };
    unsigned long long const first_eight =
        is_short ? fraction * power(eight - places) : fraction / power(places - eight);
    unsigned long long const first = big_eight_digits(static_cast<unsigned int>(first_eight));
    big_store_eight_digits(to, first);
    unsigned long long second = 0;
    if (!is_short) {
        unsigned long long const rest = fraction % power(places - eight) * power(16 - places);
        second = big_eight_digits(static_cast<unsigned int>(rest));
        big_store_eight_digits(to + eight, second);
    }
    return to + (trim ? digits_without_zeros_at_end(first, second) : places);
}

/// A count in decimal with the point of a unit, rounded half up on the magnitude to `precision`
/// places; trailing zeros but one after the point are dropped if `trim`.
char* put_count(char* to, long long count, int resolution, unsigned int precision, bool trim) {
    unsigned long long magnitude = big_magnitude(count);
    int places = std::max(resolution, 0);
    if (precision < static_cast<unsigned int>(places)) {
        auto const step = static_cast<unsigned long long>(
            BIG_TIME::s_power_10_table[places - static_cast<int>(precision)]);
        magnitude = (magnitude + step / 2) / step; // at most 2^63 + 5 x 10^11: no overflow
        places = static_cast<int>(precision);
    }
    *to = '-'; // which the first digit overwrites when there is no sign
    to += count < 0 ? 1 : 0;
    if (places == 0) {
        to = big_put_number(to, magnitude);
        for (; resolution < 0; ++resolution)
            *to++ = '0'; // femtoseconds: a zero count too, which makes 0000
        return to;
    }
    auto const one = static_cast<unsigned long long>(BIG_TIME::s_power_10_table[places]);
    to = big_put_number(to, magnitude / one);
    *to++ = '.';
    return put_fraction(to, magnitude % one, places, trim);
}

/// The number of a time in a unit. `across_categories` turns a frequency into its period and the
/// other way round.
char* put_number(char* to, long long count, bool across_categories, int unit,
                 unsigned int precision, bool trim) {
    if (across_categories) {
        if (count == 0)
            return put_text(to, "INF");
        count = BIG_TIME::PICOSECONDS_IN_SECOND / count;
    }
    return put_count(to, count, BIG_TIME::s_fraction_digits[unit], precision, trim);
}

/// Makes the text that `write` writes the whole content of a string: in place, if it has room for
/// any; a string gets that room when it needs more than it has.
template <typename WRITE>
void assign_time_text(std::string* out, WRITE write) {
    if (out->capacity() >= BIG_TEXT_ROOM) {
        big_assign_text(out, BIG_TEXT_ROOM, write);
        return;
    }
    char text[BIG_TEXT_ROOM];
    std::size_t const length = write(text);
    if (length > out->capacity())
        out->reserve(BIG_TEXT_ROOM);
    out->assign(text, length);
}

/// The unit in which a count of picoseconds is easy to read.
BIG_TIME::TIME_UNIT unit_for_magnitude(unsigned long long picoseconds) {
    if (picoseconds > 999999999999ULL)
        return BIG_TIME::UNIT_S;
    if (picoseconds > 999999999ULL)
        return BIG_TIME::UNIT_MS;
    if (picoseconds > 999999ULL)
        return BIG_TIME::UNIT_US;
    return picoseconds > 999ULL ? BIG_TIME::UNIT_NS : BIG_TIME::UNIT_PS;
}

} // namespace

void BIG_TIME::add_decimal(std::string* result_string, TIME_UNIT unit) const {
    BIG_REQUIRE(result_string != NULL);
    get_time_unit_string(unit); // refuses what is no unit
    std::string& text = *result_string;
    bool const negative = !text.empty() && text.front() == '-';
    std::size_t const sign_length = negative || (!text.empty() && text.front() == '+') ? 1 : 0;
    int const resolution = s_fraction_digits[unit];
    if (resolution <= 0) {
        text.append(static_cast<std::size_t>(-resolution), '0');
    } else {
        auto const places = static_cast<std::size_t>(resolution);
        std::size_t const digits = text.size() - sign_length;
        if (digits <= places)
            text.insert(sign_length, places + 1 - digits, '0');
        text.insert(text.size() - places, 1, '.');
    }
    if (sign_length != 0 && !negative)
        text.erase(0, 1);
}

std::string* BIG_TIME::to_string_without_unit(std::string* text, TIME_UNIT unit,
                                              unsigned short precision, bool trim) const {
    text->clear();
    // Seen before the own unit takes the place of -1, which thus counts as no frequency: a
    // frequency printed with -1 comes out as its period, as callers rely on.
    bool const across_categories = is_frequency(m_unit) != is_frequency(unit);
    if (unit == own_unit)
        unit = get_time_unit();
    get_time_unit_string(unit); // refuses what is no unit
    assign_time_text(text, [&](char* to) {
        char* const end = put_number(to, m_value, across_categories, unit, precision, trim);
        return static_cast<std::size_t>(end - to);
    });
    return text;
}

std::string BIG_TIME::to_string_without_unit(TIME_UNIT unit, unsigned short precision,
                                             bool trim) const {
    std::string text;
    to_string_without_unit(&text, unit, precision, trim);
    return text;
}

std::string* BIG_TIME::to_string(std::string* text, TIME_UNIT unit, unsigned short precision,
                                 bool trim) const {
    text->clear();
    if (unit == own_unit)
        unit = get_time_unit();
    get_time_unit_string(unit); // refuses what is no unit
    bool const across_categories = is_frequency(m_unit) != is_frequency(unit);
    assign_time_text(text, [&](char* to) {
        char* end = put_number(to, m_value, across_categories, unit, precision, trim);
        if (unit != UNIT_NONE)
            end = put_unit(end, unit);
        return static_cast<std::size_t>(end - to);
    });
    return text;
}

std::string BIG_TIME::to_string(TIME_UNIT unit, unsigned short precision, bool trim) const {
    std::string text;
    to_string(&text, unit, precision, trim);
    return text;
}

std::string* BIG_TIME::to_string(std::string* text, unsigned short precision) const {
    TIME_UNIT const unit = is_frequency(m_unit) || is_data_rate(m_unit)
                               ? get_time_unit()
                               : unit_for_magnitude(big_magnitude(m_value));
    return to_string(text, unit, std::max<unsigned short>(precision, 1), true);
}

std::string BIG_TIME::to_string(unsigned short precision) const {
    std::string text;
    to_string(&text, precision);
    return text;
}

std::string BIG_TIME::to_raw_string() const {
    get_time_unit_string(get_time_unit()); // refuses what is no unit
    char text[BIG_TEXT_ROOM];
    bool const is_zero_fs = m_unit == UNIT_FS && m_value == 0;
    char* const end =
        is_zero_fs ? put_text(text, "0") // the canonical form of the 0000 that putting it gives
                   : put_count(text, m_value, s_fraction_digits[m_unit], USHRT_MAX, true);
    // For UNIT_NONE a blank all the same, as callers rely on.
    return std::string(text, put_unit(end, m_unit));
}

// ------------------------------------------------------------------------------------------------
// Frequencies
// ------------------------------------------------------------------------------------------------

// The conversions are compiled into their callers; here is their report.

void BIG_FREQUENCY::report_picoseconds_in_second() {
    BIG_FAIL("one_time_unit.get_time_value() == 1000000000000LL");
}
