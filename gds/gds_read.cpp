#include "gds/gds_read.h"

#include <cassert>
#include <cstring>

#include "gds/gds_hierarchy.h"
#include "gds/gds_reader.h"
#include "gds/gds_report.h"
#include "gds/gds_resolve.h"
#include "gds/gds_stream.h"
#include "log/log.h"
#include "log/progress.h"
#include "platform/owned_file.h"
#include "platform/platform.h"

static GdsPlace reader_place(const GdsReader *reader, const GdsStream *stream, const wchar_t *path) {
    GdsPlace place = {};
    place.path = path;
    place.in_record = true;
    place.offset = stream->offset;
    place.record_number = stream->record_number;
    place.code = reader->record.code;
    place.length = reader->record.length;
    place.in_structure = reader->in_structure;
    place.structure = reader->cell.name;
    place.element_offset = reader->element != ELEMENT_NONE ? reader->element_offset : -1;
    return place;
}

static bool interrupted_at(i64 record_number) {
    return record_number % 256 == 0 && platform_interrupted();
}

// Reads records up to the first error, ENDLIB or the end of the stream, whose result is *result. Returns a
// GdsError.
static i32 handle_records(GdsReader *reader, GdsStream *stream, GdsStreamResult *result) {
    i32 error = 0;
    *result = GDS_STREAM_RECORD;
    while (error == 0 && !reader->ended && *result == GDS_STREAM_RECORD) {
        *result = gds_stream_next(stream, &reader->record);
        if (*result == GDS_STREAM_RECORD) {
            error = gds_reader_record(reader, stream->offset);
        } else if (*result == GDS_STREAM_BAD_LENGTH) {
            error = GDS_ERROR_RECORD_LENGTH;
        }
        if (interrupted_at(stream->record_number)) {
            return GDS_INTERRUPTED;
        }
    }
    return *result == GDS_STREAM_END && platform_interrupted() ? GDS_INTERRUPTED : error;
}

static i32 report_read_error(const GdsStream *stream, const wchar_t *path) {
    const WideText reason = platform_wide_from_system(std::strerror(stream->file.read_error));
    gds_report_system(path, L"the file cannot be read to its end", reason.get());
    return GDS_ERROR_OPEN;
}

// Says what is wrong with the records of a file that could be read.
static void report_records(const GdsReader *reader, const GdsStream *stream, const wchar_t *path, i32 error) {
    const GdsPlace place = reader_place(reader, stream, path);
    if (error != 0) {
        gds_report_error(&place, error);
        if (!reader->header_seen) {
            gds_report_no_header(path);
        }
    } else if (!reader->ended) {
        gds_report_early_end(&place, stream->cut);
    }
    if (stream->gzip != nullptr && (error != 0 || !reader->ended)) {
        gds_report_unpacked(path);
    }
}

// Reads all records and says what is wrong with them. Returns a GdsError.
static i32 read_records(GdsReader *reader, GdsStream *stream, const wchar_t *path) {
    GdsStreamResult result;
    const i32 error = handle_records(reader, stream, &result);
    if (error == GDS_INTERRUPTED) {
        return error;
    }
    if (stream->file.read_error != 0 && result == GDS_STREAM_END) {
        return report_read_error(stream, path);
    }
    if (stream->gzip == nullptr) {
        report_records(reader, stream, path, error);
        return error;
    }
    // Damage is told rather than what it makes of the records, which may not even show it.
    const GdsGzipCheck check = gds_gzip_check(stream->gzip, &stream->file);
    if (platform_interrupted()) {
        return GDS_INTERRUPTED;
    }
    if (stream->file.read_error != 0 && error == 0) {
        return report_read_error(stream, path);
    }
    if (check.state == GDS_GZIP_DAMAGED || check.state == GDS_GZIP_CUT) {
        gds_report_packed(path, &check);
        return GDS_ERROR_PACKED;
    }
    report_records(reader, stream, path, error);
    if (check.state == GDS_GZIP_UNCHECKED) {
        gds_report_unchecked(path);
    }
    return error;
}

