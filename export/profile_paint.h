// profile_paint.h: draws the page of a cut face with cairo: films, hatches, rulers and legend, but no texts.
#pragma once
#include "export/profile_page.h"

// As cairo.h declares them.
struct _cairo;
struct _cairo_font_face;

// The face of all texts; destroyed with cairo_font_face_destroy.
struct _cairo_font_face *profile_font_face(bool bold);

// Draws everything but the texts. The context's units are points.
void profile_paint(struct _cairo *cairo, const ProfilePage *page);
