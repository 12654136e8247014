#ifndef STORED_CLASSES_H
#define STORED_CLASSES_H

/// @file
/// Classes that a test registers beside the library's, and what it expects of a store's errors.

#include "mem_sys.h"
#include "pdb_store_sys.h"
#include "pdb_sys.h"

#include <cstring>
#include <new>
#include <string>

#include <gtest/gtest.h>

using STORE_SEGMENT = PDB_SEGMENT_TEMPLATE<PDB_ANY_SEG_BASE>;

/// The registration record of a class of a test, as long as it lives. The class has a serializer
/// `bool operator<<(STORE_SEGMENT&)`, as the library's classes have.
template <typename T>
class TEST_RECORD : public PDB_THUNK_INFO {
public:
    // Not inlined: g++ 12 takes the address of an object under construction for a use of it.
    [[gnu::noinline]] explicit TEST_RECORD(unsigned int class_id, unsigned long size = sizeof(T))
        : PDB_THUNK_INFO(this, class_id, malloc_fn, allocate_fn, allocate_array_fn, constructor_fn,
                         destructor_fn, serializer_fn, virtual_thunk_fn, this_ptr_fn, false, false,
                         typeid(T), size, "TEST", "tests/support/stored_classes", 1) {}

private:
    static void* malloc_fn(PDB_THUNK_INFO const*, unsigned int size) {
        return std::memset(::operator new(size), 0, size);
    }
    static void* allocate_fn(PDB_THUNK_INFO const*, MEM_UTILS_CHUNK_ALLOC*) { return new T; }
    static void* allocate_array_fn(PDB_THUNK_INFO const*, unsigned int count,
                                   MEM_UTILS_CHUNK_ALLOC* pool) {
        if (pool == nullptr || !pool->chunk_allocation_is_enabled())
            return new T[count];
        T* const elements = static_cast<T*>(pool->chunk_malloc(count * sizeof(T), 8));
        for (unsigned int i = 0; i < count; ++i)
            new (elements + i) T;
        return elements;
    }
    static void constructor_fn(void* object) { new (object) T; }
    static void destructor_fn(void* object) { static_cast<T*>(object)->~T(); }
    static void serializer_fn(PDB_BASE_SEGMENT& segment, void* object) {
        *static_cast<T*>(object) << static_cast<STORE_SEGMENT&>(segment);
    }
    static PDB_VIRTUAL_THUNK_INFO const* virtual_thunk_fn(void*) { return nullptr; }
    static void* this_ptr_fn(void* object) { return object; }
};

/// Names one member to a segment.
template <typename MEMBER>
void transfer(STORE_SEGMENT& segment, char const* name, MEMBER& member) {
    segment.m_item_name = name;
    segment.m_line = 0;
    segment.transfer(&member);
}

/// Whether a statement throws PDB_STORE_ERROR of a kind, with a text behind "store ADDRESS: ".
template <typename STATEMENT>
testing::AssertionResult throws_store_error(STATEMENT statement, PDB_STORE_ERROR::KIND kind,
                                            std::string const& text) {
    try {
        statement();
    } catch (PDB_STORE_ERROR const& error) {
        if (error.kind() == kind && error.what() == "store " + error.store() + ": " + text)
            return testing::AssertionSuccess();
        return testing::AssertionFailure()
               << "threw kind " << error.kind() << ", \"" << error.what() << "\" instead of kind "
               << kind << ", \"" << text << '"';
    }
    return testing::AssertionFailure() << "no error; expected \"" << text << '"';
}

/// Expects a statement to throw one PDB_STORE_ERROR: its kind and its text.
#define EXPECT_STORE_ERROR(statement, kind, text)                                                  \
    EXPECT_TRUE(throws_store_error([&] { statement; }, PDB_STORE_ERROR::kind, text))

#endif
