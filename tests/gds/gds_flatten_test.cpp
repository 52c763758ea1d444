#include "gds/gds_flatten.h"

#include <gtest/gtest.h>

#include "log/log.h"
#include "platform/memory.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_load.h"
#include "tests/support/test_support.h"

struct Flattened {
    i32 result;
    i64 smallest, skipped;
    Owned<PolygonList> list;
};

static Flattened flatten(const GdsLoaded &loaded, const char *name, Box window, i64 min_size = 0) {
    Flattened flattened = {0, 0, 0, Owned<PolygonList>(polygon_list_create())};
    FlattenContext context = {flattened.list.get(), window, I64_MAX, min_size, 0, 0.5F};
    const GdsInstance instance = {find_cell(loaded, name), GDS_PLACEMENT_IDENTITY, 1};
    flattened.result = gds_flatten(&context, &instance);
    flattened.smallest = context.smallest;
    flattened.skipped = context.skipped;
    return flattened;
}

static const Box WINDOW = {100, 200, 1100, 1200};

static GdsLoaded load(GdsBytes &bytes) {
    GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    EXPECT_EQ(loaded.result, 0);
    return loaded;
}

TEST(GdsFlatten, CoordinatesAreMicrometresFromTheCorner) {
    GdsBytes bytes;
    bytes.head().begin("C").boundary(513, {{110, 220}, {140, 220}, {140, 290}, {110, 220}}).end().close();
    const GdsLoaded loaded = load(bytes);
    Flattened flat = flatten(loaded, "C", WINDOW);
    ASSERT_EQ(flat.result, 0);
    ASSERT_EQ(flat.list->count, 1);
    const FlatPolygon *polygon = &flat.list->items[0];
    EXPECT_EQ(polygon->layer, 513);
    ASSERT_EQ(polygon->point_count, 4);  // the closing point stays
    const FlatPoint expected[] = {{5, 10}, {20, 10}, {20, 45}, {5, 10}};
    for (i32 i = 0; i < 4; ++i) {
        EXPECT_EQ(polygon->points[i].x, expected[i].x);
        EXPECT_EQ(polygon->points[i].y, expected[i].y);
    }
    EXPECT_EQ(polygon->x_min, 5);
    EXPECT_EQ(polygon->y_min, 10);
    EXPECT_EQ(polygon->x_max, 20);
    EXPECT_EQ(polygon->y_max, 45);
    EXPECT_EQ(flat.smallest, 30);
}

struct WindowCase {
    const char *name;
    Box box;
    bool inside;
};

TEST(GdsFlatten, TouchingPolygonIsOutside) {
    const WindowCase cases[] = {
        {"left", {0, 300, 100, 400}, false},      {"left by one", {0, 300, 101, 400}, true},
        {"right", {1100, 300, 1200, 400}, false}, {"right by one", {1099, 300, 1200, 400}, true},
        {"below", {300, 0, 400, 200}, false},     {"below by one", {300, 0, 400, 201}, true},
        {"above", {300, 1200, 400, 1300}, false}, {"above by one", {300, 1199, 400, 1300}, true},
        {"around", {0, 0, 5000, 5000}, true},     {"corner", {0, 0, 100, 200}, false},
    };
    for (const WindowCase &window_case : cases) {
        const Box box = window_case.box;
        GdsBytes bytes;
        bytes.head().begin("C").box(1, box.x_min, box.y_min, box.x_max, box.y_max).end().close();
        const GdsLoaded loaded = load(bytes);
        Flattened flat = flatten(loaded, "C", WINDOW);
        EXPECT_EQ(flat.list->count, window_case.inside ? 1 : 0) << window_case.name;
        EXPECT_EQ(flat.smallest == I64_MAX, !window_case.inside) << window_case.name;
    }
}

