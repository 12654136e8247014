// Failure reports and numbered messages of the standalone platform.

#include "err_sys.h"

#include <atomic>
#include <cstdlib>
#include <thread>
#include <vector>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

/// Puts the defaults back when a test ends.
class PlatformErr : public testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    void TearDown() override {
        err_set_internal_error_handler(nullptr);
        err_set_message_sink(nullptr);
    }
};

using PlatformErrDeathTest = PlatformErr;

// Internal errors

TEST_F(PlatformErr, AnInternalErrorIsThrownWithItsFourParts) {
    try {
        err_report_internal_error("unit >= MIN_TIME_UNITS", "2", "big/big_time", 321);
    } catch (ERR_INTERNAL_ERROR const& error) {
        EXPECT_EQ(error.text(), "unit >= MIN_TIME_UNITS");
        EXPECT_EQ(error.tag(), "2");
        EXPECT_EQ(error.source_path(), "big/big_time");
        EXPECT_EQ(error.line(), 321);
    }
}

TEST_F(PlatformErr, AnInternalErrorReadsAsOneLine) {
    try {
        err_report_internal_error("Overflow", "BIG", "h/big_sys", 347);
    } catch (std::logic_error const& error) {
        EXPECT_STREQ(error.what(), "internal error at h/big_sys:347 (tag BIG): Overflow");
    }
}

TEST_F(PlatformErr, AnInternalErrorOwnsItsTexts) {
    std::string text = "made at run time, long enough to be on the heap";
    ERR_INTERNAL_ERROR error(text.c_str(), "2", "big/big_time", 1);
    text.assign(text.size(), '?');
    ERR_INTERNAL_ERROR const copy = error;
    error = ERR_INTERNAL_ERROR("other", "BIG", "h/big_sys", 2);
    EXPECT_EQ(copy.text(), "made at run time, long enough to be on the heap");
    EXPECT_EQ(error.source_path(), "h/big_sys");
}

TEST_F(PlatformErr, AHandlerTakesThePlaceOfTheException) {
    struct OWN_ERROR {
        std::string parts;
    };
    err_set_internal_error_handler(
        [](char const* text, char const* tag, char const* source_path, int line) {
            throw OWN_ERROR{std::string(text) + "|" + tag + "|" + source_path + "|"
                            + std::to_string(line)};
        });
    try {
        err_report_internal_error("Division by Zero", "2", "big/big_ulong128", 210);
    } catch (OWN_ERROR const& error) {
        EXPECT_EQ(error.parts, "Division by Zero|2|big/big_ulong128|210");
    }
}

TEST_F(PlatformErr, SettingAHandlerReturnsThePreviousOne) {
    std::vector<int> calls;
    auto const handler = [&calls](int number) {
        return [&calls, number](char const*, char const*, char const*, int) {
            calls.push_back(number);
            throw number;
        };
    };
    EXPECT_FALSE(err_set_internal_error_handler(handler(1)));
    ERR_INTERNAL_ERROR_HANDLER const first = err_set_internal_error_handler(handler(2));
    EXPECT_THROW(first("text", "2", "path", 1), int);
    EXPECT_THROW(err_report_internal_error("text", "2", "path", 1), int);
    EXPECT_EQ(calls, (std::vector<int>{1, 2}));

    EXPECT_TRUE(err_set_internal_error_handler(nullptr));
    EXPECT_THROW(err_report_internal_error("text", "2", "path", 1), ERR_INTERNAL_ERROR);
}

TEST_F(PlatformErr, AHandlerKeepsItsStateFromCallToCall) {
    err_set_internal_error_handler(
        [count = 0](char const*, char const*, char const*, int) mutable { throw ++count; });
    for (int expected = 1; expected <= 3; ++expected) {
        try {
            err_report_internal_error("text", "2", "path", 1);
        } catch (int count) {
            EXPECT_EQ(count, expected);
        }
    }
}

TEST_F(PlatformErr, AHandlerMayReplaceItselfAndReport) {
    err_set_internal_error_handler([](char const* text, char const*, char const*, int) {
        err_set_internal_error_handler(nullptr);
        err_report_internal_error((std::string("again: ") + text).c_str(), "2", "path", 2);
    });
    try {
        err_report_internal_error("Overflow", "2", "path", 1);
    } catch (ERR_INTERNAL_ERROR const& error) {
        EXPECT_EQ(error.text(), "again: Overflow");
    }
}

TEST_F(PlatformErrDeathTest, AHandlerThatReturnsAbortsTheProcess) {
    EXPECT_EXIT(
        {
            err_set_internal_error_handler([](char const*, char const*, char const*, int) {});
            err_report_internal_error("Division by Zero", "2", "big/big_ulong128", 210);
        },
        testing::KilledBySignal(SIGABRT),
        testing::EndsWith("internal error at big/big_ulong128:210 (tag 2): Division by Zero\n"
                          "the handler of internal errors returned; the process is aborted\n"));
}

