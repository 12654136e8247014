// The registration records in the standalone platform's registry.

#include "big_fraction_sys.h"
#include "big_sys.h"
#include "pdb_sys.h"

#include <gtest/gtest.h>

namespace {

TEST(BigPdbStandalone, EveryStoredClassIsFoundByItsId) {
    struct CASE {
        unsigned int id;
        std::type_info const& type;
        unsigned long size;
    };
    static const CASE cases[] = {{0xd16780d1, typeid(BIG_TIME), 16},
                                 {0x4d709ad8, typeid(BIG_FREQUENCY), 8},
                                 {0xa7a44bef, typeid(BIG_FRACTION), 24}};
    std::vector<PDB_THUNK_INFO const*> const records = pdb_registered_classes();
    ASSERT_EQ(records.size(), std::size(cases));
    for (std::size_t i = 0; i < records.size(); ++i) {
        SCOPED_TRACE(cases[i].type.name());
        EXPECT_EQ(records[i], pdb_find_class(cases[i].id)) << "in the order of registration";
        EXPECT_EQ(records[i]->m_type, cases[i].type);
        EXPECT_EQ(records[i]->m_size, cases[i].size);
        EXPECT_STREQ(records[i]->m_module, "BIG");
    }
}

} // namespace
