#include "line_reader.h"

#include <cerrno>
#include <cstring>

#include <unistd.h>

namespace {

constexpr std::size_t FIRST_BUFFER_SIZE = 256 * 1024;

} // namespace

LINE_READER::LINE_READER(OUTPUT& output) : m_output(output), m_buffer(FIRST_BUFFER_SIZE) {}

bool LINE_READER::next(LINE& line) {
    char const* newline = nullptr;
    std::size_t searched = 0; // bytes from m_begin on that hold no line feed
    while (newline == nullptr) {
        newline = static_cast<char const*>(
            std::memchr(m_buffer.data() + m_begin + searched, '\n', m_end - m_begin - searched));
        if (newline == nullptr) {
            searched = m_end - m_begin;
            if (!read_more()) {
                break;
            }
        }
    }
    if (newline == nullptr && m_begin == m_end) {
        return false;
    }
    char const* const first = m_buffer.data() + m_begin;
    std::size_t length =
        newline != nullptr ? static_cast<std::size_t>(newline - first) : m_end - m_begin;
    std::size_t end_length = newline != nullptr ? 1 : 0;
    m_begin += length + end_length;
    if (end_length == 1 && length > 0 && first[length - 1] == '\r') {
        --length;
        ++end_length;
    }
    line = {{first, length}, {first + length, end_length}, ++m_number, m_has_seen_nul};
    return true;
}

/// Reads behind the bytes not yet handed out, which move to the front of the buffer; the buffer
/// grows when they fill it. Returns false at the end of the input.
bool LINE_READER::read_more() {
    if (m_at_end) {
        return false;
    }
    m_output.flush();
    std::memmove(m_buffer.data(), m_buffer.data() + m_begin, m_end - m_begin);
    m_end -= m_begin;
    m_begin = 0;
    if (m_end == m_buffer.size()) {
        if (m_buffer.size() >= LINE_LIMIT) {
            throw std::length_error(INPUT_NAME + (':' + std::to_string(m_number + 1))
                                    + ": the line is longer than " + std::to_string(LINE_LIMIT)
                                    + " bytes");
        }
        m_buffer.resize(2 * m_buffer.size());
    }
    ssize_t count = 0;
    do {
        count = ::read(STDIN_FILENO, m_buffer.data() + m_end, m_buffer.size() - m_end);
    } while (count < 0 && errno == EINTR);
    if (count < 0) {
        throw IO_ERROR(INPUT_NAME, errno);
    }
    std::string_view const piece(m_buffer.data() + m_end, static_cast<std::size_t>(count));
    m_has_seen_nul = m_has_seen_nul || piece.find('\0') != std::string_view::npos;
    m_end += piece.size();
    m_at_end = piece.empty();
    return !m_at_end;
}
