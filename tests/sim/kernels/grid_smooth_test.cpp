#include "sim/kernels/grid_smooth.h"
#include <cmath>
#include <limits>
#include "support.h"

static std::vector<f32> smooth(const KernelDisc &disc, const std::vector<f32> &grid, i32 n, i32 m) {
    std::vector<f32> output(grid.size(), -77.0F);
    grid_smooth_disc(disc.disc.get(), {grid.data(), n, m}, output.data());
    return output;
}

TEST(GridSmooth, RadiusZeroChangesNothing) {
    RandomBits random(9);
    const KernelTable table(30, 20, 0.1F);
    const KernelDisc disc(table, 0.0F);
    // Multiples of 2^-10, so that the running sums are exact.
    std::vector<f32> grid(point_count(30, 20));
    for (f32 &value : grid) {
        value = static_cast<f32>(random() % 4096U) / 1024.0F;
    }
    EXPECT_EQ(grid_difference(smooth(disc, grid, 30, 20), grid, 30), "");
}

TEST(GridSmooth, FlatFilmStaysFlat) {
    const KernelTable table(30, 20, 0.1F);
    const KernelDisc disc(table, 0.45F);
    const std::vector<f32> grid(point_count(30, 20), 0.75F);
    EXPECT_EQ(grid_difference(smooth(disc, grid, 30, 20), grid, 30), "");
}

TEST(GridSmooth, PointsOutsideTheGridDoNotCount) {
    // Radius 1 in a row of 4: windows of 2, 3, 3 and 2 points.
    const KernelTable table(4, 1, 1.0F);
    const KernelDisc disc(table, 1.0F);
    const std::vector<f32> output = smooth(disc, {1.0F, 2.0F, 6.0F, 4.0F}, 4, 1);
    EXPECT_EQ(grid_difference(output, {1.5F, 3.0F, 4.0F, 5.0F}, 4), "");
}

TEST(GridSmooth, FirstColumnIsNeverLowered) {
    // Means 2 and 2 against heights 4 and 1, then the same mirrored.
    const KernelTable table(3, 1, 1.0F);
    const KernelDisc disc(table, 1.0F);
    EXPECT_EQ(grid_difference(smooth(disc, {4.0F, 0.0F, 2.0F}, 3, 1), {4.0F, 2.0F, 1.0F}, 3), "");
    EXPECT_EQ(grid_difference(smooth(disc, {2.0F, 0.0F, 4.0F}, 3, 1), {2.0F, 2.0F, 2.0F}, 3), "");
    EXPECT_EQ(grid_difference(smooth(disc, {0.0F, 4.0F, 2.0F}, 3, 1), {2.0F, 2.0F, 3.0F}, 3), "");
}

TEST(GridSmooth, FirstColumnIsNotRaisedByLessThanATenThousandth) {
    // The mean of 1 and 1 + 2^-13 is 2^-14 above (0.00006): kept; of 1 and 1 + 2^-12 0.00012: taken.
    const KernelTable table(2, 1, 1.0F);
    const KernelDisc disc(table, 1.0F);
    const f32 little = 1.0F + 1.0F / 8192.0F;
    const f32 more = 1.0F + 1.0F / 4096.0F;
    EXPECT_EQ(smooth(disc, {1.0F, little}, 2, 1)[0], 1.0F);
    EXPECT_EQ(smooth(disc, {1.0F, more}, 2, 1)[0], 1.0F + 1.0F / 8192.0F);
}

TEST(GridSmooth, EmptyDiscGivesNan) {
    const KernelTable table(6, 4, 1.0F);
    const KernelDisc disc(table, -1.0F);
    for (const f32 value : smooth(disc, std::vector<f32>(24, 1.0F), 6, 4)) {
        EXPECT_TRUE(std::isnan(value));
    }
}

TEST(GridSmooth, EqualsThePlainSum) {
    RandomBits random(11);
    for (const KernelCase &one : kernel_cases()) {
        const KernelTable table(one.grid_n, one.grid_m, one.spacing);
        for (const f32 radius : one.radii) {
            const KernelDisc disc(table, radius);
            for (i32 kind = 0; kind < GRID_KIND_COUNT; ++kind) {
                const auto grid_kind = static_cast<GridKind>(kind);
                const std::vector<f32> grid = random_grid(grid_kind, one.grid_n, one.grid_m, &random);
                std::vector<f32> expected(grid.size());
                reference::smooth(disc.lists, grid.data(), expected.data(), one.grid_n, one.grid_m);
                EXPECT_EQ(grid_difference(smooth(disc, grid, one.grid_n, one.grid_m), expected, one.grid_n),
                          "")
                    << grid_kind_name(grid_kind) << ", " << one.grid_n << " x " << one.grid_m << ", radius "
                    << radius;
            }
        }
    }
}

TEST(GridSmooth, EqualsThePlainSumForAnyDiscAndEdge) {
    RandomBits random(12);
    for (i32 round = 0; round < 80; ++round) {
        const i32 n = 1 + static_cast<i32>(random() % 30U);
        const i32 m = 1 + static_cast<i32>(random() % 90U);
        const i32 reach = static_cast<i32>(random() % 100U);
        std::vector<DiscPoint> points;
        std::vector<DiscPoint> edge;
        for (i32 i = 0; i < 60; ++i) {
            const auto pick = [&](i32 limit) {
                return static_cast<i32>(random() % static_cast<u32>(2 * limit + 1)) - limit;
            };
            points.push_back({pick(35), pick(reach)});
            edge.push_back({pick(35), pick(reach)});
        }
        const KernelDisc disc(points, edge);
        const auto kind = static_cast<GridKind>(round % GRID_KIND_COUNT);
        const std::vector<f32> grid = random_grid(kind, n, m, &random);
        std::vector<f32> expected(grid.size());
        reference::smooth(disc.lists, grid.data(), expected.data(), n, m);
        EXPECT_EQ(grid_difference(smooth(disc, grid, n, m), expected, n), "")
            << "round " << round << ", " << grid_kind_name(kind);
    }
}
