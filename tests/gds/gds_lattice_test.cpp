#include "gds/gds_lattice.h"

#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "tests/gds/gds_bytes.h"

// 3 columns 100 apart and 2 rows 200 apart, the first element at (x, y), in a cell placed at `origin`.
static LatticeOrigins origins_of(Point first, Point origin) {
    GdsARef aref = {};
    aref.p1 = first;
    aref.p2 = {first.x + 300, first.y};
    aref.p3 = {first.x, first.y + 400};
    aref.cols = 3;
    aref.rows = 2;
    const PointTurn turn = point_turn(0.0, 1.0, false);
    const Lattice lattice = lattice_create(&aref, &turn, origin);
    return lattice_origins(&lattice, {0, 3, 0, 2});
}

// The box around elements of 10 x 20.
static Box box_of(const LatticeOrigins &origins) {
    const PointTurn turn = point_turn(0.0, 1.0, false);
    const BoxCorners corners = turn_box(&turn, {0, 0, 10, 20});
    return lattice_box(&origins, &corners);
}

// I32_MAX is 2147483647. The elements lie 0, 100 and 200 to the right of the first one and 0 and 200 above.
TEST(LatticeOrigins, AreKnownWhereAllElementsWrapAlike) {
    struct Case {
        const char *name;
        Point first, origin;
        Range x, y;
        bool known;
        Box box;
    };
    const Case cases[] = {
        {"none wraps", {0, 0}, {1000, -50}, {1000, 1200}, {-50, 150}, true, {1000, -50, 1210, 170}},
        // 2147483737 to 2147483937, less 2^32.
        {"all wrap across",
         {100, 0},
         {2147483637, 0},
         {-2147483559, -2147483359},
         {0, 200},
         true,
         {-2147483559, 0, -2147483349, 220}},
        // -2147483940 and -2147483740, and 2^32 more. The boxes of the upper row reach to 2147483576.
        {"all wrap down",
         {0, -300},
         {0, -2147483640},
         {0, 200},
         {2147483356, 2147483556},
         true,
         {0, 2147483356, 210, 2147483576}},
        {"some wrap across",
         {0, 0},
         {2147483637, 0},
         {2147483637, 2147483837},
         {0, 200},
         false,
         {I32_MIN, 0, I32_MAX, 220}},
        {"some wrap up",
         {0, 0},
         {0, 2147483600},
         {0, 200},
         {2147483600, 2147483800},
         false,
         {0, I32_MIN, 210, I32_MAX}},
        // Nothing is moved where one of the two is not known.
        {"all across, some up",
         {100, 0},
         {2147483637, 2147483600},
         {2147483737, 2147483937},
         {2147483600, 2147483800},
         false,
         {-2147483559, I32_MIN, -2147483349, I32_MAX}},
    };
    for (const Case &c : cases) {
        const LatticeOrigins origins = origins_of(c.first, c.origin);
        EXPECT_EQ(origins.known, c.known) << c.name;
        EXPECT_EQ(origins.x.low, c.x.low) << c.name;
        EXPECT_EQ(origins.x.high, c.x.high) << c.name;
        EXPECT_EQ(origins.y.low, c.y.low) << c.name;
        EXPECT_EQ(origins.y.high, c.y.high) << c.name;
        EXPECT_EQ(box_of(origins), c.box) << c.name;
    }
}

