// Random processes on random small grids, beside a plain twin: every height, every surface record and
// every changed flag the same after every step, bit for bit.
#include "step_twin.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "platform/memory.h"
#include "sim/step_execute.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

static const char *const MATERIALS[4] = {"OX", "NIT", "POLY", "METAL"};
static const i32 KINDS[12] = {STEP_DEPOSITION, STEP_DEPOSITION, STEP_COATING, STEP_PHOTO,
                              STEP_PHOTO,      STEP_ETCH,       STEP_ETCH,    STEP_ETCH,
                              STEP_ETCH,       STEP_STRIP,      STEP_RELEASE, STEP_DEPOSITION};

struct Dice {
    TestRandom random;
    i32 below(i32 limit) { return test_random_i32(&random, 0, limit - 1); }
    // A multiple of 1/16 as often as an arbitrary number, so that equal heights are frequent.
    f32 between(f32 low, f32 high) {
        const f32 value = test_random_f32(&random, low, high);
        return below(2) == 0 ? value : static_cast<f32>(static_cast<i32>(value * 16.0F)) / 16.0F;
    }
    // 0 or 1 as often as something between.
    f32 fraction() { return below(2) == 0 ? static_cast<f32>(below(2)) : between(0.0F, 1.0F); }
};

static OwnedStep random_step(Dice *dice, f32 spacing) {
    OwnedStep step = test_step(KINDS[dice->below(12)], "a step", MATERIALS[dice->below(4)]);
    // Now and then a film whose discs are larger than the grid.
    step->step.thickness = dice->between(0.0F, (dice->below(8) == 0 ? 60.0F : 6.0F) * spacing);
    step->step.step_coverage = dice->fraction();
    step->step.dop = dice->fraction();
    step->step.rr = dice->fraction();
    step->step.mask_id = dice->below(3);
    step->step.one_datatype = dice->below(2) == 0;
    step->step.mask_datatype = dice->below(2);
    step->step.mask_type = dice->below(2);
    step->step.resolution = dice->between(0.0F, 5.0F * spacing);
    step->step.taper = dice->below(3) == 0 ? 90.0F : dice->between(20.0F, 90.0F);
    step->step.iso = dice->fraction();
    step->step.depth = dice->between(0.0F, 8.0F * spacing);
    test_targets(step.get(), {MATERIALS[dice->below(4)], MATERIALS[dice->below(4)], "none"});
    return step;
}

static void random_polygons(Dice *dice, Stack *stack) {
    const f32 wide = static_cast<f32>(stack->grid_n + 2 * stack->margin_cells) * stack->spacing;
    const i32 polygon_count = dice->below(6);
    for (i32 p = 0; p < polygon_count; ++p) {
        const f32 low_x = dice->between(-0.25F, 0.75F) * wide;
        const f32 low_y = dice->between(-0.25F, 0.75F) * wide;
        const f32 size = dice->between(0.05F, 0.8F) * wide;
        FlatPolygon made = {};
        made.point_count = 3 + dice->below(5);
        made.points = memory_new_array<FlatPoint>(made.point_count);
        made.layer = static_cast<u16>(dice->below(3));
        made.datatype = static_cast<u16>(dice->below(2));
        made.x_min = made.y_min = F32_MAX;
        made.x_max = made.y_max = -F32_MAX;
        for (i32 i = 0; i < made.point_count; ++i) {
            const FlatPoint point = {low_x + size * dice->fraction(), low_y + size * dice->fraction()};
            made.points[i] = point;
            made.x_min = std::min(made.x_min, point.x);
            made.y_min = std::min(made.y_min, point.y);
            made.x_max = std::max(made.x_max, point.x);
            made.y_max = std::max(made.y_max, point.y);
        }
        PolygonList *list = stack->polygons;
        array_append(&list->items, &list->count, &list->capacity, made);
    }
}

