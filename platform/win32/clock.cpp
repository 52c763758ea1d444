#include <windows.h>

#include <cassert>

#include "platform/platform.h"

PlatformTime platform_local_time() {
    SYSTEMTIME now = {};
    GetLocalTime(&now);
    return PlatformTime{now.wYear, now.wMonth, now.wDay, now.wHour, now.wMinute, now.wSecond};
}

void platform_debug_output(const wchar_t *text) {
    assert(text != nullptr);
    OutputDebugStringW(text);
}
