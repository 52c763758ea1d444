// Sizing and flattening against plain recursion, bit for bit, on random hierarchies.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <limits>
#include <ostream>

#include "gds/gds_flatten.h"
#include "gds/gds_hierarchy.h"
#include "gds/gds_resolve.h"
#include "platform/memory.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_twin.h"
#include "tests/support/test_support.h"

// What a random hierarchy is made of.
struct Flavour {
    const char *name;
    i32 cell_count;
    i32 reach;       // coordinates lie in -reach to reach
    i32 array_most;  // columns and rows of an array at most
    bool any_angle;  // else multiples of a right angle
    bool odd_mags;   // also 0, negative, huge, infinite and nan
    bool cycles;
    bool parallel;  // the rows of arrays lie in the direction of their columns, or against it
};

// NOLINTNEXTLINE(readability-identifier-naming): the name is GoogleTest's
static void PrintTo(const Flavour &flavour, std::ostream *out) {
    *out << flavour.name;
}

static i32 random_coordinate(TestRandom *random, i32 reach) {
    if (reach == I32_MAX && test_random_bool(random, 0.2)) {
        const i32 ends[] = {I32_MIN, I32_MIN + 1, I32_MAX, I32_MAX - 1, 0};
        return ends[test_random_i32(random, 0, 4)];
    }
    return test_random_i32(random, -reach, reach);
}

static Point random_point(TestRandom *random, i32 reach) {
    const i32 x = random_coordinate(random, reach);
    return {x, random_coordinate(random, reach)};
}

static f32 random_angle(TestRandom *random, const Flavour *flavour) {
    const f32 right = 1.5707964F * static_cast<f32>(test_random_i32(random, 0, 3));
    if (!flavour->any_angle || test_random_bool(random, 0.3)) {
        return right;
    }
    return test_random_bool(random, 0.3) ? right + 0.78539816F : test_random_f32(random, -4.0F, 7.0F);
}

static f32 random_mag(TestRandom *random, const Flavour *flavour) {
    const f32 odd[] = {0.0F,
                       -1.0F,
                       1.0e9F,
                       1.0e-9F,
                       std::numeric_limits<f32>::infinity(),
                       std::numeric_limits<f32>::quiet_NaN(),
                       -0.5F};
    if (flavour->odd_mags && test_random_bool(random, 0.3)) {
        return odd[test_random_i32(random, 0, 6)];
    }
    return test_random_bool(random, 0.6) ? 1.0F : test_random_f32(random, 0.2F, 2.5F);
}

static u16 random_flags(TestRandom *random) {
    return static_cast<u16>((test_random_bool(random, 0.3) ? 0x8000 : 0) |
                            (test_random_bool(random, 0.1) ? 0x0006 : 0));
}

static void add_polygon(TestRandom *random, const Flavour *flavour, GdsDatabase *database, GdsCell *cell) {
    GdsPolygon polygon = {};
    polygon.layer = static_cast<u16>(test_random_i32(random, 0, 65535));
    polygon.datatype = static_cast<u16>(test_random_i32(random, 0, 65535));
    polygon.point_count = test_random_i32(random, 0, 5);
    polygon.points = gds_add_points(database, polygon.point_count);
    polygon.bbox = BOX_EMPTY;
    const Point centre = random_point(random, flavour->reach);
    const i32 size = flavour->reach == I32_MAX ? I32_MAX : flavour->reach / 8;
    for (i32 i = 0; i < polygon.point_count; ++i) {
        const Point offset = random_point(random, size);
        const Point at = {wrap_add(centre.x, offset.x), wrap_add(centre.y, offset.y)};
        polygon.points[i] = at;
        polygon.bbox.x_min = std::min(polygon.bbox.x_min, at.x);
        polygon.bbox.y_min = std::min(polygon.bbox.y_min, at.y);
        polygon.bbox.x_max = std::max(polygon.bbox.x_max, at.x);
        polygon.bbox.y_max = std::max(polygon.bbox.y_max, at.y);
    }
    array_append(&cell->polygons, &cell->polygon_count, &cell->polygon_capacity, polygon);
}

// Cell numbers grow downwards in the hierarchy, but for an occasional reference back up.
static GdsCell *random_child(TestRandom *random, const Flavour *flavour, GdsDatabase *database, i32 parent) {
    if (flavour->cycles && test_random_bool(random, 0.2)) {
        return &database->cells[test_random_i32(random, 0, database->cell_count - 1)];
    }
    return &database->cells[test_random_i32(random, parent + 1, database->cell_count - 1)];
}

