// Streams that must be refused, each with its code, and what the diagnostics say about them.
#include <gtest/gtest.h>

#include <filesystem>

#include "gds/gds_read.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_load.h"
#include "tests/support/test_support.h"

struct BadStream {
    i32 code;
    const char *name;
    std::string bytes;
};

static GdsBytes in_cell() {
    return GdsBytes().head().begin("BAD");
}

static GdsBytes in_element(u32 element) {
    return in_cell().record(element);
}

// Codes 7 to 13: outside a structure, and inside an open element.
static void add_element_streams(std::vector<BadStream> *streams) {
    const u32 elements[] = {GDS_RECORD_BOUNDARY, GDS_RECORD_PATH, GDS_RECORD_SREF, GDS_RECORD_AREF,
                            GDS_RECORD_TEXT,     GDS_RECORD_NODE, GDS_RECORD_BOX};
    for (i32 i = 0; i < 7; ++i) {
        const i32 code = GDS_ERROR_BOUNDARY + i;
        streams->push_back({code, "outside", GdsBytes().head().record(elements[i]).bytes});
        for (const u32 open : elements) {
            streams->push_back({code, "inside", in_element(open).record(elements[i]).bytes});
        }
    }
}

// A record that only some elements take: everywhere else the code follows.
static void add_record_streams(std::vector<BadStream> *streams, i32 code, u32 record, const std::string &data,
                               const std::vector<u32> &accepted) {
    streams->push_back({code, "no structure", GdsBytes().head().record(record, data).bytes});
    streams->push_back({code, "no element", in_cell().record(record, data).bytes});
    for (const u32 open : {GDS_RECORD_BOUNDARY, GDS_RECORD_PATH, GDS_RECORD_SREF, GDS_RECORD_AREF,
                           GDS_RECORD_TEXT, GDS_RECORD_NODE, GDS_RECORD_BOX}) {
        const bool taken = std::find(accepted.begin(), accepted.end(), open) != accepted.end();
        streams->push_back({taken ? 0 : code, "element", in_element(open).record(record, data).bytes});
    }
}