// Every element of an array of 3 x 2 lies within the bounds, however it is turned.
TEST(LatticeOrigins, BoundEveryElement) {
    struct Turn {
        f64 angle, mag;
        bool reflected;
    };
    const f64 infinite = HUGE_VAL;
    const Turn turns[] = {{0.0, 1.0, false},      {0.5, 1.0, true},   {1.6, 0.5, false},
                          {-2.5, 3.0, true},      {3.2, -1.0, false}, {0.5, infinite, false},
                          {infinite, 1.0, false}, {4.0, 0.0, false}};
    GdsARef aref = {};
    aref.p1 = {-100, 50};
    aref.p2 = {200, 80};
    aref.p3 = {-160, 450};
    aref.cols = 3;
    aref.rows = 2;
    for (const Turn &t : turns) {
        const PointTurn turn = point_turn(t.angle, t.mag, t.reflected);
        const Lattice lattice = lattice_create(&aref, &turn, {7, -9});
        const LatticeOrigins origins = lattice_origins(&lattice, {0, 3, 0, 2});
        ASSERT_TRUE(origins.known);
        for (i32 i = 0; i < 6; ++i) {
            const Point at = lattice_origin(&lattice, i / 2, i % 2);
            EXPECT_LE(origins.x.low, at.x) << "element " << i << ", angle " << t.angle << ", mag " << t.mag;
            EXPECT_GE(origins.x.high, at.x) << "element " << i << ", angle " << t.angle << ", mag " << t.mag;
            EXPECT_LE(origins.y.low, at.y) << "element " << i << ", angle " << t.angle << ", mag " << t.mag;
            EXPECT_GE(origins.y.high, at.y) << "element " << i << ", angle " << t.angle << ", mag " << t.mag;
        }
    }
}

// Columns 7 apart in x and y and rows 7 back: the elements lie on the line x = y, which 45 degrees (0.7853982
// in single precision) turn to x = 0, but for 648753 x 3.3e-8 = 0.02. What remains is rounding: positions up
// to 2 x 458745 in steps of 2^-24 make 0.3, cutting off 1 on each of two axes, 0.7071 of each, and 1 more at
// the end.
TEST(LatticeOrigins, AreTightWherePitchesCancel) {
    GdsARef aref = {};
    aref.p2 = {458745, 458745};
    aref.p3 = {-458745, -458745};
    aref.cols = 65535;
    aref.rows = 65535;
    for (const bool reflected : {false, true}) {
        // Reflected the line is x = -y, and turns to y = 0.
        const PointTurn turn = point_turn(static_cast<f64>(0.7853982F), 1.0, reflected);
        const Lattice lattice = lattice_create(&aref, &turn, {0, 0});
        const LatticeOrigins origins = lattice_origins(&lattice, {0, 65535, 0, 65535});
        ASSERT_TRUE(origins.known);
        const Range flat = reflected ? origins.y : origins.x;
        EXPECT_GE(flat.low, -5);
        EXPECT_LE(flat.high, 5);
        EXPECT_LE(flat.low, -1);
        EXPECT_GE(flat.high, 1);
    }
}

TEST(LatticeCut, TakesLinesOffEachSide) {
    struct Case {
        LatticeSide side;
        i32 lines;
        LatticeBlock cut, rest;  // of 3 lines
    };
    const LatticeBlock whole = {10, 20, 30, 45};
    // clang-format off
    const Case cases[] = {
        {ROWS_FIRST, 15, {10, 20, 30, 33}, {10, 20, 33, 45}},
        {ROWS_LAST, 15, {10, 20, 42, 45}, {10, 20, 30, 42}},
        {COLUMNS_FIRST, 10, {10, 13, 30, 45}, {13, 20, 30, 45}},
        {COLUMNS_LAST, 10, {17, 20, 30, 45}, {10, 17, 30, 45}},
    };
    // clang-format on
    for (const Case &c : cases) {
        EXPECT_EQ(lattice_lines(whole, c.side), c.lines);
        LatticeBlock rest = whole;
        const LatticeBlock cut = lattice_cut(&rest, c.side, 3);
        for (const auto &[block, expected] : {std::pair(cut, c.cut), std::pair(rest, c.rest)}) {
            EXPECT_EQ(block.column_begin, expected.column_begin);
            EXPECT_EQ(block.column_end, expected.column_end);
            EXPECT_EQ(block.row_begin, expected.row_begin);
            EXPECT_EQ(block.row_end, expected.row_end);
        }
    }
}
