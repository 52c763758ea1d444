#include "render/scene.h"

#include <GL/glew.h>
#include <cassert>
#include "platform/platform.h"
#include "render/annotations.h"
#include "render/draw_pace.h"
#include "render/fine_scene.h"
#include "render/ground.h"
#include "render/legend.h"
#include "render/picture_layout.h"
#include "sim/layer.h"

static constexpr i32 LARGEST_SIDE = 16384;  // pixels, where the graphics cannot be asked

void render_state_init() {
    assert(platform_gl_is_current());
    glEnable(GL_PROGRAM_POINT_SIZE);
    glEnable(GL_POINT_SPRITE);  // tells the point program where in a point a pixel lies
    glEnable(GL_BLEND);
    glBlendFunc(GL_SRC_ALPHA, GL_ONE_MINUS_SRC_ALPHA);
    glEnable(GL_DEPTH_TEST);
}

// The longest side that a framebuffer and a viewport can have, pixels.
//   axis   0: across, 1: upwards
static i32 largest_side(i32 axis) {
    if (!platform_gl_is_current()) {
        return LARGEST_SIDE;
    }
    GLint renderbuffer = 0;
    GLint viewport[2] = {0, 0};
    glGetIntegerv(GL_MAX_RENDERBUFFER_SIZE, &renderbuffer);
    glGetIntegerv(GL_MAX_VIEWPORT_DIMS, viewport);
    const GLint largest = renderbuffer < viewport[axis] ? renderbuffer : viewport[axis];
    return largest > 0 ? largest : LARGEST_SIDE;
}

i32 scene_largest_width() {
    const i32 largest = largest_side(0);
    return largest < LARGEST_PICTURE_WIDTH ? largest : LARGEST_PICTURE_WIDTH;
}

i32 scene_image_height(const Stack *stack, const Camera *camera, const PictureStyle *style) {
    assert(stack != nullptr && camera != nullptr && style != nullptr && style->width > 0);
    const f32 exact = static_cast<f32>(style->width) / camera->aspect + picture_border(style);
    const i32 largest = largest_side(1);
    i64 height = exact >= static_cast<f32>(largest) ? largest : truncate_i32(exact);
    const i64 legend = static_cast<i64>(stack->live_layer_count) * picture_pixels(style, LEGEND_ROW_HEIGHT);
    if (stack->show_legend != 0 && legend > height) {
        height = legend;
    }
    height += picture_title_height(style);
    height = height < largest ? height : largest;
    return height < 1 ? 1 : static_cast<i32>(height);
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
    assert(scene != nullptr && image_height > 0);
    const PictureLayout layout = picture_layout(scene, image_height);
    glViewport(layout.x, layout.y, layout.width, layout.height);
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

// An opaque layer is not seen from inside: whatever of it faces away from the eye has a nearer part of it
// before it (visible_parts.h). Triangles at the underside turn the same way as those at the top.
static void draw_mesh(DrawPace *pace, const Layer *layer) {
    const i32 under = layer->under_count;
    if (under < 0) {
        draw_pace_triangles(pace, 0, layer->index_count);
        return;
    }
    const i32 others = layer->index_count - under;
    glEnable(GL_CULL_FACE);
    if (layer->last_wins != 0) {
        glCullFace(GL_BACK);
        draw_pace_triangles(pace, 0, others);
        glCullFace(GL_FRONT);
        draw_pace_triangles(pace, others, under);
    } else {
        glCullFace(GL_FRONT);
        draw_pace_triangles(pace, 0, under);
        glCullFace(GL_BACK);
        draw_pace_triangles(pace, under, others);
    }
    glDisable(GL_CULL_FACE);
}

static void draw_layer(DrawPace *pace, const Layer *layer, i32 color, i32 alpha) {
    if (layer == nullptr || layer->index_count < 1) {
        return;
    }
    glUniform3f(color, layer->color[0], layer->color[1], layer->color[2]);
    glUniform1f(alpha, layer->color[3]);
    glBindVertexArray(layer->vao);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, layer->ebo);
    draw_mesh(pace, layer);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glBindVertexArray(0);
}

// Bottom layer first: translucent layers show what was drawn before them, and of surfaces at equal depth the
// lowest is seen. The opaque layers at the bottom of the stack come out the same when they are drawn the
// other way round, triangle by triangle, and what is drawn last wins at equal depth; then the colours of what
// lies hidden need not be worked out.
static void draw_layers(const Scene *scene) {
    const Stack *stack = scene->stack;
    const i32 color = glGetUniformLocation(scene->surface_program->name, "color");
    const i32 alpha = glGetUniformLocation(scene->surface_program->name, "alpha");
    i32 first = 0;  // of those that are drawn bottom layer first
    while (first < stack->layer_count &&
           (stack->layers[first] == nullptr || stack->layers[first]->last_wins != 0)) {
        ++first;
    }
    DrawPace pace = {};
    glDepthFunc(GL_LEQUAL);
    for (i32 i = first - 1; i >= 0; --i) {
        draw_layer(&pace, stack->layers[i], color, alpha);
    }
    glDepthFunc(GL_LESS);
    for (i32 i = first; i < stack->layer_count; ++i) {
        draw_layer(&pace, stack->layers[i], color, alpha);
    }
    draw_pace_end(&pace);
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
    ground_start(scene->style);
    scene_set_viewport(scene, image_height);
    draw_layers(scene);
    glUseProgram(0);
    annotations_draw(scene, image_height);
    ground_end();
}
