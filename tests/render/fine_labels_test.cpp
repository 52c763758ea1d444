// Height labels of fine pictures: rounded, with an edge, and only of what is seen.
#include <cmath>
#include <string>

#include "gl_test.h"
#include "render/labels.h"
#include "render/picture_text.h"

class FineLabelsTest : public GlTest {};

static const f32 GREY[4] = {0.4F, 0.4F, 0.4F, 1.0F};

TEST(HeightLabelRounded, ToTheNearest) {
    const struct {
        f32 height;
        i64 value;
    } cases[] = {
        {0.6F, 6000},   {0.59999996F, 6000}, {0.59996F, 6000}, {0.59994F, 5999},    {0.0F, 0},
        {-0.00004F, 0}, {-0.00006F, -1},     {-0.6F, -6000},   {12.34567F, 123457},
    };
    for (const auto &c : cases) {
        EXPECT_EQ(height_label_rounded(c.height), c.value) << c.height;
    }
}

// A wall across the section, behind which the ground lies low.
static void add_wall(TestScene *scene, bool hides) {
    scene->stack.show_heights = 1;
    scene->stack.camera_angle = 20;
    scene->add_layer("WALL", GREY,
                     [hides](f32, f32 y, f32) { return hides && y > 0.15F && y < 0.45F ? 2.0F : 0.25F; });
}

// Where the label of a line vertex stands: whether there is any ink of it.
static bool has_label(const TestScene &scene, size_t vertex) {
    const f32 *position = scene.line_vertices[vertex].position;
    f32 x = 0.0F;
    f32 y = 0.0F;
    scene.window_position(position[0], position[1], position[2], &x, &y);
    return scene.has_ink(static_cast<i32>(x) - 12, static_cast<i32>(y) + 13, static_cast<i32>(x) + 12,
                         static_cast<i32>(y) + 28);
}

TEST_F(FineLabelsTest, OfHiddenPointsAreLeftOut) {
    // The second point of each line stands on the wall, or hidden behind it.
    for (const bool fine : {false, true}) {
        TestScene scene(91, 91, 5.0F);
        scene.style.fine = fine;
        add_wall(&scene, true);
        scene.render(1920);
        ASSERT_GE(scene.stack.line_points, 10);
        i32 low_hidden = 0;
        i32 labels = 0;
        for (size_t i = 0; i < scene.line_vertices.size(); ++i) {
            const f32 *position = scene.line_vertices[i].position;
            const bool behind = position[1] > 0.46F * 5.0F && position[1] < 0.7F * 5.0F;
            if (behind && position[2] < 0.3F) {
                low_hidden += has_label(scene, i) ? 1 : 0;
                ++labels;
            }
        }
        ASSERT_GE(labels, 10);
        if (fine) {
            EXPECT_EQ(low_hidden, 0);
        } else {
            EXPECT_EQ(low_hidden, labels);
        }
    }
}

TEST_F(FineLabelsTest, OfAllSeenPointsAreThere) {
    TestScene scene(91, 91, 5.0F);
    scene.style.fine = true;
    add_wall(&scene, false);
    scene.render(1920);
    i32 missing = 0;
    for (size_t i = 0; i < scene.line_vertices.size(); ++i) {
        missing += has_label(scene, i) ? 0 : 1;
    }
    EXPECT_EQ(missing, 0) << "of " << scene.line_vertices.size();
}

TEST_F(FineLabelsTest, HaveAWhiteEdgeOnTheFilm) {
    // On a dark film white can come from the edge of the texts only.
    TestScene scene(91, 91, 5.0F);
    scene.style.fine = true;
    add_wall(&scene, false);
    scene.render(1920);
    const f32 *position = scene.line_vertices[35].position;  // far from the edges of the section
    f32 x = 0.0F;
    f32 y = 0.0F;
    scene.window_position(position[0], position[1], position[2], &x, &y);
    i32 white = 0;
    i32 black = 0;
    for (i32 n = static_cast<i32>(x) - 40; n < static_cast<i32>(x) + 40; ++n) {
        for (i32 m = static_cast<i32>(y) + 6; m < static_cast<i32>(y) + 40; ++m) {
            white += is_white(scene.pixel(n, m)) ? 1 : 0;
            black += brightness(scene.pixel(n, m)) == 0 ? 1 : 0;
        }
    }
    EXPECT_GT(black, 20);
    EXPECT_GT(white, 40);
}

TEST_F(FineLabelsTest, HeightsThatAreNoNumbersHarmNoOthers) {
    for (const bool fine : {false, true}) {
        TestScene scene(91, 91, 5.0F);
        scene.style.fine = fine;
        scene.style.background[0] = 0.9F;  // so that the texts of a plain picture are of the same kind
        scene.stack.show_heights = 1;
        scene.stack.camera_angle = 10;
        scene.add_layer("FILM", GREY, [](f32 x, f32, f32) { return x < 0.05F ? NAN : 0.25F; });
        scene.render(1920);
        EXPECT_TRUE(has_label(scene, 5));
        EXPECT_TRUE(has_label(scene, 9));
    }
}
