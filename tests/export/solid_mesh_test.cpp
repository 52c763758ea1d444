// Tests of export/solid_mesh.h: closed surfaces, their volumes and how few triangles they take.
#include "export/solid_mesh.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "export/film_figures.h"
#include "solid_check.h"
#include "tests/support/test_stack.h"
#include "tests/support/test_support.h"

// The film of a slot among the films below it.
static SolidFilm film_of(const Stack *stack, i32 slot) {
    const SolidFloor floor = solid_floor_create(stack);
    for (i32 i = 0; i < slot; ++i) {
        if (stack->layers[i] != nullptr) {
            static_cast<void>(solid_film_create(stack, i, &floor));
        }
    }
    return solid_film_create(stack, slot, &floor);
}

// What the figures of a film say; those count what is less than nothing as well.
static f64 solid_expected(const Layer *layer) {
    for (i64 point = 0; point < i64{layer->grid_n} * layer->grid_m; ++point) {
        if (layer->top[point] != layer->bottom[point] && !solid_film_is_there(layer, point)) {
            return solid_heights_volume(layer);
        }
    }
    return film_figures(layer).volume;
}

// Looks at everything that holds for every film, and returns its mesh.
static SolidMesh expect_solid(const Stack *stack, i32 slot) {
    const SolidFilm film = film_of(stack, slot);
    SolidMesh mesh;
    solid_mesh_make(&film, &mesh);
    EXPECT_EQ(solid_mesh_fault(&mesh), "");
    const SolidSoup soup = solid_soup(&mesh);
    const SolidSoup plain = plain_solid(&film);
    const f64 volume = solid_heights_volume(stack->layers[slot]);
    EXPECT_NEAR(solid_soup_volume(soup), volume, 1e-6 * volume);
    EXPECT_NEAR(solid_mesh_volume(&mesh), volume, 1e-6 * volume);
    EXPECT_NEAR(solid_soup_volume(plain), volume, 1e-6 * volume);
    EXPECT_NEAR(solid_expected(stack->layers[slot]), volume, 1e-9 * volume) << "as thickness.csv tells it";
    const f64 plan = solid_soup_plan(plain);
    EXPECT_NEAR(solid_soup_plan(soup), plan, 2e-3 * plan) << "slits take a thousandth";
    return mesh;
}

TEST(SolidMesh, ASlabIsABoxOfTwelveTriangles) {
    const Owned<Stack> stack = test_stack(65, 33, 0.25F);
    test_layer(stack.get(), "A", 1.0F, 1.5F);
    const SolidMesh mesh = expect_solid(stack.get(), 0);
    // Top and underside are two blocks of 32 x 32 quads each: 4 triangles; the walls along x have a corner
    // where the blocks meet at the top and below: 4 triangles each, those along y 2 each.
    EXPECT_EQ(mesh.index_count / 3, 4 + 4 + 4 + 4 + 2 + 2);
    EXPECT_EQ(mesh.vertex_count, 12);
    // 64 and 32 spacings of 0.25 um.
    EXPECT_EQ(mesh.low.x, 0.0F);
    EXPECT_EQ(mesh.low.y, 0.0F);
    EXPECT_EQ(mesh.low.z, 1.0F);
    EXPECT_EQ(mesh.high.x, 16.0F);
    EXPECT_EQ(mesh.high.y, 8.0F);
    EXPECT_EQ(mesh.high.z, 1.5F);
    EXPECT_DOUBLE_EQ(solid_mesh_volume(&mesh), 16.0 * 8.0 * 0.5);
}

TEST(SolidMesh, AWedgeHasHalfTheVolumeOfItsBox) {
    const Owned<Stack> stack = test_stack(5, 4, 1.0F);
    Layer *layer = test_layer(stack.get(), "A", 0.0F, 0.0F);
    for (i32 m = 0; m < 4; ++m) {
        for (i32 n = 0; n < 5; ++n) {
            layer->top[test_point(stack.get(), n, m)] = 0.25F * static_cast<f32>(n);
        }
    }
    const SolidMesh mesh = expect_solid(stack.get(), 0);
    EXPECT_DOUBLE_EQ(solid_mesh_volume(&mesh), 4.0 * 3.0 * 1.0 / 2.0);
}

TEST(SolidMesh, AFilmOfOnePointIsASpireOverSixTriangles) {
    const Owned<Stack> stack = test_stack(5, 5, 0.5F);
    Layer *layer = test_layer(stack.get(), "A", 1.0F, 1.0F);
    layer->top[test_point(stack.get(), 2, 2)] = 4.0F;
    const SolidMesh mesh = expect_solid(stack.get(), 0);
    EXPECT_EQ(mesh.index_count / 3, 12);
    EXPECT_EQ(mesh.vertex_count, 8);
    // Six triangles of 0.125 um2, a third of their height of 3 um.
    EXPECT_DOUBLE_EQ(solid_mesh_volume(&mesh), 6.0 * 0.125 * 3.0 / 3.0);
}

