#include "render/camera.h"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include "platform/memory.h"
#include "process/stack.h"
#include "render/scene.h"

static Owned<Camera> test_camera(f32 width, f32 depth, f32 height, f32 angle) {
    return Owned<Camera>(camera_create(width, depth, height, angle));
}

static void expect_matrix(const f32 (&expected)[16], const Matrix4 &matrix, f32 tolerance = 0.0F) {
    for (i32 i = 0; i < 16; ++i) {
        EXPECT_NEAR(expected[i], matrix.m[i], tolerance) << "column " << i / 4 << ", row " << i % 4;
    }
}

// matrix x (x, y, z, 1), as the ratio of its second and fourth number: the height in the picture, -1 to 1.
static f64 picture_y(const Matrix4 &matrix, Vector3 p) {
    const f32 *m = matrix.m;
    const f64 y = m[1] * p.x + m[5] * p.y + m[9] * p.z + m[13];
    const f64 w = m[3] * p.x + m[7] * p.y + m[11] * p.z + m[15];
    return y / w;
}

TEST(MatrixMultiply, MultipliesRowsByColumns) {
    // a moves by (1, 2, 3), b scales by (2, 3, 4): first scaled, then moved.
    const Matrix4 a = {{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 1, 2, 3, 1}};
    const Matrix4 b = {{2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 0, 0, 0, 1}};
    expect_matrix({2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 1, 2, 3, 1}, matrix_multiply(&a, &b));
    // The other way round the movement is scaled too.
    expect_matrix({2, 0, 0, 0, 0, 3, 0, 0, 0, 0, 4, 0, 2, 6, 12, 1}, matrix_multiply(&b, &a));
}

TEST(MatrixMultiply, UsesEveryElement) {
    const Matrix4 a = {{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12, 13, 14, 15, 16}};
    const Matrix4 b = {{1, 1, 1, 1, 1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 2}};
    // Column 0 is the sum of a's columns: 1+5+9+13 = 28 and so on; then columns 0 and 1 of a; then
    // column 2 plus twice column 3: 9+26 = 35 and so on.
    expect_matrix({28, 32, 36, 40, 1, 2, 3, 4, 5, 6, 7, 8, 35, 38, 41, 44}, matrix_multiply(&a, &b));
}

TEST(LookAt, FromAboveOnlyMoves) {
    // f = (0, 0, -1), s = (1, 0, 0), u = (0, 1, 0); the eye's 5 become the distance along -z.
    expect_matrix({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, -5, 1},
                  look_at({0, 0, 5}, {0, 0, 0}, {0, 1, 0}));
}

TEST(LookAt, AlongTheSectionTurnsItsAxes) {
    // f = (0, 1, 0), s = f x (0, 0, 1) = (1, 0, 0), u = s x f = (0, 0, 1).
    // Rows (1, 0, 0, -1), (0, 0, 1, -3), (0, -1, 0, 2).
    expect_matrix({1, 0, 0, 0, 0, 0, -1, 0, 0, 1, 0, 0, -1, -3, 2, 1},
                  look_at({1, 2, 3}, {1, 6, 3}, {0, 0, 1}));
}

TEST(LookAt, NormalisesWhatItIsGiven) {
    // From (0, -3, 4) to the origin: f = (0, 0.6, -0.8), s = f x (0, 0, 9) = (5.4, 0, 0) -> (1, 0, 0),
    // u = s x f = (0, 0.8, 0.6). -u.eye = -(0.8 * -3 + 0.6 * 4) = 0; f.eye = -1.8 - 3.2 = -5.
    expect_matrix({1, 0, 0, 0, 0, 0.8F, -0.6F, 0, 0, 0.6F, 0.8F, 0, 0, 0, -5, 1},
                  look_at({0, -3, 4}, {0, 0, 0}, {0, 0, 9}), 1e-6F);
}

