#ifndef FAULTY_FILES_H
#define FAULTY_FILES_H

/// @file
/// Files that fail when a test says so, and that remember what was done to them: an SQLite VFS over
/// the system's own, and the calls by which the store itself renames files.

#include <map>
#include <memory>
#include <optional>
#include <string>
#include <vector>

/// What a program asks of its files when it changes them.
enum class FILE_CALL {
    OPEN,
    WRITE,
    SYNC,
    TRUNCATE,
    REMOVE,
    RENAME,
    SYNC_FOLDER, ///< of the folder in which a file was renamed
};

/// How a call fails.
enum class FILE_FAULT {
    ERROR,       ///< nothing is done
    DISK_FULL,   ///< nothing is done; of an open call as ERROR
    SHORT_WRITE, ///< the first half is written; of any other call as ERROR
    TOO_LATE,    ///< it is done, and fails all the same
};

/// A step of a record: a call that was done, or a mark of the test's own.
struct FILE_STEP {
    FILE_CALL call = FILE_CALL::OPEN;
    std::string file;
    long long offset = 0;    ///< of a WRITE
    std::string bytes;       ///< of a WRITE
    long long size = 0;      ///< of a TRUNCATE: what is left
    std::string new_name;    ///< of a RENAME, and of its SYNC_FOLDER
    bool is_synced = false;  ///< of a REMOVE: it is on the disk when the call returns
    std::optional<int> mark; ///< in place of a call
};

/// The VFS. One object at a time.
class FAULTY_FILES {
public:
    FAULTY_FILES();
    ~FAULTY_FILES();
    FAULTY_FILES(FAULTY_FILES const&) = delete;
    FAULTY_FILES& operator=(FAULTY_FILES const&) = delete;

    /// What SQLite calls it.
    static constexpr char const* NAME = "faulty_files";

    /// Lets a call fail.
    ///
    /// @param number  which call of this kind, counted from 1 from now on
    /// @param is_last whether the disk is gone from then on: every later call of every kind fails
    void fail(FILE_CALL call, int number, FILE_FAULT fault, bool is_last);
    /// Lets no call fail. Returns whether one has.
    bool repair();

    /// Begins a record. All files are closed.
    void record();
    /// Puts a mark into the record.
    void mark(int value);
    /// Ends the record.
    std::vector<FILE_STEP> recorded();

    class STATE;

private:
    std::unique_ptr<STATE> m_state;
};

/// What a disk holds: the content of each file by its path.
using DISK = std::map<std::string, std::string>;

/// What a disk may hold when the power fails.
///
/// A file's content is on the disk for certain when the file has been synced. What was written
/// since then is there or not, for each file apart; of a write that was under way the first sectors
/// are there, and the next one is noise. A file that was renamed has what was synced of it; the new
/// name is there for certain when its folder has been synced.
///
/// @param before what the disk held when the record began
/// @param steps  as many steps of a record as were taken
std::vector<DISK> disks_after_power_loss(DISK const& before, std::vector<FILE_STEP> const& record,
                                         std::size_t steps);

#endif
