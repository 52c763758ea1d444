#include "sim/kernels/taper.h"
#include <cmath>
#include <limits>
#include "sim/kernels/distance_transform.h"
#include "support.h"

// A grid with resist on it, before and after.
struct ResistRun {
    KernelTable table;
    TaperInput input;
    std::vector<u8> mask;
    std::vector<f32> bottom, top;
    std::vector<GridCell> cells;

    ResistRun(i32 n, i32 m, i32 padding, f32 spacing, i32 angle)
        : table(n + 2 * padding, m + 2 * padding, spacing), input() {
        input.offsets = table.offsets.data();
        input.offset_count = table.count();
        input.spacing = spacing;
        input.grid_n = n;
        input.grid_m = m;
        input.padding = padding;
        input.angle_degrees = angle;
        mask.assign(point_count(n + 2 * padding, m + 2 * padding), 1);
        bottom.assign(point_count(n, m), 0.0F);
        top.assign(bottom.size(), 1.0F);
        cells.assign(bottom.size(), {-5.0F, -5});
    }
    void apply() {
        input.mask = mask.data();
        taper_apply(&input, bottom.data(), top.data(), cells.data(), 3);
    }
};

TEST(Taper, OpeningLosesItsResistAndKeepsItsCell) {
    ResistRun resist(3, 1, 0, 1.0F, 90);
    resist.mask[1] = 0;
    resist.bottom = {0.25F, 0.25F, 2.0F};
    resist.apply();
    EXPECT_EQ(resist.top[0], 1.0F);
    EXPECT_EQ(resist.cells[0].height, 1.0F);
    EXPECT_EQ(resist.cells[0].top_layer, 3);
    EXPECT_EQ(resist.top[1], 0.25F) << "open";
    EXPECT_EQ(resist.top[2], 2.0F) << "no resist there";
    for (const size_t i : {1U, 2U}) {
        EXPECT_EQ(resist.cells[i].height, -5.0F);
        EXPECT_EQ(resist.cells[i].top_layer, -5);
    }
}

TEST(Taper, WallRisesWithTheTangent) {
    // 45 degrees, mean 0, top 1, spacing 0.25: the height is the distance to the opening until 1. The
    // tangent of the rounded angle is a little below 1, as are the heights before they are narrowed.
    ResistRun resist(8, 1, 0, 0.25F, 45);
    resist.mask[0] = 0;
    resist.apply();
    EXPECT_EQ(resist.top[0], 0.0F);
    for (size_t n = 1; n < 8; ++n) {
        EXPECT_EQ(resist.top[n], n < 4 ? 0.25F * static_cast<f32>(n) : 1.0F) << "column " << n;
        EXPECT_EQ(resist.cells[n].height, resist.top[n]);
    }
}

TEST(Taper, OpeningsInTheMarginCount) {
    // The same wall, from an opening two columns outside of the grid.
    ResistRun resist(4, 1, 2, 0.25F, 45);
    resist.mask[16] = 0;  // row 2 of 8 columns
    resist.apply();
    EXPECT_EQ(resist.top[0], 0.5F);
    EXPECT_EQ(resist.top[1], 0.75F);
    EXPECT_EQ(resist.top[2], 1.0F);
}

TEST(Taper, NeverBelowTheBottom) {
    ResistRun resist(4, 1, 0, 0.25F, 45);
    resist.mask[0] = 0;
    resist.bottom.assign(4, 0.6F);
    resist.apply();
    EXPECT_EQ(resist.top[1], 0.6F);
    EXPECT_EQ(resist.top[2], 0.6F);
    EXPECT_EQ(resist.top[3], 0.75F);
}

TEST(Taper, ResistAtOrBelowTheMeanKeepsItsTop) {
    for (const f32 mean : {1.0F, 2.0F}) {
        ResistRun resist(3, 1, 0, 0.25F, 45);
        resist.mask[0] = 0;
        resist.input.mean = mean;
        resist.apply();
        EXPECT_EQ(resist.top[1], 1.0F) << "mean " << mean;
    }
}

TEST(Taper, RightAngleLeavesWallsUpright) {
    ResistRun resist(5, 1, 0, 0.001F, 90);
    resist.mask[2] = 0;
    resist.apply();
    EXPECT_EQ(resist.top, (std::vector<f32>{1.0F, 1.0F, 0.0F, 1.0F, 1.0F}));
}

