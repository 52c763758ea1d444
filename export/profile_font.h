// profile_font.h: the faces that the texts of a drawing are set in: Arial, and others for the letters that it
// lacks.
#pragma once
#include "platform/text_family.h"

// To be called before cairo is. In a program for Windows that the library is part of nobody makes its locks
// before the first call, and most calls take them as they are: they would wait for ever. Any thread.
void profile_cairo_prepare();

// A part of a text that one family has the letters of.
struct FontRun {
    i64 size;  // bytes
    char family[PLATFORM_FAMILY_SIZE];
};

// The first part of a text (clean UTF-8, not empty). A letter that no face has is part of one in Arial, which
// has a box for it.
FontRun font_run_first(const char *text, bool bold);

// The width of so many bytes of a text in points.
f64 font_run_width(const FontRun *run, const char *text, f64 size, bool bold);
