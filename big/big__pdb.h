#ifndef BIG_PDB_H
#define BIG_PDB_H

/// @file
/// The registration record of a stored class and the functions that it gives to a database.
///
/// A class T that is to be stored has a static member `PDB_CLASS_THUNK<T> s_thunk`, a default
/// constructor for the state in which a database creates an object, and a serializer
/// `bool operator<<(PDB_SEGMENT_TEMPLATE<PDB_ANY_SEG_BASE>&)`.

#include "mem_sys.h"
#include "pdb_sys.h"

#include <cstddef>
#include <cstring>
#include <new>
#include <type_traits>
#include <typeinfo>

template <typename T>
class PDB_CLASS_THUNK : public PDB_THUNK_INFO {
public:
    /// @param class_id    identifies the class in stored databases; never changes
    /// @param source_path the file that registers, without its extension
    /// @param line        the line tag of the registration
    PDB_CLASS_THUNK(unsigned int class_id, char const* source_path, int line)
        : PDB_THUNK_INFO(this, class_id, malloc_fn, allocate_fn, allocate_array_fn, constructor_fn,
                         destructor_fn, serializer_fn, virtual_thunk_fn, this_ptr_fn, false, false,
                         typeid(T), sizeof(T), "BIG", source_path, line) {}

    /// Zero bytes, in which nothing is constructed.
    static void* malloc_fn(PDB_THUNK_INFO const*, unsigned int size) {
        return zero_filled(::operator new(size), size);
    }

    /// Room for one object, of the size that the record states, in which nothing is constructed.
    /// What comes from a pool is not zero-filled, and the pool is not asked whether it is enabled.
    static void* allocate_fn(PDB_THUNK_INFO const* record, MEM_UTILS_CHUNK_ALLOC* pool) {
        std::size_t const size = record->m_size;
        if (pool != nullptr)
            return pool->chunk_malloc(size, alignment);
        return zero_filled(::operator new(size), size);
    }

    /// An array in the default state; the address of its first element. A block of an enabled pool
    /// always starts with the count, one of the free store only where the language keeps it there,
    /// so that `delete[]` releases the array:
    ///
    ///                                  T has a destructor     T has none
    ///     enabled pool, not filled     count, elements        count, elements
    ///     free store, zero-filled      count, elements        elements
    static void* allocate_array_fn(PDB_THUNK_INFO const*, unsigned int count,
                                   MEM_UTILS_CHUNK_ALLOC* pool) {
        bool const pooled = pool != nullptr && pool->chunk_allocation_is_enabled();
        bool const counted = pooled || !std::is_trivially_destructible_v<T>;
        std::size_t const size = count * sizeof(T) + (counted ? count_size : 0);
        void* block = pooled ? pool->chunk_malloc(size, alignment)
                             : zero_filled(::operator new[](size), size);
        if (counted)
            block = new (block) unsigned long long(count) + 1;
        T* const elements = static_cast<T*>(block);
        for (unsigned int i = 0; i < count; ++i)
            constructor_fn(elements + i);
        return elements;
    }

    /// Constructs the default state.
    static void constructor_fn(void* object) { new (object) T; }

    /// Ends the object's life; its memory stays.
    static void destructor_fn(void* object) { static_cast<T*>(object)->~T(); }

    /// Names the object's members to the segment.
    static void serializer_fn(PDB_BASE_SEGMENT& segment, void* object) {
        *static_cast<T*>(object) << static_cast<PDB_SEGMENT_TEMPLATE<PDB_ANY_SEG_BASE>&>(segment);
    }

    /// The class's own record: no class derives from T.
    static PDB_VIRTUAL_THUNK_INFO const* virtual_thunk_fn(void*) { return &T::s_thunk; }

    /// The object itself, for the same reason.
    static void* this_ptr_fn(void* object) { return object; }

private:
    /// Of every block that is taken from a pool.
    static constexpr unsigned long alignment = 8;
    /// Bytes of the count in front of an array.
    static constexpr std::size_t count_size = sizeof(unsigned long long);
    static_assert(alignof(T) <= alignment && count_size == 8);
    // So many elements as an unsigned int can count never overflow the size of their block.
    static_assert(sizeof(T) < (std::size_t{1} << 31) && sizeof(std::size_t) == 8);

    static void* zero_filled(void* block, std::size_t size) { return std::memset(block, 0, size); }
};

#endif
