// Meshes, drawing, read-back and saving of a made-up section of six layers, N x N grid points: a
// substrate with trenches, three films all over it, a wall and a patch of resist with sloped sides.
// Processor time counts every thread, since a software renderer draws with several.
#include <benchmark/benchmark.h>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <memory>
#include <vector>
#include "image/image_file.h"
#include "log/log.h"
#include "platform/memory.h"
#include "platform/platform.h"
#include "render/drawn_mesh.h"
#include "render/fine_section.h"
#include "render/font.h"
#include "render/mesh.h"
#include "render/offscreen.h"
#include "render/scene.h"
#include "render/visible_parts.h"
#include "sim/layer.h"
#include "sim/layer_gl.h"
#include "sim/stack_setup.h"
#include "tests/render/plain_mesh.h"
#include "tests/render/plain_visible_parts.h"

static constexpr f32 WIDTH = 5.0F;

struct BenchStack {
    Stack stack;
    std::vector<GridCell> cells;
    std::vector<LineVertex> line_vertices;
    std::vector<Layer *> layers;
    std::vector<Owned<Layer>> owned;
};

static f32 layer_thickness(size_t layer, f32 x, f32 y) {
    const bool trench = std::fabs(x - 0.25F) < 0.08F || (std::fabs(x - 0.7F) < 0.06F && y < 0.6F);
    const f32 inside = std::fmin(0.2F - std::fabs(x - 0.25F), 0.25F - std::fabs(y - 0.5F));
    switch (layer) {
        case 0: return trench ? 0.1F : 0.3F;
        case 3: return std::fabs(x - 0.5F) < 0.05F ? 0.3F : 0.0F;
        case 5: return std::fmax(0.0F, std::fmin(0.35F, inside * 10.0F));
        default: return 0.05F;
    }
}

static void bench_stack_fill(BenchStack *made, i32 grid_n) {
    Stack *stack = &made->stack;
    made->cells.resize(static_cast<size_t>(grid_n) * static_cast<size_t>(grid_n));
    stack->cells = made->cells.data();
    stack->grid_n = stack->grid_m = grid_n;
    stack->width = stack->depth = WIDTH;
    stack->spacing = WIDTH / static_cast<f32>(grid_n);
    stack->camera_angle = 30;
    stack->show_legend = 1;
    for (size_t k = 0; k < 6; ++k) {
        Layer *layer = layer_create(grid_n, grid_n, stack->spacing);
        const f32 color[4] = {0.15F * static_cast<f32>(k), 0.5F, 0.9F - 0.15F * static_cast<f32>(k), 1.0F};
        for (i32 i = 0; i < 4; ++i) {
            layer->color[i] = color[i];
        }
        for (i32 i = 0; i < grid_n * grid_n; ++i) {
            GridCell *cell = &made->cells[static_cast<size_t>(i)];
            const i32 n = i % grid_n;
            const i32 m = i / grid_n;
            const f32 x = static_cast<f32>(n) / static_cast<f32>(grid_n);
            const f32 y = static_cast<f32>(m) / static_cast<f32>(grid_n);
            layer->bottom[i] = cell->height;
            cell->height += layer_thickness(k, x, y);
            layer->top[i] = cell->height;
            stack->max_height = std::fmax(stack->max_height, cell->height);
        }
        made->layers.push_back(layer);
        made->owned.emplace_back(layer);
    }
    stack->layers = made->layers.data();
    stack->layer_count = stack->live_layer_count = 6;
}

static i64 bench_stack_points(const BenchStack &made) {
    return static_cast<i64>(made.cells.size()) * static_cast<i64>(made.layers.size());
}

static void bench_layer_mesh_create(benchmark::State &state) {
    BenchStack made = {};
    bench_stack_fill(&made, static_cast<i32>(state.range(0)));
    while (state.KeepRunning()) {
        for (const Layer *layer : made.layers) {
            const LayerMesh mesh = layer_mesh_create(layer);
            benchmark::DoNotOptimize(mesh.indices.get());
        }
    }
    state.SetItemsProcessed(state.iterations() * bench_stack_points(made));
}

static void bench_layer_mesh_plain(benchmark::State &state) {
    BenchStack made = {};
    bench_stack_fill(&made, static_cast<i32>(state.range(0)));
    while (state.KeepRunning()) {
        for (const Layer *layer : made.layers) {
            benchmark::DoNotOptimize(plain_mesh(layer).indices.data());
        }
    }
    state.SetItemsProcessed(state.iterations() * bench_stack_points(made));
}

