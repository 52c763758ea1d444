#include "app/gtk/window_settings.h"

#include <glib.h>

#include <cassert>

#include "app/gtk/gtk_text.h"
#include "app/window_texts.h"
#include "log/log.h"

static const char *const GROUP = "window";
static const char *const SHARE = "render-share";

static constexpr f64 SMALLEST_SHARE = 0.05;
static constexpr f64 LARGEST_SHARE = 0.95;

// A file of settings as it is now; empty when it cannot be read. Freed with g_key_file_free.
static GKeyFile *read_file(const char *path) {
    g_autoptr(GKeyFile) file = g_key_file_new();
    if (g_key_file_load_from_file(file, path, G_KEY_FILE_KEEP_COMMENTS, nullptr)) {
        return static_cast<GKeyFile *>(g_steal_pointer(&file));
    }
    return g_key_file_new();  // a garbled one leaves what came before the fault
}

// Its path as the system has it, freed with g_free.
static char *settings_path(const AppState *state) {
    const NarrowText folder = platform_system_from_wide(wstring_text(state->appdata_path));
    return g_build_filename(folder.get(), "window.ini", nullptr);
}

WindowSettings window_settings_read(const AppState *state) {
    assert(state != nullptr && state->appdata_path != nullptr);
    WindowSettings settings = {RENDER_SHARE};
    g_autofree char *path = settings_path(state);
    g_autoptr(GKeyFile) file = read_file(path);
    const f64 share = g_key_file_get_double(file, GROUP, SHARE, nullptr);  // 0 when there is none
    if (share >= SMALLEST_SHARE && share <= LARGEST_SHARE) {
        settings.render_share = static_cast<f32>(share);
    }
    return settings;
}

static void save_file(GKeyFile *file, const char *path) {
    g_autoptr(GError) error = nullptr;
    if (!g_key_file_save_to_file(file, path, &error)) {
        const WideText reason = platform_wide_from_system(error->message);
        log_write(L"The window's settings cannot be written: %ls", reason.get());
    }
}

void window_settings_write(const AppState *state, const WindowSettings *settings) {
    assert(settings->render_share > 0.0F && settings->render_share < 1.0F);
    g_autofree char *path = settings_path(state);
    g_autoptr(GKeyFile) file = read_file(path);
    g_key_file_set_double(file, GROUP, SHARE, static_cast<f64>(settings->render_share));
    save_file(file, path);
}

WideText window_setting_read(const AppState *state, const wchar_t *section, const wchar_t *key) {
    assert(state != nullptr && section != nullptr && key != nullptr);
    g_autofree char *path = settings_path(state);
    g_autoptr(GKeyFile) file = read_file(path);
    const NarrowText group = gtk_text_from_wide(section);
    const NarrowText name = gtk_text_from_wide(key);
    g_autofree char *value = g_key_file_get_string(file, group.get(), name.get(), nullptr);
    return value != nullptr ? platform_wide_from_system(value) : nullptr;
}

void window_setting_write(const AppState *state, const wchar_t *section, const wchar_t *key,
                          const wchar_t *value) {
    assert(state != nullptr && section != nullptr && key != nullptr && value != nullptr);
    g_autofree char *path = settings_path(state);
    g_autoptr(GKeyFile) file = read_file(path);
    const NarrowText group = gtk_text_from_wide(section);
    const NarrowText name = gtk_text_from_wide(key);
    const NarrowText text = gtk_text_from_wide(value);
    g_key_file_set_string(file, group.get(), name.get(), text.get());
    save_file(file, path);
}
