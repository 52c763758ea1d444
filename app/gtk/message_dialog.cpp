#include "app/gtk/message_dialog.h"

#include <cassert>

#include "app/gtk/gtk_desktop.h"
#include "app/gtk/gtk_text.h"
#include "app/gtk/main_thread.h"
#include "app/window_texts.h"
#include "platform/thread_role.h"

// The main window while it is on show; boxes are in front of it.
static GtkWindow *parent_window() {
    const AppState *state = g_desktop->state;
    auto *window = state != nullptr ? static_cast<GtkWidget *>(state->main_window) : nullptr;
    return window != nullptr && gtk_widget_get_visible(window) ? GTK_WINDOW(window) : nullptr;
}

static GtkWidget *create_box(GtkMessageType type, GtkButtonsType buttons, const char *caption,
                             const char *text) {
    const auto flags = static_cast<GtkDialogFlags>(GTK_DIALOG_MODAL | GTK_DIALOG_DESTROY_WITH_PARENT);
    GtkWidget *box = gtk_message_dialog_new(parent_window(), flags, type, buttons, "%s", text);
    gtk_window_set_title(GTK_WINDOW(box), caption);
    return box;
}

// Lets the main loop run until the box, which is destroyed then, has its answer.
static gint run_box(GtkWidget *box) {
    GtkWidget *outer = g_desktop->messages.on_show;
    g_desktop->messages.on_show = box;
    const gint response = gtk_dialog_run(GTK_DIALOG(box));
    g_desktop->messages.on_show = outer;
    gtk_widget_destroy(box);
    return response;
}

static void show_on_main_thread(void *text) {
    run_box(create_box(GTK_MESSAGE_ERROR, GTK_BUTTONS_OK, PROGRAM_NAME, static_cast<const char *>(text)));
}

void message_dialog_show(const wchar_t *text) {
    const NarrowText message = gtk_text_from_wide(text);
    main_thread_call(show_on_main_thread, message.get());
}

bool message_dialog_ask(const wchar_t *text) {
    assert(thread_role_fits(THREAD_WINDOW) && text != nullptr);
    const NarrowText question = gtk_text_from_wide(text);
    GtkWidget *box = create_box(GTK_MESSAGE_QUESTION, GTK_BUTTONS_OK_CANCEL, PROGRAM_NAME, question.get());
    gtk_dialog_set_default_response(GTK_DIALOG(box), GTK_RESPONSE_CANCEL);
    return run_box(box) == GTK_RESPONSE_OK;
}

void message_dialog_cancel() {
    assert(thread_role_fits(THREAD_WINDOW));
    if (g_desktop->messages.on_show != nullptr) {
        gtk_dialog_response(GTK_DIALOG(g_desktop->messages.on_show), GTK_RESPONSE_CLOSE);
    }
}

void about_dialog_show() {
    assert(thread_role_fits(THREAD_WINDOW));
    const Owned<NString> caption(about_caption());
    GtkWidget *box = create_box(GTK_MESSAGE_INFO, GTK_BUTTONS_OK, nstring_text(caption.get()), ABOUT_TEXT);
    g_signal_connect(box, "response", G_CALLBACK(gtk_widget_destroy), nullptr);
    gtk_widget_show(box);
}
