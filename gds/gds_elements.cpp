#include "gds/gds_elements.h"

#include <algorithm>
#include <cassert>
#include <cstring>

#include "gds/gds_real8.h"
#include "gds/gds_record.h"
#include "platform/owned.h"

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

// Texts have an even number of bytes, with a zero behind those of an odd one.
static void write_text_record(std::FILE *file, GdsRecordCode code, const char *text) {
    const size_t length = std::strlen(text);
    assert(length <= GDS_MOST_TEXT);
    u8 data[GDS_MOST_TEXT + 1] = {};
    std::copy(text, text + length, data);  // padded with a zero, not ended by one
    write_record(file, code, data, static_cast<u32>(length + length % 2));
}

void gds_units_raw(f64 user_units, f64 metres, u8 raw[16]) {
    gds_real8_from_double(user_units, raw);
    gds_real8_from_double(metres, raw + 8);
}

void gds_elements_begin(std::FILE *file, const char *library, const u8 units_raw[16], const char *structure) {
    assert(file != nullptr && library != nullptr && units_raw != nullptr && structure != nullptr);
    const u8 dates[24] = {};
    write_u16_record(file, GDS_RECORD_HEADER, 600);
    write_record(file, GDS_RECORD_BGNLIB, dates, sizeof(dates));
    write_text_record(file, GDS_RECORD_LIBNAME, library);
    write_record(file, GDS_RECORD_UNITS, units_raw, 16);
    write_record(file, GDS_RECORD_BGNSTR, dates, sizeof(dates));
    write_text_record(file, GDS_RECORD_STRNAME, structure);
}

void gds_elements_end(std::FILE *file) {
    write_record(file, GDS_RECORD_ENDSTR, nullptr, 0);
    write_record(file, GDS_RECORD_ENDLIB, nullptr, 0);
}

void gds_write_polygon(std::FILE *file, const Point *places, i32 point_count, u16 layer) {
    assert(file != nullptr && point_count >= 0 && (places != nullptr || point_count == 0));
    write_record(file, GDS_RECORD_BOUNDARY, nullptr, 0);
    write_u16_record(file, GDS_RECORD_LAYER, layer);
    write_u16_record(file, GDS_RECORD_DATATYPE, 0);
    const auto data = memory_scratch<u8>(i64{8} * point_count + 4);
    u8 *at = put_u16(data.get(), static_cast<u32>(point_count) * 8 + 4);
    at = put_u16(at, GDS_RECORD_XY);
    for (i32 i = 0; i < point_count; ++i) {
        at = put_i32(at, places[i].x);
        at = put_i32(at, places[i].y);
    }
    std::fwrite(data.get(), 1, static_cast<size_t>(at - data.get()), file);
    write_record(file, GDS_RECORD_ENDEL, nullptr, 0);
}

void gds_write_text(std::FILE *file, Point place, u16 layer, const char *text) {
    assert(file != nullptr && text != nullptr);
    write_record(file, GDS_RECORD_TEXT, nullptr, 0);
    write_u16_record(file, GDS_RECORD_LAYER, layer);
    write_u16_record(file, GDS_RECORD_TEXTTYPE, 0);
    u8 data[8];
    put_i32(put_i32(data, place.x), place.y);
    write_record(file, GDS_RECORD_XY, data, sizeof(data));
    write_text_record(file, GDS_RECORD_STRING, text);
    write_record(file, GDS_RECORD_ENDEL, nullptr, 0);
}
