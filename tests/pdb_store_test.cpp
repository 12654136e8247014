// The standalone database as its users see it, over every engine of this build.

#include "pdb_store_sys.h"

#include "big_fraction_sys.h"
#include "big_sys.h"
#include "store_places.h"
#include "stored_classes.h"

#include <algorithm>
#include <bit>
#include <climits>
#include <cmath>
#include <cstring>
#include <limits>
#include <map>
#include <numeric>
#include <random>
#include <string>
#include <thread>
#include <vector>

#include <sys/wait.h>
#include <unistd.h>

namespace {

constexpr std::size_t MORE_THAN_A_BATCH = 2345; // of rows that are read at a time

// ------------------------------------------------------------------------------------------------
// Classes of this test
// ------------------------------------------------------------------------------------------------

/// A class with every type of member, an object within the object, and names of members that the
/// store has uses of its own for.
struct PLACED {
    long long m_count = -1;
    int m_kind = 7;
    double m_x = -0.0;
    BIG_TIME m_delay;
    double m_name = 1.5;
    long long m_NAME = 2;
    int m_quote = 3;

    bool operator<<(STORE_SEGMENT& segment) {
        segment.begin_object(nullptr, this);
        transfer(segment, "m_count", m_count);
        transfer(segment, "m_kind", m_kind);
        transfer(segment, "m_x", m_x);
        segment.m_item_name = "m_delay";
        m_delay << segment;
        transfer(segment, "name", m_name);
        transfer(segment, "NAME", m_NAME);
        transfer(segment, "it's \"quoted\"; DROP TABLE", m_quote);
        return segment.end_object();
    }
};

TEST_RECORD<PLACED> const s_placed(0x7e570001);

/// The bits of every member, one behind the other.
std::vector<std::uint64_t> bits_of(PLACED const& value) {
    return {static_cast<std::uint64_t>(value.m_count),
            static_cast<std::uint64_t>(value.m_kind),
            std::bit_cast<std::uint64_t>(value.m_x),
            static_cast<std::uint64_t>(value.m_delay.get_time_value()),
            static_cast<std::uint64_t>(value.m_delay.get_time_unit()),
            std::bit_cast<std::uint64_t>(value.m_name),
            static_cast<std::uint64_t>(value.m_NAME),
            static_cast<std::uint64_t>(value.m_quote)};
}

std::vector<std::uint64_t> bits_of(BIG_TIME const& value) {
    return {static_cast<std::uint64_t>(value.get_time_value()),
            static_cast<std::uint64_t>(value.get_time_unit())};
}

std::vector<std::uint64_t> bits_of(BIG_FREQUENCY const& value) {
    return {std::bit_cast<std::uint64_t>(value.get_value())};
}

/// A class whose object holds bytes that a test chooses, for the library's classes that cannot be
/// given every value.
template <typename T>
T of_bytes(std::vector<std::uint64_t> const& bytes) {
    T value;
    std::memcpy(static_cast<void*>(&value), bytes.data(), sizeof value);
    return value;
}

BIG_TIME time_of(long long value, int unit) {
    return of_bytes<BIG_TIME>(
        {static_cast<std::uint64_t>(value), static_cast<std::uint32_t>(unit)});
}

struct UNREGISTERED {
    bool operator<<(STORE_SEGMENT& segment) {
        segment.begin_object(nullptr, this);
        return segment.end_object();
    }
};

/// A class that says other members for some objects, or that it failed.
struct FICKLE {
    int m_way = 0;

    bool operator<<(STORE_SEGMENT& segment) {
        long long other = 0;
        segment.begin_object(nullptr, this);
        if (m_way == 1)
            transfer(segment, "m_other", other);
        else
            transfer(segment, "m_way", m_way);
        if (m_way == 2)
            transfer(segment, "m_other", other);
        return segment.end_object();
    }
};

TEST_RECORD<FICKLE> const s_fickle(0x7e570002);

/// A class with more or fewer members than a store keeps.
struct WIDE {
    inline static int s_members = 0;
    int m_value = 5;

    bool operator<<(STORE_SEGMENT& segment) {
        segment.begin_object(nullptr, this);
        for (int i = 0; i < s_members; ++i)
            transfer(segment, "m_value", m_value);
        return segment.end_object();
    }
};

/// A class without members.
struct BARE {
    bool operator<<(STORE_SEGMENT& segment) {
        segment.begin_object(nullptr, this);
        return segment.end_object();
    }
};

TEST_RECORD<BARE> const s_bare(0x7e570003);

long long const INTEGERS[] = {0,
                              1,
                              -1,
                              INT_MAX,
                              INT_MIN,
                              1ll << 53,
                              (1ll << 53) + 1,
                              LLONG_MAX,
                              LLONG_MIN,
                              LLONG_MAX - 1,
                              LLONG_MIN + 1};

/// One of every class of double: bits, because several of them do not equal themselves.
std::uint64_t const DOUBLES[] = {
    0x0000000000000000, // 0
    0x8000000000000000, // -0
    0x0000000000000001, // the smallest subnormal
    0x800fffffffffffff, // the largest negative subnormal
    0x0010000000000000, // the smallest normal
    0x3ff0000000000000, // 1
    0x3fb999999999999a, // 0.1
    0x7fefffffffffffff, // the largest
    0xffefffffffffffff, // the lowest
    0x7ff0000000000000, // infinity
    0xfff0000000000000, // -infinity
    0x7ff8000000000000, // not a number
    0xfff8000000000000, // not a number, negative
    0x7ff8000000abcdef, // not a number, with a payload
    0x7ff0000000000001, // a signalling one
    0xfff7ffffffffffff, // another
};

// ------------------------------------------------------------------------------------------------
// The fixture
// ------------------------------------------------------------------------------------------------

class PdbStore : public testing::TestWithParam<STORE_ENGINE> {
protected:
    void SetUp() override {
        if (!m_place->why_not().empty())
            GTEST_SKIP() << m_place->why_not();
    }

    PDB_STORE open(PDB_STORE_OPTIONS::ACCESS access = PDB_STORE_OPTIONS::CREATE) const {
        PDB_STORE_OPTIONS options;
        options.access = access;
        return PDB_STORE(m_place->address(), options);
    }
    PDB_STORE open(PDB_STORE_OPTIONS const& options) const {
        return PDB_STORE(m_place->address(), options);
    }

