// divider.h: two parts of the window, one above the other, and the divider between them, which the user can
// move. A share is the upper part's of the height inside the window. Main thread.
#pragma once
#include <gtk/gtk.h>

#include "platform/base.h"

struct Divider {
    GtkPaned *pane;  // null while there is none
    f32 share;
    bool moved;                 // by the user
    i32 height, window_height;  // of the last placing; 0 before it
    i32 position;               // where that put it; -1 until it is done
};

// The widget that holds both parts; it belongs to the container that it is put into, and they to it.
GtkWidget *divider_create(GtkWidget *upper, GtkWidget *lower, f32 share);

// To be called before the widget is given a height: keeps the share when the height is another one.
//   height         of both parts together, pixels
//   window_height  that of the inside of the window
void divider_place(i32 height, i32 window_height);

// Whether the user has moved it since it was made.
bool divider_was_moved();

// The share as it is.
f32 divider_share();
