// stack_create from process files and layouts that the tests make.
#include "sim/stack_setup.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <limits>

#include "platform/memory.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

// A process file in a folder of its own.
struct ProcessFile {
    TemporaryFolder folder;
    std::wstring path = folder.file(L"process.txt");
    explicit ProcessFile(const std::string &location, const std::string &cell = "TOP",
                         const std::string &steps = "") {
        test_file_write(
            path, "settings -version 3 -N 200\ngds -cell " + cell + "\nlocation " + location + "\n" + steps);
    }
    Owned<Stack> create(const GdsDatabase *layout) const {
        return Owned<Stack>(stack_create(path.c_str(), layout));
    }
    std::string shown_path() const { return test_utf8(path); }
    std::string read_text() const {
        return "Successfully read process file \"" + shown_path() + "\"\r\n\r\nExtracting polygons ...\r\n";
    }
};

static std::string section_text(const std::string &cell, const std::string &place, const std::string &grid,
                                const std::string &spacing) {
    return "GDS cell " + cell + " at (" + place + ")\r\nGrid size: " + grid + "\r\nGrid spacing: " + spacing +
           " um\r\nGDS cell: " + cell + "\r\n\r\n";
}

// One square of 2 um at (1, 1) um in the cell TOP.
static Owned<GdsDatabase> square_layout() {
    Owned<GdsDatabase> layout = test_layout();
    test_cell_rectangle(test_cell(layout.get(), "TOP"), 7, {1000, 1000, 3000, 3000});
    return layout;
}

TEST(StackCreate, TellsWhatItFindsAndReturnsAStackReadyForSteps) {
    const Owned<GdsDatabase> layout = square_layout();
    const ProcessFile file("-x 0.5 -y 0.25 -dx 20 -dy 5");
    const ConsoleCapture capture;
    const Owned<Stack> stack = file.create(layout.get());
    ASSERT_NE(stack, nullptr);
    EXPECT_EQ(capture.narrow(), file.read_text() + "Found 1 polygons with smallest size 2.000 um\r\n\r\n" +
                                    section_text("TOP", "0.500 um, 0.250 um", "200 x 50", "0.100"));
    EXPECT_EQ(stack->grid_n, 200);
    EXPECT_EQ(stack->grid_m, 50);
    EXPECT_EQ(stack->spacing, 0.1F);
    EXPECT_EQ(stack->depth, 50.0F * 0.1F);
    EXPECT_EQ(stack->margin_cells, 1) << "the bias of 2^-126 takes one grid point";
    // 202 x 52 points with the margin.
    EXPECT_EQ(stack->offset_count, 403 * 103);
    EXPECT_EQ(stack->layer_count, 0);
    EXPECT_EQ(stack->max_height, 0.0F);
    ASSERT_EQ(stack->steps->count, 1);
    EXPECT_EQ(stack->steps->items[0]->thickness, 0.05F * 20.0F);
}

TEST(StackCreate, PolygonsAreRelativeToTheCornerOfTheMargin) {
    const Owned<GdsDatabase> layout = square_layout();
    const ProcessFile file("-x 0.5 -y 0.25 -dx 20 -dy 5");
    const ConsoleCapture capture;
    const Owned<Stack> stack = file.create(layout.get());
    ASSERT_NE(stack, nullptr);
    ASSERT_EQ(stack->polygons->count, 1);
    // The corner lies at (0.4, 0.15) um. In f32 (0.5 - 0.1) / 0.001 is 400 and (0.25 - 0.1) / 0.001
    // either 149.99999 or 150; both from first principles here.
    const f32 unit = 0.001F;
    const f32 corner_x = (0.5F - 0.1F) / unit;
    const f32 corner_y = (0.25F - 0.1F) / unit;
    const FlatPolygon *square = &stack->polygons->items[0];
    EXPECT_EQ(square->layer, 7);
    EXPECT_EQ(square->point_count, 5);
    EXPECT_EQ(square->x_min, static_cast<f32>(1000 - static_cast<i32>(corner_x)) * unit);
    EXPECT_EQ(square->y_min, static_cast<f32>(1000 - static_cast<i32>(corner_y)) * unit);
    EXPECT_EQ(square->x_max, static_cast<f32>(3000 - static_cast<i32>(corner_x)) * unit);
    EXPECT_EQ(square->y_max, static_cast<f32>(3000 - static_cast<i32>(corner_y)) * unit);
}

TEST(StackCreate, PhotoResolutionWidensTheMargin) {
    const Owned<GdsDatabase> layout = square_layout();
    const ProcessFile file("-x 0 -y 0 -dx 20 -dy 5", "TOP",
                           "photo -name R -mask_id 7 -type 1 -res 0.35 -thickness 500\nstrip\n");
    const ConsoleCapture capture;
    const Owned<Stack> stack = file.create(layout.get());
    ASSERT_NE(stack, nullptr);
    EXPECT_EQ(stack->margin_cells, 4) << "0.35 um at 0.1 um";
    EXPECT_EQ(stack->offset_count, (2 * 208 - 1) * (2 * 58 - 1));
}

