#include "sim/fixed_text.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdio>
#include <cstring>
#include <limits>
#include <string>

#include "tests/support/test_support.h"

static std::string fixed(f32 value, i32 decimals) {
    char text[FIXED_TEXT_SIZE];
    return {text, fixed_text_write(text, value, decimals)};
}

static std::string printed(f32 value, i32 decimals) {
    char text[FIXED_TEXT_SIZE];
    std::snprintf(text, sizeof(text), "%.*f", decimals, static_cast<f64>(value));
    return text;
}

static f32 from_bits(u32 bits) {
    f32 value = 0.0F;
    std::memcpy(&value, &bits, sizeof(value));
    return value;
}

TEST(FixedText, RoundsToTheNearestAndTiesToTheEven) {
    struct Case {
        f32 value;
        i32 decimals;
        const char *text;
    };
    // clang-format off
    const Case cases[] = {
        {0.0F, 6, "0.000000"},
        {-0.0F, 6, "-0.000000"},
        {1.0F, 10, "1.0000000000"},
        {-1.5F, 1, "-1.5"},
        {0.1F, 10, "0.1000000015"},        // 0.100000001490116...
        {0.0078125F, 6, "0.007812"},       // 2^-7 ends in 5 at the seventh decimal: even below
        {0.0234375F, 6, "0.023438"},       // 3 * 2^-7: even above
        {0.96875F, 4, "0.9688"},
        {0.99999994F, 6, "1.000000"},      // carries into the whole
        {9.9999990F, 5, "10.00000"},
        {1e-45F, 10, "0.0000000000"},
        {-1e-45F, 6, "-0.000000"},
        {16777216.0F, 6, "16777216.000000"},
        {549755813888.0F, 6, "549755813888.000000"},
        {9223372036854775808.0F, 1, "9223372036854775808.0"},
    };
    // clang-format on
    for (const Case &c : cases) {
        EXPECT_EQ(fixed(c.value, c.decimals), c.text);
        EXPECT_EQ(printed(c.value, c.decimals), c.text) << "the C library's";
    }
}

TEST(FixedText, EqualsThePrintedFormOfUnusualNumbers) {
    const f32 inf = std::numeric_limits<f32>::infinity();
    for (const f32 value :
         {std::nanf(""), -std::nanf(""), inf, -inf, F32_MAX, -F32_MAX, F32_MIN_NORMAL, 1e30F, 1e19F, 9e18F,
          from_bits(1), from_bits(0x007FFFFF), from_bits(0x80000001)}) {
        for (i32 decimals = 1; decimals <= FIXED_TEXT_DECIMALS; ++decimals) {
            EXPECT_EQ(fixed(value, decimals), printed(value, decimals));
        }
    }
}

TEST(FixedText, EqualsThePrintedFormOfEveryMagnitude) {
    TestRandom random = test_random_start(77);
    for (i32 i = 0; i < 200000; ++i) {
        const f32 value = from_bits(test_random_u32(&random));
        ASSERT_EQ(fixed(value, 6), printed(value, 6)) << test_f32_bits(value);
        ASSERT_EQ(fixed(value, 10), printed(value, 10)) << test_f32_bits(value);
        const f32 height = test_random_f32(&random, -8.0F, 8.0F);
        ASSERT_EQ(fixed(height, 6), printed(height, 6)) << test_f32_bits(height);
        ASSERT_EQ(fixed(height, 10), printed(height, 10)) << test_f32_bits(height);
    }
}

// Every odd multiple of 2^-7 is half way between two texts of six decimals, of 2^-11 between two of ten.
TEST(FixedText, EqualsThePrintedFormHalfWay) {
    for (i32 odd = -20001; odd <= 20001; odd += 2) {
        const f32 six = static_cast<f32>(odd) / 128.0F;
        const f32 ten = static_cast<f32>(odd) / 2048.0F;
        ASSERT_EQ(fixed(six, 6), printed(six, 6)) << odd;
        ASSERT_EQ(fixed(ten, 10), printed(ten, 10)) << odd;
    }
}
