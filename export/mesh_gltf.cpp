#include "export/mesh_gltf.h"

#include <cassert>
#include <cmath>
#include <cwchar>

#include "export/film_names.h"
#include "platform/platform.h"
#include "sim/layer.h"

// Numbers of the format.
static constexpr i32 TYPE_U16 = 5123;
static constexpr i32 TYPE_U32 = 5125;
static constexpr i32 TYPE_F32 = 5126;
static constexpr i32 TARGET_VERTICES = 34962;
static constexpr i32 TARGET_INDICES = 34963;

i64 gltf_vertex_part(const GltfFilm *film) {
    return film->vertex_count * static_cast<i64>(sizeof(SolidVertex));
}

i64 gltf_index_part(const GltfFilm *film) {
    assert(film->index_count % 2 == 0);
    return film->index_count * gltf_index_bytes(film);
}

SolidVertex gltf_place(SolidVertex vertex) {
    return {vertex.x, vertex.z, 0.0F - vertex.y};
}

static constexpr f64 METRES_PER_MICROMETRE = 1e-6;

static void put_text_member(ExportText *json, const char *name, const char *value) {
    export_text_put(json, name);
    export_text_put_json(json, value);
}

static void put_integer_member(ExportText *json, const char *name, i64 value) {
    export_text_put(json, name);
    export_text_put_integer(json, value);
}

// Colours of films are those of the screen; glTF has intensities of light (IEC 61966-2-1: sRGB).
static f64 light_of(f32 color) {
    const f64 value = color > 0.0F ? std::fmin(f64{color}, 1.0) : 0.0;
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
}

static void put_place(ExportText *json, const char *name, SolidVertex place) {
    export_text_put(json, name);
    export_text_put_f64(json, f64{place.x});
    export_text_put(json, ",");
    export_text_put_f64(json, f64{place.y});
    export_text_put(json, ",");
    export_text_put_f64(json, f64{place.z});
    export_text_put(json, "]");
}

static NarrowText file_name_of(const wchar_t *path) {
    const wchar_t *name = path;
    for (const wchar_t *next = path; *next != 0; ++next) {
        name = *next == L'/' || *next == PLATFORM_SEPARATOR[0] ? next + 1 : name;
    }
    return export_text_from_wide(name);
}

static void put_file_member(ExportText *json, const char *name, const wchar_t *path) {
    if (path != nullptr && path[0] != 0) {
        put_text_member(json, name, file_name_of(path).get());
    }
}

static void put_asset(ExportText *json, const ExportStep *step) {
    const ExportFacts *facts = step->facts;
    const NarrowText title = export_text_from_wide(step->title != nullptr ? step->title : L"");
    export_text_put(json, "{\"asset\":{\"version\":\"2.0\"");
    if (facts != nullptr) {
        put_text_member(json, ",\"generator\":", facts->program);
    }
    put_text_member(json, ",\"extras\":{\"title\":", title.get());
    put_integer_member(json, ",\"step\":", step->index);
    if (step->stack->cell_name != nullptr) {
        put_text_member(json, ",\"cell\":", step->stack->cell_name);
    }
    if (facts != nullptr) {
        put_file_member(json, ",\"layout\":", facts->layout_path);
        put_file_member(json, ",\"process\":", facts->process_path);
        if (facts->cut_name != nullptr) {
            put_text_member(json, ",\"cut\":", facts->cut_name);
        }
        put_text_member(json, ",\"date\":", facts->date);
    }
    export_text_put(json, "}}");
    put_text_member(json, ",\"scene\":0,\"scenes\":[{\"name\":", title.get());
    export_text_put(json, ",\"nodes\":[0]}]");
}

// The node above all films, which makes metres of their vertices; the grid is the same for all.
static void put_scale(ExportText *json, f64 stretch) {
    export_text_put(json, ",\"nodes\":[{\"name\":\"section\",\"scale\":[");
    export_text_put_f64(json, METRES_PER_MICROMETRE * stretch);
    export_text_put(json, ",");
    export_text_put_f64(json, METRES_PER_MICROMETRE);
    export_text_put(json, ",");
    export_text_put_f64(json, METRES_PER_MICROMETRE * stretch);
    export_text_put(json, "]");
}

static void put_nodes(ExportText *json, const ExportStep *step, const FilmNames *names, const GltfFilm *films,
                      i32 count) {
    put_scale(json, films[0].stretch);
    export_text_put(json, ",\"children\":[");
    for (i32 i = 0; i < count; ++i) {
        put_integer_member(json, i > 0 ? "," : "", i64{i} + 1);
    }
    export_text_put(json, "]}");
    for (i32 i = 0; i < count; ++i) {
        const Layer *layer = step->stack->layers[films[i].slot];
        put_text_member(json, ",{\"name\":", names->items[films[i].slot]);
        put_integer_member(json, ",\"mesh\":", i);
        put_text_member(
            json, ",\"extras\":{\"material\":", layer->material_name != nullptr ? layer->material_name : "");
        export_text_put(json, ",\"volume_um3\":");
        export_text_put_f64(json, films[i].volume);
        export_text_put(json, "}}");
    }
    export_text_put(json, "]");
}

