// window_scale.h: how large things are in the window. Its measures are given in pixels of a screen of 96 dots
// per inch (a scale of 100 %), and all of them grow alike with the scale that the user has chosen for the
// screen, as the menu, the boxes and the dialogs do, which the system draws. User-interface thread.
#pragma once
#include "platform/base.h"

// Dots per inch at a scale of 100 %.
inline constexpr i32 SCALE_PLAIN_DPI = 96;

struct WindowScale {
    i32 dots_per_inch;  // of the main screen, from the start of the program to its end
};

// Asks the system for the scale, before the first window is made. The scale does not change while the program
// runs: where a part of the desktop has another one, the system stretches the window as a whole.
void window_scale_read();

// A measure at the scale of this screen.
//   pixels   at 100 %, not negative
// Returns pixels of this screen, rounded to the nearest, halves up.
i32 window_scaled(i32 pixels);