TEST_F(PlatformErrDeathTest, AnInternalErrorThatNobodyCatchesEndsTheProcessWithItsText) {
    EXPECT_EXIT(
        ([]() noexcept { err_report_internal_error("Overflow", "BIG", "h/big_sys", 347); })(),
        testing::KilledBySignal(SIGABRT),
        testing::HasSubstr("internal error at h/big_sys:347 (tag BIG): Overflow"));
}

TEST_F(PlatformErr, HandlersMayBeReplacedWhileOthersReport) {
    std::atomic<bool> done = false;
    std::atomic<int> thrown = 0;
    auto const report = [&] {
        while (!done) {
            try {
                err_report_internal_error("text", "2", "path", 1);
            } catch (int) {
                ++thrown;
            } catch (ERR_INTERNAL_ERROR const&) {
                ++thrown;
            }
        }
    };
    std::thread first(report);
    std::thread second(report);
    for (int i = 0; i < 1000 || thrown < 10; ++i) {
        std::string const owned(100, 'x'); // freed with the handler, not while it runs
        err_set_internal_error_handler([owned](char const*, char const*, char const*, int) {
            throw static_cast<int>(owned.size());
        });
        err_set_internal_error_handler(nullptr);
    }
    done = true;
    first.join();
    second.join();
}

// Numbered messages

TEST_F(PlatformErr, ANumberedMessageIsPrintedInItsWording) {
    struct CASE {
        char const* why;
        int id;
        char const* arg1;
        char const* arg2;
        char const* line;
    };
    CASE const cases[] = {
        // why                       number  texts                      line
        {"a text that is no time", 1, "3 parsecs", nullptr,
         "message 1: \"3 parsecs\" cannot be read as a time, a frequency or a data rate\n"},
        {"digits that were cut", 2, "1.5 ps", "1 ps",
         "message 2: \"1.5 ps\" has digits finer than its unit can hold; it is stored as "
         "\"1 ps\"\n"},
        {"an empty text", 1, "", nullptr,
         "message 1: \"\" cannot be read as a time, a frequency or a data rate\n"},
        {"a percent sign in a text", 2, "%1%s%", "%2",
         "message 2: \"%1%s%\" has digits finer than its unit can hold; it is stored as \"%2\"\n"},
        {"texts that are absent", 2, nullptr, nullptr,
         "message 2: (none) has digits finer than its unit can hold; it is stored as (none)\n"},
        {"a number without wording", 17, "a", nullptr,
         "message 17: no wording for this number; its texts are \"a\" and (none)\n"},
        {"a number without wording", -1, nullptr, "b",
         "message -1: no wording for this number; its texts are (none) and \"b\"\n"},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.why);
        CaptureStderr();
        err_post_enumerated_msg(static_cast<MSG_ENUMERATED_POST_MSG>(c.id), c.arg1, c.arg2);
        EXPECT_EQ(GetCapturedStderr(), c.line);
    }
}

TEST_F(PlatformErr, ASinkTakesThePlaceOfPrinting) {
    struct MESSAGE {
        int id;
        std::string arg1;
        bool has_arg2;
    };
    std::vector<MESSAGE> messages;
    EXPECT_FALSE(
        err_set_message_sink([&](MSG_ENUMERATED_POST_MSG id, char const* arg1, char const* arg2) {
            messages.push_back({id, arg1, arg2 != nullptr});
        }));
    CaptureStderr();
    err_post_enumerated_msg(MSG_BIG_ILLEGAL_TIME, "x", nullptr);
    err_post_enumerated_msg(MSG_BIG_TIME_TRUNCATED, "1.5 ps", "1 ps");
    EXPECT_EQ(GetCapturedStderr(), "");
    ASSERT_EQ(messages.size(), 2U);
    EXPECT_EQ(messages[0].id, MSG_BIG_ILLEGAL_TIME);
    EXPECT_EQ(messages[0].arg1, "x");
    EXPECT_FALSE(messages[0].has_arg2);
    EXPECT_EQ(messages[1].id, MSG_BIG_TIME_TRUNCATED);
    EXPECT_TRUE(messages[1].has_arg2);

    EXPECT_TRUE(err_set_message_sink(nullptr));
    CaptureStderr();
    err_post_enumerated_msg(MSG_BIG_ILLEGAL_TIME, "x", nullptr);
    EXPECT_NE(GetCapturedStderr(), "");
}

TEST_F(PlatformErr, WhatASinkThrowsReachesTheCaller) {
    err_set_message_sink([](MSG_ENUMERATED_POST_MSG, char const*, char const*) { throw 42; });
    EXPECT_THROW(err_post_enumerated_msg(MSG_BIG_ILLEGAL_TIME, "x", nullptr), int);
}

} // namespace
