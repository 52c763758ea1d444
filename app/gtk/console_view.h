// console_view.h: the console: a read-only text with a fixed-width font that shows its last line.
#pragma once
#include <gtk/gtk.h>

// The scrolled text; it belongs to the container that it is put into. Main thread.
GtkWidget *console_view_create();

// Sinks of the console (log/log.h). Any thread; they return when the text is in the view. While there is no
// view they drop it.
void console_view_append(const wchar_t *text);
void console_view_clear();
