#ifndef SIGNAL_CHOICE_H
#define SIGNAL_CHOICE_H

/// @file
/// Variables of a dump as a user names them.

#include "vcd_reader.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

/// The variables that a text names, as positions in the list, in its order: those with that name,
/// given with its range or without; and if there are none, those whose name fits the text as a
/// pattern, in which * stands for any characters, points included, and ? for one.
std::vector<std::size_t> find_variables(std::vector<VCD_VARIABLE> const& variables,
                                        std::string_view text);

/// The names that a user may have meant by one that does not exist: at most five, the nearest
/// first.
std::vector<std::string> near_names(std::vector<VCD_VARIABLE> const& variables,
                                    std::string_view text);

#endif