    std::unique_ptr<STORE_PLACE> m_place = GetParam().make_place();
};

INSTANTIATE_TEST_SUITE_P(Engines, PdbStore, testing::ValuesIn(store_engines()),
                         [](auto const& engine) { return engine.param.name; });

/// What list() shows, a line for each name.
std::vector<std::string> listed(PDB_STORE& store, PDB_STORE_SELECTION const& selection = {}) {
    std::vector<std::string> lines;
    store.list(selection, [&](PDB_STORE_ENTRY const& entry) {
        lines.push_back(entry.name + ' ' + entry.class_name
                        + (entry.is_array ? '[' + std::to_string(entry.count) + ']' : ""));
    });
    return lines;
}

using LINES = std::vector<std::string>;

std::string dump_of(PDB_STORE& store) {
    std::string text;
    store.dump([&](std::string_view line) { text += line; });
    return text;
}

unsigned long long load_text(PDB_STORE& store, std::string const& text) {
    std::size_t begin = 0;
    return store.load([&](std::string& line) {
        if (begin >= text.size())
            return false;
        std::size_t const end = std::min(text.find('\n', begin), text.size() - 1) + 1;
        line = text.substr(begin, end - begin);
        begin = end;
        return true;
    });
}

std::vector<std::string> problems_of(PDB_STORE& store) {
    std::vector<std::string> problems;
    bool const is_good =
        store.check([&](std::string const& problem) { problems.push_back(problem); });
    EXPECT_EQ(is_good, problems.empty());
    return problems;
}

/// Saves a value, and loads it with a handle of its own.
template <typename T>
T after_a_round_trip(STORE_PLACE const& place, T const& value) {
    PDB_STORE(place.address()).put("value", value);
    PDB_STORE reopened(place.address());
    T loaded;
    EXPECT_TRUE(reopened.get("value", loaded));
    return loaded;
}

// ------------------------------------------------------------------------------------------------
// Bits
// ------------------------------------------------------------------------------------------------

TEST_P(PdbStore, EveryTimeComesBackWithAllItsBits) {
    PDB_STORE store = open();
    for (int unit : {-1, 0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, INT_MAX, INT_MIN}) {
        for (long long const value : INTEGERS) {
            BIG_TIME const time = time_of(value, unit);
            BIG_TIME loaded;
            store.begin();
            store.put("time", time);
            ASSERT_TRUE(store.get("time", loaded));
            store.commit();
            EXPECT_EQ(bits_of(loaded), bits_of(time)) << value << " in unit " << unit;
        }
    }
    EXPECT_EQ(bits_of(after_a_round_trip(*m_place, time_of(LLONG_MIN, 14))),
              bits_of(time_of(LLONG_MIN, 14)));
}

TEST_P(PdbStore, EveryDoubleComesBackWithAllItsBits) {
    {
        PDB_STORE store = open();
        store.begin();
        for (std::uint64_t const bits : DOUBLES)
            store.put("f" + std::to_string(bits), of_bytes<BIG_FREQUENCY>({bits}));
        store.commit();
    }
    PDB_STORE store = open();
    for (std::uint64_t const bits : DOUBLES) {
        BIG_FREQUENCY loaded;
        ASSERT_TRUE(store.get("f" + std::to_string(bits), loaded));
        EXPECT_EQ(bits_of(loaded)[0], bits);
    }
}

TEST_P(PdbStore, AFractionComesBackWithAllItsBits) {
    for (std::vector<std::uint64_t> const& bits :
         {std::vector<std::uint64_t>{3, 2, 0x3ff8000000000000},
          {1ull << 63, ~0ull, 0x8000000000000000},
          {0, 0, 0x7ff0000000000001}}) {
        BIG_FRACTION const loaded = after_a_round_trip(*m_place, of_bytes<BIG_FRACTION>(bits));
        EXPECT_EQ(std::memcmp(&loaded, bits.data(), sizeof loaded), 0);
    }
}

TEST_P(PdbStore, AClassOfTheProgramIsStoredLikeTheLibrarys) {
    PLACED value;
    value.m_count = LLONG_MIN;
    value.m_kind = INT_MIN;
    value.m_x = std::bit_cast<double>(0x7ff0000000000001);
    value.m_delay = time_of(LLONG_MAX, 11);
    value.m_name = -0.0;
    value.m_NAME = -5;
    value.m_quote = INT_MAX;
    EXPECT_EQ(bits_of(after_a_round_trip(*m_place, value)), bits_of(value));
    EXPECT_EQ(bits_of(after_a_round_trip(*m_place, PLACED())), bits_of(PLACED()));

    PDB_STORE store = open();
    store.put_array("values", std::vector<PLACED>(3, value).data(), 3);
    std::vector<PLACED> loaded;
    ASSERT_TRUE(store.get_array("values", loaded));
    ASSERT_EQ(loaded.size(), 3u);
    EXPECT_EQ(bits_of(loaded[2]), bits_of(value));
    EXPECT_EQ(problems_of(store), LINES());
}

TEST_P(PdbStore, AClassWithoutMembersIsStored) {
    PDB_STORE store = open();
    BARE const elements[3];
    store.put("bare", BARE());
    store.put_array("bares", elements, 3);
    BARE bare;
    EXPECT_TRUE(store.get("bare", bare));
    std::vector<BARE> bares;
    EXPECT_TRUE(store.get_array("bares", bares));
    EXPECT_EQ(bares.size(), 3u);
    std::string const text = dump_of(store);
    EXPECT_EQ(load_text(store, text), 2u);
    EXPECT_EQ(dump_of(store), text);
    EXPECT_EQ(problems_of(store), LINES());
}

// ------------------------------------------------------------------------------------------------
// Values and names
// ------------------------------------------------------------------------------------------------

TEST_P(PdbStore, ANameThatHoldsNothingIsNotFound) {
    PDB_STORE store = open();
    BIG_TIME time(5, BIG_TIME::UNIT_NS);
    EXPECT_FALSE(store.get("none", time));
    EXPECT_EQ(time.get_time_value(), 5000);
    std::vector<BIG_TIME> times(2);
    EXPECT_FALSE(store.get_array("none", times));
    EXPECT_EQ(times.size(), 2u);
    std::size_t count = 42;
    EXPECT_EQ(store.get_array<BIG_TIME>("none", nullptr, count), nullptr);
    EXPECT_EQ(count, 42u);
    EXPECT_FALSE(store.for_each_element<BIG_TIME>("none", [](auto, auto const&) { FAIL(); }));
    EXPECT_FALSE(store.erase("none"));
    EXPECT_FALSE(store.rename("none", "other"));
    PDB_STORE_ENTRY entry;
    EXPECT_FALSE(store.find("none", entry));
    EXPECT_EQ(listed(store), LINES());
}

TEST_P(PdbStore, APutReplacesWhatTheNameHeld) {
    PDB_STORE store = open();
    BIG_TIME const times[] = {time_of(1, 3), time_of(2, 3)};
    store.put("a", times[0]);
    store.put("a", times[1]);
    BIG_TIME time;
    EXPECT_TRUE(store.get("a", time));
    EXPECT_EQ(time.get_time_value(), 2);

    store.put_array("a", times, 2); // an array in place of a value
    std::vector<BIG_TIME> loaded;
    EXPECT_TRUE(store.get_array("a", loaded));
    EXPECT_EQ(loaded.size(), 2u);
    store.put_array("a", times + 1, 1); // of an array
    EXPECT_TRUE(store.get_array("a", loaded));
    EXPECT_EQ(loaded.size(), 1u);
    store.put("a", times[0]); // and back
    EXPECT_TRUE(store.get("a", time));
    EXPECT_EQ(time.get_time_value(), 1);
    EXPECT_EQ(listed(store), LINES{"a BIG_TIME"});
    EXPECT_EQ(problems_of(store), LINES());
}

TEST_P(PdbStore, ANameOfAnotherClassOrKindIsRefused) {
    PDB_STORE store = open();
    BIG_FRACTION fraction(3, 2);
    BIG_TIME time;
    std::vector<BIG_TIME> times(1);
    store.put("f", fraction);
    store.put_array("t[]", times.data(), 1);
    std::string const held = "\"f\" holds a BIG_FRACTION, not a";
    EXPECT_STORE_ERROR(store.put("f", time), HOLDS_OTHER, held + " BIG_TIME");
    EXPECT_STORE_ERROR(store.get("f", time), HOLDS_OTHER, held + " BIG_TIME");
    EXPECT_STORE_ERROR(store.put_array("f", times.data(), 1), HOLDS_OTHER,
                       held + "n array of BIG_TIME");
    EXPECT_STORE_ERROR(store.get_array("f", times), HOLDS_OTHER, held + "n array of BIG_TIME");
    EXPECT_STORE_ERROR(store.get("t[]", time), HOLDS_OTHER,
                       "\"t[]\" holds an array of BIG_TIME, not a BIG_TIME");
    EXPECT_STORE_ERROR(
        store.for_each_element<BIG_FRACTION>("t[]", [](auto, auto const&) { FAIL(); }), HOLDS_OTHER,
        "\"t[]\" holds an array of BIG_TIME, not an array of BIG_FRACTION");
    EXPECT_TRUE(store.get("f", fraction));
    try {
        store.put("f", time);
        FAIL();
    } catch (PDB_STORE_ERROR const& error) {
        EXPECT_EQ(error.class_name(), "BIG_FRACTION");
        EXPECT_EQ(error.store(), store.address());
    }
}

TEST_P(PdbStore, AnyBytesMakeAName) {
    std::string every_byte;
    for (int byte = 0; byte < 256; ++byte)
        every_byte += static_cast<char>(byte);
    LINES const names = {"plain",
                         " ",
                         "\n",
                         "'",
                         "\"",
                         "\\",
                         "it's; DROP TABLE big_class; --",
                         "%s%n",
                         "?1",
                         std::string(1, '\0'),
                         std::string("a\0b", 3),
                         std::string("a\0c", 3),
                         "a",
                         "A",
                         "\xff",
                         "\xff\xff",
                         "\xc3\x28",
                         "\xed\xa0\x80",
                         "na\xc3\xafve",
                         "\xf0\x9f\x95\x90",
                         every_byte,
                         std::string(PDB_STORE::LONGEST_NAME, 'x'),
                         std::string(PDB_STORE::LONGEST_NAME - 1, 'x'),
                         std::string(2000, '\0'),
                         "../../etc",
                         "-",
                         "0"};
    {
        PDB_STORE store = open();
        for (std::size_t i = 0; i < names.size(); ++i)
            store.put(names[i], time_of(static_cast<long long>(i), 0));
    }
    PDB_STORE store = open();
    for (std::size_t i = 0; i < names.size(); ++i) {
        BIG_TIME time;
        ASSERT_TRUE(store.get(names[i], time)) << i;
        EXPECT_EQ(time.get_time_value(), static_cast<long long>(i));
    }
    LINES found;
    store.for_each<BIG_TIME>("",
                             [&](std::string const& name, auto const&) { found.push_back(name); });
    LINES sorted = names;
    std::sort(sorted.begin(), sorted.end(), [](auto const& a, auto const& b) {
        return std::lexicographical_compare(
            a.begin(), a.end(), b.begin(), b.end(), [](char x, char y) {
                return static_cast<unsigned char>(x) < static_cast<unsigned char>(y);
            });
    });
    EXPECT_EQ(found, sorted);

    std::string const text = dump_of(store); // and through a dump
    for (std::string const& name : names)
        EXPECT_TRUE(store.erase(name));
    EXPECT_EQ(load_text(store, text), names.size());
    EXPECT_EQ(dump_of(store), text);
}

TEST_P(PdbStore, EmptyAndEndlessNamesAreRefused) {
    PDB_STORE store = open();
    BIG_TIME time;
    std::string const endless(PDB_STORE::LONGEST_NAME + 1, 'n');
    std::string const text =
        "the name \"" + std::string(100, 'n') + "...\" has 2049 bytes: at most 2048 are kept";
    EXPECT_STORE_ERROR(store.put("", time), BAD_NAME, "a name is empty");
    EXPECT_STORE_ERROR(store.get("", time), BAD_NAME, "a name is empty");
    EXPECT_STORE_ERROR(store.put(endless, time), BAD_NAME, text);
    EXPECT_STORE_ERROR(store.put_array(endless, &time, 1), BAD_NAME, text);
    EXPECT_STORE_ERROR(store.erase(endless), BAD_NAME, text);
    store.put("a", time);
    EXPECT_STORE_ERROR(store.rename("a", ""), BAD_NAME, "a name is empty");
    EXPECT_STORE_ERROR(store.rename("a", endless), BAD_NAME, text);
    EXPECT_EQ(listed(store), LINES{"a BIG_TIME"});
}

TEST_P(PdbStore, ListsByClassAndByPrefix) {
    PDB_STORE store = open();
    BIG_TIME const times[3];
    store.put("net/b", times[0]);
    store.put("net/a", times[0]);
    store.put("net", BIG_FREQUENCY(5));
    store.put_array("net/c", times, 3);
    store.put_array("nest", times, 0);
    store.put("neu", BIG_FREQUENCY(5));
    store.put("\xff\xff z", times[0]);
    unsigned const time_id = 0xd16780d1;
    EXPECT_EQ(listed(store),
              (LINES{"net/a BIG_TIME", "net/b BIG_TIME", "\xff\xff z BIG_TIME", "nest BIG_TIME[0]",
                     "net/c BIG_TIME[3]", "net BIG_FREQUENCY", "neu BIG_FREQUENCY"}));
    EXPECT_EQ(listed(store, {"net", 0}), (LINES{"net/a BIG_TIME", "net/b BIG_TIME",
                                                "net/c BIG_TIME[3]", "net BIG_FREQUENCY"}));
    EXPECT_EQ(listed(store, {"net", time_id}),
              (LINES{"net/a BIG_TIME", "net/b BIG_TIME", "net/c BIG_TIME[3]"}));
    EXPECT_EQ(listed(store, {"\xff", 0}), (LINES{"\xff\xff z BIG_TIME"}));
    EXPECT_EQ(listed(store, {"o", 0}), LINES());
    EXPECT_EQ(listed(store, {"", 0xffffffff}), LINES());
}

TEST_P(PdbStore, FindSaysWhatANameHolds) {
    PDB_STORE store = open();
    BIG_FRACTION const fractions[2];
    store.put_array("a", fractions, 2);
    store.put("v", BIG_TIME());
    PDB_STORE_ENTRY entry;
    ASSERT_TRUE(store.find("a", entry));
    EXPECT_EQ(entry.name, "a");
    EXPECT_EQ(entry.class_id, 0xa7a44befu);
    EXPECT_EQ(entry.class_name, "BIG_FRACTION");
    EXPECT_TRUE(entry.is_array);
    EXPECT_EQ(entry.count, 2u);
    ASSERT_TRUE(store.find("v", entry));
    EXPECT_EQ(entry.class_name, "BIG_TIME");
    EXPECT_FALSE(entry.is_array);
    EXPECT_EQ(entry.count, 1u);
}

TEST_P(PdbStore, ErasesAndRenames) {
    PDB_STORE store = open();
    std::vector<BIG_TIME> times(MORE_THAN_A_BATCH, time_of(7, 3));
    store.put("value", times[0]);
    store.put_array("array", times.data(), times.size());
    store.put("other", BIG_FREQUENCY(5));
    EXPECT_STORE_ERROR(store.rename("value", "other"), NAME_TAKEN, "the name \"other\" is in use");
    EXPECT_STORE_ERROR(store.rename("value", "array"), NAME_TAKEN, "the name \"array\" is in use");
    EXPECT_TRUE(store.rename("value", "value"));
    EXPECT_TRUE(store.rename("value", "value 2"));
    EXPECT_TRUE(store.rename("array", "array 2"));
    EXPECT_EQ(listed(store),
              (LINES{"value 2 BIG_TIME", "array 2 BIG_TIME[" + std::to_string(times.size()) + ']',
                     "other BIG_FREQUENCY"}));
    BIG_TIME time;
    EXPECT_TRUE(store.get("value 2", time));
    EXPECT_EQ(time.get_time_value(), 7);
    std::vector<BIG_TIME> loaded;
    EXPECT_TRUE(store.get_array("array 2", loaded));
    EXPECT_EQ(loaded.size(), times.size());
    EXPECT_TRUE(store.erase("array 2"));
    EXPECT_TRUE(store.erase("value 2"));
    EXPECT_FALSE(store.erase("value 2"));
    EXPECT_EQ(listed(store), LINES{"other BIG_FREQUENCY"});
    EXPECT_EQ(problems_of(store), LINES());
}

// ------------------------------------------------------------------------------------------------
// Many values, arrays
// ------------------------------------------------------------------------------------------------

TEST_P(PdbStore, VisitsManyValuesInTheOrderOfTheirNames) {
    PDB_STORE store = open();
    std::map<std::string, long long> expected;
    std::mt19937 random(5);
    std::size_t made = 0;
    store.put_each<BIG_TIME>([&](std::string& name, BIG_TIME& time) {
        name = (made % 2 == 0 ? "even/" : "odd/") + std::to_string(random() % 100000);
        time = time_of(static_cast<long long>(made), 2);
        expected[name] = time.get_time_value(); // the later of two with one name is kept
        return made++ < 2 * MORE_THAN_A_BATCH;
    });
    expected.clear();
    store.for_each<BIG_TIME>("", [&](std::string const& name, BIG_TIME const& time) {
        EXPECT_TRUE(expected.empty() || expected.rbegin()->first < name);
        expected[name] = time.get_time_value();
    });
    std::mt19937 again(5);
    std::map<std::string, long long> oracle;
    for (std::size_t i = 0; i < 2 * MORE_THAN_A_BATCH; ++i)
        oracle[(i % 2 == 0 ? "even/" : "odd/") + std::to_string(again() % 100000)] =
            static_cast<long long>(i);
    EXPECT_EQ(expected, oracle);

    std::size_t odd = 0;
    store.for_each<BIG_TIME>("odd/", [&](std::string const& name, BIG_TIME const&) {
        EXPECT_EQ(name.substr(0, 4), "odd/");
        ++odd;
    });
    EXPECT_EQ(odd, std::count_if(oracle.begin(), oracle.end(),
                                 [](auto const& pair) { return pair.first[0] == 'o'; }));
    store.for_each<BIG_FRACTION>("", [](auto const&, auto const&) { FAIL(); });
    EXPECT_EQ(listed(store).size(), oracle.size());
}

TEST_P(PdbStore, AVisitorMayUseTheStore) {
    PDB_STORE store = open();
    store.put_each<BIG_TIME>([made = 0](std::string& name, BIG_TIME& time) mutable {
        name = "t" + std::to_string(1000000 + made);
        time = time_of(made, 0);
        return made++ < 1500;
    });
    std::size_t visited = 0;
    store.begin();
    store.for_each<BIG_TIME>("t", [&](std::string const& name, BIG_TIME const& time) {
        ++visited;
        if (time.get_time_value() % 2 == 0)
            EXPECT_TRUE(store.erase(name));
        else
            store.put("new " + name, time);
    });
    store.commit();
    EXPECT_EQ(visited, 1500u);
    EXPECT_EQ(listed(store, {"t", 0}).size(), 750u);
    EXPECT_EQ(listed(store, {"new ", 0}).size(), 750u);
}

TEST_P(PdbStore, ArraysOfEverySizeComeBack) {
    PDB_STORE store = open();
    std::size_t const in_a_chunk = 32768 / 12;
    for (std::size_t const count : {std::size_t{0}, std::size_t{1}, in_a_chunk - 1, in_a_chunk,
                                    in_a_chunk + 1, 3 * in_a_chunk + 7}) {
        std::vector<BIG_TIME> times;
        for (std::size_t i = 0; i < count; ++i)
            times.push_back(
                time_of(static_cast<long long>(i * i) - 1000, static_cast<int>(i % 15)));
        store.put_array("array", times.data(), count);

        std::vector<BIG_TIME> loaded(5);
        ASSERT_TRUE(store.get_array("array", loaded));
        ASSERT_EQ(loaded.size(), count);
        for (std::size_t i = 0; i < count; ++i)
            ASSERT_EQ(bits_of(loaded[i]), bits_of(times[i])) << i;

        unsigned long long next = 0;
        EXPECT_TRUE(store.for_each_element<BIG_TIME>(
            "array", [&](unsigned long long index, BIG_TIME const& time) {
                ASSERT_EQ(index, next++);
                ASSERT_EQ(bits_of(time), bits_of(times[index]));
            }));
        EXPECT_EQ(next, count);
    }
    EXPECT_EQ(problems_of(store), LINES());
}

TEST_P(PdbStore, ArraysLoadIntoAPoolOrTheFreeStore) {
    PDB_STORE store = open();
    BIG_TIME const times[] = {time_of(1, 2), time_of(2, 3), time_of(3, 4)};
    store.put_array("array", times, 3);
    MEM_UTILS_CHUNK_ALLOC enabled(true);
    MEM_UTILS_CHUNK_ALLOC disabled(false);
    for (MEM_UTILS_CHUNK_ALLOC* const pool :
         {&enabled, &disabled, static_cast<MEM_UTILS_CHUNK_ALLOC*>(nullptr)}) {
        std::size_t count = 0;
        BIG_TIME* const loaded = store.get_array<BIG_TIME>("array", pool, count);
        ASSERT_NE(loaded, nullptr);
        ASSERT_EQ(count, 3u);
        for (std::size_t i = 0; i < 3; ++i)
            EXPECT_EQ(bits_of(loaded[i]), bits_of(times[i]));
        std::uint64_t in_front = 0; // of the elements stands their number
        std::memcpy(&in_front, reinterpret_cast<char*>(loaded) - 8, sizeof in_front);
        EXPECT_EQ(in_front, 3u);
        if (pool != &enabled)
            delete[] loaded;
    }
}

TEST_P(PdbStore, AnArrayThatIsReplacedWhileItIsReadIsAConflict) {
    PDB_STORE store = open();
    std::vector<BIG_TIME> times(20000);
    store.put_array("array", times.data(), times.size());
    EXPECT_STORE_ERROR(store.for_each_element<BIG_TIME>(
                           "array",
                           [&](unsigned long long index, auto const&) {
                               if (index == 7)
                                   store.put_array("array", times.data(), times.size());
                           }),
                       CONFLICT, "the array \"array\" was replaced while it was read");
}

// ------------------------------------------------------------------------------------------------
// Transactions
// ------------------------------------------------------------------------------------------------

TEST_P(PdbStore, ATransactionIsAppliedWholeOrNotAtAll) {
    PDB_STORE store = open();
    PDB_STORE other = open();
    store.put("before", BIG_TIME());
    store.begin();
    EXPECT_TRUE(store.in_transaction());
    store.put("a", BIG_TIME());
    store.put("b", BIG_FREQUENCY(1)); // of a class that is new in the store
    store.erase("before");
    EXPECT_EQ(listed(store), (LINES{"a BIG_TIME", "b BIG_FREQUENCY"}));
    EXPECT_EQ(listed(other), LINES{"before BIG_TIME"});
    store.rollback();
    EXPECT_FALSE(store.in_transaction());
    EXPECT_EQ(listed(store), LINES{"before BIG_TIME"});

    store.begin();
    store.put("b", BIG_FREQUENCY(1));
    store.erase("before");
    store.commit();
    EXPECT_EQ(listed(other), LINES{"b BIG_FREQUENCY"});
    EXPECT_EQ(listed(store), LINES{"b BIG_FREQUENCY"});
}

TEST_P(PdbStore, ATransactionThatIsLeftOpenIsDropped) {
    {
        PDB_STORE store = open();
        store.put("kept", BIG_TIME());
        store.begin();
        store.put("dropped", BIG_TIME());
    }
    PDB_STORE store = open();
    EXPECT_EQ(listed(store), LINES{"kept BIG_TIME"});
}

TEST_P(PdbStore, WorkInATransactionIsDroppedWhenItThrows) {
    PDB_STORE store = open();
    store.transaction([&] { store.put("a", BIG_TIME()); });
    EXPECT_THROW(store.transaction([&] {
        store.put("b", BIG_TIME());
        throw 42;
    }),
                 int);
    EXPECT_FALSE(store.in_transaction());
    EXPECT_EQ(listed(store), LINES{"a BIG_TIME"});
}

TEST_P(PdbStore, WorkIsRunAgainAfterAConflict) {
    PDB_STORE store = open();
    int runs = 0;
    store.transaction([&] {
        store.put("run " + std::to_string(++runs), BIG_TIME());
        if (runs < 3)
            throw PDB_STORE_ERROR(PDB_STORE_ERROR::CONFLICT, store.address(), "test");
    });
    EXPECT_EQ(listed(store), LINES{"run 3 BIG_TIME"});
    runs = 0;
    EXPECT_STORE_ERROR(store.transaction([&] {
        ++runs;
        throw PDB_STORE_ERROR(PDB_STORE_ERROR::CONFLICT, store.address(), "test");
    }),
                       CONFLICT, "test");
    EXPECT_EQ(runs, 10);
}

TEST_P(PdbStore, ARefusalLeavesATransactionAsItWas) {
    PDB_STORE store = open();
    store.put("f", BIG_FREQUENCY(1));
    store.begin();
    store.put("a", BIG_TIME());
    EXPECT_THROW(store.put("", BIG_TIME()), PDB_STORE_ERROR);
    EXPECT_THROW(store.put("f", BIG_TIME()), PDB_STORE_ERROR);
    EXPECT_THROW(store.rename("a", "f"), PDB_STORE_ERROR);
    EXPECT_THROW(store.put("u", UNREGISTERED()), PDB_STORE_ERROR);
    EXPECT_THROW(store.begin(), PDB_STORE_ERROR);
    store.commit();
    EXPECT_EQ(listed(store), (LINES{"f BIG_FREQUENCY", "a BIG_TIME"}));
}

TEST_P(PdbStore, AfterAFailureInATransactionOnlyRollbackIsLeft) {
    PDB_STORE store = open();
    store.put("f", BIG_FREQUENCY(1));
    char const* const broken =
        "an operation of the transaction failed, so it can only be rolled back";
    store.begin();
    int made = 0;
    EXPECT_THROW(store.put_each<BIG_TIME>([&](std::string& name, BIG_TIME&) {
        name = ++made < 3 ? "t" + std::to_string(made) : "f";
        return made < 4;
    }),
                 PDB_STORE_ERROR);
    EXPECT_STORE_ERROR(store.put("a", BIG_TIME()), MISUSE, broken);
    EXPECT_STORE_ERROR(store.commit(), MISUSE, broken);
    store.rollback();
    store.put("a", BIG_TIME());
    EXPECT_EQ(listed(store), (LINES{"f BIG_FREQUENCY", "a BIG_TIME"}));
}

TEST_P(PdbStore, CallsThatTheHandleDoesNotAllowAreMisuse) {
    PDB_STORE store = open();
    EXPECT_STORE_ERROR(store.commit(), MISUSE, "no transaction is open");
    EXPECT_STORE_ERROR(store.rollback(), MISUSE, "no transaction is open");
    store.begin(false);
    EXPECT_STORE_ERROR(store.begin(), MISUSE, "a transaction is open already");
    EXPECT_STORE_ERROR(store.put("a", BIG_TIME()), MISUSE,
                       "the transaction was opened for reading");
    store.commit();
    EXPECT_EQ(listed(store), LINES());
}

TEST_P(PdbStore, AStoreThatWasOpenedForReadingIsNotWritten) {
    open().put("a", BIG_TIME());
    PDB_STORE store = open(PDB_STORE_OPTIONS::READ);
    EXPECT_STORE_ERROR(store.put("b", BIG_TIME()), READ_ONLY, "it was opened for reading");
    EXPECT_STORE_ERROR(store.erase("a"), READ_ONLY, "it was opened for reading");
    EXPECT_STORE_ERROR(store.begin(), READ_ONLY, "it was opened for reading");
    BIG_TIME time;
    EXPECT_TRUE(store.get("a", time));
    EXPECT_EQ(problems_of(store), LINES());
}

TEST_P(PdbStore, ATransactionForReadingSeesOneMoment) {
    PDB_STORE store = open();
    PDB_STORE_OPTIONS hasty;
    hasty.wait = std::chrono::milliseconds(1);
    PDB_STORE other = open(hasty);
    store.put("a", BIG_TIME());
    store.begin(false);
    EXPECT_EQ(listed(store), LINES{"a BIG_TIME"});
    try {
        other.put("b", BIG_TIME()); // waits for the reader, or does not show it
    } catch (PDB_STORE_ERROR const& error) {
        EXPECT_EQ(error.kind(), PDB_STORE_ERROR::BUSY);
    }
    EXPECT_EQ(listed(store), LINES{"a BIG_TIME"});
    store.commit();
}

// ------------------------------------------------------------------------------------------------
// Classes
// ------------------------------------------------------------------------------------------------

TEST_P(PdbStore, AnUnregisteredClassIsRefused) {
    PDB_STORE store = open();
    UNREGISTERED value;
    std::string const name = "(anonymous namespace)::UNREGISTERED";
    EXPECT_STORE_ERROR(store.put("u", value), UNREGISTERED_CLASS,
                       "class " + name + " is not registered");
    EXPECT_STORE_ERROR(store.get("u", value), UNREGISTERED_CLASS,
                       "class " + name + " is not registered");
    EXPECT_EQ(listed(store), LINES());
}

TEST_P(PdbStore, ASerializerThatChangesItsMindIsRefused) {
    PDB_STORE store = open();
    std::string const name = "(anonymous namespace)::FICKLE";
    std::string const text = "the serializer of class " + name
                             + " did not transfer the members that it transfers of an object in "
                               "the default state";
    store.put("good", FICKLE());
    for (int const way : {1, 2})
        EXPECT_STORE_ERROR(store.put("bad", FICKLE{way}), BAD_CLASS, text);
    FICKLE const fickle[] = {{0}, {2}};
    EXPECT_STORE_ERROR(store.put_array("bad", fickle, 2), BAD_CLASS, text);
    EXPECT_EQ(listed(store), LINES{"good " + name});
    EXPECT_EQ(problems_of(store), LINES());
}

TEST_P(PdbStore, AClassHasAtMost500Members) {
    TEST_RECORD<WIDE> const record(0x7e570004);
    WIDE wide;
    WIDE::s_members = 501;
    EXPECT_STORE_ERROR(open().put("wide", wide), BAD_CLASS,
                       "class (anonymous namespace)::WIDE has 501 members: at most 500 are kept");
    WIDE::s_members = 500;
    PDB_STORE store = open();
    store.put("wide", WIDE{6});
    store.put_array("wider", &wide, 1);
    EXPECT_TRUE(store.get("wide", wide));
    EXPECT_EQ(wide.m_value, 6);
    EXPECT_EQ(problems_of(store), LINES());
}

struct VERSION_1 {
    long long m_value = 1;
    bool operator<<(STORE_SEGMENT& segment) {
        segment.begin_object(nullptr, this);
        transfer(segment, "m_value", m_value);
        return segment.end_object();
    }
};

/// The same class later: what it transfers is up to the test.
struct VERSION_2 {
    inline static int s_way = 0;
    long long m_value = 1;
    int m_more = 2;
    double m_double = 3;

