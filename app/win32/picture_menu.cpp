#include "app/win32/picture_menu.h"

#include <windowsx.h>

#include <cassert>

#include "app/win32/win32_desktop.h"
#include "log/log.h"
#include "platform/thread_role.h"

static const wchar_t *const SECTION = L"picture";
static const wchar_t *const SMOOTH_KEY = L"smooth";

// A new string.
static WString *settings_path(const AppState *state) {
    return wstring_make(L"%ls%lswindow.ini", wstring_text(state->appdata_path), PLATFORM_SEPARATOR);
}

void picture_menu_load(const AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW) && state->appdata_path != nullptr);
    const Owned<WString> path(settings_path(state));
    shown_picture_set_smooth(GetPrivateProfileIntW(SECTION, SMOOTH_KEY, 0, wstring_text(path.get())) == 1);
}

void picture_menu_open(HWND render_window, LPARAM place) {
    assert(thread_role_fits(THREAD_WINDOW));
    POINT point = {GET_X_LPARAM(place), GET_Y_LPARAM(place)};
    if (point.x == -1 && point.y == -1) {
        point = {0, 0};
        ClientToScreen(render_window, &point);
    }
    HMENU menu = CreatePopupMenu();
    const UINT state = shown_picture_is_smooth() ? MF_CHECKED : MF_UNCHECKED;
    AppendMenuW(menu, MF_STRING | state, PICTURE_SMOOTH, L"S&mooth picture");
    TrackPopupMenu(menu, TPM_RIGHTBUTTON, point.x, point.y, 0, g_desktop->main.window, nullptr);
    DestroyMenu(menu);
}

void picture_menu_command(AppState *state, WORD id) {
    assert(thread_role_fits(THREAD_WINDOW));
    if (id != PICTURE_SMOOTH) {
        return;
    }
    const bool smooth = !shown_picture_is_smooth();
    shown_picture_set_smooth(smooth);
    const Owned<WString> path(settings_path(state));
    if (WritePrivateProfileStringW(SECTION, SMOOTH_KEY, smooth ? L"1" : L"0", wstring_text(path.get())) ==
        FALSE) {
        log_write(L"%ls cannot be written", wstring_text(path.get()));
    }
    InvalidateRect(static_cast<HWND>(state->render_window), nullptr, FALSE);
}
