#include "render/visible_parts.h"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include <vector>
#include "plain_visible_parts.h"
#include "tests/support/test_support.h"

using HeightFunction = f32 (*)(i32 n, i32 m, f32 below);

// Layers on one another, 1 micrometre between grid points.
struct LayerPile {
    Stack stack = {};
    std::vector<Owned<Layer>> owned;
    std::vector<Layer *> slots;
    std::vector<f32> surface;

    LayerPile(i32 grid_n, i32 grid_m) : surface(static_cast<size_t>(grid_n) * static_cast<size_t>(grid_m)) {
        stack.grid_n = grid_n;
        stack.grid_m = grid_m;
        stack.spacing = 1.0F;
        stack.width = static_cast<f32>(grid_n);
    }
    Layer *add(HeightFunction top) {
        owned.emplace_back(layer_create(stack.grid_n, stack.grid_m, stack.spacing));
        Layer *layer = owned.back().get();
        layer->color[3] = 1.0F;
        for (i32 i = 0; i < stack.grid_n * stack.grid_m; ++i) {
            f32 *below = &surface[static_cast<size_t>(i)];
            layer->bottom[i] = *below;
            layer->top[i] = *below = top(i % stack.grid_n, i / stack.grid_n, *below);
        }
        slots.push_back(layer);
        stack.layers = slots.data();
        stack.layer_count = static_cast<i32>(slots.size());
        return layer;
    }
    std::vector<u8> parts(i32 slot, SlotRun run, SlotRun *source = nullptr) const {
        std::vector<u8> found(surface.size(), 0xFF);
        const SlotRun depends = visible_parts_find(&stack, slot, run, found.data());
        if (source != nullptr) {
            *source = depends;
        }
        return found;
    }
};

static i32 count_parts(const std::vector<u8> &parts, u8 part) {
    i32 count = 0;
    for (const u8 found : parts) {
        count += (found & part) != 0 ? 1 : 0;
    }
    return count;
}

static f32 one_higher(i32, i32, f32 below) {
    return below + 1.0F;
}

static f32 on_the_left(i32 n, i32, f32 below) {
    return n < 4 ? below + 1.0F : below;
}

TEST(VisibleParts, AFilmHidesTheTopUnderIt) {
    LayerPile pile(8, 6);
    pile.add(one_higher);
    pile.add(one_higher);
    const std::vector<u8> lower = pile.parts(0, {0, 1});
    const std::vector<u8> upper = pile.parts(1, {0, 1});
    EXPECT_EQ(count_parts(lower, PART_TOP_A), 7) << "of the row at the cut face nothing goes";
    EXPECT_EQ(count_parts(lower, PART_TOP_B), 7);
    EXPECT_EQ(count_parts(lower, PART_UNDER_A | PART_UNDER_B), 0);
    EXPECT_EQ(lower[8] & PART_TOP_A, 0) << "of the next one all";
    EXPECT_EQ(count_parts(upper, PART_TOP_A), 7 * 5);
    EXPECT_EQ(count_parts(upper, PART_TOP_B), 7 * 5);
    EXPECT_EQ(count_parts(upper, PART_UNDER_A | PART_UNDER_B), 0) << "a level underside is never seen";
    // Points at the edge have other normals, so the quads at the edge are not level: 5 x 3 are left.
    EXPECT_EQ(count_parts(upper, PART_LEVEL), 5 * 3);
}

TEST(VisibleParts, WhereTheFilmEndsTheTopShows) {
    LayerPile pile(8, 6);
    pile.add(one_higher);
    pile.add(on_the_left);
    // Present at the columns 0 to 3, the film's last triangles reach to column 4: four quads a row.
    const std::vector<u8> lower = pile.parts(0, {0, 1});
    const std::vector<u8> upper = pile.parts(1, {0, 1});
    // The row at the cut face keeps its seven. In the others the first three quads go; under the film's end,
    // the fourth, both surfaces are drawn, since at its foot they meet.
    EXPECT_EQ(count_parts(lower, PART_TOP_A), 7 + 4 * 4);
    EXPECT_EQ(count_parts(upper, PART_TOP_A), 4 * 5);
    EXPECT_EQ(lower[8 + 2] & (PART_TOP_A | PART_TOP_B), 0);
    EXPECT_EQ(lower[8 + 3] & (PART_TOP_A | PART_TOP_B), PART_TOP_A | PART_TOP_B);
    EXPECT_EQ(lower[8 + 4] & (PART_TOP_A | PART_TOP_B), PART_TOP_A | PART_TOP_B);
}

