#include "platform/base.h"

#include <gtest/gtest.h>

#include <limits>

TEST(TruncateI32, CutsTowardZeroAndGivesTheSmallestForWhatDoesNotFit) {
    const f64 infinity = std::numeric_limits<f64>::infinity();
    const struct {
        f64 value;
        i32 expected;
    } cases[] = {
        {0.0, 0},
        {0.999, 0},
        {-0.999, 0},
        {-1.5, -1},
        {2147483647.0, I32_MAX},
        {2147483647.9, I32_MAX},
        {2147483648.0, I32_MIN},  // one too large
        {-2147483648.0, I32_MIN},
        {-2147483648.9, I32_MIN},
        {-2147483649.0, I32_MIN},
        {1e300, I32_MIN},
        {infinity, I32_MIN},
        {-infinity, I32_MIN},
        {std::numeric_limits<f64>::quiet_NaN(), I32_MIN},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(truncate_i32(c.value), c.expected) << "value " << c.value;
    }
}

TEST(TruncateI64, CutsTowardZeroAndGivesTheSmallestForWhatDoesNotFit) {
    const struct {
        f64 value;
        i64 expected;
    } cases[] = {
        {-7.9, -7},
        {7.9, 7},
        {9007199254740993.0, 9007199254740992},        // 2^53 + 1 is not a double
        {9223372036854774784.0, 9223372036854774784},  // the largest double below 2^63
        {9223372036854775808.0, I64_MIN},              // 2^63
        {-9223372036854775808.0, I64_MIN},
        {-1e300, I64_MIN},
        {std::numeric_limits<f64>::quiet_NaN(), I64_MIN},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(truncate_i64(c.value), c.expected) << "value " << c.value;
    }
}

TEST(WrapAdd, WrapsAtBothEnds) {
    EXPECT_EQ(wrap_add(2, -5), -3);
    EXPECT_EQ(wrap_add(I32_MAX, 1), I32_MIN);
    EXPECT_EQ(wrap_add(I32_MIN, -1), I32_MAX);
    EXPECT_EQ(wrap_add(I32_MIN, I32_MIN), 0);
}

TEST(WrapSubtract, WrapsAtBothEnds) {
    EXPECT_EQ(wrap_subtract(2, 5), -3);
    EXPECT_EQ(wrap_subtract(I32_MIN, 1), I32_MAX);
    EXPECT_EQ(wrap_subtract(I32_MAX, -1), I32_MIN);
    EXPECT_EQ(wrap_subtract(0, I32_MIN), I32_MIN);
}

TEST(FloatLimits, AreTheLimitsOfTheType) {
    EXPECT_EQ(std::numeric_limits<f32>::max(), F32_MAX);
    EXPECT_EQ(std::numeric_limits<f32>::min(), F32_MIN_NORMAL);
}
