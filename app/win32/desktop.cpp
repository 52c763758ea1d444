#include "app/win32/desktop.h"

#include <windows.h>
// After windows.h, which names the types that this one is written in.
#include <objbase.h>

#include "app/startup.h"
#include "app/win32/picture_menu.h"
#include "app/win32/win32_desktop.h"
#include "app/win32/win32_frontend.h"
#include "log/log.h"

static void run_message_loop() {
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

// The window with everything in it, on show. Returns 0, or 1 after telling why.
static i32 start_window(HINSTANCE instance, AppState *state) {
    const Owned<WString> icon(data_file_or_name(&state->places, L"quarn.ico"));
    const i32 result = main_window_create(instance, state, wstring_text(icon.get()));
    if (result != 0) {
        return result;
    }
    main_window_show(state);
    app_load_shaders(state);
    app_welcome();
    return 0;
}

i32 desktop_run(void *instance, const wchar_t *layout_path, const wchar_t *process_path,
                const PictureOptions *pictures) {
    auto *module = static_cast<HINSTANCE>(instance);
    Win32Desktop desktop = {};
    g_desktop = &desktop;
    window_scale_read();
    // The shell's file dialogs need it.
    const HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);

    AppState state;
    app_start(&state, &WIN32_FRONTEND, nullptr);
    i32 result = app_open_files(&state);
    if (result == 0) {
        result = start_window(module, &state);
    }
    if (result == 0 && pictures != nullptr) {
        result = picture_options_start(pictures, &state);
    }
    if (result == 0) {
        picture_menu_load(&state);
        open_files_later(&state, layout_path, process_path);
        run_message_loop();
    }

    app_end(&state);
    main_window_destroy(module, &state);
    file_dialog_free();
    if (SUCCEEDED(com)) {
        CoUninitialize();
    }
    g_desktop = nullptr;
    return result;
}
