#include "render/fine_legend.h"

#include <string>

#include "gl_test.h"
#include "render/legend.h"
#include "render/picture_text.h"
#include "sim/layer.h"
#include "tests/support/test_support.h"

TEST(ThicknessFormat, TenthsOfNanometresAndThousandthsOfMicrometres) {
    const struct {
        f32 thickness;
        const char *text;
    } cases[] = {
        {0.6F, "600 nm"}, {0.00123F, "1.2 nm"}, {0.0001F, "0.1 nm"},     {0.00004F, "<0.1 nm"},
        {0.0F, "-"},      {-0.5F, "-500 nm"},   {0.99994F, "999.9 nm"},  {0.99996F, "1 um"},
        {1.0F, "1 um"},   {1.25F, "1.25 um"},   {12.3456F, "12.346 um"}, {0.0105F, "10.5 nm"},
    };
    for (const auto &c : cases) {
        wchar_t text[32];
        thickness_format(c.thickness, text);
        EXPECT_EQ(test_utf8(text), c.text) << c.thickness;
    }
}

class FineLegendTest : public GlTest {};

static const f32 GREY[4] = {0.6F, 0.6F, 0.6F, 1.0F};
static const f32 PALE[4] = {0.98F, 0.98F, 0.99F, 1.0F};
static const f32 CLEAR[4] = {0.2F, 0.4F, 0.9F, 0.0F};

static void make_fine(TestScene *scene) {
    scene->style.fine = true;
    scene->stack.show_legend = 1;
    scene->stack.camera_angle = 10;
}

TEST_F(FineLegendTest, IsAsWideAsItsLongestNameNeeds) {
    const char *names[] = {"A", "SILICON NITRIDE OF THE LAST STEP"};
    i32 widths[2] = {0, 0};
    for (i32 i = 0; i < 2; ++i) {
        TestScene scene(20, 15, 5.0F);
        make_fine(&scene);
        scene.add_flat_layer(names[i], GREY, 0.5F);
        scene.render(1920);
        const Scene drawn = scene.as_scene();
        widths[i] = legend_width(&drawn);
    }
    const i32 more =
        picture_text_width(L"SILICON NITRIDE OF THE LAST STEP", 30) - picture_text_width(L"A", 30);
    EXPECT_EQ(widths[1] - widths[0], more);
    // Beyond two fifths of the picture names are cut.
    TestScene scene(20, 15, 5.0F);
    make_fine(&scene);
    scene.add_flat_layer(std::string(200, 'W').c_str(), GREY, 0.5F);
    scene.render(1920);
    const Scene drawn = scene.as_scene();
    EXPECT_EQ(legend_width(&drawn), 768);
    EXPECT_TRUE(scene.has_ink(600, 0, 768, 36)) << "the thickness behind the cut name";
}

TEST_F(FineLegendTest, PaleAndClearSwatchesHaveAnOutline) {
    for (const auto &color : {PALE, CLEAR}) {
        TestScene scene(20, 15, 5.0F);
        make_fine(&scene);
        scene.add_layer("FILM", {color[0], color[1], color[2], color[3]},
                        [](f32, f32, f32 below) { return below + 0.5F; });
        scene.render(1920);
        // From x = 6 to 68 and from y = 4 to 32; its lines are two pixels wide.
        const auto is_line = [&](i32 x, i32 y) { return brightness(scene.pixel(x, y)) < 300; };
        for (i32 x = 6; x < 68; ++x) {
            EXPECT_TRUE(is_line(x, 4) && is_line(x, 5) && is_line(x, 30) && is_line(x, 31)) << x;
        }
        for (i32 y = 4; y < 32; ++y) {
            EXPECT_TRUE(is_line(6, y) && is_line(7, y) && is_line(66, y) && is_line(67, y)) << y;
        }
        EXPECT_FALSE(is_line(5, 18));
        EXPECT_FALSE(is_line(68, 18));
        EXPECT_FALSE(is_line(37, 3));
        EXPECT_FALSE(is_line(37, 32));
        // Inside is the film's colour; of one that is clear the ground.
        EXPECT_GT(brightness(scene.pixel(37, 18)), 730);
    }
}

TEST_F(FineLegendTest, NamesInOtherLettersAreWhole) {
    // As bytes "Ö" would be two characters of Latin-1; it is one letter, as wide as the O.
    TestScene scene(20, 15, 5.0F);
    make_fine(&scene);
    scene.add_flat_layer("\xC3\x96\xC3\x96\xC3\x96\xC3\x96", GREY, 0.5F);
    scene.render(1920);
    TestScene plain(20, 15, 5.0F);
    make_fine(&plain);
    plain.add_flat_layer("OOOO", GREY, 0.5F);
    plain.render(1920);
    const Scene drawn = scene.as_scene();
    const Scene drawn_plain = plain.as_scene();
    EXPECT_NEAR(legend_width(&drawn), legend_width(&drawn_plain), 4);
    i32 dots = 0;
    i32 capitals = 0;
    for (i32 x = 78; x < 180; ++x) {
        dots += scene.has_ink(x, 0, x + 1, 36) ? 1 : 0;
        capitals += plain.has_ink(x, 0, x + 1, 36) ? 1 : 0;
    }
    EXPECT_NEAR(dots, capitals, 4);
    // The dots lie above what a capital takes.
    const auto highest = [](const TestScene &of) {
        i32 y = 35;
        while (y > 0 && !of.has_ink(80, y, 180, y + 1)) {
            --y;
        }
        return y;
    };
    EXPECT_GT(highest(scene), highest(plain) + 2);
}

TEST_F(FineLegendTest, TheThicknessIsThatAtTheMiddleOfTheCut) {
    // 0.5 everywhere but for the right half of the first row, which begins at the middle: 0.25.
    TestScene scene(20, 15, 5.0F);
    make_fine(&scene);
    scene.add_layer("", GREY,
                    [](f32 x, f32 y, f32 below) { return below + (x > 0.5F && y == 0.0F ? 0.25F : 0.5F); });
    scene.render(1920);
    const Scene drawn = scene.as_scene();
    const i32 width = legend_width(&drawn);

    TestScene by_hand(20, 15, 5.0F);
    make_fine(&by_hand);
    by_hand.add_flat_layer("", GREY, 0.25F);
    by_hand.render(1920);
    const Scene drawn_by_hand = by_hand.as_scene();
    ASSERT_EQ(legend_width(&drawn_by_hand), width);
    i32 ink = 0;
    for (i32 y = 0; y < 36; ++y) {
        for (i32 x = 0; x < width; ++x) {
            ink += brightness(scene.pixel(x, y)) < 100 ? 1 : 0;
            EXPECT_EQ(brightness(scene.pixel(x, y)), brightness(by_hand.pixel(x, y))) << x << ", " << y;
        }
    }
    EXPECT_GT(ink, 100) << "250 nm";
}
