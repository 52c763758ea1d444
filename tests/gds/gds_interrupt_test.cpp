// An interrupt ends reading and flattening soon, without a crash or a leak.
#include <gtest/gtest.h>

#include "gds/gds_flatten.h"
#include "gds/gds_hierarchy.h"
#include "gds/gds_read.h"
#include "log/log.h"
#include "platform/platform.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_load.h"

static std::atomic<i32> interrupted{0};

struct Interrupt {
    explicit Interrupt(i32 flag) {
        interrupted = flag;
        platform_interrupt_watch(&interrupted, nullptr);
    }
    ~Interrupt() { platform_interrupt_watch(nullptr, nullptr); }
    Interrupt(const Interrupt &) = delete;
    Interrupt &operator=(const Interrupt &) = delete;
};

static i32 console_texts = 0;

// An interrupt while the list of cells is told.
static void interrupt_at_first_text(const wchar_t *) {
    ++console_texts;
    interrupted = 1;
}

// So many cells with a square each, and the first with a reference to every other.
static std::string cells(i32 count) {
    GdsBytes bytes;
    bytes.head().begin("C0").box(1, 0, 0, 5, 5);
    for (i32 i = 1; i < count; ++i) {
        bytes.sref("C" + std::to_string(i), {10 * i, 0});
    }
    bytes.end();
    for (i32 i = 1; i < count; ++i) {
        bytes.begin("C" + std::to_string(i)).box(1, 0, 0, 5, 5).end();
    }
    return bytes.close().bytes;
}

TEST(GdsReadInterrupt, EndsTheReadingOfALongFile) {
    const Interrupt interrupt(1);
    GdsLoaded loaded = gds_load_bytes(cells(200));
    EXPECT_EQ(loaded.result, GDS_INTERRUPTED);
    EXPECT_LT(loaded.database->cell_count, 200) << "the rest of the file is not read";
}

TEST(GdsReadInterrupt, EndsTheListOfCells) {
    const Interrupt interrupt(0);
    console_texts = 0;
    console_set_sink(interrupt_at_first_text, nullptr);
    const GdsLoaded loaded = gds_load_bytes(cells(10));
    console_set_sink(nullptr, nullptr);
    EXPECT_EQ(loaded.result, GDS_INTERRUPTED);
    EXPECT_EQ(console_texts, 2) << "the heading and the end of the list, without any cell";
}

TEST(GdsReadInterrupt, NoneChangesNothing) {
    const Interrupt interrupt(0);
    EXPECT_EQ(gds_load_bytes(cells(200)).result, 0);
}

TEST(GdsFlattenInterrupt, EndsWithMinusTwoAndLeavesTheCellsAsTheyWere) {
    const GdsLoaded loaded = gds_load_bytes(cells(10));
    ASSERT_EQ(loaded.result, 0);
    const Owned<PolygonList> list(polygon_list_create());
    FlattenContext context = {list.get(), {-10, -10, 1000, 1000}, I64_MAX, 0, 0, 1.0F};
    const GdsInstance instance = {find_cell(loaded, "C0"), GDS_PLACEMENT_IDENTITY, 1};
    {
        const Interrupt interrupt(1);
        EXPECT_EQ(gds_flatten(&context, &instance), -2);
    }
    EXPECT_LT(list->count, 10);
    EXPECT_EQ(find_cell(loaded, "C0")->visiting, 0);
    const i32 before = list->count;
    EXPECT_EQ(gds_flatten(&context, &instance), 0);
    EXPECT_EQ(list->count, before + 10);
}

TEST(GdsFlattenInterrupt, EndsWithinOneCellOfManyPolygons) {
    GdsBytes bytes;
    bytes.head().begin("C");
    for (i32 i = 0; i < 1000; ++i) {
        bytes.box(1, i, 0, i + 5, 5);
    }
    const GdsLoaded loaded = gds_load_bytes(bytes.end().close().bytes);
    const Owned<PolygonList> list(polygon_list_create());
    FlattenContext context = {list.get(), {-10, -10, 2000, 2000}, I64_MAX, 0, 0, 1.0F};
    const GdsInstance instance = {find_cell(loaded, "C"), GDS_PLACEMENT_IDENTITY, 1};
    const Interrupt interrupt(1);
    EXPECT_EQ(gds_flatten(&context, &instance), -2);
    EXPECT_LT(list->count, 1000);
}

TEST(GdsHierarchyInterrupt, EndsTheSizingOfCells) {
    const GdsLoaded loaded = gds_load_bytes(cells(10));
    GdsCell *cell = find_cell(loaded, "C0");
    cell->bbox_valid = 0;
    const Interrupt interrupt(1);
    gds_cell_bbox(cell, GDS_PLACEMENT_IDENTITY, 0);
    EXPECT_EQ(cell->bbox_valid, 0);
}
