// Layouts that are small and ask for more work than any machine can do: what they come to is worked out
// without it, or the walk stops at its limit of steps.
#include <gtest/gtest.h>

#include "gds/gds_flatten.h"
#include "gds/gds_hierarchy.h"
#include "log/log.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_load.h"
#include "tests/support/test_support.h"

static std::vector<std::string> told_lines;

// Keeps what diagnostic_write tells.
struct ToldLines {
    ToldLines() {
        told_lines.clear();
        diagnostic_set_sink([](const wchar_t *text) { told_lines.push_back(test_utf8(text)); });
    }
    ~ToldLines() { diagnostic_set_sink(nullptr); }
    ToldLines(const ToldLines &) = delete;
    ToldLines &operator=(const ToldLines &) = delete;
};

struct Outcome {
    i32 result, count;
    i64 skipped, smallest, steps;
};

// Polygons below 20 units are dropped unless told otherwise.
static Outcome flatten(const GdsLoaded &loaded, const char *name, Box window, i64 step_limit = 0,
                       i64 min_size = 20) {
    const Owned<PolygonList> list(polygon_list_create());
    FlattenContext context = {list.get(), window, I64_MAX, min_size, 0, 0.001F};
    context.step_limit = step_limit;
    const GdsInstance instance = {find_cell(loaded, name), GDS_PLACEMENT_IDENTITY, 1};
    const i32 result = gds_flatten(&context, &instance);
    for (i32 i = 0; i < loaded.database->cell_count; ++i) {
        EXPECT_EQ(loaded.database->cells[i].visiting, 0);
        EXPECT_EQ(loaded.database->cells[i].flatten_number, 0);
    }
    return {result, list->count, context.skipped, context.smallest, context.steps};
}

static GdsLoaded load(const GdsBytes &bytes) {
    GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    EXPECT_EQ(loaded.result, 0);
    return loaded;
}

static const Box ALL = {-100000, -100000, 100000, 100000};

// Each cell has one polygon and refers to all later ones: 2^(count - 1) ways from C0 to polygons.
static GdsBytes dense_cells(i32 count, f64 degrees) {
    GdsBytes bytes;
    bytes.head();
    for (i32 i = 0; i < count; ++i) {
        bytes.begin("C" + std::to_string(i)).box(1, 0, 0, 10, 10);
        for (i32 k = i + 1; k < count; ++k) {
            bytes.sref("C" + std::to_string(k), {k - i, i % 3}, 0, 1.0, degrees);
        }
        bytes.end();
    }
    return bytes.close();
}

// No reference is looked at twice, since no cell is entered twice.
TEST(GdsBounds, DenseReferencesAmongDroppedPolygonsAreCounted) {
    for (const i32 count : {30, 60}) {
        const Outcome outcome = flatten(load(dense_cells(count, 0.0)), "C0", ALL);
        EXPECT_EQ(outcome.result, 0);
        EXPECT_EQ(outcome.skipped, i64{1} << (count - 1));
        EXPECT_EQ(outcome.smallest, 10);
        EXPECT_EQ(outcome.steps, 0);
    }
    // 2^199 of them: the count stays at the largest number.
    EXPECT_EQ(flatten(load(dense_cells(200, 0.0)), "C0", ALL).skipped, I64_MAX);
}

TEST(GdsBounds, DenseReferencesThatAllTurnStop) {
    const ToldLines told;
    const GdsLoaded loaded = load(dense_cells(60, 0.37));
    const Outcome outcome = flatten(loaded, "C0", ALL, 100000);
    EXPECT_EQ(outcome.result, 30);
    EXPECT_EQ(outcome.count, 0);
    EXPECT_GT(outcome.steps, 100000);
    EXPECT_LT(outcome.steps, 100200) << "stops soon";
    ASSERT_EQ(told_lines.size(), 1U);
    const std::string begin =
        "more than 100000 steps through references and polygons gave only 0 polygons of the section and its "
        "margin; this limit was reached in cell \"C";
    EXPECT_EQ(told_lines[0].substr(0, begin.size()), begin);
}

// An array of an array of a square of 10 x 10, all with pitches of 1.
static GdsBytes nested_arrays(u16 side) {
    GdsBytes bytes;
    bytes.head().begin("TOP").aref("ROW", side, side, {0, 0}, {side, 0}, {0, side}).end();
    bytes.begin("ROW").aref("LEAF", side, side, {0, 0}, {side, 0}, {0, side}).end();
    return bytes.begin("LEAF").box(1, 0, 0, 10, 10).end().close();
}

