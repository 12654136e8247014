#ifndef TIME_LIBRARY_H
#define TIME_LIBRARY_H

/// @file
/// The library in the shape of TIME_ORACLE, so that one piece of test code runs on both.

#include "big_sys.h"
#include "observation.h"
#include "time_oracle.h"

#include <limits>

constexpr long long LOWEST = std::numeric_limits<long long>::min();
constexpr long long HIGHEST = std::numeric_limits<long long>::max();

/// A unit by its number, which may be outside the table.
inline BIG_TIME::TIME_UNIT unit_of(int number) {
    return static_cast<BIG_TIME::TIME_UNIT>(number);
}

/// A time with any count and unit, also those that no text and no number gives.
inline BIG_TIME time_of(long long count, int unit) {
    BIG_TIME time;
    time = count;
    time.set_smaller_unit(unit_of(unit), unit_of(unit));
    return time;
}

/// The count and the unit of a time.
inline HELD held_by(BIG_TIME const& time) {
    return {time.get_time_value(), time.get_time_unit()};
}

class TIME_LIBRARY {
public:
    void trim_begin_blankspace(std::string& s) { big_trim_begin_blankspace(s); }
    void trim_end_blankspace(std::string& s) { big_trim_end_blankspace(s); }
    void truncate_to_precision(std::string& s, unsigned int precision) {
        big_truncate_to_precision(&s, precision);
    }
    void trim_end_zero(std::string& s) { big_trim_end_zero(&s); }
    long long atoi64(std::string const& s) { return big_atoi64(s); }
    void rounding(std::string& s) { big_rounding(&s); }
    void round_to_precision(std::string& s, unsigned int precision, bool trim_trailing_zeros) {
        big_round_to_precision(&s, precision, trim_trailing_zeros);
    }

    bool is_no_token(std::string const& s) { return big_is_no_token(s); }
    bool is_one_token(std::string& s) { return big_is_one_token(s); }
    int get_time_unit(std::string const& s) { return big_get_time_unit(s); }
    std::string get_time_value(std::string const& s) { return big_get_time_value(s); }

    bool extract_time_units(char const* text, int& unit) {
        BIG_TIME::TIME_UNIT found = unit_of(unit);
        bool const known = BIG_TIME::extract_time_units(text, found);
        unit = found;
        return known;
    }
    long long compute_storage_number(long long value, int unit) {
        return BIG_TIME::compute_storage_number(value, unit_of(unit));
    }
    bool is_logically_legal(long long value, int unit) {
        return BIG_TIME::is_logically_legal(value, unit_of(unit));
    }

    void separate_time_num_and_unit(std::string const& text, std::string& number,
                                    std::string& unit) {
        BIG_TIME::separate_time_num_and_unit(text, number, unit);
    }
    bool format_time_string(std::string& text, int unit, bool post_messages) {
        return BIG_TIME::format_time_string(text, unit_of(unit), post_messages);
    }
    int string_to_big_int(std::string const& text, int unit, long long& value, bool post_messages) {
        return BIG_TIME::string_to_big_int(text, unit_of(unit), value, post_messages);
    }
    bool set_time(HELD& held, long long value, int unit) {
        return setting(held, [&](BIG_TIME& time) { return time.set_time(value, unit_of(unit)); });
    }
    bool set_time(HELD& held, long long value, std::string const& unit_text) {
        return setting(held, [&](BIG_TIME& time) { return time.set_time(value, unit_text); });
    }
    bool set_time(HELD& held, std::string const& number_text, int unit, bool post_messages) {
        return setting(held, [&](BIG_TIME& time) {
            return time.set_time(number_text, unit_of(unit), post_messages);
        });
    }
    bool set_time(HELD& held, std::string const& number_text, std::string const& unit_text,
                  bool post_messages) {
        return setting(held, [&](BIG_TIME& time) {
            return time.set_time(number_text, unit_text, post_messages);
        });
    }
    bool set_time(HELD& held, std::string const& text, bool post_messages) {
        return setting(held, [&](BIG_TIME& time) { return time.set_time(text, post_messages); });
    }
    int is_legal(std::string const& number_text, int unit) {
        return BIG_TIME::is_legal(number_text, unit_of(unit));
    }
    int is_legal(std::string const& number_text, std::string const& unit_text) {
        return BIG_TIME::is_legal(number_text, unit_text);
    }
    int is_legal(std::string const& text) { return BIG_TIME::is_legal(text); }
    bool will_value_be_truncated(char const* text, std::string& truncated_text) {
        return BIG_TIME::will_value_be_truncated(text, truncated_text);
    }

    void add_decimal(std::string& text, int unit) { BIG_TIME().add_decimal(&text, unit_of(unit)); }
    std::string to_string_without_unit(HELD const& held, int unit, unsigned short precision,
                                       bool trim) {
        return time_of(held.count, held.unit)
            .to_string_without_unit(unit_of(unit), precision, trim);
    }
    std::string to_string(HELD const& held, int unit, unsigned short precision, bool trim) {
        return time_of(held.count, held.unit).to_string(unit_of(unit), precision, trim);
    }
    std::string to_string(HELD const& held, unsigned short precision) {
        return time_of(held.count, held.unit).to_string(precision);
    }
    std::string to_raw_string(HELD const& held) {
        return time_of(held.count, held.unit).to_raw_string();
    }

private:
    template <typename SETTER>
    static bool setting(HELD& held, SETTER set) {
        BIG_TIME time = time_of(held.count, held.unit);
        bool const accepted = set(time);
        held = held_by(time);
        return accepted;
    }
};

/// Runs `steps`, which take a TIME_LIBRARY or a TIME_ORACLE and give their results as text, on the
/// oracle: what the library has to do.
template <typename STEPS>
OBSERVATION what_the_rules_say(STEPS steps) {
    TIME_ORACLE oracle;
    std::string result;
    try {
        result = steps(oracle);
    } catch (ORACLE_INTERNAL_ERROR const&) {
        result = LEFT_BY_INTERNAL_ERROR;
    } catch (std::out_of_range const& error) {
        result = left_by(error);
    }
    return {result, oracle.reports};
}

/// Runs the same steps on the library.
template <typename STEPS>
OBSERVATION what_the_library_does(STEPS steps) {
    TIME_LIBRARY library;
    return observe([&] { return steps(library); });
}

/// Whether the library does what the rules say.
template <typename STEPS>
testing::AssertionResult library_obeys(STEPS steps) {
    OBSERVATION const expected = what_the_rules_say(steps);
    OBSERVATION const actual = what_the_library_does(steps);
    if (actual == expected)
        return testing::AssertionSuccess();
    return testing::AssertionFailure() << "expected " << testing::PrintToString(expected)
                                       << "\nactual " << testing::PrintToString(actual) << '\n';
}

/// Expects the steps to come to a known end, on the library and on the oracle: a row of a table
/// checks both.
template <typename STEPS>
void expect_of_both(STEPS steps, OBSERVATION const& expected) {
    EXPECT_EQ(what_the_library_does(steps), expected) << "by the library";
    EXPECT_EQ(what_the_rules_say(steps), expected) << "by the oracle";
}

#endif
