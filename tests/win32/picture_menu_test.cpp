// The menu on the picture: how it opens, and what its entries do.
#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which names the types that this one is written in.
#include <shellapi.h>

#include <algorithm>
#include <cstring>

#include "app/export_commands.h"
#include "app/frontend.h"
#include "app/picture_commands.h"
#include "app/win32/picture_clipboard.h"
#include "app/win32/picture_menu.h"
#include "image/image_on_white.h"
#include "image/image_pack.h"
#include "image/png.h"
#include "tests/app/app_inputs.h"
#include "tests/win32/dialog_driver.h"
#include "tests/win32/import_patch.h"
#include "tests/win32/window_driver.h"

static bool start_and_run(Desktop *desktop, i32 steps) {
    return desktop_start(desktop) && load_layout(desktop, write_layout(*desktop)) &&
           run_process(desktop, write_process(*desktop, L"p.txt", depositions(steps)));
}

static std::wstring settings_path(const Desktop &desktop) {
    return desktop.file(L"local\\Dalvine\\Quarn\\window.ini");
}

static std::string setting(const Desktop &desktop, const wchar_t *key) {
    wchar_t value[16] = {};
    GetPrivateProfileStringW(L"picture", key, L"none", value, 16, settings_path(desktop).c_str());
    return test_utf8(value);
}

static void give_command(const Desktop &desktop, i32 command) {
    SendMessageW(desktop.main, WM_COMMAND, static_cast<WPARAM>(command), 0);
}

// The menu while it is open; null when none is. The system's own class.
static HWND open_menu() {
    return window_of_process(GetCurrentProcessId(), "#32768");
}

// What TrackPopupMenu was given, in place of showing it.
struct MenuSeen {
    std::vector<std::string> entries;  // "LABEL", " on" when checked, " grey" when greyed
    int x, y;
};

static std::vector<MenuSeen> menus_seen;

static void note_entries(HMENU menu, MenuSeen *seen) {
    const int count = GetMenuItemCount(menu);
    for (int i = 0; i < count; ++i) {
        const auto at = static_cast<UINT>(i);
        wchar_t text[64] = {};
        GetMenuStringW(menu, at, text, 64, MF_BYPOSITION);
        const UINT state = GetMenuState(menu, at, MF_BYPOSITION);
        HMENU inner = GetSubMenu(menu, i);
        const bool checked = inner == nullptr && (state & MF_CHECKED) != 0;
        const bool greyed = inner == nullptr && (state & MF_SEPARATOR) == 0 && (state & MF_GRAYED) != 0;
        seen->entries.push_back(test_utf8(text) + (checked ? " on" : "") + (greyed ? " grey" : ""));
        if (inner != nullptr) {
            note_entries(inner, seen);
        }
    }
}

static BOOL note_menu(HMENU menu, UINT, int x, int y, int, HWND, const RECT *) {
    MenuSeen seen = {{}, x, y};
    note_entries(menu, &seen);
    menus_seen.push_back(seen);
    return TRUE;
}

static MenuSeen menu_asked_for(const Desktop &desktop, HWND window, LPARAM place) {
    menus_seen.clear();
    SendMessageW(window, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(window), place);
    desktop_settle(desktop);
    EXPECT_EQ(menus_seen.size(), 1U);
    return menus_seen.empty() ? MenuSeen{} : menus_seen[0];
}

TEST(PictureMenu, EntriesAsTheyAre) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    import_replace<decltype(TrackPopupMenu)>("TrackPopupMenu", note_menu);
    EXPECT_EQ(
        menu_asked_for(desktop, desktop.render, MAKELPARAM(300, 310)).entries,
        (std::vector<std::string>{"&Copy picture grey", "&Save this picture as... grey", "&Export... grey",
                                  "&Open as page grey", "&Fine pictures", "&Vertical scale", "&1 on", "&2",
                                  "&5", "1&0", "5&0", "", "S&mooth picture"}));
    EXPECT_EQ(menus_seen[0].x, 300);
    EXPECT_EQ(menus_seen[0].y, 310);
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"p.txt", depositions(1))));
    give_command(desktop, PICTURE_FINE);
    give_command(desktop, PICTURE_SCALE + 3);
    give_command(desktop, PICTURE_SMOOTH);
    EXPECT_EQ(menu_asked_for(desktop, desktop.render, MAKELPARAM(300, 310)).entries,
              (std::vector<std::string>{"&Copy picture", "&Save this picture as...", "&Export...",
                                        "&Open as page", "&Fine pictures on", "&Vertical scale", "&1", "&2",
                                        "&5", "1&0 on", "5&0", "", "S&mooth picture on"}));
    g_app->picture_wish = {};
    g_app->picture_style.vertical_scale = 3.0F;
    for (const std::string &entry : menu_asked_for(desktop, desktop.render, MAKELPARAM(300, 310)).entries) {
        EXPECT_EQ(entry.find(" on") != std::string::npos, entry == "S&mooth picture on") << entry;
    }
    EXPECT_EQ(menu_enabled(desktop), "save run load about") << "the menu bar stays as it is";
}

