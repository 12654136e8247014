#ifndef PDB_STORE_SYS_H
#define PDB_STORE_SYS_H

/// @file
/// The standalone database: named values and named arrays of every registered class, in a file or
/// on a server. It is a library of its own (`libbig_store.so`, target `big::store`).
///
/// A store knows a class by its registration record alone (pdb_sys.h): it runs the class's
/// serializer to learn the members, and again for each object that it saves or loads. Every bit of
/// every member comes back. docs/store.md is the guide, docs/records.md the layout on the disk.

#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>
#include <type_traits>
#include <typeinfo>
#include <utility>
#include <vector>

class MEM_UTILS_CHUNK_ALLOC;
class PDB_STORE_STATE;

#pragma GCC visibility push(default)

/// What every operation of a store throws when it fails; std::bad_alloc passes through. what() is
/// one line that starts with "store ADDRESS: " and names the class and the member that it is about.
class PDB_STORE_ERROR : public std::runtime_error {
public:
    enum KIND {
        BAD_ADDRESS,   ///< the address or an option makes no sense, or needs what was not built
        NO_STORE,      ///< there is none at the address, and it was not to be made
        NOT_A_STORE,   ///< what is at the address is something else; it was left as it is
        NEWER_FORMAT,  ///< a newer version of this library wrote it; it was left as it is
        OTHER_MEMBERS, ///< it holds a class that has other members in this program, or another
                       ///< size; it was left as it is
        NETWORK_FILES, ///< its file lies on a network file system
        BUSY,          ///< another program or handle kept it longer than the wait allows
        READ_ONLY,     ///< it was opened for reading
        DAMAGED,       ///< what is on the disk is not what was written there
        BAD_NAME,      ///< a name is empty or longer than PDB_STORE::LONGEST_NAME
        UNREGISTERED_CLASS, ///< the program has registered no such class
        BAD_CLASS,          ///< the class's serializer does not do the same for every object
        HOLDS_OTHER,        ///< the name holds a value of another class, or an array, not a value
        NAME_TAKEN,         ///< the new name of a value is in use
        BAD_DUMP,           ///< the text to be loaded is no dump; the message names the line
        MISUSE,             ///< a call that the state of the handle does not allow
        CONFLICT,           ///< another transaction came between; nothing of this one was applied
        SYSTEM,             ///< the system or the server refused; the message says what and why
        FAILED,             ///< writing failed earlier, so this handle refuses all further work
    };

    PDB_STORE_ERROR(KIND kind, std::string const& store, std::string const& text)
        : std::runtime_error("store " + store + ": " + text), m_kind(kind), m_store(store) {}

    /// What went wrong.
    KIND kind() const noexcept { return m_kind; }
    /// The store's address, without the password that a server's may hold.
    std::string const& store() const noexcept { return m_store; }
    /// The class that the error is about; empty when it is about none.
    std::string const& class_name() const noexcept { return m_class_name; }
    /// The member that differs, of OTHER_MEMBERS; empty when there is none.
    std::string const& member() const noexcept { return m_member; }

    /// Names what the error is about.
    PDB_STORE_ERROR& about(std::string class_name, std::string member = "") {
        m_class_name = std::move(class_name);
        m_member = std::move(member);
        return *this;
    }

private:
    KIND m_kind;
    std::string m_store;
    std::string m_class_name;
    std::string m_member;
};

/// How a store is opened.
struct PDB_STORE_OPTIONS {
    enum ACCESS {
        CREATE,     ///< to read and write; it is made when there is none
        READ_WRITE, ///< to read and write; it must exist
        READ,       ///< to read; nothing is ever written, not even the step to a newer format
    };

    ACCESS access = CREATE;
    /// How long an operation waits for other programs and handles before it throws BUSY.
    std::chrono::milliseconds wait{10000};
    /// Opens a file on a network file system all the same. Locks and syncs there are often not what
    /// they say, and a store can be lost by it.
    bool allow_network_files = false;
    /// The name of the SQLite VFS under a file; empty for SQLite's own choice.
    std::string vfs;
};

/// What a name holds.
struct PDB_STORE_ENTRY {
    std::string name;             ///< any bytes
    unsigned int class_id = 0;    ///< of the value or of the elements
    std::string class_name;       ///< as it was when the class was first stored
    bool is_array = false;        ///< an array, perhaps of one element or none
    unsigned long long count = 1; ///< elements; 1 for a value
};

/// Which names an operation is about.
struct PDB_STORE_SELECTION {
    std::string prefix;        ///< of the name; empty for every name
    unsigned int class_id = 0; ///< 0 for every class
};

