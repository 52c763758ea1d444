#include "app/win32/status_bar.h"

#include <commctrl.h>

#include <cassert>

#include "app/win32/win32_desktop.h"
#include "app/window_texts.h"
#include "log/log.h"
#include "platform/thread_role.h"

static constexpr i32 FONT_HEIGHT = 11;  // pixels at 100 %

static void set_fields(HWND status_bar) {
    INT right_edges[STATUS_PART_COUNT];
    for (i32 i = 0; i < STATUS_PART_COUNT; ++i) {
        right_edges[i] = window_scaled(STATUS_FIELDS[i].right_edge);
    }
    SendMessageW(status_bar, SB_SETPARTS, STATUS_PART_COUNT, reinterpret_cast<LPARAM>(right_edges));
    for (i32 i = 0; i < STATUS_PART_COUNT; ++i) {
        status_bar_set_text(status_bar, i, STATUS_FIELDS[i].text);
    }
}

HWND status_bar_create(HWND parent) {
    assert(thread_role_fits(THREAD_WINDOW) && parent != nullptr);
    const INITCOMMONCONTROLSEX controls = {sizeof(controls), ICC_BAR_CLASSES};
    InitCommonControlsEx(&controls);
    HWND status_bar = CreateWindowExW(0, L"msctls_statusbar32", nullptr, WS_CHILD | WS_VISIBLE, 0, 0, 0, 0,
                                      parent, reinterpret_cast<HMENU>(static_cast<INT_PTR>(CHILD_STATUS_BAR)),
                                      GetModuleHandleW(nullptr), nullptr);
    if (status_bar == nullptr) {
        message_show(L"Creating status bar failed");
        return nullptr;
    }
    HFONT font = CreateFontW(window_scaled(FONT_HEIGHT), 0, 0, 0, 0, FALSE, FALSE, FALSE, DEFAULT_CHARSET, 0,
                             0, 0, 0, nullptr);
    g_desktop->status.font = font;
    if (font == nullptr) {
        message_show(L"Creating status bar font failed");
        return nullptr;
    }
    SendMessageW(status_bar, WM_SETFONT, reinterpret_cast<WPARAM>(font), TRUE);
    set_fields(status_bar);
    return status_bar;
}

void status_bar_free() {
    if (g_desktop->status.font != nullptr) {
        DeleteObject(g_desktop->status.font);
        g_desktop->status.font = nullptr;
    }
}

void status_bar_set_text(HWND status_bar, i32 field, const wchar_t *text) {
    assert(field >= 0 && field < STATUS_PART_COUNT);
    SendMessageW(status_bar, SB_SETTEXTW, static_cast<WPARAM>(field), reinterpret_cast<LPARAM>(text));
}
