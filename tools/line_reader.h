#ifndef LINE_READER_H
#define LINE_READER_H

/// @file
/// Standard input, line by line, in constant memory.

#include "output.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// What messages call the input.
inline constexpr char const* INPUT_NAME = "standard input";

/// One line of the input. Both views hold until the next line is read.
struct LINE {
    std::string_view text;     ///< the line without its end
    std::string_view end;      ///< "\n", "\r\n", or nothing at the end of the input
    unsigned long long number; ///< from 1
    bool may_hold_nul;         ///< false when no NUL has been read so far
};

/// Reads standard input in big pieces and hands out its lines. Before each piece the output is
/// written out, so that nobody waits for an answer whose question has been read.
class LINE_READER {
public:
    /// A line shorter than this, its end included, can be read; a longer one is an error.
    static constexpr std::size_t LINE_LIMIT = 16 * 1024 * 1024;

    explicit LINE_READER(OUTPUT& output);

    /// Reads the next line. Returns false at the end of the input.
    ///
    /// Throws IO_ERROR, and std::length_error with a text that names the place of a line that is
    /// too long.
    bool next(LINE& line);

private:
    bool read_more();

    OUTPUT& m_output;
    std::vector<char> m_buffer;
    std::size_t m_begin = 0; ///< the bytes read and not yet handed out are [m_begin, m_end)
    std::size_t m_end = 0;
    bool m_at_end = false;
    bool m_has_seen_nul = false;
    unsigned long long m_number = 0; ///< of the line handed out last
};

#endif
