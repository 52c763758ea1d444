// The kernels of the simulation at grid sizes N x N / 2 and radii in grid points. Each prints the time
// per grid point; at the smallest size the plain twin of the tests runs beside it. "blocks" is a flat
// film with rectangular steps, as real stacks are; "rough" has another height at every point; with
// "misfit" the edge of the disc does not fit it, as happens for radii on a distance of the table.
#include <benchmark/benchmark.h>
#include <random>
#include <vector>
#include "platform/memory.h"
#include "sim/kernels/etch_kernels.h"
#include "sim/kernels/grid_dilate.h"
#include "sim/kernels/grid_smooth.h"
#include "sim/kernels/offsets_sorted.h"
#include "sim/layer.h"
#include "sim/stack_setup.h"
#include "sim/stack_surface.h"
#include "tests/sim/kernels/reference.h"

static constexpr f32 SPACING = 7.3F / 333.0F;
static constexpr i32 MARGIN = 3;  // reach of the table beyond the disc, grid points

// A disc from a table just large enough for it; the radius lies a little above a whole number of grid
// points.
struct BenchDisc {
    Owned<Disc> disc;
    reference::PointLists lists;

    BenchDisc(i32 n, i32 m, i32 radius_points) {
        const i32 reach = radius_points + MARGIN;
        i32 count = 0;
        const Owned<GridOffset[]> offsets =
            offsets_create(n < reach ? n : reach, m < reach ? m : reach, SPACING, &count);
        offsets_sort_by_distance(offsets.get(), count);
        const f32 radius = (static_cast<f32>(radius_points) + 0.01F) * SPACING;
        disc.reset(disc_create(offsets.get(), count, SPACING, radius));
        lists.points.assign(disc->points, disc->points + disc->count);
        lists.edge.assign(disc->edge, disc->edge + disc->edge_count);
    }

    // Leaves out the edge point of one row.
    void make_edge_misfit() { disc->edge_count -= disc->edge_count > 3 ? 1 : 0; }
};

static u32 next_random(std::mt19937 *random) {
    return static_cast<u32>((*random)());
}

static std::vector<f32> rough_grid(i32 n, i32 m) {
    std::mt19937 random(7);
    std::vector<f32> grid(static_cast<size_t>(n) * static_cast<size_t>(m));
    for (f32 &value : grid) {
        value = static_cast<f32>(next_random(&random) % 1000000U) * 1e-6F;
    }
    return grid;
}

static std::vector<f32> block_grid(i32 n, i32 m) {
    std::mt19937 random(8);
    std::vector<f32> grid(static_cast<size_t>(n) * static_cast<size_t>(m), 0.7F);
    for (i32 block = 0; block < 40; ++block) {
        const i32 left = static_cast<i32>(next_random(&random) % static_cast<u32>(n));
        const i32 low = static_cast<i32>(next_random(&random) % static_cast<u32>(m));
        const f32 height = static_cast<f32>(next_random(&random) % 4U) * 0.45F;
        for (i32 row = low; row < m && row < low + m / 8; ++row) {
            for (i32 column = left; column < n && column < left + n / 8; ++column) {
                grid[static_cast<size_t>(row) * static_cast<size_t>(n) + static_cast<size_t>(column)] =
                    height;
            }
        }
    }
    return grid;
}

static void report_points(benchmark::State *state, i64 points) {
    const auto done = static_cast<f64>(state->iterations()) * static_cast<f64>(points);
    state->SetItemsProcessed(static_cast<i64>(done));
    state->counters["s/point"] =
        benchmark::Counter(done, benchmark::Counter::kIsRate | benchmark::Counter::kInvert);
}

static void offsets_table(benchmark::State &state) {
    const i32 n = static_cast<i32>(state.range(0));
    const i32 m = n / 2;
    i32 count = 0;
    while (state.KeepRunning()) {
        const Owned<GridOffset[]> offsets = offsets_create_sorted(n, m, SPACING, &count);
        benchmark::DoNotOptimize(offsets.get());
    }
    report_points(&state, count);
}
BENCHMARK(offsets_table)->ArgName("N")->Arg(500)->Arg(1000)->Arg(2000)->Unit(benchmark::kMillisecond);

// All of it sorted, instead of a quarter.
static void offsets_table_whole(benchmark::State &state) {
    const i32 n = static_cast<i32>(state.range(0));
    i32 count = 0;
    while (state.KeepRunning()) {
        const Owned<GridOffset[]> offsets = offsets_create(n, n / 2, SPACING, &count);
        offsets_sort_by_distance(offsets.get(), count);
        benchmark::DoNotOptimize(offsets.get());
    }
    report_points(&state, count);
}
BENCHMARK(offsets_table_whole)->ArgName("N")->Arg(500)->Arg(1000)->Arg(2000)->Unit(benchmark::kMillisecond);

