#ifndef BIG_SYS_H
#define BIG_SYS_H

/// @file
/// Exact quantities for electronic-design tools: times with their units, frequencies, unsigned
/// integers of up to 128 bits, decimal numbers held as text, and bit vectors in every radix.
///
/// The captions follow the library's source files: time values, 64-bit integer text, 128-bit
/// integers, utilities, radix conversion. Fractions are in big_fraction_sys.h.
///
/// Failures come in two kinds. An *internal error* (a failed precondition, an overflow, a division
/// by zero) goes to err_report_internal_error() and never returns; the standalone platform throws
/// ERR_INTERNAL_ERROR. Its tag is "2" and its path that of the source file, unless said otherwise.
/// The text of a time or of a bit vector that a user typed fails softly: by a result, a debug
/// message, or a numbered message where the caller asks for one. What a program checks first is a
/// text that is too long for big_ulong64_from_string(), big_long64_from_string() and big_atoi64(),
/// and a bit vector without a character: these are internal errors. One operation throws:
/// BIG_TIME::will_value_be_truncated().

#include "err_sys.h"

#include <atomic>
#include <cstring>
#include <string>
#include <type_traits>

/// Marks what the library exports.
#define BIG_API __attribute__((visibility("default")))
/// Marks a class member that the library keeps to itself.
#define BIG_LOCAL __attribute__((visibility("hidden")))

/// Marks a short member that is compiled into its callers. The library defines it so that the
/// member is kept as an exported symbol too.
#ifndef BIG_INLINE
#define BIG_INLINE inline
#endif

template <typename SEGMENT_BASE>
class PDB_SEGMENT_TEMPLATE;
class PDB_ANY_SEG_BASE;

/// The registration record of a stored class T; see PDB_THUNK_INFO.
template <typename T>
class PDB_CLASS_THUNK;

// ------------------------------------------------------------------------------------------------
// Time values
// ------------------------------------------------------------------------------------------------

/// A time, a frequency or a data rate: a signed 64-bit count of the storage unit of its category
/// (picoseconds, hertz, bits per second) and the unit in which it was given and in which it prints.
///
/// The unit does not change what the count means within a category: 2 ns and 2000 ps hold the same
/// 2000. Arithmetic works on the counts and does not look at units; only comparison and change of
/// unit do.
class BIG_API BIG_TIME {
    /// Enables an overload for pointers to a text. A parameter of that type would take a {} that
    /// means UNIT_NONE.
    template <typename TEXT>
    using FOR_TEXT_POINTER =
        std::enable_if_t<std::is_pointer_v<TEXT> && std::is_convertible_v<TEXT, std::string>, int>;

public:
    /// The units. The numbers are saved in databases and compared, so they never change.
    enum TIME_UNIT : int {
        MIN_TIME_UNITS = 0, ///< the first unit
        UNIT_NONE = 0,      ///< no unit: a plain count, which counts as a time
        UNIT_FS = 1,
        UNIT_PS = 2,
        UNIT_NS = 3,
        UNIT_US = 4,
        UNIT_MS = 5,
        UNIT_S = 6,
        UNIT_HZ = 7,
        UNIT_KHZ = 8,
        UNIT_MHZ = 9,
        UNIT_GHZ = 10,
        UNIT_TEN_TH_NS = 11, ///< a tenth of a nanosecond
        UNIT_BPS = 12,
        UNIT_MBPS = 13,
        UNIT_GBPS = 14,
        MAX_TIME_UNIT = 15, ///< one past the last unit; the answer for a text that names no unit
    };

    /// What a unit measures. 3 is never used.
    enum UNIT_CATEGORY : unsigned int {
        TIME_CATEGORY = 0,
        FREQUENCY_CATEGORY = 1,
        DATA_RATE_CATEGORY = 2,
        INVALID_CATEGORY = 4,
    };

    /// Entries of s_power_10_table.
    static constexpr unsigned long MAX_DIGITS_IN_SMALLEST_TIME_UNIT = 19;

    /// 1 s in picoseconds: what a frequency in hertz and its period in picoseconds multiply to.
    static constexpr long long PICOSECONDS_IN_SECOND = 1000000000000LL;

    // --- Units and their tables ---

    /// The name of each unit, which parsing accepts and printing appends; empty for UNIT_NONE.
    static char const* const s_unit_strings[MAX_TIME_UNIT];
    /// For each unit the power of ten that takes it to the storage unit of its category: 3 for ns
    /// (1000 ps), -3 for fs (1000 fs are 1 ps). A positive entry is also the number of decimal
    /// places that a value in the unit can carry without loss.
    static int const s_fraction_digits[MAX_TIME_UNIT];
    /// 10^0 to 10^18.
    static long long const s_power_10_table[MAX_DIGITS_IN_SMALLEST_TIME_UNIT];

    /// What a unit measures; INVALID_CATEGORY below 0 and from 15 on. Never fails.
    BIG_INLINE static UNIT_CATEGORY get_unit_category(TIME_UNIT unit);

    /// The name of a unit. Internal errors: "unit >= MIN_TIME_UNITS" below 0, "unit <
    /// MAX_TIME_UNIT" from 15 on.
    static char const* get_time_unit_string(TIME_UNIT unit);

    /// The name of the unit with a number. Internal error outside 0 to 14: "index >=
    /// MIN_TIME_UNITS && index < MAX_TIME_UNIT".
    static char const* get_unit_name(int index);

    /// The decimal places that a value in a unit can carry without loss. Internal errors: "unit >=
    /// MIN_TIME_UNITS" below 0, "unit < MAX_TIME_UNIT" from 15 on, and, for femtoseconds, which
    /// keep no decimal place in picoseconds, "max_precision >= 0 && max_precision <= USHRT_MAX".
    static unsigned short get_max_precision_for(TIME_UNIT unit);

    /// 10^index, for 0 to 18. Internal error above: "index < MAX_DIGITS_IN_SMALLEST_TIME_UNIT".
    static long long get_power_table(unsigned long index);

    /// Reads a unit's name without regard to letter case. Null and blank texts name UNIT_NONE; null
    /// also writes a debug message.
    ///
    /// @param unit receives the unit; left as it is when the text names none
    /// @return whether the text names a unit; if not, a debug message says so
    static bool extract_time_units(char const* text, TIME_UNIT& unit);

    /// Takes the numerically smaller of two units, which is the unit of a sum; the count stays.
    /// Smaller by number, not by size: ps (2) beats ns (3), and UNIT_NONE (0) beats everything.
    BIG_INLINE void set_smaller_unit(TIME_UNIT a, TIME_UNIT b) { m_unit = a < b ? a : b; }

    // --- Construction and setting from numbers ---

    /// 0 with UNIT_NONE, the default state.
    BIG_INLINE BIG_TIME() {}
    BIG_INLINE BIG_TIME(BIG_TIME const& other) : m_value(other.m_value), m_unit(other.m_unit) {}
    BIG_INLINE BIG_TIME& operator=(BIG_TIME const& other) {
        m_value = other.m_value;
        m_unit = other.m_unit;
        return *this;
    }
    /// Does nothing. It is not defaulted because arrays of a class with a destructor of its own
    /// keep their count in front, on which stored arrays rely.
    BIG_INLINE ~BIG_TIME() {}

    /// A number of units, as set_time() takes it. When it refuses, the default state stays and the
    /// debug message "BIG_TIME constructor failed" is written.
    BIG_INLINE BIG_TIME(long long value, TIME_UNIT unit);
    BIG_TIME(long long value, std::string const& unit_text);
    /// A unit by its number, of which 0 would be taken for a null unit_text.
    template <typename NUMBER, std::enable_if_t<std::is_integral_v<NUMBER>, int> = 0>
    BIG_TIME(long long value, NUMBER unit_number) = delete;
    /// For a text in quotes: without this form a 0 before it might be a null text as well.
    template <typename TEXT, FOR_TEXT_POINTER<TEXT> = 0>
    BIG_LOCAL BIG_TIME(long long value, TEXT unit_text) : BIG_TIME(value, std::string(unit_text)) {}