static std::vector<BadStream> bad_streams() {
    const u32 boundary = GDS_RECORD_BOUNDARY;
    const u32 path = GDS_RECORD_PATH;
    const u32 sref = GDS_RECORD_SREF;
    const u32 aref = GDS_RECORD_AREF;
    const u32 text = GDS_RECORD_TEXT;
    const u32 node = GDS_RECORD_NODE;
    const u32 box = GDS_RECORD_BOX;
    const std::string real = bytes_real8(1.0);
    const std::string point = bytes_i32(1) + bytes_i32(2);
    std::vector<BadStream> streams = {
        {2, "collinear", in_cell().path(1, 0, 10, {{0, 0}, {10, 0}, {20, 0}}).bytes},
        {2, "type 2 test", in_cell().path(1, 2, 10, {{5, 0}, {5, 5}}).bytes},
        {2, "one point", in_cell().path(1, 0, 10, {{5, 0}}).bytes},
        {2, "no point", in_element(path).record_u16(GDS_RECORD_LAYER, {1}).record(GDS_RECORD_ENDEL).bytes},
        {3, "no units", GdsBytes().begin("BAD").end().close().bytes},
        {4, "length 0", in_cell().raw(std::string(4, '\0')).bytes},
        {4, "length 3", in_cell().raw(std::string("\0\3\7\0", 4)).bytes},
        {4, "empty file of zeros", std::string(2048, '\0')},
        {5, "nested", in_cell().record(GDS_RECORD_BGNSTR).bytes},
        {6, "ENDSTR first", GdsBytes().head().end().bytes},
        {6, "ENDSTR twice", in_cell().end().end().bytes},
        {14, "no element", in_cell().record(GDS_RECORD_ENDEL).bytes},
        {14, "outside", GdsBytes().head().record(GDS_RECORD_ENDEL).bytes},
        {14, "left open", in_element(boundary).end().record(GDS_RECORD_ENDEL).bytes},
        {22, "two points", in_element(sref).xy({{0, 0}, {1, 1}}).bytes},
        {23, "four points", in_element(aref).xy({{0, 0}, {1, 1}, {2, 2}, {3, 3}}).bytes},
        {26, "outside", GdsBytes().head().name(GDS_RECORD_STRNAME, "X").bytes},
        {27, "sref", in_cell().sref("MISSING", {0, 0}).end().close().bytes},
        {27, "case", in_cell().sref("bad", {0, 0}).end().close().bytes},
        {27, "aref", in_cell().aref("MISSING", 1, 1, {}, {}, {}).end().close().bytes},
        {27, "no name", in_element(sref).record(GDS_RECORD_ENDEL).end().close().bytes},
        {27, "names without names never match",
         GdsBytes().head().record(GDS_RECORD_BGNSTR).record(sref).record(GDS_RECORD_ENDEL).end().bytes},
        {28, "boundary", in_element(boundary).xy({{0, 0}}).record(GDS_RECORD_ENDEL).bytes},
        {28, "path", in_element(path).xy({{0, 0}, {1, 1}}).record(GDS_RECORD_ENDEL).bytes},
        {28, "LAYER of another data type",
         in_element(boundary).record(0x0D03, bytes_i32(1)).record(GDS_RECORD_ENDEL).bytes},
        {28, "LAYER of the element before",
         in_cell().box(1, 0, 0, 1, 1).record(path).record(GDS_RECORD_ENDEL).bytes},
    };
    add_element_streams(&streams);
    add_record_streams(&streams, 15, GDS_RECORD_SNAME, "AB", {sref, aref});
    add_record_streams(&streams, 16, GDS_RECORD_COLROW, "\1\1\1\1", {aref});
    add_record_streams(&streams, 17, GDS_RECORD_PATHTYPE, bytes_u16(0), {path});
    add_record_streams(&streams, 18, GDS_RECORD_STRANS, bytes_u16(0), {sref, aref, text});
    add_record_streams(&streams, 19, GDS_RECORD_ANGLE, real, {sref, aref, text});
    add_record_streams(&streams, 20, GDS_RECORD_MAG, real, {sref, aref, text});
    add_record_streams(&streams, 21, GDS_RECORD_XY, point, {boundary, path, sref, aref, text, node, box});
    add_record_streams(&streams, 24, GDS_RECORD_LAYER, bytes_u16(1), {boundary, path, text, node, box});
    add_record_streams(&streams, 25, GDS_RECORD_WIDTH, bytes_i32(1), {path, text});
    return streams;
}

TEST(GdsErrors, EveryBadStreamHasItsCodeAndIsExplained) {
    ConsoleCapture console;
    for (const BadStream &stream : bad_streams()) {
        console.reset();
        const GdsLoaded loaded = gds_load_bytes(stream.bytes);
        EXPECT_EQ(loaded.result, stream.code) << stream.name << ", code " << stream.code;
        const std::string expected =
            "error " + std::to_string(stream.code) + ": " + test_utf8(gds_error_text(stream.code));
        if (stream.code != 0) {
            EXPECT_NE(console.diagnostics().find(expected), std::string::npos) << console.diagnostics();
        }
        if (stream.code != 0 && stream.code != 3 && stream.code != 27) {
            const std::string text = console.diagnostics();
            EXPECT_NE(text.find("byte offset "), std::string::npos) << stream.name << ": " << text;
            const bool closed = stream.bytes.find(std::string("\0\4\7\0", 4)) != std::string::npos;  // ENDSTR
            const bool in_cell = stream.bytes.find("BAD") != std::string::npos && !closed;
            EXPECT_EQ(text.find("in cell \"BAD\"") != std::string::npos, in_cell)
                << stream.name << ": " << text;
        }
        const bool listed = console.narrow().find("CELLS IN DATABASE:") != std::string::npos;
        EXPECT_EQ(listed, stream.code == 0 || stream.code == 3) << stream.name << ", code " << stream.code;
    }
}

TEST(GdsErrors, TextsAreDistinct) {
    std::vector<std::wstring> texts;
    for (i32 error = -1; error <= 28; ++error) {
        texts.emplace_back(gds_error_text(error));
        EXPECT_FALSE(texts.back().empty());
    }
    std::sort(texts.begin(), texts.end());
    EXPECT_EQ(std::adjacent_find(texts.begin(), texts.end()), texts.end());
}

