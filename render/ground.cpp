#include "render/ground.h"

#include <GL/glew.h>

void ground_start(const PictureStyle *style) {
    const f32 *color = style->background;
    const f32 alpha = color[3];
    if (style->fine || picture_is_transparent(style)) {
        glBlendFuncSeparate(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA, GL_ONE, GL_ONE_MINUS_SRC_ALPHA);
    }
    glClearColor(color[0] * alpha, color[1] * alpha, color[2] * alpha, alpha);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
}

void ground_end() {
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
}
