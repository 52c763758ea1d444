#include "render/labels.h"

#include <GL/glew.h>
#include <cassert>
#include <cmath>
#include <cstdio>
#include <cstring>
#include "platform/wide_text.h"
#include "render/picture_text.h"
#include "render/text.h"
#include "sim/stack_setup.h"

// Pixels of the plain style.
static constexpr i32 HEIGHT_FONT = 24;
static constexpr i32 SCALE_FONT = 32;
static constexpr i32 DOT_SIZE = 6;

static constexpr i32 FLAT_VIEW_DEGREES = 15;  // below it labels farther back would lie on each other

void height_label_format(i64 value, char text[32]) {
    assert(text != nullptr);
    const bool negative = value < 0;
    u64 rest = negative ? 0 - static_cast<u64>(value) : static_cast<u64>(value);
    char reversed[32];
    i32 length = 0;
    i32 digits = 0;
    do {
        if (digits > 0 && digits % 3 == 0) {
            reversed[length++] = ',';
        }
        reversed[length++] = static_cast<char>('0' + rest % 10);
        rest /= 10;
        ++digits;
    } while (rest > 0);
    if (negative) {
        reversed[length++] = '-';
    }
    for (i32 i = 0; i < length; ++i) {
        text[i] = reversed[length - 1 - i];
    }
    text[length] = '\0';
}

void scale_label_format(f32 width, char text[64]) {
    assert(text != nullptr);
    if (width > 0.2F) {
        std::snprintf(text, 64, "%.2f um", static_cast<f64>(width));
    } else {
        const f32 nanometres = width * 1000.0F;
        std::snprintf(text, 64, "%.2f nm", static_cast<f64>(nanometres));
    }
}

// Half the width of a text, negative: the offset that centres it.
static f32 centre_offset(const char *text, const Font *font) {
    const f32 characters = static_cast<f32>(std::strlen(text));
    return -(characters * static_cast<f32>(font->avg_char_width) * 0.5F);
}

// Height of the substrate's top.
static f32 reference_height(const Stack *stack) {
    return stack->steps != nullptr && stack->steps->count > 0 ? stack->steps->items[0]->thickness : 0.0F;
}

// How many of the line vertices are labelled. The first vertices of the ten lines come first.
static i64 labelled_count(const Stack *stack) {
    const i64 all = static_cast<i64>(stack->line_points) * SURFACE_LINES;
    return stack->camera_angle < FLAT_VIEW_DEGREES && all > SURFACE_LINES ? SURFACE_LINES : all;
}

// Draws the points one by one, and finds out of each whether anything of it is seen behind what stands before
// it.
static void draw_watched_points(i64 count, bool *seen) {
    const auto queries = memory_scratch<GLuint>(count);
    glGenQueries(static_cast<GLsizei>(count), queries.get());
    for (i64 i = 0; i < count; ++i) {
        glBeginQuery(GL_SAMPLES_PASSED, queries[static_cast<size_t>(i)]);
        glDrawArrays(GL_POINTS, static_cast<GLint>(i), 1);
        glEndQuery(GL_SAMPLES_PASSED);
    }
    GLint bits = 0;
    glGetQueryiv(GL_SAMPLES_PASSED, GL_QUERY_COUNTER_BITS, &bits);
    for (i64 i = 0; i < count; ++i) {
        GLuint samples = 1;  // where the graphics do not count, every point has its label
        if (bits > 0) {
            glGetQueryObjectuiv(queries[static_cast<size_t>(i)], GL_QUERY_RESULT, &samples);
        }
        seen[i] = samples > 0;
    }
    glDeleteQueries(static_cast<GLsizei>(count), queries.get());
}

// Draws the dots.
//   seen   receives for each of them whether it is seen; null where nobody asks
static void draw_points(const Scene *scene, i64 count, bool *seen) {
    const u32 program = scene->point_program->name;
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    glUseProgram(program);
    glUniformMatrix4fv(glGetUniformLocation(program, "transform"), 1, GL_FALSE, scene->camera->transform.m);
    glUniform1f(glGetUniformLocation(program, "viewHeight"), static_cast<f32>(viewport[3]));
    glUniform1f(glGetUniformLocation(program, "dotSize"),
                static_cast<f32>(picture_pixels(scene->style, DOT_SIZE)));
    glBindVertexArray(scene->stack->line_vao);
    if (seen == nullptr) {
        glDrawArrays(GL_POINTS, 0, static_cast<GLsizei>(count));
    } else {
        draw_watched_points(count, seen);
    }
    glBindVertexArray(0);
    glUseProgram(0);
}