static ::testing::AssertionResult same_heights(const f32 *made, const std::vector<f32> &twin, i32 grid_n,
                                               const char *what) {
    for (size_t i = 0; i < twin.size(); ++i) {
        if (test_f32_bits(made[i]) != test_f32_bits(twin[i])) {
            const i32 point = static_cast<i32>(i);
            return ::testing::AssertionFailure()
                   << what << " at column " << point % grid_n << ", row " << point / grid_n << " is "
                   << made[i] << " and should be " << twin[i] << " (" << made[i] - twin[i] << " off)";
        }
    }
    return ::testing::AssertionSuccess();
}

static void expect_same(const Stack *stack, const TwinStack &twin) {
    ASSERT_EQ(stack->layer_count, static_cast<i32>(twin.layers.size()));
    for (i32 slot = 0; slot < stack->layer_count; ++slot) {
        const TwinLayer &expected = twin.layers[static_cast<size_t>(slot)];
        const Layer *layer = stack->layers[slot];
        ASSERT_EQ(layer != nullptr, expected.alive) << "slot " << slot;
        if (layer != nullptr) {
            ASSERT_EQ(layer->material_name, expected.material);
            ASSERT_EQ(layer->changed, expected.changed) << "slot " << slot << " " << expected.material;
            ASSERT_TRUE(same_heights(layer->bottom, expected.bottom, stack->grid_n, "bottom"));
            ASSERT_TRUE(same_heights(layer->top, expected.top, stack->grid_n, "top")) << "slot " << slot;
        }
    }
    std::vector<f32> surface;
    std::vector<f32> expected_surface;
    for (size_t i = 0; i < twin.cells.size(); ++i) {
        surface.push_back(stack->cells[i].height);
        expected_surface.push_back(twin.cells[i].height);
        ASSERT_EQ(stack->cells[i].top_layer, twin.cells[i].top_layer) << "surface of point " << i;
    }
    ASSERT_TRUE(same_heights(surface.data(), expected_surface, stack->grid_n, "surface"));
}

// The worker clears the flags once it has drawn a step.
static void clear_changed(Stack *stack, TwinStack *twin) {
    for (i32 slot = 0; slot < stack->layer_count; ++slot) {
        if (stack->layers[slot] != nullptr) {
            stack->layers[slot]->changed = 0;
        }
        twin->layers[static_cast<size_t>(slot)].changed = 0;
    }
}

static void run_random_process(u32 seed) {
    Dice dice = {test_random_start(seed)};
    const i32 grid_n = 2 + dice.below(22);
    const i32 grid_m = 1 + dice.below(17);
    const i32 margin = dice.below(5);
    const f32 spacings[4] = {0.125F, 0.1F, 0.0371F, 1.7F};
    const f32 spacing = spacings[dice.below(4)];
    const Owned<Stack> stack = test_stack(grid_n, grid_m, spacing, margin);
    random_polygons(&dice, stack.get());
    TwinStack twin = twin_create(grid_n, grid_m, margin, spacing, stack->polygons);
    const OwnedStep substrate = test_step(STEP_DEPOSITION, nullptr, "_SUB_");
    substrate->step.thickness = 3.0F * spacing;
    step_execute(stack.get(), &substrate->step);
    twin_execute(&twin, &substrate->step);
    const i32 step_count = 12;
    for (i32 k = 0; k < step_count; ++k) {
        clear_changed(stack.get(), &twin);
        const OwnedStep step = random_step(&dice, spacing);
        step_execute(stack.get(), &step->step);
        twin_execute(&twin, &step->step);
        expect_same(stack.get(), twin);
        if (::testing::Test::HasFatalFailure()) {
            FAIL() << "seed " << seed << ", step " << k << " of kind " << step->step.kind << ", grid "
                   << grid_n << " x " << grid_m << " at " << spacing << ", thickness " << step->step.thickness
                   << ", coverage " << step->step.step_coverage << ", depth " << step->step.depth << ", iso "
                   << step->step.iso;
        }
    }
}

TEST(StepTwin, RandomProcessesGiveTheSameBits) {
    const ConsoleCapture capture;
    for (u32 seed = 1; seed <= 300 && !HasFatalFailure(); ++seed) {
        run_random_process(seed);
    }
}
