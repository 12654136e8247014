// What a store needs of the file system beside what SQLite does.

#include "files.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <sstream>
#include <string_view>
#include <thread>

#include <fcntl.h>
#include <sys/file.h>
#include <sys/stat.h>
#include <sys/statfs.h>
#include <sys/sysmacros.h>
#include <unistd.h>

// ------------------------------------------------------------------------------------------------
// Network file systems
// ------------------------------------------------------------------------------------------------

namespace {

struct FILE_SYSTEM_ROW {
    unsigned type; ///< as statfs() has it
    char const* name;
};

constexpr FILE_SYSTEM_ROW NETWORK_FILE_SYSTEMS[] = {
    {0x00006969, "NFS"},   {0x0000517b, "SMB"},    {0xff534d42, "CIFS"}, {0xfe534d42, "SMB2"},
    {0x01021997, "9P"},    {0x5346414f, "AFS"},    {0x6b414653, "AFS"},  {0x73757245, "Coda"},
    {0x00c36400, "Ceph"},  {0x0bd00bd0, "Lustre"}, {0x47504653, "GPFS"}, {0x19830326, "BeeGFS"},
    {0xaad7aaea, "PanFS"}, {0x0000564c, "NCP"},
};

constexpr unsigned FUSE = 0x65735546; ///< anything; only its mount says what

/// The types of mounts through FUSE that reach over a network, as in "fuse.sshfs".
constexpr std::string_view NETWORK_FUSE_TYPES[] = {
    "sshfs",   "glusterfs", "ceph",      "s3fs",    "rclone",   "davfs",  "curlftpfs", "juicefs",
    "gcsfuse", "goofys",    "seaweedfs", "moosefs", "lizardfs", "cvmfs2", "smbnetfs",
};

/// The type of the mount that holds a device, as /proc/self/mountinfo has it:
///
///     36 35 0:52 / /mnt/far rw,noatime shared:1 - fuse.sshfs host:/ rw,user_id=1000
std::string mount_type(dev_t device) {
    std::string const wanted = std::to_string(major(device)) + ':' + std::to_string(minor(device));
    std::ifstream mounts("/proc/self/mountinfo");
    for (std::string line; std::getline(mounts, line);) {
        std::istringstream fields(line);
        std::string id, parent, numbers;
        fields >> id >> parent >> numbers;
        std::size_t const separator = line.find(" - ");
        if (numbers == wanted && separator != std::string::npos) {
            std::size_t const begin = separator + 3;
            return line.substr(begin, line.find(' ', begin) - begin);
        }
    }
    return "";
}

} // namespace

std::string network_file_system(std::string const& path) {
    struct statfs file_system;
    struct stat file;
    if (::statfs(path.c_str(), &file_system) != 0 || ::stat(path.c_str(), &file) != 0)
        return "";
    auto const type = static_cast<unsigned>(file_system.f_type);
    for (FILE_SYSTEM_ROW const& row : NETWORK_FILE_SYSTEMS)
        if (row.type == type)
            return row.name;
    if (type != FUSE)
        return "";
    std::string const mount = mount_type(file.st_dev);
    std::string const kind = mount.substr(std::min(mount.size(), std::string_view("fuse.").size()));
    bool const is_network =
        std::find(std::begin(NETWORK_FUSE_TYPES), std::end(NETWORK_FUSE_TYPES), kind)
        != std::end(NETWORK_FUSE_TYPES);
    return is_network ? kind : "";
}

// ------------------------------------------------------------------------------------------------
// Names
// ------------------------------------------------------------------------------------------------

namespace {

/// Opens the folder of a file. Returns a descriptor, -1 when it cannot be opened.
int open_folder_of(std::string const& path) {
    std::string const folder = std::filesystem::path(path).parent_path();
    return ::open(folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
}

} // namespace

int move_file(std::string const& from, std::string const& to, bool may_replace) {
    unsigned const flags = may_replace ? 0 : RENAME_NOREPLACE;
    if (::renameat2(AT_FDCWD, from.c_str(), AT_FDCWD, to.c_str(), flags) != 0) {
        // NFS, some file systems in user space and old kernels do not know the flag. A second name
        // does not replace another file's either.
        bool const is_unknown =
            !may_replace && (errno == EINVAL || errno == ENOSYS || errno == ENOTSUP);
        if (!is_unknown || ::link(from.c_str(), to.c_str()) != 0 || ::unlink(from.c_str()) != 0)
            return errno;
    }
    return 0;
}

int sync_folder_of(std::string const& path) {
    int const descriptor = open_folder_of(path);
    if (descriptor < 0)
        return errno;
    int const error = ::fsync(descriptor) == 0 ? 0 : errno;
    ::close(descriptor);
    return error;
}

FOLDER_LOCK::FOLDER_LOCK(std::string const& file, std::chrono::milliseconds wait)
    : m_descriptor(open_folder_of(file)) {
    if (m_descriptor < 0) {
        m_error = errno;
        return;
    }
    auto const deadline = std::chrono::steady_clock::now() + wait;
    while (::flock(m_descriptor, LOCK_EX | LOCK_NB) != 0) {
        if (errno == EINTR)
            continue;
        if (errno != EWOULDBLOCK || std::chrono::steady_clock::now() >= deadline) {
            m_error = errno;
            return;
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }
}

FOLDER_LOCK::~FOLDER_LOCK() {
    if (m_descriptor >= 0)
        ::close(m_descriptor);
}
