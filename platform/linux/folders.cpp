#include <pwd.h>
#include <sys/types.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "platform/memory.h"
#include "platform/platform.h"

static constexpr i64 LARGEST_NAME_ROOM = i64{1} << 20;

// A wide copy of folder + tail.
static wchar_t *joined(const char *folder, const char *tail) {
    size_t room = std::strlen(folder) + std::strlen(tail) + 1;
    char *name = memory_new_array<char>(static_cast<i64>(room));
    std::snprintf(name, room, "%s%s", folder, tail);
    wchar_t *wide = platform_wide_from_system(name);
    memory_free(name);
    return wide;
}

// The home folder of the user database plus tail; null when the user is not in it.
static wchar_t *registered_home(const char *tail) {
    wchar_t *result = nullptr;
    for (i64 room = 1024; room <= LARGEST_NAME_ROOM; room *= 2) {
        char *buffer = memory_new_array<char>(room);
        passwd entry = {};
        passwd *found = nullptr;
        i32 code = getpwuid_r(getuid(), &entry, buffer, static_cast<size_t>(room), &found);
        if (code == 0 && found != nullptr && found->pw_dir != nullptr && found->pw_dir[0] != 0) {
            result = joined(found->pw_dir, tail);
        }
        memory_free(buffer);
        if (code != ERANGE) {
            break;
        }
    }
    return result;
}

wchar_t *platform_user_data_folder() {
    const char *data_home = std::getenv("XDG_DATA_HOME");
    if (data_home != nullptr && data_home[0] == '/') {
        return platform_wide_from_system(data_home);
    }
    const char *tail = "/.local/share";
    const char *home = std::getenv("HOME");
    return home != nullptr && home[0] != 0 ? joined(home, tail) : registered_home(tail);
}

wchar_t *platform_program_folder() {
    wchar_t *result = nullptr;
    for (i64 room = 1024; room <= LARGEST_NAME_ROOM; room *= 2) {
        char *name = memory_new_array<char>(room);
        i64 length = readlink("/proc/self/exe", name, static_cast<size_t>(room));
        bool complete = length < room;
        if (complete && length > 0) {
            name[length] = 0;
            char *separator = std::strrchr(name, '/');
            if (separator != nullptr) {
                separator[separator == name ? 1 : 0] = 0;
                result = platform_wide_from_system(name);
            }
        }
        memory_free(name);
        if (complete) {
            break;
        }
    }
    return result;
}
