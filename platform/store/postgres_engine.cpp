// Stores on a PostgreSQL server. docs/records.md describes the tables.
//
// Transactions are serializable, so that a name that a transaction found free in the tables of
// every class is free until it commits, or it is a CONFLICT.
//
// An answer to COMMIT can be lost. Each transaction that writes therefore starts with a row of its
// own in big_commit, which says that it was applied. Who does not know inserts the same row, saying
// that it was not: as the row's key is unique, that waits for the lost transaction to end, and then
// either finds its row, or keeps it from ever being applied.

#include "engine.h"
#include "postgres_connection.h"

#include <algorithm>
#include <random>
#include <unordered_map>
#include <utility>

namespace {

// ------------------------------------------------------------------------------------------------
// Tables
// ------------------------------------------------------------------------------------------------

constexpr std::string_view APPLICATION = "big store";
constexpr std::uint64_t FORMAT = 1;

std::string in_quotes(std::string_view identifier) {
    std::string text = "\"";
    for (char const c : identifier)
        text += c == '"' ? "\"\"" : std::string(1, c);
    return text + '"';
}

std::string literal(std::string_view text) {
    std::string quoted = "'";
    for (char const c : text)
        quoted += c == '\'' ? "''" : std::string(1, c);
    return quoted + '\'';
}

std::string_view type_of(STORED_MEMBER const& member) {
    switch (member.type) {
    case MEMBER_TYPE::INT64: return "bigint";
    case MEMBER_TYPE::INT32: return "integer";
    case MEMBER_TYPE::DOUBLE: break;
    }
    return "bytea"; // so that no server changes a bit of it
}

/// A column of a class's table of values.
struct COLUMN {
    std::string name; ///< between quotation marks
    std::string type;
};

/// The columns of a row in the order in which value_fields() fills them.
std::vector<COLUMN> value_columns(STORED_CLASS const& stored) {
    std::vector<COLUMN> columns{{"name", "bytea"}};
    for (STORED_MEMBER const& member : stored.members) {
        columns.push_back({in_quotes(member.column), std::string(type_of(member))});
        if (member.type == MEMBER_TYPE::DOUBLE)
            columns.push_back({in_quotes(readable_column(member)), "double precision"});
    }
    columns.push_back({"checksum", "bigint"});
    return columns;
}

void value_fields(STORED_CLASS const& stored, std::string_view name, CELL const* cells,
                  std::uint64_t checksum, FIELDS& fields) {
    fields.clear();
    fields.add(name);
    for (STORED_MEMBER const& member : stored.members) {
        fields.add_number(*cells, packed_size(member.type));
        if (member.type == MEMBER_TYPE::DOUBLE)
            fields.add_number(*cells);
        ++cells;
    }
    fields.add_number(checksum);
}

/// The columns of the members, each behind a comma; without the readable ones of doubles, which are
/// never read.
std::string member_columns(STORED_CLASS const& stored) {
    std::string text;
    for (STORED_MEMBER const& member : stored.members)
        text += ", " + in_quotes(member.column);
    return text;
}

// ------------------------------------------------------------------------------------------------
// The engine
// ------------------------------------------------------------------------------------------------

class POSTGRES_ENGINE final : public ENGINE {
public:
    POSTGRES_ENGINE(std::string const& address, std::string const& shown_as,
                    PDB_STORE_OPTIONS const& options);
    ~POSTGRES_ENGINE() override;
    POSTGRES_ENGINE(POSTGRES_ENGINE const&) = delete;
    POSTGRES_ENGINE& operator=(POSTGRES_ENGINE const&) = delete;

    void open(PDB_STORE_OPTIONS::ACCESS access, CLASS_CHECK const& check);

    void begin(bool writes, bool alone) override;
    void commit() override;
    void rollback() noexcept override;
    std::vector<STORED_CLASS> classes() override { return m_classes; }
    void add_class(STORED_CLASS const& stored) override;
    std::unique_ptr<CLASS_TABLE> table(STORED_CLASS const& stored) override;
    std::optional<HOLDER> find(std::string_view name) override;
    void check(std::function<void(std::string const&)> const& problem) override;

