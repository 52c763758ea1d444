#include "app/gtk/main_thread.h"

#include <glib.h>

#include <cassert>

#include "app/gtk/gtk_desktop.h"
#include "platform/thread_role.h"

// One call under way, on the stack of the thread that waits for it.
struct MainThreadCall {
    MainThreadFunction function;
    void *argument;
    GMutex mutex;
    GCond returned;
    bool done;  // under the mutex
};

void main_thread_start() {
    assert(thread_role_fits(THREAD_WINDOW));
    g_desktop->main_thread.thread = g_thread_self();
}

bool main_thread_is_here() {
    return g_thread_self() == g_desktop->main_thread.thread;
}

static gboolean run_call(gpointer data) {
    auto *call = static_cast<MainThreadCall *>(data);
    call->function(call->argument);
    g_mutex_lock(&call->mutex);
    call->done = true;
    g_cond_signal(&call->returned);
    g_mutex_unlock(&call->mutex);
    return G_SOURCE_REMOVE;
}

void main_thread_call(MainThreadFunction function, void *argument) {
    assert(function != nullptr);
    if (main_thread_is_here()) {
        function(argument);
        return;
    }
    MainThreadCall call = {};
    call.function = function;
    call.argument = argument;
    g_mutex_init(&call.mutex);
    g_cond_init(&call.returned);
    g_idle_add_full(G_PRIORITY_DEFAULT_IDLE, run_call, &call, nullptr);
    g_mutex_lock(&call.mutex);
    while (!call.done) {
        g_cond_wait(&call.returned, &call.mutex);
    }
    g_mutex_unlock(&call.mutex);
    g_cond_clear(&call.returned);
    g_mutex_clear(&call.mutex);
}
