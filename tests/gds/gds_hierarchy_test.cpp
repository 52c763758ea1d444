#include "gds/gds_hierarchy.h"

#include <gtest/gtest.h>

#include <cmath>

#include "gds/gds_lattice.h"
#include "gds/gds_resolve.h"
#include "gds/polygon_list.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_load.h"

static const f32 RIGHT_ANGLE = 1.57079637F;  // slightly more than half pi, as f32 has it

TEST(PointPlace, ReflectsThenRotatesThenScales) {
    EXPECT_EQ(point_place({3, 4}, 0.0, 1.0, false), (Point{3, 4}));
    EXPECT_EQ(point_place({3, 4}, 0.0, 1.0, true), (Point{3, -4}));
    EXPECT_EQ(point_place({3, 4}, 0.0, 2.5, false), (Point{7, 10}));  // 7.5 truncated
    EXPECT_EQ(point_place({-3, -4}, 0.0, 2.5, false), (Point{-7, -10}));
    // 45 degrees: (10 - 0) x 0.7071 = 7.07 both ways; reflected (0, 10) is (0, -10), turned (7.07, -7.07).
    EXPECT_EQ(point_place({10, 0}, 0.78539816339744831, 1.0, false), (Point{7, 7}));
    EXPECT_EQ(point_place({0, 10}, 0.78539816339744831, 1.0, true), (Point{7, -7}));
}

TEST(PointPlace, RightAnglesOfF32FallOneUnitShort) {
    // cos(RIGHT_ANGLE) is about -4.4e-8, so y is 100 x 1 = 99.99... truncated only where sine is below 1;
    // x is 0 x 1 + 100 x -4.4e-8, truncated to 0. With y = 100 as input x = -100 x sine = -99.99... .
    const f64 angle = static_cast<f64>(RIGHT_ANGLE);
    const Point turned = point_place({100, 1}, angle, 1.0, false);
    // x: -4.4e-6 - 0.999999999999999 truncated toward zero from -1.0000044; y: 0.99.. x 100 - 4.4e-8.
    EXPECT_EQ(turned, (Point{-1, 99}));
}

TEST(PointPlace, WhatDoesNotFitIsTheSmallestInteger) {
    EXPECT_EQ(point_place({I32_MAX, 1}, 0.0, 2.0, false), (Point{I32_MIN, 2}));
    EXPECT_EQ(point_place({0, I32_MIN}, 0.0, 1.0, true), (Point{0, I32_MIN}));  // 2147483648 does not fit
    EXPECT_EQ(point_place({0, 0}, 0.0, HUGE_VAL, false), (Point{I32_MIN, I32_MIN}));
}

TEST(TransformPoint, ThereAndBack) {
    const GdsPlacement placement = {{100, 200}, 2.0F, 0.0F, 0};
    EXPECT_EQ(transform_point({3, 4}, placement, false), (Point{106, 208}));
    EXPECT_EQ(transform_point({106, 208}, placement, true), (Point{3, 4}));
    const GdsPlacement far = {{I32_MAX, I32_MIN}, 1.0F, 0.0F, 0};
    EXPECT_EQ(transform_point({1, -1}, far, false), (Point{I32_MIN, I32_MAX}));
    EXPECT_EQ(transform_point({I32_MIN, I32_MAX}, far, true), (Point{1, -1}));
}

TEST(TransformPoint, BackIsNotTheInverseOfAReflection) {
    // Forward: (0, 10) is reflected to (0, -10) and turned by 30 degrees: (5, -8.66). Back: (5, -8) is
    // reflected to (5, 8) and turned by -30 degrees: x = 5 x 0.866 + 8 x 0.5 = 8.33, y = 6.93 - 2.5 = 4.43.
    const GdsPlacement placement = {{0, 0}, 1.0F, 0.52359878F, GDS_REFLECTION};
    const Point forward = transform_point({0, 10}, placement, false);
    EXPECT_EQ(forward, (Point{5, -8}));
    EXPECT_EQ(transform_point(forward, placement, true), (Point{8, 4}));
}

TEST(TransformPoint, AnyFlagReflects) {
    const GdsPlacement placement = {{0, 0}, 1.0F, 0.0F, 0x0002};
    EXPECT_EQ(transform_point({1, 2}, placement, false), (Point{1, -2}));
}

