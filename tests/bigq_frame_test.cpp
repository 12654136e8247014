// The tool's frame: what every command relies on, and what no command of today can show.

#include "filter.h"
#include "json.h"
#include "text.h"

#include "err_sys.h"

#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace {

/// Doubles its text; "stop" is an internal error.
class DOUBLING : public CONVERSION {
public:
    OUTCOME convert(std::string const& text, std::string& result, std::string&) override {
        if (text == "stop") {
            err_report_internal_error("Overflow", "BIG", "h/big_sys", 1);
        }
        result = text + text;
        return OUTCOME::CONVERTED;
    }
    void add_members(JSON_OBJECT& object) const override { object.add("twice", true); }
};

TEST(BigqFrame, AnInternalErrorRefusesItsTextAlone) {
    DOUBLING conversion;
    FILTER_OPTIONS options;
    options.invalid = INVALID::FAIL;
    testing::internal::CaptureStdout();
    testing::internal::CaptureStderr();
    EXPECT_EQ(run_filter(options, {"a", "stop", "b"}, conversion), STATUS_FAILED);
    EXPECT_EQ(testing::internal::GetCapturedStdout(), "aa\nstop\nbb\n");
    EXPECT_EQ(testing::internal::GetCapturedStderr(),
              "bigq: argument 2: \"stop\" cannot be converted: Overflow\n");
}

TEST(BigqFrame, ACommandAddsItsMembersToTheObject) {
    DOUBLING conversion;
    FILTER_OPTIONS options;
    options.json = true;
    testing::internal::CaptureStdout();
    EXPECT_EQ(run_filter(options, {"a"}, conversion), STATUS_OK);
    EXPECT_EQ(testing::internal::GetCapturedStdout(),
              "{\"input\":\"a\",\"ok\":true,\"twice\":true,\"text\":\"aa\"}\n");
}

TEST(BigqFrame, AnEmptyObjectIsAnObject) {
    std::string out;
    { JSON_OBJECT const object(out); }
    EXPECT_EQ(out, "{}");
}

/// The bytes of a character by the arithmetic of UTF-8, for any number of 21 bits.
std::string encoded(unsigned character) {
    auto const tail = [character](int shift) {
        return static_cast<char>(0x80 | ((character >> shift) & 0x3F));
    };
    if (character < 0x80) {
        return {static_cast<char>(character)};
    }
    if (character < 0x800) {
        return {static_cast<char>(0xC0 | (character >> 6)), tail(0)};
    }
    if (character < 0x10000) {
        return {static_cast<char>(0xE0 | (character >> 12)), tail(6), tail(0)};
    }
    return {static_cast<char>(0xF0 | (character >> 18)), tail(12), tail(6), tail(0)};
}

/// The number that `length` bytes of UTF-8 stand for, well-formed or not.
unsigned decoded(std::string const& bytes, std::size_t length) {
    unsigned const first = static_cast<unsigned char>(bytes[0]);
    unsigned character = length == 1 ? first : first & (0x7Fu >> length);
    for (std::size_t i = 1; i < length; ++i) {
        character = (character << 6) | (static_cast<unsigned char>(bytes[i]) & 0x3F);
    }
    return character;
}

bool is_surrogate(unsigned character) {
    return character >= 0xD800 && character < 0xE000;
}

TEST(BigqFrame, EveryCharacterIsRecognisedAndNothingElse) {
    for (unsigned character = 0; character < 0x1FFFFF; ++character) {
        std::string const bytes = encoded(character);
        bool const is_character = character < 0x110000 && !is_surrogate(character);
        ASSERT_EQ(utf8_length(bytes), is_character ? bytes.size() : 0) << character;
        ASSERT_EQ(utf8_length(bytes + "x"), is_character ? bytes.size() : 0) << character;
        if (bytes.size() > 1) {
            ASSERT_EQ(utf8_length(bytes.substr(0, bytes.size() - 1)), 0u) << character;
        }
    }
    EXPECT_EQ(utf8_length(""), 0u);

    constexpr unsigned SEED = 8;
    std::mt19937 random(SEED);
    for (int i = 0; i < 200000; ++i) {
        std::string bytes(4, '\0');
        for (char& byte : bytes) {
            byte = static_cast<char>(0x70 + random() % 0x90); // seldom ASCII
        }
        std::size_t const length = utf8_length(bytes);
        if (length != 0) {
            ASSERT_EQ(encoded(decoded(bytes, length)), bytes.substr(0, length)) << "seed " << SEED;
        }
    }
}

TEST(BigqFrame, LongLinesBreakAtBlanks) {
    EXPECT_EQ(wrapped("", 5), "");
    EXPECT_EQ(wrapped("12345", 5), "12345");
    EXPECT_EQ(wrapped("1234 6", 5), "1234\n6");
    EXPECT_EQ(wrapped("12345 7", 5), "12345\n7");
    EXPECT_EQ(wrapped("1 3 5 7 9", 5), "1 3 5\n7 9");
    EXPECT_EQ(wrapped("123456789 12", 5), "123456789\n12") << "a word stays whole";
    EXPECT_EQ(wrapped("12\n45 78\n", 5), "12\n45 78\n") << "a line feed begins anew";
}

} // namespace
