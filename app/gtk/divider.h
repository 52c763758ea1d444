// divider.h: two parts of the window, one above the other, and the divider between them, which the user can
// move. A share is the upper part's of the height inside the window. Main thread.
#pragma once
#include <gtk/gtk.h>

#include "platform/base.h"

// The widget that holds both parts; it belongs to the container that it is put into, and they to it.
GtkWidget *divider_create(GtkWidget *upper, GtkWidget *lower, f32 share);

// To be called before the widget is given a height: keeps the share when the height is another one.
//   height         of both parts together, pixels
//   window_height  that of the inside of the window
void divider_place(i32 height, i32 window_height);

// Whether the user has moved it, and the share as it is.
bool divider_was_moved();
f32 divider_share();
