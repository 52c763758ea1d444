// message_box.h: message boxes of the program.
#pragma once
#include <atomic>

struct MessageBoxes {
    std::atomic<bool> memory_failed;  // the box for lack of memory is up
};

// Sink of message boxes (log/log.h). Any thread.
void message_box_show(const wchar_t *text);

// Hook for lack of memory (platform/memory.h). Any thread.
void message_box_show_memory_failure(const char *message);

// Whether the box for lack of memory is up, after which the program ends: what the window does meanwhile
// should need no memory.
bool message_box_is_last();

// Tells about the program.
void message_box_about();
