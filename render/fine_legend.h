// fine_legend.h: the legend of a fine picture: as wide as its longest name needs, names in any letters,
// swatches with an outline, and the thickness of each film.
#pragma once
#include "render/scene.h"

// The width of its column, pixels; at most two fifths of the picture. Needs no context.
i32 fine_legend_width(const Scene *scene);

// A row for each layer, from the bottom of the picture up. No program may be in use. Needs a current context;
// changes the viewport.
//   image_height   of the whole picture, pixels
//   title_height   of the band above, which has no rows
void fine_legend_draw(const Scene *scene, i32 image_height, i32 title_height);

// The thickness of a film (micrometres) as the legend tells it: in nanometres to a tenth below 1, else in
// micrometres to a thousandth; a film that is not there has "-". Needs no context.
//   text   room for 32 characters
void thickness_format(f32 thickness, wchar_t text[32]);
