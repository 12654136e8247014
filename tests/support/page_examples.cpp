#include "page_examples.h"

#include "run_program.h"

#include <fstream>

#include <gtest/gtest.h>

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

std::vector<EXAMPLE> examples_of_page(std::string const& path) {
    std::ifstream page(BIG_SOURCE_ROOT "/" + path);
    EXPECT_TRUE(page.is_open()) << path;
    return examples_in(page, "```console", "```", "");
}

void expect_true_examples(std::vector<EXAMPLE> const& examples, std::size_t count,
                          std::string const& folder) {
    EXPECT_GE(examples.size(), count) << "examples were not found";
    for (EXAMPLE const& example : examples) {
        EXPECT_EQ(run_shell("{ " + example.command + "\n} 2>&1", "", folder).out, example.output)
            << "$ " << example.command;
    }
}
