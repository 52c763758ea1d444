#include "platform/folder_contents.h"

#include <windows.h>

#include <cwchar>

#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/win32/system_error.h"
#include "platform/win32/system_path.h"
#include "platform/win32/wide_text.h"

void platform_folder_visit(const wchar_t *path, PlatformNameVisitor visit, void *context) {
    wchar_t *pattern = wide_join(path, L"\\*");
    wchar_t *name = system_path(pattern);
    WIN32_FIND_DATAW found = {};
    HANDLE search = FindFirstFileW(name, &found);
    memory_free(name);
    memory_free(pattern);
    if (search == INVALID_HANDLE_VALUE) {
        return;
    }
    do {
        if (std::wcscmp(found.cFileName, L".") != 0 && std::wcscmp(found.cFileName, L"..") != 0) {
            visit(found.cFileName, context);
        }
    } while (FindNextFileW(search, &found) != 0);
    FindClose(search);
}

bool platform_folder_remove(const wchar_t *path) {
    wchar_t *name = system_path(path);
    const bool removed = RemoveDirectoryW(name) != 0;
    if (!removed) {
        system_error_set_last();
    }
    memory_free(name);
    return removed;
}
