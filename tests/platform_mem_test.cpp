// The debug channel, memory modules, pooled allocation and formatting of the standalone platform.

#include "mem_sys.h"

#include "support/comma_locale.h"
#include "support/standalone_error.h"

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fstream>
#include <limits>
#include <set>
#include <thread>

#include <gmock/gmock.h>

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

// Formatting

TEST(PlatformMem, PrintfFormatsBecomeTheWholeText) {
    std::string text = "what was there before";
    MEM_DETAIL::stl_raw_sprintf(&text, "nothing to format");
    EXPECT_EQ(text, "nothing to format");
    MEM_DETAIL::stl_raw_sprintf(&text, "%c[%d]%5.2f|%-4s|%%", 'b', -7, 2.005, "x");
    EXPECT_EQ(text, "b[-7] 2.00|x   |%");
    MEM_DETAIL::stl_raw_sprintf(&text, "\\%03o", 7U);
    EXPECT_EQ(text, "\\007");
    MEM_DETAIL::stl_raw_sprintf(&text, "%s", "");
    EXPECT_EQ(text, "");
    MEM_DETAIL::stl_raw_sprintf(&text, "a%cb", '\0');
    EXPECT_EQ(text, std::string("a\0b", 3));
}

TEST(PlatformMem, FormattedTextMayHaveAnyLength) {
    for (std::size_t const length : {1U, 254U, 255U, 256U, 257U, 511U, 5000U, 100000U}) {
        SCOPED_TRACE(length);
        std::string const expected(length, 'x');
        std::string text;
        MEM_DETAIL::stl_raw_sprintf(&text, "%s", expected.c_str());
        EXPECT_EQ(text, expected);
    }
}

TEST(PlatformMem, AnArgumentMayPointIntoTheText) {
    for (std::size_t const length : {5U, 5000U}) {
        std::string text(length, 'x');
        MEM_DETAIL::stl_raw_sprintf(&text, "<%s|%s>", text.c_str(), text.c_str());
        EXPECT_EQ(text, "<" + std::string(length, 'x') + "|" + std::string(length, 'x') + ">");
    }
}

TEST(PlatformMem, FormattingUsesAPointInEveryProcessLocale) {
    COMMA_LOCALE const locale;
    if (!locale.available())
        GTEST_SKIP() << "the build made no locale";
    char local[16];
    std::snprintf(local, sizeof local, "%.1f", 2.5);
    ASSERT_STREQ(local, "2,5"); // the process locale is what the test takes it for
    std::string text;
    MEM_DETAIL::stl_raw_sprintf(&text, "%.1f %d", 2.5, 1234567);
    EXPECT_EQ(text, "2.5 1234567");
    std::snprintf(local, sizeof local, "%.1f", 2.5);
    EXPECT_STREQ(local, "2,5"); // and is in force again
}

TEST(PlatformMem, WhatCannotBePrintedIsAnInternalError) {
    std::string text = "as it was";
    EXPECT_STANDALONE_ERROR(MEM_DETAIL::stl_raw_sprintf(&text, "%ls", L"\u20ac"),
                            "the arguments cannot be printed in this format",
                            "platform/standalone/mem");
    EXPECT_EQ(text, "as it was");
}

// Debug messages

void debug(char const* format, ...) {
    std::va_list args;
    va_start(args, format);
    mem_msg_local_vdebug("BIG", format, args);
    va_end(args);
}

/// Puts the default back when a test ends.
class PlatformMemDebug : public testing::Test {
protected:
    void SetUp() override { GTEST_FLAG_SET(death_test_style, "threadsafe"); }
    void TearDown() override { mem_set_debug_sink(nullptr); }
};

using PlatformMemDebugDeathTest = PlatformMemDebug;

