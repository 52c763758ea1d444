// How surfaces are lit and laid over one another: by what they leave in a picture.
#include <algorithm>
#include <cmath>
#include "gl_test.h"
#include "render/offscreen.h"
#include "sim/layer.h"

class LightTest : public GlTest {};

static const f32 GREY[4] = {0.6F, 0.6F, 0.6F, 1.0F};
static const f32 RED[4] = {0.8F, 0.2F, 0.2F, 1.0F};

// Heights of a flat layer 4 micrometres wide: low, as high as wide and three times as high.
static const f32 HEIGHTS[] = {0.2F, 4.0F, 12.0F};

TEST_F(LightTest, AFlatTopShowsItsOwnColorAtAnyHeight) {
    for (const f32 height : HEIGHTS) {
        TestScene scene(40, 30, 4.0F);
        scene.add_flat_layer("SUBSTRATE", RED, height);
        for (const i32 angle : {5, 30, 60}) {
            scene.stack.camera_angle = angle;
            scene.render();
            for (const f32 y : {0.1F, 0.5F, 0.9F}) {
                for (const f32 x : {0.4F, 2.0F, 3.6F}) {
                    const Color top = scene.pixel_at(x, y * scene.stack.depth, height);
                    EXPECT_NEAR(204, top.red, 1) << height << " high, " << angle << " degrees";
                    EXPECT_NEAR(51, top.green, 1) << height << " high, " << angle << " degrees";
                    EXPECT_NEAR(51, top.blue, 1) << height << " high, " << angle << " degrees";
                }
            }
        }
    }
}

TEST_F(LightTest, TheCutFaceIsNearItsColorAndApartFromTheTop) {
    for (const f32 height : HEIGHTS) {
        TestScene scene(40, 30, 4.0F);
        scene.add_flat_layer("SUBSTRATE", RED, height);
        scene.render();
        for (const f32 z : {0.5F, 0.7F, 0.9F}) {  // the far plane cuts the foot of a high section off
            // Between 0.88 and 0.92 of 204 and 51.
            const Color face = scene.pixel_at(2.0F, 0.0F, z * height);
            EXPECT_GE(face.red, 179) << height << " high, at " << z;
            EXPECT_LE(face.red, 188) << height << " high, at " << z;
            EXPECT_NEAR(46, face.green, 1) << height << " high, at " << z;
            EXPECT_NEAR(46, face.blue, 1) << height << " high, at " << z;
        }
    }
}

TEST_F(LightTest, LeftAndRightSlopesDifferAtAnyHeight) {
    // A ridge along the section whose sides rise at 45 degrees, on a flat layer.
    for (const f32 height : HEIGHTS) {
        TestScene scene(101, 101, 4.0F);
        scene.stack.camera_angle = 60;
        scene.add_layer("SUBSTRATE", GREY, [height](f32 x, f32, f32) {
            return height + std::fmax(0.0F, 1.0F - std::fabs(x - 0.5F) * 4.0F);
        });
        scene.render();
        const i32 top = brightness(scene.pixel_at(0.4F, 2.0F, height));
        const i32 left = brightness(scene.pixel_at(1.5F, 2.0F, height + 0.5F));
        const i32 right = brightness(scene.pixel_at(2.5F, 2.0F, height + 0.5F));
        EXPECT_NEAR(3 * 153, top, 3) << height << " high";
        EXPECT_LT(left, top - 20) << height << " high";
        EXPECT_LT(right, left - 60) << height << " high";
        EXPECT_GT(right, top / 2) << height << " high: shade is not black";
    }
}

static void expect_uniform(const Owned<ShaderProgram> &program, const char *name, const f32 (&expected)[3]) {
    f32 value[3] = {-1.0F, -1.0F, -1.0F};
    glGetUniformfv(program->name, glGetUniformLocation(program->name, name), value);
    for (i32 i = 0; i < 3; ++i) {
        EXPECT_FLOAT_EQ(value[i], expected[i]) << name << ", number " << i;
    }
}

