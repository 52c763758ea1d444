#include "render/labels.h"

#include <GL/glew.h>
#include <cassert>
#include <cstdio>
#include <cstring>
#include "render/text.h"
#include "sim/stack_setup.h"

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

static void draw_points(const Scene *scene, i64 count) {
    const u32 program = scene->point_program->name;
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    glUseProgram(program);
    glUniformMatrix4fv(glGetUniformLocation(program, "transform"), 1, GL_FALSE, scene->camera->transform.m);
    glUniform1f(glGetUniformLocation(program, "viewHeight"), static_cast<f32>(viewport[3]));
    glBindVertexArray(scene->stack->line_vao);
    glDrawArrays(GL_POINTS, 0, static_cast<GLsizei>(count));
    glBindVertexArray(0);
    glUseProgram(0);
}

void labels_draw_heights(const Scene *scene) {
    assert(scene != nullptr && scene->stack != nullptr);
    assert(scene->camera != nullptr && scene->point_program != nullptr);
    const Stack *stack = scene->stack;
    const i64 count = labelled_count(stack);
    if (count < 1 || stack->line_vao == 0) {
        return;
    }
    draw_points(scene, count);
    const Font font = font_get(24, 900);
    const f32 reference = reference_height(stack);
    for (i64 i = 0; i < count; ++i) {
        const f32 *position = stack->line_vertices[i].position;
        const f32 height = position[2] - reference;
        char text[32];
        height_label_format(truncate_i64(static_cast<f64>(height) * 10000.0), text);
        text_draw_at(centre_offset(text, &font), static_cast<f32>(font.height) * 0.5F,
                     {position[0], position[1], position[2]}, text, &font, &scene->camera->transform);
    }
}

void labels_draw_scale(const Scene *scene) {
    assert(scene != nullptr && scene->stack != nullptr && scene->camera != nullptr);
    const f32 width = scene->stack->width;
    char text[64];
    scale_label_format(width, text);
    const Font font = font_get(32, 700);
    text_draw_at(centre_offset(text, &font), -static_cast<f32>(font.height) - 2.0F, {width, 0.0F, 0.0F}, text,
                 &font, &scene->camera->transform);
}
