// main_window_children.h: makes what is in the main window. User-interface thread.
#pragma once
#include <windows.h>

#include "app/app_state.h"

// The children, for WM_CREATE: render window, console, status bar, menu bar, OpenGL context. Returns 0,
// or -1 after telling why in a message box.
LRESULT main_window_create_children(AppState *state, HWND main_window);
