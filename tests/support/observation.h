#ifndef OBSERVATION_H
#define OBSERVATION_H

/// @file
/// What a call did, as its caller and the platform saw it, in a form in which the library and an
/// oracle can be compared.

#include "recording_platform.h"

#include <stdexcept>
#include <string>
#include <vector>

/// A text in quotes, with every byte that is not printable ASCII as \xHH.
std::string in_quotes(std::string const& text);

/// Results and outputs joined into one text for OBSERVATION::result.
template <typename... PARTS>
std::string words(PARTS const&... parts);

struct OBSERVATION {
    std::string result;                   ///< results and outputs, or how the call was left
    std::vector<recording::CALL> reports; ///< in order; internal errors without their line

    friend bool operator==(OBSERVATION const&, OBSERVATION const&) = default;
};
void PrintTo(OBSERVATION const& observation, std::ostream* out);

/// The result of an internal error; which one, the reports say.
inline char const* const LEFT_BY_INTERNAL_ERROR = "an internal error";

/// How an exception of the standard library is told: the operation of it that refused.
std::string left_by(std::out_of_range const& error);

/// The reports since recording::clear(), internal errors without their line.
std::vector<recording::CALL> reports_without_lines();

/// Makes a call of the library, which gives its result as text.
template <typename CALL_FN>
OBSERVATION observe(CALL_FN call) {
    recording::clear();
    std::string result;
    try {
        result = call();
    } catch (recording::INTERNAL_ERROR const&) {
        result = LEFT_BY_INTERNAL_ERROR;
    } catch (std::out_of_range const& error) {
        result = left_by(error);
    }
    return {result, reports_without_lines()};
}

namespace observation_detail {
std::string word(std::string const& text);
std::string word(bool value);
std::string word(int value);
std::string word(long long value);
} // namespace observation_detail

template <typename... PARTS>
std::string words(PARTS const&... parts) {
    std::string text;
    ((text += observation_detail::word(parts), text += ' '), ...);
    text.pop_back();
    return text;
}

#endif
