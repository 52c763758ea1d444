// menu_bar.h: the commands in the main window's menu bar.
#pragma once
#include <windows.h>

#include "app/app_state.h"

// Gives the window its menu bar; the window owns it.
void menu_bar_create(HWND main_window);

// Any thread. menu_bar_redraw shows the changes.
void menu_bar_enable(HWND main_window, MenuCommand command, bool enabled);
void menu_bar_redraw(HWND main_window);
