// window_keys.h: what the keys do in the main window. Main thread.
#pragma once
#include <gtk/gtk.h>

#include "app/app_state.h"

struct WindowKeys {
    bool full_screen;  // as the window manager has it
};

// Lets the window take the keys that browse (arrows, Home, End), the keys of the menu's commands, and those
// for the menu bar, for full screen and for the end.
void window_keys_connect(AppState *state, GtkWidget *window);