// The focus is always in the main window; a key has no place of its own.
TEST(PictureMenu, AKeyOpensItInsideThePicture) {
    Desktop desktop;
    ASSERT_TRUE(start_and_run(&desktop, 1));
    import_replace<decltype(TrackPopupMenu)>("TrackPopupMenu", note_menu);
    RECT area = {};
    GetWindowRect(desktop.render, &area);
    for (HWND window : {desktop.main, desktop.render}) {
        const MenuSeen seen = menu_asked_for(desktop, window, -1);
        EXPECT_GT(seen.x, area.left);
        EXPECT_LT(seen.x, area.right);
        EXPECT_GT(seen.y, area.top);
        EXPECT_LT(seen.y, area.bottom);
    }
    menus_seen.clear();
    SendMessageW(desktop.main, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(desktop.status), MAKELPARAM(5, 5));
    desktop_settle(desktop);
    EXPECT_TRUE(menus_seen.empty()) << "a right click elsewhere";
}

// Keys as the keyboard gives them; the window must have them.
static void type_keys(const std::vector<WORD> &held, WORD key) {
    std::vector<INPUT> inputs;
    const auto add = [&](WORD code, DWORD flags) {
        INPUT input = {};
        input.type = INPUT_KEYBOARD;
        input.ki.wVk = code;
        input.ki.dwFlags = flags;
        inputs.push_back(input);
    };
    for (const WORD code : held) {
        add(code, 0);
    }
    add(key, 0);
    add(key, KEYEVENTF_KEYUP);
    for (const WORD code : held) {
        add(code, KEYEVENTF_KEYUP);
    }
    SendInput(static_cast<UINT>(inputs.size()), inputs.data(), sizeof(INPUT));
}

static bool start_in_front(Desktop *desktop) {
    const bool started = start_and_run(desktop, 1);
    SetForegroundWindow(desktop->main);
    return started && wait_until([&] { return GetForegroundWindow() == desktop->main; });
}

TEST(PictureMenu, OpensByItsKeysAndEscapeClosesIt) {
    Desktop desktop;
    ASSERT_TRUE(start_in_front(&desktop));
    const struct {
        std::vector<WORD> held;
        WORD key;
    } keys[] = {{{}, VK_APPS}, {{VK_SHIFT}, VK_F10}};
    for (const auto &keyboard : keys) {
        type_keys(keyboard.held, keyboard.key);
        ASSERT_TRUE(wait_until([] { return open_menu() != nullptr; })) << keyboard.key;
        type_keys({}, VK_ESCAPE);
        EXPECT_TRUE(wait_until([] { return open_menu() == nullptr; })) << keyboard.key;
    }
    EXPECT_EQ(setting(desktop, L"fine"), "none");
    EXPECT_EQ(menu_enabled(desktop), "save run load about");
}

TEST(PictureMenu, TakesTheLettersOfItsEntries) {
    Desktop desktop;
    ASSERT_TRUE(start_in_front(&desktop));
    const struct {
        std::vector<WORD> letters;
        const wchar_t *key;
        const char *value;
    } choices[] = {{{'F'}, L"fine", "1"}, {{'V', '5'}, L"vertical-scale", "5"}, {{'F'}, L"fine", "0"}};
    for (const auto &choice : choices) {
        PostMessageW(desktop.main, WM_CONTEXTMENU, reinterpret_cast<WPARAM>(desktop.main), -1);
        ASSERT_TRUE(wait_until([] { return open_menu() != nullptr; }));
        for (const WORD letter : choice.letters) {
            type_keys({}, letter);
        }
        EXPECT_TRUE(wait_until([] { return open_menu() == nullptr; }));
        EXPECT_TRUE(wait_until([&] { return setting(desktop, choice.key) == choice.value; })) << choice.value;
    }
    EXPECT_EQ(status_text(desktop, STATUS_PROCESS), "Plain pictures from the next run on");
}

