// camera.h: where a picture is seen from. Micrometres, right-handed: x across the cut, y along it, z up.
#pragma once
#include "platform/base.h"

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

Matrix4 matrix_multiply(const Matrix4 *a, const Matrix4 *b);  // a x b
Matrix4 look_at(Vector3 eye, Vector3 target, Vector3 up);

// A camera four widths in front of the cut that takes in a section of width W, depth D and height H.
//   angle_degrees   how far the view is raised
// Freed with camera_free.
Camera *camera_create(f32 width, f32 depth, f32 height, f32 angle_degrees);
void camera_free(Camera *camera);  // takes null
