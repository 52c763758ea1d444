#include "render/picture_layout.h"

#include "gl_test.h"
#include "render/legend.h"

class PictureLayoutTest : public GlTest {};

static const f32 GREY[4] = {0.6F, 0.6F, 0.6F, 1.0F};

static PictureLayout layout_of(const TestScene &scene) {
    const Scene drawn = scene.as_scene();
    return picture_layout(&drawn, scene.image->height);
}

TEST(PictureStyle, LengthsGrowWithTheWidth) {
    PictureStyle style = PLAIN_STYLE;
    EXPECT_EQ(picture_pixels(&style, 36), 36);
    picture_style_set_width(&style, 3840);
    EXPECT_EQ(style.width, 3840);
    EXPECT_EQ(picture_pixels(&style, 36), 72);
    picture_style_set_width(&style, 800);
    EXPECT_EQ(picture_pixels(&style, 36), 15);
    EXPECT_EQ(picture_pixels(&style, 31), 13);  // 12.9
    picture_style_set_width(&style, 320);
    EXPECT_EQ(picture_pixels(&style, 1), 1);
    picture_style_set_width(&style, 1920);
    EXPECT_EQ(style.detail_scale, 1.0F);
}

TEST_F(PictureLayoutTest, TheSectionLiesInTheMiddleBesideTheLegend) {
    TestScene scene(20, 15, 5.0F);
    scene.stack.show_legend = 1;
    scene.add_flat_layer("SUBSTRATE", GREY, 0.5F);
    scene.render(1920);
    const PictureLayout plain = layout_of(scene);
    EXPECT_EQ(plain.legend_width, 320);
    EXPECT_EQ(plain.title_height, 0);
    EXPECT_EQ(plain.x, 320);
    EXPECT_EQ(plain.width, 1600);
    EXPECT_EQ(plain.height, static_cast<i32>(1600.0F / scene.camera->aspect));
    EXPECT_EQ(plain.y, (scene.image->height - plain.height) / 2);

    const i32 height = scene.image->height;
    scene.style.title = L"title";
    scene.render(1920);
    const PictureLayout titled = layout_of(scene);
    EXPECT_EQ(titled.title_height, 64);
    EXPECT_EQ(scene.image->height, height + 64);
    EXPECT_EQ(titled.y, plain.y) << "the title is added above";
}

TEST_F(PictureLayoutTest, APictureOfTwiceTheWidthIsTwiceAsLarge) {
    TestScene scene(20, 15, 5.0F);
    scene.stack.show_legend = 1;
    scene.add_flat_layer("SUBSTRATE", GREY, 0.5F);
    scene.render(1920);
    const i32 height = scene.image->height;
    picture_style_set_width(&scene.style, 3840);
    scene.render(3840);
    EXPECT_NEAR(scene.image->height, 2 * height, 1);
    const PictureLayout layout = layout_of(scene);
    EXPECT_EQ(layout.legend_width, 640);
    // The swatch of the only row: 144 x 72 pixels.
    EXPECT_FALSE(is_white(scene.pixel(0, 0)));
    EXPECT_FALSE(is_white(scene.pixel(143, 71)));
    EXPECT_TRUE(is_white(scene.pixel(145, 35)));
    EXPECT_TRUE(is_white(scene.pixel(70, 72)));
}

TEST_F(PictureLayoutTest, TheScaleIsThatOfTheCutFacesFoot) {
    TestScene scene(20, 15, 5.0F);
    scene.stack.camera_angle = 20;
    scene.add_flat_layer("SUBSTRATE", GREY, 1.0F);
    scene.render(1920);
    const Scene drawn = scene.as_scene();
    const PictureLayout layout = layout_of(scene);
    const PictureScale scale = picture_scale(&drawn, &layout);
    // The foot of the cut face reaches from corner to corner: count its pixels.
    i32 first = -1;
    i32 last = -1;
    for (i32 x = 0; x < scene.image->width; ++x) {
        if (!is_white(scene.pixel(x, layout.foot + 3))) {
            first = first < 0 ? x : first;
            last = x;
        }
    }
    // The last column of the 20 stands at 4.75.
    EXPECT_NEAR(scale.across, static_cast<f64>(last - first + 1) / 4.75, 1.0);
    i32 rise = 0;
    const i32 middle = (first + last) / 2;
    const Color face = scene.pixel(middle, layout.foot + 3);
    while (brightness(scene.pixel(middle, layout.foot + 1 + rise)) == brightness(face)) {
        ++rise;
    }
    EXPECT_NEAR(scale.upwards, static_cast<f64>(rise), 0.05 * rise);
}
