#include "sim/kernels/grid_dilate.h"
#include <cmath>
#include <limits>
#include "support.h"

using Kernel = void (*)(const Disc *, GridView, f32 *);
using Twin = void (*)(const reference::PointLists &, const f32 *, f32 *, i32, i32);

static std::vector<f32> run(Kernel kernel, const KernelDisc &disc, const std::vector<f32> &grid, i32 n,
                            i32 m) {
    std::vector<f32> output(grid.size(), -77.0F);
    kernel(disc.disc.get(), {grid.data(), n, m}, output.data());
    return output;
}

TEST(GridDilate, PeakGrowsIntoADisc) {
    const KernelTable table(15, 13, 1.0F);
    const KernelDisc disc(table, 3.0F);
    std::vector<f32> grid(point_count(15, 13), 0.25F);
    grid[97] = 2.0F;  // column 7, row 6
    const std::vector<f32> output = run(grid_dilate_disc, disc, grid, 15, 13);
    for (i32 m = 0; m < 13; ++m) {
        for (i32 n = 0; n < 15; ++n) {
            const i32 square = (n - 7) * (n - 7) + (m - 6) * (m - 6);
            EXPECT_EQ(output[static_cast<size_t>(m * 15 + n)], square <= 9 ? 2.0F : 0.25F)
                << "column " << n << ", row " << m;
        }
    }
}

TEST(GridDilate, StepAndTrenchMoveByTheRadius) {
    // High left of column 10 and right of column 29; radius 4 brings the walls 4 columns closer.
    const KernelTable table(40, 5, 1.0F);
    const KernelDisc disc(table, 4.0F);
    std::vector<f32> grid(point_count(40, 5));
    for (size_t i = 0; i < grid.size(); ++i) {
        grid[i] = i % 40 < 10 || i % 40 > 29 ? 1.0F : 0.5F;
    }
    const std::vector<f32> wide = run(grid_dilate_disc, disc, grid, 40, 5);
    const std::vector<f32> narrow = run(grid_erode_disc, disc, grid, 40, 5);
    for (size_t i = 0; i < grid.size(); ++i) {
        const size_t n = i % 40;
        EXPECT_EQ(wide[i], n < 14 || n > 25 ? 1.0F : 0.5F) << "column " << n;
        EXPECT_EQ(narrow[i], n < 6 || n > 33 ? 1.0F : 0.5F) << "column " << n;
    }
}

TEST(GridDilate, FlatFilmStaysFlat) {
    const KernelTable table(50, 20, 0.1F);
    const KernelDisc disc(table, 0.5F);
    const std::vector<f32> grid(point_count(50, 20), 0.7F);
    EXPECT_EQ(grid_difference(run(grid_dilate_disc, disc, grid, 50, 20), grid, 50), "");
    EXPECT_EQ(grid_difference(run(grid_erode_disc, disc, grid, 50, 20), grid, 50), "");
}

TEST(GridDilate, MaximumIsNeverBelowZero) {
    const KernelTable table(6, 4, 1.0F);
    const KernelDisc disc(table, 1.0F);
    const std::vector<f32> grid(24, -3.0F);
    EXPECT_EQ(grid_difference(run(grid_dilate_disc, disc, grid, 6, 4), std::vector<f32>(24, 0.0F), 6), "");
    EXPECT_EQ(grid_difference(run(grid_erode_disc, disc, grid, 6, 4), grid, 6), "");
}

TEST(GridDilate, EmptyDiscGivesTheStart) {
    const KernelTable table(6, 4, 1.0F);
    const KernelDisc disc(table, std::numeric_limits<f32>::quiet_NaN());
    const std::vector<f32> grid(24, 1.0F);
    EXPECT_EQ(grid_difference(run(grid_dilate_disc, disc, grid, 6, 4), std::vector<f32>(24, 0.0F), 6), "");
    EXPECT_EQ(grid_difference(run(grid_erode_disc, disc, grid, 6, 4), std::vector<f32>(24, 3.4028235e38F), 6),
              "");
}

TEST(GridDilate, NanIsPassedOver) {
    const KernelTable table(3, 1, 1.0F);
    const KernelDisc disc(table, 1.0F);
    const f32 nan = std::numeric_limits<f32>::quiet_NaN();
    const std::vector<f32> grid = {nan, 2.0F, nan};
    EXPECT_EQ(grid_difference(run(grid_dilate_disc, disc, grid, 3, 1), {2.0F, 2.0F, 2.0F}, 3), "");
    EXPECT_EQ(grid_difference(run(grid_erode_disc, disc, grid, 3, 1), {2.0F, 2.0F, 2.0F}, 3), "");
}

TEST(GridErode, FirstZeroMetKeepsItsSign) {
    // Column 0 meets its own 0.0 first, then -0.0; column 1 takes the minimum anew, since 0.0 left.
    const KernelTable table(3, 1, 1.0F);
    const KernelDisc disc(table, 1.0F);
    const std::vector<f32> grid = {0.0F, -0.0F, 5.0F};
    const std::vector<f32> output = run(grid_erode_disc, disc, grid, 3, 1);
    EXPECT_FALSE(std::signbit(output[0]));
}

