// memory_box.h: the message that ends the program when memory is lacking. Everything for it is made while
// there is memory, since the window library ends the program its own way when an allocation fails.
#pragma once
#include <gtk/gtk.h>

#include <atomic>

struct MemoryBox {
    GtkWidget *box;                     // null: there is none to show
    void *reserve;                      // given back for showing the box
    int request_pipe[2];                // a byte asks the main thread for the box
    std::atomic<const char *> failure;  // the message of the first thread that had none
    bool on_show;
};

// Makes the box. Main thread, once the window library is ready and before any worker.
void memory_box_create();

// Hook for lack of memory (platform/memory.h): writes the message to standard error, shows the box, and ends
// the program with exit code -1 when the user has read it. Where not even the box can be shown the program
// ends without it. Any thread.
void memory_box_show(const char *message);
