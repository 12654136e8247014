// Classes and objects as a store sees them.

#include "record.h"

#include "checksum.h"
#include "store_text.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <set>

#include <cxxabi.h>

// ------------------------------------------------------------------------------------------------
// Types of members
// ------------------------------------------------------------------------------------------------

namespace {

struct TYPE_ROW {
    std::string_view name;
    std::size_t bytes;
};

//   name, bytes in a packed record; in the order of MEMBER_TYPE
constexpr std::array<TYPE_ROW, 3> TYPES = {{
    {"int64", 8},
    {"int32", 4},
    {"double", 8},
}};

TYPE_ROW const& row_of(MEMBER_TYPE type) {
    return TYPES[static_cast<std::size_t>(type)];
}

} // namespace

std::string_view type_name(MEMBER_TYPE type) {
    return row_of(type).name;
}

std::size_t packed_size(MEMBER_TYPE type) {
    return row_of(type).bytes;
}

std::size_t STORED_CLASS::packed_size() const {
    std::size_t bytes = 0;
    for (STORED_MEMBER const& member : members)
        bytes += ::packed_size(member.type);
    return bytes;
}

// ------------------------------------------------------------------------------------------------
// Tables and columns
// ------------------------------------------------------------------------------------------------

namespace {

/// Servers cut identifiers at 63 bytes.
constexpr std::size_t LONGEST_STEM = 40;

/// Columns that the tables have beside the members.
constexpr std::string_view OWN_COLUMNS[] = {"name", "checksum", "array_id", "element"};

bool is_identifier_character(char c) {
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '_';
}

/// A name as an identifier, without regard to whether it is taken. What begins with "sqlite_" is
/// SQLite's own.
std::string identifier(std::string_view name) {
    std::string text(name.substr(0, LONGEST_STEM));
    if (in_lower_case(text).starts_with("sqlite_"))
        text.insert(0, "_");
    for (char& c : text)
        if (!is_identifier_character(c))
            c = '_';
    return text.empty() ? "_" : text;
}

constexpr std::string_view READABLE_SUFFIX = "_real";

std::string hexadecimal(std::uint64_t number, int digits) {
    std::string text;
    for (int shift = 4 * (digits - 1); shift >= 0; shift -= 4)
        text += "0123456789abcdef"[(number >> shift) & 15];
    return text;
}

} // namespace

std::string readable_column(STORED_MEMBER const& member) {
    return member.column + std::string(READABLE_SUFFIX);
}

void name_table(STORED_CLASS& stored) {
    stored.table = identifier(stored.name) + '_' + hexadecimal(stored.id, 8);

    std::set<std::string> taken(std::begin(OWN_COLUMNS), std::end(OWN_COLUMNS)); // in lower case
    auto const is_taken = [&taken](std::string const& column) {
        return taken.contains(in_lower_case(column));
    };
    for (STORED_MEMBER& member : stored.members) {
        std::string const stem = identifier(member.name);
        member.column = stem;
        for (int number = 2; is_taken(member.column) || is_taken(readable_column(member)); ++number)
            member.column = stem + '_' + std::to_string(number);
        taken.insert(in_lower_case(member.column));
        taken.insert(in_lower_case(readable_column(member)));
    }
}

// ------------------------------------------------------------------------------------------------
// Serializing
// ------------------------------------------------------------------------------------------------

std::string readable_name(std::type_info const& type) {
    int status = 0;
    std::unique_ptr<char, void (*)(void*)> const name(
        abi::__cxa_demangle(type.name(), nullptr, nullptr, &status), std::free);
    return status == 0 ? name.get() : type.name();
}

namespace {

using SEGMENT = PDB_SEGMENT_TEMPLATE<PDB_ANY_SEG_BASE>;

/// Learns the members.
class LAYOUT_SEGMENT final : public SEGMENT {
public:
    explicit LAYOUT_SEGMENT(std::vector<STORED_MEMBER>& members) : m_members(members) {}

    void transfer(long long*) override { add(MEMBER_TYPE::INT64); }
    void transfer(int*) override { add(MEMBER_TYPE::INT32); }
    void transfer(double*) override { add(MEMBER_TYPE::DOUBLE); }

    // The object of the class itself opens the outermost record. One within it is a member, or a
    // base, whose members stand behind its name.
    void begin_object(PDB_THUNK_INFO const* record, void*) override {
        m_has_begun = true;
        m_prefixes.push_back(m_prefix);
        if (m_prefixes.size() > 1)
            m_prefix += (m_item_name ? m_item_name : readable_name(record->m_type)) + '.';
        m_item_name = nullptr;
    }

