// Stores in SQLite files. docs/records.md describes the tables.

#include "files.h"
#include "journal.h"
#include "sqlite_format.h"

#include <atomic>
#include <bit>
#include <cerrno>
#include <cstring>
#include <filesystem>
#include <system_error>

#include <unistd.h>

// ------------------------------------------------------------------------------------------------
// Tables
// ------------------------------------------------------------------------------------------------

namespace {

std::string in_quotes(std::string const& identifier) {
    return '"' + identifier + '"'; // identifiers have none of their own
}

/// The name of a class's view: that of the table without the class id.
std::string view_name(STORED_CLASS const& stored) {
    constexpr std::size_t ID_SIZE = 9; // "_d16780d1"
    return stored.table.substr(0, stored.table.size() - ID_SIZE);
}

char const* const CREATE_DIRECTORY = "CREATE TABLE big_class ("
                                     "position INTEGER PRIMARY KEY, "
                                     "id INTEGER NOT NULL UNIQUE, "
                                     "name TEXT NOT NULL, "
                                     "size INTEGER NOT NULL, "
                                     "members TEXT NOT NULL, "
                                     "checksum INTEGER NOT NULL)";

/// The tables of a class: values, arrays, and the elements of arrays in chunks. The view of another
/// class may have such a name, as class B_00000002 has the table of class B with id 2, and yields
/// it.
std::string create_tables(STORED_CLASS const& stored) {
    std::string text;
    for (char const* const table : {"", "_array", "_chunk"})
        text += "DROP VIEW IF EXISTS " + in_quotes(stored.table + table) + ';';
    text += "CREATE TABLE " + in_quotes(stored.table) + " (name BLOB PRIMARY KEY NOT NULL, ";
    for (STORED_MEMBER const& member : stored.members) {
        bool const is_double = member.type == MEMBER_TYPE::DOUBLE;
        text += in_quotes(member.column) + (is_double ? " BLOB" : " INTEGER") + " NOT NULL, ";
        if (is_double)
            text += in_quotes(readable_column(member)) + " REAL, ";
    }
    text += "checksum INTEGER NOT NULL) WITHOUT ROWID;";
    text += "CREATE TABLE " + in_quotes(stored.table + "_array")
            + " (id INTEGER PRIMARY KEY AUTOINCREMENT, name BLOB NOT NULL UNIQUE, count INTEGER "
              "NOT NULL, "
              "checksum INTEGER NOT NULL);";
    text += "CREATE TABLE " + in_quotes(stored.table + "_chunk")
            + " (array_id INTEGER NOT NULL, first INTEGER NOT NULL, elements BLOB NOT NULL, "
              "checksum INTEGER NOT NULL, PRIMARY KEY (array_id, first)) WITHOUT ROWID;";
    return text;
}

/// The view of a class's values: names as text, doubles as numbers. It is for people, and is only
/// there while no table has its name.
std::string create_view(STORED_CLASS const& stored) {
    std::string text = "CREATE VIEW IF NOT EXISTS " + in_quotes(view_name(stored))
                       + " AS SELECT CAST(name AS TEXT) AS name";
    for (STORED_MEMBER const& member : stored.members)
        text += ", "
                + in_quotes(member.type == MEMBER_TYPE::DOUBLE ? readable_column(member)
                                                               : member.column)
                + " AS " + in_quotes(member.column);
    return text + " FROM " + in_quotes(stored.table) + ';';
}

/// An expression for the integer in some bytes of a packed element, the highest byte first. SQLite
/// has no function for that, so each hexadecimal digit is looked up.
std::string integer_expression(std::string const& bytes, std::size_t size) {
    std::string text;
    for (std::size_t digit = 0; digit < 2 * size; ++digit)
        text += (text.empty() ? "" : "|") + std::string("((instr('123456789ABCDEF',substr(hex(")
                + bytes + ")," + std::to_string(digit + 1) + ",1)))<<"
                + std::to_string(4 * (2 * size - 1 - digit)) + ')';
    return size == 8 ? '(' + text + ')' : "(((" + text + ")<<32)>>32)"; // which copies the sign
}

/// The view of the elements of a class's arrays, as create_view(). Classes of many members have
/// none: their view would be longer than all that SQLite reads when it opens the file.
std::string create_element_view(STORED_CLASS const& stored) {
    std::size_t const size = stored.packed_size();
    constexpr std::size_t MOST_SHOWN = 32;
    if (size == 0 || stored.members.size() > MOST_SHOWN)
        return "";
    std::string const bytes_of_element = std::to_string(size);
    std::string text = "CREATE VIEW IF NOT EXISTS " + in_quotes(view_name(stored) + "_elements")
                       + " AS WITH RECURSIVE number(n) AS (SELECT 0 UNION ALL SELECT n + 1 FROM "
                         "number WHERE n < (SELECT max(length(elements)) FROM "
                       + in_quotes(stored.table + "_chunk") + ") / " + bytes_of_element
                       + " - 1) SELECT CAST(name AS TEXT) AS name, first + n AS element";
    std::size_t offset = 0;
    for (STORED_MEMBER const& member : stored.members) {
        std::size_t const member_size = packed_size(member.type);
        std::string const bytes = "substr(elements,n*" + bytes_of_element + '+'
                                  + std::to_string(offset + 1) + ',' + std::to_string(member_size)
                                  + ')';
        text +=
            ", "
            + (member.type == MEMBER_TYPE::DOUBLE ? bytes : integer_expression(bytes, member_size))
            + " AS " + in_quotes(member.column);
        offset += member_size;
    }
    return text + " FROM " + in_quotes(stored.table + "_array") + " AS a JOIN "
           + in_quotes(stored.table + "_chunk")
           + " ON array_id = a.id JOIN number ON n < length(elements) / " + bytes_of_element + ';';
}

} // namespace

