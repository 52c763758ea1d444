#include "gds/gds_write.h"

#include <gtest/gtest.h>

#include <cstring>
#include <filesystem>

#include "gds/gds_flatten.h"
#include "gds/gds_read.h"
#include "gds/gds_real8.h"
#include "log/log.h"
#include "platform/memory.h"
#include "platform/platform.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_load.h"
#include "tests/support/test_support.h"

static GdsDatabase with_units(f64 unit) {
    GdsDatabase database = {};
    std::string raw = bytes_real8(unit) + bytes_real8(unit * 1e-6);
    database.unit = gds_real8_to_double(reinterpret_cast<const u8 *>(raw.data()) + 8) * 1000000.0;
    std::memcpy(database.units_raw, raw.data(), 16);
    return database;
}

// What stands before and after the elements.
static std::string library(const std::string &elements, f64 unit) {
    GdsBytes bytes;
    bytes.record_u16(GDS_RECORD_HEADER, {600}).record(GDS_RECORD_BGNLIB, std::string(24, '\0'));
    bytes.record(GDS_RECORD_LIBNAME);
    bytes.record(GDS_RECORD_UNITS, bytes_real8(unit) + bytes_real8(unit * 1e-6));
    bytes.record(GDS_RECORD_BGNSTR, std::string(24, '\0'));
    bytes.record(GDS_RECORD_STRNAME, std::string("TOP\0", 4)).raw(elements);
    return bytes.end().close().bytes;
}

static std::string write_list(const GdsDatabase *database, const PolygonList *list) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"Polygon.gds");
    EXPECT_EQ(gds_write_polygons(database, path.c_str(), list), 0);
    return test_file_read(path);
}

static void append(PolygonList *list, u16 layer, const std::vector<FlatPoint> &points) {
    FlatPolygon polygon = {};
    polygon.layer = layer;
    polygon.point_count = static_cast<i32>(points.size());
    polygon.points = memory_new_array<FlatPoint>(polygon.point_count);
    std::copy(points.begin(), points.end(), polygon.points);
    array_append(&list->items, &list->count, &list->capacity, polygon);
}

TEST(GdsWrite, EmptyListGivesOneEmptyStructure) {
    const GdsDatabase database = with_units(0.001);
    const Owned<PolygonList> list(polygon_list_create());
    const std::string bytes = write_list(&database, list.get());
    EXPECT_EQ(bytes, library("", 0.001));
    // The first bytes as a person would check them.
    EXPECT_EQ(bytes.substr(0, 10), std::string("\0\x06\0\x02\x02\x58\0\x1C\x01\x02", 10));
    GdsLoaded loaded = gds_load_bytes(bytes);
    EXPECT_EQ(loaded.result, 0);
    ASSERT_EQ(loaded.database->cell_count, 1);
    EXPECT_STREQ(nstring_text(loaded.database->cells[0].name), "TOP");
}

TEST(GdsWrite, PolygonsInOrderWithFullLayers) {
    const GdsDatabase database = with_units(0.25);  // exact in f32
    const Owned<PolygonList> list(polygon_list_create());
    append(list.get(), 300, {{0.0F, 0.0F}, {1.0F, -0.5F}, {0.6F, 0.7F}});
    append(list.get(), 65535, {{2.5F, 3.0F}});
    // 0.6 / 0.25 = 2.4 and 0.7 / 0.25 = 2.8 are truncated.
    GdsBytes elements;
    elements.boundary(300, {{0, 0}, {4, -2}, {2, 2}}).boundary(65535, {{10, 12}});
    EXPECT_EQ(write_list(&database, list.get()), library(elements.bytes, 0.25));
}

TEST(GdsWrite, CoordinatesThatDoNotFit) {
    const GdsDatabase database = with_units(0.25);
    const Owned<PolygonList> list(polygon_list_create());
    append(list.get(), 1, {{1e30F, -1e30F}});
    GdsBytes elements;
    EXPECT_EQ(write_list(&database, list.get()),
              library(elements.boundary(1, {{I32_MIN, I32_MIN}}).bytes, 0.25));
}

TEST(GdsWrite, LengthOfManyPointsIsCutTo16Bits) {
    const GdsDatabase database = with_units(0.25);
    const Owned<PolygonList> list(polygon_list_create());
    append(list.get(), 1, std::vector<FlatPoint>(8192));
    const std::string bytes = write_list(&database, list.get());
    // 8 x 8192 + 4 = 65540 is 4 in 16 bits; all points follow all the same.
    const size_t xy = bytes.find(std::string("\x10\x03", 2));
    EXPECT_EQ(bytes.substr(xy - 2, 2), bytes_u16(4));
    EXPECT_EQ(bytes.size(), library(GdsBytes().boundary(1, {}).bytes, 0.25).size() + 65536);
}

