#include "platform/folder_contents.h"

#include <windows.h>

#include <cassert>
#include <cwchar>

#include "platform/platform.h"
#include "platform/wide_text.h"
#include "platform/win32/system_error.h"
#include "platform/win32/system_path.h"

void platform_folder_visit(const wchar_t *path, PlatformNameVisitor visit, void *context) {
    assert(path != nullptr && visit != nullptr);
    const WideText pattern = wide_join(path, L"\\*");
    const WideText name = system_path(pattern.get());
    WIN32_FIND_DATAW found = {};
    HANDLE search = FindFirstFileW(name.get(), &found);
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
    assert(path != nullptr);
    const WideText name = system_path(path);
    const bool removed = RemoveDirectoryW(name.get()) != 0;
    if (!removed) {
        system_error_set_last();
    }
    return removed;
}
