// A library that a test loads and unloads: it registers one class.

#include "pdb_sys.h"

struct RECORD : PDB_THUNK_INFO {
    RECORD()
        : PDB_THUNK_INFO(this, 0x10ad, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                         nullptr, nullptr, false, false, typeid(int), sizeof(int), "TEST",
                         "tests/platform_pdb_module", 1) {}
};

static RECORD const s_record;
