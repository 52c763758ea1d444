#include "gds/gds_reader.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "gds/gds_error.h"
#include "gds/gds_path.h"
#include "gds/gds_placement.h"
#include "gds/gds_real8.h"
#include "gds/gds_record.h"
#include "log/log.h"
#include "platform/owned.h"
#include "platform/trigonometry.h"

static constexpr i32 CELLS_FIRST = 64;
static constexpr i32 ITEMS_COPIED = 4096;          // of a list, at most
static constexpr i64 POINTS_OF_A_RECORD = 8191;    // what 65535 bytes hold
static constexpr i64 POINTS_SHARED = 1 << 15;      // 256 KB, more than the largest outline of a PATH has
static constexpr i64 POINTS_OF_A_BLOCK = 1 << 17;  // 1 MB

static void element_drop(GdsReader *reader) {
    reader->polygon = GdsPolygon{};
    reader->reference = GdsARef{};
    reader->element = ELEMENT_NONE;
}

static i32 read_bgnstr(GdsReader *reader) {
    if (reader->in_structure) {
        return GDS_ERROR_BGNSTR;
    }
    reader->in_structure = true;
    return 0;
}

// Gives the polygons, whose points follow one another in their order, their points at another place.
static void move_points(GdsCell *cell, Point *to) {
    for (i32 i = 0; i < cell->polygon_count; ++i) {
        GdsPolygon *polygon = &cell->polygons[i];
        if (polygon->points != nullptr) {
            polygon->points = to;
            to += polygon->point_count;
        }
    }
}

// Room for so many points behind those that are used; using them is the caller's step.
static Point *point_room(GdsReader *reader, i64 count) {
    assert(count <= POINTS_SHARED);
    GdsPointRoom *room = &reader->room;
    if (room->shared == nullptr) {
        room->shared = memory_scratch<Point>(POINTS_SHARED);
        room->points = room->shared.get();
        room->size = POINTS_SHARED;
    }
    if (room->used + count > room->size) {
        const bool was_shared = room->points == room->shared.get();
        const i64 size = was_shared ? 2 * POINTS_SHARED : POINTS_OF_A_BLOCK;
        Point *block = gds_cell_add_points(&reader->cell, size);
        if (was_shared) {
            std::copy(room->points, room->points + room->used, block);
            move_points(&reader->cell, block);
        } else {
            room->used = 0;
        }
        room->points = block;
        room->size = size;
    }
    return room->points + room->used;
}

// Gives the points of a structure that is closed their place, and the room to the next one. An open BOUNDARY
// stays open and takes its points along.
static void close_points(GdsReader *reader) {
    GdsPointRoom *room = &reader->room;
    const i64 used = room->used;
    if (room->points == room->shared.get() && used > 0) {
        Point *block = gds_cell_add_points(&reader->cell, used);
        std::copy(room->points, room->points + used, block);
        move_points(&reader->cell, block);
    }
    room->points = room->shared.get();
    room->used = 0;
    room->size = POINTS_SHARED;
    GdsPolygon *open = &reader->polygon;
    if (reader->element == ELEMENT_BOUNDARY && open->points != nullptr) {
        std::memmove(room->points, open->points, static_cast<size_t>(open->point_count) * sizeof(Point));
        open->points = room->points;
    }
}

// The items of a list in a block of their size. The list's own room is kept for the next structure, but for
// one of many items, which is cut to its size instead.
template <typename T>
static T *close_list(T **items, i32 count, i32 *capacity) {
    if (count == 0) {
        return nullptr;
    }
    if (count > ITEMS_COPIED) {
        T *cut = static_cast<T *>(memory_reallocate(*items, count, sizeof(T)));
        *items = nullptr;
        *capacity = 0;
        return cut;
    }
    T *copy = memory_new_array<T>(count);
    std::copy(*items, *items + count, copy);
    return copy;
}

static i32 read_endstr(GdsReader *reader) {
    if (!reader->in_structure) {
        return GDS_ERROR_ENDSTR;
    }
    close_points(reader);
    GdsCell *open = &reader->cell;
    GdsCell cell = *open;
    cell.polygons = close_list(&open->polygons, cell.polygon_count, &open->polygon_capacity);
    cell.srefs = close_list(&open->srefs, cell.sref_count, &open->sref_capacity);
    cell.arefs = close_list(&open->arefs, cell.aref_count, &open->aref_capacity);
    cell.polygon_capacity = cell.polygon_count;
    cell.sref_capacity = cell.sref_count;
    cell.aref_capacity = cell.aref_count;
    GdsDatabase *database = reader->database;
    array_append(&database->cells, &database->cell_count, &database->cell_capacity, cell, CELLS_FIRST);
    open->name = nullptr;
    open->polygon_count = 0;
    open->sref_count = 0;
    open->aref_count = 0;
    open->point_blocks = nullptr;
    reader->in_structure = false;
    return 0;
}

