// The dots of the height labels: which of their pixels are seen.
#include <cmath>
#include "gl_test.h"
#include "sim/layer.h"

class DotsTest : public GlTest {};

static const f32 GREY[4] = {0.6F, 0.6F, 0.6F, 1.0F};

struct DotPixels {
    i32 inside;  // pixels well inside the disc
    i32 dots;    // those of them that show the dot
    i32 texts;   // those of them that a text lies over
};

// The disc of a line vertex: a radius of 3 pixels around its place in the picture.
static DotPixels dot_pixels(const TestScene &scene, const LineVertex &vertex) {
    f32 x = 0.0F;
    f32 y = 0.0F;
    scene.window_position(vertex.position[0], vertex.position[1], vertex.position[2], &x, &y);
    DotPixels pixels = {0, 0, 0};
    for (i32 row = static_cast<i32>(y) - 4; row <= static_cast<i32>(y) + 4; ++row) {
        for (i32 column = static_cast<i32>(x) - 4; column <= static_cast<i32>(x) + 4; ++column) {
            const f32 from_middle =
                std::hypot(static_cast<f32>(column) + 0.5F - x, static_cast<f32>(row) + 0.5F - y);
            if (from_middle < 2.8F) {
                ++pixels.inside;
                pixels.dots += is_dot(scene.pixel(column, row)) ? 1 : 0;
                pixels.texts += brightness(scene.pixel(column, row)) == 0 ? 1 : 0;
            }
        }
    }
    return pixels;
}

static bool is_whole(const DotPixels &pixels) {
    return pixels.inside > 20 && pixels.dots > 10 && pixels.dots + pixels.texts == pixels.inside;
}

static i32 dots_cut(const TestScene &scene) {
    i32 cut = 0;
    for (const LineVertex &vertex : scene.line_vertices) {
        cut += is_whole(dot_pixels(scene, vertex)) ? 0 : 1;
    }
    return cut;
}

// A section 5 micrometres wide and grid_m rows of a ninetieth of that deep, with dots ten rows apart.
static void expect_whole_dots(i32 grid_m, const char *what, i32 least_angle, const TopFunction &top) {
    TestScene scene(91, grid_m, 5.0F);
    scene.stack.show_heights = 1;
    scene.add_layer("SUBSTRATE", GREY, top);
    for (const i32 angle : {15, 30, 60, 85}) {
        for (i32 legend = 0; legend < 2 && angle >= least_angle; ++legend) {
            scene.stack.camera_angle = angle;
            scene.stack.show_legend = legend;
            scene.render(1920);
            EXPECT_EQ(dots_cut(scene), 0) << "of " << scene.line_vertices.size() << " dots " << what << " at "
                                          << angle << " degrees, legend " << legend;
        }
    }
}

TEST_F(DotsTest, AreWholeOnLevelGround) {
    for (const i32 grid_m : {12, 23, 46, 91}) {
        expect_whole_dots(grid_m, "on level ground", 15, [](f32, f32, f32) { return 0.3F; });
    }
}

TEST_F(DotsTest, AreWholeAtTheFootOfATallSection) {
    // All but a post at the right back edge is low, so that the eye is high above the dots.
    expect_whole_dots(46, "beside a post", 15,
                      [](f32 x, f32 y, f32) { return x > 0.95F && x < 0.99F && y > 0.99F ? 2.0F : 0.3F; });
}

TEST_F(DotsTest, AreWholeOnSlopes) {
    // Over the depth of 2.5 falling to the back by 12 degrees, and rising by 20.
    expect_whole_dots(46, "on a slope to the back", 30, [](f32, f32 y, f32) { return 0.8F - 0.53F * y; });
    expect_whole_dots(46, "on a slope to the front", 15, [](f32, f32 y, f32) { return 0.3F + 0.91F * y; });
}

TEST_F(DotsTest, AreHiddenBehindAWall) {
    // Dots lie at the rows 0, 10, 20 and 30; a wall stands at row 18.
    TestScene scene(91, 46, 5.0F);
    scene.stack.show_heights = 1;
    scene.add_layer("SUBSTRATE", GREY, [](f32, f32 y, f32) {
        const f32 row = y * 45.0F;
        return row > 17.5F && row < 18.5F ? 0.8F : 0.3F;
    });
    for (const i32 angle : {15, 30}) {
        for (const i32 legend : {0, 1}) {
            scene.stack.camera_angle = angle;
            scene.stack.show_legend = legend;
            scene.render(1920);
            for (size_t line = 0; line < 10; ++line) {
                const DotPixels before = dot_pixels(scene, scene.line_vertices[10 + line]);
                const DotPixels behind = dot_pixels(scene, scene.line_vertices[20 + line]);
                EXPECT_TRUE(is_whole(before)) << "before the wall, line " << line << " at " << angle;
                EXPECT_EQ(behind.dots, 0) << "behind the wall, line " << line << " at " << angle;
            }
        }
    }
}
