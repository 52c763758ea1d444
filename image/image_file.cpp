#include "image/image_file.h"

#include <cassert>

#include "image/bmp.h"
#include "image/png.h"
#include "log/log.h"
#include "platform/platform.h"
#include "platform/whole_file.h"

static void report_failure(const wchar_t *path, const char *reason) {
    const WideText wide_reason = platform_wide_from_system(reason);
    diagnostic_write(L"%ls: %ls", path, wide_reason.get());
}

// Encodes the picture. False fills `reason`; nothing is left of the file then.
static bool encode(const PixelImage *image, WholeFile *whole, ImageFormat format,
                   char reason[IMAGE_REASON_SIZE]) {
    const i32 result = format == IMAGE_PNG ? png_write_stream(image, whole->file, reason)
                                           : bmp_write_stream(image, whole->file, reason);
    if (result != 0) {
        whole_file_abandon(whole);
    }
    return result == 0;
}

i32 image_save(const PixelImage *image, const wchar_t *path, ImageFormat format) {
    assert(image != nullptr && path != nullptr && (format == IMAGE_BMP || format == IMAGE_PNG));
    if (image_is_empty(image)) {
        report_failure(path, "the picture has no pixels");
        return 1;
    }
    WholeFile whole;
    char reason[IMAGE_REASON_SIZE];
    if (whole_file_open(&whole, path, "wb")) {
        if (!encode(image, &whole, format, reason)) {
            report_failure(path, reason);
            return 1;
        }
        if (whole_file_commit(&whole)) {
            return 0;
        }
    }
    diagnostic_write(L"%ls: %ls", path, whole.reason);
    return 1;
}
