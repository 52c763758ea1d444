// console_view.h: the console: a read-only text with a fixed-width font that shows its last line.
#pragma once
#include <gtk/gtk.h>

struct ConsoleView {
    GtkWidget *view;        // null while there is none
    GtkTextMark *end_mark;  // stays behind the last character
    guint scroll_idle;      // the main loop's task that scrolls, when it has time; 0: none
    bool scrolled_away;     // by the user; the next text shows the end again
    GtkAllocation last_size;
};

// The scrolled text; it belongs to the container that it is put into. Main thread.
GtkWidget *console_view_create();

// Sinks of the console (log/log.h). Any thread; they return when the text is in the view. While there is no
// view they drop it.
void console_view_append(const wchar_t *text);
// The same, which leaves the console empty.
void console_view_clear();
