#include <cmath>
#include <limits>
#include "sim/kernels/grid_dilate.h"
#include "sim/kernels/grid_smooth.h"
#include "sim/kernels/offsets_sorted.h"
#include "support.h"

// Nan distances count as equal; the offsets tell whether the right entry is there.
static bool same_table(const GridOffset *got, const std::vector<GridOffset> &expected) {
    bool same = true;
    for (size_t i = 0; same && i < expected.size(); ++i) {
        const bool both_nan = std::isnan(got[i].distance) && std::isnan(expected[i].distance);
        same = got[i].dx == expected[i].dx && got[i].dy == expected[i].dy &&
               (both_nan || got[i].distance == expected[i].distance);
    }
    return same;
}

TEST(OffsetsCreate, ListsEveryNeighbourRowByRow) {
    i32 count = 0;
    const Owned<GridOffset[]> offsets = offsets_create(2, 1, 0.5F, &count);
    ASSERT_EQ(count, 3);  // 3 columns, 1 row
    const std::vector<GridOffset> expected = {{-1, 0, 0.5F}, {0, 0, 0.0F}, {1, 0, 0.5F}};
    EXPECT_TRUE(same_table(offsets.get(), expected));
}

TEST(OffsetsCreate, DistanceIsTheRootOfSingleSquares) {
    for (const f32 spacing :
         {0.1F, 7.3F / 333.0F, 1e-30F, 1e30F, 0.0F, std::numeric_limits<f32>::infinity()}) {
        i32 count = 0;
        const Owned<GridOffset[]> offsets = offsets_create(9, 6, spacing, &count);
        const std::vector<GridOffset> expected = reference::offsets(9, 6, spacing);
        ASSERT_EQ(count, 17 * 11);
        EXPECT_TRUE(same_table(offsets.get(), expected)) << "spacing " << spacing;
    }
}

TEST(OffsetsSort, EqualDistancesKeepTheirOrder) {
    i32 count = 0;
    const Owned<GridOffset[]> offsets = offsets_create(2, 2, 1.0F, &count);
    offsets_sort_by_distance(offsets.get(), count);
    const DiscPoint order[] = {{0, 0}, {0, -1}, {-1, 0}, {1, 0}, {0, 1}, {-1, -1}, {1, -1}, {-1, 1}, {1, 1}};
    for (i32 i = 0; i < 9; ++i) {
        EXPECT_EQ(offsets[i].dx, order[i].dx) << "entry " << i;
        EXPECT_EQ(offsets[i].dy, order[i].dy) << "entry " << i;
    }
}

TEST(OffsetsSort, SmallAndAbsentTablesAreLeftAlone) {
    offsets_sort_by_distance(nullptr, 5);
    GridOffset two[] = {{1, 0, 2.0F}, {0, 0, 1.0F}};
    offsets_sort_by_distance(two, 2);
    EXPECT_EQ(two[0].dx, 1) << "fewer than three entries are not sorted";
}

TEST(OffsetsSort, EqualsTheMergeSortOnGrids) {
    const struct {
        i32 n, m;
        f32 spacing;
    } cases[] = {{1, 1, 0.1F},   {7, 1, 0.1F},  {40, 31, 0.1F}, {33, 60, 7.3F / 333.0F},
                 {9, 9, 1e-24F}, {9, 9, 1e20F}, {12, 5, 0.0F},  {6, 7, std::numeric_limits<f32>::infinity()}};
    for (const auto &one : cases) {
        std::vector<GridOffset> expected = reference::offsets(one.n, one.m, one.spacing);
        std::vector<GridOffset> got = expected;
        reference::sort_by_distance(&expected);
        offsets_sort_by_distance(got.data(), static_cast<i32>(got.size()));
        EXPECT_TRUE(same_table(got.data(), expected))
            << one.n << " x " << one.m << ", spacing " << one.spacing;
    }
}

TEST(OffsetsSort, EqualsTheMergeSortOnAnyDistances) {
    RandomBits random(5);
    const f32 nan = std::numeric_limits<f32>::quiet_NaN();
    for (i32 round = 0; round < 60; ++round) {
        const u32 distinct = round % 3 == 0 ? 5U : 100000U;
        std::vector<GridOffset> expected;
        for (i32 i = 0; i < 3 + round * 17; ++i) {
            f32 distance = static_cast<f32>(random() % distinct) * 0.37F;
            if (round % 4 == 1 && random() % 5U == 0) {
                distance = nan;
            } else if (round % 4 == 2 && random() % 5U == 0) {
                distance = random() % 2U == 0 ? -distance : -0.0F;
            }
            expected.push_back({i, -i, distance});
        }
        std::vector<GridOffset> got = expected;
        reference::sort_by_distance(&expected);
        offsets_sort_by_distance(got.data(), static_cast<i32>(got.size()));
        EXPECT_TRUE(same_table(got.data(), expected)) << "round " << round;
    }
}

