// Reading, sizing and flattening of layouts. The file is made once in the system's folder for temporary
// files, of QUARN_BENCH_GDS_MB megabytes (200 without it), and deleted at the end.
#include <benchmark/benchmark.h>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>
#include "gds/gds_flatten.h"
#include "gds/gds_hierarchy.h"
#include "gds/gds_read.h"
#include "platform/owned_file.h"
#include "platform/platform.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_twin.h"

static constexpr i64 CELL_BYTES = 1 << 20;  // of one generated cell, about

static i64 file_megabytes() {
    const char *text = std::getenv("QUARN_BENCH_GDS_MB");
    const i64 megabytes = text != nullptr ? std::atoll(text) : 0;
    return megabytes > 0 ? megabytes : 200;
}

// Elements as a chip has them: mostly rectangles, some outlines of many points, paths and references.
static std::string cell_elements() {
    GdsBytes bytes;
    for (i32 i = 0; static_cast<i64>(bytes.bytes.size()) < CELL_BYTES; ++i) {
        i32 x = i % 100 * 1000;
        i32 y = i / 100 * 1000;
        bytes.box(static_cast<u16>(i % 30), x, y, x + 400, y + 700);
        if (i % 8 == 0) {
            bytes.path(31, 2, 100, {{x, y}, {x + 900, y}, {x + 900, y + 500}});
        }
        if (i % 16 == 0) {
            std::vector<Point> outline;
            outline.reserve(40);
            for (i32 k = 0; k < 40; ++k) {
                outline.push_back({x + k * 20, y + (k % 2) * 300});
            }
            bytes.boundary(32, outline).sref("LEAF", {x, y}, 0x8000, 1.0, 90.0);
        }
    }
    return bytes.bytes;
}

struct GeneratedFile {
    std::filesystem::path path;
    WideText wide_path;
    i64 size;

    GeneratedFile() {
        path = std::filesystem::temp_directory_path() / "quarn-bench-layout.gds";
        wide_path = platform_wide_from_system(path.string().c_str());
        std::ofstream stream(path, std::ios::binary);
        GdsBytes head = GdsBytes().head().begin("LEAF").box(1, 0, 0, 50, 80).end();
        const std::string elements = cell_elements();
        size = 0;
        for (i32 i = 0; size < file_megabytes() * 1000000; ++i) {
            const std::string name = "CELL" + std::to_string(i);
            std::string cell = (i == 0 ? head : GdsBytes()).begin(name).bytes;
            cell += elements + GdsBytes().end().bytes;
            stream.write(cell.data(), static_cast<std::streamsize>(cell.size()));
            size += static_cast<i64>(cell.size());
        }
        stream << GdsBytes().close().bytes;
    }

    ~GeneratedFile() {
        std::error_code error;
        std::filesystem::remove(path, error);
    }

    GeneratedFile(const GeneratedFile &) = delete;
    GeneratedFile &operator=(const GeneratedFile &) = delete;
};

static const GeneratedFile *generated_file() {
    static const GeneratedFile made_once;
    return &made_once;
}

static void set_bytes(benchmark::State *state) {
    state->SetBytesProcessed(static_cast<i64>(state->iterations()) * generated_file()->size);
}

// Only the bytes, through a buffer of the size that the reader uses.
static void bytes_only(benchmark::State &state) {
    std::vector<char> buffer(1 << 18);
    const wchar_t *path = generated_file()->wide_path.get();
    for ([[maybe_unused]] auto step : state) {
        const OwnedFile file(platform_file_open(path, "rb"));
        std::setvbuf(file.get(), nullptr, _IONBF, 0);
        size_t got = 0;
        while ((got = std::fread(buffer.data(), 1, buffer.size(), file.get())) > 0) {
            benchmark::DoNotOptimize(buffer[got - 1]);
        }
    }
    set_bytes(&state);
}
BENCHMARK(bytes_only)->Unit(benchmark::kMillisecond);

static void read_layout(benchmark::State &state) {
    const wchar_t *path = generated_file()->wide_path.get();
    i64 kept = 0;
    for ([[maybe_unused]] auto step : state) {
        Owned<GdsDatabase> database(memory_new_zeroed<GdsDatabase>());
        if (gds_read(database.get(), path) != 0) {
            state.SkipWithError("the generated file does not load");
        }
        kept = memory_live_blocks();
        state.PauseTiming();
        database.reset();
        state.ResumeTiming();
    }
    state.counters["blocks"] = static_cast<f64>(kept);
    set_bytes(&state);
}
BENCHMARK(read_layout)->Unit(benchmark::kMillisecond);

static Owned<GdsDatabase> read_bytes(const GdsBytes &stream) {
    const std::filesystem::path path = std::filesystem::temp_directory_path() / "quarn-bench-small.gds";
    std::ofstream(path, std::ios::binary) << stream.bytes;
    const WideText wide_path = platform_wide_from_system(path.string().c_str());
    Owned<GdsDatabase> database(memory_new_zeroed<GdsDatabase>());
    gds_read(database.get(), wide_path.get());
    std::filesystem::remove(path);
    return database;
}

// An array of `side` x `side` cells of ten polygons, a tenth of the width and height in the window.
static Owned<GdsDatabase> array_layout(u16 side, f64 degrees) {
    GdsBytes bytes;
    bytes.head().begin("TOP").sref("ARRAY", {0, 0}, 0, 1.0, degrees).end();
    bytes.begin("ARRAY").aref("CELL", side, side, {0, 0}, {side * 1000, 0}, {0, side * 1000}).end();
    bytes.begin("CELL");
    for (i32 i = 0; i < 10; ++i) {
        bytes.box(static_cast<u16>(i), i * 90, i * 90, i * 90 + 60, i * 90 + 80);
    }
    return read_bytes(bytes.end().close());
}

