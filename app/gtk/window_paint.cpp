#include "app/gtk/window_paint.h"

#include <cassert>

#include "platform/thread_role.h"

static constexpr guint LONGEST_MS = 500;

// The wait for one frame.
struct FrameWait {
    GMainLoop *loop;
    GtkWidget *window;
    GdkFrameClock *clock;
    gulong painted;  // the handler of the clock's signal; 0 before the frame is asked for
};

static void on_painted(GdkFrameClock *, gpointer wait) {
    g_main_loop_quit(static_cast<FrameWait *>(wait)->loop);
}

// The main loop is idle: texts are measured and every part has its place. The next frame shows all of it.
static gboolean ask_for_frame(gpointer data) {
    auto *wait = static_cast<FrameWait *>(data);
    wait->painted = g_signal_connect(wait->clock, "after-paint", G_CALLBACK(on_painted), wait);
    gtk_widget_queue_draw(wait->window);
    return G_SOURCE_REMOVE;
}

static gboolean give_up(gpointer wait) {
    g_main_loop_quit(static_cast<FrameWait *>(wait)->loop);
    return G_SOURCE_CONTINUE;
}

void window_paint_now(GtkWidget *window) {
    assert(thread_role_fits(THREAD_WINDOW));
    if (window == nullptr || !gtk_widget_get_mapped(window)) {
        return;
    }
    FrameWait wait = {g_main_loop_new(nullptr, FALSE), window, gtk_widget_get_frame_clock(window), 0};
    g_object_ref(wait.clock);
    const guint limit = g_timeout_add(LONGEST_MS, give_up, &wait);
    const guint idle = g_idle_add_full(G_PRIORITY_DEFAULT_IDLE, ask_for_frame, &wait, nullptr);
    g_main_loop_run(wait.loop);
    if (wait.painted != 0) {
        g_signal_handler_disconnect(wait.clock, wait.painted);
    } else {
        g_source_remove(idle);
    }
    g_source_remove(limit);
    g_object_unref(wait.clock);
    g_main_loop_unref(wait.loop);
    gdk_display_sync(gtk_widget_get_display(window));  // what was drawn has left the program
}
