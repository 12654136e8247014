#ifndef STORE_FILES_H
#define STORE_FILES_H

/// @file
/// What a store needs of the file system beside what SQLite does.

#include <string>

/// The name of the network file system that a file or folder lies on; empty when the file system is
/// local, or when it cannot be asked.
std::string network_file_system(std::string const& path);

/// Gives a file another name in one step. Nothing happens when the name is taken, unless it may be
/// replaced. The step is on the disk when the call returns. Where the file system cannot refuse to
/// replace a name, the file has both names for a moment.
///
/// @return the system's error number, EEXIST for a name that is taken; 0 when it is done
int move_file(std::string const& from, std::string const& to, bool may_replace);

#endif
