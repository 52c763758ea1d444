// The dump of a stack of N x 3 N / 4 points and 15 layers to a file, and its plain twin by printf; and one
// number as text, beside the two ways that the libraries have for it.
#include <benchmark/benchmark.h>
#include <charconv>
#include <cstdio>
#include <filesystem>
#include "platform/memory.h"
#include "platform/owned_file.h"
#include "sim/dump.h"
#include "sim/fixed_text.h"
#include "tests/sim/plain_dump.h"
#include "tests/support/test_stack.h"

static constexpr i32 LAYERS = 15;

// Heights with as many digits as those of real stacks.
static Owned<Stack> dumped_stack(i32 n) {
    Owned<Stack> stack(memory_new_zeroed<Stack>());
    stack->grid_n = n;
    stack->grid_m = n * 3 / 4;
    stack->cells = memory_new_zeroed<GridCell>(stack_point_count(stack.get()));
    for (i32 slot = 0; slot < LAYERS; ++slot) {
        Layer *layer = test_layer(stack.get(), "OX", 0.0F, 0.0F);
        for (i64 i = 0; i < stack_point_count(stack.get()); ++i) {
            layer->bottom[i] = stack->cells[i].height;
            layer->top[i] = layer->bottom[i] + 0.1F + static_cast<f32>(i % 977) * 1e-5F;
            stack->cells[i] = {layer->top[i], slot};
        }
    }
    return stack;
}

static void dump(benchmark::State *state, bool plain) {
    const Owned<Stack> stack = dumped_stack(static_cast<i32>(state->range(0)));
    const std::filesystem::path folder = std::filesystem::temp_directory_path() / "quarn-dump-bench";
    std::filesystem::create_directories(folder);
    const std::wstring folder_name = folder.wstring();
    stack->dump_folder = folder_name.c_str();
    const std::filesystem::path path = folder / "VertexData.txt";
    while (state->KeepRunning()) {
        if (plain) {
            const OwnedFile file(std::fopen(path.string().c_str(), "w"));
            plain_dump(file.get(), stack.get());
        } else {
            dump_run(stack.get());
        }
    }
    const auto bytes = static_cast<i64>(std::filesystem::file_size(path));
    state->SetBytesProcessed(static_cast<i64>(state->iterations()) * bytes);
    std::filesystem::remove_all(folder);
}

static void dump_to_file(benchmark::State &state) {
    dump(&state, false);
}

static void dump_to_file_plain(benchmark::State &state) {
    dump(&state, true);
}
BENCHMARK(dump_to_file)->ArgName("N")->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond);
BENCHMARK(dump_to_file_plain)->ArgName("N")->Arg(500)->Arg(1000)->Unit(benchmark::kMillisecond);

static char *number_by_own(char *out, f32 value, i32 decimals) {
    return fixed_text_write(out, value, decimals);
}

static char *number_by_to_chars(char *out, f32 value, i32 decimals) {
    return std::to_chars(out, out + FIXED_TEXT_SIZE, value, std::chars_format::fixed, decimals).ptr;
}

static char *number_by_printf(char *out, f32 value, i32 decimals) {
    return out + std::snprintf(out, FIXED_TEXT_SIZE, "%.*f", decimals, static_cast<f64>(value));
}

using NumberWriter = char *(*)(char *out, f32 value, i32 decimals);

// Heights of some micrometres, a picometre and more apart.
static void number_as_text(benchmark::State &state, NumberWriter write) {
    const i32 decimals = static_cast<i32>(state.range(0));
    char text[FIXED_TEXT_SIZE];
    i64 i = 0;
    while (state.KeepRunning()) {
        const f32 value = 0.1F + static_cast<f32>(i++ % 9973) * 1.7e-4F;
        benchmark::DoNotOptimize(write(text, value, decimals));
        benchmark::ClobberMemory();
    }
}
BENCHMARK_CAPTURE(number_as_text, own, number_by_own)->ArgName("decimals")->Arg(6)->Arg(10);
BENCHMARK_CAPTURE(number_as_text, to_chars, number_by_to_chars)->ArgName("decimals")->Arg(6)->Arg(10);
BENCHMARK_CAPTURE(number_as_text, printf, number_by_printf)->ArgName("decimals")->Arg(6)->Arg(10);
