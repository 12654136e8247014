#include "path_report.h"

#include "decimal.h"

#include <algorithm>
#include <cstdlib>
#include <stdexcept>

namespace {

constexpr int TIME_WIDTH = 12;
constexpr int FLOAT_WIDTH = 24;

std::string padded(std::string_view text, int width) {
    std::string const blanks(
        static_cast<std::size_t>(std::max(width - static_cast<int>(text.size()), 0)), ' ');
    return blanks + std::string(text);
}

/// Whether a floating-point number of nanoseconds is not the one nearest to a time.
bool is_other(double nanoseconds, BIG_TIME const& time) {
    return nanoseconds != to_double(nanoseconds_text(time));
}

char const* name_of(VERDICT verdict) {
    switch (verdict) {
    case VERDICT::MET: return "met";
    case VERDICT::VIOLATED: return "violated";
    case VERDICT::UNDECIDED: return "undecided";
    }
    std::abort();
}

/// "1 path", "2 paths"
std::string counted(std::size_t count, std::string const& what) {
    return std::to_string(count) + ' ' + what + (count == 1 ? "" : "s");
}

} // namespace

// ------------------------------------------------------------------------------------------------
// The clock
// ------------------------------------------------------------------------------------------------

CLOCK::CLOCK(BIG_TIME const& frequency)
    : m_frequency(frequency), m_period(frequency.get_storage_number(), BIG_TIME::UNIT_PS),
      m_nanoseconds(1e9 / static_cast<double>(frequency.get_time_value())) {
    constexpr long long PICOSECONDS = 1'000'000'000'000; // of a second
    long long hertz = frequency.get_time_value();
    long long remainder = PICOSECONDS % hertz;
    if (remainder != 0) {
        big_suppress_gcd(remainder, hertz);
        m_rest = " + " + std::to_string(remainder) + '/' + std::to_string(hertz) + " ps";
    }
}

std::string CLOCK::text() const {
    unsigned short const places = BIG_TIME::get_max_precision_for(m_frequency.get_time_unit());
    std::string number =
        m_frequency.to_string_without_unit(m_frequency.get_time_unit(), places, true);
    if (number.size() > 2 && number.substr(number.size() - 2) == ".0") {
        number.resize(number.size() - 2);
    }
    return number + ' ' + BIG_TIME::get_time_unit_string(m_frequency.get_time_unit());
}

VERDICT verdict_of(DELAY const& total, CLOCK const& clock) {
    BIG_TIME const& period = clock.period();
    BIG_TIME const latest = total.time + BIG_TIME(total.cut_up, BIG_TIME::UNIT_PS);
    BIG_TIME const earliest = total.time - BIG_TIME(total.cut_down, BIG_TIME::UNIT_PS);
    if (!(period < latest)) {
        return VERDICT::MET;
    }
    // A total of whole picoseconds that is above the whole picoseconds of the period is above all
    // of it. One that was cut is truly above `earliest`, which then may be the period itself.
    bool const is_cut = !total.loss.empty();
    bool const is_above =
        period < earliest || (is_cut && clock.rest().empty() && earliest == period);
    return is_above ? VERDICT::VIOLATED : VERDICT::UNDECIDED;
}

// ------------------------------------------------------------------------------------------------
// A path
// ------------------------------------------------------------------------------------------------

void PATH_REPORT::write(std::string_view name, std::string const& place,
                        std::vector<HOP> const& hops, std::string& out) {
    out += "\npath ";
    out += name;
    out += '\n' + padded("delay/ns", TIME_WIDTH) + padded("sum/ns", TIME_WIDTH)
           + (m_with_float ? padded("double/ns", FLOAT_WIDTH) : "") + "  pin\n";
    DELAY sum;
    write_line("", sum, nullptr, hops.front().from, out);
    for (HOP const& hop : hops) {
        DELAY const delay = delay_of_hop(hop, std::string(name));
        try {
            sum = sum_of(sum, delay);
        } catch (std::range_error const& error) {
            throw PATH_ERROR(place + ": path " + std::string(name) + ": found a sum of "
                             + error.what() + " at " + std::string(m_graph.name(hop.to))
                             + "; expected less");
        }
        write_line(nanoseconds_text(delay.time), sum, &hop, hop.to, out);
    }
    write_total(sum, out);
}

