// Title, notes and ground of pictures, by what is seen of them.
#include "render/annotations.h"

#include <string>

#include "gl_test.h"
#include "render/picture_layout.h"
#include "render/picture_text.h"
#include "render/text.h"

class AnnotationsTest : public GlTest {};

static const f32 GREY[4] = {0.6F, 0.6F, 0.6F, 1.0F};
static const f32 GLASS[4] = {0.0F, 0.0F, 1.0F, 0.5F};

static i32 ink_count(const TestScene &scene, i32 x0, i32 y0, i32 x1, i32 y1) {
    i32 count = 0;
    for (i32 y = y0; y < y1; ++y) {
        for (i32 x = x0; x < x1; ++x) {
            count += brightness(scene.pixel(x, y)) == 0 && scene.stored_alpha(x, y) == 255 ? 1 : 0;
        }
    }
    return count;
}

TEST_F(AnnotationsTest, TheTitleStandsInTheMiddleOfItsBand) {
    for (const bool fine : {false, true}) {
        TestScene scene(20, 15, 5.0F);
        scene.style.fine = fine;
        scene.add_flat_layer("SUBSTRATE", GREY, 0.5F);
        scene.render(1920);
        const i32 height = scene.image->height;
        EXPECT_EQ(ink_count(scene, 0, height - 32, 1920, height), 0);
        scene.style.title = L"HOH HOH";
        scene.render(1920);
        ASSERT_EQ(scene.image->height, height + 64);
        EXPECT_GT(ink_count(scene, 0, height, 1920, height + 64), 300);
        i32 left = 0;
        while (left < 1920 && !scene.has_ink(left, height, left + 1, height + 64)) {
            ++left;
        }
        i32 right = 1919;
        while (right > 0 && !scene.has_ink(right, height, right + 1, height + 64)) {
            --right;
        }
        EXPECT_NEAR(left, 1919 - right, 6);
    }
}

TEST_F(AnnotationsTest, ALongTitleIsMadeToFit) {
    const std::wstring title = L"[" + std::wstring(400, L'M') + L"]";
    TestScene scene(20, 15, 5.0F);
    scene.style.title = title.c_str();
    scene.add_flat_layer("SUBSTRATE", GREY, 0.5F);
    scene.render(1920);
    const i32 height = scene.image->height;
    EXPECT_EQ(ink_count(scene, 0, height - 64, 10, height), 0);
    EXPECT_EQ(ink_count(scene, 1910, height - 64, 1920, height), 0);
    EXPECT_GT(ink_count(scene, 10, height - 64, 100, height), 50);
    EXPECT_GT(ink_count(scene, 1820, height - 64, 1910, height), 5);
}

TEST_F(AnnotationsTest, TheVerticalScaleIsToldUnlessItIsOne) {
    for (const bool fine : {false, true}) {
        TestScene scene(20, 15, 5.0F);
        scene.style.fine = fine;
        scene.add_flat_layer("SUBSTRATE", GREY, 0.5F);
        scene.render(1920);
        EXPECT_EQ(ink_count(scene, 0, 0, 110, 36), 0);
        scene.style.vertical_scale = 10.0F;
        scene.render(1920);
        EXPECT_GT(ink_count(scene, 0, 0, 110, 36), 60);
        const i32 width = picture_text_width(L"z x 10", 28);
        EXPECT_EQ(ink_count(scene, 14 + width + 3, 0, 14 + width + 60, 36), 0) << "nothing behind it";
    }
}

TEST_F(AnnotationsTest, FineHeightsHaveTheirUnitOnce) {
    TestScene scene(91, 91, 5.0F);
    scene.style.fine = true;
    scene.add_flat_layer("SUBSTRATE", GREY, 0.5F);
    scene.render(1920);
    EXPECT_EQ(ink_count(scene, 0, 0, 400, 30), 0);
    scene.stack.show_heights = 1;
    scene.render(1920);
    EXPECT_GT(ink_count(scene, 0, 0, 400, 30), 200);
    scene.style.fine = false;
    scene.render(1920);
    EXPECT_EQ(ink_count(scene, 0, 0, 400, 30), 0);
}

TEST_F(AnnotationsTest, AGroundOfAnotherColour) {
    TestScene scene(20, 15, 5.0F);
    scene.stack.show_legend = 1;
    const f32 blue[4] = {0.0F, 0.0F, 0.4F, 1.0F};
    std::copy(blue, blue + 4, scene.style.background);
    scene.add_flat_layer("SUBSTRATE", GREY, 0.5F);
    scene.render(1920);
    const Color ground = scene.pixel(1900, 10);
    EXPECT_EQ(ground.red, 0);
    EXPECT_EQ(ground.green, 0);
    EXPECT_EQ(ground.blue, 102);
    EXPECT_EQ(scene.stored_alpha(1900, 10), 255);
    // Black names on it can be read by their white edge.
    i32 white = 0;
    for (i32 x = 77; x < 300; ++x) {
        for (i32 y = 0; y < 36; ++y) {
            white += is_white(scene.pixel(x, y)) ? 1 : 0;
        }
    }
    EXPECT_GT(white, 200);
    EXPECT_FALSE(scene.image->transparent);
}

TEST_F(AnnotationsTest, ATransparentGround) {
    for (const bool fine : {false, true}) {
        TestScene scene(20, 15, 5.0F);
        scene.style.fine = fine;
        scene.style.background[3] = 0.0F;
        scene.stack.show_legend = 1;
        scene.add_layer("GLASS", GLASS, [](f32, f32, f32 below) { return below + 0.5F; });
        scene.render(1920);
        EXPECT_TRUE(scene.image->transparent);
        EXPECT_EQ(scene.stored_alpha(1900, 10), 0);
        // Half of the ground shows through the swatch, whose colour is whole.
        EXPECT_NEAR(scene.stored_alpha(30, 18), 128, 1);
        const Color swatch = scene.pixel(30, 18);
        EXPECT_EQ(swatch.red, 0);
        EXPECT_EQ(swatch.green, 0);
        EXPECT_NEAR(swatch.blue, 255, 1);
        // Letters are black where they are, their edges white, and what is between is grey, never a dark
        // fringe around the edge: there colours stay white.
        i32 black = 0;
        i32 fringe = 0;
        for (i32 y = 0; y < 36; ++y) {
            for (i32 x = 77; x < 300; ++x) {
                const i32 alpha = scene.stored_alpha(x, y);
                black += alpha == 255 && brightness(scene.pixel(x, y)) == 0 ? 1 : 0;
                fringe += alpha > 0 && alpha < 200 && brightness(scene.pixel(x, y)) < 720 ? 1 : 0;
            }
        }
        EXPECT_GT(black, 100);
        EXPECT_EQ(fringe, 0);
        // The next picture is drawn as always.
        GLint blending = 0;
        glGetIntegerv(GL_BLEND_SRC_ALPHA, &blending);
        EXPECT_EQ(blending, GL_SRC_ALPHA);
    }
}
