#include "platform/win32/system_path.h"

#include <windows.h>

#include <cassert>
#include <cwchar>
#include <utility>

#include "platform/wide_text.h"

// The system refuses longer paths without the prefix; a folder must leave room for a short file name.
static constexpr size_t LONGEST_PLAIN_PATH = 240;

static bool starts_with(const wchar_t *text, const wchar_t *start) {
    return std::wcsncmp(text, start, std::wcslen(start)) == 0;
}

// The absolute form, without "." and "..", its separators backslashes; null when the system has none.
static WideText absolute_path(const wchar_t *path) {
    const DWORD room = GetFullPathNameW(path, 0, nullptr, nullptr);
    if (room == 0) {
        return nullptr;
    }
    auto full = memory_scratch<wchar_t>(i64{room} + 1);
    const DWORD length = GetFullPathNameW(path, room + 1, full.get(), nullptr);
    return length != 0 && length <= room ? std::move(full) : nullptr;
}

WideText system_path(const wchar_t *path) {
    assert(path != nullptr);
    WideText full;
    // What a short relative path becomes depends on the current folder, so its absolute form counts.
    if (*path != 0 && !starts_with(path, L"\\\\?\\") && !starts_with(path, L"\\\\.\\")) {
        full = absolute_path(path);
    }
    if (full == nullptr || std::wcslen(full.get()) <= LONGEST_PLAIN_PATH ||
        starts_with(full.get(), L"\\\\.\\")) {
        return wide_copy(path);
    }
    const bool on_server = starts_with(full.get(), L"\\\\");
    return on_server ? wide_join(L"\\\\?\\UNC", full.get() + 1) : wide_join(L"\\\\?\\", full.get());
}
