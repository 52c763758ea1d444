// console_window.h: the read-only text area that shows progress and faults. Any thread may write; texts stay
// whole, and those of one thread in order.
#pragma once
#include <windows.h>

#include "platform/base.h"

struct ConsoleWindow {
    HWND control;           // the edit control; null before it exists, and then texts are lost
    HFONT font;             // owned
    bool full;              // texts go to the log
    LRESULT control_limit;  // characters that the control takes by itself
};

// Creates the console as a child of the main window. Returns 0, or -1 after telling why.
i32 console_window_create(HWND parent);

// Frees the font, after the window is gone.
void console_window_free();

// Sent to the main window by another thread, with the text: the user-interface thread appends it in one go,
// so that neither a text of its own nor a click of the user that moves the caret comes in between.
inline constexpr UINT WM_APP_CONSOLE_APPEND = WM_USER + 2;

// Appends a text and brings the last line into view. After some million characters the console says that it
// is full and where the log is, which then gets the texts.
void console_window_append(const wchar_t *text);

// Empties the console, which is then no longer full.
void console_window_clear();

// Colours of the console, for WM_CTLCOLORSTATIC: the brush for its background, 0 for any other control.
//   brush   solid white
LRESULT console_window_colors(HDC context, HWND control, HBRUSH brush);
