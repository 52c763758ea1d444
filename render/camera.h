// camera.h: where a picture is seen from. Micrometres, right-handed: x across the cut, y along it, z up.
#pragma once
#include "platform/owned.h"

struct Vector3 {
    f32 x, y, z;
};

// Column-major, as OpenGL takes it.
struct Matrix4 {
    f32 m[16];
};

struct Camera {
    Matrix4 transform;  // projection x view
    f32 aspect;         // horizontal over vertical field of view (ratio of angles)
    Matrix4 view;
    Matrix4 projection;
    Vector3 eye, up, target;
};

// The product a x b: what b does first and a after it.
Matrix4 matrix_multiply(const Matrix4 *a, const Matrix4 *b);

// The view from `eye` to `target`: x to the right, y upwards, looking along -z. Where the three leave no
// direction, zeros stand for it.
//   up   any vector that is not along the view
Matrix4 look_at(Vector3 eye, Vector3 target, Vector3 up);

// A camera four widths in front of the cut that takes in a section of width, depth and height micrometres.
//   angle_degrees   how far the view is raised, from 0 to below 90
// Freed with camera_free.
Camera *camera_create(f32 width, f32 depth, f32 height, f32 angle_degrees);

// The camera of fine pictures and of those with heights drawn to another scale: from its place it takes in
// the whole section, foot and substrate too, however high it is, and leaves a tenth of the picture free
// around it. It stands farther away than four widths where the section is more than twice as high as wide.
// `transform` and `view` take heights as they are and scale them; the eye, its direction and `projection` are
// in the scaled space. Freed with camera_free.
//   vertical_scale   heights are drawn this many times as high, more than 0
Camera *camera_create_fine(f32 width, f32 depth, f32 height, f32 angle_degrees, f32 vertical_scale);
void camera_free(Camera *camera);  // takes null

template <>
struct Freed<Camera> {
    void operator()(Camera *camera) const { camera_free(camera); }
};
