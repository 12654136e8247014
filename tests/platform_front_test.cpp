// A program may put its own definition of a platform operation in front: then the library and the
// rest of the platform call it too, not only the program.

#include "big_sys.h"
#include "cfg_sys.h"
#include "err_sys.h"
#include "gen_sys.h"
#include "ktl_sys.h"
#include "mem_sys.h"
#include "pdb_sys.h"

#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct OWN_ERROR {
    std::string text;
};

std::vector<std::string>& switches_asked_for() {
    static std::vector<std::string> names;
    return names;
}

void debug(char const* format, ...) {
    std::va_list args;
    va_start(args, format);
    mem_msg_local_vdebug("BIG", format, args);
    va_end(args);
}

} // namespace

void err_report_internal_error(char const* text, char const*, char const*, int) {
    throw OWN_ERROR{text};
}

void err_post_enumerated_msg(MSG_ENUMERATED_POST_MSG, char const*, char const*) {}

bool cfg_is_on(std::string const& name) {
    switches_asked_for().push_back(name);
    return true;
}

namespace {

/// The text that a statement's report brings to the program's own definition.
template <typename STATEMENT>
std::string reported(STATEMENT statement) {
    try {
        statement();
    } catch (OWN_ERROR const& error) {
        return error.text;
    }
    return "(no report)";
}

TEST(PlatformFront, TheProgramsOwnReportReceivesThePlatformsErrors) {
    std::string text;
    EXPECT_EQ(reported([&] { gen_itoa(1, text, 99); }), "radix >= 2 && radix <= 36");
    EXPECT_EQ(reported([] { KTL_TOKENIZER("", true, "", "", "", false); }),
              "this tokenizer only splits on delimiters");
    EXPECT_EQ(reported([] { MEM_UTILS_CHUNK_ALLOC().chunk_malloc(1, 3); }),
              "std::has_single_bit(alignment)");
    EXPECT_EQ(reported([] {
                  PDB_THUNK_INFO(nullptr, 1, nullptr, nullptr, nullptr, nullptr, nullptr, nullptr,
                                 nullptr, nullptr, false, false, typeid(int), 4, "TEST", "path", 1);
              }),
              "record == this");
}

TEST(PlatformFront, TheLibraryAsksTheProgramsOwnSwitchesAndReportsToIt) {
    switches_asked_for().clear();
    BIG_TIME time(1LL, BIG_TIME::UNIT_NS);
    EXPECT_EQ(reported([&] { time.set_time_unit(BIG_TIME::UNIT_NONE); }), "Time Unit out of range");
    EXPECT_EQ(switches_asked_for(),
              std::vector<std::string>{"big_time_ie_on_unit_conversion_error"});
}

TEST(PlatformFront, TheProgramsOwnSwitchesDecideAboutDebugMessages) {
    switches_asked_for().clear();
    testing::internal::CaptureStderr();
    debug("on %s", "request");
    debug("and again");
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "BIG: on request\nBIG: and again\n");
    EXPECT_EQ(switches_asked_for(), std::vector<std::string>{"big_debug"}); // once in a process
}

} // namespace
