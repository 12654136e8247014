// From format 1 of a store's file to format 2.
//
// Format 1 kept every element of an array in a row of its own, and its pages had no checksums:
//
//     TABLE            name, members..., checksum               as in format 2
//     TABLE_array      name, count, checksum
//     TABLE_element    name, element, members..., checksum
//
// Checksums of arrays and elements were those of format1_array_checksum() and
// format1_element_checksum().

#include "checksum.h"
#include "files.h"
#include "sqlite_format.h"

#include <algorithm>
#include <cerrno>
#include <filesystem>
#include <system_error>

namespace {

// ------------------------------------------------------------------------------------------------
// Reading format 1
// ------------------------------------------------------------------------------------------------

enum FORMAT1_RECORD : std::uint64_t { FORMAT1_ARRAY = 5, FORMAT1_ELEMENT = 6 };

std::uint64_t format1_array_checksum(STORED_CLASS const& stored, std::string_view name,
                                     std::uint64_t count) {
    return CHECKSUM()
        .add(std::uint64_t{stored.id} << 32 | FORMAT1_ARRAY)
        .add(name.size())
        .add(name)
        .add(count)
        .value();
}

std::uint64_t format1_element_checksum(STORED_CLASS const& stored, std::string_view name,
                                       std::uint64_t index, CELL const* cells) {
    return CHECKSUM()
        .add(std::uint64_t{stored.id} << 32 | FORMAT1_ELEMENT)
        .add(name.size())
        .add(name)
        .add(index)
        .add(cells, stored.members.size())
        .value();
}

/// A class of a store of format 1 and the statements that read what is of it.
class FORMAT1_CLASS {
public:
    FORMAT1_CLASS(SQLITE_DATABASE& database, STORED_CLASS const& stored)
        : m_database(database), m_stored(stored), m_cells(stored.members.size()),
          m_values(database, "SELECT name" + member_columns(stored) + ", checksum FROM \""
                                 + stored.table + "\" ORDER BY name"),
          m_arrays(database, "SELECT name, count, checksum FROM \"" + stored.table
                                 + "_array\" ORDER BY name"),
          m_elements(database, "SELECT element" + member_columns(stored) + ", checksum FROM \""
                                   + stored.table + "_element\" WHERE name = ?1 ORDER BY element") {
    }

    STORED_CLASS const& stored() const { return m_stored; }
    CELL const* cells() const { return m_cells.data(); }

    /// Goes to the next value. Returns false at the end.
    bool next_value(std::string& name) {
        if (!m_values.next())
            return false;
        name = m_values.bytes(0);
        read_cells(m_stored, m_database, m_values, 1, m_cells.data());
        require(m_values.number(checksum_column()) == value_checksum(m_stored, name, cells()),
                name);
        return true;
    }

    /// Goes to the next array. Returns false at the end.
    bool next_array(std::string& name, std::uint64_t& count) {
        if (!m_arrays.next())
            return false;
        name = m_arrays.bytes(0);
        count = m_arrays.number(1);
        require(m_arrays.number(2) == format1_array_checksum(m_stored, name, count), name);
        return true;
    }

    /// Goes to an element of an array. The elements are asked for in order.
    void next_element(std::string const& name, std::uint64_t index) {
        if (index == 0) {
            m_elements.reset();
            m_elements.bind(1, name);
        }
        require(m_elements.next() && m_elements.number(0) == index, name);
        read_cells(m_stored, m_database, m_elements, 1, m_cells.data());
        require(m_elements.number(checksum_column())
                    == format1_element_checksum(m_stored, name, index, cells()),
                name);
    }

private:
    int checksum_column() const { return 1 + static_cast<int>(m_cells.size()); }

    void require(bool holds, std::string const& name) const {
        if (!holds)
            m_database.fail(PDB_STORE_ERROR::DAMAGED,
                            "what " + shown(name) + " holds does not match its checksum");
    }

    SQLITE_DATABASE& m_database;
    STORED_CLASS m_stored;
    std::vector<CELL> m_cells;
    STATEMENT m_values;
    STATEMENT m_arrays;
    STATEMENT m_elements;
};

// ------------------------------------------------------------------------------------------------
// The copy
// ------------------------------------------------------------------------------------------------

/// Where what is read goes: into the copy, or beside it to be compared.
class DESTINATION {
public:
    DESTINATION(ENGINE& engine, SQLITE_DATABASE const& original, bool compares)
        : m_engine(engine), m_original(original), m_compares(compares) {}

    void add_class(STORED_CLASS const& stored) {
        m_stored = stored;
        if (!m_compares)
            m_engine.add_class(stored);
        m_table = m_engine.table(stored);
        m_cells.resize(stored.members.size());
    }

    void add_value(std::string const& name, CELL const* cells) {
        std::uint64_t const checksum = value_checksum(m_stored, name, cells);
        if (!m_compares) {
            require(!m_table->put_value(name, cells, checksum), name);
            return;
        }
        std::uint64_t kept = 0;
        require(m_table->get_value(name, m_cells.data(), kept) && kept == checksum
                    && std::equal(m_cells.begin(), m_cells.end(), cells),
                name);
    }

    void begin_array(std::string const& name, std::uint64_t count) {
        m_first = 0;
        if (!m_compares) {
            m_array = {m_table->new_array_id(), count, 0};
            m_array.checksum = array_checksum(m_stored, name, m_array.id, count);
            require(!m_table->put_array(name, m_array), name);
            return;
        }
        require(m_table->get_array(name, m_array) && m_array.count == count
                    && m_array.checksum == array_checksum(m_stored, name, m_array.id, count),
                name);
    }

