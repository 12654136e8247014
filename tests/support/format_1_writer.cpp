#include "format_1_writer.h"

#include <gtest/gtest.h>
#include <sqlite3.h>

namespace {

std::string as_integer(std::uint64_t number) {
    return std::to_string(static_cast<long long>(number));
}

std::string as_blob(std::string const& bytes) {
    std::string text = "x'";
    for (char const c : bytes) {
        text += "0123456789abcdef"[static_cast<unsigned char>(c) >> 4];
        text += "0123456789abcdef"[static_cast<unsigned char>(c) & 15];
    }
    return text + '\'';
}

} // namespace

FORMAT_1_WRITER::FORMAT_1_WRITER(std::string const& path) {
    EXPECT_EQ(sqlite3_open(path.c_str(), &m_database), SQLITE_OK);
    run("PRAGMA application_id=" + std::to_string(0x42494753)
        + "; PRAGMA user_version=1; "
          "CREATE TABLE big_class (position INTEGER PRIMARY KEY, id INTEGER NOT NULL UNIQUE, "
          "name TEXT NOT NULL, size INTEGER NOT NULL, members TEXT NOT NULL, "
          "checksum INTEGER NOT NULL)");
}

FORMAT_1_WRITER::~FORMAT_1_WRITER() {
    sqlite3_close(m_database);
}

void FORMAT_1_WRITER::add_class(unsigned id) {
    EXPECT_TRUE(describe(*pdb_find_class(id), m_class));
    run("INSERT INTO big_class (id, name, size, members, checksum) VALUES ("
        + std::to_string(m_class.id) + ",'" + m_class.name + "'," + std::to_string(m_class.size)
        + ",'" + members_text(m_class) + "'," + as_integer(class_checksum(m_class)) + ')');
    std::string columns;
    for (STORED_MEMBER const& member : m_class.members)
        columns += ", " + member.column
                   + (member.type == MEMBER_TYPE::DOUBLE
                          ? " BLOB NOT NULL, " + readable_column(member) + " REAL"
                          : " INTEGER NOT NULL");
    run("CREATE TABLE " + m_class.table + " (name BLOB PRIMARY KEY NOT NULL" + columns
        + ", checksum INTEGER NOT NULL) WITHOUT ROWID; CREATE TABLE " + m_class.table
        + "_array (name BLOB PRIMARY KEY NOT NULL, count INTEGER NOT NULL, checksum INTEGER NOT "
          "NULL) WITHOUT ROWID; CREATE TABLE "
        + m_class.table + "_element (name BLOB NOT NULL, element INTEGER NOT NULL" + columns
        + ", checksum INTEGER NOT NULL, PRIMARY KEY (name, element)) WITHOUT ROWID");
}

void FORMAT_1_WRITER::put(std::string const& name, std::vector<CELL> const& cells) {
    run("INSERT INTO " + m_class.table + " VALUES (" + as_blob(name) + as_fields(cells) + ", "
        + as_integer(value_checksum(m_class, name, cells.data())) + ')');
}

void FORMAT_1_WRITER::put_array(std::string const& name,
                                std::vector<std::vector<CELL>> const& elements) {
    run("INSERT INTO " + m_class.table + "_array VALUES (" + as_blob(name) + ", "
        + std::to_string(elements.size()) + ", "
        + as_integer(start(name, 5).add(std::uint64_t{elements.size()}).value()) + ')');
    for (std::size_t i = 0; i < elements.size(); ++i) {
        CHECKSUM checksum = start(name, 6).add(std::uint64_t{i});
        for (CELL const cell : elements[i])
            checksum.add(cell);
        run("INSERT INTO " + m_class.table + "_element VALUES (" + as_blob(name) + ", "
            + std::to_string(i) + as_fields(elements[i]) + ", " + as_integer(checksum.value())
            + ')');
    }
}

void FORMAT_1_WRITER::run(std::string const& sql) {
    char* error = nullptr;
    EXPECT_EQ(sqlite3_exec(m_database, sql.c_str(), nullptr, nullptr, &error), SQLITE_OK)
        << error << " in " << sql;
    sqlite3_free(error);
}

CHECKSUM FORMAT_1_WRITER::start(std::string const& name, std::uint64_t kind) const {
    CHECKSUM checksum;
    checksum.add(std::uint64_t{m_class.id} << 32 | kind);
    return checksum.add(std::uint64_t{name.size()}).add(name);
}

std::string FORMAT_1_WRITER::as_fields(std::vector<CELL> const& cells) const {
    std::string text;
    for (std::size_t i = 0; i < cells.size(); ++i) {
        if (m_class.members[i].type != MEMBER_TYPE::DOUBLE) {
            text += ", " + as_integer(cells[i]);
            continue;
        }
        std::string bytes;
        for (int shift = 56; shift >= 0; shift -= 8)
            bytes += static_cast<char>(cells[i] >> shift);
        text += ", " + as_blob(bytes) + ", NULL";
    }
    return text;
}
