#ifndef ULONG128_INSPECTOR_H
#define ULONG128_INSPECTOR_H

/// @file
/// The members of a BIG_ULONG128, for tests.

#include "big_sys.h"

#include <array>

class BIG_ULONG128_INSPECTOR {
public:
    using CELLS = std::array<unsigned int, BIG_ULONG128::MAX_CELL>;

    static int length(BIG_ULONG128 const& value) { return value.m_length; }

    /// All four, those above the length too.
    static CELLS cells(BIG_ULONG128 const& value) {
        return {value.m_cells[0], value.m_cells[1], value.m_cells[2], value.m_cells[3]};
    }

    static void set(BIG_ULONG128& value, int length, CELLS const& cells) {
        value.m_length = length;
        for (int i = 0; i < BIG_ULONG128::MAX_CELL; ++i)
            value.m_cells[i] = cells[static_cast<std::size_t>(i)];
    }
};

#endif
