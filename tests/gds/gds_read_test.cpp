// What the records of a stream that loads leave in the database, and what the console says.
#include <gtest/gtest.h>

#include "gds/gds_read.h"
#include "gds/gds_real8.h"
#include "log/log.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_load.h"
#include "tests/support/test_support.h"

static std::vector<Point> points_of(const GdsPolygon &polygon) {
    return {polygon.points, polygon.points + polygon.point_count};
}

static const std::vector<Point> SQUARE = {{0, 0}, {0, 10}, {10, 10}, {10, 0}, {0, 0}};

TEST(GdsRead, HeaderUnitsAndCells) {
    GdsBytes bytes;
    bytes.head().begin("ONE").boundary(7, SQUARE).boundary(300, {{-5, -6}, {1, 2}}).end();
    bytes.begin("TWO").end().close();
    const GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    ASSERT_EQ(loaded.result, 0);
    const GdsDatabase *database = loaded.database.get();
    EXPECT_EQ(database->version, 600);
    // The nearest GDSII real to 1e-9 and its product with 1e6.
    std::string real = bytes_real8(0.001e-6);
    EXPECT_EQ(database->unit, gds_real8_to_double(reinterpret_cast<const u8 *>(real.data())) * 1000000.0);
    EXPECT_NEAR(database->unit, 0.001, 1e-15);
    const std::string raw(reinterpret_cast<const char *>(database->units_raw), 16);
    EXPECT_EQ(raw, bytes_real8(0.001) + real);
    ASSERT_EQ(database->cell_count, 2);
    const GdsCell *cell = &database->cells[0];
    EXPECT_STREQ(nstring_text(cell->name), "ONE");
    ASSERT_EQ(cell->polygon_count, 2);
    EXPECT_EQ(cell->polygons[0].layer, 7);
    EXPECT_EQ(points_of(cell->polygons[0]), SQUARE);
    EXPECT_EQ(cell->polygons[1].layer, 300);
    EXPECT_EQ(cell->polygons[1].bbox, (Box{-5, -6, 1, 2}));
    EXPECT_EQ(cell->bbox, (Box{-5, -6, 10, 10}));
    EXPECT_EQ(cell->bbox_valid, 1);
}

TEST(GdsRead, ClosedCellsKeepNoSpareRoom) {
    GdsBytes bytes;
    bytes.head().begin("C").boundary(1, SQUARE).sref("C", {0, 0}).end().close();
    GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    ASSERT_EQ(loaded.result, 0);
    const GdsCell *cell = &loaded.database->cells[0];
    EXPECT_EQ(cell->polygon_capacity, 0) << "its lists lie in the store of the database";
    EXPECT_EQ(cell->sref_capacity, 0);
    EXPECT_EQ(cell->aref_capacity, 0);
}

TEST(GdsRead, References) {
    GdsBytes bytes;
    bytes.head().begin("TOP").sref("A", {5, -7}, 0x8006, 2.5, 90.0).sref("A", {1, 2});
    bytes.aref("A", 3, 65535, {1, 2}, {31, 2}, {1, 65537}, 0, 1.0, -45.0).end().begin("A").end().close();
    const GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    ASSERT_EQ(loaded.result, 0);
    const GdsCell *top = find_cell(loaded, "TOP");
    ASSERT_EQ(top->sref_count, 2);
    const GdsSRef *sref = &top->srefs[0];
    EXPECT_EQ(sref->cell, find_cell(loaded, "A"));
    EXPECT_STREQ(gds_name_text(sref->name), "A");
    EXPECT_EQ(sref->origin, (Point{5, -7}));
    EXPECT_EQ(sref->flags, 0x8006);
    EXPECT_EQ(sref->mag, 2.5F);
    EXPECT_EQ(sref->angle, 1.57079637F);  // the f32 nearest to half pi
    EXPECT_EQ(top->srefs[1].mag, 1.0F);
    EXPECT_EQ(top->srefs[1].angle, 0.0F);
    EXPECT_EQ(top->srefs[1].flags, 0);
    ASSERT_EQ(top->aref_count, 1);
    const GdsARef *aref = &top->arefs[0];
    EXPECT_EQ(aref->p1, (Point{1, 2}));
    EXPECT_EQ(aref->p2, (Point{31, 2}));
    EXPECT_EQ(aref->p3, (Point{1, 65537}));
    EXPECT_EQ(aref->cols, 3);
    EXPECT_EQ(aref->rows, 65535);
    EXPECT_EQ(aref->angle, -0.785398185F);
}