TEST(GdsBounds, NestedArraysAtTheEdgeAreCounted) {
    // A square meets the window when the sum of its two columns is below 200, and that of its rows. There are
    // 1 + 2 + ... + 200 = 20100 such pairs of columns (no column reaches 200 alone, of 256 there are), and as
    // many of rows.
    const Outcome outcome = flatten(load(nested_arrays(256)), "TOP", {-50, -50, 200, 200});
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.skipped, i64{20100} * 20100);
    EXPECT_EQ(outcome.smallest, 10);
    // 200 x 200 rows are entered; each takes a few steps to find its own 1 to 200 columns and rows.
    EXPECT_LT(outcome.steps, 200 * 200 * 400);
}

TEST(GdsBounds, LargestNestedArraysStop) {
    const ToldLines told;
    const GdsLoaded loaded = load(nested_arrays(65535));
    const Outcome outcome = flatten(loaded, "TOP", {-50, -50, 30000, 30000});
    EXPECT_EQ(outcome.result, 30);
    EXPECT_EQ(outcome.count, 0);
    ASSERT_EQ(told_lines.size(), 1U);
    EXPECT_EQ(told_lines[0],
              "more than 64000000 steps through references and polygons gave only 0 polygons of the section "
              "and its "
              "margin; this limit was reached in cell \"ROW\"");
}

// The boxes of all elements reach back to the origin and so over the window; their polygon is far away.
TEST(GdsBounds, ElementsOfWhichOnlyTheExtentMeetsTheWindow) {
    GdsBytes bytes;
    bytes.head().begin("TOP").aref("LEAF", 65535, 65535, {0, 0}, {65535, 0}, {0, 65535}).end();
    bytes.begin("LEAF").box(1, 1000000, 1000000, 1000010, 1000010).end().close();
    const Outcome outcome = flatten(load(bytes), "TOP", {-50, -50, 8000, 3000}, 0, 0);
    EXPECT_EQ(outcome.result, 0);
    EXPECT_EQ(outcome.count, 0);
    EXPECT_EQ(outcome.skipped, 0);
    EXPECT_LT(outcome.steps, 5000);
}

// Elements on a line through the origin: column and row pitch cancel. Turned by 45 degrees it stands upright.
static GdsBytes cancelling_array(f64 degrees) {
    const i32 end = 65535 * 7;
    GdsBytes bytes;
    bytes.head().begin("TOP").sref("LINE", {0, 0}, 0, 1.0, degrees).end();
    bytes.begin("LINE").aref("LEAF", 65535, 65535, {0, 0}, {end, end}, {-end, -end}).end();
    return bytes.begin("LEAF").box(1, 0, 0, 10, 10).end().close();
}

TEST(GdsBounds, CancellingPitchesBesideTheWindow) {
    const ToldLines told;
    const GdsLoaded loaded = load(cancelling_array(45.0));
    // The square turned reaches 7.07 to both sides; the elements lie within a unit or two of x = 0.
    for (const Box window : {Box{20, -100000, 100000, 100000}, Box{-100000, -100000, -20, 100000}}) {
        const Outcome outcome = flatten(loaded, "TOP", window);
        EXPECT_EQ(outcome.result, 0);
        EXPECT_EQ(outcome.skipped, 0);
        EXPECT_EQ(outcome.steps, 0) << "seen at once";
    }
    EXPECT_TRUE(told_lines.empty() || told_lines.size() == 1) << "at most of the sizing";
}

// TOP comes first, so that LINE is sized as it is turned: its elements all lie within a unit or two of x = 0,
// and which of them reaches farthest is a matter of rounding.
TEST(GdsBounds, SizingStopsLookingForTheLastUnit) {
    const ToldLines told;
    const GdsLoaded loaded = load(cancelling_array(45.0));
    ASSERT_EQ(told_lines.size(), 1U);
    EXPECT_EQ(
        told_lines[0],
        "the arrays take more than 1000000 steps to be sized; that of cell \"LEAF\" in cell \"LINE\", and "
        "others, may be listed a few units too large");
    // LEAF is first met turned: 7.07 to both sides and 14.14 high, and turned back -4.95 to 14.85 in x and y.
    // Placed again that reaches 14 to both sides, 7 down and 21 up. 65534 steps of 7 x 1.41421 up and down
    // make 648753.
    const Box box = find_cell(loaded, "TOP")->bbox;
    EXPECT_NEAR(box.x_min, -14, 5);
    EXPECT_NEAR(box.x_max, 14, 5);
    EXPECT_NEAR(box.y_min, -648753 - 7, 5);
    EXPECT_NEAR(box.y_max, 648753 + 21, 5);
}