/// What a process prints on standard error that sends two debug messages with BIG_DEBUG set (absent
/// when null) and the configuration file (none when null). The switch is asked for once in a
/// process, so each setting gets a process of its own.
#define EXPECT_DEBUG_OUTPUT(big_debug, big_config, output)                                         \
    EXPECT_EXIT(                                                                                   \
        {                                                                                          \
            configure("BIG_DEBUG", big_debug);                                                     \
            configure("BIG_CONFIG", big_config);                                                   \
            debug("Illegal input \"%s\"", "2.5.5");                                                \
            debug("%d%%", 100);                                                                    \
            std::exit(0);                                                                          \
        },                                                                                         \
        testing::ExitedWithCode(0), output)

void configure(char const* variable, char const* value) {
    if (value == nullptr)
        unsetenv(variable);
    else
        setenv(variable, value, 1);
}

TEST_F(PlatformMemDebugDeathTest, DebugMessagesAreSilentUnlessTheSwitchIsOn) {
    EXPECT_DEBUG_OUTPUT(nullptr, nullptr, testing::Eq(""));
    EXPECT_DEBUG_OUTPUT("", nullptr, testing::Eq(""));
    EXPECT_DEBUG_OUTPUT("off", nullptr, testing::Eq(""));
}

TEST_F(PlatformMemDebugDeathTest, DebugMessagesArePrintedWhenTheSwitchIsOn) {
    EXPECT_DEBUG_OUTPUT("on", nullptr, testing::Eq("BIG: Illegal input \"2.5.5\"\nBIG: 100%\n"));
}

TEST_F(PlatformMemDebugDeathTest, ASwitchThatCannotBeReadIsToldOnceAndIsOff) {
    EXPECT_DEBUG_OUTPUT("maybe", nullptr,
                        testing::Eq("no debug messages: the environment variable BIG_DEBUG is "
                                    "\"maybe\"; expected on, true, yes or 1, or off, false, no or "
                                    "0\n"));
    EXPECT_DEBUG_OUTPUT(nullptr, "/nonexistent",
                        testing::StartsWith("no debug messages: the environment variable "
                                            "BIG_CONFIG names the file \"/nonexistent\""));
}

TEST_F(PlatformMemDebug, ASinkReceivesTheFormattedText) {
    std::vector<std::string> messages;
    EXPECT_FALSE(mem_set_debug_sink([&](char const* module, char const* text) {
        messages.push_back(std::string(module) + "|" + text);
    }));
    CaptureStderr();
    debug("Empty string!");
    debug("%s takes %d", "2.5 ns", 2500);
    debug("%s", std::string(1000, 'x').c_str());
    EXPECT_EQ(GetCapturedStderr(), "");
    EXPECT_EQ(messages, (std::vector<std::string>{"BIG|Empty string!", "BIG|2.5 ns takes 2500",
                                                  "BIG|" + std::string(1000, 'x')}));

    EXPECT_TRUE(mem_set_debug_sink(nullptr));
    debug("not for the sink");
    EXPECT_EQ(messages.size(), 3U);
}

TEST_F(PlatformMemDebug, DebugTextDoesNotDependOnTheProcessLocale) {
    COMMA_LOCALE const locale;
    if (!locale.available())
        GTEST_SKIP() << "the build made no locale";
    std::string received;
    mem_set_debug_sink([&](char const*, char const* text) { received = text; });
    debug("%.1f", 2.5);
    EXPECT_EQ(received, "2.5");
}

TEST_F(PlatformMemDebug, ATextThatCannotBeFormattedArrivesAsItsFormat) {
    std::string received;
    mem_set_debug_sink([&](char const*, char const* text) { received = text; });
    debug("a wide %ls", L"\u20ac");
    EXPECT_EQ(received, "a wide %ls");
}

TEST_F(PlatformMemDebug, AnExceptionOfTheSinkIsToldAndGoesNoFurther) {
    mem_set_debug_sink(
        [](char const*, char const*) { throw std::runtime_error("the log is full"); });
    CaptureStderr();
    EXPECT_NO_THROW(debug("Empty string!"));
    EXPECT_EQ(GetCapturedStderr(), "BIG: a debug message was lost: the log is full\n");
}