    /// Holds a number of units, scaled into the storage unit. A unit text is a unit's name in any
    /// letter case, or blank for UNIT_NONE. A unit outside 0 to 14, or a text that names none,
    /// returns false and changes nothing. Internal errors are those of compute_storage_number().
    BIG_INLINE bool set_time(long long value, TIME_UNIT unit);
    bool set_time(long long value, std::string const& unit_text);
    template <typename NUMBER, std::enable_if_t<std::is_integral_v<NUMBER>, int> = 0>
    bool set_time(long long value, NUMBER unit_number) = delete;
    template <typename TEXT, FOR_TEXT_POINTER<TEXT> = 0>
    BIG_LOCAL bool set_time(long long value, TEXT unit_text) {
        return set_time(value, std::string(unit_text));
    }

    /// Holds a plain count with UNIT_NONE.
    BIG_INLINE BIG_TIME& operator=(long long value);

    // --- Construction and setting from text ---

    /// A text, as the set_time() with the same arguments takes it. When that refuses, the default
    /// state stays and the debug message "BIG_TIME constructor failed" is written.
    BIG_TIME(std::string const& number_text, TIME_UNIT unit, bool post_messages);
    BIG_TIME(std::string const& number_text, std::string const& unit_text, bool post_messages);
    BIG_TIME(std::string const& text, bool post_messages);
    /// A number's text and a unit's without post_messages: the unit would be taken for it.
    BIG_TIME(std::string const& number_text, TIME_UNIT unit) = delete;
    BIG_TIME(std::string const& number_text, char const* unit_text) = delete;

    /// Reads a decimal number in a unit: an optional sign, digits with at most one point, and
    /// digits finer than the unit holds are cut off. The last form reads number and unit from one
    /// text: "1.5ns", "-20 ps", "250". A unit text is a unit's name in any letter case, or blank
    /// for UNIT_NONE. Whatever is refused leaves the default state.
    ///
    /// A number that begins with its point loses the zeros behind it, on which texts rely: ".05 ns"
    /// is 500 ps, "0.05 ns" is 50 ps. The count is at most 2^63 - 1 on either side of 0: the lowest
    /// one, -2^63, has no text. Debug messages are those of big_get_time_value() and
    /// is_logically_legal().
    ///
    /// @param post_messages whether to post message 1 when the text is refused and message 2 when
    ///                      digits other than 0 are cut off
    /// @return whether the text was read
    bool set_time(std::string const& number_text, TIME_UNIT unit, bool post_messages);
    bool set_time(std::string const& number_text, std::string const& unit_text, bool post_messages);
    bool set_time(std::string const& text, bool post_messages);
    bool set_time(std::string const& number_text, TIME_UNIT unit) = delete;
    bool set_time(std::string const& number_text, char const* unit_text) = delete;

    /// set_time(text, true), whose result is dropped.
    BIG_TIME& operator=(std::string const& text);

    /// Splits a text into its number and its unit: the longest prefix of the characters
    /// "1234567890.-+" and, without the blanks between, the rest. White space at both ends goes.
    static void separate_time_num_and_unit(std::string const& text, std::string& number,
                                           std::string& unit);

    /// Brings the text of a number into its canonical form for a unit: that of big_get_time_value()
    /// without a plus sign and without the digits finer than the unit holds. Zeros in front of
    /// those stay, and digits cut from whole femtoseconds come back as zeros:
    ///
    ///     ns    +01.500  1.5      .05  .5       0.0001  0.000
    ///     fs    1234     1000     999  0
    ///
    /// @param text          the number; its canonical form afterwards, untouched on failure
    /// @param post_messages whether to post message 2 when digits other than 0 were cut off
    /// @return false for an illegal number, with the debug message of big_get_time_value(), and for
    ///         a unit outside 0 to 14
    static bool format_time_string(std::string& text, TIME_UNIT const& unit, bool post_messages);

    /// Reads a number in a unit into the storage unit, by the rules of set_time() and with its
    /// debug messages.
    ///
    /// @param value         receives the number in the storage unit; untouched unless 0 is returned
    /// @param post_messages whether to post message 2 when digits other than 0 are cut off
    /// @return 0 legal; 1 illegal number, above 2^63 - 1 on either side of 0, or a negative
    ///         frequency or rate; 2 unit outside 0 to 14
    static int string_to_big_int(std::string const& text, TIME_UNIT const& unit, long long& value,
                                 bool post_messages);

    /// Whether set_time() would read the text: string_to_big_int()'s status, and of its messages
    /// only the debug messages. A unit text that names no unit gives 2.
    static int is_legal(std::string const& number_text, TIME_UNIT unit);
    static int is_legal(std::string const& number_text, std::string const& unit_text);
    static int is_legal(std::string const& text);

    /// Whether storing a text would cut off digits other than 0, and a preview of those it keeps.
    /// The preview is for showing and cannot be read back. It is relied on to the letter:
    ///
    ///     1.23456 ns     true   1.234 ns
    ///     1.5 ps         true   1. ps
    ///     .00012 ns      true   .000 ns      set_time() drops the zeros behind a leading point
    ///     -1.23456 ns    true   -.1234 ns    a '-' for either sign, and the point a place early
    ///     1500 fs        true   1 fs         the digits kept, without three zeros
    ///     0 fs           true   0 fs         also for 0: three digits of femtoseconds are cut
    ///     12345.6 fs     std::out_of_range   the point stood behind more digits than are kept
    ///
    /// Never posts. A text without a number or a known unit is not truncated; that the number is
    /// legal is not checked.
    ///
    /// @param text           number and unit; null or empty gives false and leaves truncated_text
    /// @param truncated_text receives the preview if digits are cut, else the text as given; with
    ///                       std::out_of_range it is left with the sign and the digits kept
    static bool will_value_be_truncated(char const* text, std::string& truncated_text);

    // --- Storage ---

    /// The stored count as it is.
    BIG_INLINE long long get_time_value() const { return m_value; }
    /// The unit.
    BIG_INLINE TIME_UNIT get_time_unit() const { return static_cast<TIME_UNIT>(m_unit); }
    /// Whether the stored count is below 0.
    BIG_INLINE bool is_negative() const { return m_value < 0; }

    /// Scales a number of units into the storage unit, exactly. Femtoseconds are cut toward zero to
    /// whole picoseconds.
    ///
    /// Internal errors: "Wrong concept: Negative frequency!" and "Wrong concept: 0 MHz!" for a
    /// negative or zero frequency or data rate; "Overflow", with the tag "BIG" and the path
    /// "h/big_sys", when the result does not fit 64 bits.
    ///
    /// @param value the number
    /// @param unit  0 to 14; outside, the internal errors of get_time_unit_string()
    BIG_INLINE static long long compute_storage_number(long long value, TIME_UNIT unit);

    /// The stored count; for a frequency other than 0 its period in picoseconds, cut toward zero.
    BIG_INLINE long long get_storage_number() const;

    /// Stores a count and keeps the unit. For a frequency the count is a period in picoseconds, of
    /// which the frequency, cut toward zero, is stored; 0 is the internal error "Integer division
    /// by zero".
    BIG_INLINE void set_storage_number(long long count);

    /// Whether get_storage_number() fits a signed integer of some bytes. The limits are doubles, on
    /// which callers rely: 7 bytes admit 2^55 too, 8 and more admit everything. The bits are
    /// counted in 32 bits, so byte_count is taken modulo 2^29; 0 bytes admit only 0.
    bool safe_to_convert(unsigned int byte_count) const;

    /// get_storage_number() as a 32-bit delay, or -2147483647 (0x80000001) when it does not fit.
    BIG_INLINE int convert_to_tsm_delay() const;

    /// False only for a frequency of 0; a data rate of 0 is legal.
    BIG_INLINE bool is_legal() const { return !(is_frequency(m_unit) && m_value == 0); }

    /// False for a negative frequency or data rate, with a debug message; true for anything else.
    static bool is_logically_legal(long long const& value, TIME_UNIT const& unit);

    // --- Arithmetic, on the stored counts whatever their units ---

    /// Sum and difference, which wrap; the unit is the one set_smaller_unit() takes.
    BIG_INLINE BIG_TIME operator+(BIG_TIME const& other) const;
    BIG_INLINE BIG_TIME operator-(BIG_TIME const& other) const;
    BIG_INLINE BIG_TIME& operator+=(BIG_TIME const& other) { return *this = *this + other; }
    BIG_INLINE BIG_TIME& operator-=(BIG_TIME const& other) { return *this = *this - other; }

