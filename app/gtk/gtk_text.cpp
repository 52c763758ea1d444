#include "app/gtk/gtk_text.h"

#include <glib.h>

#include <cstring>

#include "platform/memory.h"
#include "platform/platform.h"

char *gtk_text_from_wide(const wchar_t *text) {
    const NarrowText bytes = platform_system_from_wide(text != nullptr ? text : L"");
    return g_utf8_make_valid(bytes.get(), -1);
}

char *gtk_text_lines_from_wide(const wchar_t *text) {
    char *lines = gtk_text_from_wide(text);
    char *kept = lines;
    for (const char *next = lines; *next != 0; ++next) {
        if (next[0] != '\r' || next[1] != '\n') {
            *kept++ = *next;
        }
    }
    *kept = 0;
    return lines;
}
