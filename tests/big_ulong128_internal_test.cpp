// What the library's own files use of the 128-bit integers.

#include "printing.h"

#include "big_ulong128_internal.h"

#include <climits>

#include <gtest/gtest.h>

namespace {

TEST(BigUlong128Internal, AbsValueIsTheMagnitude) {
    EXPECT_EQ(abs_value(0), BIG_ULONG128(0u));
    EXPECT_EQ(abs_value(5), BIG_ULONG128(5u));
    EXPECT_EQ(abs_value(-5), BIG_ULONG128(5u));
    EXPECT_EQ(abs_value(0x100000000), BIG_ULONG128(0x100000000ull));
    EXPECT_EQ(abs_value(-0x100000000), BIG_ULONG128(0x100000000ull));
    EXPECT_EQ(abs_value(LLONG_MAX), BIG_ULONG128(0x7FFFFFFFFFFFFFFFull));
}

TEST(BigUlong128Internal, AbsValueOfTheSmallestNumberIsNotNegative) {
    EXPECT_EQ(abs_value(LLONG_MIN), BIG_ULONG128(0x8000000000000000ull));
}

} // namespace
