// The database of stored classes (row 16): times by name, one by one and as one array, beside
// SQLite and LMDB without checksums, classes or names of other kinds. Whatever is written is on the
// disk when an operation ends.

#include "bench.h"

#include <big_sys.h>
#include <pdb_store_sys.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <unistd.h>

#ifdef BIG_BENCH_SQLITE
#include <sqlite3.h>
#endif
#ifdef BIG_BENCH_LMDB
#include <lmdb.h>
#endif

namespace {

/// A folder for the files of this program, removed with it.
class FOLDER {
public:
    FOLDER() {
        std::string path = (std::filesystem::temp_directory_path() / "big-bench-XXXXXX").string();
        if (mkdtemp(path.data()) == nullptr)
            throw std::runtime_error(path + ": " + std::strerror(errno));
        m_path = path;
    }
    FOLDER(FOLDER const&) = delete;
    FOLDER& operator=(FOLDER const&) = delete;
    ~FOLDER() { std::filesystem::remove_all(m_path); }

    /// The path of a file with a new name.
    std::string new_file() { return m_path / std::to_string(++m_files); }

private:
    std::filesystem::path m_path;
    int m_files = 0;
};

std::string new_file() {
    static FOLDER folder;
    return folder.new_file();
}

void require(bool is_done, char const* what) {
    if (!is_done)
        throw std::runtime_error(what);
}

/// The values, and their names in order.
struct VALUES {
    std::vector<std::string> names;
    std::vector<BIG_TIME> times;
};

std::shared_ptr<VALUES const> all_values() {
    static std::shared_ptr<VALUES const> const values = [] {
        auto made = std::make_shared<VALUES>();
        long const count = bench::setting("BIG_BENCH_VALUES", 1000000);
        for (long i = 0; i < count; ++i) {
            char name[32];
            std::snprintf(name, sizeof name, "delay/%09ld", i);
            made->names.push_back(name);
            made->times.emplace_back(i * 7919 % 1000003, BIG_TIME::UNIT_PS);
        }
        return made;
    }();
    return values;
}

/// What reading has found: how many values, and a sum that depends on their order.
struct DIGEST {
    unsigned long long count = 0;
    unsigned long long sum = 0;

    void add(long long value, int unit) {
        ++count;
        sum = sum * 31 + static_cast<unsigned long long>(value) * 16
              + static_cast<unsigned long long>(unit);
    }
    void add(BIG_TIME const& time) { add(time.get_time_value(), time.get_time_unit()); }

    bool operator==(DIGEST const&) const = default;
    friend std::ostream& operator<<(std::ostream& out, DIGEST const& digest) {
        return out << digest.count << " values, sum " << digest.sum;
    }
};

// --- This library's store ---

char const* const ARRAY = "delays";

void write_values(std::string const& path) {
    std::shared_ptr<VALUES const> const values = all_values();
    std::size_t next = 0;
    PDB_STORE(path).put_each<BIG_TIME>([&](std::string& name, BIG_TIME& time) {
        if (next == values->names.size())
            return false;
        name = values->names[next];
        time = values->times[next++];
        return true;
    });
}

DIGEST read_values(std::string const& path) {
    PDB_STORE store(path);
    DIGEST digest;
    store.begin(false);
    BIG_TIME time;
    for (std::string const& name : all_values()->names)
        if (store.get(name, time))
            digest.add(time);
    store.rollback();
    return digest;
}

DIGEST scan_values(std::string const& path) {
    PDB_STORE store(path);
    DIGEST digest;
    store.for_each<BIG_TIME>("", [&](std::string const&, BIG_TIME const& t) { digest.add(t); });
    return digest;
}

void write_array(std::string const& path) {
    std::shared_ptr<VALUES const> const values = all_values();
    PDB_STORE(path).put_array(ARRAY, values->times.data(), values->times.size());
}

DIGEST read_array(std::string const& path) {
    PDB_STORE store(path);
    std::vector<BIG_TIME> times;
    store.get_array(ARRAY, times);
    DIGEST digest;
    for (BIG_TIME const& time : times)
        digest.add(time);
    return digest;
}

// --- A loop over SQLite's prepared statements, on a table and with settings as the store has them;
//     what should be a checksum is any number ---

#ifdef BIG_BENCH_SQLITE

class SQLITE {
public:
    explicit SQLITE(std::string const& path) {
        require(sqlite3_open(path.c_str(), &m_database) == SQLITE_OK, "sqlite3_open");
        run("PRAGMA synchronous=EXTRA; PRAGMA cell_size_check=ON; PRAGMA cache_size=-32768");
    }
    SQLITE(SQLITE const&) = delete;
    SQLITE& operator=(SQLITE const&) = delete;
    ~SQLITE() {
        sqlite3_finalize(m_statement);
        sqlite3_close(m_database);
    }

