// The registry of stored classes of the standalone platform.

#include "pdb_sys.h"

#include "support/standalone_error.h"

#include <algorithm>
#include <memory>
#include <string>
#include <thread>

#include <dlfcn.h>

namespace {

void* malloc_fn(PDB_THUNK_INFO const*, unsigned int) {
    return nullptr;
}
void* allocate_fn(PDB_THUNK_INFO const*, MEM_UTILS_CHUNK_ALLOC*) {
    return nullptr;
}
void* allocate_array_fn(PDB_THUNK_INFO const*, unsigned int, MEM_UTILS_CHUNK_ALLOC*) {
    return nullptr;
}
void constructor_fn(void*) {}
void destructor_fn(void*) {}
void serializer_fn(PDB_BASE_SEGMENT&, void*) {}
PDB_VIRTUAL_THUNK_INFO const* virtual_thunk_fn(void*) {
    return nullptr;
}
void* this_ptr_fn(void* object) {
    return object;
}

/// A record of a class of this test.
struct RECORD : PDB_THUNK_INFO {
    // Not inlined: g++ 12 takes the address of an object under construction for a use of it.
    [[gnu::noinline]] explicit RECORD(unsigned int class_id, int line = 1)
        : PDB_THUNK_INFO(this, class_id, malloc_fn, allocate_fn, allocate_array_fn, constructor_fn,
                         destructor_fn, serializer_fn, virtual_thunk_fn, this_ptr_fn, false, false,
                         typeid(RECORD), 24, "TEST", "tests/platform_pdb_test", line) {}
};

/// The class ids of this test's records, in the order of registration; the library's are left out.
std::vector<unsigned int> own_class_ids() {
    std::vector<unsigned int> ids;
    for (PDB_THUNK_INFO const* const record : pdb_registered_classes())
        if (std::string(record->m_module) == "TEST")
            ids.push_back(record->m_class_id);
    return ids;
}

using IDS = std::vector<unsigned int>;

RECORD const s_static_record(0x5747);

TEST(PlatformPdb, ARecordOfStaticStorageIsRegisteredBeforeMain) {
    EXPECT_EQ(pdb_find_class(0x5747), &s_static_record);
    EXPECT_EQ(own_class_ids(), IDS{0x5747});
}

TEST(PlatformPdb, ARecordKeepsWhatItWasGiven) {
    RECORD const record(0xd1678001, 20);
    EXPECT_EQ(record.m_class_id, 0xd1678001);
    EXPECT_EQ(record.m_malloc_fn, malloc_fn);
    EXPECT_EQ(record.m_allocate_fn, allocate_fn);
    EXPECT_EQ(record.m_allocate_array_fn, allocate_array_fn);
    EXPECT_EQ(record.m_constructor_fn, constructor_fn);
    EXPECT_EQ(record.m_destructor_fn, destructor_fn);
    EXPECT_EQ(record.m_serializer_fn, serializer_fn);
    EXPECT_EQ(record.m_virtual_thunk_fn, virtual_thunk_fn);
    EXPECT_EQ(record.m_this_ptr_fn, this_ptr_fn);
    EXPECT_TRUE(record.m_type == typeid(RECORD));
    EXPECT_EQ(record.m_size, 24U);
    EXPECT_STREQ(record.m_module, "TEST");
    EXPECT_STREQ(record.m_source_path, "tests/platform_pdb_test");
    EXPECT_EQ(record.m_line, 20);
}

TEST(PlatformPdb, RecordsAreListedInTheOrderOfRegistration) {
    auto third = std::make_unique<RECORD>(3U);
    auto first = std::make_unique<RECORD>(1U);
    auto second = std::make_unique<RECORD>(2U);
    EXPECT_EQ(own_class_ids(), (IDS{0x5747, 3, 1, 2}));
    first.reset(); // from the middle
    EXPECT_EQ(own_class_ids(), (IDS{0x5747, 3, 2}));
    EXPECT_EQ(pdb_find_class(1), nullptr);
    third.reset(); // first come, first gone
    EXPECT_EQ(own_class_ids(), (IDS{0x5747, 2}));
    RECORD const again(3);
    EXPECT_EQ(own_class_ids(), (IDS{0x5747, 2, 3}));
    EXPECT_EQ(pdb_find_class(2), second.get());
    EXPECT_EQ(pdb_find_class(3), &again);
}

TEST(PlatformPdb, AnUnknownClassIdIsFoundAsNull) {
    EXPECT_EQ(pdb_find_class(0), nullptr);
    EXPECT_EQ(pdb_find_class(0xffffffff), nullptr);
}

TEST(PlatformPdb, AClassIdThatIsTakenIsAnInternalErrorAndTheFirstStays) {
    RECORD const first(0x00c0ffee, 20);
    EXPECT_STANDALONE_ERROR(
        RECORD(0x00c0ffee, 32),
        "class id 0x00c0ffee is registered already, by tests/platform_pdb_test:20",
        "platform/standalone/pdb");
    EXPECT_EQ(pdb_find_class(0x00c0ffee), &first);
    EXPECT_EQ(own_class_ids(), (IDS{0x5747, 0x00c0ffee}));
}

TEST(PlatformPdb, AReportOfATakenClassIdMayLookAtTheRegistry) {
    RECORD const first(0x00c0ffee);
    err_set_internal_error_handler([&](char const*, char const*, char const*, int) {
        EXPECT_EQ(pdb_find_class(0x00c0ffee), &first);
        throw 42;
    });
    EXPECT_THROW(RECORD(0x00c0ffee), int);
    err_set_internal_error_handler(nullptr);
}

TEST(PlatformPdb, AnAddressThatIsNotTheRecordsOwnIsAnInternalError) {
    RECORD const other(1);
    EXPECT_STANDALONE_ERROR(PDB_THUNK_INFO(&other, 2, malloc_fn, allocate_fn, allocate_array_fn,
                                           constructor_fn, destructor_fn, serializer_fn,
                                           virtual_thunk_fn, this_ptr_fn, false, false, typeid(int),
                                           4, "TEST", "tests/platform_pdb_test", 1),
                            "record == this", "platform/standalone/pdb");
    EXPECT_EQ(pdb_find_class(2), nullptr);
}

TEST(PlatformPdb, RecordsComeAndGoInSeveralThreads) {
    auto const come_and_go = [](unsigned int base) {
        for (unsigned int i = 0; i < 500; ++i) {
            RECORD const first(base + 2 * i);
            RECORD const second(base + 2 * i + 1);
            EXPECT_EQ(pdb_find_class(base + 2 * i), &first);
            EXPECT_GE(pdb_registered_classes().size(), 3U);
        }
    };
    std::thread one(come_and_go, 0x10000U);
    std::thread other(come_and_go, 0x20000U);
    one.join();
    other.join();
    EXPECT_EQ(own_class_ids(), IDS{0x5747});
}

#ifdef BIG_PDB_MODULE
TEST(PlatformPdb, ALibraryTakesItsRecordsWithItWhenItIsUnloaded) {
    EXPECT_EQ(pdb_find_class(0x10ad), nullptr);
    void* const library = dlopen(BIG_PDB_MODULE, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    ASSERT_NE(pdb_find_class(0x10ad), nullptr);
    EXPECT_STREQ(pdb_find_class(0x10ad)->m_source_path, "tests/platform_pdb_module");
    dlclose(library);
    EXPECT_EQ(pdb_find_class(0x10ad), nullptr);
}
#endif

} // namespace
