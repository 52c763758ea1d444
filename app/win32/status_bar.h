// status_bar.h: the bar along the lower edge that names the files.
#pragma once
#include <windows.h>

#include "platform/base.h"

struct StatusBar {
    HFONT font;  // owned
};

// Creates the bar as a child of the main window, its fields with their first texts. Returns the window,
// or null after telling why.
HWND status_bar_create(HWND parent);

// Frees the font, after the window is gone.
void status_bar_free();

// The text of a field, 0 to STATUS_PART_COUNT - 1.
void status_bar_set_text(HWND status_bar, i32 field, const wchar_t *text);
