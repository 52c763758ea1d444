// Tests of export/page_plane.h: heights as whole numbers, and what remains of them for packing.
#include "export/page_plane.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "tests/support/test_support.h"

using Values = std::vector<i32>;

static Values quantized(const std::vector<f32> &heights, f64 quanta) {
    Values out(heights.size());
    page_plane_quantize(heights.data(), static_cast<i64>(heights.size()), quanta, out.data());
    return out;
}

TEST(PagePlaneQuanta, AreAMillionUntilHeightsNeedMoreThanThirtyBits) {
    // 2^30 = 1,073,741,824
    EXPECT_EQ(page_plane_quanta(0), 1e6);
    EXPECT_EQ(page_plane_quanta(1073.7), 1e6);
    EXPECT_EQ(page_plane_quanta(1073.8), 1e5);
    EXPECT_EQ(page_plane_quanta(10737.4), 1e5);
    EXPECT_EQ(page_plane_quanta(10737.5), 1e4);
    EXPECT_EQ(page_plane_quanta(1e9), 1);
    EXPECT_DOUBLE_EQ(page_plane_quanta(5e10), 0.01);
    EXPECT_GT(page_plane_quanta(static_cast<f64>(F32_MAX) * 1000), 0);
}

TEST(PagePlaneQuantize, TakesTheNearestWholeNumberHalvesToEven) {
    EXPECT_EQ(quantized({0, 1, -1, 0.1F, 123.456F}, 1e6), (Values{0, 1000000, -1000000, 100000, 123456001}));
    EXPECT_EQ(quantized({0.5F, 1.5F, 2.5F, -0.5F, -1.5F, 2.50001F, -0.0F}, 1),
              (Values{0, 2, 2, 0, -2, 3, 0}));
}

// As a print with six decimals shows them, which is how dumps have heights.
TEST(PagePlaneQuantize, AgreesWithAPrintOfSixDecimals) {
    TestRandom random = test_random_start(3);
    for (i32 i = 0; i < 100000; ++i) {
        const f32 height = test_random_f32(&random, -4, 4) * test_random_f32(&random, 0, 1);
        char text[64];
        std::snprintf(text, sizeof(text), "%.6f", static_cast<f64>(height));
        std::string digits = text;
        digits.erase(digits.find('.'), 1);
        ASSERT_EQ(quantized({height}, 1e6)[0], std::stoi(digits)) << text;
    }
}

TEST(PagePlaneQuantize, WhatDoesNotFitIsTheLargestAndNanIsNothing) {
    const f32 infinity = std::numeric_limits<f32>::infinity();
    EXPECT_EQ(
        quantized({infinity, -infinity, F32_MAX, -F32_MAX, 1073.8F, std::numeric_limits<f32>::quiet_NaN()},
                  1e6),
        (Values{1 << 30, -(1 << 30), 1 << 30, -(1 << 30), 1 << 30, 0}));
}

static std::vector<u32> remainder_of(const Values &plane, const Values *reference, i32 grid_n, i64 *count) {
    std::vector<u32> out(plane.size());
    *count = page_plane_remainder(plane.data(), reference != nullptr ? reference->data() : nullptr, grid_n,
                                  static_cast<i32>(plane.size()) / grid_n, out.data());
    return out;
}

TEST(PagePlaneRemainder, IsWhatTheNeighboursDoNotLetExpect) {
    // Rows   7 7 9    less the left ones   7 0 2    less that of the row in front   7  0 2
    //        7 8 9                         7 1 1                                    0  1 -1
    //        4 4 4                         4 0 0                                   -3 -1 -1
    i64 count = 0;
    const std::vector<u32> out = remainder_of({7, 7, 9, 7, 8, 9, 4, 4, 4}, nullptr, 3, &count);
    EXPECT_EQ(out, (std::vector<u32>{14, 0, 4, 0, 2, 1, 5, 1, 1}));
    EXPECT_EQ(count, 7);
}