char const* const SELECT_CLASSES =
    "SELECT id, name, size, members, checksum FROM big_class ORDER BY position";

std::vector<STORED_CLASS> read_classes(SQLITE_DATABASE& database, STATEMENT& directory) {
    std::vector<STORED_CLASS> classes;
    RESET_AT_END const reset(directory);
    while (directory.next()) {
        STORED_CLASS stored;
        stored.id = static_cast<std::uint32_t>(directory.number(0));
        stored.name = directory.text(1);
        stored.size = directory.number(2);
        bool const are_members = read_members(directory.text(3), stored.members);
        if (!are_members || class_checksum(stored) != directory.number(4))
            database.fail(PDB_STORE_ERROR::DAMAGED,
                          "the record of class " + stored.name + " does not match its checksum");
        name_table(stored);
        classes.push_back(std::move(stored));
    }
    return classes;
}

std::string member_columns(STORED_CLASS const& stored) {
    std::string text;
    for (STORED_MEMBER const& member : stored.members)
        text += ", " + in_quotes(member.column);
    return text;
}

void read_cells(STORED_CLASS const& stored, SQLITE_DATABASE& database, STATEMENT& row, int first,
                CELL* cells) {
    for (STORED_MEMBER const& member : stored.members) {
        int const column = first++;
        if (member.type != MEMBER_TYPE::DOUBLE) {
            *cells++ = row.number(column);
            continue;
        }
        std::string_view const bytes = row.bytes(column);
        if (bytes.size() != sizeof *cells)
            database.fail(PDB_STORE_ERROR::DAMAGED,
                          "a double of class " + stored.name + " has not eight bytes");
        std::memcpy(cells, bytes.data(), sizeof *cells);
        *cells = __builtin_bswap64(*cells);
        ++cells;
    }
}

// ------------------------------------------------------------------------------------------------
// The tables of one class
// ------------------------------------------------------------------------------------------------

namespace {

class SQLITE_ENGINE;

/// A class of the file as the engine looks for names in it.
struct KNOWN_CLASS {
    KNOWN_CLASS(SQLITE_DATABASE& database, STORED_CLASS const& stored)
        : id(stored.id),
          find_value(database, "SELECT 1 FROM " + in_quotes(stored.table) + " WHERE name = ?1"),
          find_array(database,
                     "SELECT 1 FROM " + in_quotes(stored.table + "_array") + " WHERE name = ?1"),
          any_value(database, "SELECT 1 FROM " + in_quotes(stored.table) + " LIMIT 1"),
          any_array(database, "SELECT 1 FROM " + in_quotes(stored.table + "_array") + " LIMIT 1") {}

