#include "image/bmp.h"

#include <cassert>
#include <cerrno>
#include <cstring>

#include "platform/owned_file.h"
#include "platform/platform.h"

static constexpr u32 BMP_HEADER_SIZE = 54;

static void put_u16(u8 *out, u32 value) {
    out[0] = static_cast<u8>(value);
    out[1] = static_cast<u8>(value >> 8);
}

static void put_u32(u8 *out, u32 value) {
    put_u16(out, value);
    put_u16(out + 2, value >> 16);
}

// File header and information header; a positive height tells that the bottom row comes first.
static void bmp_header(const PixelImage *image, u8 header[BMP_HEADER_SIZE]) {
    const u32 width = static_cast<u32>(image->width);
    const u32 height = static_cast<u32>(image->height);
    std::memset(header, 0, BMP_HEADER_SIZE);
    header[0] = 'B';
    header[1] = 'M';
    put_u32(header + 2, width * height * 4 + BMP_HEADER_SIZE);
    put_u32(header + 10, BMP_HEADER_SIZE);  // offset of the pixels
    put_u32(header + 14, 40);               // size of the information header
    put_u32(header + 18, width);
    put_u32(header + 22, height);
    put_u16(header + 26, 1);   // planes
    put_u16(header + 28, 32);  // bits per pixel
}

i32 bmp_write_stream(const PixelImage *image, std::FILE *file, char reason[IMAGE_REASON_SIZE]) {
    assert(!image_is_empty(image) && image->pixels != nullptr && file != nullptr && reason != nullptr);
    u8 header[BMP_HEADER_SIZE];
    bmp_header(image, header);
    errno = 0;
    bool complete = std::fwrite(header, BMP_HEADER_SIZE, 1, file) == 1;
    const size_t row_size = static_cast<size_t>(image->width) * 4;
    for (i32 y = 0; y < image->height && complete; ++y) {
        complete = std::fwrite(image->pixels + static_cast<size_t>(y) * row_size, row_size, 1, file) == 1;
    }
    if (!complete || std::fflush(file) != 0) {
        std::snprintf(reason, IMAGE_REASON_SIZE, "%s", std::strerror(errno));
        return 1;
    }
    return 0;
}

i32 bmp_write(const PixelImage *image, const wchar_t *path) {
    assert(image != nullptr && path != nullptr);
    if (image_is_empty(image)) {
        return 1;
    }
    const OwnedFile file(platform_file_open(path, "wb"));
    if (file == nullptr) {
        return 1;
    }
    char reason[IMAGE_REASON_SIZE];
    bmp_write_stream(image, file.get(), reason);
    return 0;
}
