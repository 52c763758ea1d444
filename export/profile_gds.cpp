#include "export/profile_gds.h"

#include <algorithm>
#include <cassert>
#include <cmath>
#include <cstdio>
#include <cwchar>

#include "export/export_text.h"
#include "export/profile_areas.h"
#include "export/profile_face.h"
#include "export/profile_outline.h"
#include "gds/gds_elements.h"

// A layer's number has 16 bits of which some readers take the highest for a sign.
static constexpr i32 MOST_LAYERS = 32767;

// Coordinates stay clear of the ends of 32 bits, with which readers compute.
static constexpr f64 LARGEST_COORDINATE = 1.0e9;

// Steps of coordinates, in millionths of a micrometre: 0.001 nm, 0.01 nm and so on. Films of a few nanometres
// would lose some of their area if they were rounded to whole nanometres; a section of 1 mm fits the finest
// step.
static i64 choose_step(const ProfileFace *face) {
    const f64 largest = std::max({face->right, std::fabs(face->lowest), std::fabs(face->highest)});
    i64 step = 1;
    while (step < 1000000000 && largest * 1.0e6 / static_cast<f64>(step) > LARGEST_COORDINATE) {
        step *= 10;
    }
    return step;
}

static i32 coordinate(f64 micrometres, i64 step) {
    return truncate_i32(std::floor(micrometres * 1.0e6 / static_cast<f64>(step) + 0.5));
}

static Point place_of(const ProfileFace *face, f64 station, f64 height, i64 step) {
    return {coordinate(0.5 * station * f64{face->spacing}, step), coordinate(height, step)};
}

static void write_ring(std::FILE *file, const ProfileFace *face, const ProfileOutline *outline,
                       const OutlineRing *ring, i64 step) {
    const Owned<Point[]> places = memory_scratch<Point>(i64{ring->count} + 1);
    for (i32 i = 0; i < ring->count; ++i) {
        const BorderPoint point = outline->points[ring->first + i];
        places[i] = place_of(face, static_cast<f64>(point.station), point.height, step);
    }
    places[ring->count] = places[0];
    gds_write_polygon(file, places.get(), ring->count + 1, static_cast<u16>(ring->region + 1));
}

// A text of at most the bytes that an element holds, cut before a character.
static void write_name(std::FILE *file, Point place, i32 number, const char *name) {
    ExportText text = {};
    const Owned<ExportText> owner(&text);
    export_text_put_clean(&text, name);
    if (!export_text_finish(&text)) {
        memory_end_program();
    }
    i64 size = std::min(text.size, i64{GDS_MOST_TEXT});
    while (size < text.size && size > 0 && (static_cast<u8>(text.bytes[size]) & 0xC0) == 0x80) {
        --size;
    }
    char bytes[GDS_MOST_TEXT + 1] = {};
    std::copy(text.bytes, text.bytes + size, bytes);
    gds_write_text(file, place, static_cast<u16>(number), bytes);
}

// The name of each material stands in its largest area.
static void write_names(std::FILE *file, const ProfileFace *face, i64 step) {
    const ProfileAreas areas = profile_areas_create(&face->pieces);
    for (i32 region = 0; region < face->materials->count; ++region) {
        i32 largest = -1;
        for (i32 i = 0; i < areas.count; ++i) {
            if (areas.items[i].region == region &&
                (largest < 0 || areas.items[i].size > areas.items[largest].size)) {
                largest = i;
            }
        }
        if (largest >= 0) {
            const AreaPlace place = profile_area_middle(&areas, largest);
            write_name(file, place_of(face, place.station, place.height, step), region + 1,
                       face->materials->items[region].name);
        }
    }
}

bool profile_gds_write(const ExportStep *step, std::FILE *file, wchar_t reason[EXPORT_REASON_SIZE]) {
    assert(step != nullptr && file != nullptr && reason != nullptr);
    const ProfileFace face = profile_face_create(step->stack);
    if (face.materials->count > MOST_LAYERS) {
        std::swprintf(reason, EXPORT_REASON_SIZE,
                      L"%d materials are more than the layers that there are (%d)", face.materials->count,
                      MOST_LAYERS);
        return false;
    }
    const i64 unit = choose_step(&face);
    const ProfileOutline outline =
        profile_outline_create_cut(&face.pieces, face.spacing, GDS_MOST_POINTS - 1);
    u8 units_raw[16];
    gds_units_raw(static_cast<f64>(unit) / 1.0e6, static_cast<f64>(unit) / 1.0e12, units_raw);
    char structure[32];
    std::snprintf(structure, sizeof(structure), "STEP_%d", step->number);
    gds_elements_begin(file, "QUARN", units_raw, structure);
    for (i32 i = 0; i < outline.ring_count && std::ferror(file) == 0; ++i) {
        write_ring(file, &face, &outline, &outline.rings[i], unit);
    }
    write_names(file, &face, unit);
    gds_elements_end(file);
    return true;
}
