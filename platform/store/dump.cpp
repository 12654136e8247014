// A store as text, and back.
//
//     dump    = "big-store dump 1" class... "end" COUNT CHECKSUM
//     class   = "class" ID SIZE NAME MEMBERS value... array...
//     value   = "value" NAME cells
//     array   = "array" NAME COUNT (cells, one line for each element)...
//
// Each of these stands on a line of its own; blanks separate its fields. NAME is as quoted_bytes()
// writes it and MEMBERS as members_text() does. Integers are decimal. A double is 0x and its bits
// in 16 hexadecimal digits, ID 0x and 8 digits, CHECKSUM 16 digits. The last line counts the names;
// its CHECKSUM is that of all lines in front of it with their line feeds, and may be left out.

#include "checksum.h"
#include "mem_sys.h"
#include "store_state.h"
#include "store_text.h"

#include <algorithm>
#include <charconv>
#include <climits>
#include <cstdint>

namespace {

constexpr std::string_view FIRST_LINE = "big-store dump 1";
constexpr std::size_t ROWS_AT_A_TIME = 1000;

void append_hexadecimal(std::string& text, std::uint64_t number, int digits) {
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text += "0123456789abcdef"[(number >> shift) & 15];
}

template <typename NUMBER>
void append_decimal(std::string& text, NUMBER number) {
    char buffer[24];
    text.append(buffer, std::to_chars(buffer, buffer + sizeof buffer, number).ptr);
}

// ------------------------------------------------------------------------------------------------
// Writing
// ------------------------------------------------------------------------------------------------

class DUMP_WRITER {
public:
    DUMP_WRITER(PDB_STORE_STATE& state, std::function<void(std::string_view)> const& write)
        : m_state(state), m_write(write) {}

    void run() {
        line() += FIRST_LINE;
        end_line();
        for (std::uint32_t const id : m_state.class_ids()) {
            STORE_CLASS& from = m_state.class_with(id);
            write_class(from.stored);
            write_values(from);
            write_arrays(from);
        }
        std::uint64_t const checksum = m_checksum.value();
        append_decimal(line() += "end ", m_names);
        append_hexadecimal(m_line += ' ', checksum, 16);
        end_line();
    }

private:
    std::string& line() {
        m_line.clear();
        return m_line;
    }

    void end_line() {
        m_line += '\n';
        m_checksum.add(m_line);
        m_write(m_line);
    }

    void add_cells(STORED_CLASS const& stored, CELL const* cells) {
        for (STORED_MEMBER const& member : stored.members) {
            if (!m_line.empty())
                m_line += ' ';
            if (member.type == MEMBER_TYPE::DOUBLE)
                append_hexadecimal(m_line += "0x", *cells++, 16);
            else
                append_decimal(m_line, static_cast<std::int64_t>(*cells++));
        }
    }

    void write_class(STORED_CLASS const& stored) {
        append_hexadecimal(line() += "class 0x", stored.id, 8);
        append_decimal(m_line += ' ', stored.size);
        m_line += ' ' + quoted_bytes(stored.name) + ' ' + members_text(stored);
        end_line();
    }

    void write_values(STORE_CLASS& from) {
        VALUE_BATCH batch;
        NAME_RANGE range;
        do {
            from.table->read_values(range, ROWS_AT_A_TIME, batch);
            for (std::size_t row = 0; row < batch.size(); ++row) {
                m_state.verify(from, batch, row);
                line() += "value " + quoted_bytes(batch.name(row));
                add_cells(from.stored, batch.cells(row));
                end_line();
                ++m_names;
                go_behind(range, batch.name(row));
            }
        } while (batch.size() == ROWS_AT_A_TIME);
    }

    void write_arrays(STORE_CLASS& from) {
        std::vector<CLASS_TABLE::NAMED_ARRAY> arrays;
        NAME_RANGE range;
        do {
            from.table->read_arrays(range, ROWS_AT_A_TIME, arrays);
            for (CLASS_TABLE::NAMED_ARRAY const& array : arrays) {
                m_state.verify(from, array.name, array.head);
                append_decimal(line() += "array " + quoted_bytes(array.name) + ' ',
                               array.head.count);
                end_line();
                write_elements(from, array);
                ++m_names;
                go_behind(range, array.name);
            }
        } while (arrays.size() == ROWS_AT_A_TIME);
    }