    void run(char const* text) {
        require(sqlite3_exec(m_database, text, nullptr, nullptr, nullptr) == SQLITE_OK, text);
    }
    sqlite3_stmt* prepare(char const* text) {
        require(sqlite3_prepare_v2(m_database, text, -1, &m_statement, nullptr) == SQLITE_OK, text);
        return m_statement;
    }

private:
    sqlite3* m_database = nullptr;
    sqlite3_stmt* m_statement = nullptr;
};

void bind_name(sqlite3_stmt* statement, std::string const& name) {
    sqlite3_bind_blob(statement, 1, name.data(), static_cast<int>(name.size()), SQLITE_STATIC);
}

/// A number as long as a checksum mostly is.
constexpr sqlite3_int64 some_checksum = 0x123456789ABCDEF0;

void write_sqlite(std::string const& path) {
    std::shared_ptr<VALUES const> const values = all_values();
    SQLITE database(path);
    database.run("CREATE TABLE times(name BLOB PRIMARY KEY NOT NULL, value INTEGER NOT NULL, "
                 "unit INTEGER NOT NULL, checksum INTEGER NOT NULL) WITHOUT ROWID");
    database.run("BEGIN");
    sqlite3_stmt* const statement =
        database.prepare("INSERT OR REPLACE INTO times VALUES(?, ?, ?, ?)");
    for (std::size_t i = 0; i < values->names.size(); ++i) {
        bind_name(statement, values->names[i]);
        sqlite3_bind_int64(statement, 2, values->times[i].get_time_value());
        sqlite3_bind_int(statement, 3, values->times[i].get_time_unit());
        sqlite3_bind_int64(statement, 4, some_checksum);
        require(sqlite3_step(statement) == SQLITE_DONE, "INSERT");
        sqlite3_reset(statement);
    }
    database.run("COMMIT");
}

DIGEST read_sqlite(std::string const& path) {
    SQLITE database(path);
    database.run("BEGIN");
    sqlite3_stmt* const statement =
        database.prepare("SELECT value, unit, checksum FROM times WHERE name = ?");
    DIGEST digest;
    for (std::string const& name : all_values()->names) {
        bind_name(statement, name);
        if (sqlite3_step(statement) == SQLITE_ROW
            && sqlite3_column_int64(statement, 2) == some_checksum)
            digest.add(sqlite3_column_int64(statement, 0), sqlite3_column_int(statement, 1));
        sqlite3_reset(statement);
    }
    return digest;
}

DIGEST scan_sqlite(std::string const& path) {
    SQLITE database(path);
    sqlite3_stmt* const statement =
        database.prepare("SELECT name, value, unit, checksum FROM times ORDER BY name");
    DIGEST digest;
    std::string name;
    while (sqlite3_step(statement) == SQLITE_ROW) {
        name.assign(static_cast<char const*>(sqlite3_column_blob(statement, 0)),
                    static_cast<std::size_t>(sqlite3_column_bytes(statement, 0)));
        if (sqlite3_column_int64(statement, 3) == some_checksum)
            digest.add(sqlite3_column_int64(statement, 1), sqlite3_column_int(statement, 2));
    }
    return digest;
}

#endif

// --- A loop over LMDB ---

#ifdef BIG_BENCH_LMDB

/// An environment with a transaction in it.
class LMDB {
public:
    LMDB(std::string const& path, unsigned flags) {
        require(mdb_env_create(&m_environment) == 0, "mdb_env_create");
        mdb_env_set_mapsize(m_environment, 1ull << 30);
        require(mdb_env_open(m_environment, path.c_str(), MDB_NOSUBDIR | flags, 0600) == 0,
                "mdb_env_open");
        require(mdb_txn_begin(m_environment, nullptr, flags, &m_transaction) == 0, "mdb_txn_begin");
        require(mdb_dbi_open(m_transaction, nullptr, 0, &m_database) == 0, "mdb_dbi_open");
    }
    LMDB(LMDB const&) = delete;
    LMDB& operator=(LMDB const&) = delete;
    ~LMDB() {
        if (m_transaction != nullptr)
            mdb_txn_abort(m_transaction);
        mdb_env_close(m_environment);
    }

