#include "app/gtk/console_view.h"

#include <cassert>

#include "app/gtk/gtk_desktop.h"
#include "app/gtk/gtk_text.h"
#include "app/gtk/main_thread.h"
#include "platform/thread_role.h"

static constexpr i32 MARGIN = 4;  // pixels

static GtkTextBuffer *buffer_of(const ConsoleView *console) {
    return gtk_text_view_get_buffer(GTK_TEXT_VIEW(console->view));
}

static gboolean scroll_to_end(gpointer) {
    ConsoleView *console = &g_desktop->console;
    console->scroll_idle = 0;
    if (!console->scrolled_away) {
        gtk_text_view_scroll_mark_onscreen(GTK_TEXT_VIEW(console->view), console->end_mark);
    }
    return G_SOURCE_REMOVE;
}

// The text is measured little by little, those of its lines that are on show first. Until all of it is, its
// end is at no certain place. So the end is asked for at once, which is enough for some lines, and again when
// nothing is left to measure, which for many lines takes a while.
static void scroll_later(ConsoleView *console) {
    gtk_text_view_scroll_mark_onscreen(GTK_TEXT_VIEW(console->view), console->end_mark);
    if (console->scroll_idle == 0) {
        console->scroll_idle = g_idle_add_full(G_PRIORITY_DEFAULT_IDLE, scroll_to_end, nullptr, nullptr);
    }
}

// The user looks at another part: for signals of several kinds, none of which it swallows.
static gboolean on_user_scroll(gpointer) {
    g_desktop->console.scrolled_away = true;
    return FALSE;
}

// The end stays on show in a smaller window.
static void on_size(GtkWidget *, GtkAllocation *size, gpointer) {
    ConsoleView *console = &g_desktop->console;
    const bool changed = size->width != console->last_size.width || size->height != console->last_size.height;
    console->last_size = *size;
    if (changed && !console->scrolled_away) {
        scroll_later(console);
    }
}

static void append_on_main_thread(void *text) {
    ConsoleView *console = &g_desktop->console;
    if (console->view == nullptr) {
        return;
    }
    GtkTextIter end;
    gtk_text_buffer_get_end_iter(buffer_of(console), &end);
    gtk_text_buffer_insert(buffer_of(console), &end, static_cast<const char *>(text), -1);
    console->scrolled_away = false;
    scroll_later(console);
}

static void clear_on_main_thread(void *) {
    if (g_desktop->console.view != nullptr) {
        gtk_text_buffer_set_text(buffer_of(&g_desktop->console), "", 0);
    }
}

void console_view_append(const wchar_t *text) {
    assert(text != nullptr);
    const NarrowText lines = gtk_text_lines_from_wide(text);
    main_thread_call(append_on_main_thread, lines.get());
}

void console_view_clear() {
    main_thread_call(clear_on_main_thread, nullptr);
}

static void set_margins(GtkTextView *text_view) {
    gtk_text_view_set_left_margin(text_view, MARGIN);
    gtk_text_view_set_right_margin(text_view, MARGIN);
    gtk_text_view_set_top_margin(text_view, MARGIN);
    gtk_text_view_set_bottom_margin(text_view, MARGIN);
}

static void on_destroy(GtkWidget *widget, gpointer) {
    if (g_desktop->console.scroll_idle != 0) {
        g_source_remove(g_desktop->console.scroll_idle);
    }
    g_desktop->console = {};
    // When it goes, a text changes what it takes as drops, which only one that takes drops may do.
    gtk_drag_dest_set(widget, static_cast<GtkDestDefaults>(0), nullptr, 0, GDK_ACTION_COPY);
}

static void create_end_mark(ConsoleView *console) {
    GtkTextIter end;
    gtk_text_buffer_get_end_iter(buffer_of(console), &end);
    console->end_mark = gtk_text_buffer_create_mark(buffer_of(console), nullptr, &end, FALSE);
}

GtkWidget *console_view_create() {
    assert(thread_role_fits(THREAD_WINDOW));
    GtkWidget *view = gtk_text_view_new();
    g_desktop->console.view = view;
    gtk_text_view_set_editable(GTK_TEXT_VIEW(view), FALSE);
    gtk_text_view_set_monospace(GTK_TEXT_VIEW(view), TRUE);
    gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(view), GTK_WRAP_WORD_CHAR);
    // Tab leaves the console, since nothing can be typed into it.
    gtk_text_view_set_accepts_tab(GTK_TEXT_VIEW(view), FALSE);
    set_margins(GTK_TEXT_VIEW(view));
    atk_object_set_name(gtk_widget_get_accessible(view), "Console");
    create_end_mark(&g_desktop->console);
    // Files that are dropped here are the window's. The text takes drops from when it has its buffer.
    gtk_drag_dest_unset(view);
    g_signal_connect(view, "destroy", G_CALLBACK(on_destroy), nullptr);

    GtkWidget *scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
    gtk_container_add(GTK_CONTAINER(scrolled), view);
    g_signal_connect(scrolled, "size-allocate", G_CALLBACK(on_size), nullptr);
    GtkWidget *bar = gtk_scrolled_window_get_vscrollbar(GTK_SCROLLED_WINDOW(scrolled));
    g_signal_connect_swapped(scrolled, "scroll-event", G_CALLBACK(on_user_scroll), nullptr);
    g_signal_connect_swapped(bar, "change-value", G_CALLBACK(on_user_scroll), nullptr);
    g_signal_connect_swapped(view, "move-cursor", G_CALLBACK(on_user_scroll), nullptr);
    return scrolled;
}
