#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cassert>
#include <cerrno>
#include <cstring>

#include "platform/linux/system_error.h"
#include "platform/owned_file.h"
#include "platform/platform.h"

const wchar_t *const PLATFORM_SEPARATOR = L"/";

// The system's word about a path; false when there is nothing of that name.
static bool path_status(const wchar_t *path, struct stat *status) {
    const NarrowText name = platform_system_from_wide(path);
    const bool found = stat(name.get(), status) == 0;
    if (!found) {
        system_error_set(errno);
    }
    return found;
}

std::FILE *platform_file_open(const wchar_t *path, const char *mode) {
    assert(path != nullptr && mode != nullptr);
    const NarrowText name = platform_system_from_wide(path);
    OwnedFile file(std::fopen(name.get(), mode));
    const i32 code = errno;
    if (file == nullptr) {
        system_error_set(code);
        return nullptr;
    }
    struct stat status = {};
    if (fstat(fileno(file.get()), &status) == 0 && S_ISDIR(status.st_mode)) {
        system_error_set(EISDIR);
        return nullptr;
    }
    return file.release();
}

bool platform_file_delete(const wchar_t *path) {
    assert(path != nullptr);
    const NarrowText name = platform_system_from_wide(path);
    const bool deleted = unlink(name.get()) == 0;
    if (!deleted) {
        system_error_set(errno);
    }
    return deleted;
}

bool platform_file_exists(const wchar_t *path) {
    assert(path != nullptr);
    struct stat status = {};
    return path_status(path, &status) && !S_ISDIR(status.st_mode);
}

bool platform_folder_exists(const wchar_t *path) {
    assert(path != nullptr);
    struct stat status = {};
    return path_status(path, &status) && S_ISDIR(status.st_mode);
}

i64 platform_file_size(const wchar_t *path) {
    assert(path != nullptr);
    struct stat status = {};
    if (!path_status(path, &status)) {
        return -1;
    }
    if (S_ISDIR(status.st_mode)) {
        system_error_set(EISDIR);
        return -1;
    }
    return status.st_size;
}

PlatformFolderResult platform_folder_create(const wchar_t *path) {
    assert(path != nullptr);
    const NarrowText name = platform_system_from_wide(path);
    const i32 code = mkdir(name.get(), 0777) == 0 ? 0 : errno;
    if (code == 0) {
        return PLATFORM_FOLDER_CREATED;
    }
    system_error_set(code);
    switch (code) {
        case EEXIST: return PLATFORM_FOLDER_EXISTS;
        case ENOENT:
        case ENOTDIR: return PLATFORM_FOLDER_PATH_NOT_FOUND;
        default: return PLATFORM_FOLDER_FAILED;
    }
}

static bool is_folder(const char *name) {
    struct stat status = {};
    return stat(name, &status) == 0 && S_ISDIR(status.st_mode);
}

// Sees to it that the folder is there, its parent given. Another program may create it meanwhile.
static bool ensure_folder(const char *name) {
    if (is_folder(name) || mkdir(name, 0777) == 0) {
        return true;
    }
    const i32 code = errno;
    if (is_folder(name)) {
        return true;
    }
    system_error_set(code);
    return false;
}

bool platform_folder_create_all(const wchar_t *path) {
    assert(path != nullptr);
    const NarrowText name = platform_system_from_wide(path);
    bool there = true;
    // From the front, each parent by ending the text at its separator for a moment. The root (or the
    // current folder) is there already.
    for (char *cut = name.get(); there && *cut != 0; ++cut) {
        if (cut == name.get() || cut[0] != '/' || cut[-1] == '/') {
            continue;
        }
        *cut = 0;
        there = ensure_folder(name.get());
        *cut = '/';
    }
    there = there && ensure_folder(name.get());
    return there;
}