static void offsets_table_plain(benchmark::State &state) {
    const i32 n = static_cast<i32>(state.range(0));
    size_t count = 0;
    while (state.KeepRunning()) {
        std::vector<GridOffset> offsets = reference::offsets(n, n / 2, SPACING);
        reference::sort_by_distance(&offsets);
        count = offsets.size();
    }
    report_points(&state, static_cast<i64>(count));
}
BENCHMARK(offsets_table_plain)->ArgName("N")->Arg(500)->Unit(benchmark::kMillisecond)->Iterations(1);

// Cuts discs from the table of the whole grid.
static void disc_lists(benchmark::State &state) {
    const i32 n = 1000;
    i32 count = 0;
    const Owned<GridOffset[]> offsets = offsets_create(n, n / 2, SPACING, &count);
    offsets_sort_by_distance(offsets.get(), count);
    while (state.KeepRunning()) {
        const f32 radius = static_cast<f32>(state.range(0)) * SPACING;
        const Owned<Disc> disc(disc_create(offsets.get(), count, SPACING, radius));
        benchmark::DoNotOptimize(disc.get());
    }
}
BENCHMARK(disc_lists)->ArgName("radius")->Arg(5)->Arg(20)->Arg(100)->Unit(benchmark::kMicrosecond);

using Kernel = void (*)(const Disc *, GridView, f32 *);
using Twin = void (*)(const reference::PointLists &, const f32 *, f32 *, i32, i32);

static void run_kernel(benchmark::State *state, Kernel kernel, const std::vector<f32> &grid, bool misfit) {
    const i32 n = static_cast<i32>(state->range(0));
    const i32 m = n / 2;
    BenchDisc disc(n, m, static_cast<i32>(state->range(1)));
    if (misfit) {
        disc.make_edge_misfit();
    }
    std::vector<f32> output(grid.size());
    while (state->KeepRunning()) {
        kernel(disc.disc.get(), {grid.data(), n, m}, output.data());
        benchmark::ClobberMemory();
    }
    report_points(state, static_cast<i64>(grid.size()));
}

static void run_twin(benchmark::State *state, Twin twin, const std::vector<f32> &grid) {
    const i32 n = static_cast<i32>(state->range(0));
    const i32 m = n / 2;
    const BenchDisc disc(n, m, static_cast<i32>(state->range(1)));
    std::vector<f32> output(grid.size());
    while (state->KeepRunning()) {
        twin(disc.lists, grid.data(), output.data(), n, m);
        benchmark::ClobberMemory();
    }
    report_points(state, static_cast<i64>(grid.size()));
}

static i32 columns_of(const benchmark::State &state) {
    return static_cast<i32>(state.range(0));
}

static void dilate_blocks(benchmark::State &state) {
    const i32 n = columns_of(state);
    run_kernel(&state, grid_dilate_disc, block_grid(n, n / 2), false);
}
static void dilate_rough(benchmark::State &state) {
    const i32 n = columns_of(state);
    run_kernel(&state, grid_dilate_disc, rough_grid(n, n / 2), false);
}
static void dilate_blocks_misfit(benchmark::State &state) {
    const i32 n = columns_of(state);
    run_kernel(&state, grid_dilate_disc, block_grid(n, n / 2), true);
}
static void dilate_rough_misfit(benchmark::State &state) {
    const i32 n = columns_of(state);
    run_kernel(&state, grid_dilate_disc, rough_grid(n, n / 2), true);
}
static void erode_blocks(benchmark::State &state) {
    const i32 n = columns_of(state);
    run_kernel(&state, grid_erode_disc, block_grid(n, n / 2), false);
}
static void smooth_rough(benchmark::State &state) {
    const i32 n = columns_of(state);
    run_kernel(&state, grid_smooth_disc, rough_grid(n, n / 2), false);
}
static void dilate_blocks_plain(benchmark::State &state) {
    const i32 n = columns_of(state);
    run_twin(&state, reference::dilate, block_grid(n, n / 2));
}
static void dilate_rough_plain(benchmark::State &state) {
    const i32 n = columns_of(state);
    run_twin(&state, reference::dilate, rough_grid(n, n / 2));
}
static void smooth_rough_plain(benchmark::State &state) {
    const i32 n = columns_of(state);
    run_twin(&state, reference::smooth, rough_grid(n, n / 2));
}

