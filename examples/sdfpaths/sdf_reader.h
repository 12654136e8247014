#ifndef SDF_READER_H
#define SDF_READER_H

/// @file
/// A standard delay file (SDF, IEEE 1497), read from front to end: the delays of cells and wires,
/// each number as the text that the file has.

#include <array>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// A file that is broken, or says what this program cannot take. what() is "FILE:LINE: reason".
class SDF_ERROR : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// What an SDF says of itself.
struct SDF_HEADER {
    std::string_view design;  ///< empty when it is not said
    std::string_view program; ///< what wrote the file; empty when it is not said
    char divider = '.';       ///< between the names of a hierarchy: . or /
    int power = 3;            ///< a number times 10^power is picoseconds: 3 for 1ns, 1 for 10ps
};

/// The corners of a value.
enum SDF_CORNER : unsigned int { CORNER_MIN = 0, CORNER_TYP = 1, CORNER_MAX = 2 };

/// Decimal numbers for CORNER_MIN, CORNER_TYP and CORNER_MAX, each empty when it is not given.
using SDF_VALUE = std::array<std::string_view, 3>;

/// An IOPATH or an INTERCONNECT.
struct SDF_DELAY {
    std::string_view instance;     ///< the cell, from the top of the design; empty for the top
    std::string_view from;         ///< pins, from the cell on
    std::string_view to;           //
    std::string_view condition;    ///< when the delay holds; empty for always
    std::string_view edge;         ///< the edge of `from` that it holds for; empty for any
    bool is_increment;             ///< added to the delay given before, instead of replacing it
    std::vector<SDF_VALUE> values; ///< at least one: rise, fall, and more for other transitions
    std::size_t line;              //
};

/// Reads a file. The constructor reads the header; read_delays() then walks through the delays.
///
/// Everything that breaks the grammar in sdf_reader.cpp throws SDF_ERROR.
class SDF_READER {
public:
    /// @param text the whole file, which must outlive the reader and every view of it
    /// @param file its name for messages
    SDF_READER(std::string_view text, std::string file);

    std::string const& file() const { return m_file; }
    SDF_HEADER const& header() const { return m_header; }

    /// Calls a function with each delay, in the order of the file; to be called once.
    void read_delays(std::function<void(SDF_DELAY const&)> const& take);

    /// How many delays that are bound to a single pin (PORT, NETDELAY, DEVICE) were passed over.
    std::size_t passed_over() const { return m_passed_over; }

private:
    enum KIND { OPEN, CLOSE, STRING, WORD, END };
    struct TOKEN {
        KIND kind;
        std::string_view text; ///< of a string without its quotes
        std::size_t line;
    };

    // Tokens
    void next();
    void skip_blanks_and_comments();
    void scan_string();
    void scan_word();
    bool starts_comment(std::size_t at) const;
    [[noreturn]] void refuse(char const* expected) const;
    [[noreturn]] void refuse_at(std::size_t line, std::string const& reason) const;

    // Lists
    void expect_open(char const* expected);
    void expect_close();
    std::string_view expect_string(char const* expected);
    std::string_view expect_word(char const* expected);
    bool is_keyword(std::string_view keyword) const;
    bool is_one_of(std::initializer_list<std::string_view> keywords) const;
    void skip_list(std::size_t line);

    // The file
    void read_header();
    void read_divider();
    void read_timescale();
    void read_cell();
    void read_instance();
    void read_delay_lists();
    void read_entries();
    void read_condition();
    void read_delay();
    void read_from();
    SDF_VALUE read_value();

    std::string_view m_text;
    std::string m_file;
    std::size_t m_at = 0; ///< the first byte behind the token
    std::size_t m_line = 1;
    TOKEN m_token{END, {}, 1};

    SDF_HEADER m_header;
    std::function<void(SDF_DELAY const&)> m_take;
    SDF_DELAY m_delay{}; ///< what is known of the delay so far
    std::size_t m_passed_over = 0;
};

#endif
