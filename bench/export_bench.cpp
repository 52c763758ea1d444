// Files of a step of a made-up section of 20 films over N x N grid points: a substrate with trenches, films
// all over it, and lines, walls and patches with slopes; the last films are level nowhere. What is written
// goes to a file that is deleted at once.
#include <benchmark/benchmark.h>

#include <cmath>
#include <cstdio>

#include "export/export_formats.h"
#include "export/solid_walk.h"
#include "platform/owned_file.h"
#include "tests/export/solid_check.h"
#include "tests/support/test_stack.h"

static constexpr f32 WIDTH = 5.0F;
static constexpr i32 FILM_COUNT = 20;

// Micrometres; x and y in parts of the section.
static f32 film_thickness(i32 film, f32 x, f32 y) {
    const bool trench = std::fabs(x - 0.25F) < 0.08F || (std::fabs(x - 0.7F) < 0.06F && y < 0.6F);
    const f32 inside = std::fmin(0.2F - std::fabs(x - 0.25F), 0.25F - std::fabs(y - 0.5F));
    const f32 round = std::hypot(x - 0.6F, y - 0.5F);
    switch (film % 5) {
        case 0: return film > 0 ? 0.02F : trench ? 0.1F : 0.3F;
        case 1: return 0.05F + (film > 15 ? 0.01F * std::sin(12.0F * x) * std::cos(9.0F * y) : 0.0F);
        case 2: return std::fabs(x - 0.04F * static_cast<f32>(film)) < 0.05F ? 0.3F : 0.0F;
        case 3: return std::fmax(0.0F, std::fmin(0.35F, inside * 10.0F));
        default: return round < 0.3F ? 0.1F : 0.0F;
    }
}

static Owned<Stack> bench_stack(i32 grid_n) {
    Owned<Stack> stack(memory_new_zeroed<Stack>());
    stack->grid_n = stack->grid_m = grid_n;
    stack->width = stack->depth = WIDTH;
    stack->spacing = WIDTH / static_cast<f32>(grid_n);
    const Owned<f32[]> surface = memory_scratch_zeroed<f32>(stack_point_count(stack.get()));
    for (i32 film = 0; film < FILM_COUNT; ++film) {
        Layer *layer = test_layer(stack.get(), "FILM", 0.0F, 0.0F);
        layer->color[3] = 1.0F;
        for (i32 m = 0; m < grid_n; ++m) {
            for (i32 n = 0; n < grid_n; ++n) {
                const i64 point = test_point(stack.get(), n, m);
                layer->bottom[point] = surface[point];
                surface[point] += film_thickness(film, static_cast<f32>(n) / static_cast<f32>(grid_n),
                                                 static_cast<f32>(m) / static_cast<f32>(grid_n));
                layer->top[point] = surface[point];
            }
        }
    }
    return stack;
}

static void count_bytes(benchmark::State &state, i64 bytes) {
    state.counters["MB"] = static_cast<f64>(bytes) / 1e6;
    state.SetBytesProcessed(state.iterations() * bytes);
}

// Arguments: the format, N.
static void bench_write(benchmark::State &state) {
    const ExportFormatForm *form = &EXPORT_FORMATS[state.range(0)];
    const Owned<Stack> stack = bench_stack(static_cast<i32>(state.range(1)));
    const ExportFacts facts = {"Quarn", L"layout.gds", L"process.txt", nullptr, "2024-05-31 17:05"};
    const ExportStep step = {stack.get(), 0, 0, L"The substrate", nullptr, 1.0F, &facts};
    i64 bytes = 0;
    for (auto iteration : state) {
        static_cast<void>(iteration);
        const OwnedFile file(std::tmpfile());
        wchar_t reason[EXPORT_REASON_SIZE] = L"";
        if (file == nullptr || !form->write(&step, file.get(), reason)) {
            state.SkipWithError("the file could not be written");
            return;
        }
        bytes = std::ftell(file.get());
    }
    state.SetLabel(form->name);
    count_bytes(state, bytes);
}

static bool count_triangles(void *context, i32 slot, const SolidMesh *mesh) {
    static_cast<void>(slot);
    *static_cast<i64 *>(context) += mesh->index_count / 3;
    return true;
}

// The meshes alone, with blocks of level quads.
static void bench_solids(benchmark::State &state) {
    const Owned<Stack> stack = bench_stack(static_cast<i32>(state.range(0)));
    i64 triangles = 0;
    for (auto iteration : state) {
        static_cast<void>(iteration);
        triangles = 0;
        solid_walk(stack.get(), count_triangles, &triangles);
    }
    state.counters["triangles"] = static_cast<f64>(triangles);
    state.SetItemsProcessed(state.iterations() * stack_point_count(stack.get()) * FILM_COUNT);
}

// Their plain twins, triangle by triangle.
static void bench_solids_plain(benchmark::State &state) {
    const Owned<Stack> stack = bench_stack(static_cast<i32>(state.range(0)));
    size_t triangles = 0;
    for (auto iteration : state) {
        static_cast<void>(iteration);
        triangles = 0;
        const SolidFloor floor = solid_floor_create(stack.get());
        for (i32 slot = 0; slot < stack->layer_count; ++slot) {
            const SolidFilm film = solid_film_create(stack.get(), slot, &floor);
            triangles += plain_solid(&film).corners.size() / 3;
        }
    }
    state.counters["triangles"] = static_cast<f64>(triangles);
    state.SetItemsProcessed(state.iterations() * stack_point_count(stack.get()) * FILM_COUNT);
}

BENCHMARK(bench_write)
    ->ArgsProduct({{EXPORT_CSV, EXPORT_GLB, EXPORT_STL}, {400, 1000}})
    ->ArgNames({"format", "N"})
    ->Unit(benchmark::kMillisecond);
BENCHMARK(bench_solids)->Arg(400)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(bench_solids_plain)->Arg(400)->Arg(1000)->Unit(benchmark::kMillisecond);