// Opens an element; `error` is what to return when it may not stand here.
static i32 open_element(GdsReader *reader, GdsElement element, i64 offset, i32 error) {
    if (!reader->in_structure || reader->element != ELEMENT_NONE) {
        return error;
    }
    reader->element = element;
    reader->element_offset = offset;
    reader->layer_seen = false;
    reader->polygon = GdsPolygon{};
    reader->polygon.bbox = BOX_EMPTY;
    reader->width = 0;
    reader->path_type = 0;
    reader->reference = GdsARef{};
    reader->reference.mag = 1.0F;
    return 0;
}

// The length of the text of a name record, which ends at the first zero byte.
static i64 name_length(const GdsRecord *record) {
    const void *zero = std::memchr(record->data, 0, static_cast<size_t>(record->size));
    return zero != nullptr ? static_cast<const u8 *>(zero) - record->data : record->size;
}

// A structure's name replaces an earlier one.
static void read_name(const GdsRecord *record, NString **name) {
    const i64 length = name_length(record);
    auto *fresh = memory_new_zeroed<NString>();
    fresh->text = memory_new_array<char>(length + 1);
    std::memcpy(fresh->text, record->data, static_cast<size_t>(length));
    fresh->text[length] = 0;
    fresh->count = static_cast<u64>(length);
    nstring_free(*name);
    *name = fresh;
}

static bool in_reference(const GdsReader *reader) {
    return reader->element == ELEMENT_SREF || reader->element == ELEMENT_AREF;
}

static bool in_reference_or_text(const GdsReader *reader) {
    return in_reference(reader) || reader->element == ELEMENT_TEXT;
}

static i32 read_strname(GdsReader *reader) {
    if (!reader->in_structure) {
        return GDS_ERROR_STRNAME;
    }
    read_name(&reader->record, &reader->cell.name);
    return 0;
}

static i32 read_sname(GdsReader *reader) {
    if (!in_reference(reader)) {
        return GDS_ERROR_SNAME;
    }
    const GdsRecord *record = &reader->record;
    reader->reference.name = gds_names_add(&reader->database->names,
                                           reinterpret_cast<const char *>(record->data), name_length(record));
    return 0;
}

static i32 read_layer(GdsReader *reader) {
    if (reader->element == ELEMENT_NONE || in_reference(reader)) {
        return GDS_ERROR_LAYER;
    }
    if (reader->element == ELEMENT_BOUNDARY || reader->element == ELEMENT_PATH) {
        reader->polygon.layer = gds_u16(reader->record.data);
        reader->layer_seen = true;
    }
    return 0;
}

// Looked at only where it matters: one that stands anywhere else is passed over like an unknown record.
static void read_datatype(GdsReader *reader) {
    if (reader->element == ELEMENT_BOUNDARY || reader->element == ELEMENT_PATH) {
        reader->polygon.datatype = gds_u16(reader->record.data);
    }
}

static i32 read_width(GdsReader *reader) {
    if (reader->element != ELEMENT_PATH && reader->element != ELEMENT_TEXT) {
        return GDS_ERROR_WIDTH;
    }
    reader->width = static_cast<u32>(gds_i32(reader->record.data));
    return 0;
}

static Point point_at(const GdsRecord *record, i32 index, i32 count) {
    if (index >= count) {
        return {0, 0};
    }
    const u8 *at = record->data + i64{8} * index;
    return {gds_i32(at), gds_i32(at + 4)};
}

static void read_points(GdsReader *reader, i32 count) {
    Point *points = nullptr;
    if (reader->element == ELEMENT_PATH) {
        if (reader->line == nullptr) {
            reader->line = memory_scratch<Point>(POINTS_OF_A_RECORD);
        }
        points = reader->line.get();
    } else {
        points = point_room(reader, count);
    }
    const u8 *at = reader->record.data;
    Box box = BOX_EMPTY;
    for (i32 i = 0; i < count; ++i, at += 8) {
        points[i] = {gds_i32(at), gds_i32(at + 4)};
        box_grow_point(&box, points[i]);
    }
    reader->polygon.bbox = box;
    reader->polygon.points = points;
    reader->polygon.point_count = count;
}

