#include "export/mesh_bytes.h"

#include <cassert>
#include <cstring>

static constexpr i64 PIECE_BYTES = 1 << 16;

MeshBytes mesh_bytes_create(std::FILE *file) {
    assert(file != nullptr);
    return {file, memory_scratch<u8>(PIECE_BYTES), 0};
}

void mesh_bytes_finish(MeshBytes *bytes) {
    assert(bytes != nullptr);
    std::fwrite(bytes->gathered.get(), 1, static_cast<size_t>(bytes->size), bytes->file);
    bytes->size = 0;
}

// Room for a number.
static u8 *make_room(MeshBytes *bytes, i64 size) {
    if (bytes->size + size > PIECE_BYTES) {
        mesh_bytes_finish(bytes);
    }
    u8 *room = bytes->gathered.get() + bytes->size;
    bytes->size += size;
    return room;
}

void mesh_bytes_put(MeshBytes *bytes, const char *text, i64 size) {
    assert(bytes != nullptr && text != nullptr && size >= 0);
    mesh_bytes_finish(bytes);
    std::fwrite(text, 1, static_cast<size_t>(size), bytes->file);
}

void mesh_bytes_put_u16(MeshBytes *bytes, u16 value) {
    u8 *out = make_room(bytes, 2);
    out[0] = static_cast<u8>(value);
    out[1] = static_cast<u8>(value >> 8);
}

void mesh_bytes_put_u32(MeshBytes *bytes, u32 value) {
    u8 *out = make_room(bytes, 4);
    out[0] = static_cast<u8>(value);
    out[1] = static_cast<u8>(value >> 8);
    out[2] = static_cast<u8>(value >> 16);
    out[3] = static_cast<u8>(value >> 24);
}

void mesh_bytes_put_f32(MeshBytes *bytes, f32 value) {
    u32 bits = 0;
    std::memcpy(&bits, &value, sizeof(bits));
    mesh_bytes_put_u32(bytes, bits);
}