static void expect_twin(ResistRun *resist, const std::string &what) {
    ResistRun twin = *resist;
    twin.input.offsets = twin.table.offsets.data();
    twin.input.mask = twin.mask.data();
    reference::taper(&twin.input, twin.bottom.data(), twin.top.data(), twin.cells.data(), 3);
    resist->apply();
    EXPECT_EQ(grid_difference(resist->top, twin.top, resist->input.grid_n), "") << what;
    for (size_t i = 0; i < twin.cells.size(); ++i) {
        const bool both_nan = std::isnan(resist->cells[i].height) && std::isnan(twin.cells[i].height);
        EXPECT_TRUE(both_nan || resist->cells[i].height == twin.cells[i].height) << what << ", cell " << i;
        EXPECT_EQ(resist->cells[i].top_layer, twin.cells[i].top_layer) << what << ", cell " << i;
    }
}

TEST(Taper, EqualsThePlainWalk) {
    RandomBits random(41);
    const f32 spacings[] = {0.1F, 7.3F / 333.0F, 1.0F, 2.0F / 300.0F, 1e-13F, 1e13F, 1e-25F};
    const i32 angles[] = {10, 30, 45, 60, 75, 89, 90, 1, 0, -20, 180, 100};
    for (i32 round = 0; round < 240; ++round) {
        const f32 spacing = spacings[round % 7];
        const i32 n = 1 + static_cast<i32>(random() % 30U);
        const i32 m = 1 + static_cast<i32>(random() % 20U);
        ResistRun resist(n, m, static_cast<i32>(random() % 6U), spacing, angles[random() % 12U]);
        const u32 openings = round % 5 == 0 ? 1000000U : 2U + random() % 300U;
        for (u8 &value : resist.mask) {
            value = random() % openings == 0 ? 0 : 1;
        }
        // Heights of a few to many spacings, so that walls end within the grid and beyond it.
        const f32 scale = spacing * static_cast<f32>(1U << random() % 8U);
        resist.bottom = random_grid(GRID_LEVELS, n, m, &random);
        resist.top = random_grid(round % 8 == 0 ? GRID_SPECIAL : GRID_ROUGH, n, m, &random);
        for (size_t i = 0; i < resist.top.size(); ++i) {
            resist.bottom[i] *= scale;
            resist.top[i] = resist.bottom[i] + resist.top[i] * scale;
        }
        resist.input.mean = 0.3F * scale;
        expect_twin(&resist, "round " + std::to_string(round));
    }
}

TEST(Taper, LonelyOpeningsOfLargeMasks) {
    // The distances of the table are roots of rounded squares; far out many differ from the order of
    // the exact ones.
    RandomBits random(42);
    for (i32 round = 0; round < 6; ++round) {
        ResistRun resist(90, 70, 3, round % 2 == 0 ? 0.1F : 7.3F / 333.0F, 3);
        for (i32 i = 0; i < 1 + round; ++i) {
            resist.mask[random() % resist.mask.size()] = 0;
        }
        expect_twin(&resist, "round " + std::to_string(round));
    }
}

TEST(DistanceTransform, EqualsTheSearchOfAllPoints) {
    RandomBits random(43);
    for (i32 round = 0; round < 80; ++round) {
        const i32 n = 1 + static_cast<i32>(random() % 30U);
        const i32 m = 1 + static_cast<i32>(random() % 30U);
        const u32 openings = 1U + random() % 200U;
        std::vector<u8> mask(point_count(n, m));
        for (u8 &value : mask) {
            value = random() % openings == 0 ? 0 : 1;
        }
        const Owned<DistanceTransform> transform(distance_transform_create(mask.data(), n, m));
        std::vector<i64> squares(static_cast<size_t>(n));
        for (i32 j = 0; j < m; ++j) {
            distance_transform_row(transform.get(), j, squares.data());
            for (i32 i = 0; i < n; ++i) {
                i64 nearest = DISTANCE_NONE;
                for (i32 k = 0; k < n * m; ++k) {
                    const i64 dx = i - k % n;
                    const i64 dy = j - k / n;
                    if (mask[static_cast<size_t>(k)] == 0 && dx * dx + dy * dy < nearest) {
                        nearest = dx * dx + dy * dy;
                    }
                }
                ASSERT_EQ(squares[static_cast<size_t>(i)], nearest) << "column " << i << ", row " << j;
            }
        }
    }
}
