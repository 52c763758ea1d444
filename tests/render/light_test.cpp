// How surfaces are lit: by the colours that they show in a picture.
#include <algorithm>
#include <cmath>
#include "gl_test.h"
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
