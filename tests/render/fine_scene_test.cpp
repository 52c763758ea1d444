// Fine pictures, by what must be seen in them.
#include "render/fine_scene.h"

#include <algorithm>
#include <cmath>
#include "gl_test.h"
#include "render/multisample.h"
#include "render/offscreen.h"
#include "render/picture_layout.h"
#include "sim/layer.h"
#include "tests/support/test_support.h"

class FineSceneTest : public GlTest {};

static const f32 GREY[4] = {0.6F, 0.6F, 0.6F, 1.0F};
static const f32 RED[4] = {0.8F, 0.0F, 0.0F, 1.0F};
static const f32 GREEN[4] = {0.0F, 0.8F, 0.0F, 1.0F};
static const f32 BLUE[4] = {0.0F, 0.0F, 0.8F, 1.0F};

static bool is_mostly_red(Color color) {
    return color.red > 2 * color.green && color.red > 2 * color.blue;
}

// How many pixels of two pictures differ by more than `most` in one of their parts.
static i64 count_differences(const std::string &a, const std::string &b, i32 most) {
    EXPECT_EQ(a.size(), b.size());
    i64 count = 0;
    for (size_t i = 0; i + 3 < a.size() && i + 3 < b.size(); i += 4) {
        bool differs = false;
        for (size_t part = i; part < i + 3; ++part) {
            differs = differs || std::abs(static_cast<u8>(a[part]) - static_cast<u8>(b[part])) > most;
        }
        count += differs ? 1 : 0;
    }
    return count;
}

// The part of a picture between the lower corners of the cut face, from its foot up: without what is written
// beside and below.
struct SectionPart {
    i32 left, right, foot, top;  // pixels
};

static SectionPart section_part(const TestScene &scene) {
    const Scene parts = {&scene.stack, scene.camera.get(), nullptr, nullptr, &scene.style};
    const PictureLayout layout = picture_layout(&parts, scene.image->height);
    return {layout.front_left + 1, layout.front_right - 1, layout.foot + 1, layout.y + layout.height};
}

// The bytes of that part, a row after the other.
static std::string section_pixels(const TestScene &scene) {
    const SectionPart part = section_part(scene);
    const std::string pixels = scene.pixels();
    std::string cut;
    for (i32 y = part.foot; y < part.top; ++y) {
        const size_t row = static_cast<size_t>(y) * static_cast<size_t>(scene.image->width);
        const size_t start = (row + static_cast<size_t>(part.left)) * 4;
        cut += pixels.substr(start, static_cast<size_t>(part.right - part.left) * 4);
    }
    return cut;
}

TEST_F(FineSceneTest, ATallStackKeepsItsFoot) {
    // Twice as high as wide, a quarter as deep.
    TestScene scene(40, 10, 2.0F);
    scene.style.fine = true;
    scene.add_flat_layer("SUBSTRATE", RED, 0.5F);
    scene.add_flat_layer("THICK", GREY, 3.5F);
    for (const i32 angle : {0, 30, 60, 89}) {
        scene.stack.camera_angle = angle;
        scene.render(300);
        if (angle < 89) {
            EXPECT_TRUE(is_mostly_red(scene.pixel_at(1.0F, 0.0F, 0.05F))) << "foot at " << angle;
            EXPECT_TRUE(is_mostly_red(scene.pixel_at(1.0F, 0.0F, 0.4F))) << "substrate at " << angle;
        }
        const f32 back = scene.stack.depth - 2.5F * scene.stack.spacing;
        EXPECT_FALSE(angle > 0 && is_white(scene.pixel_at(1.0F, back, 4.0F))) << "back at " << angle;
    }
}

