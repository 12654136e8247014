#ifndef BENCH_H
#define BENCH_H

/// @file
/// Comparisons: contestants that do the same work on the same inputs.
///
/// A benchmark is called ROW/WORK/SIZE/WHO: the row of the table in docs/performance.md ("curve"
/// for what is only plotted), what is done, the width or the kind of the inputs, and who does it,
/// this library ("ours") or a peer. One iteration is one operation on the next of the inputs.
///
/// Before any contestant of a comparison is timed, all of them are run over all inputs; when one
/// of them answers other than ours, each ends with an error and the program fails.

#include <benchmark/benchmark.h>

#include <cstddef>
#include <functional>
#include <memory>
#include <sstream>
#include <string>
#include <type_traits>
#include <utility>
#include <vector>

namespace bench {

/// What each program does before its benchmarks run: adds its comparisons. Every file of
/// benchmarks defines it.
void add_comparisons();

/// Counts an error that a benchmark ended with; the program's exit status tells.
void note_failure();

/// How often memory has been allocated with operator new.
unsigned long long allocations();

/// Inputs in memory, which are released when another comparison's turn comes: those of all of them
/// would not fit.
class INPUT_HOLDER {
public:
    INPUT_HOLDER() = default;
    INPUT_HOLDER(INPUT_HOLDER const&) = delete;
    INPUT_HOLDER& operator=(INPUT_HOLDER const&) = delete;
    virtual ~INPUT_HOLDER() = default;
    virtual void release() = 0;
};

/// Releases what the holder before this one kept.
void take_turn(std::shared_ptr<INPUT_HOLDER> const& holder);

/// One who does the work of a comparison.
template <typename INPUT, typename ANSWER>
class CONTESTANT {
public:
    explicit CONTESTANT(std::string name) : m_who(std::move(name)) {}
    CONTESTANT(CONTESTANT const&) = delete;
    CONTESTANT& operator=(CONTESTANT const&) = delete;
    virtual ~CONTESTANT() = default;

    std::string const& who() const { return m_who; }

    virtual void prepare(std::vector<INPUT> const& inputs) = 0;
    virtual void release() = 0;
    /// The answer to the input with a number.
    virtual ANSWER answer(std::size_t number) = 0;
    /// Does the work for every input, and says how often memory was allocated for one.
    virtual double allocations_per_input() = 0;
    virtual void time(benchmark::State& run) = 0;

private:
    std::string const m_who;
};

/// A contestant by three functions; see COMPARISON::add().
template <typename INPUT, typename ANSWER, typename PREPARE, typename OPERATE, typename READ>
class FUNCTIONS : public CONTESTANT<INPUT, ANSWER> {
public:
    FUNCTIONS(std::string name, PREPARE preparation, OPERATE operation, READ reading)
        : CONTESTANT<INPUT, ANSWER>(std::move(name)), m_prepare(std::move(preparation)),
          m_operate(std::move(operation)), m_read(std::move(reading)) {}

    void prepare(std::vector<INPUT> const& inputs) override {
        m_inputs.reserve(inputs.size());
        for (INPUT const& input : inputs)
            m_inputs.push_back(m_prepare(input));
    }

    void release() override { std::vector<OWN>().swap(m_inputs); }

    ANSWER answer(std::size_t number) override {
        return static_cast<ANSWER>(m_read(m_operate(m_inputs[number])));
    }

    double allocations_per_input() override {
        unsigned long long const before = allocations();
        for (OWN const& input : m_inputs) {
            auto&& result = m_operate(input);
            benchmark::DoNotOptimize(result);
        }
        return static_cast<double>(allocations() - before) / static_cast<double>(m_inputs.size());
    }

    void time(benchmark::State& run) override {
        OPERATE operate = m_operate; // where the compiler can keep it in registers
        OWN const* const begin = m_inputs.data();
        OWN const* const end = begin + m_inputs.size();
        OWN const* input = begin;
        for (auto _ : run) {
            auto&& result = operate(*input);
            benchmark::DoNotOptimize(result);
            if (++input == end)
                input = begin;
        }
    }

private:
    using OWN = std::invoke_result_t<PREPARE, INPUT const&>;

