#include <cerrno>
#include <cstdio>
#include <cstring>
#include "image/image_file.h"
#include "image/image_stream.h"
#include "log/log.h"
#include "platform/memory.h"
#include "platform/platform.h"

static void report_failure(const wchar_t *path, const char *reason) {
    wchar_t *wide_reason = platform_wide_from_system(reason);
    diagnostic_write(L"%ls: %ls", path, wide_reason);
    memory_free(wide_reason);
}

// Writes and closes the file. Returns 0 or 1; `reason` then tells why.
static i32 write_and_close(const PixelImage *image, std::FILE *file, ImageFormat format,
                           char reason[IMAGE_REASON_SIZE]) {
    const i32 result =
        format == IMAGE_PNG ? png_write_stream(image, file, reason) : bmp_write_stream(image, file, reason);
    if (std::fclose(file) != 0 && result == 0) {
        std::snprintf(reason, IMAGE_REASON_SIZE, "%s", std::strerror(errno));
        return 1;
    }
    return result;
}

i32 image_save(const PixelImage *image, const wchar_t *path, ImageFormat format) {
    if (image_is_empty(image)) {
        report_failure(path, "the picture has no pixels");
        return 1;
    }
    const i64 size_before = platform_file_size(path);
    std::FILE *file = platform_file_open(path, "wb");
    if (file == nullptr) {
        diagnostic_write(L"%ls: %ls", path, platform_error_text());
        return 1;
    }
    char reason[IMAGE_REASON_SIZE];
    if (write_and_close(image, file, format, reason) == 0) {
        return 0;
    }
    report_failure(path, reason);
    // What was there and empty before and after is left alone: it may be a device rather than a file.
    if (size_before != 0 || platform_file_size(path) > 0) {
        platform_file_delete(path);
    }
    return 1;
}
