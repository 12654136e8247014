#include "signal_choice.h"

#include <algorithm>
#include <numeric>
#include <utility>

namespace {

/// Whether a text fits a pattern of characters, * and ?. On a mismatch the last * takes one
/// character more; an earlier one never has to.
bool fits(std::string_view text, std::string_view pattern) {
    constexpr std::size_t NONE = std::string_view::npos;
    std::size_t at = 0;
    std::size_t pattern_at = 0;
    std::size_t star = NONE; // where the last * is, and what it has taken ends
    std::size_t star_end = 0;
    while (at < text.size()) {
        if (pattern_at < pattern.size() && pattern[pattern_at] == '*') {
            star = pattern_at++;
            star_end = at;
        } else if (pattern_at < pattern.size()
                   && (pattern[pattern_at] == '?' || pattern[pattern_at] == text[at])) {
            ++pattern_at;
            ++at;
        } else if (star != NONE) {
            pattern_at = star + 1;
            at = ++star_end;
        } else {
            return false;
        }
    }
    return pattern.find_first_not_of('*', pattern_at) == NONE;
}

template <typename CONDITION>
std::vector<std::size_t> positions(std::vector<VCD_VARIABLE> const& variables,
                                   CONDITION const& holds) {
    std::vector<std::size_t> found;
    for (std::size_t i = 0; i < variables.size(); ++i) {
        if (holds(variables[i].name) || holds(variables[i].name + variables[i].range)) {
            found.push_back(i);
        }
    }
    return found;
}

/// The fewest characters to insert, delete or replace that make one text of the other (Wagner and
/// Fischer 1974).
std::size_t edit_distance(std::string_view a, std::string_view b) {
    std::vector<std::size_t> distances(b.size() + 1); // from a[0, i) to each b[0, j)
    std::iota(distances.begin(), distances.end(), std::size_t{0});
    for (std::size_t i = 0; i < a.size(); ++i) {
        std::size_t diagonal = distances[0];
        distances[0] = i + 1;
        for (std::size_t j = 0; j < b.size(); ++j) {
            std::size_t const replaced = diagonal + (a[i] == b[j] ? 0 : 1);
            diagonal = distances[j + 1];
            distances[j + 1] = std::min({replaced, diagonal + 1, distances[j] + 1});
        }
    }
    return distances.back();
}

/// A name without its scopes.
std::string_view last_part(std::string_view name) {
    return name.substr(name.rfind('.') + 1);
}

} // namespace

std::vector<std::size_t> find_variables(std::vector<VCD_VARIABLE> const& variables,
                                        std::string_view text) {
    std::vector<std::size_t> found =
        positions(variables, [=](std::string_view name) { return name == text; });
    if (found.empty()) {
        found = positions(variables, [=](std::string_view name) { return fits(name, text); });
    }
    return found;
}

std::vector<std::string> near_names(std::vector<VCD_VARIABLE> const& variables,
                                    std::string_view text) {
    constexpr std::size_t MOST_NAMES = 5;
    std::string_view const wanted = text.substr(0, text.rfind('['));
    std::vector<std::pair<std::size_t, std::string>> candidates;
    for (VCD_VARIABLE const& variable : variables) {
        // A wrong or missing scope is no reason not to know the variable, but a lesser likeness.
        std::size_t const distance =
            std::min(edit_distance(wanted, variable.name),
                     1 + edit_distance(last_part(wanted), last_part(variable.name)));
        if (distance <= 1 + last_part(wanted).size() / 3) {
            candidates.emplace_back(distance, variable.name + variable.range);
        }
    }
    std::sort(candidates.begin(), candidates.end());
    candidates.erase(std::unique(candidates.begin(), candidates.end()), candidates.end());
    candidates.resize(std::min(candidates.size(), MOST_NAMES));
    std::vector<std::string> names;
    for (auto& candidate : candidates) {
        names.push_back(std::move(candidate.second));
    }
    return names;
}
