// 64-bit integers written as printf writes them.

#include "recording_platform.h"

#include "big_sys.h"

#include <algorithm>
#include <cstdio>
#include <limits>
#include <random>
#include <set>

namespace {

constexpr long long MAX = std::numeric_limits<long long>::max();
constexpr long long MIN = std::numeric_limits<long long>::min();

BIG_64_RADIX const RADIXES[] = {BIG_64_SIGNED_DEC,
                                BIG_64_UNSIGNED_DEC,
                                BIG_64_OCT,
                                BIG_64_HEX_LOWER,
                                BIG_64_HEX_UPPER,
                                static_cast<BIG_64_RADIX>(7),
                                static_cast<BIG_64_RADIX>(0xFFFFFFFF)};

/// printf itself.
std::string printf_text(long long value, std::string const& flags, BIG_64_RADIX radix) {
    static const char letters[] = {'i', 'u', 'o', 'x', 'X'};
    std::string const format = '%' + flags + "ll" + (radix < 5 ? letters[radix] : 'i');
    char text[64];
    std::snprintf(text, sizeof text, format.c_str(), value);
    return text;
}

TEST(BigUtilRadixFormat, RadixSelectsTheConversion) {
    struct CASE {
        const char* why;
        long long value;
        const char* flags;
        unsigned int radix;
        const char* text;
    };
    static const CASE cases[] = {
        // The conversions.
        {"signed decimal", 255, "", 0, "255"},
        {"unsigned decimal", 255, "", 1, "255"},
        {"octal", 255, "", 2, "377"},
        {"hexadecimal", 255, "", 3, "ff"},
        {"upper-case hexadecimal", 255, "", 4, "FF"},
        {"any other value is signed decimal", -255, "", 5, "-255"},
        {"any other value is signed decimal", -255, "", 7, "-255"},
        {"any other value is signed decimal", -255, "", 0xFFFFFFFF, "-255"},
        // All but the signed one read the bits as unsigned.
        {"minus one", -1, "", 0, "-1"},
        {"minus one", -1, "", 1, "18446744073709551615"},
        {"minus one", -1, "", 2, "1777777777777777777777"},
        {"minus one", -1, "", 3, "ffffffffffffffff"},
        {"minus one", -1, "", 4, "FFFFFFFFFFFFFFFF"},
        {"the smallest number", MIN, "", 0, "-9223372036854775808"},
        {"the smallest number", MIN, "", 1, "9223372036854775808"},
        // Flags and width.
        {"zero-filled", 255, "08", 3, "000000ff"},
        {"padded", 255, "8", 3, "      ff"},
        {"padded on the right", 255, "-8", 3, "ff      "},
        {"the minus beats the zero", 255, "-08", 3, "ff      "},
        {"a sign", 255, "+", 0, "+255"},
        {"a blank for the sign", 255, " ", 0, " 255"},
        {"the plus beats the blank", 255, " +", 0, "+255"},
        {"zeros follow the sign", -255, "08", 0, "-0000255"},
        {"zeros follow the base", 255, "#08", 4, "0X0000FF"},
        {"blanks precede the base", 255, "#8", 3, "    0xff"},
        {"the base in octal", 255, "#", 2, "0377"},
        {"zero has no base", 0, "#", 3, "0"},
        {"zero has no base", 0, "#", 2, "0"},
        {"no sign but in signed decimal", 255, "+", 1, "255"},
        {"flags may repeat", 255, "--00--5", 0, "255  "},
        {"a width that is too small", 255, "2", 0, "255"},
        {"the widest field", 255, "23", 0, "                    255"},
        {"the longest text", -1, "#23", 2, "01777777777777777777777"},
    };
    for (const CASE& c : cases) {
        SCOPED_TRACE(testing::Message() << c.why << ": " << c.value << " with \"" << c.flags
                                        << "\" in radix " << c.radix);
        auto const radix = static_cast<BIG_64_RADIX>(c.radix);
        EXPECT_EQ(big_64_to_string(c.value, c.flags, radix), c.text);
        EXPECT_EQ(printf_text(c.value, c.flags, radix), c.text);
    }
}

TEST(BigUtilRadixFormat, TextReplacesTheContentOfTheString) {
    std::string text = "something much longer than what is going to be written";
    EXPECT_EQ(big_64_to_string(-12, "", BIG_64_SIGNED_DEC, &text), &text);
    EXPECT_EQ(text, "-12");
}

TEST(BigUtilRadixFormat, StringMayHoldTheFlags) {
    std::string text = "08";
    big_64_to_string(255, text, BIG_64_HEX_LOWER, &text);
    EXPECT_EQ(text, "000000ff");
}

/// Values where a digit more is needed in some radix, and both ends.
std::vector<long long> boundary_values() {
    std::set<long long> values = {0, MIN, MIN + 1, MAX, MAX - 1};
    for (unsigned long long base : {8ull, 10ull, 16ull})
        for (unsigned long long power = 1; power <= (1ull << 63) / base; power *= base)
            for (unsigned long long const value : {power - 1, power, power + 1}) {
                values.insert(static_cast<long long>(value));
                values.insert(static_cast<long long>(0 - value));
            }
    return {values.begin(), values.end()};
}

TEST(BigUtilRadixFormat, AgreesWithPrintfOnEveryFlagAndWidth) {
    std::vector<long long> const all_values = boundary_values();
    constexpr unsigned long long seed = 20260108;
    std::mt19937_64 random(seed);
    for (unsigned int set = 0; set < 32; ++set) {
        std::string flags;
        for (unsigned int i = 0; i < 5; ++i)
            if ((set >> i & 1) != 0)
                flags += "-+ #0"[i];
        std::shuffle(flags.begin(), flags.end(), random);
        for (unsigned int width = 0; width <= 23; ++width) {
            std::string const field = flags + (width == 0 ? "" : std::to_string(width));
            for (BIG_64_RADIX const radix : RADIXES) {
                for (int i = 0; i < 20; ++i) {
                    long long const value = all_values[random() % all_values.size()];
                    SCOPED_TRACE(testing::Message()
                                 << "seed " << seed << ", " << value << " with \"" << field
                                 << "\" in radix " << radix);
                    ASSERT_EQ(big_64_to_string(value, field, radix),
                              printf_text(value, field, radix));
                }
            }
        }
    }
}

TEST(BigUtilRadixFormat, AgreesWithPrintfOnEveryBoundaryValue) {
    for (long long const value : boundary_values()) {
        for (BIG_64_RADIX const radix : RADIXES) {
            for (const char* const flags : {"", "#", "+", "020", "-22", "#023", " 7"}) {
                SCOPED_TRACE(testing::Message()
                             << value << " with \"" << flags << "\" in radix " << radix);
                ASSERT_EQ(big_64_to_string(value, flags, radix), printf_text(value, flags, radix));
            }
        }
    }
}

TEST(BigUtilRadixFormat, AnythingElseThanFlagsAndAWidthIsAnInternalError) {
    static const std::string cases[] = {
        // Fields that are too wide for any buffer.
        "24",
        "023456",
        "99",
        "100",
        "1000000000",
        "99999999999999999999999999",
        "-24",
        "#024",
        // What printf would take beside flags and width.
        ".5",
        "5.3",
        ".",
        "*",
        "-*",
        ".*",
        "l",
        "ll",
        "h",
        "5l",
        "'",
        "I",
        "1$",
        "8 ",
        "8-",
        "8+",
        "8#",
        // Other conversions, the end of the format, more of them.
        "s",
        "n",
        "%",
        "%s",
        "x%n",
        "5s%",
        "d%",
        "lld",
        "%%",
        // Whatever else.
        " 5 5",
        "a",
        "-a",
        "0x8",
        "٣",
        "\t8",
        "8\n",
        std::string("\0", 1),
        std::string("8\0", 2),
        std::string("0\0008", 3),
        "+-+ 08-",
        "--5-",
        std::string(1000, '9'),
    };
    for (std::string const& flags : cases) {
        SCOPED_TRACE("flags \"" + flags + '"');
        std::string text = "as it was";
        EXPECT_INTERNAL_ERROR(big_64_to_string(1, flags, BIG_64_HEX_LOWER, &text), "flags", "2",
                              "big/big_util");
        EXPECT_EQ(text, "as it was");
        EXPECT_INTERNAL_ERROR(big_64_to_string(1, flags, BIG_64_HEX_LOWER), "flags", "2",
                              "big/big_util");
    }
}

TEST(BigUtilRadixFormat, AnyNumberOfFlagsIsTaken) {
    EXPECT_EQ(big_64_to_string(5, std::string(100000, '0') + "7", BIG_64_SIGNED_DEC), "0000005");
    EXPECT_EQ(big_64_to_string(5, std::string(100000, '-'), BIG_64_SIGNED_DEC), "5");
}

TEST(BigUtilRadixFormat, MissingStringIsAnInternalErrorBeforeTheFlagsAre) {
    EXPECT_INTERNAL_ERROR(big_64_to_string(1, "", BIG_64_SIGNED_DEC, nullptr), "stl_str != NULL",
                          "2", "big/big_util");
    EXPECT_INTERNAL_ERROR(big_64_to_string(1, "%n", BIG_64_SIGNED_DEC, nullptr), "stl_str != NULL",
                          "2", "big/big_util");
}

TEST(BigUtilRadixFormat, RandomFlagsAreTakenExactlyWhenTheyAreFlagsAndAWidth) {
    constexpr unsigned long long seed = 20260109;
    std::mt19937_64 random(seed);
    int taken = 0;
    for (int round = 0; round < 20000; ++round) {
        std::string flags;
        for (auto length = random() % 6; length > 0; --length)
            flags += "-+ #0123456789.*l%n"[random() % (round % 2 == 0 ? 19 : 10)];
        std::size_t const width_at = flags.find_first_not_of("-+ #0");
        bool legal = true;
        if (width_at != std::string::npos) {
            std::string const width = flags.substr(width_at);
            legal = width.find_first_not_of("0123456789") == std::string::npos
                    && std::stoi(width) <= 23;
        }
        SCOPED_TRACE(testing::Message() << "seed " << seed << ", flags \"" << flags << '"');
        std::string text;
        if (legal) {
            ASSERT_EQ(big_64_to_string(-77, flags, RADIXES[round % 7]),
                      printf_text(-77, flags, RADIXES[round % 7]));
            ++taken;
        } else {
            ASSERT_THROW(big_64_to_string(-77, flags, RADIXES[round % 7]),
                         recording::INTERNAL_ERROR);
        }
    }
    EXPECT_GT(taken, 5000);
}

} // namespace
