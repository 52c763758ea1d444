#include <windows.h>

#include <knownfolders.h>
#include <objbase.h>
#include <shlobj.h>

#include <cwchar>

#include "platform/platform.h"
#include "platform/wide_text.h"

static constexpr i64 LARGEST_NAME_ROOM = i64{1} << 17;  // units; the system's own limit is 32767

WideText platform_user_data_folder() {
    PWSTR folder = nullptr;
    const HRESULT result = SHGetKnownFolderPath(FOLDERID_LocalAppData, 0, nullptr, &folder);
    WideText copy = SUCCEEDED(result) && folder != nullptr ? wide_copy(folder) : nullptr;
    CoTaskMemFree(folder);  // null is allowed, and it is to be freed after a failure too
    return copy;
}

WideText platform_program_folder() {
    WideText result;
    for (i64 room = MAX_PATH; room <= LARGEST_NAME_ROOM; room *= 2) {
        const auto name = memory_scratch<wchar_t>(room);
        const DWORD length = GetModuleFileNameW(nullptr, name.get(), static_cast<DWORD>(room));
        const bool complete = length < room;  // a cut name fills the room
        if (complete && length > 0) {
            wchar_t *separator = std::wcsrchr(name.get(), L'\\');
            if (separator != nullptr) {
                *separator = 0;
                result = wide_copy(name.get());
            }
        }
        if (complete) {
            break;
        }
    }
    return result;
}