static void add_references(TestRandom *random, const Flavour *flavour, GdsDatabase *database, i32 number) {
    GdsCell *cell = &database->cells[number];
    const i32 sref_count = test_random_i32(random, 0, 2);
    for (i32 i = 0; i < sref_count; ++i) {
        GdsSRef sref = {};
        sref.cell = random_child(random, flavour, database, number);
        sref.origin = random_point(random, flavour->reach);
        sref.mag = random_mag(random, flavour);
        sref.angle = random_angle(random, flavour);
        sref.flags = random_flags(random);
        const i32 copies = test_random_bool(random, 0.3) ? 2 : 1;  // equal placements in a row
        for (i32 k = 0; k < copies; ++k) {
            array_append(&cell->srefs, &cell->sref_count, &cell->sref_capacity, sref);
        }
    }
    const i32 aref_count = test_random_i32(random, 0, 1);
    for (i32 i = 0; i < aref_count; ++i) {
        GdsARef aref = {};
        aref.cell = random_child(random, flavour, database, number);
        aref.p1 = random_point(random, flavour->reach);
        aref.p2 = test_random_bool(random, 0.2) ? aref.p1 : random_point(random, flavour->reach);
        aref.p3 = test_random_bool(random, 0.2) ? aref.p1 : random_point(random, flavour->reach);
        if (flavour->parallel) {
            const i32 times = test_random_bool(random, 0.5) ? -1 : test_random_i32(random, -3, 3);
            aref.p3 = {aref.p1.x + times * (aref.p2.x - aref.p1.x),
                       aref.p1.y + times * (aref.p2.y - aref.p1.y)};
        }
        aref.cols = test_random_i32(random, 0, flavour->array_most);
        aref.rows = test_random_i32(random, 0, flavour->array_most);
        aref.mag = random_mag(random, flavour);
        aref.angle = random_angle(random, flavour);
        aref.flags = random_flags(random);
        array_append(&cell->arefs, &cell->aref_count, &cell->aref_capacity, aref);
    }
}

// The same hierarchy for the same seed.
static Owned<GdsDatabase> make_database(const Flavour *flavour, u64 seed) {
    TestRandom random = test_random_start(seed);
    Owned<GdsDatabase> database(memory_new_zeroed<GdsDatabase>());
    database->cells = memory_new_zeroed<GdsCell>(flavour->cell_count);
    database->cell_count = flavour->cell_count;
    database->cell_capacity = flavour->cell_count;
    for (i32 i = 0; i < flavour->cell_count; ++i) {
        const i32 polygon_count = test_random_i32(&random, 0, 3);
        for (i32 k = 0; k < polygon_count; ++k) {
            add_polygon(&random, flavour, database.get(), &database->cells[i]);
        }
        if (i + 1 < flavour->cell_count) {
            add_references(&random, flavour, database.get(), i);
        }
    }
    return database;
}

static GdsPlacement random_placement(TestRandom *random, const Flavour *flavour) {
    if (test_random_bool(random, 0.5)) {
        return GDS_PLACEMENT_IDENTITY;
    }
    const Point origin = random_point(random, flavour->reach);
    const f32 mag = random_mag(random, flavour);
    const f32 angle = random_angle(random, flavour);
    return {origin, mag, angle, random_flags(random)};
}

static bool same_polygon(const FlatPolygon *a, const FlatPolygon *b) {
    const size_t bytes = static_cast<size_t>(a->point_count) * sizeof(FlatPoint);
    return a->point_count == b->point_count && a->layer == b->layer && a->datatype == b->datatype &&
           std::memcmp(a->points, b->points, bytes) == 0 && a->x_min == b->x_min && a->y_min == b->y_min &&
           a->x_max == b->x_max && a->y_max == b->y_max;
}

static void compare_sizes(TestRandom *random, const Flavour *flavour, GdsDatabase *ours, GdsDatabase *twin) {
    for (i32 i = 0; i < ours->cell_count; ++i) {
        const i32 number = test_random_bool(random, 0.2) ? ours->cell_count - 1 - i : i;
        const GdsPlacement placement = random_placement(random, flavour);
        const Box box = gds_cell_bbox(&ours->cells[number], placement, 0);
        ASSERT_EQ(box, twin_cell_bbox(&twin->cells[number], placement)) << "cell " << number;
    }
    for (i32 i = 0; i < ours->cell_count; ++i) {
        gds_cell_bbox(&ours->cells[i], GDS_PLACEMENT_IDENTITY, 0);
        twin_cell_bbox(&twin->cells[i], GDS_PLACEMENT_IDENTITY);
        ASSERT_EQ(ours->cells[i].bbox, twin->cells[i].bbox) << "cached extent of cell " << i;
        ASSERT_EQ(ours->cells[i].bbox_valid, 1);
        ASSERT_EQ(ours->cells[i].visiting, 0);
    }
}

