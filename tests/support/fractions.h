#ifndef FRACTIONS_H
#define FRACTIONS_H

/// @file
/// What the tests of fractions share, on any platform: fractions with chosen members, and how they
/// read.

#include "big_fraction_sys.h"
#include "pdb_sys.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <iterator>
#include <limits>
#include <ostream>
#include <random>
#include <string>

/// The members of a fraction, which a database could read from it or write into it.
class FRACTION_MEMBERS final : public PDB_SEGMENT_TEMPLATE<PDB_ANY_SEG_BASE> {
public:
    /// Those of a fraction.
    explicit FRACTION_MEMBERS(BIG_FRACTION fraction) { fraction << *this; }
    /// Those that a fraction is to have.
    FRACTION_MEMBERS(long long numerator, long long denominator, double value)
        : m_integers{numerator, denominator}, m_double(value), m_writes(true) {}

    BIG_FRACTION fraction() {
        BIG_FRACTION fraction;
        fraction << *this;
        return fraction;
    }

    void transfer(long long* member) override { pass(m_integers[m_next++], *member); }
    void transfer(int*) override {}
    void transfer(double* member) override { pass(m_double, *member); }
    void begin_object(PDB_THUNK_INFO const*, void*) override { m_next = 0; }
    bool end_object() override { return true; }

    long long m_integers[2] = {};
    double m_double = 0.0;

private:
    template <typename MEMBER>
    void pass(MEMBER& here, MEMBER& in_the_fraction) {
        if (m_writes)
            in_the_fraction = here;
        else
            here = in_the_fraction;
    }

    bool m_writes = false;
    int m_next = 0;
};

/// A fraction with these members.
inline BIG_FRACTION make_fraction(long long numerator, long long denominator, double value) {
    return FRACTION_MEMBERS(numerator, denominator, value).fraction();
}

/// Whether two doubles are the same in every bit; every not-a-number is one.
inline bool same_bits(double a, double b) {
    return (std::isnan(a) && std::isnan(b))
           || std::bit_cast<unsigned long long>(a) == std::bit_cast<unsigned long long>(b);
}

/// A double by the shortest digits that name it; every not-a-number is "nan".
inline std::string text_of(double value) {
    if (std::isnan(value))
        return "nan";
    char text[32];
    return std::string(text, std::to_chars(text, text + sizeof text, value).ptr);
}

/// Both forms of a fraction: "3/2 and 1.5"; with a denominator of 0 there is no exact form.
inline std::string text_of(BIG_FRACTION const& fraction) {
    FRACTION_MEMBERS const members(fraction);
    return std::to_string(members.m_integers[0]) + '/' + std::to_string(members.m_integers[1])
           + " and " + text_of(members.m_double);
}

inline void PrintTo(BIG_FRACTION const& fraction, std::ostream* out) {
    *out << text_of(fraction);
}

/// Integers at the edges and of every length, and doubles of every class.
class FRACTION_SOURCE {
public:
    explicit FRACTION_SOURCE(unsigned long long seed) : m_random(seed) {}

    long long integer() {
        static long long const edges[] = {0, 1, 2, 3, 10, 1000000, 3037000499, 3037000500, MAX};
        switch (m_random() % 4) {
        case 0: return sign() * edges[m_random() % std::size(edges)];
        case 1: return m_random() % 8 == 0 ? -MAX - 1 : sign() * MAX;
        default: return sign() * static_cast<long long>(m_random() >> (1 + m_random() % 63));
        }
    }

    double number() {
        static double const edges[] = {0.0,
                                       1.0,
                                       0.1,
                                       0.000001,
                                       1e-7,
                                       0x1p63,
                                       0x1p63 / 1e6,
                                       9223372036854.775,
                                       std::numeric_limits<double>::min(),
                                       std::numeric_limits<double>::denorm_min(),
                                       std::numeric_limits<double>::max(),
                                       std::numeric_limits<double>::infinity(),
                                       std::numeric_limits<double>::quiet_NaN()};
        double const s = static_cast<double>(sign());
        switch (m_random() % 4) {
        case 0: return s * edges[m_random() % std::size(edges)];
        case 1: return s * static_cast<double>(m_random() % 100000000) / 1e6;
        case 2: return s * static_cast<double>(m_random() >> (m_random() % 64)) / 1e6;
        default: return std::bit_cast<double>(m_random());
        }
    }

    /// Fractions with and without an exact form; the double need not belong to it.
    BIG_FRACTION fraction() {
        if (m_random() % 4 == 0)
            return make_fraction(integer(), 0, number());
        return make_fraction(integer(), integer(), number());
    }

private:
    static constexpr long long MAX = std::numeric_limits<long long>::max();

    long long sign() { return m_random() % 2 == 0 ? 1 : -1; }

    std::mt19937_64 m_random;
};

#endif
