#ifndef STORE_PASSING_VFS_H
#define STORE_PASSING_VFS_H

/// @file
/// A VFS of SQLite that passes every call on to another one, its base: what a layer between the two
/// starts from. The layer puts functions of its own in the places of those that it changes.

#include <cstddef>
#include <new>

#include <sqlite3.h>

/// A VFS over its base. A layer may derive its own from it.
struct PASSING_VFS : sqlite3_vfs {
    PASSING_VFS() : sqlite3_vfs() {}

    sqlite3_vfs* base = nullptr;
};

/// A file of such a VFS. A layer may derive its own from it. The base's file object stands behind
/// it in memory.
struct PASSING_FILE : sqlite3_file {
    sqlite3_file* base;
};

inline sqlite3_vfs* base_of(sqlite3_vfs* vfs) {
    return static_cast<PASSING_VFS*>(vfs)->base;
}

inline sqlite3_file* base_of(sqlite3_file* file) {
    return static_cast<PASSING_FILE*>(file)->base;
}

/// Does with the base what METHOD says.
template <auto METHOD, typename... ARGUMENTS>
int pass_on(sqlite3_vfs* vfs, ARGUMENTS... arguments) {
    return (base_of(vfs)->*METHOD)(base_of(vfs), arguments...);
}

template <auto METHOD, typename... ARGUMENTS>
int pass_on(sqlite3_file* file, ARGUMENTS... arguments) {
    return (base_of(file)->pMethods->*METHOD)(base_of(file), arguments...);
}

/// Bytes from a layer's FILE to the base's file object.
template <typename FILE>
constexpr std::size_t BASE_OFFSET = (sizeof(FILE) + alignof(std::max_align_t) - 1)
                                    / alignof(std::max_align_t) * alignof(std::max_align_t);

/// Makes a VFS without a name whose files are a layer's FILEs. Its xOpen is the layer's to set.
///
/// @param base the VFS that does the work
template <typename FILE>
void set_base(PASSING_VFS& vfs, sqlite3_vfs* base) {
    vfs.base = base;
    vfs.iVersion = 1;
    vfs.szOsFile = static_cast<int>(BASE_OFFSET<FILE>) + base->szOsFile;
    vfs.mxPathname = base->mxPathname;
    vfs.xDelete = pass_on<&sqlite3_vfs::xDelete>;
    vfs.xAccess = pass_on<&sqlite3_vfs::xAccess>;
    vfs.xFullPathname = pass_on<&sqlite3_vfs::xFullPathname>;
    vfs.xRandomness = pass_on<&sqlite3_vfs::xRandomness>;
    vfs.xSleep = pass_on<&sqlite3_vfs::xSleep>;
    vfs.xCurrentTime = pass_on<&sqlite3_vfs::xCurrentTime>;
    vfs.xGetLastError = pass_on<&sqlite3_vfs::xGetLastError>;
}

/// Makes a layer's FILE that is not open in the memory that SQLite gives to xOpen. SQLite closes it
/// when it has methods, whether xOpen succeeds or not.
template <typename FILE>
FILE& make_file(sqlite3_file* memory) {
    FILE& file = *new (memory) FILE{};
    file.base =
        reinterpret_cast<sqlite3_file*>(reinterpret_cast<char*>(memory) + BASE_OFFSET<FILE>);
    file.base->pMethods = nullptr;
    return file;
}

/// What files do. Version 1: no shared memory and no memory mapping, which would pass the layer by.
constexpr sqlite3_io_methods passing_methods() {
    sqlite3_io_methods methods{};
    methods.iVersion = 1;
    methods.xClose = pass_on<&sqlite3_io_methods::xClose>;
    methods.xRead = pass_on<&sqlite3_io_methods::xRead>;
    methods.xWrite = pass_on<&sqlite3_io_methods::xWrite>;
    methods.xTruncate = pass_on<&sqlite3_io_methods::xTruncate>;
    methods.xSync = pass_on<&sqlite3_io_methods::xSync>;
    methods.xFileSize = pass_on<&sqlite3_io_methods::xFileSize>;
    methods.xLock = pass_on<&sqlite3_io_methods::xLock>;
    methods.xUnlock = pass_on<&sqlite3_io_methods::xUnlock>;
    methods.xCheckReservedLock = pass_on<&sqlite3_io_methods::xCheckReservedLock>;
    methods.xFileControl = pass_on<&sqlite3_io_methods::xFileControl>;
    methods.xSectorSize = pass_on<&sqlite3_io_methods::xSectorSize>;
    methods.xDeviceCharacteristics = pass_on<&sqlite3_io_methods::xDeviceCharacteristics>;
    return methods;
}

#endif
