#include "sim/kernels/etch_kernels.h"
#include <cmath>
#include "support.h"

// Layers as plain vectors under the records that the kernels take.
struct EtchRun {
    i32 grid_n, grid_m;
    std::vector<std::vector<f32>> bottoms, tops;
    std::vector<EtchClass> classes;
    std::vector<bool> absent;  // slots without a layer
    std::vector<GridCell> cells;
    std::vector<EtchLayer> slots;

    EtchRun(i32 n, i32 m) : grid_n(n), grid_m(m) { cells.assign(point_count(n, m), {0.0F, 0}); }
    void add(EtchClass layer_class, std::vector<f32> bottom, std::vector<f32> top) {
        classes.push_back(layer_class);
        bottoms.push_back(std::move(bottom));
        tops.push_back(std::move(top));
        absent.push_back(false);
    }
    // A flat layer on the one below.
    void add_film(EtchClass layer_class, f32 bottom, f32 top) {
        add(layer_class, std::vector<f32>(cells.size(), bottom), std::vector<f32>(cells.size(), top));
    }
    void set_surface(size_t cell, f32 height, i32 layer) { cells[cell] = {height, layer}; }
    EtchStack stack() {
        slots.clear();
        for (size_t i = 0; i < tops.size(); ++i) {
            slots.push_back({absent[i] ? nullptr : tops[i].data(), bottoms[i].data(), classes[i]});
        }
        EtchStack all = {};
        all.cells = cells.data();
        all.grid_n = grid_n;
        all.grid_m = grid_m;
        all.layers = slots.data();
        all.layer_count = static_cast<i32>(slots.size());
        return all;
    }
    void vertical(f32 depth) {
        const EtchStack all = stack();
        etch_vertical(&all, depth);
    }
    void lateral(const KernelDisc &disc) {
        const EtchStack all = stack();
        etch_lateral(&all, disc.disc.get());
    }
};

TEST(EtchVertical, TargetLosesTheDepth) {
    EtchRun stack(1, 1);
    stack.add_film(ETCH_STOPS, 0.0F, 1.0F);
    stack.add_film(ETCH_TARGET, 1.0F, 2.0F);
    stack.vertical(0.25F);
    EXPECT_EQ(stack.tops[1][0], 1.75F);
    EXPECT_EQ(stack.cells[0].height, 1.75F);
    EXPECT_EQ(stack.cells[0].top_layer, 1);
}

TEST(EtchVertical, StopsOnWhatIsNoTarget) {
    EtchRun stack(1, 1);
    stack.add_film(ETCH_STOPS, 0.0F, 1.0F);
    stack.add_film(ETCH_TARGET, 1.0F, 2.0F);
    stack.add_film(ETCH_TARGET, 2.0F, 2.5F);
    stack.vertical(9.0F);
    EXPECT_EQ(stack.tops[2][0], 2.0F);
    EXPECT_EQ(stack.tops[1][0], 1.0F);
    EXPECT_EQ(stack.tops[0][0], 1.0F);
    EXPECT_EQ(stack.cells[0].height, 1.0F);
    EXPECT_EQ(stack.cells[0].top_layer, 0);
}

TEST(EtchVertical, ThinResistUsesUpTwiceItsThickness) {
    // Resist of 0.1 and depth 0.3: 0.1 is left for the layer beneath. In single precision and units of 2^-25:
    // 1.1 - 1 is 3355444 and uses up 6710888 of 10066330; 1 less the other 3355442 is 15099495 / 2^24.
    EtchRun stack(1, 1);
    stack.add_film(ETCH_TARGET, 0.0F, 1.0F);
    stack.add_film(ETCH_RESIST, 1.0F, 1.1F);
    stack.vertical(0.3F);
    EXPECT_EQ(stack.tops[1][0], 1.0F);
    EXPECT_EQ(stack.tops[0][0], 15099495.0F / 16777216.0F);
    EXPECT_EQ(stack.cells[0].top_layer, 0);
}

TEST(EtchVertical, ThickResistDropsByHalfTheDepth) {
    EtchRun stack(1, 1);
    stack.add_film(ETCH_TARGET, 0.0F, 1.0F);
    stack.add_film(ETCH_RESIST, 1.0F, 1.5F);
    stack.vertical(0.3F);
    EXPECT_EQ(stack.tops[1][0], 1.35F) << "1.5 - 0.15";
    EXPECT_EQ(stack.tops[0][0], 1.0F);
}