TEST(GdsErrors, UnreadableFiles) {
    const ConsoleCapture console;
    const TemporaryFolder folder;
    GdsDatabase database = {};
    EXPECT_EQ(gds_read(&database, folder.file(L"missing.gds").c_str()), 1);
    std::string missing = console.diagnostics();
    EXPECT_NE(missing.find("missing.gds: error 1: the file cannot be opened: "), std::string::npos)
        << missing;
    EXPECT_EQ(missing.back(), '\n');
    EXPECT_EQ(gds_read(&database, folder.path.c_str()), 1);  // a folder
    EXPECT_EQ(gds_read(&database, nullptr), 1);
    EXPECT_EQ(console.narrow(), "");
}

TEST(GdsErrors, PlaceIsTold) {
    const ConsoleCapture console;
    GdsBytes bytes = GdsBytes().head();
    const size_t cell_start = bytes.bytes.size();
    bytes.begin("BAD").record(GDS_RECORD_BOUNDARY).record(GDS_RECORD_PATH);
    ASSERT_EQ(gds_load_bytes(bytes.bytes).result, 8);
    // HEADER, BGNLIB, LIBNAME, UNITS, BGNSTR, STRNAME, BOUNDARY, PATH; BGNSTR has 28 bytes, STRNAME 8.
    const std::string text = console.diagnostics();
    EXPECT_NE(text.find("byte offset " + std::to_string(cell_start + 40) + ", record 8 (PATH)"),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("the element was opened at byte offset " + std::to_string(cell_start + 36)),
              std::string::npos)
        << text;
    EXPECT_NE(text.find("in cell \"BAD\""), std::string::npos) << text;
}

TEST(GdsErrors, LengthThatIsTooSmallIsTold) {
    const ConsoleCapture console;
    ASSERT_EQ(gds_load_bytes(GdsBytes().raw(std::string("\0\2\7\0", 4)).bytes).result, 4);
    EXPECT_NE(console.diagnostics().find("byte offset 0, record 1: its length is given as 2"),
              std::string::npos)
        << console.diagnostics();
}

TEST(GdsErrors, MissingNamesAreToldOnceForEachCell) {
    const ConsoleCapture console;
    GdsBytes bytes;
    bytes.head().begin("A").sref("GONE", {0, 0}).sref("GONE", {1, 1}).aref("LOST", 1, 1, {}, {}, {}).end();
    bytes.begin("B").sref("GONE", {0, 0}).sref("A", {0, 0}).sref("new\nline\x1b", {0, 0}).end().close();
    ASSERT_EQ(gds_load_bytes(bytes.bytes).result, 27);
    std::string text = console.diagnostics();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 5) << text;
    EXPECT_NE(text.find("cell \"A\" refers to \"GONE\", which is not in the file"), std::string::npos)
        << text;
    EXPECT_NE(text.find("cell \"A\" refers to \"LOST\""), std::string::npos) << text;
    EXPECT_NE(text.find("cell \"B\" refers to \"GONE\""), std::string::npos) << text;
    EXPECT_NE(text.find("cell \"B\" refers to \"new\\x0aline\\x1b\""), std::string::npos) << text;
}

TEST(GdsErrors, ReferencesWithoutANameAreToldOnceForEachCell) {
    const ConsoleCapture console;
    GdsBytes bytes;
    bytes.head().begin("A").record(GDS_RECORD_SREF).record(GDS_RECORD_ENDEL);
    bytes.record(GDS_RECORD_AREF).record(GDS_RECORD_ENDEL).end();
    bytes.record(GDS_RECORD_BGNSTR).record(GDS_RECORD_SREF).record(GDS_RECORD_ENDEL).end().close();
    ASSERT_EQ(gds_load_bytes(bytes.bytes).result, 27);
    std::string text = console.diagnostics();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 3) << text;
    EXPECT_NE(text.find(": cell \"A\" has a reference without a name\n"), std::string::npos) << text;
    EXPECT_NE(text.find(": a cell without a name has a reference without a name\n"), std::string::npos)
        << text;
}

TEST(GdsErrors, AMissingNameThatNearlyExistsIsNamed) {
    const ConsoleCapture console;
    GdsBytes bytes;
    bytes.head().begin("TOP").sref("Contact", {0, 0}).end().begin("CONTACT").end().close();
    ASSERT_EQ(gds_load_bytes(bytes.bytes).result, 27);
    const std::string text = console.diagnostics();
    EXPECT_NE(
        text.find("cell \"TOP\" refers to \"Contact\", which is not in the file: is \"CONTACT\" meant?\n"),
        std::string::npos)
        << text;
}