    std::uint32_t id;
    STATEMENT find_value;
    STATEMENT find_array;
    STATEMENT any_value;
    STATEMENT any_array;
    /// Whether there are values and arrays, once that is known in the transaction at hand.
    std::optional<bool> has_values;
    std::optional<bool> has_arrays;
};

bool has_row(STATEMENT& statement) {
    RESET_AT_END const reset(statement);
    return statement.next();
}

/// Of two statements that read rows by name, the one that reads a range: to its end or, where it
/// has none, to the last name. Its parameters are bound.
STATEMENT& of_range(STATEMENT& to_the_last, STATEMENT& to_an_end, NAME_RANGE const& range,
                    std::size_t limit) {
    STATEMENT& statement = range.to.empty() ? to_the_last : to_an_end;
    statement.bind(1, range.from);
    statement.bind(2, limit);
    if (!range.to.empty())
        statement.bind(3, range.to);
    return statement;
}

class SQLITE_TABLE final : public CLASS_TABLE {
public:
    SQLITE_TABLE(SQLITE_ENGINE& engine, STORED_CLASS const& stored);

    std::optional<HOLDER> put_value(std::string_view name, CELL const* cells,
                                    std::uint64_t checksum) override;
    std::optional<REFUSAL> put_values(VALUE_BATCH const& batch) override;
    bool get_value(std::string_view name, CELL* cells, std::uint64_t& checksum) override;
    void read_values(NAME_RANGE const& range, std::size_t limit, VALUE_BATCH& batch) override;
    bool erase_value(std::string_view name) override;

    std::uint64_t new_array_id() override;
    std::optional<HOLDER> put_array(std::string_view name, ARRAY_HEAD const& head) override;
    bool get_array(std::string_view name, ARRAY_HEAD& head) override;
    void read_arrays(NAME_RANGE const& range, std::size_t limit,
                     std::vector<NAMED_ARRAY>& arrays) override;
    void erase_array_head(std::string_view name) override;

    void put_chunk(std::uint64_t array, std::uint64_t first, std::string_view elements,
                   std::uint64_t checksum) override;
    bool get_chunk(std::uint64_t array, std::uint64_t first, std::string& elements,
                   std::uint64_t& checksum) override;
    void erase_chunks(std::uint64_t array) override;
    std::uint64_t count_stray_chunks() override;

private:
    KNOWN_CLASS& known();

    SQLITE_ENGINE& m_engine;
    SQLITE_DATABASE& m_database;
    STORED_CLASS const m_stored;
    int const m_columns;                       ///< of the members
    std::vector<std::uint64_t> m_double_bytes; ///< of the row that is being saved

    STATEMENT m_put_value;
    STATEMENT m_get_value;
    STATEMENT m_read_values;
    STATEMENT m_read_values_to;
    STATEMENT m_erase_value;
    STATEMENT m_last_array;
    STATEMENT m_put_array;
    STATEMENT m_get_array;
    STATEMENT m_read_arrays;
    STATEMENT m_read_arrays_to;
    STATEMENT m_erase_array;
    STATEMENT m_put_chunk;
    STATEMENT m_get_chunk;
    STATEMENT m_erase_chunks;
    STATEMENT m_stray_chunks;
};

class SQLITE_ENGINE final : public ENGINE {
public:
    explicit SQLITE_ENGINE(std::unique_ptr<SQLITE_DATABASE> database);

    void begin(bool writes, bool alone) override;
    void commit() override;
    void rollback() noexcept override;
    std::vector<STORED_CLASS> classes() override;
    void add_class(STORED_CLASS const& stored) override;
    std::unique_ptr<CLASS_TABLE> table(STORED_CLASS const& stored) override;
    std::optional<HOLDER> find(std::string_view name) override;
    void check(std::function<void(std::string const&)> const& problem) override;

    SQLITE_DATABASE& database() { return *m_database; }
    KNOWN_CLASS& known(std::uint32_t class_id);
    /// What a name holds, not counting a value of one class.
    std::optional<HOLDER> find_other(std::string_view name, std::uint32_t class_id);

private:
    void learn_classes();
    std::optional<HOLDER> find_in(KNOWN_CLASS& known, std::string_view name, bool counts_values);

