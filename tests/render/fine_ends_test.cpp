// The meshes of films that end in straight edges.
#include "render/fine_ends.h"

#include <algorithm>
#include <random>
#include "render/fine_mesh.h"
#include "tests/support/film_stack.h"

static const FilmHeights GROUND = {0.0F, 1.0F};

struct FilmMeshes {
    std::vector<LayerMesh> items;
    FineOrder order;
};

static FilmMeshes make_meshes(const FilmStack &made, f32 eye_column = 1.5F) {
    const FineSection section = fine_section_create(&made.stack);
    FineMesher mesher = fine_mesher_create(&section, {eye_column, -20.0F, 30.0F});
    FilmMeshes meshes = {};
    for (i32 film = 0; film < section.face.film_count; ++film) {
        meshes.items.push_back(fine_mesher_next(&mesher, &meshes.order));
    }
    return meshes;
}

// What the triangles of a mesh behind the cut face cover: seen from above, and walls by the way they look.
struct Cover {
    f64 top, west, east, south, north;
};

static Cover cover_of(const LayerMesh &mesh) {
    Cover cover = {};
    for (i64 i = 0; i < mesh.index_count; i += 3) {
        const f32 *a = mesh.vertices[mesh.indices[i]].position;
        const f32 *b = mesh.vertices[mesh.indices[i + 1]].position;
        const f32 *c = mesh.vertices[mesh.indices[i + 2]].position;
        f64 u[3];
        f64 v[3];
        for (i32 k = 0; k < 3; ++k) {
            u[k] = static_cast<f64>(b[k]) - static_cast<f64>(a[k]);
            v[k] = static_cast<f64>(c[k]) - static_cast<f64>(a[k]);
        }
        if (a[1] == 0.0F && b[1] == 0.0F && c[1] == 0.0F) {
            continue;  // of the cut face
        }
        const f64 x = (u[1] * v[2] - u[2] * v[1]) * 0.5;
        const f64 y = (u[2] * v[0] - u[0] * v[2]) * 0.5;
        cover.top += (u[0] * v[1] - u[1] * v[0]) * 0.5;
        cover.west += x < 0.0 ? -x : 0.0;
        cover.east += x > 0.0 ? x : 0.0;
        cover.south += y < 0.0 ? -y : 0.0;
        cover.north += y > 0.0 ? y : 0.0;
    }
    return cover;
}

static void expect_heights(const LayerMesh &mesh, const std::vector<f32> &heights) {
    for (i64 i = 0; i < mesh.vertex_count; ++i) {
        const f32 height = mesh.vertices[i].position[2];
        EXPECT_TRUE(std::count(heights.begin(), heights.end(), height) == 1) << height;
    }
}

TEST(FineEndsAppend, AMesaHasLevelTopsAndVerticalWalls) {
    // A film of 1 at the points (2 to 4, 2 to 3) of 7 x 6 covers 3 x 2, but for half a quarter at two of its
    // corners, where the grid's diagonals cut them off; its walls do the same.
    FilmStack made(7, 6);
    made.add([](i32, i32) { return GROUND; });
    made.add([](i32 n, i32 m) {
        return n >= 2 && n <= 4 && m >= 2 && m <= 3 ? FilmHeights{1.0F, 2.0F} : FilmHeights{1.0F, 1.0F};
    });
    const FilmMeshes meshes = make_meshes(made, 0.0F);
    expect_heights(meshes.items[1], {1.0F, 2.0F});
    const Cover cover = cover_of(meshes.items[1]);
    EXPECT_NEAR(cover.top, 3.0 * 2.0 - 2.0 * 0.125, 1e-6);
    EXPECT_NEAR(cover.west, 2.0, 1e-6) << "the eye is at column 0";
    EXPECT_NEAR(cover.south, 3.0, 1e-6);
    EXPECT_EQ(cover.east, 0.0) << "the backs of walls are not seen";
    EXPECT_EQ(cover.north, 0.0);
    for (i64 i = 0; i < meshes.items[1].vertex_count; ++i) {
        const MeshVertex &vertex = meshes.items[1].vertices[i];
        const bool is_wall = vertex.normal[2] == 0.0F;
        const bool is_top = vertex.normal[0] == 0.0F && vertex.normal[1] == 0.0F && vertex.normal[2] > 0.0F;
        EXPECT_TRUE(is_wall || is_top) << "no light as on a slope";
    }
    const Cover ground = cover_of(meshes.items[0]);
    EXPECT_GT(ground.top, 6.0 * 5.0 - cover.top - 1e-6) << "no hole beside the film";
    EXPECT_EQ(ground.east + ground.west + ground.south + ground.north, 0.0);
}

