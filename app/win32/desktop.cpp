#include "app/win32/desktop.h"

#include <windows.h>
// After windows.h, which names the types that this one is written in.
#include <objbase.h>

#include "app/data_files.h"
#include "app/startup.h"
#include "app/win32/picture_menu.h"
#include "app/win32/win32_desktop.h"
#include "log/log.h"

static void run_message_loop() {
    MSG message;
    while (GetMessageW(&message, nullptr, 0, 0) > 0) {
        TranslateMessage(&message);
        DispatchMessageW(&message);
    }
}

// State, data folder, log and colour names. Returns 0, or 1 after telling why.
static i32 start_state(AppState *state, const DataPlaces *places) {
    WString *colors = data_file_or_name(places, L"colors.txt");
    const i32 result = app_start(state, wstring_text(colors));
    wstring_free(colors);
    return result;
}

// The window with everything in it, on show. Returns 0, or 1 after telling why.
static i32 start_window(HINSTANCE instance, AppState *state, const DataPlaces *places) {
    WString *icon = data_file_or_name(places, L"quarn.ico");
    const i32 result = main_window_create(instance, state, wstring_text(icon));
    wstring_free(icon);
    if (result != 0) {
        return result;
    }
    picture_menu_load(state);
    main_window_show(state);
    WString *surface = data_file_or_name(places, L"surface.shader");
    WString *point = data_file_or_name(places, L"point.shader");
    app_load_shaders(state, wstring_text(surface), wstring_text(point));
    wstring_free(surface);
    wstring_free(point);
    app_welcome();
    return 0;
}

static i32 start(HINSTANCE instance, AppState *state) {
    DataPlaces places = data_places(nullptr);
    i32 result = start_state(state, &places);
    if (result == 0) {
        result = start_window(instance, state, &places);
    }
    data_places_free(&places);
    return result;
}

i32 desktop_run(void *instance, const wchar_t *layout_path, const wchar_t *process_path) {
    auto *module = static_cast<HINSTANCE>(instance);
    Win32Desktop desktop = {};
    g_desktop = &desktop;
    // The shell's file dialogs need it.
    const HRESULT com = CoInitializeEx(nullptr, COINIT_APARTMENTTHREADED | COINIT_DISABLE_OLE1DDE);
    message_box_install();
    console_set_sink(console_window_append, console_window_clear);

    AppState state = {};
    const i32 result = start(module, &state);
    if (result == 0) {
        open_files_later(&state, layout_path, process_path);
        run_message_loop();
    }

    if (state.worker_thread != nullptr) {
        platform_thread_join(state.worker_thread);  // it has told its end, or the loop would still run
    }
    app_end(&state);
    main_window_destroy(module, &state);
    file_dialog_free();
    console_set_sink(nullptr, nullptr);
    if (SUCCEEDED(com)) {
        CoUninitialize();
    }
    g_desktop = nullptr;
    return result;
}
