// Delays between pins, paths, and the longest paths.

#include "delay_graph.h"
#include "longest_paths.h"
#include "path_list.h"
#include "path_report.h"
#include "sdf_reader.h"

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include <boost/multiprecision/cpp_int.hpp>
#include <gtest/gtest.h>

namespace {

using RATIONAL = boost::multiprecision::cpp_rational;
using INTEGER = boost::multiprecision::cpp_int;

#ifdef NDEBUG
constexpr int ROUNDS = 2000;
#else
constexpr int ROUNDS = 200;
#endif

/// A file in nanoseconds whose top has these delays, which begin on line 1.
std::string file_of(std::string const& delays) {
    return "(DELAYFILE (DIVIDER /) (CELL (CELLTYPE \"T\") (INSTANCE) (DELAY (ABSOLUTE " + delays
           + "))))";
}

/// A graph and the text that it looks at.
class DESIGN {
public:
    explicit DESIGN(std::string text, SDF_CORNER corner = CORNER_MAX)
        : m_text(std::move(text)), m_reader(m_text, "f.sdf"), m_graph(m_reader, corner) {}

    DELAY_GRAPH const& graph() const { return m_graph; }

private:
    std::string m_text;
    SDF_READER m_reader;
    DELAY_GRAPH m_graph;
};

/// The delay from a to y in nanoseconds, or why there is none.
std::string delay_of_a_y(std::string const& delays, EDGE edge, SDF_CORNER corner) {
    DESIGN const design(file_of(delays), corner);
    try {
        return nanoseconds_text(
            design.graph().delay(*design.graph().find("a"), *design.graph().find("y"), edge).time);
    } catch (DELAY_ERROR const& error) {
        return error.what();
    }
}

// ------------------------------------------------------------------------------------------------
// Delays
// ------------------------------------------------------------------------------------------------

TEST(SdfGraph, EdgeAndCornerChooseTheDelay) {
    std::string const delays = "(IOPATH a y (1:2:3) (0.1:0.2:30))";
    struct ROW {
        EDGE edge;
        char const* min;
        char const* typ;
        char const* max;
    };
    ROW const rows[] = {
        // edge          min      typ      max
        {EDGE::RISE, "1.000", "2.000", "3.000"},
        {EDGE::FALL, "0.100", "0.200", "30.000"},
        {EDGE::SLOWEST, "1.000", "2.000", "30.000"},
        {EDGE::FASTEST, "0.100", "0.200", "3.000"},
    };
    for (ROW const& row : rows) {
        EXPECT_EQ(delay_of_a_y(delays, row.edge, CORNER_MIN), row.min);
        EXPECT_EQ(delay_of_a_y(delays, row.edge, CORNER_TYP), row.typ);
        EXPECT_EQ(delay_of_a_y(delays, row.edge, CORNER_MAX), row.max);
    }
}

TEST(SdfGraph, EntriesAreJoined) {
    struct CASE {
        char const* why;
        char const* delays;
        char const* slowest;
        char const* fastest;
    };
    std::string const increment = "))(DELAY (INCREMENT (IOPATH a y (0.25)))) (DELAY (ABSOLUTE ";
    CASE const cases[] = {
        {"one value is that of both edges", "(IOPATH a y (1))", "1.000", "1.000"},
        {"a third is none of theirs", "(IOPATH a y (1) (2) (3))", "2.000", "1.000"},
        {"an empty rise is none", "(IOPATH a y () (0.5))", "0.500", "0.500"},
        {"the last one counts", "(IOPATH a y (5)) (IOPATH a y (1))", "1.000", "1.000"},
        {"an empty one changes nothing", "(IOPATH a y (5)) (IOPATH a y ())", "5.000", "5.000"},
        {"increments are added",
         "(IOPATH a y (5)))(INCREMENT (IOPATH a y (0.25)) (IOPATH a y (-1)) ", "4.250", "4.250"},
        {"to one edge", "(IOPATH a y (5) (6)))(INCREMENT (IOPATH a y () (2)) ", "8.000", "5.000"},
        {"what comes before an absolute one is forgotten",
         "(IOPATH a y (5)))(INCREMENT (IOPATH a y (1)))(ABSOLUTE (IOPATH a y (2))", "2.000",
         "2.000"},
        {"conditions have their own", "(COND s (IOPATH a y (1))) (COND t (IOPATH a y (2)))",
         "2.000", "1.000"},
        {"replaced by themselves only",
         "(COND s (IOPATH a y (9))) (IOPATH a y (2)) (COND s (IOPATH a y (1)))", "2.000", "1.000"},
        {"edges of the first pin too", "(IOPATH (posedge a) y (1)) (IOPATH (negedge a) y (2))",
         "2.000", "1.000"},
        {"negative delays", "(IOPATH a y (-1.5) (-2))", "-1.500", "-2.000"},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(delay_of_a_y(c.delays, EDGE::SLOWEST, CORNER_MAX), c.slowest);
        EXPECT_EQ(delay_of_a_y(c.delays, EDGE::FASTEST, CORNER_MAX), c.fastest);
    }
}

TEST(SdfGraph, UnusableDelayIsRefused) {
    EXPECT_EQ(delay_of_a_y("(IOPATH a y (1::3))", EDGE::SLOWEST, CORNER_TYP),
              "f.sdf:1: found no typ value in the delay a -> y; expected one (another corner or "
              "edge may have it)");
    EXPECT_EQ(delay_of_a_y("\n(IOPATH a y () (1))", EDGE::RISE, CORNER_MAX),
              "f.sdf:2: found no max value for a rising edge in the delay a -> y; expected one "
              "(another corner or edge may have it)");
    EXPECT_EQ(delay_of_a_y("(IOPATH a y (1) ())", EDGE::FALL, CORNER_MIN),
              "f.sdf:1: found no min value for a falling edge in the delay a -> y; expected one "
              "(another corner or edge may have it)");
    EXPECT_EQ(delay_of_a_y(")(INCREMENT \n(IOPATH a y (1))", EDGE::RISE, CORNER_MIN),
              "f.sdf:2: found an INCREMENT of the delay a -> y; expected an ABSOLUTE delay before "
              "it");
    EXPECT_EQ(delay_of_a_y("(IOPATH a y (5e15))", EDGE::RISE, CORNER_MIN),
              "f.sdf:1: found the delay value 5e15; expected no more than 2^62 picoseconds");
    EXPECT_EQ(delay_of_a_y("(IOPATH a y (-1e900))", EDGE::RISE, CORNER_MIN),
              "f.sdf:1: found the delay value -1e900; expected no more than 2^62 picoseconds");
    EXPECT_EQ(delay_of_a_y("(IOPATH a y (4e15))))(DELAY (INCREMENT (IOPATH a y (1e15))", EDGE::RISE,
                           CORNER_MIN),
              "f.sdf:1: found the delay value 1e15; expected no more than 2^62 picoseconds");
}

TEST(SdfGraph, PinsAreFoundByAnySpelling) {
    DESIGN const design(
        "(DELAYFILE (DIVIDER /) (CELL (CELLTYPE \"X\") (INSTANCE m\\[0\\]/u.a) (DELAY (ABSOLUTE "
        "(IOPATH A\\$ Y\\/Z (1))))) (CELL (CELLTYPE \"T\") (INSTANCE) (DELAY (ABSOLUTE "
        "(INTERCONNECT "
        "p[0] m[0]/u.a/A$ (1))))))");
    DELAY_GRAPH const& graph = design.graph();
    EXPECT_EQ(graph.pin_count(), 3u);
    EXPECT_TRUE(graph.find("m[0]/u.a/A$"));
    EXPECT_EQ(graph.find("m\\[0\\]/u.a/A\\$"), graph.find("m[0]/u.a/A$"));
    EXPECT_TRUE(graph.find("m[0]/u.a/Y\\/Z"));
    EXPECT_FALSE(graph.find("m[0]/u.a/Y/Z"));
    EXPECT_FALSE(graph.find("m[0]"));
    EXPECT_FALSE(graph.find(""));
}

// ------------------------------------------------------------------------------------------------
// Sums
// ------------------------------------------------------------------------------------------------

/// What a decimal number without an exponent is, times 10^power.
RATIONAL rational_of(std::string text, int power) {
    std::size_t const point = text.find('.');
    if (point != std::string::npos) {
        power -= static_cast<int>(text.size() - point - 1);
        text.erase(point, 1);
    }
    bool const is_negative = text[0] == '-';
    text.erase(0, text.find_first_not_of("-0"));
    RATIONAL value = text.empty() ? RATIONAL(0) : RATIONAL(INTEGER(text));
    for (; power > 0; --power) {
        value *= 10;
    }
    for (; power < 0; ++power) {
        value /= 10;
    }
    return is_negative ? RATIONAL(-value) : value;
}

/// The whole part, towards 0.
INTEGER whole(RATIONAL const& value) {
    return numerator(value) / denominator(value);
}

TEST(SdfDelay, SumsAgreeWithRationalNumbers) {
    constexpr unsigned int SEED = 20240607;
    std::mt19937 random(SEED);
    auto const below = [&](unsigned int limit) { return static_cast<int>(random() % limit); };
    for (int round = 0; round < ROUNDS; ++round) {
        int const power = below(16) - 3; // timescales from 1 fs to 1 s
        DELAY sum;
        RATIONAL true_sum = 0;
        INTEGER cut_sum = 0;
        std::string trace;
        for (int i = 0; i < 20; ++i) {
            std::string text = below(5) == 0 ? "-" : "";
            for (int digits = 1 + below(4); digits > 0; --digits) {
                text += static_cast<char>('0' + below(10));
            }
            if (below(3) > 0) {
                text += '.';
                for (int digits = 1 + below(8); digits > 0; --digits) {
                    text += static_cast<char>('0' + below(below(4) == 0 ? 1 : 10));
                }
            }
            trace += text + ' ';
            RATIONAL const value = rational_of(text, power);
            DELAY const delay = delay_of(text, power, 1);
            ASSERT_EQ(INTEGER(delay.time.get_time_value()), whole(value)) << text << " e" << power;
            ASSERT_EQ(delay.loss.empty(), denominator(value) == 1) << text << " e" << power;
            if (!delay.loss.empty()) {
                ASSERT_EQ(rational_of("0." + delay.loss, 0), abs(value - whole(value))) << text;
            }
            sum = sum_of(sum, delay);
            true_sum += value;
            cut_sum += whole(value);
        }
        SCOPED_TRACE("seed " + std::to_string(SEED) + ": " + trace + "e" + std::to_string(power));
        ASSERT_EQ(INTEGER(sum.time.get_time_value()), cut_sum);
        ASSERT_EQ(sum.cut_up + sum.cut_down == 0, sum.loss.empty());
        if (sum.loss.empty()) {
            ASSERT_EQ(true_sum, RATIONAL(cut_sum));
        } else {
            ASSERT_LT(true_sum, cut_sum + sum.cut_up);
            ASSERT_GT(true_sum, cut_sum - sum.cut_down);
        }

        // The verdict is that of the true sum and the true period, unless it says that it cannot
        // know.
        long long const hertz = std::clamp<long long>(
            1'000'000'000'000 / std::max(1LL, sum.time.get_time_value()) + below(3) - 1, 1,
            1'000'000'000'000);
        VERDICT const verdict = verdict_of(sum, CLOCK(BIG_TIME(hertz, BIG_TIME::UNIT_HZ)));
        if (verdict == VERDICT::UNDECIDED) {
            ASSERT_FALSE(sum.loss.empty()) << hertz;
        } else {
            ASSERT_EQ(verdict == VERDICT::MET,
                      true_sum <= RATIONAL(INTEGER(1'000'000'000'000), INTEGER(hertz)))
                << hertz;
        }
    }
}

TEST(SdfDelay, VerdictSaysWhenItCannotKnow) {
    CLOCK const whole_period{BIG_TIME(100, BIG_TIME::UNIT_GHZ)};            // 10 ps
    CLOCK const longer_period{BIG_TIME(99'000'000'000, BIG_TIME::UNIT_HZ)}; // 10 10/99 ps
    struct ROW {
        char const* why;
        long long sum;
        long long cut_up;
        long long cut_down;
        VERDICT of_whole;
        VERDICT of_longer;
    };
    // clang-format off
    ROW const rows[] = {
        // why                                      sum up down  10 ps               10 10/99 ps
        {"shorter",                                   9, 0, 0, VERDICT::MET,       VERDICT::MET},
        {"equal",                                    10, 0, 0, VERDICT::MET,       VERDICT::MET},
        {"longer",                                   11, 0, 0, VERDICT::VIOLATED,  VERDICT::VIOLATED},
        {"less than 1 ps more than 9 is below 10",    9, 1, 0, VERDICT::MET,       VERDICT::MET},
        {"less than 2 ps more may be above",          9, 2, 0, VERDICT::UNDECIDED, VERDICT::UNDECIDED},
        {"10 and something is above 10",             10, 1, 0, VERDICT::VIOLATED,  VERDICT::UNDECIDED},
        {"11 and something is above both",           11, 1, 0, VERDICT::VIOLATED,  VERDICT::VIOLATED},
        {"less than 1 ps less than 11 is above 10",  11, 0, 1, VERDICT::VIOLATED,  VERDICT::UNDECIDED},
        {"less than 1 ps less than 10 is below 10",  10, 0, 1, VERDICT::MET,       VERDICT::MET},
        {"less than 2 ps less than 11 may be below", 11, 0, 2, VERDICT::UNDECIDED, VERDICT::UNDECIDED},
        {"less than 1 ps less than 12 is above both", 12, 0, 1, VERDICT::VIOLATED, VERDICT::VIOLATED},
        {"both ways",                                 9, 1, 3, VERDICT::MET,       VERDICT::MET},
    };
    // clang-format on
    for (ROW const& row : rows) {
        DELAY sum;
        sum.time = BIG_TIME(row.sum, BIG_TIME::UNIT_PS);
        sum.cut_up = row.cut_up;
        sum.cut_down = row.cut_down;
        sum.loss.assign(row.cut_up + row.cut_down > 0 ? 1 : 0, '5');
        EXPECT_EQ(verdict_of(sum, whole_period), row.of_whole) << row.why;
        EXPECT_EQ(verdict_of(sum, longer_period), row.of_longer) << row.why;
    }
}

TEST(SdfDelay, ClockShowsItsWholePeriod) {
    struct ROW {
        char const* frequency;
        char const* text;
        char const* period; // ns
        char const* rest;
    };
    ROW const rows[] = {
        // given          shown         period       rest
        {"125 MHz", "125 MHz", "8.000", ""},
        {"1GHz", "1 GHz", "1.000", ""},
        {"0.5 ghz", "0.5 GHz", "2.000", ""},
        {"3 MHz", "3 MHz", "333.333", " + 1/3 ps"},
        {"70 kHz", "70 kHz", "14285.714", " + 2/7 ps"},
        {"1 Hz", "1 Hz", "1000000000.000", ""},
        {"1000 GHz", "1000 GHz", "0.001", ""},
        {"3000 GHz", "3000 GHz", "0.000", " + 1/3 ps"},
    };
    for (ROW const& row : rows) {
        CLOCK const clock{BIG_TIME(row.frequency, false)};
        EXPECT_EQ(clock.text(), row.text);
        EXPECT_EQ(nanoseconds_text(clock.period()), row.period) << row.frequency;
        EXPECT_EQ(clock.rest(), row.rest) << row.frequency;
    }
}

// ------------------------------------------------------------------------------------------------
// Paths
// ------------------------------------------------------------------------------------------------

/// The paths of a file, "1 name: pin pin(rise);", or the refusal.
std::string paths_of(std::string const& text) {
    std::string out;
    try {
        for (NAMED_PATH const& path : read_paths(text, "p")) {
            out += path.place.substr(2) + ' ' + path.name + ':';
            for (PATH_PIN const& pin : path.pins) {
                out += ' ' + pin.name
                       + (!pin.edge                 ? ""
                          : *pin.edge == EDGE::RISE ? "(rise)"
                                                    : "(fall)");
            }
            out += "; ";
        }
    } catch (PATH_ERROR const& error) {
        return error.what();
    }
    return out;
}

TEST(SdfPaths, PathFileIsRead) {
    struct CASE {
        char const* why;
        char const* text;
        char const* paths;
    };
    CASE const cases[] = {
        {"nothing", "", ""},
        {"a path", "path x: a b\n", "1 x: a b; "},
        {"without an end of line", "path x: a b", "1 x: a b; "},
        {"lines of another system", "path x: a b\r\n", "1 x: a b; "},
        {"over lines", "\n# c\npath x:\n a\n\t# c\n\n  b (fall)\npath y.1: c (rise) d",
         "3 x: a b(fall); 8 y.1: c(rise) d; "},
        {"pins with a colon", "path x: a: b:c", "1 x: a: b:c; "},
        {"a pin with the name of the word", "path x: path\n path", "1 x: path path; "},

        {"no word", "x: a b", "p:1: found \"x:\"; expected \"path NAME: PIN PIN ...\""},
        {"pins of no path", "\n a b", "p:2: found \"a\"; expected \"path NAME: PIN PIN ...\""},
        {"no name", "path",
         "p:1: found no name; expected the path's name and a colon, as in \"NAME: PIN PIN\""},
        {"no colon", "path x a b",
         "p:1: found \"x\"; expected the path's name and a colon, as in \"NAME: PIN PIN\""},
        {"a colon alone", "path : a b",
         "p:1: found \":\"; expected the path's name and a colon, as in \"NAME: PIN PIN\""},
        {"no pins", "path x:", "p:1: found a path of 0 pins; expected at least two"},
        {"one pin", "path y: a b\npath x:\n a",
         "p:2: found a path of 1 pin; expected at least two"},
        {"an unknown edge", "path x: a (up) b",
         "p:1: found \"(up)\"; expected a pin, (rise) or (fall)"},
        {"an edge in front", "path x: (rise) a b",
         "p:1: found \"(rise)\"; expected a pin before it"},
        {"two edges", "path x: a b\n (rise) (fall)",
         "p:2: found \"(fall)\"; expected a pin before it"},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.why);
        EXPECT_EQ(paths_of(c.text), c.paths);
    }
}

TEST(SdfPaths, WhatIsMissingIsNamed) {
    DESIGN const design(file_of("(IOPATH clock q0 (1)) (IOPATH clock q1 (1)) (IOPATH q0 y (1))"));
    auto const refusal = [&](char const* path) -> std::string {
        try {
            hops_of(read_path(path, "p:7"), design.graph(), EDGE::SLOWEST);
        } catch (PATH_ERROR const& error) {
            return error.what();
        }
        return "none";
    };
    EXPECT_EQ(refusal("x: clock q0 y"), "none");
    EXPECT_EQ(refusal("x: clok q0"),
              "p:7: path x: no delay starts or ends at \"clok\"; expected a pin, of which the "
              "nearest are clock");
    EXPECT_EQ(refusal("x: clock q"),
              "p:7: path x: no delay starts or ends at \"q\"; expected a pin, of which the "
              "nearest are q0, q1");
    EXPECT_EQ(refusal("x: clock Q"),
              "p:7: path x: no delay starts or ends at \"Q\"; expected a pin");
    EXPECT_EQ(refusal("x: clock y"),
              "p:7: path x: no delay leads from \"clock\" to \"y\"; expected one of q0, q1");
    EXPECT_EQ(refusal("x: clock q1 y"),
              "p:7: path x: no delay leads from \"q1\" to \"y\"; expected another start, as none "
              "does from there");
}

// ------------------------------------------------------------------------------------------------
// The longest paths
// ------------------------------------------------------------------------------------------------

long long picoseconds_of(std::vector<HOP> const& hops, DELAY_GRAPH const& graph) {
    long long sum = 0;
    for (HOP const& hop : hops) {
        sum += graph.delay(hop.from, hop.to, hop.edge).time.get_time_value();
    }
    return sum;
}

TEST(SdfLongest, PathsAreThoseOfAllThatAreLongest) {
    constexpr unsigned int SEED = 20240608;
    std::mt19937 random(SEED);
    for (int round = 0; round < ROUNDS / 10; ++round) {
        SCOPED_TRACE("seed " + std::to_string(SEED) + ", round " + std::to_string(round));
        // Delays lead from lower to higher numbers.
        std::size_t const pins = 2 + random() % 8;
        std::vector<std::vector<long long>> delays(pins, std::vector<long long>(pins, -1));
        std::string text;
        for (std::size_t from = 0; from < pins; ++from) {
            for (std::size_t to = from + 1; to < pins; ++to) {
                if (random() % 2 == 0) {
                    delays[from][to] = static_cast<long long>(random() % 5);
                    text.insert(random() % 2 == 0 ? 0 : text.size(),
                                "(IOPATH p" + std::to_string(from) + " p" + std::to_string(to)
                                    + " (0.00" + std::to_string(delays[from][to]) + "))");
                }
            }
        }
        // Every path from a start to an end, by trying all.
        std::vector<long long> sums;
        auto const walk = [&](auto const& self, std::size_t from, long long sum) -> void {
            bool is_end = true;
            for (std::size_t to = from + 1; to < pins; ++to) {
                if (delays[from][to] >= 0) {
                    is_end = false;
                    self(self, to, sum + delays[from][to]);
                }
            }
            if (is_end) {
                sums.push_back(sum);
            }
        };
        for (std::size_t start = 0; start < pins; ++start) {
            bool const has_before = std::any_of(delays.begin(), delays.end(),
                                                [&](auto const& row) { return row[start] >= 0; });
            bool const has_behind = std::any_of(delays[start].begin(), delays[start].end(),
                                                [](long long delay) { return delay >= 0; });
            if (!has_before && has_behind) {
                walk(walk, start, 0);
            }
        }
        std::sort(sums.rbegin(), sums.rend());

        DESIGN const design(file_of(text));
        for (std::size_t const count : {1u, 3u, 1000u}) {
            std::vector<long long> found;
            std::vector<std::vector<PIN>> paths;
            for (std::vector<HOP> const& hops :
                 longest_paths(design.graph(), EDGE::SLOWEST, count)) {
                found.push_back(picoseconds_of(hops, design.graph()));
                paths.emplace_back();
                for (HOP const& hop : hops) {
                    EXPECT_TRUE(paths.back().empty() || paths.back().back() == hop.from);
                    paths.back().push_back(hop.to);
                }
                paths.back().push_back(hops.front().from);
            }
            std::vector<long long> expected(sums);
            expected.resize(std::min(count, sums.size()));
            EXPECT_EQ(found, expected) << text;
            std::sort(paths.begin(), paths.end());
            EXPECT_EQ(std::adjacent_find(paths.begin(), paths.end()), paths.end())
                << "a path twice";
        }
    }
}

TEST(SdfLongest, LoopIsNamed) {
    auto const refusal = [](std::string const& delays) -> std::string {
        try {
            longest_paths(DESIGN(file_of(delays)).graph(), EDGE::SLOWEST, 1);
        } catch (DELAY_ERROR const& error) {
            return error.what();
        }
        return "none";
    };
    std::string const before = "the longest paths: found a loop: ";
    std::string const behind = "; expected none, as its paths have no end";
    EXPECT_EQ(refusal("(IOPATH a a (1))"), before + "a -> a" + behind);
    EXPECT_EQ(refusal("(IOPATH s a (1)) (IOPATH a b (1)) (IOPATH b a (1)) (IOPATH b y (1))"),
              before + "b -> a -> b" + behind);
    EXPECT_EQ(refusal("(IOPATH s a (1)) (IOPATH a y (1))"), "none");
}

} // namespace
