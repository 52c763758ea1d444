#include "image/image_pack.h"

#include <zlib.h>

#include <cassert>
#include <cstring>

static constexpr i64 FIRST_ROOM = i64{1} << 16;     // bytes; doubles as the packed picture grows
static constexpr i64 LARGEST_PIECE = i64{1} << 30;  // zlib counts in 32 bits

static i64 pixel_bytes(const PixelImage *image) {
    return image->width > 0 && image->height > 0 ? i64{image->width} * image->height * 4 : 0;
}

static voidpf zlib_allocate(voidpf, uInt count, uInt size) {
    return memory_try_allocate(count, size);
}

static void zlib_free(voidpf, voidpf block) {
    memory_free(block);
}

static z_stream stream_start() {
    z_stream stream = {};
    stream.zalloc = zlib_allocate;
    stream.zfree = zlib_free;
    return stream;
}

// How much of what is left goes through the stream at once.
static uInt piece(i64 left) {
    return static_cast<uInt>(left < LARGEST_PIECE ? left : LARGEST_PIECE);
}

// The packed bytes so far, and the room for them.
struct PackedBytes {
    Owned<u8[]> bytes;
    i64 size, room;
};

static bool grow(PackedBytes *packed) {
    const i64 room = packed->room > 0 ? packed->room * 2 : FIRST_ROOM;
    if (!memory_try_resize(&packed->bytes, room)) {
        return false;
    }
    packed->room = room;
    return true;
}

// Compresses `total` bytes with a started stream. False when memory is lacking.
static bool deflate_all(z_stream *stream, const u8 *bytes, i64 total, PackedBytes *packed) {
    i64 given = 0;
    int result = Z_OK;
    while (result != Z_STREAM_END) {
        if (packed->size == packed->room && !grow(packed)) {
            return false;
        }
        if (stream->avail_in == 0 && given < total) {
            stream->next_in = const_cast<Bytef *>(bytes + given);  // read only; zlib's record has no const
            stream->avail_in = piece(total - given);
            given += stream->avail_in;
        }
        stream->next_out = packed->bytes.get() + packed->size;
        stream->avail_out = piece(packed->room - packed->size);
        const uInt before = stream->avail_out;
        result = deflate(stream, given < total ? Z_NO_FLUSH : Z_FINISH);
        packed->size += before - stream->avail_out;
        if (result != Z_OK && result != Z_STREAM_END && result != Z_BUF_ERROR) {
            return false;
        }
    }
    return true;
}

bool image_pack(PixelImage *image) {
    assert(image != nullptr);
    const i64 total = pixel_bytes(image);
    if (image->pixels == nullptr || total == 0) {
        return image->packed != nullptr;
    }
    z_stream stream = stream_start();
    if (deflateInit(&stream, Z_BEST_SPEED) != Z_OK) {
        return false;
    }
    PackedBytes packed = {};
    const bool complete = deflate_all(&stream, image->pixels, total, &packed);
    deflateEnd(&stream);
    if (!complete) {
        return false;
    }
    memory_try_resize(&packed.bytes, packed.size);  // else it stays a little too large
    image->packed = packed.bytes.release();
    image->packed_size = packed.size;
    memory_free(image->pixels);
    image->pixels = nullptr;
    return true;
}

// Decompresses into `total` bytes. False when memory is lacking.
static bool inflate_all(const PixelImage *image, u8 *bytes, i64 total) {
    z_stream stream = stream_start();
    if (inflateInit(&stream) != Z_OK) {
        return false;
    }
    i64 taken = 0;
    i64 given = 0;
    int result = Z_OK;
    while (result == Z_OK && given < total) {
        if (stream.avail_in == 0 && taken < image->packed_size) {
            stream.next_in = image->packed + taken;
            stream.avail_in = piece(image->packed_size - taken);
            taken += stream.avail_in;
        }
        stream.next_out = bytes + given;
        stream.avail_out = piece(total - given);
        const uInt before = stream.avail_out;
        result = inflate(&stream, Z_NO_FLUSH);
        given += before - stream.avail_out;
    }
    inflateEnd(&stream);
    return given == total;
}

static bool copy_notes(const PixelImage *image, PixelImage *copy) {
    copy->transparent = image->transparent;
    copy->notes = image->notes != nullptr ? image_notes_try_copy(image->notes) : nullptr;
    return (copy->notes == nullptr) == (image->notes == nullptr);
}

PixelImage *image_unpack(const PixelImage *image) {
    assert(image != nullptr);
    Owned<PixelImage> copy(image_try_create(image->width, image->height, wstring_text(image->title)));
    const i64 total = pixel_bytes(image);
    if (copy == nullptr || !copy_notes(image, copy.get())) {
        return nullptr;
    }
    if (total == 0) {
        return copy.release();
    }
    assert(image->pixels != nullptr || image->packed != nullptr);
    if (image->pixels != nullptr) {
        std::memcpy(copy->pixels, image->pixels, static_cast<size_t>(total));
    } else if (!inflate_all(image, copy->pixels, total)) {
        return nullptr;
    }
    return copy.release();
}