TEST(GdsRead, ListsCells) {
    const ConsoleCapture console;
    GdsBytes bytes;
    bytes.head().begin("FAR").box(1, 100, 200, 110, 220).end();
    bytes.record(GDS_RECORD_BGNSTR).end();
    bytes.begin("EMPTY").end().close();
    ASSERT_EQ(gds_load_bytes(bytes.bytes).result, 0);
    // The origin is inside every extent: 110 by 220 rather than 10 by 20.
    EXPECT_EQ(console.narrow(),
              "CELLS IN DATABASE:\r\n"
              "--> \"FAR\" with size dx = 110 by dy = 220 (database units)\r\n"
              "--> \"\" with size dx = 0 by dy = 0 (database units)\r\n"
              "--> \"EMPTY\" with size dx = 0 by dy = 0 (database units)\r\n\r\n");
    EXPECT_EQ(console.diagnostics(), "");
}

static std::vector<std::wstring> *list_texts;

TEST(GdsRead, CellsAreListedInOneText) {
    // A window takes milliseconds to show each text, however short.
    GdsBytes bytes;
    bytes.head();
    std::wstring expected;
    for (i32 i = 0; i < 5000; ++i) {
        const std::string name = "CELL" + std::to_string(i);
        bytes.begin(name).end();
        expected +=
            L"--> \"CELL" + std::to_wstring(i) + L"\" with size dx = 0 by dy = 0 (database units)\r\n";
    }
    bytes.close();
    std::vector<std::wstring> texts;
    list_texts = &texts;
    console_set_sink([](const wchar_t *text) { list_texts->emplace_back(text); }, nullptr);
    const i32 result = gds_load_bytes(bytes.bytes).result;
    console_set_sink(nullptr, nullptr);
    ASSERT_EQ(result, 0);
    ASSERT_EQ(texts.size(), 3U);
    EXPECT_EQ(texts[0], L"CELLS IN DATABASE:\r\n");
    EXPECT_TRUE(expected == texts[1]);
    EXPECT_EQ(texts[2], L"\r\n");
}

TEST(GdsRead, SizeOfTheWholeRangeWraps) {
    const ConsoleCapture console;
    GdsBytes bytes;
    bytes.head().begin("ALL").box(1, I32_MIN, I32_MIN, I32_MAX, I32_MAX).end().close();
    ASSERT_EQ(gds_load_bytes(bytes.bytes).result, 0);
    EXPECT_NE(console.narrow().find("size dx = -1 by dy = -1"), std::string::npos);
}

TEST(GdsRead, EndOfFileStandsForEndlib) {
    GdsBytes bytes;
    bytes.head().begin("ONE").boundary(1, SQUARE).end();
    const ConsoleCapture console;
    GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    EXPECT_EQ(loaded.result, 0);
    EXPECT_EQ(loaded.database->cell_count, 1);
    EXPECT_NE(console.diagnostics().find("without ENDLIB"), std::string::npos);
}

TEST(GdsRead, NothingAfterEndlibIsRead) {
    GdsBytes bytes;
    bytes.head().begin("ONE").end().close().raw(std::string(2048, '\0')).record(GDS_RECORD_ENDSTR);
    EXPECT_EQ(gds_load_bytes(bytes.bytes).result, 0);
}

TEST(GdsRead, StructureWithoutEndIsDropped) {
    GdsBytes bytes;
    bytes.head().begin("ONE").end().begin("TWO").boundary(1, SQUARE).record(GDS_RECORD_BOUNDARY);
    const ConsoleCapture console;
    GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    EXPECT_EQ(loaded.result, 0);
    EXPECT_EQ(loaded.database->cell_count, 1);
    EXPECT_NE(console.diagnostics().find("cell \"TWO\" has no ENDSTR"), std::string::npos);
}

