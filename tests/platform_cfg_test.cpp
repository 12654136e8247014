// Configuration switches of the standalone platform.

#include "cfg_sys.h"

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <stdexcept>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <unistd.h>

namespace {

/// Environment variables as a test sets them; the variables are absent before and after the test.
class PlatformCfg : public testing::Test {
protected:
    PlatformCfg() { clear(); }
    ~PlatformCfg() override { clear(); }

    void set(std::string const& variable, std::string const& value) {
        setenv(variable.c_str(), value.c_str(), 1);
    }

    /// The text of the std::runtime_error with which a switch is refused.
    static std::string refusal(std::string const& name) {
        try {
            bool const on = cfg_is_on(name);
            return std::string("no error: ") + (on ? "on" : "off");
        } catch (std::runtime_error const& error) {
            return error.what();
        }
    }

private:
    static void clear() {
        for (char const* const variable :
             {"BIG_CONFIG", "BIG_DEBUG", "BIG_TIME_STRICT_UNIT_MODE",
              "BIG_TIME_IE_ON_UNIT_MISMATCH", "ANOTHER_SWITCH", "SOME_SWITCH"})
            unsetenv(variable);
    }
};

/// Switches from a file, which BIG_CONFIG names.
class PlatformCfgFile : public PlatformCfg {
protected:
    void SetUp() override {
        configure("");
        if (refusal("some_switch").find("reads no configuration files") != std::string::npos)
            GTEST_SKIP() << "this build of the platform reads no configuration files";
    }

    void TearDown() override { std::filesystem::remove(m_path); }

    void configure(std::string const& content) {
        std::ofstream(m_path, std::ios::binary) << content;
        set("BIG_CONFIG", m_path);
    }

    /// Where an error says that it is.
    std::string at_line(int line) const { return m_path + ":" + std::to_string(line) + ": "; }

    std::string const m_path =
        testing::TempDir() + "platform_cfg_test_" + std::to_string(getpid()) + ".toml";
};

TEST_F(PlatformCfg, ASwitchThatIsNotConfiguredIsOff) {
    EXPECT_FALSE(cfg_is_on("big_time_strict_unit_mode"));
}

TEST_F(PlatformCfg, TheEnvironmentVariableInUpperCaseDecides) {
    struct CASE {
        char const* value;
        bool on;
    };
    CASE const cases[] = {
        {"on", true},
        {"true", true},
        {"yes", true},
        {"1", true},
        {"off", false},
        {"false", false},
        {"no", false},
        {"0", false},
        // in any letter case
        {"ON", true},
        {"True", true},
        {"yEs", true},
        {"OFF", false},
        {"False", false},
        {"NO", false},
        // an empty variable is as absent
        {"", false},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.value);
        set("BIG_TIME_STRICT_UNIT_MODE", c.value);
        EXPECT_EQ(cfg_is_on("big_time_strict_unit_mode"), c.on);
        EXPECT_FALSE(cfg_is_on("big_time_ie_on_unit_mismatch"));
    }
}

TEST_F(PlatformCfg, AnotherValueOfTheVariableIsRefused) {
    for (std::string const value : {"maybe", "2", "o", "onn", "on ", " on", "tru", "-1", "01"}) {
        SCOPED_TRACE(value);
        set("BIG_DEBUG", value);
        EXPECT_EQ(refusal("big_debug"),
                  "the environment variable BIG_DEBUG is \"" + value
                      + "\"; expected on, true, yes or 1, or off, false, no or 0");
    }
}

TEST_F(PlatformCfg, AnEmptyBigConfigIsAsAbsent) {
    set("BIG_CONFIG", "");
    EXPECT_FALSE(cfg_is_on("big_debug"));
}

TEST_F(PlatformCfgFile, AKeyOfTheFileIsASwitch) {
    struct CASE {
        char const* why;
        char const* content;
        bool on;
    };
    CASE const cases[] = {
        // why                         content                                  big_debug
        {"on", "big_debug = true", true},
        {"off", "big_debug = false", false},
        {"absent", "big_time_strict_unit_mode = true", false},
        {"an empty file", "", false},
        {"comments and other tools' keys", "# ours\nname = \"x\"\nbig_debug = true # on\n", true},
        {"a quoted key", "\"big_debug\" = true", true},
        {"lines that end as in DOS", "\r\nbig_debug = true\r\n", true},
        {"a key in a table is another key", "[tool]\nbig_debug = true\n", false},
        {"a key in upper case is another key", "BIG_DEBUG = true", false},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.why);
        configure(c.content);
        EXPECT_EQ(cfg_is_on("big_debug"), c.on);
    }
}

