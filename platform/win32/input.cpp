// Reading files that may be anything.
#include <windows.h>

#include <io.h>
#include <cwchar>

#include <cassert>

#include "platform/owned_file.h"
#include "platform/platform.h"
#include "platform/win32/system_error.h"

std::FILE *platform_input_open(const wchar_t *path, const char *mode) {
    assert(path != nullptr && mode != nullptr);
    OwnedFile file(platform_file_open(path, mode));
    // The null device is an empty file; every other one may wait for ever.
    if (file == nullptr || _wcsicmp(path, L"NUL") == 0) {
        return file.release();
    }
    const auto handle = reinterpret_cast<HANDLE>(_get_osfhandle(_fileno(file.get())));
    if (GetFileType(handle) == FILE_TYPE_CHAR) {
        system_error_set(SYSTEM_ERROR_DEVICE);
        return nullptr;
    }
    return file.release();
}
