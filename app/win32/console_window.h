// console_window.h: the read-only text area that shows progress and faults. Any thread may write; texts stay
// whole, and those of one thread in order.
// The control measures each line that it is given, which takes it a second or more for the cells of a large
// layout. So a long text waits in a queue, from which it goes into the control piece by piece whenever the
// message loop is idle, and later texts wait behind it. Who reads, marks or scrolls the console finds all of
// it: the rest goes into the control first.
#pragma once
#include <windows.h>

#include "platform/base.h"

// Texts that are yet to go into the control: the characters from `start` to before `end`.
struct ConsoleQueue {
    wchar_t *text;  // owned; null when nothing waits
    i64 start;
    i64 end;
    i64 capacity;
};

struct ConsoleWindow {
    HWND control;           // the edit control; null before it exists, and then texts are lost
    WNDPROC control_proc;   // its own procedure, behind that of the console
    HFONT font;             // owned
    bool full;              // texts go to the log
    LRESULT control_limit;  // characters that the control takes by itself
    ConsoleQueue queue;     // user-interface thread
};

// Creates the console as a child of the main window. Returns 0, or -1 after telling why.
i32 console_window_create(HWND parent);

// Frees the font and what is still in the queue, after the window is gone.
void console_window_free();

// Sent to the main window by another thread, with the text: the user-interface thread appends it in one go,
// so that neither a text of its own nor a click of the user that moves the caret comes in between.
inline constexpr UINT WM_APP_CONSOLE_APPEND = WM_USER + 2;

// Appends a text and brings the last line into view; a long one comes when the message loop is idle. After
// some million characters the console says that it is full and where the log is, which then gets the texts.
void console_window_append(const wchar_t *text);

// Shows at once what is still in the queue. User-interface thread.
void console_window_catch_up();

// Empties the console and its queue; it is then no longer full.
void console_window_clear();

// Colours of the console, for WM_CTLCOLORSTATIC: the brush for its background, 0 for any other control.
//   brush   solid white
LRESULT console_window_colors(HDC context, HWND control, HBRUSH brush);