TEST(BoxPlace, BoundsTheFourCorners) {
    const GdsPlacement placement = {{10, 20}, 1.0F, 0.78539816F, 0};
    // Corners (0,0), (0,10), (10,10), (10,0) turned by 45 degrees: (0,0), (-7,7), (0,14), (7,7).
    EXPECT_EQ(box_place({0, 0, 10, 10}, placement, false), (Box{3, 20, 17, 34}));
    EXPECT_EQ(box_place({1, 2, 3, 4}, {{0, 0}, 1.0F, 0.0F, GDS_REFLECTION}, false), (Box{1, -4, 3, -2}));
}

static GdsPlacement child_of(GdsPlacement parent, Point origin, f32 mag, f32 angle, u16 flags) {
    const PointTurn turn = placement_turn(parent);
    return placement_child(&turn, parent, origin, mag, angle, flags);
}

TEST(PlacementChild, AnglesAddAndReflectionsToggle) {
    const GdsPlacement parent = {{100, 0}, 2.0F, 0.5F, GDS_REFLECTION};
    const GdsPlacement child = child_of(parent, {0, 0}, 1.5F, 0.25F, 0);
    EXPECT_EQ(child.angle, 0.75F);  // not 0.25: kept so under reflection
    EXPECT_EQ(child.mag, 3.0F);
    EXPECT_EQ(child.flags, GDS_REFLECTION);
    EXPECT_EQ(child.origin, (Point{100, 0}));
    EXPECT_EQ(child_of(parent, {0, 0}, 1.0F, 0.0F, 0x8006).flags, 0);
    EXPECT_EQ(child_of(GDS_PLACEMENT_IDENTITY, {0, 0}, 1.0F, 0.0F, 0x0006).flags, 0);
    // The origin is placed by the parent: (3, 4) reflected and doubled.
    const GdsPlacement flipped = {{100, 0}, 2.0F, 0.0F, GDS_REFLECTION};
    EXPECT_EQ(child_of(flipped, {3, 4}, 1.0F, 0.0F, 0).origin, (Point{106, -8}));
}

static Point element_of(const GdsARef &aref, i32 column, i32 row) {
    const PointTurn turn = point_turn(0.0, 1.0, false);
    const Lattice lattice = lattice_create(&aref, &turn, {0, 0});
    return lattice_position(&lattice, column, row);
}

TEST(LatticePosition, SinglePrecisionPitch) {
    GdsARef aref = {};
    aref.p1 = {10, 20};
    aref.p2 = {20, 20};
    aref.p3 = {10, 27};
    aref.cols = 3;
    aref.rows = 2;
    EXPECT_EQ(element_of(aref, 0, 0), (Point{10, 20}));
    EXPECT_EQ(element_of(aref, 2, 1), (Point{16, 23}));  // 10 + 2 x 3.33, 20 + 3.5
    // Above 2^24 only even numbers are f32: 16777217 becomes 16777216 before it is added.
    aref.p1 = {16777217, 0};
    aref.p2 = aref.p1;
    aref.p3 = aref.p1;
    EXPECT_EQ(element_of(aref, 0, 0).x, 16777216);
    // The integer difference wraps: from I32_MAX to I32_MIN is one step up.
    aref = {};
    aref.cols = 1;
    aref.rows = 1;
    aref.p1 = {I32_MAX, 0};
    aref.p2 = {I32_MIN, 0};
    aref.cols = 2;
    EXPECT_EQ(element_of(aref, 0, 0).x, I32_MIN);  // f32 of I32_MAX is 2147483648
}

TEST(GdsCellBbox, PlainCellsAndReferences) {
    GdsBytes bytes;
    bytes.head().begin("TOP").sref("A", {100, 100}).aref("A", 2, 3, {0, 0}, {200, 0}, {0, 300}).end();
    bytes.begin("A").box(1, 5, 5, 10, 20).end().close();
    const GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    EXPECT_EQ(find_cell(loaded, "A")->bbox, (Box{0, 0, 10, 20}));
    EXPECT_EQ(find_cell(loaded, "TOP")->bbox, (Box{0, 0, 110, 220}));
    const GdsPlacement placed = {{1000, 0}, 2.0F, 0.0F, GDS_REFLECTION};
    EXPECT_EQ(gds_cell_bbox(find_cell(loaded, "TOP"), placed, 0), (Box{1000, -440, 1220, 0}));
}

