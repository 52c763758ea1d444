// thread_role.h: which thread a function belongs to, for asserts. A program has one thread that its user
// interface (or its command line) runs on and, during a run, one worker.
#pragma once
#include "platform/base.h"

enum ThreadRole {
    THREAD_UNNAMED = 0,  // has not said what it is: a test, a benchmark, a thread of a library
    THREAD_WINDOW,       // owns the windows, the menu, the console and the application state
    THREAD_WORKER,       // runs the steps
};

// Says what the calling thread is, from here on.
void thread_role_set(ThreadRole role);

// For asserts: false only on a thread that has said to be another one.
bool thread_role_fits(ThreadRole role);
