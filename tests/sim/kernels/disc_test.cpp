#include <cmath>
#include <limits>
#include "platform/memory.h"
#include "support.h"

static bool same_points(const DiscPoint *got, i32 count, const std::vector<DiscPoint> &expected) {
    bool same = count == static_cast<i32>(expected.size());
    for (size_t i = 0; same && i < expected.size(); ++i) {
        same = got[i].dx == expected[i].dx && got[i].dy == expected[i].dy;
    }
    return same;
}

TEST(OffsetsDisc, RadiusZeroIsTheCentreAlone) {
    const KernelTable table(5, 5, 0.1F);
    const KernelDisc disc(table, 0.0F);
    ASSERT_EQ(disc.disc->count, 1);
    EXPECT_EQ(disc.disc->points[0].dx, 0);
    EXPECT_EQ(disc.disc->points[0].dy, 0);
    ASSERT_EQ(disc.disc->edge_count, 1) << "moving right, the point left of the centre leaves";
    EXPECT_EQ(disc.disc->edge[0].dx, -1);
    EXPECT_EQ(disc.disc->edge[0].dy, 0);
}

TEST(OffsetsDisc, IsSortedByDistanceWithTheRimIncluded) {
    // Spacing 1, radius 2: centre, 4 at 1, 4 at sqrt 2, 4 at 2.
    const KernelTable table(6, 6, 1.0F);
    const KernelDisc disc(table, 2.0F);
    ASSERT_EQ(disc.disc->count, 13);
    for (i32 i = 0; i < 13; ++i) {
        const DiscPoint point = disc.disc->points[i];
        const i32 square = point.dx * point.dx + point.dy * point.dy;
        EXPECT_EQ(square, i == 0 ? 0 : (i < 5 ? 1 : (i < 9 ? 2 : 4))) << "point " << i;
    }
    // One point left of each of the five rows: (-3, 0), (-2, +-1), (-1, +-2).
    ASSERT_EQ(disc.disc->edge_count, 5);
    for (i32 i = 0; i < 5; ++i) {
        const DiscPoint point = disc.disc->edge[i];
        EXPECT_EQ(point.dx, std::abs(point.dy) - 3) << "edge point " << i;
    }
}

TEST(OffsetsDisc, NegativeAndNanRadiiAreEmpty) {
    const KernelTable table(5, 5, 0.1F);
    for (const f32 radius : {-0.1F, std::numeric_limits<f32>::quiet_NaN()}) {
        const KernelDisc disc(table, radius);
        EXPECT_EQ(disc.disc->count, 0);
        EXPECT_EQ(disc.disc->edge_count, 0);
    }
}

TEST(OffsetsDisc, HugeRadiusTakesTheWholeTable) {
    const KernelTable table(5, 3, 0.1F);
    const KernelDisc disc(table, std::numeric_limits<f32>::infinity());
    EXPECT_EQ(disc.disc->count, 9 * 5);
    EXPECT_EQ(disc.disc->edge_count, 0) << "nothing is further out than the radius";
}

TEST(OffsetsDiscEdge, EqualsTheScanOfTheWholeTable) {
    for (const f32 spacing : {0.1F, 7.3F / 333.0F, 1e-13F, 1e13F, 1e-20F, 0.0F, 1.0F,
                              std::numeric_limits<f32>::infinity(), std::numeric_limits<f32>::quiet_NaN()}) {
        const KernelTable table(33, 24, spacing);
        std::vector<f32> radii = {0.0F,
                                  spacing * 0.5F,
                                  spacing * 40.0F,
                                  1e-20F,
                                  1e9F,
                                  -1.0F,
                                  std::numeric_limits<f32>::infinity(),
                                  std::numeric_limits<f32>::quiet_NaN()};
        for (i32 steps = 1; steps < 30; ++steps) {
            radii.push_back(spacing * static_cast<f32>(steps));
            radii.push_back(std::nextafter(spacing * static_cast<f32>(steps), 0.0F));
            radii.push_back(std::nextafter(spacing * static_cast<f32>(steps), 1e30F));
        }
        for (size_t i = 0; i < table.offsets.size(); i += 13) {
            radii.push_back(table.offsets[i].distance);
        }
        for (const f32 radius : radii) {
            const KernelDisc disc(table, radius);
            EXPECT_TRUE(same_points(disc.disc->points, disc.disc->count, disc.lists.points))
                << "disc, spacing " << spacing << ", radius " << radius;
            EXPECT_TRUE(same_points(disc.disc->edge, disc.disc->edge_count, disc.lists.edge))
                << "edge, spacing " << spacing << ", radius " << radius;
        }
    }
}
