#include "delay.h"

#include "decimal.h"

#include <stdexcept>

namespace {

/// Returns a time that leaves room to add another such one.
BIG_TIME checked(BIG_TIME const& time) {
    constexpr long long LARGEST = 1LL << 62;
    if (time.get_time_value() > LARGEST || time.get_time_value() < -LARGEST) {
        throw std::range_error("more than 2^62 picoseconds");
    }
    return time;
}

/// Takes over the account of what was cut.
void add_cuts(DELAY& sum, DELAY const& delay) {
    sum.cut_up += delay.cut_up;
    sum.cut_down += delay.cut_down;
    if (delay.loss > sum.loss) { // as digits behind a point compare
        sum.loss = delay.loss;
        sum.loss_line = delay.loss_line;
    }
}

} // namespace

DELAY delay_of(std::string_view number, int power, std::size_t line) {
    DELAY delay;
    std::string const picoseconds = shifted(number, power);
    if (!delay.time.set_time(picoseconds, BIG_TIME::UNIT_PS, false)) {
        throw std::range_error("more than 2^62 picoseconds");
    }
    delay.time = checked(delay.time);

    // As it is done without much thought: the number as a double, times the timescale as one.
    delay.nanoseconds = to_double(number) * to_double("1e" + std::to_string(power - 3));

    // What the library has cut off.
    std::size_t const point = picoseconds.find('.');
    if (point != std::string::npos) {
        std::size_t const end = picoseconds.find_last_not_of('0') + 1;
        delay.loss = picoseconds.substr(point + 1, end - (point + 1));
    }
    if (!delay.loss.empty()) {
        (picoseconds.front() == '-' ? delay.cut_down : delay.cut_up) = 1;
        delay.loss_line = line;
    }
    return delay;
}

BIG_TIME sum_of(BIG_TIME const& a, BIG_TIME const& b) {
    return checked(a + b); // cannot wrap, as both are checked
}

DELAY sum_of(DELAY const& a, DELAY const& b) {
    DELAY sum = a;
    sum.time = sum_of(a.time, b.time);
    sum.nanoseconds += b.nanoseconds;
    add_cuts(sum, b);
    return sum;
}

std::string nanoseconds_text(BIG_TIME const& time) {
    constexpr unsigned short PLACES = 3;
    return time.to_string_without_unit(BIG_TIME::UNIT_NS, PLACES, false);
}