    std::unique_ptr<SQLITE_DATABASE> m_database;
    STATEMENT m_begin;
    STATEMENT m_begin_to_write;
    STATEMENT m_commit;
    STATEMENT m_rollback;
    STATEMENT m_classes;
    STATEMENT m_add_class;
    std::vector<std::unique_ptr<KNOWN_CLASS>> m_known;
    bool m_writes = false;        ///< the transaction at hand
    bool m_knows_classes = false; ///< all of them, in the transaction at hand
};

// --- The statements of a class's tables ---

std::string insert_value(STORED_CLASS const& stored) {
    std::string columns;
    std::string parameters;
    for (STORED_MEMBER const& member : stored.members) {
        columns += ", " + in_quotes(member.column);
        parameters += ", ?";
        if (member.type == MEMBER_TYPE::DOUBLE) {
            columns += ", " + in_quotes(readable_column(member));
            parameters += ", ?";
        }
    }
    return "INSERT OR REPLACE INTO " + in_quotes(stored.table) + " (name" + columns
           + ", checksum) VALUES (?" + parameters + ", ?)";
}

/// A statement that reads a range of names: ?1 is its begin, ?2 the number of rows, ?3 its end.
std::string select_range(std::string const& columns, std::string const& table, bool has_end) {
    return "SELECT name" + columns + ", checksum FROM " + table + " WHERE name >= ?1"
           + (has_end ? " AND name < ?3" : "") + " ORDER BY name LIMIT ?2";
}

SQLITE_TABLE::SQLITE_TABLE(SQLITE_ENGINE& engine, STORED_CLASS const& stored)
    : m_engine(engine), m_database(engine.database()), m_stored(stored),
      m_columns(static_cast<int>(stored.members.size())), m_double_bytes(stored.members.size()),
      m_put_value(m_database, insert_value(stored)),
      m_get_value(m_database, "SELECT checksum" + member_columns(stored) + " FROM "
                                  + in_quotes(stored.table) + " WHERE name = ?1"),
      m_read_values(m_database,
                    select_range(member_columns(stored), in_quotes(stored.table), false)),
      m_read_values_to(m_database,
                       select_range(member_columns(stored), in_quotes(stored.table), true)),
      m_erase_value(m_database, "DELETE FROM " + in_quotes(stored.table) + " WHERE name = ?1"),
      m_last_array(m_database, "SELECT ifnull(max(seq), 0) FROM sqlite_sequence WHERE name = '"
                                   + stored.table + "_array'"),
      m_put_array(m_database, "INSERT INTO " + in_quotes(stored.table + "_array")
                                  + " (id, name, count, checksum) VALUES (?1, ?2, ?3, ?4)"),
      m_get_array(m_database, "SELECT id, count, checksum FROM "
                                  + in_quotes(stored.table + "_array") + " WHERE name = ?1"),
      m_read_arrays(m_database,
                    select_range(", id, count", in_quotes(stored.table + "_array"), false)),
      m_read_arrays_to(m_database,
                       select_range(", id, count", in_quotes(stored.table + "_array"), true)),
      m_erase_array(m_database,
                    "DELETE FROM " + in_quotes(stored.table + "_array") + " WHERE name = ?1"),
      m_put_chunk(m_database,
                  "INSERT INTO " + in_quotes(stored.table + "_chunk")
                      + " (array_id, first, elements, checksum) VALUES (?1, ?2, ?3, ?4)"),
      m_get_chunk(m_database, "SELECT elements, checksum FROM " + in_quotes(stored.table + "_chunk")
                                  + " WHERE array_id = ?1 AND first = ?2"),
      m_erase_chunks(m_database,
                     "DELETE FROM " + in_quotes(stored.table + "_chunk") + " WHERE array_id = ?1"),
      m_stray_chunks(m_database, "SELECT count(*) FROM " + in_quotes(stored.table + "_chunk")
                                     + " WHERE array_id NOT IN (SELECT id FROM "
                                     + in_quotes(stored.table + "_array") + ')') {}

KNOWN_CLASS& SQLITE_TABLE::known() {
    return m_engine.known(m_stored.id);
}

// --- Values ---

std::optional<HOLDER> SQLITE_TABLE::put_value(std::string_view name, CELL const* cells,
                                              std::uint64_t checksum) {
    if (auto const holder = m_engine.find_other(name, m_stored.id))
        return holder;
    int parameter = 1;
    m_put_value.bind(parameter++, name);
    for (std::size_t i = 0; i < m_stored.members.size(); ++i) {
        if (m_stored.members[i].type != MEMBER_TYPE::DOUBLE) {
            m_put_value.bind(parameter++, cells[i]);
            continue;
        }
        m_double_bytes[i] = __builtin_bswap64(cells[i]);
        m_put_value.bind(parameter++,
                         {reinterpret_cast<char const*>(&m_double_bytes[i]), sizeof(CELL)});
        m_put_value.bind_real(parameter++, std::bit_cast<double>(cells[i]));
    }
    m_put_value.bind(parameter, checksum);
    m_put_value.run();
    known().has_values = true;
    return {};
}

std::optional<CLASS_TABLE::REFUSAL> SQLITE_TABLE::put_values(VALUE_BATCH const& batch) {
    for (std::size_t row = 0; row < batch.size(); ++row)
        if (auto const holder = put_value(batch.name(row), batch.cells(row), batch.checksum(row)))
            return REFUSAL{row, *holder};
    return {};
}

bool SQLITE_TABLE::get_value(std::string_view name, CELL* cells, std::uint64_t& checksum) {
    RESET_AT_END const reset(m_get_value);
    m_get_value.bind(1, name);
    if (!m_get_value.next())
        return false;
    checksum = m_get_value.number(0);
    read_cells(m_stored, m_database, m_get_value, 1, cells);
    return true;
}

void SQLITE_TABLE::read_values(NAME_RANGE const& range, std::size_t limit, VALUE_BATCH& batch) {
    batch.clear();
    STATEMENT& rows = of_range(m_read_values, m_read_values_to, range, limit);
    RESET_AT_END const reset(rows);
    while (rows.next()) {
        CELL* const cells =
            batch.add(rows.bytes(0), m_stored.members.size(), rows.number(m_columns + 1));
        read_cells(m_stored, m_database, rows, 1, cells);
    }
}

bool SQLITE_TABLE::erase_value(std::string_view name) {
    m_erase_value.bind(1, name);
    m_erase_value.run();
    return sqlite3_changes(m_database.handle()) > 0;
}

// --- Arrays ---

std::uint64_t SQLITE_TABLE::new_array_id() {
    RESET_AT_END const reset(m_last_array);
    m_last_array.next();
    return m_last_array.number(0) + 1;
}

std::optional<HOLDER> SQLITE_TABLE::put_array(std::string_view name, ARRAY_HEAD const& head) {
    if (auto const holder = m_engine.find(name))
        return holder;
    m_put_array.bind(1, head.id);
    m_put_array.bind(2, name);
    m_put_array.bind(3, head.count);
    m_put_array.bind(4, head.checksum);
    m_put_array.run();
    known().has_arrays = true;
    return {};
}

bool SQLITE_TABLE::get_array(std::string_view name, ARRAY_HEAD& head) {
    RESET_AT_END const reset(m_get_array);
    m_get_array.bind(1, name);
    if (!m_get_array.next())
        return false;
    head = {m_get_array.number(0), m_get_array.number(1), m_get_array.number(2)};
    return true;
}

void SQLITE_TABLE::read_arrays(NAME_RANGE const& range, std::size_t limit,
                               std::vector<NAMED_ARRAY>& arrays) {
    arrays.clear();
    STATEMENT& rows = of_range(m_read_arrays, m_read_arrays_to, range, limit);
    RESET_AT_END const reset(rows);
    while (rows.next())
        arrays.push_back(
            {std::string(rows.bytes(0)), {rows.number(1), rows.number(2), rows.number(3)}});
}

void SQLITE_TABLE::erase_array_head(std::string_view name) {
    m_erase_array.bind(1, name);
    m_erase_array.run();
}

void SQLITE_TABLE::put_chunk(std::uint64_t array, std::uint64_t first, std::string_view elements,
                             std::uint64_t checksum) {
    m_put_chunk.bind(1, array);
    m_put_chunk.bind(2, first);
    m_put_chunk.bind(3, elements);
    m_put_chunk.bind(4, checksum);
    m_put_chunk.run();
}

bool SQLITE_TABLE::get_chunk(std::uint64_t array, std::uint64_t first, std::string& elements,
                             std::uint64_t& checksum) {
    RESET_AT_END const reset(m_get_chunk);
    m_get_chunk.bind(1, array);
    m_get_chunk.bind(2, first);
    if (!m_get_chunk.next())
        return false;
    elements = m_get_chunk.bytes(0);
    checksum = m_get_chunk.number(1);
    return true;
}

void SQLITE_TABLE::erase_chunks(std::uint64_t array) {
    m_erase_chunks.bind(1, array);
    m_erase_chunks.run();
}

std::uint64_t SQLITE_TABLE::count_stray_chunks() {
    RESET_AT_END const reset(m_stray_chunks);
    m_stray_chunks.next();
    return m_stray_chunks.number(0);
}

// ------------------------------------------------------------------------------------------------
// The engine
// ------------------------------------------------------------------------------------------------

SQLITE_ENGINE::SQLITE_ENGINE(std::unique_ptr<SQLITE_DATABASE> database)
    : m_database(std::move(database)), m_begin(*m_database, "BEGIN"),
      m_begin_to_write(*m_database, "BEGIN IMMEDIATE"), m_commit(*m_database, "COMMIT"),
      m_rollback(*m_database, "ROLLBACK"), m_classes(*m_database, SELECT_CLASSES),
      m_add_class(*m_database, "INSERT INTO big_class (id, name, size, members, checksum) "
                               "VALUES (?1, ?2, ?3, ?4, ?5)") {}

// --- Transactions ---

void SQLITE_ENGINE::begin(bool writes, bool /*alone: who writes is*/) {
    (writes ? m_begin_to_write : m_begin).run();
    m_writes = writes;
    m_knows_classes = false;
    for (auto const& known : m_known) {
        known->has_values.reset();
        known->has_arrays.reset();
    }
}

void SQLITE_ENGINE::commit() {
    // SQLite ends a transaction by itself after some failures, which a reader need not mind.
    bool const has_ended = sqlite3_get_autocommit(m_database->handle()) != 0;
    if (has_ended && !m_writes)
        return;
    try {
        m_commit.run();
    } catch (...) {
        rollback();
        throw;
    }
}

void SQLITE_ENGINE::rollback() noexcept {
    try {
        m_known.clear(); // tables that the transaction made are gone
        m_knows_classes = false;
        if (sqlite3_get_autocommit(m_database->handle()) == 0) // SQLite may have done it itself
            m_rollback.run();
    } catch (...) {
        // What could not be taken back now is taken back from the journal by whoever opens the
        // file next; this handle is not used any more.
    }
}

// --- Classes ---

std::vector<STORED_CLASS> SQLITE_ENGINE::classes() {
    return read_classes(*m_database, m_classes);
}

void SQLITE_ENGINE::add_class(STORED_CLASS const& stored) {
    std::string const members = members_text(stored);
    m_add_class.bind(1, std::uint64_t{stored.id});
    m_add_class.bind_text(2, stored.name);
    m_add_class.bind(3, stored.size);
    m_add_class.bind_text(4, members);
    m_add_class.bind(5, class_checksum(stored));
    m_add_class.run();
    m_database->run(create_tables(stored) + create_view(stored) + create_element_view(stored));
    m_knows_classes = false;
}

std::unique_ptr<CLASS_TABLE> SQLITE_ENGINE::table(STORED_CLASS const& stored) {
    return std::make_unique<SQLITE_TABLE>(*this, stored);
}

/// Another handle may have added classes before this transaction.
void SQLITE_ENGINE::learn_classes() {
    if (m_knows_classes)
        return;
    std::vector<STORED_CLASS> const stored = classes();
    for (std::size_t i = m_known.size(); i < stored.size(); ++i) // none ever goes
        m_known.push_back(std::make_unique<KNOWN_CLASS>(*m_database, stored[i]));
    m_knows_classes = true;
}

KNOWN_CLASS& SQLITE_ENGINE::known(std::uint32_t class_id) {
    learn_classes();
    for (auto const& known : m_known)
        if (known->id == class_id)
            return *known;
    m_database->fail(PDB_STORE_ERROR::DAMAGED, "a class has left the directory of classes");
}

// --- Names ---

std::optional<HOLDER> SQLITE_ENGINE::find(std::string_view name) {
    learn_classes();
    for (auto const& known : m_known)
        if (auto const holder = find_in(*known, name, true))
            return holder;
    return {};
}

std::optional<HOLDER> SQLITE_ENGINE::find_other(std::string_view name, std::uint32_t class_id) {
    learn_classes();
    for (auto const& known : m_known)
        if (auto const holder = find_in(*known, name, known->id != class_id))
            return holder;
    return {};
}

std::optional<HOLDER> SQLITE_ENGINE::find_in(KNOWN_CLASS& known, std::string_view name,
                                             bool counts_values) {
    if (counts_values) {
        if (!known.has_values)
            known.has_values = has_row(known.any_value);
        known.find_value.bind(1, name);
        if (*known.has_values && has_row(known.find_value))
            return HOLDER{known.id, false};
    }
    if (!known.has_arrays)
        known.has_arrays = has_row(known.any_array);
    if (!*known.has_arrays)
        return {};
    known.find_array.bind(1, name);
    if (has_row(known.find_array))
        return HOLDER{known.id, true};
    return {};
}

void SQLITE_ENGINE::check(std::function<void(std::string const&)> const& problem) {
    STATEMENT integrity(*m_database, "PRAGMA integrity_check");
    while (integrity.next()) {
        std::string const text(integrity.text(0));
        if (text != "ok")
            problem(text);
    }

    std::string names;
    for (STORED_CLASS const& stored : classes())
        for (std::string const& table : {stored.table, stored.table + "_array"})
            names +=
                (names.empty() ? "" : " UNION ALL ") + ("SELECT name FROM " + in_quotes(table));
    if (names.empty())
        return;
    STATEMENT doubled(*m_database,
                      "SELECT name FROM (" + names + ") GROUP BY name HAVING count(*) > 1");
    while (doubled.next())
        problem("the name " + shown(doubled.bytes(0)) + " holds two things");
}

} // namespace