static void put_materials(ExportText *json, const ExportStep *step, const FilmNames *names,
                          const GltfFilm *films, i32 count) {
    export_text_put(json, ",\"materials\":[");
    for (i32 i = 0; i < count; ++i) {
        const f32 *color = step->stack->layers[films[i].slot]->color;
        put_text_member(json, i > 0 ? ",{\"name\":" : "{\"name\":", names->items[films[i].slot]);
        export_text_put(json, ",\"pbrMetallicRoughness\":{\"baseColorFactor\":[");
        for (i32 k = 0; k < 3; ++k) {
            export_text_put_fixed(json, light_of(color[k]), 6);
            export_text_put(json, ",");
        }
        const f64 opacity = color[3] > 0.0F ? std::fmin(f64{color[3]}, 1.0) : 0.0;
        export_text_put_fixed(json, opacity, 6);
        export_text_put(json, "],\"metallicFactor\":0,\"roughnessFactor\":0.8},\"alphaMode\":\"");
        export_text_put(json, opacity < 1.0 ? "BLEND" : "OPAQUE");
        export_text_put(json, "\",\"doubleSided\":false}");
    }
    export_text_put(json, "]");
}

static void put_meshes(ExportText *json, const FilmNames *names, const GltfFilm *films, i32 count) {
    export_text_put(json, ",\"meshes\":[");
    for (i32 i = 0; i < count; ++i) {
        put_text_member(json, i > 0 ? ",{\"name\":" : "{\"name\":", names->items[films[i].slot]);
        put_integer_member(json, ",\"primitives\":[{\"attributes\":{\"POSITION\":", i64{2} * i);
        put_integer_member(json, "},\"indices\":", i64{2} * i + 1);
        put_integer_member(json, ",\"material\":", i);
        export_text_put(json, "}]}");
    }
    export_text_put(json, "],\"accessors\":[");
    for (i32 i = 0; i < count; ++i) {
        const GltfFilm *film = &films[i];
        const SolidVertex low = gltf_place({film->low.x, film->high.y, film->low.z});
        const SolidVertex high = gltf_place({film->high.x, film->low.y, film->high.z});
        put_integer_member(json, i > 0 ? ",{\"bufferView\":" : "{\"bufferView\":", i64{2} * i);
        put_integer_member(json, ",\"componentType\":", TYPE_F32);
        put_integer_member(json, ",\"type\":\"VEC3\",\"count\":", film->vertex_count);
        put_place(json, ",\"min\":[", low);
        put_place(json, ",\"max\":[", high);
        put_integer_member(json, "},{\"bufferView\":", i64{2} * i + 1);
        put_integer_member(json, ",\"componentType\":", gltf_index_bytes(film) == 2 ? TYPE_U16 : TYPE_U32);
        put_integer_member(json, ",\"type\":\"SCALAR\",\"count\":", film->index_count);
        export_text_put(json, "}");
    }
    export_text_put(json, "]");
}

static void put_view(ExportText *json, i64 start, i64 size, i32 target) {
    put_integer_member(json,
                       start > 0 ? ",{\"buffer\":0,\"byteOffset\":" : "{\"buffer\":0,\"byteOffset\":", start);
    put_integer_member(json, ",\"byteLength\":", size);
    put_integer_member(json, ",\"target\":", target);
    export_text_put(json, "}");
}

static void put_buffer(ExportText *json, const GltfFilm *films, i32 count) {
    i64 end = 0;
    export_text_put(json, ",\"bufferViews\":[");
    for (i32 i = 0; i < count; ++i) {
        put_view(json, end, gltf_vertex_part(&films[i]), TARGET_VERTICES);
        end += gltf_vertex_part(&films[i]);
        put_view(json, end, gltf_index_part(&films[i]), TARGET_INDICES);
        end += gltf_index_part(&films[i]);
    }
    put_integer_member(json, "],\"buffers\":[{\"byteLength\":", end);
    export_text_put(json, "}]}");
}

void gltf_put(ExportText *json, const ExportStep *step, const GltfFilm *films, i32 count) {
    assert(json != nullptr && step != nullptr && step->stack != nullptr && films != nullptr && count > 0);
    FilmNames names = film_names_create(step->stack);
    const Owned<FilmNames> owner(&names);
    put_asset(json, step);
    put_nodes(json, step, &names, films, count);
    put_materials(json, step, &names, films, count);
    put_meshes(json, &names, films, count);
    put_buffer(json, films, count);
}
