// status_bar.h: the four fields along the window's lower edge. Main thread.
#pragma once
#include <gtk/gtk.h>

#include "app/window_texts.h"

struct StatusBar {
    GtkWidget *labels[STATUS_PART_COUNT];
};

// The bar with its first texts. The widget belongs to the container that it is put into.
GtkWidget *status_bar_create();

// Shows a text in one of the fields for paths; null shows none.
void status_bar_set(StatusPart part, const wchar_t *text);
