// picture_layout.h: where in a picture its parts lie: the legend's column at the left, the title's band at
// the top, and the section in the middle of the rest. Pixels from the lower left corner.
#pragma once
#include "render/scene.h"

struct PictureLayout {
    i32 legend_width;         // of the column, 0 without a legend
    i32 title_height;         // of the band, 0 without a title
    i32 x, y, width, height;  // the viewport that shows the section; a section without a size has none
    i32 foot;                 // the lowest pixel of the section's cut face
    i32 front_left;           // columns of the two lower corners of the cut face
    i32 front_right;
};

// The layout of a picture. A fine one asks for the widths of its texts, which needs no context.
//   image_height   as scene_image_height tells
PictureLayout picture_layout(const Scene *scene, i32 image_height);

struct PicturePoint {
    f32 x, y;
};

// Where a point of the section (micrometres) is seen.
PicturePoint picture_point(const Scene *scene, const PictureLayout *layout, Vector3 position);

// The height of the title's band.
i32 picture_title_height(const PictureStyle *style);

// The pixels that a picture needs above and below the section, together, besides the title.
f32 picture_border(const PictureStyle *style);

// How many pixels of a picture a length of the section takes at the foot of its cut face: 1 micrometre
// across, and 1 micrometre of height, a little of which is measured. 0 where that cannot be told.
struct PictureScale {
    f64 across, upwards;
};

// Of a picture with that layout.
PictureScale picture_scale(const Scene *scene, const PictureLayout *layout);
