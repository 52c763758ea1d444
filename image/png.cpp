#include "image/png.h"

#include <png.h>

#include <cassert>
#include <cerrno>
#include <csetjmp>
#include <cstring>
#include <utility>

#include "platform/owned_file.h"
#include "platform/platform.h"

static constexpr i64 FIRST_ROOM = i64{1} << 16;  // bytes; doubles as a file in memory grows

// What the callbacks of libpng share: where the bytes go, a file or a growing block.
struct PngTarget {
    std::FILE *file;
    char *reason;  // IMAGE_REASON_SIZE bytes
    Owned<u8[]> bytes;
    i64 size, room;
};

// libpng demands that this does not return; the jump leads back into png_encode.
[[noreturn]] static void on_error(png_structp png, png_const_charp message) {
    const PngTarget *target = static_cast<const PngTarget *>(png_get_error_ptr(png));
    std::snprintf(target->reason, IMAGE_REASON_SIZE, "%s", message);
    png_longjmp(png, 1);
}

static void on_warning(png_structp, png_const_charp) {}

static void on_write(png_structp png, png_bytep bytes, size_t count) {
    const PngTarget *target = static_cast<const PngTarget *>(png_get_io_ptr(png));
    if (std::fwrite(bytes, 1, count, target->file) != count) {
        png_error(png, std::strerror(errno));
    }
}

static bool append_bytes(PngTarget *target, const u8 *bytes, i64 count) {
    i64 room = target->room > 0 ? target->room : FIRST_ROOM;
    while (room < target->size + count) {
        room *= 2;
    }
    if (room > target->room && !memory_try_resize(&target->bytes, room)) {
        return false;
    }
    target->room = room;
    std::memcpy(target->bytes.get() + target->size, bytes, static_cast<size_t>(count));
    target->size += count;
    return true;
}

static void on_write_memory(png_structp png, png_bytep bytes, size_t count) {
    if (!append_bytes(static_cast<PngTarget *>(png_get_io_ptr(png)), bytes, static_cast<i64>(count))) {
        png_error(png, "there is no memory for it");
    }
}

static void on_flush_memory(png_structp) {}

static void on_flush(png_structp png) {
    const PngTarget *target = static_cast<const PngTarget *>(png_get_io_ptr(png));
    if (std::fflush(target->file) != 0) {
        png_error(png, std::strerror(errno));
    }
}

static png_voidp on_allocate(png_structp, png_alloc_size_t size) {
    return memory_allocate(static_cast<i64>(size), 1);
}

static png_voidp on_try_allocate(png_structp, png_alloc_size_t size) {
    return memory_try_allocate(static_cast<i64>(size), 1);
}

static void on_free(png_structp, png_voidp block) {
    memory_free(block);
}

// Texts as tEXt, or as iTXt where they have letters beyond ASCII; lengths as sCAL, the scale of what is
// shown.
static void put_notes(png_structp png, png_infop info, const ImageNotes *notes) {
    for (i32 i = 0; i < notes->count; ++i) {
        png_text text = {};
        text.compression = PNG_TEXT_COMPRESSION_NONE;
        for (const char *next = notes->items[i].text; *next != 0; ++next) {
            if (static_cast<u8>(*next) >= 0x80) {
                text.compression = PNG_ITXT_COMPRESSION_NONE;
            }
        }
        text.key = const_cast<char *>(notes->items[i].keyword);  // only read; libpng's record has no const
        text.text = const_cast<char *>(notes->items[i].text);
        text.text_length = std::strlen(text.text);
        png_set_text(png, info, &text, 1);
    }
    if (notes->pixel_width > 0.0 && notes->pixel_height > 0.0) {
        png_set_sCAL(png, info, PNG_SCALE_METER, notes->pixel_width, notes->pixel_height);
    }
}

// Everything that libpng can leave by a jump. Nothing here needs an end of its own: the caller owns
// `png` and `info`, and no local changes between setjmp and the jump.
static bool png_encode(png_structp png, png_infop info, const PixelImage *image) {
    if (setjmp(png_jmpbuf(png)) != 0) {  // NOLINT(cert-err52-cpp): libpng reports errors in this way only
        return false;
    }
    const png_uint_32 width = static_cast<png_uint_32>(image->width);
    const png_uint_32 height = static_cast<png_uint_32>(image->height);
    const int color_type = image->transparent ? PNG_COLOR_TYPE_RGB_ALPHA : PNG_COLOR_TYPE_RGB;
    png_set_IHDR(png, info, width, height, 8, color_type, PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_BASE,
                 PNG_FILTER_TYPE_BASE);
    if (image->notes != nullptr) {
        put_notes(png, info, image->notes);
    }
    png_write_info(png, info);
    // Each row as its difference to the one above: as small here as the best filter of five for each row, for
    // half the time.
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_FILTER_UP);
    png_set_bgr(png);
    if (!image->transparent) {
        png_set_filler(png, 0, PNG_FILLER_AFTER);  // drops the alpha byte, so that the picture is opaque
    }
    for (size_t row = height; row > 0; --row) {
        png_write_row(png, image->pixels + (row - 1) * width * 4);
    }
    png_write_end(png, info);
    png_write_flush(png);
    return true;
}

// Encodes into the target's file or, without one, into its block. False leaves the reason.
static bool write_target(const PixelImage *image, PngTarget *target) {
    const bool to_file = target->file != nullptr;
    std::snprintf(target->reason, IMAGE_REASON_SIZE, "the PNG library does not start");
    png_structp png = png_create_write_struct_2(PNG_LIBPNG_VER_STRING, target, on_error, on_warning, nullptr,
                                                to_file ? on_allocate : on_try_allocate, on_free);
    png_infop info = png != nullptr ? png_create_info_struct(png) : nullptr;
    bool complete = false;
    if (info != nullptr) {
        png_set_write_fn(png, target, to_file ? on_write : on_write_memory,
                         to_file ? on_flush : on_flush_memory);
        complete = png_encode(png, info, image);
    }
    png_destroy_write_struct(&png, &info);
    return complete;
}

i32 png_write_stream(const PixelImage *image, std::FILE *file, char reason[IMAGE_REASON_SIZE]) {
    assert(!image_is_empty(image) && image->pixels != nullptr && file != nullptr && reason != nullptr);
    PngTarget target = {file, reason, nullptr, 0, 0};
    return write_target(image, &target) ? 0 : 1;
}

Owned<u8[]> png_try_encode(const PixelImage *image, i64 *size) {
    assert(!image_is_empty(image) && image->pixels != nullptr && size != nullptr);
    char reason[IMAGE_REASON_SIZE];
    PngTarget target = {nullptr, reason, nullptr, 0, 0};
    const bool complete = write_target(image, &target);
    *size = complete ? target.size : 0;
    return complete ? std::move(target.bytes) : nullptr;
}

i32 png_write_image(const PixelImage *image, const wchar_t *path) {
    assert(image != nullptr && path != nullptr);
    if (image_is_empty(image)) {
        return 1;
    }
    OwnedFile file(platform_file_open(path, "wb"));
    if (file == nullptr) {
        return 1;
    }
    char reason[IMAGE_REASON_SIZE];
    const i32 result = png_write_stream(image, file.get(), reason);
    return std::fclose(file.release()) == 0 ? result : 1;
}
