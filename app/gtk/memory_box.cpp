#include "app/gtk/memory_box.h"

#include <fcntl.h>
#include <glib-unix.h>
#include <unistd.h>

#include <cassert>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <initializer_list>

#include "app/gtk/gtk_desktop.h"
#include "platform/memory.h"
#include "platform/thread_role.h"

// What showing a box takes of the window library, and more.
static constexpr size_t RESERVE_BYTES = size_t{8} * 1024 * 1024;

// No destructors: other threads may still be at work, and nothing more can be saved.
[[noreturn]] static void end_now() {
    _exit(-1);
}

static void on_fatal_signal(int) {
    end_now();
}

// Where an allocation of the window library fails it stops the program by one of the first three; by the
// others the user does, and the window can no longer be closed in good order.
static void end_at_signals() {
    for (const int signal : {SIGABRT, SIGTRAP, SIGSEGV, SIGINT, SIGTERM, SIGHUP}) {
        std::signal(signal, on_fatal_signal);
    }
}

static void write_line(const char *message) {
    for (const char *part : {"quarn: ", message, "\n"}) {
        if (write(STDERR_FILENO, part, std::strlen(part)) < 0) {
            return;
        }
    }
}

// Main thread. The box keeps the user from the window, whose run cannot go on.
[[noreturn]] static void show_box() {
    MemoryBox *memory = &g_desktop->memory_box;
    if (memory->on_show) {
        end_now();  // something that went on behind the box lacks memory too
    }
    memory->on_show = true;
    end_at_signals();
    std::free(memory->reserve);
    g_object_set(memory->box, "text", memory->failure.load(), nullptr);
    gtk_dialog_run(GTK_DIALOG(memory->box));
    memory_end_beside_threads(-1);
}

static gboolean on_request(gint, GIOCondition, gpointer) {
    show_box();
}

void memory_box_show(const char *message) {
    const char *none = nullptr;
    MemoryBox *memory = &g_desktop->memory_box;
    const bool first = memory->failure.compare_exchange_strong(none, message);
    if (first) {
        write_line(message);
    }
    if (memory->box == nullptr) {
        return;  // the program ends without it
    }
    if (main_thread_is_here()) {
        show_box();
    }
    // The main thread never waits for this one, so the box comes, and with it the end.
    if (!first || write(memory->request_pipe[1], "", 1) == 1) {
        for (;;) {
            pause();
        }
    }
    end_now();
}

static GtkWidget *realized_box() {
    GtkWidget *box =
        gtk_message_dialog_new(nullptr, GTK_DIALOG_MODAL, GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, "%s", "");
    gtk_window_set_title(GTK_WINDOW(box), PROGRAM_NAME);
    gtk_window_set_position(GTK_WINDOW(box), GTK_WIN_POS_CENTER);
    gtk_widget_realize(box);
    return box;
}

void memory_box_create() {
    assert(thread_role_fits(THREAD_WINDOW));
    MemoryBox *memory = &g_desktop->memory_box;
    memory->reserve = std::malloc(RESERVE_BYTES);
    if (memory->reserve == nullptr || pipe2(memory->request_pipe, O_CLOEXEC) != 0) {
        return;  // there will be a line on the terminal, and no box
    }
    // Pages that were never written may not be there when needed.
    std::memset(memory->reserve, 1, RESERVE_BYTES);
    memory->box = realized_box();
    g_unix_fd_add(memory->request_pipe[0], G_IO_IN, on_request, nullptr);
}
