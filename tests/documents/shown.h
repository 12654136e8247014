#ifndef SHOWN_H
#define SHOWN_H

/// @file
/// What a line of code gives, in the notation of the examples in pages. page_program.cpp writes the
/// programs that use it.

#include "big_sys.h"
#include "mem_sys.h"

#include <functional>
#include <stdexcept>
#include <string>
#include <type_traits>

#include <gtest/gtest.h>

inline std::string text_of(std::string const& value) {
    return '"' + value + '"';
}

inline std::string text_of(bool value) {
    return value ? "true" : "false";
}

inline std::string text_of(long long value) {
    return std::to_string(value);
}

inline std::string text_of(int value) {
    return std::to_string(value);
}

/// Count and enumerator.
inline std::string text_of(BIG_TIME const& time) {
    std::string name = BIG_TIME::get_time_unit_string(time.get_time_unit());
    if (name.empty())
        name = "none";
    for (char& c : name)
        if (c >= 'a' && c <= 'z')
            c = static_cast<char>(c - ('a' - 'A'));
    return std::to_string(time.get_time_value()) + ", UNIT_" + name;
}

/// What a call gives as text, or how it ended; then, on a line each, what it reported.
inline std::string outcome_of(std::function<std::string()> const& call) {
    std::string reports;
    err_set_message_sink([&](MSG_ENUMERATED_POST_MSG id, char const* arg1, char const* arg2) {
        reports += "\nmessage " + std::to_string(id) + ": \"" + arg1 + '"';
        if (arg2 != nullptr)
            reports += std::string(" stored as \"") + arg2 + '"';
    });
    mem_set_debug_sink(
        [&](char const*, char const* text) { reports += std::string("\ndebug: ") + text; });
    std::string result;
    try {
        result = call();
    } catch (ERR_INTERNAL_ERROR const& error) {
        result = "internal error: " + error.text();
    } catch (std::out_of_range const&) {
        result = "std::out_of_range";
    }
    err_set_message_sink(nullptr);
    mem_set_debug_sink(nullptr);
    return result + reports;
}

/// The same of a call with a result of whatever type.
template <typename CALL_FN>
std::string shown(CALL_FN call) {
    return outcome_of([&]() -> std::string {
        if constexpr (std::is_void_v<decltype(call())>) {
            call();
            return "nothing";
        } else {
            return text_of(call());
        }
    });
}

#endif
