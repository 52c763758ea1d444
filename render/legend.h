// legend.h: the rows of colours and names at the left of a picture.
#pragma once
#include "render/scene.h"

inline constexpr i32 LEGEND_WIDTH = 320;      // pixels at the left of the picture
inline constexpr i32 LEGEND_ROW_HEIGHT = 36;  // pixels of a row, when there is room for all rows

// The width of the legend's column, pixels: 0 where the stack has none; of a fine picture as much as its
// names need.
i32 legend_width(const Scene *scene);

// A row for each layer, from the bottom of the picture up: a swatch of its colour and its name. No program
// may be in use. Needs a current context; changes the viewport.
//   image_height   of the whole picture, pixels
//   title_height   of the band above, which has no rows
void legend_draw(const Scene *scene, i32 image_height, i32 title_height);

// The lower and upper edge of row k (from 0) of a legend, pixels from the bottom. Rows get lower when `rows`
// of them do not fit into the height (pixels).
void legend_row_extent(i32 k, i32 rows, i32 image_height, i32 *y0, i32 *y1);

// The same with rows of another height, pixels.
void legend_scaled_row_extent(i32 k, i32 rows, i32 row_height, i32 image_height, i32 *y0, i32 *y1);

// A quad in a layer's colour from the left edge on, in a viewport that is the legend's column.
//   right   its right edge, -1 to 1 over the column
void legend_draw_swatch(const f32 color[4], f32 right, i32 y0, i32 y1, i32 image_height);

// The name as the legend shows it: from limit - 3 characters on it is cut to that many and followed by "...".
//   limit   characters that there is room for; of any sign
NarrowText legend_name_cut(const char *name, i32 limit);
