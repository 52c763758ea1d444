// run_bench.cpp: whole runs by phases: seconds and peak memory of each, and per picture the triangles drawn
// and the bytes loaded into the graphics' buffers. The order of calls is that of the worker, but that a
// picture is saved before the next step begins, so that each phase can be told by itself: the sum of the
// phases is more than a run takes. The pictures go to a folder of their own that is deleted afterwards.
//
//   run_bench [options of the benchmark library] [LAYOUT.gds]
//
// runs the CMOS example, and flip_flop.txt beside this file when the layout of that cell is given.
#include <benchmark/benchmark.h>
#include <GL/glew.h>
#include <sys/resource.h>

#include <chrono>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>

#include "app/app_state.h"
#include "app/run_stack.h"
#include "gds/gds_read.h"
#include "image/image_file.h"
#include "platform/memory.h"
#include "platform/owned.h"
#include "platform/platform.h"
#include "process/color_table.h"
#include "render/lines.h"
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
    f64 pictures, triangles, loaded_bytes;
};

// Bytes that went into buffers, counted through the pointer that GLEW calls.
static f64 loaded_bytes;
static PFNGLBUFFERDATAPROC buffer_data;

static void GLAPIENTRY count_buffer_data(GLenum target, GLsizeiptr size, const void *data, GLenum usage) {
    loaded_bytes += static_cast<f64>(size);
    buffer_data(target, size, data, usage);
}

struct RunFiles {
    std::wstring layout, process, output;
};

struct Graphics {
    Owned<PlatformGl> context;
    Owned<ShaderProgram> surface_program, point_program;
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

static Owned<PixelImage> make_picture(PhaseMeter *meter, const Stack *stack, const Graphics *graphics,
                                      OffscreenTarget **target) {
    const Owned<Camera> camera(
        camera_create(stack->width, stack->depth, stack->max_height, static_cast<f32>(stack->camera_angle)));
    const i32 height = scene_image_height(stack, camera.get(), &PLAIN_STYLE);
    Owned<PixelImage> image(image_create(PICTURE_WIDTH, height, L"picture"));
    measure(meter, PHASE_DRAWING, [&] {
        offscreen_recreate(target, PICTURE_WIDTH, height);
        const Scene scene = {stack, camera.get(), graphics->surface_program.get(),
                             graphics->point_program.get(), &PLAIN_STYLE};
        scene_render(&scene, height);
        glFinish();
    });
    measure(meter, PHASE_READ_BACK, [&] { offscreen_read(image.get()); });
    meter->pictures += 1.0;
    for (i32 i = 0; i < stack->layer_count; ++i) {
        meter->triangles += stack->layers[i] != nullptr ? stack->layers[i]->index_count / 3 : 0;
    }
    return image;
}

static void run_step(PhaseMeter *meter, Stack *stack, const ProcessStep *step) {
    measure(meter, PHASE_SIMULATION, [&] { step_execute(stack, step); });
    stack->max_height = stack_largest_height(stack);
    measure(meter, PHASE_MESHES, [&] {
        stack_refresh_layers(stack, true);
        stack_update_lines(stack);
    });
    stack->live_layer_count = stack_count_layers(stack);
}

static void run_by_phases(PhaseMeter *meter, const RunFiles *files, const Graphics *graphics) {
    const Owned<GdsDatabase> layout(memory_new_zeroed<GdsDatabase>());
    measure(meter, PHASE_LOAD, [&] { gds_read(layout.get(), files->layout.c_str()); });
    Stack *made = nullptr;
    measure(meter, PHASE_SET_UP, [&] { made = stack_create(files->process.c_str(), layout.get()); });
    const Owned<Stack> stack(made);
    platform_memory_give_back();
    OffscreenTarget *target = nullptr;
    for (i32 i = 0; made != nullptr && i < made->steps->count; ++i) {
        if (made->steps->items[i]->kind != STEP_DUMP) {
            run_step(meter, made, made->steps->items[i]);
            const Owned<PixelImage> image = make_picture(meter, made, graphics, &target);
            const std::wstring path = files->output + L"/" + std::to_wstring(i) + L".png";
            measure(meter, PHASE_SAVING, [&] { image_save(image.get(), path.c_str(), IMAGE_PNG); });
        }
    }
    const Owned<OffscreenTarget> owner(target);
}

// A process file with another N, in `folder`.
static std::wstring write_process_file(const fs::path &source_path, i64 grid_n, const fs::path &folder) {
    std::ifstream source(source_path, std::ios::binary);
    std::string text{std::istreambuf_iterator<char>(source), std::istreambuf_iterator<char>()};
    const size_t at = text.find("-N ") + 3;
    text.replace(at, text.find_first_of(" \n", at) - at, std::to_string(grid_n));
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
    state.counters["triangles_a_picture"] = meter.triangles / meter.pictures;
    state.counters["loaded_MB_a_picture"] = meter.loaded_bytes / meter.pictures / 1e6;
}

static void whole_run(benchmark::State &state, const fs::path &layout, const fs::path &process) {
    const std::wstring data = fs::path(QUARN_DATA_FOLDER).wstring();
    Graphics graphics;
    graphics.context.reset(platform_gl_create_offscreen(nullptr));
    if (graphics.context == nullptr || color_table_load_file((data + L"/colors.txt").c_str()) != 0) {
        state.SkipWithError("no OpenGL context, or no colour names");
        return;
    }
    render_state_init();
    graphics.surface_program.reset(shader_program_load((data + L"/surface.shader").c_str()));
    graphics.point_program.reset(shader_program_load((data + L"/point.shader").c_str()));
    buffer_data = glBufferData;
    glBufferData = count_buffer_data;
    const fs::path folder = fs::temp_directory_path() / "quarn-run-bench";
    fs::create_directories(folder);
    const RunFiles files = {layout.wstring(), write_process_file(process, state.range(0), folder),
                            folder.wstring()};
    PhaseMeter meter = {};
    loaded_bytes = 0.0;
    for (auto iteration : state) {
        static_cast<void>(iteration);
        run_by_phases(&meter, &files, &graphics);
    }
    meter.loaded_bytes = loaded_bytes;
    report(state, meter);
    glBufferData = buffer_data;
    fs::remove_all(folder);
    color_table_free();
}

static void add_run(const char *name, const fs::path &layout, const fs::path &process) {
    benchmark::RegisterBenchmark(name, whole_run, layout, process)
        ->Arg(1000)
        ->Arg(2000)
        ->Unit(benchmark::kSecond)
        ->MeasureProcessCPUTime()
        ->UseRealTime()
        ->Iterations(1);
}

int main(int count, char **arguments) {
    benchmark::Initialize(&count, arguments);
    const fs::path example = fs::path(QUARN_EXAMPLES_FOLDER) / "cmos-inverter";
    add_run("whole_run", example / "cmos_inverter.gds", example / "cmos_inverter.txt");
    if (count > 1) {
        add_run("flip_flop", arguments[1], fs::path(QUARN_BENCH_FOLDER) / "flip_flop.txt");
    }
    benchmark::RunSpecifiedBenchmarks();
    benchmark::Shutdown();
    return 0;
}
