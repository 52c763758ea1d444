// message_box.h: message boxes of the program.
#pragma once
#include <atomic>

struct MessageBoxes {
    std::atomic<bool> memory_failed;  // the box for lack of memory is up
};

// Makes the message boxes of the whole program, also the one for lack of memory, boxes of Windows.
void message_box_install();

// Whether the box for lack of memory is up, after which the program ends: what the window does meanwhile
// should need no memory.
bool message_box_is_last();

// Tells about the program.
void message_box_about();
