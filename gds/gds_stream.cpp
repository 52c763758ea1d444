#include "gds/gds_stream.h"

#include <cassert>
#include <cerrno>
#include <cstring>

#include "platform/memory.h"

static constexpr size_t BUFFER_SIZE = size_t{1} << 18;  // several of the longest records (65535 bytes)

void gds_stream_start(GdsStream *stream, std::FILE *file) {
    assert(stream != nullptr && file != nullptr);
    *stream = GdsStream{};
    stream->file = file;
    stream->buffer = memory_new_array<u8>(static_cast<i64>(BUFFER_SIZE));
    std::setvbuf(file, nullptr, _IONBF, 0);  // the stream has its own buffer
}

void gds_stream_end(GdsStream *stream) {
    memory_free(stream->buffer);
    stream->buffer = nullptr;
}

// Makes `size` bytes available at stream->begin; false when the file has no more.
static bool stream_fill(GdsStream *stream, size_t size) {
    std::memmove(stream->buffer, stream->buffer + stream->begin, stream->end - stream->begin);
    stream->end -= stream->begin;
    stream->begin = 0;
    while (stream->end < size && !stream->file_ended) {
        errno = 0;
        const size_t room = BUFFER_SIZE - stream->end;
        const size_t got = std::fread(stream->buffer + stream->end, 1, room, stream->file);
        stream->end += got;
        if (got < room) {
            stream->file_ended = true;
            if (std::ferror(stream->file) != 0) {
                stream->read_error = errno != 0 ? errno : EIO;
            }
        }
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
