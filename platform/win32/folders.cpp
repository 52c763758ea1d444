#include <windows.h>

#include <knownfolders.h>
#include <objbase.h>
#include <shlobj.h>

#include <cwchar>

#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/win32/wide_text.h"

static constexpr i64 LARGEST_NAME_ROOM = i64{1} << 17;  // units; the system's own limit is 32767

wchar_t *platform_user_data_folder() {
    PWSTR folder = nullptr;
    HRESULT result = SHGetKnownFolderPath(FOLDERID_LocalAppData, 0, nullptr, &folder);
    wchar_t *copy = SUCCEEDED(result) && folder != nullptr ? wide_copy(folder) : nullptr;
    CoTaskMemFree(folder);  // null is allowed, and it is to be freed after a failure too
    return copy;
}

wchar_t *platform_program_folder() {
    wchar_t *result = nullptr;
    for (i64 room = MAX_PATH; room <= LARGEST_NAME_ROOM; room *= 2) {
        auto *name = memory_new_array<wchar_t>(room);
        DWORD length = GetModuleFileNameW(nullptr, name, static_cast<DWORD>(room));
        bool complete = length < room;  // a cut name fills the room
        if (complete && length > 0) {
            wchar_t *separator = std::wcsrchr(name, L'\\');
            if (separator != nullptr) {
                *separator = 0;
                result = wide_copy(name);
            }
        }
        memory_free(name);
        if (complete) {
            break;
        }
    }
    return result;
}