TEST(GridDilate, EdgeThatLacksARowKeepsWhatHasLeft) {
    // Radius 1 in a row of 5, with an edge that tells of nothing: the maximum of column 0 stays.
    const KernelDisc disc({{0, 0}, {-1, 0}, {1, 0}}, {});
    const std::vector<f32> grid = {3.0F, 1.0F, 1.0F, 9.0F, 1.0F};
    EXPECT_EQ(grid_difference(run(grid_dilate_disc, disc, grid, 5, 1), std::vector<f32>(5, 3.0F), 5), "");
}

TEST(GridDilate, MirroredInputGivesMirroredOutput) {
    RandomBits random(3);
    const i32 n = 45;
    const i32 m = 30;
    const KernelTable table(n, m, 1.0F);
    const KernelDisc disc(table, 6.3F);
    const std::vector<f32> grid = random_grid(GRID_ROUGH, n, m, &random);
    std::vector<f32> mirrored(grid.size());
    for (size_t i = 0; i < grid.size(); ++i) {
        mirrored[i / n * n + (n - 1 - i % n)] = grid[i];
    }
    for (const Kernel kernel : {grid_dilate_disc, grid_erode_disc}) {
        const std::vector<f32> output = run(kernel, disc, grid, n, m);
        const std::vector<f32> other = run(kernel, disc, mirrored, n, m);
        for (size_t i = 0; i < grid.size(); ++i) {
            EXPECT_EQ(output[i], other[i / n * n + (n - 1 - i % n)]) << "point " << i;
        }
    }
}

static void expect_twins(const KernelDisc &disc, const std::vector<f32> &grid, i32 n, i32 m,
                         const std::string &what) {
    std::vector<f32> expected(grid.size());
    reference::dilate(disc.lists, grid.data(), expected.data(), n, m);
    EXPECT_EQ(grid_difference(run(grid_dilate_disc, disc, grid, n, m), expected, n), "")
        << "maximum, " << what;
    reference::erode(disc.lists, grid.data(), expected.data(), n, m);
    EXPECT_EQ(grid_difference(run(grid_erode_disc, disc, grid, n, m), expected, n), "")
        << "minimum, " << what;
}

TEST(GridDilate, EqualsThePlainUpdate) {
    RandomBits random(1);
    for (const KernelCase &one : kernel_cases()) {
        const KernelTable table(one.grid_n, one.grid_m, one.spacing);
        for (const f32 radius : one.radii) {
            const KernelDisc disc(table, radius);
            for (i32 kind = 0; kind < GRID_KIND_COUNT; ++kind) {
                const auto grid_kind = static_cast<GridKind>(kind);
                expect_twins(disc, random_grid(grid_kind, one.grid_n, one.grid_m, &random), one.grid_n,
                             one.grid_m,
                             std::string(grid_kind_name(grid_kind)) + ", " + std::to_string(one.grid_n) +
                                 " x " + std::to_string(one.grid_m) + ", radius " + std::to_string(radius));
            }
        }
    }
}

TEST(GridDilate, EqualsThePlainUpdateForAnyDiscAndEdge) {
    RandomBits random(2);
    for (i32 round = 0; round < 120; ++round) {
        const i32 n = 1 + static_cast<i32>(random() % 40U);
        const i32 m = 1 + static_cast<i32>(random() % 12U);
        const i32 reach = 1 + static_cast<i32>(random() % 8U);
        std::vector<DiscPoint> points;
        std::vector<DiscPoint> edge;
        for (i32 dy = -reach; dy <= reach; ++dy) {
            const i32 half = static_cast<i32>(random() % 7U) - 1;
            for (i32 dx = -half; dx <= half; ++dx) {
                if (round % 4 != 0 || random() % 9U != 0) {
                    points.push_back({dx, dy});
                }
            }
            for (u32 i = random() % 4U; i > 0; --i) {
                edge.push_back({static_cast<i32>(random() % 14U) - 9, dy});
            }
        }
        const KernelDisc disc(points, edge);
        const auto kind = static_cast<GridKind>(round % GRID_KIND_COUNT);
        expect_twins(disc, random_grid(kind, n, m, &random), n, m,
                     "round " + std::to_string(round) + ", " + grid_kind_name(kind));
    }
}

// A table of a smaller grid cuts the disc short of what would cover this grid.
TEST(GridDilate, EqualsThePlainUpdateWithASmallTable) {
    RandomBits random(4);
    const KernelTable table(5, 4, 0.1F);
    for (const f32 radius : {0.2F, 0.45F, 3.0F}) {
        const KernelDisc disc(table, radius);
        for (i32 kind = 0; kind < GRID_KIND_COUNT; ++kind) {
            expect_twins(disc, random_grid(static_cast<GridKind>(kind), 31, 17, &random), 31, 17,
                         grid_kind_name(static_cast<GridKind>(kind)));
        }
    }
}
