// The registration records of the stored classes, the functions that they give to a database, and
// the serializers.

#include "recording_platform.h"

#include "big__pdb.h"
#include "big_fraction_sys.h"
#include "big_sys.h"
#include "fractions.h"
#include "mem_sys.h"

#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <numeric>

// Every global allocation of this program, so that a test sees what the library asks for. Memory is
// handed out full of 0xA5, so that a test sees what was not written.

namespace {

struct ALLOCATION {
    const char* form; ///< "new" or "new[]"
    std::size_t size;
    void* block;
};

ALLOCATION last_allocation;
constexpr std::size_t LARGEST_BLOCK = 1u << 28;

void* allocate(const char* form, std::size_t size) {
    last_allocation = {form, size, nullptr};
    void* const block = size <= LARGEST_BLOCK ? std::malloc(size == 0 ? 1 : size) : nullptr;
    if (block == nullptr)
        throw std::bad_alloc();
    last_allocation.block = std::memset(block, 0xA5, size);
    return block;
}

} // namespace

void* operator new(std::size_t size) {
    return allocate("new", size);
}
void* operator new[](std::size_t size) {
    return allocate("new[]", size);
}
// Where g++ puts these in place of their calls, it takes free() for a mistake.
[[gnu::noinline]] void operator delete(void* block) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete[](void* block) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete(void* block, std::size_t) noexcept {
    std::free(block);
}
[[gnu::noinline]] void operator delete[](void* block, std::size_t) noexcept {
    std::free(block);
}

