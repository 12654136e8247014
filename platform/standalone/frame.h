#ifndef PLATFORM_FRAME_H
#define PLATFORM_FRAME_H

/// @file
/// How the standalone platform reports what its callers must not do. A source file that reports
/// names itself first:
///
///     #define PLATFORM_SOURCE_PATH "platform/standalone/gen"

#include "err_sys.h"

/// Reports an internal error with a text of its own.
#define PLATFORM_FAIL(text) err_report_internal_error(text, "2", PLATFORM_SOURCE_PATH, __LINE__)

/// Reports an internal error whose text is the condition as written, unless the condition holds.
#define PLATFORM_REQUIRE(condition) ((condition) ? static_cast<void>(0) : PLATFORM_FAIL(#condition))

#endif
