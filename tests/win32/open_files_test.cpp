// Files of the command line and dropped ones; where the program's own files lie.
#include <windows.h>
// After windows.h, which names the types that these are written in.
#include <commdlg.h>
#include <gtest/gtest.h>
#include <shlobj.h>

#include <atomic>
#include <cstring>
#include <thread>

#include "app/frontend.h"
#include "app/win32/file_dialog.h"
#include "app/window_texts.h"
#include "tests/app/app_inputs.h"
#include "tests/win32/dialog_driver.h"
#include "tests/win32/import_patch.h"
#include "tests/win32/window_driver.h"

// The command line.

TEST(OpenFiles, LayoutAndProcessFileAreLoadedAndRunAtTheStart) {
    Desktop desktop;
    std::wstring layout = write_layout(desktop);
    std::wstring process = write_process(desktop, L"p.txt", depositions(2));
    desktop_name_files(layout, process);
    ASSERT_TRUE(desktop_start(&desktop));
    ASSERT_TRUE(console_shows(desktop, BROWSE_HINT));
    desktop_settle(desktop);
    EXPECT_EQ(g_app->image_count, 3);
    EXPECT_EQ(status_text(desktop, 1), test_utf8(layout));
    EXPECT_EQ(menu_enabled(desktop), "save run load about");
}

TEST(OpenFiles, PicturesAreAsTheCommandLineWantsThem) {
    Desktop desktop;
    desktop_name_files(write_layout(desktop), write_process(desktop, L"p.txt", depositions(1)));
    PictureOptions pictures = NO_PICTURE_OPTIONS;
    pictures.width = 400;
    pictures.background = "none";
    desktop_name_pictures(pictures);
    ASSERT_TRUE(desktop_start(&desktop));
    desktop_name_pictures(NO_PICTURE_OPTIONS);
    ASSERT_TRUE(console_shows(desktop, BROWSE_HINT));
    desktop_settle(desktop);
    ASSERT_EQ(g_app->image_count, 2);
    EXPECT_EQ(g_app->images[1]->width, 400);
    EXPECT_TRUE(g_app->images[1]->transparent);
}

TEST(OpenFiles, TheNextFileIsAskedForInTheFolderOfTheLastOne) {
    Desktop desktop;
    CreateDirectoryW(desktop.file(L"layouts").c_str(), nullptr);
    desktop_name_files(write_layout(desktop, L"layouts\\layout.gds"), L"");
    ASSERT_TRUE(desktop_start(&desktop));
    ASSERT_TRUE(console_shows(desktop, "GDS database finished loading"));
    desktop_settle(desktop);
    static std::wstring folder;
    import_replace<decltype(GetOpenFileNameW)>("GetOpenFileNameW", [](OPENFILENAMEW *dialog) -> BOOL {
        folder = dialog->lpstrInitialDir != nullptr ? dialog->lpstrInitialDir : L"(none)";
        return FALSE;
    });
    menu_choose(desktop, MENU_RUN);
    ASSERT_TRUE(console_shows(desktop, "Process file selection canceled"));
    EXPECT_EQ(test_utf8(folder), test_utf8(desktop.file(L"layouts")));
}

TEST(OpenFiles, ALayoutThatDoesNotLoadIsNotRunOn) {
    Desktop desktop;
    desktop_name_files(desktop.file(L"missing.gds"), write_process(desktop, L"p.txt", depositions(2)));
    ASSERT_TRUE(desktop_start(&desktop));
    ASSERT_TRUE(console_shows(desktop, "Loading GDS database failed with error: 1\r\n\r\n"));
    desktop_settle(desktop);
    EXPECT_EQ(menu_enabled(desktop), "load about");
    EXPECT_EQ(console_text(desktop).find("Handling \"Run\""), std::string::npos);
}

// Dropped files.

// What the shell hands over; the program frees it.
static void drop(const Desktop &desktop, const std::vector<std::wstring> &paths) {
    std::wstring names;
    for (const std::wstring &path : paths) {
        names += path + L'\0';
    }
    names += L'\0';
    size_t size = sizeof(DROPFILES) + names.size() * sizeof(wchar_t);
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE | GMEM_ZEROINIT, size);
    auto *files = static_cast<DROPFILES *>(GlobalLock(block));
    files->pFiles = sizeof(DROPFILES);
    files->fWide = TRUE;
    std::memcpy(files + 1, names.data(), names.size() * sizeof(wchar_t));
    GlobalUnlock(block);
    PostMessageW(desktop.main, WM_DROPFILES, reinterpret_cast<WPARAM>(block), 0);
}