static void all_sizes(benchmark::internal::Benchmark *bench) {
    bench->ArgNames({"N", "radius"})->ArgsProduct({{500, 1000, 2000}, {5, 20, 100}});
    bench->Unit(benchmark::kMillisecond);
}
static void plain_sizes(benchmark::internal::Benchmark *bench) {
    bench->ArgNames({"N", "radius"})->ArgsProduct({{500}, {5, 20, 100}});
    bench->Unit(benchmark::kMillisecond)->Iterations(1);
}
// The plain maximum of a flat film takes every point's whole disc.
static void short_plain_sizes(benchmark::internal::Benchmark *bench) {
    bench->ArgNames({"N", "radius"})->ArgsProduct({{500}, {5, 20}});
    bench->Unit(benchmark::kMillisecond)->Iterations(1);
}
BENCHMARK(dilate_blocks)->Apply(all_sizes);
BENCHMARK(dilate_blocks_misfit)->Apply(all_sizes);
BENCHMARK(dilate_rough)->Apply(all_sizes);
BENCHMARK(dilate_rough_misfit)->Apply(all_sizes);
BENCHMARK(erode_blocks)->Apply(all_sizes);
BENCHMARK(smooth_rough)->Apply(all_sizes);
BENCHMARK(dilate_blocks_plain)->Apply(short_plain_sizes);
BENCHMARK(dilate_rough_plain)->Apply(plain_sizes);
BENCHMARK(smooth_rough_plain)->Apply(plain_sizes);

static std::vector<u8> striped_mask(i32 n, i32 m) {
    std::vector<u8> mask(static_cast<size_t>(n) * static_cast<size_t>(m));
    for (size_t i = 0; i < mask.size(); ++i) {
        const size_t column = i % static_cast<size_t>(n);
        mask[i] = column / 50 % 2 == 0 ? 1 : 0;
    }
    return mask;
}

static void mask_filter(benchmark::State &state) {
    const i32 n = columns_of(state);
    const BenchDisc disc(n, n / 2, static_cast<i32>(state.range(1)));
    const std::vector<u8> mask = striped_mask(n, n / 2);
    std::vector<u8> output(mask.size());
    while (state.KeepRunning()) {
        mask_apply_resolution(disc.disc.get(), mask.data(), output.data(), n, n / 2);
        benchmark::ClobberMemory();
    }
    report_points(&state, static_cast<i64>(mask.size()));
}
BENCHMARK(mask_filter)->Apply(all_sizes);

static void mask_filter_plain(benchmark::State &state) {
    const i32 n = columns_of(state);
    const BenchDisc disc(n, n / 2, static_cast<i32>(state.range(1)));
    const std::vector<u8> mask = striped_mask(n, n / 2);
    std::vector<u8> output(mask.size());
    while (state.KeepRunning()) {
        reference::apply_resolution(disc.lists, mask.data(), output.data(), n, n / 2);
        benchmark::ClobberMemory();
    }
    report_points(&state, static_cast<i64>(mask.size()));
}
BENCHMARK(mask_filter_plain)->Apply(plain_sizes);

// A comb of 2000 teeth (8004 points) over the whole mask, or a thousand small squares.
static std::vector<std::vector<FlatPoint>> raster_points(bool comb, f32 size) {
    std::vector<std::vector<FlatPoint>> polygons;
    const i32 count = comb ? 1 : 1000;
    for (i32 k = 0; k < count; ++k) {
        std::vector<FlatPoint> points;
        if (comb) {
            for (i32 tooth = 0; tooth < 2000; ++tooth) {
                const f32 x = size * static_cast<f32>(tooth) / 2000.0F;
                const f32 next = size * (static_cast<f32>(tooth) + 0.5F) / 2000.0F;
                points.insert(points.end(), {{x, 0.1F * size}, {x, size}, {next, size}, {next, 0.1F * size}});
            }
            points.insert(points.end(), {{size, 0.0F}, {0.0F, 0.0F}});
        } else {
            const f32 x = size * static_cast<f32>(k % 40) / 40.0F;
            const i32 line = k / 40;
            const f32 y = size * static_cast<f32>(line) / 40.0F;
            const f32 side = size / 70.0F;
            points = {{x, y}, {x + side, y}, {x + side, y + side}, {x, y + side}, {x, y}};
        }
        polygons.push_back(points);
    }
    return polygons;
}

