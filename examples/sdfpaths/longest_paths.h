#ifndef LONGEST_PATHS_H
#define LONGEST_PATHS_H

/// @file
/// The longest paths of a design.

#include "delay_graph.h"
#include "path_list.h"

#include <cstddef>
#include <vector>

/// The longest paths from pins to which no delay leads to pins from which none does, the longest
/// first. Throws DELAY_ERROR when the delays form a loop, or one of them is not usable.
///
/// @param count how many at most; time and memory grow with it
std::vector<std::vector<HOP>> longest_paths(DELAY_GRAPH const& graph, EDGE edge, std::size_t count);

#endif
