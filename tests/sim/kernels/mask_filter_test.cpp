#include "sim/kernels/mask_filter.h"
#include "support.h"

static std::vector<u8> filter(const KernelDisc &disc, const std::vector<u8> &mask, i32 n, i32 m) {
    std::vector<u8> output(mask.size(), 9);
    mask_apply_resolution(disc.disc.get(), mask.data(), output.data(), n, m);
    return output;
}

TEST(MaskFilter, ResolutionZeroPassesTheMask) {
    const KernelTable table(5, 2, 1.0F);
    const KernelDisc disc(table, 0.0F);
    const std::vector<u8> mask = {1, 0, 1, 1, 0, 0, 0, 1, 0, 1};
    EXPECT_EQ(filter(disc, mask, 5, 2), mask);
}

TEST(MaskFilter, ExactHalfIsNotSet) {
    // Radius 1 in a row of 4: windows {1, 0}, {1, 0, 1}, {0, 1, 1}, {1, 1}.
    const KernelTable table(4, 1, 1.0F);
    const KernelDisc disc(table, 1.0F);
    EXPECT_EQ(filter(disc, {1, 0, 1, 1}, 4, 1), (std::vector<u8>{0, 1, 1, 1}));
}

TEST(MaskFilter, LonePointsVanishAndStraightEdgesStay) {
    const KernelTable table(12, 12, 1.0F);
    const KernelDisc disc(table, 2.0F);
    std::vector<u8> lone(144, 0);
    lone[6 * 12 + 6] = 1;
    EXPECT_EQ(filter(disc, lone, 12, 12), std::vector<u8>(144, 0));
    std::vector<u8> half(144);
    for (size_t i = 0; i < half.size(); ++i) {
        half[i] = i % 12 < 6 ? 1 : 0;
    }
    EXPECT_EQ(filter(disc, half, 12, 12), half);
}

TEST(MaskFilter, EmptyDiscSetsNothing) {
    const KernelTable table(3, 3, 1.0F);
    const KernelDisc disc(table, -1.0F);
    EXPECT_EQ(filter(disc, std::vector<u8>(9, 1), 3, 3), std::vector<u8>(9, 0));
}

TEST(MaskFilter, EqualsThePlainCount) {
    RandomBits random(31);
    for (const KernelCase &one : kernel_cases()) {
        const KernelTable table(one.grid_n, one.grid_m, one.spacing);
        for (const f32 radius : one.radii) {
            const KernelDisc disc(table, radius);
            for (const u32 share : {2U, 5U, 1000U}) {
                std::vector<u8> mask(static_cast<size_t>(one.grid_n) * static_cast<size_t>(one.grid_m));
                for (u8 &value : mask) {
                    value = random() % share == 0 ? 0 : 1;
                }
                std::vector<u8> expected(mask.size());
                reference::apply_resolution(disc.lists, mask.data(), expected.data(), one.grid_n, one.grid_m);
                EXPECT_EQ(filter(disc, mask, one.grid_n, one.grid_m), expected)
                    << one.grid_n << " x " << one.grid_m << ", radius " << radius;
            }
        }
    }
}

TEST(MaskFilter, EqualsThePlainCountForAnyDiscAndEdge) {
    RandomBits random(32);
    for (i32 round = 0; round < 60; ++round) {
        const i32 n = 1 + static_cast<i32>(random() % 50U);
        const i32 m = 1 + static_cast<i32>(random() % 20U);
        std::vector<DiscPoint> points;
        std::vector<DiscPoint> edge;
        // More edge points than the change of one column fits into a byte.
        for (i32 i = 0; i < 400; ++i) {
            const auto pick = [&](i32 limit) {
                return static_cast<i32>(random() % static_cast<u32>(2 * limit + 1)) - limit;
            };
            points.push_back({pick(30), pick(20)});
            edge.push_back({round % 2 == 0 ? -3 : pick(40), pick(1)});
        }
        const KernelDisc disc(points, edge);
        std::vector<u8> mask(point_count(n, m));
        for (size_t i = 0; i < mask.size(); ++i) {
            mask[i] = i % static_cast<size_t>(n) < 6 ? 1 : static_cast<u8>(random() % 4U);
        }
        std::vector<u8> expected(mask.size());
        reference::apply_resolution(disc.lists, mask.data(), expected.data(), n, m);
        EXPECT_EQ(filter(disc, mask, n, m), expected) << "round " << round;
    }
}
