#ifndef FAULT_CAMPAIGN_H
#define FAULT_CAMPAIGN_H

/// @file
/// What the tests of broken disks and killed programs share.

#include "pdb_store_sys.h"

#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>

/// How much a campaign does: a little, or much where BIG_FAULTS is `large` in the environment.
inline int campaign_size(int little, int much) {
    char const* const size = std::getenv("BIG_FAULTS");
    return size != nullptr && std::string_view(size) == "large" ? much : little;
}

/// The whole content of a store, every bit, as text. Throws what PDB_STORE::dump() does.
inline std::string dump_of(PDB_STORE& store) {
    std::string text;
    store.dump([&](std::string_view line) { text += line; });
    return text;
}

/// The same of the store at an address, which is checked, too: what is wrong comes in front.
inline std::string checked_dump_of(std::string const& address) {
    PDB_STORE store(address);
    std::string text;
    store.check([&](std::string const& problem) { text += "wrong: " + problem + '\n'; });
    return text + dump_of(store);
}

inline std::string content_of(std::string const& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

inline void write_content(std::string const& path, std::string_view content) {
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(content.data(), static_cast<std::streamsize>(content.size()));
}

#endif
