// 128-bit integers: arithmetic and comparison (rows 5 and 6), decimal text (row 7).

#include "bench.h"
#include "inputs.h"
#include "wide.h"

#include <big_sys.h>

#ifdef BIG_BENCH_ABSL
#include <absl/numeric/int128.h>
#endif
#ifdef BIG_BENCH_BOOST
#include <boost/multiprecision/cpp_int.hpp>
#endif

namespace {

using bench::many;
using bench::RANDOM;
using bench::SPREAD;
using bench::WIDE;
using bench::WIDE_ANSWER;

/// The operands of an operation.
template <typename NUMBER, typename SECOND = NUMBER>
struct PAIR {
    NUMBER a;
    SECOND b;
};

using MAKE_PAIR = PAIR<WIDE> (*)(RANDOM&, SPREAD);

/// Two numbers whose sum fits.
PAIR<WIDE> addends(RANDOM& random, SPREAD spread) {
    return {bench::random_number(random, spread, 127), bench::random_number(random, spread, 127)};
}

/// Two numbers of which the first is not the smaller.
PAIR<WIDE> descending(RANDOM& random, SPREAD spread) {
    auto const [a, b] = addends(random, spread);
    return a < b ? PAIR<WIDE>{b, a} : PAIR<WIDE>{a, b};
}

/// Two numbers to compare, one time in four equal ones.
PAIR<WIDE> comparable(RANDOM& random, SPREAD spread) {
    auto const [a, b] = addends(random, spread);
    return {a, bench::below(random, 4) == 0 ? a : b};
}

/// Two numbers whose product fits.
PAIR<WIDE> factors(RANDOM& random, SPREAD spread) {
    unsigned const bits = 1 + bench::below(random, 127);
    return {bench::random_number(random, spread, bits),
            bench::random_number(random, spread, 128 - bits)};
}

/// A dividend and a divisor of up to 32, up to 64, and more bits.
PAIR<WIDE> with_divisor_32(RANDOM& random, SPREAD spread) {
    return {bench::random_number(random, spread, 128), bench::random_number(random, spread, 32)};
}
PAIR<WIDE> with_divisor_64(RANDOM& random, SPREAD spread) {
    return {bench::random_number(random, spread, 128), bench::random_number(random, spread, 64)};
}
PAIR<WIDE> with_divisor_128(RANDOM& random, SPREAD spread) {
    WIDE const wide = bench::random_number(random, SPREAD::FULL, 65 + bench::below(random, 64));
    return {bench::random_number(random, spread, 128), wide};
}

#ifdef BIG_BENCH_ABSL
absl::uint128 to_absl(WIDE value) {
    return absl::uint128(value);
}
#endif

#ifdef BIG_BENCH_BOOST
using BOOST_WIDE = boost::multiprecision::uint128_t;
using BOOST_CHECKED = boost::multiprecision::checked_uint128_t;

template <typename NUMBER>
NUMBER to_boost(WIDE value) {
    return NUMBER(value);
}
#endif

/// What all pairs of one contestant look like.
template <typename CONVERT>
auto pair_of(CONVERT convert) {
    return [=](PAIR<WIDE> const& input) {
        return PAIR<decltype(convert(input.a))>{convert(input.a), convert(input.b)};
    };
}

/// Adds the contestants of an operation whose result is a number.
///
/// @param operate for any integer type: the operation on a and b
/// @param in_gmp  the same as one of GMP's functions: `void (mpz_ptr, mpz_srcptr, mpz_srcptr)`
template <typename OPERATE, typename IN_GMP>
void add_operation(std::string const& name, MAKE_PAIR make, OPERATE operate,
                   [[maybe_unused]] IN_GMP in_gmp) {
    for (SPREAD const spread : {SPREAD::MIXED, SPREAD::FULL, SPREAD::SKEWED}) {
        auto const on_pair = [=](auto const& pair) { return operate(pair.a, pair.b); };
        bench::COMPARISON<PAIR<WIDE>, WIDE_ANSWER> comparison(
            name + '/' + bench::name_of(spread),
            [=] { return many([=](RANDOM& random) { return make(random, spread); }); });
        comparison.add("ours", pair_of(bench::to_ours), on_pair, bench::read_ours)
            .add("int128", pair_of([](WIDE value) { return value; }), on_pair, bench::read_wide);
#ifdef BIG_BENCH_GMP
        comparison.add(
            "gmp", pair_of([](WIDE value) { return bench::MPZ(value); }),
            [in_gmp, result = bench::MPZ()](auto const& pair) mutable -> bench::MPZ const& {
                in_gmp(result.get(), pair.a.get(), pair.b.get());
                return result;
            },
            bench::read_gmp);
#endif
#ifdef BIG_BENCH_ABSL
        comparison.add("absl", pair_of(to_absl), on_pair, [](absl::uint128 const& value) {
            return WIDE_ANSWER{static_cast<WIDE>(value)};
        });
#endif
#ifdef BIG_BENCH_BOOST
        comparison
            .add(
                "boost", pair_of(to_boost<BOOST_WIDE>),
                [=](auto const& pair) { return BOOST_WIDE(operate(pair.a, pair.b)); },
                [](BOOST_WIDE const& value) { return WIDE_ANSWER{static_cast<WIDE>(value)}; })
            .add(
                "boost_checked", pair_of(to_boost<BOOST_CHECKED>),
                [=](auto const& pair) { return BOOST_CHECKED(operate(pair.a, pair.b)); },
                [](BOOST_CHECKED const& value) { return WIDE_ANSWER{static_cast<WIDE>(value)}; });
#endif
    }
}

/// Adds the contestants of a comparison of numbers.
template <typename OPERATE>
void add_order(std::string const& name, OPERATE operate, [[maybe_unused]] bool (*in_gmp)(int)) {
    for (SPREAD const spread : {SPREAD::MIXED, SPREAD::FULL, SPREAD::SKEWED}) {
        auto const on_pair = [=](auto const& pair) { return operate(pair.a, pair.b); };
        bench::COMPARISON<PAIR<WIDE>, bool> comparison(name + '/' + bench::name_of(spread), [=] {
            return many([=](RANDOM& random) { return comparable(random, spread); });
        });
        comparison.add("ours", pair_of(bench::to_ours), on_pair)
            .add("int128", pair_of([](WIDE value) { return value; }), on_pair);
#ifdef BIG_BENCH_GMP
        comparison.add(
            "gmp", pair_of([](WIDE value) { return bench::MPZ(value); }),
            [=](auto const& pair) { return in_gmp(mpz_cmp(pair.a.get(), pair.b.get())); });
#endif
#ifdef BIG_BENCH_ABSL
        comparison.add("absl", pair_of(to_absl), on_pair);
#endif
#ifdef BIG_BENCH_BOOST
        comparison.add("boost", pair_of(to_boost<BOOST_WIDE>), on_pair);
#endif
    }
}

#ifndef BIG_BENCH_GMP
// The operations that GMP would do
constexpr int mpz_add = 0, mpz_sub = 0, mpz_mul = 0, mpz_tdiv_q = 0, mpz_tdiv_r = 0;
#endif

/// Division by the operator for 32-bit divisors.
void add_short_division() {
    auto const divide = [](auto const& pair) { return pair.a / pair.b; };
    for (SPREAD const spread : {SPREAD::MIXED, SPREAD::FULL, SPREAD::SKEWED}) {
        bench::COMPARISON<PAIR<WIDE>, WIDE_ANSWER> comparison(
            std::string("6/divide_by_int/") + bench::name_of(spread),
            [=] { return many([=](RANDOM& random) { return with_divisor_32(random, spread); }); });
        comparison
            .add(
                "ours",
                [](PAIR<WIDE> const& pair) {
                    return PAIR<BIG_ULONG128, unsigned>{bench::to_ours(pair.a),
                                                        static_cast<unsigned>(pair.b)};
                },
                divide, bench::read_ours)
            .add(
                "int128",
                [](PAIR<WIDE> const& pair) {
                    return PAIR<WIDE, unsigned>{pair.a, static_cast<unsigned>(pair.b)};
                },
                divide, bench::read_wide);
#ifdef BIG_BENCH_GMP
        comparison.add(
            "gmp",
            [](PAIR<WIDE> const& pair) {
                return PAIR<bench::MPZ, unsigned>{bench::MPZ(pair.a),
                                                  static_cast<unsigned>(pair.b)};
            },
            [result = bench::MPZ()](auto const& pair) mutable -> bench::MPZ const& {
                mpz_tdiv_q_ui(result.get(), pair.a.get(), pair.b);
                return result;
            },
            bench::read_gmp);
#endif
    }
}

/// Decimal text. A number of 39 digits needs at least 127 bits.
void add_text(std::string const& size, SPREAD spread, unsigned bits) {
    auto const inputs = [=] {
        return many([=](RANDOM& random) { return bench::random_number(random, spread, bits); });
    };
    bench::COMPARISON<WIDE, std::string> returned("7/ulong128_to_text/" + size, inputs);
    bench::COMPARISON<WIDE, std::string> in_place("7/ulong128_into_text/" + size, inputs);
    returned.add("ours", bench::to_ours,
                 [](BIG_ULONG128 const& value) { return value.to_string(); });
    in_place.add("ours", bench::to_ours,
                 [text = std::string()](BIG_ULONG128 const& value) mutable -> std::string const& {
                     return *value.to_string(&text);
                 });
    for (auto* const comparison : {&returned, &in_place}) {
#ifdef BIG_BENCH_GMP
        comparison->add(
            "gmp", [](WIDE value) { return bench::MPZ(value); },
            [buffer = std::vector<char>(64)](bench::MPZ const& value) mutable {
                return mpz_get_str(buffer.data(), 10, value.get());
            },
            [](char const* text) { return std::string(text); });
#endif
#ifdef BIG_BENCH_BOOST
        comparison->add("boost", to_boost<BOOST_WIDE>,
                        [](BOOST_WIDE const& value) { return value.str(); });
#endif
    }
}

} // namespace