    /// The negated count with UNIT_NONE: negation drops the unit. Internal error "Overflow" for
    /// -2^63.
    BIG_INLINE BIG_TIME operator-();

    /// Quotient, cut toward zero, and remainder, with the sign of the dividend, of two counts.
    /// Internal errors: "Division by Zero", "Modulo by Zero"; "Overflow", with the tag "BIG" and
    /// the path "h/big_sys", for -2^63 by -1.
    BIG_INLINE long long operator/(BIG_TIME const& other) const;
    BIG_INLINE long long operator%(BIG_TIME const& other) const;

    /// The count times a factor, which wraps; the unit stays.
    BIG_INLINE BIG_TIME operator*(long long const& factor) const;
    BIG_INLINE BIG_TIME& operator*=(long long const& factor) { return *this = *this * factor; }

    /// The count divided by a number, cut toward zero; the unit stays. Internal errors: "Division
    /// by Zero"; "Overflow", with the tag "BIG" and the path "h/big_sys", for -2^63 by -1.
    BIG_INLINE BIG_TIME operator/(long long const& divisor) const;
    BIG_INLINE BIG_TIME& operator/=(long long const& divisor) { return *this = *this / divisor; }

    /// The remainder of the count by a number; the unit becomes UNIT_NONE. Internal errors: "Modulo
    /// by Zero"; "Overflow", with the tag "BIG" and the path "h/big_sys", for -2^63 by -1.
    BIG_INLINE BIG_TIME& operator%=(long long const& divisor);

    // --- Comparison and change of unit ---

    /// Equal counts of one category; a frequency and a data rate of equal count are equal too. With
    /// the switch "big_time_strict_unit_mode" only a data rate on the left equals a frequency.
    ///
    /// The switch is read on the first call and kept. Where the platform cannot read it and throws
    /// (the standalone one std::runtime_error), the call ends there and the next one asks again.
    BIG_INLINE bool operator==(BIG_TIME const& other) const;

    /// Compares the counts. When neither is 0 and the categories differ, the switches
    /// "big_time_debug_unit_mismatches", "big_time_strict_unit_mode" and
    /// "big_time_ie_on_unit_mismatch" ask for a debug message, and the last two for the internal
    /// error "Cannot compare incompatible units!" (the last one not for a frequency and a rate).
    /// They are read as that of operator== is, with the same exception.
    BIG_INLINE bool operator<(BIG_TIME const& other) const;

    /// Changes one time unit into another; the count stays. A change from or to a frequency or data
    /// rate is refused with a debug message, and with the switch
    /// "big_time_ie_on_unit_conversion_error" is an internal error of the same text. Internal error
    /// "Time Unit out of range" outside 1 to 14. The switch is read as that of operator== is, with
    /// the same exception; the unit then stays.
    void set_time_unit(TIME_UNIT unit);

    // --- Text ---

    /// Places the decimal point for a unit in a text of an optional sign and decimal digits: 5 in
    /// ns becomes 0.005. Internal error "result_string != NULL" for a null text.
    ///
    /// @param unit 0 to 14; outside, the internal errors of get_time_unit_string()
    void add_decimal(std::string* text, TIME_UNIT unit) const;

    /// The number in a unit, rounded half up on the magnitude. A frequency in a time unit prints
    /// its period and the other way round, with "INF" for 0.
    ///
    /// @param text      receives the number as its whole content, and is returned
    /// @param unit      0 to 14, or -1 for the own unit; outside, the internal errors of
    ///                  get_time_unit_string(). A frequency printed with -1 prints its period's
    ///                  digits: to_string() does not.
    /// @param precision decimal places to keep; never adds any
    /// @param trim      whether to drop trailing zeros, all but one after the point
    std::string* to_string_without_unit(std::string* text, TIME_UNIT unit, unsigned short precision,
                                        bool trim) const;
    std::string to_string_without_unit(TIME_UNIT unit, unsigned short precision, bool trim) const;

    /// The same, then a blank and the unit's name; UNIT_NONE has neither.
    std::string* to_string(std::string* text, TIME_UNIT unit, unsigned short precision,
                           bool trim) const;
    std::string to_string(TIME_UNIT unit, unsigned short precision, bool trim) const;

    /// Number and unit, trimmed. A frequency or data rate prints in its own unit, everything else
    /// in the unit from ps to s that its magnitude asks for before rounding.
    ///
    /// @param precision decimal places to keep; 0 is taken as 1
    std::string* to_string(std::string* text, unsigned short precision) const;
    std::string to_string(unsigned short precision) const;
    /// A unit without precision and trim: its number would be taken for the precision.
    std::string* to_string(std::string* text, TIME_UNIT unit) const = delete;
    std::string to_string(TIME_UNIT unit) const = delete;

    /// Every digit in the own unit, trailing zeros dropped but one after the point, a blank and the
    /// unit's name; the blank is there for UNIT_NONE too.
    std::string to_raw_string() const;

    // --- Storage in a database ---

    /// Names the members to a segment, which reads or writes them; its end_object() is the result.
    bool operator<<(PDB_SEGMENT_TEMPLATE<PDB_ANY_SEG_BASE>& segment);

    /// The class's registration record.
    static PDB_CLASS_THUNK<BIG_TIME> s_thunk;

private:
    friend class BIG_FREQUENCY;

    using COUNT_BITS = unsigned long long; ///< a count as its bits, whose arithmetic wraps

    /// The delay of a time that does not fit 32 bits: 0x80000001.
    static constexpr int NO_DELAY = -2147483647;

    BIG_LOCAL static bool is_frequency(int unit) { return unit >= UNIT_HZ && unit <= UNIT_GHZ; }
    BIG_LOCAL static bool is_data_rate(int unit) { return unit >= UNIT_BPS && unit <= UNIT_GBPS; }
    BIG_LOCAL static bool is_unit(int unit) {
        return unit >= MIN_TIME_UNITS && unit < MAX_TIME_UNIT;
    }

    /// Whether one of two categories is frequency and the other data rate.
    BIG_LOCAL static bool is_frequency_against_rate(UNIT_CATEGORY a, UNIT_CATEGORY b) {
        return (a == FREQUENCY_CATEGORY && b == DATA_RATE_CATEGORY)
               || (a == DATA_RATE_CATEGORY && b == FREQUENCY_CATEGORY);
    }

    /// A time of a count and a unit. It is no constructor, which would be in the way of calls with
    /// an unsigned number.
    BIG_LOCAL static BIG_TIME of(COUNT_BITS count, int unit) {
        BIG_TIME time;
        time.m_value = static_cast<long long>(count);
        time.m_unit = unit;
        return time;
    }

    /// Whether the quotient of the count by a number is 2^63, the one that does not fit.
    BIG_LOCAL bool quotient_overflows(long long divisor) const {
        return divisor == -1 && static_cast<COUNT_BITS>(m_value) == COUNT_BITS{1} << 63;
    }
    BIG_LOCAL long long divided_by(long long divisor) const {
        if (divisor == 0)
            report_division_by_zero();
        if (quotient_overflows(divisor))
            overflow_error();
        return m_value / divisor;
    }

    /// compute_storage_number() in full: femtoseconds and whatever it refuses.
    static long long scale_by_all_rules(long long value, TIME_UNIT unit);

    // Once their switches are read and found off, the comparisons are this short; the flags then
    // are true for good. Until then, and with a switch on, the comparisons are those by switches,
    // which read them on their first call.
    static std::atomic<bool> s_equal_is_by_default;
    static std::atomic<bool> s_less_is_by_default;
    bool is_equal_by_switches(BIG_TIME const& other) const;
    bool is_less_by_switches(BIG_TIME const& other) const;

    static void tell_constructor_failed();

    // The reports of the checks that are compiled into callers.
    [[noreturn]] static void report_division_by_zero();
    [[noreturn]] static void report_modulo_by_zero();
    [[noreturn]] static void report_period_of_zero();
    [[noreturn]] static void report_negation_overflow();
    /// Reports the internal error "Overflow" with the tag "BIG".
    [[noreturn]] BIG_LOCAL static void overflow_error() {
        err_report_internal_error("Overflow", "BIG", "h/big_sys", __LINE__);
    }

