#ifndef LOAD_ORDER_H
#define LOAD_ORDER_H

/// @file
/// What the library registers when it is loaded, and in which order.

#include "big_fraction_sys.h"
#include "big_sys.h"
#include "recording_platform.h"

#include <typeinfo>
#include <vector>

/// The registrations of every file, in link order.
inline std::vector<recording::CALL> load_order() {
    auto const record = [](const char* id, std::type_info const& type, const char* size,
                           const char* line_tag) {
        return recording::CALL{
            "PDB_THUNK_INFO",
            {id, "this", "false", "false", type.name(), size, "BIG", "big/big__pdb", line_tag}};
    };
    recording::CALL const file{"MEM_INITIALIZER", {"BIG"}};
    return {
        file, // big_time
        file, // big_long64
        file, // big_ulong64
        file, // big_ulong128
        file, // big_util
        file, // big__pdb
        record("0xd16780d1", typeid(BIG_TIME), "16", "20"),
        record("0x4d709ad8", typeid(BIG_FREQUENCY), "8", "32"),
        record("0xa7a44bef", typeid(BIG_FRACTION), "24", "46"),
        file, // big_radix
        file, // big_fraction
    };
}

/// What is unregistered when it is unloaded: the same in reverse, each by its name or class id.
inline std::vector<recording::CALL> unload_order() {
    std::vector<recording::CALL> calls;
    for (recording::CALL const& call : load_order())
        calls.insert(calls.begin(), {"~" + call.operation, {call.arguments.front()}});
    return calls;
}

#endif
