#include "app/win32/message_box.h"

#include <windows.h>

#include <cassert>

#include "app/win32/win32_desktop.h"
#include "app/window_texts.h"
#include "platform/thread_role.h"

// During start-up there is no window yet, and the box has no owner.
void message_box_show(const wchar_t *text) {
    MessageBoxW(g_desktop->main.window, text, L"Quarn", MB_OK);
}

// Either thread may lack memory, so the box belongs to no window but keeps the user from those of its
// thread. Nothing is allocated here.
void message_box_show_memory_failure(const char *message) {
    g_desktop->messages.memory_failed = true;
    MessageBoxA(nullptr, message, PROGRAM_NAME, MB_OK | MB_TASKMODAL);
}

bool message_box_is_last() {
    return g_desktop->messages.memory_failed;
}

void message_box_about() {
    assert(thread_role_fits(THREAD_WINDOW));
    const Owned<NString> caption(about_caption());
    MessageBoxA(g_desktop->main.window, ABOUT_TEXT, nstring_text(caption.get()), MB_OK);
}