TEST(LookAt, TurnsInTheGroundPlane) {
    // f = (0.6, 0.8, 0), s = f x (1, 0, 0) = (0, 0, -0.8) -> (0, 0, -1), u = s x f = (0.8, -0.6, 0).
    // Rows (0, 0, -1, 3), (0.8, -0.6, 0, 0.4), (-0.6, -0.8, 0, 2.2) for the eye at (1, 2, 3).
    expect_matrix({0, 0.8F, -0.6F, 0, 0, -0.6F, -0.8F, 0, -1, 0, 0, 0, 3, 0.4F, 2.2F, 1},
                  look_at({1, 2, 3}, {4, 6, 3}, {1, 0, 0}), 1e-6F);
}

TEST(LookAt, TakesDirectionsOfAnyLength) {
    // As from above, with lengths whose squares are small but not lost.
    for (const f32 length : {1e-3F, 1e-9F, 1e-18F}) {
        expect_matrix({1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 0, 0, -length, 1},
                      look_at({0, 0, length}, {0, 0, 0}, {0, length, 0}), 1e-6F);
    }
}

TEST(LookAt, WithoutADirectionIsZeroRatherThanNan) {
    expect_matrix({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1}, look_at({1, 2, 3}, {1, 2, 3}, {0, 0, 1}));
    // Looking along `up`: s = 0 and u = 0, f stays.
    expect_matrix({0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 0, 0, 0, -5, 1},
                  look_at({0, 0, 5}, {0, 0, 0}, {0, 0, 1}));
}

// Width 2 seen from 45 degrees: the eye is at (1, -8, 8), so the front edge is seen 45 degrees from
// straight down. The depth 8 (sqrt(3) - 1) puts the back edge at 60 degrees, 16 away.
static const f32 HAND_DEPTH = 5.856406461F;

TEST(CameraCreate, PlacesTheEyeFourWidthsInFront) {
    const Owned<Camera> camera = test_camera(2.0F, HAND_DEPTH, 0.0F, 45.0F);
    EXPECT_FLOAT_EQ(camera->eye.x, 1.0F);
    EXPECT_FLOAT_EQ(camera->eye.y, -8.0F);
    EXPECT_FLOAT_EQ(camera->eye.z, 8.0F);
}

TEST(CameraCreate, LooksWhereTheMiddleRayMeetsTheGround) {
    const Owned<Camera> camera = test_camera(2.0F, HAND_DEPTH, 0.0F, 45.0F);
    // The middle ray is at 52.5 degrees, and 8 tan 52.5 = 10.4258030.
    EXPECT_FLOAT_EQ(camera->target.x, 1.0F);
    EXPECT_NEAR(2.4258030, camera->target.y, 2e-5);
    EXPECT_EQ(camera->target.z, 0.0F);
    EXPECT_EQ(camera->up.x, 0.0F);
    EXPECT_FLOAT_EQ(camera->up.y, 8.0F);
    EXPECT_NEAR(10.4258030, camera->up.z, 2e-5);
}

TEST(CameraCreate, FieldAndPlanesFollowTheSection) {
    const Owned<Camera> camera = test_camera(2.0F, HAND_DEPTH, 0.0F, 45.0F);
    // Vertical field 15 x 1.1 = 16.5 degrees, f = 1 / tan 8.25 = 6.8968...; horizontal field
    // 2 atan(1 / sqrt(128)) x 1.1, so the aspect is 10.1023 / 15. near = 0.95 sqrt(128) = 10.748023,
    // far = 1.1 x 16 = 17.6.
    const f64 degree = 3.14159265358979 / 180.0;
    const f64 f = 1.0 / std::tan(8.25 * degree);
    const f64 aspect = 2.0 * std::atan(1.0 / std::sqrt(128.0)) / (15.0 * degree);
    EXPECT_NEAR(0.673487, aspect, 2e-5);
    EXPECT_NEAR(aspect, camera->aspect, 2e-5);
    // clang-format off
    const f32 expected[16] = {static_cast<f32>(f / aspect), 0, 0, 0,
                              0, static_cast<f32>(f), 0, 0,
                              0, 0, -4.1372035F, -1,
                              0, 0, -55.2147820F, 0};
    // clang-format on
    expect_matrix(expected, camera->projection, 3e-4F);
}

