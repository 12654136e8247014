// Common divisors (row 8).

#include "bench.h"
#include "inputs.h"
#include "wide.h"

#include <big_sys.h>

#include <numeric>

#ifdef BIG_BENCH_BOOST
#include <boost/integer/common_factor_rt.hpp>
#endif

namespace {

using bench::many;
using bench::RANDOM;
using bench::SPREAD;
using bench::WIDE;
using bench::WIDE_ANSWER;

struct PAIR {
    WIDE a;
    WIDE b;
};

/// Two numbers of at most `bits` bits.
std::function<std::vector<PAIR>()> pairs(SPREAD spread, unsigned bits) {
    return [=] {
        return many([=](RANDOM& random) {
            return PAIR{bench::random_number(random, spread, bits),
                        bench::random_number(random, spread, bits)};
        });
    };
}

template <typename NUMBER, typename CONVERT>
auto pair_of(CONVERT convert) {
    return [=](PAIR const& pair) {
        return std::pair<NUMBER, NUMBER>(convert(pair.a), convert(pair.b));
    };
}

/// GMP's common divisor beside ours.
void add_gmp([[maybe_unused]] bench::COMPARISON<PAIR, WIDE_ANSWER>& comparison) {
#ifdef BIG_BENCH_GMP
    comparison.add(
        "gmp", pair_of<bench::MPZ>([](WIDE value) { return bench::MPZ(value); }),
        [result = bench::MPZ()](auto const& pair) mutable -> bench::MPZ const& {
            mpz_gcd(result.get(), pair.first.get(), pair.second.get());
            return result;
        },
        bench::read_gmp);
#endif
}

/// The 64-bit forms, on the magnitudes that a signed integer holds.
void add_gcd_64(std::string const& work, long long (*ours)(long long, long long)) {
    auto const own = pair_of<long long>([](WIDE value) { return static_cast<long long>(value); });
    auto const read = [](long long value) { return WIDE_ANSWER{static_cast<WIDE>(value)}; };
    for (SPREAD const spread : {SPREAD::FULL, SPREAD::MIXED, SPREAD::SKEWED}) {
        bench::COMPARISON<PAIR, WIDE_ANSWER> comparison(
            "8/" + work + "_64/" + bench::name_of(spread), pairs(spread, 63));
        comparison
            .add(
                "ours", own, [=](auto const& pair) { return ours(pair.first, pair.second); }, read)
            .add(
                "std", own, [](auto const& pair) { return std::gcd(pair.first, pair.second); },
                read);
        add_gmp(comparison);
#ifdef BIG_BENCH_BOOST
        comparison.add(
            "boost", own,
            [](auto const& pair) { return boost::integer::gcd(pair.first, pair.second); }, read);
#endif
    }
}

void add_gcd_128(std::string const& work, BIG_ULONG128 (*ours)(BIG_ULONG128, BIG_ULONG128)) {
    for (SPREAD const spread : {SPREAD::FULL, SPREAD::MIXED, SPREAD::SKEWED}) {
        bench::COMPARISON<PAIR, WIDE_ANSWER> comparison(
            "8/" + work + "_128/" + bench::name_of(spread), pairs(spread, 128));
        comparison.add(
            "ours", pair_of<BIG_ULONG128>(bench::to_ours),
            [=](auto const& pair) { return ours(pair.first, pair.second); }, bench::read_ours);
        add_gmp(comparison);
    }
}

} // namespace

void bench::add_comparisons() {
    add_gcd_64("gcd_modulo", big_gcd_modulo);
    add_gcd_64("gcd_binary", big_gcd_binary);
    add_gcd_128("gcd_modulo", big_gcd_modulo);
    add_gcd_128("gcd_binary", big_gcd_binary);
}
