// picture_wish.h: how the user wants the pictures of the next run, as chosen in the picture's menu. A run
// under way keeps the style that it was started with. User-interface thread.
#pragma once
#include "render/picture_style.h"

struct AppState;

// All zero: nothing was chosen, and the application's style holds.
struct PictureWish {
    bool quality_chosen;  // whether `fine` counts
    bool fine;
    f32 vertical_scale;  // 0: none chosen
};

struct VerticalScale {
    f32 factor;
    const wchar_t *text;
};

inline constexpr i32 VERTICAL_SCALE_COUNT = 5;

// Those that can be chosen.
extern const VerticalScale VERTICAL_SCALES[VERTICAL_SCALE_COUNT];

// Whether the pictures of the next run are to be fine.
bool picture_wish_fine(const AppState *state);

// The vertical scale of the next run.
f32 picture_wish_scale(const AppState *state);

// Chooses one of the two for the runs from the next one on, and says so in the status bar's field for a
// process file until a command changes that. While the program is closing, the field says so and is left
// alone.
void picture_wish_choose_fine(AppState *state, bool fine);
// The other one.
//   index   in VERTICAL_SCALES
void picture_wish_choose_scale(AppState *state, i32 index);

// Gives the application's style what was chosen. For the start of a run, while there is no worker.
void picture_wish_apply(AppState *state);

// Where choices are kept between starts: a section of the window's settings file, and its keys.
inline constexpr const wchar_t *PICTURE_SETTINGS_SECTION = L"picture";
inline constexpr const wchar_t *PICTURE_FINE_KEY = L"fine";
inline constexpr const wchar_t *PICTURE_SCALE_KEY = L"vertical-scale";

// The value that is kept, "0" or "1".
const wchar_t *picture_wish_fine_text(const AppState *state);
// The same for the scale: the text of VERTICAL_SCALES; null when the scale is none of them.
const wchar_t *picture_wish_scale_text(const AppState *state);

// Takes up what was kept, when the style is as the command line wants it: what is no longer plain in the
// style, or was chosen already, stays for this start. Texts that picture_wish_*_text does not give change
// nothing.
//   fine, scale   null for none
void picture_wish_remember(AppState *state, const wchar_t *fine, const wchar_t *scale);