namespace {

using recording::CALL;

/// What the tests expect of each class.
struct STORED_CLASS {
    const char* name;
    PDB_THUNK_INFO const& record;
    unsigned int id;
    std::type_info const& type;
    std::size_t size;
    int line_tag;
    std::string default_bytes; ///< an object in the default state, padding zero
    bool has_destructor;       ///< the language keeps the count of an array
};

/// Little-endian bytes, one word after the other.
std::string bytes_of(std::initializer_list<unsigned long long> words) {
    std::string bytes;
    for (unsigned long long const word : words)
        bytes.append(reinterpret_cast<char const*>(&word), sizeof word);
    return bytes;
}

std::vector<STORED_CLASS> const& stored_classes() {
    static std::vector<STORED_CLASS> const classes = {
        {"BIG_TIME", BIG_TIME::s_thunk, 0xd16780d1, typeid(BIG_TIME), 16, 20, bytes_of({0, 0}),
         true},
        {"BIG_FREQUENCY", BIG_FREQUENCY::s_thunk, 0x4d709ad8, typeid(BIG_FREQUENCY), 8, 32,
         bytes_of({0}), false},
        {"BIG_FRACTION", BIG_FRACTION::s_thunk, 0xa7a44bef, typeid(BIG_FRACTION), 24, 46,
         bytes_of({0, 1, 0}), false},
    };
    return classes;
}

/// Whether a place holds these bytes; names the first that differs.
testing::AssertionResult holds(void const* place, std::string const& expected) {
    char const* const bytes = static_cast<char const*>(place);
    for (std::size_t i = 0; i < expected.size(); ++i)
        if (bytes[i] != expected[i])
            return testing::AssertionFailure()
                   << "byte " << i << " is " << int{static_cast<unsigned char>(bytes[i])}
                   << " instead of " << int{static_cast<unsigned char>(expected[i])};
    return testing::AssertionSuccess();
}

CALL chunk_malloc(std::size_t size) {
    return {"MEM_UTILS_CHUNK_ALLOC::chunk_malloc", {std::to_string(size), "8"}};
}

CALL const chunk_allocation_is_enabled = {"MEM_UTILS_CHUNK_ALLOC::chunk_allocation_is_enabled", {}};

// --- Registration (its place in the load order is in big_load_test.cpp) ---

TEST(BigPdb, RecordsKeepWhatTheyWereGiven) {
    for (STORED_CLASS const& c : stored_classes()) {
        SCOPED_TRACE(c.name);
        EXPECT_EQ(c.record.m_class_id, c.id);
        EXPECT_EQ(c.record.m_type, c.type);
        EXPECT_EQ(c.record.m_size, c.size);
        EXPECT_STREQ(c.record.m_module, "BIG");
        EXPECT_STREQ(c.record.m_source_path, "big/big__pdb");
        EXPECT_EQ(c.record.m_line, c.line_tag);
    }
}

// --- Allocation ---

TEST(BigPdb, MallocGivesZeroBytes) {
    for (STORED_CLASS const& c : stored_classes()) {
        SCOPED_TRACE(c.name);
        for (unsigned int const size : {0u, 1u, 7u, 16u, 4096u}) {
            recording::clear();
            void* const block = c.record.m_malloc_fn(&c.record, size);
            EXPECT_STREQ(last_allocation.form, "new");
            EXPECT_EQ(last_allocation.size, size);
            EXPECT_EQ(last_allocation.block, block);
            EXPECT_TRUE(holds(block, std::string(size, '\0')));
            EXPECT_EQ(recording::calls(), std::vector<CALL>());
            ::operator delete(block);
        }
    }
}

TEST(BigPdb, AllocateWithoutAPoolGivesZeroBytesOfTheRecordsSize) {
    for (STORED_CLASS const& c : stored_classes()) {
        SCOPED_TRACE(c.name);
        void* const block = c.record.m_allocate_fn(&c.record, nullptr);
        EXPECT_STREQ(last_allocation.form, "new");
        EXPECT_EQ(last_allocation.size, c.size);
        EXPECT_EQ(last_allocation.block, block);
        EXPECT_TRUE(holds(block, std::string(c.size, '\0'))) << "nothing is constructed";
        ::operator delete(block);
    }
}

TEST(BigPdb, AllocateReadsTheSizeFromTheRecord) {
    PDB_THUNK_INFO const& given = BIG_TIME::s_thunk;
    PDB_THUNK_INFO const larger(&given, 1, given.m_malloc_fn, given.m_allocate_fn,
                                given.m_allocate_array_fn, given.m_constructor_fn,
                                given.m_destructor_fn, given.m_serializer_fn,
                                given.m_virtual_thunk_fn, given.m_this_ptr_fn, false, false,
                                typeid(int), 100, "TEST", "tests/big_pdb_test", 1);
    ::operator delete(given.m_allocate_fn(&larger, nullptr));
    EXPECT_EQ(last_allocation.size, 100u);
    MEM_UTILS_CHUNK_ALLOC pool;
    recording::clear();
    given.m_allocate_fn(&larger, &pool);
    EXPECT_EQ(recording::calls(), std::vector<CALL>{chunk_malloc(100)});
}

TEST(BigPdb, AllocateFromAPoolNeverAsksWhetherItIsEnabled) {
    for (bool const enabled : {true, false}) {
        for (STORED_CLASS const& c : stored_classes()) {
            SCOPED_TRACE(c.name);
            MEM_UTILS_CHUNK_ALLOC pool(enabled);
            recording::clear();
            void* const object = c.record.m_allocate_fn(&c.record, &pool);
            EXPECT_EQ(recording::calls(), std::vector<CALL>{chunk_malloc(c.size)});
            EXPECT_TRUE(holds(object, std::string(c.size, '\xA5'))) << "not zero-filled";
        }
    }
}

// --- Arrays ---

/// `count` objects in the default state.
std::string default_array(STORED_CLASS const& c, unsigned int count) {
    std::string bytes;
    for (unsigned int i = 0; i < count; ++i)
        bytes += c.default_bytes;
    return bytes;
}

/// Releases an array from the free store as the language does.
void delete_array(STORED_CLASS const& c, void* elements) {
    if (c.type == typeid(BIG_TIME))
        delete[] static_cast<BIG_TIME*>(elements);
    else if (c.type == typeid(BIG_FREQUENCY))
        delete[] static_cast<BIG_FREQUENCY*>(elements);
    else
        delete[] static_cast<BIG_FRACTION*>(elements);
}

constexpr unsigned int COUNTS[] = {0, 1, 2, 3, 1000};

void expect_array_of_the_free_store(STORED_CLASS const& c, unsigned int count, void* elements) {
    ALLOCATION const allocation = last_allocation;
    std::string const count_in_front = c.has_destructor ? bytes_of({count}) : "";
    ASSERT_STREQ(allocation.form, "new[]");
    ASSERT_EQ(allocation.size, count_in_front.size() + count * c.size);
    ASSERT_EQ(elements, static_cast<char*>(allocation.block) + count_in_front.size());
    EXPECT_TRUE(holds(allocation.block, count_in_front + default_array(c, count)));
}

TEST(BigPdb, ArrayWithoutAPoolKeepsItsCountWhereTheLanguageDoes) {
    for (STORED_CLASS const& c : stored_classes()) {
        for (unsigned int const count : COUNTS) {
            SCOPED_TRACE(testing::Message() << count << " of " << c.name);
            recording::clear();
            void* const elements = c.record.m_allocate_array_fn(&c.record, count, nullptr);
            expect_array_of_the_free_store(c, count, elements);
            EXPECT_EQ(recording::calls(), std::vector<CALL>());
            delete_array(c, elements);
        }
    }
}

TEST(BigPdb, ArrayWithADisabledPoolComesFromTheFreeStoreToo) {
    for (STORED_CLASS const& c : stored_classes()) {
        for (unsigned int const count : COUNTS) {
            SCOPED_TRACE(testing::Message() << count << " of " << c.name);
            MEM_UTILS_CHUNK_ALLOC pool(false);
            recording::clear();
            void* const elements = c.record.m_allocate_array_fn(nullptr, count, &pool);
            expect_array_of_the_free_store(c, count, elements);
            EXPECT_EQ(recording::calls(), std::vector<CALL>{chunk_allocation_is_enabled});
            delete_array(c, elements);
        }
    }
}

TEST(BigPdb, ArrayFromAnEnabledPoolAlwaysKeepsItsCount) {
    for (STORED_CLASS const& c : stored_classes()) {
        for (unsigned int const count : COUNTS) {
            SCOPED_TRACE(testing::Message() << count << " of " << c.name);
            MEM_UTILS_CHUNK_ALLOC pool(true);
            recording::clear();
            char* const elements =
                static_cast<char*>(c.record.m_allocate_array_fn(&c.record, count, &pool));
            std::vector<CALL> const calls = {chunk_allocation_is_enabled,
                                             chunk_malloc(count * c.size + 8)};
            EXPECT_EQ(recording::calls(), calls);
            EXPECT_TRUE(holds(elements - 8, bytes_of({count})));
            std::string expected = default_array(c, count);
            if (c.type
                == typeid(BIG_TIME)) // the padding behind the unit is left as the pool gave it
                for (std::size_t i = 12; i < expected.size(); i += 16)
                    expected.replace(i, 4, 4, '\xA5');
            EXPECT_TRUE(holds(elements, expected));
        }
    }
}

TEST(BigPdb, SizesOfTheExampleArrays) {
    MEM_UTILS_CHUNK_ALLOC pool;
    PDB_THUNK_INFO const& fraction = BIG_FRACTION::s_thunk;
    PDB_THUNK_INFO const& time = BIG_TIME::s_thunk;

    void* elements = fraction.m_allocate_array_fn(&fraction, 3, nullptr);
    EXPECT_EQ(last_allocation.size, 72u);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(text_of(static_cast<BIG_FRACTION*>(elements)[i]), "0/1 and 0");
    delete[] static_cast<BIG_FRACTION*>(elements);

    recording::clear();
    fraction.m_allocate_array_fn(&fraction, 3, &pool);
    EXPECT_EQ(recording::calls_of("MEM_UTILS_CHUNK_ALLOC::chunk_malloc"),
              std::vector<CALL>{chunk_malloc(80)});

    elements = time.m_allocate_array_fn(&time, 0, nullptr);
    EXPECT_EQ(last_allocation.size, 8u);
    EXPECT_EQ(elements, static_cast<char*>(last_allocation.block) + 8);
    delete[] static_cast<BIG_TIME*>(elements);
}

TEST(BigPdb, LargestArrayDoesNotWrap) {
    for (STORED_CLASS const& c : stored_classes()) {
        SCOPED_TRACE(c.name);
        EXPECT_THROW(c.record.m_allocate_array_fn(&c.record, 0xFFFFFFFF, nullptr), std::bad_alloc);
        EXPECT_EQ(last_allocation.size, 0xFFFFFFFFull * c.size + (c.has_destructor ? 8 : 0));
    }
}

// --- Objects in memory, as docs/records.md shows them ---

TEST(BigPdb, ObjectIsItsMembersOneBehindTheOther) {
    BIG_TIME const time("2.5", BIG_TIME::UNIT_NS, false);
    EXPECT_TRUE(holds(&time, std::string("\xc4\x09\0\0\0\0\0\0\x03\0\0\0", 12)));
    BIG_FREQUENCY const frequency(1000); // the period of 1 GHz
    EXPECT_TRUE(holds(&frequency, std::string("\0\0\0\0\x65\xcd\xcd\x41", 8)));
    BIG_FRACTION const fraction(3, 2);
    EXPECT_TRUE(holds(&fraction, std::string("\x03\0\0\0\0\0\0\0\x02\0\0\0\0\0\0\0"
                                             "\0\0\0\0\0\0\xf8\x3f",
                                             24)));
}

// --- Construction and destruction ---

TEST(BigPdb, ConstructorMakesTheDefaultState) {
    for (STORED_CLASS const& c : stored_classes()) {
        SCOPED_TRACE(c.name);
        alignas(8) char place[24];
        std::memset(place, 0xA5, sizeof place);
        c.record.m_constructor_fn(place);
        std::string expected = c.default_bytes;
        if (c.type == typeid(BIG_TIME))
            expected.replace(12, 4, 4, '\xA5'); // padding
        EXPECT_TRUE(holds(place, expected));
        EXPECT_TRUE(holds(place + c.size, std::string(sizeof place - c.size, '\xA5')));
    }
}

TEST(BigPdb, DestructorReleasesNoMemory) {
    for (STORED_CLASS const& c : stored_classes()) {
        SCOPED_TRACE(c.name);
        alignas(8) char place[24] = {}; // releasing it would end the program
        c.record.m_constructor_fn(place);
        recording::clear();
        c.record.m_destructor_fn(place);
        EXPECT_EQ(recording::calls(), std::vector<CALL>());
    }
}

TEST(BigPdb, EveryObjectHasItsClassOwnRecordAndAddress) {
    for (STORED_CLASS const& c : stored_classes()) {
        SCOPED_TRACE(c.name);
        alignas(8) char place[24] = {};
        EXPECT_EQ(c.record.m_virtual_thunk_fn(place), &c.record);
        EXPECT_EQ(c.record.m_virtual_thunk_fn(nullptr), &c.record);
        EXPECT_EQ(c.record.m_this_ptr_fn(place), place);
        EXPECT_EQ(c.record.m_this_ptr_fn(nullptr), nullptr);
    }
}

// --- Serializers ---

/// A segment that writes down what it is asked to do. It gives the integers 1, 2, ... and the
/// doubles 0.5, 1.5, ... to an object that it reads.
class SEGMENT final : public PDB_SEGMENT_TEMPLATE<PDB_ANY_SEG_BASE> {
public:
    explicit SEGMENT(bool reads, bool result = true) : m_reads(reads), m_result(result) {}

