// picture_menu.h: the menu of the picture, and what it remembers from start to start. Main thread.
#pragma once
#include <gtk/gtk.h>

#include "app/app_state.h"

struct PictureMenu {
    GtkWidget *menu;  // the one that was opened last, attached to the picture; null before
};

// Reads what was chosen last; what the command line wants must stand in the state.
void picture_menu_load(AppState *state);

// Lets the right button open the menu where the pointer is on the picture, and the keys that are customary
// for it on the picture, wherever in the window the focus is, but for a part that has a menu of its own.
void picture_menu_connect(AppState *state, GtkWidget *window, GtkWidget *area);

// Does a PictureCommand.
void picture_menu_command(AppState *state, i32 command);
