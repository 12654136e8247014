#ifndef COMMAND_CASES_H
#define COMMAND_CASES_H

/// @file
/// Tables of commands with what they print, say and return.

#include "run_program.h"

#include <algorithm>
#include <string>
#include <vector>

#include <gtest/gtest.h>

struct CASE {
    char const* why;
    char const* command;
    std::string input;
    std::string out;
    std::string err;
    int status;
};

inline void run_cases(std::vector<CASE> const& cases) {
    for (CASE const& c : cases) {
        SCOPED_TRACE(std::string(c.why) + "\n$ " + c.command + "\n" + c.input.substr(0, 200));
        RUN const run = run_shell(c.command, c.input);
        EXPECT_EQ(run.out, c.out);
        EXPECT_EQ(run.err, c.err);
        EXPECT_EQ(run.status, c.status);
    }
}

/// Expects a command's help to hold some texts, wherever its lines end, and to fit a terminal.
inline void expect_help(std::string const& command, std::vector<std::string> const& texts) {
    RUN const run = run_shell(command + " --help");
    EXPECT_EQ(run.status, 0);
    EXPECT_EQ(run.err, "");
    std::string unwrapped = run.out;
    std::replace(unwrapped.begin(), unwrapped.end(), '\n', ' ');
    for (std::string const& text : texts) {
        EXPECT_NE(unwrapped.find(text), std::string::npos) << text << " is not in\n" << run.out;
    }
    for (std::size_t begin = 0; begin < run.out.size(); begin = run.out.find('\n', begin) + 1) {
        EXPECT_LE(run.out.find('\n', begin) - begin, 80u) << run.out.substr(begin, 90);
    }
}

#endif
