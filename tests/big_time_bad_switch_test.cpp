// What the operations on times do about switches of the standalone platform that cannot be read.
// Each test has an operation of its own, as an operation keeps what it has read.

#include "big_sys.h"
#include "support/standalone_error.h"

#include <cstdlib>
#include <stdexcept>
#include <string>

#include <gtest/gtest.h>

namespace {

BIG_TIME const FREQUENCY(5, BIG_TIME::UNIT_MHZ);
BIG_TIME const RATE(5, BIG_TIME::UNIT_MBPS);

/// The text of the std::runtime_error that a statement throws.
template <typename STATEMENT>
std::string refusal(STATEMENT statement) {
    try {
        statement();
        return "no error";
    } catch (std::runtime_error const& error) {
        return error.what();
    }
}

TEST(BigTimeBadSwitch, IsAnErrorAtEachCallUntilItCanBeRead) {
    std::string const text = "the environment variable BIG_TIME_STRICT_UNIT_MODE is \"maybe\"; "
                             "expected on, true, yes or 1, or off, false, no or 0";
    setenv("BIG_TIME_STRICT_UNIT_MODE", "maybe", 1);
    EXPECT_EQ(refusal([] { static_cast<void>(FREQUENCY == RATE); }), text);
    EXPECT_EQ(refusal([] { static_cast<void>(FREQUENCY == RATE); }), text);
    setenv("BIG_TIME_STRICT_UNIT_MODE", "on", 1);
    EXPECT_FALSE(FREQUENCY == RATE);
    setenv("BIG_TIME_STRICT_UNIT_MODE", "maybe", 1);
    EXPECT_FALSE(FREQUENCY == RATE);
    unsetenv("BIG_TIME_STRICT_UNIT_MODE");
}

TEST(BigTimeBadSwitch, IsNotReadWhereItCannotMatter) {
    setenv("BIG_TIME_STRICT_UNIT_MODE", "on", 1);
    setenv("BIG_TIME_IE_ON_UNIT_MISMATCH", "maybe", 1);
    EXPECT_STANDALONE_ERROR(static_cast<void>(FREQUENCY < RATE),
                            "Cannot compare incompatible units!", "big/big_time");
    unsetenv("BIG_TIME_STRICT_UNIT_MODE");
    unsetenv("BIG_TIME_IE_ON_UNIT_MISMATCH");
}

TEST(BigTimeBadSwitch, LeavesTheTimeAsItWas) {
    setenv("BIG_CONFIG", "/nowhere/big.toml", 1);
    BIG_TIME time(2000, BIG_TIME::UNIT_PS);
    EXPECT_NE(refusal([&] { time.set_time_unit(BIG_TIME::UNIT_US); }).find("/nowhere/big.toml"),
              std::string::npos);
    EXPECT_EQ(time.get_time_unit(), BIG_TIME::UNIT_PS);
    unsetenv("BIG_CONFIG");
    time.set_time_unit(BIG_TIME::UNIT_US);
    EXPECT_EQ(time.get_time_unit(), BIG_TIME::UNIT_US);
}

} // namespace
