#include "time_oracle.h"

#include <ostream>

namespace {

__extension__ using UNSIGNED_128 = unsigned __int128;

struct UNIT {
    char const* name;
    int resolution;
    int category;
};

UNIT const UNITS[] = {
    // name       power of ten to   category: 0 time,
    //            the stored unit   1 frequency, 2 rate
    {"", 0, 0},          //
    {"fs", -3, 0},       //
    {"ps", 0, 0},        //
    {"ns", 3, 0},        //
    {"us", 6, 0},        //
    {"ms", 9, 0},        //
    {"s", 12, 0},        //
    {"Hz", 0, 1},        //
    {"kHz", 3, 1},       //
    {"MHz", 6, 1},       //
    {"GHz", 9, 1},       //
    {"ten_th_ns", 2, 0}, //
    {"bps", 0, 2},       //
    {"Mbps", 6, 2},      //
    {"Gbps", 9, 2},      //
};

std::string const NUMBER_CHARACTERS = "1234567890.-+";

bool is_digit(char c) {
    return c >= '0' && c <= '9';
}

/// The six bytes tab, line feed, vertical tab, form feed, carriage return and space.
bool is_blank(char c) {
    return c == '\t' || c == '\n' || c == '\v' || c == '\f' || c == '\r' || c == ' ';
}

/// The three bytes between tokens.
bool is_delimiter(char c) {
    return c == ' ' || c == '\t' || c == '\n';
}

bool is_sign(char c) {
    return c == '-' || c == '+';
}

bool starts_with_sign(std::string const& s) {
    return !s.empty() && is_sign(s[0]);
}

std::string without_blank_ends(std::string s) {
    while (!s.empty() && is_blank(s[0]))
        s.erase(0, 1);
    while (!s.empty() && is_blank(s[s.size() - 1]))
        s.erase(s.size() - 1);
    return s;
}

/// Up to the first NUL, as an operation sees it that takes a C string.
std::string as_c_string(std::string const& s) {
    return s.substr(0, s.find('\0'));
}

std::string lower_case(std::string s) {
    for (char& c : s)
        if (c >= 'A' && c <= 'Z')
            c = static_cast<char>(c + 32);
    return s;
}

std::vector<std::string> tokens_of(std::string const& s) {
    std::vector<std::string> tokens;
    std::string token;
    for (char const c : s + " ") {
        if (!is_delimiter(c)) {
            token += c;
        } else if (!token.empty()) {
            tokens.push_back(token);
            token.clear();
        }
    }
    return tokens;
}

bool any_digit_but_zero(std::string const& s) {
    return s.find_first_of("123456789") != std::string::npos;
}

/// Digits of the run that follows the point of a text with a point.
std::size_t fraction_run(std::string const& s) {
    std::size_t const first = s.find('.') + 1;
    std::size_t end = first;
    while (end < s.size() && is_digit(s[end]))
        ++end;
    return end - first;
}

bool need_rounding(std::string const& s, unsigned int precision) {
    if (s.find('.') == std::string::npos)
        return false;
    if (fraction_run(s) <= precision)
        return false;
    return s[s.find('.') + precision + 1] >= '5';
}

UNSIGNED_128 power_of_ten(int exponent) {
    UNSIGNED_128 power = 1;
    for (int i = 0; i < exponent; ++i)
        power *= 10;
    return power;
}

UNSIGNED_128 magnitude_of(long long value) {
    UNSIGNED_128 const wide = static_cast<unsigned long long>(value);
    return value < 0 ? (UNSIGNED_128{1} << 64) - wide : wide;
}

std::string decimal(long long value) {
    UNSIGNED_128 rest = magnitude_of(value);
    std::string digits;
    do {
        digits.insert(0, 1, static_cast<char>('0' + static_cast<int>(rest % 10)));
        rest /= 10;
    } while (rest != 0);
    return (value < 0 ? "-" : "") + digits;
}

} // namespace

void PrintTo(HELD const& held, std::ostream* out) {
    *out << "count " << held.count << " in unit " << held.unit;
    if (held.unit >= 0 && held.unit <= 14)
        *out << " \"" << UNITS[held.unit].name << '"';
}

// ------------------------------------------------------------------------------------------------
// Reports
// ------------------------------------------------------------------------------------------------

