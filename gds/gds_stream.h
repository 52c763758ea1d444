// gds_stream.h: a GDSII file as a sequence of records, read in large pieces through one buffer. A file that
// is compressed with gzip is unpacked on the way.
#pragma once
#include "gds/gds_gzip.h"

inline constexpr size_t GDS_HEADER_SIZE = 4;  // of a record: its length and its code

struct GdsRecord {
    u16 code;        // record type x 256 + data type
    i32 length;      // as in the file, header of 4 bytes included
    i32 size;        // bytes of data
    const u8 *data;  // in the stream's buffer, valid until the next record is read
};

struct GdsStream {
    GdsFile file;
    GdsGzip *gzip;  // owned; null for a file that is not compressed
    u8 *buffer;     // owned
    size_t begin, end;
    i64 offset;         // of the current record in the file, or in what it holds unpacked, bytes
    i64 next_offset;    // of the one after it
    i64 record_number;  // of the current record, from 1
    bool cut;           // the file ends inside a record
};

enum GdsStreamResult {
    GDS_STREAM_RECORD,
    GDS_STREAM_END,         // no further whole record
    GDS_STREAM_BAD_LENGTH,  // a record length below 4; record->length tells it
};

// Starts before the first record of a file that is opened for binary reading, of which it reads the first
// piece. Ended with gds_stream_end.
void gds_stream_start(GdsStream *stream, std::FILE *file);

// Frees the buffer; the file stays open.
void gds_stream_end(GdsStream *stream);

// Big-endian fields of a record's data: 2 bytes, unsigned, and 4 bytes, signed.
inline u16 gds_u16(const u8 *bytes) {
    return static_cast<u16>((bytes[0] << 8) | bytes[1]);
}

// The signed one.
inline i32 gds_i32(const u8 *bytes) {
    return static_cast<i32>((static_cast<u32>(bytes[0]) << 24) | (static_cast<u32>(bytes[1]) << 16) |
                            (static_cast<u32>(bytes[2]) << 8) | static_cast<u32>(bytes[3]));
}

// gds_stream_next for a record that is not in the buffer yet, or is none.
GdsStreamResult gds_stream_next_beyond(GdsStream *stream, GdsRecord *record);

// Reads the next record. What is told of the place (offset, number) is that of this record also when it is
// none.
inline GdsStreamResult gds_stream_next(GdsStream *stream, GdsRecord *record) {
    const u8 *header = stream->buffer + stream->begin;
    const size_t available = stream->end - stream->begin;
    if (available < GDS_HEADER_SIZE) {
        return gds_stream_next_beyond(stream, record);
    }
    const i32 length = gds_u16(header);
    const auto size = static_cast<size_t>(length);
    if (size < GDS_HEADER_SIZE || size > available) {
        return gds_stream_next_beyond(stream, record);
    }
    stream->offset = stream->next_offset;
    stream->next_offset += length;
    ++stream->record_number;
    stream->begin += size;
    record->length = length;
    record->code = gds_u16(header + 2);
    record->size = length - static_cast<i32>(GDS_HEADER_SIZE);
    record->data = header + GDS_HEADER_SIZE;
    return GDS_STREAM_RECORD;
}
