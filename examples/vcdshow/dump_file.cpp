#include "dump_file.h"

#include <cerrno>
#include <cstring>
#include <stdexcept>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

DUMP_FILE::DUMP_FILE(std::string const& path)
    : m_name(path == "-" ? "standard input" : path),
      m_file(path == "-" ? STDIN_FILENO : ::open(path.c_str(), O_RDONLY | O_CLOEXEC)) {
    struct stat status {};
    if (m_file < 0 || ::fstat(m_file, &status) != 0) {
        fail(errno);
    }
    if (S_ISDIR(status.st_mode)) {
        fail(EISDIR);
    }
    if (S_ISREG(status.st_mode)) {
        m_size = static_cast<unsigned long long>(status.st_size);
    }
}

DUMP_FILE::~DUMP_FILE() {
    if (m_file != STDIN_FILENO) {
        ::close(m_file);
    }
}

std::size_t DUMP_FILE::read(char* to, std::size_t size) {
    m_report(m_bytes_read);
    ssize_t count;
    do {
        count = ::read(m_file, to, size);
    } while (count < 0 && errno == EINTR);
    if (count < 0) {
        fail(errno);
    }
    m_bytes_read += static_cast<std::size_t>(count);
    return static_cast<std::size_t>(count);
}

void DUMP_FILE::fail(int error) const {
    throw std::runtime_error(m_name + ": " + std::strerror(error)
                             + "; expected a file with a value change dump");
}
