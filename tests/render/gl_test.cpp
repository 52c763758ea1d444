#include "gl_test.h"

#include <cstring>
#include "image/image_alpha.h"
#include "platform/memory.h"
#include "render/drawn_mesh.h"
#include "render/font.h"
#include "render/legend.h"
#include "render/lines.h"
#include "render/mesh.h"
#include "render/offscreen.h"
#include "render/text.h"
#include "sim/layer.h"
#include "sim/layer_gl.h"
#include "tests/support/test_support.h"

void GlTest::SetUp() {
    const wchar_t *reason = nullptr;
    gl.reset(platform_gl_create_offscreen(&reason));
    ASSERT_NE(gl, nullptr) << "no graphics: " << test_utf8(reason != nullptr ? reason : L"no reason given");
    render_state_init();
}

void GlTest::TearDown() {
    font_cache_free();
    gl.reset();
}

std::wstring test_data_file(const std::wstring &name) {
    return test_wide(QUARN_DATA_FOLDER) + L"/" + name;
}

static char *copy_text(const char *text) {
    char *copy = memory_new_array<char>(static_cast<i64>(std::strlen(text)) + 1);
    std::strcpy(copy, text);
    return copy;
}

TestScene::TestScene(i32 grid_n, i32 grid_m, f32 width)
    : stack(),
      cells(static_cast<size_t>(grid_n) * static_cast<size_t>(grid_m)),
      substrate(),
      steps{&substrate},
      step_list{steps, 1, 1},
      surface_program(shader_program_load(test_data_file(L"surface.shader").c_str())),
      point_program(shader_program_load(test_data_file(L"point.shader").c_str())) {
    stack.cells = cells.data();
    stack.grid_n = grid_n;
    stack.grid_m = grid_m;
    stack.width = width;
    stack.spacing = width / static_cast<f32>(grid_n);
    stack.depth = stack.spacing * static_cast<f32>(grid_m);
    stack.camera_angle = 30;
    stack.steps = &step_list;
    stack.line_points = (10 * grid_m - 10) / (grid_n - 1);
    stack.line_step = static_cast<f32>(grid_n - 1) / 9.0F;
    line_vertices.resize(static_cast<size_t>(stack.line_points) * 10);
    stack.line_vertices = line_vertices.data();
    lines_gl_create(&stack);
}

TestScene::~TestScene() {
    for (Layer *layer : layers) {
        layer_free(layer);
    }
    lines_gl_delete(&stack);
}

Layer *TestScene::add_layer(const char *name, const f32 (&color)[4], const TopFunction &top) {
    Layer *layer = layer_create(stack.grid_n, stack.grid_m, stack.spacing);
    layer->legend_name = copy_text(name);
    std::memcpy(layer->color, color, sizeof(layer->color));
    for (i32 i = 0; i < stack.grid_n * stack.grid_m; ++i) {
        GridCell *cell = &cells[static_cast<size_t>(i)];
        const i32 n = i % stack.grid_n;
        const i32 m = i / stack.grid_n;
        const f32 x = static_cast<f32>(n) / static_cast<f32>(stack.grid_n - 1);
        const f32 y = static_cast<f32>(m) / static_cast<f32>(stack.grid_m - 1);
        layer->bottom[i] = cell->height;
        cell->height = top(x, y, cell->height);
        layer->top[i] = cell->height;
    }
    layers.push_back(layer);
    return layer;
}

void TestScene::add_flat_layer(const char *name, const f32 (&color)[4], f32 thickness) {
    add_layer(name, color, [thickness](f32, f32, f32 below) { return below + thickness; });
}

void TestScene::render(i32 image_width, const std::function<void()> &more) {
    stack.layers = layers.data();
    stack.layer_count = static_cast<i32>(layers.size());
    stack.live_layer_count = 0;
    stack.max_height = 0.0F;
    for (const GridCell &cell : cells) {
        stack.max_height = cell.height > stack.max_height ? cell.height : stack.max_height;
    }
    for (Layer *layer : layers) {
        stack.live_layer_count += layer != nullptr ? 1 : 0;
        if (layer != nullptr && plain_meshes) {
            layer_build_mesh(layer);
        }
    }
    if (!plain_meshes) {
        stack_build_meshes(&stack);
    }
    stack_update_lines(&stack);
    camera.reset(scene_camera_create(&stack, &style));
    style.width = image_width;
    const i32 height = forced_height != 0 ? forced_height : scene_image_height(&stack, camera.get(), &style);
    const Scene scene = {&stack, camera.get(), surface_program.get(), point_program.get(), &style};
    OffscreenTarget *target = nullptr;
    offscreen_recreate(&target, image_width, height);
    const Owned<OffscreenTarget> owner(target);
    scene_render(&scene, height);
    if (more) {
        more();
    }
    image.reset(image_create(image_width, height, L"test"));
    offscreen_read(image.get());
    if (picture_is_transparent(&style)) {
        image_make_transparent(image.get());
    }
}

Scene TestScene::as_scene() const {
    return {&stack, camera.get(), surface_program.get(), point_program.get(), &style};
}

Color TestScene::pixel(i32 x, i32 y) const {
    if (x < 0 || y < 0 || x >= image->width || y >= image->height) {
        ADD_FAILURE() << "(" << x << ", " << y << ") is outside the picture";
        return {0, 0, 0};
    }
    const u8 *bytes = image->pixels + (static_cast<i64>(y) * image->width + x) * 4;
    return {bytes[2], bytes[1], bytes[0]};
}

i32 TestScene::stored_alpha(i32 x, i32 y) const {
    return image->pixels[(static_cast<i64>(y) * image->width + x) * 4 + 3];
}

void TestScene::window_position(f32 x, f32 y, f32 z, f32 *window_x, f32 *window_y) const {
    const i32 left = stack.show_legend != 0 ? LEGEND_WIDTH : 0;
    const i32 width = image->width - left;
    const i32 height = static_cast<i32>(static_cast<f32>(width) / camera->aspect);
    const i32 viewport[4] = {left, (image->height - height) / 2, width, height};
    text_window_position(0.0F, 0.0F, {x, y, z}, &camera->transform, viewport, window_x, window_y);
}

Color TestScene::pixel_at(f32 x, f32 y, f32 z, f32 dx, f32 dy) const {
    f32 window_x = 0.0F;
    f32 window_y = 0.0F;
    window_position(x, y, z, &window_x, &window_y);
    return pixel(static_cast<i32>(window_x + dx), static_cast<i32>(window_y + dy));
}

bool TestScene::has_ink(i32 x0, i32 y0, i32 x1, i32 y1) const {
    for (i32 y = y0 < 0 ? 0 : y0; y < y1 && y < image->height; ++y) {
        for (i32 x = x0 < 0 ? 0 : x0; x < x1 && x < image->width; ++x) {
            if (brightness(pixel(x, y)) == 0) {
                return true;
            }
        }
    }
    return false;
}

std::string TestScene::pixels() const {
    const size_t size = static_cast<size_t>(image->width) * static_cast<size_t>(image->height) * 4;
    return std::string(reinterpret_cast<const char *>(image->pixels), size);
}

bool is_white(Color color) {
    return brightness(color) == 3 * 255;
}

bool is_dot(Color color) {
    return color.red == 13 && color.green == 13 && color.blue == 13;
}

i32 brightness(Color color) {
    return color.red + color.green + color.blue;
}
