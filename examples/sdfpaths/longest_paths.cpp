// The longest paths to a pin are those to its predecessors, each with one delay more, of which the
// longest are kept. So the pins are taken in an order in which every delay leads forward (Kahn
// 1962), and each knows its longest paths when its turn comes.

#include "longest_paths.h"

#include <algorithm>
#include <cstdint>
#include <stdexcept>
#include <string>

namespace {

/// A path to a pin: its sum, and the path to its last pin but one, as a position among those of
/// that pin.
struct PATH_TO {
    BIG_TIME sum{0, BIG_TIME::UNIT_PS};
    PIN before = 0;
    std::uint32_t position = START;

    static constexpr std::uint32_t START = UINT32_MAX; ///< the path has only one pin
};

bool is_longer(PATH_TO const& a, PATH_TO const& b) {
    return b.sum < a.sum;
}

/// Refuses a graph with a loop. Every pin that still has predecessors is behind a loop or in one.
[[noreturn]] void refuse_loop(DELAY_GRAPH const& graph,
                              std::vector<std::vector<PIN>> const& successors,
                              std::vector<std::size_t> const& predecessor_counts) {
    // Backwards along such pins, until one comes again.
    std::vector<PIN> before(graph.pin_count());
    PIN pin = 0;
    for (PIN from = 0; from < graph.pin_count(); ++from) {
        for (PIN const to : successors[from]) {
            if (predecessor_counts[from] > 0 && predecessor_counts[to] > 0) {
                before[to] = from;
                pin = to;
            }
        }
    }
    std::vector<bool> is_seen(graph.pin_count());
    for (; !is_seen[pin]; pin = before[pin]) {
        is_seen[pin] = true;
    }
    std::string loop(graph.name(pin));
    for (PIN other = before[pin]; other != pin; other = before[other]) {
        loop.insert(0, std::string(graph.name(other)) + " -> ");
    }
    throw DELAY_ERROR("the longest paths: found a loop: " + std::string(graph.name(pin)) + " -> "
                      + loop + "; expected none, as its paths have no end");
}

/// The sum of a path that a delay makes longer, up to a pin.
BIG_TIME longer(BIG_TIME const& sum, BIG_TIME const& delay, DELAY_GRAPH const& graph, PIN pin) {
    try {
        return sum_of(sum, delay);
    } catch (std::range_error const& error) {
        throw DELAY_ERROR(std::string("the longest paths: found a sum of ") + error.what() + " at "
                          + std::string(graph.name(pin)) + "; expected less");
    }
}

/// The steps of a path to a pin.
std::vector<HOP> hops_to(PIN pin, PATH_TO const* path,
                         std::vector<std::vector<PATH_TO>> const& paths, EDGE edge) {
    std::vector<HOP> hops;
    while (path->position != PATH_TO::START) {
        hops.push_back({path->before, pin, edge});
        pin = path->before;
        path = &paths[pin][path->position];
    }
    std::reverse(hops.begin(), hops.end());
    return hops;
}

} // namespace

std::vector<std::vector<HOP>> longest_paths(DELAY_GRAPH const& graph, EDGE edge,
                                            std::size_t count) {
    std::vector<std::vector<PIN>> successors(graph.pin_count());
    std::vector<std::size_t> predecessor_counts(graph.pin_count());
    for (PIN from = 0; from < graph.pin_count(); ++from) {
        successors[from] = graph.successors(from);
        for (PIN const to : successors[from]) {
            ++predecessor_counts[to];
        }
    }

    std::vector<std::vector<PATH_TO>> paths(graph.pin_count());
    std::vector<PIN> ready;
    for (PIN pin = 0; pin < graph.pin_count(); ++pin) {
        if (predecessor_counts[pin] == 0) {
            paths[pin].emplace_back();
            ready.push_back(pin);
        }
    }
    struct ENDED_PATH {
        PIN pin;
        PATH_TO const* path;
    };
    std::vector<ENDED_PATH> ended;
    for (std::size_t next = 0; next < ready.size(); ++next) {
        PIN const from = ready[next];
        std::vector<PATH_TO>& to_from = paths[from];
        std::size_t const kept = std::min(count, to_from.size());
        std::partial_sort(to_from.begin(), to_from.begin() + static_cast<std::ptrdiff_t>(kept),
                          to_from.end(), is_longer);
        to_from.resize(kept);
        to_from.shrink_to_fit();
        for (PIN const to : successors[from]) {
            BIG_TIME const delay = graph.delay(from, to, edge).time;
            for (std::uint32_t i = 0; i < kept; ++i) {
                paths[to].push_back({longer(to_from[i].sum, delay, graph, to), from, i});
            }
            if (--predecessor_counts[to] == 0) {
                ready.push_back(to);
            }
        }
        if (successors[from].empty()) {
            for (PATH_TO const& path : to_from) {
                ended.push_back({from, &path});
            }
        }
    }
    if (ready.size() < graph.pin_count()) {
        refuse_loop(graph, successors, predecessor_counts);
    }

    std::stable_sort(ended.begin(), ended.end(), [](ENDED_PATH const& a, ENDED_PATH const& b) {
        return is_longer(*a.path, *b.path);
    });
    ended.resize(std::min(count, ended.size()));
    std::vector<std::vector<HOP>> longest;
    for (ENDED_PATH const& end : ended) {
        longest.push_back(hops_to(end.pin, end.path, paths, edge));
    }
    return longest;
}
