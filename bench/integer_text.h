#ifndef BENCH_INTEGER_TEXT_H
#define BENCH_INTEGER_TEXT_H

/// @file
/// Decimal text of 64-bit integers (rows 3 and 4), signed and unsigned.

#include "bench.h"
#include "inputs.h"

#include <charconv>
#include <string>

#ifdef BIG_BENCH_FMT
#include <fmt/format.h>
#endif

namespace bench {

/// An integer; a signed one is as often negative as not.
template <typename INTEGER>
INTEGER random_integer(RANDOM& random, SPREAD spread) {
    unsigned const bits = std::is_signed_v<INTEGER> ? 63 : 64;
    auto const number = static_cast<INTEGER>(random_number(random, spread, bits));
    return std::is_signed_v<INTEGER> && below(random, 2) != 0 ? 0 - number : number;
}

/// Printing as a returned string, and into a string.
///
/// @param type     as part of the benchmarks' names
/// @param returned `std::string (INTEGER)`
/// @param into     `void (INTEGER, std::string*)`
template <typename INTEGER, typename RETURNED, typename INTO>
void add_printing(std::string const& type, RETURNED returned, INTO into) {
    auto const as_it_is = [](INTEGER value) { return value; };
    auto const to_string = [](INTEGER value) { return std::to_string(value); };
    for (SPREAD const spread : {SPREAD::MIXED, SPREAD::FULL, SPREAD::SKEWED}) {
        auto const inputs = [=] {
            return many([=](RANDOM& random) { return random_integer<INTEGER>(random, spread); });
        };
        COMPARISON<INTEGER, std::string> by_return("3/" + type + "_to_text/" + name_of(spread),
                                                   inputs);
        by_return.add("ours", as_it_is, returned).add("to_string", as_it_is, to_string);

        COMPARISON<INTEGER, std::string> in_place("3/" + type + "_into_text/" + name_of(spread),
                                                  inputs);
        in_place
            .add("ours", as_it_is,
                 [into, text = std::string()](INTEGER value) mutable -> std::string const& {
                     into(value, &text);
                     return text;
                 })
            .add("to_string", as_it_is, to_string)
            .add("to_chars", as_it_is,
                 [text = std::string()](INTEGER value) mutable -> std::string const& {
                     char buffer[24];
                     auto const end = std::to_chars(buffer, buffer + sizeof buffer, value);
                     return text.assign(buffer, end.ptr);
                 });
#ifdef BIG_BENCH_FMT
        by_return.add("fmt", as_it_is, [](INTEGER value) { return fmt::to_string(value); });
        in_place.add("fmt", as_it_is,
                     [text = std::string()](INTEGER value) mutable -> std::string const& {
                         fmt::format_int const printed(value);
                         return text.assign(printed.data(), printed.size());
                     });
#endif
    }
}

/// Reading. @param read `INTEGER (std::string const&)`
template <typename INTEGER, typename READ>
void add_reading(std::string const& type, READ read) {
    auto const as_it_is = [](std::string const& text) { return text; };
    for (SPREAD const spread : {SPREAD::MIXED, SPREAD::FULL, SPREAD::SKEWED}) {
        COMPARISON<std::string, INTEGER> comparison(
            "4/text_to_" + type + '/' + name_of(spread), [=] {
                return many([=](RANDOM& random) {
                    return std::to_string(random_integer<INTEGER>(random, spread));
                });
            });
        comparison.add("ours", as_it_is, read).add("from_chars", as_it_is, [](auto const& text) {
            INTEGER value = 0;
            std::from_chars(text.data(), text.data() + text.size(), value);
            return value;
        });
    }
}

} // namespace bench

#endif
