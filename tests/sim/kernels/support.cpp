#include "support.h"
#include <cmath>
#include <cstring>
#include <limits>
#include "platform/memory.h"

KernelTable::KernelTable(i32 n, i32 m, f32 spacing_um) : grid_n(n), grid_m(m), spacing(spacing_um) {
    offsets = reference::offsets(n, m, spacing_um);
    reference::sort_by_distance(&offsets);
}

KernelDisc::KernelDisc(const KernelTable &table, f32 radius) {
    disc.reset(disc_create(table.offsets.data(), table.count(), table.spacing, radius));
    lists = reference::disc(table.offsets, table.spacing, radius);
}

size_t point_count(i32 grid_n, i32 grid_m) {
    return static_cast<size_t>(grid_n) * static_cast<size_t>(grid_m);
}

static DiscPoint *copy_points(const std::vector<DiscPoint> &points) {
    auto *copy = memory_new_array<DiscPoint>(static_cast<i64>(points.size()));
    for (size_t i = 0; i < points.size(); ++i) {
        copy[i] = points[i];
    }
    return copy;
}

KernelDisc::KernelDisc(const std::vector<DiscPoint> &points, const std::vector<DiscPoint> &edge) {
    disc.reset(memory_new_zeroed<Disc>());
    disc->points = copy_points(points);
    disc->count = static_cast<i32>(points.size());
    disc->edge = copy_points(edge);
    disc->edge_count = static_cast<i32>(edge.size());
    lists.points = points;
    lists.edge = edge;
}

static f32 special_value(u32 pick) {
    static constexpr f32 VALUES[] = {std::numeric_limits<f32>::quiet_NaN(),
                                     std::numeric_limits<f32>::infinity(),
                                     -std::numeric_limits<f32>::infinity(),
                                     0.0F,
                                     -0.0F,
                                     1e-45F,
                                     F32_MAX,
                                     -F32_MAX,
                                     1e30F};
    return VALUES[pick % (sizeof(VALUES) / sizeof(VALUES[0]))];
}

static f32 random_value(GridKind kind, RandomBits *random) {
    const f32 fraction = static_cast<f32>((*random)() % 65536U) / 65536.0F * 1.00001F;
    const u32 pick = (*random)();
    switch (kind) {
        case GRID_LEVELS: return static_cast<f32>(pick % 4U) * 0.3F;
        case GRID_FLAT:
        case GRID_BLOCKS: return 0.7F;
        case GRID_SIGNED: return fraction * 2.0F - 1.0F;
        case GRID_ZEROS: return pick % 8U == 0 ? fraction : (pick % 2U == 0 ? 0.0F : -0.0F);
        case GRID_NEGATIVE_ZEROS: return pick % 3U == 0 ? -0.0F : fraction + (pick % 3U == 1U ? -1.5F : 0.1F);
        case GRID_SPECIAL: return pick % 6U == 0 ? special_value(pick / 6U) : fraction;
        default: return fraction * 2.0F;
    }
}

std::vector<f32> random_grid(GridKind kind, i32 grid_n, i32 grid_m, RandomBits *random) {
    std::vector<f32> grid(point_count(grid_n, grid_m));
    for (f32 &value : grid) {
        value = random_value(kind, random);
    }
    for (i32 block = 0; kind == GRID_BLOCKS && block < 5; ++block) {
        const i32 n = static_cast<i32>((*random)() % static_cast<u32>(grid_n));
        const i32 m = static_cast<i32>((*random)() % static_cast<u32>(grid_m));
        const f32 height = static_cast<f32>((*random)() % 3U) * 0.55F;
        for (i32 row = m; row < grid_m && row < m + 9; ++row) {
            for (i32 column = n; column < grid_n && column < n + 12; ++column) {
                grid[static_cast<size_t>(row) * static_cast<size_t>(grid_n) + static_cast<size_t>(column)] =
                    height;
            }
        }
    }
    return grid;
}

const char *grid_kind_name(GridKind kind) {
    static constexpr const char *NAMES[] = {"rough",  "levels", "flat",           "blocks",
                                            "signed", "zeros",  "negative zeros", "special"};
    return NAMES[kind];
}

std::string grid_difference(const std::vector<f32> &got, const std::vector<f32> &expected, i32 grid_n) {
    for (size_t i = 0; i < expected.size(); ++i) {
        const bool both_nan = std::isnan(got[i]) && std::isnan(expected[i]);
        if (!both_nan && test_f32_bits(got[i]) != test_f32_bits(expected[i])) {
            char text[120];
            const auto columns = static_cast<size_t>(grid_n);
            std::snprintf(text, sizeof(text), "column %d, row %d: %.9g instead of %.9g",
                          static_cast<i32>(i % columns), static_cast<i32>(i / columns),
                          static_cast<f64>(got[i]), static_cast<f64>(expected[i]));
            return text;
        }
    }
    return "";
}

std::vector<KernelCase> kernel_cases() {
    const f32 nan = std::numeric_limits<f32>::quiet_NaN();
    std::vector<KernelCase> cases = {
        {1, 1, 0.1F, {0.0F, 0.1F, 1.0F, -1.0F, nan}},
        {1, 23, 0.1F, {0.0F, 0.3F, 5.0F}},
        {37, 1, 0.1F, {0.0F, 0.3F, 0.5F, 10.0F}},
        {2, 2, 0.25F, {0.25F, 0.36F}},
        {40, 33, 0.1F, {0.0F, 0.05F, 0.1F, 0.2F, 0.3F, 0.5F, 0.7F, 1.0F, 1.3F, 2.5F, 100.0F, nan, -0.1F}},
        {61, 45, 7.3F / 333.0F, {0.02F, 0.1F, 0.11F, 0.2F, 0.3F, 0.5F}},
        {300, 20, 0.01F, {0.05F, 0.1F, 0.13F, 0.25F, 5.0F * 0.01F, 10.0F * 0.01F, 20.0F * 0.01F}},
    };
    // Radii that are distances of the table: there the two roundings of the distance can disagree
    // about a point, and the edge then does not fit the disc.
    for (const f32 spacing : {0.07F, 2.0F / 300.0F, 3.0F / 700.0F}) {
        const KernelTable table(50, 26, spacing);
        KernelCase one = {50, 26, spacing, {}};
        for (size_t i = 30; i < 2500; i += 151) {
            one.radii.push_back(table.offsets[i].distance);
        }
        cases.push_back(one);
    }
    return cases;
}
