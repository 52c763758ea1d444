#include "app/win32/message_box.h"

#include <windows.h>

#include "app/win32/main_window.h"
#include "app/window_texts.h"

// During start-up there is no window yet, and the box has no owner.
void message_box_show(const wchar_t *text) {
    MessageBoxW(g_main_window, text, L"Quarn", MB_OK);
}

static volatile i32 memory_failed = 0;

// Either thread may lack memory, so the box belongs to no window but keeps the user from those of its
// thread. Nothing is allocated here.
void message_box_show_memory_failure(const char *message) {
    memory_failed = 1;
    MessageBoxA(nullptr, message, PROGRAM_NAME, MB_OK | MB_TASKMODAL);
}

bool message_box_is_last() {
    return memory_failed != 0;
}

void message_box_about() {
    NString *caption = about_caption();
    MessageBoxA(g_main_window, ABOUT_TEXT, nstring_text(caption), MB_OK);
    nstring_free(caption);
}
