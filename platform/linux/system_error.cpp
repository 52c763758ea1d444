#include "platform/linux/system_error.h"

#include <cstring>
#include <cwchar>

#include "platform/memory.h"
#include "platform/platform.h"

static constexpr size_t ERROR_TEXT_ROOM = 256;

static thread_local i32 error_code = 0;
static thread_local wchar_t error_text[ERROR_TEXT_ROOM];

void system_error_set(i32 code) {
    error_code = code;
}

const wchar_t *platform_error_text() {
    const char *words =
        error_code == SYSTEM_ERROR_DEVICE ? "Is a device, not a file" : strerrordesc_np(error_code);
    const WideText text = platform_wide_from_system(words != nullptr ? words : "Unknown error");
    std::wcsncpy(error_text, text.get(), ERROR_TEXT_ROOM - 1);
    error_text[ERROR_TEXT_ROOM - 1] = 0;
    return error_text;
}
