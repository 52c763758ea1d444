// Pictures are checked by what must be seen in them; their exact bytes belong to the graphics driver.
#include "render/scene.h"

#include <cmath>
#include "gl_test.h"
#include "render/font.h"
#include "render/text.h"
#include "sim/layer.h"
#include "tests/support/test_support.h"

class SceneTest : public GlTest {};

static const f32 GREY[4] = {0.6F, 0.6F, 0.6F, 1.0F};
static const f32 RED[4] = {0.8F, 0.2F, 0.2F, 1.0F};
static const f32 GREEN[4] = {0.2F, 0.8F, 0.2F, 1.0F};

static void expect_near_color(const f32 (&expected)[4], Color color, i32 tolerance, const char *what) {
    EXPECT_NEAR(expected[0] * 255.0F, color.red, tolerance) << what;
    EXPECT_NEAR(expected[1] * 255.0F, color.green, tolerance) << what;
    EXPECT_NEAR(expected[2] * 255.0F, color.blue, tolerance) << what;
}

TEST_F(SceneTest, StandsOnAWhiteBackground) {
    TestScene scene(40, 30, 5.0F);
    scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
    scene.render();
    const i32 right = scene.image->width - 1;
    const i32 top = scene.image->height - 1;
    EXPECT_TRUE(is_white(scene.pixel(0, 0)));
    EXPECT_TRUE(is_white(scene.pixel(0, top)));
    EXPECT_TRUE(is_white(scene.pixel(right, top)));
    EXPECT_TRUE(is_white(scene.pixel(right / 2, top)));
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(SceneTest, AFlatLayerShowsItsOwnColorAndADarkerCutFace) {
    TestScene scene(40, 30, 5.0F);
    scene.add_flat_layer("SUBSTRATE", RED, 0.5F);
    for (const i32 angle : {5, 30, 60}) {
        scene.stack.camera_angle = angle;
        scene.render();
        const f32 depth = scene.stack.depth;
        for (const f32 y : {0.1F, 0.5F, 0.9F}) {
            for (const f32 x : {0.5F, 2.5F, 4.5F}) {
                expect_near_color(RED, scene.pixel_at(x, y * depth, 0.5F), 16, "top");
            }
        }
        const Color top = scene.pixel_at(2.5F, 0.5F * depth, 0.5F);
        const Color face = scene.pixel_at(2.5F, 0.0F, 0.25F);
        EXPECT_LT(brightness(face), brightness(top) - 30) << "the cut face stands apart at " << angle;
        EXPECT_GT(brightness(face), brightness(top) / 2) << "the cut face is lit at " << angle;
        EXPECT_GT(face.red, 2 * face.green) << "the cut face keeps the layer's colour at " << angle;
    }
}

TEST_F(SceneTest, SlopesShowByLightAndShade) {
    // A pyramid on a plain: its four sides rise at 45 degrees.
    TestScene scene(101, 101, 4.0F);
    scene.stack.camera_angle = 60;
    scene.add_layer("SUBSTRATE", GREY, [](f32 x, f32 y, f32) {
        const f32 from_middle = std::fmax(std::fabs(x - 0.5F), std::fabs(y - 0.5F)) * 4.0F;
        return 0.2F + std::fmax(0.0F, 1.0F - from_middle);
    });
    scene.render();
    const i32 flat = brightness(scene.pixel_at(2.0F, 0.4F, 0.2F));
    const i32 front = brightness(scene.pixel_at(2.0F, 1.5F, 0.7F));
    const i32 left = brightness(scene.pixel_at(1.5F, 2.0F, 0.7F));
    const i32 right = brightness(scene.pixel_at(2.5F, 2.0F, 0.7F));
    const i32 back = brightness(scene.pixel_at(2.0F, 2.5F, 0.7F));
    EXPECT_GT(front, flat + 15) << "the side that faces the light";
    EXPECT_LT(left, flat - 15);
    EXPECT_LT(right, left - 15) << "right and left sides differ";
    EXPECT_LT(back, flat - 60) << "the side that faces away";
    EXPECT_GT(back, 0) << "shade is not black";
}

TEST_F(SceneTest, AFilledHoleStandsAsAPillarWhenItsMouldIsGone) {
    // The pillar's walls are part of the metal's bottom surface: it was poured into a hole of the mould.
    TestScene scene(81, 81, 4.0F);
    scene.add_flat_layer("SUBSTRATE", GREY, 0.2F);
    auto from_middle = [](f32 x, f32 y) { return std::fmax(std::fabs(x - 0.5F), std::fabs(y - 0.5F)); };
    Layer *mould = scene.add_layer(
        "MOULD", GREEN, [&](f32 x, f32 y, f32 below) { return from_middle(x, y) < 0.1F ? below : 1.2F; });
    scene.add_layer("METAL", RED,
                    [&](f32 x, f32 y, f32 below) { return from_middle(x, y) < 0.15F ? 1.4F : below; });
    layer_free(mould);
    scene.layers[1] = nullptr;
    scene.render();
    // The front wall lies between the rows at 1.6 and 1.65.
    for (const f32 z : {0.4F, 0.6F, 0.8F}) {
        const Color wall = scene.pixel_at(2.0F, 1.625F, z);
        EXPECT_GT(wall.red, 2 * wall.green) << "the wall at a height of " << z;
    }
    EXPECT_GT(brightness(scene.pixel_at(2.0F, 1.625F, 0.6F)), 150) << "the wall faces the light";
}

TEST_F(SceneTest, CoincidingFacesDoNotFlicker) {
    // A red film lies on the left half of a green plain and nowhere else.
    TestScene scene(64, 48, 5.0F);
    scene.add_flat_layer("SUBSTRATE", GREEN, 0.4F);
    scene.add_layer("FILM", RED, [](f32 x, f32, f32 below) { return x < 0.5F ? below + 0.05F : below; });
    for (const i32 angle : {1, 10, 20, 29, 30, 31, 45, 60, 80}) {
        scene.stack.camera_angle = angle;
        scene.render();
        i32 wrong = 0;
        for (i32 step = 1; step < 200; ++step) {
            const f32 y = scene.stack.depth * static_cast<f32>(step) / 210.0F;
            for (i32 column = 1; column < 20; ++column) {
                const f32 x = 5.0F * static_cast<f32>(column) / 42.0F;
                const Color film = scene.pixel_at(x, y, 0.45F);
                const Color plain = scene.pixel_at(5.0F - x - 0.2F, y, 0.4F);
                wrong += film.red > film.green && plain.green > plain.red ? 0 : 1;
            }
        }
        EXPECT_EQ(wrong, 0) << "pixels of the wrong layer at " << angle << " degrees";
    }
}

TEST_F(SceneTest, TranslucentLayersLetTheOnesBelowShine) {
    const f32 glass[4] = {0.2F, 0.2F, 0.8F, 0.5F};
    TestScene scene(40, 30, 5.0F);
    scene.add_flat_layer("SUBSTRATE", RED, 0.4F);
    scene.add_flat_layer("GLASS", glass, 0.1F);
    scene.render();
    const f32 both[4] = {0.5F, 0.2F, 0.5F, 1.0F};  // half of either
    expect_near_color(both, scene.pixel_at(2.5F, 2.0F, 0.5F), 20, "glass over red");
}

TEST_F(SceneTest, TheLegendHasARowForEachLayer) {
    TestScene scene(40, 30, 5.0F);
    scene.stack.show_legend = 1;
    scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
    scene.add_flat_layer("REMOVED", RED, 0.1F);
    scene.add_flat_layer("OXIDE", GREEN, 0.1F);
    layer_free(scene.layers[1]);
    scene.layers[1] = nullptr;
    scene.render(1000);
    expect_near_color(GREY, scene.pixel(0, 0), 1, "row 0, first pixel");
    expect_near_color(GREY, scene.pixel(71, 35), 1, "row 0, last pixel");
    expect_near_color(GREEN, scene.pixel(0, 36), 1, "row 1, first pixel");
    expect_near_color(GREEN, scene.pixel(71, 71), 1, "row 1, last pixel");
    EXPECT_TRUE(is_white(scene.pixel(72, 0))) << "right of a swatch";
    EXPECT_TRUE(is_white(scene.pixel(0, 72))) << "above the last row";
    EXPECT_TRUE(scene.has_ink(77, 0, 320, 36)) << "name of row 0";
    EXPECT_TRUE(scene.has_ink(77, 36, 320, 72)) << "name of row 1";
    EXPECT_FALSE(scene.has_ink(0, 0, 76, scene.image->height)) << "no text left of the names";
    EXPECT_FALSE(scene.has_ink(0, 74, 320, scene.image->height)) << "no further row";
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(SceneTest, TheSectionKeepsClearOfTheLegend) {
    TestScene scene(40, 30, 5.0F);
    scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
    scene.render(1000);
    const Color left_edge = scene.pixel_at(0.5F, 0.5F, 0.3F);
    expect_near_color(GREY, left_edge, 16, "without a legend");
    scene.stack.show_legend = 1;
    scene.render(1000);
    expect_near_color(GREY, scene.pixel_at(0.5F, 0.5F, 0.3F), 16, "beside the legend");
    for (i32 y = 40; y < scene.image->height; y += 3) {
        EXPECT_TRUE(is_white(scene.pixel(200, y))) << "row " << y;
    }
}

TEST_F(SceneTest, LegendRowsShrinkToFitThePicture) {
    TestScene scene(20, 15, 5.0F);
    scene.stack.show_legend = 1;
    for (i32 i = 0; i < 10; ++i) {
        const f32 color[4] = {0.1F * static_cast<f32>(i), 0.5F, 0.5F, 1.0F};
        scene.add_flat_layer("L", color, 0.02F);
    }
    scene.forced_height = 180;  // rows of 18 rather than 36 pixels
    scene.render(800);
    for (i32 i = 0; i < 10; ++i) {
        EXPECT_NEAR(25.5 * i, scene.pixel(30, 18 * i + 1).red, 1.0) << "row " << i;
        EXPECT_NEAR(25.5 * i, scene.pixel(30, 18 * i + 16).red, 1.0) << "row " << i;
    }
}

TEST_F(SceneTest, ALongLegendNameIsCut) {
    TestScene scene(20, 15, 5.0F);
    scene.stack.show_legend = 1;
    scene.add_flat_layer("A NAME THAT IS FAR TOO LONG FOR THE LEGEND", GREY, 0.3F);
    scene.render(800);
    const std::string cut = scene.pixels();
    const Font font = font_get(30, 700);
    ASSERT_GT(font.avg_char_width, 0);
    const size_t limit = static_cast<size_t>(243 / font.avg_char_width);
    const std::string shown =
        std::string("A NAME THAT IS FAR TOO LONG FOR THE LEGEND").substr(0, limit - 3) + "...";

    TestScene again(20, 15, 5.0F);
    again.stack.show_legend = 1;
    again.add_flat_layer("", GREY, 0.3F);
    again.render(800, [&] { text_draw_window(77.0F, 2.0F, shown.c_str(), &font); });
    EXPECT_TRUE(cut == again.pixels()) << "expected the name to read " << shown;
}

TEST_F(SceneTest, TheScaleLabelStandsUnderTheRightFrontCorner) {
    TestScene scene(40, 30, 5.0F);
    scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
    scene.render(1000);
    f32 x = 0.0F;
    f32 y = 0.0F;
    scene.window_position(5.0F, 0.0F, 0.0F, &x, &y);
    const i32 corner_x = static_cast<i32>(x);
    const i32 corner_y = static_cast<i32>(y);
    const Font font = font_get(32, 700);
    const i32 half = 7 * font.avg_char_width / 2;  // "5.00 um"
    EXPECT_TRUE(scene.has_ink(corner_x - half, corner_y - 34, corner_x, corner_y - 2));
    EXPECT_FALSE(scene.has_ink(0, 0, corner_x - half - 2, scene.image->height)) << "no other text";
    EXPECT_FALSE(scene.has_ink(0, corner_y, scene.image->width, scene.image->height)) << "no text above it";
}

// How many pixels differ near a point of the section between two pictures of the same size.
static i32 differences_near(const TestScene &scene, const std::string &before, f32 x, f32 y, f32 z) {
    f32 window_x = 0.0F;
    f32 window_y = 0.0F;
    scene.window_position(x, y, z, &window_x, &window_y);
    i32 count = 0;
    for (i32 dy = -8; dy <= 34; ++dy) {
        for (i32 dx = -8; dx <= 8; ++dx) {
            const i32 px = static_cast<i32>(window_x) + dx;
            const i32 py = static_cast<i32>(window_y) + dy;
            if (px >= 0 && py >= 0 && px < scene.image->width && py < scene.image->height) {
                const i64 at = (static_cast<i64>(py) * scene.image->width + px) * 4;
                const bool same =
                    before.compare(static_cast<size_t>(at), 4,
                                   reinterpret_cast<const char *>(scene.image->pixels + at), 4) == 0;
                count += same ? 0 : 1;
            }
        }
    }
    return count;
}

TEST_F(SceneTest, HeightsAreWrittenAtTheLinePoints) {
    TestScene scene(91, 91, 5.0F);
    scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
    scene.substrate.thickness = 0.3F;
    const f32 z = 0.3F;
    const struct {
        i32 angle;
        bool everywhere;
    } cases[] = {{14, false}, {15, true}, {45, true}};
    for (const auto &c : cases) {
        scene.stack.camera_angle = c.angle;
        scene.stack.show_heights = 0;
        scene.render(1920);
        const std::string before = scene.pixels();
        scene.stack.show_heights = 1;
        scene.render(1920);
        for (i32 line = 0; line < 10; ++line) {
            const LineVertex &front = scene.line_vertices[static_cast<size_t>(line)];
            EXPECT_GT(differences_near(scene, before, front.position[0], front.position[1], z), 40)
                << "line " << line << " at " << c.angle << " degrees";
            const LineVertex &back = scene.line_vertices[70 + static_cast<size_t>(line)];
            const i32 drawn = differences_near(scene, before, back.position[0], back.position[1], z);
            EXPECT_EQ(drawn > 40, c.everywhere) << "line " << line << " at " << c.angle << " degrees";
        }
    }
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(SceneTest, PointsLieOnTheSurfaceWhole) {
    TestScene scene(91, 91, 5.0F);
    scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
    scene.stack.show_heights = 1;
    scene.render(1920);
    const LineVertex &point = scene.line_vertices[54];
    const f32 *p = point.position;
    // Dark in the middle and above and below it, not at the corners of its square.
    for (const f32 dy : {-2.0F, 0.0F, 2.0F}) {
        EXPECT_LT(brightness(scene.pixel_at(p[0], p[1], p[2], 0.0F, dy)), 60) << "at " << dy;
    }
    EXPECT_GT(brightness(scene.pixel_at(p[0], p[1], p[2], 3.5F, -3.5F)), 200);
}

TEST_F(SceneTest, HeightsOfASectionWithoutLinePointsAreLeftOut) {
    TestScene scene(40, 30, 5.0F);
    scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
    scene.stack.show_heights = 1;
    scene.stack.line_points = 0;
    scene.stack.camera_angle = 5;
    scene.render();
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(SceneTest, AStackWithoutLayersGivesAnEmptyPicture) {
    TestScene scene(40, 30, 5.0F);
    scene.stack.show_legend = 1;
    scene.stack.show_heights = 1;
    scene.render();
    EXPECT_TRUE(is_white(scene.pixel(100, scene.image->height - 1)));
}

// Eye, front edge and back edge in one plane: there is no picture of that, but no end of the program.
TEST_F(SceneTest, ASectionWithoutAHeightSeenFromTheSideIsNotDrawn) {
    TestScene scene(40, 30, 5.0F);
    scene.stack.camera_angle = 0;
    scene.stack.show_legend = 1;
    scene.add_flat_layer("NOTHING", GREY, 0.0F);
    scene.render();
    EXPECT_GE(scene.image->height, 1);
    EXPECT_TRUE(is_white(scene.pixel(500, scene.image->height - 1)));
}

TEST_F(SceneTest, UnusableProgramsDoNotStopTheRun) {
    const ConsoleCapture capture;
    TestScene scene(40, 30, 5.0F);
    scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
    scene.stack.show_heights = 1;
    scene.surface_program.reset(shader_program_load(L"missing.shader"));
    scene.point_program.reset(shader_program_load(L"missing.shader"));
    scene.render();
    EXPECT_TRUE(is_white(scene.pixel(0, scene.image->height - 1)));
}

TEST_F(SceneTest, FontsAreMadeOnceForEachHeightAndWeight) {
    const Font first = font_get(24, 900);
    const Font again = font_get(24, 900);
    const Font other = font_get(24, 700);
    EXPECT_EQ(first.list_base, again.list_base);
    EXPECT_NE(first.list_base, other.list_base);
    EXPECT_EQ(first.height, 24);
    EXPECT_EQ(first.weight, 900);
    EXPECT_EQ(first.face->text, std::wstring(L"Arial"));
    EXPECT_GT(first.avg_char_width, 4);
    EXPECT_LT(first.avg_char_width, 24);
}