    /// Takes the next elements of the array, packed.
    void add_chunk(std::string const& name, std::string const& elements, std::uint64_t count) {
        std::uint64_t const checksum = chunk_checksum(m_stored, m_array.id, m_first, elements);
        if (!m_compares) {
            m_table->put_chunk(m_array.id, m_first, elements, checksum);
        } else {
            std::uint64_t kept = 0;
            require(m_table->get_chunk(m_array.id, m_first, m_elements, kept) && kept == checksum
                        && m_elements == elements,
                    name);
        }
        m_first += count;
    }

private:
    void require(bool holds, std::string const& name) const {
        if (!holds)
            m_original.fail(
                PDB_STORE_ERROR::DAMAGED,
                "the copy in the present format does not hold what the file holds under "
                    + shown(name) + "; the file was left as it is");
    }

    ENGINE& m_engine;
    SQLITE_DATABASE const& m_original;
    bool m_compares;
    STORED_CLASS m_stored;
    std::unique_ptr<CLASS_TABLE> m_table;
    std::vector<CELL> m_cells;
    ARRAY_HEAD m_array;
    std::uint64_t m_first = 0;
    std::string m_elements;
};

void transfer_array(FORMAT1_CLASS& from, DESTINATION& to, std::string const& name,
                    std::uint64_t count) {
    std::uint64_t const most = elements_in_chunk(from.stored());
    std::string elements;
    to.begin_array(name, count);
    for (std::uint64_t first = 0; first < count; first += most) {
        std::uint64_t const end = std::min(first + most, count);
        elements.clear();
        for (std::uint64_t i = first; i < end; ++i) {
            from.next_element(name, i);
            pack(from.stored(), from.cells(), elements);
        }
        to.add_chunk(name, elements, end - first);
    }
}

/// Reads a whole store of format 1 in one order, and hands it on.
void transfer(SQLITE_DATABASE& original, std::vector<STORED_CLASS> const& classes,
              DESTINATION& to) {
    std::string name;
    std::uint64_t count = 0;
    for (STORED_CLASS const& stored : classes) {
        FORMAT1_CLASS from(original, stored);
        to.add_class(stored);
        while (from.next_value(name))
            to.add_value(name, from.cells());
        while (from.next_array(name, count))
            transfer_array(from, to, name, count);
    }
}

/// Makes the copy. Everything is on the disk when the call returns.
void make_copy(SQLITE_DATABASE& original, std::vector<STORED_CLASS> const& classes,
               std::unique_ptr<SQLITE_DATABASE> copy) {
    auto const engine = engine_over(std::move(copy));
    engine->begin(true, true);
    DESTINATION into(*engine, original, false);
    transfer(original, classes, into);
    engine->commit();
}

/// Reads the original again and compares the copy with it, as it is in its file.
void compare_copy(SQLITE_DATABASE& original, std::vector<STORED_CLASS> const& classes,
                  std::string const& copy_path, PDB_STORE_OPTIONS const& options) {
    auto copy = std::make_unique<SQLITE_DATABASE>(copy_path, original.shown_as(),
                                                  SQLITE_OPEN_READONLY, options, true);
    copy->set_up();
    auto const engine = engine_over(std::move(copy));
    engine->begin(false, false);
    engine->check([&](std::string const& problem) {
        original.fail(PDB_STORE_ERROR::DAMAGED,
                      "the copy in the present format is damaged: " + problem);
    });
    DESTINATION beside(*engine, original, true);
    transfer(original, classes, beside);
    engine->commit();
}

} // namespace

void migrate_from_format_1(std::string const& path, std::string const& shown_as,
                           PDB_STORE_OPTIONS const& options, CLASS_CHECK const& check) {
    // One who waited for the file until a copy took its place would take a journal of the copy's
    // for one of the file's own, and play it back. So only who has the folder opens it.
    FOLDER_LOCK const turn(path, options.wait);
    SQLITE_DATABASE original(path, shown_as, SQLITE_OPEN_READWRITE, options, false);
    if (turn.error() == EWOULDBLOCK)
        original.check(SQLITE_BUSY);
    if (turn.error() != 0)
        original.fail(PDB_STORE_ERROR::SYSTEM, "its folder cannot be locked: "
                                                   + std::generic_category().message(turn.error()));
    if (format_in(original.header()) != 1)
        return;
    original.set_up();
    // Nobody else reads or writes until the copy has taken its place.
    original.run("BEGIN EXCLUSIVE");
    STATEMENT directory(original, SELECT_CLASSES);
    std::vector<STORED_CLASS> const classes = read_classes(original, directory);
    check(classes);

    std::string copy_path;
    try {
        make_copy(original, classes, make_store_file(path, shown_as, options, copy_path));
        compare_copy(original, classes, copy_path, options);
        std::filesystem::permissions(copy_path, std::filesystem::status(path).permissions());
        if (int const error = move_file(copy_path, path, true))
            original.fail(PDB_STORE_ERROR::SYSTEM,
                          "the copy in the present format cannot take its place: "
                              + std::generic_category().message(error));
        if (int const error = sync_folder_of(path))
            original.fail(PDB_STORE_ERROR::SYSTEM,
                          "it has the present format now, but bringing its folder to the disk "
                          "failed, so that a loss of power may take that back: "
                              + std::generic_category().message(error));
    } catch (...) {
        remove_store_file(copy_path);
        throw;
    }
}
