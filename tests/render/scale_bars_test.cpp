#include "render/scale_bars.h"

#include <string>

#include "gl_test.h"
#include "tests/support/test_support.h"

TEST(ScaleBarLength, IsOneTwoOrFiveTimesAPowerOfTen) {
    const struct {
        f64 longest, length;
    } cases[] = {
        {1.0, 1.0},     {1.99, 1.0},    {2.0, 2.0},   {4.99, 2.0},       {5.0, 5.0},
        {9.99, 5.0},    {10.0, 10.0},   {25.0, 20.0}, {0.75, 0.5},       {0.19, 0.1},
        {0.0499, 0.02}, {0.001, 0.001}, {5000, 5000}, {0.00037, 0.0002},
    };
    for (const auto &c : cases) {
        EXPECT_NEAR(scale_bar_length(c.longest), c.length, c.length * 1e-9) << c.longest;
    }
    // A single-precision quarter of a round width is not to lose its length to a rounding.
    EXPECT_NEAR(scale_bar_length(static_cast<f64>(0.8F) * 0.25), 0.2, 1e-6);
}

TEST(ScaleBarFormat, NanometresBelowOneMicrometre) {
    const struct {
        f64 length;
        const char *text;
    } cases[] = {
        {0.5, "500 nm"}, {0.001, "1 nm"}, {0.0005, "0.5 nm"},
        {1.0, "1 um"},   {20.0, "20 um"}, {500.0, "500 um"},
    };
    for (const auto &c : cases) {
        wchar_t text[32];
        scale_bar_format(c.length, text);
        EXPECT_EQ(test_utf8(text), c.text);
    }
}

class ScaleBarsTest : public GlTest {};

static const f32 GREY[4] = {0.6F, 0.6F, 0.6F, 1.0F};

// The longest run of black pixels in a row or column, from its start on.
struct BlackRun {
    i32 first, length;
};

static BlackRun longest_run(const TestScene &scene, i32 x, i32 y, i32 dx, i32 dy) {
    BlackRun longest = {0, 0};
    i32 start = -1;
    for (i32 i = 0; x + i * dx < scene.image->width && y + i * dy < scene.image->height; ++i) {
        const bool black = brightness(scene.pixel(x + i * dx, y + i * dy)) == 0;
        start = black && start < 0 ? i : !black ? -1 : start;
        if (start >= 0 && i - start + 1 > longest.length) {
            longest = {start, i - start + 1};
        }
    }
    return longest;
}

TEST_F(ScaleBarsTest, AreAsLongAsTheySay) {
    // 5 micrometres across: a bar of 1. 2.5 of height: one of 1 as well, half of the height being 1.25.
    for (const f32 detail : {1.0F, 0.5F, 2.0F}) {
        TestScene scene(60, 15, 5.0F);
        scene.style.fine = true;
        scene.style.detail_scale = detail;
        scene.add_flat_layer("SUBSTRATE", GREY, 2.5F);
        const i32 width = static_cast<i32>(1920.0F * detail);
        scene.render(width);
        const Scene drawn = scene.as_scene();
        const PictureLayout layout = picture_layout(&drawn, scene.image->height);
        const PicturePoint corner = picture_point(&drawn, &layout, {0.0F, 0.0F, 0.0F});
        const PicturePoint across = picture_point(&drawn, &layout, {1.0F, 0.0F, 0.0F});
        const PicturePoint upper = picture_point(&drawn, &layout, {0.0F, 0.0F, 1.0F});
        BlackRun level = {0, 0};
        for (i32 y = 0; y < layout.foot; ++y) {
            const BlackRun run = longest_run(scene, 0, y, 1, 0);
            level = run.length > level.length ? run : level;
        }
        EXPECT_NEAR(level.first, corner.x, 1.0F);
        EXPECT_NEAR(level.length, across.x - corner.x, 1.5F);
        BlackRun upright = {0, 0};
        for (i32 x = 0; x < layout.front_left; ++x) {
            const BlackRun run = longest_run(scene, x, 0, 0, 1);
            upright = run.length > upright.length ? run : upright;
        }
        EXPECT_NEAR(upright.first, corner.y, 1.0F);
        // Perspective makes lengths grow a little with their height.
        EXPECT_NEAR(upright.length, upper.y - corner.y, 0.03F * (upper.y - corner.y) + 1.5F);
    }
}

TEST_F(ScaleBarsTest, PlainPicturesHaveNone) {
    TestScene scene(60, 15, 5.0F);
    scene.add_flat_layer("SUBSTRATE", GREY, 2.5F);
    scene.render(1920);
    const Scene drawn = scene.as_scene();
    const PictureLayout layout = picture_layout(&drawn, scene.image->height);
    EXPECT_FALSE(scene.has_ink(0, 0, layout.front_left + 200, scene.image->height));
}
