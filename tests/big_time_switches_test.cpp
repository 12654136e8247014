// Comparison of times and change of their unit on the standalone platform, under one setting of the
// switches: those that the environment variable BIG_TEST_SWITCHES names, with commas between, are
// on. Who runs the program has set them in one of the platform's ways.
//
// An operation reads its switches on its first call and keeps them, so a run tests one setting. All
// that follows the first calls runs with every switch turned around, which must not matter. What
// each operation asks the platform for is tested in big_time_compare_test.cpp.

#include "big_sys.h"
#include "cfg_sys.h"
#include "mem_sys.h"
#include "support/standalone_error.h"

#include <cstdlib>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

struct SWITCH {
    char const* name;
    char const* variable;
};

constexpr SWITCH STRICT = {"big_time_strict_unit_mode", "BIG_TIME_STRICT_UNIT_MODE"};
constexpr SWITCH MISMATCH = {"big_time_ie_on_unit_mismatch", "BIG_TIME_IE_ON_UNIT_MISMATCH"};
constexpr SWITCH DEBUG = {"big_time_debug_unit_mismatches", "BIG_TIME_DEBUG_UNIT_MISMATCHES"};
constexpr SWITCH CONVERSION = {"big_time_ie_on_unit_conversion_error",
                               "BIG_TIME_IE_ON_UNIT_CONVERSION_ERROR"};

bool is_on(SWITCH const& the_switch) {
    char const* const names = std::getenv("BIG_TEST_SWITCHES");
    return names != nullptr
           && ("," + std::string(names) + ",").find("," + std::string(the_switch.name) + ",")
                  != std::string::npos;
}

/// Whether a configuration file is asked for that this build of the platform cannot read.
bool cannot_be_configured() {
    try {
        cfg_is_on(STRICT.name);
        return false;
    } catch (std::runtime_error const& error) {
        EXPECT_NE(std::string(error.what()).find("reads no configuration files"), std::string::npos)
            << error.what();
        return true;
    }
}

/// Makes the first call of each operation and turns every switch around.
class FIRST_CALL_MAKER : public testing::Environment {
public:
    void SetUp() override {
        if (cannot_be_configured())
            GTEST_SKIP() << "this build of the platform reads no configuration files";
        for (SWITCH const& the_switch : {STRICT, MISMATCH, DEBUG, CONVERSION})
            ASSERT_EQ(cfg_is_on(the_switch.name), is_on(the_switch)) << the_switch.name;

        BIG_TIME time(2, BIG_TIME::UNIT_NS);
        EXPECT_TRUE(time == time);
        EXPECT_FALSE(time < time);
        time.set_time_unit(BIG_TIME::UNIT_NS);

        for (SWITCH const& the_switch : {STRICT, MISMATCH, DEBUG, CONVERSION}) {
            setenv(the_switch.variable, is_on(the_switch) ? "off" : "on", 1);
            ASSERT_NE(cfg_is_on(the_switch.name), is_on(the_switch)) << the_switch.name;
        }
    }
};

testing::Environment* const first_call_maker =
    testing::AddGlobalTestEnvironment(new FIRST_CALL_MAKER);

class BigTimeSwitches : public testing::Test {
protected:
    BigTimeSwitches() {
        mem_set_debug_sink([this](char const*, char const* text) { m_messages.push_back(text); });
    }
    ~BigTimeSwitches() override { mem_set_debug_sink({}); }

    std::vector<std::string> m_messages;
};

BIG_TIME const TIME(3, BIG_TIME::UNIT_NS);
BIG_TIME const FREQUENCY(5, BIG_TIME::UNIT_MHZ);
BIG_TIME const RATE(5, BIG_TIME::UNIT_GBPS);

TEST_F(BigTimeSwitches, StrictModeTellsFrequenciesFromRatesOnOneSide) {
    BIG_TIME const rate(5, BIG_TIME::UNIT_MBPS); // as many as FREQUENCY
    EXPECT_EQ(FREQUENCY == rate, !is_on(STRICT));
    EXPECT_TRUE(rate == FREQUENCY);
    EXPECT_FALSE(BIG_TIME(1000000, BIG_TIME::UNIT_PS) == BIG_TIME(1, BIG_TIME::UNIT_MHZ));
    EXPECT_TRUE(BIG_TIME(2, BIG_TIME::UNIT_NS) == BIG_TIME(2000, BIG_TIME::UNIT_PS));
    EXPECT_EQ(m_messages, std::vector<std::string>());
}

