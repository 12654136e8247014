#ifndef STORE_STATE_H
#define STORE_STATE_H

/// @file
/// A handle's inside: transactions and classes, and values and arrays as cells. What PDB_STORE
/// offers is said in these terms.

#include "engine.h"

#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

/// A class of this program.
struct PROGRAM_CLASS {
    PDB_THUNK_INFO const* record = nullptr;
    STORED_CLASS stored;
};

/// A class of the store, with its table.
struct STORE_CLASS {
    STORED_CLASS stored;
    std::unique_ptr<CLASS_TABLE> table;
    std::vector<CELL> cells; ///< of the object at hand
    /// The record of the program whose class was found to be the same as `stored`.
    PDB_THUNK_INFO const* same = nullptr;
};

/// The names with a prefix, read in pieces.
NAME_RANGE names_with(std::string_view prefix);
/// Goes on behind a name.
void go_behind(NAME_RANGE& range, std::string_view name);

class PDB_STORE_STATE {
public:
    PDB_STORE_STATE(std::string const& address, PDB_STORE_OPTIONS const& options);
    ~PDB_STORE_STATE();
    PDB_STORE_STATE(PDB_STORE_STATE const&) = delete;
    PDB_STORE_STATE& operator=(PDB_STORE_STATE const&) = delete;

    std::string const& address() const { return m_address; }
    [[noreturn]] void fail(PDB_STORE_ERROR::KIND kind, std::string const& text,
                           std::string const& class_name = "",
                           std::string const& member = "") const;

    // --- Transactions ---

    static constexpr int MOST_ATTEMPTS = 10;
    /// After so many attempts, nobody else writes during the next.
    static constexpr int LOSES_BEFORE_ALONE = 2;

    /// How an operation stands to a transaction that is open around it.
    enum EFFECT {
        READS,
        TELLS,        ///< it reads, and calls a function of the user's meanwhile
        WRITES,       ///< a refusal comes before anything is changed
        WRITES_PARTS, ///< it may be refused when a part is done; only rollback() is left then
    };

    /// Runs an operation in the transaction that is open, or in one of its own, which is run again
    /// when another came between.
    template <typename BODY>
    void run(EFFECT effect, BODY const& body) {
        bool const writes = effect == WRITES || effect == WRITES_PARTS;
        require_usable(writes);
        if (m_transaction != NONE) {
            try {
                body();
            } catch (PDB_STORE_ERROR const& error) {
                note(error, effect);
                throw;
            } catch (...) {
                m_is_broken = m_is_broken || writes;
                throw;
            }
            return;
        }
        bool const is_repeatable = effect == READS || effect == WRITES;
        run_alone(writes, is_repeatable ? MOST_ATTEMPTS : 1, body);
    }

    /// Runs work in a transaction of its own, and again when another came between.
    template <typename WORK>
    void run_alone(bool writes, int most_attempts, WORK const& work) {
        require_no_transaction();
        for (int attempt = 1;; ++attempt) {
            try {
                begin(writes, most_attempts == 1 || attempt > LOSES_BEFORE_ALONE);
                work();
                commit();
                return;
            } catch (PDB_STORE_ERROR const& error) {
                note_failure(error);
                abandon();
                if (error.kind() != PDB_STORE_ERROR::CONFLICT || attempt == most_attempts)
                    throw;
            } catch (...) {
                abandon();
                throw;
            }
        }
    }

    void begin(bool writes, bool alone);
    void commit();
    void rollback();
    /// Rolls back what is open, if anything.
    void abandon();
    bool in_transaction() const { return m_transaction != NONE; }

    // --- Classes ---

