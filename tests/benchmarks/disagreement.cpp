// Comparisons of which one has a peer that is wrong about one of its inputs.

#include "bench.h"

void bench::add_comparisons() {
    auto const inputs = [] { return std::vector<int>{1, 2, 3}; };
    auto const as_it_is = [](int input) { return input; };
    auto const square = [](int input) { return input * input; };
    COMPARISON<int, int>("1/square/small", inputs)
        .add("ours", as_it_is, square)
        .add("right", as_it_is, square)
        .add("wrong", as_it_is, [](int input) { return input == 3 ? 10 : input * input; });
    COMPARISON<int, int>("2/square/small", inputs)
        .add("ours", as_it_is, square)
        .add("right", as_it_is, square);
}
