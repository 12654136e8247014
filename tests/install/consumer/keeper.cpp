// Keeps a time in a store, and finds it there.

#include <big_sys.h>
#include <pdb_store_sys.h>

#include <cstdio>

int main(int, char** arguments) {
    char const* const path = arguments[1] != nullptr ? arguments[1] : "kept.store";
    std::remove(path);
    PDB_STORE(path).put("clk", BIG_TIME("2.5 ns", true));
    BIG_TIME time;
    bool const is_kept = PDB_STORE(path).get("clk", time) && time == BIG_TIME("2.5 ns", true);
    std::remove(path);
    return is_kept ? 0 : 1;
}