TEST(GdsRead, WithoutUnitsCellsAreListedAndTheResultIs3) {
    const ConsoleCapture console;
    GdsBytes bytes;
    bytes.begin("ONE").end().close();
    EXPECT_EQ(gds_load_bytes(bytes.bytes).result, 3);
    EXPECT_EQ(console.narrow(),
              "CELLS IN DATABASE:\r\n--> \"ONE\" with size dx = 0 by dy = 0 (database units)\r\n\r\n");
}

TEST(GdsRead, UnitsMustBePositive) {
    for (const f64 unit : {0.0, -0.001}) {
        EXPECT_EQ(gds_load_bytes(GdsBytes().head(unit).close().bytes).result, 3) << unit;
    }
    EXPECT_EQ(gds_load_bytes("").result, 3);
}

TEST(GdsRead, NamesEndAtTheFirstZero) {
    GdsBytes bytes;
    bytes.head().record(GDS_RECORD_BGNSTR);
    bytes.record(GDS_RECORD_STRNAME, std::string("A\0B\0", 4)).end().begin("EVEN").end();
    bytes.begin("TOP").sref("A", {0, 0}).sref("EVEN", {0, 0}).end().close();
    GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    ASSERT_EQ(loaded.result, 0);
    EXPECT_STREQ(nstring_text(loaded.database->cells[0].name), "A");
    EXPECT_EQ(loaded.database->cells[0].name->count, 1U);
    EXPECT_STREQ(nstring_text(loaded.database->cells[1].name), "EVEN");
}

TEST(GdsRead, DatatypesOfBoundariesAndPaths) {
    GdsBytes bytes;
    bytes.head().begin("C");
    for (const u16 type : {u16{0}, u16{5}, u16{65535}}) {
        bytes.record(GDS_RECORD_BOUNDARY).record_u16(GDS_RECORD_LAYER, {4});
        bytes.record_u16(GDS_RECORD_DATATYPE, {type}).xy(SQUARE).record(GDS_RECORD_ENDEL);
    }
    bytes.record(GDS_RECORD_PATH).record_u16(GDS_RECORD_LAYER, {66}).record_u16(GDS_RECORD_DATATYPE, {44});
    bytes.record(GDS_RECORD_WIDTH, bytes_i32(10)).xy({{0, 0}, {100, 0}}).record(GDS_RECORD_ENDEL);
    // Without one, with one that is too short, and with two: none is 0, the last one counts.
    bytes.record(GDS_RECORD_BOUNDARY).record_u16(GDS_RECORD_LAYER, {4}).xy(SQUARE).record(GDS_RECORD_ENDEL);
    bytes.record(GDS_RECORD_BOUNDARY).record_u16(GDS_RECORD_LAYER, {4}).record(GDS_RECORD_DATATYPE);
    bytes.xy(SQUARE).record(GDS_RECORD_ENDEL);
    bytes.record(GDS_RECORD_BOUNDARY).record_u16(GDS_RECORD_LAYER, {4});
    bytes.record_u16(GDS_RECORD_DATATYPE, {7}).record_u16(GDS_RECORD_DATATYPE, {8});
    bytes.xy(SQUARE).record(GDS_RECORD_ENDEL);
    // Between elements and in a TEXT it is passed over, and not kept for the next element.
    bytes.record_u16(GDS_RECORD_DATATYPE, {9});
    bytes.record(GDS_RECORD_TEXT).record_u16(GDS_RECORD_DATATYPE, {9}).record(GDS_RECORD_ENDEL);
    bytes.record(GDS_RECORD_BOUNDARY).record_u16(GDS_RECORD_LAYER, {4}).xy(SQUARE).record(GDS_RECORD_ENDEL);
    GdsLoaded loaded = gds_load_bytes(bytes.end().close().bytes);
    ASSERT_EQ(loaded.result, 0);
    const GdsCell &cell = loaded.database->cells[0];
    const u16 expected[] = {0, 5, 65535, 44, 0, 0, 8, 0};
    ASSERT_EQ(cell.polygon_count, 8);
    for (i32 i = 0; i < 8; ++i) {
        EXPECT_EQ(cell.polygons[i].datatype, expected[i]) << i;
        EXPECT_EQ(cell.polygons[i].layer, i == 3 ? 66 : 4) << i;
    }
}