/// A store. An object is a handle for one thread at a time; threads and processes open one each.
///
/// A name is 1 to LONGEST_NAME bytes, any bytes, and holds one value or one array of one class.
///
/// Every operation that writes is a transaction of its own unless one is open: it is on the disk
/// when the call returns, whole or not at all. Any operation may throw BAD_NAME, BUSY, CONFLICT,
/// DAMAGED, FAILED and SYSTEM; one that writes READ_ONLY; one that takes a class
/// UNREGISTERED_CLASS, OTHER_MEMBERS and BAD_CLASS. What else it throws is said where it stands.
///
/// After a write or a sync has failed nobody knows what is on the disk, so the handle throws FAILED
/// from then on. Open the store again: it holds all that was saved before, and nothing of what
/// failed. DAMAGED while reading does not end the handle; other values can still be read.
///
/// A read checks what it returns. A value that was changed on the disk is DAMAGED, never returned.
class PDB_STORE {
public:
    /// Bytes of the longest name: what a server's index takes.
    static constexpr std::size_t LONGEST_NAME = 2048;

    /// Opens a store, and makes it when there is none and the options say so.
    ///
    /// @param address the path of a file, or of a server `postgresql://...` or `postgres://...`, in
    ///                either letter case
    ///
    /// A store of an older format is brought to the present one unless it is opened for reading: on
    /// a copy, which is checked and then takes the place of the original. Throws BAD_ADDRESS,
    /// NO_STORE, NOT_A_STORE, NEWER_FORMAT, OTHER_MEMBERS, NETWORK_FILES, BUSY, DAMAGED, SYSTEM.
    explicit PDB_STORE(std::string const& address, PDB_STORE_OPTIONS const& options = {});
    /// Closes the store. An open transaction is rolled back.
    ~PDB_STORE();
    PDB_STORE(PDB_STORE&&) noexcept;
    PDB_STORE& operator=(PDB_STORE&&) noexcept;

    // --- Values ---

    /// Saves a value under a name, in place of what the name holds of the same class.
    ///
    /// Throws HOLDS_OTHER when the name holds another class.
    template <typename T>
    void put(std::string_view name, T const& value) {
        put_object(name, typeid(T), &value);
    }

    /// Loads the value that a name holds. Returns false, and leaves the value as it is, when the
    /// name holds nothing.
    ///
    /// Throws HOLDS_OTHER when the name holds another class or an array.
    template <typename T>
    bool get(std::string_view name, T& value) {
        return get_object(name, typeid(T), &value);
    }

    /// Saves many values in one transaction, by the fastest way that the store has.
    ///
    /// @param next sets the next name and value; returns false when there are no more. It must not
    ///             use this handle.
    ///
    /// Of two values with one name the later one is kept. Throws HOLDS_OTHER, and what `next`
    /// throws; nothing is saved then.
    template <typename T>
    void put_each(std::function<bool(std::string& name, T& value)> const& next) {
        T value;
        put_objects(typeid(T), &value, [&](std::string& name) { return next(name, value); });
    }

    /// Calls a function with each value of a class whose name starts with a prefix, in the order of
    /// the names' bytes, in constant memory. The function may use this handle. The values are those
    /// of one moment when a transaction is open.
    template <typename T>
    void for_each(std::string_view prefix,
                  std::function<void(std::string const& name, T const& value)> const& visit) {
        T value;
        visit_objects(prefix, typeid(T), &value,
                      [&](std::string const& name) { visit(name, value); });
    }

    // --- Arrays ---

    /// Saves an array under a name, in place of what the name holds of the same class.
    ///
    /// Throws HOLDS_OTHER when the name holds another class.
    template <typename T>
    void put_array(std::string_view name, T const* elements, std::size_t count) {
        put_elements(name, typeid(T), count,
                     [=](unsigned long long index) { return elements + index; });
    }

    /// Loads the array that a name holds. Returns false, and leaves the vector as it is, when the
    /// name holds nothing.
    ///
    /// Throws HOLDS_OTHER when the name holds another class or a value.
    template <typename T>
    bool get_array(std::string_view name, std::vector<T>& elements) {
        std::vector<T> loaded;
        bool const found = get_elements(
            name, typeid(T), [&](std::size_t count) { loaded.resize(count); },
            [&](std::size_t index) -> void* { return &loaded[index]; });
        if (found)
            elements.swap(loaded);
        return found;
    }

    /// Loads the array that a name holds into a block from the class's own allocate_array_fn.
    ///
    /// @param pool  takes the block; null, or a pool that is not enabled, takes it from the free
    ///              store, and the caller releases it with `delete[]`
    /// @param count receives the number of elements
    /// @return the first element; null, and count untouched, when the name holds nothing
    ///
    /// Throws HOLDS_OTHER when the name holds another class or a value, MISUSE when the array has
    /// more elements than an unsigned int can count.
    template <typename T>
    T* get_array(std::string_view name, MEM_UTILS_CHUNK_ALLOC* pool, std::size_t& count) {
        return static_cast<T*>(
            get_array_block(name, typeid(T), pool, count, sizeof(T),
                            [](void* elements) { delete[] static_cast<T*>(elements); }));
    }