    PREPARE m_prepare;
    OPERATE m_operate;
    READ m_read;
    std::vector<OWN> m_inputs;
};

/// A comparison. INPUT is the neutral form of an input, ANSWER that of an answer.
template <typename INPUT, typename ANSWER>
class COMPARISON {
public:
    using MAKE_INPUTS = std::function<std::vector<INPUT>()>;
    using AGREE = std::function<bool(ANSWER const& ours, ANSWER const& theirs)>;

    /// @param name        ROW/WORK/SIZE
    /// @param make_inputs gives the same inputs each time
    /// @param agree       whether a peer's answer is right when ours is known
    COMPARISON(std::string const& name, MAKE_INPUTS make_inputs,
               AGREE agree = std::equal_to<ANSWER>())
        : m_name(name), m_panel(std::make_shared<PANEL>(std::move(make_inputs), std::move(agree))) {
    }

    /// Adds a contestant; the first one is ours.
    ///
    /// @param prepare turns an input into what the contestant works on, before the time runs
    /// @param operate does the work once
    /// @param read    turns what operate() returned into the answer
    template <typename PREPARE, typename OPERATE, typename READ>
    COMPARISON& add(std::string const& who, PREPARE prepare, OPERATE operate, READ read) {
        auto const contestant = std::make_shared<FUNCTIONS<INPUT, ANSWER, PREPARE, OPERATE, READ>>(
            who, std::move(prepare), std::move(operate), std::move(read));
        m_panel->contestants.push_back(contestant);
        std::string const name = m_name + '/' + who;
        benchmark::RegisterBenchmark(
            name.c_str(), [panel = m_panel, contestant](benchmark::State& run) {
                take_turn(panel);
                if (std::string const& error = panel->check(); !error.empty()) {
                    note_failure();
                    run.SkipWithError(error.c_str());
                    return;
                }
                contestant->time(run);
                run.counters["allocations"] = contestant->allocations_per_input();
            });
        return *this;
    }

    /// The same for a contestant whose result is its answer.
    template <typename PREPARE, typename OPERATE>
    COMPARISON& add(std::string const& who, PREPARE prepare, OPERATE operate) {
        return add(who, prepare, operate, [](ANSWER const& answer) { return answer; });
    }

private:
    /// Those who do the same work on the same inputs.
    struct PANEL : INPUT_HOLDER {
        MAKE_INPUTS const make_inputs;
        AGREE const agree;
        std::vector<std::shared_ptr<CONTESTANT<INPUT, ANSWER>>> contestants;
        bool is_checked = false;
        std::string error;

        PANEL(MAKE_INPUTS inputs, AGREE agreement)
            : make_inputs(std::move(inputs)), agree(std::move(agreement)) {}

        /// Prepares and compares all contestants, once. Returns what is wrong, empty if nothing is.
        std::string const& check() {
            if (!is_checked) {
                std::vector<INPUT> const inputs = make_inputs();
                for (auto const& contestant : contestants)
                    contestant->prepare(inputs);
                error = disagreement(inputs.size());
                is_checked = true;
            }
            return error;
        }

        std::string disagreement(std::size_t count) {
            for (std::size_t number = 0; number < count; ++number) {
                ANSWER const ours = contestants.front()->answer(number);
                for (std::size_t peer = 1; peer < contestants.size(); ++peer) {
                    ANSWER const theirs = contestants[peer]->answer(number);
                    if (!agree(ours, theirs)) {
                        std::ostringstream text;
                        text << "input " << number << ": ours is " << ours << ", "
                             << contestants[peer]->who() << " has " << theirs;
                        return text.str();
                    }
                }
            }
            return {};
        }

        void release() override {
            for (auto const& contestant : contestants)
                contestant->release();
            is_checked = false;
        }
    };

    std::string const m_name;
    std::shared_ptr<PANEL> const m_panel;
};

} // namespace bench

#endif