i64 height_label_rounded(f32 height) {
    const f64 tenths = static_cast<f64>(height) * 10000.0;
    return truncate_i64(std::floor(tenths + 0.5));
}

// Labels of the dots that are seen, those in front over those behind.
static void draw_fine_heights(const Scene *scene, i64 count) {
    const Stack *stack = scene->stack;
    const auto seen = memory_scratch<bool>(count);
    draw_points(scene, count, seen.get());
    const f32 reference = reference_height(stack);
    const i32 font_height = picture_pixels(scene->style, HEIGHT_FONT);
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    for (i64 i = count - 1; i >= 0; --i) {
        if (!seen[static_cast<size_t>(i)]) {
            continue;
        }
        const f32 *position = stack->line_vertices[i].position;
        char text[32];
        height_label_format(height_label_rounded(position[2] - reference), text);
        const WideText wide = wide_from_bytes(text);
        f32 x = 0.0F;
        f32 y = 0.0F;
        text_window_position(0.0F, static_cast<f32>(font_height) * 0.5F,
                             {position[0], position[1], position[2]}, &scene->camera->transform, viewport, &x,
                             &y);
        picture_text_draw(picture_text_place(x) - picture_text_width(wide.get(), font_height) / 2,
                          picture_text_place(y), wide.get(), font_height);
    }
}

void labels_draw_heights(const Scene *scene) {
    assert(scene != nullptr && scene->stack != nullptr);
    assert(scene->camera != nullptr && scene->point_program != nullptr);
    const Stack *stack = scene->stack;
    const i64 count = labelled_count(stack);
    if (count < 1 || stack->line_vao == 0) {
        return;
    }
    if (scene->style->fine) {
        draw_fine_heights(scene, count);
        return;
    }
    draw_points(scene, count, nullptr);
    const Font font = font_get(static_cast<u32>(picture_pixels(scene->style, HEIGHT_FONT)), 900);
    const f32 reference = reference_height(stack);
    for (i64 i = 0; i < count; ++i) {
        const f32 *position = stack->line_vertices[i].position;
        const f32 height = position[2] - reference;
        char text[32];
        height_label_format(truncate_i64(static_cast<f64>(height) * 10000.0), text);
        text_draw_at_styled(scene->style, centre_offset(text, &font), static_cast<f32>(font.height) * 0.5F,
                            {position[0], position[1], position[2]}, text, &font, &scene->camera->transform);
    }
}

static void draw_fine_scale(const Scene *scene, const char *text, i32 font_height) {
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    f32 x = 0.0F;
    f32 y = 0.0F;
    text_window_position(0.0F, -static_cast<f32>(font_height) - 2.0F, {scene->stack->width, 0.0F, 0.0F},
                         &scene->camera->transform, viewport, &x, &y);
    const WideText wide = wide_from_bytes(text);
    picture_text_draw(picture_text_place(x) - picture_text_width(wide.get(), font_height) / 2,
                      picture_text_place(y), wide.get(), font_height);
}

void labels_draw_scale(const Scene *scene) {
    assert(scene != nullptr && scene->stack != nullptr && scene->camera != nullptr);
    const f32 width = scene->stack->width;
    char text[64];
    scale_label_format(width, text);
    const u32 font_height = static_cast<u32>(picture_pixels(scene->style, SCALE_FONT));
    if (scene->style->fine) {
        draw_fine_scale(scene, text, static_cast<i32>(font_height));
        return;
    }
    const Font font = font_get(font_height, 700);
    text_draw_at_styled(scene->style, centre_offset(text, &font), -static_cast<f32>(font.height) - 2.0F,
                        {width, 0.0F, 0.0F}, text, &font, &scene->camera->transform);
}