// A picture of the list on white, as the clipboard should have it.
static std::vector<u8> on_white(i32 index) {
    const Owned<PixelImage> image(image_unpack(g_app->images[index]));
    image_lay_on_white(image.get());
    return {image->pixels, image->pixels + i64{image->width} * image->height * 4};
}

TEST(PictureMenu, CopiesThePictureOnShow) {
    Desktop desktop;
    ASSERT_TRUE(start_and_run(&desktop, 2));
    for (i32 step = 0; step < 2; ++step) {
        key_press(desktop.main, VK_LEFT);
        desktop_settle(desktop);
        give_command(desktop, PICTURE_COPY);
        const i32 index = g_app->current_image;
        EXPECT_EQ(index, 1 - step);
        ASSERT_TRUE(wait_until([&] { return OpenClipboard(nullptr) != FALSE; }, 5));
        HANDLE data = GetClipboardData(CF_DIB);
        ASSERT_NE(data, nullptr);
        EXPECT_TRUE(IsClipboardFormatAvailable(CF_BITMAP));
        const auto *bytes = static_cast<const u8 *>(GlobalLock(data));
        BITMAPINFOHEADER header = {};
        std::memcpy(&header, bytes, sizeof(header));
        EXPECT_EQ(header.biSize, 40U);
        EXPECT_EQ(header.biWidth, 1920);
        EXPECT_EQ(header.biHeight, g_app->images[index]->height) << "positive: bottom row first";
        EXPECT_EQ(header.biBitCount, 32);
        EXPECT_EQ(header.biCompression, static_cast<DWORD>(BI_RGB));
        const std::vector<u8> expected = on_white(index);
        EXPECT_EQ(header.biSizeImage, expected.size());
        EXPECT_EQ(std::memcmp(bytes + sizeof(header), expected.data(), expected.size()), 0);
        GlobalUnlock(data);
        CloseClipboard();
    }
}

// What the clipboard has in a format that programs know by its name.
static std::string clipboard_bytes(const wchar_t *format) {
    std::string bytes;
    if (wait_until([&] { return OpenClipboard(nullptr) != FALSE; }, 5)) {
        HANDLE data = GetClipboardData(RegisterClipboardFormatW(format));
        if (data != nullptr) {
            bytes.assign(static_cast<const char *>(GlobalLock(data)), GlobalSize(data));
            GlobalUnlock(data);
        }
        CloseClipboard();
    }
    return bytes;
}

TEST(PictureMenu, CopiesAPngWithWhatIsTransparent) {
    Desktop desktop;
    ASSERT_TRUE(start_and_run(&desktop, 1));
    const std::wstring path = desktop.file(L"expected.png");
    for (const bool transparent : {false, true}) {
        PixelImage *shown = g_app->images[g_app->current_image];
        shown->transparent = transparent;
        const Owned<PixelImage> expected(image_unpack(shown));
        ASSERT_NE(expected->notes, nullptr);
        if (!transparent) {
            image_lay_on_white(expected.get());
        }
        ASSERT_EQ(png_write_image(expected.get(), path.c_str()), 0);
        give_command(desktop, PICTURE_COPY);
        const std::string bytes = clipboard_bytes(L"PNG");
        const std::string file = test_file_read(path);
        EXPECT_EQ(bytes.substr(0, file.size()) == file, true) << transparent;
        EXPECT_LT(bytes.size(), file.size() + 64) << "a block may be a little larger than was asked for";
        ASSERT_TRUE(wait_until([&] { return OpenClipboard(nullptr) != FALSE; }, 5));
        EXPECT_EQ(EnumClipboardFormats(0), RegisterClipboardFormatW(L"PNG")) << "the first that is offered";
        EXPECT_TRUE(IsClipboardFormatAvailable(CF_DIB));
        const auto *bitmap = static_cast<const u8 *>(GlobalLock(GetClipboardData(CF_DIB)));
        const std::vector<u8> white = on_white(g_app->current_image);
        EXPECT_EQ(std::memcmp(bitmap + sizeof(BITMAPINFOHEADER), white.data(), white.size()), 0);
        GlobalUnlock(GetClipboardData(CF_DIB));
        CloseClipboard();
    }
}

