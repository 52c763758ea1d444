// main_window.h: the window of the program with its menu bar, render area, console and status bar.
// User-interface thread.
#pragma once
#include <windows.h>

#include "app/app_state.h"

inline constexpr const wchar_t *MAIN_CLASS = L"MainClass";
inline constexpr const wchar_t *RENDER_CLASS = L"RenderClass";

// Ids of the main window's children.
enum ChildId {
    CHILD_STATUS_BAR = 1,
    CHILD_CONSOLE = 2,
    CHILD_RENDER = 3,
};

// Sent by the worker when a run is over.
inline constexpr UINT WM_APP_RUN_DONE = WM_USER + 1;

// Set while the main window and all its children are there.
extern HWND g_main_window;

// Registers the window's class and creates the window with its children and the OpenGL context, hidden.
// Returns 0, or 1 after telling why in a message box; main_window_destroy then frees what was made.
//   icon_path   the file of the window's icon; without that file it has none
i32 main_window_create(HINSTANCE instance, AppState *state, const wchar_t *icon_path);

// Shows the window under its first title.
void main_window_show(AppState *state);

// Deletes the OpenGL context, destroys the windows and frees their fonts, brush, icons and classes.
void main_window_destroy(HINSTANCE instance, AppState *state);

LRESULT CALLBACK main_window_proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam);

// The children, for WM_CREATE: render window, console, status bar, menu bar, OpenGL context. Returns 0,
// or -1 after telling why in a message box.
LRESULT main_window_create_children(AppState *state, HWND main_window);

// Places the children and stores the size of the render area, for WM_SIZE.
void main_window_layout(AppState *state, HWND main_window);
