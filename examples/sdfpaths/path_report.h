#ifndef PATH_REPORT_H
#define PATH_REPORT_H

/// @file
/// What the program prints of a path: its delays, their sum, and whether a clock's period is long
/// enough for it.

#include "big_sys.h"
#include "delay_graph.h"
#include "path_list.h"

#include <cstddef>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

/// A clock and its period.
class CLOCK {
public:
    /// @param frequency in whole hertz, above 0
    explicit CLOCK(BIG_TIME const& frequency);

    /// The frequency as it was given: "125 MHz".
    std::string text() const;
    /// The period, cut to whole picoseconds.
    BIG_TIME const& period() const { return m_period; }
    /// What was cut off, as text to be put behind a number of nanoseconds: " + 1/3 ps", or empty.
    std::string const& rest() const { return m_rest; }
    /// The period as a program with floating point has it.
    double nanoseconds() const { return m_nanoseconds; }

private:
    BIG_TIME m_frequency;
    BIG_TIME m_period;
    std::string m_rest;
    double m_nanoseconds;
};

/// Whether a path fits into a period.
enum class VERDICT {
    MET,
    VIOLATED,
    UNDECIDED, ///< it depends on digits that were cut off
};

/// The verdict for a path's sum.
VERDICT verdict_of(DELAY const& total, CLOCK const& clock);

/// What a report adds up.
struct PATH_COUNTS {
    std::size_t paths = 0;
    std::size_t met = 0;
    std::size_t violated = 0;
    std::size_t undecided = 0;
    std::size_t other_totals = 0;   ///< of paths whose floating-point total is another number
    std::size_t other_verdicts = 0; ///< of paths that floating point decides otherwise
};

/// Writes reports of paths of one graph.
class PATH_REPORT {
public:
    /// @param with_float whether to show the floating-point sums too
    /// @param is_strict  whether a delay with digits below a picosecond is an error
    PATH_REPORT(DELAY_GRAPH const& graph, CLOCK const& clock, std::string sdf_file, bool with_float,
                bool is_strict)
        : m_graph(graph), m_clock(clock), m_sdf_file(std::move(sdf_file)), m_with_float(with_float),
          m_is_strict(is_strict) {}

    /// Appends a path's report. Throws PATH_ERROR or DELAY_ERROR.
    ///
    /// @param place where the path was named, for messages
    void write(std::string_view name, std::string const& place, std::vector<HOP> const& hops,
               std::string& out);
    /// Appends what became of all paths.
    void write_counts(std::string& out) const;

    PATH_COUNTS const& counts() const { return m_counts; }

private:
    DELAY delay_of_hop(HOP const& hop, std::string const& path) const;
    void write_line(std::string_view delay, DELAY const& sum, HOP const* hop, PIN pin,
                    std::string& out) const;
    void write_total(DELAY const& total, std::string& out);
    void write_float_total(DELAY const& total, VERDICT verdict, std::string& out);
    void write_cuts(DELAY const& total, std::string& out) const;

    DELAY_GRAPH const& m_graph;
    CLOCK const& m_clock;
    std::string m_sdf_file;
    bool m_with_float;
    bool m_is_strict;
    PATH_COUNTS m_counts;
};

#endif
