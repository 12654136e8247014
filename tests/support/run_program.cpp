#include "run_program.h"

#include <array>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using FILE_HANDLE = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

[[noreturn]] void fail(char const* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

FILE_HANDLE temporary_file(std::string const& content = "") {
    FILE_HANDLE file(std::tmpfile(), std::fclose);
    if (file == nullptr
        || std::fwrite(content.data(), 1, content.size(), file.get()) != content.size()
        || std::fflush(file.get()) != 0) {
        fail("temporary file");
    }
    std::rewind(file.get());
    return file;
}

std::string content_of(std::FILE* file) {
    std::rewind(file);
    std::string content;
    std::array<char, 4096> piece;
    while (std::size_t const count = std::fread(piece.data(), 1, piece.size(), file)) {
        content.append(piece.data(), count);
    }
    return content;
}

/// Starts a command in a shell with three files as its standard streams.
pid_t start(std::string const& command, std::string const& folder, int in, int out, int err) {
    pid_t const process = ::fork();
    if (process < 0) {
        fail("fork");
    }
    if (process == 0) {
        std::string const path = std::string(BIG_TOOL_FOLDER ":") + std::getenv("PATH");
        if (::dup2(in, 0) < 0 || ::dup2(out, 1) < 0 || ::dup2(err, 2) < 0
            || (!folder.empty() && ::chdir(folder.c_str()) != 0)
            || ::setenv("PATH", path.c_str(), 1) != 0) {
            ::_exit(127);
        }
        ::execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
        ::_exit(127);
    }
    return process;
}

} // namespace

void PrintTo(RUN const& run, std::ostream* out) {
    *out << "status " << run.status << "\nstandard output:\n"
         << run.out << "\nstandard error:\n"
         << run.err;
}

RUN run_shell(std::string const& command, std::string const& input, std::string const& folder) {
    FILE_HANDLE const in = temporary_file(input);
    FILE_HANDLE const out = temporary_file();
    FILE_HANDLE const err = temporary_file();
    pid_t const process =
        start(command, folder, ::fileno(in.get()), ::fileno(out.get()), ::fileno(err.get()));
    int status = 0;
    while (::waitpid(process, &status, 0) < 0) {
        if (errno != EINTR) {
            fail("waitpid");
        }
    }
    return {content_of(out.get()), content_of(err.get()),
            WIFSIGNALED(status) ? 128 + WTERMSIG(status) : WEXITSTATUS(status)};
}

CONVERSATION::CONVERSATION(std::string const& command) {
    int to[2];
    int from[2];
    if (::pipe2(to, O_CLOEXEC) != 0 || ::pipe2(from, O_CLOEXEC) != 0) {
        fail("pipe");
    }
    m_process = start("exec " + command, "", to[0], from[1], 2);
    ::close(to[0]);
    ::close(from[1]);
    m_to = to[1];
    m_from = from[0];
}

CONVERSATION::~CONVERSATION() {
    ::close(m_to);
    ::close(m_from);
    ::waitpid(m_process, nullptr, 0);
}

void CONVERSATION::say(std::string const& text) {
    if (::write(m_to, text.data(), text.size()) != static_cast<ssize_t>(text.size())) {
        fail("write to the command");
    }
}

std::string CONVERSATION::hear(std::size_t length) {
    std::string heard;
    struct pollfd waiting = {m_from, POLLIN, 0};
    while (heard.size() < length && ::poll(&waiting, 1, 10000) == 1) {
        std::array<char, 4096> piece;
        ssize_t const count = ::read(m_from, piece.data(), piece.size());
        if (count <= 0) {
            break;
        }
        heard.append(piece.data(), static_cast<std::size_t>(count));
    }
    return heard;
}

bool CONVERSATION::is_silent() {
    struct pollfd waiting = {m_from, POLLIN, 0};
    return ::poll(&waiting, 1, 100) == 0;
}
