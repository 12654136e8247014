#ifndef TIME_TEXT_H
#define TIME_TEXT_H

/// @file
/// Times, frequencies and data rates as every command reads them, and what it says about them.

#include "filter.h"

#include "big_sys.h"
#include "err_sys.h"

#include <optional>
#include <string>

/// The product of a frequency in hertz and its period in picoseconds.
inline constexpr long long HERTZ_TIMES_PICOSECONDS = 1000000000000;

/// Reads texts, and takes the library's messages about digits that are cut off.
class TIME_READER {
public:
    /// @param bare_unit the unit of numbers that have none; without it they stay without a unit
    explicit TIME_READER(std::optional<BIG_TIME::TIME_UNIT> bare_unit);
    ~TIME_READER();
    TIME_READER(TIME_READER const&) = delete;
    TIME_READER& operator=(TIME_READER const&) = delete;

    /// Reads a text.
    ///
    /// @param time    receives the value, unless the text is refused
    /// @param problem receives what is wrong, unless all is well: a sentence whose subject is the
    ///                text
    OUTCOME read(std::string const& text, BIG_TIME& time, std::string& problem);

private:
    std::optional<BIG_TIME::TIME_UNIT> const m_bare_unit;
    ERR_MESSAGE_SINK const m_previous_sink;
    std::string m_stored; ///< what is stored of the text when digits were cut off, else empty
};

/// Whether the library drops zeros of a text that matter: it reads .05 as .5.
bool loses_leading_zeros(std::string const& text);

/// What a value is.
BIG_TIME::UNIT_CATEGORY category_of(BIG_TIME const& time);

/// The name of the unit in which a category of units is stored.
char const* storage_unit_of(BIG_TIME::TIME_UNIT unit);

/// Whether the period of a frequency, or the frequency of a period, is cut to a whole count, and
/// the problem then. That of 0 is not.
bool is_cut_when_inverted(BIG_TIME const& time, std::string& problem);

#endif