TEST_F(FineSceneTest, FilmsThinnerThanAPixelShowAlike) {
    // Black films of 2 nm between oxides of 100 nm, in a section of 7 um drawn 1,600 pixels wide: a pixel is
    // 4.4 nm, a film less than half of it.
    const f32 oxide[4] = {1.0F, 1.0F, 1.0F, 1.0F};
    const f32 black[4] = {0.0F, 0.0F, 0.0F, 1.0F};
    TestScene scene(400, 12, 7.0F);
    scene.style.fine = true;
    scene.add_flat_layer("SUBSTRATE", oxide, 0.3F);
    for (i32 i = 0; i < 5; ++i) {
        scene.add_flat_layer("OXIDE", oxide, 0.1F);
        scene.add_flat_layer("FILM", black, 0.002F);
    }
    scene.add_flat_layer("OXIDE", oxide, 0.1F);
    scene.render(1600);
    const i32 bare = brightness(scene.pixel_at(3.5F, 0.0F, 0.2F));
    i32 least = I32_MAX;
    i32 most = 0;
    for (i32 i = 0; i < 5; ++i) {
        const f32 z = 0.401F + 0.102F * static_cast<f32>(i);
        for (const f32 x : {0.5F, 3.5F, 6.4F}) {
            i32 ink = 0;  // of the film, over the rows around it
            for (i32 row = -3; row <= 3; ++row) {
                ink += bare - brightness(scene.pixel_at(x, 0.0F, z, 0.0F, static_cast<f32>(row)));
            }
            least = std::min(least, ink);
            most = std::max(most, ink);
        }
    }
    EXPECT_GT(least, bare / 4) << "each film darkens its rows by a third of a row or more";
    EXPECT_GE(3 * least, 2 * most) << "and no film much less than another";
}

// A film of one colour ends where another begins, from 0.5 to 1.5 on a ground and under a cover that both
// have blue in them. The heights that the films have where they are absent leave a crack in the plain mesh.
static void add_joint(TestScene *scene) {
    scene->add_flat_layer("GROUND", BLUE, 0.5F);
    Layer *left = scene->add_layer("LEFT", GREEN, [](f32 x, f32, f32) { return x < 0.5F ? 1.5F : 0.5F; });
    Layer *right = scene->add_layer("RIGHT", RED, [](f32, f32, f32) { return 1.5F; });
    const i32 count = scene->stack.grid_n * scene->stack.grid_m;
    for (i32 i = 0; i < count; ++i) {
        if (left->top[i] > 0.5F) {
            right->bottom[i] = right->top[i] = 0.5F;
        }
    }
    scene->add_flat_layer("COVER", BLUE, 0.5F);
}

// Pixels within the two films' part of the cut face that show anything else.
static i32 count_foreign(const TestScene &scene) {
    f32 left = 0.0F;
    f32 right = 0.0F;
    f32 low = 0.0F;
    f32 high = 0.0F;
    scene.window_position(0.5F, 0.0F, 0.5F, &left, &low);
    scene.window_position(3.5F, 0.0F, 1.5F, &right, &high);
    i32 foreign = 0;
    for (i32 y = static_cast<i32>(low) + 2; y < static_cast<i32>(high) - 2; ++y) {
        for (i32 x = static_cast<i32>(left); x < static_cast<i32>(right); ++x) {
            const Color color = scene.pixel(x, y);
            foreign += color.blue > 3 || color.red + color.green < 150 ? 1 : 0;
        }
    }
    return foreign;
}

TEST_F(FineSceneTest, TheCutFaceHasNoCracks) {
    TestScene scene(41, 30, 4.0F);
    add_joint(&scene);
    scene.render();
    EXPECT_GT(count_foreign(scene), 20) << "else this test shows nothing";
    scene.style.fine = true;
    for (const i32 angle : {0, 15, 30, 60}) {
        scene.stack.camera_angle = angle;
        scene.render();
        EXPECT_EQ(count_foreign(scene), 0) << "at " << angle << " degrees";
    }
}

// Walls across the section: `from` and `to` in parts of its depth.
static void add_wall(TestScene *scene, const f32 (&color)[4], f32 from, f32 to) {
    scene->add_layer("WALL", color,
                     [=](f32, f32 y, f32 below) { return y >= from && y <= to ? below + 1.0F : below; });
}

