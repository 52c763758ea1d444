#include "app/older_files.h"

#include <cassert>
#include <cwchar>
#include <cwctype>

#include "app/picture_name.h"
#include "platform/folder_contents.h"
#include "platform/platform.h"
#include "platform/wide_text.h"

static constexpr i32 FIRST_CAPACITY = 64;

struct OlderSearch {
    OlderFiles *files;
    const wchar_t *const *extensions;
    i32 extension_count;
};

static void note_older(const wchar_t *name, void *context) {
    const auto *search = static_cast<const OlderSearch *>(context);
    OlderFiles *files = search->files;
    for (i32 i = 0; i < search->extension_count; ++i) {
        const i32 number = picture_name_number(name, search->extensions[i]);
        if (number >= 0) {
            const OlderFile older = {number, wide_copy(name).release()};
            array_append(&files->items, &files->count, &files->capacity, older, FIRST_CAPACITY);
            return;
        }
    }
}

void older_files_find(OlderFiles *files, const wchar_t *folder, const wchar_t *const *extensions,
                      i32 extension_count) {
    assert(files != nullptr && files->folder == nullptr && folder != nullptr && extensions != nullptr);
    files->folder = wide_copy(folder).release();
    OlderSearch search = {files, extensions, extension_count};
    platform_folder_visit(folder, note_older, &search);
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
static bool are_two_files(const wchar_t *folder, const wchar_t *a, const wchar_t *b) {
    if (!same_but_for_case(a, b)) {
        return true;
    }
    NamePair pair = {a, b, false, false};
    platform_folder_visit(folder, find_pair, &pair);
    return pair.first_found && pair.second_found && std::wcscmp(a, b) != 0;
}

static bool remove_file(const wchar_t *folder, const wchar_t *name) {
    const WideText start = wide_join(folder, PLATFORM_SEPARATOR);
    return platform_file_delete(wide_join(start.get(), name).get());
}

void older_files_replace(OlderFiles *files, i32 number, const wchar_t *name) {
    assert(files != nullptr && number >= 0 && name != nullptr);
    i32 kept = 0;
    for (i32 i = 0; i < files->count; ++i) {
        const OlderFile older = files->items[i];
        bool gone = older.number == number;
        if (gone && are_two_files(files->folder, older.name, name)) {
            gone = remove_file(files->folder, older.name);
        }
        if (gone) {
            memory_free(older.name);
        } else {
            files->items[kept++] = older;
        }
    }
    files->count = kept;
}

void older_files_free(OlderFiles *files) {
    assert(files != nullptr);
    for (i32 i = 0; i < files->count; ++i) {
        memory_free(files->items[i].name);
    }
    memory_free(files->items);
    memory_free(files->folder);
    *files = {};
}
