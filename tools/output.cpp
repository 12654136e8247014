#include "output.h"

#include <cerrno>
#include <system_error>

#include <sys/stat.h>
#include <unistd.h>

namespace {

/// Writes all of a text. Returns the system's error number, 0 when all is written.
int write_all(int descriptor, std::string_view text) {
    while (!text.empty()) {
        ssize_t const written = ::write(descriptor, text.data(), text.size());
        if (written >= 0) {
            text.remove_prefix(static_cast<std::size_t>(written));
        } else if (errno != EINTR) {
            return errno;
        }
    }
    return 0;
}

bool are_same_file(int one, int other) {
    struct stat a;
    struct stat b;
    return ::fstat(one, &a) == 0 && ::fstat(other, &b) == 0 && a.st_dev == b.st_dev
           && a.st_ino == b.st_ino;
}

} // namespace

IO_ERROR::IO_ERROR(std::string const& file, int error)
    : std::runtime_error(file + ": " + std::generic_category().message(error)), m_error(error) {}

OUTPUT::OUTPUT()
    : m_buffer(new char[BUFFER_SIZE]),
      m_same_place_as_messages(are_same_file(STDOUT_FILENO, STDERR_FILENO)) {}

void OUTPUT::flush() {
    std::size_t const used = m_used;
    m_used = 0;
    write({m_buffer.get(), used});
}

void OUTPUT::write(std::string_view text) {
    int const error = write_all(STDOUT_FILENO, text);
    if (error != 0) {
        throw IO_ERROR("standard output", error);
    }
}

void OUTPUT::report(std::string_view text) {
    if (m_same_place_as_messages) {
        flush();
    }
    ::report(text);
}

void report(std::string_view text) {
    std::string line = "bigq: ";
    line += text;
    line += '\n';
    write_all(STDERR_FILENO, line);
}
