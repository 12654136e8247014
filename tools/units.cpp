#include "units.h"

#include "command_line.h"
#include "text.h"

std::string const& unit_names() {
    static std::string const s_names = [] {
        std::string names;
        for (int unit = BIG_TIME::UNIT_NONE + 1; unit < BIG_TIME::MAX_TIME_UNIT; ++unit) {
            names += names.empty() ? "" : ", ";
            names += BIG_TIME::get_unit_name(unit);
        }
        return names;
    }();
    return s_names;
}

BIG_TIME::TIME_UNIT unit_named(std::string const& name, std::string const& option) {
    BIG_TIME::TIME_UNIT const unit = big_get_time_unit(name);
    if (unit == BIG_TIME::UNIT_NONE || unit == BIG_TIME::MAX_TIME_UNIT) {
        throw USAGE_ERROR(option + ": " + in_quotes(name) + " is not a unit: expected one of "
                          + unit_names());
    }
    return unit;
}
