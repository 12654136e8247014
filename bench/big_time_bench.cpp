// Times: reading (row 1), printing (row 2), comparison and arithmetic (row 15).

#include "bench.h"
#include "inputs.h"
#include "plain.h"

#include <big_sys.h>

#include <cctype>
#include <charconv>
#include <cmath>
#include <cstdlib>

#ifdef BIG_BENCH_ABSL
#include <absl/time/time.h>
#endif
#ifdef BIG_BENCH_FMT
#include <fmt/format.h>
#endif

namespace {

using bench::below;
using bench::many;
using bench::RANDOM;
using bench::SPREAD;

char const* const UNIT_NAMES[] = {"",    "fs",  "ps",  "ns",        "us",  "ms",   "s",   "Hz",
                                  "kHz", "MHz", "GHz", "ten_th_ns", "bps", "Mbps", "Gbps"};

std::string digits(RANDOM& random, unsigned count) {
    std::string text;
    while (count-- > 0)
        text += static_cast<char>('0' + below(random, 10));
    return text;
}

/// A number with up to six digits on either side of the point, and at least one before it.
std::string number_text(RANDOM& random, bool may_be_negative) {
    std::string text;
    if (may_be_negative && below(random, 4) == 0)
        text = "-";
    text += digits(random, 1 + below(random, 6));
    if (unsigned const decimals = below(random, 7); decimals != 0)
        text += '.' + digits(random, decimals);
    return text;
}

/// Any text of the grammar: every unit in any letter case, blanks, plus signs.
std::string any_time_text(RANDOM& random) {
    unsigned const unit = below(random, 15);
    bool const is_time = unit <= BIG_TIME::UNIT_S || unit == BIG_TIME::UNIT_TEN_TH_NS;
    std::string text(below(random, 8) == 0 ? 1 : 0, ' ');
    if (below(random, 8) == 0)
        text += '+' + number_text(random, false);
    else
        text += number_text(random, is_time);
    text += std::string(below(random, 2), ' ');
    for (char const* c = UNIT_NAMES[unit]; *c != '\0'; ++c)
        text += static_cast<char>(below(random, 8) == 0 ? std::toupper(*c) : *c);
    return text;
}

/// A text that names a time in the units of software: what every peer can read.
std::string duration_text(RANDOM& random) {
    static char const* const units[] = {"ns", "us", "ms", "s"};
    return number_text(random, true) + units[below(random, 4)];
}

/// What delay files mostly hold: a short number of nanoseconds, and now and then anything else.
std::string skewed_duration_text(RANDOM& random) {
    if (below(random, 8) == 0)
        return duration_text(random);
    return digits(random, 1) + '.' + digits(random, 3) + "ns";
}

/// The storage unit's worth of a unit by its lower-case name; 0 for no unit. The name is taken as
/// a number, of which the longest name has one character too many.
double factor_named(unsigned long long name) {
    constexpr auto key = [](char const* text) {
        unsigned long long value = 0;
        for (; *text != '\0'; ++text)
            value = value << 8 | static_cast<unsigned char>(*text | 0x20);
        return value;
    };
    switch (name) {
    case key(""): return 1;
    case key("fs"): return 1e-3;
    case key("ps"): return 1;
    case key("ns"): return 1e3;
    case key("us"): return 1e6;
    case key("ms"): return 1e9;
    case key("s"): return 1e12;
    case key("hz"): return 1;
    case key("khz"): return 1e3;
    case key("mhz"): return 1e6;
    case key("ghz"): return 1e9;
    case key("ten_th_ns"): return 1e2;
    case key("bps"): return 1;
    case key("mbps"): return 1e6;
    case key("gbps"): return 1e9;
    default: return 0;
    }
}

/// Reads a time the inexact way: the number as a double, then a switch over the units.
long long read_as_double(std::string const& text) {
    char const* at = text.data();
    char const* const end = at + text.size();
    while (at != end && *at == ' ')
        ++at;
    if (at != end && *at == '+')
        ++at;
    double number = 0;
    auto const [after, error] = std::from_chars(at, end, number);
    if (error != std::errc())
        return 0;
    at = after;
    while (at != end && *at == ' ')
        ++at;
    unsigned long long name = 0;
    for (; at != end && *at != ' '; ++at)
        name = name << 8 | static_cast<unsigned char>(*at | 0x20);
    return static_cast<long long>(number * factor_named(name));
}

/// Doubles cut a number that they miss by little to the storage unit below.
bool agree_but_for_rounding(long long ours, long long theirs, long long resolution) {
    double const tolerance = static_cast<double>(resolution) + 1e-15 * std::fabs(double(ours));
    return std::fabs(double(ours) - double(theirs)) <= tolerance;
}

bench::COMPARISON<std::string, long long>
text_to_storage(std::string const& name, std::string (*make)(RANDOM&), long long resolution) {
    auto const as_it_is = [](std::string const& text) { return text; };
    bench::COMPARISON<std::string, long long> comparison(
        name, [=] { return many(make); },
        [=](long long ours, long long theirs) {
            return agree_but_for_rounding(ours, theirs, resolution);
        });
    comparison
        .add(
            "ours", as_it_is,
            [time = BIG_TIME()](std::string const& text) mutable -> BIG_TIME const& {
                time.set_time(text, false);
                return time;
            },
            [](BIG_TIME const& time) { return time.get_time_value(); })
        .add("from_chars", as_it_is, read_as_double);
    return comparison;
}

void add_reading() {
    text_to_storage("1/text_to_time/mixed", any_time_text, 1);
    auto durations = text_to_storage("1/text_to_time/durations", duration_text, 250);
    auto skewed = text_to_storage("1/text_to_time/skewed", skewed_duration_text, 250);
#ifdef BIG_BENCH_ABSL
    for (auto* const comparison : {&durations, &skewed}) {
        comparison->add(
            "absl", [](std::string const& text) { return text; },
            [](std::string const& text) {
                absl::Duration duration;
                absl::ParseDuration(text, &duration);
                return duration;
            },
            [](absl::Duration duration) {
                return absl::IDivDuration(duration, absl::Nanoseconds(1), &duration) * 1000
                       + absl::IDivDuration(duration * 1000, absl::Nanoseconds(1), &duration);
            });
    }
#endif
}

/// A time to print: in a unit with three decimal places or more.
struct PRINTED {
    BIG_TIME time;
    BIG_TIME::TIME_UNIT unit;
    double number; ///< in the unit
};

PRINTED printed(RANDOM& random, SPREAD spread) {
    static BIG_TIME::TIME_UNIT const units[] = {BIG_TIME::UNIT_NS, BIG_TIME::UNIT_US,
                                                BIG_TIME::UNIT_MS, BIG_TIME::UNIT_S};
    BIG_TIME::TIME_UNIT const unit = units[below(random, 4)];
    auto count = static_cast<long long>(bench::random_number(random, spread, 52));
    if (below(random, 4) == 0)
        count = -count;
    auto const places = static_cast<unsigned long>(BIG_TIME::s_fraction_digits[unit]);
    return {BIG_TIME(count, BIG_TIME::UNIT_PS), unit,
            static_cast<double>(count) / static_cast<double>(BIG_TIME::get_power_table(places))};
}

void add_printing() {
    for (SPREAD const spread : {SPREAD::MIXED, SPREAD::SKEWED}) {
        auto const as_it_is = [](PRINTED const& input) { return input; };
        auto const number = [](std::string const& text) { return std::atof(text.c_str()); };
        bench::COMPARISON<PRINTED, double> comparison(
            std::string("2/time_to_text/") + bench::name_of(spread),
            [=] { return many([=](RANDOM& random) { return printed(random, spread); }); },
            [](double ours, double theirs) { return std::fabs(ours - theirs) < 0.0011; });
        comparison
            .add(
                "ours", as_it_is,
                [text = std::string()](PRINTED const& input) mutable -> std::string const& {
                    return *input.time.to_string(&text, input.unit, 3, false);
                },
                number)
            .add(
                "to_chars", as_it_is,
                [text = std::string()](PRINTED const& input) mutable -> std::string const& {
                    char buffer[64];
                    auto const end = std::to_chars(buffer, buffer + sizeof buffer, input.number,
                                                   std::chars_format::fixed, 3);
                    return text.assign(buffer, end.ptr);
                },
                number);
#ifdef BIG_BENCH_FMT
        comparison.add(
            "fmt", as_it_is,
            [text = std::string()](PRINTED const& input) mutable -> std::string const& {
                char buffer[64];
                return text.assign(buffer, fmt::format_to(buffer, "{:.3f}", input.number));
            },
            number);
#endif
    }
}

using bench::PLAIN_FREQUENCY;
using bench::PLAIN_TIME;

/// Two times, and a number to scale by.
struct OPERANDS {
    PLAIN_TIME a;
    PLAIN_TIME b;
    long long number; ///< not 0
};

/// Times in every unit of time, of which one pair in four is equal.
OPERANDS operands(RANDOM& random, SPREAD spread) {
    auto const number = [&](unsigned bits) {
        auto const magnitude = static_cast<long long>(bench::random_number(random, spread, bits));
        return below(random, 4) == 0 ? -magnitude : magnitude;
    };
    PLAIN_TIME const a{number(40), static_cast<int>(below(random, BIG_TIME::UNIT_S + 1))};
    PLAIN_TIME const b{below(random, 4) == 0 ? a.value : number(40),
                       static_cast<int>(below(random, BIG_TIME::UNIT_S + 1))};
    return {a, b, number(20)};
}

BIG_TIME to_ours(PLAIN_TIME time) {
    BIG_TIME ours(time.value, BIG_TIME::UNIT_NONE);
    if (time.unit != BIG_TIME::UNIT_NONE)
        ours.set_time_unit(static_cast<BIG_TIME::TIME_UNIT>(time.unit));
    return ours;
}

std::string answer_of(BIG_TIME const& time) {
    return std::to_string(time.get_time_value()) + ' ' + std::to_string(time.get_time_unit());
}

std::string answer_of(PLAIN_TIME const& time) {
    return std::to_string(time.value) + ' ' + std::to_string(time.unit);
}

std::string answer_of(bool is_true) {
    return is_true ? "true" : "false";
}

/// Adds an operation on two times and a number: `operate(a, b, number)`.
template <typename OPERATE>
void add_time_operation(std::string const& work, OPERATE operate) {
    struct OURS {
        BIG_TIME a;
        BIG_TIME b;
        long long number;
    };
    for (SPREAD const spread : {SPREAD::MIXED, SPREAD::SKEWED}) {
        auto const on_input = [=](auto const& in) { return operate(in.a, in.b, in.number); };
        auto const read = [](auto const& result) { return answer_of(result); };
        bench::COMPARISON<OPERANDS, std::string> comparison(
            "15/" + work + '/' + bench::name_of(spread),
            [=] { return many([=](RANDOM& random) { return operands(random, spread); }); });
        comparison
            .add(
                "ours",
                [](OPERANDS const& in) {
                    return OURS{to_ours(in.a), to_ours(in.b), in.number};
                },
                on_input, read)
            .add(
                "plain", [](OPERANDS const& in) { return in; }, on_input, read);
    }
}

/// Adds an operation on a period in picoseconds, and one on a frequency and a number.
void add_frequencies() {
    auto const periods = [] {
        return many([](RANDOM& random) {
            return static_cast<int>(bench::random_number(random, SPREAD::MIXED, 31));
        });
    };
    auto const hertz = [](auto const& frequency) {
        if constexpr (std::is_same_v<decltype(frequency), BIG_FREQUENCY const&>)
            return frequency.get_value();
        else
            return frequency.value;
    };
    auto const as_it_is = [](int period) { return period; };
    auto const ours = [](int period) { return BIG_FREQUENCY(period); };
    auto const plain = [](int period) { return PLAIN_FREQUENCY::of_period(period); };

    bench::COMPARISON<int, double>("15/frequency_of_period/mixed", periods)
        .add("ours", as_it_is, ours, hertz)
        .add("plain", as_it_is, plain, hertz);
    bench::COMPARISON<int, long long>("15/period_of_frequency/mixed", periods)
        .add("ours", ours,
             [](BIG_FREQUENCY frequency) {
                 long long period = 0;
                 frequency.compute_period(&period);
                 return period;
             })
        .add("plain", plain, [](PLAIN_FREQUENCY const& frequency) { return frequency.period(); });
    auto const scale = [](auto const& frequency) { return frequency * 3; };
    bench::COMPARISON<int, double>("15/frequency_scale/mixed", periods)
        .add("ours", ours, scale, hertz)
        .add("plain", plain, scale, hertz);
}

void add_arithmetic() {
    add_time_operation("time_less", [](auto const& a, auto const& b, long long) { return a < b; });
    add_time_operation("time_equal",
                       [](auto const& a, auto const& b, long long) { return a == b; });
    add_time_operation("time_add", [](auto const& a, auto const& b, long long) { return a + b; });
    add_time_operation("time_subtract",
                       [](auto const& a, auto const& b, long long) { return a - b; });
    add_time_operation("time_scale",
                       [](auto const& a, auto const&, long long number) { return a * number; });
    add_time_operation("time_divide",
                       [](auto const& a, auto const&, long long number) { return a / number; });
    add_frequencies();
}

} // namespace

void bench::add_comparisons() {
    add_reading();
    add_printing();
    add_arithmetic();
}
