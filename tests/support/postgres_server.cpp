#include "postgres_server.h"

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <memory>
#include <sstream>
#include <stdexcept>
#include <thread>
#include <vector>

#include <arpa/inet.h>
#include <fcntl.h>
#include <grp.h>
#include <libpq-fe.h>
#include <pwd.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr char const* USER = "big";

/// The folder of the server's programs; empty when there is none.
std::string find_programs() {
    std::vector<std::filesystem::path> folders{"/usr/bin", "/usr/local/bin"};
    std::error_code none;
    for (auto const& version : std::filesystem::directory_iterator("/usr/lib/postgresql", none))
        folders.push_back(version.path() / "bin");
    for (auto const& folder : folders)
        if (std::filesystem::exists(folder / "initdb", none)
            && std::filesystem::exists(folder / "postgres", none))
            return folder;
    return "";
}

// ------------------------------------------------------------------------------------------------
// The guard: a process that starts the server, and stops and removes it when the test has ended. It
// is forked off the test, and leaves by _exit() alone.
// ------------------------------------------------------------------------------------------------

struct FAILURE {
    std::string reason;
};

[[noreturn]] void fail(std::string const& what) {
    throw FAILURE{what + ": " + std::strerror(errno)};
}

/// The server refuses to run as root.
void drop_privileges() {
    if (::geteuid() != 0)
        return;
    passwd const* user = ::getpwnam("postgres");
    if (user == nullptr)
        user = ::getpwnam("nobody");
    if (user == nullptr || ::initgroups(user->pw_name, user->pw_gid) != 0
        || ::setgid(user->pw_gid) != 0 || ::setuid(user->pw_uid) != 0)
        fail("no user but root can be had for the server");
}

std::string content_of(std::string const& path) {
    std::ostringstream content;
    content << std::ifstream(path).rdbuf();
    return content.str();
}

/// Starts a program whose output goes to a file. It ends with the guard.
pid_t start(std::vector<std::string> const& command, std::string const& log) {
    pid_t const process = ::fork();
    if (process < 0)
        fail("fork");
    if (process != 0)
        return process;
    int const out = ::open(log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
    ::dup2(out, 1);
    ::dup2(out, 2);
    ::prctl(PR_SET_PDEATHSIG, SIGQUIT);
    std::vector<char*> arguments;
    for (std::string const& argument : command)
        arguments.push_back(const_cast<char*>(argument.c_str()));
    arguments.push_back(nullptr);
    ::execv(arguments[0], arguments.data());
    ::_exit(127);
}

/// A port that nobody listens on now.
unsigned short free_port() {
    int const listener = ::socket(AF_INET, SOCK_STREAM | SOCK_CLOEXEC, 0);
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = ::htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof address;
    if (::bind(listener, reinterpret_cast<sockaddr*>(&address), size) != 0
        || ::getsockname(listener, reinterpret_cast<sockaddr*>(&address), &size) != 0)
        fail("no port");
    ::close(listener);
    return ::ntohs(address.sin_port);
}

class GUARD {
public:
    GUARD() : m_folder((std::filesystem::temp_directory_path() / "big_postgres_XXXXXX").string()) {}
    ~GUARD() {
        if (m_server > 0) {
            ::kill(m_server, SIGQUIT); // at once, as nothing of it is kept
            ::waitpid(m_server, nullptr, 0);
        }
        std::error_code ignored;
        std::filesystem::remove_all(m_folder, ignored);
    }
    GUARD(GUARD const&) = delete;
    GUARD& operator=(GUARD const&) = delete;

    /// Starts the server. Returns its port.
    unsigned short start_server(std::string const& programs) {
        if (::mkdtemp(m_folder.data()) == nullptr)
            fail("no temporary folder");
        std::string const log = m_folder + "/log";
        std::string const password_file = m_folder + "/password";
        std::ofstream(password_file) << POSTGRES_SERVER::PASSWORD << '\n';
        pid_t const initdb =
            start({programs + "/initdb", "-D", m_folder + "/data", "-U", USER, "-A",
                   "scram-sha-256", "--pwfile", password_file, "-E", "UTF8", "--no-locale", "-N"},
                  log);
        int status = 0;
        ::waitpid(initdb, &status, 0);
        if (status != 0)
            throw FAILURE{"initdb failed: " + content_of(log)};

        constexpr int MOST_ATTEMPTS = 5; // as another program may take the port first
        for (int attempt = 0; attempt < MOST_ATTEMPTS; ++attempt) {
            unsigned short const port = free_port();
            m_server =
                start({programs + "/postgres", "-D", m_folder + "/data", "-p", std::to_string(port),
                       "-h", "127.0.0.1", "-c", "unix_socket_directories=", "-c",
                       "shared_buffers=16MB", "-c", "max_connections=40"},
                      log);
            if (answers(port))
                return port;
        }
        throw FAILURE{"the server does not start: " + content_of(log)};
    }

private:
    /// Waits for the server. Returns false when it has ended.
    bool answers(unsigned short port) {
        std::string const where = "host=127.0.0.1 port=" + std::to_string(port);
        while (::PQping(where.c_str()) != PQPING_OK) {
            if (::waitpid(m_server, nullptr, WNOHANG) != 0) {
                m_server = -1;
                return false;
            }
            std::this_thread::sleep_for(std::chrono::milliseconds(20));
        }
        return ::waitpid(m_server, nullptr, WNOHANG) == 0;
    }

    std::string m_folder;
    pid_t m_server = -1;
};

/// @param lifeline ends when the test does
/// @param report   takes the port, or why there is none
[[noreturn]] void guard(std::string const& programs, int lifeline, int report) {
    ::setsid(); // what stops the test from a terminal does not reach the guard
    int const nowhere = ::open("/dev/null", O_RDWR);
    for (int stream = 0; stream < 3; ++stream)
        ::dup2(nowhere, stream);
    try {
        drop_privileges();
        GUARD server;
        std::string const port = std::to_string(server.start_server(programs));
        if (::write(report, port.data(), port.size()) > 0) {
            ::close(report);
            char byte;
            while (::read(lifeline, &byte, 1) < 0 && errno == EINTR)
                ;
        }
    } catch (FAILURE const& failure) {
        std::string const text = "!" + failure.reason;
        if (::write(report, text.data(), text.size()) < 0)
            ::_exit(1);
    }
    ::_exit(0);
}

} // namespace

