#include "render/scene.h"

#include <GL/glew.h>
#include <cassert>
#include "platform/platform.h"
#include "render/fine_scene.h"
#include "render/labels.h"
#include "render/legend.h"
#include "sim/layer.h"

static constexpr i32 LARGEST_HEIGHT = 16384;  // pixels, where the graphics cannot be asked

void render_state_init() {
    assert(platform_gl_is_current());
    glEnable(GL_PROGRAM_POINT_SIZE);
    glEnable(GL_POINT_SPRITE);  // tells the point program where in a point a pixel lies
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_DEPTH_TEST);
}

// The tallest picture that a framebuffer and a viewport can have, pixels.
static i32 largest_image_height() {
    if (!platform_gl_is_current()) {
        return LARGEST_HEIGHT;
    }
    GLint renderbuffer = 0;
    GLint viewport[2] = {0, 0};
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &renderbuffer);
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport);
    const GLint largest = renderbuffer < viewport[1] ? renderbuffer : viewport[1];
    return largest > 0 ? largest : LARGEST_HEIGHT;
}

i32 scene_image_height(const Stack *stack, const Camera *camera, const PictureStyle *style) {
    assert(stack != nullptr && camera != nullptr && style != nullptr && style->width > 0);
    const f32 exact = static_cast<f32>(style->width) / camera->aspect + 64.0F;
    const i32 largest = largest_image_height();
    i32 height = exact >= static_cast<f32>(largest) ? largest : truncate_i32(exact);
    const i64 legend = static_cast<i64>(stack->live_layer_count) * LEGEND_ROW_HEIGHT;
    if (stack->show_legend != 0 && legend > height) {
        height = legend < largest ? static_cast<i32>(legend) : largest;
    }
    return height < 1 ? 1 : height;
}

Camera *scene_camera_create(const Stack *stack, const PictureStyle *style) {
    assert(stack != nullptr && style != nullptr && style->vertical_scale > 0.0F);
    const f32 angle = static_cast<f32>(stack->camera_angle);
    if (style->fine || style->vertical_scale != 1.0F) {
        return camera_create_fine(stack->width, stack->depth, stack->max_height, angle,
                                  style->vertical_scale);
    }
    return camera_create(stack->width, stack->depth, stack->max_height, angle);
}

void scene_set_viewport(const Scene *scene, i32 image_height) {
    assert(scene != nullptr && scene->stack != nullptr && scene->camera != nullptr);
    const i32 left = scene->stack->show_legend != 0 ? LEGEND_WIDTH : 0;
    const i32 width = scene->style->width - left;
    const i32 height = truncate_i32(static_cast<f32>(width) / scene->camera->aspect);
    const i32 drawn = height > 0 ? height : 0;  // a section without a size is not drawn
    glViewport(left, (image_height - drawn) / 2, width > 0 ? width : 0, drawn);
}

void scene_use_surface_program(const Scene *scene, const Matrix4 *transform) {
    assert(scene != nullptr && scene->stack != nullptr && scene->style != nullptr && transform != nullptr);
    const u32 program = scene->surface_program->name;
    const f32 width = scene->stack->width;
    glUseProgram(program);
    glUniformMatrix4fv(glGetUniformLocation(program, "transform"), 1, GL_FALSE, transform->m);
    glUniform1f(glGetUniformLocation(program, "verticalScale"), scene->style->vertical_scale);
    glUniform3f(glGetUniformLocation(program, "lightColor"), 1.0F, 1.0F, 1.0F);
    glUniform3f(glGetUniformLocation(program, "lightPos"), width * 0.5F, -width * 4.0F, width * 0.9F * 4.0F);
}

// Bottom layer first: translucent layers show what was drawn before them.
static void draw_layers(const Scene *scene) {
    const Stack *stack = scene->stack;
    const i32 color = glGetUniformLocation(scene->surface_program->name, "color");
    const i32 alpha = glGetUniformLocation(scene->surface_program->name, "alpha");
    for (i32 i = 0; i < stack->layer_count; ++i) {
        const Layer *layer = stack->layers[i];
        if (layer == nullptr || layer->index_count < 1) {
            continue;
        }
        glUniform3f(color, layer->color[0], layer->color[1], layer->color[2]);
        glUniform1f(alpha, layer->color[3]);
        glBindVertexArray(layer->vao);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, layer->ebo);
        glDrawElements(GL_TRIANGLES, layer->index_count, GL_UNSIGNED_INT, nullptr);
        glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
        glBindVertexArray(0);
    }
}

void scene_draw_texts(const Scene *scene, i32 image_height) {
    assert(scene != nullptr && scene->stack != nullptr && image_height > 0);
    if (scene->stack->show_heights != 0) {
        labels_draw_heights(scene);
    }
    labels_draw_scale(scene);
    if (scene->stack->show_legend != 0) {
        legend_draw(scene, image_height);
    }
}

void scene_render(const Scene *scene, i32 image_height) {
    assert(scene != nullptr && scene->stack != nullptr && scene->camera != nullptr);
    assert(scene->surface_program != nullptr && image_height > 0);
    assert(platform_gl_is_current());
    if (scene->style->fine) {
        fine_scene_render(scene, image_height);
        return;
    }
    scene_use_surface_program(scene, &scene->camera->transform);
    glClearColor(1.0F, 1.0F, 1.0F, 1.0F);
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    scene_set_viewport(scene, image_height);
    draw_layers(scene);
    glUseProgram(0);
    scene_draw_texts(scene, image_height);
}
