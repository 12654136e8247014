#ifndef TIME_SAMPLES_H
#define TIME_SAMPLES_H

/// @file
/// Random times and their texts for property tests: mostly legal or nearly so, often at a boundary.

#include <initializer_list>
#include <random>
#include <string>

/// How many cases a property runs in an optimized build and in a debugging one. Properties whose
/// case takes about half a microsecond or less run a million.
constexpr int cases([[maybe_unused]] int optimized, [[maybe_unused]] int debugging) {
#ifdef NDEBUG
    return optimized;
#else
    return debugging;
#endif
}
/// The same: all in an optimized build, a part of them in a debugging one.
constexpr int cases(int count) {
    return cases(count, count / 10);
}

class TIME_SAMPLES {
public:
    explicit TIME_SAMPLES(unsigned int seed) : m_engine(seed) {}

    /// A whole number from 0 to `limit` - 1.
    unsigned int below(unsigned int limit);
    /// True once in `times`.
    bool once_in(unsigned int times) { return below(times) == 0; }

    /// A 64-bit count: of random width, a power of ten or of two and its neighbours, a boundary.
    long long count();
    /// 0 to 14.
    int unit() { return static_cast<int>(below(15)); }
    /// Decimal places: few, none, or more than any unit has.
    unsigned short precision();

    /// Decimal digits, up to `longest`: random ones, zeros, nines, or zeros at an end.
    std::string digits(unsigned int longest);
    /// The number of a time: sign, digits and point, with all of them missing or doubled at times.
    std::string number_text();
    /// A unit's name in random letter case, sometimes none, several or something near one.
    std::string unit_text();
    /// Nothing, or white space of the six kinds.
    std::string blanks();
    /// A number and a unit with blanks, at times with a byte changed.
    std::string time_text();
    /// Any bytes, up to `longest`.
    std::string bytes(unsigned int longest);
    /// Puts any byte in, takes one out or changes one.
    std::string damaged(std::string text);

private:
    template <typename T>
    T one_of(std::initializer_list<T> choices) {
        return *(choices.begin() + below(static_cast<unsigned int>(choices.size())));
    }
    /// A number near the end of the 64-bit range, with a point somewhere.
    std::string boundary_number();

    std::mt19937_64 m_engine;
};

#endif