TEST(GdsWrite, AFileThatNobodyCanReadIsTold) {
    const GdsDatabase database = with_units(0.25);
    const struct {
        i32 point_count, result;
        const char *told;
    } cases[] = {
        {8191, 0, ""},
        {8192, 1,
         "x.gds: 1 of 2 polygons have more points than a record of the format holds (8191): readers will "
         "refuse the file. The largest is polygon 2, on layer 7, with 8192 points\n"}};
    for (const auto &c : cases) {
        ConsoleCapture console;
        const Owned<PolygonList> list(polygon_list_create());
        append(list.get(), 1, {{0.0F, 0.0F}});
        append(list.get(), 7, std::vector<FlatPoint>(static_cast<size_t>(c.point_count)));
        EXPECT_EQ(gds_write_unreadable(list.get(), L"x.gds"), c.result);
        EXPECT_EQ(console.diagnostics(), c.told);
        console.reset();
        const GdsLoaded loaded = gds_load_bytes(write_list(&database, list.get()));
        EXPECT_EQ(loaded.result == 0, c.result == 0) << "the warning must be true";
        EXPECT_EQ(console.diagnostics().find("readers will refuse") == std::string::npos, c.result == 0);
    }
}

TEST(GdsWrite, WhatIsWrittenIsReadBack) {
    GdsBytes source;
    source.head(0.25).begin("TOP").box(3, 10, 20, 60, 90).path(4, 2, 8, {{100, 100}, {200, 150}, {200, 260}});
    source.aref("A", 3, 2, {300, 300}, {420, 300}, {300, 400}, GDS_REFLECTION, 1.5, 30.0).end();
    source.begin("A").boundary(999, {{0, 0}, {30, 0}, {0, 20}, {0, 0}}).end().close();
    GdsLoaded loaded = gds_load_bytes(source.bytes);
    ASSERT_EQ(loaded.result, 0);
    const Box window = {-16, -32, 2000, 2000};
    const Owned<PolygonList> list(polygon_list_create());
    FlattenContext context = {list.get(), window, I64_MAX, 0, 0, static_cast<f32>(loaded.database->unit)};
    const GdsInstance instance = {find_cell(loaded, "TOP"), GDS_PLACEMENT_IDENTITY, 1};
    ASSERT_EQ(gds_flatten(&context, &instance), 0);
    GdsLoaded again = gds_load_bytes(write_list(loaded.database.get(), list.get()));
    ASSERT_EQ(again.result, 0);
    EXPECT_EQ(again.database->unit, loaded.database->unit);
    ASSERT_EQ(again.database->cell_count, 1);
    const GdsCell *top = &again.database->cells[0];
    ASSERT_EQ(top->polygon_count, list->count);
    ASSERT_EQ(list->count, 8);
    for (i32 i = 0; i < list->count; ++i) {
        const FlatPolygon *flat = &list->items[i];
        ASSERT_EQ(top->polygons[i].point_count, flat->point_count);
        EXPECT_EQ(top->polygons[i].layer, flat->layer);
        for (i32 k = 0; k < flat->point_count; ++k) {
            // A unit of a quarter is exact in f32, so nothing is lost.
            EXPECT_EQ(static_cast<f32>(top->polygons[i].points[k].x) * 0.25F, flat->points[k].x);
            EXPECT_EQ(static_cast<f32>(top->polygons[i].points[k].y) * 0.25F, flat->points[k].y);
        }
    }
    EXPECT_EQ(top->polygons[0].bbox, (Box{26, 52, 76, 122}));
}

TEST(GdsWrite, PathsThatCannotBeWritten) {
    const ConsoleCapture console;
    const TemporaryFolder folder;
    const GdsDatabase database = with_units(0.001);
    const Owned<PolygonList> list(polygon_list_create());
    EXPECT_EQ(gds_write_polygons(&database, nullptr, list.get()), 1);
    const std::wstring path = folder.file(L"missing") + PLATFORM_SEPARATOR + L"Polygon.gds";
    EXPECT_EQ(gds_write_polygons(&database, path.c_str(), list.get()), 1);
    EXPECT_NE(console.diagnostics().find("Polygon.gds: cannot be created: "), std::string::npos);
    EXPECT_EQ(console.narrow(), "");
}

TEST(GdsWrite, AFullDeviceIsToldAndStays) {
    std::error_code error;
    if (!std::filesystem::is_character_file("/dev/full", error)) {
        GTEST_SKIP() << "no device that is always full";
    }
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"Polygon.gds");
    std::filesystem::create_symlink("/dev/full", std::filesystem::path(path), error);
    ASSERT_FALSE(error) << error.message();
    const GdsDatabase database = with_units(0.001);
    for (const i32 polygon_count : {0, 5000}) {  // the error comes at the end or in between
        const ConsoleCapture console;
        const Owned<PolygonList> list(polygon_list_create());
        for (i32 i = 0; i < polygon_count; ++i) {
            append(list.get(), 1, {{0.0F, 0.0F}, {1.0F, 1.0F}});
        }
        EXPECT_EQ(gds_write_polygons(&database, path.c_str(), list.get()), 1);
        EXPECT_NE(console.diagnostics().find("No space left"), std::string::npos) << console.diagnostics();
        EXPECT_TRUE(std::filesystem::is_symlink(std::filesystem::path(path)));
    }
}
