// A path file has one path to a line:
//
//   file  = line...
//   line  = path NAME: pin pin...
//         | blank pin...            more pins of the path above
//         | # anything
//   pin   = NAME [(rise) | (fall)]  the edge with which the delay ends at the pin
//
// The words stand between blanks; a NAME has none.

#include "path_list.h"

#include <algorithm>

namespace {

constexpr std::string_view BLANKS = " \t\r\v\f";

/// Takes the next word off a text; empty when there is none.
std::string_view take_word(std::string_view& text) {
    text.remove_prefix(std::min(text.find_first_not_of(BLANKS), text.size()));
    std::string_view const word = text.substr(0, text.find_first_of(BLANKS));
    text.remove_prefix(word.size());
    return word;
}

std::string quoted(std::string_view text) {
    return '"' + std::string(text) + '"';
}

[[noreturn]] void refuse(std::string const& place, std::string const& reason) {
    throw PATH_ERROR(place + ": " + reason);
}

/// Adds the pins that a text names.
void add_pins(std::string_view text, std::string const& place, std::vector<PATH_PIN>& pins) {
    for (auto word = take_word(text); !word.empty(); word = take_word(text)) {
        if (word.front() != '(') {
            pins.push_back({std::string(word), std::nullopt});
        } else if (word != "(rise)" && word != "(fall)") {
            refuse(place, "found " + quoted(word) + "; expected a pin, (rise) or (fall)");
        } else if (pins.empty() || pins.back().edge) {
            refuse(place, "found " + quoted(word) + "; expected a pin before it");
        } else {
            pins.back().edge = word == "(rise)" ? EDGE::RISE : EDGE::FALL;
        }
    }
}

/// Reads a path that may be continued.
NAMED_PATH begin_path(std::string_view text, std::string const& place) {
    std::string_view const name = take_word(text);
    if (name.size() < 2 || name.back() != ':') {
        refuse(place, "found " + (name.empty() ? "no name" : quoted(name))
                          + "; expected the path's name and a colon, as in \"NAME: PIN PIN\"");
    }
    NAMED_PATH path{std::string(name.substr(0, name.size() - 1)), {}, place};
    add_pins(text, place, path.pins);
    return path;
}

void check_length(NAMED_PATH const& path) {
    if (path.pins.size() < 2) {
        refuse(path.place, "found a path of " + std::to_string(path.pins.size())
                               + (path.pins.size() == 1 ? " pin" : " pins")
                               + "; expected at least two");
    }
}

/// "a, b, c"
template <typename NAMES>
std::string list_of(NAMES const& names) {
    std::string list;
    for (auto const& name : names) {
        list += (list.empty() ? "" : ", ") + std::string(name);
    }
    return list;
}

PIN pin_of(PATH_PIN const& pin, NAMED_PATH const& path, DELAY_GRAPH const& graph) {
    if (std::optional<PIN> const found = graph.find(pin.name)) {
        return *found;
    }
    std::vector<std::string> const near = graph.near_names(pin.name);
    refuse(path.place, "path " + path.name + ": no delay starts or ends at " + quoted(pin.name)
                           + "; expected a pin"
                           + (near.empty() ? "" : ", of which the nearest are " + list_of(near)));
}

} // namespace

NAMED_PATH read_path(std::string_view text, std::string const& place) {
    NAMED_PATH path = begin_path(text, place);
    check_length(path);
    return path;
}

std::vector<NAMED_PATH> read_paths(std::string_view text, std::string const& file) {
    std::vector<NAMED_PATH> paths;
    for (std::size_t number = 1; !text.empty(); ++number) {
        std::size_t const end = std::min(text.find('\n'), text.size());
        std::string_view const line = text.substr(0, end);
        text.remove_prefix(std::min(end + 1, text.size()));
        std::string const place = file + ':' + std::to_string(number);

        bool const is_continued = line.find_first_of(BLANKS) == 0;
        std::string_view rest = line;
        std::string_view const word = take_word(rest);
        if (word.empty() || word.front() == '#') {
            continue;
        }
        if (!is_continued && word == "path") {
            paths.push_back(begin_path(rest, place));
        } else if (is_continued && !paths.empty()) {
            add_pins(line, place, paths.back().pins);
        } else {
            refuse(place, "found " + quoted(word) + "; expected \"path NAME: PIN PIN ...\"");
        }
    }
    for (NAMED_PATH const& path : paths) {
        check_length(path);
    }
    return paths;
}

std::vector<HOP> hops_of(NAMED_PATH const& path, DELAY_GRAPH const& graph, EDGE edge) {
    std::vector<HOP> hops;
    PIN from = pin_of(path.pins.front(), path, graph);
    for (std::size_t i = 1; i < path.pins.size(); ++i) {
        PIN const to = pin_of(path.pins[i], path, graph);
        if (!graph.has_delay(from, to)) {
            std::vector<std::string_view> names;
            for (PIN const pin : graph.successors(from)) {
                names.push_back(graph.name(pin));
            }
            refuse(path.place, "path " + path.name + ": no delay leads from "
                                   + quoted(graph.name(from)) + " to " + quoted(graph.name(to))
                                   + "; expected "
                                   + (names.empty() ? "another start, as none does from there"
                                                    : "one of " + list_of(names)));
        }
        hops.push_back({from, to, path.pins[i].edge.value_or(edge)});
        from = to;
    }
    return hops;
}
