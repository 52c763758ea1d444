// scene.h: draw one picture of a stack into the bound framebuffer. Needs a current context.
#pragma once
#include "process/stack.h"
#include "render/camera.h"
#include "render/shader.h"

struct Scene {
    const Stack *stack;
    const Camera *camera;
    const ShaderProgram *surface_program;
    const ShaderProgram *point_program;
    i32 image_width;  // pixels
};

// OpenGL state that holds for the whole run: point size from the shader, blending, depth test.
void render_state_init();

// Pixels of a picture: from the camera's aspect, and with a legend at least 36 per live layer.
i32 scene_image_height(const Stack *stack, const Camera *camera, i32 image_width);

// Draws layers, height labels, scale label and legend, as the stack's settings ask.
void scene_render(const Scene *scene, i32 image_height);

// A height label: value in units of 0.0001 micrometre with thousands separators ("1,234,567").
//   text   room for 32 bytes
void height_label_format(i64 value, char text[32]);
