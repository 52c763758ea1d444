// scale_bars.h: bars of round lengths beside the cut face of a fine picture.
#pragma once
#include "render/picture_layout.h"

// Draws one below the left part of the cut face, for lengths across the section at its front, and one beside
// its left edge, for heights. Each has its length written at it. Needs a current context; no program may be
// in use.
void scale_bars_draw(const Scene *scene, const PictureLayout *layout);

// The longest of 1, 2 and 5 times a power of ten that is no longer than a length above 0 (both micrometres).
// Needs no context.
f64 scale_bar_length(f64 longest);

// How such a length is written: "500 nm" below 1 micrometre, else "20 um". Needs no context.
//   text   room for 32 characters
void scale_bar_format(f64 length, wchar_t text[32]);