std::unique_ptr<ENGINE> engine_over(std::unique_ptr<SQLITE_DATABASE> database) {
    return std::make_unique<SQLITE_ENGINE>(std::move(database));
}

// ------------------------------------------------------------------------------------------------
// Files
// ------------------------------------------------------------------------------------------------

std::unique_ptr<SQLITE_DATABASE> make_store_file(std::string const& path,
                                                 std::string const& shown_as,
                                                 PDB_STORE_OPTIONS const& options,
                                                 std::string& temporary_path) {
    static std::atomic<unsigned> s_count{0};
    temporary_path = path + ".new-" + std::to_string(::getpid()) + '-' + std::to_string(++s_count);
    remove_store_file(temporary_path); // of a process that had this id before, and was killed
    auto database = std::make_unique<SQLITE_DATABASE>(
        temporary_path, shown_as, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE, options, true);
    int reserved = CHECKED_PAGES::RESERVED_BYTES;
    database->check(
        sqlite3_file_control(database->handle(), "main", SQLITE_FCNTL_RESERVE_BYTES, &reserved));
    database->set_up();
    database->run("PRAGMA page_size=4096; PRAGMA auto_vacuum=NONE; PRAGMA encoding='UTF-8'");
    database->run("BEGIN IMMEDIATE; PRAGMA application_id=" + std::to_string(STORE_APPLICATION_ID)
                  + "; PRAGMA user_version=" + std::to_string(STORE_FORMAT) + ';' + CREATE_DIRECTORY
                  + "; COMMIT");
    return database;
}

