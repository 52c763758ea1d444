// profile_paint.h: draws the page of a cut face with cairo: films, hatches, rulers and legend, but no texts.
#pragma once
#include <cairo.h>
#include "export/export_text.h"
#include "export/profile_page.h"

// The face of all texts; destroyed with cairo_font_face_destroy.
cairo_font_face_t *profile_font_face(bool bold);

// Draws everything but the texts. The context's units are points.
void profile_paint(cairo_t *cairo, const ProfilePage *page);

// For surfaces that write to a stream: appends to an ExportText.
cairo_status_t profile_paint_collect(void *export_text, const unsigned char *bytes, unsigned int size);
