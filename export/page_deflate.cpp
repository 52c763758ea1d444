#include "export/page_deflate.h"

#include <zlib.h>

#include <cassert>

static constexpr i64 FIRST_ROOM = i64{1} << 12;     // bytes; doubles as the block grows
static constexpr i64 LARGEST_PIECE = i64{1} << 30;  // zlib counts in 32 bits

struct PageDeflate {
    z_stream stream;
    u8 *bytes;  // the block so far; owned
    i64 size, room;
};

static voidpf zlib_allocate(voidpf, uInt count, uInt size) {
    return memory_try_allocate(count, size);
}

static void zlib_free(voidpf, voidpf block) {
    memory_free(block);
}

static uInt piece(i64 left) {
    return static_cast<uInt>(left < LARGEST_PIECE ? left : LARGEST_PIECE);
}

PageDeflate *page_deflate_try_create() {
    auto *deflate = static_cast<PageDeflate *>(memory_try_allocate(1, sizeof(PageDeflate)));
    if (deflate == nullptr) {
        return nullptr;
    }
    *deflate = {};
    deflate->stream.zalloc = zlib_allocate;
    deflate->stream.zfree = zlib_free;
    if (deflateInit(&deflate->stream, Z_DEFAULT_COMPRESSION) != Z_OK) {
        memory_free(deflate);
        return nullptr;
    }
    return deflate;
}

void page_deflate_free(PageDeflate *deflate) {
    if (deflate == nullptr) {
        return;
    }
    deflateEnd(&deflate->stream);
    memory_free(deflate->bytes);
    memory_free(deflate);
}

static bool grow(PageDeflate *block) {
    const i64 room = block->room > 0 ? block->room * 2 : FIRST_ROOM;
    void *moved = memory_try_reallocate(block->bytes, room, 1);
    if (moved == nullptr) {
        return false;
    }
    block->bytes = static_cast<u8 *>(moved);
    block->room = room;
    return true;
}

// Lets the stream take what it was given; with `last` it writes all that it still holds. False when memory is
// lacking.
static bool run(PageDeflate *block, bool last) {
    z_stream *stream = &block->stream;
    int result = Z_OK;
    while (stream->avail_in > 0 || (last && result != Z_STREAM_END)) {
        if (block->size == block->room && !grow(block)) {
            return false;
        }
        stream->next_out = block->bytes + block->size;
        stream->avail_out = piece(block->room - block->size);
        const uInt before = stream->avail_out;
        result = deflate(stream, last ? Z_FINISH : Z_NO_FLUSH);
        block->size += before - stream->avail_out;
        if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) {
            return false;
        }
    }
    return true;
}

bool page_deflate_put(PageDeflate *deflate, const u8 *bytes, i64 size) {
    assert(deflate != nullptr && (bytes != nullptr || size == 0) && size >= 0);
    for (i64 given = 0; given < size; given += LARGEST_PIECE) {
        deflate->stream.next_in =
            const_cast<Bytef *>(bytes + given);  // read only; zlib's record has no const
        deflate->stream.avail_in = piece(size - given);
        if (!run(deflate, false)) {
            return false;
        }
    }
    return true;
}

Owned<u8[]> page_deflate_finish(PageDeflate *deflate, i64 *size) {
    assert(deflate != nullptr && size != nullptr);
    if (!run(deflate, true)) {
        return nullptr;
    }
    Owned<u8[]> bytes(deflate->bytes);
    deflate->bytes = nullptr;
    *size = deflate->size;
    deflate->size = 0;
    deflate->room = 0;
    memory_try_resize(&bytes, *size);  // else it stays a little too large
    return bytes;
}