    bool end_object() override {
        if (m_prefixes.empty())
            return m_is_whole = false;
        m_prefix = m_prefixes.back();
        m_prefixes.pop_back();
        m_item_name = nullptr;
        return true;
    }

    /// Whether every object that was opened was closed, and no member stood outside.
    bool is_whole() const { return m_is_whole && m_has_begun && m_prefixes.empty(); }

private:
    void add(MEMBER_TYPE type) {
        m_is_whole = m_is_whole && !m_prefixes.empty();
        m_members.push_back({m_prefix + (m_item_name ? m_item_name : ""), type, ""});
        m_item_name = nullptr; // the next member has a name of its own, or none
    }

    std::vector<STORED_MEMBER>& m_members;
    std::vector<std::string> m_prefixes; ///< of the objects around the one that is open
    std::string m_prefix;
    bool m_has_begun = false;
    bool m_is_whole = true;
};

/// Hands the cells of an object to its members, or takes them from there.
template <bool SAVES>
class CELL_SEGMENT final : public SEGMENT {
public:
    using CELL_POINTER = std::conditional_t<SAVES, CELL*, CELL const*>;

    CELL_SEGMENT(STORED_CLASS const& stored, CELL_POINTER cells)
        : m_members(stored.members), m_cells(cells) {}

    void transfer(long long* member) override {
        if (!is_next(MEMBER_TYPE::INT64))
            return;
        if constexpr (SAVES)
            m_cells[m_next++] = static_cast<CELL>(*member);
        else
            *member = static_cast<long long>(m_cells[m_next++]);
    }

    void transfer(int* member) override {
        if (!is_next(MEMBER_TYPE::INT32))
            return;
        if constexpr (SAVES)
            m_cells[m_next++] = static_cast<CELL>(static_cast<long long>(*member));
        else
            *member = static_cast<int>(static_cast<std::uint32_t>(m_cells[m_next++]));
    }

    // The bytes are copied, as a double that passes through a register may change.
    void transfer(double* member) override {
        if (!is_next(MEMBER_TYPE::DOUBLE))
            return;
        if constexpr (SAVES)
            std::memcpy(&m_cells[m_next++], member, sizeof *member);
        else
            std::memcpy(member, &m_cells[m_next++], sizeof *member);
    }

    void begin_object(PDB_THUNK_INFO const*, void*) override { ++m_depth; }
    bool end_object() override {
        --m_depth;
        return m_fits;
    }

    bool is_whole() const { return m_fits && m_depth == 0 && m_next == m_members.size(); }

private:
    bool is_next(MEMBER_TYPE type) {
        m_fits = m_fits && m_next < m_members.size() && m_members[m_next].type == type;
        return m_fits;
    }

    std::vector<STORED_MEMBER> const& m_members;
    CELL_POINTER m_cells;
    std::size_t m_next = 0;
    int m_depth = 0;
    bool m_fits = true;
};

} // namespace

bool describe(PDB_THUNK_INFO const& record, STORED_CLASS& stored) {
    stored = {};
    stored.id = record.m_class_id;
    stored.name = readable_name(record.m_type);
    stored.size = record.m_size;

    std::vector<std::max_align_t> room(record.m_size / sizeof(std::max_align_t) + 1);
    record.m_constructor_fn(room.data());
    LAYOUT_SEGMENT segment(stored.members);
    record.m_serializer_fn(segment, room.data());
    record.m_destructor_fn(room.data());
    name_table(stored);
    return segment.is_whole();
}

bool save_object(PDB_THUNK_INFO const& record, STORED_CLASS const& stored, void const* object,
                 CELL* cells) {
    CELL_SEGMENT<true> segment(stored, cells);
    record.m_serializer_fn(segment, const_cast<void*>(object)); // which is only read
    return segment.is_whole();
}

bool load_object(PDB_THUNK_INFO const& record, STORED_CLASS const& stored, CELL const* cells,
                 void* object) {
    CELL_SEGMENT<false> segment(stored, cells);
    record.m_serializer_fn(segment, object);
    return segment.is_whole();
}

std::string difference(STORED_CLASS const& there, STORED_CLASS const& here, std::string& member) {
    member.clear();
    for (std::size_t i = 0; i < std::max(there.members.size(), here.members.size()); ++i) {
        if (i >= here.members.size()) {
            member = there.members[i].name;
            return "member " + shown(member) + " is missing here";
        }
        if (i >= there.members.size()) {
            member = here.members[i].name;
            return "member " + shown(member) + " is missing there";
        }
        STORED_MEMBER const& one = there.members[i];
        STORED_MEMBER const& other = here.members[i];
        member = other.name;
        if (one.name != other.name)
            return "member " + std::to_string(i + 1) + " is " + shown(one.name) + " there and "
                   + shown(other.name) + " here";
        if (one.type != other.type)
            return "member " + shown(other.name) + " is " + std::string(type_name(one.type))
                   + " there and " + std::string(type_name(other.type)) + " here";
    }
    member.clear();
    if (there.size != here.size)
        return "an object has " + std::to_string(there.size) + " bytes there and "
               + std::to_string(here.size) + " here";
    return "";
}

