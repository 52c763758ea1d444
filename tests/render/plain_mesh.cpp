#include "plain_mesh.h"

struct PlainVector {
    f32 x, y, z;
};

static PlainVector plain_cross(PlainVector a, PlainVector b) {
    return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}

static void plain_add(f32 normal[3], PlainVector v) {
    normal[0] += v.x;
    normal[1] += v.y;
    normal[2] += v.z;
}

// Counter-clockwise from the quadrant right behind the point; in each of them the triangle at the
// neighbour in the row, then the one at the neighbour in the column.
static void plain_normal(const Layer *layer, i32 n, i32 m, f32 normal[3]) {
    const i32 grid_n = static_cast<i32>(layer->grid_n);
    const i32 grid_m = static_cast<i32>(layer->grid_m);
    const i32 quadrants[4][2] = {{1, 1}, {-1, 1}, {-1, -1}, {1, -1}};
    normal[0] = normal[1] = normal[2] = 0.0F;
    for (const auto &q : quadrants) {
        if (n + q[0] < 0 || n + q[0] >= grid_n || m + q[1] < 0 || m + q[1] >= grid_m) {
            continue;
        }
        const auto edge = [&](i32 dx, i32 dy) {
            const f32 dz = layer->top[(m + dy) * grid_n + n + dx] - layer->top[m * grid_n + n];
            return PlainVector{static_cast<f32>(dx) * layer->spacing, static_cast<f32>(dy) * layer->spacing,
                               dz};
        };
        const PlainVector along = edge(q[0], 0);
        const PlainVector corner = edge(q[0], q[1]);
        const PlainVector across = edge(0, q[1]);
        const bool counter_clockwise = q[0] == q[1];
        plain_add(normal, counter_clockwise ? plain_cross(along, corner) : plain_cross(corner, along));
        plain_add(normal, counter_clockwise ? plain_cross(corner, across) : plain_cross(across, corner));
    }
}

static std::vector<MeshVertex> plain_vertices(const Layer *layer) {
    const i32 grid_n = static_cast<i32>(layer->grid_n);
    const i32 grid_m = static_cast<i32>(layer->grid_m);
    const i32 k = grid_n * grid_m;
    const i32 count = 2 * (k + grid_n);
    std::vector<MeshVertex> all(static_cast<size_t>(count));
    const auto place = [&](i32 index, i32 n, i32 m, f32 height) {
        MeshVertex &vertex = all[static_cast<size_t>(index)];
        vertex = {{static_cast<f32>(n) * layer->spacing, static_cast<f32>(m) * layer->spacing, height},
                  {0, 0, 0}};
        return &vertex;
    };
    for (i32 m = 0; m < grid_m; ++m) {
        for (i32 n = 0; n < grid_n; ++n) {
            const i32 i = m * grid_n + n;
            place(i, n, m, layer->bottom[i]);
            place(k + i, n, m, layer->top[i]);
        }
    }
    for (i32 n = 0; n < grid_n; ++n) {
        place(2 * k + n, n, 0, layer->bottom[n])->normal[1] = -1.0F;
        place(2 * k + grid_n + n, n, 0, layer->top[n])->normal[1] = -1.0F;
    }
    for (i32 m = 0; m < grid_m; ++m) {
        for (i32 n = 0; n < grid_n; ++n) {
            const i32 index = k + m * grid_n + n;
            f32 *normal = all[static_cast<size_t>(index)].normal;
            plain_normal(layer, n, m, normal);
            f32 *first = all[static_cast<size_t>(k)].normal;
            for (i32 axis = 0; axis < 3; ++axis) {
                first[axis] = -normal[axis];
            }
        }
    }
    return all;
}

static std::vector<u32> plain_indices(const Layer *layer) {
    const u32 grid_n = layer->grid_n;
    const u32 k = grid_n * layer->grid_m;
    std::vector<u32> out;
    const auto present = [&](u32 i) { return !(layer->top[i] - layer->bottom[i] == 0.0F); };
    const auto emit = [&](u32 a, u32 b, u32 c) { out.insert(out.end(), {a, b, c}); };
    const auto triangle = [&](u32 a, u32 b, u32 c) {
        if (present(a) || present(b) || present(c)) {
            emit(a, b, c);
            emit(k + a, k + b, k + c);
        }
    };
    for (u32 m = 0; m + 1 < layer->grid_m; ++m) {
        for (u32 n = 0; n + 1 < grid_n; ++n) {
            const u32 i = m * grid_n + n;
            triangle(i, i + 1, i + grid_n);
            triangle(i + 1, i + grid_n + 1, i + grid_n);
        }
    }
    const u32 lower = 2 * k;
    const u32 upper = 2 * k + grid_n;
    for (u32 n = 0; n + 1 < grid_n; ++n) {
        if (present(n) || present(n + 1)) {
            emit(lower + n, upper + n + 1, upper + n);
            emit(lower + n, lower + n + 1, upper + n + 1);
        }
    }
    return out;
}

PlainMesh plain_mesh(const Layer *layer) {
    const std::vector<MeshVertex> all = plain_vertices(layer);
    PlainMesh mesh = {{}, plain_indices(layer)};
    std::vector<i64> numbers(all.size(), -1);
    for (u32 &index : mesh.indices) {
        if (numbers[index] < 0) {
            numbers[index] = static_cast<i64>(mesh.vertices.size());
            mesh.vertices.push_back(all[index]);
        }
        index = static_cast<u32>(numbers[index]);
    }
    return mesh;
}
