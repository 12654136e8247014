#ifndef PRINTING_H
#define PRINTING_H

/// @file
/// How a failing test shows the library's values.

#include "big_sys.h"

#include <iosfwd>

void PrintTo(BIG_TIME const& time, std::ostream* out);
void PrintTo(BIG_TIME::TIME_UNIT unit, std::ostream* out);
void PrintTo(BIG_ULONG128 const& value, std::ostream* out);

#endif
