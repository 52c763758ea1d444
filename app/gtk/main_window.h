// main_window.h: the window and where its parts lie: menu bar, and below it render area, console and status
// bar. The user can move the divider between render area and console, and finds it there at the next start.
// Main thread.
#pragma once
#include <gtk/gtk.h>

#include "app/app_state.h"

// The parts below the menu bar.
struct MainWindowParts {
    GtkWidget *render_area;
    GtkWidget *status_bar;
};

// Makes the window with all its parts, not yet shown. Sets the handles and,
// from then on, the size of the render area in the state.
void main_window_create(AppState *state);

// Shows it, once it was created.
void main_window_show(AppState *state);

// Destroys it, with the handles in the state null again, and remembers the divider's place. A window that was
// not made is fine.
void main_window_destroy(AppState *state);