void TIME_ORACLE::fail(char const* text, char const* tag, char const* source_path) {
    reports.push_back({"err_report_internal_error", {text, tag, source_path}});
    throw ORACLE_INTERNAL_ERROR();
}

void TIME_ORACLE::overflow_error() {
    fail("Overflow", "BIG", "h/big_sys");
}

void TIME_ORACLE::debug(std::string const& text) {
    debug(text, text);
}

void TIME_ORACLE::debug(std::string const& format, std::string const& text) {
    reports.push_back({"mem_msg_local_vdebug", {"BIG", format, text}});
}

void TIME_ORACLE::message(int id, std::string const& arg1) {
    message(id, arg1, "(null)");
}

void TIME_ORACLE::message(int id, std::string const& arg1, std::string const& arg2) {
    reports.push_back(
        {"err_post_enumerated_msg", {std::to_string(id), as_c_string(arg1), as_c_string(arg2)}});
}

// ------------------------------------------------------------------------------------------------
// Decimal numbers held as text
// ------------------------------------------------------------------------------------------------

void TIME_ORACLE::trim_begin_blankspace(std::string& s) {
    while (!s.empty() && is_blank(s[0]))
        s.erase(0, 1);
}

void TIME_ORACLE::trim_end_blankspace(std::string& s) {
    while (!s.empty() && is_blank(s[s.size() - 1]))
        s.erase(s.size() - 1);
}

void TIME_ORACLE::truncate_to_precision(std::string& s, unsigned int precision) {
    std::size_t const point = s.find('.');
    if (point == std::string::npos)
        return;
    std::size_t const run = fraction_run(s);
    if (run <= precision)
        return;
    if (precision > 0)
        s.erase(point + precision + 1, run - precision);
    else
        s.erase(point, run + 1);
}

void TIME_ORACLE::trim_end_zero(std::string& s) {
    std::size_t const point = s.find('.');
    if (point == std::string::npos)
        return;
    while (s[s.size() - 1] == '0' && s.size() - 1 > point + 1)
        s.erase(s.size() - 1);
}

long long TIME_ORACLE::atoi64(std::string const& s) {
    if (s.size() > 19)
        fail("The input time is too big. It is over 64 bits.", "2", "big/big_util");
    unsigned long long sum = 0;
    for (std::size_t i = 0; i < s.size() && s[i] != '.'; ++i) {
        auto const power =
            static_cast<unsigned long long>(power_of_ten(static_cast<int>(s.size() - 1 - i)));
        sum += static_cast<unsigned long long>(static_cast<long long>(s[i] - '0')) * power;
    }
    return static_cast<long long>(sum);
}

void TIME_ORACLE::rounding(std::string& s) {
    if (s.empty())
        fail("!str->empty()", "2", "big/big_util");
    trim_begin_blankspace(s);
    trim_end_blankspace(s);
    if (s.empty())
        return;
    std::size_t end = s.size(); // one past the character at which the scan stops
    while (end > 0 && (s[end - 1] == '9' || s[end - 1] == '.' || is_sign(s[end - 1])))
        --end;
    if (end == 0) {
        end = starts_with_sign(s) ? 2 : 1;
        s.insert(end - 1, 1, '1');
    } else {
        s[end - 1] = static_cast<char>(s[end - 1] + 1);
    }
    for (std::size_t i = end; i < s.size(); ++i)
        if (is_digit(s[i]))
            s[i] = '0';
}

void TIME_ORACLE::round_to_precision(std::string& s, unsigned int precision,
                                     bool trim_trailing_zeros) {
    if (need_rounding(s, precision)) {
        truncate_to_precision(s, precision);
        rounding(s);
    } else {
        truncate_to_precision(s, precision);
    }
    if (trim_trailing_zeros)
        trim_end_zero(s);
}

// ------------------------------------------------------------------------------------------------
// Tokens and numbers of a time text
// ------------------------------------------------------------------------------------------------

bool TIME_ORACLE::is_no_token(std::string const& s) {
    return tokens_of(s).empty();
}

bool TIME_ORACLE::is_one_token(std::string& s) {
    std::vector<std::string> const tokens = tokens_of(s);
    s = tokens.size() == 1 ? tokens[0] : "";
    return tokens.size() == 1;
}

int TIME_ORACLE::get_time_unit(std::string const& s) {
    if (is_no_token(s))
        return 0;
    std::string token = s;
    if (!is_one_token(token))
        return 15;
    for (int unit = 1; unit <= 14; ++unit)
        if (lower_case(as_c_string(token)) == lower_case(UNITS[unit].name))
            return unit;
    return 15;
}

