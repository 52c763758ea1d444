// gds_file.h: a file read in large pieces. The file itself must be buffered: the C library reads a pipe
// without a buffer byte by byte.
#pragma once
#include <cstdio>
#include "platform/base.h"

struct GdsFile {
    std::FILE *file;  // not owned
    i64 size;         // of the whole file, bytes; 0 when nobody knows; for those who wait only
    i64 taken;        // bytes that were read
    bool ended;       // nothing more to be read
    i32 read_error;   // errno of a failed read, which ends the file, else 0
};

// Reads up to `room` bytes and returns how many. When they are fewer, the file has ended.
size_t gds_file_read(GdsFile *file, u8 *bytes, size_t room);
