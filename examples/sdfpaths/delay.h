#ifndef DELAY_H
#define DELAY_H

/// @file
/// A delay or a sum of delays: exact, and beside it as a program with floating point has it.

#include "big_sys.h"

#include <cstddef>
#include <string>
#include <string_view>

/// A delay or a sum of delays.
///
/// A time is held in picoseconds. Digits below that are cut off, which is kept account of: the true
/// delay is `time` when nothing was cut, and otherwise lies strictly between `time - cut_down` and
/// `time + cut_up` picoseconds.
struct DELAY {
    BIG_TIME time{0, BIG_TIME::UNIT_PS};
    double nanoseconds = 0.0; ///< the floating-point sum

    long long cut_up = 0;   ///< how many positive numbers were cut
    long long cut_down = 0; ///< how many negative numbers were cut
    std::string loss;       ///< the largest part cut off: the digits behind the point, in ps
    std::size_t loss_line = 0;
};

/// Reads a decimal number (see decimal.h) times 10^power as picoseconds.
///
/// @param line where it is, for DELAY::loss_line
/// Throws std::range_error when it is out of the range of sum_of().
DELAY delay_of(std::string_view number, int power, std::size_t line);

/// The sum. Throws std::range_error unless it is within 2^62 picoseconds, which is 53 days.
BIG_TIME sum_of(BIG_TIME const& a, BIG_TIME const& b);
DELAY sum_of(DELAY const& a, DELAY const& b);

/// A number of picoseconds in nanoseconds, with all three decimal places: "1.230".
std::string nanoseconds_text(BIG_TIME const& time);

#endif
