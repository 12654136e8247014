// Fractions (row 15).

#include "bench.h"
#include "inputs.h"
#include "plain.h"

#include <big_fraction_sys.h>

namespace {

using bench::many;
using bench::PLAIN_FRACTION;
using bench::RANDOM;
using bench::SPREAD;

/// Two numerators and denominators; the fractions are equal one time in four.
struct PAIR {
    long long a_numerator, a_denominator;
    long long b_numerator, b_denominator;
};

PAIR random_pair(RANDOM& random, SPREAD spread) {
    auto const number = [&] {
        return static_cast<long long>(bench::random_number(random, spread, 30));
    };
    PAIR pair{number(), number(), number(), number()};
    if (bench::below(random, 4) == 0) {
        pair.b_numerator = pair.a_numerator;
        pair.b_denominator = pair.a_denominator;
    }
    if (bench::below(random, 2) != 0)
        pair.a_numerator = -pair.a_numerator;
    return pair;
}

/// Both forms of a fraction as an answer.
struct FORMS {
    long long numerator;
    long long denominator;
    double value;

    bool operator==(FORMS const&) const = default;
    friend std::ostream& operator<<(std::ostream& out, FORMS const& forms) {
        return out << forms.numerator << '/' << forms.denominator << " = " << forms.value;
    }
};

FORMS forms_of(BIG_FRACTION const& fraction) {
    return {fraction.is_fractional() ? fraction.get_numerator() : 0, fraction.get_denominator(),
            fraction.get_value()};
}

FORMS forms_of(PLAIN_FRACTION const& fraction) {
    return {fraction.numerator, fraction.denominator, fraction.value};
}

bool forms_of(bool is_equal) {
    return is_equal;
}

/// The operands as one of the two classes.
template <typename FRACTION>
std::pair<FRACTION, FRACTION> operands(PAIR const& pair) {
    return {FRACTION(pair.a_numerator, pair.a_denominator),
            FRACTION(pair.b_numerator, pair.b_denominator)};
}

/// Adds an operation on two fractions, whose answer is a fraction or a truth value.
template <typename ANSWER, typename OPERATE>
void add_operation(std::string const& work, OPERATE operate) {
    for (SPREAD const spread : {SPREAD::MIXED, SPREAD::SKEWED}) {
        auto const on_pair = [=](auto const& pair) { return operate(pair.first, pair.second); };
        auto const read = [](auto const& result) { return forms_of(result); };
        bench::COMPARISON<PAIR, ANSWER> comparison(
            "15/" + work + '/' + bench::name_of(spread),
            [=] { return many([=](RANDOM& random) { return random_pair(random, spread); }); });
        comparison.add("ours", operands<BIG_FRACTION>, on_pair, read)
            .add("plain", operands<PLAIN_FRACTION>, on_pair, read);
    }
}

/// Making a fraction of two integers, which reduces it.
void add_reduction() {
    for (SPREAD const spread : {SPREAD::MIXED, SPREAD::SKEWED}) {
        auto const as_it_is = [](PAIR const& pair) { return pair; };
        auto const read = [](auto const& result) { return forms_of(result); };
        bench::COMPARISON<PAIR, FORMS> comparison(
            std::string("15/fraction_make/") + bench::name_of(spread),
            [=] { return many([=](RANDOM& random) { return random_pair(random, spread); }); });
        comparison
            .add(
                "ours", as_it_is,
                [](PAIR const& pair) { return BIG_FRACTION(pair.a_numerator, pair.a_denominator); },
                read)
            .add(
                "plain", as_it_is,
                [](PAIR const& pair) {
                    return PLAIN_FRACTION(pair.a_numerator, pair.a_denominator);
                },
                read);
    }
}

} // namespace

void bench::add_comparisons() {
    add_operation<FORMS>("fraction_add", [](auto a, auto const& b) { return a += b; });
    add_operation<FORMS>("fraction_subtract", [](auto a, auto const& b) { return a -= b; });
    add_operation<FORMS>("fraction_divide", [](auto const& a, auto const& b) { return a / b; });
    add_operation<bool>("fraction_equal", [](auto const& a, auto const& b) { return a == b; });
    add_reduction();
}
