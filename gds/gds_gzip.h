// gds_gzip.h: what a file compressed with gzip holds, unpacked piece by piece. Hostile bytes are safe: no
// more memory is taken than for two pieces, however much the file unpacks to.
#pragma once
#include "gds/gds_file.h"
#include "platform/owned.h"

// The state of the unpacking; freed with gds_gzip_free.
struct GdsGzip;

// Whether a file that begins with these bytes is one. Those of a layout are never the same: they would be a
// record of a type that begins none. Of a file of two bytes it is told by both.
bool gds_gzip_is(const u8 *bytes, size_t size);

// Starts before the first byte of a file of which a piece has been read already, which is copied. Lack of
// memory ends the program, here and later.
GdsGzip *gds_gzip_create(const u8 *bytes, size_t size);

// Unpacks up to `room` bytes, at least one, and returns how many. A piece ends where one of the file's
// members ends, so that the next member is looked at only when it is needed. 0 at the end of the file, at a
// fault in it and after an interrupt; it is 0 from then on.
size_t gds_gzip_read(GdsGzip *gzip, GdsFile *file, u8 *bytes, size_t room);

// Whether gds_gzip_read will give nothing more.
bool gds_gzip_ended(const GdsGzip *gzip);

enum GdsGzipState {
    GDS_GZIP_FINE,
    GDS_GZIP_DAMAGED,
    GDS_GZIP_CUT,        // the file ends before what it holds does
    GDS_GZIP_UNCHECKED,  // too much to look at, or an interrupt, or the system failed to read on
};

struct GdsGzipCheck {
    GdsGzipState state;
    i64 offset;          // in the compressed file, bytes: as far as it has been looked at
    const char *reason;  // of damage, a static text
};

inline constexpr i64 GDS_GZIP_LOOK_MOST = i64{1} << 29;  // bytes, unpacked; about a second

// Whether everything that was read so far is as it was packed, which the end of the member tells. Unpacks the
// rest of the member for that, GDS_GZIP_LOOK_MOST at most, and forgets it.
GdsGzipCheck gds_gzip_check(GdsGzip *gzip, GdsFile *file);

// Takes null; the file stays open.
void gds_gzip_free(GdsGzip *gzip);

template <>
struct Freed<GdsGzip> {
    void operator()(GdsGzip *gzip) const { gds_gzip_free(gzip); }
};