TEST_F(FineSceneTest, MetalIsSeenThroughGlassThatWasThereBefore) {
    const f32 glass[4] = {0.0F, 0.0F, 1.0F, 0.4F};
    for (const bool fine : {false, true}) {
        TestScene scene(61, 61, 4.0F);
        scene.style.fine = fine;
        scene.stack.camera_angle = 15;
        scene.add_flat_layer("SUBSTRATE", GREY, 0.2F);
        add_wall(&scene, glass, 0.3F, 0.4F);
        add_wall(&scene, RED, 0.6F, 0.7F);
        scene.render();
        // The line of sight falls by 0.27 a unit: from the glass, 1.2 before the metal, by 0.3.
        const Color metal = scene.pixel_at(2.0F, 2.36F, 0.6F);
        EXPECT_EQ(metal.red > metal.green + 40, fine) << "the metal behind the glass";
    }
}

TEST_F(FineSceneTest, GlassBehindGlassOfTheSameFilmShows) {
    // Red glass: each surface takes a part of the green of what is behind it.
    const f32 glass[4] = {1.0F, 0.0F, 0.0F, 0.3F};
    TestScene one(61, 61, 4.0F);
    TestScene two(61, 61, 4.0F);
    for (TestScene *scene : {&one, &two}) {
        scene->style.fine = true;
        scene->stack.camera_angle = 15;
        scene->add_flat_layer("SUBSTRATE", GREY, 0.2F);
    }
    add_wall(&one, glass, 0.3F, 0.4F);
    two.add_layer("WALLS", glass, [](f32, f32 y, f32 below) {
        return (y >= 0.3F && y <= 0.4F) || (y >= 0.6F && y <= 0.7F) ? below + 1.0F : below;
    });
    one.render();
    two.render();
    // On the front wall, where the second one is behind it and where only its ground is.
    const Color through_one = one.pixel_at(2.0F, 1.16F, 0.9F);
    const Color through_two = two.pixel_at(2.0F, 1.16F, 0.9F);
    EXPECT_LT(through_two.green, through_one.green - 15);
    EXPECT_GT(through_two.green, 20) << "light goes through both";
}

TEST_F(FineSceneTest, OfTwoGlassesTheNearerIsOverTheOther) {
    // Strong blue and strong red, either of them before the other: 0.7 of the first, 0.7 of 0.3 of the
    // second.
    const f32 blue[4] = {0.0F, 0.0F, 1.0F, 0.7F};
    const f32 red[4] = {1.0F, 0.0F, 0.0F, 0.7F};
    for (const bool blue_in_front : {true, false}) {
        TestScene scene(61, 61, 4.0F);
        scene.style.fine = true;
        scene.stack.camera_angle = 15;
        scene.add_flat_layer("SUBSTRATE", GREY, 0.2F);
        add_wall(&scene, blue, blue_in_front ? 0.3F : 0.6F, blue_in_front ? 0.4F : 0.7F);
        add_wall(&scene, red, blue_in_front ? 0.6F : 0.3F, blue_in_front ? 0.7F : 0.4F);
        scene.render();
        const Color both = scene.pixel_at(2.0F, 1.16F, 0.9F);
        const i32 nearer = blue_in_front ? both.blue : both.red;
        const i32 farther = blue_in_front ? both.red : both.blue;
        EXPECT_GT(nearer, farther + 50) << "blue in front: " << blue_in_front;
        EXPECT_GT(farther, 30) << "blue in front: " << blue_in_front;
    }
}

TEST_F(FineSceneTest, AFlatGlassOverMetalShowsHalfOfEither) {
    const f32 glass[4] = {0.2F, 0.2F, 0.8F, 0.5F};
    TestScene scene(40, 30, 5.0F);
    scene.style.fine = true;
    scene.add_flat_layer("SUBSTRATE", RED, 0.4F);
    scene.add_flat_layer("GLASS", glass, 0.1F);
    scene.render();
    const Color color = scene.pixel_at(2.5F, 2.0F, 0.5F);
    EXPECT_NEAR(color.red, 0.5 * 255.0, 20);
    EXPECT_NEAR(color.green, 0.1 * 255.0, 20);
    EXPECT_NEAR(color.blue, 0.4 * 255.0, 20);
}

