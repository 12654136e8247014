#ifndef OUTPUT_H
#define OUTPUT_H

/// @file
/// Writing to standard output and standard error, and what is thrown when the system refuses.

#include <cstring>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

/// Reading or writing failed. what() names the file and the system's reason.
class IO_ERROR : public std::runtime_error {
public:
    /// @param file  the file's name, "standard output" for one
    /// @param error the system's error number
    IO_ERROR(std::string const& file, int error);

    /// The system's error number.
    int error() const noexcept { return m_error; }

private:
    int m_error;
};

/// Standard output with one big buffer. What is still in it when the object dies is lost: whoever
/// is done calls flush().
class OUTPUT {
public:
    OUTPUT();

    /// Appends to the buffer, and writes it out when it is full.
    ///
    /// Throws IO_ERROR.
    void add(std::string_view text) {
        if (text.size() > BUFFER_SIZE - m_used) {
            flush();
            if (text.size() > BUFFER_SIZE) {
                write(text);
                return;
            }
        }
        std::memcpy(m_buffer.get() + m_used, text.data(), text.size());
        m_used += text.size();
    }

    /// Writes the buffer out. The buffer is empty afterwards, whether or not that worked.
    ///
    /// Throws IO_ERROR.
    void flush();

    /// Writes "bigq: ", a text and a line feed on standard error. Where both streams go to one
    /// place, the output so far is written first, so that the message stands behind it.
    ///
    /// Throws IO_ERROR when standard output cannot be written; a message that cannot be written is
    /// dropped.
    void report(std::string_view text);

private:
    static constexpr std::size_t BUFFER_SIZE = 256 * 1024;

    void write(std::string_view text);

    std::unique_ptr<char[]> m_buffer;
    std::size_t m_used = 0;
    bool m_same_place_as_messages;
};

/// Writes "bigq: ", a text and a line feed on standard error in one piece.
void report(std::string_view text);

#endif