    void put(std::string const& name, BIG_TIME const& time) {
        RECORD record{time.get_time_value(), time.get_time_unit()};
        MDB_val key = key_of(name);
        MDB_val data{sizeof record, &record};
        require(mdb_put(m_transaction, m_database, &key, &data, 0) == 0, "mdb_put");
    }
    void get(std::string const& name, DIGEST& digest) {
        MDB_val key = key_of(name);
        MDB_val data;
        if (mdb_get(m_transaction, m_database, &key, &data) == 0)
            add(data, digest);
    }
    DIGEST scan() {
        DIGEST digest;
        MDB_cursor* cursor = nullptr;
        require(mdb_cursor_open(m_transaction, m_database, &cursor) == 0, "mdb_cursor_open");
        MDB_val key;
        MDB_val data;
        while (mdb_cursor_get(cursor, &key, &data, MDB_NEXT) == 0)
            add(data, digest);
        mdb_cursor_close(cursor);
        return digest;
    }
    void commit() {
        require(mdb_txn_commit(std::exchange(m_transaction, nullptr)) == 0, "mdb_txn_commit");
    }

private:
    struct RECORD {
        std::int64_t value;
        std::int64_t unit;
    };

    static MDB_val key_of(std::string const& name) {
        return {name.size(), const_cast<char*>(name.data())};
    }
    static void add(MDB_val const& data, DIGEST& digest) {
        RECORD record;
        std::memcpy(&record, data.mv_data, sizeof record);
        digest.add(record.value, static_cast<int>(record.unit));
    }

