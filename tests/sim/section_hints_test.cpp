// Hints that need the layout: about the cell's name, the section's place and masks without polygons.
#include "sim/section_hints.h"

#include <gtest/gtest.h>

#include "platform/memory.h"
#include "process/hints.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

// The hints of a run of 256 grid points (so that the spacing is an exact number) whose process file stands in
// "p.txt", without the folder.
static std::string hints_of(const GdsDatabase *layout, const std::string &cell, const std::string &location,
                            const std::string &steps = "") {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"p.txt");
    test_file_write(
        path, "settings -version 3 -N 256\ngds -cell " + cell + "\nlocation " + location + "\n" + steps);
    const ConsoleCapture capture;
    const Owned<Stack> stack(stack_create(path.c_str(), layout));
    const std::string front = test_utf8(path.substr(0, path.size() - 5));
    std::string text = capture.diagnostics();
    for (size_t at = text.find(front); at != std::string::npos; at = text.find(front)) {
        text.erase(at, front.size());
    }
    return text;
}

static std::string photo(i32 layer) {
    return "photo -name P -mask_id " + std::to_string(layer) + " -type 1 -res 0 -thickness 100\nstrip\n";
}

// TOP covers x 0 to 10, y 0 to 8 um; layer 7 has two squares at its left, layer 9 one at its right, which
// stands in a cell below. OTHER, which TOP does not use, has one of layer 5.
static Owned<GdsDatabase> three_cells() {
    Owned<GdsDatabase> layout = test_layout();
    test_cell(layout.get(), "TOP");
    test_cell(layout.get(), "PART");
    test_cell(layout.get(), "OTHER");
    GdsCell *cells = layout->cells;
    test_cell_rectangle(&cells[0], 7, {1000, 1000, 2000, 2000});
    test_cell_rectangle(&cells[0], 7, {1000, 6000, 2000, 8000});
    test_cell_rectangle(&cells[1], 9, {8000, 1000, 10000, 3000});
    test_cell_rectangle(&cells[2], 5, {0, 0, 1000, 1000});
    GdsSRef reference = {};
    reference.cell = &cells[1];
    reference.mag = 1.0F;
    i32 capacity = 0;
    array_append(&cells[0].srefs, &cells[0].sref_count, &capacity, reference, 1);
    cells[0].sref_capacity = capacity;
    cells[0].bbox = {0, 0, 10000, 8000};
    return layout;
}

TEST(SectionHints, AGoodRunNeedsNone) {
    const Owned<GdsDatabase> layout = three_cells();
    EXPECT_EQ(hints_of(layout.get(), "TOP", "-x 0 -y 0 -dx 10 -dy 4", photo(7) + photo(9)), "");
}

TEST(SectionHints, AMaskLayerThatTheLayoutLacks) {
    const Owned<GdsDatabase> layout = three_cells();
    EXPECT_EQ(
        hints_of(layout.get(), "TOP", "-x 0 -y 0 -dx 10 -dy 4", photo(7) + photo(8)),
        "p.txt:6: layer 8 of -mask_id has no polygon in the layout; there: layer 5 (1 polygon), 7 (2), 9 "
        "(1)\n");
    EXPECT_EQ(
        hints_of(layout.get(), "TOP", "-x 0 -y 0 -dx 10 -dy 4", photo(70000)),
        "p.txt:4: layer 70000 of -mask_id has no polygon in the layout; there: layer 5 (1 polygon), 7 (2), "
        "9 (1)\n");
}

TEST(SectionHints, AMaskLayerThatTheCellLacks) {
    const Owned<GdsDatabase> layout = three_cells();
    EXPECT_EQ(
        hints_of(layout.get(), "TOP", "-x 0 -y 0 -dx 10 -dy 4", photo(5)),
        "p.txt:4: layer 5 of -mask_id has no polygon in the cell; there: layer 7 (2 polygons), 9 (1)\n");
}

TEST(SectionHints, AMaskLayerThatTheSectionLacks) {
    const Owned<GdsDatabase> layout = three_cells();
    // Only the lower square of layer 7 reaches into y 0 to 4.
    EXPECT_EQ(hints_of(layout.get(), "TOP", "-x 0 -y 0 -dx 7 -dy 4", photo(9)),
              "p.txt:4: layer 9 of -mask_id has no polygon in the section; there: layer 7 (1 polygon)\n");
    EXPECT_EQ(hints_of(layout.get(), "TOP", "-x 3 -y 3 -dx 4 -dy 4", photo(9)),
              "p.txt:4: layer 9 of -mask_id has no polygon in the section; there: no polygon at all\n");
    // A margin of 1 um is cut out as well; what lies there only is not in the section.
    EXPECT_EQ(hints_of(layout.get(), "TOP", "-x 3 -y 0 -dx 4.5 -dy 4",
                       "photo -name P -mask_id 9 -type 1 -res 1 -thickness 100\n"),
              "p.txt:4: layer 9 of -mask_id has no polygon in the section; there: no polygon at all\n");
    // 10 um / 256 are 0.039 um; a polygon of 0.03 um is left out.
    test_cell_rectangle(&layout->cells[0], 3, {4000, 1000, 4030, 1030});
    EXPECT_EQ(
        hints_of(layout.get(), "TOP", "-x 0 -y 0 -dx 10 -dy 4", photo(3)),
        "p.txt:4: layer 3 of -mask_id has no polygon in the section that is as wide as the grid's spacing; "
        "there: layer 7 (1 polygon), 9 (1)\n");
}

