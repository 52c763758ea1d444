#include "gds/gds_reader.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "gds/gds_error.h"
#include "gds/gds_path.h"
#include "gds/gds_points.h"
#include "gds/gds_real8.h"
#include "gds/gds_record.h"
#include "log/log.h"
#include "platform/owned.h"
#include "platform/trigonometry.h"

static constexpr i32 CELLS_FIRST = 64;
static constexpr i32 ITEMS_COPIED = 4096;        // of a list, at most
static constexpr i32 PIECE_AHEAD = 1 << 22;      // bytes
static constexpr i64 BYTES_OF_A_RECORD = 65531;  // at most, without its header
static constexpr i64 POINTS_OF_A_RECORD = BYTES_OF_A_RECORD / 8;

// Room for so many points behind those that are taken; taking them is the caller's step.
static Point *point_room(GdsReader *reader, i64 count) {
    const i64 size = count * static_cast<i64>(sizeof(Point));
    return static_cast<Point *>(gds_store_room(&reader->database->store, size));
}

static i32 read_bgnstr(GdsReader *reader) {
    if (reader->in_structure) {
        return GDS_ERROR_BGNSTR;
    }
    reader->in_structure = true;
    return 0;
}

// Takes the points of the open polygon, unless that has been done or they lie elsewhere.
static void take_points(GdsReader *reader) {
    const GdsPolygon *polygon = &reader->polygon;
    if (polygon->points == point_room(reader, 0)) {
        gds_add_points(reader->database, polygon->point_count);
    }
}

// array_append for a list that may take much of the memory, the next piece of which is made ready ahead.
template <typename T>
static void list_append(MemoryAhead *ahead, T **items, i32 *count, i32 *capacity, const T &item) {
    constexpr i32 PIECE = PIECE_AHEAD / static_cast<i32>(sizeof(T));
    if (ahead != nullptr && *count == *capacity) {
        memory_ahead_settle(ahead);
    }
    array_append(items, count, capacity, item);
    if (*count % PIECE == 0 && *capacity - *count >= 2 * PIECE) {
        memory_ahead_ask(ahead, *items + *count + PIECE, PIECE_AHEAD);
    }
}

// The items of a list as the closed structure keeps them: in the store of the database, where the list's own
// room is free for the next structure, or, of many items, in that room, cut to its size.
template <typename T>
static T *close_list(GdsStore *store, T **items, i32 count, i32 *capacity, i32 *closed_capacity) {
    *closed_capacity = 0;
    if (count > ITEMS_COPIED) {
        memory_ahead_settle(store->ahead);
        T *cut = static_cast<T *>(memory_reallocate(*items, count, sizeof(T)));
        *closed_capacity = count;
        *items = nullptr;
        *capacity = 0;
        return cut;
    }
    if (count == 0) {
        return nullptr;
    }
    T *copy = static_cast<T *>(gds_store_take(store, count * static_cast<i64>(sizeof(T))));
    std::copy(*items, *items + count, copy);
    return copy;
}

static i32 read_endstr(GdsReader *reader) {
    if (!reader->in_structure) {
        return GDS_ERROR_ENDSTR;
    }
    if (reader->element == ELEMENT_BOUNDARY) {
        take_points(reader);  // the element stays open, and what the structure keeps must not overwrite them
    }
    GdsDatabase *database = reader->database;
    GdsStore *store = &database->store;
    GdsCell *open = &reader->cell;
    GdsCell cell = *open;
    cell.polygons = close_list(store, &open->polygons, cell.polygon_count, &open->polygon_capacity,
                               &cell.polygon_capacity);
    cell.srefs = close_list(store, &open->srefs, cell.sref_count, &open->sref_capacity, &cell.sref_capacity);
    cell.arefs = close_list(store, &open->arefs, cell.aref_count, &open->aref_capacity, &cell.aref_capacity);
    if (open->name != nullptr) {
        cell.name = gds_add_name(database, open->name->text, static_cast<i64>(open->name->count));
    }
    array_append(&database->cells, &database->cell_count, &database->cell_capacity, cell, CELLS_FIRST);
    open->name = nullptr;
    open->polygon_count = 0;
    open->sref_count = 0;
    open->aref_count = 0;
    reader->in_structure = false;
    return 0;
}

// Opens an element; ERROR is what to return when it may not stand here.
template <GdsElement ELEMENT, i32 ERROR>
static i32 open_element(GdsReader *reader) {
    if (!reader->in_structure || reader->element != ELEMENT_NONE) {
        return ERROR;
    }
    reader->element = ELEMENT;
    reader->element_offset = reader->offset;
    reader->layer_seen = false;
    reader->polygon = GdsPolygon{};
    reader->polygon.bbox = BOX_EMPTY;
    reader->width = 0;
    reader->path_type = 0;
    if (ELEMENT != ELEMENT_BOUNDARY && ELEMENT != ELEMENT_PATH) {
        reader->reference = GdsARef{};
        reader->reference.mag = 1.0F;
    }
    return 0;
}

