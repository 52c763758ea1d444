// Copying from the console, whose window never has the focus.
#include <gtest/gtest.h>

#include <cstring>

#include "log/log.h"
#include "tests/win32/import_patch.h"
#include "tests/win32/window_driver.h"

static bool control_is_down;

static SHORT WINAPI key_state(int key) {
    return key == VK_CONTROL && control_is_down ? static_cast<SHORT>(0x8000) : SHORT{0};
}

static std::string clipboard_text(HWND owner) {
    std::wstring text;
    if (wait_until([&] { return OpenClipboard(owner) != FALSE; }, 5)) {
        HANDLE data = GetClipboardData(CF_UNICODETEXT);
        if (data != nullptr) {
            text = static_cast<const wchar_t *>(GlobalLock(data));
            GlobalUnlock(data);
        }
        CloseClipboard();
    }
    return test_utf8(text);
}

static void set_clipboard(HWND owner, const wchar_t *text) {
    ASSERT_TRUE(OpenClipboard(owner));
    EmptyClipboard();
    const size_t size = (std::wcslen(text) + 1) * sizeof(wchar_t);
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, size);
    std::memcpy(GlobalLock(block), text, size);
    GlobalUnlock(block);
    SetClipboardData(CF_UNICODETEXT, block);
    CloseClipboard();
}

TEST(Copy, ControlCTakesWhatIsMarkedInTheConsole) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    import_replace("GetKeyState", key_state);
    console_clear();
    console_append(L"one two three\r\n");
    SendMessageW(desktop.console, EM_SETSEL, 4, 7);
    set_clipboard(nullptr, L"before");
    key_press(desktop.main, 'C');
    desktop_settle(desktop);
    EXPECT_EQ(clipboard_text(nullptr), "before") << "the letter alone does nothing";
    control_is_down = true;
    key_press(desktop.main, 'C');
    desktop_settle(desktop);
    EXPECT_EQ(clipboard_text(nullptr), "two");
}

TEST(Copy, AMarkedTextIsSeenWithoutTheFocus) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    EXPECT_NE(GetWindowLongW(desktop.console, GWL_STYLE) & ES_NOHIDESEL, 0);
    // A mouse that is dragged over the first line, whose focus the main window takes back at once.
    console_clear();
    console_append(L"one two three\r\n");
    const LRESULT place = SendMessageW(desktop.console, EM_POSFROMCHAR, 7, 0);
    PostMessageW(desktop.console, WM_LBUTTONDOWN, MK_LBUTTON, MAKELPARAM(2, 5));
    PostMessageW(desktop.console, WM_MOUSEMOVE, MK_LBUTTON, MAKELPARAM(LOWORD(place), 5));
    PostMessageW(desktop.console, WM_LBUTTONUP, 0, MAKELPARAM(LOWORD(place), 5));
    desktop_settle(desktop);
    DWORD start = 0;
    DWORD end = 0;
    SendMessageW(desktop.console, EM_GETSEL, reinterpret_cast<WPARAM>(&start),
                 reinterpret_cast<LPARAM>(&end));
    EXPECT_EQ(start, 0U);
    EXPECT_EQ(end, 7U);
}
