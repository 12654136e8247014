#ifndef PROGRESS_H
#define PROGRESS_H

#include <chrono>
#include <optional>
#include <string>

/// Shows on a terminal how much of a file has been read, in one line that is written over and over.
/// Work that is done within a second shows nothing.
class PROGRESS {
public:
    using CLOCK = std::chrono::steady_clock;

    /// @param terminal a file descriptor; none when there is no terminal and nothing is to be shown
    /// @param label    what is being read
    /// @param size     its bytes, if they are known
    /// @param start    when the work has started
    PROGRESS(std::optional<int> terminal, std::string label, std::optional<unsigned long long> size,
             CLOCK::time_point start);
    ~PROGRESS() { erase(); }
    PROGRESS(PROGRESS const&) = delete;
    PROGRESS& operator=(PROGRESS const&) = delete;

    /// Shows the bytes read so far, unless something has been shown only just before.
    void show(unsigned long long bytes, CLOCK::time_point now);

    /// Takes the line away, so that other output can be written.
    void erase();

private:
    void write(std::string const& text);

    std::optional<int> m_terminal;
    std::string m_label;
    std::optional<unsigned long long> m_size;
    CLOCK::time_point m_next; ///< when to show something again
    bool m_is_shown = false;
};

#endif
