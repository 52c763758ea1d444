#include "platform/file_replace.h"

#include <windows.h>

#include <cassert>
#include <utility>

#include "platform/platform.h"
#include "platform/wide_text.h"
#include "platform/win32/system_error.h"
#include "platform/win32/system_path.h"

// A program that looks at every new file (a virus scanner) can hold it for a moment.
static constexpr i32 RENAME_ATTEMPTS = 10;
static constexpr DWORD RENAME_PAUSE_MS = 20;
static constexpr DWORD LONGEST_PATH = 32768;  // units, as the system has it

static bool is_symbolic_link(const wchar_t *name) {
    WIN32_FIND_DATAW found = {};
    HANDLE search = FindFirstFileW(name, &found);
    if (search == INVALID_HANDLE_VALUE) {
        return false;
    }
    FindClose(search);
    return (found.dwFileAttributes & FILE_ATTRIBUTE_REPARSE_POINT) != 0 &&
           found.dwReserved0 == IO_REPARSE_TAG_SYMLINK;
}

// The path of what a link leads to; null when that is not there.
static WideText link_target(const wchar_t *name) {
    HANDLE file = CreateFileW(name, 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                              OPEN_EXISTING, FILE_FLAG_BACKUP_SEMANTICS, nullptr);
    if (file == INVALID_HANDLE_VALUE) {
        return nullptr;
    }
    auto target = memory_scratch<wchar_t>(LONGEST_PATH);
    const DWORD length = GetFinalPathNameByHandleW(file, target.get(), LONGEST_PATH, FILE_NAME_NORMALIZED);
    CloseHandle(file);
    return length != 0 && length < LONGEST_PATH ? std::move(target) : nullptr;
}

WideText platform_file_target(const wchar_t *path) {
    assert(path != nullptr);
    const WideText name = system_path(path);
    WideText target = is_symbolic_link(name.get()) ? link_target(name.get()) : nullptr;
    return target != nullptr ? std::move(target) : wide_copy(path);
}

static DWORD attributes_of(const wchar_t *path) {
    const WideText name = system_path(path);
    const DWORD attributes = GetFileAttributesW(name.get());
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        system_error_set_last();
    }
    return attributes;
}

PlatformFileKind platform_file_kind(const wchar_t *path) {
    assert(path != nullptr);
    const DWORD attributes = attributes_of(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return PLATFORM_FILE_NONE;
    }
    const bool other = (attributes & (FILE_ATTRIBUTE_DIRECTORY | FILE_ATTRIBUTE_DEVICE)) != 0;
    return other ? PLATFORM_FILE_OTHER : PLATFORM_FILE_REGULAR;
}

bool platform_file_is_writable(const wchar_t *path) {
    assert(path != nullptr);
    const DWORD attributes = attributes_of(path);
    if (attributes == INVALID_FILE_ATTRIBUTES) {
        return false;
    }
    if ((attributes & FILE_ATTRIBUTE_READONLY) != 0) {
        system_error_set(ERROR_ACCESS_DENIED);
        return false;
    }
    return true;
}

bool platform_file_replace(const wchar_t *from, const wchar_t *to) {
    assert(from != nullptr && to != nullptr);
    const WideText from_name = system_path(from);
    const WideText to_name = system_path(to);
    bool replaced = false;
    for (i32 attempt = 0; attempt < RENAME_ATTEMPTS && !replaced; ++attempt) {
        replaced = MoveFileExW(from_name.get(), to_name.get(), MOVEFILE_REPLACE_EXISTING) != 0;
        if (!replaced) {
            system_error_set_last();
            const DWORD code = GetLastError();
            if (code != ERROR_ACCESS_DENIED && code != ERROR_SHARING_VIOLATION) {
                break;
            }
            Sleep(RENAME_PAUSE_MS);
        }
    }
    return replaced;
}

u32 platform_process_id() {
    return GetCurrentProcessId();
}
