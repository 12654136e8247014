#ifndef POSTGRES_SERVER_H
#define POSTGRES_SERVER_H

/// @file
/// A PostgreSQL server of a test program's own, on a free port of this machine, with its data in a
/// temporary folder.

#include <string>

#include <sys/types.h>

class POSTGRES_SERVER {
public:
    /// The program's server. It is started when it is first asked for, which is before the program
    /// starts a thread, and is stopped and removed when the program ends, however that comes about.
    static POSTGRES_SERVER& get();

    /// Why there is no server; empty when there is one. A test without a server is skipped.
    std::string const& why_not() const { return m_why_not; }
    unsigned short port() const { return m_port; }

    /// The address of the server's database, for its only user.
    ///
    /// @param port   of a forwarder in front of the server; 0 for the server itself
    /// @param schema the one that is meant; empty for the default
    std::string address(std::string const& schema = "", unsigned short port = 0) const;
    /// The name of a new schema, which is empty.
    std::string new_schema();

    /// Runs statements as the user of the store. Returns the first field of the last one's first
    /// row, "" when there is none; throws std::runtime_error with the server's message.
    std::string ask(std::string const& statements) const;

    static constexpr char const* PASSWORD = "s3cr3t-of-the-test";

private:
    POSTGRES_SERVER();
    ~POSTGRES_SERVER();

    std::string m_why_not;
    unsigned short m_port = 0;
    unsigned m_schemas = 0;
    pid_t m_guard = -1;
    int m_lifeline = -1;
};

#endif