TEST(GdsBounds, SizesOfUsualArraysTakeNoCountedSteps) {
    for (const f64 degrees : {0.0, 90.0, 30.0, 12.0, 45.0}) {
        GdsBytes bytes;
        bytes.head().begin("TOP").sref("A", {0, 0}, 0, 1.0, degrees).end();
        bytes.begin("A").aref("LEAF", 200, 100, {5, 7}, {10005, 7}, {5, 3707}).end();
        const GdsLoaded loaded = load(bytes.begin("LEAF").box(1, 0, 0, 40, 20).end().close());
        for (i32 i = 0; i < loaded.database->cell_count; ++i) {
            loaded.database->cells[i].bbox_valid = 0;
        }
        EXPECT_EQ(gds_size_cells(loaded.database.get()), 0) << degrees;
    }
}

// Cells that all refer to all: with each cell more there are that many times more ways.
TEST(GdsBounds, CyclesAmongAllCellsStop) {
    GdsBytes bytes;
    bytes.head();
    for (i32 i = 0; i < 20; ++i) {
        bytes.begin("C" + std::to_string(i)).box(1, 0, 0, 10, 10);
        for (i32 k = 0; k < 20; ++k) {
            bytes.sref("C" + std::to_string(k), {3 * k, i});
        }
        bytes.end();
    }
    const ToldLines told;
    const GdsLoaded loaded = load(bytes.close());
    EXPECT_EQ(flatten(loaded, "C0", ALL, 1000000).result, 30);
    EXPECT_EQ(told_lines.size(), 1U);
}

// 2,000 placements of 2,000 placements, each of which has to be looked at: 4 million of 8 steps.
TEST(GdsBounds, PlacementsOfManyPlacementsStop) {
    TestRandom random = test_random_start(3);
    GdsBytes bytes;
    bytes.head().begin("TOP");
    for (i32 i = 0; i < 2000; ++i) {
        bytes.sref("MANY", {test_random_i32(&random, 0, 5000), test_random_i32(&random, 0, 5000)});
    }
    bytes.end().begin("MANY");
    for (i32 i = 0; i < 2000; ++i) {
        bytes.sref("LEAF", {test_random_i32(&random, -5000, 5000), test_random_i32(&random, -5000, 5000)});
    }
    const GdsLoaded loaded = load(bytes.end().begin("LEAF").box(1, 0, 0, 10, 10).end().close());
    const ToldLines told;
    const Box window = {0, 0, 5000, 5000};
    EXPECT_EQ(flatten(loaded, "TOP", window, 10000000).result, 30);
    ASSERT_EQ(told_lines.size(), 1U);
    EXPECT_NE(told_lines[0].find("reached in cell \"MANY\""), std::string::npos) << told_lines[0];
    EXPECT_EQ(flatten(loaded, "TOP", window).result, 0) << "within the limit";
}

// What the file holds is looked at once without being counted, and each polygon taken allows 16 steps more.
TEST(GdsBounds, PlainLayoutsTakeNoCountedSteps) {
    GdsBytes bytes;
    bytes.head().begin("TOP");
    for (i32 i = 0; i < 3000; ++i) {
        bytes.box(1, i * 100, 5000, i * 100 + 50, 5050).sref("A", {i * 100, 0});
    }
    bytes.end().begin("A").box(1, 0, 0, 50, 50).box(2, 0, 60, 50, 90).end().close();
    const GdsLoaded loaded = load(bytes);
    const Outcome all = flatten(loaded, "TOP", {-10, -10, 1000000, 10000}, 1);
    EXPECT_EQ(all.result, 0);
    EXPECT_EQ(all.count, 9000);
    EXPECT_EQ(all.steps, 0);
    const Outcome none = flatten(loaded, "TOP", {-100, -100, -50, -50}, 1);
    EXPECT_EQ(none.result, 0);
    EXPECT_EQ(none.steps, 0);
}
