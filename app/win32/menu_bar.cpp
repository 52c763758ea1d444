#include "app/win32/menu_bar.h"

#include <cassert>

#include "app/window_texts.h"
#include "platform/thread_role.h"

void menu_bar_create(HWND main_window) {
    assert(thread_role_fits(THREAD_WINDOW));
    HMENU menu = CreateMenu();
    for (const MenuItem &item : MENU_ITEMS) {
        AppendMenuW(menu, MF_STRING, static_cast<UINT_PTR>(item.command), item.label);
    }
    SetMenu(main_window, menu);
}

void menu_bar_enable(HWND main_window, MenuCommand command, bool enabled) {
    const UINT state = enabled ? MF_ENABLED : MF_GRAYED;
    EnableMenuItem(GetMenu(main_window), static_cast<UINT>(command), MF_BYCOMMAND | state);
}

void menu_bar_redraw(HWND main_window) {
    DrawMenuBar(main_window);
}