TEST(GdsFlatten, SmallPolygonsAreDroppedAndCounted) {
    GdsBytes bytes;
    bytes.head().begin("C").box(1, 200, 300, 209, 400).box(1, 200, 300, 210, 400).box(1, 0, 0, 1, 1).end();
    const GdsLoaded loaded = load(bytes.close());
    Flattened flat = flatten(loaded, "C", WINDOW, 10);
    EXPECT_EQ(flat.list->count, 1);
    EXPECT_EQ(flat.skipped, 1);   // the one outside the window does not count
    EXPECT_EQ(flat.smallest, 9);  // the dropped one does
}

TEST(GdsFlatten, SizesOfTheWholeRangeDoNotWrap) {
    GdsBytes bytes;
    bytes.head().begin("C").box(1, I32_MIN, I32_MIN, I32_MAX, I32_MAX).end().close();
    const GdsLoaded loaded = load(bytes);
    Flattened flat = flatten(loaded, "C", WINDOW, 10);
    EXPECT_EQ(flat.smallest, 4294967295);
    ASSERT_EQ(flat.list->count, 1);
    // The difference of the coordinates is an i32 and wraps: I32_MAX - 100 fits, I32_MIN - 100 does not.
    EXPECT_EQ(flat.list->items[0].x_max, static_cast<f32>(I32_MAX - 100) * 0.5F);
    EXPECT_EQ(flat.list->items[0].x_min, static_cast<f32>(I32_MAX - 99) * 0.5F);
}

TEST(GdsFlatten, EmptyPolygonsArePassedOver) {
    GdsBytes bytes;
    bytes.head().begin("C").record(GDS_RECORD_BOUNDARY).record_u16(GDS_RECORD_LAYER, {1});
    const GdsLoaded loaded = load(bytes.record(GDS_RECORD_ENDEL).end().close());
    EXPECT_EQ(flatten(loaded, "C", {I32_MIN, I32_MIN, I32_MAX, I32_MAX}).list->count, 0);
}

TEST(GdsFlatten, OrderIsPolygonsThenReferencesThenArraysColumnByColumn) {
    GdsBytes bytes;
    bytes.head().begin("TOP").aref("A", 2, 2, {500, 500}, {700, 500}, {500, 700}).sref("A", {400, 400});
    bytes.box(9, 300, 300, 310, 310).end().begin("A").box(1, 0, 0, 10, 10).end().close();
    const GdsLoaded loaded = load(bytes);
    Flattened flat = flatten(loaded, "TOP", {0, 0, 1000, 1000});
    ASSERT_EQ(flat.list->count, 6);
    const Point corners[] = {{300, 300}, {400, 400}, {500, 500}, {500, 600}, {600, 500}, {600, 600}};
    for (i32 i = 0; i < 6; ++i) {
        EXPECT_EQ(flat.list->items[i].x_min, static_cast<f32>(corners[i].x) * 0.5F) << i;
        EXPECT_EQ(flat.list->items[i].y_min, static_cast<f32>(corners[i].y) * 0.5F) << i;
    }
}

TEST(GdsFlatten, ReflectedParentOfARotatedChild) {
    // B at 30 degrees in A, A reflected in TOP at 60: the child's angle is 90 and it is reflected.
    // (20, 10) becomes (20, -10), turned by 90 degrees (10, 20) up to truncation.
    GdsBytes bytes;
    bytes.head().begin("TOP").sref("A", {0, 0}, GDS_REFLECTION, 1.0, 60.0).end();
    bytes.begin("A").sref("B", {0, 0}, 0, 1.0, 30.0).end().begin("B");
    const GdsLoaded loaded = load(bytes.boundary(1, {{0, 0}, {20, 0}, {20, 10}}).end().close());
    Flattened flat = flatten(loaded, "TOP", {-100, -100, 100, 100});
    ASSERT_EQ(flat.list->count, 1);
    EXPECT_NEAR(flat.list->items[0].points[2].x * 2.0F - 100.0F, 10.0F, 1.0F);
    EXPECT_NEAR(flat.list->items[0].points[2].y * 2.0F - 100.0F, 20.0F, 1.0F);
}

