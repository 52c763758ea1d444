// Odd paths, files that change underneath, two programs side by side.
#include <gtest/gtest.h>

#include "app/commands.h"
#include "tests/app/app_scene.h"
#include "tests/win32/dialog_driver.h"
#include "tests/win32/second_program.h"
#include "tests/win32/window_driver.h"

// Makes a folder, loads a layout and runs a process file in it, saves. Expects the pictures.
static void work_in(Desktop *desktop, const std::wstring &folder, const std::wstring &name) {
    ASSERT_TRUE(platform_folder_create_all(desktop->file(folder).c_str()));
    const std::wstring layout = write_layout(*desktop, folder + L"\\" + name + L".gds");
    const std::wstring process = write_process(*desktop, folder + L"\\" + name + L".txt", depositions(1));
    ASSERT_TRUE(load_layout(desktop, layout));
    EXPECT_EQ(status_text(*desktop, 1), test_utf8(layout));
    EXPECT_NE(console_text(*desktop).find("Loading GDS database " + test_utf8(layout) + " and"),
              std::string::npos);
    ASSERT_TRUE(run_process(desktop, process));
    menu_choose(*desktop, MENU_SAVE_IMAGES);
    desktop_settle(*desktop);
    EXPECT_FALSE(message_box_is_up());
    EXPECT_NE(console_text(*desktop).find("Saving images completed"), std::string::npos)
        << console_text(*desktop);
    i32 saved = 0;
    for (const std::wstring &entry : test_folder_list(desktop->file(folder))) {
        const std::wstring picture =
            desktop->file(folder) + L"\\" + entry + L"\\001 Cross section after D1 deposition.bmp";
        saved += platform_file_size(picture.c_str()) > 1000 ? 1 : 0;
    }
    EXPECT_EQ(saved, 1) << "pictures in " << test_utf8(desktop->file(folder));
}

struct OddFolder {
    const char *name;
    const wchar_t *folder, *file;
};

class Paths : public testing::TestWithParam<OddFolder> {};

TEST_P(Paths, LoadRunAndSave) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    work_in(&desktop, GetParam().folder, GetParam().file);
}

static const OddFolder ODD_FOLDERS[] = {
    {"Blanks", L"a folder with  blanks", L"my  cut 1"},
    {"NonLatin", L"\u534A\u5C0E\u4F53 \u03A9\u03BC \u0448\u043B\u0438\u0444",
     L"\u65AD\u9762 \u00E4\u00F6\u00FC"},
    {"Dots", L"runs.v2", L"a.b.c"},
    {"PercentAndBraces", L"100 %s {x} & [y]", L"50%d"},
};

INSTANTIATE_TEST_SUITE_P(Odd, Paths, testing::ValuesIn(ODD_FOLDERS),
                         [](const auto &odd) { return std::string(odd.param.name); });

// Deletes a folder two levels deep. `path` has the prefix that lifts the limit of length.
static void delete_tree(const std::wstring &path) {
    WIN32_FIND_DATAW entry = {};
    HANDLE search = FindFirstFileW((path + L"\\*").c_str(), &entry);
    for (BOOL more = search != INVALID_HANDLE_VALUE; more; more = FindNextFileW(search, &entry)) {
        const std::wstring name = entry.cFileName;
        const std::wstring child = path + L"\\" + name;
        if (name == L"." || name == L"..") {
            continue;
        }
        if ((entry.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0) {
            delete_tree(child);
        } else {
            EXPECT_TRUE(DeleteFileW(child.c_str()));
        }
    }
    FindClose(search);
    EXPECT_TRUE(RemoveDirectoryW(path.c_str()));
}

TEST(Robustness, LongestPathOfTheDialog) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    // 259 characters and the zero fill the dialog's 260; the folder name with the time is longer still.
    const size_t room = 259 - desktop.folder.path.size() - 1 - 4;
    ASSERT_GT(room, 120U) << "the temporary folder's own path is too long for this test";
    const std::wstring folder(100, L'f');
    const std::wstring name(room - 101, L'n');
    ASSERT_EQ(desktop.file(folder + L"\\" + name + L".gds").size(), 259U);
    work_in(&desktop, folder, name);
    SetCurrentDirectoryW(desktop.folder.path.c_str());
    delete_tree(L"\\\\?\\" + desktop.file(folder));
}

TEST(Robustness, LayoutReplacedOrDeletedWhileLoaded) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    const std::wstring layout = write_layout(desktop);
    const std::wstring process = write_process(desktop, L"p.txt", depositions(1));
    ASSERT_TRUE(load_layout(&desktop, layout));
    test_file_write(layout, "not a layout at all");
    ASSERT_TRUE(run_process(&desktop, process)) << "what was loaded is in memory";
    EXPECT_EQ(g_app->image_count, 2);
    ASSERT_TRUE(DeleteFileW(layout.c_str())) << "the program must not hold the file";
    ASSERT_TRUE(run_process(&desktop, process));
    EXPECT_EQ(g_app->image_count, 2);
    menu_choose(desktop, MENU_SAVE_IMAGES);
    desktop_settle(desktop);
    EXPECT_NE(console_text(desktop).find("Saving images completed"), std::string::npos);
}

TEST(Robustness, ProcessFileDeletedWhileItRuns) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop) && load_layout(&desktop, write_layout(desktop)));
    const std::wstring process = write_process(desktop, L"p.txt", depositions(2));
    ASSERT_TRUE(run_start_held(&desktop, process, L"Executing D1"));
    EXPECT_TRUE(DeleteFileW(process.c_str()));
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    EXPECT_EQ(g_app->image_count, 3);
}

TEST(Robustness, TwoProgramsSideBySide) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop) && load_layout(&desktop, write_layout(desktop)));
    EXPECT_NE(desktop_log(desktop).find("Loading GDS file"), std::string::npos);
    SecondProgram second;
    ASSERT_TRUE(second_program_start(&second, desktop.folder.path, desktop.file(L"local")));
    // The second start truncates the log, both go on to write to it.
    EXPECT_EQ(desktop_log(desktop).find("Loading GDS file"), std::string::npos);
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"p.txt", depositions(3))));
    EXPECT_EQ(g_app->image_count, 4);
    const std::string log = desktop_log(desktop);
    EXPECT_EQ(log.find("--- QUARN LOG FILE ---\r\n"), 0U);
    EXPECT_NE(log.find("Shaders loaded and compiled\r\n"), std::string::npos);
    EXPECT_NE(log.find("Running process thread\r\n"), std::string::npos);
    const std::string other = window_text(GetDlgItem(second.main, 2));
    EXPECT_EQ(other.find("Select menu"), 0U) << "each has its own console";
    EXPECT_EQ(other.find("Executing"), std::string::npos);
    PostMessageW(second.main, WM_CLOSE, 0, 0);
    EXPECT_EQ(second_program_wait_end(&second), 0);
    // The first one is not touched by the end of the second.
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"q.txt", "")));
    EXPECT_EQ(desktop_close(&desktop), 0);
}