// ------------------------------------------------------------------------------------------------
// The test's side
// ------------------------------------------------------------------------------------------------

POSTGRES_SERVER& POSTGRES_SERVER::get() {
    static POSTGRES_SERVER s_server;
    return s_server;
}

POSTGRES_SERVER::POSTGRES_SERVER() {
    std::string const programs = find_programs();
    if (programs.empty()) {
        m_why_not = "the programs of a PostgreSQL server are missing (Debian: postgresql)";
        return;
    }
    int lifeline[2];
    int report[2];
    if (::pipe2(lifeline, O_CLOEXEC) != 0 || ::pipe2(report, O_CLOEXEC) != 0)
        throw std::runtime_error("pipe");
    m_guard = ::fork();
    if (m_guard < 0)
        throw std::runtime_error("fork");
    if (m_guard == 0) {
        ::close(lifeline[1]);
        ::close(report[0]);
        guard(programs, lifeline[0], report[1]);
    }
    ::close(lifeline[0]);
    ::close(report[1]);
    m_lifeline = lifeline[1];

    std::string text;
    char buffer[4096];
    for (ssize_t count; (count = ::read(report[0], buffer, sizeof buffer)) > 0;)
        text.append(buffer, static_cast<std::size_t>(count));
    ::close(report[0]);
    if (text.empty() || text[0] == '!')
        throw std::runtime_error("no PostgreSQL server: " + text);
    m_port = static_cast<unsigned short>(std::stoi(text));
}

POSTGRES_SERVER::~POSTGRES_SERVER() {
    if (m_guard < 0)
        return;
    ::close(m_lifeline);
    ::waitpid(m_guard, nullptr, 0);
}

std::string POSTGRES_SERVER::address(std::string const& schema, unsigned short port) const {
    return std::string("postgresql://") + USER + ':' + PASSWORD
           + "@127.0.0.1:" + std::to_string(port != 0 ? port : m_port)
           + "/postgres?connect_timeout=60" // a machine may be busy with other tests
           + (schema.empty() ? "" : "&options=-csearch_path%3D" + schema);
}

std::string POSTGRES_SERVER::new_schema() {
    std::string const schema = "schema_" + std::to_string(++m_schemas);
    ask("CREATE SCHEMA " + schema);
    return schema;
}

std::string POSTGRES_SERVER::ask(std::string const& statements) const {
    std::unique_ptr<PGconn, void (*)(PGconn*)> const connection(::PQconnectdb(address().c_str()),
                                                                ::PQfinish);
    std::unique_ptr<PGresult, void (*)(PGresult*)> const result(
        ::PQexec(connection.get(), statements.c_str()), ::PQclear);
    ExecStatusType const status = ::PQresultStatus(result.get());
    if (status != PGRES_COMMAND_OK && status != PGRES_TUPLES_OK)
        throw std::runtime_error(statements + ": " + ::PQerrorMessage(connection.get()));
    return ::PQntuples(result.get()) > 0 ? ::PQgetvalue(result.get(), 0, 0) : "";
}