std::string TIME_ORACLE::get_time_value(std::string const& s) {
    std::string const t = without_blank_ends(s);

    bool legal = !t.empty();
    legal = legal && t.find_first_not_of(NUMBER_CHARACTERS) == std::string::npos;
    legal = legal && t.find_first_of("-+", 1) == std::string::npos;
    legal = legal && t != "-." && t != "." && t != "-";
    // one sign, then at least one character, then digits and at most one point
    std::size_t const first = starts_with_sign(t) ? 1 : 0;
    legal = legal && first < t.size();
    legal = legal && t.find('.') == t.rfind('.');
    if (!legal) {
        debug("Illegal input \"%s\" in big_get_time_value()",
              "Illegal input \"" + as_c_string(s) + "\" in big_get_time_value()");
        return "";
    }

    std::string result = t;
    trim_end_zero(result);
    std::size_t const k = result.find_first_of("0123456789");
    if (k == std::string::npos)
        return result;
    unsigned long long d = result.find('.') == std::string::npos ? result.size() : result.find('.');
    while (k < result.size() && result[k] == '0') {
        --d; // from 0 to the largest number when the point is first
        if (k >= d)
            break;
        result.erase(k, 1);
    }
    return result;
}

// ------------------------------------------------------------------------------------------------
// Units and stored counts
// ------------------------------------------------------------------------------------------------

int TIME_ORACLE::get_unit_category(int unit) {
    return unit < 0 || unit > 14 ? 4 : UNITS[unit].category;
}

std::string TIME_ORACLE::unit_name(int unit) {
    if (unit < 0)
        fail("unit >= MIN_TIME_UNITS", "2", "big/big_time");
    if (unit > 14)
        fail("unit < MAX_TIME_UNIT", "2", "big/big_time");
    return UNITS[unit].name;
}

int TIME_ORACLE::resolution(int unit) {
    unit_name(unit);
    return UNITS[unit].resolution;
}

bool TIME_ORACLE::extract_time_units(char const* text, int& unit) {
    if (text == nullptr) {
        unit = 0;
        debug("BIG_TIME::extract_time_units: Time unit string is NULL.");
        return true;
    }
    int const found = get_time_unit(text);
    if (found == 15) {
        debug("BAD Time Unit. Please checking your time unit input");
        return false;
    }
    unit = found;
    return true;
}

long long TIME_ORACLE::compute_storage_number(long long value, int unit) {
    bool const frequency_or_rate = get_unit_category(unit) == 1 || get_unit_category(unit) == 2;
    if (value < 0 && frequency_or_rate)
        fail("Wrong concept: Negative frequency!", "2", "big/big_time");
    if (value == 0 && frequency_or_rate)
        fail("Wrong concept: 0 MHz!", "2", "big/big_time");
    if (unit == 0)
        return value;
    int const d = resolution(unit);
    UNSIGNED_128 const scaled =
        d >= 0 ? magnitude_of(value) * power_of_ten(d) : magnitude_of(value) / power_of_ten(-d);
    UNSIGNED_128 const limit = UNSIGNED_128{1} << 63;
    if (scaled > limit || (scaled == limit && value >= 0))
        overflow_error();
    auto const low = static_cast<unsigned long long>(scaled);
    return static_cast<long long>(value < 0 ? 0 - low : low);
}

bool TIME_ORACLE::is_logically_legal(long long value, int unit) {
    if (value < 0 && get_unit_category(unit) == 1) {
        debug("Wrong concept: Non-positive frequency!");
        return false;
    }
    if (value < 0 && get_unit_category(unit) == 2) {
        debug("Wrong concept: Negative BPS!");
        return false;
    }
    return true;
}

// ------------------------------------------------------------------------------------------------
// Reading
// ------------------------------------------------------------------------------------------------

void TIME_ORACLE::separate_time_num_and_unit(std::string const& text, std::string& number,
                                             std::string& unit) {
    std::string const t = without_blank_ends(text);
    std::size_t const i = t.find_first_not_of(NUMBER_CHARACTERS);
    if (i == std::string::npos) {
        number = t;
        unit.clear();
        return;
    }
    std::string rest = t.substr(i);
    trim_begin_blankspace(rest);
    number = t.substr(0, i);
    unit = rest;
}

