// render_window.h: the area that shows the chosen picture.
#pragma once
#include <windows.h>

#include "app/app_state.h"

// Registers the window's class and creates it as a child of the main window. Returns 0, or -1 after
// telling why. The OpenGL context is made later.
i32 render_window_create(AppState *state, HWND parent);

// The window's procedure, for the system.
LRESULT CALLBACK render_window_proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

// Draws the picture on show, scaled and centred, into the back buffer. The OpenGL context must be current.
void render_window_draw(const AppState *state);

// Sent to the main window by the worker, which has released the OpenGL context: shows the newest picture.
inline constexpr UINT WM_APP_SHOW_PICTURE = WM_USER + 3;

// Shows the current picture under its title before it returns. User-interface thread.
void render_window_show(const AppState *state);

// Called by the worker, which must have released the OpenGL context: shows the newest picture on the
// user-interface thread before it returns.
void render_window_repaint(const AppState *state);