static void expect_sorted_table(i32 n, i32 m, f32 spacing) {
    std::vector<GridOffset> expected = reference::offsets(n, m, spacing);
    reference::sort_by_distance(&expected);
    i32 count = 0;
    const Owned<GridOffset[]> got = offsets_create_sorted(n, m, spacing, &count);
    ASSERT_EQ(static_cast<size_t>(count), expected.size());
    EXPECT_TRUE(same_table(got.get(), expected)) << n << " x " << m << ", spacing " << spacing;
}

TEST(OffsetsCreateSorted, IsTheSortedTable) {
    const struct {
        i32 n, m;
        f32 spacing;
    } cases[] = {{1, 1, 0.1F},
                 {2, 1, 0.1F},
                 {1, 2, 0.1F},
                 {7, 1, 0.1F},
                 {1, 9, 0.1F},
                 {40, 31, 0.1F},
                 {60, 60, 1.0F},
                 {33, 60, 7.3F / 333.0F},
                 {9, 9, 1e-24F},
                 {9, 9, 1e20F},
                 {12, 5, 0.0F},
                 {9, 8, -0.25F},
                 {6, 7, std::numeric_limits<f32>::infinity()}};
    for (const auto &one : cases) {
        expect_sorted_table(one.n, one.m, one.spacing);
    }
    RandomBits random(8);
    for (i32 round = 0; round < 40; ++round) {
        const f32 spacing = static_cast<f32>(1 + random() % 1000U) * 1.7e-3F;
        expect_sorted_table(static_cast<i32>(1 + random() % 70U), static_cast<i32>(1 + random() % 70U),
                            spacing);
    }
}

// Five rows of the plain order by hand: at distance 5 the neighbours (+-3, +-4), (+-4, +-3), (0, +-5) and
// (+-5, 0), from the lowest row up and from left to right.
TEST(OffsetsCreateSorted, EqualDistancesLieRowByRow) {
    i32 count = 0;
    const Owned<GridOffset[]> offsets = offsets_create_sorted(6, 6, 1.0F, &count);
    const DiscPoint order[] = {{0, -5}, {-3, -4}, {3, -4}, {-4, -3}, {4, -3}, {-5, 0},
                               {5, 0},  {-4, 3},  {4, 3},  {-3, 4},  {3, 4},  {0, 5}};
    i32 first = 0;
    while (first < count && offsets[first].distance < 5.0F) {
        ++first;
    }
    EXPECT_EQ(first, 69)
        << "points nearer than 5 to the middle: Gauss's circle has 81 within 5, less these 12";
    for (i32 i = 0; i < 12; ++i) {
        EXPECT_EQ(offsets[first + i].dx, order[i].dx) << "entry " << i;
        EXPECT_EQ(offsets[first + i].dy, order[i].dy) << "entry " << i;
        EXPECT_EQ(offsets[first + i].distance, 5.0F) << "entry " << i;
    }
}

TEST(OffsetsAreSorted, TellsAnUnsortedTable) {
    const KernelTable table(20, 10, 0.5F);
    EXPECT_TRUE(offsets_are_sorted(table.offsets.data(), table.count()));
    EXPECT_TRUE(offsets_are_sorted(nullptr, 0));
    i32 count = 0;
    const Owned<GridOffset[]> rows = offsets_create(20, 10, 0.5F, &count);
    EXPECT_FALSE(offsets_are_sorted(rows.get(), count)) << "row by row, the nearest ones in the middle";
}

// A mistake of ours that would give wrong heights ends debug and sanitizer builds.
TEST(KernelAssertsDeathTest, AGridIsNotSmoothedInPlace) {
    const KernelTable table(6, 4, 1.0F);
    const KernelDisc disc(table, 1.0F);
    std::vector<f32> grid(24, 1.0F);
    EXPECT_DEBUG_DEATH(grid_smooth_disc(disc.disc.get(), {grid.data(), 6, 4}, grid.data()), "input.values");
    EXPECT_DEBUG_DEATH(grid_dilate_disc(disc.disc.get(), {grid.data(), 6, 4}, grid.data()), "input.values");
}
