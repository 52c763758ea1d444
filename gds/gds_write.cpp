#include "gds/gds_write.h"

#include <cassert>

#include "gds/gds_record.h"
#include "log/log.h"
#include "platform/owned.h"
#include "platform/whole_file.h"

static constexpr i32 LARGEST_POINT_COUNT =
    8191;  // 8 bytes each and a header of 4 bytes fit 16 bits of length

static u8 *put_u16(u8 *at, u32 value) {
    at[0] = static_cast<u8>(value >> 8);
    at[1] = static_cast<u8>(value);
    return at + 2;
}

static u8 *put_i32(u8 *at, i32 value) {
    u8 *next = put_u16(at, static_cast<u32>(value) >> 16);
    return put_u16(next, static_cast<u32>(value));
}

static void write_record(std::FILE *file, GdsRecordCode code, const u8 *data, u32 size) {
    u8 header[4];
    put_u16(put_u16(header, size + 4), code);
    std::fwrite(header, 1, sizeof(header), file);
    if (size > 0) {
        std::fwrite(data, 1, size, file);
    }
}

static void write_u16_record(std::FILE *file, GdsRecordCode code, u16 value) {
    u8 data[2];
    put_u16(data, value);
    write_record(file, code, data, sizeof(data));
}

void gds_write_boundary(std::FILE *file, const FlatPoint *points, i32 point_count, f32 unit, u16 layer) {
    assert(file != nullptr && point_count >= 0 && (points != nullptr || point_count == 0));
    write_record(file, GDS_RECORD_BOUNDARY, nullptr, 0);
    write_u16_record(file, GDS_RECORD_LAYER, layer);
    write_u16_record(file, GDS_RECORD_DATATYPE, 0);
    const auto data = memory_scratch<u8>(i64{8} * point_count + 4);
    // Beyond 8191 points the length is cut to its 16 bits; kept so, since users compare
    // the files of runs byte for byte.
    u8 *at = put_u16(data.get(), static_cast<u32>(point_count) * 8 + 4);
    at = put_u16(at, GDS_RECORD_XY);
    for (i32 i = 0; i < point_count; ++i) {
        const f32 x = points[i].x / unit;
        const f32 y = points[i].y / unit;
        at = put_i32(at, truncate_i32(static_cast<f64>(x)));
        at = put_i32(at, truncate_i32(static_cast<f64>(y)));
    }
    std::fwrite(data.get(), 1, static_cast<size_t>(at - data.get()), file);
    write_record(file, GDS_RECORD_ENDEL, nullptr, 0);
}

static void write_library(std::FILE *file, const GdsDatabase *database, const PolygonList *list) {
    const u8 dates[24] = {};
    const u8 name[4] = {'T', 'O', 'P', 0};
    write_u16_record(file, GDS_RECORD_HEADER, 600);
    write_record(file, GDS_RECORD_BGNLIB, dates, sizeof(dates));
    write_record(file, GDS_RECORD_LIBNAME, nullptr, 0);
    write_record(file, GDS_RECORD_UNITS, database->units_raw, sizeof(database->units_raw));
    write_record(file, GDS_RECORD_BGNSTR, dates, sizeof(dates));
    write_record(file, GDS_RECORD_STRNAME, name, sizeof(name));
    const f32 unit = static_cast<f32>(database->unit);
    for (i32 i = 0; i < list->count && std::ferror(file) == 0; ++i) {
        const FlatPolygon *polygon = &list->items[i];
        gds_write_boundary(file, polygon->points, polygon->point_count, unit, polygon->layer);
    }
    write_record(file, GDS_RECORD_ENDSTR, nullptr, 0);
    write_record(file, GDS_RECORD_ENDLIB, nullptr, 0);
}

i32 gds_write_unreadable(const PolygonList *list, const wchar_t *file_name) {
    assert(list != nullptr && file_name != nullptr);
    i32 count = 0;
    i32 largest = 0;
    for (i32 i = 0; i < list->count; ++i) {
        if (list->items[i].point_count > LARGEST_POINT_COUNT) {
            ++count;
            largest = list->items[i].point_count > list->items[largest].point_count ? i : largest;
        }
    }
    if (count > 0) {
        const FlatPolygon *polygon = &list->items[largest];
        diagnostic_write(
            L"%ls: %d of %d polygons have more points than a record of the format holds (%d): readers "
            L"will refuse the file. The largest is polygon %d, on layer %d, with %d points",
            file_name, count, list->count, LARGEST_POINT_COUNT, largest + 1, polygon->layer,
            polygon->point_count);
    }
    return count;
}

i32 gds_write_polygons(const GdsDatabase *database, const wchar_t *path, const PolygonList *list) {
    assert(database != nullptr && list != nullptr);
    if (path == nullptr) {
        return 1;
    }
    WholeFile whole;
    if (!whole_file_open(&whole, path, "wb")) {
        diagnostic_write(L"%ls: cannot be created: %ls", path, whole.reason);
        return 1;
    }
    write_library(whole.file, database, list);
    if (!whole_file_commit(&whole)) {
        diagnostic_write(L"%ls: cannot be written: %ls", path, whole.reason);
        return 1;
    }
    gds_write_unreadable(list, path);
    return 0;
}