static i32 read_xy(GdsReader *reader) {
    const i32 count = reader->record.size / 8;
    GdsARef *reference = &reader->reference;
    switch (reader->element) {
        case ELEMENT_NONE: return GDS_ERROR_XY;
        case ELEMENT_BOUNDARY:
        case ELEMENT_PATH: read_points(reader, count); return 0;
        case ELEMENT_SREF:
        case ELEMENT_AREF:
            if (count > (reader->element == ELEMENT_SREF ? 1 : 3)) {
                return reader->element == ELEMENT_SREF ? GDS_ERROR_SREF_POINTS : GDS_ERROR_AREF_POINTS;
            }
            reference->p1 = point_at(&reader->record, 0, count);
            reference->p2 = point_at(&reader->record, 1, count);
            reference->p3 = point_at(&reader->record, 2, count);
            return 0;
        default: return 0;
    }
}

static i32 read_colrow(GdsReader *reader) {
    if (reader->element != ELEMENT_AREF) {
        return GDS_ERROR_COLROW;
    }
    reader->reference.cols = gds_u16(reader->record.data);
    reader->reference.rows = gds_u16(reader->record.data + 2);
    return 0;
}

static i32 read_strans(GdsReader *reader) {
    if (!in_reference_or_text(reader)) {
        return GDS_ERROR_STRANS;
    }
    reader->reference.flags = gds_u16(reader->record.data);
    return 0;
}

static i32 read_mag(GdsReader *reader) {
    if (!in_reference_or_text(reader)) {
        return GDS_ERROR_MAG;
    }
    reader->reference.mag = static_cast<f32>(gds_real8_to_double(reader->record.data));
    return 0;
}

static i32 read_angle(GdsReader *reader) {
    if (!in_reference_or_text(reader)) {
        return GDS_ERROR_ANGLE;
    }
    const f64 degrees = gds_real8_to_double(reader->record.data);
    reader->reference.angle = static_cast<f32>(degrees * PI / 180.0);
    return 0;
}

static i32 read_pathtype(GdsReader *reader) {
    if (reader->element != ELEMENT_PATH) {
        return GDS_ERROR_PATHTYPE;
    }
    reader->path_type = gds_u16(reader->record.data);
    // Only the first path of each type is converted, later ones end flush; kept so on purpose, since
    // the outlines of existing layouts rest on it.
    if (reader->path_type == 1 && !reader->round_warned) {
        reader->round_warned = true;
        reader->path_type = 2;
        console_append(
            L"WARNING: path type 1 (round ended) is not supported and will be converted to type 2\r\n\r\n");
    } else if (reader->path_type == 4 && !reader->variable_warned) {
        reader->variable_warned = true;
        reader->path_type = 2;
        console_append(
            L"WARNING: path type 4 (variable length) is not supported and will be converted to type "
            L"2\r\n\r\n");
    }
    return 0;
}

// The open polygon moves into the cell.
static void keep_polygon(GdsReader *reader) {
    const GdsPolygon *polygon = &reader->polygon;
    reader->room.used += polygon->point_count;
    GdsCell *cell = &reader->cell;
    array_append(&cell->polygons, &cell->polygon_count, &cell->polygon_capacity, *polygon);
}

static i32 close_path(GdsReader *reader) {
    GdsPolygon *polygon = &reader->polygon;
    const i32 count = polygon->point_count;
    Point *outline = point_room(reader, 2 * i64{count} + 1);
    if (path_to_polygon(outline, polygon->points, count, reader->width, reader->path_type) == 0) {
        return GDS_ERROR_PATH;
    }
    polygon->points = outline;
    polygon->point_count = 2 * count + 1;
    polygon->bbox = BOX_EMPTY;
    for (i32 i = 0; i < 2 * count; ++i) {  // the last point is the first one
        box_grow_point(&polygon->bbox, outline[i]);
    }
    keep_polygon(reader);
    return 0;
}

// The open reference moves into the cell.
static void keep_reference(GdsReader *reader) {
    GdsCell *cell = &reader->cell;
    const GdsARef *reference = &reader->reference;
    if (reader->element == ELEMENT_AREF) {
        array_append(&cell->arefs, &cell->aref_count, &cell->aref_capacity, *reference);
    } else {
        const GdsSRef sref = {reference->p1,    reference->name,  nullptr,
                              reference->flags, reference->angle, reference->mag};
        array_append(&cell->srefs, &cell->sref_count, &cell->sref_capacity, sref);
    }
}

