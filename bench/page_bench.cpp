// What a page takes for a step of a run: a stack of N x 3 N / 4 points and 15 films with a trench in them, of
// which a step changes none, one or all; and the parts of that work on one plane of heights.
#include <benchmark/benchmark.h>
#include <cmath>
#include "export/page_plane.h"
#include "export/page_writer.h"
#include "tests/support/test_stack.h"

static constexpr i32 FILMS = 15;
static constexpr ExportFacts FACTS = {"Quarn", nullptr, nullptr, nullptr, ""};

// Films of even thickness over a trench with round edges.
static Owned<Stack> trench_stack(i32 n) {
    Owned<Stack> stack(memory_new_zeroed<Stack>());
    stack->grid_n = n;
    stack->grid_m = n * 3 / 4;
    stack->steps = step_list_create();
    step_list_append(stack->steps, memory_new_zeroed<ProcessStep>());
    const Owned<f32[]> surface = memory_scratch_zeroed<f32>(stack_point_count(stack.get()));
    for (i64 i = 0; i < stack_point_count(stack.get()); ++i) {
        const f64 across = 20.0 * (static_cast<f64>(i % n) / n - 0.5);
        surface[i] = static_cast<f32>(1.0 - 0.3 * std::exp(-across * across));
    }
    for (i32 slot = 0; slot < FILMS; ++slot) {
        Layer *layer = test_layer(stack.get(), "OX", 0.0F, 0.0F);
        for (i64 i = 0; i < stack_point_count(stack.get()); ++i) {
            layer->bottom[i] = surface[i];
            surface[i] += 0.1F;
            layer->top[i] = surface[i];
        }
    }
    return stack;
}

// Takes something away from the top of a film, another amount each time.
static void etch_film(const Stack *stack, i32 slot, i64 round) {
    Layer *layer = stack->layers[slot];
    const f32 by = 1e-5F * static_cast<f32>(1 + round % 7);
    for (i64 i = 0; i < stack_point_count(stack); i += 1 + i % 3) {
        layer->top[i] -= by;
    }
}

static void add_step(benchmark::State &state) {
    const Owned<Stack> stack = trench_stack(static_cast<i32>(state.range(0)));
    const Owned<PageWriter> page(page_writer_create(stack.get(), &FACTS, ""));
    const ExportStep step = {stack.get(), 0, 0, L"", nullptr, 1, &FACTS};
    page_writer_add(page.get(), &step);
    i64 round = 0;
    while (state.KeepRunning()) {
        state.PauseTiming();
        for (i32 slot = 0; slot < state.range(1); ++slot) {
            etch_film(stack.get(), slot, round);
        }
        ++round;
        state.ResumeTiming();
        page_writer_add(page.get(), &step);
    }
}
BENCHMARK(add_step)
    ->ArgNames({"N", "changed"})
    ->Args({400, 1})
    ->Args({1000, 0})
    ->Args({1000, 1})
    ->Args({1000, FILMS})
    ->Unit(benchmark::kMillisecond);

static void first_step(benchmark::State &state) {
    const Owned<Stack> stack = trench_stack(static_cast<i32>(state.range(0)));
    const ExportStep step = {stack.get(), 0, 0, L"", nullptr, 1, &FACTS};
    while (state.KeepRunning()) {
        const Owned<PageWriter> page(page_writer_create(stack.get(), &FACTS, ""));
        page_writer_add(page.get(), &step);
    }
}
BENCHMARK(first_step)->ArgName("N")->Arg(1000)->Unit(benchmark::kMillisecond);

static void quantize(benchmark::State &state) {
    const Owned<Stack> stack = trench_stack(1000);
    const i64 points = stack_point_count(stack.get());
    const Owned<i32[]> plane = memory_scratch<i32>(points);
    while (state.KeepRunning()) {
        page_plane_quantize(stack->layers[1]->top, points, 1e6, plane.get());
        benchmark::DoNotOptimize(plane.get());
    }
    state.SetItemsProcessed(static_cast<i64>(state.iterations()) * points);
}
BENCHMARK(quantize)->Unit(benchmark::kMillisecond);

static void remainder_of_plane(benchmark::State &state) {
    const Owned<Stack> stack = trench_stack(1000);
    const i64 points = stack_point_count(stack.get());
    const Owned<i32[]> plane = memory_scratch<i32>(points);
    const Owned<i32[]> reference = memory_scratch<i32>(points);
    const Owned<u32[]> out = memory_scratch<u32>(points);
    page_plane_quantize(stack->layers[1]->top, points, 1e6, plane.get());
    page_plane_quantize(stack->layers[1]->bottom, points, 1e6, reference.get());
    while (state.KeepRunning()) {
        page_plane_remainder(plane.get(), reference.get(), stack->grid_n, stack->grid_m, out.get());
        benchmark::DoNotOptimize(out.get());
    }
    state.SetItemsProcessed(static_cast<i64>(state.iterations()) * points);
}
BENCHMARK(remainder_of_plane)->Unit(benchmark::kMillisecond);