    void transfer(long long* member) override {
        if (m_reads)
            *member = ++m_given;
        log("long long", std::to_string(*member));
    }
    void transfer(int* member) override {
        if (m_reads)
            *member = ++m_given;
        log("int", std::to_string(*member));
    }
    void transfer(double* member) override {
        if (m_reads)
            *member = m_given++ + 0.5;
        log("double", text_of(*member));
    }
    void begin_object(PDB_THUNK_INFO const* record, void* object) override {
        m_record = record;
        m_object = object;
        m_log.push_back("begin");
    }
    bool end_object() override {
        m_log.push_back("end");
        return m_result;
    }

    std::vector<std::string> m_log;
    PDB_THUNK_INFO const* m_record = nullptr;
    void* m_object = nullptr;

private:
    void log(const char* type, std::string const& value) {
        m_log.push_back(std::string(type) + ' ' + m_item_name + " @" + std::to_string(m_line)
                        + " = " + value);
    }

    bool m_reads;
    bool m_result;
    int m_given = 0;
};

using LOG = std::vector<std::string>;

TEST(BigPdb, TimeNamesItsMembersInOrder) {
    BIG_TIME time(5, BIG_TIME::UNIT_NS);
    SEGMENT writer(false);
    EXPECT_TRUE(time << writer);
    EXPECT_EQ(writer.m_log,
              (LOG{"begin", "long long m_value @14 = 5000", "int m_unit @15 = 3", "end"}));
    EXPECT_EQ(writer.m_record, &BIG_TIME::s_thunk);
    EXPECT_EQ(writer.m_object, &time);

    SEGMENT reader(true);
    EXPECT_TRUE(time << reader);
    EXPECT_EQ(time.get_time_value(), 1);
    EXPECT_EQ(time.get_time_unit(), BIG_TIME::UNIT_PS);
}

TEST(BigPdb, FrequencyNamesItsMember) {
    BIG_FREQUENCY frequency(1000); // the period of 1 GHz
    SEGMENT writer(false);
    EXPECT_TRUE(frequency << writer);
    EXPECT_EQ(writer.m_log, (LOG{"begin", "double m_value @27 = 1e+09", "end"}));
    EXPECT_EQ(writer.m_record, &BIG_FREQUENCY::s_thunk);
    EXPECT_EQ(writer.m_object, &frequency);

    SEGMENT reader(true);
    EXPECT_TRUE(frequency << reader);
    EXPECT_EQ(frequency.get_value(), 0.5);
}

TEST(BigPdb, FractionNamesItsMembersInOrder) {
    BIG_FRACTION fraction(3, 4);
    SEGMENT writer(false);
    EXPECT_TRUE(fraction << writer);
    EXPECT_EQ(writer.m_log,
              (LOG{"begin", "long long m_numerator @39 = 3", "long long m_denominator @40 = 4",
                   "double m_value @41 = 0.75", "end"}));
    EXPECT_EQ(writer.m_record, &BIG_FRACTION::s_thunk);
    EXPECT_EQ(writer.m_object, &fraction);

    SEGMENT reader(true);
    EXPECT_TRUE(fraction << reader);
    EXPECT_EQ(text_of(fraction), "1/2 and 2.5");
}

TEST(BigPdb, NumeratorOfAnInexactFractionIsStoredAsItIs) {
    // What division by a zero fraction leaves: the product of the numerator and the divisor's
    // denominator.
    BIG_FRACTION fraction(7, 2);
    fraction /= BIG_FRACTION(0, 1);
    SEGMENT writer(false);
    fraction << writer;
    EXPECT_EQ(writer.m_log,
              (LOG{"begin", "long long m_numerator @39 = 7", "long long m_denominator @40 = 0",
                   "double m_value @41 = inf", "end"}));
}

TEST(BigPdb, ResultIsThatOfEndObject) {
    BIG_TIME time;
    BIG_FREQUENCY frequency;
    BIG_FRACTION fraction;
    for (bool const result : {false, true}) {
        SEGMENT segment(false, result);
        EXPECT_EQ(time << segment, result);
        EXPECT_EQ(frequency << segment, result);
        EXPECT_EQ(fraction << segment, result);
    }
}

TEST(BigPdb, SerializerOfTheRecordIsTheClassOwn) {
    BIG_TIME time(5, BIG_TIME::UNIT_NS);
    BIG_FREQUENCY frequency(1000);
    BIG_FRACTION fraction(3, 4);
    auto const log_of = [](PDB_THUNK_INFO const& record, void* object) {
        SEGMENT segment(false);
        record.m_serializer_fn(segment, object);
        EXPECT_EQ(segment.m_record, &record);
        EXPECT_EQ(segment.m_object, object);
        return segment.m_log;
    };
    EXPECT_EQ(log_of(BIG_TIME::s_thunk, &time),
              (LOG{"begin", "long long m_value @14 = 5000", "int m_unit @15 = 3", "end"}));
    EXPECT_EQ(log_of(BIG_FREQUENCY::s_thunk, &frequency),
              (LOG{"begin", "double m_value @27 = 1e+09", "end"}));
    EXPECT_EQ(log_of(BIG_FRACTION::s_thunk, &fraction),
              (LOG{"begin", "long long m_numerator @39 = 3", "long long m_denominator @40 = 4",
                   "double m_value @41 = 0.75", "end"}));
}

TEST(BigPdb, SerializersCallNothingButTheSegment) {
    BIG_TIME time;
    BIG_FREQUENCY frequency;
    BIG_FRACTION fraction;
    SEGMENT segment(false);
    recording::clear();
    time << segment;
    frequency << segment;
    fraction << segment;
    EXPECT_EQ(recording::calls(), std::vector<CALL>());
}

} // namespace
