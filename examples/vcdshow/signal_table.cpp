#include "signal_table.h"

#include <algorithm>
#include <stdexcept>

namespace {

constexpr std::size_t NO_CELL = static_cast<std::size_t>(-1);

/// Room for a time of 15 digits and a point.
constexpr std::size_t TIME_WIDTH = 16;

/// The bits that a number in the fixed-point radix can have.
constexpr unsigned int WIDEST_FIXED_POINT = 1024;

/// Characters that a value takes at most, or usually where there is no such number.
std::size_t text_width(VCD_VARIABLE const& variable, BIG_RADIX radix) {
    std::size_t const bits = variable.width;
    switch (variable.kind) {
    case VCD_KIND::EVENT: return 1;
    case VCD_KIND::REAL:
    case VCD_KIND::TEXT: return 10;
    case VCD_KIND::BITS: break;
    }
    switch (radix) {
    case BIG_BIN: return bits;
    case BIG_OCT: return (bits + 2) / 3;
    case BIG_HEX: return (bits + 3) / 4;
    // 1233 / 4096 is a little more than the decimal logarithm of 2.
    case BIG_SIGNED_DEC: return (bits - 1) * 1233 / 4096 + 2;
    case BIG_UNSIGNED_DEC: return bits * 1233 / 4096 + 1;
    case BIG_FRAC_FIX_POINT: return std::min<std::size_t>(bits + 2, 24);
    case BIG_ASCII: return (bits + 7) / 8;
    }
    return 0;
}

/// Appends a field of comma-separated values, between quotation marks where they are needed (RFC
/// 4180).
void append_csv(std::string const& text, std::string& out) {
    if (text.find_first_of(",\"\r\n") == std::string::npos) {
        out += text;
        return;
    }
    out += '"';
    for (char const c : text) {
        out.append(c == '"' ? 2 : 1, c);
    }
    out += '"';
}

} // namespace

SIGNAL_TABLE::SIGNAL_TABLE(TABLE_FORMAT const& format, std::vector<VCD_VARIABLE> const& variables,
                           std::vector<std::size_t> const& columns, std::size_t signal_count)
    : m_format(format), m_cell_of_signal(signal_count, NO_CELL) {
    for (std::size_t const column : columns) {
        VCD_VARIABLE const& variable = variables[column];
        std::string const name = variable.name + variable.range;
        if (variable.kind == VCD_KIND::BITS && format.radix == BIG_FRAC_FIX_POINT
            && variable.width > WIDEST_FIXED_POINT) {
            throw std::runtime_error(
                name + " has " + std::to_string(variable.width) + " bits; expected at most "
                + std::to_string(WIDEST_FIXED_POINT) + " for a fixed-point number");
        }
        std::size_t& cell = m_cell_of_signal[variable.signal];
        if (cell == NO_CELL) {
            cell = m_cells.size();
            m_cells.push_back({variable.kind, variable.width, "", "", false});
        }
        std::size_t const width = std::max(name.size(), text_width(variable, format.radix));
        m_columns.push_back({name, width, cell});
    }
}

void SIGNAL_TABLE::write_header(std::string& out) const {
    append(std::string("time/") + BIG_TIME::get_time_unit_string(m_format.time_unit), TIME_WIDTH,
           out);
    for (COLUMN const& column : m_columns) {
        append_separator(out);
        append(column.name, column.width, out);
    }
    out += '\n';
}

void SIGNAL_TABLE::take(VCD_CHANGE const& change) {
    std::size_t const number = m_cell_of_signal[change.signal];
    CELL& cell = m_cells[number];
    if (cell.kind == VCD_KIND::EVENT) {
        cell.value.assign(1, '1');
        m_events.push_back(number);
    } else if (cell.value != change.value) {
        cell.value = change.value;
    } else {
        return;
    }
    cell.is_converted = false;
    m_has_changed = true;
}

void SIGNAL_TABLE::write_line(BIG_TIME const& time, std::string& out) {
    time.to_string_without_unit(&m_time_text, m_format.time_unit, m_format.precision, false);
    if (time.get_time_value() == 0 && m_format.time_unit == BIG_TIME::UNIT_FS) {
        m_time_text.assign(1, '0'); // the library puts three zeros behind every femtosecond count
    }
    append(m_time_text, TIME_WIDTH, out);
    for (COLUMN const& column : m_columns) {
        CELL& cell = m_cells[column.cell];
        if (!cell.is_converted) {
            convert(cell);
        }
        append_separator(out);
        append(cell.text, column.width, out);
    }
    out += '\n';
    skip_line();
}

void SIGNAL_TABLE::skip_line() {
    m_has_changed = false;
    for (std::size_t const number : m_events) {
        m_cells[number].value.clear();
        m_cells[number].is_converted = false;
    }
    m_events.clear();
}

void SIGNAL_TABLE::convert(CELL& cell) const {
    switch (cell.kind) {
    case VCD_KIND::BITS:
        big_radix_conversion(cell.value.empty() ? std::string(cell.width, 'X') : cell.value,
                             &cell.text, BIG_BIN, m_format.radix, cell.width);
        break;
    case VCD_KIND::EVENT: cell.text.assign(1, cell.value.empty() ? '0' : '1'); break;
    case VCD_KIND::REAL:
    case VCD_KIND::TEXT:
        cell.text = cell.value;
        cell.text.append(cell.value.empty() ? 1 : 0, '-');
        break;
    }
    cell.is_converted = true;
}

void SIGNAL_TABLE::append_separator(std::string& out) const {
    out += m_format.is_csv ? "," : "  ";
}

/// Appends a text: as it is in comma-separated values, otherwise at the right of its column.
void SIGNAL_TABLE::append(std::string const& text, std::size_t width, std::string& out) const {
    if (m_format.is_csv) {
        append_csv(text, out);
        return;
    }
    if (text.size() < width) {
        out.append(width - text.size(), ' ');
    }
    out += text;
}
