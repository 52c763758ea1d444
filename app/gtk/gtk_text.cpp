#include "app/gtk/gtk_text.h"

#include <glib.h>

#include <cstring>

#include "platform/platform.h"

NarrowText gtk_text_from_wide(const wchar_t *text) {
    const NarrowText bytes = platform_system_from_wide(text != nullptr ? text : L"");
    g_autofree char *valid = g_utf8_make_valid(bytes.get(), -1);
    const size_t size = std::strlen(valid) + 1;
    NarrowText copy = memory_scratch<char>(static_cast<i64>(size));
    std::memcpy(copy.get(), valid, size);
    return copy;
}

NarrowText gtk_text_lines_from_wide(const wchar_t *text) {
    NarrowText lines = gtk_text_from_wide(text);
    char *kept = lines.get();
    for (const char *next = lines.get(); *next != 0; ++next) {
        if (next[0] != '\r' || next[1] != '\n') {
            *kept++ = *next;
        }
    }
    *kept = 0;
    return lines;
}