static Box random_window(TestRandom *random, const Flavour *flavour, const GdsCell *cell) {
    if (test_random_bool(random, 0.3)) {
        return cell->bbox;
    }
    const Point one = random_point(random, flavour->reach);
    const Point two =
        random_point(random, test_random_bool(random, 0.5) ? flavour->reach : flavour->reach / 4);
    return {std::min(one.x, two.x), std::min(one.y, two.y), std::max(one.x, two.x), std::max(one.y, two.y)};
}

static void compare_flattening(TestRandom *random, const Flavour *flavour, GdsDatabase *ours,
                               GdsDatabase *twin) {
    for (i32 i = 0; i < ours->cell_count; ++i) {
        const Owned<PolygonList> our_list(polygon_list_create());
        const Owned<PolygonList> twin_list(polygon_list_create());
        FlattenContext context = {};
        context.window = random_window(random, flavour, &ours->cells[i]);
        context.smallest = I64_MAX;
        context.min_size = test_random_i32(random, 0, 3) * i64{flavour->reach / 12};
        context.scale = 0.001F;
        const GdsPlacement placement = random_placement(random, flavour);
        FlattenContext twin_context = context;
        context.out = our_list.get();
        twin_context.out = twin_list.get();
        const GdsInstance instance = {&ours->cells[i], placement, 1};
        ASSERT_EQ(gds_flatten(&context, &instance), twin_flatten(&twin_context, &twin->cells[i], placement));
        ASSERT_EQ(our_list->count, twin_list->count) << "polygons below cell " << i;
        ASSERT_EQ(context.smallest, twin_context.smallest);
        ASSERT_EQ(context.skipped, twin_context.skipped);
        for (i32 k = 0; k < our_list->count; ++k) {
            ASSERT_TRUE(same_polygon(&our_list->items[k], &twin_list->items[k])) << "polygon " << k;
        }
        ASSERT_EQ(ours->cells[i].visiting, 0);
    }
}

class GdsTwin : public testing::TestWithParam<Flavour> {};

TEST_P(GdsTwin, SizesAndPolygonsAreThoseOfPlainRecursion) {
    const Flavour *flavour = &GetParam();
    const i32 rounds = flavour->array_most > 100 ? 60 : 1500;
    for (i32 round = 0; round < rounds && !HasFatalFailure(); ++round) {
        SCOPED_TRACE(round);
        const u64 seed = static_cast<u64>(round) * 7919 + static_cast<u64>(flavour->reach);
        const Owned<GdsDatabase> ours = make_database(flavour, seed);
        const Owned<GdsDatabase> twin = make_database(flavour, seed);
        TestRandom random = test_random_start(seed + 1);
        compare_sizes(&random, flavour, ours.get(), twin.get());
        gds_mark_bare(ours.get());
        compare_flattening(&random, flavour, ours.get(), twin.get());
    }
}

static const Flavour FLAVOURS[] = {
    {"Plain", 4, 1000, 6, false, false, false, false},
    {"Turned", 4, 1000, 6, true, false, false, false},
    {"Cycles", 4, 1000, 5, true, false, true, false},
    {"OddMagnifications", 4, 1000, 6, true, true, false, false},
    {"WholeRange", 4, I32_MAX, 6, true, false, false, false},
    {"WholeRangeOdd", 4, I32_MAX, 6, true, true, true, false},
    {"LargeArrays", 2, 100000, 400, true, false, false, false},
    {"LargeArraysNarrow", 2, 300, 400, true, false, false, false},
    {"LargeArraysWholeRange", 2, I32_MAX, 400, true, true, false, false},
    {"Deep", 8, 300, 3, false, false, false, false},
    {"DeepTurned", 7, 300, 3, true, false, false, false},
    {"DeepCycles", 8, 200, 2, false, false, true, false},
    {"Parallel", 4, 1000, 6, true, false, false, true},
    {"LargeArraysParallel", 2, 100000, 400, true, false, false, true},
};

INSTANTIATE_TEST_SUITE_P(Random, GdsTwin, testing::ValuesIn(FLAVOURS),
                         [](const testing::TestParamInfo<Flavour> &flavour) { return flavour.param.name; });
