// window_settings.h: what the window remembers from one start to the next, in the file "window.ini" beside
// the log. Nothing depends on the file: where it is missing, garbled or cannot be written the window is as at
// first.
#pragma once
#include "app/app_state.h"

struct WindowSettings {
    f32 render_share;  // the render area's share of the height inside the window, 0.05 to 0.95
};

// What the file says, and the defaults for what it does not say or what makes no sense.
WindowSettings window_settings_read(const AppState *state);

// A text of a section of the file; null when there is none.
WideText window_setting_read(const AppState *state, const wchar_t *section, const wchar_t *key);

// Changes it; as window_settings_write.
void window_setting_write(const AppState *state, const wchar_t *section, const wchar_t *key,
                          const wchar_t *value);

// Changes the file and keeps what else is in it. A failure goes to the log.
void window_settings_write(const AppState *state, const WindowSettings *settings);
