#include "app/picture_folder.h"

#include <cassert>
#include <cwchar>
#include <cwctype>

#include "app/picture_name.h"
#include "log/log.h"
#include "platform/folder_contents.h"
#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/wide_text.h"

static constexpr i32 OLDER_FIRST_CAPACITY = 64;

static WideText path_in(const PictureFolder *folder, const wchar_t *name) {
    const WideText start = wide_join(folder->path, PLATFORM_SEPARATOR);
    return wide_join(start.get(), name);
}

static void note_older(const wchar_t *name, void *context) {
    auto *folder = static_cast<PictureFolder *>(context);
    const i32 number = picture_name_number(name);
    if (number >= 0) {
        const OlderPicture older = {number, wide_copy(name).release()};
        array_append(&folder->older, &folder->older_count, &folder->older_capacity, older,
                     OLDER_FIRST_CAPACITY);
    }
}

PictureFolder *picture_folder_open(const wchar_t *path, ImageFormat format) {
    assert(path != nullptr);
    auto *folder = memory_new_zeroed<PictureFolder>();
    folder->path = wide_copy(path).release();
    folder->format = format;
    platform_folder_visit(path, note_older, folder);
    return folder;
}

void picture_folder_free(PictureFolder *folder) {
    if (folder == nullptr) {
        return;
    }
    for (i32 i = 0; i < folder->older_count; ++i) {
        memory_free(folder->older[i].name);
    }
    memory_free(folder->older);
    memory_free(folder->path);
    memory_free(folder);
}

static bool same_but_for_case(const wchar_t *a, const wchar_t *b) {
    while (*a != 0 && std::towlower(static_cast<wint_t>(*a)) == std::towlower(static_cast<wint_t>(*b))) {
        ++a;
        ++b;
    }
    return *a == 0 && *b == 0;
}

// Two names that a folder may or may not tell apart, and those of them that lie in it.
struct NamePair {
    const wchar_t *first, *second;
    bool first_found, second_found;
};

static void find_pair(const wchar_t *name, void *context) {
    auto *pair = static_cast<NamePair *>(context);
    pair->first_found |= std::wcscmp(name, pair->first) == 0;
    pair->second_found |= std::wcscmp(name, pair->second) == 0;
}

// Whether two names are those of two files; some file systems take upper and lower case for the same.
static bool are_two_files(const PictureFolder *folder, const wchar_t *a, const wchar_t *b) {
    if (!same_but_for_case(a, b)) {
        return true;
    }
    NamePair pair = {a, b, false, false};
    platform_folder_visit(folder->path, find_pair, &pair);
    return pair.first_found && pair.second_found && std::wcscmp(a, b) != 0;
}

// Removes what an earlier run has left under the number of a picture that is written. What cannot be removed
// counts as left.
static void replace_older(PictureFolder *folder, i32 number, const wchar_t *name) {
    i32 kept = 0;
    for (i32 i = 0; i < folder->older_count; ++i) {
        const OlderPicture older = folder->older[i];
        bool gone = false;
        if (older.number == number && are_two_files(folder, older.name, name)) {
            gone = platform_file_delete(path_in(folder, older.name).get());
        } else {
            gone = older.number == number;
        }
        if (gone) {
            memory_free(older.name);
        } else {
            folder->older[kept++] = older;
        }
    }
    folder->older_count = kept;
}

void picture_folder_save(PictureFolder *folder, const PixelImage *image, i32 number, const wchar_t *title) {
    assert(folder != nullptr && number >= 0 && title != nullptr);
    const WideText name = picture_name(number, title, folder->format, picture_name_rules(), nullptr);
    const WideText path = path_in(folder, name.get());
    if (image == nullptr) {
        diagnostic_write(L"%ls: no memory for the picture", path.get());
        ++folder->failed;
    } else if (image_save(image, path.get(), folder->format) != 0) {
        ++folder->failed;
    } else {
        replace_older(folder, number, name.get());
    }
}

void picture_folder_report(const PictureFolder *folder) {
    assert(folder != nullptr);
    if (folder->older_count == 1) {
        diagnostic_write(L"%ls: another picture of an earlier run lies there", folder->path);
    } else if (folder->older_count > 1) {
        diagnostic_write(L"%ls: %d other pictures of an earlier run lie there", folder->path,
                         folder->older_count);
    }
}
