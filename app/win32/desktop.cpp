#include "app/win32/desktop.h"

#include <windows.h>
// After windows.h, which names the types that this one is written in.
#include <objbase.h>

#include "app/startup.h"
#include "app/win32/console_window.h"
#include "app/win32/main_window.h"
#include "app/win32/message_box.h"
#include "log/log.h"

static void run_message_loop() {
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

// Returns 0, or 1 after telling why.
static i32 start(HINSTANCE instance, AppState *state) {
    if (app_start(state, L"colors.txt") != 0 || main_window_create(instance, state) != 0) {
        return 1;
    }
    main_window_show(state);
    app_load_shaders(state, L"surface.shader", L"point.shader");
    app_welcome();
    return 0;
}

i32 desktop_run(void *instance) {
    auto *module = static_cast<HINSTANCE>(instance);
    // The shell's file dialog needs it.
    HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    message_box_install();
    console_set_sink(console_window_append, console_window_clear);

    AppState state = {};
    i32 result = start(module, &state);
    if (result == 0) {
        run_message_loop();
    }

    if (state.worker_thread != nullptr) {
        platform_thread_join(state.worker_thread);  // it has told its end, or the loop would still run
    }
    app_end(&state);
    main_window_destroy(module, &state);
    console_set_sink(nullptr, nullptr);
    if (SUCCEEDED(com)) {
        CoUninitialize();
    }
    return result;
}
