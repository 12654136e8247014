#ifndef PAGE_EXAMPLES_H
#define PAGE_EXAMPLES_H

/// @file
/// The examples in a page or a help text, which tests run.
///
/// An example is a line that begins with "$ " in a block; what follows, up to the next one or the
/// end of the block, is what the command prints on standard output and standard error.

#include <cstddef>
#include <iosfwd>
#include <string>
#include <vector>

struct EXAMPLE {
    std::string command;
    std::string output;
};

/// The examples among lines, of which those inside a block begin with `indent`.
std::vector<EXAMPLE> examples_in(std::istream& lines, std::string const& block_begin,
                                 std::string const& block_end, std::string const& indent);

/// The examples in the console blocks of a page of the repository.
std::vector<EXAMPLE> examples_of_page(std::string const& path);

/// Runs the examples in a folder, and expects at least `count` of them.
void expect_true_examples(std::vector<EXAMPLE> const& examples, std::size_t count,
                          std::string const& folder);

#endif