    bool operator<<(STORE_SEGMENT& segment) {
        segment.begin_object(nullptr, this);
        switch (s_way) {
        case 0: transfer(segment, "m_value", m_value); break;
        case 1: transfer(segment, "m_renamed", m_value); break;
        case 2: transfer(segment, "m_value", m_more); break;
        case 3: transfer(segment, "m_value", m_double); break;
        case 4: break;
        case 5:
            transfer(segment, "m_value", m_value);
            transfer(segment, "m_more", m_more);
            break;
        }
        return segment.end_object();
    }
};

TEST_P(PdbStore, AClassWithOtherMembersIsRefusedUntouched) {
    constexpr unsigned ID = 0x7e570010;
    {
        TEST_RECORD<VERSION_1> const record(ID, sizeof(VERSION_2));
        open().put("value", VERSION_1());
    }
    std::string const before = [&] {
        PDB_STORE store = open();
        return dump_of(store);
    }();
    std::string const name = "(anonymous namespace)::VERSION_1";
    std::string const text = "it holds class " + name + " (0x7e570010) with other members: ";
    struct CASE {
        int way;
        unsigned long size;
        char const* difference;
        char const* member;
    };
    // clang-format off
    CASE const cases[] = {
        // way  size                   difference                                                 member
        {0, sizeof(VERSION_2) + 8, "an object has 24 bytes there and 32 here",                     ""},
        {1, sizeof(VERSION_2),     "member 1 is \"m_value\" there and \"m_renamed\" here",         "m_renamed"},
        {2, sizeof(VERSION_2),     "member \"m_value\" is int64 there and int32 here",             "m_value"},
        {3, sizeof(VERSION_2),     "member \"m_value\" is int64 there and double here",            "m_value"},
        {4, sizeof(VERSION_2),     "member \"m_value\" is missing here",                           "m_value"},
        {5, sizeof(VERSION_2),     "member \"m_more\" is missing there",                           "m_more"},
    };
    // clang-format on
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.way);
        VERSION_2::s_way = c.way;
        PDB_STORE early = open(); // before the class is registered
        TEST_RECORD<VERSION_2> const record(ID, c.size);
        EXPECT_STORE_ERROR(open(), OTHER_MEMBERS, text + c.difference);
        EXPECT_STORE_ERROR(early.put("value", VERSION_2()), OTHER_MEMBERS, text + c.difference);
        try {
            open();
        } catch (PDB_STORE_ERROR const& error) {
            EXPECT_EQ(error.class_name(), name);
            EXPECT_EQ(error.member(), c.member);
        }
    }
    VERSION_2::s_way = 0;
    TEST_RECORD<VERSION_2> const same(ID);
    PDB_STORE store = open();
    EXPECT_EQ(dump_of(store), before);
    VERSION_2 value;
    EXPECT_TRUE(store.get("value", value)); // the same members under another C++ name
}

