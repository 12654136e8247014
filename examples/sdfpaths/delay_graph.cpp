#include "delay_graph.h"

#include <algorithm>
#include <tuple>
#include <utility>

namespace {

/// Drops the backslashes from a name, but not before another one or before the divider, where they
/// tell one name from another.
std::string plain_name(std::string_view name, char divider) {
    std::string plain;
    for (std::size_t i = 0; i < name.size(); ++i) {
        if (name[i] == '\\' && i + 1 < name.size()) {
            ++i;
            if (name[i] == divider || name[i] == '\\') {
                plain += '\\';
            }
        }
        plain += name[i];
    }
    return plain;
}

/// The length of what two texts have in common at their beginning.
std::size_t common_beginning(std::string_view a, std::string_view b) {
    return static_cast<std::size_t>(std::mismatch(a.begin(), a.end(), b.begin(), b.end()).first
                                    - a.begin());
}

} // namespace

DELAY_GRAPH::DELAY_GRAPH(SDF_READER& reader, SDF_CORNER corner)
    : m_file(reader.file()), m_divider(reader.header().divider), m_power(reader.header().power),
      m_corner(corner) {
    std::string from;
    std::string to;
    reader.read_delays([&](SDF_DELAY const& delay) {
        std::string cell = plain_name(delay.instance, m_divider);
        if (!cell.empty()) {
            cell += m_divider;
        }
        from = cell + plain_name(delay.from, m_divider);
        to = cell + plain_name(delay.to, m_divider);
        std::string_view const rise = delay.values.front()[m_corner];
        std::string_view const fall = delay.values.size() > 1 ? delay.values[1][m_corner] : rise;
        m_delays.push_back({pin_of(from), pin_of(to), static_cast<std::uint32_t>(delay.line),
                            delay.is_increment, delay.condition, delay.edge, rise, fall});
    });
    std::stable_sort(m_delays.begin(), m_delays.end(), [](ENTRY const& a, ENTRY const& b) {
        return std::tie(a.from, a.to) < std::tie(b.from, b.to);
    });
}

/// The pin with a name, which is made if it is new.
PIN DELAY_GRAPH::pin_of(std::string const& name) {
    auto const [place, is_new] = m_pins.emplace(name, static_cast<PIN>(m_names.size()));
    if (is_new) {
        m_names.push_back(&place->first);
    }
    return place->second;
}

std::optional<PIN> DELAY_GRAPH::find(std::string_view name) const {
    auto const place = m_pins.find(plain_name(name, m_divider));
    return place == m_pins.end() ? std::nullopt : std::optional(place->second);
}

std::vector<std::string> DELAY_GRAPH::near_names(std::string_view name) const {
    constexpr std::size_t MOST_NAMES = 5;
    std::string const wanted = plain_name(name, m_divider);
    std::vector<std::pair<std::size_t, std::string_view>> candidates;
    for (std::string const* const candidate : m_names) {
        std::size_t const common = common_beginning(wanted, *candidate);
        if (common > 0) {
            candidates.emplace_back(common, *candidate);
        }
    }
    std::size_t const count = std::min(candidates.size(), MOST_NAMES);
    std::partial_sort(candidates.begin(), candidates.begin() + static_cast<std::ptrdiff_t>(count),
                      candidates.end(), [](auto const& a, auto const& b) {
                          return std::tie(b.first, a.second) < std::tie(a.first, b.second);
                      });
    std::vector<std::string> names;
    for (std::size_t i = 0; i < count; ++i) {
        names.emplace_back(candidates[i].second);
    }
    return names;
}

std::vector<PIN> DELAY_GRAPH::successors(PIN from) const {
    auto const [first, end] =
        std::equal_range(m_delays.begin(), m_delays.end(), ENTRY{from, 0, 0, false, {}, {}, {}, {}},
                         [](ENTRY const& a, ENTRY const& b) { return a.from < b.from; });
    std::vector<PIN> pins;
    for (auto entry = first; entry != end; ++entry) {
        if (pins.empty() || pins.back() != entry->to) {
            pins.push_back(entry->to);
        }
    }
    return pins;
}

/// All that the file says of the delay between two pins, in its order.
std::pair<DELAY_GRAPH::ENTRIES, DELAY_GRAPH::ENTRIES> DELAY_GRAPH::entries(PIN from, PIN to) const {
    return std::equal_range(m_delays.begin(), m_delays.end(),
                            ENTRY{from, to, 0, false, {}, {}, {}, {}},
                            [](ENTRY const& a, ENTRY const& b) {
                                return std::tie(a.from, a.to) < std::tie(b.from, b.to);
                            });
}

bool DELAY_GRAPH::has_delay(PIN from, PIN to) const {
    auto const [first, end] = entries(from, to);
    return first != end;
}

DELAY DELAY_GRAPH::delay(PIN from, PIN to, EDGE edge) const {
    auto const [first, end] = entries(from, to);
    std::optional<DELAY> best;
    for (auto entry = first; entry != end; ++entry) {
        // Each condition and edge has a delay of its own, made at its first mention.
        auto const is_same = [&](ENTRY const& other) {
            return other.condition == entry->condition && other.edge == entry->edge;
        };
        if (std::find_if(first, entry, is_same) != entry) {
            continue;
        }
        for (auto const number : {&ENTRY::rise, &ENTRY::fall}) {
            bool const is_other_edge = edge == (number == &ENTRY::rise ? EDGE::FALL : EDGE::RISE);
            std::optional<DELAY> const next =
                is_other_edge ? std::nullopt : total(entry, end, number);
            if (next
                && (!best
                    || (edge == EDGE::FASTEST ? next->time < best->time
                                              : best->time < next->time))) {
                best = next;
            }
        }
    }
    if (!best) {
        //                                      CORNER_MIN  CORNER_TYP  CORNER_MAX
        static constexpr char const* NAMES[] = {"min", "typ", "max"};
        throw DELAY_ERROR(place(first->line) + "found no " + NAMES[m_corner] + " value "
                          + (edge == EDGE::RISE   ? "for a rising edge "
                             : edge == EDGE::FALL ? "for a falling edge "
                                                  : "")
                          + "in the delay " + between(from, to)
                          + "; expected one (another corner or edge may have it)");
    }
    return *best;
}

/// What the entries with the condition and edge of the first one amount to; none when the file
/// gives no number.
std::optional<DELAY> DELAY_GRAPH::total(ENTRIES first, ENTRIES end,
                                        std::string_view ENTRY::*number) const {
    std::optional<DELAY> sum;
    for (auto entry = first; entry != end; ++entry) {
        std::string_view const text = (*entry).*number;
        if (text.empty() || entry->condition != first->condition || entry->edge != first->edge) {
            continue;
        }
        if (entry->is_increment && !sum) {
            throw DELAY_ERROR(place(entry->line) + "found an INCREMENT of the delay "
                              + between(entry->from, entry->to)
                              + "; expected an ABSOLUTE delay before it");
        }
        try {
            DELAY const delay = delay_of(text, m_power, entry->line);
            sum = entry->is_increment ? sum_of(*sum, delay) : delay;
        } catch (std::range_error const& error) {
            throw DELAY_ERROR(place(entry->line) + "found the delay value " + std::string(text)
                              + "; expected no " + error.what());
        }
    }
    return sum;
}

std::string DELAY_GRAPH::place(std::size_t line) const {
    return m_file + ':' + std::to_string(line) + ": ";
}

std::string DELAY_GRAPH::between(PIN from, PIN to) const {
    return std::string(name(from)) + " -> " + std::string(name(to));
}
