#include "app/win32/console_window.h"

#include <cwchar>

#include "app/app_state.h"
#include "app/win32/main_window.h"
#include "log/log.h"

HWND g_console = nullptr;

static HFONT console_font = nullptr;

// Characters, of two bytes each: room for the cells of the largest layouts. The control would take 30,000,
// which some hundred cells fill.
static constexpr i64 CONSOLE_MOST = 4'000'000;

static bool full = false;          // texts go to the log
static LRESULT control_limit = 0;  // characters that the control takes by itself

i32 console_window_create(HWND parent) {
    const DWORD style =
        WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_BORDER | ES_READONLY | ES_AUTOVSCROLL | ES_MULTILINE |
        ES_NOHIDESEL;  // the console never has the focus, and what is marked in it is shown all the same
    g_console = CreateWindowExW(WS_EX_CLIENTEDGE, L"Edit", nullptr, style, 0, 0, 0, 0, parent,
                                reinterpret_cast<HMENU>(static_cast<INT_PTR>(CHILD_CONSOLE)),
                                GetModuleHandleW(nullptr), nullptr);
    if (g_console == nullptr) {
        message_show(L"Creating console window failed");
        return -1;
    }
    control_limit = SendMessageW(g_console, EM_GETLIMITTEXT, 0, 0);
    full = false;
    // 650 is the orientation and the weight is the default: kept so, as another weight would change the
    // width of the text.
    console_font = CreateFontW(14, 0, 0, 650, 0, FALSE, FALSE, FALSE, DEFAULT_CHARSET, OUT_OUTLINE_PRECIS,
                               CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, VARIABLE_PITCH, L"Consolas");
    if (console_font == nullptr) {
        message_show(L"Creating console window font failed");
        return -1;
    }
    SendMessageW(g_console, WM_SETFONT, reinterpret_cast<WPARAM>(console_font), TRUE);
    return 0;
}

void console_window_free() {
    if (console_font != nullptr) {
        DeleteObject(console_font);
        console_font = nullptr;
    }
}

static void append_at(int end, const wchar_t *text) {
    SendMessageW(g_console, EM_SETSEL, static_cast<WPARAM>(end), end);
    SendMessageW(g_console, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text));
}

// The control applies its limit to what the program appends as well as to what a user types, so it is raised
// meanwhile.
static void append_beyond_limit(int end, const wchar_t *text) {
    SendMessageW(g_console, EM_SETLIMITTEXT, CONSOLE_MOST * 2, 0);
    append_at(end, text);
    SendMessageW(g_console, EM_SETLIMITTEXT, static_cast<WPARAM>(control_limit), 0);
}

static void tell_full(int end) {
    WString *note = wstring_make(L"\r\nNote: the console is full; what follows is in %ls\\log.txt\r\n",
                                 wstring_text(g_app->appdata_path));
    append_beyond_limit(end, wstring_text(note));
    wstring_free(note);
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
    const int end = GetWindowTextLengthW(g_console);
    const i64 length = end + static_cast<i64>(std::wcslen(text));
    if (!full && length > CONSOLE_MOST) {
        full = true;
        tell_full(end);
    }
    if (full) {
        append_to_log(text);
    } else if (length > control_limit) {
        append_beyond_limit(end, text);
    } else {
        append_at(end, text);
    }
    const LRESULT first_line = SendMessageW(g_console, EM_GETFIRSTVISIBLELINE, 0, 0);
    const LRESULT line_count = SendMessageW(g_console, EM_GETLINECOUNT, 0, 0);
    SendMessageW(g_console, EM_LINESCROLL, 0, line_count - first_line);
}

void console_window_append(const wchar_t *text) {
    if (g_main_window != nullptr &&
        GetWindowThreadProcessId(g_main_window, nullptr) != GetCurrentThreadId()) {
        SendMessageW(g_main_window, WM_APP_CONSOLE_APPEND, 0, reinterpret_cast<LPARAM>(text));
    } else {
        append(text);
    }
}

void console_window_clear() {
    SetWindowTextW(g_console, L"");
    full = false;
}

LRESULT console_window_colors(HDC context, HWND control, HBRUSH brush) {
    if (GetDlgCtrlID(control) != CHILD_CONSOLE) {
        return 0;
    }
    SetBkColor(context, RGB(255, 255, 255));
    return reinterpret_cast<LRESULT>(brush);
}
