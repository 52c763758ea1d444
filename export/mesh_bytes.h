// mesh_bytes.h: numbers of mesh files, least significant byte first on every machine, gathered before they go
// to the file. What goes wrong with the file is left to its owner, who asks std::ferror.
#pragma once
#include <cstdio>
#include "platform/owned.h"

struct MeshBytes {
    std::FILE *file;  // not owned
    Owned<u8[]> gathered;
    i64 size;  // of what is gathered
};

// Writes to a file that is open for binary writing.
MeshBytes mesh_bytes_create(std::FILE *file);

void mesh_bytes_put(MeshBytes *bytes, const char *text, i64 size);
void mesh_bytes_put_u16(MeshBytes *bytes, u16 value);
void mesh_bytes_put_u32(MeshBytes *bytes, u32 value);
void mesh_bytes_put_f32(MeshBytes *bytes, f32 value);

// Hands what is left to the file.
void mesh_bytes_finish(MeshBytes *bytes);