TEST(VisibleParts, TwoFilmsHideTogetherWhatNeitherHidesAlone) {
    LayerPile pile(8, 6);
    pile.add(one_higher);
    pile.add(on_the_left);
    pile.add(one_higher);
    // At the foot of the middle one, in the fourth quad of a row, it is 1 thick on the left and absent on the
    // right; the last one lies on both. Only the row at the cut face keeps its parts.
    EXPECT_EQ(count_parts(pile.parts(0, {0, 2}), PART_TOP_A), 7);
    EXPECT_EQ(count_parts(pile.parts(0, {0, 2}), PART_TOP_B), 7);
    EXPECT_EQ(count_parts(pile.parts(1, {0, 2}), PART_TOP_A), 4) << "of the middle one";
    // The underside of the last one steps down there, on the middle one and the first.
    EXPECT_EQ(count_parts(pile.parts(2, {0, 2}), PART_UNDER_A | PART_UNDER_B), 1);
    // Without the middle one there is a hollow: the first one shows in four quads of each of four rows.
    pile.slots[1] = nullptr;
    EXPECT_EQ(count_parts(pile.parts(0, {0, 2}), PART_TOP_A), 7 + 4 * 4);
}

TEST(VisibleParts, ACoverEndsWhereAFilmDoesNotLieOnIt) {
    LayerPile pile(8, 6);
    pile.add(one_higher);
    pile.add(one_higher);
    pile.add(one_higher);
    Layer *middle = pile.slots[1];
    for (i32 i = 0; i < 8 * 6; ++i) {
        middle->bottom[i] = 1.25F;  // it hangs over the first one
    }
    EXPECT_EQ(count_parts(pile.parts(0, {0, 2}), PART_TOP_A), 7 * 5);
    EXPECT_EQ(count_parts(pile.parts(1, {0, 2}), PART_TOP_A), 7);
}

TEST(VisibleParts, AFilmWithoutAThicknessToSpeakOfHidesNothing) {
    LayerPile pile(8, 6);
    pile.add(one_higher);
    pile.add([](i32, i32, f32 below) { return below + 1e-6F; });
    const std::vector<u8> lower = pile.parts(0, {0, 1});
    EXPECT_EQ(count_parts(lower, PART_TOP_A), 7 * 5);
    EXPECT_EQ(count_parts(lower, PART_LEVEL), 0) << "both keep the same triangles";
    EXPECT_EQ(count_parts(pile.parts(1, {0, 1}), PART_LEVEL), 0) << "both keep the same triangles";
}

TEST(VisibleParts, TheWallOfAFilledHoleShowsWhenItsMouldIsGone) {
    LayerPile pile(8, 6);
    pile.add(one_higher);
    pile.add([](i32 n, i32, f32 below) { return n < 4 ? below + 2.0F : below + 1.0F; });
    pile.add([](i32, i32, f32) { return 4.0F; });
    // The underside of the last one steps down between the columns 3 and 4: two triangles a row.
    EXPECT_EQ(count_parts(pile.parts(2, {0, 2}), PART_UNDER_A | PART_UNDER_B), 1) << "at the cut face";
    pile.slots[1] = nullptr;
    const std::vector<u8> parts = pile.parts(2, {0, 2});
    EXPECT_EQ(count_parts(parts, PART_UNDER_A), 5);
    EXPECT_EQ(count_parts(parts, PART_UNDER_B), 5);
    EXPECT_EQ(parts[3] & (PART_UNDER_A | PART_UNDER_B), PART_UNDER_A | PART_UNDER_B);
}

TEST(VisibleParts, OnlyLayersOfTheRunHide) {
    LayerPile pile(8, 6);
    pile.add(one_higher);
    pile.add(one_higher);
    EXPECT_EQ(count_parts(pile.parts(0, {0, 0}), PART_TOP_A), 7 * 5);
    // The other's underside is drawn at the same depth, with triangles of its own.
    EXPECT_EQ(count_parts(pile.parts(0, {0, 0}), PART_LEVEL), 0);
}

TEST(VisibleParts, TellsTheSlotsThatCount) {
    LayerPile pile(8, 6);
    for (i32 i = 0; i < 4; ++i) {
        pile.add(one_higher);
    }
    const struct {
        i32 slot;
        SlotRun run, source;
        const char *what;
    } cases[] = {
        {1, {0, 3}, {1, 2}, "the next one hides the whole top; the underside is level"},
        {3, {0, 3}, {3, I32_MAX}, "what comes on top will count"},
        {1, {0, 2}, {0, I32_MAX}, "a layer outside of the run counts for all"},
    };
    for (const auto &c : cases) {
        SlotRun source = {};
        pile.parts(c.slot, c.run, &source);
        EXPECT_EQ(source.first, c.source.first) << c.what;
        EXPECT_EQ(source.last, c.source.last) << c.what;
    }
}