static void expect_message(const Desktop &desktop, const wchar_t *text) {
    const MessageBoxSeen box = message_box_wait();
    EXPECT_EQ(box.text, test_utf8(text));
    EXPECT_EQ(box.caption, "Quarn");
    EXPECT_EQ(desktop.main, box.owner);
    message_box_press_ok(box);
    desktop_settle(desktop);
}

TEST(DropFiles, WindowTakesFiles) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    EXPECT_NE(GetWindowLongW(desktop.main, GWL_EXSTYLE) & WS_EX_ACCEPTFILES, 0);
}

TEST(DropFiles, BothTogetherAreLoadedAndRunInWhateverOrder) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    std::wstring process = write_process(desktop, L"p.TXT", depositions(1));
    drop(desktop, {desktop.file(L"other.doc"), process, write_layout(desktop, L"layout.Gds")});
    ASSERT_TRUE(console_shows(desktop, BROWSE_HINT));
    EXPECT_EQ(g_app->image_count, 2);
}

TEST(DropFiles, AProcessFileRunsOnTheLoadedLayoutOnly) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    std::wstring process = write_process(desktop, L"p.txt", depositions(1));
    drop(desktop, {process});
    expect_message(desktop, DROP_NO_LAYOUT);
    EXPECT_EQ(menu_enabled(desktop), "load about");
    drop(desktop, {write_layout(desktop)});
    ASSERT_TRUE(console_shows(desktop, "GDS database finished loading"));
    drop(desktop, {process});
    ASSERT_TRUE(console_shows(desktop, BROWSE_HINT));
}

TEST(DropFiles, OtherFilesAreRefusedInWords) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    for (const wchar_t *name : {L"picture.bmp", L"gds", L"a.gds.zip", L"a.gd", L"a.gdsx"}) {
        drop(desktop, {desktop.file(name)});
        expect_message(desktop, DROP_WRONG_KIND);
    }
}

TEST(DropFiles, NothingIsTakenDuringARun) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop) && load_layout(&desktop, write_layout(desktop)));
    ASSERT_TRUE(run_start_held(&desktop, write_process(desktop, L"p.txt", depositions(1)), L"Executing D1"));
    drop(desktop, {write_layout(desktop, L"other.gds")});
    expect_message(desktop, DROP_DURING_RUN);
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    EXPECT_EQ(g_app->image_count, 2);
}

TEST(DropFiles, NothingIsTakenWhileAFileIsChosen) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    menu_choose(desktop, MENU_LOAD_GDS);
    HWND dialog = file_dialog_wait(L"Open GDS file");
    ASSERT_NE(dialog, nullptr);
    drop(desktop, {write_layout(desktop)});
    PostMessageW(desktop.main, WM_COMMAND, MENU_LOAD_GDS, 0);
    desktop_settle(desktop);
    EXPECT_FALSE(message_box_is_up());
    EXPECT_EQ(status_text(desktop, 1), "Not loaded");
    file_dialog_cancel(dialog);
    desktop_settle(desktop);
    EXPECT_EQ(menu_enabled(desktop), "load about");
}

// The program's own files.

TEST(DataFiles, AreFoundBesideTheProgram) {
    Desktop desktop;
    CreateDirectoryW(desktop.file(L"program").c_str(), nullptr);
    for (const wchar_t *name : {L"colors.txt", L"surface.shader", L"point.shader", L"quarn.ico"}) {
        ASSERT_TRUE(
            MoveFileW(desktop.file(name).c_str(), desktop.file(std::wstring(L"program\\") + name).c_str()));
    }
    ASSERT_TRUE(desktop_start(&desktop));
    EXPECT_EQ(console_text(desktop).find("Select menu"), 0U) << "nothing is missing";
    EXPECT_NE(GetClassLongPtrW(desktop.main, GCLP_HICON), 0U);
    EXPECT_NE(GetClassLongPtrW(desktop.main, GCLP_HICONSM), 0U);
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"p.txt", depositions(1))));
    EXPECT_EQ(g_app->image_count, 2);
}

