#ifndef STORE_ENGINE_H
#define STORE_ENGINE_H

/// @file
/// What stands under a store: a database engine that keeps rows of typed columns. It knows classes
/// as lists of columns, names as bytes, and no objects. The store above it makes the cells and the
/// checksums, and verifies them.
///
/// Failures are thrown as PDB_STORE_ERROR. CONFLICT says that the transaction was not applied and
/// may be run again from its beginning; the store does that. SYSTEM out of an operation that writes
/// or out of commit() says that writing failed: the store uses the engine no further.

#include "pdb_store_sys.h"
#include "record.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

/// What a name holds.
struct HOLDER {
    std::uint32_t class_id;
    bool is_array;
};

/// The head of an array. Its elements are in chunks, which know the array by its id.
struct ARRAY_HEAD {
    std::uint64_t id = 0;
    std::uint64_t count = 0;
    std::uint64_t checksum = 0;
};

/// The names from `from`, which is among them, to `to`, which is not; without an end when `to` is
/// empty. Names are compared by their bytes.
struct NAME_RANGE {
    std::string from;
    std::string to;
};

/// Many rows of the table of one class. It keeps its memory when it is cleared.
class VALUE_BATCH {
public:
    void clear() {
        m_names.clear();
        m_ends.clear();
        m_cells.clear();
        m_checksums.clear();
    }
    std::size_t size() const { return m_checksums.size(); }

    /// Adds a row and returns the place of its cells.
    ///
    /// @param columns the same for every row of the batch
    CELL* add(std::string_view name, std::size_t columns, std::uint64_t checksum) {
        m_names += name;
        m_ends.push_back(m_names.size());
        m_checksums.push_back(checksum);
        m_columns = columns;
        m_cells.resize(m_cells.size() + columns);
        return m_cells.data() + m_cells.size() - columns;
    }

    std::string_view name(std::size_t row) const {
        std::size_t const begin = row == 0 ? 0 : m_ends[row - 1];
        return std::string_view(m_names).substr(begin, m_ends[row] - begin);
    }
    CELL const* cells(std::size_t row) const { return m_cells.data() + row * m_columns; }
    std::uint64_t checksum(std::size_t row) const { return m_checksums[row]; }

private:
    std::string m_names;
    std::vector<std::size_t> m_ends; ///< of the names
    std::size_t m_columns = 0;
    std::vector<CELL> m_cells;
    std::vector<std::uint64_t> m_checksums;
};

/// The values and the arrays of one class. It lives no longer than its engine.
class CLASS_TABLE {
public:
    virtual ~CLASS_TABLE() = default;

    /// Saves a value under a name that is free or holds a value of this class. Returns what the
    /// name holds, and saves nothing, when that is anything else.
    virtual std::optional<HOLDER> put_value(std::string_view name, CELL const* cells,
                                            std::uint64_t checksum) = 0;

    /// The same for many, in order. Returns what the name of the first row in the way holds; what
    /// has been saved of the others then does not matter, as the batch is given again or the
    /// transaction is rolled back.
    struct REFUSAL {
        std::size_t row;
        HOLDER holder;
    };
    virtual std::optional<REFUSAL> put_values(VALUE_BATCH const& batch) = 0;

    /// Reads a value. Returns false when the name holds no value of this class.
    virtual bool get_value(std::string_view name, CELL* cells, std::uint64_t& checksum) = 0;

    /// Replaces the content of the batch by the first values of a range in the order of their
    /// names, at most `limit`.
    virtual void read_values(NAME_RANGE const& range, std::size_t limit, VALUE_BATCH& batch) = 0;

    /// Removes a value. Returns false when there was none.
    virtual bool erase_value(std::string_view name) = 0;

    /// An id for a new array of this class, which no other has.
    virtual std::uint64_t new_array_id() = 0;

    /// Saves the head of an array under a name that is free. Returns what the name holds, and saves
    /// nothing, when it is not. Its chunks are saved before or after.
    virtual std::optional<HOLDER> put_array(std::string_view name, ARRAY_HEAD const& head) = 0;

    /// Reads the head of an array. Returns false when the name holds no array of this class.
    virtual bool get_array(std::string_view name, ARRAY_HEAD& head) = 0;

    struct NAMED_ARRAY {
        std::string name;
        ARRAY_HEAD head;
    };
    /// As read_values().
    virtual void read_arrays(NAME_RANGE const& range, std::size_t limit,
                             std::vector<NAMED_ARRAY>& arrays) = 0;

    /// Removes the head of an array; the chunks stay.
    virtual void erase_array_head(std::string_view name) = 0;

    /// Saves the elements of an array from index `first` on, packed.
    virtual void put_chunk(std::uint64_t array, std::uint64_t first, std::string_view elements,
                           std::uint64_t checksum) = 0;
    /// Reads a chunk. Returns false when there is none that begins with element `first`.
    virtual bool get_chunk(std::uint64_t array, std::uint64_t first, std::string& elements,
                           std::uint64_t& checksum) = 0;
    /// Removes all chunks of an array.
    virtual void erase_chunks(std::uint64_t array) = 0;

    /// The number of chunks that belong to no array; for check().
    virtual std::uint64_t count_stray_chunks() = 0;
};

class ENGINE {
public:
    virtual ~ENGINE() = default;

    /// Opens a transaction. None is open.
    ///
    /// @param alone for work that cannot be run again, or that lost against others several times:
    ///              what others do is no CONFLICT for it. When it writes, nobody else does.
    virtual void begin(bool writes, bool alone) = 0;
    /// Ends it. When it throws, the transaction is over and was not applied. An engine that loses
    /// its answer finds out, or throws SYSTEM with a text that says that it is not known.
    virtual void commit() = 0;
    /// Ends it. What was lost by a failure that was thrown before is of no interest.
    virtual void rollback() noexcept = 0;

    /// The classes of the store in the order in which they came into it. Throws DAMAGED for one
    /// whose checksum is wrong. Within a transaction, as everything below.
    virtual std::vector<STORED_CLASS> classes() = 0;
    /// Adds a class that the store does not hold.
    virtual void add_class(STORED_CLASS const& stored) = 0;
    /// The table of a class that the store holds.
    virtual std::unique_ptr<CLASS_TABLE> table(STORED_CLASS const& stored) = 0;

    /// What a name holds; nothing when it is free.
    virtual std::optional<HOLDER> find(std::string_view name) = 0;

    /// Checks what the engine keeps beside the records: pages, indexes, and that no name holds two
    /// things. Tells each problem.
    virtual void check(std::function<void(std::string const&)> const& problem) = 0;
};

/// Throws OTHER_MEMBERS when a class of a store is registered in this program with other members.
/// An engine calls it with what it finds in a store before it changes anything there.
using CLASS_CHECK = std::function<void(std::vector<STORED_CLASS> const& classes)>;

/// Opens a file.
std::unique_ptr<ENGINE> open_sqlite(std::string const& path, PDB_STORE_OPTIONS const& options,
                                    CLASS_CHECK const& check);

#ifdef BIG_STORE_HAS_POSTGRES
/// Opens a server's database.
///
/// @param address  as the user gave it
/// @param shown_as the address without the password, for messages
std::unique_ptr<ENGINE> open_postgres(std::string const& address, std::string const& shown_as,
                                      PDB_STORE_OPTIONS const& options, CLASS_CHECK const& check);
#endif

#endif
