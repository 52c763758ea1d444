// accessible.h: reads the windows of another program as a screen reader does, through the desktop's
// accessibility bus. Nothing is kept between calls, so every answer is the program's state of that moment. A
// program that does not answer within some seconds gives empty answers.
#pragma once
#include <string>
#include <vector>

#include "platform/base.h"

// One thing on show: a window, a button, a text. An empty path: nothing.
struct Accessible {
    std::string bus;
    std::string path;
};

// Pixels; from the screen's upper-left corner.
struct ScreenBox {
    i32 x, y, width, height;
};

// States by their number on the bus.
enum AccessibleState {
    STATE_ACTIVE = 1,  // of a window: the keys go to it
    STATE_CHECKED = 4,
    STATE_FOCUSED = 12,
    STATE_SENSITIVE = 24,  // not greyed
    STATE_SHOWING = 25,
};

// The program with this process number; nothing when it has not told the bus about itself (yet).
Accessible accessible_program(i32 process);

// Whether something was found.
bool accessible_exists(const Accessible &thing);
// What lies in it; nothing where it is gone.
std::vector<Accessible> accessible_children(const Accessible &thing);
// As a screen reader calls it.
std::string accessible_name(const Accessible &thing);
// What a screen reader says beyond the name.
std::string accessible_description(const Accessible &thing);
std::string accessible_role(const Accessible &thing);  // "frame", "menu item", "push button", ...
// Whether it is in a state; false where it is gone.
bool accessible_has_state(const Accessible &thing, AccessibleState state);
// Its place on the screen.
ScreenBox accessible_box(const Accessible &thing);

// The same from the upper-left corner of its window, in the window's own pixels, of which the screen may have
// several for one.
ScreenBox accessible_box_in_window(const Accessible &thing);

// The whole text of a text field or console; of a label its words.
std::string accessible_text(const Accessible &thing);
// Replaces the text of a field. Whether that was accepted.
bool accessible_set_text(const Accessible &thing, const std::string &text);

ScreenBox accessible_character_box(const Accessible &thing, i32 index);  // place of one character of it

// Does what a click would: the first action of the thing.
bool accessible_activate(const Accessible &thing);

// The first thing at or below `root`, depth first, of that role (empty: any) and name ("*": any) that is
// showing; nothing when there is none.
Accessible accessible_find(const Accessible &root, const std::string &role, const std::string &name);

// Every one of them.
std::vector<Accessible> accessible_find_all(const Accessible &root, const std::string &role);

// Roles and names of all at or below `root`, a line each, for messages of tests.
std::string accessible_tree(const Accessible &root);