    long long m_value = 0;
    int m_unit = UNIT_NONE; ///< a TIME_UNIT, as the integer that databases transfer
};

BIG_INLINE BIG_TIME::UNIT_CATEGORY BIG_TIME::get_unit_category(TIME_UNIT unit) {
    if (is_frequency(unit))
        return FREQUENCY_CATEGORY;
    if (is_data_rate(unit))
        return DATA_RATE_CATEGORY;
    return is_unit(unit) ? TIME_CATEGORY : INVALID_CATEGORY;
}

BIG_INLINE BIG_TIME::BIG_TIME(long long value, TIME_UNIT unit) {
    if (!set_time(value, unit))
        tell_constructor_failed();
}

BIG_INLINE bool BIG_TIME::set_time(long long value, TIME_UNIT unit) {
    if (!is_unit(unit))
        return false;
    m_value = compute_storage_number(value, unit);
    m_unit = unit;
    return true;
}

BIG_INLINE BIG_TIME& BIG_TIME::operator=(long long value) {
    set_time(value, UNIT_NONE);
    return *this;
}

BIG_INLINE long long BIG_TIME::compute_storage_number(long long value, TIME_UNIT unit) {
    // A number above 0, and any number of a time, is only multiplied; of a unit that is none and of
    // femtoseconds neither is.
    long long count = 0;
    bool const is_scaled_up = is_unit(unit) && unit != UNIT_FS;
    if (is_scaled_up && (value > 0 || get_unit_category(unit) == TIME_CATEGORY)
        && !__builtin_mul_overflow(value, s_power_10_table[s_fraction_digits[unit]], &count))
        return count;
    return scale_by_all_rules(value, unit);
}

BIG_INLINE long long BIG_TIME::get_storage_number() const {
    return is_frequency(m_unit) && m_value != 0 ? PICOSECONDS_IN_SECOND / m_value : m_value;
}

BIG_INLINE void BIG_TIME::set_storage_number(long long count) {
    if (!is_frequency(m_unit)) {
        m_value = count;
        return;
    }
    if (count == 0)
        report_period_of_zero();
    m_value = PICOSECONDS_IN_SECOND / count;
}

BIG_INLINE int BIG_TIME::convert_to_tsm_delay() const {
    long long const count = get_storage_number();
    int const delay = static_cast<int>(count);
    return delay == count ? delay : NO_DELAY;
}

// Sums, differences and products wrap, as callers rely on; unsigned arithmetic says so.

BIG_INLINE BIG_TIME BIG_TIME::operator+(BIG_TIME const& other) const {
    return of(static_cast<COUNT_BITS>(m_value) + static_cast<COUNT_BITS>(other.m_value),
              m_unit < other.m_unit ? m_unit : other.m_unit);
}

BIG_INLINE BIG_TIME BIG_TIME::operator-(BIG_TIME const& other) const {
    return of(static_cast<COUNT_BITS>(m_value) - static_cast<COUNT_BITS>(other.m_value),
              m_unit < other.m_unit ? m_unit : other.m_unit);
}

BIG_INLINE BIG_TIME BIG_TIME::operator*(long long const& factor) const {
    return of(static_cast<COUNT_BITS>(m_value) * static_cast<COUNT_BITS>(factor), m_unit);
}

BIG_INLINE BIG_TIME BIG_TIME::operator-() {
    long long negated = 0;
    if (__builtin_sub_overflow(0, m_value, &negated))
        report_negation_overflow();
    BIG_TIME result; // without the unit, as callers rely on
    result.m_value = negated;
    return result;
}

BIG_INLINE BIG_TIME BIG_TIME::operator/(long long const& divisor) const {
    return of(static_cast<COUNT_BITS>(divided_by(divisor)), m_unit);
}

BIG_INLINE long long BIG_TIME::operator/(BIG_TIME const& other) const {
    return divided_by(other.m_value);
}

BIG_INLINE long long BIG_TIME::operator%(BIG_TIME const& other) const {
    if (other.m_value == 0)
        report_modulo_by_zero();
    if (quotient_overflows(other.m_value))
        overflow_error();
    return m_value % other.m_value;
}

BIG_INLINE BIG_TIME& BIG_TIME::operator%=(long long const& divisor) {
    BIG_TIME plain_divisor;
    plain_divisor = divisor;
    return *this = *this % plain_divisor; // the unit becomes UNIT_NONE, as callers rely on
}

BIG_INLINE bool BIG_TIME::operator==(BIG_TIME const& other) const {
    if (!s_equal_is_by_default.load(std::memory_order_relaxed))
        return is_equal_by_switches(other);
    if (m_value != other.m_value)
        return false;
    UNIT_CATEGORY const a = get_unit_category(get_time_unit());
    UNIT_CATEGORY const b = get_unit_category(other.get_time_unit());
    return a == b || is_frequency_against_rate(a, b);
}

BIG_INLINE bool BIG_TIME::operator<(BIG_TIME const& other) const {
    if (!s_less_is_by_default.load(std::memory_order_relaxed))
        return is_less_by_switches(other);
    return m_value < other.m_value;
}

/// A clock frequency in hertz as a double, beside periods in integer picoseconds. Exactness is not
/// its goal: results are those of double arithmetic.
class BIG_API BIG_FREQUENCY {
public:
    /// No frequency: 0 Hz.
    static BIG_FREQUENCY BIG_INVALID_FREQUENCY;

    /// No frequency: 0 Hz.
    BIG_INLINE BIG_FREQUENCY() {}
    /// compute_from_period(period), a period in picoseconds.
    BIG_INLINE BIG_FREQUENCY(int period) { compute_from_period(period); }
    /// A number of hertz, which would be taken for a period.
    template <typename NUMBER, std::enable_if_t<std::is_floating_point_v<NUMBER>, int> = 0>
    BIG_FREQUENCY(NUMBER hertz) = delete;
    /// compute_from_big_time(time).
    BIG_INLINE BIG_FREQUENCY(BIG_TIME& time) { compute_from_big_time(time); }

    /// The frequency in hertz; 0 means none.
    BIG_INLINE double get_value() const { return m_value; }

    /// Takes the frequency of a period.
    ///
    /// @param period picoseconds; -2147483647 (0x80000001) gives 0 Hz, 0 gives infinity
    BIG_INLINE void compute_from_period(int period);

    /// Takes a frequency as it is, unless its period is below 1 ps, which gives 0 Hz; takes any
    /// other time, a data rate too, as a period in picoseconds.
    BIG_INLINE void compute_from_big_time(BIG_TIME time);

    /// Writes the period in picoseconds, cut toward zero; leaves *period when the frequency is 0. A
    /// period that does not fit, a not-a-number included, becomes the smallest number of the type.
    BIG_INLINE void compute_period(int* period);
    BIG_INLINE void compute_period(long long* period);

    /// Names the members to a segment, which reads or writes them; its end_object() is the result.
    bool operator<<(PDB_SEGMENT_TEMPLATE<PDB_ANY_SEG_BASE>& segment);

    /// The class's registration record.
    static PDB_CLASS_THUNK<BIG_FREQUENCY> s_thunk;

private:
    friend BIG_FREQUENCY operator*(BIG_FREQUENCY frequency, long long factor);
    friend BIG_FREQUENCY operator/(BIG_FREQUENCY frequency, long long divisor);

    /// 1 s in picoseconds as the double of the conversions.
    static constexpr double PICOSECONDS_IN_SECOND = 1e12;

    /// Ties that double to the integer rule by which BIG_TIME turns a period of 1 ps into hertz.
    BIG_LOCAL static void check_picoseconds_in_second() {
        BIG_TIME one_time_unit(1, BIG_TIME::UNIT_HZ);
        one_time_unit.set_storage_number(1);
        if (one_time_unit.get_time_value() != 1000000000000LL)
            report_picoseconds_in_second();
    }
    [[noreturn]] static void report_picoseconds_in_second();

    double m_value = 0.0;
};

BIG_INLINE void BIG_FREQUENCY::compute_from_period(int period) {
    if (period == BIG_TIME::NO_DELAY) {
        m_value = 0.0;
        return;
    }
    check_picoseconds_in_second();
    m_value = PICOSECONDS_IN_SECOND / period; // a period of 0 gives infinity
}