    void write_elements(STORE_CLASS& from, CLASS_TABLE::NAMED_ARRAY const& array) {
        std::string elements;
        std::size_t const size = from.stored.packed_size();
        for (std::uint64_t first = 0; first < array.head.count;) {
            std::uint64_t const count =
                m_state.get_chunk(from, array.name, array.head, first, elements);
            for (std::uint64_t i = 0; i < count; ++i) {
                unpack(from.stored, elements.data() + i * size, from.cells.data());
                line();
                add_cells(from.stored, from.cells.data());
                end_line();
            }
            first += count;
        }
    }

    PDB_STORE_STATE& m_state;
    std::function<void(std::string_view)> const& m_write;
    std::string m_line;
    CHECKSUM m_checksum;
    unsigned long long m_names = 0;
};

// ------------------------------------------------------------------------------------------------
// Reading
// ------------------------------------------------------------------------------------------------

class DUMP_READER {
public:
    DUMP_READER(PDB_STORE_STATE& state, std::function<bool(std::string&)> const& read_line)
        : m_state(state), m_read_line(read_line) {}

    /// @return the number of names
    unsigned long long run() {
        if (!next_line() || m_line != FIRST_LINE)
            refuse("expected " + quoted_bytes(FIRST_LINE));
        for (;;) {
            std::uint64_t const checksum = m_checksum.value(); // of the lines in front of the next
            if (!next_line())
                refuse("the dump is cut short: expected another line");
            if (take("class "))
                read_class();
            else if (take("value "))
                read_value();
            else if (take("array "))
                read_array();
            else if (take("end "))
                return read_end(checksum);
            else
                refuse("expected class, value, array or end");
        }
    }

private:
    [[noreturn]] void refuse(std::string const& text) const {
        m_state.fail(PDB_STORE_ERROR::BAD_DUMP,
                     "line " + std::to_string(m_number) + " of the dump: " + text);
    }

    void require(bool holds, char const* text) const {
        if (!holds)
            refuse(text);
    }

    // --- Fields ---

    bool next_line() {
        ++m_number;
        m_line.clear();
        if (!m_read_line(m_line))
            return false;
        if (!m_line.empty() && m_line.back() == '\n')
            m_line.pop_back();
        m_checksum.add(m_line).add("\n");
        m_rest = m_line;
        return true;
    }

    bool take(std::string_view text) {
        if (!m_rest.starts_with(text))
            return false;
        m_rest.remove_prefix(text.size());
        return true;
    }

    /// Takes a number as std::to_chars() writes it, with as many digits as given unless 0.
    template <typename NUMBER>
    bool take_number(NUMBER& number, int base, std::size_t digits) {
        char const* const begin = m_rest.data();
        auto const result = std::from_chars(begin, begin + m_rest.size(), number, base);
        if (result.ec != std::errc())
            return false;
        auto const length = static_cast<std::size_t>(result.ptr - begin);
        std::string_view const text = m_rest.substr(0, length);
        char buffer[24];
        auto const end = std::to_chars(buffer, buffer + sizeof buffer, number, base).ptr;
        std::string written(buffer, end);
        if (written.size() < digits)
            written.insert(0, digits - written.size(), '0');
        m_rest.remove_prefix(length);
        return text == written;
    }

    void read_cells(STORED_CLASS const& stored, CELL* cells, bool blank_in_front) {
        for (STORED_MEMBER const& member : stored.members) {
            if (blank_in_front)
                require(take(" "), "expected a blank and another member");
            blank_in_front = true;
            if (member.type == MEMBER_TYPE::DOUBLE) {
                require(take("0x") && take_number(*cells, 16, 16),
                        "expected a double as 0x and 16 hexadecimal digits in lower case");
            } else {
                std::int64_t number = 0;
                require(take_number(number, 10, 0), "expected a decimal integer");
                require(member.type == MEMBER_TYPE::INT64
                            || (number >= INT_MIN && number <= INT_MAX),
                        "the integer has more than 32 bits");
                *cells = static_cast<CELL>(number);
            }
            ++cells;
        }
        require_end();
    }

    void require_end() const { require(m_rest.empty(), "there is more on the line than expected"); }