TEST(DataFiles, ThoseOfTheCurrentFolderComeFirst) {
    Desktop desktop;
    CreateDirectoryW(desktop.file(L"program").c_str(), nullptr);
    test_file_write(desktop.file(L"program\\surface.shader"), "no shader at all\n");
    ASSERT_TRUE(desktop_start(&desktop));
    EXPECT_EQ(console_text(desktop).find("Select menu"), 0U);
}

// Painting before a long load.

static decltype(_wfopen) *open_original;
static std::wstring awaited_name;  // empty: none
static std::string seen_at_opening;
static std::atomic<bool> opening_seen{false};

static FILE *open_watched(const wchar_t *path, const wchar_t *mode) {
    std::wstring whole = path;  // with the prefix for long paths
    if (!awaited_name.empty() && whole.size() > awaited_name.size() &&
        whole.compare(whole.size() - awaited_name.size(), std::wstring::npos, awaited_name) == 0) {
        awaited_name.clear();
        HWND console = GetDlgItem(static_cast<HWND>(g_app->main_window), 2);
        seen_at_opening = window_text(console);
        for (HWND window :
             {static_cast<HWND>(g_app->main_window), static_cast<HWND>(g_app->render_window), console}) {
            seen_at_opening += GetUpdateRect(window, nullptr, FALSE) != 0 ? " unpainted" : " painted";
        }
        UINT state =
            GetMenuState(GetMenu(static_cast<HWND>(g_app->main_window)), MENU_LOAD_GDS, MF_BYCOMMAND);
        seen_at_opening += (state & MF_GRAYED) != 0 ? " greyed" : " not greyed";
        opening_seen = true;
    }
    return open_original(path, mode);
}

TEST(LoadGds, IsAnnouncedOnTheScreenBeforeTheFileIsRead) {
    Desktop desktop;
    std::wstring path = write_layout(desktop);
    open_original = import_replace<decltype(_wfopen)>("_wfopen", open_watched);
    ASSERT_TRUE(desktop_start(&desktop));
    for (bool by_drop : {false, true}) {
        opening_seen = false;
        awaited_name = L"\\layout.gds";
        if (by_drop) {
            drop(desktop, {path});
        } else {
            menu_choose(desktop, MENU_LOAD_GDS);
            HWND dialog = file_dialog_wait(L"Open GDS file");
            ASSERT_NE(dialog, nullptr);
            file_dialog_accept(dialog, path);
        }
        ASSERT_TRUE(wait_until([] { return opening_seen.load(); }));
        ASSERT_TRUE(console_shows(desktop, "GDS database finished loading"));
        EXPECT_EQ(seen_at_opening,
                  "--- Handling \"Load GDS\" command ---\r\n\r\nLoading GDS database " + test_utf8(path) +
                      " and calculating cell sizes. Please wait ...\r\n\r\n painted painted painted greyed");
        seen_at_opening.clear();
    }
}

// The dialog for a folder.

static std::wstring chosen_folder(const std::wstring &failed, const std::function<void(HWND)> &user) {
    std::wstring chosen;
    bool done = false;
    std::thread asking([&] {
        CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED);
        const Owned<WString> folder(file_dialog_choose_folder(nullptr, failed.c_str()));
        chosen = folder != nullptr ? wstring_text(folder.get()) : L"(none)";
        CoUninitialize();
        done = true;
    });
    HWND dialog = nullptr;
    EXPECT_TRUE(wait_until([&] { return (dialog = folder_dialog_find()) != nullptr; }));
    user(dialog);
    EXPECT_TRUE(wait_until([&] { return done; }));
    asking.join();
    return chosen;
}

TEST(ChooseFolder, StartsWhereTheFailedOneWasToLie) {
    const TemporaryFolder folder;
    CreateDirectoryW(folder.file(L"other").c_str(), nullptr);
    std::wstring failed = folder.file(L"pictures");
    EXPECT_EQ(chosen_folder(failed, [](HWND dialog) { file_dialog_cancel(dialog); }), L"(none)");
    // A name alone is one in the folder that the dialog is in.
    EXPECT_EQ(test_utf8(chosen_folder(failed, [](HWND dialog) { file_dialog_accept(dialog, L"other"); })),
              test_utf8(folder.file(L"other")));
}
