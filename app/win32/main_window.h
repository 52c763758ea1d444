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

struct MainWindow {
    HWND window;           // set while it and all its children are there
    HBRUSH console_brush;  // owned
    HICON small_icon;      // owned
    bool ended;            // the data of runs is gone and the message loop about to end
    bool forwards_wheel;   // a turn of the wheel is at the console
    // The pictures that there were when the user took hold of the window.
    i32 run_before_move, images_before_move;
};

// Registers the window's class and creates the window with its children and the OpenGL context, hidden.
// Returns 0, or 1 after telling why in a message box; main_window_destroy then frees what was made.
//   icon_path   the file of the window's icon; without that file it has none
i32 main_window_create(HINSTANCE instance, AppState *state, const wchar_t *icon_path);

// Shows the window under its first title.
void main_window_show(AppState *state);

// Deletes the OpenGL context, destroys the windows and frees their fonts, brush, icons and classes.
void main_window_destroy(HINSTANCE instance, AppState *state);

// The window's procedure, for the system.
LRESULT CALLBACK main_window_proc(HWND window, UINT message, WPARAM wparam, LPARAM lparam);
