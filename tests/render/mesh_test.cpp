#include "render/mesh.h"

#include <gtest/gtest.h>
#include <cmath>
#include <limits>
#include <vector>
#include "plain_mesh.h"
#include "platform/memory.h"
#include "tests/support/test_support.h"

// A layer that is absent everywhere: top and bottom at 1.
static Owned<Layer> absent_layer(i32 grid_n, i32 grid_m, f32 spacing = 0.5F) {
    Owned<Layer> layer(layer_create(grid_n, grid_m, spacing));
    for (i64 i = 0; i < static_cast<i64>(grid_n) * grid_m; ++i) {
        layer->top[i] = layer->bottom[i] = 1.0F;
    }
    return layer;
}

struct MeshHolder {
    LayerMesh mesh;

    explicit MeshHolder(const Layer *layer) : mesh(layer_mesh_create(layer)) {}
    ~MeshHolder() { layer_mesh_free(&mesh); }
    MeshHolder(const MeshHolder &) = delete;
    MeshHolder &operator=(const MeshHolder &) = delete;
};

static void expect_plain_mesh(const Layer *layer) {
    const PlainMesh expected = plain_mesh(layer);
    const MeshHolder holder(layer);
    const LayerMesh &mesh = holder.mesh;
    ASSERT_EQ(mesh.index_count, static_cast<i64>(expected.indices.size()));
    ASSERT_EQ(mesh.vertex_count, static_cast<i64>(expected.vertices.size()));
    EXPECT_EQ(std::vector<u32>(mesh.indices, mesh.indices + mesh.index_count), expected.indices);
    for (size_t i = 0; i < expected.vertices.size(); ++i) {
        for (i32 axis = 0; axis < 3; ++axis) {
            ASSERT_EQ(mesh.vertices[i].position[axis], expected.vertices[i].position[axis]) << "vertex " << i;
            ASSERT_EQ(mesh.vertices[i].normal[axis], expected.vertices[i].normal[axis]) << "vertex " << i;
        }
    }
}

TEST(LayerMesh, CountsTrianglesAndVerticesInUse) {
    const struct {
        const char *what;
        i32 grid_n, grid_m;
        std::vector<i32> present;  // points
        i64 triangles, vertices;
    } cases[] = {
        {"absent everywhere", 5, 5, {}, 0, 0},
        // Six triangles meet in a point, over it and its six neighbours, in both surfaces.
        {"one point in the middle", 5, 5, {12}, 12, 14},
        // Three triangles over five points in both surfaces; two stretches of the front with three
        // points on either edge.
        {"one point of the first row", 5, 5, {2}, 6 + 4, 10 + 6},
        // A lies in one triangle (A of the first quad); one stretch of the front.
        {"the first point", 5, 5, {0}, 2 + 2, 6 + 4},
        // Both triangles of the last quad of the first row meet in its last point.
        {"the last point of the first row", 5, 5, {4}, 4 + 2, 8 + 4},
        // Only triangle B of the last quad.
        {"the last point", 5, 5, {24}, 2, 6},
        // As in the middle, cut by the back edge: B, A and B of the quads before and at it.
        {"one point of the last row", 5, 5, {22}, 6, 10},
        {"a grid of one row has only a front", 4, 1, {1}, 4, 6},
    };
    for (const auto &c : cases) {
        const Owned<Layer> layer = absent_layer(c.grid_n, c.grid_m);
        for (const i32 point : c.present) {
            layer->top[point] = 2.0F;
        }
        const MeshHolder holder(layer.get());
        EXPECT_EQ(holder.mesh.index_count, 3 * c.triangles) << c.what;
        EXPECT_EQ(holder.mesh.vertex_count, c.vertices) << c.what;
        expect_plain_mesh(layer.get());
    }
}

TEST(LayerMesh, AFullLayerUsesEverything) {
    const i32 grid_n = 7;
    const i32 grid_m = 4;
    const Owned<Layer> layer = absent_layer(grid_n, grid_m);
    for (i32 i = 0; i < grid_n * grid_m; ++i) {
        layer->top[i] = 2.0F;
    }
    const MeshHolder holder(layer.get());
    EXPECT_EQ(holder.mesh.index_count, 12 * 3 * 6 + 6 * 6);  // 12 (M-1)(N-1) + 6 (N-1)
    EXPECT_EQ(holder.mesh.vertex_count, 2 * (7 * 4 + 7));    // 2 (K + N)
    expect_plain_mesh(layer.get());
}