// What can be seen of every layer, as it is looked for in each picture that shows new heights.
static void visible_parts(benchmark::State &state, bool plain) {
    BenchStack made = {};
    bench_stack_fill(&made, static_cast<i32>(state.range(0)));
    const i32 count = made.stack.layer_count;
    std::vector<u8> parts(made.cells.size());
    while (state.KeepRunning()) {
        for (i32 slot = 0; slot < count; ++slot) {
            if (plain) {
                plain_visible_parts_find(&made.stack, slot, {0, count - 1}, parts.data());
            } else {
                visible_parts_find(&made.stack, slot, {0, count - 1}, parts.data());
            }
            benchmark::DoNotOptimize(parts.data());
        }
    }
    state.SetItemsProcessed(state.iterations() * bench_stack_points(made));
}

static void bench_visible_parts(benchmark::State &state) {
    visible_parts(state, false);
}

static void bench_visible_parts_plain(benchmark::State &state) {
    visible_parts(state, true);
}

// A stack and everything that its picture needs, in a context of its own.
struct BenchPicture {
    Owned<PlatformGl> gl;  // goes last
    BenchStack made;
    Owned<ShaderProgram> surface_program, point_program;
    Owned<Camera> camera;
    OffscreenTarget *target = nullptr;
    i32 image_height = 0;

    BenchPicture() = default;
    BenchPicture(const BenchPicture &) = delete;
    BenchPicture &operator=(const BenchPicture &) = delete;
    ~BenchPicture() {
        offscreen_free(target);
        font_cache_free();
    }
};

static std::unique_ptr<BenchPicture> bench_picture_create(i32 grid_n) {
    const wchar_t *reason = L"";
    auto draw = std::make_unique<BenchPicture>();
    draw->gl.reset(platform_gl_create_offscreen(&reason));
    if (draw->gl == nullptr) {
        std::fprintf(stderr, "no graphics: %ls\n", reason);
        std::exit(1);
    }
    render_state_init();
    const WideText folder = platform_wide_from_system(QUARN_DATA_FOLDER);
    const Owned<WString> surface(wstring_make(L"%ls/surface.shader", folder.get()));
    const Owned<WString> point(wstring_make(L"%ls/point.shader", folder.get()));
    draw->surface_program.reset(shader_program_load(surface->text));
    draw->point_program.reset(shader_program_load(point->text));
    bench_stack_fill(&draw->made, grid_n);
    const Stack *stack = &draw->made.stack;
    draw->camera.reset(camera_create(stack->width, stack->depth, stack->max_height, 30.0F));
    draw->image_height = scene_image_height(stack, draw->camera.get(), &PLAIN_STYLE);
    offscreen_recreate(&draw->target, PICTURE_WIDTH, draw->image_height);
    return draw;
}

static void build_meshes(BenchPicture *draw) {
    stack_build_meshes(&draw->made.stack);
}

static void build_whole_meshes(BenchPicture *draw) {
    for (Layer *layer : draw->made.layers) {
        layer_build_mesh(layer);
    }
}

static void draw_picture(BenchPicture *draw) {
    const Scene scene = {&draw->made.stack, draw->camera.get(), draw->surface_program.get(),
                         draw->point_program.get(), &PLAIN_STYLE};
    scene_render(&scene, draw->image_height);
}

// A single pixel back is enough to wait for everything drawn so far.
static void wait_for_graphics(BenchPicture *draw) {
    const Owned<PixelImage> pixel(image_create(1, 1, L""));
    offscreen_read(pixel.get());
    offscreen_recreate(&draw->target, PICTURE_WIDTH, draw->image_height);
}

using MeshBuilding = void (*)(BenchPicture *);

static void bench_building(benchmark::State &state, MeshBuilding build) {
    const auto draw = bench_picture_create(static_cast<i32>(state.range(0)));
    while (state.KeepRunning()) {
        build(draw.get());
    }
    state.SetItemsProcessed(state.iterations() * bench_stack_points(draw->made));
}

static void bench_drawing(benchmark::State &state, MeshBuilding build) {
    const auto draw = bench_picture_create(static_cast<i32>(state.range(0)));
    build(draw.get());
    i64 triangles = 0;
    for (const Layer *layer : draw->made.layers) {
        triangles += layer->index_count / 3;
    }
    while (state.KeepRunning()) {
        draw_picture(draw.get());
        wait_for_graphics(draw.get());
    }
    state.SetItemsProcessed(state.iterations() * triangles);
    state.counters["triangles"] = static_cast<f64>(triangles);
}