BIG_INLINE void BIG_FREQUENCY::compute_from_big_time(BIG_TIME time) {
    int const delay = time.convert_to_tsm_delay();
    if (!BIG_TIME::is_frequency(time.get_time_unit()))
        compute_from_period(delay);
    else
        m_value = delay == 0 ? 0.0 : static_cast<double>(time.get_time_value());
}

// What does not fit the integer, a not-a-number included, becomes its smallest number, as the
// common hardware has it.

BIG_INLINE void BIG_FREQUENCY::compute_period(int* period) {
    if (m_value == 0.0)
        return;
    check_picoseconds_in_second();
    double const picoseconds = PICOSECONDS_IN_SECOND / m_value;
    // The smallest number may have a fraction to lose.
    bool const fits = picoseconds > -0x1p31 - 1 && picoseconds < 0x1p31;
    *period = fits ? static_cast<int>(picoseconds) : -2147483647 - 1;
}

BIG_INLINE void BIG_FREQUENCY::compute_period(long long* period) {
    if (m_value == 0.0)
        return;
    check_picoseconds_in_second();
    double const picoseconds = PICOSECONDS_IN_SECOND / m_value;
    bool const fits = picoseconds >= -0x1p63 && picoseconds < 0x1p63;
    *period = fits ? static_cast<long long>(picoseconds) : -9223372036854775807LL - 1;
}

/// A frequency times a number, in double arithmetic. Beside a sum in a caller that was compiled to
/// fuse products and sums, the two are rounded once.
BIG_INLINE BIG_API BIG_FREQUENCY operator*(BIG_FREQUENCY frequency, long long factor) {
    frequency.m_value = static_cast<double>(factor) * frequency.m_value;
    return frequency;
}
/// A frequency divided by a number, in double arithmetic; 0 gives an infinity or not-a-number.
BIG_INLINE BIG_API BIG_FREQUENCY operator/(BIG_FREQUENCY frequency, long long divisor) {
    frequency.m_value /= static_cast<double>(divisor);
    return frequency;
}

// ------------------------------------------------------------------------------------------------
// 64-bit integer text
// ------------------------------------------------------------------------------------------------

/// A signed 64-bit integer in decimal.
///
/// @param out receives the text as its whole content, and is returned
BIG_API std::string* big_long64_to_string(long long value, std::string* out);
BIG_API std::string big_long64_to_string(long long value);

/// An unsigned 64-bit integer in decimal.
///
/// @param out receives the text as its whole content, and is returned
BIG_API std::string* big_ulong64_to_string(unsigned long long value, std::string* out);
BIG_API std::string big_ulong64_to_string(unsigned long long value);

/// The number that the decimal digits of a text form; every other character is skipped: "1,234" is
/// 1234, "-7" is 7, "abc" is 0. Internal error "big number over flow" from the 21st digit on
/// (leading zeros count) and when the first 19 of 20 digits times ten do not fit 64 bits; the 20th
/// digit itself is added without a check and may wrap.
BIG_API unsigned long long big_ulong64_from_string(std::string const& text);

/// The same, negated in two's complement when the text holds a '-' anywhere.
BIG_API long long big_long64_from_string(std::string const& text);

// ------------------------------------------------------------------------------------------------
// 128-bit integers
// ------------------------------------------------------------------------------------------------

class BIG_ULONG128_DECIMAL_TABLE;

/// An unsigned integer of up to 128 bits whose arithmetic never wraps: overflow, underflow and
/// division by zero are internal errors, and the operands keep their values.
///
/// An erased value is undefined: is_defined() is false and it is equal only to another one, less
/// than every defined value, and 0 where a number is needed.
class BIG_API BIG_ULONG128 {
    /// Enables an overload for the types of numbers that a value is, or is not, constructed from:
    /// every integer type is one, no floating-point type is.
    template <typename NUMBER, bool CONSTRUCTS>
    using FOR_NUMBER = std::enable_if_t<
        !std::is_class_v<NUMBER> && std::is_constructible_v<BIG_ULONG128, NUMBER> == CONSTRUCTS,
        int>;

public:
    /// Cells of 32 bits that a value can use.
    static constexpr int MAX_CELL = 4;

    /// Powers of ten from 10^0 to 10^38, built when the library is loaded.
    static BIG_ULONG128_DECIMAL_TABLE s_table;

    // --- Construction and assignment ---

    /// 0.
    BIG_INLINE BIG_ULONG128() : BIG_ULONG128(0, 1) {}
    BIG_INLINE BIG_ULONG128(unsigned int value) : BIG_ULONG128(value, 1) {}
    BIG_INLINE BIG_ULONG128(unsigned long long value)
        : BIG_ULONG128(value, value > 0xFFFFFFFFu ? 2 : 1) {}
    BIG_LOCAL BIG_ULONG128(unsigned long value)
        : BIG_ULONG128(static_cast<unsigned long long>(value)) {}
    /// A negative number gives 0 and a debug message.
    BIG_ULONG128(int value);
    BIG_LOCAL BIG_ULONG128(long long value)
        : BIG_ULONG128(value < 0 ? BIG_ULONG128(-1)
                                 : BIG_ULONG128(static_cast<unsigned long long>(value))) {}
    BIG_LOCAL BIG_ULONG128(long value) : BIG_ULONG128(static_cast<long long>(value)) {}
    BIG_INLINE BIG_ULONG128(BIG_ULONG128 const& other)
        : BIG_ULONG128(other.value(), other.m_length) {}
    // NOLINTNEXTLINE(bugprone-unhandled-self-assignment): all is read before any of it is written
    BIG_INLINE BIG_ULONG128& operator=(BIG_ULONG128 const& other) {
        assign(other.value(), other.m_length);
        return *this;
    }
    BIG_INLINE BIG_ULONG128& operator=(unsigned long long value) {
        store_two_cells(0, value);
        m_length = value > 0xFFFFFFFFu ? 2 : 1;
        return *this;
    }
    BIG_INLINE BIG_ULONG128& operator=(unsigned int const& value) {
        assign(value, 1);
        return *this;
    }
    /// Any other integer, as it is constructed from.
    template <typename INTEGER, FOR_NUMBER<INTEGER, true> = 0>
    BIG_LOCAL BIG_ULONG128& operator=(INTEGER value) {
        return *this = BIG_ULONG128(value);
    }
    BIG_INLINE ~BIG_ULONG128() {}

    // --- Arithmetic ---

    /// Adds other x 2^(32 shift) in place.
    ///
    /// Internal errors, which leave the value as it was: "Overflow" when other would reach below
    /// cell 0 or past cell 3, "i < BIG_ULONG128::MAX_CELL" for another negative shift, and
    /// "(m_length+1) <= BIG_ULONG128::MAX_CELL" for a carry out of cell 3.
    void partial_add(int shift, BIG_ULONG128 const& other);

    /// Sum. Internal error on overflow: "(m_length+1) <= BIG_ULONG128::MAX_CELL".
    BIG_INLINE BIG_ULONG128 operator+(BIG_ULONG128 const& other) const;
    BIG_INLINE BIG_ULONG128& operator+=(BIG_ULONG128 const& other) { return *this = *this + other; }
    BIG_INLINE BIG_ULONG128& operator++() { return *this = *this + BIG_ULONG128(1u); }
    BIG_INLINE BIG_ULONG128 operator++(int);

    /// Difference. Internal error when other is the larger: "Underflow".
    BIG_INLINE BIG_ULONG128 operator-(BIG_ULONG128 const& other) const;
    BIG_INLINE BIG_ULONG128& operator-=(BIG_ULONG128 const& other) { return *this = *this - other; }
    BIG_INLINE BIG_ULONG128& operator--() { return *this = *this - BIG_ULONG128(1u); }
    BIG_INLINE BIG_ULONG128 operator--(int);

    /// Product. Internal errors on overflow: "Overflow" when a partial product would reach past
    /// cell 3, "(m_length+1) <= BIG_ULONG128::MAX_CELL" when a carry would.
    BIG_INLINE BIG_ULONG128 operator*(BIG_ULONG128 const& other) const;
    BIG_INLINE BIG_ULONG128& operator*=(BIG_ULONG128 const& other) { return *this = *this * other; }

