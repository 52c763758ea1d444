#include <windows.h>

#include <cassert>
#include <cerrno>
#include <cstdlib>
#include <cwchar>

#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/wide_text.h"
#include "platform/win32/system_error.h"
#include "platform/win32/system_path.h"

const wchar_t *const PLATFORM_SEPARATOR = L"\\";

static constexpr size_t MODE_ROOM = 8;
static constexpr u32 IS_FOLDER = 336;  // ERROR_DIRECTORY_NOT_SUPPORTED, which not every SDK names

// What the system tells about a path; false, with the reason kept, when there is nothing of that name.
static bool path_attributes(const wchar_t *path, WIN32_FILE_ATTRIBUTE_DATA *attributes) {
    const WideText name = system_path(path);
    const bool found = GetFileAttributesExW(name.get(), GetFileExInfoStandard, attributes) != 0;
    if (!found) {
        system_error_set_last();
    }
    return found;
}

static bool is_folder(const WIN32_FILE_ATTRIBUTE_DATA &attributes) {
    return (attributes.dwFileAttributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

// The C library's reason for a file that did not open, as the system's code.
static u32 code_of_errno(i32 reason) {
    switch (reason) {
        case ENOENT: return ERROR_FILE_NOT_FOUND;
        case EACCES: return ERROR_ACCESS_DENIED;
        case EMFILE: return ERROR_TOO_MANY_OPEN_FILES;
        case EEXIST: return ERROR_FILE_EXISTS;
        case ENOSPC: return ERROR_DISK_FULL;
        case ENOMEM: return ERROR_NOT_ENOUGH_MEMORY;
        default: return ERROR_INVALID_NAME;
    }
}

std::FILE *platform_file_open(const wchar_t *path, const char *mode) {
    assert(path != nullptr && mode != nullptr);
    wchar_t wide_mode[MODE_ROOM] = {};
    for (size_t i = 0; i + 1 < MODE_ROOM && mode[i] != 0; ++i) {
        wide_mode[i] = static_cast<wchar_t>(static_cast<u8>(mode[i]));
    }
    // Folders do not open; the reason is the same for all modes.
    if (platform_folder_exists(path)) {
        system_error_set(IS_FOLDER);
        return nullptr;
    }
    const WideText name = system_path(path);
    SetLastError(ERROR_SUCCESS);
    errno = 0;
    std::FILE *file = _wfopen(name.get(), wide_mode);
    if (file == nullptr) {
        const u32 code = GetLastError();
        system_error_set(code != ERROR_SUCCESS ? code : code_of_errno(errno));
    }
    return file;
}

bool platform_file_delete(const wchar_t *path) {
    assert(path != nullptr);
    const WideText name = system_path(path);
    const bool deleted = DeleteFileW(name.get()) != 0;
    if (!deleted) {
        system_error_set_last();
    }
    return deleted;
}

bool platform_file_exists(const wchar_t *path) {
    assert(path != nullptr);
    WIN32_FILE_ATTRIBUTE_DATA attributes = {};
    return path_attributes(path, &attributes) && !is_folder(attributes);
}

bool platform_folder_exists(const wchar_t *path) {
    assert(path != nullptr);
    const WideText name = system_path(path);
    const DWORD attributes = GetFileAttributesW(name.get());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        system_error_set_last();
    }
    return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_DIRECTORY) != 0;
}

i64 platform_file_size(const wchar_t *path) {
    assert(path != nullptr);
    WIN32_FILE_ATTRIBUTE_DATA attributes = {};
    if (!path_attributes(path, &attributes)) {
        return -1;
    }
    if (is_folder(attributes)) {
        system_error_set(IS_FOLDER);
        return -1;
    }
    return static_cast<i64>((static_cast<u64>(attributes.nFileSizeHigh) << 32) | attributes.nFileSizeLow);
}

PlatformFolderResult platform_folder_create(const wchar_t *path) {
    assert(path != nullptr);
    const WideText name = system_path(path);
    const DWORD code = CreateDirectoryW(name.get(), nullptr) != 0 ? ERROR_SUCCESS : GetLastError();
    if (code == ERROR_SUCCESS) {
        return PLATFORM_FOLDER_CREATED;
    }
    system_error_set(code);
    switch (code) {
        case ERROR_ALREADY_EXISTS:
        case ERROR_FILE_EXISTS: return PLATFORM_FOLDER_EXISTS;
        case ERROR_PATH_NOT_FOUND:
        case ERROR_DIRECTORY: return PLATFORM_FOLDER_PATH_NOT_FOUND;
        default: return PLATFORM_FOLDER_FAILED;
    }
}

// Sees to it that the folder is there, its parent given. Another program may create it meanwhile, and
// the root of a drive or a server cannot be created but is there. The reason of a failure is that of the
// creation.
static bool ensure_folder(const wchar_t *path) {
    if (platform_folder_exists(path) || platform_folder_create(path) == PLATFORM_FOLDER_CREATED) {
        return true;
    }
    const u32 code = system_error_get();
    const bool there = platform_folder_exists(path);
    system_error_set(code);
    return there;
}

static bool is_separator(wchar_t unit) {
    return unit == L'\\' || unit == L'/';
}

// The part of a path that names a drive or a server's share, which nobody creates.
static size_t root_length(const wchar_t *path) {
    if (path[0] != 0 && path[1] == L':') {
        return 2;
    }
    if (!is_separator(path[0]) || !is_separator(path[1])) {
        return 0;
    }
    size_t length = 2;
    for (i32 part = 0; part < 2; ++part) {
        while (path[length] != 0 && !is_separator(path[length])) {
            ++length;
        }
        if (part == 0 && path[length] != 0) {
            ++length;
        }
    }
    return length;
}

bool platform_folder_create_all(const wchar_t *path) {
    assert(path != nullptr);
    const size_t length = std::wcslen(path);
    const WideText name = wide_copy(path);
    bool there = true;
    // From the front, each parent by ending the text at its separator for a moment.
    for (size_t cut = root_length(name.get()) + 1; there && cut < length; ++cut) {
        if (is_separator(name[cut]) && !is_separator(name[cut - 1]) && name[cut - 1] != L':') {
            const wchar_t separator = name[cut];
            name[cut] = 0;
            there = ensure_folder(name.get());
            name[cut] = separator;
        }
    }
    there = there && ensure_folder(name.get());
    return there;
}