TEST(PictureMenu, WithoutMemoryForAPngThereIsTheBitmap) {
    Desktop desktop;
    ASSERT_TRUE(start_and_run(&desktop, 1));
    const Owned<PixelImage> picture(picture_to_copy(g_app));
    memory_trip_after(0);
    const bool set = picture_clipboard_set(desktop.main, picture.get());
    memory_trip_after(-1);
    EXPECT_TRUE(set);
    EXPECT_EQ(clipboard_bytes(L"PNG"), "");
    ASSERT_TRUE(wait_until([&] { return OpenClipboard(nullptr) != FALSE; }, 5));
    EXPECT_TRUE(IsClipboardFormatAvailable(CF_DIB));
    CloseClipboard();
}

TEST(PictureMenu, AClipboardThatIsHeldIsTold) {
    Desktop desktop;
    ASSERT_TRUE(start_and_run(&desktop, 1));
    static bool held;
    held = true;
    import_replace<decltype(OpenClipboard)>("OpenClipboard",
                                            [](HWND) -> BOOL { return held ? FALSE : TRUE; });
    PostMessageW(desktop.main, WM_COMMAND, PICTURE_COPY, 0);
    const MessageBoxSeen box = message_box_wait();
    EXPECT_EQ(box.text, "The picture could not be copied: the clipboard does not take it");
    EXPECT_EQ(box.owner, desktop.main);
    message_box_press_ok(box);
    EXPECT_TRUE(console_shows(desktop, box.text + "\r\n\r\n"));
}

static std::string saved_bytes(const Desktop &desktop, i32 index, ImageFormat format) {
    const Owned<PixelImage> image(image_unpack(g_app->images[index]));
    const std::wstring path = desktop.file(L"expected");
    EXPECT_EQ(image_save(image.get(), path.c_str(), format), 0);
    return test_file_read(path);
}

static HWND ask_where(const Desktop &desktop) {
    PostMessageW(desktop.main, WM_COMMAND, PICTURE_SAVE, 0);
    return file_dialog_wait(PICTURE_SAVE_FORM.title);
}

TEST(PictureMenu, SavesThePictureOnShow) {
    Desktop desktop;
    ASSERT_TRUE(start_and_run(&desktop, 2));
    CreateDirectoryW(desktop.file(L"pictures").c_str(), nullptr);
    key_press(desktop.main, VK_LEFT);
    desktop_settle(desktop);
    const std::string console = console_text(desktop);
    wchar_t before[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, before);
    const struct {
        const wchar_t *typed, *file;
        ImageFormat format;
    } saves[] = {{L"pictures\\one.png", L"pictures\\one.png", IMAGE_PNG},
                 {L"pictures\\two.BMP", L"pictures\\two.BMP", IMAGE_BMP},
                 {L"pictures\\three", L"pictures\\three.bmp", IMAGE_BMP}};
    for (const auto &save : saves) {
        HWND dialog = ask_where(desktop);
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(file_dialog_name(dialog), "001 Cross section after D1 deposition.bmp");
        EXPECT_EQ(file_dialog_filter(dialog), "BMP Files (*.bmp)");
        file_dialog_accept(dialog, desktop.file(save.typed));
        desktop_settle(desktop);
        EXPECT_EQ(test_file_read(desktop.file(save.file)), saved_bytes(desktop, 1, save.format));
    }
    wchar_t after[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, after);
    EXPECT_EQ(test_utf8(before), test_utf8(after)) << "where dumps go";
    EXPECT_EQ(console_text(desktop), console);
    EXPECT_FALSE(message_box_is_up());
}

TEST(PictureMenu, ACancelledDialogWritesNothing) {
    Desktop desktop;
    ASSERT_TRUE(start_and_run(&desktop, 1));
    const std::vector<std::wstring> files = test_folder_list(desktop.folder.path);
    HWND dialog = ask_where(desktop);
    ASSERT_NE(dialog, nullptr);
    // A command is through before the next one begins.
    const std::string status = status_text(desktop, STATUS_PROCESS);
    give_command(desktop, PICTURE_FINE);
    EXPECT_EQ(status_text(desktop, STATUS_PROCESS), status);
    file_dialog_cancel(dialog);
    desktop_settle(desktop);
    EXPECT_EQ(test_folder_list(desktop.folder.path), files);
    give_command(desktop, PICTURE_FINE);
    EXPECT_EQ(status_text(desktop, STATUS_PROCESS), "Fine pictures from the next run on");
}

