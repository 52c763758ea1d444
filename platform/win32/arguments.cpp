#include <windows.h>

#include <shellapi.h>

#include <cassert>

#include "platform/memory.h"
#include "platform/platform.h"

char **platform_arguments(i32 *count, char **given) {
    assert(count != nullptr && given != nullptr);
    int wide_count = 0;
    wchar_t **wide = CommandLineToArgvW(GetCommandLineW(), &wide_count);
    if (wide == nullptr) {
        return given;
    }
    auto **arguments = memory_new_array<char *>(i64{wide_count} + 1);
    for (int i = 0; i < wide_count; ++i) {
        arguments[i] = platform_system_from_wide(wide[i]).release();
    }
    arguments[wide_count] = nullptr;
    LocalFree(wide);
    *count = wide_count;
    return arguments;
}
