// Pages of a database file that carry a checksum.

#include "pages.h"

#include "checksum.h"
#include "journal.h"
#include "passing_vfs.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>
#include <vector>

struct CHECKED_PAGES_VFS : PASSING_VFS {
    std::string name; ///< under which SQLite finds this VFS while it opens a database
    unsigned bad_page = 0;
    bool has_bad_journal = false;
};

namespace {

/// A main database file or its journal.
struct PAGED_FILE : PASSING_FILE {
    unsigned* bad_page;
    std::vector<char>* buffer; ///< of the page that is being written; null in a journal
    JOURNAL_SEAL* seal;        ///< null in a database
};

PAGED_FILE& paged(sqlite3_file* file) {
    return *static_cast<PAGED_FILE*>(file);
}

/// Whether bytes of a file are a page: SQLite reads and writes pages whole, and else only small
/// parts of the header.
bool is_page(int amount, sqlite3_int64 offset) {
    return amount >= 512 && (amount & (amount - 1)) == 0 && offset % amount == 0;
}

unsigned page_number(int amount, sqlite3_int64 offset) {
    return static_cast<unsigned>(offset / amount) + 1;
}

/// The checksum of a page as it stands at its end, the highest byte first.
std::uint64_t page_checksum(char const* page, int amount, sqlite3_int64 offset) {
    std::uint64_t const checksum =
        CHECKSUM()
            .add(std::uint64_t{page_number(amount, offset)})
            .add(std::string_view(page,
                                  static_cast<std::size_t>(amount - CHECKED_PAGES::RESERVED_BYTES)))
            .value();
    return __builtin_bswap64(checksum);
}

// --- Files ---

int close_file(sqlite3_file* file) {
    delete paged(file).buffer;
    delete paged(file).seal;
    return pass_on<&sqlite3_io_methods::xClose>(file);
}

int read_file(sqlite3_file* file, void* bytes, int amount, sqlite3_int64 offset) {
    int const result = pass_on<&sqlite3_io_methods::xRead>(file, bytes, amount, offset);
    if (!is_page(amount, offset))
        return result;
    if (result == SQLITE_IOERR_SHORT_READ) { // behind the end, or the file was cut in the page
        sqlite3_int64 size = 0;
        int const asked = pass_on<&sqlite3_io_methods::xFileSize>(file, &size);
        if (asked != SQLITE_OK || size <= offset)
            return asked != SQLITE_OK ? asked : result;
    } else if (result != SQLITE_OK) {
        return result;
    }
    std::uint64_t kept = 0;
    char const* const page = static_cast<char const*>(bytes);
    std::memcpy(&kept, page + amount - CHECKED_PAGES::RESERVED_BYTES, sizeof kept);
    if (result == SQLITE_OK && kept == page_checksum(page, amount, offset))
        return SQLITE_OK;
    *paged(file).bad_page = page_number(amount, offset);
    return SQLITE_IOERR_DATA;
}

int write_file(sqlite3_file* file, void const* bytes, int amount, sqlite3_int64 offset) {
    if (!is_page(amount, offset))
        return pass_on<&sqlite3_io_methods::xWrite>(file, bytes, amount, offset);
    auto const size = static_cast<std::size_t>(amount);
    std::vector<char>& page = *paged(file).buffer;
    try {
        page.resize(size);
    } catch (std::bad_alloc const&) {
        return SQLITE_IOERR_NOMEM;
    }
    std::memcpy(page.data(), bytes, size);
    std::uint64_t const checksum = page_checksum(page.data(), amount, offset);
    std::memcpy(page.data() + size - sizeof checksum, &checksum, sizeof checksum);
    return pass_on<&sqlite3_io_methods::xWrite>(file, page.data(), amount, offset);
}

int write_journal(sqlite3_file* file, void const* bytes, int amount, sqlite3_int64 offset) {
    try {
        return paged(file).seal->write(base_of(file), bytes, amount, offset);
    } catch (std::bad_alloc const&) {
        return SQLITE_IOERR_NOMEM;
    }
}

constexpr sqlite3_io_methods database_methods() {
    sqlite3_io_methods methods = passing_methods();
    methods.xClose = close_file;
    methods.xRead = read_file;
    methods.xWrite = write_file;
    return methods;
}

constexpr sqlite3_io_methods journal_methods() {
    sqlite3_io_methods methods = passing_methods();
    methods.xClose = close_file;
    methods.xWrite = write_journal;
    return methods;
}

constexpr sqlite3_io_methods DATABASE_METHODS = database_methods();
constexpr sqlite3_io_methods JOURNAL_METHODS = journal_methods();

// --- The VFS ---

CHECKED_PAGES_VFS& checked(sqlite3_vfs* vfs) {
    return *static_cast<CHECKED_PAGES_VFS*>(vfs);
}

int open_file(sqlite3_vfs* vfs, char const* name, sqlite3_file* file, int flags, int* out_flags) {
    bool const is_journal = (flags & SQLITE_OPEN_MAIN_JOURNAL) != 0;
    if (!is_journal && (flags & SQLITE_OPEN_MAIN_DB) == 0)
        return pass_on<&sqlite3_vfs::xOpen>(vfs, name, file, flags, out_flags);
    PAGED_FILE& opened = make_file<PAGED_FILE>(file);
    try {
        auto buffer = is_journal ? nullptr : std::make_unique<std::vector<char>>();
        auto seal = is_journal ? std::make_unique<JOURNAL_SEAL>() : nullptr;
        int const result = pass_on<&sqlite3_vfs::xOpen>(vfs, name, opened.base, flags, out_flags);
        if (opened.base->pMethods != nullptr) {
            opened.pMethods = is_journal ? &JOURNAL_METHODS : &DATABASE_METHODS;
            opened.bad_page = &checked(vfs).bad_page;
            opened.buffer = buffer.release();
            opened.seal = seal.release();
        }
        if (result != SQLITE_OK || !is_journal)
            return result;
        bool intact = false;
        int const read = check_journal(opened.base, intact);
        checked(vfs).has_bad_journal = read == SQLITE_OK && !intact;
        return read != SQLITE_OK || intact ? read : SQLITE_IOERR_DATA;
    } catch (std::bad_alloc const&) {
        return SQLITE_NOMEM;
    }
}

} // namespace

CHECKED_PAGES::CHECKED_PAGES(sqlite3_vfs* base) : m_vfs(new CHECKED_PAGES_VFS) {
    static std::atomic<unsigned long> s_count{0};
    CHECKED_PAGES_VFS& vfs = *m_vfs;
    vfs.name = "big_store_" + std::to_string(reinterpret_cast<std::uintptr_t>(&s_count)) + '_'
               + std::to_string(++s_count);
    set_base<PAGED_FILE>(vfs, base);
    vfs.zName = vfs.name.c_str();
    vfs.xOpen = open_file;
}

CHECKED_PAGES::~CHECKED_PAGES() = default;

int CHECKED_PAGES::open(char const* path, sqlite3** database, int flags) {
    // SQLite takes a VFS by its name, and only here.
    int result = sqlite3_vfs_register(m_vfs.get(), 0);
    if (result != SQLITE_OK)
        return result;
    result = sqlite3_open_v2(path, database, flags, m_vfs->zName);
    sqlite3_vfs_unregister(m_vfs.get());
    return result;
}

unsigned CHECKED_PAGES::bad_page() const {
    return m_vfs->bad_page;
}

bool CHECKED_PAGES::has_bad_journal() const {
    return m_vfs->has_bad_journal;
}