// A film of one of a few thicknesses, some of them hardly any, gone or filled up in one rectangle.
static void add_random_film(LayerPile *pile, TestRandom *random) {
    Layer *layer = pile->add(one_higher);
    const f32 thicknesses[] = {1.0F, 0.5F, 1e-6F * pile->stack.width, 1e-5F * pile->stack.width, 0.0F};
    const f32 thickness = thicknesses[test_random_i32(random, 0, 4)];
    const i32 n0 = test_random_i32(random, 0, pile->stack.grid_n - 1);
    const i32 m0 = test_random_i32(random, 0, pile->stack.grid_m - 1);
    const i32 n1 = test_random_i32(random, n0, pile->stack.grid_n);
    const i32 m1 = test_random_i32(random, m0, pile->stack.grid_m);
    const f32 inside = test_random_bool(random, 0.5) ? 0.0F : thicknesses[test_random_i32(random, 0, 4)];
    const bool fills = test_random_bool(random, 0.2);
    for (i32 m = 0; m < pile->stack.grid_m; ++m) {
        for (i32 n = 0; n < pile->stack.grid_n; ++n) {
            const i32 i = m * pile->stack.grid_n + n;
            const bool in = n >= n0 && n < n1 && m >= m0 && m < m1;
            const f32 bottom = layer->bottom[i];
            const f32 level = std::ceil(bottom) + 1.0F;
            layer->top[i] = fills ? level : bottom + (in ? inside : thickness);
            if (test_random_bool(random, 0.001)) {
                layer->top[i] = bottom;
            }
            pile->surface[static_cast<size_t>(i)] = layer->top[i];
        }
    }
}

TEST(VisibleParts, AreThoseOfThePlainTwin) {
    TestRandom random = test_random_start(4);
    i64 hidden = 0;
    i64 kept = 0;
    for (i32 i = 0; i < 120; ++i) {
        LayerPile pile(test_random_i32(&random, 2, 150), test_random_i32(&random, 2, 40));
        const i32 count = test_random_i32(&random, 1, 7);
        for (i32 k = 0; k < count; ++k) {
            add_random_film(&pile, &random);
        }
        for (i32 slot = 0; slot < count; ++slot) {
            const SlotRun run = {test_random_i32(&random, 0, slot),
                                 test_random_i32(&random, slot, count - 1)};
            SlotRun source = {};
            const std::vector<u8> found = pile.parts(slot, run, &source);
            std::vector<u8> plain(found.size(), 0xFF);
            const SlotRun plain_source = plain_visible_parts_find(&pile.stack, slot, run, plain.data());
            ASSERT_TRUE(found == plain) << "stack " << i << ", slot " << slot;
            EXPECT_EQ(source.first, plain_source.first);
            EXPECT_EQ(source.last, plain_source.last);
            hidden += count_parts(found, PART_TOP_A) < count_parts(found, 0xFF) ? 1 : 0;
            kept += count_parts(found, PART_LEVEL) > 0 ? 1 : 0;
        }
    }
    EXPECT_GT(hidden, 50) << "stacks in which something is hidden";
    EXPECT_GT(kept, 50) << "and something level";
}

TEST(LayerHides, NeedsAnOpaqueLayerOfThicknessesNotBelowZero) {
    LayerPile pile(4, 3);
    Layer *layer = pile.add(one_higher);
    EXPECT_TRUE(layer_hides(layer));
    layer->color[3] = 0.99F;
    EXPECT_FALSE(layer_hides(layer)) << "translucent";
    layer->color[3] = 1.0F;
    layer->top[7] = layer->bottom[7];
    EXPECT_TRUE(layer_hides(layer)) << "absent at a point";
    layer->top[7] = layer->bottom[7] - 0.5F;
    EXPECT_FALSE(layer_hides(layer)) << "a negative thickness";
    layer->top[7] = std::numeric_limits<f32>::quiet_NaN();
    EXPECT_FALSE(layer_hides(layer)) << "no thickness";
    LayerPile row(4, 1);
    EXPECT_FALSE(layer_hides(row.add(one_higher))) << "a grid without quads";
}