static std::vector<FlatPolygon> raster_polygons(std::vector<std::vector<FlatPoint>> *points) {
    std::vector<FlatPolygon> polygons;
    for (std::vector<FlatPoint> &corners : *points) {
        FlatPolygon polygon = {
            corners.data(), static_cast<i32>(corners.size()), 1, 0, 1e9F, 1e9F, 0.0F, 0.0F};
        for (const FlatPoint &point : corners) {
            polygon.x_min = point.x < polygon.x_min ? point.x : polygon.x_min;
            polygon.y_min = point.y < polygon.y_min ? point.y : polygon.y_min;
            polygon.x_max = point.x > polygon.x_max ? point.x : polygon.x_max;
            polygon.y_max = point.y > polygon.y_max ? point.y : polygon.y_max;
        }
        polygons.push_back(polygon);
    }
    return polygons;
}

static void rasterize(benchmark::State *state, bool comb, bool plain) {
    const i32 n = static_cast<i32>(state->range(0));
    std::vector<std::vector<FlatPoint>> points = raster_points(comb, static_cast<f32>(n) * SPACING);
    std::vector<FlatPolygon> polygons = raster_polygons(&points);
    PolygonList list = {};
    list.items = polygons.data();
    list.count = static_cast<i32>(polygons.size());
    std::vector<u8> mask(static_cast<size_t>(n) * static_cast<size_t>(n));
    while (state->KeepRunning()) {
        if (plain) {
            benchmark::DoNotOptimize(
                reference::rasterize(&list, mask.data(), n, n, SPACING, {1, EVERY_DATATYPE}, 1));
        } else {
            benchmark::DoNotOptimize(
                mask_rasterize(&list, mask.data(), n, n, SPACING, {1, EVERY_DATATYPE}, 1));
        }
    }
    report_points(state, static_cast<i64>(mask.size()));
}
static void rasterize_comb(benchmark::State &state) {
    rasterize(&state, true, false);
}
static void rasterize_squares(benchmark::State &state) {
    rasterize(&state, false, false);
}
static void rasterize_squares_plain(benchmark::State &state) {
    rasterize(&state, false, true);
}
BENCHMARK(rasterize_comb)->ArgName("N")->Arg(500)->Arg(1000)->Arg(2500)->Unit(benchmark::kMillisecond);
BENCHMARK(rasterize_squares)->ArgName("N")->Arg(500)->Arg(1000)->Arg(2500)->Unit(benchmark::kMillisecond);
BENCHMARK(rasterize_squares_plain)->ArgName("N")->Arg(500)->Unit(benchmark::kMillisecond)->Iterations(1);

// Lines of resist 50 points wide and 20 spacings high, so that walls of 45 degrees and flatter
// meet and those of 80 do not.
static void run_taper(benchmark::State *state, bool plain, bool open) {
    const i32 n = static_cast<i32>(state->range(0));
    const i32 m = n / 2;
    i32 count = 0;
    const Owned<GridOffset[]> offsets = offsets_create(n, m, SPACING, &count);
    offsets_sort_by_distance(offsets.get(), count);
    std::vector<u8> mask = striped_mask(n, m);
    if (!open) {
        mask.assign(mask.size(), 1);
    }
    const std::vector<f32> bottom(mask.size(), 0.0F);
    const std::vector<f32> resist(mask.size(), 20.0F * SPACING);
    std::vector<f32> top(mask.size());
    std::vector<GridCell> cells(mask.size());
    const TaperInput input = {
        offsets.get(), count, SPACING, n, m, 0, mask.data(), 0.0F, static_cast<i32>(state->range(1))};
    while (state->KeepRunning()) {
        top = resist;
        if (plain) {
            reference::taper(&input, bottom.data(), top.data(), cells.data(), 1);
        } else {
            taper_apply(&input, bottom.data(), top.data(), cells.data(), 1);
        }
        benchmark::ClobberMemory();
    }
    report_points(state, static_cast<i64>(mask.size()));
}
static void taper_lines(benchmark::State &state) {
    run_taper(&state, false, true);
}
static void taper_closed(benchmark::State &state) {
    run_taper(&state, false, false);
}
static void taper_lines_plain(benchmark::State &state) {
    run_taper(&state, true, true);
}
static void taper_closed_plain(benchmark::State &state) {
    run_taper(&state, true, false);
}
static void taper_sizes(benchmark::internal::Benchmark *bench) {
    bench->ArgNames({"N", "degrees"})->ArgsProduct({{500, 1000, 2000}, {10, 80}});
    bench->Unit(benchmark::kMillisecond);
}
BENCHMARK(taper_lines)->Apply(taper_sizes);
BENCHMARK(taper_closed)->ArgNames({"N", "degrees"})->Args({1000, 10})->Unit(benchmark::kMillisecond);
BENCHMARK(taper_lines_plain)
    ->ArgNames({"N", "degrees"})
    ->ArgsProduct({{500}, {10, 80}})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);