TEST(GdsFlatten, InstanceMayBePlaced) {
    GdsBytes bytes;
    bytes.head().begin("C").box(1, 0, 0, 10, 20).end().close();
    const GdsLoaded loaded = load(bytes);
    const Owned<PolygonList> list(polygon_list_create());
    FlattenContext context = {list.get(), {0, 0, 100, 100}, I64_MAX, 0, 0, 1.0F};
    const GdsInstance instance = {find_cell(loaded, "C"), {{30, 90}, 2.0F, 0.0F, GDS_REFLECTION}, 1};
    EXPECT_EQ(gds_flatten(&context, &instance), 0);
    ASSERT_EQ(list->count, 1);
    EXPECT_EQ(list->items[0].x_max, 50);
    EXPECT_EQ(list->items[0].y_min, 50);
}

TEST(GdsFlatten, CyclesEnd) {
    GdsBytes bytes;
    bytes.head().begin("A").box(1, 0, 0, 10, 10).sref("B", {20, 0}).end();
    bytes.begin("B").box(2, 0, 0, 10, 10).sref("A", {20, 0}).sref("B", {20, 0}).end().close();
    const GdsLoaded loaded = load(bytes);
    EXPECT_EQ(flatten(loaded, "A", {0, 0, 1000, 1000}).list->count, 2);
    EXPECT_EQ(flatten(loaded, "B", {0, 0, 1000, 1000}).list->count, 2);
    EXPECT_EQ(find_cell(loaded, "A")->visiting, 0);
}

TEST(GdsFlatten, TenMillionthPolygonStops) {
    GdsBytes bytes;
    bytes.head().begin("TOP").box(7, 0, 0, 5, 5).box(8, 0, 0, 5, 5);
    bytes.sref("A", {0, 0}).end().begin("A").box(9, 0, 0, 5, 5).end().close();
    const GdsLoaded loaded = load(bytes);
    // A list that already holds all but two; their point arrays are absent, which freeing allows.
    const Owned<PolygonList> list(polygon_list_create());
    static_cast<void>(Owned<FlatPolygon[]>(list->items));
    list->items = memory_new_zeroed<FlatPolygon>(GDS_FLATTEN_LIMIT);
    list->capacity = GDS_FLATTEN_LIMIT;
    list->count = GDS_FLATTEN_LIMIT - 3;
    FlattenContext context = {list.get(), {0, 0, 100, 100}, I64_MAX, 0, 0, 1.0F};
    const GdsInstance instance = {find_cell(loaded, "TOP"), GDS_PLACEMENT_IDENTITY, 1};
    EXPECT_EQ(gds_flatten(&context, &instance), GDS_FLATTEN_LIMIT_REACHED);
    ASSERT_EQ(list->count, GDS_FLATTEN_LIMIT);
    EXPECT_EQ(list->items[GDS_FLATTEN_LIMIT - 1].layer, 9);
    EXPECT_EQ(find_cell(loaded, "TOP")->visiting, 0);
    EXPECT_EQ(find_cell(loaded, "A")->visiting, 0);
}

// 16 x 16 squares of 5 points, and a window over all of them.
TEST(GdsFlatten, GivesUpWhereItIsAskedTo) {
    GdsBytes bytes;
    bytes.head().begin("PART").box(7, 0, 0, 5, 5).end();
    bytes.begin("TOP").aref("PART", 16, 16, {0, 0}, {160, 0}, {0, 160}).end().close();
    const GdsLoaded loaded = load(bytes);
    struct Case {
        i64 most_work;
        i32 result;
        bool all;
    };
    const Case cases[] = {{0, 0, true},
                          {1000000, 0, true},
                          {16 * 16 * 5, GDS_FLATTEN_GIVEN_UP, false},
                          {1, GDS_FLATTEN_GIVEN_UP, false}};
    for (const Case &c : cases) {
        const Owned<PolygonList> list(polygon_list_create());
        FlattenContext context = {list.get(), {-10, -10, 1000, 1000}, I64_MAX, 0, 0, 1.0F};
        context.most_work = c.most_work;
        const GdsInstance instance = {find_cell(loaded, "TOP"), GDS_PLACEMENT_IDENTITY, 1};
        EXPECT_EQ(gds_flatten(&context, &instance), c.result) << c.most_work;
        EXPECT_EQ(list->count == 16 * 16, c.all) << c.most_work;
        EXPECT_EQ(find_cell(loaded, "TOP")->visiting, 0);
        EXPECT_EQ(find_cell(loaded, "PART")->visiting, 0);
    }
}

