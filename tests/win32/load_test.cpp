// "Load GDS" through the real dialog.
#include <gtest/gtest.h>

#include "app/commands.h"
#include "gds/gds_record.h"
#include "platform/memory.h"
#include "tests/app/app_inputs.h"
#include "tests/gds/gds_bytes.h"
#include "tests/win32/dialog_driver.h"
#include "tests/win32/window_driver.h"

static const std::string HEAD = "--- Handling \"Load GDS\" command ---\r\n\r\n";

TEST(LoadGds, LoadsALayout) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    const std::wstring path = write_layout(desktop);
    menu_choose(desktop, MENU_LOAD_GDS);
    HWND dialog = file_dialog_wait(L"Open GDS file");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(desktop.main, GetWindow(dialog, GW_OWNER));
    EXPECT_EQ(file_dialog_filter(dialog), "GDS Files (*.gds)");
    EXPECT_EQ(menu_enabled(desktop), "about") << "while the dialog is open";
    EXPECT_EQ(console_text(desktop), HEAD) << "the console is cleared first";
    file_dialog_accept(dialog, path);
    ASSERT_TRUE(console_shows(desktop, "finished loading"));
    desktop_settle(desktop);

    const std::string shown = mask_seconds(console_text(desktop));
    const std::string begin = HEAD + "Loading GDS database " + test_utf8(path) +
                              " and calculating cell sizes. Please wait ...\r\n\r\nCELLS IN DATABASE:\r\n";
    const std::string end = "GDS database finished loading in # s\r\n\r\n";
    EXPECT_EQ(begin, shown.substr(0, begin.size()));
    EXPECT_NE(shown.find("TOP"), std::string::npos);
    EXPECT_EQ(end, shown.substr(shown.size() - end.size()));
    EXPECT_EQ(status_text(desktop, 1), test_utf8(path));
    EXPECT_EQ(status_text(desktop, 3), "Not loaded");
    EXPECT_EQ(window_text(desktop.main), "") << "the title is emptied";
    EXPECT_EQ(menu_enabled(desktop), "run load about");
    const std::string log = desktop_log(desktop);
    const size_t loading = log.find("Loading GDS file\r\nSelecting GDS file\r\n");
    EXPECT_NE(loading, std::string::npos);
}

TEST(LoadGds, CancelNamesTheProgramAndKeepsTheLayout) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    for (const bool loaded : {false, true}) {
        if (loaded) {
            ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
        }
        const std::string status = status_text(desktop, 1);
        menu_choose(desktop, MENU_LOAD_GDS);
        HWND dialog = file_dialog_wait(L"Open GDS file");
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(menu_enabled(desktop), "about");
        file_dialog_cancel(dialog);
        desktop_settle(desktop);
        EXPECT_EQ(HEAD + "Handling \"Load GDS\" command canceled\r\n\r\n", console_text(desktop));
        EXPECT_EQ(window_text(desktop.main), "Quarn");
        EXPECT_EQ(status, status_text(desktop, 1));
        EXPECT_EQ(loaded ? "run load about" : "load about", menu_enabled(desktop));
    }
}

static GdsBytes in_cell() {
    return GdsBytes().head().begin("BAD");
}

static GdsBytes in_boundary() {
    return in_cell().record(GDS_RECORD_BOUNDARY);
}

// One stream for each number but 1, the file that cannot be opened.
static std::vector<std::string> refused_streams() {
    const std::string real = bytes_real8(1.0);
    return {
        in_cell().path(1, 0, 10, {{5, 0}}).bytes,                                      // 2
        GdsBytes().begin("BAD").end().close().bytes,                                   // 3
        in_cell().raw(std::string(4, '\0')).bytes,                                     // 4
        in_cell().record(GDS_RECORD_BGNSTR).bytes,                                     // 5
        GdsBytes().head().end().bytes,                                                 // 6
        GdsBytes().head().record(GDS_RECORD_BOUNDARY).bytes,                           // 7
        in_boundary().record(GDS_RECORD_PATH).bytes,                                   // 8
        in_boundary().record(GDS_RECORD_SREF).bytes,                                   // 9
        in_boundary().record(GDS_RECORD_AREF).bytes,                                   // 10
        in_boundary().record(GDS_RECORD_TEXT).bytes,                                   // 11
        in_boundary().record(GDS_RECORD_NODE).bytes,                                   // 12
        in_boundary().record(GDS_RECORD_BOX).bytes,                                    // 13
        in_cell().record(GDS_RECORD_ENDEL).bytes,                                      // 14
        in_boundary().name(GDS_RECORD_SNAME, "X").bytes,                               // 15
        in_boundary().record_u16(GDS_RECORD_COLROW, {1, 1}).bytes,                     // 16
        in_boundary().record_u16(GDS_RECORD_PATHTYPE, {0}).bytes,                      // 17
        in_boundary().record_u16(GDS_RECORD_STRANS, {0}).bytes,                        // 18
        in_boundary().record(GDS_RECORD_ANGLE, real).bytes,                            // 19
        in_boundary().record(GDS_RECORD_MAG, real).bytes,                              // 20
        in_cell().xy({{0, 0}}).bytes,                                                  // 21
        in_cell().record(GDS_RECORD_SREF).xy({{0, 0}, {1, 1}}).bytes,                  // 22
        in_cell().record(GDS_RECORD_AREF).xy({{0, 0}, {1, 1}, {2, 2}, {3, 3}}).bytes,  // 23
        in_cell().record_u16(GDS_RECORD_LAYER, {1}).bytes,                             // 24
        in_boundary().record(GDS_RECORD_WIDTH, bytes_i32(1)).bytes,                    // 25
        GdsBytes().head().name(GDS_RECORD_STRNAME, "X").bytes,                         // 26
        in_cell().sref("MISSING", {0, 0}).end().close().bytes,                         // 27
        in_boundary().xy({{0, 0}}).record(GDS_RECORD_ENDEL).bytes,                     // 28
    };
}