static std::string photo_of(i32 layer, i32 datatype) {
    return "photo -name P -mask_id " + std::to_string(layer) + " -datatype " + std::to_string(datatype) +
           " -type 1 -res 0 -thickness 100\nstrip\n";
}

// Layer 7 with datatype 20 has a square at the left of TOP, 7 with 44 one at the right and 9 with 44 one in
// OTHER; beside them the squares of datatype 0.
TEST(SectionHints, AMaskDatatypeThatIsNotThere) {
    const Owned<GdsDatabase> layout = three_cells();
    test_cell_rectangle(&layout->cells[0], 7, {0, 0, 1000, 1000}, 20);
    test_cell_rectangle(&layout->cells[0], 7, {8000, 1000, 9000, 2000}, 44);
    test_cell_rectangle(&layout->cells[2], 9, {0, 0, 1000, 1000}, 44);
    const char *place = "-x 0 -y 0 -dx 10 -dy 4";
    EXPECT_EQ(
        hints_of(layout.get(), "TOP", place, photo_of(7, 0) + photo_of(7, 20) + photo_of(7, 44) + photo(7)),
        "");
    EXPECT_EQ(
        hints_of(layout.get(), "TOP", place, photo_of(7, 20) + photo_of(7, 5)),
        "p.txt:6: layer 7 of -mask_id with datatype 5 of -datatype has no polygon in the layout; there: "
        "layer/datatype 5/0 (1 polygon), 7/0 (2), 7/20 (1), 7/44 (1), 9/0 (1), 9/44 (1)\n");
    EXPECT_EQ(hints_of(layout.get(), "TOP", place, photo_of(9, 44)),
              "p.txt:4: layer 9 of -mask_id with datatype 44 of -datatype has no polygon in the cell; there: "
              "layer/datatype 7/0 (2 polygons), 7/20 (1), 7/44 (1), 9/0 (1)\n");
    // Only the lower square of 7/0 and 7/20 reach into x 0 to 7, y 0 to 4.
    EXPECT_EQ(
        hints_of(layout.get(), "TOP", "-x 0 -y 0 -dx 7 -dy 4", photo_of(7, 44) + photo(7)),
        "p.txt:4: layer 7 of -mask_id with datatype 44 of -datatype has no polygon in the section; there: "
        "layer/datatype 7/0 (1 polygon), 7/20 (1)\n");
    // Without the argument the datatypes of a layer are one mask, and counted as one.
    EXPECT_EQ(
        hints_of(layout.get(), "TOP", place, photo(8)),
        "p.txt:4: layer 8 of -mask_id has no polygon in the layout; there: layer 5 (1 polygon), 7 (4), 9 "
        "(2)\n");
}

TEST(SectionHints, TwentyLayersAreListed) {
    const Owned<GdsDatabase> layout = test_layout();
    GdsCell *cell = test_cell(layout.get(), "TOP");
    std::string list;
    for (u16 layer = 1; layer <= 23; ++layer) {
        test_cell_rectangle(cell, layer, {0, 0, 9000, 9000});
        if (layer <= 20) {
            list += layer == 1 ? "layer 1 (1 polygon)" : ", " + std::to_string(layer) + " (1)";
        }
    }
    EXPECT_EQ(hints_of(layout.get(), "TOP", "-x 0 -y 0 -dx 9 -dy 9", photo(99)),
              "p.txt:4: layer 99 of -mask_id has no polygon in the layout; there: " + list + " and 3 more\n");
}