TEST(StackCreate, SmallPolygonsAreCountedAndTheWarningNamesTheSmallestSize) {
    const Owned<GdsDatabase> layout = square_layout();
    GdsCell *cell = &layout->cells[0];
    test_cell_rectangle(cell, 7, {5000, 1000, 5099, 3000});  // 0.099 um, below the spacing of 0.1 um
    test_cell_rectangle(cell, 7, {6000, 1000, 6020, 1010});  // 0.010 um
    test_cell_rectangle(cell, 7, {7000, 1000, 7100, 1100});  // 0.1 um is not below it
    const ProcessFile file("-x 0 -y 0 -dx 20 -dy 5");
    const ConsoleCapture capture;
    const Owned<Stack> stack = file.create(layout.get());
    ASSERT_NE(stack, nullptr);
    EXPECT_EQ(capture.narrow(), file.read_text() +
                                    "Found 2 polygons with smallest size 0.010 um\r\n\r\n"
                                    "WARNING: skipped 2 polygons < 0.010 micron\r\n\r\n" +
                                    section_text("TOP", "0.000 um, 0.000 um", "200 x 50", "0.100"));
    EXPECT_EQ(stack->polygons->skipped, 2);
    EXPECT_EQ(stack->polygons->smallest_size, static_cast<f32>(10.0 * 0.001));
}

TEST(StackCreate, WithoutPolygonsTheSmallestSizeIsTheStartValue) {
    const Owned<GdsDatabase> layout = square_layout();
    const ProcessFile file("-x 100 -y 100 -dx 20 -dy 5");
    const ConsoleCapture capture;
    const Owned<Stack> stack = file.create(layout.get());
    ASSERT_NE(stack, nullptr);
    // 2^63 - 1 units of 1 nm: in double 9223372036854775808 * 0.001, narrowed to f32.
    char size[64];
    const f32 smallest = static_cast<f32>(9223372036854775807.0 * 0.001);
    std::snprintf(size, sizeof(size), "%.3f", static_cast<f64>(smallest));
    EXPECT_EQ(capture.narrow(), file.read_text() + "Found 0 polygons with smallest size " + size +
                                    " um\r\n\r\n" +
                                    section_text("TOP", "100.000 um, 100.000 um", "200 x 50", "0.100"));
}

TEST(StackCreate, GridSizeShowsTheRowsRoundedUp) {
    const Owned<GdsDatabase> layout = square_layout();
    const ProcessFile file("-x 0 -y 0 -dx 20 -dy 5.05");
    const ConsoleCapture capture;
    const Owned<Stack> stack = file.create(layout.get());
    ASSERT_NE(stack, nullptr);
    EXPECT_EQ(stack->grid_m, 51);
    EXPECT_NE(capture.narrow().find("Grid size: 200 x 51\r\n"), std::string::npos);
}

TEST(StackCreate, CellNamesAreComparedWholeAndByCase) {
    struct Case {
        const char *name;
        bool found;
    };
    const Case cases[] = {{"Inv", true}, {"inv", false}, {"INV", false}, {"In", false}, {"Inv1", false}};
    for (const Case &test : cases) {
        const Owned<GdsDatabase> layout = test_layout();
        test_cell(layout.get(), nullptr);
        test_cell(layout.get(), "Inv2");
        test_cell(layout.get(), "Inv");
        const ProcessFile file("-x 0 -y 0 -dx 20 -dy 5", test.name);
        const ConsoleCapture capture;
        const Owned<Stack> stack = file.create(layout.get());
        EXPECT_EQ(stack != nullptr, test.found) << test.name;
        if (!test.found) {
            EXPECT_EQ(capture.narrow(), file.read_text() + "ERROR: The cell name " + test.name +
                                            " specified in the process file was not found in the GDS "
                                            "database\r\n\r\n");
        }
    }
}

TEST(StackCreate, TheFirstOfTwoEqualNamesIsTaken) {
    const Owned<GdsDatabase> layout = square_layout();
    GdsCell *second = test_cell(layout.get(), "TOP");
    test_cell_rectangle(second, 1, {0, 0, 5000, 5000});
    test_cell_rectangle(second, 2, {0, 0, 5000, 5000});
    const ProcessFile file("-x 0 -y 0 -dx 20 -dy 5");
    const ConsoleCapture capture;
    const Owned<Stack> stack = file.create(layout.get());
    ASSERT_NE(stack, nullptr);
    ASSERT_EQ(stack->polygons->count, 1);
    EXPECT_EQ(stack->polygons->items[0].layer, 7);
}

