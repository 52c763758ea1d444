#include "sim/layer_gl.h"

#include <GL/glew.h>
#include <cassert>

#include "platform/platform.h"
#include "sim/stack_setup.h"

static_assert(sizeof(LineVertex) == 28, "the vertex array describes 28 bytes a vertex");

static void buffer_create(GLenum target, u32 *name) {
    glGenBuffers(1, name);
    glBindBuffer(target, *name);
    glBufferData(target, 0, nullptr, GL_DYNAMIC_DRAW);
}

static void attribute_describe(GLuint index, GLint floats, GLsizei stride, size_t first_byte) {
    glEnableVertexAttribArray(index);
    glVertexAttribPointer(index, floats, GL_FLOAT, GL_FALSE, stride,
                          reinterpret_cast<const void *>(first_byte));
}

void layer_gl_create(Layer *layer) {
    assert(layer != nullptr);
    if (!platform_gl_is_current()) {
        return;
    }
    buffer_create(GL_ARRAY_BUFFER, &layer->vbo);
    glGenVertexArrays(1, &layer->vao);
    glBindVertexArray(layer->vao);
    attribute_describe(0, 3, 24, 0);
    attribute_describe(1, 3, 24, 12);
    glBindVertexArray(0);
    buffer_create(GL_ELEMENT_ARRAY_BUFFER, &layer->ebo);
}

void layer_gl_delete(Layer *layer) {
    assert(layer != nullptr);
    if (!platform_gl_is_current()) {
        return;
    }
    glDeleteBuffers(1, &layer->ebo);
    glDeleteVertexArrays(1, &layer->vao);
    glDeleteBuffers(1, &layer->vbo);
}

void lines_gl_create(Stack *stack) {
    assert(stack != nullptr);
    if (!platform_gl_is_current()) {
        return;
    }
    buffer_create(GL_ARRAY_BUFFER, &stack->line_vbo);
    glGenVertexArrays(1, &stack->line_vao);
    glBindVertexArray(stack->line_vao);
    attribute_describe(0, 3, sizeof(LineVertex), offsetof(LineVertex, position));
    attribute_describe(1, 3, sizeof(LineVertex), offsetof(LineVertex, unused));
    attribute_describe(2, 1, sizeof(LineVertex), offsetof(LineVertex, shade));
    glBindVertexArray(0);
}

void lines_gl_delete(Stack *stack) {
    assert(stack != nullptr);
    if (!platform_gl_is_current()) {
        return;
    }
    glDeleteVertexArrays(1, &stack->line_vao);
    glDeleteBuffers(1, &stack->line_vbo);
}
