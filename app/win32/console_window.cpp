#include "app/win32/console_window.h"

#include <cassert>
#include <cwchar>

#include "app/app_state.h"
#include "app/win32/win32_desktop.h"
#include "log/log.h"
#include "log/text.h"
#include "platform/thread_role.h"

// Characters, of two bytes each: room for the cells of the largest layouts. The control would take 30,000,
// which some hundred cells fill.
static constexpr i64 CONSOLE_MOST = 4'000'000;

static constexpr i32 FONT_HEIGHT = 14;  // pixels at 100 %

i32 console_window_create(HWND parent) {
    const DWORD style =
        WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_BORDER | ES_READONLY | ES_AUTOVSCROLL | ES_MULTILINE |
        ES_NOHIDESEL;  // the console never has the focus, and what is marked in it is shown all the same
    assert(thread_role_fits(THREAD_WINDOW) && parent != nullptr);
    ConsoleWindow *console = &g_desktop->console;
    console->control = CreateWindowExW(WS_EX_CLIENTEDGE, L"Edit", nullptr, style, 0, 0, 0, 0, parent,
                                       reinterpret_cast<HMENU>(static_cast<INT_PTR>(CHILD_CONSOLE)),
                                       GetModuleHandleW(nullptr), nullptr);
    if (console->control == nullptr) {
        message_show(L"Creating console window failed");
        return -1;
    }
    console->control_limit = SendMessageW(console->control, EM_GETLIMITTEXT, 0, 0);
    console->full = false;
    // 650 is the orientation and the weight is the default: kept so, as another weight would change the
    // width of the text.
    console->font =
        CreateFontW(window_scaled(FONT_HEIGHT), 0, 0, 650, 0, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                    OUT_OUTLINE_PRECIS, CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, VARIABLE_PITCH, L"Consolas");
    if (console->font == nullptr) {
        message_show(L"Creating console window font failed");
        return -1;
    }
    SendMessageW(console->control, WM_SETFONT, reinterpret_cast<WPARAM>(console->font), TRUE);
    return 0;
}

void console_window_free() {
    if (g_desktop->console.font != nullptr) {
        DeleteObject(g_desktop->console.font);
    }
    g_desktop->console = {};
}

static void append_at(const ConsoleWindow *console, int end, const wchar_t *text) {
    SendMessageW(console->control, EM_SETSEL, static_cast<WPARAM>(end), end);
    SendMessageW(console->control, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text));
}

// The control applies its limit to what the program appends as well as to what a user types, so it is raised
// meanwhile.
static void append_beyond_limit(const ConsoleWindow *console, int end, const wchar_t *text) {
    SendMessageW(console->control, EM_SETLIMITTEXT, CONSOLE_MOST * 2, 0);
    append_at(console, end, text);
    SendMessageW(console->control, EM_SETLIMITTEXT, static_cast<WPARAM>(console->control_limit), 0);
}

static void tell_full(const ConsoleWindow *console, int end) {
    const Owned<WString> note(
        wstring_make(L"\r\nNote: the console is full; what follows is in %ls\\log.txt\r\n",
                     wstring_text(g_app->appdata_path)));
    append_beyond_limit(console, end, wstring_text(note.get()));
    log_write(L"The console is full; what follows would stand there");
}

// A line of the log ends by itself.
static void append_to_log(const wchar_t *text) {
    auto length = static_cast<int>(std::wcslen(text));
    while (length > 0 && (text[length - 1] == L'\r' || text[length - 1] == L'\n')) {
        --length;
    }
    if (length > 0) {
        log_write(L"%.*ls", length, text);
    }
}

// In the user-interface thread.
static void append(const wchar_t *text) {
    assert(thread_role_fits(THREAD_WINDOW));
    ConsoleWindow *console = &g_desktop->console;
    const int end = GetWindowTextLengthW(console->control);
    const i64 length = end + static_cast<i64>(std::wcslen(text));
    if (!console->full && length > CONSOLE_MOST) {
        console->full = true;
        tell_full(console, end);
    }
    if (console->full) {
        append_to_log(text);
    } else if (length > console->control_limit) {
        append_beyond_limit(console, end, text);
    } else {
        append_at(console, end, text);
    }
    const LRESULT first_line = SendMessageW(console->control, EM_GETFIRSTVISIBLELINE, 0, 0);
    const LRESULT line_count = SendMessageW(console->control, EM_GETLINECOUNT, 0, 0);
    SendMessageW(console->control, EM_LINESCROLL, 0, line_count - first_line);
}

void console_window_append(const wchar_t *text) {
    assert(text != nullptr);
    HWND main = g_desktop->main.window;
    if (main != nullptr && GetWindowThreadProcessId(main, nullptr) != GetCurrentThreadId()) {
        SendMessageW(main, WM_APP_CONSOLE_APPEND, 0, reinterpret_cast<LPARAM>(text));
    } else {
        append(text);
    }
}

void console_window_clear() {
    assert(thread_role_fits(THREAD_WINDOW));
    SetWindowTextW(g_desktop->console.control, L"");
    g_desktop->console.full = false;
}

LRESULT console_window_colors(HDC context, HWND control, HBRUSH brush) {
    if (GetDlgCtrlID(control) != CHILD_CONSOLE) {
        return 0;
    }
    SetBkColor(context, RGB(255, 255, 255));
    return reinterpret_cast<LRESULT>(brush);
}
