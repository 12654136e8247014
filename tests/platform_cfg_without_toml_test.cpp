// Configuration switches of a standalone platform that was built without toml++: this program puts
// such a cfg.cpp in front of the platform's own.

#include "cfg_sys.h"

#include <cstdlib>
#include <stdexcept>

#include <gtest/gtest.h>

namespace {

TEST(PlatformCfgWithoutToml, TheEnvironmentDecides) {
    unsetenv("BIG_CONFIG");
    setenv("BIG_DEBUG", "on", 1);
    EXPECT_TRUE(cfg_is_on("big_debug"));
    unsetenv("BIG_DEBUG");
    EXPECT_FALSE(cfg_is_on("big_debug"));
}

TEST(PlatformCfgWithoutToml, AConfigurationFileIsRefused) {
    setenv("BIG_CONFIG", "/etc/big.toml", 1);
    try {
        bool const on = cfg_is_on("big_debug");
        ADD_FAILURE() << "no error, and the switch is " << (on ? "on" : "off");
    } catch (std::runtime_error const& error) {
        EXPECT_STREQ(
            error.what(),
            "the environment variable BIG_CONFIG names the file \"/etc/big.toml\", but this "
            "build of the platform reads no configuration files (it was built without "
            "toml++); set each switch as an environment variable instead");
    }
    setenv("BIG_DEBUG", "yes", 1);
    EXPECT_TRUE(cfg_is_on("big_debug")); // the environment still goes first
    unsetenv("BIG_DEBUG");
    unsetenv("BIG_CONFIG");
}

} // namespace