static std::vector<std::string> flatten_lines;

static void note_line(const wchar_t *line) {
    flatten_lines.push_back(test_utf8(line));
}

// Flattens three squares of 5 points, one each in TOP, A and B, into a list that has so many points already.
static Flattened flatten_squares(i64 points_before) {
    GdsBytes bytes;
    bytes.head().begin("TOP").box(7, 0, 0, 5, 5).sref("A", {0, 0}).end();
    bytes.begin("A").box(8, 0, 0, 5, 5).sref("B", {0, 0}).end().begin("B").box(9, 0, 0, 5, 5).end().close();
    const GdsLoaded loaded = load(bytes);
    Flattened flattened = {0, 0, 0, Owned<PolygonList>(polygon_list_create())};
    flattened.list->point_total = points_before;
    FlattenContext context = {flattened.list.get(), {0, 0, 100, 100}, I64_MAX, 0, 0, 1.0F};
    const GdsInstance instance = {find_cell(loaded, "TOP"), GDS_PLACEMENT_IDENTITY, 1};
    flatten_lines.clear();
    diagnostic_set_sink(note_line);
    flattened.result = gds_flatten(&context, &instance);
    diagnostic_set_sink(nullptr);
    EXPECT_EQ(find_cell(loaded, "A")->visiting, 0);
    return flattened;
}

TEST(GdsFlatten, PointsBeyondTheirLimitStop) {
    // 25 points for each of ten million polygons.
    const i64 limit = 250000000;
    Flattened within = flatten_squares(limit - 15);
    EXPECT_EQ(within.result, 0);
    EXPECT_EQ(within.list->count, 3);
    EXPECT_EQ(within.list->point_total, limit);
    EXPECT_TRUE(flatten_lines.empty());

    Flattened beyond = flatten_squares(limit - 9);
    EXPECT_EQ(beyond.result, 30);
    EXPECT_EQ(beyond.list->count, 2) << "the one that goes beyond is kept, the next is not looked at";
    ASSERT_EQ(flatten_lines.size(), 1U);
    EXPECT_EQ(
        flatten_lines[0],
        "more than 250000000 points of polygons lie in the section and its margin; the limit was reached "
        "with 2 polygons, in cell \"A\"");
}

TEST(GdsFlatten, ChainOfTwoHundredThousandCells) {
    GdsBytes bytes;
    bytes.head();
    const i32 count = 200000;
    for (i32 i = 0; i < count; ++i) {
        bytes.begin("C" + std::to_string(i)).sref("C" + std::to_string(i + 1), {1, 0}).end();
    }
    bytes.begin("C" + std::to_string(count)).box(3, 0, 0, 10, 10).end().close();
    GdsLoaded loaded = load(bytes);
    EXPECT_EQ(loaded.database->cells[0].bbox, (Box{0, 0, count + 10, 10}));
    Flattened flat = flatten(loaded, "C0", {0, 0, count + 1000, 1000});
    ASSERT_EQ(flat.list->count, 1);
    EXPECT_EQ(flat.list->items[0].x_min, static_cast<f32>(count) * 0.5F);
}