    /// A class of this program. Throws UNREGISTERED_CLASS and BAD_CLASS.
    PROGRAM_CLASS const& program_class(std::type_info const& type);
    /// A class that the store holds; null when it holds none with this id. Throws OTHER_MEMBERS
    /// when it has other members than `wanted`. The address holds until the transaction ends.
    ///
    /// @param record of the program's class that `wanted` describes, which is then not compared
    ///               again each time; null for what a dump says
    STORE_CLASS* find_class(STORED_CLASS const& wanted, PDB_THUNK_INFO const* record);
    /// The same, and adds it when the store holds none.
    STORE_CLASS& need_class(STORED_CLASS const& wanted, PDB_THUNK_INFO const* record);
    /// A class that is known to be in the store.
    STORE_CLASS& class_with(std::uint32_t id);
    /// The ids of all classes, in the order in which they came into the store.
    std::vector<std::uint32_t> class_ids();
    /// Throws OTHER_MEMBERS for the first class that this program knows with other members.
    void compare_with_program(std::vector<STORED_CLASS> const& classes) const;

    // --- Values and arrays; within run() ---

    void require_name(std::string_view name) const;

    /// Saves a value from its cells.
    void put_value(STORE_CLASS& into, std::string_view name, CELL const* cells);
    /// Saves a batch of values.
    void put_values(STORE_CLASS& into, VALUE_BATCH const& batch);
    /// Loads a value into cells. Returns false when the class has no value of this name.
    bool get_value(STORE_CLASS& from, std::string_view name, CELL* cells);
    /// Throws HOLDS_OTHER when a name that holds nothing of the kind that was asked for holds
    /// something else.
    void refuse_other(std::string_view name, std::string const& class_name, bool is_array);
    /// Verifies a row of a batch.
    void verify(STORE_CLASS const& from, VALUE_BATCH const& batch, std::size_t row) const;

    /// Makes room for an array under a name. Its elements follow in chunks.
    ARRAY_HEAD begin_array(STORE_CLASS& into, std::string_view name, std::uint64_t count);
    void put_chunk(STORE_CLASS& into, ARRAY_HEAD const& head, std::uint64_t first,
                   std::string_view elements);
    bool get_array(STORE_CLASS& from, std::string_view name, ARRAY_HEAD& head);
    void verify(STORE_CLASS const& from, std::string_view name, ARRAY_HEAD const& head) const;
    /// Loads the chunk that begins with element `first`. Returns the number of its elements.
    std::uint64_t get_chunk(STORE_CLASS& from, std::string_view name, ARRAY_HEAD const& head,
                            std::uint64_t first, std::string& elements);

    /// Removes what a name holds.
    void erase(std::string_view name, HOLDER const& holder);

    ENGINE& engine() { return *m_engine; }

private:
    enum TRANSACTION { NONE, READING, WRITING };

    void require_no_transaction() const;
    void require_usable(bool writes) const;
    void note(PDB_STORE_ERROR const& error, EFFECT effect);
    /// Remembers an error of a transaction that writes after which nobody knows what is on the
    /// disk.
    void note_failure(PDB_STORE_ERROR const& error);
    /// Throws OTHER_MEMBERS unless both describe the same.
    void require_same(STORED_CLASS const& there, STORED_CLASS const& here) const;
    void read_directory();
    STORE_CLASS* known_class(std::uint32_t id);
    /// Removes what stands in the way of something of a class, or throws HOLDS_OTHER.
    void make_way(std::string_view name, HOLDER const& holder, STORED_CLASS const& wanted,
                  bool is_array);

    std::string m_address; ///< without a password
    PDB_STORE_OPTIONS m_options;
    std::unique_ptr<ENGINE> m_engine;
    TRANSACTION m_transaction = NONE;
    bool m_is_broken = false; ///< the transaction can only be rolled back
    std::string m_failure;    ///< why no further work is done; empty when it is

    std::vector<std::unique_ptr<STORE_CLASS>> m_classes; ///< of the store, as far as known
    std::map<std::uint32_t, PROGRAM_CLASS> m_program_classes;
    PROGRAM_CLASS const* m_last_class = nullptr; ///< the one that was asked for last
    std::type_info const* m_last_type = nullptr; ///< its type
};

#endif
