#include "vcd_code_table.h"

#include <utility>

void VCD_CODE_TABLE::add(std::string_view code, std::size_t signal) {
    if (code.size() > PACKED_SIZE) {
        m_long_codes.emplace(code, signal);
        return;
    }
    if (2 * (m_used + 1) > m_slots.size()) {
        std::vector<SLOT> const old_slots =
            std::exchange(m_slots, std::vector<SLOT>(2 * m_slots.size()));
        --m_shift;
        for (SLOT const& slot : old_slots) {
            if (slot.code != 0) {
                m_slots[place_of(slot.code)] = slot;
            }
        }
    }
    std::uint64_t const number = packed(code);
    m_slots[place_of(number)] = {number, signal};
    ++m_used;
}