TEST(GdsCellBbox, FirstVisitUnderRotationKeepsTheWiderBox) {
    // TOP comes first and meets A under 45 degrees. A's box (0, 0)-(100, 100) has the corners (0, 0),
    // (-70, 70), (0, 141), (70, 70), so it lies in (-70, 0)-(70, 141). That turned back by -45 degrees:
    // (x + y, y - x) x 0.7071: corners (-49, 49), (50, 149), (149, 50), (49, -49): truncated.
    GdsBytes bytes;
    bytes.head().begin("TOP").sref("A", {0, 0}, 0, 1.0, 45.0).end().begin("A").box(1, 0, 0, 100, 100).end();
    const GdsLoaded loaded = gds_load_bytes(bytes.close().bytes);
    EXPECT_EQ(find_cell(loaded, "TOP")->bbox, (Box{-70, 0, 70, 141}));
    EXPECT_EQ(find_cell(loaded, "A")->bbox, (Box{-49, -49, 149, 149}));
    // With A first its extent is true.
    GdsBytes other;
    other.head().begin("A").box(1, 0, 0, 100, 100).end().begin("TOP").sref("A", {0, 0}, 0, 1.0, 45.0).end();
    const GdsLoaded true_size = gds_load_bytes(other.close().bytes);
    EXPECT_EQ(find_cell(true_size, "A")->bbox, (Box{0, 0, 100, 100}));
}

TEST(GdsCellBbox, ArraysWithoutColumnsOrRowsPlaceNothing) {
    for (i32 which = 0; which < 3; ++which) {
        const u16 cols = which == 0 ? 0 : 2;
        const u16 rows = which == 1 ? 0 : 2;
        GdsBytes bytes;
        bytes.head().begin("TOP").aref("A", cols, rows, {0, 0}, {20, 0}, {0, 20}).end();
        const GdsLoaded loaded = gds_load_bytes(bytes.begin("A").box(1, 0, 0, 5, 5).end().close().bytes);
        ASSERT_EQ(loaded.result, 0);
        const Box expected = which < 2 ? Box{0, 0, 0, 0} : Box{0, 0, 15, 15};
        EXPECT_EQ(find_cell(loaded, "TOP")->bbox, expected);
    }
}

TEST(GdsCellBbox, OneByOneArrayPlacesOnce) {
    GdsBytes bytes;
    bytes.head().begin("TOP").aref("A", 1, 1, {50, 60}, {500, 0}, {0, 500}).end();
    const GdsLoaded loaded = gds_load_bytes(bytes.begin("A").box(1, 0, 0, 5, 5).end().close().bytes);
    EXPECT_EQ(find_cell(loaded, "TOP")->bbox, (Box{0, 0, 55, 65}));
}

TEST(GdsCellBbox, CyclesEnd) {
    GdsBytes bytes;
    bytes.head().begin("A").box(1, 0, 0, 5, 5).sref("B", {10, 0}).end();
    bytes.begin("B").box(1, 0, 0, 7, 7).sref("A", {100, 0}).sref("B", {100, 0}).end();
    bytes.begin("SELF").aref("SELF", 65535, 65535, {0, 0}, {9, 0}, {0, 9}).end().close();
    const GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    ASSERT_EQ(loaded.result, 0);
    EXPECT_EQ(find_cell(loaded, "A")->bbox, (Box{0, 0, 17, 7}));
    EXPECT_EQ(find_cell(loaded, "B")->bbox, (Box{0, 0, 7, 7}));  // sized within A, which adds nothing
    EXPECT_EQ(find_cell(loaded, "SELF")->bbox, (Box{0, 0, 0, 0}));
}

