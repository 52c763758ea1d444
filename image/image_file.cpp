#include "image/image_file.h"

#include <cassert>
#include <cwchar>

#include "image/bmp.h"
#include "image/png.h"
#include "log/log.h"
#include "platform/platform.h"
#include "platform/whole_file.h"

// clang-format off
const ImageFormatRow IMAGE_FORMATS[IMAGE_FORMAT_COUNT] = {
    {"bmp", L".bmp", bmp_write_stream},
    {"png", L".png", png_write_stream},
};
// clang-format on

// `reason` receives the text.
static void widen_reason(const char *text, wchar_t reason[IMAGE_REASON_SIZE]) {
    const WideText wide = platform_wide_from_system(text);
    std::wcsncpy(reason, wide.get(), IMAGE_REASON_SIZE - 1);
    reason[IMAGE_REASON_SIZE - 1] = 0;
}

// Encodes the picture. False fills `reason`; nothing is left of the file then.
static bool encode(const PixelImage *image, WholeFile *whole, ImageFormat format,
                   char reason[IMAGE_REASON_SIZE]) {
    const i32 result = IMAGE_FORMATS[format].write(image, whole->file, reason);
    if (result != 0) {
        whole_file_abandon(whole);
    }
    return result == 0;
}

i32 image_try_save(const PixelImage *image, const wchar_t *path, ImageFormat format,
                   wchar_t reason[IMAGE_REASON_SIZE]) {
    assert(image != nullptr && path != nullptr && static_cast<i32>(format) < IMAGE_FORMAT_COUNT);
    if (image_is_empty(image)) {
        widen_reason("the picture has no pixels", reason);
        return 1;
    }
    WholeFile whole;
    char narrow[IMAGE_REASON_SIZE];
    if (whole_file_open(&whole, path, "wb")) {
        if (!encode(image, &whole, format, narrow)) {
            widen_reason(narrow, reason);
            return 1;
        }
        if (whole_file_commit(&whole)) {
            return 0;
        }
    }
    static_assert(WHOLE_FILE_REASON_SIZE <= IMAGE_REASON_SIZE);
    std::wcscpy(reason, whole.reason);
    return 1;
}

i32 image_save(const PixelImage *image, const wchar_t *path, ImageFormat format) {
    wchar_t reason[IMAGE_REASON_SIZE];
    const i32 result = image_try_save(image, path, format, reason);
    if (result != 0) {
        diagnostic_write(L"%ls: %ls", path, reason);
    }
    return result;
}