TEST(GdsRead, OtherElementsAreSkipped) {
    GdsBytes bytes;
    bytes.head().begin("C");
    bytes.record(GDS_RECORD_TEXT).record_u16(GDS_RECORD_LAYER, {1}).record_u16(0x1602, {0});
    bytes.record_u16(GDS_RECORD_STRANS, {0x8000}).real(GDS_RECORD_MAG, 2.0).real(GDS_RECORD_ANGLE, 30.0);
    bytes.record(GDS_RECORD_WIDTH, bytes_i32(5)).xy({{1, 1}}).name(0x1906, "label");
    bytes.record(GDS_RECORD_ENDEL);
    bytes.record(GDS_RECORD_NODE).record_u16(GDS_RECORD_LAYER, {1}).xy(SQUARE).record(GDS_RECORD_ENDEL);
    bytes.record(GDS_RECORD_BOX).record_u16(GDS_RECORD_LAYER, {1}).xy(SQUARE).record(GDS_RECORD_ENDEL);
    bytes.record(0x7777, "whatever").record(0x2B02, "x");
    GdsLoaded loaded = gds_load_bytes(bytes.end().close().bytes);
    EXPECT_EQ(loaded.result, 0);
    EXPECT_EQ(loaded.database->cells[0].polygon_count, 0);
    EXPECT_EQ(loaded.database->cells[0].bbox, (Box{0, 0, 0, 0}));
}

TEST(GdsRead, RepeatedRecordsReplace) {
    GdsBytes bytes;
    bytes.head().begin("OLD").name(GDS_RECORD_STRNAME, "NEW");
    bytes.record(GDS_RECORD_BOUNDARY).record_u16(GDS_RECORD_LAYER, {1}).record_u16(GDS_RECORD_LAYER, {2});
    bytes.xy({{1, 1}, {2, 2}}).xy(SQUARE).record(GDS_RECORD_ENDEL);
    bytes.record(GDS_RECORD_AREF).name(GDS_RECORD_SNAME, "NO").name(GDS_RECORD_SNAME, "NEW");
    bytes.xy({{1, 1}, {2, 2}, {3, 3}}).xy({{9, 9}}).record(GDS_RECORD_ENDEL);
    GdsLoaded loaded = gds_load_bytes(bytes.end().close().bytes);
    ASSERT_EQ(loaded.result, 0);
    const GdsCell *cell = &loaded.database->cells[0];
    EXPECT_STREQ(nstring_text(cell->name), "NEW");
    EXPECT_EQ(cell->polygons[0].layer, 2);
    EXPECT_EQ(points_of(cell->polygons[0]), SQUARE);
    EXPECT_EQ(cell->arefs[0].p1, (Point{9, 9}));
    EXPECT_EQ(cell->arefs[0].p2, (Point{0, 0}));
}

TEST(GdsRead, BoundaryWithoutPointsIsKept) {
    GdsBytes bytes;
    bytes.head().begin("C").record(GDS_RECORD_BOUNDARY).record_u16(GDS_RECORD_LAYER, {1});
    GdsLoaded loaded = gds_load_bytes(bytes.record(GDS_RECORD_ENDEL).end().close().bytes);
    ASSERT_EQ(loaded.result, 0);
    ASSERT_EQ(loaded.database->cells[0].polygon_count, 1);
    EXPECT_EQ(loaded.database->cells[0].polygons[0].point_count, 0);
    EXPECT_EQ(loaded.database->cells[0].polygons[0].bbox, BOX_EMPTY);
    EXPECT_EQ(loaded.database->cells[0].bbox, (Box{0, 0, 0, 0}));
}

TEST(GdsRead, BytesAfterWholePointsAreIgnored) {
    GdsBytes bytes;
    bytes.head().begin("C").record(GDS_RECORD_BOUNDARY).record_u16(GDS_RECORD_LAYER, {1});
    bytes.record(GDS_RECORD_XY, bytes_i32(3) + bytes_i32(4) + "1234567").record(GDS_RECORD_ENDEL);
    GdsLoaded loaded = gds_load_bytes(bytes.end().close().bytes);
    ASSERT_EQ(loaded.result, 0);
    EXPECT_EQ(points_of(loaded.database->cells[0].polygons[0]), (std::vector<Point>{{3, 4}}));
}

