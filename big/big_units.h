#ifndef BIG_UNITS_H
#define BIG_UNITS_H

/// @file
/// The list of units, from which every table of units grows.

#include "big_sys.h"

// clang-format off
//      enumerator      text         power of ten to the storage unit of its category
#define BIG_UNIT_ROWS(row)                  \
    row(UNIT_NONE,      "",          0)     \
    row(UNIT_FS,        "fs",        -3)    \
    row(UNIT_PS,        "ps",        0)     \
    row(UNIT_NS,        "ns",        3)     \
    row(UNIT_US,        "us",        6)     \
    row(UNIT_MS,        "ms",        9)     \
    row(UNIT_S,         "s",         12)    \
    row(UNIT_HZ,        "Hz",        0)     \
    row(UNIT_KHZ,       "kHz",       3)     \
    row(UNIT_MHZ,       "MHz",       6)     \
    row(UNIT_GHZ,       "GHz",       9)     \
    row(UNIT_TEN_TH_NS, "ten_th_ns", 2)     \
    row(UNIT_BPS,       "bps",       0)     \
    row(UNIT_MBPS,      "Mbps",      6)     \
    row(UNIT_GBPS,      "Gbps",      9)
// clang-format on

#endif
