// Pictures of the meshes that leave out what cannot be seen beside pictures of the whole meshes.
#include <algorithm>
#include <cmath>
#include <vector>
#include "gl_test.h"
#include "sim/layer.h"
#include "tests/support/test_support.h"

class PictureTwinTest : public GlTest {};

struct PixelDifference {
    i64 pixels;
    i64 inside;  // those of them that have no edge near them in the picture of the whole meshes
};

// Whether the pixels around one are all of nearly its colour.
static bool is_inside(const TestScene &scene, i32 x, i32 y) {
    const Color middle = scene.pixel(x, y);
    for (i32 dy = -1; dy <= 1; ++dy) {
        for (i32 dx = -1; dx <= 1; ++dx) {
            const i32 column = std::clamp(x + dx, 0, scene.image->width - 1);
            const i32 row = std::clamp(y + dy, 0, scene.image->height - 1);
            const Color beside = scene.pixel(column, row);
            if (std::abs(beside.red - middle.red) + std::abs(beside.green - middle.green) +
                    std::abs(beside.blue - middle.blue) >
                6) {
                return false;
            }
        }
    }
    return true;
}

static PixelDifference compare_pictures(TestScene *scene, i32 image_width) {
    scene->plain_meshes = false;
    scene->render(image_width);
    const std::string drawn = scene->pixels();
    scene->plain_meshes = true;
    scene->render(image_width);
    const std::string plain = scene->pixels();
    PixelDifference difference = {0, 0};
    EXPECT_EQ(drawn.size(), plain.size());
    for (size_t i = 0; i + 3 < plain.size(); i += 4) {
        if (drawn.compare(i, 4, plain, i, 4) != 0) {
            const i32 pixel = static_cast<i32>(i / 4);
            ++difference.pixels;
            difference.inside +=
                is_inside(*scene, pixel % scene->image->width, pixel / scene->image->width) ? 1 : 0;
        }
    }
    return difference;
}

static void expect_same_picture(TestScene *scene, const std::string &what) {
    for (const i32 angle : {0, 15, 30, 60, 89}) {
        scene->stack.camera_angle = angle;
        const PixelDifference difference = compare_pictures(scene, 720);
        const i64 area = i64{scene->image->width} * scene->image->height;
        // One pixel in 100,000, and one more where the picture is smaller than that.
        EXPECT_LE(difference.pixels, 1 + area / 100000) << what << " at " << angle << " degrees";
        EXPECT_EQ(difference.inside, 0) << what << " at " << angle << " degrees";
    }
}

// Cuts a rectangle of all layers from `first` on down to a height.
struct Cut {
    f32 x0, x1, y0, y1;
    size_t first;
    f32 height;
};

static void cut_layers(TestScene *scene, const Cut &cut) {
    const i32 grid_n = scene->stack.grid_n;
    const i32 grid_m = scene->stack.grid_m;
    for (i32 m = 0; m < grid_m; ++m) {
        for (i32 n = 0; n < grid_n; ++n) {
            const f32 x = static_cast<f32>(n) / static_cast<f32>(grid_n);
            const f32 y = static_cast<f32>(m) / static_cast<f32>(grid_m);
            if (x < cut.x0 || x > cut.x1 || y < cut.y0 || y > cut.y1) {
                continue;
            }
            const i32 i = m * grid_n + n;
            f32 height = 0.0F;
            for (size_t k = 0; k < scene->layers.size(); ++k) {
                Layer *layer = scene->layers[k];
                if (layer != nullptr && k >= cut.first) {
                    layer->top[i] = std::max(layer->bottom[i], std::min(layer->top[i], cut.height));
                }
                height = layer != nullptr && layer->top[i] > layer->bottom[i] ? layer->top[i] : height;
            }
            scene->cells[static_cast<size_t>(i)].height = height;
        }
    }
}

