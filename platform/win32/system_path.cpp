#include "platform/win32/system_path.h"

#include <windows.h>

#include <cwchar>

#include "platform/memory.h"
#include "platform/win32/wide_text.h"

// The system refuses longer paths without the prefix; a folder must leave room for a short file name.
static constexpr size_t LONGEST_PLAIN_PATH = 240;

static bool starts_with(const wchar_t *text, const wchar_t *start) {
    return std::wcsncmp(text, start, std::wcslen(start)) == 0;
}

// The absolute form, without "." and "..", its separators backslashes; null when the system has none.
static wchar_t *absolute_path(const wchar_t *path) {
    DWORD room = GetFullPathNameW(path, 0, nullptr, nullptr);
    if (room == 0) {
        return nullptr;
    }
    auto *full = memory_new_array<wchar_t>(i64{room} + 1);
    DWORD length = GetFullPathNameW(path, room + 1, full, nullptr);
    if (length == 0 || length > room) {
        memory_free(full);
        return nullptr;
    }
    return full;
}

wchar_t *system_path(const wchar_t *path) {
    wchar_t *full = nullptr;
    // What a short relative path becomes depends on the current folder, so its absolute form counts.
    if (*path != 0 && !starts_with(path, L"\\\\?\\") && !starts_with(path, L"\\\\.\\")) {
        full = absolute_path(path);
    }
    if (full == nullptr || std::wcslen(full) <= LONGEST_PLAIN_PATH || starts_with(full, L"\\\\.\\")) {
        memory_free(full);
        return wide_copy(path);
    }
    bool on_server = starts_with(full, L"\\\\");
    wchar_t *prefixed = on_server ? wide_join(L"\\\\?\\UNC", full + 1) : wide_join(L"\\\\?\\", full);
    memory_free(full);
    return prefixed;
}