// 60 cells, each referring twice to the next: 2^60 ways to the leaf.
static GdsBytes doubling_chain(bool with_polygon, Point second) {
    GdsBytes bytes;
    bytes.head();
    for (i32 i = 0; i < 60; ++i) {
        const std::string next = "C" + std::to_string(i + 1);
        bytes.begin("C" + std::to_string(i)).sref(next, {0, 0}).sref(next, second).end();
    }
    bytes.begin("C60");
    if (with_polygon) {
        bytes.box(1, 0, 0, 4, 4);
    }
    return bytes.end().close();
}

TEST(GdsFlatten, DoublingChainsEndAtOnce) {
    const Box window = {-1000, -1000, 1000, 1000};
    for (const Point second : {Point{0, 0}, Point{1, 1}, Point{7, -3}}) {
        GdsBytes dropped = doubling_chain(true, second);
        const GdsLoaded loaded = load(dropped);
        Flattened flat = flatten(loaded, "C0", window, 5);
        EXPECT_EQ(flat.list->count, 0);
        EXPECT_EQ(flat.skipped, i64{1} << 60) << second.x;
        EXPECT_EQ(flat.smallest, 4);
        GdsBytes bare = doubling_chain(false, {second.x * 100, second.y});
        const GdsLoaded empty = load(bare);
        EXPECT_EQ(flatten(empty, "C0", window, 5).skipped, 0);
    }
}

static Flattened flatten_array(u16 cols, u16 rows, Point p2, Point p3, Box window, i64 min_size,
                               f64 degrees = 0.0) {
    GdsBytes bytes;
    bytes.head().begin("TOP").sref("M", {0, 0}, 0, 1.0, degrees).end();
    bytes.begin("M").aref("A", cols, rows, {0, 0}, p2, p3).end();
    const GdsLoaded loaded = load(bytes.begin("A").box(1, 0, 0, 4, 4).end().close());
    return flatten(loaded, "TOP", window, min_size);
}

TEST(GdsFlatten, LargestArrayCostsOnlyWhatIsNear) {
    // Pitch 10 exactly: 655350 / 65535. A window of 100 x 100 holds 10 x 10 elements; one that begins at
    // 5000 meets columns 500 to 509.
    Flattened flat = flatten_array(65535, 65535, {655350, 0}, {0, 655350}, {5000, 7000, 5100, 7100}, 0);
    ASSERT_EQ(flat.list->count, 100);
    EXPECT_EQ(flat.list->items[0].x_min, 0);
    EXPECT_EQ(flat.list->items[1].y_min, 5);   // the next row first
    EXPECT_EQ(flat.list->items[10].x_min, 5);  // then the next column
    EXPECT_EQ(flatten_array(65535, 65535, {655350, 0}, {0, 655350}, {-100, -100, 0, 0}, 0).list->count, 0);
    Flattened turned =
        flatten_array(65535, 65535, {655350, 0}, {0, 655350}, {-50, 300000, 50, 300100}, 0, 45.0);
    EXPECT_GT(turned.list->count, 50);
    EXPECT_LT(turned.list->count, 200);
}

TEST(GdsFlatten, LargestArrayOfDroppedPolygonsIsCounted) {
    const i64 all = i64{65535} * 65535;
    const Box window = {-10, -10, 1000000, 1000000};
    EXPECT_EQ(flatten_array(65535, 65535, {655350, 0}, {0, 655350}, window, 5).skipped, all);
    EXPECT_EQ(flatten_array(65535, 65535, {65535, 0}, {0, 65535}, window, 5).skipped, all);
    // Without a pitch, and with columns and rows on one line.
    EXPECT_EQ(flatten_array(65535, 65535, {0, 0}, {0, 0}, window, 5).skipped, all);
    EXPECT_EQ(flatten_array(65535, 65535, {65535, 65535}, {65535, 65535}, window, 5).skipped, all);
    // Half of the columns: the window ends at 327675 = 32767.5 pitches, so 32768 of them begin before it.
    Flattened half = flatten_array(65535, 65535, {655350, 0}, {0, 655350}, {-10, -10, 327675, 1000000}, 5);
    EXPECT_EQ(half.skipped, i64{32768} * 65535);
    EXPECT_EQ(half.list->count, 0);
}

