#include "render/camera.h"

#include <cassert>
#include <cmath>
#include "platform/memory.h"
#include "platform/trigonometry.h"

static Vector3 vector_subtract(Vector3 a, Vector3 b) {
    return {a.x - b.x, a.y - b.y, a.z - b.z};
}

static f32 vector_dot(Vector3 a, Vector3 b) {
    return a.x * b.x + a.y * b.y + a.z * b.z;
}

static Vector3 vector_cross(Vector3 a, Vector3 b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

static f32 vector_length(Vector3 a) {
    return std::sqrt(vector_dot(a, a));
}

// A vector without a length stays (0, 0, 0).
static Vector3 vector_normalize(Vector3 a) {
    const f32 length = vector_length(a);
    if (!(length > 0.0F)) {
        return {0.0F, 0.0F, 0.0F};
    }
    return {a.x / length, a.y / length, a.z / length};
}

// The angle between two directions, radians. Rounding can carry the cosine just past 1.
static f32 vector_angle(Vector3 a, Vector3 b) {
    const f32 cosine = vector_dot(vector_normalize(a), vector_normalize(b));
    const f32 bounded = cosine > 1.0F ? 1.0F : cosine < -1.0F ? -1.0F : cosine;
    return static_cast<f32>(std::acos(static_cast<f64>(bounded)));
}

static f32 tangent(f32 angle) {
    return static_cast<f32>(std::tan(static_cast<f64>(angle)));
}

Matrix4 matrix_multiply(const Matrix4 *a, const Matrix4 *b) {
    assert(a != nullptr && b != nullptr);
    Matrix4 product;
    for (i32 column = 0; column < 4; ++column) {
        for (i32 row = 0; row < 4; ++row) {
            f32 sum = 0.0F;
            for (i32 k = 0; k < 4; ++k) {
                sum += a->m[k * 4 + row] * b->m[column * 4 + k];
            }
            product.m[column * 4 + row] = sum;
        }
    }
    return product;
}

Matrix4 look_at(Vector3 eye, Vector3 target, Vector3 up) {
    const Vector3 forward = vector_normalize(vector_subtract(target, eye));
    const Vector3 side = vector_normalize(vector_cross(forward, up));
    const Vector3 top = vector_cross(side, forward);
    return {{side.x, top.x, -forward.x, 0.0F,  //
             side.y, top.y, -forward.y, 0.0F,  //
             side.z, top.z, -forward.z, 0.0F,  //
             -vector_dot(side, eye), -vector_dot(top, eye), vector_dot(forward, eye), 1.0F}};
}

// The perspective of a vertical field of view (radians), its ratio to the horizontal one, and the
// distances of the planes that cut off what is nearer or farther.
static Matrix4 camera_projection(f32 vertical_field, f32 aspect, f32 near_distance, f32 far_distance) {
    const f32 f = 1.0F / tangent(vertical_field * 0.5F);
    const f32 range = near_distance - far_distance;
    Matrix4 projection = {};
    projection.m[0] = f / aspect;
    projection.m[5] = f;
    projection.m[10] = (far_distance + near_distance) / range;
    projection.m[11] = -1.0F;
    projection.m[14] = 2.0F * far_distance * near_distance / range;
    return projection;
}

// The wider of the angles that the front edge of the section takes up at the height 0 and at `height`.
static f32 horizontal_angle(Vector3 eye, f32 width, f32 height) {
    const f32 low =
        vector_angle(vector_subtract({0.0F, 0.0F, 0.0F}, eye), vector_subtract({width, 0.0F, 0.0F}, eye));
    const f32 high =
        vector_angle(vector_subtract({0.0F, 0.0F, height}, eye), vector_subtract({width, 0.0F, height}, eye));
    return low > high ? low : high;
}

Camera *camera_create(f32 width, f32 depth, f32 height, f32 angle_degrees) {
    Camera *camera = memory_new_zeroed<Camera>();
    const f32 middle = width * 0.5F;
    const f32 raise = static_cast<f32>(std::tan(static_cast<f64>(angle_degrees) * PI / 180.0));
    const Vector3 eye = {middle, width * -4.0F, raise * (width * 4.0F) + height};
    const Vector3 down = {0.0F, 0.0F, -1.0F};
    const Vector3 to_far = vector_subtract({middle, depth, height}, eye);
    const f32 near_angle = vector_angle(vector_subtract({middle, 0.0F, 0.0F}, eye), down);
    const f32 far_angle = vector_angle(to_far, down);

    camera->eye = eye;
    camera->target = {middle, eye.y + tangent((near_angle + far_angle) * 0.5F) * eye.z, 0.0F};
    camera->up = {0.0F, eye.z, camera->target.y - eye.y};

    const f32 margin = 1.1F;  // leaves a tenth of the picture free around the section
    const f32 vertical_field = (far_angle - near_angle) * margin;
    camera->aspect = horizontal_angle(eye, width, height) * margin / vertical_field;
    const f32 near_distance = 0.95F * vector_length(vector_subtract({middle, 0.0F, height}, eye));
    const f32 far_distance = 1.1F * vector_length(to_far);
    camera->projection = camera_projection(vertical_field, camera->aspect, near_distance, far_distance);
    camera->view = look_at(eye, camera->target, camera->up);
    camera->transform = matrix_multiply(&camera->projection, &camera->view);
    return camera;
}

// What a camera must take in: the tangents of the half fields, and the nearest and the farthest distance
// along the view.
struct ViewExtent {
    f32 across, upwards, nearest, farthest;
};

// That of the eight corners of a section.
static ViewExtent section_extent(const Matrix4 *view, f32 width, f32 depth, f32 height) {
    ViewExtent extent = {0.0F, 0.0F, INFINITY, 0.0F};
    for (i32 i = 0; i < 8; ++i) {
        const f32 x = (i & 1) != 0 ? width : 0.0F;
        const f32 y = (i & 2) != 0 ? depth : 0.0F;
        const f32 z = (i & 4) != 0 ? height : 0.0F;
        const f32 *m = view->m;
        const f32 distance = -(m[2] * x + m[6] * y + m[10] * z + m[14]);
        const f32 across = std::fabs(m[0] * x + m[4] * y + m[8] * z + m[12]) / distance;
        const f32 upwards = std::fabs(m[1] * x + m[5] * y + m[9] * z + m[13]) / distance;
        extent.across = std::fmax(extent.across, across);
        extent.upwards = std::fmax(extent.upwards, upwards);
        extent.nearest = std::fmin(extent.nearest, distance);
        extent.farthest = std::fmax(extent.farthest, distance);
    }
    return extent;
}

static void scale_heights(Matrix4 *matrix, f32 scale) {
    for (i32 row = 0; row < 4; ++row) {
        matrix->m[8 + row] *= scale;
    }
}

Camera *camera_create_fine(f32 width, f32 depth, f32 height, f32 angle_degrees, f32 vertical_scale) {
    assert(vertical_scale > 0.0F);
    Camera *camera = memory_new_zeroed<Camera>();
    const f32 drawn_height = height * vertical_scale;
    const f32 middle = width * 0.5F;
    const f32 away = 4.0F * std::fmax(width, drawn_height * 0.5F);
    const f64 raise = std::tan(static_cast<f64>(angle_degrees) * PI / 180.0);
    const Vector3 eye = {middle, -away, static_cast<f32>(raise) * away + drawn_height};
    // How far the front foot and the back edge of the top, the lowest and the highest thing seen, lie below
    // the eye's own height. The view goes half way between them.
    const f32 lowest = std::atan2(eye.z, away);
    const f32 highest = std::atan2(eye.z - drawn_height, away + depth);
    const f32 down = (lowest + highest) * 0.5F;

    camera->eye = eye;
    camera->target = {middle, eye.y + std::cos(down) * away, eye.z - std::sin(down) * away};
    camera->up = {0.0F, std::sin(down), std::cos(down)};
    camera->view = look_at(eye, camera->target, camera->up);

    const f32 margin = 1.1F;  // leaves a tenth of the picture free around the section
    ViewExtent extent = section_extent(&camera->view, width, depth, drawn_height);
    // A flat section seen from its edge has no field; it gets a thousandth of the width.
    extent.upwards = std::fmax(extent.upwards, extent.across * 0.001F);
    camera->aspect = extent.across / extent.upwards;
    camera->projection = camera_projection(2.0F * std::atan(extent.upwards * margin), camera->aspect,
                                           extent.nearest * 0.95F, extent.farthest * 1.05F);
    scale_heights(&camera->view, vertical_scale);
    camera->transform = matrix_multiply(&camera->projection, &camera->view);
    return camera;
}

void camera_free(Camera *camera) {
    memory_free(camera);
}
