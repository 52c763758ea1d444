// main_thread.h: what the worker asks of the window, done on the main thread, which alone may call the window
// library. The main thread never waits for the worker.
#pragma once
#include <glib.h>

struct MainThread {
    GThread *thread;  // null before main_thread_start
};

using MainThreadFunction = void (*)(void *argument);

// Makes the calling thread the main thread.
void main_thread_start();

// Whether the calling thread is that one.
bool main_thread_is_here();

// Calls the function on the main thread and returns when it has returned: at once on the main thread itself,
// from elsewhere through its main loop. So the texts and pictures of a run come in their order, and
// `argument` may lie on the caller's stack. Keys, clicks and drawing that wait go first, so that a run with
// much to tell leaves the window responsive.
void main_thread_call(MainThreadFunction function, void *argument);
