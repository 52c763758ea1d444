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
