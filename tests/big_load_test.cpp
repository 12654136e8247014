// What the library does when it is loaded.

#include "recording_platform.h"

#include "big_sys.h"

namespace {

TEST(BigLoad, EightSourceFilesRegisterTheModule) {
    std::vector<recording::CALL> const registrations = recording::calls_of("MEM_INITIALIZER");
    EXPECT_EQ(registrations, std::vector<recording::CALL>(8, {"MEM_INITIALIZER", {"BIG"}}));
}

} // namespace
