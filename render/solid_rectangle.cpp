#include "render/solid_rectangle.h"

#include <GL/glew.h>

void solid_rectangle(i32 x0, i32 y0, i32 x1, i32 y1, const f32 color[3]) {
    if (x1 <= x0 || y1 <= y0) {
        return;
    }
    glPushAttrib(GL_COLOR_BUFFER_BIT | GL_SCISSOR_BIT);
    glEnable(GL_SCISSOR_TEST);
    glScissor(x0, y0, x1 - x0, y1 - y0);
    glClearColor(color[0], color[1], color[2], 1.0F);
    glClear(GL_COLOR_BUFFER_BIT);
    glPopAttrib();
}
