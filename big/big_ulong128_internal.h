#ifndef BIG_ULONG128_INTERNAL_H
#define BIG_ULONG128_INTERNAL_H

/// @file
/// What the library's own files use of the 128-bit integers beside the public class.

#include "big_sys.h"

/// The magnitude of a signed number; that of -2^63 is 2^63.
BIG_LOCAL BIG_ULONG128 abs_value(long long value);

#endif