TEST(LayerMesh, NumbersVerticesByFirstUse) {
    const Owned<Layer> layer = absent_layer(3, 2);
    for (i32 i = 0; i < 6; ++i) {
        layer->top[i] = 2.0F;
    }
    const MeshHolder holder(layer.get());
    // Quad 0: bottom A, top A, bottom B with one new point, top B likewise. Quad 1 goes on from there.
    const u32 expected[] = {0, 1, 2, 3, 4, 5, 1, 6, 2, 4, 7, 5, 1, 8, 6, 4, 9, 7, 8, 10, 6, 9, 11, 7,
                            // The front: lower 0, upper 1, upper 0, then lower 0, lower 1, upper 1.
                            12, 13, 14, 12, 15, 13, 15, 16, 13, 15, 17, 16};
    ASSERT_EQ(holder.mesh.index_count, 36);
    for (size_t i = 0; i < 36; ++i) {
        EXPECT_EQ(holder.mesh.indices[i], expected[i]) << "index " << i;
    }
    // Vertex 6 is the bottom of column 1 in row 1, spacing 0.5.
    EXPECT_EQ(holder.mesh.vertices[6].position[0], 0.5F);
    EXPECT_EQ(holder.mesh.vertices[6].position[1], 0.5F);
    EXPECT_EQ(holder.mesh.vertices[6].position[2], 1.0F);
}

TEST(LayerMesh, FrontFacesTheViewer) {
    const Owned<Layer> layer = absent_layer(2, 1);
    layer->top[0] = 3.0F;
    const MeshHolder holder(layer.get());
    ASSERT_EQ(holder.mesh.vertex_count, 4);
    const f32 expected[4][3] = {{0, 0, 1}, {0.5F, 0, 1}, {0, 0, 3}, {0.5F, 0, 1}};
    for (i32 i = 0; i < 4; ++i) {
        for (i32 axis = 0; axis < 3; ++axis) {
            EXPECT_EQ(holder.mesh.vertices[i].position[axis], expected[i][axis]) << "vertex " << i;
            EXPECT_EQ(holder.mesh.vertices[i].normal[axis], axis == 1 ? -1.0F : 0.0F) << "vertex " << i;
        }
    }
}

TEST(LayerMesh, NormalsPointAwayFromTheSlope) {
    // A plane that rises by 0.25 a column and falls by 0.5 a row, spacing 0.5: each triangle has the
    // cross product (-0.25 * 0.5, 0.5 * 0.5, 0.5 * 0.5), and eight of them meet in the middle.
    const Owned<Layer> layer = absent_layer(3, 3);
    for (i32 m = 0; m < 3; ++m) {
        for (i32 n = 0; n < 3; ++n) {
            layer->top[m * 3 + n] = 5.0F + 0.25F * static_cast<f32>(n) - 0.5F * static_cast<f32>(m);
        }
    }
    const MeshHolder holder(layer.get());
    i32 found = 0;
    for (i64 i = 0; i < holder.mesh.vertex_count; ++i) {
        const MeshVertex &vertex = holder.mesh.vertices[i];
        if (vertex.position[0] == 0.5F && vertex.position[1] == 0.5F && vertex.position[2] != 1.0F) {
            EXPECT_EQ(vertex.normal[0], 8 * -0.125F);
            EXPECT_EQ(vertex.normal[1], 8 * 0.25F);
            EXPECT_EQ(vertex.normal[2], 8 * 0.25F);
            ++found;
        }
    }
    EXPECT_EQ(found, 1);
}