TEST(CameraCreate, FieldAndPlanesFollowTheHeight) {
    // As above with the eye at (1, -8, 8 + height): 8 in front of and 8 above the upper front edge, which is
    // seen 45 degrees from straight down and sqrt(128) away; the upper back edge is at 60 degrees, 16 away.
    const struct {
        f32 height;
        f64 near_angle;     // of the lower front edge, radians from straight down
        f64 edge_distance;  // of the wider front edge, whose half is 1
        const char *what;
    } cases[] = {
        {3.0F, std::atan(8.0 / 11.0), std::sqrt(128.0), "the upper edge is nearer and wider"},
        {-3.0F, std::atan(8.0 / 5.0), std::sqrt(89.0), "the lower edge is nearer and wider"},
    };
    const f64 degree = 3.14159265358979 / 180.0;
    for (const auto &c : cases) {
        const Owned<Camera> camera = test_camera(2.0F, HAND_DEPTH, c.height, 45.0F);
        const f64 aspect = 2.0 * std::atan(1.0 / c.edge_distance) / (60.0 * degree - c.near_angle);
        EXPECT_NEAR(aspect, camera->aspect, 1e-4 * aspect) << c.what;
        // The planes out of (far + near) / (near - far) and 2 far near / (near - far).
        const f32 *m = camera->projection.m;
        EXPECT_NEAR(0.95 * std::sqrt(128.0), m[14] / (m[10] - 1.0F), 1e-3) << c.what;
        EXPECT_NEAR(1.1 * 16.0, m[14] / (m[10] + 1.0F), 1e-3) << c.what;
    }
}

TEST(CameraCreate, TransformIsProjectionTimesView) {
    const Owned<Camera> camera = test_camera(3.0F, 2.0F, 0.5F, 30.0F);
    const Matrix4 view = look_at(camera->eye, camera->target, camera->up);
    const Matrix4 product = matrix_multiply(&camera->projection, &view);
    expect_matrix(view.m, camera->view);
    expect_matrix(product.m, camera->transform);
}

TEST(CameraCreate, LeavesATenthFreeAboveAndBelow) {
    const Owned<Camera> camera = test_camera(2.0F, HAND_DEPTH, 0.0F, 45.0F);
    // Both edges lie 7.5 degrees off the middle of a half field of 8.25: tan 7.5 / tan 8.25 = 0.907991.
    EXPECT_NEAR(-0.907991, picture_y(camera->transform, {1.0F, 0.0F, 0.0F}), 1e-4);
    EXPECT_NEAR(0.907991, picture_y(camera->transform, {1.0F, HAND_DEPTH, 0.0F}), 1e-4);
}

TEST(CameraCreate, TakesInTheWholeSectionAtEveryAngle) {
    for (i32 angle = 0; angle < 90; angle += 10) {
        const f32 width = 5.0F;
        const f32 depth = 4.0F;
        const f32 height = 0.7F;
        const Owned<Camera> camera = test_camera(width, depth, height, static_cast<f32>(angle));
        for (const Vector3 corner : {Vector3{0, 0, 0}, Vector3{width, 0, height}, Vector3{0, depth, height},
                                     Vector3{width, depth, 0.0F}}) {
            const f32 *m = camera->transform.m;
            const f32 x = m[0] * corner.x + m[4] * corner.y + m[8] * corner.z + m[12];
            const f32 w = m[3] * corner.x + m[7] * corner.y + m[11] * corner.z + m[15];
            EXPECT_LE(std::fabs(x / w), 1.0F) << angle << " degrees";
            EXPECT_LE(std::fabs(picture_y(camera->transform, corner)), 1.0) << angle << " degrees";
        }
    }
}

TEST(CameraCreate, AtAngleZeroTheEyeIsAtTheSectionsHeight) {
    const Owned<Camera> camera = test_camera(5.0F, 5.0F, 0.7F, 0.0F);
    EXPECT_EQ(camera->eye.z, 0.7F);
    EXPECT_GT(camera->target.y, camera->eye.y);
    EXPECT_EQ(camera->target.z, 0.0F) << "the camera looks down to the section";
    EXPECT_LT(camera->view.m[10], 1.0F);
    EXPECT_TRUE(std::isfinite(camera->aspect));
}