BENCHMARK(taper_closed_plain)
    ->ArgNames({"N", "degrees"})
    ->Args({250, 10})
    ->Unit(benchmark::kMillisecond)
    ->Iterations(1);

// Eight thin layers over blocks, as both passes of an etch and the surface update take them.
struct BenchLayers {
    static constexpr i32 COUNT = 8;
    i32 n, m;
    std::vector<std::vector<f32>> tops, bottoms, etched;
    std::vector<f32> surface;
    std::vector<Layer> records;
    std::vector<Layer *> layers;
    std::vector<EtchLayer> etch_layers;
    std::vector<GridCell> cells;

    explicit BenchLayers(i32 columns)
        : n(columns), m(columns / 2), surface(block_grid(n, m)), records(COUNT), cells(surface.size()) {
        for (i32 layer = 0; layer < COUNT; ++layer) {
            bottoms.push_back(surface);
            for (f32 &height : surface) {
                height += layer % 2 == 0 ? 0.05F : 0.02F;
            }
            tops.push_back(surface);
        }
        for (Layer &record : records) {
            record.grid_n = static_cast<u32>(n);
            record.grid_m = static_cast<u32>(m);
            layers.push_back(&record);
        }
        renew();
    }

    // The layers and the surface as they were before an etch.
    void renew() {
        etched = tops;
        for (size_t i = 0; i < records.size(); ++i) {
            records[i].top = etched[i].data();
            records[i].bottom = bottoms[i].data();
        }
        for (size_t i = 0; i < cells.size(); ++i) {
            cells[i] = {surface[i], COUNT - 1};
        }
    }

    EtchStack etch_stack() {
        etch_layers.clear();
        for (i32 i = 0; i < COUNT; ++i) {
            const EtchClass etch_class = i == 0 ? ETCH_STOPS : i == COUNT - 1 ? ETCH_RESIST : ETCH_TARGET;
            etch_layers.push_back(
                {layers[static_cast<size_t>(i)]->top, layers[static_cast<size_t>(i)]->bottom, etch_class});
        }
        return {cells.data(), n, m, etch_layers.data(), COUNT};
    }

    i64 points() const { return static_cast<i64>(n) * m; }
};

static void etch_passes(benchmark::State &state) {
    BenchLayers stack(columns_of(state));
    const BenchDisc disc(stack.n, stack.m, static_cast<i32>(state.range(1)));
    while (state.KeepRunning()) {
        state.PauseTiming();
        stack.renew();
        state.ResumeTiming();
        const EtchStack etched = stack.etch_stack();
        etch_lateral(&etched, disc.disc.get());
        etch_vertical(&etched, 0.15F);
        benchmark::ClobberMemory();
    }
    report_points(&state, stack.points());
}
BENCHMARK(etch_passes)
    ->ArgNames({"N", "radius"})
    ->ArgsProduct({{500, 1000, 2000}, {5, 20, 100}})
    ->Unit(benchmark::kMillisecond);

static void etch_vertical_alone(benchmark::State &state) {
    BenchLayers stack(columns_of(state));
    while (state.KeepRunning()) {
        state.PauseTiming();
        stack.renew();
        state.ResumeTiming();
        const EtchStack etched = stack.etch_stack();
        etch_vertical(&etched, 0.15F);
        benchmark::ClobberMemory();
    }
    report_points(&state, stack.points());
}
BENCHMARK(etch_vertical_alone)->ArgName("N")->Arg(500)->Arg(1000)->Arg(2000)->Unit(benchmark::kMillisecond);

static void update_surface(benchmark::State &state) {
    BenchLayers layers(columns_of(state));
    // The two layers on top are gone from half of the section.
    for (i64 i = 0; i < layers.points() / 2; ++i) {
        layers.etched[7][static_cast<size_t>(i)] = layers.bottoms[7][static_cast<size_t>(i)];
        layers.etched[6][static_cast<size_t>(i)] = layers.bottoms[6][static_cast<size_t>(i)];
    }
    Stack stack = {};
    stack.cells = layers.cells.data();
    stack.grid_n = layers.n;
    stack.grid_m = layers.m;
    stack.layers = layers.layers.data();
    stack.layer_count = BenchLayers::COUNT;
    while (state.KeepRunning()) {
        stack_update_surface(&stack);
        benchmark::ClobberMemory();
    }
    report_points(&state, layers.points());
}
BENCHMARK(update_surface)->ArgName("N")->Arg(500)->Arg(1000)->Arg(2000)->Unit(benchmark::kMillisecond);
