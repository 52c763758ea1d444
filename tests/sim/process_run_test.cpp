// A whole process from its file to the dump, at the smallest grid, with heights worked out by hand.
#include <gtest/gtest.h>

#include <cstdio>

#include "sim/step_execute.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

// Spacing 25 / 200 = 0.125 um and 50 rows; one grid point of margin. The layout's unit is 0.125 um,
// so that a unit is a grid point: the corner of the margin lies at (-1, -1), and the square from 8
// to 24 covers the columns and rows 8 to 23.
static const char *const PROCESS =
    "settings -version 3 -N 200\n"
    "gds -cell TOP\n"
    "location -x 0 -y 0 -dx 25 -dy 6.25\n"
    "deposition -name OX -type ox -thickness 500 -color 10 20 30 100\n"
    "photo -name R1 -mask_id 7 -type 1 -res 0 -thickness 1000\n"
    "etch -targets ox -depth 300\n"
    "strip\n"
    "coating -name SOG -type sog -thickness 250 -dop 0.0 -color 10 20 30 100\n"
    "release -targets ox\n"
    "dump\n";

static const f32 ETCHED = 1.75F - 0.3F;

struct FileRun {
    TemporaryFolder folder;
    CurrentFolder current{folder.path};
    const Owned<GdsDatabase> layout = test_layout();
    Owned<Stack> stack;
    FileRun() {
        layout->unit = 0.125;
        test_cell_rectangle(test_cell(layout.get(), "TOP"), 7, {8, 8, 24, 24});
        test_file_write(L"process.txt", PROCESS);
        stack.reset(stack_create(L"process.txt", layout.get()));
    }
    void execute(i32 index) { step_execute(stack.get(), stack->steps->items[index]); }
};

static bool over_square(i32 n, i32 m) {
    return n >= 8 && n <= 23 && m >= 8 && m <= 23;
}

// Expects a surface over the square and another elsewhere.
static void expect_surface(const Stack *stack, f32 over, f32 elsewhere, i32 slot_over, i32 slot_elsewhere) {
    for (i32 m = 0; m < stack->grid_m; ++m) {
        for (i32 n = 0; n < stack->grid_n; ++n) {
            const GridCell *cell = &stack->cells[test_point(stack, n, m)];
            const bool inside = over_square(n, m);
            ASSERT_EQ(cell->height, inside ? over : elsewhere) << "column " << n << ", row " << m;
            ASSERT_EQ(cell->top_layer, inside ? slot_over : slot_elsewhere)
                << "column " << n << ", row " << m;
        }
    }
}

TEST(ProcessRun, EachStepLeavesTheSurfaceWorkedOutByHand) {
    const ConsoleCapture capture;
    FileRun run;
    ASSERT_NE(run.stack, nullptr) << capture.narrow();
    ASSERT_EQ(run.stack->steps->count, 8);
    ASSERT_EQ(run.stack->grid_m, 50);
    const size_t said = capture.narrow().size();
    run.execute(0);
    // The substrate is 5 % of the width.
    expect_surface(run.stack.get(), 1.25F, 1.25F, 1, 1);
    run.execute(1);
    expect_surface(run.stack.get(), 1.75F, 1.75F, 2, 2);
    run.execute(2);
    expect_surface(run.stack.get(), 2.75F, 1.75F, 3, 2);
    run.execute(3);
    expect_surface(run.stack.get(), 2.75F - 0.3F * 0.5F, ETCHED, 2, 1);
    run.execute(4);
    expect_surface(run.stack.get(), 1.75F, ETCHED, 1, 1);
    run.execute(5);
    expect_surface(run.stack.get(), 1.75F + 0.25F, ETCHED + 0.25F, 4, 4);
    run.execute(6);
    expect_surface(run.stack.get(), 1.75F + 0.25F, ETCHED + 0.25F, 3, 3);
    EXPECT_EQ(capture.narrow().substr(said),
              "Executing OX deposition ... \r\nExecuting R1 photo ... \r\nExecuting etching of ox ... \r\n"
              "Executing photoresist strip ... \r\nExecuting SOG coating ... \r\n"
              "Executing etching of ox ... \r\n");
}

static std::string dump_layer(i32 n, i32 m, i32 slot, f32 bottom, f32 top) {
    char text[128];
    const f32 thickness = top - bottom;
    std::snprintf(text, sizeof(text), "M: %d\tN: %d\tL: %d\tBOT: %f\tTOP: %f\tTHI: %.10f\n", m, n, slot,
                  static_cast<f64>(bottom), static_cast<f64>(top), static_cast<f64>(thickness));
    return text;
}

TEST(ProcessRun, TheDumpShowsEveryLayerThatIsLeft) {
    const ConsoleCapture capture;
    FileRun run;
    ASSERT_NE(run.stack, nullptr) << capture.narrow();
    for (i32 i = 0; i < run.stack->steps->count; ++i) {
        run.execute(i);
    }
    std::string expected;
    for (i32 n = 0; n < 200; n += 20) {
        for (i32 m = 0; m < 50; ++m) {
            const f32 ox = over_square(n, m) ? 1.75F : ETCHED;
            const f32 sog = ox + 0.25F;
            char head[96];
            std::snprintf(head, sizeof(head), "\nTOPLAYER: 3\tHEIGHT: %.10f\n", static_cast<f64>(sog));
            expected += head;
            expected += dump_layer(n, m, 0, 0.0F, 1.25F);
            expected += dump_layer(n, m, 1, 1.25F, 1.25F);  // released
            expected += dump_layer(n, m, 3, ox, sog);       // slot 2 was the resist
            expected += "\n";
        }
        expected += "\n\n";
    }
    EXPECT_EQ(test_text_read(L"VertexData.txt"), expected);
}