/// A class of one member.
struct B {
    int m_number = 0;

    bool operator<<(STORE_SEGMENT& segment) {
        segment.begin_object(nullptr, this);
        transfer(segment, "m_number", m_number);
        return segment.end_object();
    }
};

// The view of each of these has the name of a table of class B with id 2.
struct B_00000002 : B {};
struct B_00000002_array : B {};
struct B_00000002_chunk : B {};
struct b_00000002 : B {}; // to SQLite the same

template <typename T>
void put_value_and_array(PDB_STORE& store, std::string const& name, int number) {
    T values[2];
    values[1].m_number = number;
    store.put(name, values[1]);
    store.put_array(name + "s", values, 2);
}

template <typename T>
void expect_value_and_array(PDB_STORE& store, std::string const& name, int number) {
    T value;
    EXPECT_TRUE(store.get(name, value));
    EXPECT_EQ(value.m_number, number);
    std::vector<T> values;
    EXPECT_TRUE(store.get_array(name + "s", values));
    ASSERT_EQ(values.size(), 2u);
    EXPECT_EQ(values[1].m_number, number);
}

template <typename OTHER>
void expect_to_store_beside(std::string const& address) {
    SCOPED_TRACE(typeid(OTHER).name());
    TEST_RECORD<OTHER> const other_record(5);
    TEST_RECORD<B> const record(2);
    PDB_STORE store(address);
    put_value_and_array<OTHER>(store, "other", 7);
    put_value_and_array<B>(store, "b", 8);
    EXPECT_TRUE(store.check([](std::string const& problem) { ADD_FAILURE() << problem; }));
    expect_value_and_array<OTHER>(store, "other", 7);
    expect_value_and_array<B>(store, "b", 8);
}

