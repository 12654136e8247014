#ifndef BIG_UNIT_NAMES_H
#define BIG_UNIT_NAMES_H

/// @file
/// The unit that a plain name names. Nearly every text that is read has one, so that this is
/// compiled into those who read.

#include "big_units.h"

#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

namespace big_unit_names {

// Plain unit names are found without a comparison for each name. The letters of a name of at most
// four, folded to lower case, make a key; a multiplier for which the keys of all names fall into
// different slots is searched when this file is compiled.

inline constexpr std::size_t short_name_at_most = 4;

/// A key that is unique among names of one length.
constexpr std::uint32_t key_of_name(std::string_view name) {
    constexpr std::uint32_t lower_case = 0x20; // folds letters; no other byte becomes a letter
    std::size_t const n = name.size();
    std::uint32_t key = 0;
    for (std::size_t const at : {std::size_t{0}, n / 4, n / 2, n - 1})
        key = key << 8 | (static_cast<unsigned char>(name[at]) | lower_case);
    return key;
}

struct NAME_SLOT {
    std::uint32_t key = 0;
    std::uint32_t length = 0; ///< 0 when the slot is free
    BIG_TIME::TIME_UNIT unit = BIG_TIME::MAX_TIME_UNIT;
};

struct NAME_TABLE {
    static constexpr int slot_bits = 5;
    std::uint32_t multiplier = 1;
    std::array<NAME_SLOT, 1 << slot_bits> slots;

    constexpr std::size_t slot_of(std::uint32_t key) const {
        return static_cast<std::uint32_t>(key * multiplier) >> (32 - slot_bits);
    }
    /// Puts a name into its slot; false when the slot is taken.
    constexpr bool put(BIG_TIME::TIME_UNIT unit, std::string_view name) {
        if (name.empty() || name.size() > short_name_at_most)
            return true;
        NAME_SLOT& slot = slots[slot_of(key_of_name(name))];
        if (slot.length != 0)
            return false;
        slot = {key_of_name(name), static_cast<std::uint32_t>(name.size()), unit};
        return true;
    }
};

consteval NAME_TABLE make_name_table() {
#define PUT(unit, text, power) &&table.put(BIG_TIME::unit, text)
    for (std::uint32_t multiplier = 0x9E3779B1;; multiplier += 2) {
        NAME_TABLE table;
        table.multiplier = multiplier;
        if (true BIG_UNIT_ROWS(PUT))
            return table;
    }
#undef PUT
}

inline constexpr NAME_TABLE name_table = make_name_table();

/// Whether a text is a name, in either letter case.
constexpr bool is_name(std::string_view text, std::string_view name) {
    if (text.size() != name.size())
        return false;
    for (std::size_t i = 0; i < name.size(); ++i) {
        bool const is_letter = name[i] >= 'a' && name[i] <= 'z';
        if ((is_letter ? text[i] | 0x20 : text[i]) != name[i])
            return false;
    }
    return true;
}

} // namespace big_unit_names

/// The unit whose name a text is, in either letter case and with nothing around it; MAX_TIME_UNIT
/// for every other text, the empty one included.
inline BIG_TIME::TIME_UNIT big_plain_unit(std::string_view text) {
    using namespace big_unit_names;
    constexpr std::string_view long_name = "ten_th_ns"; // the only one
    if (text.empty() || text.size() > short_name_at_most)
        return is_name(text, long_name) ? BIG_TIME::UNIT_TEN_TH_NS : BIG_TIME::MAX_TIME_UNIT;
    std::uint32_t const key = key_of_name(text);
    NAME_SLOT const& slot = name_table.slots[name_table.slot_of(key)];
    return slot.key == key && slot.length == text.size() ? slot.unit : BIG_TIME::MAX_TIME_UNIT;
}

#endif
