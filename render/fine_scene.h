// fine_scene.h: a picture drawn as well as it can be: a cut face without cracks, many samples a pixel,
// translucent layers from back to front. Needs a current context.
#pragma once
#include "render/scene.h"

// Draws what scene_render draws, the fine way, into the bound framebuffer, which stays bound. The layers'
// buffers hold meshes of fine pictures afterwards, and those of other pictures are made anew when they are
// needed.
//   scene          its camera from scene_camera_create
//   image_height   of the bound framebuffer, pixels
void fine_scene_render(const Scene *scene, i32 image_height);
