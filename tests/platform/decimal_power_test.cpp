#include "platform/decimal_power.h"

#include <gtest/gtest.h>

TEST(DecimalPower, IsTheLargestThatIsNotAbove) {
    const struct {
        f64 value, power;
    } cases[] = {{1.0, 1.0},     {9.99, 1.0},  {10.0, 10.0},   {999.999, 100.0}, {1000.0, 1000.0},
                 {1e15, 1e15},   {0.999, 0.1}, {0.1, 0.1},     {0.0999, 0.01},   {0.004, 0.001},
                 {0.001, 0.001}, {1e-7, 1e-7}, {9e299, 1e299}, {2e-300, 1e-300}};
    for (const auto &c : cases) {
        EXPECT_DOUBLE_EQ(decimal_power(c.value), c.power) << c.value;
    }
    // Up to 1e22 powers of ten have no rounding at all.
    EXPECT_EQ(decimal_power(5e22), 1e22);
    EXPECT_EQ(decimal_power(0.004), 1.0 / 1000.0);
}