void bench::add_comparisons() {
    // The functors of the standard library would not take operands of two types.
    auto const add = [](auto const& a, auto const& b) { return a + b; };
    auto const subtract = [](auto const& a, auto const& b) { return a - b; };
    auto const multiply = [](auto const& a, auto const& b) { return a * b; };
    auto const divide = [](auto const& a, auto const& b) { return a / b; };
    auto const remain = [](auto const& a, auto const& b) { return a % b; };
    add_operation("5/add", addends, add, mpz_add);
    add_operation("5/subtract", descending, subtract, mpz_sub);
    add_operation("5/multiply", factors, multiply, mpz_mul);
    add_order(
        "5/less", [](auto const& a, auto const& b) { return a < b; },
        [](int order) { return order < 0; });
    add_order(
        "5/equal", [](auto const& a, auto const& b) { return a == b; },
        [](int order) { return order == 0; });
    add_operation("6/divide_32", with_divisor_32, divide, mpz_tdiv_q);
    add_operation("6/divide_64", with_divisor_64, divide, mpz_tdiv_q);
    add_operation("6/divide_wide", with_divisor_128, divide, mpz_tdiv_q);
    add_operation("6/remainder_32", with_divisor_32, remain, mpz_tdiv_r);
    add_operation("6/remainder_64", with_divisor_64, remain, mpz_tdiv_r);
    add_operation("6/remainder_wide", with_divisor_128, remain, mpz_tdiv_r);
    add_short_division();
    add_text("39_digits", SPREAD::FULL, 128);
    add_text("mixed", SPREAD::MIXED, 128);
    add_text("skewed", SPREAD::SKEWED, 128);
}