TEST_F(LightTest, StandsFourWidthsInFrontOfTheMiddle) {
    TestScene scene(40, 30, 5.0F);
    scene.add_flat_layer("SUBSTRATE", RED, 0.3F);
    scene.render();
    expect_uniform(scene.surface_program, "lightPos", {2.5F, -20.0F, 18.0F});  // 5 / 2, -4 x 5, 0.9 x 4 x 5
    expect_uniform(scene.surface_program, "lightColor", {1.0F, 1.0F, 1.0F});
}

TEST_F(LightTest, PicturesKeepTheAlphaThatBlendingLeaves) {
    const f32 glass[4] = {0.2F, 0.2F, 0.8F, 0.5F};
    TestScene scene(40, 30, 5.0F);
    scene.add_flat_layer("SUBSTRATE", RED, 0.4F);
    scene.add_flat_layer("GLASS", glass, 0.1F);
    scene.render();
    f32 x = 0.0F;
    f32 y = 0.0F;
    EXPECT_EQ(scene.stored_alpha(0, 0), 255) << "the background";
    scene.window_position(2.5F, 0.0F, 0.2F, &x, &y);
    EXPECT_EQ(scene.stored_alpha(static_cast<i32>(x), static_cast<i32>(y)), 255) << "an opaque layer";
    // 0.5 x 0.5 of the glass and 1 - 0.5 of what lies behind it: 0.75.
    scene.window_position(2.5F, 2.0F, 0.5F, &x, &y);
    EXPECT_NEAR(191, scene.stored_alpha(static_cast<i32>(x), static_cast<i32>(y)), 1) << "glass";
}

// Draws the scene once more from below and in front, as no camera of the program's own ever stands.
static void render_from_below(TestScene *scene) {
    scene->render();
    Camera *camera = scene->camera.get();
    camera->aspect = 1.5F;
    // A focal length of 2, planes at 1 and 99: (99 + 1) / -98 and 2 x 99 x 1 / -98.
    camera->projection = {
        {2.0F / 1.5F, 0, 0, 0, 0, 2.0F, 0, 0, 0, 0, -1.020408F, -1.0F, 0, 0, -2.020408F, 0}};
    camera->view = look_at({2.0F, -6.0F, -5.0F}, {2.0F, 1.5F, 0.0F}, {0.0F, 0.0F, 1.0F});
    camera->transform = matrix_multiply(&camera->projection, &camera->view);
    const Scene parts = {&scene->stack, camera, scene->surface_program.get(), scene->point_program.get(),
                         &scene->style};
    OffscreenTarget *target = nullptr;
    offscreen_recreate(&target, scene->image->width, scene->image->height);
    const Owned<OffscreenTarget> owner(target);
    scene_render(&parts, scene->image->height);
    offscreen_read(scene->image.get());
}

TEST_F(LightTest, OnlyLevelUndersidesOfOpaqueLayersAreLeftOut) {
    // From below the white ground shows where the underside is left out, since of opaque films only what
    // faces the eye is drawn; the underside is in the shade. A step of the underside makes it show as the
    // wall of a filled hole does.
    const struct {
        const char *what;
        f32 alpha, step;
        i32 least, most;  // red
    } cases[] = {
        {"level and opaque", 1.0F, 0.0F, 255, 255},
        {"with a step", 1.0F, 0.1F, 1, 130},
        {"level and translucent", 0.5F, 0.0F, 129, 190},  // half of white, and half of what is in the shade
    };
    for (const auto &c : cases) {
        const f32 color[4] = {0.8F, 0.2F, 0.2F, c.alpha};
        TestScene scene(41, 31, 4.0F);
        scene.forced_height = 427;  // 640 / 1.5
        Layer *mould = scene.add_layer(
            "MOULD", GREY, [&](f32 x, f32, f32) { return 0.1F + (x > 0.49F && x < 0.51F ? c.step : 0.0F); });
        scene.add_layer("FILM", color, [](f32, f32, f32) { return 0.6F; });
        layer_free(mould);
        scene.layers[0] = nullptr;
        render_from_below(&scene);
        const Color color_below = scene.pixel_at(1.97F, 1.5F, 0.1F + 0.7F * c.step);
        EXPECT_GE(color_below.red, c.least) << c.what;
        EXPECT_LE(color_below.red, c.most) << c.what;
    }
}
