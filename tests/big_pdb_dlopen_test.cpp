// A program that is not linked with the library opens and closes it while it runs. The platform is
// the program's own.

#include "load_order.h"
#include "recording_platform.h"

#include <dlfcn.h>

namespace {

TEST(BigPdbDlopen, RecordsLiveAsLongAsTheLibraryIsLoaded) {
    for (int time = 1; time <= 3; ++time) {
        SCOPED_TRACE(testing::Message() << "loaded for the " << time << ". time");
        recording::clear();
        void* const library = dlopen(BIG_LIBRARY, RTLD_NOW | RTLD_LOCAL);
        ASSERT_NE(library, nullptr) << dlerror();
        EXPECT_EQ(recording::calls(), load_order());

        recording::clear();
        ASSERT_EQ(dlclose(library), 0) << dlerror();
        EXPECT_EQ(recording::calls(), unload_order());
        EXPECT_EQ(dlopen(BIG_LIBRARY, RTLD_NOW | RTLD_NOLOAD), nullptr) << "it is still there";
    }
}

} // namespace