TEST(LoadGds, EachFailureHasItsNumberAndKeepsThePreviousLayout) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    const std::wstring good = write_layout(desktop);
    ASSERT_TRUE(load_layout(&desktop, good));
    const GdsDatabase *before = g_app->layout;
    i32 number = 2;
    for (const std::string &bytes : refused_streams()) {
        const std::wstring path = desktop.file(L"bad.gds");
        test_file_write(path, bytes);
        ASSERT_TRUE(load_layout(&desktop, path));
        const std::string shown = console_text(desktop);
        const std::string end =
            "Loading GDS database failed with error: " + std::to_string(number) + "\r\n\r\n";
        const std::string told = without_notes(shown);
        EXPECT_EQ(end, told.substr(told.size() - std::min(told.size(), end.size())));
        EXPECT_NE(shown.find(end + "Note: "), std::string::npos) << "nothing tells what the number means";
        EXPECT_EQ(before, g_app->layout) << number;
        EXPECT_EQ(status_text(desktop, 1), test_utf8(good));
        EXPECT_EQ(window_text(desktop.main), "");
        EXPECT_EQ(menu_enabled(desktop), "run load about");
        ++number;
    }
    EXPECT_EQ(number, 29);
    // The layout that stayed is good for a run.
    EXPECT_TRUE(run_process(&desktop, write_process(desktop, L"p.txt", "")));
    EXPECT_EQ(g_app->image_count, 1);
}

TEST(LoadGds, FileThatVanishesIsErrorOne) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    // The dialog refuses a file that is not there, so another program has to hold the file back.
    const std::wstring path = write_layout(desktop);
    HANDLE locked =
        CreateFileW(path.c_str(), GENERIC_READ | GENERIC_WRITE, 0, nullptr, OPEN_EXISTING, 0, nullptr);
    ASSERT_NE(locked, INVALID_HANDLE_VALUE);
    menu_choose(desktop, MENU_LOAD_GDS);
    HWND dialog = file_dialog_wait(L"Open GDS file");
    ASSERT_NE(dialog, nullptr);
    file_dialog_accept(dialog, path);
    ASSERT_TRUE(console_shows(desktop, "Loading GDS database failed with error: 1\r\n\r\n"));
    CloseHandle(locked);
    desktop_settle(desktop);
    EXPECT_EQ(status_text(desktop, 1), "Not loaded");
    EXPECT_EQ(window_text(desktop.main), "Quarn") << "a failure leaves the title alone";
    EXPECT_EQ(menu_enabled(desktop), "load about");
}

TEST(LoadGds, SecondLayoutReplacesTheFirst) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop, L"one.gds")));
    const std::wstring two = desktop.file(L"two.gds");
    test_file_write(two, layout_bytes({{1, 0, 0, 10, 10}, {2, 0, 0, 10, 10}}));
    ASSERT_TRUE(load_layout(&desktop, two));
    EXPECT_EQ(status_text(desktop, 1), test_utf8(two));
    EXPECT_EQ(g_app->layout->cells[0].polygon_count, 2);
}

// Cells of six levels, each of two placements and two arrays of cells of the level below.
static std::string hierarchy_bytes(i32 cells_per_level) {
    GdsBytes bytes;
    bytes.head();
    for (i32 level = 0; level < 6; ++level) {
        for (i32 i = 0; i < cells_per_level; ++i) {
            bytes.begin("L" + std::to_string(level) + "_" + std::to_string(i));
            for (i32 k = 0; k < 10; ++k) {
                bytes.box(1, k * 20, 0, k * 20 + 10, 10);
            }
            const std::string below = "L" + std::to_string(level - 1) + "_";
            for (i32 k = 0; level > 0 && k < 2; ++k) {
                const std::string name = below + std::to_string((i * 7 + k) % cells_per_level);
                bytes.sref(name, {k * 500, 90}, 0, 1.0, 90.0 * k)
                    .aref(name, 3, 2, {0, 0}, {600, 0}, {0, 400});
            }
            bytes.end();
        }
    }
    return bytes.close().bytes;
}

// Each text that reaches the control costs it a walk over its lines, and each block a search of the heap.
TEST(LoadGds, ManyCellsAreOneTextAndLeaveNothingBehind) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    const std::wstring path = desktop.file(L"cells.gds");
    test_file_write(path, hierarchy_bytes(500));
    std::vector<i64> blocks;
    std::vector<std::string> written;
    for (i32 round = 0; round < 3; ++round) {
        console_forget_written();
        ASSERT_TRUE(load_layout(&desktop, path));
        blocks.push_back(memory_live_blocks());
        written.push_back(mask_seconds(console_written()));
        EXPECT_EQ(g_app->layout->cell_count, 3000);
        EXPECT_EQ(console_text(desktop), console_written()) << "all of it is there";
    }
    EXPECT_EQ(blocks[1], blocks[0]);
    EXPECT_EQ(blocks[2], blocks[0]);
    EXPECT_EQ(written[1], written[0]);
    // Of a cell: its name (record and text), its two lists of references, its polygons, and blocks of points.
    EXPECT_LT(blocks[0], i64{3000} * 8);
    EXPECT_LT(console_texts_written(), 20) << "the list is one text";
}
