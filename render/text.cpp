#include "render/text.h"

#include <GL/glew.h>
#include <cassert>
#include <cstring>
#include "platform/wide_text.h"
#include "render/picture_text.h"

void text_window_position(f32 dx, f32 dy, Vector3 position, const Matrix4 *matrix, const i32 viewport[4],
                          f32 *window_x, f32 *window_y) {
    assert(matrix != nullptr && viewport != nullptr && window_x != nullptr && window_y != nullptr);
    const f32 *m = matrix->m;
    f32 x = m[0] * position.x + m[4] * position.y + m[8] * position.z + m[12];
    f32 y = m[1] * position.x + m[5] * position.y + m[9] * position.z + m[13];
    const f32 w = m[3] * position.x + m[7] * position.y + m[11] * position.z + m[15];
    if (w != 0.0F && w != 1.0F) {
        x /= w;
        y /= w;
    }
    *window_x = (x + 1.0F) * static_cast<f32>(viewport[2]) * 0.5F + static_cast<f32>(viewport[0]) + dx;
    *window_y = (y + 1.0F) * static_cast<f32>(viewport[3]) * 0.5F + static_cast<f32>(viewport[1]) + dy;
}

void text_draw_window(f32 window_x, f32 window_y, const char *text, const Font *font) {
    assert(text != nullptr && font != nullptr);
    glColor4f(0.0F, 0.0F, 0.0F, 1.0F);
    glWindowPos2f(window_x, window_y);  // takes the colour over, so it comes after it
    glListBase(font->list_base);
    glCallLists(static_cast<GLsizei>(std::strlen(text)), GL_UNSIGNED_BYTE, text);
}

void text_draw_at(f32 dx, f32 dy, Vector3 position, const char *text, const Font *font,
                  const Matrix4 *matrix) {
    assert(text != nullptr && font != nullptr && matrix != nullptr);
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    f32 x = 0.0F;
    f32 y = 0.0F;
    text_window_position(dx, dy, position, matrix, viewport, &x, &y);
    glUseProgram(0);
    text_draw_window(x, y, text, font);
}

void text_draw_window_styled(const PictureStyle *style, f32 window_x, f32 window_y, const char *text,
                             const Font *font) {
    assert(style != nullptr);
    if (!picture_texts_are_edged(style)) {
        text_draw_window(window_x, window_y, text, font);
        return;
    }
    const WideText wide = wide_from_bytes(text);
    picture_text_draw(picture_text_place(window_x), picture_text_place(window_y), wide.get(), font->height);
}

void text_draw_at_styled(const PictureStyle *style, f32 dx, f32 dy, Vector3 position, const char *text,
                         const Font *font, const Matrix4 *matrix) {
    assert(style != nullptr);
    if (!picture_texts_are_edged(style)) {
        text_draw_at(dx, dy, position, text, font, matrix);
        return;
    }
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    f32 x = 0.0F;
    f32 y = 0.0F;
    text_window_position(dx, dy, position, matrix, viewport, &x, &y);
    text_draw_window_styled(style, x, y, text, font);
}
