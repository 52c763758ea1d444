// scene.h: draw one picture of a stack into the bound framebuffer. Needs a current context.
#pragma once
#include "process/stack.h"
#include "render/camera.h"
#include "render/picture_style.h"
#include "render/shader.h"

struct Scene {
    const Stack *stack;
    const Camera *camera;
    const ShaderProgram *surface_program;
    const ShaderProgram *point_program;
    const PictureStyle *style;
};

// OpenGL state that holds as long as the context: point size from the shader, blending, depth test.
void render_state_init();

// The width that a picture can have, pixels: what the graphics bear, at most LARGEST_PICTURE_WIDTH. Needs no
// context, though it asks the one there is.
i32 scene_largest_width();
// The camera for a picture of the stack, whose max_height is up to date: the plain one, or for fine pictures
// and for heights drawn to another scale that which takes in everything. Needs no context. Freed with
// camera_free.
Camera *scene_camera_create(const Stack *stack, const PictureStyle *style);

// The height of a picture, pixels, at least 1: from the camera's aspect, and with a legend at least 36 per
// live layer, but no more than the graphics can hold. Needs no context, though it asks the one there is.
i32 scene_image_height(const Stack *stack, const Camera *camera, const PictureStyle *style);

// The parts of a picture, for those who draw one. The section's place in it: right of the legend, in the
// middle of the height. Changes the viewport.
//   image_height   of the bound framebuffer, pixels
void scene_set_viewport(const Scene *scene, i32 image_height);

// Takes the surface program into use, with its light.
//   transform   from micrometres to clip coordinates
void scene_use_surface_program(const Scene *scene, const Matrix4 *transform);

// Draws layers, height labels, scale label and legend, as the stack's settings and the style ask, over all
// that was there. Plain pictures are drawn of the meshes in the layers' buffers (drawn_mesh.h), fine ones of
// their own.
//   image_height   of the bound framebuffer, pixels
void scene_render(const Scene *scene, i32 image_height);
