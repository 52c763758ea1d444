// draw_pace.h: draws meshes in pieces, and waits so that never more than two pieces are under way. A driver
// that draws with the processor collects all triangles that it is given before it draws the first of them:
// with pieces it needs a fraction of the memory, and works on one while it is given the next. Needs a current
// context.
#pragma once
#include "platform/base.h"

// All zero at the start of a picture.
struct DrawPace {
    i32 indices;  // given since the last piece ended
    void *piece;  // the mark behind the piece before, or null
};

// Draws the triangles of the bound vertex array and index buffer.
//   first, count   of the indices, 32 bits each
void draw_pace_triangles(DrawPace *pace, i32 first, i32 count);

// For the end of the picture.
void draw_pace_end(DrawPace *pace);