DELAY PATH_REPORT::delay_of_hop(HOP const& hop, std::string const& path) const {
    DELAY const delay = m_graph.delay(hop.from, hop.to, hop.edge);
    if (m_is_strict && !delay.loss.empty()) {
        throw DELAY_ERROR(m_sdf_file + ':' + std::to_string(delay.loss_line) + ": path " + path
                          + ": found a delay with 0." + delay.loss
                          + " ps below a whole picosecond; expected none with --strict");
    }
    return delay;
}

/// Writes a line for a pin, and the hop that leads to it, null at the start.
void PATH_REPORT::write_line(std::string_view delay, DELAY const& sum, HOP const* hop, PIN pin,
                             std::string& out) const {
    out += padded(delay, TIME_WIDTH) + padded(nanoseconds_text(sum.time), TIME_WIDTH);
    if (m_with_float) {
        out += padded(shortest_text(sum.nanoseconds)
                          + (is_other(sum.nanoseconds, sum.time) ? " *" : "  "),
                      FLOAT_WIDTH);
    }
    out += "  ";
    out += m_graph.name(pin);
    out += hop != nullptr && hop->edge == EDGE::RISE   ? " (rise)"
           : hop != nullptr && hop->edge == EDGE::FALL ? " (fall)"
                                                       : "";
    out += '\n';
}

void PATH_REPORT::write_total(DELAY const& total, std::string& out) {
    VERDICT const verdict = verdict_of(total, m_clock);
    ++m_counts.paths;
    ++(verdict == VERDICT::MET        ? m_counts.met
       : verdict == VERDICT::VIOLATED ? m_counts.violated
                                      : m_counts.undecided);
    out += "total " + nanoseconds_text(total.time) + " ns, period "
           + nanoseconds_text(m_clock.period()) + " ns" + m_clock.rest() + ", slack "
           + nanoseconds_text(m_clock.period() - total.time) + " ns" + m_clock.rest() + ": "
           + name_of(verdict) + '\n';
    if (m_with_float) {
        write_float_total(total, verdict, out);
    }
    if (!total.loss.empty()) {
        write_cuts(total, out);
    }
}

void PATH_REPORT::write_float_total(DELAY const& total, VERDICT verdict, std::string& out) {
    VERDICT const float_verdict =
        total.nanoseconds <= m_clock.nanoseconds() ? VERDICT::MET : VERDICT::VIOLATED;
    bool const is_other_total = is_other(total.nanoseconds, total.time);
    bool const is_other_verdict = float_verdict != verdict;
    m_counts.other_totals += is_other_total ? 1 : 0;
    m_counts.other_verdicts += is_other_verdict ? 1 : 0;
    out += "in double: total " + shortest_text(total.nanoseconds) + " ns, period "
           + shortest_text(m_clock.nanoseconds()) + " ns, slack "
           + shortest_text(m_clock.nanoseconds() - total.nanoseconds)
           + " ns: " + name_of(float_verdict)
           + (is_other_verdict ? " (another verdict)"
              : is_other_total ? " (another total)"
                               : "")
           + '\n';
}

/// Says how much the total is off.
void PATH_REPORT::write_cuts(DELAY const& total, std::string& out) const {
    std::size_t const cuts = static_cast<std::size_t>(total.cut_up + total.cut_down);
    out += counted(cuts, "delay") + (cuts == 1 ? " has" : " have")
           + " digits below a picosecond, which were cut off: the true total is less than ";
    if (total.cut_up > 0) {
        out += std::to_string(total.cut_up) + " ps larger";
    }
    if (total.cut_down > 0) {
        out += (total.cut_up > 0 ? " and less than " : "") + std::to_string(total.cut_down)
               + " ps smaller";
    }
    out += ". The largest loss is 0." + total.loss + " ps, at " + m_sdf_file + ':'
           + std::to_string(total.loss_line) + ".\n";
}

// ------------------------------------------------------------------------------------------------
// All paths
// ------------------------------------------------------------------------------------------------

void PATH_REPORT::write_counts(std::string& out) const {
    out += '\n' + counted(m_counts.paths, "path") + ": " + std::to_string(m_counts.met) + " met, "
           + std::to_string(m_counts.violated) + " violated";
    if (m_counts.undecided > 0) {
        out += ", " + std::to_string(m_counts.undecided) + " undecided";
    }
    out += '\n';
    if (m_with_float) {
        out += "in double: " + counted(m_counts.other_totals, "other total") + " and "
               + counted(m_counts.other_verdicts, "other verdict")
               + "; * marks each sum that is another number\n";
    }
}
