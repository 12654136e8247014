#ifndef CRC_BY_BITS_H
#define CRC_BY_BITS_H

/// @file
/// The store's checksum bit by bit, as the standard describes it.

#include <cstdint>
#include <string_view>

inline std::uint64_t crc_by_bits(std::string_view bytes) {
    std::uint64_t state = ~std::uint64_t{0};
    for (char const c : bytes) {
        state ^= static_cast<unsigned char>(c);
        for (int bit = 0; bit < 8; ++bit)
            state = (state >> 1) ^ ((state & 1) != 0 ? 0xc96c5795d7870f42 : 0);
    }
    return ~state;
}

#endif
