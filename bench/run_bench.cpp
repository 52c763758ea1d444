// run_bench.cpp: a whole run of the CMOS example at N = 1000 by phases: seconds and peak memory of
// each. The order of calls is that of the worker; the pictures go to a folder of their own that is
// deleted afterwards.
#include <benchmark/benchmark.h>
#include <GL/glew.h>
#include <sys/resource.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "app/app_state.h"
#include "app/run_stack.h"
#include "gds/gds_read.h"
#include "image/image_file.h"
#include "platform/memory.h"
#include "platform/platform.h"
#include "process/color_table.h"
#include "render/lines.h"
#include "render/mesh.h"
#include "render/offscreen.h"
#include "render/scene.h"
#include "sim/stack_layers.h"
#include "sim/stack_setup.h"
#include "sim/stack_surface.h"
#include "sim/step_execute.h"

namespace fs = std::filesystem;

enum Phase {
    PHASE_LOAD,
    PHASE_SET_UP,
    PHASE_SIMULATION,
    PHASE_MESHES,
    PHASE_DRAWING,  // until the graphics are idle
    PHASE_READ_BACK,
    PHASE_SAVING,
    PHASE_COUNT,
};

static const char *const PHASE_NAMES[PHASE_COUNT] = {"load",    "set_up",    "simulation", "meshes",
                                                     "drawing", "read_back", "saving"};

struct PhaseMeter {
    f64 seconds[PHASE_COUNT];
    f64 peak_bytes[PHASE_COUNT];
};

struct RunFiles {
    std::wstring layout, process, output;
};

struct Graphics {
    PlatformGl *context;
    ShaderProgram *surface_program;
    ShaderProgram *point_program;
};

