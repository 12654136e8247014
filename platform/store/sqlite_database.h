#ifndef STORE_SQLITE_DATABASE_H
#define STORE_SQLITE_DATABASE_H

/// @file
/// SQLite for the store: a database whose failures are thrown as PDB_STORE_ERROR, and statements.

#include "pages.h"
#include "pdb_store_sys.h"

#include <chrono>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>

#include <sqlite3.h>

class SQLITE_DATABASE {
public:
    /// Opens a database file, of which nothing is read yet.
    ///
    /// @param path     absolute
    /// @param shown_as what messages call it
    /// @param flags    for sqlite3_open_v2()
    /// @param is_checked whether its pages carry checksums
    SQLITE_DATABASE(std::string const& path, std::string const& shown_as, int flags,
                    PDB_STORE_OPTIONS const& options, bool is_checked);
    ~SQLITE_DATABASE();
    SQLITE_DATABASE(SQLITE_DATABASE const&) = delete;
    SQLITE_DATABASE& operator=(SQLITE_DATABASE const&) = delete;

    sqlite3* handle() const { return m_handle; }
    std::string const& shown_as() const { return m_shown_as; }

    /// Sets how the file is read and written, for which SQLite reads it. A journal that a program
    /// left there when it ended is rolled back then.
    void set_up();

    /// Runs statements without results.
    void run(std::string const& statements);

    /// The first bytes of the file as they are, without a look at what they mean. Fewer bytes when
    /// the file is shorter.
    std::string header();

    /// Whether the path leads to another file by now, or to none.
    bool has_moved();

    /// Throws what a result code other than SQLITE_OK, SQLITE_ROW and SQLITE_DONE means.
    void check(int result);

    [[noreturn]] void fail(PDB_STORE_ERROR::KIND kind, std::string const& text) const;

private:
    static int wait_for_others(void* database, int calls);
    [[noreturn]] void fail(int result);

    std::string m_shown_as;
    std::chrono::milliseconds m_wait;
    std::chrono::steady_clock::time_point m_deadline{}; ///< of the wait at hand
    std::unique_ptr<CHECKED_PAGES> m_pages;             ///< null when they carry no checksums
    sqlite3* m_handle = nullptr;
};

/// A prepared statement, made when it is first used. What is bound must live until the statement is
/// run to its end or reset.
class STATEMENT {
public:
    STATEMENT(SQLITE_DATABASE& database, std::string text)
        : m_database(database), m_text(std::move(text)) {}
    ~STATEMENT() { sqlite3_finalize(m_statement); }
    STATEMENT(STATEMENT const&) = delete;
    STATEMENT& operator=(STATEMENT const&) = delete;

    // The parameters, from 1 on.
    void bind(int index, std::uint64_t number) {
        m_database.check(sqlite3_bind_int64(prepared(), index, static_cast<sqlite3_int64>(number)));
    }
    void bind_real(int index, double number) {
        m_database.check(sqlite3_bind_double(prepared(), index, number));
    }
    void bind(int index, std::string_view bytes) {
        // A null address would bind NULL.
        char const* const address = bytes.data() != nullptr ? bytes.data() : "";
        m_database.check(
            sqlite3_bind_blob64(prepared(), index, address, bytes.size(), SQLITE_STATIC));
    }
    void bind_text(int index, std::string_view text) {
        m_database.check(sqlite3_bind_text64(prepared(), index, text.data(), text.size(),
                                             SQLITE_STATIC, SQLITE_UTF8));
    }

    /// Goes to the next row. Returns false, and is ready to be run again, when there are no more.
    bool next();
    /// Runs a statement without rows.
    void run() {
        if (next())
            reset();
    }
    /// Gives up the rest of the rows.
    void reset() { sqlite3_reset(m_statement); }

    // The columns of the row, from 0 on. Bytes or text of another type are DAMAGED.

    /// A number. What is of another type is converted; that it is the right one is for the
    /// checksums to say in any case.
    std::uint64_t number(int column) {
        return static_cast<std::uint64_t>(sqlite3_column_int64(m_statement, column));
    }
    std::string_view bytes(int column);
    std::string_view text(int column);

private:
    sqlite3_stmt* prepared() {
        if (m_statement == nullptr)
            prepare();
        return m_statement;
    }
    void prepare();
    sqlite3_value* value(int column, int type);
    [[noreturn]] void fail_type(int column);

    SQLITE_DATABASE& m_database;
    std::string m_text;
    sqlite3_stmt* m_statement = nullptr;
};

/// Resets a statement at the end of a block.
class RESET_AT_END {
public:
    explicit RESET_AT_END(STATEMENT& statement) : m_statement(statement) {}
    ~RESET_AT_END() { m_statement.reset(); }
    RESET_AT_END(RESET_AT_END const&) = delete;
    RESET_AT_END& operator=(RESET_AT_END const&) = delete;

private:
    STATEMENT& m_statement;
};

#endif
