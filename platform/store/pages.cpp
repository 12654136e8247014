// Pages of a database file that carry a checksum.

#include "pages.h"

#include "journal.h"
#include "record.h"

#include <atomic>
#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>
#include <vector>

struct CHECKED_PAGES_VFS : sqlite3_vfs {
    sqlite3_vfs* base = nullptr;
    std::string name; ///< under which SQLite finds this VFS while it opens a database
    unsigned bad_page = 0;
    bool has_bad_journal = false;
};

namespace {

/// A main database file or its journal. The base's own file object stands behind it in memory.
struct PAGED_FILE : sqlite3_file {
    unsigned* bad_page;
    std::vector<char>* buffer; ///< of the page that is being written; null in a journal
    JOURNAL_SEAL* seal;        ///< null in a database
};

constexpr std::size_t FILE_SIZE = (sizeof(PAGED_FILE) + 15) / 16 * 16;

PAGED_FILE& paged(sqlite3_file* file) {
    return *static_cast<PAGED_FILE*>(file);
}

sqlite3_file* base_of(sqlite3_file* file) {
    return reinterpret_cast<sqlite3_file*>(reinterpret_cast<char*>(file) + FILE_SIZE);
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
    return base_of(file)->pMethods->xClose(base_of(file));
}

int read_file(sqlite3_file* file, void* bytes, int amount, sqlite3_int64 offset) {
    sqlite3_file* const base = base_of(file);
    int const result = base->pMethods->xRead(base, bytes, amount, offset);
    if (!is_page(amount, offset))
        return result;
    if (result == SQLITE_IOERR_SHORT_READ) { // behind the end, or the file was cut in the page
        sqlite3_int64 size = 0;
        int const asked = base->pMethods->xFileSize(base, &size);
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
    sqlite3_file* const base = base_of(file);
    if (!is_page(amount, offset))
        return base->pMethods->xWrite(base, bytes, amount, offset);
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
    return base->pMethods->xWrite(base, page.data(), amount, offset);
}

int read_journal(sqlite3_file* file, void* bytes, int amount, sqlite3_int64 offset) {
    return base_of(file)->pMethods->xRead(base_of(file), bytes, amount, offset);
}

int write_journal(sqlite3_file* file, void const* bytes, int amount, sqlite3_int64 offset) {
    try {
        return paged(file).seal->write(base_of(file), bytes, amount, offset);
    } catch (std::bad_alloc const&) {
        return SQLITE_IOERR_NOMEM;
    }
}

int truncate_file(sqlite3_file* file, sqlite3_int64 size) {
    return base_of(file)->pMethods->xTruncate(base_of(file), size);
}

int sync_file(sqlite3_file* file, int flags) {
    return base_of(file)->pMethods->xSync(base_of(file), flags);
}

int file_size(sqlite3_file* file, sqlite3_int64* size) {
    return base_of(file)->pMethods->xFileSize(base_of(file), size);
}

int lock_file(sqlite3_file* file, int level) {
    return base_of(file)->pMethods->xLock(base_of(file), level);
}

int unlock_file(sqlite3_file* file, int level) {
    return base_of(file)->pMethods->xUnlock(base_of(file), level);
}

int check_reserved_lock(sqlite3_file* file, int* is_reserved) {
    return base_of(file)->pMethods->xCheckReservedLock(base_of(file), is_reserved);
}

int control_file(sqlite3_file* file, int operation, void* argument) {
    return base_of(file)->pMethods->xFileControl(base_of(file), operation, argument);
}

int sector_size(sqlite3_file* file) {
    return base_of(file)->pMethods->xSectorSize(base_of(file));
}

int device_characteristics(sqlite3_file* file) {
    return base_of(file)->pMethods->xDeviceCharacteristics(base_of(file));
}

/// Version 1: no shared memory and no memory mapping, whose pages would pass by unchecked.
constexpr sqlite3_io_methods methods(decltype(sqlite3_io_methods::xRead) read,
                                     decltype(sqlite3_io_methods::xWrite) write) {
    return {1,
            close_file,
            read,
            write,
            truncate_file,
            sync_file,
            file_size,
            lock_file,
            unlock_file,
            check_reserved_lock,
            control_file,
            sector_size,
            device_characteristics,
            nullptr,
            nullptr,
            nullptr,
            nullptr,
            nullptr,
            nullptr};
}

constexpr sqlite3_io_methods DATABASE_METHODS = methods(read_file, write_file);
constexpr sqlite3_io_methods JOURNAL_METHODS = methods(read_journal, write_journal);

// --- The VFS ---

CHECKED_PAGES_VFS& checked(sqlite3_vfs* vfs) {
    return *static_cast<CHECKED_PAGES_VFS*>(vfs);
}

sqlite3_vfs* base_of(sqlite3_vfs* vfs) {
    return checked(vfs).base;
}

int open_file(sqlite3_vfs* vfs, char const* name, sqlite3_file* file, int flags, int* out_flags) {
    sqlite3_vfs* const base = base_of(vfs);
    bool const is_journal = (flags & SQLITE_OPEN_MAIN_JOURNAL) != 0;
    if (!is_journal && (flags & SQLITE_OPEN_MAIN_DB) == 0)
        return base->xOpen(base, name, file, flags, out_flags);
    file->pMethods = nullptr;
    base_of(file)->pMethods = nullptr;
    try {
        auto buffer = is_journal ? nullptr : std::make_unique<std::vector<char>>();
        auto seal = is_journal ? std::make_unique<JOURNAL_SEAL>() : nullptr;
        int const result = base->xOpen(base, name, base_of(file), flags, out_flags);
        if (base_of(file)->pMethods != nullptr) { // so that SQLite closes it, opened or not
            PAGED_FILE& opened = paged(file);
            opened.pMethods = is_journal ? &JOURNAL_METHODS : &DATABASE_METHODS;
            opened.bad_page = &checked(vfs).bad_page;
            opened.buffer = buffer.release();
            opened.seal = seal.release();
        }
        if (result != SQLITE_OK || !is_journal)
            return result;
        bool intact = false;
        int const read = check_journal(base_of(file), intact);
        checked(vfs).has_bad_journal = read == SQLITE_OK && !intact;
        return read != SQLITE_OK || intact ? read : SQLITE_IOERR_DATA;
    } catch (std::bad_alloc const&) {
        return SQLITE_NOMEM;
    }
}

int delete_file(sqlite3_vfs* vfs, char const* name, int sync_folder) {
    return base_of(vfs)->xDelete(base_of(vfs), name, sync_folder);
}

int access_file(sqlite3_vfs* vfs, char const* name, int flags, int* answer) {
    return base_of(vfs)->xAccess(base_of(vfs), name, flags, answer);
}

int full_path_name(sqlite3_vfs* vfs, char const* name, int size, char* path) {
    return base_of(vfs)->xFullPathname(base_of(vfs), name, size, path);
}

int randomness(sqlite3_vfs* vfs, int count, char* bytes) {
    return base_of(vfs)->xRandomness(base_of(vfs), count, bytes);
}

int sleep_microseconds(sqlite3_vfs* vfs, int microseconds) {
    return base_of(vfs)->xSleep(base_of(vfs), microseconds);
}

int current_time(sqlite3_vfs* vfs, double* time) {
    return base_of(vfs)->xCurrentTime(base_of(vfs), time);
}

int last_error(sqlite3_vfs* vfs, int size, char* text) {
    return base_of(vfs)->xGetLastError(base_of(vfs), size, text);
}

} // namespace

CHECKED_PAGES::CHECKED_PAGES(sqlite3_vfs* base) : m_vfs(new CHECKED_PAGES_VFS) {
    static std::atomic<unsigned long> s_count{0};
    CHECKED_PAGES_VFS& vfs = *m_vfs;
    vfs.base = base;
    vfs.name = "big_store_" + std::to_string(reinterpret_cast<std::uintptr_t>(&s_count)) + '_'
               + std::to_string(++s_count);
    vfs.iVersion = 1;
    vfs.szOsFile = static_cast<int>(FILE_SIZE) + base->szOsFile;
    vfs.mxPathname = base->mxPathname;
    vfs.zName = vfs.name.c_str();
    vfs.xOpen = open_file;
    vfs.xDelete = delete_file;
    vfs.xAccess = access_file;
    vfs.xFullPathname = full_path_name;
    vfs.xRandomness = randomness;
    vfs.xSleep = sleep_microseconds;
    vfs.xCurrentTime = current_time;
    vfs.xGetLastError = last_error;
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
