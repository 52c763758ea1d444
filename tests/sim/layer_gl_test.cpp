// The OpenGL objects, where the machine gives a context.
#include <GL/glew.h>
#include <gtest/gtest.h>

#include "platform/platform.h"
#include "sim/layer_gl.h"
#include "tests/support/test_stack.h"

struct ContextHolder {
    PlatformGl *gl = platform_gl_create_offscreen(nullptr);
    ~ContextHolder() {
        if (gl != nullptr) {
            platform_gl_make_current(nullptr);
            platform_gl_free(gl);
        }
    }
};

// Of an attribute of the vertex array that is bound: {enabled, floats, type, normalised, stride}, and
// its first byte.
static void expect_attribute(GLuint index, GLint floats, GLint stride, size_t first_byte) {
    const GLenum names[5] = {GL_VERTEX_ATTRIB_ARRAY_ENABLED, GL_VERTEX_ATTRIB_ARRAY_SIZE,
                             GL_VERTEX_ATTRIB_ARRAY_TYPE, GL_VERTEX_ATTRIB_ARRAY_NORMALIZED,
                             GL_VERTEX_ATTRIB_ARRAY_STRIDE};
    const GLint expected[5] = {GL_TRUE, floats, GL_FLOAT, GL_FALSE, stride};
    for (int i = 0; i < 5; ++i) {
        GLint value = -1;
        glGetVertexAttribiv(index, names[i], &value);
        EXPECT_EQ(value, expected[i]) << "attribute " << index << ", property " << i;
    }
    void *pointer = nullptr;
    glGetVertexAttribPointerv(index, GL_VERTEX_ATTRIB_ARRAY_POINTER, &pointer);
    EXPECT_EQ(reinterpret_cast<size_t>(pointer), first_byte);
}

static GLint buffer_of_attribute(GLuint index) {
    GLint buffer = 0;
    glGetVertexAttribiv(index, GL_VERTEX_ATTRIB_ARRAY_BUFFER_BINDING, &buffer);
    return buffer;
}

TEST(LayerGl, MakesAndDeletesTheObjectsOfALayer) {
    const ContextHolder context;
    if (context.gl == nullptr) {
        GTEST_SKIP() << "no OpenGL context on this machine";
    }
    Owned<Layer> layer(layer_create(3, 3, 1.0F));
    const u32 vbo = layer->vbo;
    const u32 ebo = layer->ebo;
    const u32 vao = layer->vao;
    EXPECT_TRUE(glIsBuffer(vbo));
    EXPECT_TRUE(glIsBuffer(ebo));
    EXPECT_TRUE(glIsVertexArray(vao));
    glBindVertexArray(vao);
    expect_attribute(0, 3, 24, 0);
    expect_attribute(1, 3, 24, 12);
    EXPECT_EQ(buffer_of_attribute(0), static_cast<GLint>(vbo));
    glBindVertexArray(0);
    layer.reset();
    EXPECT_FALSE(glIsBuffer(vbo));
    EXPECT_FALSE(glIsBuffer(ebo));
    EXPECT_FALSE(glIsVertexArray(vao));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST(LayerGl, MakesAndDeletesTheObjectsOfTheSurfaceLines) {
    const ContextHolder context;
    if (context.gl == nullptr) {
        GTEST_SKIP() << "no OpenGL context on this machine";
    }
    Owned<Stack> stack = test_stack(4, 4, 1.0F);
    lines_gl_create(stack.get());
    const u32 vbo = stack->line_vbo;
    const u32 vao = stack->line_vao;
    EXPECT_TRUE(glIsBuffer(vbo));
    EXPECT_TRUE(glIsVertexArray(vao));
    glBindVertexArray(vao);
    expect_attribute(0, 3, 28, 0);
    expect_attribute(1, 3, 28, 12);
    expect_attribute(2, 1, 28, 24);
    EXPECT_EQ(buffer_of_attribute(2), static_cast<GLint>(vbo));
    glBindVertexArray(0);
    stack.reset();
    EXPECT_FALSE(glIsBuffer(vbo));
    EXPECT_FALSE(glIsVertexArray(vao));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}
