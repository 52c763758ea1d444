// render_area.h: shows one picture, as large as fits and centred on white, which shows through where it is
// translucent. It keeps a picture of its own, so that drawing never looks at the list that the worker of a
// run adds to. Main thread.
#pragma once
#include <gtk/gtk.h>

#include "app/app_state.h"

// Sizes in pixels of the screen, of which a pixel of the window library may have several.
struct RenderArea {
    GtkWidget *widget;        // null while there is none
    PixelImage *picture;      // a copy of the picture on show, on white, or null; owned
    cairo_surface_t *scaled;  // the picture for an area of this size, owned; null until it is drawn
    i32 width, height;        // of the area
};

// The widget that shows it; it belongs to the container that it is put into.
//   console   gets the turns of the mouse wheel
GtkWidget *render_area_create(AppState *state, GtkWidget *console);

// Copies the picture and shows it from the next frame on; null shows none.
void render_area_show(const PixelImage *picture);