TEST(GdsCellBbox, AcyclicCellsAreThoseThatReachNoCycle) {
    GdsBytes bytes;
    bytes.head().begin("ABOVE").sref("IN", {0, 0}).end();
    bytes.begin("IN").sref("PLAIN", {0, 0}).sref("MIDDLE", {0, 0}).end();
    bytes.begin("MIDDLE").aref("BACK", 2, 2, {0, 0}, {2, 0}, {0, 2}).end();
    bytes.begin("BACK").sref("IN", {0, 0}).end();
    bytes.begin("PLAIN").sref("LEAF", {0, 0}).sref("LEAF", {5, 5}).end().begin("LEAF").end();
    bytes.begin("OVER_PLAIN").aref("PLAIN", 3, 3, {0, 0}, {9, 0}, {0, 9}).sref("LEAF", {0, 0}).end();
    bytes.begin("SELF")
        .sref("SELF", {0, 0})
        .end()
        .begin("OVER_SELF")
        .sref("LEAF", {0, 0})
        .sref("SELF", {0, 0});
    const GdsLoaded loaded = gds_load_bytes(bytes.end().close().bytes);
    ASSERT_EQ(loaded.result, 0);
    for (const char *name : {"PLAIN", "LEAF", "OVER_PLAIN"}) {
        EXPECT_EQ(find_cell(loaded, name)->acyclic, 1) << name;
    }
    for (const char *name : {"ABOVE", "IN", "MIDDLE", "BACK", "SELF", "OVER_SELF"}) {
        EXPECT_EQ(find_cell(loaded, name)->acyclic, 0) << name;
    }
}

TEST(GdsResolveRefs, BoundReferencesAreLeftAlone) {
    GdsBytes bytes;
    bytes.head().begin("TOP").sref("A", {0, 0}).end().begin("A").end().begin("B").end().close();
    const GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    GdsSRef *sref = &find_cell(loaded, "TOP")->srefs[0];
    sref->cell = find_cell(loaded, "B");
    EXPECT_EQ(gds_resolve_refs(loaded.database.get()), 0);
    EXPECT_EQ(sref->cell, find_cell(loaded, "B"));
}

TEST(GdsResolveRefs, WalksOnAfterAMissingName) {
    GdsBytes bytes;
    bytes.head().begin("TOP").sref("GONE", {0, 0}).sref("A", {0, 0}).end().begin("A").end().close();
    const GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    EXPECT_EQ(loaded.result, 27);
    EXPECT_EQ(find_cell(loaded, "TOP")->srefs[0].cell, nullptr);
    EXPECT_EQ(find_cell(loaded, "TOP")->srefs[1].cell, find_cell(loaded, "A"));
    EXPECT_EQ(gds_resolve_refs(loaded.database.get()), 1);
}

TEST(GdsResolveRefs, HundredThousandCells) {
    GdsBytes bytes;
    bytes.head();
    const i32 count = 100000;
    for (i32 i = 0; i < count; ++i) {
        bytes.begin("C" + std::to_string(i)).sref("C" + std::to_string((i + 1) % count), {1, 0}).end();
    }
    GdsLoaded loaded = gds_load_bytes(bytes.close().bytes);
    ASSERT_EQ(loaded.result, 0);
    for (i32 i = 0; i < count; ++i) {
        ASSERT_EQ(loaded.database->cells[i].srefs[0].cell, &loaded.database->cells[(i + 1) % count]);
    }
}

TEST(GdsMarkBare, CellsWithoutPolygonsBelowThem) {
    GdsBytes bytes;
    bytes.head().begin("EMPTY").end().begin("OVER_EMPTY").sref("EMPTY", {0, 0}).sref("EMPTY", {0, 0}).end();
    bytes.begin("FULL").box(1, 0, 0, 1, 1).end().begin("OVER_FULL").sref("EMPTY", {0, 0});
    bytes.aref("FULL", 2, 2, {0, 0}, {4, 0}, {0, 4}).end();
    bytes.begin("LOOP").sref("LOOP2", {0, 0}).end().begin("LOOP2").sref("LOOP", {0, 0}).end();
    bytes.begin("RING").sref("RING2", {0, 0}).end().begin("RING2").sref("RING", {0, 0}).sref("FULL", {0, 0});
    const GdsLoaded loaded = gds_load_bytes(bytes.end().close().bytes);
    ASSERT_EQ(loaded.result, 0);
    for (const char *name : {"EMPTY", "OVER_EMPTY", "LOOP", "LOOP2"}) {
        EXPECT_EQ(find_cell(loaded, name)->bare, 1) << name;
    }
    for (const char *name : {"FULL", "OVER_FULL", "RING", "RING2"}) {
        EXPECT_EQ(find_cell(loaded, name)->bare, 0) << name;
    }
}

TEST(GdsFree, TakesNull) {
    gds_free(nullptr);
    polygon_list_free(nullptr);
}