TEST_F(FineSceneTest, AClearFilmHidesNothing) {
    const f32 clear[4] = {0.0F, 0.0F, 1.0F, 0.0F};
    TestScene with(40, 30, 5.0F);
    TestScene without(40, 30, 5.0F);
    with.style.fine = without.style.fine = true;
    for (TestScene *scene : {&with, &without}) {
        scene->add_flat_layer("SUBSTRATE", GREY, 0.4F);
    }
    with.add_layer("CLEAR", clear, [](f32, f32 y, f32 below) { return y < 0.3F ? below + 0.5F : below; });
    for (TestScene *scene : {&with, &without}) {
        Layer *metal = scene->add_layer("METAL", RED, [](f32, f32 y, f32) { return y > 0.6F ? 0.9F : 0.4F; });
        for (i32 i = 0; i < 1200; ++i) {
            metal->bottom[i] = 0.4F;
        }
        scene->render();
    }
    EXPECT_EQ(count_differences(with.pixels(), without.pixels(), 0), 0);
}

TEST_F(FineSceneTest, TheSmallestGridsAreDrawn) {
    for (const i32 rows : {1, 2, 3, 4}) {
        for (const i32 columns : {3, 4, 5}) {
            TestScene scene(columns, rows, 4.0F);
            scene.style.fine = true;
            scene.add_flat_layer("SUBSTRATE", RED, 0.5F);
            const f32 glass[4] = {0.0F, 0.0F, 1.0F, 0.5F};
            scene.add_flat_layer("GLASS", glass, 0.5F);
            scene.render();
            const Color face = scene.pixel_at(1.0F, 0.0F, 0.25F);
            EXPECT_TRUE(is_mostly_red(face)) << columns << " x " << rows;
            EXPECT_FALSE(is_white(scene.pixel_at(1.0F, 0.0F, 0.75F))) << columns << " x " << rows;
        }
    }
}

TEST_F(FineSceneTest, PlainPicturesStayAsTheyAre) {
    TestScene scene(41, 30, 4.0F);
    add_joint(&scene);
    scene.render();
    const std::string before = scene.pixels();
    for (Layer *layer : scene.layers) {
        layer->changed = 0;  // as a run leaves it
    }
    scene.style.fine = true;
    scene.render();
    EXPECT_NE(scene.pixels(), before);
    scene.style.fine = false;
    scene.render();
    EXPECT_EQ(scene.pixels(), before) << "drawn of meshes made anew";
}

// A ridge along the section, `scale` times as high as 0.3, on a plain.
static void add_ridge(TestScene *scene, f32 scale) {
    scene->add_flat_layer("SUBSTRATE", GREY, 0.2F * scale);
    scene->add_layer("RIDGE", RED, [=](f32 x, f32, f32 below) {
        return below + scale * std::fmax(0.0F, 0.3F - std::fabs(x - 0.5F));
    });
}

TEST_F(FineSceneTest, HeightsToAnotherScaleLookLikeHeightsOfThatSize) {
    TestScene scaled(61, 40, 4.0F);
    TestScene high(61, 40, 4.0F);
    add_ridge(&scaled, 1.0F);
    add_ridge(&high, 3.0F);
    scaled.style.vertical_scale = 3.0F;
    high.style.fine = true;
    high.render();
    const std::string wanted = section_pixels(high);
    const i64 area = static_cast<i64>(wanted.size()) / 4;
    ASSERT_GT(area, 50000);
    scaled.style.fine = true;
    scaled.render();
    EXPECT_EQ(scaled.image->height, high.image->height);
    EXPECT_LE(count_differences(section_pixels(scaled), wanted, 3), area / 1000) << "shape and light";
    scaled.style.fine = false;
    scaled.render();
    EXPECT_LE(count_differences(section_pixels(scaled), wanted, 40), area / 50) << "plain but for edges";
}

TEST_F(FineSceneTest, HeightLabelsKeepTheirValuesAndMoveWithTheScale) {
    TestScene scene(61, 40, 4.0F);
    add_ridge(&scene, 1.0F);
    scene.stack.show_heights = 1;
    scene.style.vertical_scale = 2.5F;
    for (const bool fine : {false, true}) {
        scene.style.fine = fine;
        scene.render(1000);
        const f32 *point = scene.line_vertices[15].position;
        EXPECT_TRUE(is_dot(scene.pixel_at(point[0], point[1], point[2]))) << "fine: " << fine;
    }
}

