#include "log/shown_text.h"

#include <cassert>
#include <cstring>
#include <cwchar>

#include "platform/platform.h"

// A character that is shown by its number rather than by itself.
static bool is_hidden(u32 unit) {
    if (unit < 0x20 || (unit >= 0x7F && unit < 0xA0)) {
        return true;  // control characters
    }
    // Line and paragraph separators and the marks of direction; halves of pairs stand for bytes that are no
    // text only where wide characters are whole code points.
    const bool separator = (unit >= 0x200E && unit <= 0x200F) || (unit >= 0x2028 && unit <= 0x202E) ||
                           (unit >= 0x2066 && unit <= 0x2069) || unit == 0xFEFF;
    return separator || (sizeof(wchar_t) > 2 && unit >= 0xDC80 && unit <= 0xDCFF);
}

static i32 write_escape(u32 unit, wchar_t *out) {
    if (unit >= 0xDC80 && unit <= 0xDCFF) {
        unit -= 0xDC00;
    }
    const wchar_t *format = unit < 0x100 ? L"\\x%02x" : L"\\u%04x";
    return std::swprintf(out, 7, format, unit);
}

ShownText shown_text(const char *bytes) {
    ShownText shown = {};
    const WideText wide = platform_wide_from_system(bytes != nullptr ? bytes : "");
    i32 length = 0;
    for (i32 i = 0; wide[i] != 0; ++i) {
        const bool last = i == SHOWN_TEXT_MOST - 3 && std::wcslen(wide.get() + i) > 3;
        if (last) {
            std::wcscpy(shown.text + length, L"...");
            break;
        }
        if (is_hidden(static_cast<u32>(wide[i]))) {
            length += write_escape(static_cast<u32>(wide[i]), shown.text + length);
        } else {
            shown.text[length++] = wide[i];
        }
    }
    return shown;
}

ShownText shown_text(const char *bytes, i32 size) {
    assert(bytes != nullptr && size >= 0);
    const auto copy = memory_scratch<char>(i64{size} + 1);
    std::memcpy(copy.get(), bytes, static_cast<size_t>(size));
    copy[size] = 0;
    return shown_text(copy.get());
}
