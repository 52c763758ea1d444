// quarn.exe: the desktop program for Windows.
#include <windows.h>

#include <cstdlib>

#include "app/app_state.h"
#include "app/desktop_arguments.h"
#include "app/win32/desktop.h"
#include "log/text.h"
#include "platform/platform.h"

// The program has no terminal to write to.
static void tell(const char *text) {
    MessageBoxA(nullptr, text, PROGRAM_NAME, MB_OK);
}

static bool answer(i32 count, char **arguments) {
    const DesktopQuestion question = desktop_arguments_question(count, arguments);
    if (question == DESKTOP_ASKS_VERSION) {
        const Owned<NString> version(string_make("%s %s", PROGRAM_NAME, PROGRAM_VERSION));
        tell(nstring_text(version.get()));
    } else if (question == DESKTOP_ASKS_HELP) {
        tell(DESKTOP_HELP_TEXT);
    }
    return question != DESKTOP_ASKS_NOTHING;
}

static WideText widened(const char *path) {
    return path != nullptr ? platform_wide_from_system(path) : nullptr;
}

static i32 run(HINSTANCE instance, const DesktopArguments *arguments) {
    if (arguments->fault != nullptr) {
        const Owned<NString> text(
            string_make("%s '%s'\n\n%s", arguments->fault, arguments->wrong, DESKTOP_HELP_TEXT));
        tell(nstring_text(text.get()));
        return 1;
    }
    const WideText layout = widened(arguments->layout_path);
    const WideText process = widened(arguments->process_path);
    return desktop_run(instance, layout.get(), process.get(), &arguments->pictures);
}

int WINAPI WinMain(HINSTANCE instance, HINSTANCE, LPSTR, int) {
    i32 count = __argc;
    char **texts = platform_arguments(&count, __argv);
    if (answer(count, texts)) {
        return 0;
    }
    const DesktopArguments arguments = desktop_arguments_read(count, texts);
    return run(instance, &arguments);
}