TEST(GdsFlatten, ArraysWithinArraysSaturateTheCount) {
    GdsBytes bytes;
    bytes.head();
    for (i32 i = 0; i < 10; ++i) {
        bytes.begin("C" + std::to_string(i));
        bytes.aref("C" + std::to_string(i + 1), 65535, 65535, {0, 0}, {65535, 0}, {0, 65535}).end();
    }
    const GdsLoaded loaded = load(bytes.begin("C10").box(1, 0, 0, 4, 4).end().close());
    const Flattened flat = flatten(loaded, "C0", {-10, -10, 10000000, 10000000}, 5);
    EXPECT_EQ(flat.skipped, I64_MAX);
}

TEST(GdsCellBbox, LargestArrays) {
    struct ArrayCase {
        Point p2, p3;
        f64 degrees;
        Box expected;
    };
    // The last element begins at 65534 pitches and is 4 wide.
    const ArrayCase cases[] = {
        {{655350, 0}, {0, 655350}, 0.0, {0, 0, 655344, 655344}},
        {{-655350, 0}, {0, 131070}, 0.0, {-655340, 0, 4, 131072}},
        {{0, 0}, {0, 0}, 0.0, {0, 0, 4, 4}},
    };
    for (const ArrayCase &array : cases) {
        GdsBytes bytes;
        bytes.head().begin("M").aref("A", 65535, 65535, {0, 0}, array.p2, array.p3).end();
        const GdsLoaded loaded = load(bytes.begin("A").box(1, 0, 0, 4, 4).end().close());
        EXPECT_EQ(find_cell(loaded, "M")->bbox, array.expected);
    }
    // These only have to end: turned against their own direction, and wrapping all over the range.
    for (const f64 degrees : {45.0, 90.0, 33.0}) {
        for (const Point end : {Point{655350, 655350}, Point{I32_MAX, I32_MAX}, Point{100, 100}}) {
            GdsBytes bytes;
            bytes.head().begin("TOP").sref("M", {I32_MAX, 5}, 0, 3.0, degrees).end();
            bytes.begin("M").aref("A", 65535, 65535, {0, 0}, end, {-end.x, end.y}).end();
            const GdsLoaded loaded = load(bytes.begin("A").box(1, 0, 0, 4, 4).end().close());
            EXPECT_EQ(find_cell(loaded, "TOP")->bbox_valid, 1);
        }
    }
}

// The same array is met twice at one depth and once at another, each time somewhere else.
TEST(GdsFlatten, AnArrayIsPlacedAnewEachTimeItIsMet) {
    GdsBytes bytes;
    bytes.head().begin("PART").box(1, 0, 0, 10, 10).end();
    bytes.begin("A").aref("PART", 2, 1, {0, 0}, {80, 0}, {0, 20}).end();
    bytes.begin("DEEPER").sref("A", {0, 100}).end();
    bytes.begin("TOP").sref("A", {200, 300}).sref("A", {200, 500}).sref("DEEPER", {600, 300}).end().close();
    const GdsLoaded loaded = load(bytes);
    Flattened flat = flatten(loaded, "TOP", WINDOW);
    // Less the corner (100, 200), half a micrometre a unit; the two elements are 40 units apart.
    const FlatPoint expected[] = {{50, 50}, {70, 50}, {50, 150}, {70, 150}, {250, 100}, {270, 100}};
    ASSERT_EQ(flat.list->count, 6);
    for (i32 i = 0; i < 6; ++i) {
        EXPECT_EQ(flat.list->items[i].x_min, expected[i].x) << "polygon " << i;
        EXPECT_EQ(flat.list->items[i].y_min, expected[i].y) << "polygon " << i;
    }
}