TEST_P(PdbStore, AViewYieldsItsNameToATable) {
    for (auto const& expect :
         {expect_to_store_beside<B_00000002>, expect_to_store_beside<B_00000002_array>,
          expect_to_store_beside<B_00000002_chunk>, expect_to_store_beside<b_00000002>}) {
        auto const place = GetParam().make_place();
        expect(place->address());
    }
}

TEST_P(PdbStore, AClassThatTheProgramDoesNotKnowIsKept) {
    {
        TEST_RECORD<VERSION_1> const record(0x7e570011);
        PDB_STORE store = open();
        store.put("value", VERSION_1());
        VERSION_1 const elements[2];
        store.put_array("array", elements, 2);
    }
    PDB_STORE store = open();
    std::string const name = "(anonymous namespace)::VERSION_1";
    EXPECT_EQ(listed(store), (LINES{"value " + name, "array " + name + "[2]"}));
    std::string const text = dump_of(store);
    EXPECT_TRUE(store.rename("value", "renamed"));
    EXPECT_TRUE(store.erase("array"));
    EXPECT_TRUE(store.erase("renamed"));
    EXPECT_EQ(load_text(store, text), 2u);
    EXPECT_EQ(dump_of(store), text);
    EXPECT_EQ(problems_of(store), LINES());
    EXPECT_STORE_ERROR(store.put("value", BIG_TIME()), HOLDS_OTHER,
                       "\"value\" holds a " + name + ", not a BIG_TIME");
}