void remove_store_file(std::string const& temporary_path) {
    std::error_code ignored;
    std::filesystem::remove(temporary_path, ignored);
    std::filesystem::remove(temporary_path + "-journal", ignored);
}

namespace {

[[noreturn]] void fail(std::string const& store, PDB_STORE_ERROR::KIND kind,
                       std::string const& text) {
    throw PDB_STORE_ERROR(kind, store, text);
}

std::string system_text(int error) {
    return std::generic_category().message(error);
}

/// The path behind all links, as far as it exists.
std::string resolved(std::string const& path) {
    std::error_code error;
    std::filesystem::path const absolute = std::filesystem::absolute(path, error);
    std::filesystem::path const canonical = std::filesystem::weakly_canonical(absolute, error);
    return error ? absolute : canonical;
}

/// Makes an empty store. Another program may make one at the same time; then that one is it.
void create_store(std::string const& path, std::string const& shown_as,
                  PDB_STORE_OPTIONS const& options) {
    std::string temporary_path;
    try {
        make_store_file(path, shown_as, options, temporary_path);
        int const error = move_file(temporary_path, path, false);
        if (error != 0 && error != EEXIST)
            fail(shown_as, PDB_STORE_ERROR::SYSTEM, "it cannot be made: " + system_text(error));
        if (error == EEXIST)
            remove_store_file(temporary_path);
        else if (int const not_synced = sync_folder_of(path))
            fail(shown_as, PDB_STORE_ERROR::SYSTEM,
                 "it is made, but bringing its folder to the disk failed, so that a loss of power "
                 "may take it back: "
                     + system_text(not_synced));
    } catch (...) {
        remove_store_file(temporary_path);
        throw;
    }
}

void refuse_network(std::string const& path, std::string const& shown_as,
                    PDB_STORE_OPTIONS const& options) {
    if (options.allow_network_files)
        return;
    std::string const kind = network_file_system(path);
    if (!kind.empty())
        fail(shown_as, PDB_STORE_ERROR::NETWORK_FILES,
             "it lies on a network file system (" + kind
                 + "), where locks and syncs cannot be relied on: use a folder of this machine, or "
                   "a server (postgresql://...) where many machines share values");
}

/// What a file says that it is, from its header.
struct FILE_HEADER {
    explicit FILE_HEADER(std::string const& bytes)
        : is_sqlite(bytes.size() >= 100
                    && bytes.starts_with(std::string_view("SQLite format 3\0", 16))),
          reserved_bytes(is_sqlite ? static_cast<unsigned char>(bytes[20]) : 0),
          uses_log(is_sqlite && (bytes[18] != 1 || bytes[19] != 1)),
          format(is_sqlite ? number(bytes, 60) : 0),
          application(is_sqlite ? number(bytes, 68) : 0) {}

