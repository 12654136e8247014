#ifndef STORE_POSTGRES_CONNECTION_H
#define STORE_POSTGRES_CONNECTION_H

/// @file
/// PostgreSQL for the store: a connection whose failures are thrown as PDB_STORE_ERROR, and rows in
/// the server's binary format.

#include "pdb_store_sys.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include <libpq-fe.h>

/// The parameters of a statement, or the fields of a row, in the server's binary format.
class FIELDS {
public:
    FIELDS() = default;
    explicit FIELDS(std::string_view bytes) { add(bytes); }

    void clear() {
        m_bytes.clear();
        m_ends.clear();
    }
    FIELDS& add(std::string_view bytes) {
        m_bytes += bytes;
        m_ends.push_back(m_bytes.size());
        return *this;
    }
    /// Adds the low bytes of a number, the highest first: an integer, or the bits of a double.
    FIELDS& add_number(std::uint64_t number, std::size_t bytes = 8);
    /// Adds a one-dimensional array of byte strings.
    FIELDS& add_array(std::vector<std::string_view> const& elements);

    std::size_t size() const { return m_ends.size(); }
    std::string_view operator[](std::size_t field) const {
        std::size_t const begin = field == 0 ? 0 : m_ends[field - 1];
        return std::string_view(m_bytes).substr(begin, m_ends[field] - begin);
    }

private:
    std::string m_bytes;
    std::vector<std::size_t> m_ends;
};

/// Rows for COPY in the binary format.
class COPY_ROWS {
public:
    COPY_ROWS();
    void add(FIELDS const& row);
    /// All that was added. Nothing is added behind that.
    std::string_view finish();

private:
    std::string m_data;
};

class POSTGRES_CONNECTION;

/// What a statement returned. Fields of another size than was asked for are DAMAGED.
class ROWS {
public:
    ROWS(POSTGRES_CONNECTION const& connection, PGresult* result)
        : m_connection(&connection), m_result(result, PQclear) {}

    int size() const { return PQntuples(m_result.get()); }
    bool is_null(int row, int column) const {
        return PQgetisnull(m_result.get(), row, column) != 0;
    }
    std::string_view bytes(int row, int column) const {
        return {PQgetvalue(m_result.get(), row, column),
                static_cast<std::size_t>(PQgetlength(m_result.get(), row, column))};
    }
    std::string text(int row, int column) const { return std::string(bytes(row, column)); }
    /// An integer of four bytes, extended with its sign, or eight bytes of whatever type. Of
    /// statements with parameters, whose results are binary.
    std::uint64_t number(int row, int column) const;
    /// A truth value, in either format.
    bool is_true(int row, int column) const;
    /// What the statement did, such as "COMMIT".
    std::string_view command() const { return PQcmdStatus(m_result.get()); }
    /// The rows that it changed.
    bool changed_any() const { return PQcmdTuples(m_result.get()) != std::string_view("0"); }

private:
    POSTGRES_CONNECTION const* m_connection;
    std::unique_ptr<PGresult, void (*)(PGresult*)> m_result;
};

/// A connection to a server. What fails is thrown, and the kind says what it was:
///
/// - CONFLICT: another transaction came between, or the connection was lost; then is_lost() holds.
///   Either way the server applies nothing of the open transaction, unless COMMIT was on its way.
/// - BUSY: a lock or a connection was not to be had within the wait.
/// - READ_ONLY, DAMAGED, SYSTEM: what the server says.
class POSTGRES_CONNECTION {
public:
    /// Connects.
    ///
    /// @param address  as the user gave it
    /// @param shown_as the address without the password, for messages
    POSTGRES_CONNECTION(std::string const& address, std::string const& shown_as,
                        PDB_STORE_OPTIONS const& options);

    /// Whether nothing can be asked any more, except to connect again.
    bool is_lost() const { return m_connection == nullptr; }
    /// Drops the connection.
    void drop() { m_connection.reset(); }
    /// Connects again, for a server that has gone away. Tries for as long as the wait says.
    void reconnect();

    /// Runs statements without parameters, in one round trip. Returns what the last one returned,
    /// as text.
    ROWS run(std::string const& statements);
    /// Runs a statement, which is prepared once in a connection. Returns what it returned, in the
    /// binary format.
    ROWS run(std::string const& statement, FIELDS const& parameters);
    /// Runs COPY ... FROM STDIN (FORMAT binary).
    void copy(std::string const& statement, std::string_view data);

    [[noreturn]] void fail(PDB_STORE_ERROR::KIND kind, std::string const& text) const {
        throw PDB_STORE_ERROR(kind, m_shown_as, text);
    }
    std::chrono::milliseconds wait() const { return m_wait; }

private:
    /// Tries once. Returns the reason when it fails.
    std::string connect();
    void set_up();
    ROWS checked(PGresult* result);
    /// @param result null where libpq failed without one
    [[noreturn]] void fail(PGresult const* result);

    std::string m_address;
    std::string m_shown_as;
    std::chrono::milliseconds m_wait;
    bool m_reads_only;
    std::unique_ptr<PGconn, void (*)(PGconn*)> m_connection{nullptr, PQfinish};
    std::unordered_map<std::string, std::string> m_prepared; ///< names, by the statements' texts
};

#endif
