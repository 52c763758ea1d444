// window_paint.h: puts the window on the screen before a long piece of work. Main thread.
#pragma once
#include <gtk/gtk.h>

// Lets the main loop run until a frame with everything that the window is to show has been drawn, some
// hundredths of a second; at most half a second, for a window that gets no frames since nobody can see it.
// The caller sees to it that no command starts meanwhile.
void window_paint_now(GtkWidget *window);