    POSTGRES_CONNECTION& connection() { return m_connection; }
    /// A table of the store, ready for a statement.
    std::string in_schema(std::string_view table) const {
        return in_quotes(m_schema) + '.' + in_quotes(table);
    }
    /// A query of class_id, is_array and name for every row whose name is as the condition says.
    ///
    /// @param but_values_of a class whose values are left out; null for none
    std::string select_holders(std::string const& condition,
                               STORED_CLASS const* but_values_of) const;
    /// Differs when the classes, and so the tables that hold names, have changed.
    unsigned directory_version() const { return m_directory_version; }

private:
    bool is_there();
    void create();
    void identify();
    void require_sync();
    void reconnect();
    void start(bool writes, bool alone);
    std::string transaction_key() const {
        return literal(m_session) + ", " + std::to_string(m_transaction);
    }
    bool was_applied();
    void forget_commits() noexcept;
    void read_directory();
    std::string view_of_values(STORED_CLASS const& stored) const;
    std::string view_of_elements(STORED_CLASS const& stored) const;
    std::string kind_of_relation(std::string const& name);
    void yield_name(std::string const& table);
    void create_view(std::string const& name, std::string const& query);
    void check_index(std::string const& table, std::string const& column,
                     std::function<void(std::string const&)> const& problem);
    void check_readable(STORED_CLASS const& stored, STORED_MEMBER const& member,
                        std::function<void(std::string const&)> const& problem);

    POSTGRES_CONNECTION m_connection;
    std::string m_schema;
    std::string m_id;      ///< the store's
    std::string m_session; ///< this handle's name in big_commit
    std::uint64_t m_transaction = 0;
    bool m_writes = false; ///< the transaction at hand
    int m_commit_rows = 0; ///< in big_commit, at most
    std::vector<STORED_CLASS> m_classes;
    std::string m_class_count; ///< as the directory had it; empty when m_classes is outdated
    unsigned m_directory_version = 0;
};

// ------------------------------------------------------------------------------------------------
// The tables of one class
// ------------------------------------------------------------------------------------------------

class POSTGRES_TABLE final : public CLASS_TABLE {
public:
    POSTGRES_TABLE(POSTGRES_ENGINE& engine, STORED_CLASS const& stored);

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
    ROWS run(std::string const& statement, FIELDS const& parameters) {
        return m_engine.connection().run(statement, parameters);
    }
    void name_holders();
    void read_cells(ROWS const& rows, int row, int first, CELL* cells) const;
    ROWS read_range(std::string const& columns, std::string const& table, NAME_RANGE const& range,
                    std::size_t limit);
    std::optional<REFUSAL> clear_names(VALUE_BATCH const& batch);

    POSTGRES_ENGINE& m_engine;
    STORED_CLASS const m_stored;
    std::string const m_values; ///< the tables
    std::string const m_arrays;
    std::string const m_chunks;
    std::string m_columns; ///< of the values
    std::string m_replace; ///< the end of an INSERT of values

