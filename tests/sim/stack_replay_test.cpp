// Tests of sim/stack_replay.h: steps that run once more leave the heights that the run had, and the run
// stays.
#include "sim/stack_replay.h"

#include <gtest/gtest.h>

#include <vector>

#include "log/log.h"
#include "platform/platform.h"
#include "sim/stack_layers.h"
#include "sim/stack_surface.h"
#include "sim/step_execute.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

static const char *const PROCESS =
    "settings -version 3 -N 200\n"
    "gds -cell TOP\n"
    "location -x 0 -y 0 -dx 25 -dy 6.25\n"
    "deposition -name OX -type ox -thickness 500 -color 10 20 30 100\n"
    "photo -name R1 -mask_id 7 -type 1 -res 0 -thickness 1000\n"
    "etch -targets ox -depth 300\n"
    "dump\n"
    "strip\n"
    "coating -name SOG -type sog -thickness 250 -dop 0.0 -color 10 20 30 100\n"
    "release -targets ox\n";

// What a step leaves: the slots, the heights of their layers, and the surface.
struct Heights {
    std::vector<i32> slots;
    std::vector<f32> bottoms, tops, surface;
    f32 max_height;
};

static Heights heights_of(const Stack *stack) {
    Heights heights = {};
    const i64 count = stack_point_count(stack);
    for (i32 slot = 0; slot < stack->layer_count; ++slot) {
        const Layer *layer = stack->layers[slot];
        if (layer != nullptr) {
            heights.slots.push_back(slot);
            heights.bottoms.insert(heights.bottoms.end(), layer->bottom, layer->bottom + count);
            heights.tops.insert(heights.tops.end(), layer->top, layer->top + count);
        }
    }
    for (i64 point = 0; point < count; ++point) {
        heights.surface.push_back(stack->cells[point].height);
    }
    heights.max_height = stack->max_height;
    return heights;
}

static void expect_same(const Heights &heights, const Heights &expected, i32 step) {
    EXPECT_EQ(heights.slots, expected.slots) << "step " << step;
    EXPECT_TRUE(heights.bottoms == expected.bottoms) << "step " << step;
    EXPECT_TRUE(heights.tops == expected.tops) << "step " << step;
    EXPECT_TRUE(heights.surface == expected.surface) << "step " << step;
    EXPECT_EQ(heights.max_height, expected.max_height) << "step " << step;
}

struct ReplayRun {
    TemporaryFolder folder;
    CurrentFolder current{folder.path};
    const Owned<GdsDatabase> layout = test_layout();
    Owned<Stack> stack;
    std::vector<Heights> after;  // each step

    ReplayRun() {
        layout->unit = 0.125;
        test_cell_rectangle(test_cell(layout.get(), "TOP"), 7, {8, 8, 24, 24});
        test_file_write(L"process.txt", PROCESS);
        stack.reset(stack_create(L"process.txt", layout.get()));
        for (i32 i = 0; i < stack->steps->count; ++i) {
            step_execute(stack.get(), stack->steps->items[i]);
            stack->max_height = stack_largest_height(stack.get());
            stack_drop_empty_layers(stack.get());
            after.push_back(heights_of(stack.get()));
        }
    }
};

TEST(StackReplay, EachStepHasTheHeightsOfTheRun) {
    const ConsoleCapture capture;
    const ReplayRun run;
    ASSERT_EQ(run.after.size(), 8U);
    ASSERT_NE(run.after[1].tops, run.after[3].tops) << "the steps do something";
    const OwnedReplay replay(stack_replay_create(run.stack.get()));
    for (i32 i = 0; i < run.stack->steps->count; ++i) {
        stack_replay_step(replay.get(), i);
        expect_same(heights_of(replay.get()), run.after[static_cast<size_t>(i)], i);
    }
}

TEST(StackReplay, LeavesTheRunTheConsoleAndTheDumpAsTheyWere) {
    const ConsoleCapture capture;
    const ReplayRun run;
    const std::string told = capture.narrow();
    ASSERT_TRUE(platform_file_delete(L"VertexData.txt"));
    for (i32 round = 0; round < 2; ++round) {  // one after the other: what is borrowed is not freed
        const OwnedReplay replay(stack_replay_create(run.stack.get()));
        for (i32 i = 0; i < run.stack->steps->count; ++i) {
            stack_replay_step(replay.get(), i);
        }
    }
    expect_same(heights_of(run.stack.get()), run.after.back(), run.stack->steps->count - 1);
    EXPECT_EQ(capture.narrow(), told);
    EXPECT_FALSE(platform_file_exists(L"VertexData.txt"));
    console_append(L"heard");
    EXPECT_EQ(capture.narrow(), told + "heard") << "the console hears what comes after it";
}