    /// Quotient, rounded down. Internal error: "Division by Zero", also for a negative divisor,
    /// which is constructed as 0.
    BIG_INLINE BIG_ULONG128 operator/(unsigned int const& divisor) const {
        return *this / BIG_ULONG128(divisor);
    }
    BIG_INLINE BIG_ULONG128 operator/(BIG_ULONG128 const& divisor) const;
    /// Without these any other number would be cut to an unsigned int.
    template <typename INTEGER, FOR_NUMBER<INTEGER, true> = 0>
    BIG_LOCAL BIG_ULONG128 operator/(INTEGER divisor) const {
        return *this / BIG_ULONG128(divisor);
    }
    template <typename NUMBER, FOR_NUMBER<NUMBER, false> = 0>
    BIG_ULONG128 operator/(NUMBER divisor) const = delete;
    BIG_INLINE BIG_ULONG128& operator/=(BIG_ULONG128 const& divisor);

    /// Remainder. Internal errors: "Division by Zero" from %, "Modulo by Zero" from %=; "Underflow"
    /// for an erased value.
    BIG_INLINE BIG_ULONG128 operator%(BIG_ULONG128 const& divisor) const;
    BIG_INLINE BIG_ULONG128& operator%=(BIG_ULONG128 const& divisor);

    // --- Comparison and logic; zero is false ---

    BIG_INLINE bool operator==(BIG_ULONG128 const& other) const {
        return (m_length == other.m_length)
               & (((all_cells() ^ other.all_cells()) & bits_below(m_length)) == 0);
    }
    BIG_INLINE bool operator!=(BIG_ULONG128 const& other) const { return !(*this == other); }
    BIG_INLINE bool operator>(BIG_ULONG128 const& other) const {
        // Where the cells count, the lengths are equal, and so one mask serves both.
        WIDE const mask = bits_below(m_length);
        return is_greater(m_length, all_cells() & mask, other.m_length, other.all_cells() & mask);
    }
    BIG_INLINE bool operator>=(BIG_ULONG128 const& other) const { return !(other > *this); }
    BIG_INLINE bool operator<(BIG_ULONG128 const& other) const { return other > *this; }
    BIG_INLINE bool operator<=(BIG_ULONG128 const& other) const { return !(*this > other); }
    BIG_INLINE bool operator!() { return *this == BIG_ULONG128(); }
    BIG_INLINE bool operator&&(BIG_ULONG128 const& other) const {
        return *this != BIG_ULONG128() && other != BIG_ULONG128();
    }
    BIG_INLINE bool operator||(BIG_ULONG128 const& other) const {
        return *this != BIG_ULONG128() || other != BIG_ULONG128();
    }

    // --- Access ---

    /// The low 64 bits.
    BIG_INLINE unsigned long long get_low_qword() {
        return static_cast<unsigned long long>(value());
    }
    /// The high 64 bits.
    BIG_INLINE unsigned long long get_high_qword() {
        return static_cast<unsigned long long>(value() >> 64);
    }
    /// Whether the value is defined; see erase().
    BIG_INLINE bool is_defined() { return m_length != 0; }
    /// Makes the value undefined.
    BIG_INLINE void erase() { m_length = 0; }

    // --- Text ---

    /// The value in decimal, without leading zeros. Zero and an erased value give an empty text:
    /// callers that want "0" supply it.
    ///
    /// @param out receives the text as its whole content, and is returned
    std::string* to_string(std::string* out) const;
    std::string to_string() const;

private:
    friend class BIG_ULONG128_INSPECTOR;

    // What fits is computed on the machine's own 128-bit integer. The length counts all the same:
    // it orders values before their cells do, and the cells above it keep what they held, so that
    // whoever reads the cells masks them.

    __extension__ using WIDE = unsigned __int128;

    BIG_LOCAL BIG_ULONG128(WIDE value, int length) : m_length(length) {
        store_two_cells(0, static_cast<unsigned long long>(value));
        store_two_cells(2, static_cast<unsigned long long>(value >> 64));
    }

    /// A defined value in as few cells as it needs.
    BIG_LOCAL static BIG_ULONG128 of(WIDE value) { return BIG_ULONG128(value, cells_for(value)); }

    /// The cells that a defined value needs: 1 to 4.
    BIG_LOCAL static int cells_for(WIDE value) {
        auto const low = static_cast<unsigned long long>(value);
        auto const high = static_cast<unsigned long long>(value >> 64);
        // Counted without a branch, since lengths come in no order.
        return 4 - ((low >> 32 | high) == 0) - (high == 0) - (high >> 32 == 0);
    }

    /// The bits of the cells below a length.
    BIG_LOCAL static WIDE bits_below(int length) {
        static constexpr unsigned long long low[] = {0, 0xFFFFFFFFu, ~0ull, ~0ull, ~0ull};
        static constexpr unsigned long long high[] = {0, 0, 0, 0xFFFFFFFFu, ~0ull};
        return static_cast<WIDE>(high[length]) << 64 | low[length];
    }

    /// The number that the cells in use form; 0 for an erased value.
    BIG_LOCAL WIDE value() const { return all_cells() & bits_below(m_length); }

    /// Whether one number is greater than another, by their lengths and then by their cells: these
    /// count for one, which decides between equal lengths.
    BIG_LOCAL static bool is_greater(int length, WIDE value, int other_length, WIDE other) {
        return length + (value > other) > other_length;
    }

    /// Takes over a number of some length and leaves the cells above it as they are.
    BIG_LOCAL void assign(WIDE value, int length) {
        WIDE const cells = (all_cells() & ~bits_below(length)) | value;
        store_two_cells(0, static_cast<unsigned long long>(cells));
        store_two_cells(2, static_cast<unsigned long long>(cells >> 64));
        m_length = length;
    }

    BIG_LOCAL WIDE all_cells() const {
        return static_cast<WIDE>(load_two_cells(2)) << 64 | load_two_cells(0);
    }

    // Two cells move as one 64-bit integer: in halves they would have to be put together in memory
    // by whoever reads them next, which waits for both.
    BIG_LOCAL unsigned long long load_two_cells(int index) const {
        unsigned long long pair = 0;
        std::memcpy(&pair, m_cells + index, sizeof pair);
        return in_cell_order(pair);
    }
    BIG_LOCAL void store_two_cells(int index, unsigned long long pair) {
        pair = in_cell_order(pair);
        std::memcpy(m_cells + index, &pair, sizeof pair);
    }
    BIG_LOCAL static unsigned long long in_cell_order(unsigned long long pair) {
        return __BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__ ? pair : pair << 32 | pair >> 32;
    }

    /// partial_add() as it goes, so that a report leaves the value half done.
    BIG_LOCAL void add_cells(int shift, BIG_ULONG128 const& other);

    /// Product cell by cell: finds the error to report when it does not fit.
    BIG_ULONG128 multiply_by_cells(BIG_ULONG128 const& other) const;
    struct DIVISION {
        unsigned long long quotient;
        unsigned long long remainder;
    };

    /// Divides high x 2^64 + low by a divisor above `high`, so that the quotient is one word: a
    /// single instruction where there is one, for which the language has no expression.
    BIG_LOCAL static DIVISION divide_words(unsigned long long high, unsigned long long low,
                                           unsigned long long divisor) {
        DIVISION result;
#if defined(__x86_64__) && !defined(BIG_PORTABLE)
        __asm__("divq %4"
                : "=a"(result.quotient), "=d"(result.remainder)
                : "a"(low), "d"(high), "r"(divisor)
                : "cc");
#else
        WIDE const dividend = static_cast<WIDE>(high) << 64 | low;
        result.quotient = static_cast<unsigned long long>(dividend / divisor);
        result.remainder = static_cast<unsigned long long>(dividend % divisor);
#endif
        return result;
    }

    // The reports of the checks that are compiled into callers; of a difference that would be
    // negative the first one.
    [[noreturn]] static void report_underflow();
    [[noreturn]] static void report_division_by_zero();
    [[noreturn]] static void report_modulo_by_zero();

    int m_length;                   ///< cells in use; 0 means undefined
    unsigned int m_cells[MAX_CELL]; ///< base 2^32, least significant first
};

