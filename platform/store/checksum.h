#ifndef STORE_CHECKSUM_H
#define STORE_CHECKSUM_H

/// @file
/// The checksum of records, pages, journals and dumps.

#include <cstddef>
#include <cstdint>
#include <string_view>

/// A number whose bytes in memory are those of the argument, the highest first.
inline std::uint64_t highest_byte_first(std::uint64_t number) {
    static_assert(__BYTE_ORDER__ == __ORDER_LITTLE_ENDIAN__);
    return __builtin_bswap64(number);
}

/// The CRC-64 of bytes that come in pieces: the polynomial of ECMA-182, reflected, with all bits
/// inverted before and after ("CRC-64/XZ"; of "123456789" it is 995dc9bbdf1939fa).
///
/// Where the processor multiplies polynomials over two elements, that is used; elsewhere tables of
/// what each byte does. Defining BIG_PORTABLE leaves out the first.
class CHECKSUM {
public:
    CHECKSUM();
    CHECKSUM& add(std::string_view bytes);
    /// Adds numbers, each in its eight bytes, the highest byte first.
    CHECKSUM& add(std::uint64_t const* numbers, std::size_t count);
    CHECKSUM& add(std::uint64_t number) { return add(&number, 1); }
    std::uint64_t value() const;

    /// A polynomial of two words that has the same remainder as the bytes so far.
    struct STATE {
        std::uint64_t high; ///< from x^64 on
        std::uint64_t low;
    };

private:
    STATE m_state;
};

#endif
