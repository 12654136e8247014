#include "printing.h"

#include "ulong128_inspector.h"

#include <ostream>

void PrintTo(BIG_TIME const& time, std::ostream* out) {
    *out << "count " << time.get_time_value() << " held in ";
    PrintTo(time.get_time_unit(), out);
}

void PrintTo(BIG_TIME::TIME_UNIT unit, std::ostream* out) {
    static char const* const names[] = {"UNIT_NONE", "UNIT_FS",   "UNIT_PS",  "UNIT_NS",
                                        "UNIT_US",   "UNIT_MS",   "UNIT_S",   "UNIT_HZ",
                                        "UNIT_KHZ",  "UNIT_MHZ",  "UNIT_GHZ", "UNIT_TEN_TH_NS",
                                        "UNIT_BPS",  "UNIT_MBPS", "UNIT_GBPS"};
    if (unit >= 0 && unit < BIG_TIME::MAX_TIME_UNIT)
        *out << names[unit];
    else
        *out << "unit " << static_cast<int>(unit);
}

void PrintTo(BIG_ULONG128 const& value, std::ostream* out) {
    BIG_ULONG128_INSPECTOR::CELLS const cells = BIG_ULONG128_INSPECTOR::cells(value);
    int const length = BIG_ULONG128_INSPECTOR::length(value);
    *out << "length " << length << ", cells" << std::hex;
    for (int i = 0; i < BIG_ULONG128::MAX_CELL; ++i)
        *out << (i == length ? " | 0x" : " 0x") << cells.at(static_cast<std::size_t>(i));
    *out << std::dec;
}