BIG_INLINE BIG_ULONG128 BIG_ULONG128::operator+(BIG_ULONG128 const& other) const {
    WIDE sum = 0;
    if (__builtin_add_overflow(value(), other.value(), &sum)) {
        BIG_ULONG128 too_large = *this;
        too_large.partial_add(0, other); // reports
        return too_large;
    }
    // The sum is as long as the longer operand (erased if both are) or a carry longer.
    int const longer = m_length > other.m_length ? m_length : other.m_length;
    return BIG_ULONG128(sum, longer + (sum > bits_below(longer)));
}

BIG_INLINE BIG_ULONG128 BIG_ULONG128::operator++(int) {
    BIG_ULONG128 const before = *this;
    ++*this;
    return before;
}

BIG_INLINE BIG_ULONG128 BIG_ULONG128::operator-(BIG_ULONG128 const& other) const {
    WIDE const minuend = value();
    WIDE const subtrahend = other.value();
    if (is_greater(other.m_length, subtrahend, m_length, minuend))
        report_underflow();
    return of(minuend - subtrahend);
}

BIG_INLINE BIG_ULONG128 BIG_ULONG128::operator--(int) {
    BIG_ULONG128 const before = *this;
    --*this;
    return before;
}

BIG_INLINE BIG_ULONG128 BIG_ULONG128::operator*(BIG_ULONG128 const& other) const {
    // Of (a_high x 2^64 + a_low) x (b_high x 2^64 + b_low) one upper half at least is 0 where the
    // product fits. What it has above low x low is then the other one times the low half of the
    // factor that it does not come from, and fits in the upper half.
    WIDE const a = value();
    WIDE const b = other.value();
    auto const a_high = static_cast<unsigned long long>(a >> 64);
    auto const b_high = static_cast<unsigned long long>(b >> 64);
    auto const a_low = static_cast<unsigned long long>(a);
    auto const b_low = static_cast<unsigned long long>(b);
    WIDE const low = static_cast<WIDE>(a_low) * b_low;
    WIDE const upper =
        (low >> 64) + static_cast<WIDE>(a_high | b_high) * (a_high != 0 ? b_low : a_low);
    if (((a_high != 0) & (b_high != 0)) | (upper >> 64 != 0))
        return multiply_by_cells(other);
    return of(upper << 64 | static_cast<unsigned long long>(low));
}

BIG_INLINE BIG_ULONG128 BIG_ULONG128::operator/(BIG_ULONG128 const& divisor) const {
    WIDE const denominator = divisor.value();
    if (denominator >> 64 != 0)
        return BIG_ULONG128(static_cast<unsigned long long>(value() / denominator));
    if (denominator == 0) // an erased divisor too, which callers do not pass
        report_division_by_zero();

    WIDE const numerator = value();
    unsigned long long const high = static_cast<unsigned long long>(numerator >> 64);
    unsigned long long const low = static_cast<unsigned long long>(numerator);
    unsigned long long const word = static_cast<unsigned long long>(denominator);
    if (high < word)
        return BIG_ULONG128(divide_words(high, low, word).quotient);
    WIDE const upper = high / word;
    return of(upper << 64 | divide_words(high % word, low, word).quotient);
}

BIG_INLINE BIG_ULONG128& BIG_ULONG128::operator/=(BIG_ULONG128 const& divisor) {
    if (divisor == BIG_ULONG128())
        report_division_by_zero();
    return *this = *this / divisor;
}

// The remainder is *this - quotient x divisor. An erased value has the quotient 0, and nothing can
// be subtracted from it, not even 0.
BIG_INLINE BIG_ULONG128 BIG_ULONG128::operator%(BIG_ULONG128 const& divisor) const {
    WIDE const denominator = divisor.value();
    if (denominator == 0)
        report_division_by_zero();
    if (m_length == 0)
        report_underflow();
    if (denominator >> 64 != 0)
        return of(value() % denominator);

    WIDE const numerator = value();
    unsigned long long const high = static_cast<unsigned long long>(numerator >> 64);
    unsigned long long const low = static_cast<unsigned long long>(numerator);
    unsigned long long const word = static_cast<unsigned long long>(denominator);
    return BIG_ULONG128(divide_words(high < word ? high : high % word, low, word).remainder);
}

BIG_INLINE BIG_ULONG128& BIG_ULONG128::operator%=(BIG_ULONG128 const& divisor) {
    if (divisor == BIG_ULONG128())
        report_modulo_by_zero();
    return *this = *this % divisor;
}

/// The powers of ten that a BIG_ULONG128 can hold.
class BIG_API BIG_ULONG128_DECIMAL_TABLE {
public:
    /// Builds the table.
    BIG_ULONG128_DECIMAL_TABLE();
    ~BIG_ULONG128_DECIMAL_TABLE();

    /// 10^0 to 10^38, then a 0 that is never read.
    BIG_ULONG128 m_powers[40];
};

// ------------------------------------------------------------------------------------------------
// Common divisors
// ------------------------------------------------------------------------------------------------
//
// An erased 128-bit operand comes back from 0 and from another erased one; with any other number it
// is the internal error "Underflow", path "big/big_ulong128".

/// The greatest common divisor by repeated subtraction. Two equal operands, two zeros included,
/// give that operand.
///
/// @pre not exactly one operand is 0: the loop would never end
///
/// The signed forms take the magnitudes; a result of 2^63 comes back as -2^63.
BIG_API unsigned int big_gcd_additive(unsigned int a, unsigned int b);
BIG_API long long big_gcd_additive(long long a, long long b);
BIG_API BIG_ULONG128 big_gcd_additive(BIG_ULONG128 a, BIG_ULONG128 b);

/// The greatest common divisor by remainders (Euclid, Elements VII.2), of which those of operands
/// of one size are left to the next form. An operand of 0 gives the other one.
///
/// The signed forms take the magnitudes; a result of 2^63 comes back as -2^63.
BIG_API unsigned int big_gcd_modulo(unsigned int a, unsigned int b);
BIG_API long long big_gcd_modulo(long long a, long long b);
BIG_API BIG_ULONG128 big_gcd_modulo(BIG_ULONG128 a, BIG_ULONG128 b);

/// The greatest common divisor by halving and subtracting (Stein 1967). An operand of 0 gives the
/// other one.
///
/// The signed forms take the magnitudes; a result of 2^63 comes back as -2^63.
BIG_API unsigned int big_gcd_binary(unsigned int a, unsigned int b);
BIG_API long long big_gcd_binary(long long a, long long b);
BIG_API BIG_ULONG128 big_gcd_binary(BIG_ULONG128 a, BIG_ULONG128 b);

/// Whether a type of integer has no form of its own and fits long long.
template <typename INTEGER>
inline constexpr bool BIG_GCD_WIDENS =
    (std::is_same_v<INTEGER, int> || std::is_same_v<INTEGER, long> || sizeof(INTEGER) < sizeof(int))
    && std::is_integral_v<INTEGER>;

/// long long, for two such types.
template <typename A, typename B>
using BIG_GCD_WIDENED = std::enable_if_t<BIG_GCD_WIDENS<A> && BIG_GCD_WIDENS<B>, long long>;

/// The signed forms for int, long and the short integer types.
template <typename A, typename B>
inline BIG_GCD_WIDENED<A, B> big_gcd_additive(A a, B b) {
    return big_gcd_additive(static_cast<long long>(a), static_cast<long long>(b));
}
template <typename A, typename B>
inline BIG_GCD_WIDENED<A, B> big_gcd_modulo(A a, B b) {
    return big_gcd_modulo(static_cast<long long>(a), static_cast<long long>(b));
}
template <typename A, typename B>
inline BIG_GCD_WIDENED<A, B> big_gcd_binary(A a, B b) {
    return big_gcd_binary(static_cast<long long>(a), static_cast<long long>(b));
}

/// Divides both by their greatest common divisor. Two negatives become positive, one keeps its
/// sign; two zeros stay.
///
/// -2^63 has no positive counterpart and stays negative. Beside another negative number, which
/// becomes positive, the quotient changes its sign: (-2^63, -2) gives (-2^62, 1). Where the divisor
/// itself is 2^63, (-2^63, -2^63) gives (1, 1) and (-2^63, 0) gives (1, 0).
BIG_API void big_suppress_gcd(long long& numerator, long long& denominator);
inline void big_suppress_gcd(long& numerator, long& denominator) {
    long long wide_numerator = numerator;
    long long wide_denominator = denominator;
    big_suppress_gcd(wide_numerator, wide_denominator);
    numerator = static_cast<long>(wide_numerator);
    denominator = static_cast<long>(wide_denominator);
}

