// The units of times, frequencies and data rates, and the tables that describe them.

#include "printing.h"
#include "time_library.h"
#include "time_samples.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <type_traits>

namespace {

struct UNIT_ROW {
    BIG_TIME::TIME_UNIT unit;
    int number;
    char const* name;
    int fraction_digits;
    BIG_TIME::UNIT_CATEGORY category;
    unsigned int category_code;
};

// clang-format off
UNIT_ROW const UNITS[] = {
    // unit                     no  name         digits category                      code
    {BIG_TIME::UNIT_NONE,      0,  "",          0,     BIG_TIME::TIME_CATEGORY,      0},
    {BIG_TIME::UNIT_FS,        1,  "fs",        -3,    BIG_TIME::TIME_CATEGORY,      0},
    {BIG_TIME::UNIT_PS,        2,  "ps",        0,     BIG_TIME::TIME_CATEGORY,      0},
    {BIG_TIME::UNIT_NS,        3,  "ns",        3,     BIG_TIME::TIME_CATEGORY,      0},
    {BIG_TIME::UNIT_US,        4,  "us",        6,     BIG_TIME::TIME_CATEGORY,      0},
    {BIG_TIME::UNIT_MS,        5,  "ms",        9,     BIG_TIME::TIME_CATEGORY,      0},
    {BIG_TIME::UNIT_S,         6,  "s",         12,    BIG_TIME::TIME_CATEGORY,      0},
    {BIG_TIME::UNIT_HZ,        7,  "Hz",        0,     BIG_TIME::FREQUENCY_CATEGORY, 1},
    {BIG_TIME::UNIT_KHZ,       8,  "kHz",       3,     BIG_TIME::FREQUENCY_CATEGORY, 1},
    {BIG_TIME::UNIT_MHZ,       9,  "MHz",       6,     BIG_TIME::FREQUENCY_CATEGORY, 1},
    {BIG_TIME::UNIT_GHZ,       10, "GHz",       9,     BIG_TIME::FREQUENCY_CATEGORY, 1},
    {BIG_TIME::UNIT_TEN_TH_NS, 11, "ten_th_ns", 2,     BIG_TIME::TIME_CATEGORY,      0},
    {BIG_TIME::UNIT_BPS,       12, "bps",       0,     BIG_TIME::DATA_RATE_CATEGORY, 2},
    {BIG_TIME::UNIT_MBPS,      13, "Mbps",      6,     BIG_TIME::DATA_RATE_CATEGORY, 2},
    {BIG_TIME::UNIT_GBPS,      14, "Gbps",      9,     BIG_TIME::DATA_RATE_CATEGORY, 2},
};
// clang-format on

int const NUMBERS_BELOW[] = {-1, -2, -15, INT_MIN};
int const NUMBERS_ABOVE[] = {15, 16, 30, 255, 65536, INT_MAX};

class BigTimeUnits : public testing::Test {
protected:
    BigTimeUnits() { recording::clear(); }
};

TEST_F(BigTimeUnits, AreNumberedAsDatabasesStoreThem) {
    static_assert(BIG_TIME::MIN_TIME_UNITS == 0);
    static_assert(BIG_TIME::MAX_TIME_UNIT == 15);
    static_assert(BIG_TIME::MAX_DIGITS_IN_SMALLEST_TIME_UNIT == 19);
    static_assert(std::is_same_v<std::underlying_type_t<BIG_TIME::TIME_UNIT>, int>);
    static_assert(BIG_TIME::INVALID_CATEGORY == 4);
    EXPECT_EQ(std::size(UNITS), 15u);
    for (UNIT_ROW const& row : UNITS) {
        SCOPED_TRACE(row.name);
        EXPECT_EQ(static_cast<int>(row.unit), row.number);
        EXPECT_EQ(static_cast<unsigned int>(row.category), row.category_code);
    }
}

TEST_F(BigTimeUnits, EachHasItsNameItsDigitsAndItsCategory) {
    static_assert(std::size(BIG_TIME::s_unit_strings) == 15);
    static_assert(std::size(BIG_TIME::s_fraction_digits) == 15);
    for (UNIT_ROW const& row : UNITS) {
        SCOPED_TRACE(row.name);
        EXPECT_STREQ(BIG_TIME::s_unit_strings[row.number], row.name);
        EXPECT_EQ(BIG_TIME::s_fraction_digits[row.number], row.fraction_digits);
        EXPECT_STREQ(BIG_TIME::get_time_unit_string(row.unit), row.name);
        EXPECT_STREQ(BIG_TIME::get_unit_name(row.number), row.name);
        EXPECT_EQ(BIG_TIME::get_unit_category(row.unit), row.category);
    }
    EXPECT_EQ(recording::reports(), std::vector<recording::CALL>());
}

TEST_F(BigTimeUnits, NamesAreThoseOfTheTableItself) {
    for (UNIT_ROW const& row : UNITS) {
        EXPECT_EQ(BIG_TIME::get_time_unit_string(row.unit), BIG_TIME::s_unit_strings[row.number]);
        EXPECT_EQ(BIG_TIME::get_unit_name(row.number), BIG_TIME::s_unit_strings[row.number]);
    }
}

TEST_F(BigTimeUnits, OutsideTheTableAreInvalidWithoutAReport) {
    for (int const number : NUMBERS_BELOW)
        EXPECT_EQ(BIG_TIME::get_unit_category(unit_of(number)), BIG_TIME::INVALID_CATEGORY)
            << number;
    for (int const number : NUMBERS_ABOVE)
        EXPECT_EQ(BIG_TIME::get_unit_category(unit_of(number)), BIG_TIME::INVALID_CATEGORY)
            << number;
    EXPECT_EQ(recording::reports(), std::vector<recording::CALL>());
}

TEST_F(BigTimeUnits, OutsideTheTableHaveNoName) {
    for (int const number : NUMBERS_BELOW) {
        SCOPED_TRACE(number);
        EXPECT_INTERNAL_ERROR(BIG_TIME::get_time_unit_string(unit_of(number)),
                              "unit >= MIN_TIME_UNITS", "2", "big/big_time");
        EXPECT_INTERNAL_ERROR(BIG_TIME::get_unit_name(number),
                              "index >= MIN_TIME_UNITS && index < MAX_TIME_UNIT", "2",
                              "big/big_time");
    }
    for (int const number : NUMBERS_ABOVE) {
        SCOPED_TRACE(number);
        EXPECT_INTERNAL_ERROR(BIG_TIME::get_time_unit_string(unit_of(number)),
                              "unit < MAX_TIME_UNIT", "2", "big/big_time");
        EXPECT_INTERNAL_ERROR(BIG_TIME::get_unit_name(number),
                              "index >= MIN_TIME_UNITS && index < MAX_TIME_UNIT", "2",
                              "big/big_time");
    }
}

TEST_F(BigTimeUnits, MaximumPrecisionIsTheNumberOfPlacesThatSurviveStorage) {
    static_assert(std::is_same_v<decltype(BIG_TIME::get_max_precision_for(BIG_TIME::UNIT_S)),
                                 unsigned short>);
    for (UNIT_ROW const& row : UNITS) {
        SCOPED_TRACE(row.name);
        if (row.unit == BIG_TIME::UNIT_FS)
            continue;
        EXPECT_EQ(BIG_TIME::get_max_precision_for(row.unit), row.fraction_digits);
    }
    EXPECT_EQ(recording::reports(), std::vector<recording::CALL>());
}

// No decimal place of a femtosecond survives in picoseconds, so there is no answer.
TEST_F(BigTimeUnits, MaximumPrecisionOfFemtosecondsIsAnInternalError) {
    EXPECT_INTERNAL_ERROR(BIG_TIME::get_max_precision_for(BIG_TIME::UNIT_FS),
                          "max_precision >= 0 && max_precision <= USHRT_MAX", "2", "big/big_time");
}

TEST_F(BigTimeUnits, MaximumPrecisionOutsideTheTableIsAnInternalError) {
    for (int const number : NUMBERS_BELOW)
        EXPECT_INTERNAL_ERROR(BIG_TIME::get_max_precision_for(unit_of(number)),
                              "unit >= MIN_TIME_UNITS", "2", "big/big_time");
    for (int const number : NUMBERS_ABOVE)
        EXPECT_INTERNAL_ERROR(BIG_TIME::get_max_precision_for(unit_of(number)),
                              "unit < MAX_TIME_UNIT", "2", "big/big_time");
}

TEST_F(BigTimeUnits, PowerTableHoldsTenToTheIndex) {
    static_assert(std::size(BIG_TIME::s_power_10_table) == 19);
    long long power = 1;
    for (unsigned long index = 0; index < 19; ++index) {
        EXPECT_EQ(BIG_TIME::s_power_10_table[index], power) << index;
        EXPECT_EQ(BIG_TIME::get_power_table(index), power) << index;
        if (index < 18)
            power *= 10;
    }
    EXPECT_EQ(power, 1000000000000000000);
    EXPECT_EQ(recording::reports(), std::vector<recording::CALL>());
}

TEST_F(BigTimeUnits, PowerTableEndsAtEighteen) {
    for (unsigned long const index : {19ul, 20ul, 1ul << 32, ULONG_MAX})
        EXPECT_INTERNAL_ERROR(BIG_TIME::get_power_table(index),
                              "index < MAX_DIGITS_IN_SMALLEST_TIME_UNIT", "2", "big/big_time");
}

struct NAME_ROW {
    char const* why;
    char const* text;
    int unit; // 15: none
};

// clang-format off
NAME_ROW const NAMES[] = {
    // why                                     text         unit
    {"blank texts name no unit",              "",          0},
    {"blank texts name no unit",              " ",         0},
    {"blank texts name no unit",              "\t \n",     0},
    {"letter case does not matter",           "mhz",       9},
    {"letter case does not matter",           "MHZ",       9},
    {"letter case does not matter",           "MHz",       9},
    {"letter case does not matter",           "ms",        5},
    {"letter case does not matter",           "MS",        5},
    {"letter case does not matter",           "GHZ",       10},
    {"letter case does not matter",           "S",         6},
    {"letter case does not matter",           "TEN_th_Ns", 11},
    {"blanks around do not matter",           " \tns\n ",  3},
    {"not a unit",                            "furlong",   15},
    {"not a unit",                            "15",        15},
    {"not a unit",                            "n",         15},
    {"not a unit",                            "nss",       15},
    {"not a unit",                            "kbps",      15},
    {"two names",                             "ns ps",     15},
    {"a name in two parts",                   "n s",       15},
    {"a carriage return is part of the word", "ns\r",      15},
    {"a carriage return is part of the word", "\r",        15},
    {"so is a vertical tab",                  "\vns",      15},
    {"so is a form feed",                     "ns\f",      15},
    {"bytes above 127",                       "\xb5s",     15},
};
// clang-format on

std::vector<recording::CALL> bad_unit_report() {
    return {recording::debug("BAD Time Unit. Please checking your time unit input")};
}

TEST_F(BigTimeUnits, AreReadByName) {
    for (NAME_ROW const& row : NAMES) {
        for (int const before : {0, 7, 15, -1}) {
            SCOPED_TRACE(words(std::string(row.why), std::string(row.text), before));
            bool const known = row.unit != 15;
            int const after = known ? row.unit : before;
            expect_of_both(
                [&](auto& times) {
                    int unit = before;
                    bool const result = times.extract_time_units(row.text, unit);
                    return words(result, unit);
                },
                {words(known, after), known ? std::vector<recording::CALL>() : bad_unit_report()});
        }
    }
}

TEST_F(BigTimeUnits, AreReadByEveryNameOfTheTableInEveryLetterCase) {
    for (UNIT_ROW const& row : UNITS) {
        std::string upper = row.name;
        for (char& c : upper)
            c = static_cast<char>(std::toupper(c));
        for (std::string const& text : {std::string(row.name), upper, " " + upper + "\t"}) {
            SCOPED_TRACE(text);
            BIG_TIME::TIME_UNIT unit = BIG_TIME::MAX_TIME_UNIT;
            EXPECT_TRUE(BIG_TIME::extract_time_units(text.c_str(), unit));
            EXPECT_EQ(unit, row.unit);
        }
    }
    EXPECT_EQ(recording::reports(), std::vector<recording::CALL>());
}

TEST_F(BigTimeUnits, NullNamesNoUnitAndSaysSo) {
    expect_of_both(
        [&](auto& times) {
            int unit = 9;
            bool const result = times.extract_time_units(nullptr, unit);
            return words(result, unit);
        },
        {"true 0", {recording::debug("BIG_TIME::extract_time_units: Time unit string is NULL.")}});
}

TEST_F(BigTimeUnits, AreReadAsTheOracleReadsThem) {
    constexpr unsigned int seed = 20101;
    TIME_SAMPLES samples(seed);
    for (int i = 0; i < cases(150000); ++i) {
        std::string text = samples.blanks();
        text += samples.unit_text();
        text += samples.blanks();
        if (samples.once_in(4))
            text = samples.damaged(text);
        ASSERT_TRUE(library_obeys([&](auto& times) {
            int unit = 42;
            bool const result = times.extract_time_units(text.c_str(), unit);
            return words(result, unit);
        })) << "text "
            << in_quotes(text) << ", case " << i << " of seed " << seed;
    }
}

// Smaller is meant of the number: ps (2) is smaller than ns (3), and UNIT_NONE than everything.
TEST_F(BigTimeUnits, TheSmallerOfTwoIsTheOneWithTheSmallerNumber) {
    for (UNIT_ROW const& a : UNITS) {
        for (UNIT_ROW const& b : UNITS) {
            BIG_TIME time = time_of(1234, 5);
            time.set_smaller_unit(a.unit, b.unit);
            EXPECT_EQ(held_by(time), (HELD{1234, std::min(a.number, b.number)}));
        }
    }
    EXPECT_EQ(recording::reports(), std::vector<recording::CALL>());
}

TEST_F(BigTimeUnits, TheSmallerOfTwoIsTakenWithSigns) {
    BIG_TIME time;
    time.set_smaller_unit(unit_of(-1), BIG_TIME::UNIT_NS);
    EXPECT_EQ(held_by(time), (HELD{0, -1}));
}

TEST_F(BigTimeUnits, TheSmallerOfTwoIgnoresTheUnitHeldBefore) {
    BIG_TIME time = time_of(7, BIG_TIME::UNIT_NONE);
    time.set_smaller_unit(BIG_TIME::UNIT_GHZ, BIG_TIME::UNIT_NS);
    EXPECT_EQ(held_by(time), (HELD{7, BIG_TIME::UNIT_NS}));
}

} // namespace