TEST_F(BigTimeSwitches, EachPairOfKindsIsComparedAsItsSwitchesSay) {
    struct CASE {
        BIG_TIME const& a;
        BIG_TIME const& b;
        char const* a_text;
        char const* b_text;
        bool fails; // with the switch for mismatches, and without strict mode
    };
    CASE const cases[] = {
        {TIME, FREQUENCY, "3.0 ns", "5.0 MHz", true},
        {TIME, RATE, "3.0 ns", "5.0 Gbps", true},
        {FREQUENCY, RATE, "5.0 MHz", "5.0 Gbps", false},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(std::string(c.a_text) + " and " + c.b_text);
        for (bool const swapped : {false, true}) {
            m_messages.clear();
            BIG_TIME const& a = swapped ? c.b : c.a;
            BIG_TIME const& b = swapped ? c.a : c.b;
            if (is_on(STRICT) || (is_on(MISMATCH) && c.fails)) {
                EXPECT_STANDALONE_ERROR(static_cast<void>(a < b),
                                        "Cannot compare incompatible units!", "big/big_time");
            } else {
                EXPECT_EQ(a < b, !swapped); // the counts are in the order of the rows
            }
            std::vector<std::string> expected;
            if (is_on(STRICT) || is_on(MISMATCH) || is_on(DEBUG))
                expected.push_back(std::string("Attempting to compare incompatible times \"")
                                   + (swapped ? c.b_text : c.a_text) + "\" with \""
                                   + (swapped ? c.a_text : c.b_text)
                                   + "\"!  This behavior is deprecated!");
            EXPECT_EQ(m_messages, expected);
        }
    }
}

TEST_F(BigTimeSwitches, AZeroAndOneKindAreComparedWithoutAWord) {
    BIG_TIME const zero(0, BIG_TIME::UNIT_PS);
    EXPECT_TRUE(zero < FREQUENCY);
    EXPECT_FALSE(FREQUENCY < zero);
    EXPECT_TRUE(BIG_TIME(1, BIG_TIME::UNIT_NS) < BIG_TIME(2000, BIG_TIME::UNIT_PS));
    EXPECT_EQ(m_messages, std::vector<std::string>());
}

TEST_F(BigTimeSwitches, ARefusedChangeOfUnitIsAnErrorIfItsSwitchSaysSo) {
    std::string const text =
        "Can't assign \"GHz\" time unit to BIG_TIME object already in \"MHz\" units";
    BIG_TIME time = FREQUENCY;
    if (is_on(CONVERSION)) {
        EXPECT_STANDALONE_ERROR(time.set_time_unit(BIG_TIME::UNIT_GHZ), text, "big/big_time");
    } else {
        time.set_time_unit(BIG_TIME::UNIT_GHZ);
    }
    EXPECT_EQ(time.get_time_unit(), BIG_TIME::UNIT_MHZ);
    EXPECT_EQ(time.get_time_value(), 5000000);
    EXPECT_EQ(m_messages, std::vector<std::string>({text}));
}

TEST_F(BigTimeSwitches, AChangeAmongUnitsOfTimeIsMadeInEverySetting) {
    BIG_TIME time(2000, BIG_TIME::UNIT_PS);
    time.set_time_unit(BIG_TIME::UNIT_US);
    EXPECT_EQ(time.get_time_unit(), BIG_TIME::UNIT_US);
    EXPECT_EQ(time.get_time_value(), 2000);
    for (BIG_TIME::TIME_UNIT const unit : {BIG_TIME::UNIT_NONE, BIG_TIME::MAX_TIME_UNIT}) {
        EXPECT_STANDALONE_ERROR(time.set_time_unit(unit), "Time Unit out of range", "big/big_time");
    }
    EXPECT_EQ(m_messages, std::vector<std::string>());
}

} // namespace
