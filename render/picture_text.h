// picture_text.h: smooth text of any letters with a thin white edge, so that it can be read on any colour.
// Where it is drawn does not depend on the viewport. Drawing needs a current context, measuring does not. No
// program may be in use while something is drawn.
#pragma once
#include "platform/owned.h"

// The pixel that a window coordinate lies in; far outside of every picture for one that is there or no
// number.
i32 picture_text_place(f32 coordinate);

// How far a text reaches, pixels.
//   height   of a line, pixels, at least 1
i32 picture_text_width(const wchar_t *text, i32 height);

// Draws a text from a point of its baseline on, pixels from the picture's lower left corner.
void picture_text_draw(i32 x, i32 y, const wchar_t *text, i32 height);

// The same from the point upwards: turned by a quarter to the left.
void picture_text_draw_upwards(i32 x, i32 y, const wchar_t *text, i32 height);

// How far below the middle of its capitals the baseline of a text lies.
i32 picture_text_drop(i32 height);

// As much of the beginning of a text as has to be looked at to see whether it fits into the room (pixels).
WideText picture_text_start(const wchar_t *text, i32 height, i32 room);

// The text, or as much of its beginning as fits into the room (pixels) with "..." behind it.
WideText picture_text_fit(const wchar_t *text, i32 height, i32 room);

// Frees what was kept of the system's faces.
void picture_text_free_faces();

// A bitmap of black letters in the middle of their white edge: red, green, blue, alpha; bottom row first.
struct EdgedText {
    i32 width, height;   // pixels; 0 without ink
    i32 left, bottom;    // of the lower left corner from where the text starts on its baseline
    Owned<u8[]> pixels;  // width x height x 4
};

// The bitmap that is drawn. Needs no context.
EdgedText picture_text_edged(const wchar_t *text, i32 height);