TEST(CameraFree, TakesNullAndGivesTheRecordBack) {
    const i64 before = memory_live_blocks();
    camera_free(camera_create(1.0F, 1.0F, 1.0F, 30.0F));
    camera_free(nullptr);
    EXPECT_EQ(memory_live_blocks(), before);
}

TEST(SceneImageHeight, FollowsTheAspectAndTheLegend) {
    const f32 infinite = std::numeric_limits<f32>::infinity();
    const f32 nan = std::numeric_limits<f32>::quiet_NaN();
    const struct {
        f32 aspect;
        i32 legend, layers, expected;
        const char *what;
    } cases[] = {
        {2.0F, 0, 5, 1024, "1920 / 2 + 64"},
        {1.7F, 0, 5, 1193, "1193.41 is truncated"},
        {2.0F, 1, 28, 1024, "28 rows take 1008"},
        {2.0F, 1, 29, 1044, "29 rows take 1044"},
        {2.0F, 0, 29, 1024, "no legend, no rows"},
        {infinite, 0, 0, 64, "a section without a height"},
        {nan, 0, 0, 1, "no section"},
        {nan, 1, 3, 108, "no section but a legend"},
        {-0.001F, 0, 0, 1, "never less than a row"},
    };
    for (const auto &c : cases) {
        Stack stack = {};
        Camera camera = {};
        camera.aspect = c.aspect;
        stack.show_legend = c.legend;
        stack.live_layer_count = c.layers;
        EXPECT_EQ(scene_image_height(&stack, &camera, &PLAIN_STYLE), c.expected) << c.what;
    }
}

TEST(SceneImageHeight, NeverExceedsWhatTheGraphicsCanHold) {
    Stack stack = {};
    Camera camera = {};
    for (const f32 aspect : {0.0F, 1e-30F, 0.0001F}) {
        camera.aspect = aspect;
        const i32 height = scene_image_height(&stack, &camera, &PLAIN_STYLE);
        EXPECT_GE(height, 1024);
        EXPECT_LE(height, 65536);
    }
    camera.aspect = 2.0F;
    stack.show_legend = 1;
    stack.live_layer_count = I32_MAX;
    EXPECT_LE(scene_image_height(&stack, &camera, &PLAIN_STYLE), 65536);
}

// x, y and z in clip coordinates over w, each from -1 to 1 for what is in the picture.
static Vector3 in_picture(const Matrix4 &matrix, Vector3 p) {
    f64 clip[4];
    for (i32 row = 0; row < 4; ++row) {
        clip[row] = static_cast<f64>(matrix.m[row]) * p.x + static_cast<f64>(matrix.m[4 + row]) * p.y +
                    static_cast<f64>(matrix.m[8 + row]) * p.z + static_cast<f64>(matrix.m[12 + row]);
    }
    return {static_cast<f32>(clip[0] / clip[3]), static_cast<f32>(clip[1] / clip[3]),
            static_cast<f32>(clip[2] / clip[3])};
}

