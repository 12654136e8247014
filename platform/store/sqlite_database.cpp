// SQLite for the store: databases and statements.

#include "sqlite_database.h"

#include <algorithm>
#include <cstring>
#include <new>
#include <system_error>
#include <thread>

// ------------------------------------------------------------------------------------------------
// Databases
// ------------------------------------------------------------------------------------------------

SQLITE_DATABASE::SQLITE_DATABASE(std::string const& path, std::string const& shown_as, int flags,
                                 PDB_STORE_OPTIONS const& options, bool is_checked)
    : m_shown_as(shown_as), m_wait(options.wait) {
    sqlite3_vfs* const vfs = sqlite3_vfs_find(options.vfs.empty() ? nullptr : options.vfs.c_str());
    if (vfs == nullptr)
        fail(PDB_STORE_ERROR::BAD_ADDRESS, "SQLite has no VFS \"" + options.vfs + '"');
    flags |= SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_EXRESCODE;
    int result = SQLITE_OK;
    if (is_checked) {
        m_pages = std::make_unique<CHECKED_PAGES>(vfs);
        result = m_pages->open(path.c_str(), &m_handle, flags);
    } else {
        result = sqlite3_open_v2(path.c_str(), &m_handle, flags, vfs->zName);
    }
    try {
        check(result);
        check(sqlite3_busy_handler(m_handle, wait_for_others, this));
        check(sqlite3_db_config(m_handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr));
        check(sqlite3_db_config(m_handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr));
        check(sqlite3_db_config(m_handle, SQLITE_DBCONFIG_ENABLE_TRIGGER, 0, nullptr));
    } catch (...) {
        sqlite3_close_v2(m_handle);
        throw;
    }
}

SQLITE_DATABASE::~SQLITE_DATABASE() {
    sqlite3_close_v2(m_handle);
}

/// SQLite calls this while another handle is in the way, with the number of earlier calls for the
/// same lock. Returns 0 to give up.
int SQLITE_DATABASE::wait_for_others(void* database, int calls) {
    auto& self = *static_cast<SQLITE_DATABASE*>(database);
    auto const now = std::chrono::steady_clock::now();
    if (calls == 0)
        self.m_deadline = now + self.m_wait;
    if (now >= self.m_deadline)
        return 0;
    // Short at first, and not the same for all who wait.
    unsigned char random = 0;
    sqlite3_randomness(1, &random);
    auto const pause = std::chrono::microseconds(std::min(calls + 1, 20) * (500 + 8 * random));
    std::this_thread::sleep_for(
        std::min<std::chrono::steady_clock::duration>(pause, self.m_deadline - now));
    return 1;
}

void SQLITE_DATABASE::set_up() {
    // A commit is the removal of the journal, and EXTRA brings that to the disk too.
    run("PRAGMA synchronous=EXTRA; PRAGMA cell_size_check=ON; PRAGMA cache_size=-32768");
}

void SQLITE_DATABASE::run(std::string const& statements) {
    check(sqlite3_exec(m_handle, statements.c_str(), nullptr, nullptr, nullptr));
}

std::string SQLITE_DATABASE::header() {
    constexpr int HEADER_SIZE = 100;
    sqlite3_file* file = nullptr;
    check(sqlite3_file_control(m_handle, "main", SQLITE_FCNTL_FILE_POINTER, &file));
    sqlite3_int64 size = 0;
    check(file->pMethods->xFileSize(file, &size));
    std::string bytes(static_cast<std::size_t>(std::min<sqlite3_int64>(size, HEADER_SIZE)), '\0');
    check(file->pMethods->xRead(file, bytes.data(), static_cast<int>(bytes.size()), 0));
    return bytes;
}

bool SQLITE_DATABASE::has_moved() {
    int moved = 0;
    int const result = sqlite3_file_control(m_handle, "main", SQLITE_FCNTL_HAS_MOVED, &moved);
    return result == SQLITE_OK && moved != 0; // a VFS need not know
}

void SQLITE_DATABASE::check(int result) {
    if (result != SQLITE_OK && result != SQLITE_ROW && result != SQLITE_DONE)
        fail(result);
}

void SQLITE_DATABASE::fail(PDB_STORE_ERROR::KIND kind, std::string const& text) const {
    throw PDB_STORE_ERROR(kind, m_shown_as, text);
}

namespace {

std::string in_words(std::chrono::milliseconds wait) {
    if (wait.count() % 1000 == 0)
        return std::to_string(wait.count() / 1000) + " s";
    return std::to_string(wait.count()) + " ms";
}

} // namespace

