// drop_target.h: files that are dropped on the window. Main thread.
#pragma once
#include <gtk/gtk.h>

#include "app/app_state.h"

// Lets the window take a layout (.gds), a process file (.txt), or one of each. They are refused during a
// command or a run. A process file alone while no layout is loaded, and files of other kinds, are answered
// with a message box.
void drop_target_create(AppState *state, GtkWidget *window);