TEST(SectionHints, ASectionOutsideItsCell) {
    const Owned<GdsDatabase> layout = three_cells();
    const std::string cell = " cell \"TOP\" (x 0 to 10, y 0 to 8 um): compare -x, -y, -dx and -dy with it\n";
    struct Case {
        const char *location;
        const char *expected;  // before the words about the cell; empty for no hint
    };
    const Case cases[] = {
        {"-x 0 -y 0 -dx 10 -dy 8", ""},
        {"-x 10 -y 0 -dx 4 -dy 4", "(x 10 to 14, y 0 to 4 um) lies outside"},
        {"-x 0 -y -4 -dx 4 -dy 4", "(x 0 to 4, y -4 to 0 um) lies outside"},
        // 3.765625 um are 120.5 grid points of 1/32 um, rounded up to 121 or 3.78125 um.
        {"-x 0 -y -3.765625 -dx 8 -dy 3.765625", "(x 0 to 8, y -3.76562 to 0.015625 um) lies outside"},
        {"-x 1000 -y 1000 -dx 4 -dy 4", "(x 1000 to 1004, y 1000 to 1004 um) lies outside"},
        // Three quarters of the width inside are enough, 6 of 8, and of the depth 2 of 4.
        {"-x 4 -y 0 -dx 8 -dy 4", ""},
        {"-x 4.5 -y 0 -dx 8 -dy 4", "(x 4.5 to 12.5, y 0 to 4 um) reaches far beyond"},
        {"-x -2 -y 0 -dx 8 -dy 4", ""},
        {"-x -2.5 -y 0 -dx 8 -dy 4", "(x -2.5 to 5.5, y 0 to 4 um) reaches far beyond"},
        {"-x 0 -y 6 -dx 8 -dy 4", ""},
        {"-x 0 -y 6.5 -dx 8 -dy 4", "(x 0 to 8, y 6.5 to 10.5 um) reaches far beyond"},
        {"-x 0 -y 0 -dx 4000 -dy 4000", "(x 0 to 4000, y 0 to 4000 um) reaches far beyond"},
    };
    for (const Case &c : cases) {
        const std::string expected = c.expected;
        EXPECT_EQ(hints_of(layout.get(), "TOP", c.location),
                  expected.empty() ? "" : "p.txt:3: the section " + expected + cell)
            << c.location;
    }
    // Masks are not spoken of where nothing can lie, but for layers that are nowhere.
    EXPECT_EQ(hints_of(layout.get(), "TOP", "-x 10 -y 0 -dx 4 -dy 4", photo(7)),
              "p.txt:3: the section (x 10 to 14, y 0 to 4 um) lies outside" + cell);
}

TEST(SectionHints, ACellWithoutPolygons) {
    const Owned<GdsDatabase> layout = three_cells();
    test_cell(layout.get(), "EMPTY");
    const std::string empty = "p.txt:2: cell \"EMPTY\" has no polygons, of which masks could be made\n";
    EXPECT_EQ(hints_of(layout.get(), "EMPTY", "-x 0 -y 0 -dx 4 -dy 4"), empty)
        << "nothing is said of where it lies";
    EXPECT_EQ(hints_of(layout.get(), "EMPTY", "-x 0 -y 0 -dx 4 -dy 4", photo(7)),
              empty + "p.txt:4: layer 7 of -mask_id has no polygon in the cell; there: no polygon at all\n");
    // A polygon without an extent is one all the same.
    test_cell_rectangle(&layout->cells[3], 7, {0, 0, 0, 0});
    EXPECT_NE(hints_of(layout.get(), "EMPTY", "-x 0 -y 0 -dx 4 -dy 4").find("lies outside"),
              std::string::npos);
}

TEST(SectionHints, ACellNameThatNearlyExists) {
    const Owned<GdsDatabase> layout = three_cells();
    const char *place = "-x 0 -y 0 -dx 8 -dy 4";
    EXPECT_EQ(hints_of(layout.get(), "top", place),
              "p.txt:2: there is no cell \"top\": did you mean \"TOP\"?\n");
    EXPECT_EQ(hints_of(layout.get(), "OTHRE", place),
              "p.txt:2: there is no cell \"OTHRE\": did you mean \"OTHER\"?\n");
    EXPECT_EQ(hints_of(layout.get(), "INVERTER", place), "");
    EXPECT_EQ(hints_of(nullptr, "top", place), "");
}

TEST(SectionHints, AreBounded) {
    const Owned<GdsDatabase> layout = three_cells();
    std::string steps;
    for (i32 i = 0; i < 60; ++i) {
        steps += photo(8);
    }
    std::string text = hints_of(layout.get(), "TOP", "-x 0 -y 0 -dx 8 -dy 4", steps);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), HINTS_MOST + 1) << text;
    EXPECT_NE(text.find("p.txt: and 10 more\n"), std::string::npos) << text;
}

TEST(SectionHints, CellsThatReferToEachOtherAreCountedOnce) {
    const Owned<GdsDatabase> layout = three_cells();
    GdsCell *cells = layout->cells;
    GdsARef back = {};
    back.cell = &cells[0];
    back.mag = 1.0F;
    back.cols = back.rows = 1;
    i32 capacity = 0;
    array_append(&cells[1].arefs, &cells[1].aref_count, &capacity, back, 1);
    cells[1].aref_capacity = capacity;
    EXPECT_EQ(
        hints_of(layout.get(), "TOP", "-x 0 -y 0 -dx 10 -dy 4", photo(5)),
        "p.txt:4: layer 5 of -mask_id has no polygon in the cell; there: layer 7 (2 polygons), 9 (1)\n");
}
