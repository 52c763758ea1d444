#include "render/fine_order.h"

#include <gtest/gtest.h>
#include <vector>

// A grid of 5 x 4 points, 4 x 3 quads, seen from before column 2.
static i64 cell(i64 n, i64 m, bool is_b) {
    return fine_order_cell(5, 4, n, m, is_b, 2.0F);
}

TEST(FineOrderCell, FarRowsAndOuterQuadsComeFirst) {
    EXPECT_LT(cell(1, 2, false), cell(1, 1, false)) << "rows from the back to the front";
    EXPECT_LT(cell(1, 1, false), cell(0, 0, true)) << "whatever the column";
    EXPECT_LT(cell(0, 1, false), cell(1, 1, false)) << "on the left rightwards";
    EXPECT_LT(cell(3, 1, false), cell(2, 1, false)) << "on the right leftwards";
    EXPECT_LT(cell(2, 1, true), cell(2, 1, false)) << "the far triangle of a quad before the near one";
    EXPECT_LT(cell(4 - 1, 0, false), FINE_CELL_FRONT);
}

TEST(FineOrderCell, RanksAreDifferent) {
    std::vector<bool> seen(1000, false);
    for (i64 m = 0; m < 3; ++m) {
        for (i64 n = 0; n < 4; ++n) {
            for (const bool is_b : {false, true}) {
                const i64 rank = cell(n, m, is_b);
                ASSERT_LT(rank, 1000);
                EXPECT_FALSE(seen[static_cast<size_t>(rank)]) << n << ", " << m;
                seen[static_cast<size_t>(rank)] = true;
            }
        }
    }
}

static void add(FineOrder *order, i64 rank, i32 film, bool is_top, bool is_turned, u32 vertex) {
    const OrderedTriangle triangle = {rank, film * 2 + (is_top ? 1 : 0), is_turned, true, {vertex, 0, 0}};
    fine_order_append(order, &triangle);
}

static std::vector<u32> first_vertices(const FineBatches &batches) {
    std::vector<u32> vertices;
    for (i64 i = 0; i < batches.index_count; i += 3) {
        vertices.push_back(batches.indices[i]);
    }
    return vertices;
}

TEST(FineOrderBatches, WithoutSurfacesThatTurnAwayFilmsComeWhole) {
    FineOrder order = {};
    for (i32 film = 0; film < 2; ++film) {
        for (u32 rank = 0; rank < 3; ++rank) {
            add(&order, rank, film, true, false, 10 * static_cast<u32>(film) + rank);
        }
    }
    const FineBatches batches = fine_order_batches(&order);
    EXPECT_EQ(first_vertices(batches), (std::vector<u32>{0, 1, 2, 10, 11, 12}));
    ASSERT_EQ(batches.count, 2);
    EXPECT_EQ(batches.items[1].film, 1);
    EXPECT_EQ(batches.items[1].first, 9);
    EXPECT_EQ(batches.items[1].count, 9);
}

TEST(FineOrderBatches, ASurfaceThatTurnsAwayPartsWhatIsBehindItFromWhatIsBefore) {
    // Cells 0 and 1 are behind cell 2, whose surfaces turn away: there the upper one is the farther one.
    FineOrder order = {};
    for (i32 film = 0; film < 2; ++film) {
        for (u32 rank = 0; rank < 4; ++rank) {
            add(&order, rank, film, true, rank == 2, 10 * static_cast<u32>(film) + rank);
        }
    }
    add(&order, FINE_CELL_FRONT, 0, false, false, 99);
    const FineBatches batches = fine_order_batches(&order);
    EXPECT_EQ(first_vertices(batches), (std::vector<u32>{0, 1, 10, 11, 12, 2, 3, 13, 99}));
    EXPECT_EQ(batches.count, 5);  // films 0, 1, 0, 1, 0
}

TEST(FineOrderBatches, WhatDoesNotShowPartsAllTheSame) {
    // Between the cells 0 and 2 the lower film turns away.
    FineOrder order = {};
    for (i32 film = 0; film < 2; ++film) {
        add(&order, 0, film, true, false, 10 * static_cast<u32>(film));
        add(&order, 2, film, true, false, 10 * static_cast<u32>(film) + 2);
    }
    const OrderedTriangle hidden = {1, 1, true, false, {77, 77, 77}};
    fine_order_append(&order, &hidden);
    const FineBatches batches = fine_order_batches(&order);
    EXPECT_EQ(first_vertices(batches), (std::vector<u32>{0, 10, 2, 12}));
}

TEST(FineOrderBatches, OfNothingThereIsNothing) {
    FineOrder order = {};
    const FineBatches batches = fine_order_batches(&order);
    EXPECT_EQ(batches.index_count, 0);
    EXPECT_EQ(batches.count, 0);
}
