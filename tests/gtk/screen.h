// screen.h: the X screen as its user has it: keys, mouse, windows and their titles, and the pixels on show.
// Pixels count from the screen's upper-left corner.
#pragma once
#include "tests/gtk/accessible.h"

// A part of the screen, rows from the top; pixels are 0xRRGGBB. Empty when it could not be read.
struct ScreenPicture {
    i32 width, height;
    std::vector<u32> pixels;
};

// Whether there is an X screen.
bool screen_available();
// Pixels.
i32 screen_width();
// Pixels.
i32 screen_height();

// The windows that a program shows, oldest first, by the window manager's list.
std::vector<u64> screen_windows(i32 process);
// UTF-8, as the frame shows it.
std::string screen_title(u64 window);
ScreenBox screen_window_box(u64 window);  // its inside

// What the window's frame offers.
void screen_close_window(u64 window);
// Asks the window manager for another place and size of the window's inside.
void screen_move_resize(u64 window, const ScreenBox &box);

// Presses and releases a key, e.g. "Left", "F10", "alt+l", "slash".
void screen_key(const std::string &key);

// Clicks with a button, the first one being the left.
void screen_click(i32 x, i32 y, u32 button = 1);
// Moves the pointer.
void screen_pointer(i32 x, i32 y);

// Moves the pointer with the button held down.
void screen_drag(i32 from_x, i32 from_y, i32 to_x, i32 to_y);

// Turns the wheel, down for positive steps.
void screen_wheel(i32 x, i32 y, i32 steps);

// What is on show there.
ScreenPicture screen_grab(const ScreenBox &box);
