#ifndef TIME_ORACLE_H
#define TIME_ORACLE_H

/// @file
/// Times and their texts once more: slow, plain, one statement for each step, on strings and
/// 128-bit integers. It calls nothing of the library and keeps the reports that the library owes,
/// in order, so that a test can hold both against each other on any input.

#include "recording_platform.h"

#include <string>
#include <vector>

/// A time as tests see it: the stored count and the number of its unit.
struct HELD {
    long long count = 0;
    int unit = 0;

    friend bool operator==(HELD const&, HELD const&) = default;
};
void PrintTo(HELD const& held, std::ostream* out);

/// What the oracle throws where the library must report an internal error.
struct ORACLE_INTERNAL_ERROR {};

/// The members are named after the operations of the library; a unit is a plain number.
class TIME_ORACLE {
public:
    /// What has been reported, internal errors without their line.
    std::vector<recording::CALL> reports;

    // --- Decimal numbers held as text ---
    void trim_begin_blankspace(std::string& s);
    void trim_end_blankspace(std::string& s);
    void truncate_to_precision(std::string& s, unsigned int precision);
    void trim_end_zero(std::string& s);
    long long atoi64(std::string const& s);
    void rounding(std::string& s);
    void round_to_precision(std::string& s, unsigned int precision, bool trim_trailing_zeros);

    // --- Tokens and numbers of a time text ---
    bool is_no_token(std::string const& s);
    bool is_one_token(std::string& s);
    int get_time_unit(std::string const& s);
    std::string get_time_value(std::string const& s);

    // --- Units and stored counts ---
    int get_unit_category(int unit);
    bool extract_time_units(char const* text, int& unit);
    long long compute_storage_number(long long value, int unit);
    bool is_logically_legal(long long value, int unit);

    // --- Reading ---
    void separate_time_num_and_unit(std::string const& text, std::string& number,
                                    std::string& unit);
    bool format_time_string(std::string& text, int unit, bool post_messages);
    int string_to_big_int(std::string const& text, int unit, long long& value, bool post_messages);
    bool set_time(HELD& held, long long value, int unit);
    bool set_time(HELD& held, long long value, std::string const& unit_text);
    bool set_time(HELD& held, std::string const& number_text, int unit, bool post_messages);
    bool set_time(HELD& held, std::string const& number_text, std::string const& unit_text,
                  bool post_messages);
    bool set_time(HELD& held, std::string const& text, bool post_messages);
    int is_legal(std::string const& number_text, int unit);
    int is_legal(std::string const& number_text, std::string const& unit_text);
    int is_legal(std::string const& text);
    bool will_value_be_truncated(char const* text, std::string& truncated_text);

    // --- Printing ---
    void add_decimal(std::string& text, int unit);
    std::string to_string_without_unit(HELD const& held, int unit, unsigned short precision,
                                       bool trim);
    std::string to_string(HELD const& held, int unit, unsigned short precision, bool trim);
    std::string to_string(HELD const& held, unsigned short precision);
    std::string to_raw_string(HELD const& held);

private:
    [[noreturn]] void fail(char const* text, char const* tag, char const* source_path);
    [[noreturn]] void overflow_error();
    void debug(std::string const& text);
    void debug(std::string const& format, std::string const& text);
    void message(int id, std::string const& arg1);
    void message(int id, std::string const& arg1, std::string const& arg2);
    std::string unit_name(int unit);
    int resolution(int unit);
};

#endif