// Films level and sloped, some translucent, with holes cut between them; some are taken away at the end.
static void fill_randomly(TestScene *scene, TestRandom *random) {
    const i32 count = test_random_i32(random, 3, 9);
    for (i32 k = 0; k < count; ++k) {
        const f32 alpha = test_random_bool(random, 0.2) ? 0.5F : 1.0F;
        const f32 color[4] = {test_random_f32(random, 0.0F, 1.0F), test_random_f32(random, 0.0F, 1.0F),
                              test_random_f32(random, 0.0F, 1.0F), k == 0 ? 1.0F : alpha};
        const f32 thickness = test_random_f32(random, 0.02F, 0.3F);
        const f32 wave = test_random_bool(random, 0.3) ? test_random_f32(random, 0.0F, 0.1F) : 0.0F;
        const bool levels = test_random_bool(random, 0.3);
        scene->add_layer("FILM", color, [&](f32 x, f32 y, f32 below) {
            const f32 height = levels ? std::max(below, 0.25F * static_cast<f32>(k + 1)) : below + thickness;
            return height + wave * (1.0F + std::sin(x * 20.0F) * std::sin(y * 20.0F));
        });
        if (test_random_bool(random, 0.6)) {
            const f32 x = test_random_f32(random, 0.0F, 0.9F);
            const f32 y = test_random_f32(random, -0.2F, 0.9F);
            cut_layers(
                scene,
                {x, x + test_random_f32(random, 0.01F, 0.4F), y, y + test_random_f32(random, 0.01F, 0.6F),
                 static_cast<size_t>(test_random_i32(random, 0, k)), test_random_f32(random, 0.02F, 0.4F)});
        }
    }
    for (size_t k = 1; k < scene->layers.size(); ++k) {
        if (test_random_bool(random, 0.15)) {
            layer_free(scene->layers[k]);
            scene->layers[k] = nullptr;
        }
    }
}

TEST_F(PictureTwinTest, RandomStacksLookTheSame) {
    TestRandom random = test_random_start(9);
    for (i32 run = 0; run < 8; ++run) {
        const i32 grid_n = test_random_i32(&random, 200, 400);
        const i32 grid_m = test_random_i32(&random, 60, 200);
        TestScene scene(grid_n, grid_m, 4.0F);
        fill_randomly(&scene, &random);
        expect_same_picture(&scene, "stack " + std::to_string(run));
    }
}

// Films that an etch leaves by rounding, thinner than the graphics can tell from what lies under them.
TEST_F(PictureTwinTest, AFilmOfNearlyNoThicknessLooksTheSame) {
    const f32 green[4] = {0.2F, 0.8F, 0.2F, 1.0F};
    const f32 red[4] = {0.8F, 0.2F, 0.2F, 1.0F};
    for (const f32 thickness : {1e-7F, 1e-6F, 1e-5F, 1e-4F, 1e-3F}) {
        TestScene scene(300, 120, 4.0F);
        scene.add_flat_layer("SUBSTRATE", green, 0.5F);
        scene.add_layer("FILM", red, [&](f32 x, f32 y, f32 below) {
            return std::fabs(x - 0.5F) < 0.2F && y < 0.7F ? below + thickness : below;
        });
        expect_same_picture(&scene, "a film of " + std::to_string(thickness * 1e6F) + " pm");
    }
}

// Its underside is seen through itself, at the same depth as the ground's top.
TEST_F(PictureTwinTest, ATranslucentFilmOnLevelGroundLooksTheSame) {
    const f32 brown[4] = {0.7F, 0.3F, 0.1F, 1.0F};
    const f32 glass[4] = {0.6F, 0.4F, 0.1F, 0.5F};
    const f32 blue[4] = {0.2F, 0.4F, 0.7F, 1.0F};
    TestScene scene(300, 120, 4.0F);
    scene.add_flat_layer("SUBSTRATE", brown, 0.3F);
    scene.add_layer("GLASS", glass,
                    [](f32 x, f32 y, f32 below) { return y > 0.3F && x > 0.1F ? below + 0.1F : below; });
    scene.add_layer("FILM", blue,
                    [](f32 x, f32 y, f32 below) { return y > 0.6F && x < 0.7F ? below + 0.05F : below; });
    expect_same_picture(&scene, "glass");
}
