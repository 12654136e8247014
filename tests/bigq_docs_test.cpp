// Every example in the tool's pages and in its help does what it says.

#include "page_examples.h"
#include "run_program.h"

#include <sstream>

#include <gtest/gtest.h>

namespace {

TEST(BigqDocs, ExamplesOfTheReferenceAreTrue) {
    expect_true_examples(examples_of_page("docs/bigq.md"), 70, BIG_SOURCE_ROOT "/examples");
}

TEST(BigqDocs, ExamplesOfTheSamplesAreTrue) {
    expect_true_examples(examples_of_page("examples/README.md"), 1, BIG_SOURCE_ROOT "/examples");
}

TEST(BigqDocs, ExamplesOfTheReadmeAreTrue) {
    expect_true_examples(examples_of_page("README.md"), 7, BIG_SOURCE_ROOT);
}

TEST(BigqDocs, ExamplesOfTheHelpAreTrue) {
    for (std::string const command :
         {"compare", "delay", "fraction", "freq", "gcd", "radix", "time", "u128"}) {
        std::istringstream help(run_shell("bigq " + command + " --help").out);
        expect_true_examples(examples_in(help, "Examples:", "", "  "), 4, "");
    }
}

TEST(BigqDocs, SamplesAreWhatTheSimulatorWrites) {
    if (run_shell("command -v iverilog").status != 0) {
        GTEST_SKIP() << "Icarus Verilog is not installed";
    }
    // All but the dump's date and the simulator's version, which are its first six lines.
    RUN const run = run_shell("folder=$(mktemp -d) && ./make_samples $folder 2>&1 >/dev/null &&"
                              " cmp delays.txt $folder/delays.txt &&"
                              " tail -n +7 accumulator.vcd >$folder/committed.vcd &&"
                              " tail -n +7 $folder/accumulator.vcd | cmp $folder/committed.vcd;"
                              " status=$?; rm -r $folder; exit $status",
                              "", BIG_SOURCE_ROOT "/examples");
    EXPECT_EQ(run.status, 0) << testing::PrintToString(run);
}

} // namespace
