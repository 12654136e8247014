#include "faulty_files.h"

#include "passing_vfs.h"

#include <algorithm>
#include <cerrno>
#include <random>

#include <sqlite3.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

// ------------------------------------------------------------------------------------------------
// The VFS
// ------------------------------------------------------------------------------------------------

class FAULTY_FILES::STATE : public PASSING_VFS {
public:
    /// Whether a call fails, and how.
    std::optional<FILE_FAULT> fault_of(FILE_CALL call) {
        if (m_is_gone)
            return FILE_FAULT::ERROR;
        if (!m_call || *m_call != call || --m_calls_left > 0)
            return {};
        m_call.reset();
        m_has_failed = true;
        m_is_gone = m_is_last;
        return m_fault;
    }

    void remember(FILE_STEP step) {
        if (m_records)
            m_steps.push_back(std::move(step));
    }

    std::optional<FILE_CALL> m_call; ///< that is to fail
    int m_calls_left = 0;
    FILE_FAULT m_fault = FILE_FAULT::ERROR;
    bool m_is_last = false;
    bool m_is_gone = false;
    bool m_has_failed = false;
    bool m_records = false;
    std::vector<FILE_STEP> m_steps;
    std::optional<FILE_STEP> m_rename; ///< whose folder is not synced yet
};

namespace {

using STATE = FAULTY_FILES::STATE;

struct FAULTY_FILE : PASSING_FILE {
    STATE* state;
    std::string* path;
};

FAULTY_FILE& faulty(sqlite3_file* file) {
    return *static_cast<FAULTY_FILE*>(file);
}

int error_of(FILE_CALL call, FILE_FAULT fault) {
    switch (call) {
    case FILE_CALL::OPEN: return SQLITE_CANTOPEN;
    case FILE_CALL::WRITE: return fault == FILE_FAULT::DISK_FULL ? SQLITE_FULL : SQLITE_IOERR_WRITE;
    case FILE_CALL::SYNC: return SQLITE_IOERR_FSYNC;
    case FILE_CALL::TRUNCATE: return SQLITE_IOERR_TRUNCATE;
    case FILE_CALL::REMOVE: return SQLITE_IOERR_DELETE;
    case FILE_CALL::RENAME:
    case FILE_CALL::SYNC_FOLDER: break; // SQLite does neither
    }
    return SQLITE_IOERR;
}

/// Does a call, or lets it fail, and remembers what was done.
template <typename WORK>
int attempt(STATE& state, FILE_STEP step, WORK work) {
    FILE_CALL const call = step.call;
    auto const fault = state.fault_of(call);
    if (fault && fault != FILE_FAULT::TOO_LATE)
        return error_of(call, *fault);
    int const result = work();
    if (result == SQLITE_OK)
        state.remember(std::move(step));
    return fault ? error_of(call, *fault) : result;
}

// --- Files ---

int close_file(sqlite3_file* file) {
    delete faulty(file).path;
    return pass_on<&sqlite3_io_methods::xClose>(file);
}

int write_file(sqlite3_file* file, void const* bytes, int amount, sqlite3_int64 offset) {
    FAULTY_FILE& self = faulty(file);
    auto const write = [&](int size) {
        return pass_on<&sqlite3_io_methods::xWrite>(file, bytes, size, offset);
    };
    if (self.state->m_call == FILE_CALL::WRITE && self.state->m_calls_left == 1
        && self.state->m_fault == FILE_FAULT::SHORT_WRITE)
        write(amount / 2);
    FILE_STEP step;
    step.call = FILE_CALL::WRITE;
    step.file = *self.path;
    step.offset = offset;
    step.bytes.assign(static_cast<char const*>(bytes), static_cast<std::size_t>(amount));
    return attempt(*self.state, std::move(step), [&] { return write(amount); });
}

int truncate_file(sqlite3_file* file, sqlite3_int64 size) {
    FILE_STEP step;
    step.call = FILE_CALL::TRUNCATE;
    step.file = *faulty(file).path;
    step.size = size;
    return attempt(*faulty(file).state, std::move(step),
                   [&] { return pass_on<&sqlite3_io_methods::xTruncate>(file, size); });
}

int sync_file(sqlite3_file* file, int flags) {
    FILE_STEP step;
    step.call = FILE_CALL::SYNC;
    step.file = *faulty(file).path;
    return attempt(*faulty(file).state, std::move(step),
                   [&] { return pass_on<&sqlite3_io_methods::xSync>(file, flags); });
}

constexpr sqlite3_io_methods faulty_methods() {
    sqlite3_io_methods methods = passing_methods();
    methods.xClose = close_file;
    methods.xWrite = write_file;
    methods.xTruncate = truncate_file;
    methods.xSync = sync_file;
    return methods;
}

constexpr sqlite3_io_methods FAULTY_METHODS = faulty_methods();

// --- The VFS ---

STATE& state_of(sqlite3_vfs* vfs) {
    return *static_cast<STATE*>(vfs);
}

int open_file(sqlite3_vfs* vfs, char const* name, sqlite3_file* file, int flags, int* out_flags) {
    FAULTY_FILE& opened = make_file<FAULTY_FILE>(file);
    FILE_STEP step;
    step.call = FILE_CALL::OPEN;
    step.file = name != nullptr ? name : "";
    auto path = std::make_unique<std::string>(step.file);
    auto const open = [&] {
        return pass_on<&sqlite3_vfs::xOpen>(vfs, name, opened.base, flags, out_flags);
    };
    int const result = attempt(state_of(vfs), std::move(step), open);
    if (opened.base->pMethods != nullptr) {
        opened.pMethods = &FAULTY_METHODS;
        opened.state = &state_of(vfs);
        opened.path = path.release();
    }
    return result;
}

int remove_file(sqlite3_vfs* vfs, char const* name, int sync_folder) {
    FILE_STEP step;
    step.call = FILE_CALL::REMOVE;
    step.file = name;
    step.is_synced = sync_folder != 0;
    return attempt(state_of(vfs), std::move(step),
                   [&] { return pass_on<&sqlite3_vfs::xDelete>(vfs, name, sync_folder); });
}

// --- What the store does past SQLite ---

STATE* s_state = nullptr; ///< of the object that there is

/// Does a call of the system, or lets it fail with EIO.
template <typename WORK>
int attempt_system_call(STATE& state, FILE_STEP step, WORK work) {
    int const result = attempt(state, std::move(step), work);
    if (result > 0) // of SQLite
        errno = EIO;
    return result == 0 ? 0 : -1;
}

} // namespace

