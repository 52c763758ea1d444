#include <windows.h>

#include <ctime>

#include "platform/platform.h"

f64 platform_clock_ms() {
    return static_cast<f64>(std::clock()) * (1000.0 / static_cast<f64>(CLOCKS_PER_SEC));
}

PlatformTime platform_local_time() {
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    return PlatformTime{now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

void platform_debug_output(const wchar_t *text) {
    OutputDebugStringW(text);
}
