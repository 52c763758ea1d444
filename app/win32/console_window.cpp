#include "app/win32/console_window.h"

#include "app/win32/main_window.h"
#include "log/log.h"

HWND g_console = nullptr;

static HFONT console_font = nullptr;

i32 console_window_create(HWND parent) {
    const DWORD style =
        WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_BORDER | ES_READONLY | ES_AUTOVSCROLL | ES_MULTILINE;
    g_console = CreateWindowExW(WS_EX_CLIENTEDGE, L"Edit", nullptr, style, 0, 0, 0, 0, parent,
                                reinterpret_cast<HMENU>(static_cast<INT_PTR>(CHILD_CONSOLE)),
                                GetModuleHandleW(nullptr), nullptr);
    if (g_console == nullptr) {
        message_show(L"Creating console window failed");
        return -1;
    }
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

void console_window_append(const wchar_t *text) {
    if (g_main_window != nullptr &&
        GetWindowThreadProcessId(g_main_window, nullptr) != GetCurrentThreadId()) {
        SendMessageW(g_main_window, WM_APP_CONSOLE_APPEND, 0, reinterpret_cast<LPARAM>(text));
        return;
    }
    auto end = static_cast<WPARAM>(GetWindowTextLengthW(g_console));
    SendMessageW(g_console, EM_SETSEL, end, static_cast<LPARAM>(end));
    SendMessageW(g_console, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text));
    LRESULT first_line = SendMessageW(g_console, EM_GETFIRSTVISIBLELINE, 0, 0);
    LRESULT line_count = SendMessageW(g_console, EM_GETLINECOUNT, 0, 0);
    SendMessageW(g_console, EM_LINESCROLL, 0, line_count - first_line);
}

void console_window_clear() {
    SetWindowTextW(g_console, L"");
}

LRESULT console_window_colors(HDC context, HWND control, HBRUSH brush) {
    if (GetDlgCtrlID(control) != CHILD_CONSOLE) {
        return 0;
    }
    SetBkColor(context, RGB(255, 255, 255));
    return reinterpret_cast<LRESULT>(brush);
}