static i32 read_endel(GdsReader *reader) {
    if (!reader->in_structure || reader->element == ELEMENT_NONE) {
        return GDS_ERROR_ENDEL;
    }
    const bool outline = reader->element == ELEMENT_BOUNDARY || reader->element == ELEMENT_PATH;
    if (outline && !reader->layer_seen) {
        return GDS_ERROR_NO_LAYER;
    }
    if (reader->element == ELEMENT_PATH) {
        const i32 error = close_path(reader);
        if (error != 0) {
            return error;
        }
    } else if (reader->element == ELEMENT_BOUNDARY) {
        keep_polygon(reader);
    } else if (in_reference(reader)) {
        keep_reference(reader);
    }
    element_drop(reader);
    return 0;
}

static i32 read_units(GdsReader *reader) {
    GdsDatabase *database = reader->database;
    database->unit = gds_real8_to_double(reader->record.data + 8) * 1000000.0;
    std::memcpy(database->units_raw, reader->record.data, sizeof(database->units_raw));
    return 0;
}

// Bytes of data without which a record is passed over like an unknown one.
static i32 record_needs(u16 code) {
    switch (code) {
        case GDS_RECORD_STRNAME:
        case GDS_RECORD_SNAME: return 1;
        case GDS_RECORD_HEADER:
        case GDS_RECORD_LAYER:
        case GDS_RECORD_DATATYPE:
        case GDS_RECORD_STRANS:
        case GDS_RECORD_PATHTYPE: return 2;
        case GDS_RECORD_WIDTH:
        case GDS_RECORD_COLROW: return 4;
        case GDS_RECORD_XY:
        case GDS_RECORD_MAG:
        case GDS_RECORD_ANGLE: return 8;
        case GDS_RECORD_UNITS: return 16;
        default: return 0;
    }
}

// Remembers what tells later why a file has no unit.
static void note_head(GdsReader *reader, i64 offset) {
    const GdsRecord *record = &reader->record;
    if (record->code == GDS_RECORD_HEADER) {
        reader->header_seen = true;
    } else if (record->code == GDS_RECORD_UNITS) {
        reader->units_seen = true;
        reader->units_offset = offset;
        reader->units_used = record->size >= record_needs(record->code);
    }
}

i32 gds_reader_record(GdsReader *reader, i64 offset) {
    assert(reader != nullptr && reader->database != nullptr && reader->record.size >= 0);
    const GdsRecord *record = &reader->record;
    note_head(reader, offset);
    if (record->size < record_needs(record->code)) {
        return 0;
    }
    switch (record->code) {
        case GDS_RECORD_HEADER: reader->database->version = gds_u16(record->data); return 0;
        case GDS_RECORD_UNITS: return read_units(reader);
        case GDS_RECORD_ENDLIB: reader->ended = true; return 0;
        case GDS_RECORD_BGNSTR: return read_bgnstr(reader);
        case GDS_RECORD_STRNAME: return read_strname(reader);
        case GDS_RECORD_ENDSTR: return read_endstr(reader);
        case GDS_RECORD_BOUNDARY: return open_element(reader, ELEMENT_BOUNDARY, offset, GDS_ERROR_BOUNDARY);
        case GDS_RECORD_PATH: return open_element(reader, ELEMENT_PATH, offset, GDS_ERROR_PATH_PLACE);
        case GDS_RECORD_SREF: return open_element(reader, ELEMENT_SREF, offset, GDS_ERROR_SREF);
        case GDS_RECORD_AREF: return open_element(reader, ELEMENT_AREF, offset, GDS_ERROR_AREF);
        case GDS_RECORD_TEXT: return open_element(reader, ELEMENT_TEXT, offset, GDS_ERROR_TEXT);
        case GDS_RECORD_NODE: return open_element(reader, ELEMENT_NODE, offset, GDS_ERROR_NODE);
        case GDS_RECORD_BOX: return open_element(reader, ELEMENT_BOX, offset, GDS_ERROR_BOX);
        case GDS_RECORD_LAYER: return read_layer(reader);
        case GDS_RECORD_DATATYPE: read_datatype(reader); return 0;
        case GDS_RECORD_WIDTH: return read_width(reader);
        case GDS_RECORD_XY: return read_xy(reader);
        case GDS_RECORD_ENDEL: return read_endel(reader);
        case GDS_RECORD_SNAME: return read_sname(reader);
        case GDS_RECORD_COLROW: return read_colrow(reader);
        case GDS_RECORD_STRANS: return read_strans(reader);
        case GDS_RECORD_MAG: return read_mag(reader);
        case GDS_RECORD_ANGLE: return read_angle(reader);
        case GDS_RECORD_PATHTYPE: return read_pathtype(reader);
        default: return 0;
    }
}

void gds_reader_end(GdsReader *reader) {
    assert(reader != nullptr);
    element_drop(reader);
    gds_cell_clear(&reader->cell);
    reader->in_structure = false;
}