static f64 now_seconds() {
    return std::chrono::duration<f64>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

// Starts the system's record of the largest resident size anew; without effect where it cannot.
static void reset_peak() {
    std::ofstream("/proc/self/clear_refs") << "5";
}

static f64 peak_bytes() {
    std::ifstream status("/proc/self/status");
    for (std::string word; status >> word;) {
        if (word == "VmHWM:") {
            f64 kilobytes = 0.0;
            status >> kilobytes;
            return kilobytes * 1024.0;
        }
    }
    rusage usage = {};
    getrusage(RUSAGE_SELF, &usage);
    return static_cast<f64>(usage.ru_maxrss) * 1024.0;
}

// Runs one act and books it on its phase.
template <typename Act>
static void measure(PhaseMeter *meter, Phase phase, const Act &act) {
    reset_peak();
    const f64 start = now_seconds();
    act();
    meter->seconds[phase] += now_seconds() - start;
    const f64 peak = peak_bytes();
    meter->peak_bytes[phase] = peak > meter->peak_bytes[phase] ? peak : meter->peak_bytes[phase];
}

static PixelImage *make_picture(PhaseMeter *meter, const Stack *stack, const Graphics *graphics,
                                OffscreenTarget **target) {
    Camera *camera =
        camera_create(stack->width, stack->depth, stack->max_height, static_cast<f32>(stack->camera_angle));
    i32 height = scene_image_height(stack, camera, PICTURE_WIDTH);
    PixelImage *image = image_create(PICTURE_WIDTH, height, L"picture");
    measure(meter, PHASE_DRAWING, [&] {
        offscreen_recreate(target, PICTURE_WIDTH, height);
        const Scene scene = {stack, camera, graphics->surface_program, graphics->point_program,
                             PICTURE_WIDTH};
        scene_render(&scene, height);
        glFinish();
    });
    measure(meter, PHASE_READ_BACK, [&] { offscreen_read(image); });
    camera_free(camera);
    return image;
}

static void run_by_phases(PhaseMeter *meter, const RunFiles *files, const Graphics *graphics) {
    auto *layout = memory_new_zeroed<GdsDatabase>();
    measure(meter, PHASE_LOAD, [&] { gds_read(layout, files->layout.c_str()); });
    Stack *stack = nullptr;
    measure(meter, PHASE_SET_UP, [&] { stack = stack_create(files->process.c_str(), layout); });
    PixelImage **images = nullptr;
    i32 image_count = 0;
    i32 image_capacity = 0;
    OffscreenTarget *target = nullptr;
    for (i32 i = 0; stack != nullptr && i < stack->steps->count; ++i) {
        measure(meter, PHASE_SIMULATION, [&] { step_execute(stack, stack->steps->items[i]); });
        stack->max_height = stack_largest_height(stack);
        measure(meter, PHASE_MESHES, [&] {
            stack_refresh_layers(stack, true);
            stack_update_lines(stack);
        });
        stack->live_layer_count = stack_count_layers(stack);
        array_append(&images, &image_count, &image_capacity, make_picture(meter, stack, graphics, &target));
    }
    measure(meter, PHASE_SAVING, [&] {
        for (i32 i = 0; i < image_count; ++i) {
            const std::wstring path = files->output + L"/" + std::to_wstring(i) + L".bmp";
            image_save(images[i], path.c_str(), IMAGE_BMP);
        }
    });
    for (i32 i = 0; i < image_count; ++i) {
        image_free(images[i]);
    }
    memory_free(images);
    offscreen_free(target);
    stack_free(stack);
    gds_free(layout);
}

// The example's process file with N = 1000, in `folder`.
static std::wstring write_process_file(const fs::path &folder) {
    std::ifstream source(QUARN_EXAMPLES_FOLDER "/cmos-inverter/cmos_inverter.txt", std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(source), std::istreambuf_iterator<char>()};
    const size_t at = text.find("-N ") + 3;
    text.replace(at, text.find_first_of(" \n", at) - at, "1000");
    const fs::path path = folder / "run.txt";
    std::ofstream(path, std::ios::binary) << text;
    return path.wstring();
}

static void report(benchmark::State &state, const PhaseMeter &meter) {
    const f64 runs = static_cast<f64>(state.iterations());
    f64 largest = 0.0;
    for (i32 i = 0; i < PHASE_COUNT; ++i) {
        const std::string name = PHASE_NAMES[i];
        state.counters[name + "_s"] = meter.seconds[i] / runs;
        state.counters[name + "_peak_MB"] = meter.peak_bytes[i] / 1e6;
        largest = meter.peak_bytes[i] > largest ? meter.peak_bytes[i] : largest;
    }
    state.counters["peak_MB"] = largest / 1e6;
}

static void whole_run(benchmark::State &state) {
    const std::wstring data = fs::path(QUARN_DATA_FOLDER).wstring();
    Graphics graphics = {};
    graphics.context = platform_gl_create_offscreen(nullptr);
    if (graphics.context == nullptr || color_table_load_file((data + L"/colors.txt").c_str()) != 0) {
        state.SkipWithError("no OpenGL context, or no colour names");
        platform_gl_free(graphics.context);
        return;
    }
    render_state_init();
    graphics.surface_program = shader_program_load((data + L"/surface.shader").c_str());
    graphics.point_program = shader_program_load((data + L"/point.shader").c_str());
    const fs::path folder = fs::temp_directory_path() / "quarn-run-bench";
    fs::create_directories(folder);
    const RunFiles files = {fs::path(QUARN_EXAMPLES_FOLDER "/cmos-inverter/cmos_inverter.gds").wstring(),
                            write_process_file(folder), folder.wstring()};
    PhaseMeter meter = {};
    for (auto iteration : state) {
        static_cast<void>(iteration);
        run_by_phases(&meter, &files, &graphics);
    }
    report(state, meter);
    fs::remove_all(folder);
    shader_program_free(graphics.point_program);
    shader_program_free(graphics.surface_program);
    platform_gl_free(graphics.context);
    color_table_free();
}
BENCHMARK(whole_run)->Unit(benchmark::kSecond)->MeasureProcessCPUTime()->UseRealTime()->Iterations(1);