TEST(FineEndsAppend, WhatWasEtchedWithAFilmHasItsWall) {
    // The film is on columns 0 and 1; behind them the ground is lower by 0.5: its wall is as deep, and
    // nothing of it slopes.
    FilmStack made(4, 3);
    made.add_columns({GROUND, GROUND, {0.0F, 0.5F}, {0.0F, 0.5F}});
    made.add_columns({{1.0F, 2.0F}, {1.0F, 2.0F}, {0.5F, 0.5F}, {0.5F, 0.5F}});
    const FilmMeshes meshes = make_meshes(made, 3.0F);
    expect_heights(meshes.items[0], {0.0F, 0.5F, 1.0F});
    expect_heights(meshes.items[1], {1.0F, 2.0F});
    EXPECT_NEAR(cover_of(meshes.items[0]).east, 0.5 * 2.0, 1e-6) << "two rows of quads";
    EXPECT_NEAR(cover_of(meshes.items[1]).east, 1.0 * 2.0, 1e-6);
    EXPECT_NEAR(cover_of(meshes.items[1]).top, 1.5 * 2.0, 1e-6);
}

TEST(FineEndsAppend, AFilmInAHoleEndsAtTheWallOfTheHole) {
    // Metal from 0.5 to 1.25 at columns 1 and 2 in a ground of 1, which stands around it.
    FilmStack made(4, 3);
    made.add_columns({GROUND, {0.0F, 0.5F}, {0.0F, 0.5F}, GROUND});
    made.add_columns({{1.0F, 1.0F}, {0.5F, 1.25F}, {0.5F, 1.25F}, {1.0F, 1.0F}});
    const FilmMeshes meshes = make_meshes(made);
    const Cover metal = cover_of(meshes.items[1]);
    EXPECT_NEAR(metal.top, 2.0 * 2.0, 1e-6);
    EXPECT_EQ(metal.west + metal.east, 0.0) << "its walls look away from an eye over the hole";
    const Cover ground = cover_of(meshes.items[0]);
    EXPECT_NEAR(ground.west, 0.5 * 2.0, 1e-6) << "the wall at the right of the hole";
    EXPECT_NEAR(ground.east, 0.5 * 2.0, 1e-6);
    expect_heights(meshes.items[0], {0.0F, 0.5F, 1.0F});
}

TEST(FineEndsAppend, OfGlassThoseWallsShowThatFaceTheEye) {
    // Glass on columns 0 and 1 of 4 x 3, or on the two others, has its wall at 1.5: two triangles for each of
    // the four triangles of the two quads there. It looks towards an eye at column 3, or away from it.
    for (const bool at_left : {true, false}) {
        FilmStack made(4, 3);
        made.add_columns({GROUND, GROUND, GROUND, GROUND});
        const FilmHeights glass = {1.0F, 2.0F};
        const FilmHeights none = {1.0F, 1.0F};
        made.add([&](i32 n, i32) { return (n < 2) == at_left ? glass : none; }, 0.5F);
        const FilmMeshes meshes = make_meshes(made, 3.0F);
        i32 walls = 0;
        i32 shown = 0;
        for (i64 i = 0; i < meshes.order.count; ++i) {
            const OrderedTriangle &triangle = meshes.order.triangles[i];
            const bool is_wall = meshes.items[1].vertices[triangle.vertices[0]].normal[2] == 0.0F &&
                                 triangle.cell != FINE_CELL_FRONT;
            walls += is_wall ? 1 : 0;
            shown += is_wall && triangle.is_shown ? 1 : 0;
        }
        EXPECT_EQ(walls, 8);
        EXPECT_EQ(shown, at_left ? 8 : 0);
    }
}

TEST(FineEndsAppend, RandomFilmsCoverTheirPoints) {
    // Of one film on a level ground a triangle has all, 3 / 8 of a quad, 1 / 8 or nothing, by its corners.
    std::mt19937 random(24);
    for (i32 round = 0; round < 30; ++round) {
        FilmStack made(9, 8);
        std::vector<bool> there;
        for (i32 i = 0; i < 9 * 8; ++i) {
            there.push_back(random() % 3 > 0);
        }
        made.add([](i32, i32) { return GROUND; });
        made.add([&](i32 n, i32 m) {
            return there[static_cast<size_t>(m * 9 + n)] ? FilmHeights{1.0F, 3.0F} : FilmHeights{1.0F, 1.0F};
        });
        const f64 shares[4] = {0.0, 0.125, 0.375, 0.5};
        f64 expected = 0.0;
        for (i32 m = 0; m < 7; ++m) {
            for (i32 n = 0; n < 8; ++n) {
                const size_t p = static_cast<size_t>(m * 9 + n);
                const i32 diagonal = (there[p + 1] ? 1 : 0) + (there[p + 9] ? 1 : 0);
                expected +=
                    shares[diagonal + (there[p] ? 1 : 0)] + shares[diagonal + (there[p + 10] ? 1 : 0)];
            }
        }
        const FilmMeshes meshes = make_meshes(made);
        EXPECT_NEAR(cover_of(meshes.items[1]).top, expected, 1e-5) << "round " << round;
        expect_heights(meshes.items[1], {1.0F, 3.0F});
    }
}