TEST(SolidMesh, AFilmAtACornerOfTheGridHasWalls) {
    const Owned<Stack> stack = test_stack(3, 3, 1.0F);
    Layer *layer = test_layer(stack.get(), "A", 0.0F, 0.0F);
    layer->top[test_point(stack.get(), 0, 0)] = 3.0F;
    const SolidMesh mesh = expect_solid(stack.get(), 0);
    EXPECT_EQ(mesh.index_count / 3, 4);
    EXPECT_DOUBLE_EQ(solid_mesh_volume(&mesh), 0.5 * 3.0 / 3.0);
}

TEST(SolidMesh, AHoleGoesThrough) {
    const Owned<Stack> stack = test_stack(9, 9, 1.0F);
    Layer *layer = test_layer(stack.get(), "A", 0.0F, 2.0F);
    for (i32 m = 3; m <= 5; ++m) {
        for (i32 n = 3; n <= 5; ++n) {
            layer->top[test_point(stack.get(), n, m)] = 0.0F;
        }
    }
    const SolidMesh mesh = expect_solid(stack.get(), 0);
    // 64 quads of 1 um2, 2 um thick, without the nine spires of 1 um2 x 2 um at the points of the hole.
    EXPECT_DOUBLE_EQ(solid_mesh_volume(&mesh), 128.0 - 18.0);
    // As in a torus: vertices - edges + faces = 0, and three edges for two faces.
    EXPECT_EQ(mesh.vertex_count - mesh.index_count / 2 + mesh.index_count / 3, 0);
}

TEST(SolidMesh, IslandsAreBodiesOfTheirOwn) {
    const Owned<Stack> stack = test_stack(12, 6, 1.0F);
    Layer *layer = test_layer(stack.get(), "A", 0.0F, 0.0F);
    for (i32 m = 1; m <= 4; ++m) {
        layer->top[test_point(stack.get(), 2, m)] = 1.0F;
        layer->top[test_point(stack.get(), 8, m)] = 1.0F;
    }
    const SolidMesh mesh = expect_solid(stack.get(), 0);
    EXPECT_DOUBLE_EQ(solid_mesh_volume(&mesh), 8.0);
    // Two spheres: vertices - edges + faces = 2 each.
    EXPECT_EQ(mesh.vertex_count - mesh.index_count / 2 + mesh.index_count / 3, 4);
}

TEST(SolidMesh, TwoLinesThatTouchInAColumnHaveASlitBetweenThem) {
    const Owned<Stack> stack = test_stack(5, 6, 1.0F);
    Layer *layer = test_layer(stack.get(), "A", 0.0F, 1.0F);
    for (i32 m = 0; m < 6; ++m) {
        layer->top[test_point(stack.get(), 2, m)] = 0.0F;
    }
    const SolidFilm film = film_of(stack.get(), 0);
    EXPECT_NE(solid_soup_fault(plain_solid(&film)), "") << "without slits four faces meet";
    const SolidMesh mesh = expect_solid(stack.get(), 0);
    EXPECT_NEAR(solid_mesh_volume(&mesh), 5.0 * 3.0, 15e-6);
}

// Every pattern of a grid of 4 x 3 points, so every one of a quad and its neighbours, inside and at all
// sides.
TEST(SolidMesh, EveryPatternOfPointsIsClosed) {
    const Owned<Stack> stack = test_stack(4, 3, 0.5F);
    Layer *layer = test_layer(stack.get(), "A", 1.0F, 1.0F);
    for (u32 pattern = 0; pattern < 1U << 12; ++pattern) {
        for (i32 point = 0; point < 12; ++point) {
            layer->top[point] = (pattern >> point & 1U) != 0 ? 1.5F : 1.0F;
        }
        const SolidMesh mesh = expect_solid(stack.get(), 0);
        ASSERT_FALSE(::testing::Test::HasFailure()) << "pattern " << pattern;
        EXPECT_EQ(mesh.index_count == 0, pattern == 0);
    }
}

