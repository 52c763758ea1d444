// solid_rectangle.h: parts of a picture in one colour, whatever was there. Needs a current context.
#pragma once
#include "platform/base.h"

// Fills the pixels from (x0, y0) up to but without (x1, y1), counted from the picture's lower left corner;
// nothing where there are none. The state of the context stays as it is.
//   color   red, green, blue
void solid_rectangle(i32 x0, i32 y0, i32 x1, i32 y1, const f32 color[3]);
