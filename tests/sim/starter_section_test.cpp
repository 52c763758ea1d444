#include "sim/starter_section.h"

#include <gtest/gtest.h>

#include "gds/gds_cell_pairs.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

// The section for a cell; the figures are those of `location`.
struct Chosen {
    StarterSection section = {};
    std::string figures;

    explicit Chosen(const GdsDatabase *layout, GdsCell *cell) {
        GdsCellPairs pairs = {};
        const Owned<GdsCellPairs> owner(&pairs);
        EXPECT_EQ(gds_cell_pairs_count(layout, cell, &pairs), GDS_CELL_PAIRS_DONE);
        const ConsoleCapture capture;
        EXPECT_TRUE(starter_section_choose(layout, cell, &pairs.lists[cell - layout->cells], &section));
        figures = std::string(section.x.text) + " " + section.y.text + " " + section.width.text + " " +
                  section.depth.text;
    }
    ~Chosen() { starter_section_free(&section); }
};

// Squares of half the pitch, columns x rows of them from the origin.
static void add_squares(GdsCell *cell, u16 layer, i32 pitch, i32 columns, i32 rows, Point origin = {0, 0}) {
    for (i32 i = 0; i < columns * rows; ++i) {
        const i32 x = origin.x + i % columns * pitch;
        const i32 y = origin.y + i / columns * pitch;
        test_cell_rectangle(cell, layer, {x, y, x + pitch / 2, y + pitch / 2});
    }
}

TEST(StarterSection, IsAsWideAsTheCellAndLiesInItsMiddle) {
    struct Case {
        Box box;
        const char *figures;
    };
    // Units of 1 nm. The depth is 0.4 of the width, or the height where that is less, and a quarter at least.
    const Case cases[] = {
        {{1000, 1000, 11000, 11000}, "1 4 10 4"},
        {{0, 0, 10000, 3000}, "0 0 10 3"},
        {{0, 0, 10000, 1000}, "3 0 4 1"},  // 4 x 1 high
        {{-2000, 0, 0, 9000}, "-2 4.1 2 0.8"},
        {{0, 0, 12345, 12345},
         "0.02 3.71 12.3 4.92"},  // three figures; half of 12.345 less half of 12.3 is 0.0225
    };
    for (const Case &c : cases) {
        const Owned<GdsDatabase> layout = test_layout();
        GdsCell *cell = test_cell(layout.get(), "TOP");
        test_cell_rectangle(cell, 3, c.box, 8);
        const Chosen chosen(layout.get(), cell);
        EXPECT_EQ(chosen.figures, c.figures);
        ASSERT_EQ(chosen.section.pair_count, 1) << c.figures;
        EXPECT_EQ(chosen.section.pairs[0].layer, 3);
        EXPECT_EQ(chosen.section.pairs[0].datatype, 8);
        EXPECT_EQ(chosen.section.pairs[0].count, 1);
        EXPECT_NEAR(chosen.section.pairs[0].share, 1.0, 0.02) << c.figures;
        EXPECT_FALSE(chosen.section.moved);
    }
}

// 200 x 200 squares 1 um apart: 200 um hold 40,000 / 0.4. Halved to 100, 50 and 25 um: 25 x 10 squares are
// few enough.
TEST(StarterSection, IsHalvedUntilPolygonsCanBeToldApart) {
    const Owned<GdsDatabase> layout = test_layout();
    GdsCell *cell = test_cell(layout.get(), "TOP");
    add_squares(cell, 1, 1000, 200, 200);
    const Chosen chosen(layout.get(), cell);
    // 199.5 um / 8 is 24.9375, in three figures 24.9; its depth 9.96, about (99.75, 99.75).
    EXPECT_EQ(chosen.figures, "87.3 94.77 24.9 9.96");
    ASSERT_EQ(chosen.section.pair_count, 1);
    EXPECT_GE(chosen.section.pairs[0].count, 24 * 9);
    EXPECT_LE(chosen.section.pairs[0].count, 26 * 11);
    EXPECT_NEAR(chosen.section.pairs[0].share, 0.25, 0.03) << "a square fills a quarter of its pitch";
}

// Two bars around a large cell, with nothing in its middle but one square, and a field of three layers of
// squares at its lower left, x and y from 50 to 169 um.
TEST(StarterSection, MovesToWhereThereIsSomethingToSee) {
    const Owned<GdsDatabase> layout = test_layout();
    GdsCell *cell = test_cell(layout.get(), "TOP");
    test_cell_rectangle(cell, 9, {0, 0, 1000000, 1000});
    test_cell_rectangle(cell, 9, {0, 999000, 1000000, 1000000});
    test_cell_rectangle(cell, 8, {450000, 450000, 550000, 550000});
    for (u16 layer = 1; layer <= 3; ++layer) {
        add_squares(cell, layer, 2000, 60, 60, {50000, 50000});
    }
    const Chosen chosen(layout.get(), cell);
    EXPECT_TRUE(chosen.section.moved);
    EXPECT_GE(chosen.section.pair_count, 3);
    const f64 x = std::stod(chosen.section.x.text);
    const f64 y = std::stod(chosen.section.y.text);
    EXPECT_TRUE(x + chosen.section.width_um > 50.0 && x < 169.0) << chosen.figures;
    EXPECT_TRUE(y + std::stod(chosen.section.depth.text) > 50.0 && y < 169.0) << chosen.figures;
}

// What passes the 32 bits of a layout's distances, or is too much to be cut out, ends all the same.
TEST(StarterSection, EndsWithCellsOfAnySize) {
    const Owned<GdsDatabase> layout = test_layout();
    GdsCell *cell = test_cell(layout.get(), "TOP");
    const Chosen none(layout.get(), cell);
    EXPECT_EQ(none.figures, "0 0 1 0.25");
    EXPECT_EQ(none.section.pair_count, 0);
    test_cell_rectangle(cell, 1, {0, 0, 5000, 0});
    const Chosen line(layout.get(), cell);
    EXPECT_EQ(line.figures, "0 0 1 0.25") << "no area";
    test_cell_rectangle(cell, 1, {0, 0, 1, 1});
    const Chosen point(layout.get(), cell);
    EXPECT_EQ(point.section.width_um, 0.004) << "four times the height of 1 nm";
    test_cell_rectangle(cell, 1, {I32_MIN, I32_MIN, I32_MAX, I32_MAX});
    const Chosen all(layout.get(), cell);
    EXPECT_GT(all.section.width_um, 0.0);
}
