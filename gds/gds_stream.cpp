#include "gds/gds_stream.h"

#include <cassert>
#include <cstring>

#include "platform/memory.h"

static constexpr size_t BUFFER_SIZE = size_t{1} << 18;  // several of the longest records (65535 bytes)

static bool stream_ended(const GdsStream *stream) {
    return stream->gzip != nullptr ? gds_gzip_ended(stream->gzip) : stream->file.ended;
}

void gds_stream_start(GdsStream *stream, std::FILE *file) {
    assert(stream != nullptr && file != nullptr);
    *stream = GdsStream{};
    stream->file.file = file;
    stream->buffer = memory_new_array<u8>(static_cast<i64>(BUFFER_SIZE));
    stream->end = gds_file_read(&stream->file, stream->buffer, BUFFER_SIZE);
    if (gds_gzip_is(stream->buffer, stream->end)) {
        stream->gzip = gds_gzip_create(stream->buffer, stream->end);
        stream->end = 0;
    }
}

void gds_stream_end(GdsStream *stream) {
    gds_gzip_free(stream->gzip);
    stream->gzip = nullptr;
    memory_free(stream->buffer);
    stream->buffer = nullptr;
}

// Makes `size` bytes available at stream->begin; false when the file has no more.
static bool stream_fill(GdsStream *stream, size_t size) {
    std::memmove(stream->buffer, stream->buffer + stream->begin, stream->end - stream->begin);
    stream->end -= stream->begin;
    stream->begin = 0;
    while (stream->end < size && !stream_ended(stream)) {
        u8 *to = stream->buffer + stream->end;
        const size_t room = BUFFER_SIZE - stream->end;
        stream->end += stream->gzip != nullptr ? gds_gzip_read(stream->gzip, &stream->file, to, room)
                                               : gds_file_read(&stream->file, to, room);
    }
    return stream->end >= size;
}

// The place of what follows the last record and is none.
static void stream_place(GdsStream *stream) {
    stream->offset = stream->next_offset;
    ++stream->record_number;
}

GdsStreamResult gds_stream_next_beyond(GdsStream *stream, GdsRecord *record) {
    assert(stream != nullptr && stream->buffer != nullptr && record != nullptr);
    bool whole = stream->end - stream->begin >= GDS_HEADER_SIZE || stream_fill(stream, GDS_HEADER_SIZE);
    if (whole) {
        const u8 *header = stream->buffer + stream->begin;
        record->length = gds_u16(header);
        record->code = gds_u16(header + 2);
        const auto length = static_cast<size_t>(record->length);
        if (length < GDS_HEADER_SIZE) {
            stream_place(stream);
            return GDS_STREAM_BAD_LENGTH;
        }
        whole = stream_fill(stream, length);
    }
    if (whole) {
        return gds_stream_next(stream, record);
    }
    stream_place(stream);
    stream->cut = stream->end > stream->begin;
    return GDS_STREAM_END;
}
