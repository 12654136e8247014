// The main program of each file of benchmarks.

#include "bench.h"

#include <cstdlib>
#include <new>

namespace {

int failures = 0;
unsigned long long allocation_count = 0;
std::shared_ptr<bench::INPUT_HOLDER> holder_in_turn;

} // namespace

void bench::note_failure() {
    ++failures;
}

unsigned long long bench::allocations() {
    return allocation_count;
}

void bench::take_turn(std::shared_ptr<INPUT_HOLDER> const& holder) {
    if (holder_in_turn != holder) {
        if (holder_in_turn)
            holder_in_turn->release();
        holder_in_turn = holder;
    }
}

void* operator new(std::size_t size) {
    ++allocation_count;
    if (void* const memory = std::malloc(size == 0 ? 1 : size))
        return memory;
    throw std::bad_alloc();
}

void operator delete(void* memory) noexcept {
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

int main(int argc, char** argv) {
    benchmark::Initialize(&argc, argv);
    if (benchmark::ReportUnrecognizedArguments(argc, argv))
        return 2;
    benchmark::AddCustomContext("compiler", BIG_BENCH_COMPILER);
    benchmark::AddCustomContext("flags", BIG_BENCH_FLAGS);
    bench::add_comparisons();
    std::size_t const run = benchmark::RunSpecifiedBenchmarks();
    return run == 0 || failures != 0;
}
