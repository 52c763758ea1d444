#include "platform/win32/system_error.h"

#include <windows.h>

#include "platform/platform.h"

static constexpr DWORD ERROR_TEXT_ROOM = 512;

static thread_local DWORD error_code = 0;
static thread_local wchar_t error_text[ERROR_TEXT_ROOM];

void system_error_set(u32 code) {
    error_code = code;
}

void system_error_set_last() {
    error_code = GetLastError();
}

u32 system_error_get() {
    return error_code;
}

const wchar_t *platform_error_text() {
    if (error_code == SYSTEM_ERROR_DEVICE) {
        return L"Is a device, not a file";
    }
    DWORD length =
        FormatMessageW(FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS, nullptr, error_code,
                       MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT), error_text, ERROR_TEXT_ROOM, nullptr);
    // The system ends its sentences with a full stop and a line end.
    while (length > 0 && (error_text[length - 1] <= L' ' || error_text[length - 1] == L'.')) {
        --length;
    }
    error_text[length] = 0;
    if (length == 0) {
        wsprintfW(error_text, L"system error %u", static_cast<unsigned>(error_code));
    }
    return error_text;
}