// ------------------------------------------------------------------------------------------------
// Dumps
// ------------------------------------------------------------------------------------------------

TEST_P(PdbStore, ADumpIsExactText) {
    PDB_STORE store = open();
    BIG_TIME const times[] = {time_of(LLONG_MIN, -1), time_of(LLONG_MAX, 14)};
    store.put("clk", time_of(2500, 3));
    store.put_array("a \"b\"\n", times, 2);
    store.put_array("none", times, 0);
    store.put("f\xff", of_bytes<BIG_FRACTION>({3, 2, 0x8000000000000000}));
    std::string const body =
        "big-store dump 1\n"
        "class 0xd16780d1 16 \"BIG_TIME\" \"m_value\" int64, \"m_unit\" int32\n"
        "value \"clk\" 2500 3\n"
        "array \"a \\\"b\\\"\\x0A\" 2\n"
        "-9223372036854775808 -1\n"
        "9223372036854775807 14\n"
        "array \"none\" 0\n"
        "class 0xa7a44bef 24 \"BIG_FRACTION\" \"m_numerator\" int64, "
        "\"m_denominator\" int64, \"m_value\" double\n"
        "value \"f\\xFF\" 3 2 0x8000000000000000\n";
    std::string const text = dump_of(store);
    std::string const last = text.substr(std::min(body.size(), text.size()));
    EXPECT_EQ(text.substr(0, body.size()), body);
    EXPECT_EQ(last.substr(0, 6), "end 4 ");
    EXPECT_EQ(last.size(), 6 + 16 + 1u);
}