    bool is_sqlite;
    unsigned reserved_bytes;
    bool uses_log; ///< a write-ahead log
    std::uint32_t format;
    std::uint32_t application;

private:
    static std::uint32_t number(std::string const& bytes, std::size_t offset) {
        std::uint32_t value;
        std::memcpy(&value, bytes.data() + offset, sizeof value);
        return __builtin_bswap32(value);
    }
};

/// Refuses what is no store, or one that this version cannot read. Nothing but the header is read.
void refuse_foreign(FILE_HEADER const& header, bool is_empty, std::string const& shown_as) {
    if (is_empty)
        fail(shown_as, PDB_STORE_ERROR::NOT_A_STORE, "the file is empty, and so no store");
    if (!header.is_sqlite)
        fail(shown_as, PDB_STORE_ERROR::NOT_A_STORE,
             "the file is no SQLite database, and so no store");
    if (header.application != STORE_APPLICATION_ID || header.format == 0)
        fail(shown_as, PDB_STORE_ERROR::NOT_A_STORE,
             "the file is an SQLite database of another program, and no store");
    if (header.format > STORE_FORMAT)
        fail(shown_as, PDB_STORE_ERROR::NEWER_FORMAT,
             "the file has format " + std::to_string(header.format)
                 + ", which is newer than format " + std::to_string(STORE_FORMAT)
                 + " of this version of the library");
    unsigned const reserved_bytes = header.format == 1 ? 0 : CHECKED_PAGES::RESERVED_BYTES;
    if (header.reserved_bytes != reserved_bytes || header.uses_log)
        fail(shown_as, PDB_STORE_ERROR::DAMAGED,
             "the header does not say what a store's of format " + std::to_string(header.format)
                 + " says");
}

} // namespace

