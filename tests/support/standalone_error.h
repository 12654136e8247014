#ifndef STANDALONE_ERROR_H
#define STANDALONE_ERROR_H

/// @file
/// What a test on the standalone platform expects of its internal errors.

#include "err_sys.h"

#include <gtest/gtest.h>

/// Whether the statement throws ERR_INTERNAL_ERROR with this text and path and the tag "2".
template <typename STATEMENT>
testing::AssertionResult throws_internal_error(STATEMENT statement, std::string const& text,
                                               std::string const& source_path) {
    try {
        statement();
    } catch (ERR_INTERNAL_ERROR const& error) {
        if (error.text() == text && error.tag() == "2" && error.source_path() == source_path)
            return testing::AssertionSuccess();
        return testing::AssertionFailure() << "reported \"" << error.what() << "\" instead of \""
                                           << text << "\" in " << source_path;
    }
    return testing::AssertionFailure() << "no internal error; expected \"" << text << "\"";
}

/// Expects a statement to throw one ERR_INTERNAL_ERROR: its text and its source path.
#define EXPECT_STANDALONE_ERROR(statement, text, source_path)                                      \
    EXPECT_TRUE(throws_internal_error([&] { statement; }, text, source_path))

#endif
