// support.h: what the tests of the kernels share: tables, discs, random grids, comparison by bits.
#pragma once
#include <gtest/gtest.h>
#include <string>
#include <vector>
#include "reference.h"
#include "tests/support/test_support.h"

// Random numbers of 32 bits.
struct RandomBits {
    TestRandom state;
    explicit RandomBits(u32 seed) : state(test_random_start(seed)) {}
    u32 operator()() { return test_random_u32(&state); }
};

// The sorted neighbour table of a grid, and a disc made from it both ways.
struct KernelTable {
    i32 grid_n, grid_m;
    f32 spacing;
    std::vector<GridOffset> offsets;

    KernelTable(i32 n, i32 m, f32 spacing_um);
    i32 count() const { return static_cast<i32>(offsets.size()); }
};

struct KernelDisc {
    Owned<Disc> disc;
    reference::PointLists lists;

    KernelDisc(const KernelTable &table, f32 radius);
    // A disc of any points and edge, which need not fit each other.
    KernelDisc(const std::vector<DiscPoint> &points, const std::vector<DiscPoint> &edge);
};

// Number of points of a grid.
size_t point_count(i32 grid_n, i32 grid_m);

// What a random grid is made of.
enum GridKind {
    GRID_ROUGH,           // every value another one, 0..2
    GRID_LEVELS,          // four heights, so that equal values abound
    GRID_FLAT,            // one height
    GRID_BLOCKS,          // a flat film with rectangles of other heights
    GRID_SIGNED,          // rough, -1..1
    GRID_ZEROS,           // 0.0, -0.0 and a few other values
    GRID_NEGATIVE_ZEROS,  // -0.0 and values of both signs
    GRID_SPECIAL,         // rough with nan, both infinities, tiny and huge values
    GRID_KIND_COUNT,
};

std::vector<f32> random_grid(GridKind kind, i32 grid_n, i32 grid_m, RandomBits *random);
const char *grid_kind_name(GridKind kind);

// Empty when both grids have the same bits (any nan equals any nan), else where they differ first.
std::string grid_difference(const std::vector<f32> &got, const std::vector<f32> &expected, i32 grid_n);

// Grid sizes and radii that the random tests of every kernel go through.
struct KernelCase {
    i32 grid_n, grid_m;
    f32 spacing;
    std::vector<f32> radii;
};
std::vector<KernelCase> kernel_cases();
