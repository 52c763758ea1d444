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
static WideText joined(const char *folder, const char *tail) {
    const size_t room = std::strlen(folder) + std::strlen(tail) + 1;
    const auto name = memory_scratch<char>(static_cast<i64>(room));
    std::snprintf(name.get(), room, "%s%s", folder, tail);
    return platform_wide_from_system(name.get());
}

// The home folder of the user database plus tail; null when the user is not in it.
static WideText registered_home(const char *tail) {
    WideText result;
    for (i64 room = 1024; room <= LARGEST_NAME_ROOM; room *= 2) {
        const auto buffer = memory_scratch<char>(room);
        passwd entry = {};
        passwd *found = nullptr;
        const i32 code = getpwuid_r(getuid(), &entry, buffer.get(), static_cast<size_t>(room), &found);
        if (code == 0 && found != nullptr && found->pw_dir != nullptr && found->pw_dir[0] != 0) {
            result = joined(found->pw_dir, tail);
        }
        if (code != ERANGE) {
            break;
        }
    }
    return result;
}

WideText platform_user_data_folder() {
    const char *data_home = std::getenv("XDG_DATA_HOME");
    if (data_home != nullptr && data_home[0] == '/') {
        return platform_wide_from_system(data_home);
    }
    const char *tail = "/.local/share";
    const char *home = std::getenv("HOME");
    return home != nullptr && home[0] != 0 ? joined(home, tail) : registered_home(tail);
}

WideText platform_program_folder() {
    WideText result;
    for (i64 room = 1024; room <= LARGEST_NAME_ROOM; room *= 2) {
        const auto name = memory_scratch<char>(room);
        const i64 length = readlink("/proc/self/exe", name.get(), static_cast<size_t>(room));
        const bool complete = length < room;
        if (complete && length > 0) {
            name[length] = 0;
            char *separator = std::strrchr(name.get(), '/');
            if (separator != nullptr) {
                separator[separator == name.get() ? 1 : 0] = 0;
                result = platform_wide_from_system(name.get());
            }
        }
        if (complete) {
            break;
        }
    }
    return result;
}
