#include "platform/file_replace.h"

#include <sys/stat.h>
#include <unistd.h>

#include <cassert>
#include <cerrno>
#include <cstdio>
#include <cstring>

#include "platform/linux/system_error.h"
#include "platform/memory.h"
#include "platform/platform.h"

static constexpr i32 LONGEST_CHAIN = 40;        // of symbolic links, as the system has it
static constexpr i64 LINK_ROOM = i64{1} << 12;  // the longest path the system takes

// Where the symbolic link leads to, relative to its own folder. Null when it is none.
static NarrowText link_content(const char *name) {
    auto content = memory_scratch<char>(LINK_ROOM);
    const i64 length = readlink(name, content.get(), LINK_ROOM - 1);
    if (length <= 0) {
        return nullptr;
    }
    content[length] = 0;
    return content;
}

// What a name in the folder of `name` is called from here.
static NarrowText beside(const char *name, const char *content) {
    const char *separator = std::strrchr(name, '/');
    const size_t folder =
        content[0] == '/' || separator == nullptr ? 0 : static_cast<size_t>(separator - name) + 1;
    const size_t length = std::strlen(content);
    auto joined = memory_scratch<char>(static_cast<i64>(folder + length + 1));
    std::memcpy(joined.get(), name, folder);
    std::memcpy(joined.get() + folder, content, length + 1);
    return joined;
}

WideText platform_file_target(const wchar_t *path) {
    assert(path != nullptr);
    NarrowText name = platform_system_from_wide(path);
    for (i32 i = 0; i < LONGEST_CHAIN; ++i) {
        const NarrowText content = link_content(name.get());
        if (content == nullptr) {
            break;
        }
        name = beside(name.get(), content.get());
    }
    return platform_wide_from_system(name.get());
}

PlatformFileKind platform_file_kind(const wchar_t *path) {
    assert(path != nullptr);
    const NarrowText name = platform_system_from_wide(path);
    struct stat status = {};
    const bool found = stat(name.get(), &status) == 0;
    if (!found) {
        return PLATFORM_FILE_NONE;
    }
    return S_ISREG(status.st_mode) ? PLATFORM_FILE_REGULAR : PLATFORM_FILE_OTHER;
}

bool platform_file_is_writable(const wchar_t *path) {
    assert(path != nullptr);
    const NarrowText name = platform_system_from_wide(path);
    const bool writable = access(name.get(), W_OK) == 0;
    if (!writable) {
        system_error_set(errno);
    }
    return writable;
}

bool platform_file_replace(const wchar_t *from, const wchar_t *to) {
    assert(from != nullptr && to != nullptr);
    const NarrowText from_name = platform_system_from_wide(from);
    const NarrowText to_name = platform_system_from_wide(to);
    struct stat status = {};
    if (stat(to_name.get(), &status) == 0) {
        chmod(from_name.get(),
              status.st_mode & 0777);  // of no matter where the file system has no permissions
    }
    const bool replaced = rename(from_name.get(), to_name.get()) == 0;
    if (!replaced) {
        system_error_set(errno);
    }
    return replaced;
}

u32 platform_process_id() {
    return static_cast<u32>(getpid());
}
