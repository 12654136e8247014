#ifndef VCD_CODE_TABLE_H
#define VCD_CODE_TABLE_H

#include <cstddef>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>
#include <vector>

/// From the identifier codes of a dump to its signals. Simulators give short codes, so that a code
/// of up to eight characters is one number, looked up in an open hash table; longer ones are legal
/// and go into a map.
class VCD_CODE_TABLE {
public:
    /// Means that there is no signal.
    static constexpr std::size_t NONE = SIZE_MAX;

    /// The signal of a code, NONE when it has none.
    std::size_t find(std::string_view code) const {
        if (code.size() > PACKED_SIZE) {
            auto const place = m_long_codes.find(code);
            return place == m_long_codes.end() ? NONE : place->second;
        }
        return m_slots[place_of(packed(code))].signal;
    }

    /// Adds a code that find() does not know; not an empty one.
    void add(std::string_view code, std::size_t signal);

private:
    static constexpr std::size_t PACKED_SIZE = 8;

    struct SLOT {
        std::uint64_t code = 0; ///< 0 in a free slot: no code is packed to it
        std::size_t signal = NONE;
    };

    /// The bytes of a code, the last one lowest. They are not 0, so that codes of different length
    /// differ too.
    static std::uint64_t packed(std::string_view code) {
        std::uint64_t number = 0;
        for (char const c : code) {
            number = number << 8 | static_cast<unsigned char>(c);
        }
        return number;
    }

    /// The slot that holds a code, or the free one in which to put it. The slot to try first comes
    /// from the high bits of the product with 2^64 / golden ratio (Knuth, volume 3, 6.4), in which
    /// every character of the code takes part.
    std::size_t place_of(std::uint64_t code) const {
        std::size_t place = (code * 0x9E3779B97F4A7C15u) >> m_shift;
        while (m_slots[place].code != code && m_slots[place].code != 0) {
            place = (place + 1) & (m_slots.size() - 1);
        }
        return place;
    }

    std::vector<SLOT> m_slots = std::vector<SLOT>(256); ///< 2^(64 - m_shift), at most half in use
    unsigned int m_shift = 56;
    std::size_t m_used = 0;
    std::map<std::string, std::size_t, std::less<>> m_long_codes;
};

#endif
