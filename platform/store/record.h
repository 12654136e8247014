#ifndef STORE_RECORD_H
#define STORE_RECORD_H

/// @file
/// What a store knows of a class and of an object: its members in the order of the serializer, and
/// the bits of each. docs/records.md describes the same for readers of a file.

#include "pdb_sys.h"

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

/// The bits of one member: an integer in two's complement, extended with its sign to 64 bits, or
/// the eight bytes of a double.
using CELL = std::uint64_t;

enum class MEMBER_TYPE : unsigned char { INT64, INT32, DOUBLE };

/// "int64", "int32" or "double".
std::string_view type_name(MEMBER_TYPE type);
/// Bytes of a member in a packed record.
std::size_t packed_size(MEMBER_TYPE type);

struct STORED_MEMBER {
    std::string name; ///< as the serializer names it; behind the outer member's and a point in an
                      ///< object within the object
    MEMBER_TYPE type;
    std::string column; ///< the member's column in the class's table
};

/// Members of a class at most, so that every engine has columns enough.
constexpr std::size_t MOST_MEMBERS = 500;

struct STORED_CLASS {
    std::uint32_t id = 0;
    std::string name; ///< the C++ name
    std::uint64_t size = 0;
    std::vector<STORED_MEMBER> members;
    std::string table; ///< the name of the class's table

    /// Bytes of an object's members, packed.
    std::size_t packed_size() const;
};

/// Gives the table and the columns their names, which follow from the id, the name and the members:
/// identifiers of letters, digits and underscores, different in any letter case, that are none of
/// the tables' own columns.
void name_table(STORED_CLASS& stored);
/// The name of a column that is free for a readable form of a member that is a double.
std::string readable_column(STORED_MEMBER const& member);

/// The C++ name of a type.
std::string readable_name(std::type_info const& type);

/// What a registration record says of its class. Runs the serializer over an object in the default
/// state.
///
/// @return false when the serializer did not transfer the object whole
bool describe(PDB_THUNK_INFO const& record, STORED_CLASS& stored);

/// The first difference between a class in a store and the same class in this program: "" when
/// there is none, else a text such as `member "m_unit" is int32 there and int64 here`.
///
/// @param member receives the name of the member that differs, "" when it is the size or the number
std::string difference(STORED_CLASS const& there, STORED_CLASS const& here, std::string& member);

/// The members as text: `"m_value" int64, "m_unit" int32`, with names as quoted_bytes() writes
/// them.
std::string members_text(STORED_CLASS const& stored);
/// The inverse, for texts of members_text() alone. Returns false for any other.
bool read_members(std::string_view text, std::vector<STORED_MEMBER>& members);

/// A name for a message: quoted_bytes(), cut at 100 bytes.
std::string shown(std::string_view name);

/// Copies an object's members into cells. Returns false when the serializer did not transfer just
/// the members of the class, or said that it failed.
bool save_object(PDB_THUNK_INFO const& record, STORED_CLASS const& stored, void const* object,
                 CELL* cells);
/// The inverse.
bool load_object(PDB_THUNK_INFO const& record, STORED_CLASS const& stored, CELL const* cells,
                 void* object);

/// The elements that a chunk of an array holds, unless it is the last one.
std::uint64_t elements_in_chunk(STORED_CLASS const& stored);

/// Appends the members of one object, each in its bytes, the highest byte first.
void pack(STORED_CLASS const& stored, CELL const* cells, std::string& bytes);
/// The inverse: reads packed_size() bytes.
void unpack(STORED_CLASS const& stored, char const* bytes, CELL* cells);

// The checksum of each kind of record covers all that the record says and where it belongs.
std::uint64_t class_checksum(STORED_CLASS const& stored);
std::uint64_t value_checksum(STORED_CLASS const& stored, std::string_view name, CELL const* cells);
std::uint64_t array_checksum(STORED_CLASS const& stored, std::string_view name, std::uint64_t id,
                             std::uint64_t count);
std::uint64_t chunk_checksum(STORED_CLASS const& stored, std::uint64_t array, std::uint64_t first,
                             std::string_view elements);

#endif