    // Statements in which all classes of the store are named, as of a version of the directory
    unsigned m_holders_version = 0;
    std::string m_put_value;
    std::string m_clear_names;
    std::string m_put_array;
};

POSTGRES_TABLE::POSTGRES_TABLE(POSTGRES_ENGINE& engine, STORED_CLASS const& stored)
    : m_engine(engine), m_stored(stored), m_values(engine.in_schema(stored.table)),
      m_arrays(engine.in_schema(stored.table + "_array")),
      m_chunks(engine.in_schema(stored.table + "_chunk")),
      m_replace("ON CONFLICT (name) DO UPDATE SET ") {
    for (COLUMN const& column : value_columns(stored)) {
        m_columns += (m_columns.empty() ? "" : ", ") + column.name;
        if (column.name != "name")
            m_replace += column.name + " = excluded." + column.name
                         + (column.name == "checksum" ? "" : ", ");
    }
}

/// Writes the statements that ask all classes of the store what a name holds.
void POSTGRES_TABLE::name_holders() {
    if (m_holders_version == m_engine.directory_version())
        return;
    std::string parameters;
    int number = 0;
    for (COLUMN const& column : value_columns(m_stored))
        parameters +=
            (parameters.empty() ? "$" : ", $") + std::to_string(++number) + "::" + column.type;
    auto const insert = [](std::string const& holders, std::string const& into,
                           std::string const& values, std::string const& replace) {
        return "WITH holder AS (" + holders + " LIMIT 1), saved AS (INSERT INTO " + into
               + " SELECT " + values + " WHERE NOT EXISTS (SELECT 1 FROM holder) " + replace
               + ") SELECT class_id, is_array FROM holder";
    };
    m_put_value = insert(m_engine.select_holders("= $1", &m_stored),
                         m_values + " (" + m_columns + ')', parameters, m_replace);
    m_put_array =
        insert(m_engine.select_holders("= $1", nullptr), m_arrays + " (name, id, count, checksum)",
               "$1::bytea, $2::bigint, $3::bigint, $4::bigint", "");
    m_clear_names = "WITH cleared AS (DELETE FROM " + m_values + " WHERE name = ANY ($1)) "
                    + m_engine.select_holders("= ANY ($1)", &m_stored);
    m_holders_version = m_engine.directory_version();
}

std::optional<HOLDER> first_holder(ROWS const& rows) {
    if (rows.size() == 0)
        return {};
    return HOLDER{static_cast<std::uint32_t>(rows.number(0, 0)), rows.is_true(0, 1)};
}

// --- Values ---

std::optional<HOLDER> POSTGRES_TABLE::put_value(std::string_view name, CELL const* cells,
                                                std::uint64_t checksum) {
    name_holders();
    FIELDS fields;
    value_fields(m_stored, name, cells, checksum, fields);
    return first_holder(run(m_put_value, fields));
}

/// Removes what the names of a batch hold of this class. Returns the first row whose name holds
/// something else.
std::optional<CLASS_TABLE::REFUSAL> POSTGRES_TABLE::clear_names(VALUE_BATCH const& batch) {
    name_holders();
    std::vector<std::string_view> names;
    for (std::size_t row = 0; row < batch.size(); ++row)
        names.push_back(batch.name(row));
    ROWS const holders = run(m_clear_names, FIELDS().add_array(names));
    std::optional<REFUSAL> first;
    for (int i = 0; i < holders.size(); ++i) {
        auto const at = std::find(names.begin(), names.end(), holders.bytes(i, 2));
        auto const row = static_cast<std::size_t>(at - names.begin());
        if (row < names.size() && (!first || row < first->row))
            first = {row,
                     {static_cast<std::uint32_t>(holders.number(i, 0)), holders.is_true(i, 1)}};
    }
    return first;
}

std::optional<CLASS_TABLE::REFUSAL> POSTGRES_TABLE::put_values(VALUE_BATCH const& batch) {
    if (batch.size() == 0)
        return {};
    if (auto const refusal = clear_names(batch))
        return refusal;

    // A name has one row, so only the last of several with one name goes in.
    std::unordered_map<std::string_view, std::size_t> last_rows;
    for (std::size_t row = 0; row < batch.size(); ++row)
        last_rows[batch.name(row)] = row;
    COPY_ROWS rows;
    FIELDS fields;
    for (std::size_t row = 0; row < batch.size(); ++row) {
        if (last_rows[batch.name(row)] != row)
            continue;
        value_fields(m_stored, batch.name(row), batch.cells(row), batch.checksum(row), fields);
        rows.add(fields);
    }

    m_engine.connection().copy(
        "COPY " + m_values + " (" + m_columns + ") FROM STDIN (FORMAT binary)", rows.finish());
    return {};
}

void POSTGRES_TABLE::read_cells(ROWS const& rows, int row, int first, CELL* cells) const {
    for (std::size_t i = 0; i < m_stored.members.size(); ++i)
        *cells++ = rows.number(row, first++);
}

bool POSTGRES_TABLE::get_value(std::string_view name, CELL* cells, std::uint64_t& checksum) {
    ROWS const rows =
        run("SELECT checksum" + member_columns(m_stored) + " FROM " + m_values + " WHERE name = $1",
            FIELDS(name));
    if (rows.size() == 0)
        return false;
    checksum = rows.number(0, 0);
    read_cells(rows, 0, 1, cells);
    return true;
}

/// Reads the first rows of a range in the order of the names.
ROWS POSTGRES_TABLE::read_range(std::string const& columns, std::string const& table,
                                NAME_RANGE const& range, std::size_t limit) {
    FIELDS parameters(range.from);
    parameters.add_number(limit);
    if (!range.to.empty())
        parameters.add(range.to);
    return run("SELECT name, checksum" + columns + " FROM " + table + " WHERE name >= $1"
                   + (range.to.empty() ? "" : " AND name < $3") + " ORDER BY name LIMIT $2",
               parameters);
}

void POSTGRES_TABLE::read_values(NAME_RANGE const& range, std::size_t limit, VALUE_BATCH& batch) {
    batch.clear();
    ROWS const rows = read_range(member_columns(m_stored), m_values, range, limit);
    for (int row = 0; row < rows.size(); ++row)
        read_cells(rows, row, 2,
                   batch.add(rows.bytes(row, 0), m_stored.members.size(), rows.number(row, 1)));
}

bool POSTGRES_TABLE::erase_value(std::string_view name) {
    return run("DELETE FROM " + m_values + " WHERE name = $1", FIELDS(name)).changed_any();
}

// --- Arrays ---

std::uint64_t POSTGRES_TABLE::new_array_id() {
    return run("SELECT nextval(" + literal(m_engine.in_schema("big_array_id")) + ')', {})
        .number(0, 0);
}

std::optional<HOLDER> POSTGRES_TABLE::put_array(std::string_view name, ARRAY_HEAD const& head) {
    name_holders();
    return first_holder(
        run(m_put_array,
            FIELDS(name).add_number(head.id).add_number(head.count).add_number(head.checksum)));
}

bool POSTGRES_TABLE::get_array(std::string_view name, ARRAY_HEAD& head) {
    ROWS const rows =
        run("SELECT id, count, checksum FROM " + m_arrays + " WHERE name = $1", FIELDS(name));
    if (rows.size() == 0)
        return false;
    head = {rows.number(0, 0), rows.number(0, 1), rows.number(0, 2)};
    return true;
}

void POSTGRES_TABLE::read_arrays(NAME_RANGE const& range, std::size_t limit,
                                 std::vector<NAMED_ARRAY>& arrays) {
    arrays.clear();
    ROWS const rows = read_range(", id, count", m_arrays, range, limit);
    for (int row = 0; row < rows.size(); ++row)
        arrays.push_back(
            {rows.text(row, 0), {rows.number(row, 2), rows.number(row, 3), rows.number(row, 1)}});
}

void POSTGRES_TABLE::erase_array_head(std::string_view name) {
    run("DELETE FROM " + m_arrays + " WHERE name = $1", FIELDS(name));
}

void POSTGRES_TABLE::put_chunk(std::uint64_t array, std::uint64_t first, std::string_view elements,
                               std::uint64_t checksum) {
    run("INSERT INTO " + m_chunks
            + " (array_id, first, elements, checksum) VALUES ($1, $2, $3, $4)",
        FIELDS().add_number(array).add_number(first).add(elements).add_number(checksum));
}

bool POSTGRES_TABLE::get_chunk(std::uint64_t array, std::uint64_t first, std::string& elements,
                               std::uint64_t& checksum) {
    ROWS const rows =
        run("SELECT elements, checksum FROM " + m_chunks + " WHERE array_id = $1 AND first = $2",
            FIELDS().add_number(array).add_number(first));
    if (rows.size() == 0)
        return false;
    elements = rows.bytes(0, 0);
    checksum = rows.number(0, 1);
    return true;
}

void POSTGRES_TABLE::erase_chunks(std::uint64_t array) {
    run("DELETE FROM " + m_chunks + " WHERE array_id = $1", FIELDS().add_number(array));
}

std::uint64_t POSTGRES_TABLE::count_stray_chunks() {
    return run("SELECT count(*) FROM " + m_chunks + " WHERE NOT EXISTS (SELECT 1 FROM " + m_arrays
                   + " WHERE id = array_id)",
               {})
        .number(0, 0);
}

// ------------------------------------------------------------------------------------------------
// Opening
// ------------------------------------------------------------------------------------------------

/// 32 hexadecimal digits that nobody else has.
std::string unique_text() {
    std::random_device random;
    std::string text;
    for (int digit = 0; digit < 32; ++digit)
        text += "0123456789abcdef"[random() & 15];
    return text;
}

POSTGRES_ENGINE::POSTGRES_ENGINE(std::string const& address, std::string const& shown_as,
                                 PDB_STORE_OPTIONS const& options)
    : m_connection(address, shown_as, options), m_session(unique_text()) {}

POSTGRES_ENGINE::~POSTGRES_ENGINE() {
    forget_commits();
}

/// Whether the schema holds a store. Throws NOT_A_STORE when it holds something else.
bool POSTGRES_ENGINE::is_there() {
    ROWS const tables =
        m_connection.run("SELECT relname FROM pg_catalog.pg_class JOIN pg_catalog.pg_namespace n "
                         "ON n.oid = relnamespace WHERE nspname = $1::text AND relkind <> 'i' "
                         "ORDER BY relname <> 'big_store', relname LIMIT 1",
                         FIELDS(m_schema));
    if (tables.size() == 0)
        return false;
    if (tables.bytes(0, 0) != "big_store")
        m_connection.fail(
            PDB_STORE_ERROR::NOT_A_STORE,
            "schema " + shown(m_schema) + " of the database holds other things, such as "
                + shown(tables.bytes(0, 0)) + ", and no store; a store needs a schema of its own");
    return true;
}

void POSTGRES_ENGINE::create() {
    m_connection.run(
        "BEGIN ISOLATION LEVEL SERIALIZABLE READ WRITE; "
        "CREATE TABLE "
        + in_schema("big_store")
        + " (application text NOT NULL, format integer NOT NULL, id text NOT NULL); "
          "CREATE TABLE "
        + in_schema("big_class")
        + " (position bigint PRIMARY KEY, id bigint NOT NULL UNIQUE, name text NOT NULL, "
          "size bigint NOT NULL, members text NOT NULL, checksum bigint NOT NULL); "
          "CREATE TABLE "
        + in_schema("big_commit")
        + " (session text, number bigint, applied boolean NOT NULL, "
          "at timestamp with time zone NOT NULL DEFAULT now(), PRIMARY KEY (session, number)); "
          "CREATE SEQUENCE "
        + in_schema("big_array_id")
        + "; "
          "INSERT INTO "
        + in_schema("big_store") + " VALUES (" + literal(APPLICATION) + ", "
        + std::to_string(FORMAT) + ", " + literal(unique_text()) + "); COMMIT");
}

/// Reads what the store is, and throws when that is not for this version.
void POSTGRES_ENGINE::identify() {
    auto const refuse = [this] {
        m_connection.fail(PDB_STORE_ERROR::NOT_A_STORE,
                          "table \"big_store\" of schema " + shown(m_schema)
                              + " is that of another program, and no store");
    };
    try {
        ROWS const store =
            m_connection.run("SELECT application, format, id FROM " + in_schema("big_store"), {});
        if (store.size() != 1 || store.bytes(0, 0) != APPLICATION || store.number(0, 1) == 0)
            refuse();
        std::uint64_t const format = store.number(0, 1);
        if (format > FORMAT)
            m_connection.fail(PDB_STORE_ERROR::NEWER_FORMAT,
                              "the store has format " + std::to_string(format)
                                  + ", which is newer than format " + std::to_string(FORMAT)
                                  + " of this version of the library");
        m_id = store.text(0, 2);
    } catch (PDB_STORE_ERROR const& error) {
        if (error.kind() != PDB_STORE_ERROR::DAMAGED)
            throw;
        refuse(); // it has other columns
    }
}

/// A server that does not sync its files loses what it has confirmed.
void POSTGRES_ENGINE::require_sync() {
    ROWS const sync = m_connection.run("SELECT setting FROM pg_settings WHERE name = 'fsync'");
    if (sync.size() == 1 && sync.bytes(0, 0) == "off")
        m_connection.fail(PDB_STORE_ERROR::SYSTEM,
                          "the server runs with fsync = off, so what it saves may not reach the "
                          "disk: turn that on, or open the store for reading");
}

void POSTGRES_ENGINE::open(PDB_STORE_OPTIONS::ACCESS access, CLASS_CHECK const& check) {
    ROWS const schema = m_connection.run("SELECT current_schema()");
    if (schema.is_null(0, 0))
        m_connection.fail(PDB_STORE_ERROR::NO_STORE,
                          "the database has none of the schemas in which the address looks");
    m_schema = schema.text(0, 0);
    if (access != PDB_STORE_OPTIONS::READ)
        require_sync();
    constexpr int MOST_ATTEMPTS = 10;
    for (int attempt = 1; !is_there(); ++attempt) {
        if (access != PDB_STORE_OPTIONS::CREATE)
            m_connection.fail(PDB_STORE_ERROR::NO_STORE,
                              "schema " + shown(m_schema) + " of the database is empty");
        try {
            create();
        } catch (PDB_STORE_ERROR const& error) {
            // Another program may make one at the same time; then that one is it.
            if (error.kind() != PDB_STORE_ERROR::CONFLICT || attempt == MOST_ATTEMPTS)
                throw;
            rollback();
            if (m_connection.is_lost())
                m_connection.reconnect();
        }
    }
    identify();
    if (access != PDB_STORE_OPTIONS::READ) // what handles left that were killed
        m_connection.run("DELETE FROM " + in_schema("big_commit")
                         + " WHERE at < now() - interval '30 days'");
    begin(false, false);
    check(m_classes);
    commit();
}

/// Connects again, and makes sure that it is the same store.
void POSTGRES_ENGINE::reconnect() {
    m_connection.reconnect();
    std::string const id = m_id;
    identify();
    if (m_id == id)
        return;
    m_id = id;
    m_connection.drop();
    m_connection.fail(PDB_STORE_ERROR::SYSTEM, "another store has taken its place");
}

// ------------------------------------------------------------------------------------------------
// Transactions
// ------------------------------------------------------------------------------------------------

void POSTGRES_ENGINE::begin(bool writes, bool alone) {
    constexpr int MOST_ATTEMPTS = 3; // for connections that were lost since they were used last
    for (int attempt = 1;; ++attempt) {
        try {
            if (m_connection.is_lost())
                reconnect();
            start(writes, alone);
            return;
        } catch (PDB_STORE_ERROR const& error) {
            rollback();
            if (!m_connection.is_lost() || error.kind() != PDB_STORE_ERROR::CONFLICT
                || attempt == MOST_ATTEMPTS)
                throw;
        }
    }
}

void POSTGRES_ENGINE::start(bool writes, bool alone) {
    m_writes = writes;
    ++m_transaction;
    // A reader that is never to be in conflict sees one moment too, though perhaps one between two
    // transactions that a serial order has the other way round.
    std::string statements = "BEGIN ISOLATION LEVEL ";
    statements += alone && !writes ? "REPEATABLE READ READ " : "SERIALIZABLE READ ";
    if (writes) {
        // The lock comes first: what the transaction sees is as it is when the lock is there. All
        // who write share it, unless one of them is to be alone. Readers need none.
        statements += "WRITE; LOCK TABLE " + in_schema("big_store") + " IN "
                      + (alone ? "SHARE ROW" : "ROW") + " EXCLUSIVE MODE; INSERT INTO "
                      + in_schema("big_commit") + " (session, number, applied) VALUES ("
                      + transaction_key() + ", true); ";
        ++m_commit_rows;
    } else {
        statements += "ONLY; ";
    }
    std::string const count =
        m_connection.run(statements + "SELECT count(*) FROM " + in_schema("big_class")).text(0, 0);
    if (count != m_class_count)
        read_directory();
    m_class_count = count; // none ever goes, so another number says that there are more
}

void POSTGRES_ENGINE::commit() {
    try {
        // A reader that goes on when a statement has failed, as a check does, has nothing to apply.
        if (m_connection.run("COMMIT").command() != "COMMIT" && m_writes)
            m_connection.fail(PDB_STORE_ERROR::CONFLICT, "the server has rolled it back");
    } catch (PDB_STORE_ERROR const&) {
        // What a transaction has read is only known to be right when it ended well, so a reader
        // starts again too.
        if (!m_connection.is_lost() || !m_writes || !was_applied()) {
            rollback();
            throw;
        }
    }
    constexpr int MOST_COMMIT_ROWS = 100;
    if (m_commit_rows >= MOST_COMMIT_ROWS)
        forget_commits();
}

/// Finds out whether the transaction whose COMMIT had no answer was applied. If not, it never will
/// be.
bool POSTGRES_ENGINE::was_applied() {
    constexpr int MOST_ATTEMPTS = 3;
    for (int attempt = 1;; ++attempt) {
        try {
            if (m_connection.is_lost())
                reconnect();
            m_connection.run("INSERT INTO " + in_schema("big_commit")
                             + " (session, number, applied) VALUES (" + transaction_key()
                             + ", false) ON CONFLICT (session, number) DO NOTHING");
            return m_connection
                .run("SELECT applied FROM " + in_schema("big_commit")
                     + " WHERE (session, number) = (" + transaction_key() + ')')
                .is_true(0, 0);
        } catch (PDB_STORE_ERROR const& error) {
            if (m_connection.is_lost() && error.kind() == PDB_STORE_ERROR::CONFLICT
                && attempt < MOST_ATTEMPTS)
                continue;
            std::size_t const prefix = ("store " + error.store() + ": ").size();
            m_connection.fail(PDB_STORE_ERROR::SYSTEM,
                              "the connection to the server was lost while a transaction was being "
                              "applied, and whether it was is not known: "
                                  + std::string(error.what()).substr(prefix));
        }
    }
}

/// Removes the rows of transactions whose end is known.
void POSTGRES_ENGINE::forget_commits() noexcept {
    if (m_commit_rows == 0 || m_connection.is_lost())
        return;
    try {
        m_connection.run("DELETE FROM " + in_schema("big_commit")
                         + " WHERE session = " + literal(m_session));
        m_commit_rows = 0;
    } catch (...) {
        // They are in nobody's way, and are removed when the store is opened in a month.
    }
}

void POSTGRES_ENGINE::rollback() noexcept {
    if (m_connection.is_lost())
        return;
    try {
        m_connection.run("ROLLBACK");
    } catch (...) {
        m_connection.drop(); // with which the server drops the transaction
    }
}

// ------------------------------------------------------------------------------------------------
// Classes and names
// ------------------------------------------------------------------------------------------------

void POSTGRES_ENGINE::read_directory() {
    ROWS const rows = m_connection.run("SELECT id, name, size, members, checksum FROM "
                                           + in_schema("big_class") + " ORDER BY position",
                                       {});
    std::vector<STORED_CLASS> classes;
    for (int row = 0; row < rows.size(); ++row) {
        STORED_CLASS stored;
        stored.id = static_cast<std::uint32_t>(rows.number(row, 0));
        stored.name = rows.text(row, 1);
        stored.size = rows.number(row, 2);
        bool const are_members = read_members(rows.bytes(row, 3), stored.members);
        if (!are_members || class_checksum(stored) != rows.number(row, 4))
            m_connection.fail(PDB_STORE_ERROR::DAMAGED, "the record of class " + stored.name
                                                            + " does not match its checksum");
        name_table(stored);
        classes.push_back(std::move(stored));
    }
    m_classes = std::move(classes);
    ++m_directory_version;
}

void POSTGRES_ENGINE::add_class(STORED_CLASS const& stored) {
    m_class_count.clear(); // the next transaction reads the directory again
    m_connection.run(
        "INSERT INTO " + in_schema("big_class")
            + " (position, id, name, size, members, checksum) VALUES ((SELECT count(*) "
              "FROM "
            + in_schema("big_class") + "), $1, $2, $3, $4, $5)",
        FIELDS()
            .add_number(stored.id)
            .add(stored.name)
            .add_number(stored.size)
            .add(members_text(stored))
            .add_number(class_checksum(stored)));
    std::string columns;
    for (COLUMN const& column : value_columns(stored))
        columns += (columns.empty() ? "" : ", ") + column.name + ' ' + column.type + " NOT NULL";
    for (char const* const table : {"", "_array", "_chunk"})
        yield_name(stored.table + table);
    m_connection.run(
        "CREATE TABLE " + in_schema(stored.table) + " (" + columns
        + ", PRIMARY KEY (name)); CREATE TABLE " + in_schema(stored.table + "_array")
        + " (id bigint PRIMARY KEY, name bytea NOT NULL UNIQUE, count bigint NOT NULL, "
          "checksum bigint NOT NULL); CREATE TABLE "
        + in_schema(stored.table + "_chunk")
        + " (array_id bigint, first bigint, elements bytea NOT NULL, checksum bigint "
          "NOT NULL, PRIMARY KEY (array_id, first))");
    constexpr std::size_t ID_SIZE = 9; // "_d16780d1"
    std::string const view = stored.table.substr(0, stored.table.size() - ID_SIZE);
    create_view(view, view_of_values(stored));
    if (!stored.members.empty())
        create_view(view + "_elements", view_of_elements(stored));
    m_classes.push_back(stored);
    ++m_directory_version;
}

/// What a name in the schema stands for, as the server has it: "r" for a table, "v" for a view;
/// empty when the name is free.
std::string POSTGRES_ENGINE::kind_of_relation(std::string const& name) {
    ROWS const rows = m_connection.run(
        "SELECT relkind FROM pg_catalog.pg_class JOIN pg_catalog.pg_namespace n ON n.oid = "
        "relnamespace WHERE nspname = $1::text AND relname = $2::text",
        FIELDS(m_schema).add(name));
    return rows.size() == 0 ? "" : rows.text(0, 0);
}

/// Frees the name of a table that the view of another class has, as class B_00000002 has that of
/// the table of class B with id 2.
void POSTGRES_ENGINE::yield_name(std::string const& table) {
    if (kind_of_relation(table) == "v")
        m_connection.run("DROP VIEW " + in_schema(table));
}

/// Makes a view for people, when the name is free.
void POSTGRES_ENGINE::create_view(std::string const& name, std::string const& query) {
    if (kind_of_relation(name).empty())
        m_connection.run("CREATE VIEW " + in_schema(name) + " AS " + query);
}

/// Names as text, doubles as numbers.
std::string POSTGRES_ENGINE::view_of_values(STORED_CLASS const& stored) const {
    std::string text = "SELECT encode(name, 'escape') AS name";
    for (STORED_MEMBER const& member : stored.members)
        text += ", "
                + in_quotes(member.type == MEMBER_TYPE::DOUBLE ? readable_column(member)
                                                               : member.column)
                + " AS " + in_quotes(member.column);
    return text + " FROM " + in_schema(stored.table);
}

/// The elements of arrays, with doubles as their bytes.
std::string POSTGRES_ENGINE::view_of_elements(STORED_CLASS const& stored) const {
    std::string const size = std::to_string(stored.packed_size());
    std::string text = "SELECT encode(name, 'escape') AS name, first + n AS element";
    std::size_t offset = 1;
    for (STORED_MEMBER const& member : stored.members) {
        std::string const bytes = std::to_string(packed_size(member.type));
        std::string const part = "substring(elements FROM (n * " + size + " + "
                                 + std::to_string(offset) + ")::integer FOR " + bytes + ')';
        std::string const bits = "('x' || encode(" + part + ", 'hex'))::bit("
                                 + std::to_string(8 * packed_size(member.type)) + ")::";
        text += ", "
                + (member.type == MEMBER_TYPE::DOUBLE ? part : bits + std::string(type_of(member)))
                + " AS " + in_quotes(member.column);
        offset += packed_size(member.type);
    }
    return text + " FROM " + in_schema(stored.table + "_array") + " AS a JOIN "
           + in_schema(stored.table + "_chunk")
           + " ON array_id = a.id CROSS JOIN LATERAL generate_series(0, octet_length(elements) / "
           + size + " - 1) AS n";
}

std::unique_ptr<CLASS_TABLE> POSTGRES_ENGINE::table(STORED_CLASS const& stored) {
    return std::make_unique<POSTGRES_TABLE>(*this, stored);
}

std::string POSTGRES_ENGINE::select_holders(std::string const& condition,
                                            STORED_CLASS const* but_values_of) const {
    std::string text;
    auto const add = [&](STORED_CLASS const& stored, std::string const& table, bool is_array) {
        text += std::string(text.empty() ? "" : " UNION ALL ") + "SELECT "
                + std::to_string(stored.id) + "::bigint AS class_id, "
                + (is_array ? "true" : "false") + " AS is_array, name FROM " + in_schema(table)
                + " WHERE name " + condition;
    };
    for (STORED_CLASS const& stored : m_classes) {
        if (but_values_of == nullptr || stored.id != but_values_of->id)
            add(stored, stored.table, false);
        add(stored, stored.table + "_array", true);
    }
    return text;
}

std::optional<HOLDER> POSTGRES_ENGINE::find(std::string_view name) {
    if (m_classes.empty())
        return {};
    return first_holder(
        m_connection.run(select_holders("= $1", nullptr) + " LIMIT 1", FIELDS(name)));
}

// ------------------------------------------------------------------------------------------------
// Checking
// ------------------------------------------------------------------------------------------------

/// Compares the rows of a table with the entries of its index on a column.
void POSTGRES_ENGINE::check_index(std::string const& table, std::string const& column,
                                  std::function<void(std::string const&)> const& problem) {
    auto const count = [&](bool by_index) {
        std::string const on = by_index ? "on" : "off";
        return m_connection
            .run("SET LOCAL enable_indexscan = " + on + "; SET LOCAL enable_indexonlyscan = " + on
                 + "; SET LOCAL enable_seqscan = " + (by_index ? "off" : "on") + "; SELECT count("
                 + column + ") FROM " + in_schema(table))
            .text(0, 0);
    };
    std::string const rows = count(false);
    std::string const entries = count(true);
    if (rows != entries)
        problem("table " + table + " has " + rows + " rows, and its index " + entries);
}

/// Looks for doubles beside which another number stands.
void POSTGRES_ENGINE::check_readable(STORED_CLASS const& stored, STORED_MEMBER const& member,
                                     std::function<void(std::string const&)> const& problem) {
    std::string const readable = readable_column(member);
    ROWS const wrong =
        m_connection.run("SELECT name FROM " + in_schema(stored.table) + " WHERE float8send("
                             + in_quotes(readable) + ") <> " + in_quotes(member.column),
                         {});
    for (int row = 0; row < wrong.size(); ++row)
        problem("column " + readable + " of what " + shown(wrong.bytes(row, 0))
                + " holds is not the number in " + member.column);
}

void POSTGRES_ENGINE::check(std::function<void(std::string const&)> const& problem) {
    read_directory();
    check_index("big_class", "position", problem);
    for (STORED_CLASS const& stored : m_classes) {
        check_index(stored.table, "name", problem);
        check_index(stored.table + "_array", "name", problem);
        check_index(stored.table + "_chunk", "array_id", problem);
        for (STORED_MEMBER const& member : stored.members)
            if (member.type == MEMBER_TYPE::DOUBLE)
                check_readable(stored, member, problem);
    }
    if (m_classes.empty())
        return;
    ROWS const twice =
        m_connection.run("SELECT name FROM (" + select_holders("IS NOT NULL", nullptr)
                             + ") AS holders GROUP BY name HAVING count(*) > 1",
                         {});
    for (int row = 0; row < twice.size(); ++row)
        problem("the name " + shown(twice.bytes(row, 0)) + " holds two things");
}

} // namespace

std::unique_ptr<ENGINE> open_postgres(std::string const& address, std::string const& shown_as,
                                      PDB_STORE_OPTIONS const& options, CLASS_CHECK const& check) {
    auto engine = std::make_unique<POSTGRES_ENGINE>(address, shown_as, options);
    engine->open(options.access, check);
    return engine;
}