static void bench_stack_build_meshes(benchmark::State &state) {
    bench_building(state, build_meshes);
}

static void bench_layer_build_mesh(benchmark::State &state) {
    bench_building(state, build_whole_meshes);
}

static void bench_scene_render(benchmark::State &state) {
    bench_drawing(state, build_meshes);
}

static void bench_scene_render_plain(benchmark::State &state) {
    bench_drawing(state, build_whole_meshes);
}

static void bench_offscreen_read(benchmark::State &state) {
    const auto draw = bench_picture_create(static_cast<i32>(state.range(0)));
    build_meshes(draw.get());
    draw_picture(draw.get());
    const Owned<PixelImage> image(image_create(PICTURE_WIDTH, draw->image_height, L"bench"));
    wait_for_graphics(draw.get());
    while (state.KeepRunning()) {
        offscreen_read(image.get());
        state.PauseTiming();
        offscreen_recreate(&draw->target, PICTURE_WIDTH, draw->image_height);
        state.ResumeTiming();
    }
    state.SetBytesProcessed(state.iterations() * image->width * image->height * 4);
}

static void save_picture(benchmark::State &state, const wchar_t *path, ImageFormat format) {
    const auto draw = bench_picture_create(static_cast<i32>(state.range(0)));
    build_meshes(draw.get());
    draw_picture(draw.get());
    const Owned<PixelImage> image(image_create(PICTURE_WIDTH, draw->image_height, L"bench"));
    offscreen_read(image.get());
    while (state.KeepRunning()) {
        if (image_save(image.get(), path, format) != 0) {
            state.SkipWithError("the picture could not be written to the current folder");
        }
    }
    platform_file_delete(path);
    state.SetBytesProcessed(state.iterations() * image->width * image->height * 4);
}

static void bench_save_bmp(benchmark::State &state) {
    save_picture(state, L"render_bench.bmp", IMAGE_BMP);
}

static void bench_save_png(benchmark::State &state) {
    save_picture(state, L"render_bench.png", IMAGE_PNG);
}

static void bench_scene_render_fine(benchmark::State &state) {
    const auto draw = bench_picture_create(static_cast<i32>(state.range(0)));
    PictureStyle style = PLAIN_STYLE;
    style.fine = true;
    draw->camera.reset(scene_camera_create(&draw->made.stack, &style));
    const Scene scene = {&draw->made.stack, draw->camera.get(), draw->surface_program.get(),
                         draw->point_program.get(), &style};
    while (state.KeepRunning()) {
        scene_render(&scene, draw->image_height);
        wait_for_graphics(draw.get());
    }
    state.SetItemsProcessed(state.iterations() * bench_stack_points(draw->made));
}

static void bench_fine_section_create(benchmark::State &state) {
    BenchStack made = {};
    bench_stack_fill(&made, static_cast<i32>(state.range(0)));
    while (state.KeepRunning()) {
        benchmark::DoNotOptimize(fine_section_create(&made.stack).parts.get());
    }
    state.SetItemsProcessed(state.iterations() * bench_stack_points(made));
}

BENCHMARK(bench_layer_mesh_create)->Arg(500)->Arg(1000)->Arg(2000)->Unit(benchmark::kMillisecond);
BENCHMARK(bench_layer_mesh_plain)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(bench_visible_parts)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(bench_visible_parts_plain)->Arg(500)->Unit(benchmark::kMillisecond);
BENCHMARK(bench_stack_build_meshes)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(bench_layer_build_mesh)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(bench_scene_render)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond)->MeasureProcessCPUTime();
BENCHMARK(bench_scene_render_plain)
    ->Arg(500)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK(bench_scene_render_fine)
    ->Arg(500)
    ->Arg(1000)
    ->Unit(benchmark::kMillisecond)
    ->MeasureProcessCPUTime();
BENCHMARK(bench_fine_section_create)->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(bench_offscreen_read)->Arg(500)->Unit(benchmark::kMillisecond);
BENCHMARK(bench_save_bmp)->Arg(500)->Unit(benchmark::kMillisecond);
BENCHMARK(bench_save_png)->Arg(500)->Unit(benchmark::kMillisecond);