TEST(PictureMenu, AFailedSaveSaysWhyAndAsksAgain) {
    Desktop desktop;
    ASSERT_TRUE(start_and_run(&desktop, 1));
    static decltype(_wfopen) *open_original;
    static bool full;
    full = true;
    open_original =
        import_replace<decltype(_wfopen)>("_wfopen", [](const wchar_t *path, const wchar_t *mode) -> FILE * {
            if (full && std::wcsstr(path, L"quarn-") != nullptr) {
                errno = ENOSPC;
                return nullptr;
            }
            return open_original(path, mode);
        });
    const std::string path = test_utf8(desktop.file(L"new.png"));
    HWND dialog = ask_where(desktop);
    ASSERT_NE(dialog, nullptr);
    file_dialog_accept(dialog, desktop.file(L"new.png"));
    const MessageBoxSeen box = message_box_wait();
    const std::string start = "The picture could not be saved as \"" + path + "\": ";
    EXPECT_EQ(box.text.substr(0, start.size()), start);
    EXPECT_GT(box.text.size(), start.size());
    full = false;
    message_box_press_ok(box);
    EXPECT_TRUE(console_shows(desktop, box.text + "\r\n\r\n"));
    HWND again = file_dialog_wait(PICTURE_SAVE_FORM.title);
    ASSERT_NE(again, nullptr);
    file_dialog_accept(again, desktop.file(L"new.png"));
    desktop_settle(desktop);
    EXPECT_EQ(test_file_read(desktop.file(L"new.png")), saved_bytes(desktop, 1, IMAGE_PNG));
}

TEST(PictureMenu, AsksBeforeAFileIsReplaced) {
    Desktop desktop;
    ASSERT_TRUE(start_and_run(&desktop, 1));
    test_file_write(desktop.file(L"old.png"), "old");
    HWND dialog = ask_where(desktop);
    ASSERT_NE(dialog, nullptr);
    file_dialog_type(dialog, desktop.file(L"old.png"));
    const MessageBoxSeen box = message_box_wait();
    EXPECT_NE(box.window, nullptr) << "the system asks";
    EXPECT_EQ(test_file_read(desktop.file(L"old.png")), "old");
    PostMessageW(box.window, WM_COMMAND, IDNO, 0);
    EXPECT_TRUE(wait_until([&] { return !IsWindow(box.window); }));
    file_dialog_cancel(dialog);
    desktop_settle(desktop);
    EXPECT_EQ(test_file_read(desktop.file(L"old.png")), "old");
}

TEST(PictureMenu, ChoicesHoldFromTheNextRunOnAndAreRemembered) {
    Desktop desktop;
    ASSERT_TRUE(start_and_run(&desktop, 1));
    give_command(desktop, PICTURE_FINE);
    EXPECT_EQ(status_text(desktop, STATUS_PROCESS), "Fine pictures from the next run on");
    give_command(desktop, PICTURE_SCALE + 2);
    EXPECT_EQ(status_text(desktop, STATUS_PROCESS), "Vertical scale 5 from the next run on");
    EXPECT_EQ(setting(desktop, L"fine"), "1");
    EXPECT_EQ(setting(desktop, L"vertical-scale"), "5");
    EXPECT_FALSE(g_app->picture_style.fine);
    const std::wstring process = desktop.file(L"p.txt");
    ASSERT_TRUE(run_process(&desktop, process));
    EXPECT_TRUE(g_app->picture_style.fine);
    EXPECT_EQ(g_app->picture_style.vertical_scale, 5.0F);
    EXPECT_EQ(status_text(desktop, STATUS_PROCESS), test_utf8(process)) << "the run's own text";
    EXPECT_EQ(desktop_close(&desktop), 0);

    SetCurrentDirectoryW(desktop.folder.path.c_str());
    ASSERT_TRUE(desktop_start(&desktop));
    desktop_settle(desktop);
    EXPECT_TRUE(picture_wish_fine(g_app));
    EXPECT_EQ(picture_wish_scale(g_app), 5.0F);
    EXPECT_EQ(status_text(desktop, STATUS_PROCESS), "Not loaded") << "a start says nothing";
}

