// Every example in the tool's pages and in its help does what it says.
//
// An example is a line that begins with "$ " in a console block; what follows, up to the next one
// or the end of the block, is what the command prints on standard output and standard error.

#include "run_program.h"

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct EXAMPLE {
    std::string command;
    std::string output;
};

/// The examples among lines, of which those inside a block begin with `indent`.
std::vector<EXAMPLE> examples_in(std::istream& lines, std::string const& block_begin,
                                 std::string const& block_end, std::string const& indent) {
    std::vector<EXAMPLE> examples;
    bool is_inside = false;
    for (std::string line; std::getline(lines, line);) {
        if (!is_inside || line == block_end) {
            is_inside = !is_inside && line == block_begin;
            continue;
        }
        line.erase(0, indent.size());
        if (line.rfind("$ ", 0) == 0) {
            examples.push_back({line.substr(2), ""});
        } else if (!examples.empty()) {
            examples.back().output += line + "\n";
        }
    }
    return examples;
}

/// Runs the examples in a folder, and expects at least `count` of them.
void expect_true_examples(std::vector<EXAMPLE> const& examples, std::size_t count,
                          std::string const& folder) {
    EXPECT_GE(examples.size(), count) << "examples were not found";
    for (EXAMPLE const& example : examples) {
        EXPECT_EQ(run_shell("{ " + example.command + "\n} 2>&1", "", folder).out, example.output)
            << "$ " << example.command;
    }
}

std::vector<EXAMPLE> examples_of_page(std::string const& path) {
    std::ifstream page(BIG_SOURCE_ROOT "/" + path);
    EXPECT_TRUE(page.is_open()) << path;
    return examples_in(page, "```console", "```", "");
}

TEST(BigqDocs, ExamplesOfTheReferenceAreTrue) {
    expect_true_examples(examples_of_page("docs/bigq.md"), 15, BIG_SOURCE_ROOT "/examples");
}

TEST(BigqDocs, ExamplesOfTheSamplesAreTrue) {
    expect_true_examples(examples_of_page("examples/README.md"), 1, BIG_SOURCE_ROOT "/examples");
}

TEST(BigqDocs, ExamplesOfTheReadmeAreTrue) {
    expect_true_examples(examples_of_page("README.md"), 2, BIG_SOURCE_ROOT);
}

TEST(BigqDocs, ExamplesOfTheHelpAreTrue) {
    std::istringstream help(run_shell("bigq time --help").out);
    expect_true_examples(examples_in(help, "Examples:", "", "  "), 4, "");
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
