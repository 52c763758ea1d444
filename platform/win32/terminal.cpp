#include "platform/terminal.h"

#include <windows.h>

#include <io.h>

#include <cassert>

// The null device is a device of characters too, but has no mode of a console.
bool platform_is_terminal(std::FILE *stream) {
    assert(stream != nullptr);
    DWORD mode = 0;
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    return handle != INVALID_HANDLE_VALUE && GetConsoleMode(handle, &mode) != FALSE;
}

i32 platform_terminal_columns(std::FILE *stream) {
    assert(stream != nullptr);
    CONSOLE_SCREEN_BUFFER_INFO size = {};
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(stream)));
    const bool known = handle != INVALID_HANDLE_VALUE && GetConsoleScreenBufferInfo(handle, &size) != FALSE;
    return known ? size.srWindow.Right - size.srWindow.Left + 1 : 0;
}