// The same with heights that differ at all points, so that nothing closes by chance.
TEST(SolidMesh, EveryPatternOfPointsIsClosedWithAnyHeights) {
    TestRandom random = test_random_start(5);
    const Owned<Stack> stack = test_stack(3, 4, 0.37F);
    Layer *layer = test_layer(stack.get(), "A", 0.0F, 0.0F);
    for (u32 pattern = 0; pattern < 1U << 12; ++pattern) {
        for (i32 point = 0; point < 12; ++point) {
            layer->bottom[point] = test_random_f32(&random, -1.0F, 1.0F);
            const bool there = (pattern >> point & 1U) != 0;
            layer->top[point] = layer->bottom[point] + (there ? test_random_f32(&random, 0.5F, 2.0F) : 0.0F);
        }
        expect_solid(stack.get(), 0);
        ASSERT_FALSE(::testing::Test::HasFailure()) << "pattern " << pattern;
    }
}

// Terraces with steps, holes and islands on a grid that blocks of all sizes fit into.
static void random_terraces(TestRandom *random, Stack *stack, Layer *layer, bool with_holes) {
    const i32 count = test_random_i32(random, 1, 12);
    for (i32 i = 0; i < count; ++i) {
        const i32 n_first = test_random_i32(random, 0, stack->grid_n - 1);
        const i32 m_first = test_random_i32(random, 0, stack->grid_m - 1);
        const i32 n_last = test_random_i32(random, n_first, stack->grid_n - 1);
        const i32 m_last = test_random_i32(random, m_first, stack->grid_m - 1);
        const f32 height = with_holes && test_random_bool(random, 0.4)
                               ? 0.0F
                               : 0.25F * static_cast<f32>(test_random_i32(random, 1, 4));
        const bool lifts = test_random_bool(random, 0.3);
        for (i32 m = m_first; m <= m_last; ++m) {
            for (i32 n = n_first; n <= n_last; ++n) {
                const i64 point = test_point(stack, n, m);
                layer->bottom[point] += lifts ? 0.5F : 0.0F;
                layer->top[point] = layer->bottom[point] + height;
            }
        }
    }
}

TEST(SolidMesh, TerracesAreClosed) {
    TestRandom random = test_random_start(11);
    for (i32 run = 0; run < 80; ++run) {
        const i32 grid_n = test_random_i32(&random, 2, 90);
        const i32 grid_m = test_random_i32(&random, 2, 90);
        const Owned<Stack> stack = test_stack(grid_n, grid_m, 0.125F);
        Layer *layer = test_layer(stack.get(), "A", 0.0F, test_random_bool(&random, 0.5) ? 1.0F : 0.0F);
        random_terraces(&random, stack.get(), layer, run % 2 == 0);
        const i32 specks = test_random_i32(&random, 0, 5);
        for (i32 i = 0; i < specks; ++i) {
            const i32 point = test_random_i32(&random, 0, grid_n * grid_m - 1);
            layer->top[point] = layer->bottom[point] + test_random_f32(&random, -0.5F, 0.5F);
        }
        expect_solid(stack.get(), 0);
        ASSERT_FALSE(::testing::Test::HasFailure()) << "run " << run << ", " << grid_n << " x " << grid_m;
    }
}

TEST(SolidMesh, HeightsThatAreNoNumbersAreHoles) {
    const f32 nan = std::numeric_limits<f32>::quiet_NaN();
    const f32 infinity = std::numeric_limits<f32>::infinity();
    const Owned<Stack> stack = test_stack(9, 5, 1.0F);
    Layer *layer = test_layer(stack.get(), "A", 0.0F, 1.0F);
    layer->top[test_point(stack.get(), 1, 2)] = nan;
    layer->bottom[test_point(stack.get(), 3, 2)] = nan;
    layer->top[test_point(stack.get(), 5, 2)] = infinity;
    layer->bottom[test_point(stack.get(), 7, 2)] = -infinity;
    layer->top[test_point(stack.get(), 7, 3)] = -2.0F;
    layer->bottom[test_point(stack.get(), 7, 4)] = layer->top[test_point(stack.get(), 7, 4)] = nan;
    const SolidMesh mesh = expect_solid(stack.get(), 0);
    EXPECT_EQ(mesh.low.z, -0.0F);
    EXPECT_EQ(mesh.high.z, 1.0F);
}

TEST(SolidMesh, AFilmThatIsNowhereHasNone) {
    const Owned<Stack> stack = test_stack(5, 5, 1.0F);
    test_layer(stack.get(), "A", 2.0F, 2.0F);
    test_layer(stack.get(), "B", 3.0F, 2.0F);
    EXPECT_EQ(expect_solid(stack.get(), 0).index_count, 0);
    EXPECT_EQ(expect_solid(stack.get(), 1).index_count, 0);
}