TEST(PagePlaneRemainder, OfAnEvenSlopeLiesOnTheEdgesAlone) {
    Values slope;
    for (i32 m = 0; m < 5; ++m) {
        for (i32 n = 0; n < 6; ++n) {
            slope.push_back(100 + 3 * n - 7 * m);
        }
    }
    // The corner, five more of the first row, four more of the first column.
    i64 count = 0;
    remainder_of(slope, nullptr, 6, &count);
    EXPECT_EQ(count, 10);
}

TEST(PagePlaneRemainder, OfWhatLiesAsFarAboveItsReferenceEverywhereIsOneValue) {
    i64 count = 0;
    const Values reference = {5, -3, 8, 1};
    const std::vector<u32> out = remainder_of({15, 7, 18, 11}, &reference, 2, &count);
    EXPECT_EQ(out, (std::vector<u32>{20, 0, 0, 0}));
    EXPECT_EQ(count, 1);
    remainder_of(reference, &reference, 2, &count);
    EXPECT_EQ(count, 0);
}

static i32 unfold_sign(u32 value) {
    return static_cast<i32>((value >> 1) ^ (0U - (value & 1)));
}

// The plane of what remained, point by point.
static Values restored(const std::vector<u32> &remainder, const Values *reference, i32 grid_n) {
    Values out(remainder.size());
    Values difference(remainder.size());
    for (size_t i = 0; i < remainder.size(); ++i) {
        const bool left = i % static_cast<size_t>(grid_n) != 0;
        const bool front = i >= static_cast<size_t>(grid_n);
        i32 expected = left ? difference[i - 1] : 0;
        expected = wrap_add(expected, front ? difference[i - static_cast<size_t>(grid_n)] : 0);
        expected =
            wrap_subtract(expected, left && front ? difference[i - static_cast<size_t>(grid_n) - 1] : 0);
        difference[i] = wrap_add(unfold_sign(remainder[i]), expected);
        out[i] = wrap_add(difference[i], reference != nullptr ? (*reference)[i] : 0);
    }
    return out;
}

TEST(PagePlaneRemainder, GivesEveryPlaneBackWhateverItsValues) {
    TestRandom random = test_random_start(5);
    for (i32 round = 0; round < 300; ++round) {
        const i32 grid_n = test_random_i32(&random, 1, 9);
        const i32 size = grid_n * test_random_i32(&random, 1, 9);
        Values plane;
        Values reference;
        for (i32 i = 0; i < size; ++i) {
            const bool level = test_random_bool(&random, 0.5);
            plane.push_back(level ? 1000 : static_cast<i32>(test_random_u32(&random)));
            reference.push_back(level ? I32_MIN : static_cast<i32>(test_random_u32(&random)));
        }
        i64 count = 0;
        EXPECT_EQ(restored(remainder_of(plane, nullptr, grid_n, &count), nullptr, grid_n), plane);
        EXPECT_EQ(restored(remainder_of(plane, &reference, grid_n, &count), &reference, grid_n), plane);
    }
}

TEST(PagePlaneBytes, AreThoseOfTheLargestValue) {
    const std::vector<std::pair<u32, i32>> cases = {{0, 0},        {1, 1},         {255, 1},
                                                    {256, 2},      {0xFFFF, 2},    {0x10000, 3},
                                                    {0xFFFFFF, 3}, {0x1000000, 4}, {0xFFFFFFFF, 4}};
    for (const auto &[value, bytes] : cases) {
        const std::vector<u32> values = {0, value, 0};
        EXPECT_EQ(page_plane_bytes(values.data(), 3), bytes) << value;
    }
}

TEST(PagePlaneByte, TakesOneByteOfEachValue) {
    const std::vector<u32> values = {0x04030201, 0x000000FF};
    for (i32 i = 0; i < 4; ++i) {
        u8 out[2];
        page_plane_byte(values.data(), 2, i, out);
        EXPECT_EQ(out[0], i + 1);
        EXPECT_EQ(out[1], i == 0 ? 255 : 0);
    }
}
