// What is drawn of a layer, by its geometry; what it looks like is compared in picture_twin_test.cpp.
#include "render/drawn_mesh.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <set>
#include <utility>
#include <vector>
#include "gl_test.h"
#include "sim/layer.h"
#include "tests/support/test_support.h"

class DrawnMeshTest : public GlTest {};

static const f32 GREY[4] = {0.6F, 0.6F, 0.6F, 1.0F};
static const f32 GLASS[4] = {0.2F, 0.2F, 0.8F, 0.5F};

using GridPoint = std::pair<i32, i32>;

static GridPoint grid_point(const Layer *layer, const MeshVertex &vertex) {
    return {static_cast<i32>(std::lround(vertex.position[0] / layer->spacing)),
            static_cast<i32>(std::lround(vertex.position[1] / layer->spacing))};
}

// Whether a vertex lies on an edge between two others that run along a row or a column: a crack would open.
static bool splits_edge(const std::set<GridPoint> &points, GridPoint a, GridPoint b) {
    const i32 dn = b.first > a.first ? 1 : b.first < a.first ? -1 : 0;
    const i32 dm = b.second > a.second ? 1 : b.second < a.second ? -1 : 0;
    if (dn != 0 && dm != 0) {
        return false;  // inside a quad or a block
    }
    for (GridPoint p = {a.first + dn, a.second + dm}; p != b; p = {p.first + dn, p.second + dm}) {
        if (points.count(p) > 0) {
            return true;
        }
    }
    return false;
}

// Twice the area of the mesh's top triangles, in grid squares; every one has to turn the same way.
static i64 expect_whole_top(const Layer *layer, const LayerMesh &mesh) {
    std::set<GridPoint> points;
    for (i64 i = 0; i < mesh.vertex_count; ++i) {
        if (mesh.vertices[i].normal[1] != -1.0F) {
            points.insert(grid_point(layer, mesh.vertices[i]));
        }
    }
    i64 area = 0;
    for (i64 i = 0; i < mesh.index_count; i += 3) {
        const MeshVertex *corners[3];
        for (i64 k = 0; k < 3; ++k) {
            corners[k] = &mesh.vertices[mesh.indices[i + k]];
        }
        if (corners[0]->normal[1] == -1.0F && corners[1]->normal[1] == -1.0F) {
            continue;  // of the front
        }
        const GridPoint a = grid_point(layer, *corners[0]);
        const GridPoint b = grid_point(layer, *corners[1]);
        const GridPoint c = grid_point(layer, *corners[2]);
        EXPECT_FALSE(splits_edge(points, a, b) || splits_edge(points, b, c) || splits_edge(points, c, a))
            << "at column " << a.first << ", row " << a.second;
        const i64 twice =
            i64{b.first - a.first} * (c.second - a.second) - i64{c.first - a.first} * (b.second - a.second);
        EXPECT_GT(twice, 0);
        area += twice;
    }
    return area;
}

TEST_F(DrawnMeshTest, ALevelTopTakesFewTriangles) {
    TestScene scene(131, 131, 4.0F);
    scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
    scene.stack.layers = scene.layers.data();
    scene.stack.layer_count = 1;
    const LayerMesh mesh = drawn_mesh_create(&scene.stack, 0);
    EXPECT_EQ(expect_whole_top(scene.layers[0], mesh), 2 * 130 * 130);
    // The whole mesh has 2 x 2 x 130 x 130 and the front's 260 triangles.
    EXPECT_LT(mesh.index_count / 3, 4000);
}

TEST_F(DrawnMeshTest, NoVertexLiesOnTheEdgeOfAnotherTriangle) {
    TestRandom random = test_random_start(31);
    for (i32 run = 0; run < 40; ++run) {
        const i32 grid_n = test_random_i32(&random, 5, 90);
        const i32 grid_m = test_random_i32(&random, 5, 90);
        TestScene scene(grid_n, grid_m, 4.0F);
        scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
        Layer *layer = scene.layers[0];
        const i32 bumps = test_random_i32(&random, 0, 6);
        for (i32 i = 0; i < bumps; ++i) {
            layer->top[test_random_i32(&random, 0, grid_n * grid_m - 1)] += 0.1F;
        }
        scene.stack.layers = scene.layers.data();
        scene.stack.layer_count = 1;
        const LayerMesh mesh = drawn_mesh_create(&scene.stack, 0);
        SCOPED_TRACE(run);
        EXPECT_EQ(expect_whole_top(layer, mesh), i64{2} * (grid_n - 1) * (grid_m - 1));
    }
}

// The bytes of a buffer; unbound targets take it over.
static std::vector<u8> buffer_bytes(u32 name) {
    GLint size = 0;
    glBindBuffer(GL_ARRAY_BUFFER, name);
    glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &size);
    std::vector<u8> bytes(static_cast<size_t>(size));
    glGetBufferSubData(GL_ARRAY_BUFFER, 0, size, bytes.data());
    return bytes;
}

// The indices of a layer's buffer, triangles from the last to the first where that is their order.
static std::vector<u32> buffer_indices(const Layer *layer) {
    const std::vector<u8> bytes = buffer_bytes(layer->ebo);
    std::vector<u32> indices(bytes.size() / sizeof(u32));
    std::memcpy(indices.data(), bytes.data(), bytes.size());
    if (layer->last_wins != 0) {
        std::reverse(indices.begin(), indices.end());
        for (size_t i = 0; i + 2 < indices.size(); i += 3) {
            std::swap(indices[i], indices[i + 2]);
        }
    }
    return indices;
}

