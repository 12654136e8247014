#ifndef STORE_JOURNAL_H
#define STORE_JOURNAL_H

/// @file
/// Rollback journals that carry a checksum.
///
/// A journal keeps the old pages of a save that is under way. Should the program or the power fail,
/// whoever opens the store next takes the half save back from it, so a byte that changes in a
/// journal meanwhile must not go by unseen: SQLite's own checksum looks at every 200th byte of a
/// page, and takes one that does not match for the journal's end.
///
/// A journal is one or more sections: a header of 28 bytes, zeros up to a sector, and records, each
/// of them a page number, a page and SQLite's checksum. SQLite writes a header whose first 12 bytes
/// are zeros, and the records, syncs, and then writes those 12 bytes: a fixed text and the number
/// of records. It syncs again, and only then touches the database. With the 12 bytes goes the seal:
/// a CHECKSUM of the header and the records, in the eight bytes behind the header, which SQLite
/// leaves alone. A section without a seal was never needed, or another program wrote it.

#include "checksum.h"

#include <string>

#include <sqlite3.h>

/// Seals the sections of one journal as SQLite writes it.
class JOURNAL_SEAL {
public:
    /// Does a write to a journal in place of SQLite. The arguments and the result are those of
    /// xWrite.
    int write(sqlite3_file* journal, void const* bytes, int amount, sqlite3_int64 offset);

private:
    std::string m_header;      ///< of the section that is being written; empty when it is not
                               ///< known whole, so that it is not sealed
    sqlite3_int64 m_begin = 0; ///< of the section
    sqlite3_int64 m_end = 0;   ///< of what has been written of it
    CHECKSUM m_records;
};

/// Whether every sealed section of a journal is what was written.
///
/// @param intact receives the answer
/// @return SQLITE_OK, or why the journal cannot be read
int check_journal(sqlite3_file* journal, bool& intact);

/// Whether a file begins as a sealed journal does. A database that has one beside it is a store.
bool is_sealed_journal(std::string const& path);

#endif
