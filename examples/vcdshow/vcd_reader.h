#ifndef VCD_READER_H
#define VCD_READER_H

/// @file
/// A value change dump (VCD), read from front to end in constant memory: what is kept depends on
/// the number of signals, not on the length of the dump.

#include "big_sys.h"
#include "vcd_code_table.h"

#include <cstddef>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// A dump that is broken. what() is "FILE:LINE: reason", without the line when there is none.
class VCD_ERROR : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Where the bytes of a dump come from.
class VCD_SOURCE {
public:
    virtual ~VCD_SOURCE();

    /// Reads at least one and at most `size` bytes and returns their number; 0 at the end. Throws
    /// when the system refuses.
    virtual std::size_t read(char* to, std::size_t size) = 0;
};

/// What the counts of a dump mean, such as 10 ps.
class VCD_TIMESCALE {
public:
    /// @param number 1, 10 or 100
    /// @param unit   a unit from fs to s
    VCD_TIMESCALE(int number, BIG_TIME::TIME_UNIT unit) : m_number(number), m_unit(unit) {}

    BIG_TIME::TIME_UNIT unit() const { return m_unit; }
    /// The largest count whose time a BIG_TIME can hold.
    long long max_count() const;
    /// The time of a count of at most max_count(), cut to picoseconds.
    BIG_TIME time_of(long long count) const { return BIG_TIME(count * m_number, m_unit); }
    /// Whether time_of() has cut nothing off: false only for femtoseconds.
    bool is_exact(long long count) const;
    /// The time of a count in the scale's own unit, with every digit: "1500 fs".
    std::string text_of(long long count) const;

private:
    int m_number;
    BIG_TIME::TIME_UNIT m_unit;
};

/// What the values of a variable are.
enum class VCD_KIND {
    BITS,  ///< digits 0 1 X Z U W H L - in either letter case, most significant first
    EVENT, ///< something that happens and has no value
    REAL,  ///< a floating-point number as text
    TEXT,  ///< any text without white space
};

/// A variable as the dump declares it.
struct VCD_VARIABLE {
    std::string name;   ///< the scopes and the variable, joined with points: "tb.dut.total"
    std::string range;  ///< "[7:0]", or empty
    std::string type;   ///< "wire", "reg", ...
    VCD_KIND kind;      //
    unsigned int width; ///< bits
    std::size_t signal; ///< variables that share a signal always have the same value
};

/// A change of a signal.
struct VCD_CHANGE {
    long long time;         ///< in counts of the timescale
    std::size_t signal;     //
    std::string_view value; ///< all digits of BITS; empty for EVENT; valid until the next read
};

/// Reads a dump. The constructor reads the declarations; next() then walks through the changes.
///
/// Everything that breaks the grammar in vcd_reader.cpp throws VCD_ERROR.
class VCD_READER {
public:
    /// Bits of the widest variable.
    static constexpr std::size_t WIDEST_VARIABLE = std::size_t{1} << 23;

    /// @param source      the dump; must outlive the reader
    /// @param file        its name for messages
    /// @param buffer_size bytes to read at once; the buffer grows for a word that is longer
    VCD_READER(VCD_SOURCE& source, std::string file, std::size_t buffer_size = 256 * 1024);

    VCD_TIMESCALE const& timescale() const { return m_timescale; }
    /// The variables in the order of the dump.
    std::vector<VCD_VARIABLE> const& variables() const { return m_variables; }
    /// The number of signals; they are numbered from 0.
    std::size_t signal_count() const { return m_signals.size(); }

    /// Asks for the changes of a signal. The changes of all others are checked and passed over.
    void select(std::size_t signal) { m_signals[signal].selected = true; }

    /// Finds the next change of a selected signal; false at the end of the dump. What a dump says
    /// before its first time stamp happens at time 0. An event in a list of all values
    /// ($dumpvars ... $end and the like) has not happened and is no change.
    bool next(VCD_CHANGE& change);

    /// The place of the change read last: "FILE:LINE".
    std::string place();

private:
    /// What the reader knows of a signal while it walks through the changes.
    struct SIGNAL {
        VCD_KIND kind;
        unsigned int width;
        bool selected;
    };

    /// A value change with more bytes than this is not read into memory.
    static constexpr std::size_t LONGEST_RECORD = 2 * WIDEST_VARIABLE;

    // Words
    bool read_more();
    bool pass(unsigned char set);
    bool read_word();
    bool read_first_word();
    std::string_view word() const { return {m_buffer.data() + m_word, m_next - m_word}; }
    unsigned long long line_at(std::size_t offset);
    [[noreturn]] void refuse_at(std::size_t offset, std::string const& reason);
    [[noreturn]] void refuse(std::string const& reason) { refuse_at(m_word, reason); }

    // Declarations
    void read_header();
    void begin_command();
    void next_word_of_command();
    std::string_view argument(char const* what);
    void expect_end();
    void skip_text();
    void read_timescale();
    void enter_scope();
    void leave_scope();
    void read_variable();
    void read_name(VCD_VARIABLE& variable);
    void end_header();

    // Value changes
    void read_command();
    void read_time();
    bool read_bit(VCD_CHANGE& change);
    bool read_bits(VCD_CHANGE& change);
    bool read_real(VCD_CHANGE& change);
    bool read_text(VCD_CHANGE& change);
    std::string_view read_value(std::size_t& signal);
    std::size_t signal_of(std::string_view code);
    bool take_bits(std::string_view digits, std::size_t number, VCD_CHANGE& change);
    bool take_text(VCD_KIND kind, std::string_view text, std::size_t number, VCD_CHANGE& change);
    void expect_kind(VCD_KIND kind, SIGNAL const& signal);

    VCD_SOURCE& m_source;
    std::string m_file;

    // The buffer holds [0, m_end), then a 0. Positions count from its first byte.
    std::vector<char> m_buffer;
    std::size_t m_end = 0;
    std::size_t m_record = 0; ///< where a record starts; what is in front of it can go
    std::size_t m_word = 0;   ///< the word read last is [m_word, m_next)
    std::size_t m_next = 0;

    // Lines are counted when somebody asks: m_line_feeds are in front of the byte m_counted.
    unsigned long long m_line_feeds = 0;
    std::size_t m_counted = 0;

    std::string m_command; ///< the command read last and its line
    unsigned long long m_command_line = 0;

    bool m_in_header = true;
    VCD_TIMESCALE m_timescale{1, BIG_TIME::UNIT_NONE};
    std::vector<std::size_t> m_scopes; ///< for each open scope the length of m_path outside it
    std::string m_path;                ///< the names of the open scopes, each with a point behind
    std::vector<VCD_VARIABLE> m_variables;
    std::vector<SIGNAL> m_signals;
    VCD_CODE_TABLE m_codes;

    unsigned long long m_time = 0;
    unsigned long long m_max_time = 0;
    std::string m_list; ///< the command whose list of values is open, or empty, and its line
    unsigned long long m_list_line = 0;
    std::string m_digits; ///< the value of a change whose digits were extended
};

#endif