TEST(PictureMenu, GarbledSettingsAreHarmless) {
    Desktop desktop;
    for (const wchar_t *folder : {L"local\\Dalvine", L"local\\Dalvine\\Quarn"}) {
        CreateDirectoryW(desktop.file(folder).c_str(), nullptr);
    }
    test_file_write(settings_path(desktop), "[picture]\nfine=maybe\nvertical-scale=3\n");
    ASSERT_TRUE(desktop_start(&desktop));
    desktop_settle(desktop);
    EXPECT_FALSE(picture_wish_fine(g_app));
    EXPECT_EQ(picture_wish_scale(g_app), 1.0F);
}

TEST(PictureMenu, WorksDuringARun) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop) && load_layout(&desktop, write_layout(desktop)));
    ASSERT_TRUE(run_start_held(&desktop, write_process(desktop, L"p.txt", depositions(3)), L"Executing D2"));
    give_command(desktop, PICTURE_SCALE + 1);
    EXPECT_EQ(g_app->picture_style.vertical_scale, 1.0F) << "the run keeps its style";
    EXPECT_EQ(status_text(desktop, STATUS_PROCESS), "Vertical scale 2 from the next run on");
    const std::string expected = saved_bytes(desktop, 1, IMAGE_PNG);
    HWND dialog = ask_where(desktop);
    ASSERT_NE(dialog, nullptr);
    console_release();
    ASSERT_TRUE(run_wait_end(desktop)) << "the run goes on while the dialog is open";
    file_dialog_accept(dialog, desktop.file(L"held.png"));
    desktop_settle(desktop);
    EXPECT_EQ(test_file_read(desktop.file(L"held.png")), expected) << "the picture that was on show";
    EXPECT_EQ(menu_enabled(desktop), "save run load about");
}

// Waits until the status bar says that a file was exported. Its path.
static std::string exported_path(const Desktop &desktop) {
    const std::string start = "Exported ";
    std::string status;
    for (i32 tries = 0; tries < PATIENCE_S * 100 && status.compare(0, start.size(), start) != 0; ++tries) {
        Sleep(10);
        status = status_text(desktop, STATUS_PROCESS);
    }
    EXPECT_EQ(status.substr(0, start.size()), start);
    desktop_settle(desktop);
    return status.substr(std::min(start.size(), status.size()));
}

TEST(PictureMenu, ExportsTheStepOnShow) {
    Desktop desktop;
    ASSERT_TRUE(start_and_run(&desktop, 2));
    key_press(desktop.main, VK_LEFT);
    desktop_settle(desktop);
    const std::string console = console_text(desktop);
    PostMessageW(desktop.main, WM_COMMAND, PICTURE_EXPORT, 0);
    HWND dialog = file_dialog_wait(EXPORT_SAVE_TITLE);
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(file_dialog_filter(dialog), "SVG drawings (*.svg)");
    file_dialog_accept(dialog, desktop.file(L"a.csv"));
    EXPECT_EQ(exported_path(desktop), test_utf8(desktop.file(L"a.csv")));
    const std::string table = test_file_read(desktop.file(L"a.csv"));
    EXPECT_NE(table.find("D1 top_nm"), std::string::npos) << table.substr(0, 200);
    EXPECT_EQ(table.find("D2 top_nm"), std::string::npos) << "a step later";
    EXPECT_EQ(console_text(desktop), console);
    EXPECT_EQ(menu_enabled(desktop), "save run load about");
}

static std::wstring opened_file;

static HINSTANCE WINAPI note_opened(HWND, LPCWSTR, LPCWSTR file, LPCWSTR, LPCWSTR, INT) {
    opened_file = file;
    return reinterpret_cast<HINSTANCE>(INT_PTR{33});
}

TEST(PictureMenu, OpensTheRunAsAPage) {
    Desktop desktop;
    ASSERT_TRUE(start_and_run(&desktop, 1));
    import_replace<decltype(ShellExecuteW)>("ShellExecuteW", note_opened);
    opened_file.clear();
    give_command(desktop, PICTURE_PAGE);
    const std::string path = exported_path(desktop);
    EXPECT_EQ(path.substr(path.size() - 5), ".html");
    EXPECT_EQ(test_utf8(opened_file), path);
    EXPECT_NE(test_file_read(opened_file).find("</html>"), std::string::npos);
}
