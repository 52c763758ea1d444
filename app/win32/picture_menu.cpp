#include "app/win32/picture_menu.h"

#include <windowsx.h>

#include <cassert>

#include "app/export_commands.h"
#include "app/picture_commands.h"
#include "app/win32/picture_clipboard.h"
#include "app/win32/win32_desktop.h"
#include "log/log.h"
#include "platform/thread_role.h"

static const wchar_t *const SMOOTH_KEY = L"smooth";
static constexpr DWORD VALUE_CAPACITY = 16;  // characters of a value that makes sense

// A new string.
static WString *settings_path(const AppState *state) {
    return wstring_make(L"%ls%lswindow.ini", wstring_text(state->appdata_path), PLATFORM_SEPARATOR);
}

void picture_menu_load(AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW) && state->appdata_path != nullptr);
    const Owned<WString> path(settings_path(state));
    const wchar_t *file = wstring_text(path.get());
    shown_picture_set_smooth(GetPrivateProfileIntW(PICTURE_SETTINGS_SECTION, SMOOTH_KEY, 0, file) == 1);
    wchar_t fine[VALUE_CAPACITY] = {};
    wchar_t scale[VALUE_CAPACITY] = {};
    GetPrivateProfileStringW(PICTURE_SETTINGS_SECTION, PICTURE_FINE_KEY, L"", fine, VALUE_CAPACITY, file);
    GetPrivateProfileStringW(PICTURE_SETTINGS_SECTION, PICTURE_SCALE_KEY, L"", scale, VALUE_CAPACITY, file);
    picture_wish_remember(state, fine, scale);
}

static void keep(const AppState *state, const wchar_t *key, const wchar_t *value) {
    const Owned<WString> path(settings_path(state));
    if (WritePrivateProfileStringW(PICTURE_SETTINGS_SECTION, key, value, wstring_text(path.get())) == FALSE) {
        log_write(L"%ls cannot be written", wstring_text(path.get()));
    }
}

// An entry, greyed or checked as it is.
static void append(HMENU menu, const AppState *state, const PictureMenuItem *item) {
    const UINT greyed = picture_command_enabled(state, item->command) ? MF_ENABLED : MF_GRAYED;
    const UINT checked = picture_command_checked(state, item->command) ? MF_CHECKED : MF_UNCHECKED;
    AppendMenuW(menu, MF_STRING | greyed | checked, static_cast<UINT_PTR>(item->command), item->label);
}

// Freed with the menu that it is put into. One of the scales holds, which a round mark shows.
static HMENU create_scales(const AppState *state) {
    HMENU menu = CreatePopupMenu();
    for (const PictureMenuItem &item : PICTURE_SCALE_ITEMS) {
        append(menu, state, &item);
        if (picture_command_checked(state, item.command)) {
            const auto last = static_cast<UINT>(PICTURE_SCALE + VERTICAL_SCALE_COUNT - 1);
            CheckMenuRadioItem(menu, PICTURE_SCALE, last, static_cast<UINT>(item.command), MF_BYCOMMAND);
        }
    }
    return menu;
}

// A new one each time, which shows what holds; freed with DestroyMenu.
static HMENU create_menu(const AppState *state) {
    HMENU menu = CreatePopupMenu();
    for (const PictureMenuItem &item : PICTURE_MENU_ITEMS) {
        append(menu, state, &item);
    }
    AppendMenuW(menu, MF_POPUP, reinterpret_cast<UINT_PTR>(create_scales(state)), PICTURE_SCALE_LABEL);
    AppendMenuW(menu, MF_SEPARATOR, 0, nullptr);
    const UINT smooth = shown_picture_is_smooth() ? MF_CHECKED : MF_UNCHECKED;
    AppendMenuW(menu, MF_STRING | smooth, PICTURE_SMOOTH, L"S&mooth picture");
    return menu;
}

// The middle of the picture's area, on the screen.
static POINT middle(HWND render_window) {
    RECT area = {};
    GetClientRect(render_window, &area);
    POINT point = {area.right / 2, area.bottom / 2};
    ClientToScreen(render_window, &point);
    return point;
}

void picture_menu_open(const AppState *state, LPARAM place) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr);
    if (window_is_busy() || g_desktop->main.ended) {
        return;
    }
    POINT point = {GET_X_LPARAM(place), GET_Y_LPARAM(place)};
    if (point.x == -1 && point.y == -1) {
        point = middle(static_cast<HWND>(state->render_window));
    }
    HMENU menu = create_menu(state);
    TrackPopupMenu(menu, TPM_RIGHTBUTTON, point.x, point.y, 0, g_desktop->main.window, nullptr);
    DestroyMenu(menu);
}

bool picture_menu_has(WORD id) {
    return id == PICTURE_SMOOTH || picture_command_exists(id);
}

static void change_smooth(const AppState *state) {
    const bool smooth = !shown_picture_is_smooth();
    shown_picture_set_smooth(smooth);
    keep(state, SMOOTH_KEY, smooth ? L"1" : L"0");
    InvalidateRect(static_cast<HWND>(state->render_window), nullptr, FALSE);
}

static void copy_picture(const AppState *state) {
    const Owned<PixelImage> picture(picture_to_copy(state));
    if (picture == nullptr || !picture_clipboard_set(g_desktop->main.window, picture.get())) {
        picture_copy_failed();
    }
}

static WString *ask_where(AppState *, const SaveForm *form, const wchar_t *name, i32 *kind) {
    return file_dialog_save(g_desktop->main.window, form, name, kind);
}

void picture_menu_command(AppState *state, WORD id) {
    assert(thread_role_fits(THREAD_WINDOW) && picture_menu_has(id));
    if (id == PICTURE_SMOOTH) {
        change_smooth(state);
        return;
    }
    if (!picture_command_enabled(state, id)) {
        return;  // the picture has gone since the menu was opened
    }
    if (id == PICTURE_COPY) {
        copy_picture(state);
    } else if (id == PICTURE_SAVE) {
        picture_save_command(state, ask_where);
    } else if (id == PICTURE_EXPORT) {
        export_command(state, ask_where);
    } else if (id == PICTURE_PAGE) {
        page_command(state);
    } else {
        const wchar_t *value = nullptr;
        const wchar_t *key = picture_command_choose(state, id, &value);
        keep(state, key, value);
    }
}
