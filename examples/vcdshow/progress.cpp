#include "progress.h"

#include <utility>

#include <unistd.h>

namespace {

using namespace std::chrono_literals;

constexpr PROGRESS::CLOCK::duration FIRST_DELAY = 1s;
constexpr PROGRESS::CLOCK::duration DELAY = 200ms;

/// Back to the start of the line, and away with all that is in it (ECMA-48, EL).
constexpr char const* ERASE_LINE = "\r\x1B[K";

std::string in_megabytes(unsigned long long bytes) {
    return std::to_string(bytes / 1'000'000) + " MB";
}

} // namespace

PROGRESS::PROGRESS(std::optional<int> terminal, std::string label,
                   std::optional<unsigned long long> size, CLOCK::time_point start)
    : m_terminal(terminal), m_label(std::move(label)), m_size(size), m_next(start + FIRST_DELAY) {}

void PROGRESS::show(unsigned long long bytes, CLOCK::time_point now) {
    if (!m_terminal || now < m_next) {
        return;
    }
    m_next = now + DELAY;
    m_is_shown = true;
    std::string text = ERASE_LINE + m_label + ": ";
    // A file that has grown since has no known size, nor has one of the system that says 0.
    if (m_size && *m_size > 0 && *m_size >= bytes) {
        text += std::to_string(100 * bytes / *m_size) + " % of " + in_megabytes(*m_size);
    } else {
        text += in_megabytes(bytes);
    }
    write(text);
}

void PROGRESS::erase() {
    if (m_is_shown) {
        m_is_shown = false;
        write(ERASE_LINE);
    }
}

/// A terminal that takes nothing more is no reason to stop.
void PROGRESS::write(std::string const& text) {
    [[maybe_unused]] auto const size = ::write(*m_terminal, text.data(), text.size());
}
