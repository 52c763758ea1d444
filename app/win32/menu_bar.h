// menu_bar.h: the commands in the main window's menu bar.
#pragma once
#include <windows.h>

#include "app/app_state.h"

// Gives the window its menu bar; the window owns it.
void menu_bar_create(HWND main_window);

// Enables a command or greys it; menu_bar_redraw shows that. Any thread.
void menu_bar_enable(HWND main_window, MenuCommand command, bool enabled);

// Draws the bar as menu_bar_enable has left it. Any thread.
void menu_bar_redraw(HWND main_window);
