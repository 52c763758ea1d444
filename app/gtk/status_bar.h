// status_bar.h: the four fields along the window's lower edge. Main thread.
#pragma once
#include <gtk/gtk.h>

#include "app/frontend.h"

// The widget belongs to the container that it is put into.
GtkWidget *status_bar_create();

void status_bar_set(StatusPart part, const wchar_t *text);