/// Takes the place of the C library's function, for the store too.
extern "C" [[gnu::visibility("default")]] int renameat2(int from_folder, char const* from,
                                                        int to_folder, char const* to,
                                                        unsigned flags) noexcept {
    auto const rename = [=] {
        return static_cast<int>(syscall(SYS_renameat2, from_folder, from, to_folder, to, flags));
    };
    if (s_state == nullptr)
        return rename();
    FILE_STEP step;
    step.call = FILE_CALL::RENAME;
    step.file = from;
    step.new_name = to;
    s_state->m_rename = step;
    return attempt_system_call(*s_state, std::move(step), rename);
}

/// The same. Only the sync of a folder in which a file was renamed is a call of its own.
extern "C" [[gnu::visibility("default")]] int fsync(int descriptor) {
    auto const sync = [=] { return static_cast<int>(syscall(SYS_fsync, descriptor)); };
    struct stat file;
    if (s_state == nullptr || !s_state->m_rename || ::fstat(descriptor, &file) != 0
        || !S_ISDIR(file.st_mode))
        return sync();
    FILE_STEP step = std::move(*s_state->m_rename);
    s_state->m_rename.reset();
    step.call = FILE_CALL::SYNC_FOLDER;
    return attempt_system_call(*s_state, std::move(step), sync);
}

FAULTY_FILES::FAULTY_FILES() : m_state(new STATE) {
    set_base<FAULTY_FILE>(*m_state, sqlite3_vfs_find(nullptr));
    m_state->zName = NAME;
    m_state->xOpen = open_file;
    m_state->xDelete = remove_file;
    sqlite3_vfs_register(m_state.get(), 0);
    s_state = m_state.get();
}

FAULTY_FILES::~FAULTY_FILES() {
    s_state = nullptr;
    sqlite3_vfs_unregister(m_state.get());
}

void FAULTY_FILES::fail(FILE_CALL call, int number, FILE_FAULT fault, bool is_last) {
    m_state->m_call = call;
    m_state->m_calls_left = number;
    m_state->m_fault = fault;
    m_state->m_is_last = is_last;
    m_state->m_is_gone = false;
    m_state->m_has_failed = false;
    m_state->m_rename.reset();
}

