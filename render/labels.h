// labels.h: what is written at the section itself: heights on its surface and its width. Needs a current
// context where nothing else is said.
#pragma once
#include "render/scene.h"

// Dots on the surface with their height above the substrate in units of 0.0001 micrometre: along the front
// edge for a flat view (below 15 degrees), else all over the surface. Leaves no program in use.
void labels_draw_heights(const Scene *scene);

// The width of the section, centred under its right front corner.
void labels_draw_scale(const Scene *scene);

// A height label: value in units of 0.0001 micrometre with thousands separators ("1,234,567"). Needs no
// context.
//   text   room for 32 bytes
void height_label_format(i64 value, char text[32]);

// The value of a fine picture's label for a height in micrometres: rounded to the nearest. Needs no context.
i64 height_label_rounded(f32 height);

// The text of the scale label for a width in micrometres: in nanometres up to 0.2. Needs no context.
//   text   room for 64 bytes
void scale_label_format(f32 width, char text[64]);
