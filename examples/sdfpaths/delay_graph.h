#ifndef DELAY_GRAPH_H
#define DELAY_GRAPH_H

/// @file
/// The delays of a design between its pins.

#include "delay.h"
#include "sdf_reader.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <unordered_map>
#include <utility>
#include <vector>

/// Which of the delays between two pins counts.
enum class EDGE {
    SLOWEST, ///< the longest of rise and fall, under any condition
    FASTEST, ///< the shortest of them
    RISE,    ///< the longest with which the second pin rises
    FALL,    ///< the longest with which the second pin falls
};

/// A delay that the file does not have, or that cannot be used.
class DELAY_ERROR : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// A pin by its number.
using PIN = std::uint32_t;

/// The delays between pins at one corner.
///
/// A pin's name is that of its cell, the divider and the port, without the backslashes of the file;
/// only a backslash before another one or before the divider stays.
class DELAY_GRAPH {
public:
    /// Reads the delays. The text behind the reader must outlive the graph.
    DELAY_GRAPH(SDF_READER& reader, SDF_CORNER corner);

    std::size_t pin_count() const { return m_names.size(); }
    std::size_t delay_count() const { return m_delays.size(); }
    std::string_view name(PIN pin) const { return *m_names[pin]; }

    /// The pin with a name, which may have backslashes as in the file.
    std::optional<PIN> find(std::string_view name) const;
    /// At most five names that share the longest beginning with one that is not there.
    std::vector<std::string> near_names(std::string_view name) const;
    /// The pins that delays lead to from a pin, each once, in the order in which the file first
    /// names them.
    std::vector<PIN> successors(PIN from) const;

    /// Whether there is a delay between two pins.
    bool has_delay(PIN from, PIN to) const;
    /// The delay between two pins. Throws DELAY_ERROR when none is usable.
    DELAY delay(PIN from, PIN to, EDGE edge) const;

private:
    /// A delay as the file gives it.
    struct ENTRY {
        PIN from;
        PIN to;
        std::uint32_t line;
        bool is_increment;
        std::string_view condition;
        std::string_view edge;
        std::string_view rise; ///< decimal numbers, empty when not given
        std::string_view fall;
    };
    using ENTRIES = std::vector<ENTRY>::const_iterator;

    PIN pin_of(std::string const& name);
    std::pair<ENTRIES, ENTRIES> entries(PIN from, PIN to) const;
    std::optional<DELAY> total(ENTRIES first, ENTRIES end, std::string_view ENTRY::*number) const;
    std::string place(std::size_t line) const;
    std::string between(PIN from, PIN to) const;

    std::string m_file;
    char m_divider;
    int m_power;
    SDF_CORNER m_corner;
    std::unordered_map<std::string, PIN> m_pins;
    std::vector<std::string const*> m_names; ///< for each pin its key in m_pins
    std::vector<ENTRY> m_delays;             ///< by pins, and for the same pins as in the file
};

#endif
