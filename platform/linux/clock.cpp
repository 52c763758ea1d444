#include <cassert>
#include <ctime>

#include "platform/platform.h"

PlatformTime platform_local_time() {
    const std::time_t now = std::time(nullptr);
    std::tm parts = {};
    localtime_r(&now, &parts);
    return PlatformTime{parts.tm_year + 1900, parts.tm_mon + 1, parts.tm_mday,
                        parts.tm_hour,        parts.tm_min,     parts.tm_sec};
}

// No debugger of this system listens to texts; the log file has the same lines.
void platform_debug_output(const wchar_t *text) {
    assert(text != nullptr);
    static_cast<void>(text);
}
