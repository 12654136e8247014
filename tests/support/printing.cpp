#include "printing.h"

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