TEST(GdsRead, ElementStaysOpenOverTheEndOfItsStructure) {
    GdsBytes bytes;
    bytes.head().begin("A").record(GDS_RECORD_BOUNDARY).record_u16(GDS_RECORD_LAYER, {3}).end();
    bytes.xy(SQUARE).begin("B").record(GDS_RECORD_ENDEL).end().close();
    GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    ASSERT_EQ(loaded.result, 0);
    EXPECT_EQ(loaded.database->cells[0].polygon_count, 0);
    EXPECT_EQ(loaded.database->cells[1].polygon_count, 1);
}

TEST(GdsRead, RecordsWithoutTheirDataAreSkippedAnywhere) {
    struct ShortCase {
        u32 code;
        size_t most;  // bytes of data that are too few
    };
    const ShortCase cases[] = {{GDS_RECORD_HEADER, 1}, {GDS_RECORD_UNITS, 15}, {GDS_RECORD_STRNAME, 0},
                               {GDS_RECORD_LAYER, 1},  {GDS_RECORD_WIDTH, 3},  {GDS_RECORD_XY, 7},
                               {GDS_RECORD_SNAME, 0},  {GDS_RECORD_COLROW, 3}, {GDS_RECORD_STRANS, 1},
                               {GDS_RECORD_MAG, 7},    {GDS_RECORD_ANGLE, 7},  {GDS_RECORD_PATHTYPE, 1}};
    for (const ShortCase &short_case : cases) {
        for (size_t size = 0; size <= short_case.most; ++size) {
            // Outside any structure or element, where the whole record would be an error.
            GdsBytes bytes;
            bytes.head().record(short_case.code, std::string(size, 'x')).begin("A").end().close();
            GdsLoaded loaded = gds_load_bytes(bytes.bytes);
            EXPECT_EQ(loaded.result, 0) << "record " << std::hex << short_case.code << " of " << size;
            EXPECT_EQ(loaded.database->version, 600);
        }
    }
}

TEST(GdsRead, NameRecordWithoutDataLeavesNoName) {
    GdsBytes bytes;
    bytes.head().record(GDS_RECORD_BGNSTR).record(GDS_RECORD_STRNAME).end().close();
    GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    EXPECT_EQ(loaded.database->cells[0].name, nullptr);
}

TEST(GdsRead, FirstRoundAndFirstVariablePathAreExtended) {
    const ConsoleCapture console;
    const std::vector<Point> line = {{0, 0}, {100, 0}};
    GdsBytes bytes;
    bytes.head().begin("C").path(1, 1, 20, line).path(1, 1, 20, line).path(1, 4, 20, line);
    bytes.path(1, 4, 20, line).path(1, 2, 20, line).path(1, 0, 20, line).path(1, 3, 20, line).end().close();
    GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    ASSERT_EQ(loaded.result, 0);
    const Box extended = {-10, -10, 110, 10};
    const Box flush = {0, -10, 100, 10};
    const Box expected[] = {extended, flush, extended, flush, extended, flush, flush};
    for (i32 i = 0; i < 7; ++i) {
        EXPECT_EQ(loaded.database->cells[0].polygons[i].bbox, expected[i]) << "path " << i;
        EXPECT_EQ(loaded.database->cells[0].polygons[i].point_count, 5);
    }
    EXPECT_EQ(
        console.narrow().rfind(
            "WARNING: path type 1 (round ended) is not supported and will be converted to type 2\r\n\r\n"
            "WARNING: path type 4 (variable length) is not supported and will be converted to type "
            "2\r\n\r\nCELLS IN DATABASE:\r\n",
            0),
        0U)
        << console.narrow();
}

TEST(GdsRead, EachLoadWarnsAnew) {
    GdsBytes bytes;
    bytes.head().begin("C").path(1, 1, 20, {{0, 0}, {100, 0}}).end().close();
    for (i32 i = 0; i < 2; ++i) {
        const ConsoleCapture console;
        EXPECT_EQ(gds_load_bytes(bytes.bytes).result, 0);
        EXPECT_EQ(console.narrow().rfind("WARNING: path type 1", 0), 0U);
    }
}

