// What a store makes of classes, names and objects: layouts, texts, packed records, checksums.

#include "record.h"

#include "big_fraction_sys.h"
#include "big_sys.h"
#include "crc_by_bits.h"
#include "store_text.h"
#include "stored_classes.h"

#include <climits>

namespace {

STORED_CLASS class_of(std::vector<STORED_MEMBER> members, std::string name = "TEST") {
    STORED_CLASS stored;
    stored.id = 0xd16780d1;
    stored.name = std::move(name);
    stored.size = 16;
    stored.members = std::move(members);
    name_table(stored);
    return stored;
}

std::vector<std::string> columns_of(STORED_CLASS const& stored) {
    std::vector<std::string> columns;
    for (STORED_MEMBER const& member : stored.members)
        columns.push_back(member.column);
    return columns;
}

using TEXTS = std::vector<std::string>;

// ------------------------------------------------------------------------------------------------
// Checksums
// ------------------------------------------------------------------------------------------------

/// A number in its bytes, the highest first.
std::string bytes_of(std::uint64_t number, int count = 8) {
    std::string bytes;
    for (int shift = 8 * (count - 1); shift >= 0; shift -= 8)
        bytes += static_cast<char>(number >> shift);
    return bytes;
}

TEST(StoreChecksum, OfARecordIsTakenOfTheBytesThatAreDocumented) {
    STORED_CLASS const stored =
        class_of({{"a", MEMBER_TYPE::INT32, ""}, {"b", MEMBER_TYPE::DOUBLE, ""}});
    CELL const cells[] = {static_cast<CELL>(-2), 0x3ff8000000000000};
    auto const start = [](std::uint64_t kind) {
        return bytes_of(0xd16780d1, 4) + bytes_of(kind, 4);
    };
    EXPECT_EQ(value_checksum(stored, "clk", cells),
              crc_by_bits(start(1) + bytes_of(3) + "clk" + std::string(7, '\xff') + "\xfe"
                          + bytes_of(0x3ff8000000000000)));
    EXPECT_EQ(array_checksum(stored, "clk", 7, 9),
              crc_by_bits(start(2) + bytes_of(3) + "clk" + bytes_of(7) + bytes_of(9)));
    EXPECT_EQ(chunk_checksum(stored, 7, 9, "elements"),
              crc_by_bits(start(3) + bytes_of(7) + bytes_of(9) + "elements"));
    EXPECT_EQ(class_checksum(stored), crc_by_bits(start(4) + bytes_of(16) + bytes_of(4) + "TEST"
                                                  + "\"a\" int32, \"b\" double"));
}

TEST(StoreChecksum, OfARecordCoversAllThatItSays) {
    STORED_CLASS const stored =
        class_of({{"a", MEMBER_TYPE::INT64, ""}, {"b", MEMBER_TYPE::INT32, ""}});
    STORED_CLASS other = stored;
    other.id = 1;
    CELL const cells[] = {1, 2};
    CELL const swapped[] = {2, 1};
    std::vector<std::uint64_t> const sums = {
        value_checksum(stored, "ab", cells),
        value_checksum(stored, "a", cells),
        value_checksum(stored, "ab", swapped),
        value_checksum(other, "ab", cells),
        array_checksum(stored, "ab", 1, 2),
        array_checksum(stored, "a", 1, 2),
        array_checksum(stored, "ab", 2, 1),
        array_checksum(other, "ab", 1, 2),
        chunk_checksum(stored, 1, 2, "ab"),
        chunk_checksum(stored, 2, 1, "ab"),
        chunk_checksum(stored, 1, 2, "a"),
        chunk_checksum(other, 1, 2, "ab"),
        class_checksum(stored),
        class_checksum(other),
    };
    for (std::size_t i = 0; i < sums.size(); ++i)
        for (std::size_t j = 0; j < i; ++j)
            EXPECT_NE(sums[i], sums[j]) << i << ' ' << j;
}

// ------------------------------------------------------------------------------------------------
// Classes
// ------------------------------------------------------------------------------------------------

TEST(StoreClass, IsDescribedByItsSerializer) {
    STORED_CLASS stored;
    ASSERT_TRUE(describe(*pdb_find_class(0xd16780d1), stored));
    EXPECT_EQ(stored.id, 0xd16780d1u);
    EXPECT_EQ(stored.name, "BIG_TIME");
    EXPECT_EQ(stored.size, 16u);
    EXPECT_EQ(members_text(stored), "\"m_value\" int64, \"m_unit\" int32");
    EXPECT_EQ(stored.table, "BIG_TIME_d16780d1");
    EXPECT_EQ(stored.packed_size(), 12u);
    ASSERT_TRUE(describe(*pdb_find_class(0xa7a44bef), stored));
    EXPECT_EQ(members_text(stored),
              "\"m_numerator\" int64, \"m_denominator\" int64, \"m_value\" double");
}

/// Serializers of every shape.
struct SHAPED {
    inline static int s_shape = 0;
    long long m_a = 0;
    BIG_TIME m_time;