void SQLITE_DATABASE::fail(int result) {
    std::string reason = sqlite3_errstr(result);
    if (m_handle != nullptr && sqlite3_extended_errcode(m_handle) == result)
        reason = sqlite3_errmsg(m_handle);
    if (result == SQLITE_IOERR_DATA && m_pages && m_pages->has_bad_journal())
        fail(PDB_STORE_ERROR::DAMAGED,
             "a program ended while it was writing, and the journal, from "
             "which that would be taken back, does not match its checksum");
    if (result == SQLITE_IOERR_DATA && m_pages && m_pages->bad_page() != 0)
        fail(PDB_STORE_ERROR::DAMAGED,
             "page " + std::to_string(m_pages->bad_page()) + " does not match its checksum");
    switch (result) {
    case SQLITE_READONLY_DBMOVED:
        fail(PDB_STORE_ERROR::SYSTEM, "the file was moved or replaced while it was open");
    case SQLITE_READONLY_ROLLBACK:
    case SQLITE_READONLY_RECOVERY:
        fail(PDB_STORE_ERROR::READ_ONLY,
             "a program ended while it was writing; open the store for writing once, which takes "
             "back what was half written");
    case SQLITE_IOERR_DIR_FSYNC: // of the folder that the journal has left
        fail(PDB_STORE_ERROR::SYSTEM,
             "the change is in the file, but bringing the folder to the disk failed, so that a "
             "loss of power may take it back");
    case SQLITE_IOERR_NOMEM: throw std::bad_alloc();
    case SQLITE_IOERR_DATA:
    case SQLITE_IOERR_CORRUPTFS:
    case SQLITE_IOERR_SHORT_READ: fail(PDB_STORE_ERROR::DAMAGED, reason);
    default: break;
    }
    switch (result & 0xff) {
    case SQLITE_NOMEM: throw std::bad_alloc();
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        fail(PDB_STORE_ERROR::BUSY,
             "another program or handle is using it; gave up after " + in_words(m_wait));
    case SQLITE_READONLY: fail(PDB_STORE_ERROR::READ_ONLY, "it cannot be written: " + reason);
    case SQLITE_CORRUPT:
    case SQLITE_NOTADB:
    case SQLITE_FORMAT:
    case SQLITE_MISMATCH:
    case SQLITE_CONSTRAINT:
    case SQLITE_SCHEMA:
    case SQLITE_ERROR: // of a statement: the tables are not those of a store
        fail(PDB_STORE_ERROR::DAMAGED, reason);
    default: break;
    }
    int const error = m_handle != nullptr ? sqlite3_system_errno(m_handle) : 0;
    if (error != 0)
        reason += ": " + std::generic_category().message(error);
    fail(PDB_STORE_ERROR::SYSTEM, reason);
}

// ------------------------------------------------------------------------------------------------
// Statements
// ------------------------------------------------------------------------------------------------

void STATEMENT::prepare() {
    m_database.check(sqlite3_prepare_v3(m_database.handle(), m_text.data(),
                                        static_cast<int>(m_text.size()), SQLITE_PREPARE_PERSISTENT,
                                        &m_statement, nullptr));
}

bool STATEMENT::next() {
    int const result = sqlite3_step(prepared());
    if (result == SQLITE_ROW)
        return true;
    if (result == SQLITE_DONE) {
        reset();
        return false;
    }
    try {
        m_database.check(result); // before reset(), which the message does not survive
    } catch (...) {
        reset();
        throw;
    }
    return false;
}

void STATEMENT::fail_type(int column) {
    std::string const name = sqlite3_column_name(m_statement, column);
    reset();
    m_database.fail(PDB_STORE_ERROR::DAMAGED,
                    "column \"" + name + "\" holds something of another type");
}

// A value may be looked at more than once, as its database belongs to one thread at a time.
sqlite3_value* STATEMENT::value(int column, int type) {
    sqlite3_value* const value = sqlite3_column_value(m_statement, column);
    if (sqlite3_value_type(value) != type)
        fail_type(column);
    return value;
}

std::string_view STATEMENT::bytes(int column) {
    sqlite3_value* const blob = value(column, SQLITE_BLOB);
    auto const* const address = static_cast<char const*>(sqlite3_value_blob(blob));
    return {address != nullptr ? address : "", // of no bytes
            static_cast<std::size_t>(sqlite3_value_bytes(blob))};
}

std::string_view STATEMENT::text(int column) {
    sqlite3_value* const characters = value(column, SQLITE_TEXT);
    auto const* const address = reinterpret_cast<char const*>(sqlite3_value_text(characters));
    return {address, static_cast<std::size_t>(sqlite3_value_bytes(characters))};
}