TEST(GdsRead, PathStartsWithoutWidthAndType) {
    GdsBytes bytes;
    bytes.head().begin("C").path(1, 2, 20, {{0, 0}, {100, 0}});
    bytes.record(GDS_RECORD_PATH).record_u16(GDS_RECORD_LAYER, {9}).xy({{0, 0}, {10, 0}});
    GdsLoaded loaded = gds_load_bytes(bytes.record(GDS_RECORD_ENDEL).end().close().bytes);
    ASSERT_EQ(loaded.result, 0);
    const GdsPolygon *path = &loaded.database->cells[0].polygons[1];
    EXPECT_EQ(path->layer, 9);
    EXPECT_EQ(path->point_count, 5);
    EXPECT_EQ(path->bbox, (Box{0, 0, 10, 0}));
}

TEST(GdsRead, LongestRecords) {
    // 8191 points are 65528 bytes of data, the most that whole points and a length of 16 bits allow.
    std::vector<Point> points(8191);
    for (i32 i = 0; i < 8191; ++i) {
        points[static_cast<size_t>(i)] = {i, -i};
    }
    GdsBytes bytes;
    bytes.head().begin(std::string(65530, 'N'));
    for (i32 i = 0; i < 20; ++i) {  // several buffers
        bytes.boundary(1, points);
    }
    GdsLoaded loaded = gds_load_bytes(bytes.end().close().bytes);
    ASSERT_EQ(loaded.result, 0);
    const GdsCell *cell = &loaded.database->cells[0];
    EXPECT_EQ(cell->name->count, 65530U);
    ASSERT_EQ(cell->polygon_count, 20);
    EXPECT_EQ(points_of(cell->polygons[19]), points);
}

TEST(GdsRead, FirstCellOfANameIsMeant) {
    GdsBytes bytes;
    bytes.head().begin("TOP").sref("X", {0, 0}).end().begin("X").box(1, 0, 0, 1, 1).end();
    bytes.begin("X").box(1, 0, 0, 2, 2).end().begin("x").end().close();
    GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    ASSERT_EQ(loaded.result, 0);
    EXPECT_EQ(loaded.database->cells[0].srefs[0].cell, &loaded.database->cells[1]);
}

// Names are padded to an even length, but not by every program.
TEST(GdsRead, ANameMayBeASingleByte) {
    GdsBytes bytes;
    bytes.head().record(GDS_RECORD_BGNSTR, std::string(24, '\0')).record(GDS_RECORD_STRNAME, "P").end();
    bytes.begin("TOP").record(GDS_RECORD_SREF).record(GDS_RECORD_SNAME, "P").xy({{1, 2}});
    bytes.record(GDS_RECORD_ENDEL).end().close();
    const GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    ASSERT_EQ(loaded.result, 0);
    const GdsCell *top = find_cell(loaded, "TOP");
    ASSERT_NE(top, nullptr);
    ASSERT_EQ(top->sref_count, 1);
    EXPECT_EQ(top->srefs[0].cell, find_cell(loaded, "P"));
}

// So many points, and polygons, that every kind of room they can lie in is outgrown, with a small structure
// before and behind. Polygon i of a structure is a square of side i % 90 + 1 with its corner at (i, -i).
TEST(GdsRead, StructuresOfAllSizesKeepTheirPoints) {
    const i32 counts[] = {1, 4096, 3, 4097, 6553, 6554, 0, 60000, 2};
    GdsBytes bytes;
    bytes.head();
    for (const i32 count : counts) {
        bytes.begin("C" + std::to_string(count));
        for (i32 i = 0; i < count; ++i) {
            bytes.box(static_cast<u16>(i % 7), i, -i, i + i % 90 + 1, -i + i % 90 + 1);
        }
        bytes.end();
    }
    const GdsLoaded loaded = gds_load_bytes(bytes.close().bytes);
    ASSERT_EQ(loaded.result, 0);
    for (const i32 count : counts) {
        const GdsCell *cell = find_cell(loaded, "C" + std::to_string(count));
        ASSERT_EQ(cell->polygon_count, count);
        for (i32 i = 0; i < count; ++i) {
            const GdsPolygon *polygon = &cell->polygons[i];
            const i32 side = i % 90 + 1;
            ASSERT_EQ(polygon->layer, i % 7) << i;
            ASSERT_EQ(polygon->point_count, 5) << i;
            ASSERT_EQ(polygon->points[0], (Point{i, -i})) << i;
            ASSERT_EQ(polygon->points[2], (Point{i + side, -i + side})) << i;
            ASSERT_EQ(polygon->points[4], (Point{i, -i})) << i;
            ASSERT_EQ(polygon->bbox, (Box{i, -i, i + side, -i + side})) << i;
        }
    }
}