TEST(LayerMesh, BottomVerticesHaveNoNormalAndTheFirstTopVertexTheLastOneTurnedRound) {
    const Owned<Layer> layer = absent_layer(3, 3);
    for (i32 i = 0; i < 9; ++i) {
        layer->top[i] = 2.0F;
    }
    layer->top[8] = 3.0F;
    const MeshHolder holder(layer.get());
    for (i32 i = 0; i < 3; ++i) {
        for (const f32 part : holder.mesh.vertices[i].normal) {
            EXPECT_EQ(part, 0.0F) << "bottom vertex " << i;
        }
    }
    // The last point is 1 higher than its neighbours, spacing 0.5. Its quadrant's triangles have the
    // cross products (-0.5, 0, 0.25) and (0, -0.5, 0.25): the surface rises towards it.
    const f32 *normal = holder.mesh.vertices[3].normal;
    EXPECT_EQ(normal[0], 0.5F);
    EXPECT_EQ(normal[1], 0.5F);
    EXPECT_EQ(normal[2], -0.5F);
    // The second top vertex has its own: it is flat there, two quadrants of twice 0.25.
    EXPECT_EQ(holder.mesh.vertices[4].normal[2], 1.0F);
}

TEST(LayerMesh, BottomVerticesBesideAStepAreMarked) {
    const i32 side = 5;
    for (i32 raised = 0; raised < side * side; ++raised) {
        const Owned<Layer> layer = absent_layer(side, side, 1.0F);
        for (i32 i = 0; i < side * side; ++i) {
            layer->top[i] = 3.0F;
        }
        layer->bottom[raised] = 2.0F;
        const MeshHolder holder(layer.get());
        i32 found = 0;
        for (i64 i = 0; i < holder.mesh.vertex_count; ++i) {
            const MeshVertex &vertex = holder.mesh.vertices[i];
            if (vertex.position[2] == 3.0F || vertex.normal[1] == -1.0F) {
                continue;  // of the top or of the front
            }
            const f32 dn = vertex.position[0] - static_cast<f32>(raised % side);
            const f32 dm = vertex.position[1] - static_cast<f32>(raised / side);
            const bool beside = std::fabs(dn) <= 1.0F && std::fabs(dm) <= 1.0F;
            EXPECT_EQ(vertex.normal[2], beside ? -1.0F : 0.0F)
                << dn << ", " << dm << " from point " << raised;
            ++found;
        }
        EXPECT_EQ(found, side * side);
    }
}

TEST(LayerMesh, AThicknessThatIsNoNumberIsPresent) {
    const Owned<Layer> layer = absent_layer(3, 3);
    layer->top[8] = std::numeric_limits<f32>::quiet_NaN();
    const MeshHolder holder(layer.get());
    EXPECT_EQ(holder.mesh.index_count, 6);
}

TEST(LayerMesh, ANegativeThicknessIsPresent) {
    const Owned<Layer> layer = absent_layer(3, 3);
    layer->top[8] = 0.5F;
    expect_plain_mesh(layer.get());
    const MeshHolder holder(layer.get());
    EXPECT_EQ(holder.mesh.index_count, 6);
}

TEST(LayerMesh, EqualsThePlainRuleOnRandomGridsWithHoles) {
    TestRandom random = test_random_start(52);
    for (i32 run = 0; run < 400; ++run) {
        const i32 grid_n = test_random_i32(&random, 2, 12);
        const i32 grid_m = test_random_i32(&random, 1, 12);
        const f64 density = 0.1 * test_random_i32(&random, 0, 10);
        const Owned<Layer> layer = absent_layer(grid_n, grid_m, test_random_f32(&random, 0.01F, 1.0F));
        for (i32 i = 0; i < grid_n * grid_m; ++i) {
            layer->bottom[i] = test_random_f32(&random, -1.0F, 1.0F);
            layer->top[i] = layer->bottom[i];
            if (test_random_bool(&random, density)) {
                layer->top[i] += test_random_f32(&random, 0.0F, 1.0F);
            }
        }
        SCOPED_TRACE(run);
        expect_plain_mesh(layer.get());
    }
}

TEST(LayerMesh, GivesEverythingBack) {
    const Owned<Layer> layer = absent_layer(8, 8);
    layer->top[20] = 4.0F;
    const i64 before = memory_live_blocks();
    LayerMesh mesh = layer_mesh_create(layer.get());
    layer_mesh_free(&mesh);
    EXPECT_EQ(mesh.vertices, nullptr);
    EXPECT_EQ(memory_live_blocks(), before);
}