static void expect_new_meshes(const TestScene &scene, i32 picture) {
    bool all_opaque = true;
    for (i32 i = 0; i < scene.stack.layer_count; ++i) {
        const Layer *layer = scene.stack.layers[i];
        if (layer == nullptr) {
            continue;
        }
        all_opaque = all_opaque && layer->color[3] == 1.0F;
        EXPECT_EQ(layer->last_wins, all_opaque ? 1 : 0) << "slot " << i << ", picture " << picture;
        const LayerMesh mesh = drawn_mesh_create(&scene.stack, i);
        EXPECT_EQ(layer->index_count, mesh.index_count) << "slot " << i << ", picture " << picture;
        const std::vector<u8> vertices = buffer_bytes(layer->vbo);
        const size_t size = static_cast<size_t>(mesh.vertex_count) * sizeof(MeshVertex);
        ASSERT_EQ(vertices.size(), size) << "slot " << i << ", picture " << picture;
        EXPECT_EQ(std::memcmp(vertices.data(), mesh.vertices.get(), size), 0) << "slot " << i;
        const std::vector<u32> indices = buffer_indices(layer);
        EXPECT_TRUE(std::equal(indices.begin(), indices.end(), mesh.indices.get(),
                               mesh.indices.get() + mesh.index_count))
            << "slot " << i << ", picture " << picture;
    }
}

// Adds a film, cuts one, or takes one away.
static void change_randomly(TestScene *scene, TestRandom *random) {
    const i32 what = test_random_i32(random, 0, 3);
    const i32 slot = test_random_i32(random, 0, static_cast<i32>(scene->layers.size()) - 1);
    Layer *layer = scene->layers[static_cast<size_t>(slot)];
    if (what < 2 || layer == nullptr) {
        scene->add_flat_layer("FILM", test_random_bool(random, 0.15) ? GLASS : GREY, 0.1F);
    } else if (what == 2 || slot == 0) {
        for (i32 i = 0; i < scene->stack.grid_n * scene->stack.grid_m / 2; ++i) {
            layer->top[i] = layer->bottom[i] + 0.5F * (layer->top[i] - layer->bottom[i]);
        }
        layer->changed = 1;
    } else {
        layer_free(layer);
        scene->layers[static_cast<size_t>(slot)] = nullptr;
    }
}

TEST_F(DrawnMeshTest, WhatIsKeptIsWhatWouldBeMade) {
    TestRandom random = test_random_start(77);
    for (i32 run = 0; run < 12; ++run) {
        TestScene scene(30, 22, 4.0F);
        scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
        for (i32 picture = 0; picture < 15; ++picture) {
            scene.stack.layers = scene.layers.data();
            scene.stack.layer_count = static_cast<i32>(scene.layers.size());
            stack_build_meshes(&scene.stack);
            expect_new_meshes(scene, picture);
            for (Layer *layer : scene.layers) {
                if (layer != nullptr) {
                    layer->changed = 0;
                }
            }
            change_randomly(&scene, &random);
        }
    }
}

TEST_F(DrawnMeshTest, AHiddenLayerIsNotMadeAnew) {
    TestScene scene(30, 22, 4.0F);
    for (i32 i = 0; i < 3; ++i) {
        scene.add_flat_layer("FILM", GREY, 0.1F);
    }
    scene.render();
    for (Layer *layer : scene.layers) {
        layer->changed = 0;
    }
    scene.add_flat_layer("FILM", GREY, 0.1F);
    scene.render();
    EXPECT_EQ(scene.layers[0]->mesh_source.made, 1) << "hidden by the second";
    EXPECT_EQ(scene.layers[1]->mesh_source.made, 1) << "hidden by the third";
    EXPECT_EQ(scene.layers[2]->mesh_source.made, 2) << "was the top";
    EXPECT_EQ(scene.layers[3]->mesh_source.made, 2);
}

// The mould of a plug is taken away, so that the plug's underside shows as a wall.
TEST_F(DrawnMeshTest, TrianglesOfTheUndersideComeFirst) {
    TestScene scene(40, 30, 4.0F);
    scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
    scene.add_layer("MOULD", GREY, [](f32 x, f32, f32 below) { return x < 0.5F ? below + 0.4F : below; });
    scene.add_layer("PLUG", GREY, [](f32, f32, f32) { return 1.0F; });
    layer_free(scene.layers[1]);
    scene.layers[1] = nullptr;
    scene.stack.layers = scene.layers.data();
    scene.stack.layer_count = 3;
    const LayerMesh mesh = drawn_mesh_create(&scene.stack, 2);
    // Columns 0 to 19 lie on the mould and 20 to 39 beside it: one quad in each of 29 rows steps down.
    EXPECT_EQ(mesh.under_count, 3 * 2 * 29);
    for (i64 i = 0; i < mesh.index_count; ++i) {
        const f32 *normal = mesh.vertices[mesh.indices[i]].normal;
        const bool under = normal[0] == 0.0F && normal[1] == 0.0F && normal[2] == 0.0F;
        EXPECT_EQ(under, i < mesh.under_count) << "index " << i;
    }
    EXPECT_EQ(layer_mesh_create(scene.layers[2]).under_count, -1) << "the whole mesh has them mixed";
}

TEST_F(DrawnMeshTest, SidesAreToldApartOnlyWhileLayersAreDrawn) {
    TestScene scene(30, 22, 4.0F);
    scene.add_flat_layer("SUBSTRATE", GREY, 0.3F);
    scene.add_flat_layer("FILM", GLASS, 0.1F);
    scene.render();
    EXPECT_EQ(scene.layers[0]->under_count, 0);
    EXPECT_EQ(scene.layers[1]->under_count, -1) << "a translucent layer is seen from inside too";
    EXPECT_EQ(glIsEnabled(GL_CULL_FACE), GL_FALSE);
}