TEST(EtchVertical, ThicknessEqualToTheBudgetIsGone) {
    EtchRun stack(1, 1);
    stack.add_film(ETCH_STOPS, 0.0F, 1.0F);
    stack.add_film(ETCH_TARGET, 1.0F, 1.5F);
    stack.add_film(ETCH_RESIST, 1.5F, 1.75F);
    stack.vertical(0.5F);
    EXPECT_EQ(stack.tops[2][0], 1.5F) << "twice 0.25 fits the budget";
    EXPECT_EQ(stack.tops[1][0], 1.5F) << "nothing is left for the target";
    stack.vertical(0.5F);
    EXPECT_EQ(stack.tops[1][0], 1.0F);
}

TEST(EtchVertical, ThroughEverythingTheCellKeepsItsOldValues) {
    EtchRun stack(1, 1);
    stack.add_film(ETCH_TARGET, 0.0F, 1.0F);
    stack.set_surface(0, 7.0F, 5);
    stack.vertical(2.0F);
    EXPECT_EQ(stack.tops[0][0], 0.0F);
    EXPECT_EQ(stack.cells[0].height, 7.0F);
    EXPECT_EQ(stack.cells[0].top_layer, 5);
}

TEST(EtchVertical, AbsentLayersAndEmptySlotsArePassed) {
    EtchRun stack(1, 1);
    stack.add_film(ETCH_TARGET, 0.0F, 1.0F);
    stack.add_film(ETCH_STOPS, 1.0F, 1.0F);
    stack.add_film(ETCH_STOPS, 1.0F, 9.0F);
    stack.absent[2] = true;
    stack.vertical(0.5F);
    EXPECT_EQ(stack.tops[0][0], 0.5F);
    EXPECT_EQ(stack.cells[0].top_layer, 0);
}

TEST(EtchLateral, RadiusZeroChangesNothing) {
    const KernelTable table(4, 1, 1.0F);
    const KernelDisc disc(table, 0.0F);
    EtchRun stack(4, 1);
    stack.add_film(ETCH_STOPS, 0.0F, 1.0F);
    stack.add(ETCH_TARGET, {1, 1, 1, 1}, {2, 3, 1.5F, 1});
    for (size_t i = 0; i < 4; ++i) {
        stack.set_surface(i, stack.tops[1][i], 1);
    }
    stack.lateral(disc);
    EXPECT_EQ(stack.tops[1], (std::vector<f32>{2, 3, 1.5F, 1}));
    EXPECT_EQ(stack.cells[0].height, 2.0F);
}

TEST(EtchLateral, UndercutsResistButLeavesWhatIsNotEtched) {
    // A film of 1..2 with resist of 2..3 over columns 0..3, open from column 4 on; radius 2. The
    // eroded surface is 2 in columns 2 and 3: there the resist goes, the film's top is not above 2.
    const KernelTable table(8, 1, 1.0F);
    const KernelDisc disc(table, 2.0F);
    EtchRun stack(8, 1);
    stack.add_film(ETCH_STOPS, 0.0F, 1.0F);
    stack.add_film(ETCH_TARGET, 1.0F, 2.0F);
    stack.add(ETCH_RESIST, std::vector<f32>(8, 2.0F), {3, 3, 3, 3, 2, 2, 2, 2});
    for (size_t i = 0; i < 8; ++i) {
        stack.set_surface(i, stack.tops[2][i], i < 4 ? 2 : 1);
    }
    stack.lateral(disc);
    EXPECT_EQ(stack.tops[2], (std::vector<f32>{3, 3, 2, 2, 2, 2, 2, 2}));
    EXPECT_EQ(stack.tops[1], std::vector<f32>(8, 2.0F));
    EXPECT_EQ(stack.cells[0].height, 3.0F) << "a layer that is gone writes no record";
}

TEST(EtchLateral, ReachesUnderALayerThatIsNotEtchedAndRecordsInCellZero) {
    // Column 2: cover 2..3 is not etched, the film 1..2 beneath comes down to the eroded 1.5.
    const KernelTable table(4, 1, 1.0F);
    const KernelDisc disc(table, 1.0F);
    EtchRun stack(4, 1);
    stack.add_film(ETCH_STOPS, 0.0F, 1.0F);
    stack.add(ETCH_TARGET, {1, 1, 1, 1}, {2, 2, 2, 1.5F});
    stack.add(ETCH_STOPS, {2, 2, 2, 1.5F}, {3, 3, 3, 1.5F});
    const std::vector<GridCell> cells = {{3, 2}, {3, 2}, {3, 2}, {1.5F, 1}};
    stack.cells = cells;
    stack.lateral(disc);
    EXPECT_EQ(stack.tops[2], (std::vector<f32>{3, 3, 3, 1.5F}));
    EXPECT_EQ(stack.tops[1], (std::vector<f32>{2, 2, 1.5F, 1.5F}));
    EXPECT_EQ(stack.cells[0].height, 1.5F) << "the record of column 2";
    EXPECT_EQ(stack.cells[0].top_layer, 1);
    for (size_t i = 1; i < 4; ++i) {
        EXPECT_EQ(stack.cells[i].height, cells[i].height) << "cell " << i;
        EXPECT_EQ(stack.cells[i].top_layer, cells[i].top_layer) << "cell " << i;
    }
}

