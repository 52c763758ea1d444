#include "platform/folder_contents.h"

#include <dirent.h>
#include <unistd.h>

#include <cassert>
#include <cerrno>
#include <cstring>

#include "platform/linux/system_error.h"
#include "platform/memory.h"
#include "platform/platform.h"

void platform_folder_visit(const wchar_t *path, PlatformNameVisitor visit, void *context) {
    assert(path != nullptr && visit != nullptr);
    const NarrowText name = platform_system_from_wide(path);
    DIR *folder = opendir(name.get());
    if (folder == nullptr) {
        return;
    }
    for (const dirent *entry = readdir(folder); entry != nullptr; entry = readdir(folder)) {
        if (std::strcmp(entry->d_name, ".") != 0 && std::strcmp(entry->d_name, "..") != 0) {
            const WideText wide = platform_wide_from_system(entry->d_name);
            visit(wide.get(), context);
        }
    }
    closedir(folder);
}

bool platform_folder_remove(const wchar_t *path) {
    assert(path != nullptr);
    const NarrowText name = platform_system_from_wide(path);
    const bool removed = rmdir(name.get()) == 0;
    if (!removed) {
        system_error_set(errno);
    }
    return removed;
}