TEST_P(PdbStore, ADumpRestoresEveryBit) {
    std::string text;
    {
        PDB_STORE store = open();
        std::mt19937_64 random(11);
        store.begin();
        for (int i = 0; i < 1500; ++i) {
            PLACED value;
            value.m_count = static_cast<long long>(random());
            value.m_kind = static_cast<int>(random());
            value.m_x = std::bit_cast<double>(random());
            value.m_delay = time_of(static_cast<long long>(random()), static_cast<int>(random()));
            store.put("value " + std::to_string(random()), value);
        }
        for (std::uint64_t const bits : DOUBLES)
            store.put("f" + std::to_string(bits), of_bytes<BIG_FREQUENCY>({bits}));
        std::vector<PLACED> elements(2000);
        store.put_array("array", elements.data(), elements.size());
        store.commit();
        text = dump_of(store);
    }
    auto const other_place = GetParam().make_place();
    PDB_STORE store(other_place->address());
    EXPECT_EQ(load_text(store, text), 1500 + std::size(DOUBLES) + 1);
    EXPECT_EQ(dump_of(store), text);
    EXPECT_EQ(load_text(store, text), 1500 + std::size(DOUBLES) + 1); // over itself
    EXPECT_EQ(dump_of(store), text);
    EXPECT_EQ(problems_of(store), LINES());
}

TEST_P(PdbStore, ADumpWrittenByHandNeedsNoChecksum) {
    PDB_STORE store = open();
    EXPECT_EQ(load_text(store,
                        "big-store dump 1\n"
                        "class 0xd16780d1 16 \"BIG_TIME\" \"m_value\" int64, \"m_unit\" int32\n"
                        "value \"clk\" 2500 3\n"
                        "end 1"),
              1u);
    EXPECT_EQ(listed(store), LINES{"clk BIG_TIME"});
}

TEST_P(PdbStore, AMalformedDumpLoadsNothing) {
    PDB_STORE store = open();
    store.put("kept", BIG_TIME());
    std::string const before = dump_of(store);
    std::string const first = "big-store dump 1\n";
    std::string const time =
        first + "class 0xd16780d1 16 \"BIG_TIME\" \"m_value\" int64, \"m_unit\" int32\n";
    char const* const no_id = "expected a class id as 0x and 8 hexadecimal digits in lower case";
    char const* const no_name = "expected a name between quotation marks";
    char const* const no_members =
        "expected members, each a name between quotation marks and int64, int32 or double";
    char const* const no_double = "expected a double as 0x and 16 hexadecimal digits in lower case";
    std::string many_members = "\"m\" int32";
    for (int i = 0; i < 500; ++i)
        many_members += ", \"m\" int32";
    struct CASE {
        std::string text;
        int line;
        std::string error;
    };
    std::string const frequency =
        first + "class 0x4d709ad8 8 \"BIG_FREQUENCY\" \"m_value\" double\n";
    CASE const cases[] = {
        {"", 1, "expected \"big-store dump 1\""},
        {"big-store dump 2\n", 1, "expected \"big-store dump 1\""},
        {"big-store dump 1\r\nend 0\n", 1, "expected \"big-store dump 1\""},
        {first, 2, "the dump is cut short: expected another line"},
        {first + "\nend 0\n", 2, "expected class, value, array or end"},
        {first + "end\n", 2, "expected class, value, array or end"},
        {first + "end 1\n", 2, "the dump holds another number of names than its last line says"},
        {first + "end -0\n", 2, "expected the number of names"},
        {first + "end 00\n", 2, "expected the number of names"},
        {first + "end 0 1\n", 2, "expected a checksum of 16 hexadecimal digits in lower case"},
        {first + "end 0 0000000000000000\n", 2, "the dump does not match its checksum"},
        {first + "end 0\nend 0\n", 3, "expected nothing behind the end"},
        {first + "value \"a\" 1 2\nend 1\n", 2, "expected a class in front of the first name"},
        {first + "class d16780d1 16 \"BIG_TIME\" \n", 2, no_id},
        {first + "class 0xD16780D1 16 \"BIG_TIME\" \n", 2, no_id},
        {first + "class 0x1d16780d1 16 \"BIG_TIME\" \n", 2, no_id},
        {first + "class 0xd16780d1 16\n", 2, "expected the size of an object"},
        {first + "class 0xd16780d1 16 BIG_TIME \n", 2,
         "expected the name of a class between quotation marks"},
        {first + "class 0xd16780d1 16 \"BIG_TIME\" m_value int64\n", 2, no_members},
        {first + "class 0xd16780d1 16 \"BIG_TIME\" \"m_value\" int16\n", 2, no_members},
        {first + "class 0xd16780d1 16 \"BIG_TIME\" \"m_value\" int64,\n", 2, no_members},
        {first + "class 0x00000001 8 \"C\" " + many_members + '\n', 2,
         "a class has more members than are kept"},
        {time + "value clk 1 2\n", 3, no_name},
        {time + "value \"clk 1 2\n", 3, no_name},
        {time + "value \"cl\\k\" 1 2\n", 3, no_name},
        {time + "value \"cl\\x1\" 1 2\n", 3, no_name},
        {time + "value \"cl\\xfF\" 1 2\n", 3, no_name},
        {time + "value \"cl\xff\" 1 2\n", 3, no_name},
        {time + "value \"\" 1 2\n", 3, "the name is empty or too long"},
        {time + "value \"" + std::string(65536, 'n') + "\" 1 2\n", 3,
         "the name is empty or too long"},
        {time + "value \"clk\" 1\n", 3, "expected a blank and another member"},
        {time + "value \"clk\" 1 2 3\n", 3, "there is more on the line than expected"},
        {time + "value \"clk\" 1 2\r\n", 3, "there is more on the line than expected"},
        {time + "value \"clk\"  1 2\n", 3, "expected a decimal integer"},
        {time + "value \"clk\" +1 2\n", 3, "expected a decimal integer"},
        {time + "value \"clk\" 01 2\n", 3, "expected a decimal integer"},
        {time + "value \"clk\" 1.0 2\n", 3, "expected a blank and another member"},
        {time + "value \"clk\" 9223372036854775808 2\n", 3, "expected a decimal integer"},
        {time + "value \"clk\" 1 2147483648\n", 3, "the integer has more than 32 bits"},
        {time + "array \"clk\"\n", 3, "expected the number of elements"},
        {time + "array \"clk\" -1\n", 3, "expected the number of elements"},
        {time + "array \"clk\" 2\n1 2\n", 5, "the dump is cut short: expected another element"},
        {time + "array \"clk\" 2\n1 2\nend 1\n", 5, "expected a decimal integer"},
        {time + "array \"clk\" 18446744073709551615\nend 1\n", 4, "expected a decimal integer"},
        {frequency + "value \"f\" 1.5\n", 3, no_double},
        {frequency + "value \"f\" 0x3FF8000000000000\n", 3, no_double},
        {frequency + "value \"f\" 0x3ff800000000000\n", 3, no_double},
        {frequency + "value \"f\" 0x3ff80000000000000\n", 3, no_double},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.text.substr(0, 200));
        EXPECT_STORE_ERROR(load_text(store, c.text), BAD_DUMP,
                           "line " + std::to_string(c.line) + " of the dump: " + c.error);
        EXPECT_EQ(dump_of(store), before);
    }
    EXPECT_STORE_ERROR(load_text(store, frequency + "value \"kept\" 0x3ff8000000000000\nend 1\n"),
                       HOLDS_OTHER, "\"kept\" holds a BIG_TIME, not a BIG_FREQUENCY");
    EXPECT_STORE_ERROR(
        load_text(store, first + "class 0xd16780d1 16 \"BIG_TIME\" \"m_value\" int64\nend 0\n"),
        OTHER_MEMBERS,
        "it holds class BIG_TIME (0xd16780d1) with other members: member \"m_unit\" is missing "
        "there");
    EXPECT_EQ(dump_of(store), before);
}