TEST(SolidMesh, SectionsAtTheEndsOfWhatNumbersHoldAreSafe) {
    for (const f32 spacing : {1e-44F, 1.2e-38F, 1e-20F, 1e18F, 1e37F, 3.4e38F}) {
        const Owned<Stack> stack = test_stack(9, 9, 1.0F);
        stack->spacing = spacing;
        Layer *layer = test_layer(stack.get(), "A", 0.0F, 1.0F);
        layer->top[test_point(stack.get(), 4, 4)] = 2.0F;
        const SolidFilm film = film_of(stack.get(), 0);
        SolidMesh mesh;
        solid_mesh_make(&film, &mesh);
        EXPECT_EQ(mesh.index_count > 0, spacing < 1e38F) << spacing;
        EXPECT_TRUE(std::isfinite(mesh.high.x) && std::isfinite(solid_mesh_volume(&mesh))) << spacing;
    }
}

TEST(SolidMesh, AMeshThatIsMadeAgainForgetsWhatItHeld) {
    const Owned<Stack> stack = test_stack(9, 9, 1.0F);
    test_layer(stack.get(), "A", 0.0F, 1.0F);
    Layer *speck = test_layer(stack.get(), "B", 1.0F, 1.0F);
    test_layer(stack.get(), "C", 1.0F, 1.0F);
    speck->top[test_point(stack.get(), 4, 4)] = 2.0F;
    SolidMesh mesh;
    const i64 counts[3] = {12, 12, 0};
    for (i32 slot = 0; slot < 3; ++slot) {
        const SolidFilm film = film_of(stack.get(), slot);
        solid_mesh_make(&film, &mesh);
        EXPECT_EQ(mesh.index_count / 3, counts[slot]);
        EXPECT_EQ(solid_mesh_fault(&mesh), "");
    }
    EXPECT_EQ(mesh.high.z, 0.0F);
}

TEST(SolidMesh, AGridOfOneRowHasNone) {
    const Owned<Stack> stack = test_stack(5, 1, 1.0F);
    test_layer(stack.get(), "A", 2.0F, 3.0F);
    const SolidFilm film = film_of(stack.get(), 0);
    SolidMesh mesh;
    solid_mesh_make(&film, &mesh);
    EXPECT_EQ(mesh.index_count, 0);
}

// Lines of one column each far away from the corner, where f32 micrometres lie 8e-6 um apart.
TEST(SolidMesh, NarrowLinesAreAsWideAsTheGridHasThem) {
    const Owned<Stack> stack = test_stack(1000, 5, 0.1F);
    Layer *layer = test_layer(stack.get(), "A", 0.0F, 0.0F);
    for (i32 m = 0; m < 5; ++m) {
        for (i32 n = 701; n < 999; n += 3) {
            layer->top[test_point(stack.get(), n, m)] = 1.0F;
        }
    }
    const SolidFilm film = film_of(stack.get(), 0);
    SolidMesh mesh;
    solid_mesh_make(&film, &mesh);
    // 100 lines, 0.1 um wide and 1 um high on the average of their slopes, 4 spacings long.
    const f64 spacing = f64{0.1F};
    EXPECT_NEAR(solid_mesh_volume(&mesh), 100.0 * spacing * 4.0 * spacing, 1e-9);
    EXPECT_NEAR(mesh.stretch, 1.0, 1.0 / 8192.0);
    EXPECT_EQ(solid_place(&mesh, mesh.high).x, static_cast<f32>(999.0 * spacing));
    const f32 step = mesh.high.x / 999.0F;
    for (i64 i = 0; i < mesh.vertex_count; ++i) {
        EXPECT_EQ(mesh.vertices[i].x / step, std::round(mesh.vertices[i].x / step))
            << "a multiple of the step";
    }
}

// A tenth of a millimetre away from the corner, a film of a tenth of a nanometre.
TEST(SolidMesh, AThinFilmOfAWideSectionKeepsItsVolume) {
    const Owned<Stack> stack = test_stack(1000, 700, 0.1F);
    Layer *layer = test_layer(stack.get(), "A", 0.0F, 0.0F);
    for (i64 point = 0; point < stack_point_count(stack.get()); ++point) {
        const i64 terrace = point % 1000 / 200;
        layer->bottom[point] = 0.01F * static_cast<f32>(terrace);
        layer->top[point] = layer->bottom[point] + 1e-4F;
    }
    const SolidFilm film = film_of(stack.get(), 0);
    SolidMesh mesh;
    solid_mesh_make(&film, &mesh);
    const f64 volume = solid_heights_volume(layer);
    EXPECT_NEAR(solid_mesh_volume(&mesh), volume, 1e-6 * volume);
    EXPECT_LT(mesh.index_count / 3, 100000) << "of 2.8 million";
}
