#include "export/mesh_glb.h"

#include <cassert>
#include <cwchar>

#include "export/mesh_bytes.h"
#include "export/mesh_gltf.h"
#include "export/solid_walk.h"

static constexpr u32 MAGIC = 0x46546C67;       // "glTF"
static constexpr u32 JSON_CHUNK = 0x4E4F534A;  // "JSON"
static constexpr u32 BINARY_CHUNK = 0x004E4942;
static constexpr u32 VERSION = 2;
static constexpr i64 HEADER_BYTES = 12;
static constexpr i64 CHUNK_HEADER_BYTES = 8;
static constexpr i64 MOST_BYTES = 0xFFFFFFFF;

// A growable array.
struct GltfFilms {
    Owned<GltfFilm[]> items;
    i32 count, capacity;
};

static bool measure_film(void *context, i32 slot, const SolidMesh *mesh) {
    auto *films = static_cast<GltfFilms *>(context);
    const GltfFilm film = {slot,       mesh->vertex_count, mesh->index_count,      mesh->low,
                           mesh->high, mesh->stretch,      solid_mesh_volume(mesh)};
    array_append(&films->items, &films->count, &films->capacity, film);
    return true;
}

static bool put_film(void *context, i32 slot, const SolidMesh *mesh) {
    auto *bytes = static_cast<MeshBytes *>(context);
    const GltfFilm film = {slot, mesh->vertex_count, mesh->index_count, {}, {}, 1.0, 0.0};
    for (i64 i = 0; i < mesh->vertex_count; ++i) {
        const SolidVertex place = gltf_place(mesh->vertices[i]);
        mesh_bytes_put_f32(bytes, place.x);
        mesh_bytes_put_f32(bytes, place.y);
        mesh_bytes_put_f32(bytes, place.z);
    }
    const i64 index_bytes = gltf_index_bytes(&film);
    for (i64 i = 0; i < mesh->index_count; ++i) {
        if (index_bytes == 2) {
            mesh_bytes_put_u16(bytes, static_cast<u16>(mesh->indices[i]));
        } else {
            mesh_bytes_put_u32(bytes, mesh->indices[i]);
        }
    }
    return std::ferror(bytes->file) == 0;
}

// Writes the file around the meshes.
static void put_file(const ExportStep *step, const ExportText *json, i64 binary_size, std::FILE *file) {
    MeshBytes bytes = mesh_bytes_create(file);
    mesh_bytes_put_u32(&bytes, MAGIC);
    mesh_bytes_put_u32(&bytes, VERSION);
    mesh_bytes_put_u32(&bytes,
                       static_cast<u32>(HEADER_BYTES + 2 * CHUNK_HEADER_BYTES + json->size + binary_size));
    mesh_bytes_put_u32(&bytes, static_cast<u32>(json->size));
    mesh_bytes_put_u32(&bytes, JSON_CHUNK);
    mesh_bytes_put(&bytes, json->bytes, json->size);
    mesh_bytes_put_u32(&bytes, static_cast<u32>(binary_size));
    mesh_bytes_put_u32(&bytes, BINARY_CHUNK);
    solid_walk(step->stack, put_film, &bytes);
    mesh_bytes_finish(&bytes);
}

bool mesh_glb_write(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    assert(step != nullptr && step->stack != nullptr && file != nullptr && reason != nullptr);
    GltfFilms films = {};
    solid_walk(step->stack, measure_film, &films);
    if (films.count == 0) {
        std::wcsncpy(reason, SOLID_NONE_REASON, EXPORT_REASON_SIZE);
        return false;
    }
    ExportText json = {};
    const Owned<ExportText> owner(&json);
    gltf_put(&json, step, films.items.get(), films.count);
    while (json.size % 4 != 0 && !json.lacking) {
        export_text_put(&json, " ");
    }
    if (!export_text_finish(&json)) {
        std::wcsncpy(reason, L"memory is lacking", EXPORT_REASON_SIZE);
        return false;
    }
    i64 binary_size = 0;
    for (i32 i = 0; i < films.count; ++i) {
        binary_size += gltf_vertex_part(&films.items[i]) + gltf_index_part(&films.items[i]);
    }
    if (HEADER_BYTES + 2 * CHUNK_HEADER_BYTES + json.size + binary_size > MOST_BYTES) {
        std::wcsncpy(reason, L"a glTF file holds no more than 4 GB; a smaller N makes smaller ones",
                     EXPORT_REASON_SIZE);
        return false;
    }
    put_file(step, &json, binary_size, file);
    return true;
}
