#ifndef STORE_PAGES_H
#define STORE_PAGES_H

/// @file
/// Pages of a database file that carry a checksum.
///
/// SQLite leaves the last bytes of every page to extensions when it is asked to. There this layer
/// between SQLite and its VFS puts the CHECKSUM of the page's number and of the rest of the page
/// when it writes the page, and looks whether it still holds when it reads the page. So a byte that
/// changes anywhere in a file is found by whoever reads its page: also where no record is, in the
/// header, in the inner nodes of a tree, in the list of free pages. Readers that know nothing of it
/// skip those bytes.
///
/// The same layer seals rollback journals (journal.h), and opens none that was changed.

#include <memory>

#include <sqlite3.h>

struct CHECKED_PAGES_VFS;

/// A VFS that checks main database files and their rollback journals, and leaves everything else to
/// another VFS.
class CHECKED_PAGES {
public:
    /// Bytes at the end of each page.
    static constexpr int RESERVED_BYTES = 8;

    /// @param base the VFS that does the work
    explicit CHECKED_PAGES(sqlite3_vfs* base);
    ~CHECKED_PAGES();
    CHECKED_PAGES(CHECKED_PAGES const&) = delete;
    CHECKED_PAGES& operator=(CHECKED_PAGES const&) = delete;

    /// Opens a database through this VFS, which must live until the database is closed. The
    /// arguments and the result are those of sqlite3_open_v2().
    int open(char const* path, sqlite3** database, int flags);

    /// The number of the last page that did not match its checksum; 0 when there was none.
    unsigned bad_page() const;
    /// Whether the journal was found to be changed.
    bool has_bad_journal() const;

private:
    std::unique_ptr<CHECKED_PAGES_VFS> m_vfs;
};

#endif
