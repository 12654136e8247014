#ifndef PDB_SYS_H
#define PDB_SYS_H

/// @file
/// The persistent database as its classes see it: what the library asks of the platform.
///
/// A class whose objects may live in a database has one registration record, a PDB_THUNK_INFO,
/// which gives the class's identity, its size, and the plain functions through which a database
/// allocates, constructs, destroys and serializes objects without knowing the class. A serializer
/// names the members of its object, in order, to a segment; the segment decides whether they are
/// read or written.

#include <typeinfo>
#include <vector>

class MEM_UTILS_CHUNK_ALLOC;

#pragma GCC visibility push(default)

/// A segment of a database, as a registration record's serializer receives it.
class PDB_BASE_SEGMENT {
protected:
    ~PDB_BASE_SEGMENT() = default;
};

/// The kind of segment through which single objects are transferred.
class PDB_ANY_SEG_BASE;

/// What stands behind an object of a polymorphic class.
class PDB_VIRTUAL_THUNK_INFO {};

/// The registration record of a class. It is registered from its construction to its destruction.
class PDB_THUNK_INFO : public PDB_VIRTUAL_THUNK_INFO {
public:
    using MALLOC_FN = void* (*)(PDB_THUNK_INFO const* record, unsigned int size);
    using ALLOCATE_FN = void* (*)(PDB_THUNK_INFO const* record, MEM_UTILS_CHUNK_ALLOC* pool);
    using ALLOCATE_ARRAY_FN = void* (*)(PDB_THUNK_INFO const* record, unsigned int count,
                                        MEM_UTILS_CHUNK_ALLOC* pool);
    using CONSTRUCTOR_FN = void (*)(void* object);
    using DESTRUCTOR_FN = void (*)(void* object);
    using SERIALIZER_FN = void (*)(PDB_BASE_SEGMENT& segment, void* object);
    using VIRTUAL_THUNK_FN = PDB_VIRTUAL_THUNK_INFO const* (*)(void* object);
    using THIS_PTR_FN = void* (*)(void* object);

    /// Registers a class. Records come and go in any order, in static initialisation too.
    ///
    /// @param record      the record's own address; another is an internal error of the standalone
    ///                    platform
    /// @param class_id    identifies the class in stored databases
    /// @param type        the class's run-time type
    /// @param size        bytes of an object
    /// @param module      the module that registers, "BIG" for this library
    /// @param source_path the file that registers, without its extension
    /// @param line        the line tag of the registration
    ///
    /// The nine functions are described where they are declared; the two flags are false for every
    /// class of this library, and a platform gives them their meaning. A class id that is
    /// registered already is an internal error of the standalone platform, which names the place of
    /// the first registration and leaves that as it is. Neither text may be null.
    PDB_THUNK_INFO(PDB_THUNK_INFO const* record, unsigned int class_id, MALLOC_FN malloc_fn,
                   ALLOCATE_FN allocate_fn, ALLOCATE_ARRAY_FN allocate_array_fn,
                   CONSTRUCTOR_FN constructor_fn, DESTRUCTOR_FN destructor_fn,
                   SERIALIZER_FN serializer_fn, VIRTUAL_THUNK_FN virtual_thunk_fn,
                   THIS_PTR_FN this_ptr_fn, bool, bool, std::type_info const& type,
                   unsigned long size, char const* module, char const* source_path, int line);
    /// Unregisters the class.
    ~PDB_THUNK_INFO();
    PDB_THUNK_INFO(PDB_THUNK_INFO const&) = delete;
    PDB_THUNK_INFO& operator=(PDB_THUNK_INFO const&) = delete;

    unsigned int const m_class_id;
    MALLOC_FN const m_malloc_fn;
    ALLOCATE_FN const m_allocate_fn;
    ALLOCATE_ARRAY_FN const m_allocate_array_fn;
    CONSTRUCTOR_FN const m_constructor_fn;
    DESTRUCTOR_FN const m_destructor_fn;
    SERIALIZER_FN const m_serializer_fn;
    VIRTUAL_THUNK_FN const m_virtual_thunk_fn;
    THIS_PTR_FN const m_this_ptr_fn;
    std::type_info const& m_type;
    unsigned long const m_size;
    char const* const m_module;
    char const* const m_source_path;
    int const m_line;
};

/// A segment that transfers objects member by member. A serializer sets m_item_name and m_line
/// before each member and passes the member's address; whether the member is then read or written
/// is the segment's business. The order of the virtual operations is fixed.
template <typename SEGMENT_BASE>
class PDB_SEGMENT_TEMPLATE : public PDB_BASE_SEGMENT {
public:
    /// Transfers a signed 64-bit member.
    virtual void transfer(long long* member) = 0;
    /// Transfers a 32-bit member; enumerations too.
    virtual void transfer(int* member) = 0;
    /// Transfers a double member.
    virtual void transfer(double* member) = 0;
    /// Opens the record of an object.
    virtual void begin_object(PDB_THUNK_INFO const* record, void* object) = 0;
    /// Closes it and says whether the object was transferred whole.
    virtual bool end_object() = 0;

    int m_line = 0;                    ///< line tag of the member that comes next
    char const* m_item_name = nullptr; ///< name of the member that comes next

protected:
    ~PDB_SEGMENT_TEMPLATE() = default;
};

/// Every registered record in the order of registration. A record lives until the library that
/// holds it is unloaded. Safe to call from any thread, and from static initialisation. Standalone
/// platform only.
std::vector<PDB_THUNK_INFO const*> pdb_registered_classes();

/// The registered record with a class id, null when there is none. Safe to call as
/// pdb_registered_classes() is. Standalone platform only.
PDB_THUNK_INFO const* pdb_find_class(unsigned int class_id);

#pragma GCC visibility pop

#endif