template <typename Flatten>
static void flatten_array(benchmark::State &state, Flatten flatten) {
    const i32 side = static_cast<i32>(state.range(0));
    const Owned<GdsDatabase> database =
        array_layout(static_cast<u16>(side), static_cast<f64>(state.range(1)));
    i64 polygons = 0;
    for ([[maybe_unused]] auto step : state) {
        Owned<PolygonList> list(polygon_list_create());
        FlattenContext context = {list.get(), {0, side * 100, side * 100, side * 200}, I64_MAX, 0, 0, 0.001F};
        flatten(&context, &database->cells[0]);
        polygons += list->count;
        state.PauseTiming();
        list.reset();
        state.ResumeTiming();
    }
    state.SetItemsProcessed(polygons);
}

static void flatten_walk(benchmark::State &state) {
    flatten_array(state, [](FlattenContext *context, GdsCell *cell) {
        const GdsInstance instance = {cell, GDS_PLACEMENT_IDENTITY, 1};
        gds_flatten(context, &instance);
    });
}
BENCHMARK(flatten_walk)
    ->ArgNames({"side", "degrees"})
    ->Args({100, 0})
    ->Args({1000, 0})
    ->Args({1000, 30})
    ->Unit(benchmark::kMillisecond);

static void flatten_twin(benchmark::State &state) {
    flatten_array(state, [](FlattenContext *context, GdsCell *cell) {
        twin_flatten(context, cell, GDS_PLACEMENT_IDENTITY);
    });
}
BENCHMARK(flatten_twin)
    ->ArgNames({"side", "degrees"})
    ->Args({100, 0})
    ->Args({1000, 0})
    ->Args({1000, 30})
    ->Unit(benchmark::kMillisecond);

// The largest array there is, cut to 100 elements.
static void flatten_largest(benchmark::State &state) {
    GdsBytes bytes;
    bytes.head().begin("TOP").sref("ARRAY", {0, 0}, 0, 1.0, static_cast<f64>(state.range(0))).end();
    bytes.begin("ARRAY").aref("CELL", 65535, 65535, {0, 0}, {655350, 0}, {0, 655350}).end();
    const Owned<GdsDatabase> database = read_bytes(bytes.begin("CELL").box(1, 0, 0, 4, 4).end().close());
    for ([[maybe_unused]] auto step : state) {
        Owned<PolygonList> list(polygon_list_create());
        FlattenContext context = {list.get(), {0, 300000, 100, 300100}, I64_MAX, 0, 0, 0.001F};
        const GdsInstance instance = {&database->cells[0], GDS_PLACEMENT_IDENTITY, 1};
        gds_flatten(&context, &instance);
    }
}
BENCHMARK(flatten_largest)->ArgName("degrees")->Arg(0)->Arg(30)->Unit(benchmark::kMicrosecond);

// Placements of a cell of scattered polygons, all of which have to be looked at, until the limit of steps.
static void flatten_to_the_limit(benchmark::State &state) {
    constexpr i32 COUNT = 20000;
    GdsBytes bytes;
    bytes.head().begin("TOP");
    for (i32 i = 0; i < COUNT; ++i) {
        bytes.sref("MANY", {i * 37 % 100000, i * 53 % 100000}, 0, 1.0, static_cast<f64>(state.range(0)));
    }
    bytes.end().begin("MANY");
    for (i32 i = 0; i < COUNT; ++i) {
        const i32 x = i * 7919 % 400000 - 200000;
        const i32 y = i * 6101 % 400000 - 200000;
        bytes.box(1, x, y, x + 10, y + 10);
    }
    const Owned<GdsDatabase> database = read_bytes(bytes.end().close());
    i64 steps = 0;
    for ([[maybe_unused]] auto step : state) {
        Owned<PolygonList> list(polygon_list_create());
        FlattenContext context = {list.get(), {50000, 50000, 50001, 50001}, I64_MAX, 100, 0, 0.001F};
        const GdsInstance instance = {&database->cells[0], GDS_PLACEMENT_IDENTITY, 1};
        gds_flatten(&context, &instance);
        steps += context.steps;
    }
    state.SetItemsProcessed(steps);
}
BENCHMARK(flatten_to_the_limit)->ArgName("degrees")->Arg(0)->Arg(30)->Unit(benchmark::kMillisecond);

// The extent of the largest array, first met under a rotation; 45 degrees is the hardest one for an
// array that is turned itself.
static void size_largest(benchmark::State &state) {
    GdsBytes bytes;
    bytes.head().begin("ARRAY").aref("CELL", 65535, 65535, {0, 0}, {655350, 655350}, {-655350, 655350}).end();
    const Owned<GdsDatabase> database = read_bytes(bytes.begin("CELL").box(1, 0, 0, 4, 4).end().close());
    const f32 angle = static_cast<f32>(state.range(0)) * 0.0174532925F;
    for ([[maybe_unused]] auto step : state) {
        database->cells[0].bbox_valid = 0;
        Box box = gds_cell_bbox(&database->cells[0], {{0, 0}, 1.0F, angle, 0}, 0);
        benchmark::DoNotOptimize(box);
    }
}
BENCHMARK(size_largest)->ArgName("degrees")->Arg(0)->Arg(30)->Arg(45)->Unit(benchmark::kMicrosecond);
