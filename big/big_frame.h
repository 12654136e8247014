#ifndef BIG_FRAME_H
#define BIG_FRAME_H

/// @file
/// What every source file of the library shares: how it reports, and how it says that it is there.
///
/// A source file includes this header first and then names itself:
///
///     #include "big_frame.h"
///     #define BIG_SOURCE_PATH "big/big_time"
///     static MEM_INITIALIZER s_mem_initializer("BIG");

#include "err_sys.h"
#include "mem_sys.h"

#include <cstdarg>

/// Keeps the short members of the public classes as exported symbols, beside compiling them into
/// their callers. A test that takes in a single source file leaves them out.
#ifndef BIG_INLINE
#define BIG_INLINE [[gnu::used]] inline
#endif

/// Reports an internal error whose text is the condition as written, unless the condition holds.
/// The text is what callers and tests see, so the spelling of a condition is part of the contract.
#define BIG_REQUIRE(condition)                                                                     \
    ((condition) ? static_cast<void>(0)                                                            \
                 : err_report_internal_error(#condition, "2", BIG_SOURCE_PATH, __LINE__))

/// Reports an internal error with a text of its own.
#define BIG_FAIL(text) err_report_internal_error(text, "2", BIG_SOURCE_PATH, __LINE__)

/// Writes a debug message under the module "BIG". Each source file has its own copy.
[[maybe_unused]] __attribute__((format(printf, 1, 2))) static void
mem_msg_vdebug(char const* format, ...) {
    std::va_list args;
    va_start(args, format);
    mem_msg_local_vdebug("BIG", format, args);
    va_end(args);
}

#endif