// A film on an infinitely thick one: top less bottom is no number there, and only a thickness of 0 is an
// absent layer to the lateral pass. The vertical pass compares the two, and passes it.
TEST(EtchKernels, AFilmAtInfinityIsAbsentToTheVerticalPassOnly) {
    const f32 far_up = HUGE_VALF;
    const KernelTable table(2, 1, 1.0F);
    const KernelDisc disc(table, 1.0F);
    EtchRun stack(2, 1);
    stack.add_film(ETCH_STOPS, 0.0F, 1.0F);
    stack.add(ETCH_TARGET, {1, 1}, {1.5F, 2});
    stack.add(ETCH_STOPS, {far_up, 2}, {far_up, 2});
    stack.cells = {{far_up, 7}, {2, 1}};
    stack.lateral(disc);
    EXPECT_EQ(stack.cells[0].height, far_up);
    EXPECT_EQ(stack.cells[0].top_layer, 2) << "the record of a layer that stops the etch";
    EXPECT_EQ(stack.tops[1], (std::vector<f32>{1.5F, 2})) << "no higher than the eroded 2";
    stack.vertical(0.25F);
    EXPECT_EQ(stack.tops[1], (std::vector<f32>{1.25F, 1.75F}));
    EXPECT_EQ(stack.cells[0].top_layer, 1);
}

TEST(EtchLateral, NeverTouchesSlotZero) {
    const KernelTable table(2, 1, 1.0F);
    const KernelDisc disc(table, 1.0F);
    EtchRun stack(2, 1);
    stack.add(ETCH_TARGET, {0, 0}, {2, 1});
    stack.cells = {{2, 0}, {1, 0}};
    stack.lateral(disc);
    EXPECT_EQ(stack.tops[0], (std::vector<f32>{2, 1}));
}

static EtchRun random_stack(RandomBits *random, i32 n, i32 m) {
    EtchRun stack(n, m);
    std::vector<f32> surface(stack.cells.size(), 0.0F);
    for (i32 layer = 0; layer < 6; ++layer) {
        const std::vector<f32> bottom = surface;
        const std::vector<f32> thickness =
            random_grid(layer % 2 == 0 ? GRID_LEVELS : GRID_BLOCKS, n, m, random);
        for (size_t i = 0; i < surface.size(); ++i) {
            surface[i] = surface[i] + thickness[i];
        }
        stack.add(static_cast<EtchClass>((*random)() % 3U), bottom, surface);
        stack.absent[static_cast<size_t>(layer)] = (*random)() % 5U == 0;
    }
    for (size_t i = 0; i < surface.size(); ++i) {
        stack.set_surface(i, surface[i], 5);
    }
    return stack;
}

static void expect_same(const EtchRun &got, const EtchRun &expected, i32 round) {
    for (size_t layer = 0; layer < got.tops.size(); ++layer) {
        EXPECT_EQ(grid_difference(got.tops[layer], expected.tops[layer], got.grid_n), "")
            << "layer " << layer << ", round " << round;
    }
    for (size_t i = 0; i < got.cells.size(); ++i) {
        EXPECT_EQ(got.cells[i].height, expected.cells[i].height) << "cell " << i << ", round " << round;
        EXPECT_EQ(got.cells[i].top_layer, expected.cells[i].top_layer) << "cell " << i << ", round " << round;
    }
}

TEST(EtchKernels, EqualThePlainWalks) {
    RandomBits random(51);
    const KernelTable table(25, 17, 0.1F);
    for (i32 round = 0; round < 60; ++round) {
        EtchRun got = random_stack(&random, 25, 17);
        EtchRun expected = got;
        const f32 depth = static_cast<f32>(random() % 20U) * 0.1F - 0.2F;
        const KernelDisc disc(table, depth * 0.5F);
        const EtchStack twin = expected.stack();
        reference::etch_lateral(&twin, disc.lists);
        reference::etch_vertical(&twin, depth);
        got.lateral(disc);
        got.vertical(depth);
        expect_same(got, expected, round);
    }
}