// ------------------------------------------------------------------------------------------------
// Text
// ------------------------------------------------------------------------------------------------

std::string shown(std::string_view name) {
    constexpr std::size_t LONGEST = 100;
    std::string text = quoted_bytes(name.substr(0, LONGEST));
    if (name.size() > LONGEST)
        text.insert(text.size() - 1, "...");
    return text;
}

std::string members_text(STORED_CLASS const& stored) {
    std::string text;
    for (STORED_MEMBER const& member : stored.members) {
        text += text.empty() ? "" : ", ";
        text += quoted_bytes(member.name) + ' ';
        text += type_name(member.type);
    }
    return text;
}

bool read_members(std::string_view text, std::vector<STORED_MEMBER>& members) {
    members.clear();
    while (!text.empty()) {
        if (!members.empty()) {
            if (!text.starts_with(", "))
                return false;
            text.remove_prefix(2);
        }
        STORED_MEMBER member;
        if (!take_quoted(text, member.name) || !text.starts_with(' '))
            return false;
        std::string_view const type = text.substr(1, text.find(',') - 1);
        auto const row = std::find_if(TYPES.begin(), TYPES.end(),
                                      [=](TYPE_ROW const& other) { return other.name == type; });
        if (row == TYPES.end())
            return false;
        text.remove_prefix(1 + type.size());
        member.type = static_cast<MEMBER_TYPE>(row - TYPES.begin());
        members.push_back(member);
    }
    return true;
}

// ------------------------------------------------------------------------------------------------
// Packed records
// ------------------------------------------------------------------------------------------------

std::uint64_t elements_in_chunk(STORED_CLASS const& stored) {
    constexpr std::size_t CHUNK_SIZE = 32768;
    return std::max<std::uint64_t>(1, CHUNK_SIZE / std::max<std::size_t>(1, stored.packed_size()));
}

void pack(STORED_CLASS const& stored, CELL const* cells, std::string& bytes) {
    for (STORED_MEMBER const& member : stored.members) {
        std::size_t const size = packed_size(member.type);
        std::uint64_t const number = highest_byte_first(*cells++ << (64 - 8 * size));
        char buffer[sizeof number];
        std::memcpy(buffer, &number, sizeof number);
        bytes.append(buffer, size);
    }
}

void unpack(STORED_CLASS const& stored, char const* bytes, CELL* cells) {
    for (STORED_MEMBER const& member : stored.members) {
        std::size_t const size = packed_size(member.type);
        std::uint64_t number = 0;
        std::memcpy(&number, bytes, size);
        // Shifted down as a signed number, which copies the sign of an int32 upwards.
        *cells++ = static_cast<CELL>(static_cast<std::int64_t>(highest_byte_first(number))
                                     >> (64 - 8 * size));
        bytes += size;
    }
}

// ------------------------------------------------------------------------------------------------
// Checksums
// ------------------------------------------------------------------------------------------------

namespace {

/// What kind of record a checksum is of.
enum RECORD_KIND : std::uint64_t { VALUE_RECORD = 1, ARRAY_RECORD, CHUNK_RECORD, CLASS_RECORD };

CHECKSUM start(STORED_CLASS const& stored, RECORD_KIND kind) {
    return CHECKSUM().add(std::uint64_t{stored.id} << 32 | kind);
}

} // namespace

std::uint64_t class_checksum(STORED_CLASS const& stored) {
    return start(stored, CLASS_RECORD)
        .add(stored.size)
        .add(stored.name.size())
        .add(stored.name)
        .add(members_text(stored))
        .value();
}

std::uint64_t value_checksum(STORED_CLASS const& stored, std::string_view name, CELL const* cells) {
    return start(stored, VALUE_RECORD)
        .add(name.size())
        .add(name)
        .add(cells, stored.members.size())
        .value();
}

std::uint64_t array_checksum(STORED_CLASS const& stored, std::string_view name, std::uint64_t id,
                             std::uint64_t count) {
    return start(stored, ARRAY_RECORD).add(name.size()).add(name).add(id).add(count).value();
}

std::uint64_t chunk_checksum(STORED_CLASS const& stored, std::uint64_t array, std::uint64_t first,
                             std::string_view elements) {
    return start(stored, CHUNK_RECORD).add(array).add(first).add(elements).value();
}
