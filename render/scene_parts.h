// scene_parts.h: the parts of a picture that scene_render puts together. Needs a current context
// where nothing else is said.
#pragma once
#include "render/font.h"
#include "render/scene.h"

inline constexpr i32 LEGEND_WIDTH = 320;      // pixels at the left of the picture
inline constexpr i32 LEGEND_ROW_HEIGHT = 36;  // pixels of a row, when there is room for all rows

// Draws black text with its lower left corner at a point of the window, pixels.
void text_draw_window(f32 window_x, f32 window_y, const char *text, const Font *font);

// Dots on the surface with their height above the substrate in units of 0.0001 micrometre: along the
// front edge for a flat view (below 15 degrees), else all over the surface.
void labels_draw_heights(const Scene *scene);

// The width of the section, centred under its right front corner.
void labels_draw_scale(const Scene *scene);

// The text of the scale label for a width in micrometres: in nanometres up to 0.2. Needs no context.
//   text   room for 64 bytes
void scale_label_format(f32 width, char text[64]);

// A row for each layer, from the bottom of the picture up: a swatch of its colour and its name.
void legend_draw(const Scene *scene, i32 image_height);

// The lower and upper edge of row k of a legend, pixels from the bottom. Rows get lower when `rows`
// of them do not fit. Needs no context.
void legend_row_extent(i32 k, i32 rows, i32 image_height, i32 *y0, i32 *y1);

// The name as the legend shows it: from limit - 3 characters on it is cut to that many and followed
// by "...". A new text, freed with memory_free. Needs no context.
char *legend_name_cut(const char *name, i32 limit);