// The largest records that there are, and the outlines of the longest paths.
TEST(GdsRead, LongestRecordsKeepTheirPoints) {
    std::vector<Point> longest;
    for (i32 i = 0; i < 8191; ++i) {
        longest.push_back({i * 10, i % 2 * 1000});
    }
    GdsBytes bytes;
    bytes.head().begin("C");
    for (i32 i = 0; i < 30; ++i) {
        bytes.boundary(1, longest).path(2, 0, 2, longest);
    }
    const GdsLoaded loaded = gds_load_bytes(bytes.end().close().bytes);
    ASSERT_EQ(loaded.result, 0);
    const GdsCell *cell = find_cell(loaded, "C");
    ASSERT_EQ(cell->polygon_count, 60);
    for (i32 i = 0; i < 60; i += 2) {
        EXPECT_EQ(points_of(cell->polygons[i]), longest) << i;
        EXPECT_EQ(points_of(cell->polygons[i + 1]), points_of(cell->polygons[1])) << i;
        EXPECT_EQ(cell->polygons[i + 1].point_count, 16383) << i;
    }
}

// ENDSTR leaves an open element open: it and its points come into the next structure.
TEST(GdsRead, AnOpenBoundaryTakesItsPointsIntoTheNextStructure) {
    GdsBytes bytes;
    bytes.head().begin("A").box(1, 0, 0, 5, 5);
    bytes.record(GDS_RECORD_BOUNDARY).record_u16(GDS_RECORD_LAYER, {9}).xy(SQUARE).end();
    bytes.begin("B").record(GDS_RECORD_ENDEL).box(2, 1, 1, 2, 2).end().close();
    const GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    ASSERT_EQ(loaded.result, 0);
    ASSERT_EQ(find_cell(loaded, "A")->polygon_count, 1);
    EXPECT_EQ(find_cell(loaded, "A")->polygons[0].bbox, (Box{0, 0, 5, 5}));
    const GdsCell *next = find_cell(loaded, "B");
    ASSERT_EQ(next->polygon_count, 2);
    EXPECT_EQ(next->polygons[0].layer, 9);
    EXPECT_EQ(points_of(next->polygons[0]), SQUARE);
    EXPECT_EQ(next->polygons[1].bbox, (Box{1, 1, 2, 2}));
}

// So large that memory for it is made ready ahead, and its list grows meanwhile.
TEST(GdsRead, AVeryLargeCell) {
    const i32 pieces = 700;
    GdsBytes piece;
    for (i32 i = 0; i < 1000; ++i) {
        piece.box(static_cast<u16>(i), i, -i, 2 * i + 1, 3 * i + 1);
    }
    std::string bytes = GdsBytes().head().begin("LARGE").bytes;
    for (i32 i = 0; i < pieces; ++i) {
        bytes += piece.bytes;
    }
    const GdsLoaded loaded = gds_load_bytes(bytes + GdsBytes().end().close().bytes);
    ASSERT_EQ(loaded.result, 0);
    const GdsCell *cell = &loaded.database->cells[0];
    ASSERT_EQ(cell->polygon_count, pieces * 1000);
    for (i32 k = 0; k < cell->polygon_count; ++k) {
        const GdsPolygon *polygon = &cell->polygons[k];
        const i32 i = k % 1000;
        ASSERT_EQ(polygon->layer, i) << k;
        ASSERT_EQ(polygon->bbox, (Box{i, -i, 2 * i + 1, 3 * i + 1})) << k;
        ASSERT_EQ(polygon->point_count, 5) << k;
        ASSERT_EQ(polygon->points[0], polygon->points[4]) << k;
    }
}