    bool operator<<(STORE_SEGMENT& segment) {
        switch (s_shape) {
        case 0: // a base without a name, a member with one, a member without one
            segment.begin_object(nullptr, this);
            m_time << segment;
            segment.m_item_name = "m_time";
            m_time << segment;
            segment.transfer(&m_a);
            return segment.end_object();
        case 1: // never closed
            segment.begin_object(nullptr, this);
            return true;
        case 2: // closed twice
            segment.begin_object(nullptr, this);
            segment.end_object();
            return segment.end_object();
        case 3: // a member outside
            segment.transfer(&m_a);
            segment.begin_object(nullptr, this);
            return segment.end_object();
        default: return false; // nothing
        }
    }
};

TEST(StoreClass, MembersOfAnObjectWithinStandBehindItsName) {
    SHAPED::s_shape = 0;
    TEST_RECORD<SHAPED> const record(0x7e570020);
    STORED_CLASS stored;
    ASSERT_TRUE(describe(record, stored));
    EXPECT_EQ(members_text(stored),
              "\"BIG_TIME.m_value\" int64, \"BIG_TIME.m_unit\" int32, \"m_time.m_value\" int64, "
              "\"m_time.m_unit\" int32, \"\" int64");
    EXPECT_EQ(columns_of(stored), (TEXTS{"BIG_TIME_m_value", "BIG_TIME_m_unit", "m_time_m_value",
                                         "m_time_m_unit", "_"}));
}

TEST(StoreClass, AnObjectThatIsNotTransferredWholeIsNoClass) {
    TEST_RECORD<SHAPED> const record(0x7e570021);
    STORED_CLASS stored;
    for (SHAPED::s_shape = 1; SHAPED::s_shape < 5; ++SHAPED::s_shape)
        EXPECT_FALSE(describe(record, stored)) << SHAPED::s_shape;
}

TEST(StoreClass, ColumnsAreIdentifiersThatAreAllDifferent) {
    MEMBER_TYPE const i = MEMBER_TYPE::INT64;
    MEMBER_TYPE const d = MEMBER_TYPE::DOUBLE;
    EXPECT_EQ(columns_of(class_of({{"a", i, ""}, {"A", i, ""}, {"a", i, ""}, {"a_2", i, ""}})),
              (TEXTS{"a", "A_2", "a_3", "a_2_2"}));
    EXPECT_EQ(columns_of(class_of({{"name", i, ""}, {"Checksum", i, ""}})),
              (TEXTS{"name_2", "Checksum_2"}));
    EXPECT_EQ(columns_of(class_of({{"x", d, ""}, {"x_real", d, ""}, {"x", i, ""}})),
              (TEXTS{"x", "x_real_2", "x_2"}));
    EXPECT_EQ(columns_of(class_of({{"a b", i, ""}, {"a\"b", i, ""}, {"\xc3\xa4", i, ""}})),
              (TEXTS{"a_b", "a_b_2", "__"}));
    EXPECT_EQ(class_of({{std::string(99, 'x'), i, ""}}).members[0].column, std::string(40, 'x'));
    EXPECT_EQ(class_of({}, "std::pair<int, long>").table, "std__pair_int__long__d16780d1");
    EXPECT_EQ(class_of({}, "SQLite_X").table, "_SQLite_X_d16780d1");
    EXPECT_LE(class_of({}, std::string(99, 'x')).table.size(), 49u);
}

TEST(StoreClass, MembersAreReadFromTheirText) {
    STORED_CLASS const stored = class_of({{"a\"\\\n", MEMBER_TYPE::INT64, ""},
                                          {"", MEMBER_TYPE::INT32, ""},
                                          {", \"b\" int64", MEMBER_TYPE::DOUBLE, ""}});
    std::string const text = members_text(stored);
    EXPECT_EQ(text, "\"a\\\"\\\\\\x0A\" int64, \"\" int32, \", \\\"b\\\" int64\" double");
    std::vector<STORED_MEMBER> members;
    ASSERT_TRUE(read_members(text, members));
    STORED_CLASS read = stored;
    read.members = members;
    EXPECT_EQ(members_text(read), text);
    EXPECT_TRUE(read_members("", members));
    for (std::size_t length = 1; length < text.size(); ++length) {
        bool const is_whole = length == 17 || length == 27; // behind a member
        EXPECT_EQ(read_members(text.substr(0, length), members), is_whole) << length;
    }
}

// ------------------------------------------------------------------------------------------------
// Text and packed records
// ------------------------------------------------------------------------------------------------

TEST(StoreText, QuotedBytesAreReadBack) {
    std::string every_byte;
    for (int byte = 0; byte < 256; ++byte)
        every_byte += static_cast<char>(byte);
    for (std::string const& bytes : {std::string(), std::string("a"), every_byte}) {
        std::string const text = quoted_bytes(bytes) + " rest";
        for (char const c : text)
            EXPECT_TRUE(c >= 0x20 && c <= 0x7e);
        std::string_view rest = text;
        std::string read;
        ASSERT_TRUE(take_quoted(rest, read));
        EXPECT_EQ(read, bytes);
        EXPECT_EQ(rest, " rest");
    }
    EXPECT_EQ(shown(std::string(100, 'x')), '"' + std::string(100, 'x') + '"');
    EXPECT_EQ(shown(std::string(101, 'x')), '"' + std::string(100, 'x') + "...\"");
}

TEST(StoreText, PackedRecordsHaveTheHighestByteFirst) {
    STORED_CLASS const stored = class_of({{"a", MEMBER_TYPE::INT64, ""},
                                          {"b", MEMBER_TYPE::INT32, ""},
                                          {"c", MEMBER_TYPE::DOUBLE, ""}});
    CELL const cells[] = {0x0102030405060708, static_cast<CELL>(-2), 0x3ff8000000000000};
    std::string bytes = "x";
    pack(stored, cells, bytes);
    EXPECT_EQ(bytes, std::string("x\1\2\3\4\5\6\7\10\xff\xff\xff\xfe\x3f\xf8\0\0\0\0\0\0", 21));
    CELL read[3];
    unpack(stored, bytes.data() + 1, read);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(read[i], cells[i]);
    EXPECT_EQ(elements_in_chunk(stored), 32768u / 20);
    EXPECT_EQ(elements_in_chunk(class_of({})), 32768u);
}

} // namespace