TEST_F(PlatformMemDebug, AnythingElseThatTheSinkThrowsGoesNoFurtherEither) {
    mem_set_debug_sink([](char const*, char const*) { throw "the log is full"; });
    CaptureStderr();
    EXPECT_NO_THROW(debug("Empty string!"));
    EXPECT_EQ(GetCapturedStderr(), "BIG: a debug message was lost: unknown exception\n");
}

TEST_F(PlatformMemDebug, SinksMayBeReplacedWhileOthersWrite) {
    std::thread writer([] {
        for (int i = 0; i < 2000; ++i)
            debug("%d", i);
    });
    for (int i = 0; i < 2000; ++i)
        mem_set_debug_sink([owned = std::string(100, 'x')](char const*, char const*) {
            EXPECT_EQ(owned.size(), 100U); // alive while it runs
        });
    writer.join();
}

// Memory modules

TEST(PlatformMem, AModuleMayBeRegisteredAnyNumberOfTimes) {
    MEM_INITIALIZER const first("BIG");
    MEM_INITIALIZER const second("BIG");
}

// Pooled allocation

TEST(PlatformMem, APoolKeepsWhatItWasTold) {
    EXPECT_TRUE(MEM_UTILS_CHUNK_ALLOC().chunk_allocation_is_enabled());
    EXPECT_TRUE(MEM_UTILS_CHUNK_ALLOC(true).chunk_allocation_is_enabled());
    EXPECT_FALSE(MEM_UTILS_CHUNK_ALLOC(false).chunk_allocation_is_enabled());
}

TEST(PlatformMem, APoolGivesMemoryThatIsAlignedAndItsOwn) {
    struct BLOCK {
        unsigned char* memory;
        unsigned long size;
        int mark;
    };
    MEM_UTILS_CHUNK_ALLOC pool(false); // single objects come from it all the same
    std::vector<BLOCK> blocks;
    int mark = 0;
    for (unsigned long alignment = 1; alignment <= 8192; alignment *= 2)
        for (unsigned long const size : {1UL, 3UL, 8UL, 16UL, 24UL, 1000UL, 70000UL}) {
            auto* const memory = static_cast<unsigned char*>(pool.chunk_malloc(size, alignment));
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(memory) % alignment, 0U);
            std::memset(memory, ++mark % 256, size);
            blocks.push_back({memory, size, mark % 256});
        }
    for (BLOCK const& block : blocks)
        for (unsigned long i = 0; i < block.size; ++i)
            ASSERT_EQ(block.memory[i], block.mark) << "byte " << i << " of " << block.size;
}

TEST(PlatformMem, NoBytesHaveAnAddressOfTheirOwnToo) {
    MEM_UTILS_CHUNK_ALLOC pool;
    std::set<void*> addresses;
    for (int i = 0; i < 1000; ++i) {
        addresses.insert(pool.chunk_malloc(0, 8));
        addresses.insert(pool.chunk_malloc(0, 1));
    }
    EXPECT_EQ(addresses.size(), 2000U);
    EXPECT_EQ(addresses.count(nullptr), 0U);
}

TEST(PlatformMem, MoreThanThereIsGivesBadAlloc) {
    MEM_UTILS_CHUNK_ALLOC pool;
    for (unsigned long below = 0; below < 32; ++below)
        EXPECT_THROW(pool.chunk_malloc(std::numeric_limits<unsigned long>::max() - below, 8),
                     std::bad_alloc);
    EXPECT_THROW(pool.chunk_malloc(8, 1UL << 63), std::bad_alloc);
    EXPECT_NE(pool.chunk_malloc(8, 8), nullptr); // the pool goes on
}

TEST(PlatformMem, AnAlignmentThatIsNoPowerOfTwoIsAnInternalError) {
    MEM_UTILS_CHUNK_ALLOC pool;
    for (unsigned long const alignment : {0UL, 3UL, 6UL, 12UL, ~0UL})
        EXPECT_STANDALONE_ERROR(pool.chunk_malloc(8, alignment), "std::has_single_bit(alignment)",
                                "platform/standalone/mem");
}

} // namespace
