// Every picture of the examples, drawn of what can be seen and of the whole meshes. Both runs go side by
// side, so that meshes which are kept from picture to picture are compared too.
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include "gds/gds_read.h"
#include "gl_test.h"
#include "platform/memory.h"
#include "process/color_table.h"
#include "render/drawn_mesh.h"
#include "render/lines.h"
#include "render/mesh.h"
#include "render/offscreen.h"
#include "sim/layer.h"
#include "sim/stack_layers.h"
#include "sim/stack_surface.h"
#include "sim/step_execute.h"
#include "tests/support/test_support.h"

namespace fs = std::filesystem;

class ExampleTwinTest : public GlTest {};

static constexpr i32 IMAGE_WIDTH = 720;

struct RunTwin {
    Stack *stack;
    bool plain;

    RunTwin(const std::wstring &process, const GdsDatabase *layout, bool plain_meshes)
        : stack(stack_create(process.c_str(), layout)), plain(plain_meshes) {}
    ~RunTwin() { stack_free(stack); }
    RunTwin(const RunTwin &) = delete;
    RunTwin &operator=(const RunTwin &) = delete;
};

static void run_step(const RunTwin &run, i32 step) {
    Stack *stack = run.stack;
    step_execute(stack, stack->steps->items[step]);
    stack->max_height = stack_largest_height(stack);
    for (i32 i = 0; i < stack->layer_count; ++i) {
        if (stack->layers[i] != nullptr && layer_is_empty(stack->layers[i])) {
            layer_free(stack->layers[i]);
            stack->layers[i] = nullptr;
        }
    }
    if (!run.plain) {
        stack_build_meshes(stack);
    }
    for (i32 i = 0; i < stack->layer_count; ++i) {
        if (stack->layers[i] != nullptr && run.plain) {
            layer_build_mesh(stack->layers[i]);
        }
        if (stack->layers[i] != nullptr) {
            stack->layers[i]->changed = 0;
        }
    }
    stack_update_lines(stack);
    stack->live_layer_count = stack_count_layers(stack);
}

struct Programs {
    Owned<ShaderProgram> surface, point;
};

static Owned<PixelImage> draw_picture(const Stack *stack, const Programs &programs) {
    const Owned<Camera> camera(
        camera_create(stack->width, stack->depth, stack->max_height, static_cast<f32>(stack->camera_angle)));
    PictureStyle style = PLAIN_STYLE;
    style.width = IMAGE_WIDTH;
    const i32 height = scene_image_height(stack, camera.get(), &style);
    const Scene scene = {stack, camera.get(), programs.surface.get(), programs.point.get(), &style};
    OffscreenTarget *target = nullptr;
    offscreen_recreate(&target, IMAGE_WIDTH, height);
    const Owned<OffscreenTarget> owner(target);
    scene_render(&scene, height);
    Owned<PixelImage> image(image_create(IMAGE_WIDTH, height, L"twin"));
    offscreen_read(image.get());
    return image;
}

static i64 count_differences(const PixelImage &a, const PixelImage &b) {
    EXPECT_EQ(a.height, b.height);
    i64 count = 0;
    for (i64 i = 0; i < i64{a.width} * a.height; ++i) {
        count += std::memcmp(a.pixels + 4 * i, b.pixels + 4 * i, 4) != 0 ? 1 : 0;
    }
    return count;
}

// The example's process file for a coarser grid.
static std::wstring coarse_process_file(const fs::path &source_path, const TemporaryFolder &folder) {
    std::ifstream source(source_path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(source), std::istreambuf_iterator<char>()};
    const size_t at = text.find("-N ") + 3;
    text.replace(at, text.find_first_of(" \n", at) - at, "200");
    const std::wstring path = folder.file(L"process.txt");
    test_file_write(path, text);
    return path;
}

static void expect_same_pictures(const fs::path &example, const Programs &programs) {
    const TemporaryFolder folder;
    const CurrentFolder current(folder.path);  // which dumps go to
    const ConsoleCapture capture;
    const std::string name = example.filename().string();
    fs::path layout_path;
    fs::path process_path;
    for (const auto &entry : fs::directory_iterator(example)) {
        layout_path = entry.path().extension() == ".gds" ? entry.path() : layout_path;
        process_path = entry.path().extension() == ".txt" ? entry.path() : process_path;
    }
    const Owned<GdsDatabase> layout(memory_new_zeroed<GdsDatabase>());
    ASSERT_EQ(gds_read(layout.get(), layout_path.wstring().c_str()), 0) << name;
    const std::wstring process = coarse_process_file(process_path, folder);
    const RunTwin drawn(process, layout.get(), false);
    const RunTwin plain(process, layout.get(), true);
    ASSERT_NE(drawn.stack, nullptr) << name;
    for (i32 i = 0; i < drawn.stack->steps->count; ++i) {
        run_step(drawn, i);
        run_step(plain, i);
        const Owned<PixelImage> image = draw_picture(drawn.stack, programs);
        const Owned<PixelImage> expected = draw_picture(plain.stack, programs);
        const i64 area = i64{image->width} * image->height;
        // One pixel in 100,000, and one more where the picture is smaller than that.
        EXPECT_LE(count_differences(*image, *expected), 1 + area / 100000) << name << ", step " << i;
    }
}

TEST_F(ExampleTwinTest, EveryPictureLooksTheSame) {
    ASSERT_EQ(color_table_load_file(test_data_file(L"colors.txt").c_str()), 0);
    const Programs programs = {
        Owned<ShaderProgram>(shader_program_load(test_data_file(L"surface.shader").c_str())),
        Owned<ShaderProgram>(shader_program_load(test_data_file(L"point.shader").c_str()))};
    i32 examples = 0;
    for (const auto &entry : fs::directory_iterator(QUARN_EXAMPLES_FOLDER)) {
        if (entry.is_directory()) {
            expect_same_pictures(entry.path(), programs);
            ++examples;
        }
    }
    EXPECT_GE(examples, 5);
    color_table_free();
}