TEST_F(FineSceneTest, TheGroundMayBeTransparent) {
    TestScene scene(40, 30, 5.0F);
    scene.style.fine = true;
    scene.style.background[3] = 0.0F;
    scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
    scene.render();
    EXPECT_EQ(scene.stored_alpha(0, 0), 0);
    EXPECT_EQ(scene.stored_alpha(scene.image->width / 2, scene.image->height / 2), 255);
    // What is half covered has nothing of the white that is not there, which would make it paler than the
    // film.
    i64 edge = 0;
    const SectionPart part = section_part(scene);
    for (i32 y = part.foot; y < part.top; ++y) {
        for (i32 x = part.left; x < part.right; ++x) {
            const i32 alpha = scene.stored_alpha(x, y);
            const Color color = scene.pixel(x, y);
            if (alpha > 40 && alpha < 215 && brightness(color) > 0) {
                ++edge;
                EXPECT_LE(color.red, 175) << x << ", " << y;
            }
        }
    }
    EXPECT_GT(edge, 100);
}

TEST_F(FineSceneTest, AUsersOwnProgramShowsTheWholeSection) {
    const TemporaryFolder folder;
    test_file_write(folder.file(L"surface.shader"),
                    "#shader vertex\n#version 130\nin vec3 position;\nuniform mat4 transform;\n"
                    "void main() { gl_Position = transform * vec4(position, 1.0); }\n"
                    "#shader fragment\n#version 130\nuniform vec3 color;\nuniform float alpha;\n"
                    "void main() { gl_FragColor = vec4(color, alpha); }\n");
    TestScene scene(41, 30, 4.0F);
    scene.style.fine = true;
    scene.style.vertical_scale = 2.0F;
    add_joint(&scene);
    scene.surface_program.reset(shader_program_load(folder.file(L"surface.shader").c_str()));
    scene.render();
    const Color face = scene.pixel_at(3.0F, 0.0F, 1.0F);
    EXPECT_EQ(face.red, 204);
    EXPECT_EQ(face.green, 0);
    EXPECT_EQ(count_foreign(scene), 0);
}

// A driver that has no memory for the first framebuffers asked for. The pointers through which GLEW calls are
// open to a test.
static i32 refusals;
static PFNGLCHECKFRAMEBUFFERSTATUSPROC check_framebuffer;

static GLenum GLAPIENTRY refuse_some(GLenum target) {
    return refusals-- > 0 ? GL_FRAMEBUFFER_UNSUPPORTED : check_framebuffer(target);
}

TEST_F(FineSceneTest, WithoutMemoryForSamplesThereAreFewerAndItIsToldOnce) {
    OffscreenTarget *picture = nullptr;
    ASSERT_TRUE(offscreen_recreate(&picture, 64, 48));
    const Owned<OffscreenTarget> owner(picture);
    const Owned<MultisampleTarget> usual(multisample_create(64, 48));
    EXPECT_GE(usual->samples * usual->passes, SAMPLES_A_PIXEL);
    const ConsoleCapture capture;
    check_framebuffer = glCheckFramebufferStatus;
    glCheckFramebufferStatus = refuse_some;
    for (i32 i = 0; i < 2; ++i) {
        refusals = 1;
        const Owned<MultisampleTarget> fewer(multisample_create(64, 48));
        EXPECT_EQ(fewer->samples, usual->samples / 2);
        EXPECT_NE(fewer->fbo, 0U);
        EXPECT_GE(fewer->samples * fewer->passes, SAMPLES_A_PIXEL) << "more passes make up for it";
    }
    refusals = 1000;
    const Owned<MultisampleTarget> none(multisample_create(64, 48));
    glCheckFramebufferStatus = check_framebuffer;
    EXPECT_EQ(none->samples, 1);
    EXPECT_EQ(none->passes, 1);
    EXPECT_EQ(none->fbo, 0U) << "the picture's own framebuffer is drawn into";
    const std::string told = capture.diagnostics();
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 1) << told;
    EXPECT_NE(told.find("64 x 48"), std::string::npos) << told;
    GLint bound = 0;
    glGetIntegerv(GL_FRAMEBUFFER_BINDING, &bound);
    EXPECT_EQ(static_cast<u32>(bound), picture->fbo);
}
