// The registry of the classes whose objects may live in a database.

#include "pdb_sys.h"

#include "frame.h"
#include "mem_sys.h"

#include <algorithm>
#include <mutex>
#include <string>

#define PLATFORM_SOURCE_PATH "platform/standalone/pdb"

namespace {

/// Every registered record in the order of registration. Records come and go while libraries are
/// loaded and unloaded, before main() and after it, so the registry is made on first use and never
/// destroyed.
struct REGISTRY {
    std::mutex mutex;
    std::vector<PDB_THUNK_INFO const*> records;

    /// The record with a class id, null when there is none. The caller holds the mutex.
    PDB_THUNK_INFO const* find(unsigned int class_id) const {
        auto const found =
            std::find_if(records.begin(), records.end(), [=](PDB_THUNK_INFO const* record) {
                return record->m_class_id == class_id;
            });
        return found == records.end() ? nullptr : *found;
    }
};

REGISTRY& registry() {
    static auto* const instance = new REGISTRY;
    return *instance;
}

/// Adds a record unless its class id is taken. Returns why not, empty when it was added.
std::string add(PDB_THUNK_INFO const* record) {
    std::lock_guard<std::mutex> const lock(registry().mutex);
    std::string refusal;
    if (PDB_THUNK_INFO const* const holder = registry().find(record->m_class_id))
        MEM_DETAIL::stl_raw_sprintf(&refusal, "class id 0x%08x is registered already, by %s:%d",
                                    record->m_class_id, holder->m_source_path, holder->m_line);
    else
        registry().records.push_back(record);
    return refusal;
}

} // namespace

PDB_THUNK_INFO::PDB_THUNK_INFO(PDB_THUNK_INFO const* record, unsigned int class_id,
                               MALLOC_FN malloc_fn, ALLOCATE_FN allocate_fn,
                               ALLOCATE_ARRAY_FN allocate_array_fn, CONSTRUCTOR_FN constructor_fn,
                               DESTRUCTOR_FN destructor_fn, SERIALIZER_FN serializer_fn,
                               VIRTUAL_THUNK_FN virtual_thunk_fn, THIS_PTR_FN this_ptr_fn, bool,
                               bool, std::type_info const& type, unsigned long size,
                               char const* module, char const* source_path, int line)
    : m_class_id(class_id), m_malloc_fn(malloc_fn), m_allocate_fn(allocate_fn),
      m_allocate_array_fn(allocate_array_fn), m_constructor_fn(constructor_fn),
      m_destructor_fn(destructor_fn), m_serializer_fn(serializer_fn),
      m_virtual_thunk_fn(virtual_thunk_fn), m_this_ptr_fn(this_ptr_fn), m_type(type), m_size(size),
      m_module(module), m_source_path(source_path), m_line(line) {
    PLATFORM_REQUIRE(record == this);

    std::string const refusal = add(this); // without the lock from here: a report may call back
    if (!refusal.empty())
        PLATFORM_FAIL(refusal.c_str());
}

PDB_THUNK_INFO::~PDB_THUNK_INFO() {
    std::lock_guard<std::mutex> const lock(registry().mutex);
    std::vector<PDB_THUNK_INFO const*>& records = registry().records;
    records.erase(std::find(records.begin(), records.end(), this));
}

std::vector<PDB_THUNK_INFO const*> pdb_registered_classes() {
    std::lock_guard<std::mutex> const lock(registry().mutex);
    return registry().records;
}

PDB_THUNK_INFO const* pdb_find_class(unsigned int class_id) {
    std::lock_guard<std::mutex> const lock(registry().mutex);
    return registry().find(class_id);
}