TEST(StackCreate, WithoutALayoutOrItsUnitExtractionFails) {
    const ProcessFile file("-x 0 -y 0 -dx 20 -dy 5");
    const Owned<GdsDatabase> unitless = square_layout();
    unitless->unit = 0.0;
    const Owned<GdsDatabase> hair = square_layout();
    hair->unit = 1e-60;  // 0 in f32
    for (const GdsDatabase *layout :
         {static_cast<const GdsDatabase *>(nullptr), static_cast<const GdsDatabase *>(unitless.get()),
          static_cast<const GdsDatabase *>(hair.get())}) {
        const ConsoleCapture capture;
        EXPECT_EQ(file.create(layout), nullptr);
        EXPECT_EQ(capture.narrow(), file.read_text() + "ERROR: Unknown error extracting polygons\r\n\r\n");
    }
}

TEST(StackCreate, AFaultyProcessFileEndsTheRunBeforeTheLayoutIsLookedAt) {
    const ProcessFile file("-x 0 -y 0 -dx -20 -dy 5");
    const ConsoleCapture capture;
    EXPECT_EQ(file.create(nullptr), nullptr);
    const std::string end =
        "Opening process file " + file.shown_path() + " failed with error(s) given above\r\n\r\n";
    const std::string text = capture.narrow();
    EXPECT_NE(text.find("Invalid -dx argument\r\n"), std::string::npos) << text;
    ASSERT_GE(text.size(), end.size());
    EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

TEST(StackCreate, AMissingProcessFileEndsTheRun) {
    const Owned<GdsDatabase> layout = square_layout();
    ProcessFile file("-x 0 -y 0 -dx 20 -dy 5");
    file.path += L".missing";
    const ConsoleCapture capture;
    EXPECT_EQ(file.create(layout.get()), nullptr);
    EXPECT_EQ(capture.narrow(), "Failed to open process file: " + file.shown_path() +
                                    "\r\nOpening process file " + file.shown_path() +
                                    " failed with error(s) given above\r\n\r\n");
}

TEST(StackCreate, ASectionThatGivesNoGridIsRefusedAfterTheProcessFile) {
    const Owned<GdsDatabase> layout = square_layout();
    struct Case {
        const char *location;
        const char *section;
    };
    // clang-format off
    const Case cases[] = {
        {"-x 0 -y 0 -dx nan -dy 5", "nan um x 5 um"},
        {"-x 0 -y 0 -dx inf -dy 5", "inf um x inf um"},
        {"-x 0 -y 0 -dx 20 -dy nan", "20 um x nan um"},
    };
    // clang-format on
    for (const Case &test : cases) {
        const ProcessFile file(test.location);
        const i64 before = memory_live_blocks();
        const ConsoleCapture capture;
        EXPECT_EQ(file.create(layout.get()), nullptr);
        EXPECT_EQ(capture.narrow(), "Successfully read process file \"" + file.shown_path() +
                                        "\"\r\n\r\nERROR: A cross section of " + test.section +
                                        " can not be divided into a grid\r\n\r\n");
        EXPECT_EQ(memory_live_blocks(), before) << "the stack is freed";
    }
}

TEST(StackCreate, UnusualButFiniteSectionsRun) {
    const Owned<GdsDatabase> layout = square_layout();
    for (const char *location :
         {"-x nan -y 0 -dx 20 -dy 5", "-x inf -y inf -dx 20 -dy 5", "-x 1e30 -y -1e30 -dx 20 -dy 5",
          "-x 0 -y 0 -dx 1e30 -dy 1e30", "-x 0 -y 0 -dx 20 -dy inf", "-x 0 -y 0 -dx 1e-30 -dy 1e-30"}) {
        const ProcessFile file(location);
        const ConsoleCapture capture;
        const Owned<Stack> stack = file.create(layout.get());
        ASSERT_NE(stack, nullptr) << location << "\n" << capture.narrow();
        EXPECT_LE(stack->grid_m, 201) << location;
    }
}

TEST(StackFree, ReturnsEveryBlockAndTakesNull) {
    const Owned<GdsDatabase> layout = square_layout();
    const ProcessFile file("-x 0 -y 0 -dx 20 -dy 5", "TOP",
                           "deposition -name OX -type ox -thickness 100 -color 1 2 3 100\n"
                           "etch -targets ox -depth 50\n");
    const ConsoleCapture capture;
    const i64 before = memory_live_blocks();
    Owned<Stack> stack = file.create(layout.get());
    ASSERT_NE(stack, nullptr);
    test_layer(stack.get(), "OX", 0.0F, 1.0F);
    test_layer(stack.get(), "_PR_", 1.0F, 2.0F);
    test_layer_remove(stack.get(), 0);
    stack.reset();
    stack_free(nullptr);
    EXPECT_EQ(memory_live_blocks(), before);
}