// What stands in the place of a database unit.
TEST(GdsErrors, WhyThereIsNoUnitIsTold) {
    const std::string header = GdsBytes().record_u16(GDS_RECORD_HEADER, {600}).bytes;  // 6 bytes
    struct Case {
        std::string bytes;
        const char *reason;
    };
    const Case cases[] = {
        {header, ": there is no UNITS record\n"},
        {GdsBytes().raw(header).record(GDS_RECORD_UNITS, bytes_real8(1.0)).bytes,
         ": byte offset 6: the UNITS record holds less than two numbers\n"},
        {GdsBytes().raw(header).record(GDS_RECORD_UNITS, bytes_real8(1.0) + bytes_real8(0.0)).bytes,
         ": byte offset 6: the UNITS record gives a database unit of 0 um\n"},
        {GdsBytes().raw(header).record(GDS_RECORD_UNITS, bytes_real8(1.0) + bytes_real8(-0.5)).bytes,
         ": byte offset 6: the UNITS record gives a database unit of -500000 um\n"},
    };
    for (const Case &c : cases) {
        const ConsoleCapture console;
        ASSERT_EQ(gds_load_bytes(c.bytes + GdsBytes().close().bytes).result, 3) << c.reason;
        const std::string text = console.diagnostics();
        EXPECT_NE(text.find(c.reason), std::string::npos) << text;
        EXPECT_EQ(text.find("HEADER"), std::string::npos) << text;
    }
}

TEST(GdsErrors, FilesThatAreNoLayoutsSaySo) {
    ConsoleCapture console;
    ASSERT_EQ(gds_load_bytes("plain text, by mistake\n").result, 3);
    EXPECT_NE(console.diagnostics().find(": it has no HEADER record"), std::string::npos)
        << console.diagnostics();
    console.reset();
    ASSERT_EQ(gds_load_bytes(std::string("\0\2\7\0", 4)).result, 4);
    EXPECT_NE(console.diagnostics().find(": it has no HEADER record"), std::string::npos)
        << console.diagnostics();
    console.reset();
    ASSERT_EQ(gds_load_bytes("").result, 3);
    EXPECT_NE(console.diagnostics().find(": the file is empty\n"), std::string::npos)
        << console.diagnostics();
    EXPECT_EQ(console.diagnostics().find("incomplete"), std::string::npos) << console.diagnostics();
}

TEST(GdsErrors, ACellWithoutANameIsCalledSo) {
    ConsoleCapture console;
    const GdsBytes bytes = GdsBytes().head().record(GDS_RECORD_BGNSTR).record(GDS_RECORD_ENDEL);
    ASSERT_EQ(gds_load_bytes(bytes.bytes).result, 14);
    EXPECT_NE(console.diagnostics().find(": in a cell without a name\n"), std::string::npos)
        << console.diagnostics();
    console.reset();
    ASSERT_EQ(gds_load_bytes(GdsBytes().head().begin("CUT").box(1, 0, 0, 5, 5).bytes).result, 0);
    EXPECT_NE(console.diagnostics().find(": warning: cell \"CUT\" has no ENDSTR and is left out\n"),
              std::string::npos)
        << console.diagnostics();
}

TEST(GdsErrors, ManyMissingNamesAreCounted) {
    const ConsoleCapture console;
    GdsBytes bytes = in_cell();
    for (i32 i = 0; i < 50; ++i) {
        bytes.sref("GONE" + std::to_string(i), {0, 0});
    }
    ASSERT_EQ(gds_load_bytes(bytes.end().close().bytes).result, 27);
    std::string text = console.diagnostics();
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 22) << text;  // the error, 20 names, the rest
    EXPECT_NE(text.find("and 30 more"), std::string::npos) << text;
}

TEST(GdsErrors, WhatWasReadStays) {
    GdsBytes bytes;
    bytes.head().begin("GOOD").box(1, 0, 0, 5, 5).end().begin("BAD").record(GDS_RECORD_ENDEL);
    GdsLoaded loaded = gds_load_bytes(bytes.bytes);
    EXPECT_EQ(loaded.result, 14);
    ASSERT_EQ(loaded.database->cell_count, 1);
    EXPECT_EQ(loaded.database->cells[0].polygon_count, 1);
}
