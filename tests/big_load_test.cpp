// What the library does when it is loaded.

#include "load_order.h"
#include "recording_platform.h"

namespace {

TEST(BigLoad, EightSourceFilesRegisterTheModule) {
    std::vector<recording::CALL> const registrations = recording::calls_of("MEM_INITIALIZER");
    EXPECT_EQ(registrations, std::vector<recording::CALL>(8, {"MEM_INITIALIZER", {"BIG"}}));
}

TEST(BigLoad, StoredClassesAreRegisteredAmongTheFiles) {
    EXPECT_EQ(recording::calls(), load_order());
}

TEST(BigLoad, TablesAreThere) { // also what makes a static program take the library in
    EXPECT_STREQ(BIG_TIME::get_unit_name(BIG_TIME::UNIT_NS), "ns");
}

} // namespace
