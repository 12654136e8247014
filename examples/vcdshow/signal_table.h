#ifndef SIGNAL_TABLE_H
#define SIGNAL_TABLE_H

#include "big_sys.h"
#include "vcd_reader.h"

#include <climits>
#include <cstddef>
#include <string>
#include <vector>

/// How a table is written.
struct TABLE_FORMAT {
    BIG_RADIX radix = BIG_HEX;
    BIG_TIME::TIME_UNIT time_unit = BIG_TIME::UNIT_NS;
    unsigned short precision = USHRT_MAX; ///< decimal places of a time, at most the unit's own
    bool is_csv = false;
};

/// The values of chosen variables over time: a header line, and one line for each time at which one
/// of them has changed.
///
/// Before its first change a variable is unknown: X for bits, - for a real number or a text. An
/// event is 1 when it has happened, otherwise 0.
class SIGNAL_TABLE {
public:
    /// Throws std::runtime_error for a variable that cannot be written in the radix.
    ///
    /// @param variables    all variables of the dump
    /// @param columns      the chosen ones, as positions in the list
    /// @param signal_count the number of signals in the dump
    SIGNAL_TABLE(TABLE_FORMAT const& format, std::vector<VCD_VARIABLE> const& variables,
                 std::vector<std::size_t> const& columns, std::size_t signal_count);

    /// Appends the header line.
    void write_header(std::string& out) const;

    /// Takes a change of a signal of a chosen variable.
    void take(VCD_CHANGE const& change);

    /// Whether anything has changed since the last line.
    bool has_changed() const { return m_has_changed; }

    /// Appends the line of a time.
    void write_line(BIG_TIME const& time, std::string& out);

    /// Does without the line of a time. What has changed is kept.
    void skip_line();

private:
    /// The value that the columns of one signal share.
    struct CELL {
        VCD_KIND kind;
        unsigned int width;
        std::string value;         ///< as in the dump; empty before the first change
        std::string text;          ///< as in the table
        bool is_converted = false; ///< whether the text is that of the value
    };
    struct COLUMN {
        std::string name;
        std::size_t width; ///< least number of characters
        std::size_t cell;
    };

    void convert(CELL& cell) const;
    void append_separator(std::string& out) const;
    void append(std::string const& text, std::size_t width, std::string& out) const;

    TABLE_FORMAT m_format;
    std::vector<COLUMN> m_columns;
    std::vector<CELL> m_cells;
    std::vector<std::size_t> m_cell_of_signal;
    std::vector<std::size_t> m_events; ///< the cells of events that have happened
    bool m_has_changed = false;
    std::string m_time_text;
};

#endif