bool TIME_ORACLE::format_time_string(std::string& text, int unit, bool post_messages) {
    if (unit < 0 || unit > 14)
        return false;
    std::string t = get_time_value(text);
    if (t.empty())
        return false;
    bool const negative = t[0] == '-';
    if (starts_with_sign(t))
        t.erase(0, 1);

    int const d = UNITS[unit].resolution;
    std::size_t p = t.find('.');
    bool const has_point = p != std::string::npos;
    int k = 0;
    if (has_point) {
        t.erase(p, 1);
        k = static_cast<int>(t.size() - p);
    } else {
        p = t.size();
    }

    bool truncated = false;
    bool replaced = false;
    bool const nothing_cut = has_point ? k <= d : d >= 0;
    if (!nothing_cut) {
        auto const drop = static_cast<std::size_t>(k - d);
        if (drop >= t.size()) {
            truncated = any_digit_but_zero(t);
            t.assign(1, '0');
            replaced = true;
        } else {
            truncated = any_digit_but_zero(t.substr(t.size() - drop));
            t.erase(t.size() - drop);
        }
    }
    if (!replaced) {
        if (p < t.size())
            t.insert(p, 1, '.');
        while (t.size() < p)
            t += '0';
    }
    if (negative && t != "0")
        t.insert(0, 1, '-');

    if (post_messages && truncated)
        message(2, text + " " + UNITS[unit].name, t + " " + UNITS[unit].name);
    if (t.empty())
        return false;
    text = t;
    return true;
}

int TIME_ORACLE::string_to_big_int(std::string const& text, int unit, long long& value,
                                   bool post_messages) {
    std::string t = text;
    if (unit < 0 || unit > 14)
        return 2;
    if (!format_time_string(t, unit, post_messages))
        return 1;
    bool const negative = t[0] == '-';
    if (negative)
        t.erase(0, 1);
    std::size_t const p = t.find('.');
    int n = 0;
    if (p != std::string::npos) {
        t.erase(p, 1);
        n = static_cast<int>(t.size() - p);
    }
    int const shift = UNITS[unit].resolution - n;
    if (shift < 0) {
        auto const cut = static_cast<std::size_t>(-shift);
        t = cut >= t.size() ? t.substr(0, 1) : t.substr(0, t.size() - cut);
    } else {
        t += std::string(static_cast<std::size_t>(shift), '0');
    }
    if (t.size() >= 20)
        return 1;
    if (t.size() == 19 && t > "9223372036854775807")
        return 1;
    long long v = atoi64(t);
    if (negative)
        v = -v;
    if (!is_logically_legal(v, unit))
        return 1;
    value = v;
    return 0;
}

bool TIME_ORACLE::set_time(HELD& held, long long value, int unit) {
    if (unit < 0 || unit > 14)
        return false;
    held = {compute_storage_number(value, unit), unit};
    return true;
}

bool TIME_ORACLE::set_time(HELD& held, long long value, std::string const& unit_text) {
    return set_time(held, value, get_time_unit(unit_text));
}

bool TIME_ORACLE::set_time(HELD& held, std::string const& number_text, int unit,
                           bool post_messages) {
    long long v = 0;
    int const status = string_to_big_int(number_text, unit, v, post_messages);
    held = HELD();
    if (status == 0) {
        held = {v, unit};
        return true;
    }
    if (post_messages)
        message(1, unit >= 0 && unit <= 14 ? number_text + UNITS[unit].name : number_text);
    return false;
}

bool TIME_ORACLE::set_time(HELD& held, std::string const& number_text, std::string const& unit_text,
                           bool post_messages) {
    int const unit = get_time_unit(unit_text);
    held = HELD();
    if (unit > 14) {
        if (post_messages)
            message(1, number_text + unit_text);
        return false;
    }
    return set_time(held, number_text, unit, post_messages);
}

bool TIME_ORACLE::set_time(HELD& held, std::string const& text, bool post_messages) {
    std::string number;
    std::string unit;
    held = HELD();
    separate_time_num_and_unit(text, number, unit);
    return set_time(held, number, unit, post_messages);
}

int TIME_ORACLE::is_legal(std::string const& number_text, int unit) {
    long long scratch = 0;
    return string_to_big_int(number_text, unit, scratch, false);
}

int TIME_ORACLE::is_legal(std::string const& number_text, std::string const& unit_text) {
    return is_legal(number_text, get_time_unit(unit_text));
}

