#include "app/gtk/console_view.h"

#include "app/gtk/gtk_text.h"
#include "app/gtk/main_thread.h"

static constexpr i32 MARGIN = 4;  // pixels

static GtkWidget *view = nullptr;
static GtkTextMark *end_mark = nullptr;  // stays behind the last character

static GtkTextBuffer *buffer() {
    return gtk_text_view_get_buffer(GTK_TEXT_VIEW(view));
}

static void append_on_main_thread(void *text) {
    GtkTextIter end;
    gtk_text_buffer_get_end_iter(buffer(), &end);
    gtk_text_buffer_insert(buffer(), &end, static_cast<const char *>(text), -1);
    // Done when the lines on show are next measured. Asked for right here, since a request that comes after
    // that measuring waits for the next text.
    gtk_text_view_scroll_mark_onscreen(GTK_TEXT_VIEW(view), end_mark);
}

static void clear_on_main_thread(void *) {
    gtk_text_buffer_set_text(buffer(), "", 0);
}

void console_view_append(const wchar_t *text) {
    char *lines = gtk_text_lines_from_wide(text);
    main_thread_call(append_on_main_thread, lines);
    g_free(lines);
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

// When it goes, a text changes what it takes as drops, which only one that takes drops may do.
static void take_drops_again(GtkWidget *widget, gpointer) {
    gtk_drag_dest_set(widget, static_cast<GtkDestDefaults>(0), nullptr, 0, GDK_ACTION_COPY);
}

// A text takes drops from when it has its buffer.
static void leave_drops_to_window() {
    gtk_drag_dest_unset(view);
    g_signal_connect(view, "destroy", G_CALLBACK(take_drops_again), nullptr);
}

GtkWidget *console_view_create() {
    view = gtk_text_view_new();
    gtk_text_view_set_editable(GTK_TEXT_VIEW(view), FALSE);
    gtk_text_view_set_monospace(GTK_TEXT_VIEW(view), TRUE);
    gtk_text_view_set_wrap_mode(GTK_TEXT_VIEW(view), GTK_WRAP_WORD_CHAR);
    // Tab leaves the console, since nothing can be typed into it.
    gtk_text_view_set_accepts_tab(GTK_TEXT_VIEW(view), FALSE);
    set_margins(GTK_TEXT_VIEW(view));
    atk_object_set_name(gtk_widget_get_accessible(view), "Console");
    GtkTextIter end;
    gtk_text_buffer_get_end_iter(buffer(), &end);
    end_mark = gtk_text_buffer_create_mark(buffer(), nullptr, &end, FALSE);
    leave_drops_to_window();

    GtkWidget *scrolled = gtk_scrolled_window_new(nullptr, nullptr);
    gtk_scrolled_window_set_policy(GTK_SCROLLED_WINDOW(scrolled), GTK_POLICY_NEVER, GTK_POLICY_AUTOMATIC);
    gtk_scrolled_window_set_shadow_type(GTK_SCROLLED_WINDOW(scrolled), GTK_SHADOW_IN);
    gtk_container_add(GTK_CONTAINER(scrolled), view);
    return scrolled;
}