// The length of the text of a name record, which ends at the first zero byte.
static i64 name_length(const GdsRecord *record) {
    const void *zero = std::memchr(record->data, 0, static_cast<size_t>(record->size));
    return zero != nullptr ? static_cast<const u8 *>(zero) - record->data : record->size;
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
    // It replaces an earlier one, and lies in the reader until the structure is closed.
    if (reader->name_text == nullptr) {
        reader->name_text = memory_scratch<char>(BYTES_OF_A_RECORD + 1);
    }
    const i64 length = name_length(&reader->record);
    std::memcpy(reader->name_text.get(), reader->record.data, static_cast<size_t>(length));
    reader->name_text[length] = 0;
    reader->name = {reader->name_text.get(), static_cast<u64>(length)};
    reader->cell.name = &reader->name;
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
static i32 read_datatype(GdsReader *reader) {
    if (reader->element == ELEMENT_BOUNDARY || reader->element == ELEMENT_PATH) {
        reader->polygon.datatype = gds_u16(reader->record.data);
    }
    return 0;
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
    reader->polygon.bbox = gds_points_take(reader->record.data, count, points);
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
    take_points(reader);
    GdsCell *cell = &reader->cell;
    list_append(reader->database->store.ahead, &cell->polygons, &cell->polygon_count, &cell->polygon_capacity,
                reader->polygon);
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
    polygon->bbox = gds_points_box(outline, 2 * count);  // the last point is the first one
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
    reader->element = ELEMENT_NONE;
    return 0;
}

// Remembers what tells later why a file has no unit.
static void note_head(GdsReader *reader, bool used) {
    if (reader->record.code == GDS_RECORD_HEADER) {
        reader->header_seen = true;
    } else if (reader->record.code == GDS_RECORD_UNITS) {
        reader->units_seen = true;
        reader->units_offset = reader->offset;
        reader->units_used = used;
    }
}

static i32 read_header(GdsReader *reader) {
    note_head(reader, true);
    reader->database->version = gds_u16(reader->record.data);
    return 0;
}

static i32 read_units(GdsReader *reader) {
    note_head(reader, true);
    GdsDatabase *database = reader->database;
    database->unit = gds_real8_to_double(reader->record.data + 8) * 1000000.0;
    std::memcpy(database->units_raw, reader->record.data, sizeof(database->units_raw));
    return 0;
}

static i32 read_endlib(GdsReader *reader) {
    reader->ended = true;
    return 0;
}

// What is done with a type of records.
struct RecordForm {
    u16 code;  // with the one data type that is known
    u16 size;  // bytes of data without which a record is passed over like an unknown one
    i32 (*read)(GdsReader *reader);
};

// clang-format off
static constexpr RecordForm KNOWN_RECORDS[] = {
    {GDS_RECORD_HEADER, 2, read_header},
    {GDS_RECORD_UNITS, 16, read_units},
    {GDS_RECORD_ENDLIB, 0, read_endlib},
    {GDS_RECORD_BGNSTR, 0, read_bgnstr},
    {GDS_RECORD_STRNAME, 1, read_strname},
    {GDS_RECORD_ENDSTR, 0, read_endstr},
    {GDS_RECORD_BOUNDARY, 0, open_element<ELEMENT_BOUNDARY, GDS_ERROR_BOUNDARY>},
    {GDS_RECORD_PATH, 0, open_element<ELEMENT_PATH, GDS_ERROR_PATH_PLACE>},
    {GDS_RECORD_SREF, 0, open_element<ELEMENT_SREF, GDS_ERROR_SREF>},
    {GDS_RECORD_AREF, 0, open_element<ELEMENT_AREF, GDS_ERROR_AREF>},
    {GDS_RECORD_TEXT, 0, open_element<ELEMENT_TEXT, GDS_ERROR_TEXT>},
    {GDS_RECORD_NODE, 0, open_element<ELEMENT_NODE, GDS_ERROR_NODE>},
    {GDS_RECORD_BOX, 0, open_element<ELEMENT_BOX, GDS_ERROR_BOX>},
    {GDS_RECORD_LAYER, 2, read_layer},
    {GDS_RECORD_DATATYPE, 2, read_datatype},
    {GDS_RECORD_WIDTH, 4, read_width},
    {GDS_RECORD_XY, 8, read_xy},
    {GDS_RECORD_ENDEL, 0, read_endel},
    {GDS_RECORD_SNAME, 1, read_sname},
    {GDS_RECORD_COLROW, 4, read_colrow},
    {GDS_RECORD_STRANS, 2, read_strans},
    {GDS_RECORD_MAG, 8, read_mag},
    {GDS_RECORD_ANGLE, 8, read_angle},
    {GDS_RECORD_PATHTYPE, 2, read_pathtype},
};
// clang-format on

static constexpr i32 RECORD_TYPES = (GDS_RECORD_BOX >> 8) + 1;

// The same by their type, the upper byte of the code; a code of 0 where none is known.
struct RecordTable {
    RecordForm of_type[RECORD_TYPES];
};

static constexpr RecordTable record_table() {
    RecordTable table = {};
    for (const RecordForm &form : KNOWN_RECORDS) {
        table.of_type[form.code >> 8] = form;
    }
    return table;
}

static constexpr RecordTable RECORDS = record_table();

i32 gds_reader_record(GdsReader *reader, i64 offset) {
    assert(reader != nullptr && reader->database != nullptr && reader->record.size >= 0);
    const GdsRecord *record = &reader->record;
    const i32 type = record->code >> 8;
    if (type >= RECORD_TYPES || RECORDS.of_type[type].code != record->code) {
        return 0;
    }
    reader->offset = offset;
    if (record->size < RECORDS.of_type[type].size) {
        note_head(reader, false);
        return 0;
    }
    return RECORDS.of_type[type].read(reader);
}

void gds_reader_end(GdsReader *reader) {
    assert(reader != nullptr);
    reader->element = ELEMENT_NONE;
    gds_store_rest(&reader->database->store);
    gds_cell_clear(&reader->cell);
    reader->in_structure = false;
}