int TIME_ORACLE::is_legal(std::string const& text) {
    std::string number;
    std::string unit;
    separate_time_num_and_unit(text, number, unit);
    return is_legal(number, unit);
}

bool TIME_ORACLE::will_value_be_truncated(char const* text, std::string& truncated_text) {
    if (text == nullptr || *text == '\0')
        return false;
    std::string const given = text;
    std::string const t = without_blank_ends(given);
    truncated_text = given; // wherever the answer is no
    std::size_t const last = t.find_last_of("0123456789.");
    if (last == std::string::npos)
        return false;
    std::string number = t.substr(0, last + 1);
    int const unit = get_time_unit(t.substr(last + 1));
    if (unit == 0 || unit == 15)
        return false;

    bool const sign = starts_with_sign(number);
    if (sign)
        number.erase(0, 1);
    std::size_t const p = number.find('.');
    int k = 0;
    if (p <= 19) {
        number.erase(p, 1);
        k = static_cast<int>(number.size() - p);
    }
    int const d = UNITS[unit].resolution;
    if (d >= k)
        return false;
    auto const drop = static_cast<std::size_t>(k - d);
    if (drop >= number.size()) {
        truncated_text = std::string("0 ") + UNITS[unit].name;
        return true;
    }
    std::string const kept = number.substr(0, number.size() - drop);
    if (number.substr(kept.size()) == std::string(drop, '0'))
        return false;
    truncated_text = (sign ? "-" : "") + kept;
    if (truncated_text[truncated_text.size() - 1] == '.')
        truncated_text.erase(truncated_text.size() - 1);
    if (p != std::string::npos)
        truncated_text.replace(p, 0, 1, '.'); // past the end: std::out_of_range
    truncated_text += std::string(" ") + UNITS[unit].name;
    return true;
}

// ------------------------------------------------------------------------------------------------
// Printing
// ------------------------------------------------------------------------------------------------

void TIME_ORACLE::add_decimal(std::string& text, int unit) {
    bool const negative = !text.empty() && text[0] == '-';
    if (starts_with_sign(text))
        text.erase(0, 1);
    int const d = resolution(unit);
    if (d <= 0) {
        text += std::string(static_cast<std::size_t>(-d), '0');
    } else {
        auto const places = static_cast<std::size_t>(d);
        if (text.size() > places)
            text.insert(text.size() - places, 1, '.');
        else
            text = "0." + std::string(places - text.size(), '0') + text;
    }
    if (negative)
        text.insert(0, 1, '-');
}

std::string TIME_ORACLE::to_string_without_unit(HELD const& held, int unit,
                                                unsigned short precision, bool trim) {
    bool const own_is_frequency = get_unit_category(held.unit) == 1;
    bool const target_is_frequency = get_unit_category(unit) == 1;
    std::string text;
    if (own_is_frequency == target_is_frequency)
        text = decimal(held.count);
    else if (held.count == 0)
        return "INF";
    else
        text = decimal(1000000000000 / held.count);
    add_decimal(text, unit == -1 ? held.unit : unit);
    round_to_precision(text, precision, trim);
    return text;
}

std::string TIME_ORACLE::to_string(HELD const& held, int unit, unsigned short precision,
                                   bool trim) {
    int const resolved = unit == -1 ? held.unit : unit;
    std::string const number = to_string_without_unit(held, resolved, precision, trim);
    return resolved >= 1 && !number.empty() ? number + " " + unit_name(resolved) : number;
}

std::string TIME_ORACLE::to_string(HELD const& held, unsigned short precision) {
    UNSIGNED_128 const magnitude = magnitude_of(held.count);
    int unit = held.unit;
    if (get_unit_category(held.unit) == 0) {
        if (magnitude > 999999999999)
            unit = 6;
        else if (magnitude > 999999999)
            unit = 5;
        else if (magnitude > 999999)
            unit = 4;
        else if (magnitude > 999)
            unit = 3;
        else
            unit = 2;
    }
    unsigned short const places = precision == 0 ? 1 : precision;
    return to_string(held, unit, places, true);
}

std::string TIME_ORACLE::to_raw_string(HELD const& held) {
    std::string text = decimal(held.count);
    add_decimal(text, held.unit);
    format_time_string(text, held.unit, false);
    return text + " " + unit_name(held.unit);
}