    void read_name() {
        require(take_quoted(m_rest, m_name), "expected a name between quotation marks");
        require(!m_name.empty() && m_name.size() <= PDB_STORE::LONGEST_NAME,
                "the name is empty or too long");
    }

    // --- Lines ---

    void read_class() {
        flush();
        STORED_CLASS stored;
        require(take("0x") && take_number(stored.id, 16, 8) && take(" "),
                "expected a class id as 0x and 8 hexadecimal digits in lower case");
        require(take_number(stored.size, 10, 0) && take(" "), "expected the size of an object");
        require(take_quoted(m_rest, stored.name) && take(" "),
                "expected the name of a class between quotation marks");
        require(read_members(m_rest, stored.members),
                "expected members, each a name between quotation marks and int64, int32 or double");
        require(stored.members.size() <= MOST_MEMBERS, "a class has more members than are kept");
        name_table(stored);
        m_state.compare_with_program({stored});
        m_class_id = stored.id;
        m_has_class = true;
        m_state.need_class(stored, nullptr);
    }

    STORE_CLASS& current_class() {
        require(m_has_class, "expected a class in front of the first name");
        return m_state.class_with(m_class_id);
    }

    void read_value() {
        STORE_CLASS& into = current_class();
        read_name();
        read_cells(into.stored, into.cells.data(), true);
        CELL* const cells = m_batch.add(m_name, into.cells.size(),
                                        value_checksum(into.stored, m_name, into.cells.data()));
        std::copy(into.cells.begin(), into.cells.end(), cells);
        ++m_names;
        if (m_batch.size() == ROWS_AT_A_TIME)
            flush();
    }

    void flush() {
        if (m_batch.size() > 0)
            m_state.put_values(m_state.class_with(m_class_id), m_batch);
        m_batch.clear();
    }

    void read_array() {
        flush();
        STORE_CLASS& into = current_class();
        read_name();
        std::uint64_t count = 0;
        require(take(" ") && take_number(count, 10, 0), "expected the number of elements");
        require_end();
        ARRAY_HEAD const head = m_state.begin_array(into, m_name, count);
        std::string elements;
        for (std::uint64_t first = 0; first < count;) {
            std::uint64_t const end = std::min(first + elements_in_chunk(into.stored), count);
            elements.clear();
            for (std::uint64_t i = first; i < end; ++i) {
                if (!next_line())
                    refuse("the dump is cut short: expected another element");
                read_cells(into.stored, into.cells.data(), false);
                pack(into.stored, into.cells.data(), elements);
            }
            m_state.put_chunk(into, head, first, elements);
            first = end;
        }
        ++m_names;
    }

    unsigned long long read_end(std::uint64_t checksum) {
        flush();
        unsigned long long names = 0;
        require(take_number(names, 10, 0), "expected the number of names");
        require(names == m_names, "the dump holds another number of names than its last line says");
        std::uint64_t written = checksum;
        if (!m_rest.empty())
            require(take(" ") && take_number(written, 16, 16),
                    "expected a checksum of 16 hexadecimal digits in lower case");
        require_end();
        require(written == checksum, "the dump does not match its checksum");
        if (next_line())
            refuse("expected nothing behind the end");
        return names;
    }

    PDB_STORE_STATE& m_state;
    std::function<bool(std::string&)> const& m_read_line;
    std::string m_line;
    std::string_view m_rest; ///< of the line
    unsigned long long m_number = 0;
    CHECKSUM m_checksum; ///< of the lines so far

    std::uint32_t m_class_id = 0;
    bool m_has_class = false;
    std::string m_name;
    VALUE_BATCH m_batch; ///< of values that are not yet saved
    unsigned long long m_names = 0;
};

} // namespace

void PDB_STORE::dump(std::function<void(std::string_view line)> const& write) {
    m_state->run(PDB_STORE_STATE::TELLS, [&] { DUMP_WRITER(*m_state, write).run(); });
}

unsigned long long PDB_STORE::load(std::function<bool(std::string& line)> const& read_line) {
    unsigned long long names = 0;
    m_state->run(PDB_STORE_STATE::WRITES_PARTS,
                 [&] { names = DUMP_READER(*m_state, read_line).run(); });
    return names;
}
