// annotations.h: everything that is written into a picture when its surfaces are drawn.
#pragma once
#include "render/scene.h"

// Draws height labels, scale label and legend as the stack's settings ask; the title and a note on the
// vertical scale as the style asks; scale bars and the unit of the heights into a fine picture. No program
// may be in use, and the viewport must be that of picture_layout. Needs a current context; changes the
// viewport.
//   image_height   of the whole picture, pixels
void annotations_draw(const Scene *scene, i32 image_height);
