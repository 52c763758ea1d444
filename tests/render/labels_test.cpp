// Where the texts of a picture stand and what they say, by their ink in the picture.
#include <algorithm>
#include <cstring>
#include <string>
#include "gl_test.h"
#include "render/font.h"
#include "render/text.h"
#include "sim/layer.h"

class LabelsTest : public GlTest {};

static const f32 GREY[4] = {0.6F, 0.6F, 0.6F, 1.0F};

// On Windows the system's own figure of a face stands, which follows the fonts that are installed.
#ifdef _WIN32
#define NEEDS_OWN_METRICS() GTEST_SKIP() << "the system tells how wide characters are"
#else
#define NEEDS_OWN_METRICS() static_cast<void>(0)
#endif

// The middle of the ink between two columns and rows of a picture, pixels from the left; -1 without ink.
static f32 ink_middle(const TestScene &scene, i32 x0, i32 y0, i32 x1, i32 y1) {
    i32 low = x1;
    i32 high = -1;
    for (i32 x = x0; x < x1; ++x) {
        if (scene.has_ink(x, y0, x + 1, y1)) {
            low = std::min(low, x);
            high = x;
        }
    }
    return high < 0 ? -1.0F : static_cast<f32>(low + high + 1) * 0.5F;
}

TEST_F(LabelsTest, FiguresStandCentredOverTheirDots) {
    NEEDS_OWN_METRICS();
    // Heights of 0.625 and 0.875 micrometres above the substrate read 6,250 and 8,750.
    for (const f32 height : {0.625F, 0.875F}) {
        TestScene scene(91, 91, 5.0F);
        scene.stack.camera_angle = 10;
        scene.stack.show_heights = 1;
        scene.add_flat_layer("SUBSTRATE", GREY, 0.25F);
        scene.add_flat_layer("FILM", GREY, height);
        scene.substrate.thickness = 0.25F;
        scene.render(1920);
        for (i32 line = 0; line < 10; ++line) {
            const f32 *dot = scene.line_vertices[static_cast<size_t>(line)].position;
            f32 x = 0.0F;
            f32 y = 0.0F;
            scene.window_position(dot[0], dot[1], dot[2], &x, &y);
            const i32 column = static_cast<i32>(x);
            const i32 row = static_cast<i32>(y);
            // The baseline lies half a cell of 24 above the dot, whose radius is 3.
            const f32 middle = ink_middle(scene, column - 60, row + 6, column + 60, row + 36);
            EXPECT_NEAR(x, middle, 2.0F) << "line " << line << " at " << height;
        }
    }
}

TEST_F(LabelsTest, LegendNamesKeepFifteenLetters) {
    NEEDS_OWN_METRICS();
    TestScene scene(20, 15, 5.0F);
    scene.stack.show_legend = 1;
    scene.add_flat_layer("FOURTEEN CHARS", GREY, 0.3F);
    scene.add_flat_layer("FIFTEEN LETTERS", GREY, 0.3F);
    scene.add_flat_layer("MORE LETTERS THAN THERE IS ROOM FOR", GREY, 0.3F);
    scene.render(800);

    TestScene by_hand(20, 15, 5.0F);
    by_hand.stack.show_legend = 1;
    for (i32 i = 0; i < 3; ++i) {
        by_hand.add_flat_layer("", GREY, 0.3F);
    }
    by_hand.render(800, [] {
        const Font font = font_get(30, 700);
        text_draw_window(77.0F, 2.0F, "FOURTEEN CHARS", &font);
        text_draw_window(77.0F, 38.0F, "FIFTEEN LETTERS...", &font);
        text_draw_window(77.0F, 74.0F, "MORE LETTERS TH...", &font);
    });
    EXPECT_TRUE(by_hand.pixels() == scene.pixels());
}

TEST_F(LabelsTest, HeightsCountFromTheSubstratesTopInTenThousandths) {
    // One height a line, above 0; the substrate is 0.25 thick. Fractions are cut off towards 0.
    const struct {
        f32 height;
        const char *text;
    } lines[10] = {
        {0.25F, "0"},     {0.25019F, "1"},  {0.24981F, "-1"},  {0.75F, "5,000"},   {0.375F, "1,250"},
        {0.0F, "-2,500"}, {1.5F, "12,500"}, {0.28125F, "312"}, {0.21875F, "-312"}, {0.5F, "2,500"},
    };
    auto add_steps = [&](TestScene *scene) {
        scene->stack.camera_angle = 10;
        scene->substrate.thickness = 0.25F;
        scene->add_layer("SUBSTRATE", GREY,
                         [&](f32 x, f32, f32) { return lines[static_cast<i32>(x * 9.0F + 0.5F)].height; });
    };
    TestScene scene(91, 91, 5.0F);
    add_steps(&scene);
    scene.stack.show_heights = 1;
    scene.render(1920);

    TestScene by_hand(91, 91, 5.0F);
    add_steps(&by_hand);
    by_hand.render(1920, [&] {
        const Font font = font_get(24, 900);
        for (i32 c = 0; c < 10; ++c) {
            const f32 letters = static_cast<f32>(std::strlen(lines[c].text));
            const f32 left = -(letters * static_cast<f32>(font.avg_char_width) * 0.5F);
            const Vector3 place = {static_cast<f32>(10 * c) * by_hand.stack.spacing, 0.0F, lines[c].height};
            text_draw_at(left, 12.0F, place, lines[c].text, &font, &by_hand.camera->transform);
        }
    });
    i32 wrong = 0;
    i32 dots = 0;
    for (i32 y = 0; y < scene.image->height; ++y) {
        for (i32 x = 0; x < scene.image->width; ++x) {
            const Color color = scene.pixel(x, y);
            dots += is_dot(color) ? 1 : 0;
            wrong += !is_dot(color) && brightness(color) != brightness(by_hand.pixel(x, y)) ? 1 : 0;
        }
    }
    EXPECT_EQ(wrong, 0) << "pixels of another text";
    EXPECT_GT(dots, 10 * 20);
}

// Whether a font was made before: its lists are older than new ones.
static bool font_is_there(u32 height, i32 weight) {
    const u32 next = glGenLists(1);
    return font_get(height, weight).list_base < next;
}

TEST_F(LabelsTest, EveryKindOfTextHasItsFont) {
    TestScene scene(40, 30, 5.0F);
    scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
    scene.render();
    EXPECT_TRUE(font_is_there(32, 700)) << "the scale label";
    EXPECT_FALSE(font_is_there(30, 700)) << "no legend";
    EXPECT_FALSE(font_is_there(24, 900)) << "no heights";
    font_cache_free();
    scene.stack.show_legend = 1;
    scene.render();
    EXPECT_TRUE(font_is_there(30, 700)) << "the legend";
    scene.stack.show_heights = 1;
    scene.render();
    EXPECT_TRUE(font_is_there(24, 900)) << "the heights";
}
