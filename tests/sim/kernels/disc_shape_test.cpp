#include "sim/kernels/disc_shape.h"
#include "sim/kernels/disc_count.h"
#include "support.h"

TEST(DiscShape, RowsOfARoundDisc) {
    // Radius 2 at spacing 1: half widths 0, 1, 2, 1, 0.
    const KernelTable table(8, 8, 1.0F);
    const KernelDisc disc(table, 2.0F);
    const Owned<DiscShape> shape(disc_shape_create(disc.disc.get(), 8, 8));
    ASSERT_EQ(shape->rows, 2);
    const i32 expected[] = {0, 1, 2, 1, 0};
    for (i32 row = 0; row < 5; ++row) {
        EXPECT_EQ(shape->half_widths[row], expected[row]) << "row " << row - 2;
    }
    EXPECT_EQ(shape->columns, 2);
    EXPECT_TRUE(shape->is_spans);
    EXPECT_TRUE(shape->edge_is_exact);
}

TEST(DiscShape, DiscsLargerThanTheGridAreCut) {
    const KernelTable table(4, 3, 1.0F);
    const KernelDisc disc(table, 50.0F);
    const Owned<DiscShape> shape(disc_shape_create(disc.disc.get(), 4, 3));
    EXPECT_EQ(shape->rows, 2);
    EXPECT_EQ(shape->columns, 3);
    EXPECT_TRUE(shape->edge_is_exact) << "nothing leaves a window that holds the whole grid";
}

TEST(DiscShape, OddDiscsAreSeen) {
    const std::vector<DiscPoint> span = {{0, 0}, {-1, 0}, {1, 0}};
    const struct {
        const char *what;
        std::vector<DiscPoint> points, edge;
        bool spans, exact;
    } cases[] = {
        {"whole", span, {{-2, 0}}, true, true},
        {"gap", {{-1, 0}, {1, 0}}, {{-2, 0}}, false, false},
        {"lopsided", {{0, 0}, {1, 0}}, {{-1, 0}}, false, false},
        {"edge lacks a row", span, {}, true, false},
        {"edge too far out", span, {{-3, 0}}, true, false},
        {"edge has a second point", span, {{-2, 0}, {-1, 0}}, true, false},
        {"edge has a row that the disc lacks", span, {{-2, 0}, {-1, 1}}, true, false},
        {"edge has a far row", span, {{-2, 0}, {-1, 5}}, true, false},
        {"edge out of the grid", span, {{-2, 0}, {-1, 20}, {-30, 1}}, true, true},
        {"empty", {}, {}, true, true},
    };
    for (const auto &one : cases) {
        const KernelDisc disc(one.points, one.edge);
        const Owned<DiscShape> shape(disc_shape_create(disc.disc.get(), 10, 10));
        EXPECT_EQ(shape->is_spans, one.spans) << one.what;
        EXPECT_EQ(shape->edge_is_exact, one.exact) << one.what;
    }
}

// Without such discs the random tests would not reach the slower path of the kernels.
TEST(DiscShape, RadiiOfTheTableHaveEdgesThatDoNotFit) {
    i32 fits = 0;
    i32 misfits = 0;
    for (const KernelCase &one : kernel_cases()) {
        const KernelTable table(one.grid_n, one.grid_m, one.spacing);
        for (const f32 radius : one.radii) {
            const KernelDisc disc(table, radius);
            const Owned<DiscShape> shape(disc_shape_create(disc.disc.get(), one.grid_n, one.grid_m));
            EXPECT_TRUE(shape->is_spans) << "spacing " << one.spacing << ", radius " << radius;
            ++(shape->edge_is_exact ? fits : misfits);
        }
    }
    EXPECT_GT(fits, 10);
    EXPECT_GT(misfits, 3);
}

TEST(DiscCounter, CountsAsTheUpdateDoes) {
    for (const KernelCase &one : kernel_cases()) {
        const KernelTable table(one.grid_n, one.grid_m, one.spacing);
        for (const f32 radius : one.radii) {
            const KernelDisc disc(table, radius);
            const Owned<DiscCounter> counter(disc_counter_create(disc.disc.get(), one.grid_n, one.grid_m));
            std::vector<i32> counts(static_cast<size_t>(one.grid_n));
            for (i32 m = 0; m < one.grid_m; ++m) {
                disc_counter_next_row(counter.get(), counts.data());
                i32 expected = 0;
                for (i32 n = 0; n < one.grid_n; ++n) {
                    const auto inside = [&](i32 column, i32 row) {
                        return column >= 0 && column < one.grid_n && row >= 0 && row < one.grid_m ? 1 : 0;
                    };
                    for (const DiscPoint &point : n == 0 ? disc.lists.points : disc.lists.edge) {
                        expected -= n > 0 ? inside(n + point.dx, m + point.dy) : 0;
                        expected += inside(n > 0 ? n - point.dx - 1 : point.dx, m + point.dy);
                    }
                    ASSERT_EQ(counts[static_cast<size_t>(n)], expected)
                        << "column " << n << ", row " << m << ", radius " << radius;
                }
            }
        }
    }
}
