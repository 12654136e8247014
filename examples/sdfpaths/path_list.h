#ifndef PATH_LIST_H
#define PATH_LIST_H

/// @file
/// Paths as a user names them.

#include "delay_graph.h"

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

/// Paths that cannot be read or are not there. what() is "PLACE: reason".
class PATH_ERROR : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A pin of a path, and which edge of it is asked for; none for the one that counts everywhere.
struct PATH_PIN {
    std::string name;
    std::optional<EDGE> edge;
};

/// A path by names.
struct NAMED_PATH {
    std::string name;
    std::vector<PATH_PIN> pins; ///< at least two
    std::string place;          ///< where it was read, for messages: "FILE:LINE"
};

/// Reads "NAME: PIN PIN ...", where a pin may be followed by (rise) or (fall). Throws PATH_ERROR.
NAMED_PATH read_path(std::string_view text, std::string const& place);

/// Reads a path file; the grammar is in path_list.cpp. Throws PATH_ERROR.
std::vector<NAMED_PATH> read_paths(std::string_view text, std::string const& file);

/// A step of a path that is in the graph.
struct HOP {
    PIN from;
    PIN to;
    EDGE edge;
};

/// The steps of a path. Throws PATH_ERROR, which says what is not there and what is nearest.
///
/// @param edge for the pins that ask for none
std::vector<HOP> hops_of(NAMED_PATH const& path, DELAY_GRAPH const& graph, EDGE edge);

#endif