TEST_P(PdbStore, ADumpThatDescribesAClassTwiceIsComparedEachTime) {
    PDB_STORE store = open();
    std::string const first = "big-store dump 1\n";
    std::string const one = "class 0x7e570012 8 \"ONE\" \"x\" int64\n";
    std::string const other = "class 0x7e570012 8 \"ONE\" \"y\" int64\n";
    load_text(store, first + one + "value \"a\" 1\nend 1\n");
    std::string const before = dump_of(store);
    for (std::string const& text : {other, one + other, one + one + other}) {
        SCOPED_TRACE(text);
        EXPECT_STORE_ERROR(load_text(store, first + text + "value \"b\" 2\nend 1\n"), OTHER_MEMBERS,
                           "it holds class ONE (0x7e570012) with other members: member 1 is \"x\" "
                           "there and \"y\" here");
        EXPECT_EQ(dump_of(store), before);
    }
    EXPECT_EQ(load_text(store, first + one + "value \"b\" 2\n" + one + "value \"c\" 3\nend 2\n"),
              2u);
}

TEST_P(PdbStore, ADumpThatIsCutOrChangedAnywhereIsRefused) {
    PDB_STORE store = open();
    BIG_TIME const times[3];
    store.put("clk", time_of(2500, 3));
    store.put_array("array", times, 3);
    std::string const text = dump_of(store);
    std::mt19937 random(3);
    for (std::size_t i = 0; i + 1 < text.size(); ++i) { // the last line feed may be missing
        bool const cuts_checksum = text.compare(i - std::min<std::size_t>(i, 6), 6, "\nend 2") == 0;
        if (!cuts_checksum) { // which may be left out
            EXPECT_THROW(load_text(store, text.substr(0, i)), PDB_STORE_ERROR) << i;
        }
        std::string changed = text;
        changed[i] = static_cast<char>(changed[i] ^ static_cast<char>(1 + random() % 255));
        EXPECT_THROW(load_text(store, changed), PDB_STORE_ERROR) << i;
    }
    EXPECT_EQ(dump_of(store), text);
}

// ------------------------------------------------------------------------------------------------
// Several handles
// ------------------------------------------------------------------------------------------------

TEST_P(PdbStore, ThreadsWithAHandleEachLoseNothing) {
    constexpr int THREADS = 4;
    constexpr int PUTS = 15;
    open(); // makes it
    std::vector<std::thread> threads;
    for (int thread = 0; thread < THREADS; ++thread)
        threads.emplace_back([&, thread] {
            PDB_STORE_OPTIONS patient;
            patient.wait = std::chrono::minutes(2);
            PDB_STORE store = open(patient);
            for (int i = 0; i < PUTS; ++i) {
                store.put(std::to_string(thread) + '/' + std::to_string(i), time_of(i, thread));
                store.transaction([&] { // all count together
                    BIG_TIME sum;
                    store.get("sum", sum);
                    store.put("sum", time_of(sum.get_time_value() + 1, 0));
                });
            }
        });
    for (std::thread& thread : threads)
        thread.join();
    PDB_STORE store = open();
    for (int thread = 0; thread < THREADS; ++thread) {
        for (int i = 0; i < PUTS; ++i) {
            BIG_TIME time;
            ASSERT_TRUE(store.get(std::to_string(thread) + '/' + std::to_string(i), time));
            EXPECT_EQ(bits_of(time), bits_of(time_of(i, thread)));
        }
    }
    BIG_TIME sum;
    EXPECT_TRUE(store.get("sum", sum));
    EXPECT_EQ(sum.get_time_value(), THREADS * PUTS);
    EXPECT_EQ(problems_of(store), LINES());
}

TEST_P(PdbStore, ProcessesLoseNothing) {
    constexpr int PROCESSES = 2;
    constexpr int PUTS = 20;
    std::vector<pid_t> processes;
    for (int process = 0; process < PROCESSES; ++process) {
        pid_t const id = fork();
        if (id != 0) {
            processes.push_back(id);
            continue;
        }
        try {
            PDB_STORE_OPTIONS patient;
            patient.wait = std::chrono::minutes(2);
            PDB_STORE store = open(patient); // both make it at the same time
            for (int i = 0; i < PUTS; ++i)
                store.put(std::to_string(process) + '/' + std::to_string(i), time_of(i, process));
            _exit(0);
        } catch (std::exception const& error) {
            std::fprintf(stderr, "%s\n", error.what());
            _exit(1);
        }
    }
    for (pid_t const id : processes) {
        int status = 0;
        ASSERT_EQ(waitpid(id, &status, 0), id);
        EXPECT_EQ(status, 0);
    }
    PDB_STORE store = open();
    EXPECT_EQ(listed(store).size(), static_cast<std::size_t>(PROCESSES * PUTS));
    EXPECT_EQ(problems_of(store), LINES());
}

TEST_P(PdbStore, AClassThatAnotherHandleAddsIsSeen) {
    PDB_STORE one = open();
    PDB_STORE other = open();
    BIG_TIME time;
    EXPECT_FALSE(one.get("a", time));
    other.put("a", time_of(5, 0));
    EXPECT_TRUE(one.get("a", time));
    EXPECT_EQ(time.get_time_value(), 5);
    other.put("f", BIG_FREQUENCY(5));
    EXPECT_STORE_ERROR(one.put("f", time), HOLDS_OTHER,
                       "\"f\" holds a BIG_FREQUENCY, not a BIG_TIME");
    EXPECT_EQ(listed(one), (LINES{"a BIG_TIME", "f BIG_FREQUENCY"}));
}

TEST_P(PdbStore, AHandleCanBeMoved) {
    PDB_STORE one = open();
    one.put("a", BIG_TIME());
    PDB_STORE other = std::move(one);
    EXPECT_EQ(listed(other), LINES{"a BIG_TIME"});
}

TEST_P(PdbStore, CheckTellsItsProgress) {
    PDB_STORE store = open();
    store.put_each<BIG_TIME>([made = 0](std::string& name, BIG_TIME&) mutable {
        name = std::to_string(made);
        return made++ < 2500;
    });
    std::vector<unsigned long long> counts;
    EXPECT_TRUE(store.check([](std::string const& problem) { ADD_FAILURE() << problem; },
                            [&](unsigned long long count) { counts.push_back(count); }));
    EXPECT_EQ(counts, (std::vector<unsigned long long>{1000, 2000}));
}

} // namespace