    MDB_env* m_environment = nullptr;
    MDB_txn* m_transaction = nullptr;
    MDB_dbi m_database = 0;
};

void write_lmdb(std::string const& path) {
    std::shared_ptr<VALUES const> const values = all_values();
    LMDB database(path, 0);
    for (std::size_t i = 0; i < values->names.size(); ++i)
        database.put(values->names[i], values->times[i]);
    database.commit();
}

DIGEST read_lmdb(std::string const& path) {
    LMDB database(path, MDB_RDONLY);
    DIGEST digest;
    for (std::string const& name : all_values()->names)
        database.get(name, digest);
    return digest;
}

DIGEST scan_lmdb(std::string const& path) {
    return LMDB(path, MDB_RDONLY).scan();
}

#endif

// --- A plain file, the limit of what an array can reach ---

struct CLOSE {
    void operator()(std::FILE* file) const { std::fclose(file); }
};
using FILE_HANDLE = std::unique_ptr<std::FILE, CLOSE>;

void write_file(std::string const& path) {
    std::shared_ptr<VALUES const> const values = all_values();
    FILE_HANDLE const file(std::fopen(path.c_str(), "wb"));
    require(file != nullptr, "fopen");
    for (BIG_TIME const& time : values->times) {
        std::int64_t const record[] = {time.get_time_value(), time.get_time_unit()};
        std::fwrite(record, sizeof record, 1, file.get());
    }
    require(std::fflush(file.get()) == 0 && fsync(fileno(file.get())) == 0, "fsync");
}

DIGEST read_file(std::string const& path) {
    FILE_HANDLE const file(std::fopen(path.c_str(), "rb"));
    require(file != nullptr, "fopen");
    DIGEST digest;
    std::int64_t record[2];
    while (std::fread(record, sizeof record, 1, file.get()) == 1)
        digest.add(record[0], static_cast<int>(record[1]));
    return digest;
}

// --- The comparisons ---

using COMPARISON = bench::COMPARISON<int, DIGEST>;

COMPARISON comparison(std::string const& work) {
    COMPARISON made("16/" + work + '/' + std::to_string(all_values()->names.size()),
                    [] { return std::vector<int>{0}; });
    made.in_elapsed_time();
    return made;
}

/// Adds one who writes into a new file each time; what is in it is read with `read`.
void add_writer(COMPARISON& to, std::string const& who, void (*write)(std::string const&),
                DIGEST (*read)(std::string const&)) {
    to.add(
        who, [](int) { return 0; },
        [=, last = std::string()](int) mutable -> std::string const& {
            if (!last.empty())
                std::filesystem::remove(last);
            last = new_file();
            write(last);
            return last;
        },
        read);
}

/// Adds one who writes into a new file each time and reads it again.
void add_writer_and_reader(COMPARISON& to, std::string const& who,
                           void (*write)(std::string const&), DIGEST (*read)(std::string const&)) {
    to.add(
        who, [](int) { return 0; },
        [=](int) {
            std::string const path = new_file();
            write(path);
            DIGEST const digest = read(path);
            std::filesystem::remove(path);
            return digest;
        });
}

/// Adds one who reads a file that `write` has written.
void add_reader(COMPARISON& to, std::string const& who, void (*write)(std::string const&),
                DIGEST (*read)(std::string const&)) {
    to.add(
        who,
        [=](int) {
            std::string const path = new_file();
            write(path);
            return path;
        },
        read);
}

} // namespace

void bench::add_comparisons() {
    ::COMPARISON write = comparison("write_values");
    ::COMPARISON read = comparison("read_values");
    ::COMPARISON scan = comparison("scan_values");
    ::COMPARISON both = comparison("write_and_read_values");
    ::COMPARISON array_write = comparison("write_array");
    ::COMPARISON array_read = comparison("read_array");
    add_writer(write, "ours", write_values, read_values);
    add_reader(read, "ours", write_values, read_values);
    add_reader(scan, "ours", write_values, scan_values);
    add_writer_and_reader(both, "ours", write_values, read_values);
    add_writer(array_write, "ours", write_array, read_array);
    add_reader(array_read, "ours", write_array, read_array);
#ifdef BIG_BENCH_SQLITE
    add_writer(write, "sqlite", write_sqlite, read_sqlite);
    add_reader(read, "sqlite", write_sqlite, read_sqlite);
    add_reader(scan, "sqlite", write_sqlite, scan_sqlite);
    add_writer_and_reader(both, "sqlite", write_sqlite, read_sqlite);
    add_writer(array_write, "sqlite", write_sqlite, read_sqlite);
    add_reader(array_read, "sqlite", write_sqlite, read_sqlite);
    add_reader(array_read, "sqlite_scan", write_sqlite, scan_sqlite);
#endif
#ifdef BIG_BENCH_LMDB
    add_writer(write, "lmdb", write_lmdb, read_lmdb);
    add_reader(read, "lmdb", write_lmdb, read_lmdb);
    add_reader(scan, "lmdb", write_lmdb, scan_lmdb);
    add_writer_and_reader(both, "lmdb", write_lmdb, read_lmdb);
#endif
    add_writer(array_write, "file", write_file, read_file);
    add_reader(array_read, "file", write_file, read_file);
}