TEST_F(PlatformCfgFile, ALargeFileIsReadToItsEnd) {
    for (std::size_t const length : {4095U, 4096U, 4097U, 100000U}) {
        SCOPED_TRACE(length);
        std::string const last = "\nbig_debug = true";
        configure(std::string(length - last.size(), '#') + last);
        EXPECT_TRUE(cfg_is_on("big_debug"));
    }
}

TEST_F(PlatformCfgFile, TheEnvironmentGoesBeforeTheFile) {
    configure("big_debug = true");
    set("BIG_DEBUG", "off");
    EXPECT_FALSE(cfg_is_on("big_debug"));
    set("BIG_DEBUG", ""); // as absent
    EXPECT_TRUE(cfg_is_on("big_debug"));
}

TEST_F(PlatformCfgFile, TheFileIsNotReadWhereTheEnvironmentDecides) {
    configure("this is no TOML");
    set("BIG_DEBUG", "on");
    EXPECT_TRUE(cfg_is_on("big_debug"));
}

TEST_F(PlatformCfgFile, AKeyThatIsNoBooleanIsRefusedAtItsLine) {
    struct CASE {
        char const* content;
        int line;
        char const* type;
    };
    CASE const cases[] = {
        {"big_debug = \"on\"", 1, "string"},
        {"\n\nbig_debug = 1", 3, "integer"},
        {"a = 1\nbig_debug = 1.0", 2, "floating-point"},
        {"big_debug = [true]", 1, "array"},
        {"# c\nbig_debug = { on = true }", 2, "table"},
        {"a = 1\n\n[big_debug]\non = true", 3, "table"},
        {"big_debug = 2024-01-01", 1, "date"},
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.content);
        configure(c.content);
        EXPECT_EQ(refusal("big_debug"), at_line(c.line) + "big_debug is of type " + c.type
                                            + "; expected true or false, without quotes");
        EXPECT_FALSE(cfg_is_on("big_time_strict_unit_mode")); // the rest of the file is sound
    }
}

TEST_F(PlatformCfgFile, AFileThatIsNoTomlIsRefusedAtItsLineForEverySwitch) {
    struct CASE {
        char const* content;
        int line;
    };
    CASE const cases[] = {
        {"big_debug", 1},
        {"big_debug = ", 1},
        {"big_debug = on", 1},
        {"big_debug = True", 1},
        {"big_debug = true\n\nbig_debug = false", 3}, // the same key twice
        {"a = 1\nb = \"unterminated\n", 2},
        {"a = \"\xe4\"", 1}, // no UTF-8
    };
    for (CASE const& c : cases) {
        SCOPED_TRACE(c.content);
        configure(c.content);
        for (char const* const name : {"big_debug", "another_switch"}) {
            std::string const text = refusal(name);
            EXPECT_EQ(text.substr(0, at_line(c.line).size()), at_line(c.line)) << text;
            EXPECT_NE(text.find("(BIG_CONFIG must name a TOML file)"), std::string::npos) << text;
        }
    }
}

TEST_F(PlatformCfgFile, AFileThatCannotBeReadIsRefused) {
    struct CASE {
        std::string path;
        char const* reason;
    };
    CASE const cases[] = {
        {"/nonexistent/big.toml", "No such file or directory"},
        {testing::TempDir(), "Is a directory"},
    };
    for (CASE const& c : cases) {
        set("BIG_CONFIG", c.path);
        EXPECT_EQ(refusal("big_debug"), "the environment variable BIG_CONFIG names the file \""
                                            + c.path + "\", which cannot be read: " + c.reason);
    }
}

TEST_F(PlatformCfgFile, SwitchesMayBeReadFromSeveralThreads) {
    configure("big_debug = true");
    auto const read = [] {
        for (int i = 0; i < 50; ++i)
            EXPECT_TRUE(cfg_is_on("big_debug"));
    };
    std::thread first(read);
    std::thread second(read);
    first.join();
    second.join();
}

} // namespace
