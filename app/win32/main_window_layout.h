// main_window_layout.h: where the parts of the main window lie. User-interface thread.
#pragma once
#include <windows.h>

#include "app/app_state.h"

// Places the children and stores the size of the render area, for WM_SIZE.
void main_window_layout(AppState *state, HWND main_window);
