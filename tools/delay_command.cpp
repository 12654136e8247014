#include "delay_command.h"

#include "command_line.h"
#include "filter.h"
#include "number_text.h"
#include "text.h"
#include "time_text.h"

#include "big_sys.h"
#include "err_sys.h"

#include <array>
#include <charconv>
#include <climits>
#include <optional>

namespace {

/// A way of writing whole delays.
struct RADIX {
    char const* name;
    BIG_64_RADIX radix;
};

constexpr std::array<RADIX, 4> RADIXES = {{
    {"dec", BIG_64_UNSIGNED_DEC},
    {"oct", BIG_64_OCT},
    {"hex", BIG_64_HEX_LOWER},
    {"HEX", BIG_64_HEX_UPPER},
}};

struct DELAY_OPTIONS {
    std::optional<BIG_TIME> from;
    std::optional<BIG_TIME> to;
    std::optional<BIG_64_RADIX> radix;
    std::string flags; ///< of the radix
};

class DELAY_CONVERSION : public CONVERSION {
public:
    explicit DELAY_CONVERSION(DELAY_OPTIONS const& options)
        : m_options(options), m_from(*options.from), m_to(*options.to) {}

    OUTCOME convert(std::string const& text, std::string& result, std::string& problem) override;
    void add_members(JSON_OBJECT& object) const override;

private:
    bool is_exact(int delay, std::string const& result) const;
    bool write_in_radix(std::string& result, std::string& problem) const;

