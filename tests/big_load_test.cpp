// What the library does when it is loaded and when its process ends. Every other test clears the
// record; the ones here must not.

#include "load_order.h"
#include "recording_platform.h"

#include "big_sys.h"

#include <cstdlib>

namespace {

TEST(BigLoad, EightSourceFilesRegisterTheModule) {
    std::vector<recording::CALL> const registrations = recording::calls_of("MEM_INITIALIZER");
    EXPECT_EQ(registrations, std::vector<recording::CALL>(8, {"MEM_INITIALIZER", {"BIG"}}));
}

TEST(BigLoad, StoredClassesAreRegisteredAmongTheFilesAndNothingElseIsDone) {
    EXPECT_EQ(recording::calls(), load_order());
}

TEST(BigLoad, TablesAreThere) { // also what makes a static program take the library in
    EXPECT_STREQ(BIG_TIME::get_unit_name(BIG_TIME::UNIT_NS), "ns");
}

TEST(BigLoad, TheInvalidFrequencyIsZero) {
    EXPECT_EQ(BIG_FREQUENCY::BIG_INVALID_FREQUENCY.get_value(), 0.0);
}

TEST(BigLoadDeathTest, RegistrationsAreReleasedInReverseWhenTheProcessEnds) {
    std::string expected;
    for (recording::CALL const& call : unload_order())
        expected += testing::PrintToString(call) + '\n';
    EXPECT_EXIT(
        {
            recording::echo_calls();
            std::exit(0);
        },
        testing::ExitedWithCode(0), testing::Eq(expected));
}

} // namespace
