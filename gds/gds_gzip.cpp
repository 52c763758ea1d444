#include "gds/gds_gzip.h"

#include <zlib.h>

#include <algorithm>
#include <cassert>
#include <cstring>

#include "platform/platform.h"

static constexpr i64 PIECE = i64{1} << 18;        // bytes
static constexpr int GZIP_WINDOW_BITS = 15 + 16;  // the largest window; 16 stands for the form of gzip

// Where the unpacking is.
enum GzipPhase {
    PHASE_MEMBER,   // inside a member, or before the first
    PHASE_BETWEEN,  // behind one
    PHASE_PADDING,  // in the zeros that may fill a file up
    PHASE_END,
};

struct GdsGzip {
    z_stream zlib;
    GzipPhase phase;
    GdsGzipState state;
    const char *reason;
    i64 taken;  // bytes of the file that were given to zlib
    u8 input[PIECE];
};

bool gds_gzip_is(const u8 *bytes, size_t size) {
    assert(bytes != nullptr);
    // The third byte says how it is packed; there has never been more than one way.
    return size >= 2 && bytes[0] == 0x1F && bytes[1] == 0x8B && (size == 2 || bytes[2] == Z_DEFLATED);
}

static voidpf zlib_allocate(voidpf, uInt count, uInt size) {
    return memory_allocate(count, size);
}

static void zlib_free(voidpf, voidpf block) {
    memory_free(block);
}

GdsGzip *gds_gzip_create(const u8 *bytes, size_t size) {
    assert(bytes != nullptr && size <= static_cast<size_t>(PIECE));
    auto *gzip = memory_new_zeroed<GdsGzip>();
    std::memcpy(gzip->input, bytes, size);
    gzip->taken = static_cast<i64>(size);
    gzip->reason = "";
    gzip->zlib.zalloc = zlib_allocate;
    gzip->zlib.zfree = zlib_free;
    gzip->zlib.next_in = gzip->input;
    gzip->zlib.avail_in = static_cast<uInt>(size);
    const int result = inflateInit2(&gzip->zlib, GZIP_WINDOW_BITS);
    assert(result == Z_OK);
    static_cast<void>(result);
    return gzip;
}

static void gzip_end(GdsGzip *gzip, GdsGzipState state, const char *reason = "") {
    gzip->phase = PHASE_END;
    gzip->state = state;
    gzip->reason = reason;
}

// Whether there are bytes to go on with. Without any, the unpacking has ended.
static bool gzip_input(GdsGzip *gzip, GdsFile *file) {
    if (gzip->zlib.avail_in > 0) {
        return true;
    }
    const size_t got = gds_file_read(file, gzip->input, static_cast<size_t>(PIECE));
    gzip->zlib.next_in = gzip->input;
    gzip->zlib.avail_in = static_cast<uInt>(got);
    gzip->taken += static_cast<i64>(got);
    if (got > 0) {
        return true;
    }
    if (file->read_error != 0) {
        gzip_end(gzip, GDS_GZIP_UNCHECKED);
    } else {
        gzip_end(gzip, gzip->phase == PHASE_MEMBER ? GDS_GZIP_CUT : GDS_GZIP_FINE);
    }
    return false;
}

static void unpack_piece(GdsGzip *gzip) {
    z_stream *zlib = &gzip->zlib;
    const int result = inflate(zlib, Z_NO_FLUSH);
    if (result == Z_STREAM_END) {
        gzip->phase = PHASE_BETWEEN;
    } else if (result != Z_OK && result != Z_BUF_ERROR) {  // the latter only asks for more input or room
        gzip_end(gzip, GDS_GZIP_DAMAGED, zlib->msg != nullptr ? zlib->msg : "it cannot be unpacked");
    }
}

// What follows a member: another one, or zeros up to the end of the file.
static void skip_between(GdsGzip *gzip) {
    z_stream *zlib = &gzip->zlib;
    if (gzip->phase == PHASE_BETWEEN && *zlib->next_in != 0) {
        inflateReset(zlib);
        gzip->phase = PHASE_MEMBER;
        return;
    }
    gzip->phase = PHASE_PADDING;
    while (zlib->avail_in > 0 && *zlib->next_in == 0) {
        ++zlib->next_in;
        --zlib->avail_in;
    }
    if (zlib->avail_in > 0) {
        gzip_end(gzip, GDS_GZIP_DAMAGED, "there are other bytes behind zeros at its end");
    }
}

size_t gds_gzip_read(GdsGzip *gzip, GdsFile *file, u8 *bytes, size_t room) {
    assert(gzip != nullptr && file != nullptr && bytes != nullptr && room > 0);
    z_stream *zlib = &gzip->zlib;
    const auto most = static_cast<uInt>(std::min(room, static_cast<size_t>(PIECE)));
    zlib->next_out = bytes;
    zlib->avail_out = most;
    while (gzip->phase != PHASE_END && zlib->avail_out > 0) {
        if (platform_interrupted()) {
            gzip_end(gzip, GDS_GZIP_UNCHECKED);
        } else if ((gzip->phase != PHASE_MEMBER && zlib->avail_out < most) || !gzip_input(gzip, file)) {
            break;
        } else if (gzip->phase == PHASE_MEMBER) {
            unpack_piece(gzip);
        } else {
            skip_between(gzip);
        }
    }
    return most - zlib->avail_out;
}

bool gds_gzip_ended(const GdsGzip *gzip) {
    assert(gzip != nullptr);
    return gzip->phase == PHASE_END;
}

GdsGzipCheck gds_gzip_check(GdsGzip *gzip, GdsFile *file) {
    assert(gzip != nullptr && file != nullptr);
    const auto forgotten = memory_scratch<u8>(PIECE);
    i64 looked_at = 0;
    while (gzip->phase == PHASE_MEMBER && looked_at < GDS_GZIP_LOOK_MOST) {
        if (platform_interrupted()) {
            gzip_end(gzip, GDS_GZIP_UNCHECKED);
        } else if (gzip_input(gzip, file)) {
            gzip->zlib.next_out = forgotten.get();
            gzip->zlib.avail_out = static_cast<uInt>(PIECE);
            unpack_piece(gzip);
            looked_at += PIECE - static_cast<i64>(gzip->zlib.avail_out);
        }
    }
    const GdsGzipState state = gzip->phase == PHASE_MEMBER ? GDS_GZIP_UNCHECKED : gzip->state;
    return {state, gzip->taken - static_cast<i64>(gzip->zlib.avail_in), gzip->reason};
}

void gds_gzip_free(GdsGzip *gzip) {
    if (gzip != nullptr) {
        inflateEnd(&gzip->zlib);
        memory_free(gzip);
    }
}
