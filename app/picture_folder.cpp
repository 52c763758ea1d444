#include "app/picture_folder.h"

#include <cassert>

#include "app/picture_name.h"
#include "log/log.h"
#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/wide_text.h"

static WideText path_in(const PictureFolder *folder, const wchar_t *name) {
    const WideText start = wide_join(folder->path, PLATFORM_SEPARATOR);
    return wide_join(start.get(), name);
}

PictureFolder *picture_folder_open(const wchar_t *path, ImageFormat format) {
    assert(path != nullptr);
    auto *folder = memory_new_zeroed<PictureFolder>();
    folder->path = wide_copy(path).release();
    folder->format = format;
    const wchar_t *extensions[IMAGE_FORMAT_COUNT];
    for (i32 i = 0; i < IMAGE_FORMAT_COUNT; ++i) {
        extensions[i] = IMAGE_FORMATS[i].extension;
    }
    older_files_find(&folder->older, path, extensions, IMAGE_FORMAT_COUNT);
    return folder;
}

void picture_folder_free(PictureFolder *folder) {
    if (folder == nullptr) {
        return;
    }
    older_files_free(&folder->older);
    memory_free(folder->path);
    memory_free(folder);
}

void picture_folder_save(PictureFolder *folder, const PixelImage *image, i32 number, const wchar_t *title) {
    assert(folder != nullptr && number >= 0 && title != nullptr);
    const WideText name =
        picture_name(number, title, IMAGE_FORMATS[folder->format].extension, picture_name_rules(), nullptr);
    const WideText path = path_in(folder, name.get());
    if (image == nullptr) {
        diagnostic_write(L"%ls: no memory for the picture", path.get());
        ++folder->failed;
    } else if (image_save(image, path.get(), folder->format) != 0) {
        ++folder->failed;
    } else {
        older_files_replace(&folder->older, number, name.get());
    }
}

void picture_folder_report(const PictureFolder *folder) {
    assert(folder != nullptr);
    if (folder->older.count == 1) {
        diagnostic_write(L"%ls: another picture of an earlier run lies there", folder->path);
    } else if (folder->older.count > 1) {
        diagnostic_write(L"%ls: %d other pictures of an earlier run lie there", folder->path,
                         folder->older.count);
    }
}