static constexpr i64 LIST_FIRST_ROOM = 4096;  // bytes, some fifty cells
static constexpr i64 LIST_PIECE = 1 << 20;    // bytes that are shown at once, some ten thousand cells
static constexpr i64 LIST_LINE_REST = 80;     // bytes of a line at most besides the name, its end included

// Text that grows at its end.
struct ListText {
    Owned<char[]> bytes;  // ends with 0
    i64 length, room;
};

static void list_add(ListText *list, const GdsCell *cell) {
    const char *name = nstring_text(cell->name);
    const i64 most = static_cast<i64>(std::strlen(name)) + LIST_LINE_REST;
    if (list->room - list->length < most) {
        list->room = (list->length + most) * 2;
        char *bytes = list->bytes.release();
        list->bytes.reset(static_cast<char *>(memory_reallocate(bytes, list->room, 1)));
    }
    list->length += std::snprintf(list->bytes.get() + list->length, static_cast<size_t>(most),
                                  "--> \"%s\" with size dx = %d by dy = %d (database units)\r\n", name,
                                  wrap_subtract(cell->bbox.x_max, cell->bbox.x_min),
                                  wrap_subtract(cell->bbox.y_max, cell->bbox.y_min));
}

static void list_show(ListText *list) {
    if (list->length > 0) {
        console_append_narrow(list->bytes.get());
    }
    list->length = 0;
}

// Thousands of cells are one text: a window that is given as many texts spends its time on showing each.
// After an interrupt there may be cells without an extent, and none is listed.
static void list_cells(const GdsDatabase *database) {
    console_append(L"CELLS IN DATABASE:\r\n");
    ListText list = {memory_scratch_zeroed<char>(LIST_FIRST_ROOM), 0, LIST_FIRST_ROOM};
    for (i32 i = 0; i < database->cell_count && !platform_interrupted(); ++i) {
        list_add(&list, &database->cells[i]);
        if (list.length >= LIST_PIECE) {
            list_show(&list);
        }
    }
    list_show(&list);
    console_append(L"\r\n");
}

i32 gds_read_file(GdsDatabase *database, std::FILE *file, const wchar_t *path) {
    assert(database != nullptr && file != nullptr && path != nullptr);
    OwnedFile open(file);
    GdsReader reader = {};
    reader.database = database;
    database->store.in_a_hurry = true;
    GdsStream stream;
    progress_show(L"reading the layout");
    gds_stream_start(&stream, file);
    stream.file.size = progress_is_seen() ? platform_file_size(path) : 0;
    const i32 error = read_records(&reader, &stream, path);
    const bool packed = stream.gzip != nullptr;
    gds_stream_end(&stream);
    open.reset();
    gds_reader_end(&reader);
    if (error != 0) {
        return error;
    }
    progress_show(L"measuring the cells of the layout");
    GdsPlace place = {};
    place.path = path;
    if (gds_resolve_refs(database) != 0) {
        if (platform_interrupted()) {
            return GDS_INTERRUPTED;
        }
        gds_report_error(&place, GDS_ERROR_UNKNOWN_STRUCTURE);
        gds_report_unbound(path, database);
        return GDS_ERROR_UNKNOWN_STRUCTURE;
    }
    gds_mark_bare(database);
    gds_size_cells(database);
    progress_clear();
    list_cells(database);
    if (platform_interrupted()) {
        return GDS_INTERRUPTED;
    }
    if (!(database->unit > 0.0)) {
        gds_report_error(&place, GDS_ERROR_UNITS);
        const GdsUnitsPlace units = {reader.units_seen ? reader.units_offset : -1, reader.units_used};
        gds_report_units(path, &units, database->unit);
        if (packed && reader.units_seen) {
            gds_report_unpacked(path);
        }
        if (!reader.header_seen) {
            gds_report_no_header(path);
        }
        return GDS_ERROR_UNITS;
    }
    return GDS_OK;
}

i32 gds_read(GdsDatabase *database, const wchar_t *path) {
    if (path == nullptr) {
        return GDS_ERROR_OPEN;
    }
    std::FILE *file = platform_input_open(path, "rb");
    if (file == nullptr) {
        gds_report_system(path, L"the file cannot be opened", platform_error_text());
        return GDS_ERROR_OPEN;
    }
    return gds_read_file(database, file, path);
}
