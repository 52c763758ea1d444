#include "export/mesh_stl.h"

#include <cassert>
#include <cmath>
#include <cstring>
#include <cwchar>

#include "export/mesh_bytes.h"
#include "export/solid_walk.h"

static constexpr i64 HEADER_BYTES = 80;
static constexpr i64 MOST_TRIANGLES = 0xFFFFFFFF;

static bool count_triangles(void *context, i32 slot, const SolidMesh *mesh) {
    static_cast<void>(slot);
    *static_cast<i64 *>(context) += mesh->index_count / 3;
    return true;
}

static void put_vertex(MeshBytes *bytes, SolidVertex vertex) {
    mesh_bytes_put_f32(bytes, vertex.x);
    mesh_bytes_put_f32(bytes, vertex.y);
    mesh_bytes_put_f32(bytes, vertex.z);
}

// The direction that a triangle faces, of length 1.
static SolidVertex normal_of(SolidVertex a, SolidVertex b, SolidVertex c) {
    const f64 along[3] = {f64{b.x} - f64{a.x}, f64{b.y} - f64{a.y}, f64{b.z} - f64{a.z}};
    const f64 up[3] = {f64{c.x} - f64{a.x}, f64{c.y} - f64{a.y}, f64{c.z} - f64{a.z}};
    const f64 x = along[1] * up[2] - along[2] * up[1];
    const f64 y = along[2] * up[0] - along[0] * up[2];
    const f64 z = along[0] * up[1] - along[1] * up[0];
    const f64 length = std::sqrt(x * x + y * y + z * z);
    return {static_cast<f32>(x / length), static_cast<f32>(y / length), static_cast<f32>(z / length)};
}

static bool put_triangles(void *context, i32 slot, const SolidMesh *mesh) {
    static_cast<void>(slot);
    auto *bytes = static_cast<MeshBytes *>(context);
    for (i64 i = 0; i < mesh->index_count; i += 3) {
        const SolidVertex a = solid_place(mesh, mesh->vertices[mesh->indices[i]]);
        const SolidVertex b = solid_place(mesh, mesh->vertices[mesh->indices[i + 1]]);
        const SolidVertex c = solid_place(mesh, mesh->vertices[mesh->indices[i + 2]]);
        put_vertex(bytes, normal_of(a, b, c));
        put_vertex(bytes, a);
        put_vertex(bytes, b);
        put_vertex(bytes, c);
        mesh_bytes_put_u16(bytes, 0);
    }
    return std::ferror(bytes->file) == 0;
}

bool mesh_stl_write(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    assert(step != nullptr && step->stack != nullptr && file != nullptr && reason != nullptr);
    i64 triangles = 0;
    solid_walk(step->stack, count_triangles, &triangles);
    if (triangles == 0 || triangles > MOST_TRIANGLES) {
        const wchar_t *fault =
            triangles == 0 ? SOLID_NONE_REASON : L"an STL file holds no more than 4,294,967,295 triangles";
        std::wcsncpy(reason, fault, EXPORT_REASON_SIZE);
        return false;
    }
    // Readers take a file that begins with "solid" for one in text.
    char header[HEADER_BYTES + 1] = {};
    std::snprintf(header, sizeof(header), "binary STL, micrometres, step %d, by %s", step->index,
                  step->facts != nullptr ? step->facts->program : "");
    MeshBytes bytes = mesh_bytes_create(file);
    mesh_bytes_put(&bytes, header, HEADER_BYTES);
    mesh_bytes_put_u32(&bytes, static_cast<u32>(triangles));
    solid_walk(step->stack, put_triangles, &bytes);
    mesh_bytes_finish(&bytes);
    return true;
}
