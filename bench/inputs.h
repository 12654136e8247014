#ifndef BENCH_INPUTS_H
#define BENCH_INPUTS_H

/// @file
/// Makers of inputs: many values whose shapes come in random order, the same in every run.

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace bench {

/// Inputs of a comparison. A thousand, repeated, would let the branch predictor learn their order.
constexpr std::size_t INPUT_COUNT = 65536;

using RANDOM = std::mt19937_64;
__extension__ using WIDE = unsigned __int128;

/// How the lengths of numbers are spread.
enum class SPREAD {
    FULL,   ///< all of the greatest length
    MIXED,  ///< every length is as likely as any other
    SKEWED, ///< seven of eight are below 1024, the others of any length
};

inline char const* name_of(SPREAD spread) {
    return spread == SPREAD::FULL ? "full" : spread == SPREAD::MIXED ? "mixed" : "skewed";
}

/// A number from 0 to limit - 1.
inline unsigned below(RANDOM& random, unsigned limit) {
    return static_cast<unsigned>(random() % limit);
}

/// A number of a length of at most `bits` (1 to 128), whose highest bit is set.
inline WIDE random_number(RANDOM& random, SPREAD spread, unsigned bits) {
    unsigned length = bits;
    if (spread == SPREAD::MIXED)
        length = 1 + below(random, bits);
    else if (spread == SPREAD::SKEWED)
        length = 1 + below(random, below(random, 8) != 0 ? std::min(10u, bits) : bits);
    WIDE const digits = static_cast<WIDE>(random()) << 64 | random();
    return (digits | static_cast<WIDE>(1) << 127) >> (128 - length);
}

/// What `make(random)` gives, many times.
template <typename MAKE>
auto many(MAKE make, std::size_t count = INPUT_COUNT) {
    RANDOM random(20240607);
    std::vector<decltype(make(random))> inputs;
    inputs.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        inputs.push_back(make(random));
    return inputs;
}

} // namespace bench

#endif