std::uint32_t format_in(std::string const& header) {
    return FILE_HEADER(header).format;
}

std::unique_ptr<ENGINE> open_sqlite(std::string const& path, PDB_STORE_OPTIONS const& options,
                                    CLASS_CHECK const& check) {
    bool const writes = options.access != PDB_STORE_OPTIONS::READ;
    for (;;) {
        std::string const file = resolved(path);
        std::error_code error;
        auto const kind = std::filesystem::status(file, error).type();
        if (kind == std::filesystem::file_type::not_found) {
            if (options.access != PDB_STORE_OPTIONS::CREATE)
                fail(path, PDB_STORE_ERROR::NO_STORE, "there is no such file");
            refuse_network(std::filesystem::path(file).parent_path(), path, options);
            create_store(file, path, options);
            continue;
        }
        if (kind == std::filesystem::file_type::none)
            fail(path, PDB_STORE_ERROR::SYSTEM, error.message());
        if (kind != std::filesystem::file_type::regular)
            fail(path, PDB_STORE_ERROR::NOT_A_STORE, "it is no regular file, and so no store");
        refuse_network(file, path, options);

        auto database = std::make_unique<SQLITE_DATABASE>(
            file, path, writes ? SQLITE_OPEN_READWRITE : SQLITE_OPEN_READONLY, options, true);
        // The header may be half of one that a save was writing when the power failed.
        if (is_sealed_journal(file + "-journal")) {
            // Not that of a copy in the present format beside the older file that it has replaced
            if (database->has_moved())
                continue;
            database->set_up();
        }
        std::string const bytes = database->header();
        FILE_HEADER const header(bytes);
        refuse_foreign(header, bytes.empty(), path);
        if (writes && sqlite3_db_readonly(database->handle(), "main") == 1)
            fail(path, PDB_STORE_ERROR::READ_ONLY,
                 "the file may not be written: open it for reading");
        if (header.format < STORE_FORMAT) {
            if (!writes)
                fail(path, PDB_STORE_ERROR::READ_ONLY,
                     "the file has format " + std::to_string(header.format)
                         + ": open it for writing once, which brings it to format "
                         + std::to_string(STORE_FORMAT));
            database.reset();
            migrate_from_format_1(file, path, options, check);
            continue;
        }

        database->set_up();
        auto engine = engine_over(std::move(database));
        engine->begin(false, false);
        check(engine->classes());
        engine->commit();
        return engine;
    }
}