// ------------------------------------------------------------------------------------------------
// Decimal numbers held as text
// ------------------------------------------------------------------------------------------------
//
// A number is an optional sign, digits, at most one point and more digits; what may follow (a unit)
// is kept. The form is not checked. A blank is one of the bytes 9 to 13 and 32.

/// Removes the leading blanks.
BIG_API void big_trim_begin_blankspace(std::string& s);
/// Removes the trailing blanks.
BIG_API void big_trim_end_blankspace(std::string& s);

/// Drops the digits after the point beyond `precision`, and the point itself for 0. Never adds any.
BIG_API void big_truncate_to_precision(std::string* s, unsigned int precision);

/// Drops the zeros that end a number with a point, all but a character directly after the point.
BIG_API void big_trim_end_zero(std::string* s);

/// The number that a text of digits forms. A point ends it, with the digits before it counted as if
/// the whole text were digits ("12.5" is 1200). More than 19 characters are the internal error "The
/// input time is too big. It is over 64 bits."; 19 digits above 2^63 - 1 wrap.
BIG_API long long big_atoi64(std::string const& s);

/// Adds one to the last digit, with its carries; the blanks at both ends go. A carry out of the
/// first digit, and a text of points and signs alone, get a 1 in front, behind a sign.
///
/// An empty text is the internal error "!str->empty()"; one of blanks becomes empty.
///
/// @pre between the blanks are digits, points and signs only: another character that is last, or
///      that a carry meets, would be counted up as a byte
BIG_API void big_rounding(std::string* s);

/// Rounds half up on the magnitude to `precision` digits after the point (0 drops the point), and
/// then drops trailing zeros if asked to. A number without a point stays as it is.
///
/// What is cut off must leave something to round up: ".5" to 0 digits is the internal error
/// "!str->empty()".
///
/// @pre nothing follows the number, see big_rounding()
BIG_API void big_round_to_precision(std::string* s, unsigned int precision,
                                    bool trim_trailing_zeros);

// ------------------------------------------------------------------------------------------------
// Timescale delays and radix formatting of 64-bit values
// ------------------------------------------------------------------------------------------------

/// The conversion of big_64_to_string(); any other value is signed decimal.
enum BIG_64_RADIX : unsigned int {
    BIG_64_SIGNED_DEC = 0,
    BIG_64_UNSIGNED_DEC = 1,
    BIG_64_OCT = 2,
    BIG_64_HEX_LOWER = 3,
    BIG_64_HEX_UPPER = 4,
};

/// delay x default_timescale / current_timescale, computed in double and written with at most nine
/// decimal places, without trailing zeros.
///
/// Internal errors, in this order: "!default_timescale.is_negative()",
/// "!current_timescale.is_negative()", "delay > 0", "cur_ts != 0".
///
/// @param delay             at least 1, in units of default_timescale
/// @param default_timescale not negative; a frequency counts as its period
/// @param current_timescale not negative, its storage number not 0
BIG_API std::string big_delay_in_current_timescale(int delay, BIG_TIME default_timescale,
                                                   BIG_TIME current_timescale);

/// Writes an integer as printf does.
///
/// @param flags any of the printf flags "-+ #0", then a field width of at most 23; anything else is
///              the internal error "flags"
/// @param radix the conversion
/// @param out   receives the text as its whole content, and is returned; null is the internal error
///              "stl_str != NULL"
BIG_API std::string* big_64_to_string(long long value, std::string const& flags, BIG_64_RADIX radix,
                                      std::string* out);
BIG_API std::string big_64_to_string(long long value, std::string const& flags, BIG_64_RADIX radix);

// ------------------------------------------------------------------------------------------------
// Tokens and numbers of a time text
// ------------------------------------------------------------------------------------------------
//
// A token is a run of characters other than space, tab and line feed; a carriage return is an
// ordinary character.

/// Whether a text holds no token.
BIG_API bool big_is_no_token(std::string const& s);

/// Whether a text holds exactly one token, which then replaces it; otherwise it is cleared.
BIG_API bool big_is_one_token(std::string& s);

/// The unit that a text names, without regard to letter case: UNIT_NONE for a text without a token,
/// MAX_TIME_UNIT for one that is not exactly one unit's name.
BIG_API BIG_TIME::TIME_UNIT big_get_time_unit(std::string const& s);

/// The canonical text of a decimal number: without white space around it, without needless zeros,
/// but with one digit after the point, and with its plus sign. Zeros directly after a leading point
/// go too, on which callers rely: ".05" gives ".5", and ".000" gives ".". An illegal number gives
/// an empty text and a debug message; "+." is legal, though it has no digit, and comes back as it
/// is.
BIG_API std::string big_get_time_value(std::string const& s);

// ------------------------------------------------------------------------------------------------
// Radix conversion
// ------------------------------------------------------------------------------------------------

/// The radixes of a bit vector.
enum BIG_RADIX : unsigned int {
    BIG_BIN = 0,
    BIG_OCT = 1,
    BIG_HEX = 2,
    BIG_SIGNED_DEC = 3,
    BIG_UNSIGNED_DEC = 4,
    BIG_FRAC_FIX_POINT = 5, ///< a decimal such as 0.75 or -1.5E-1 with width - 1 fraction bits
    BIG_ASCII = 6,          ///< text, eight bits to a character
};

/// What is wrong with an ASCII text.
enum BIG_ASCII_CHECK_RESULT : unsigned int {
    BIG_ASCII_OK = 0,
    BIG_ASCII_BAD_ESCAPE = 1,        ///< a backslash last, or before anything but `[`, `\` and `]`
    BIG_ASCII_CODE_TOO_LARGE = 2,    ///< a bracketed code above 255
    BIG_ASCII_BAD_CODE = 3,          ///< a bracketed code that is not a number
    BIG_ASCII_EMPTY_CODE = 4,        ///< []
    BIG_ASCII_UNTERMINATED_CODE = 5, ///< [ without ]
    BIG_ASCII_UNMATCHED_BRACKET = 6, ///< ] without [ or backslash
};

/// Whether every character of a text belongs to the set of a radix, in either letter case; place
/// and number of signs and points are not checked, and the logic values (X, Z, ...) belong to none.
/// Internal errors: "source.size() > 0" for an empty text, "Invalid radix." above 6.
BIG_API bool big_string_is_legal(std::string const& source, BIG_RADIX radix);

/// Whether a byte is printable ASCII, 0x20 to 0x7E.
BIG_API bool big_char_is_printable(char c);

/// Whether a text is legal in the ASCII notation: printable characters stand for themselves, `\[`
/// `\\` and `\]` for the escaped one, `[65]` for the byte of that number, and `[ ]` for a space,
/// which is how the library writes it. Any other byte counts as NUL, with a debug message.
///
/// @param result untouched on success; for codes 2 and 3 it becomes the offending code
/// @param check  receives what is wrong
BIG_API bool big_validate_ascii_string(std::string const& source, std::string* result,
                                       BIG_ASCII_CHECK_RESULT* check);

/// Converts a bit vector from one radix to another at a width.
///
/// Digits may be the logic values X, Z, U, W, -, H and L in either case. In decimal H and L are the
/// digits 1 and 0; a value whose digits are all Z, or that is a sign alone, is Z; any other value
/// with X, Z, U, W or - among its digits is X. Internal errors: "source.size() > 0" for an empty
/// source, "Invalid radix." above 6.
///
/// @param source the value in radix `from`
/// @param result receives the value in radix `to` as its whole content; "X" on failure. Only a
///               fixed-point target wider than 1024 bits appends its X.
/// @param width  bits of the value, 0 for its natural width. A shorter value is extended, a longer
///               one loses its high bits.
/// @return 0 exact; 2 bits were cut off to meet the width; 1 not convertible
BIG_API unsigned int big_radix_conversion(std::string const& source, std::string* result,
                                          BIG_RADIX from, BIG_RADIX to, unsigned int width);

#endif