bool FAULTY_FILES::repair() {
    m_state->m_call.reset();
    m_state->m_is_gone = false;
    return m_state->m_has_failed;
}

void FAULTY_FILES::record() {
    m_state->m_steps.clear();
    m_state->m_records = true;
}

void FAULTY_FILES::mark(int value) {
    FILE_STEP step;
    step.mark = value;
    m_state->remember(std::move(step));
}

std::vector<FILE_STEP> FAULTY_FILES::recorded() {
    m_state->m_records = false;
    return std::move(m_state->m_steps);
}

// ------------------------------------------------------------------------------------------------
// Power loss
// ------------------------------------------------------------------------------------------------

namespace {

/// A file as a program sees it and as it is on the disk for certain; nothing when there is none.
struct CACHED_FILE {
    std::optional<std::string> seen;
    std::optional<std::string> synced;
};

void write_into(std::string& content, long long offset, std::string const& bytes) {
    auto const begin = static_cast<std::size_t>(offset);
    if (content.size() < begin + bytes.size())
        content.resize(begin + bytes.size());
    content.replace(begin, bytes.size(), bytes);
}

void take(std::map<std::string, CACHED_FILE>& files, FILE_STEP const& step) {
    CACHED_FILE& file = files[step.file];
    switch (step.call) {
    case FILE_CALL::OPEN:
        if (!file.seen)
            file.seen.emplace();
        break;
    case FILE_CALL::WRITE: write_into(*file.seen, step.offset, step.bytes); break;
    case FILE_CALL::TRUNCATE: file.seen->resize(static_cast<std::size_t>(step.size)); break;
    case FILE_CALL::SYNC: file.synced = file.seen; break;
    case FILE_CALL::REMOVE:
        file.seen.reset();
        if (step.is_synced)
            file.synced.reset();
        break;
    case FILE_CALL::RENAME:
        files[step.new_name].seen = file.synced;
        file.seen.reset();
        break;
    case FILE_CALL::SYNC_FOLDER:
        files[step.new_name].synced = files[step.new_name].seen;
        file.synced.reset();
        break;
    }
}

/// Every choice of what is there of each file.
void add_choices(std::vector<DISK>& disks, std::map<std::string, CACHED_FILE> const& files) {
    std::vector<DISK> choices(1);
    for (auto const& [path, file] : files) {
        std::size_t const count = choices.size();
        for (std::size_t i = 0; i < count; ++i) {
            if (file.seen != file.synced) {
                choices.push_back(choices[i]);
                if (file.synced)
                    choices.back()[path] = *file.synced;
            }
            if (file.seen)
                choices[i][path] = *file.seen;
        }
    }
    for (DISK& disk : choices)
        if (std::find(disks.begin(), disks.end(), disk) == disks.end())
            disks.push_back(std::move(disk));
}

/// What a write that was under way leaves: some sectors, and noise in the next one.
std::string torn(std::string const& bytes, std::size_t sectors, std::mt19937& random) {
    constexpr std::size_t SECTOR_SIZE = 512;
    std::size_t const whole = std::min(sectors * SECTOR_SIZE, bytes.size());
    std::string text = bytes.substr(0, whole);
    for (std::size_t i = whole; i < std::min(whole + SECTOR_SIZE, bytes.size()); ++i)
        text += static_cast<char>(random());
    return text;
}

} // namespace

std::vector<DISK> disks_after_power_loss(DISK const& before, std::vector<FILE_STEP> const& record,
                                         std::size_t steps) {
    std::map<std::string, CACHED_FILE> files;
    for (auto const& [path, content] : before)
        files[path] = {content, content};
    std::vector<DISK> disks;
    for (std::size_t i = 0; i < steps; ++i) {
        FILE_STEP const& step = record[i];
        if (step.mark)
            continue;
        bool const is_under_way = i + 1 == steps && step.call == FILE_CALL::WRITE;
        if (is_under_way) {
            std::mt19937 random(static_cast<unsigned>(i)); // the same noise in every run
            for (std::size_t sectors : {std::size_t{0}, step.bytes.size() / 1024}) {
                auto torn_files = files;
                FILE_STEP part = step;
                part.bytes = torn(step.bytes, sectors, random);
                take(torn_files, part);
                add_choices(disks, torn_files);
            }
        }
        take(files, step);
    }
    add_choices(disks, files);
    return disks;
}