    DELAY_OPTIONS const m_options;
    BIG_TIME const m_from;
    BIG_TIME const m_to;
};

/// Reads a delay. Returns 0 when the text is none.
int delay_of(std::string const& text) {
    int delay = 0;
    char const* const end = text.data() + text.size();
    auto const status = std::from_chars(text.data(), end, delay);
    return status.ec == std::errc() && status.ptr == end && delay > 0 ? delay : 0;
}

OUTCOME DELAY_CONVERSION::convert(std::string const& text, std::string& result,
                                  std::string& problem) {
    int const delay = delay_of(text);
    if (delay == 0) {
        problem = "is not a delay: expected a whole number from 1 to " + std::to_string(INT_MAX);
        return OUTCOME::REFUSED;
    }
    result = big_delay_in_current_timescale(delay, m_from, m_to);
    OUTCOME outcome = OUTCOME::CONVERTED;
    if (!is_exact(delay, result)) {
        problem = "loses digits: its delay is rounded to " + result;
        outcome = OUTCOME::LOST_DIGITS;
    }
    return m_options.radix && !write_in_radix(result, problem) ? OUTCOME::REFUSED : outcome;
}

/// Whether a result is delay x from / to, and not a rounded one. The library computes it in double.
bool DELAY_CONVERSION::is_exact(int delay, std::string const& result) const {
    return is_quotient(result, u128_of(delay) * u128_of(m_from.get_storage_number()),
                       u128_of(m_to.get_storage_number()));
}

/// Writes a delay in the radix that was asked for. Returns false when it is not whole, or too
/// large.
bool DELAY_CONVERSION::write_in_radix(std::string& result, std::string& problem) const {
    long long delay = 0;
    char const* const end = result.data() + result.size();
    auto const status = std::from_chars(result.data(), end, delay);
    if (status.ec != std::errc() || status.ptr != end) {
        problem = "cannot be given with --radix or --flags: it is " + result
                  + ", expected a whole number of at most " + std::to_string(LLONG_MAX);
        return false;
    }
    result = big_64_to_string(delay, m_options.flags, *m_options.radix);
    return true;
}

void DELAY_CONVERSION::add_members(JSON_OBJECT& object) const {
    object.add("from", m_from.to_raw_string());
    object.add("to", m_to.to_raw_string());
}

/// Reads a timescale: a time above 0, or a frequency, which counts as its period.
///
/// Throws USAGE_ERROR for anything else, and for one that cannot be kept exactly.
BIG_TIME timescale_named(std::string const& text, std::string const& option) {
    BIG_TIME time;
    std::string problem;
    OUTCOME outcome = TIME_READER({}).read(text, time, problem);
    bool const is_frequency = category_of(time) == BIG_TIME::FREQUENCY_CATEGORY;
    if (outcome == OUTCOME::CONVERTED && is_frequency && is_cut_when_inverted(time, problem)) {
        outcome = OUTCOME::LOST_DIGITS;
    }
    if (outcome == OUTCOME::CONVERTED
        && (category_of(time) == BIG_TIME::DATA_RATE_CATEGORY || time.get_time_value() <= 0)) {
        problem = "is not a timescale: expected a time or a frequency above 0";
        outcome = OUTCOME::REFUSED;
    }
    if (outcome != OUTCOME::CONVERTED) {
        throw USAGE_ERROR(option + ": " + in_quotes(text) + ' ' + problem);
    }
    return time;
}

BIG_64_RADIX radix_named(std::string const& name) {
    for (RADIX const& row : RADIXES) {
        if (name == row.name) {
            return row.radix;
        }
    }
    throw USAGE_ERROR("--radix: " + in_quotes(name)
                      + " is not a radix: expected dec, oct, hex or HEX");
}

/// Throws USAGE_ERROR for flags that the library refuses.
std::string const& checked_flags(std::string const& flags) {
    try {
        big_64_to_string(0, flags, BIG_64_SIGNED_DEC);
        return flags;
    } catch (ERR_INTERNAL_ERROR const&) {
        throw USAGE_ERROR("--flags: " + in_quotes(flags)
                          + ": expected any of the flags -+ #0 and then a width of at most 23");
    }
}

void add_delay_options(COMMAND_LINE& line, DELAY_OPTIONS& options) {
    line.add_text(
        "--from", "TIME",
        [&options](std::string const& text) { options.from = timescale_named(text, "--from"); },
        "The timescale of the delays: one counts as TIME. A frequency stands for its period");
    line.add_text(
        "--to", "TIME",
        [&options](std::string const& text) { options.to = timescale_named(text, "--to"); },
        "The timescale to write them in");
    line.add_text(
        "--radix", "RADIX",
        [&options](std::string const& name) { options.radix = radix_named(name); },
        "Write whole delays in dec, oct, hex or HEX (in capitals)");
    line.add_text(
        "--flags", "FLAGS",
        [&options](std::string const& flags) { options.flags = checked_flags(flags); },
        "Write whole delays as printf does with these flags, any of -+ #0 and then a width of at "
        "most 23");
}

char const* const DESCRIPTION =
    "Write delays that are counted in one timescale in another one.\n"
    "\n"
    "A DELAY is a whole number from 1 to 2147483647. Without a DELAY the lines of standard input "
    "are converted. Results have at most nine decimal places.";

char const* const EXAMPLES =
    "Results are those of double arithmetic. One that is not exact is reported; --strict refuses "
    "it.\n"
    "\n"
    "Examples:\n"
    "  $ bigq delay --from 1ns --to 1ps 5\n"
    "  5000\n"
    "  $ bigq delay --from 1ps --to 1ns 3 2500\n"
    "  0.003\n"
    "  2.5\n"
    "  $ printf 'clk 5\\n' | bigq delay --from '125 MHz' --to '10 ps' --field 2\n"
    "  clk 4000\n"
    "  $ bigq delay --from 1ns --to 1ps --radix hex --flags 08 5\n"
    "  00001388\n";

} // namespace

EXIT_STATUS run_delay(std::vector<std::string> const& arguments) {
    DELAY_OPTIONS options;
    FILTER_OPTIONS filter_options;
    COMMAND_LINE line("delay", "[DELAY]...", DESCRIPTION,
                      FILTER_HELP + ('\n' + std::string(EXAMPLES)));
    add_delay_options(line, options);
    add_filter_options(line, filter_options);
    std::vector<std::string> const texts = line.read(arguments);
    if (!options.from || !options.to) {
        throw USAGE_ERROR(std::string(options.from ? "--to" : "--from")
                          + ": expected a timescale, such as 1ns");
    }
    if (!options.radix && !options.flags.empty()) {
        options.radix = BIG_64_SIGNED_DEC;
    }
    DELAY_CONVERSION conversion(options);
    return run_filter(filter_options, texts, conversion);
}
