#include "app/gtk/message_dialog.h"

#include <gtk/gtk.h>

#include "app/app_state.h"
#include "app/gtk/gtk_text.h"
#include "app/gtk/main_thread.h"
#include "app/window_texts.h"

static GtkWidget *message_on_show = nullptr;

// The main window while it is on show; boxes are in front of it.
static GtkWindow *parent_window() {
    auto *window = g_app != nullptr ? static_cast<GtkWidget *>(g_app->main_window) : nullptr;
    return window != nullptr && gtk_widget_get_visible(window) ? GTK_WINDOW(window) : nullptr;
}

static GtkWidget *create_box(GtkMessageType type, const char *caption, const char *text) {
    auto flags = static_cast<GtkDialogFlags>(GTK_DIALOG_MODAL | GTK_DIALOG_DESTROY_WITH_PARENT);
    GtkWidget *box = gtk_message_dialog_new(parent_window(), flags, type, GTK_BUTTONS_OK, "%s", text);
    gtk_window_set_title(GTK_WINDOW(box), caption);
    return box;
}

static void show_on_main_thread(void *text) {
    GtkWidget *box = create_box(GTK_MESSAGE_ERROR, PROGRAM_NAME, static_cast<const char *>(text));
    GtkWidget *outer = message_on_show;
    message_on_show = box;
    gtk_dialog_run(GTK_DIALOG(box));
    message_on_show = outer;
    gtk_widget_destroy(box);
}

void message_dialog_show(const wchar_t *text) {
    char *message = gtk_text_from_wide(text);
    main_thread_call(show_on_main_thread, message);
    g_free(message);
}

void message_dialog_cancel() {
    if (message_on_show != nullptr) {
        gtk_dialog_response(GTK_DIALOG(message_on_show), GTK_RESPONSE_CLOSE);
    }
}

void about_dialog_show() {
    NString *caption = about_caption();
    GtkWidget *box = create_box(GTK_MESSAGE_INFO, nstring_text(caption), ABOUT_TEXT);
    nstring_free(caption);
    g_signal_connect(box, "response", G_CALLBACK(gtk_widget_destroy), nullptr);
    gtk_widget_show(box);
}
