#ifndef STORE_FILES_H
#define STORE_FILES_H

/// @file
/// What a store needs of the file system beside what SQLite does.

#include <chrono>
#include <string>

/// The name of the network file system that a file or folder lies on; empty when the file system is
/// local, or when it cannot be asked.
std::string network_file_system(std::string const& path);

/// Gives a file another name in one step. Nothing happens when the name is taken, unless it may be
/// replaced. Where the file system cannot refuse to replace a name, the file has both names for a
/// moment.
///
/// @return the system's error number, EEXIST for a name that is taken; 0 when it is done
int move_file(std::string const& from, std::string const& to, bool may_replace);

/// Brings the names in the folder of a file to the disk.
///
/// @return the system's error number; 0 when it is done
int sync_folder_of(std::string const& path);

/// Keeps a folder to one holder at a time, of all that ask for it so: handles, threads and
/// programs. It ends with the object, or with the program.
class FOLDER_LOCK {
public:
    /// Waits for the folder of a file.
    FOLDER_LOCK(std::string const& file, std::chrono::milliseconds wait);
    ~FOLDER_LOCK();
    FOLDER_LOCK(FOLDER_LOCK const&) = delete;
    FOLDER_LOCK& operator=(FOLDER_LOCK const&) = delete;

    /// The system's error number, EWOULDBLOCK when the wait was too long; 0 when it is held.
    int error() const { return m_error; }

private:
    int m_descriptor;
    int m_error = 0;
};

#endif