TEST(CameraCreateFine, TakesInAllEightCornersFromEveryAngle) {
    const f32 sizes[][4] = {{2, 0.5F, 2.6F, 1}, {2, 2, 0.1F, 1},    {2, 0.5F, 40, 1},     {100, 25, 1, 50},
                            {2, 0.5F, 2, 1000}, {2, 1, 0.5F, 0.1F}, {0.2F, 0.2F, 0.3F, 2}};
    for (const f32(&size)[4] : sizes) {
        for (i32 angle = 0; angle < 90; ++angle) {
            const Owned<Camera> camera(
                camera_create_fine(size[0], size[1], size[2], static_cast<f32>(angle), size[3]));
            f32 widest = 0.0F;
            f32 highest = 0.0F;
            for (i32 i = 0; i < 8; ++i) {
                const Vector3 corner = {(i & 1) != 0 ? size[0] : 0.0F, (i & 2) != 0 ? size[1] : 0.0F,
                                        (i & 4) != 0 ? size[2] : 0.0F};
                const Vector3 place = in_picture(camera->transform, corner);
                widest = std::fmax(widest, std::fabs(place.x));
                highest = std::fmax(highest, std::fabs(place.y));
                EXPECT_LT(std::fabs(place.z), 1.0F) << "near and far at " << angle << ", corner " << i;
            }
            // 1 / 1.1 is 0.909.
            EXPECT_NEAR(widest, 0.909F, 0.01F) << "height " << size[2] << " at " << angle;
            EXPECT_NEAR(highest, 0.909F, 0.01F) << "height " << size[2] << " at " << angle;
        }
    }
}

TEST(CameraCreateFine, DrawsHeightsToScaleAndLengthsAlike) {
    // The same picture of the section with its own heights and of the one that is three times as high.
    const Owned<Camera> scaled(camera_create_fine(4.0F, 2.0F, 1.0F, 30.0F, 3.0F));
    const Owned<Camera> high(camera_create_fine(4.0F, 2.0F, 3.0F, 30.0F, 1.0F));
    EXPECT_NEAR(scaled->aspect, high->aspect, 1e-5F);
    const Vector3 low_point = in_picture(scaled->transform, {1.0F, 0.5F, 0.7F});
    const Vector3 high_point = in_picture(high->transform, {1.0F, 0.5F, 2.1F});
    EXPECT_NEAR(low_point.x, high_point.x, 1e-5F);
    EXPECT_NEAR(low_point.y, high_point.y, 1e-5F);
    EXPECT_NEAR(low_point.z, high_point.z, 1e-5F);
    // A square on the cut face stays one: as many pixels up as across, the picture being aspect times as
    // wide.
    const Owned<Camera> level(camera_create_fine(4.0F, 2.0F, 1.0F, 0.0F, 1.0F));
    const Vector3 corner = in_picture(level->transform, {2.0F, 0.0F, 0.5F});
    const Vector3 beside = in_picture(level->transform, {2.1F, 0.0F, 0.5F});
    const Vector3 above = in_picture(level->transform, {2.0F, 0.0F, 0.6F});
    EXPECT_NEAR((beside.x - corner.x) * level->aspect, above.y - corner.y, 0.02F * (above.y - corner.y));
}

TEST(CameraCreateFine, OfASectionWithoutHeightIsSafe) {
    for (const f32 angle : {0.0F, 30.0F, 89.0F}) {
        const Owned<Camera> camera(camera_create_fine(4.0F, 2.0F, 0.0F, angle, 1.0F));
        EXPECT_GT(camera->aspect, 0.0F);
        EXPECT_TRUE(std::isfinite(camera->aspect));
        for (const f32 number : camera->transform.m) {
            EXPECT_TRUE(std::isfinite(number));
        }
    }
}

TEST(SceneCameraCreate, IsThePlainOneUnlessAskedOtherwise) {
    Stack stack = {};
    stack.width = 4.0F;
    stack.depth = 2.0F;
    stack.max_height = 1.0F;
    stack.camera_angle = 30;
    PictureStyle style = PLAIN_STYLE;
    const Owned<Camera> plain(camera_create(4.0F, 2.0F, 1.0F, 30.0F));
    const Owned<Camera> fine(camera_create_fine(4.0F, 2.0F, 1.0F, 30.0F, 1.0F));
    const Owned<Camera> usual(scene_camera_create(&stack, &style));
    expect_matrix(plain->transform.m, usual->transform);
    style.fine = true;
    const Owned<Camera> asked(scene_camera_create(&stack, &style));
    expect_matrix(fine->transform.m, asked->transform);
    style.fine = false;
    style.vertical_scale = 2.0F;
    const Owned<Camera> scaled(scene_camera_create(&stack, &style));
    EXPECT_LT(scaled->aspect, plain->aspect);
}