    /// Calls a function with each element of an array and its index, in order, in constant memory.
    /// The function may use this handle. The elements are those of one moment when a transaction is
    /// open; else an array that changes meanwhile throws CONFLICT. Returns false when the name
    /// holds nothing.
    ///
    /// Throws HOLDS_OTHER when the name holds another class or a value.
    template <typename T>
    bool
    for_each_element(std::string_view name,
                     std::function<void(unsigned long long index, T const& element)> const& visit) {
        T element;
        return visit_elements(name, typeid(T), &element,
                              [&](unsigned long long index) { visit(index, element); });
    }

    // --- Names ---

    /// What a name holds, of whatever class. Returns false when it holds nothing.
    bool find(std::string_view name, PDB_STORE_ENTRY& entry);

    /// Calls a function for each name of a selection, in constant memory: class by class in the
    /// order in which the classes came into the store, of each class first the values and then the
    /// arrays, each in the order of the names' bytes. Every record that is listed is checked. The
    /// function may use this handle.
    void list(PDB_STORE_SELECTION const& selection,
              std::function<void(PDB_STORE_ENTRY const&)> const& visit);

    /// Removes a name and what it holds. Returns false when it holds nothing.
    bool erase(std::string_view name);

    /// Gives what a name holds another name. Returns false when the name holds nothing. A name may
    /// be renamed to itself.
    ///
    /// Throws NAME_TAKEN when the other name is in use.
    bool rename(std::string_view from, std::string_view to);

    // --- Transactions ---

    /// Opens a transaction: all operations until commit() are applied together or not at all, and
    /// see the store as it was when the first of them began.
    ///
    /// @param writes whether it is going to write. Stores that let one program write at a time let
    ///               it wait its turn here. A write in a transaction that said no is MISUSE.
    ///
    /// Throws MISUSE when one is open. When an operation in a transaction throws anything but
    /// BAD_NAME, HOLDS_OTHER, NAME_TAKEN, UNREGISTERED_CLASS or MISUSE, only rollback() is left.
    void begin(bool writes = true);
    /// Applies the transaction. It is on the disk when the call returns. When it throws, the
    /// transaction is over and nothing of it was applied; after SYSTEM the handle is FAILED.
    ///
    /// Throws MISUSE when none is open, or when an operation failed so that only rollback() is
    /// left.
    void commit();
    /// Drops the transaction. Throws MISUSE when none is open.
    void rollback();
    /// Whether a transaction is open.
    bool in_transaction() const noexcept;

    /// Runs work in a transaction, which is applied when the work returns and dropped when it
    /// throws. The work is run again, at most ten times, when another transaction comes between,
    /// so it should have no effect but on the store.
    void transaction(std::function<void()> const& work);

    // --- The whole store ---

    /// The store's address, without the password that a server's may hold.
    std::string const& address() const noexcept;

    /// Reads and checks every record and every name.
    ///
    /// @param problem  receives one line about each thing that is wrong
    /// @param progress is called now and then with the number of records read so far; may be empty
    /// @return whether nothing is wrong
    bool check(std::function<void(std::string const&)> const& problem,
               std::function<void(unsigned long long)> const& progress = {});

    /// Writes the whole store, as it is at one moment, as text from which load() restores every
    /// bit. The text is ASCII; docs/store.md has its grammar.
    ///
    /// @param write receives the text, a line with its line feed at a time
    void dump(std::function<void(std::string_view line)> const& write);

    /// Loads the text of a dump in one transaction. What a name of the dump holds in this store is
    /// replaced when it is of the same class.
    ///
    /// @param read_line sets the next line, with or without its line feed; returns false at the end
    /// @return the number of names loaded
    ///
    /// Throws BAD_DUMP, which names the line, for anything that dump() does not write;
    /// OTHER_MEMBERS and HOLDS_OTHER. Nothing is loaded then.
    unsigned long long load(std::function<bool(std::string& line)> const& read_line);

private:
    void put_object(std::string_view name, std::type_info const& type, void const* object);
    bool get_object(std::string_view name, std::type_info const& type, void* object);
    void put_objects(std::type_info const& type, void const* object,
                     std::function<bool(std::string& name)> const& next);
    void visit_objects(std::string_view prefix, std::type_info const& type, void* object,
                       std::function<void(std::string const& name)> const& visit);
    void put_elements(std::string_view name, std::type_info const& type, unsigned long long count,
                      std::function<void const*(unsigned long long index)> const& element);
    bool get_elements(std::string_view name, std::type_info const& type,
                      std::function<void(std::size_t count)> const& make_room,
                      std::function<void*(std::size_t index)> const& element);
    void* get_array_block(std::string_view name, std::type_info const& type,
                          MEM_UTILS_CHUNK_ALLOC* pool, std::size_t& count, std::size_t size,
                          void (*release)(void* elements));
    bool visit_elements(std::string_view name, std::type_info const& type, void* element,
                        std::function<void(unsigned long long index)> const& visit);

    std::unique_ptr<PDB_STORE_STATE> m_state;
};

#pragma GCC visibility pop

#endif
