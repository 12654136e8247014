#ifndef UNITS_H
#define UNITS_H

/// @file
/// The library's units as a user names them.

#include "big_sys.h"

#include <string>

/// The names of all units, for a message: "fs, ps, ns, ...".
std::string const& unit_names();

/// The unit with a name, in any letter case.
///
/// @param option the option that the name was given to
///
/// Throws USAGE_ERROR for anything that is not one unit's name.
BIG_TIME::TIME_UNIT unit_named(std::string const& name, std::string const& option);

#endif
