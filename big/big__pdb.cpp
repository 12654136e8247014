// How BIG_TIME, BIG_FREQUENCY and BIG_FRACTION live in a database: their registration records and
// their serializers. Class ids, member names, member types and the order of members are those of
// every database that exists; they never change. Neither do the line tags, which are handed to the
// database as they stand here and are not the lines of this file.

#include "big__pdb.h"
#include "big_frame.h"

#include "big_fraction_sys.h"
#include "big_sys.h"

#define BIG_SOURCE_PATH "big/big__pdb"

static MEM_INITIALIZER s_mem_initializer("BIG");

// Bytes of an object, as stored databases know them.
static_assert(sizeof(BIG_TIME) == 16);
static_assert(sizeof(BIG_FREQUENCY) == 8);
static_assert(sizeof(BIG_FRACTION) == 24);

// The classes are registered in this order when the library is loaded and unregistered in reverse:
// class id, file, line tag.
PDB_CLASS_THUNK<BIG_TIME> BIG_TIME::s_thunk(0xd16780d1, BIG_SOURCE_PATH, 20);
PDB_CLASS_THUNK<BIG_FREQUENCY> BIG_FREQUENCY::s_thunk(0x4d709ad8, BIG_SOURCE_PATH, 32);
PDB_CLASS_THUNK<BIG_FRACTION> BIG_FRACTION::s_thunk(0xa7a44bef, BIG_SOURCE_PATH, 46);

namespace {

using SEGMENT = PDB_SEGMENT_TEMPLATE<PDB_ANY_SEG_BASE>;

/// Names one member to a segment and hands it over, to be read or written.
template <typename MEMBER>
void transfer(SEGMENT& segment, char const* name, int line_tag, MEMBER& member) {
    segment.m_item_name = name;
    segment.m_line = line_tag;
    segment.transfer(&member);
}

} // namespace

bool BIG_TIME::operator<<(SEGMENT& segment) {
    segment.begin_object(&s_thunk, this);
    transfer(segment, "m_value", 14, m_value);
    transfer(segment, "m_unit", 15, m_unit);
    return segment.end_object();
}

bool BIG_FREQUENCY::operator<<(SEGMENT& segment) {
    segment.begin_object(&s_thunk, this);
    transfer(segment, "m_value", 27, m_value);
    return segment.end_object();
}

bool BIG_FRACTION::operator<<(SEGMENT& segment) {
    segment.begin_object(&s_thunk, this);
    transfer(segment, "m_numerator", 39, m_numerator);
    transfer(segment, "m_denominator", 40, m_denominator);
    transfer(segment, "m_value", 41, m_value);
    return segment.end_object();
}
