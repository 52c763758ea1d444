// Asks for a folder as the window does, after the folder of the first argument could not be written, and
// prints what was chosen. SIGTERM cancels, as closing the program does.
#include <glib-unix.h>
#include <gtk/gtk.h>

#include <csignal>
#include <cstdio>

#include "app/gtk/gtk_desktop.h"
#include "app/gtk/gtk_frontend.h"
#include "platform/memory.h"

static gboolean cancel(gpointer) {
    file_dialog_cancel();
    return G_SOURCE_REMOVE;
}

int main(int argc, char **argv) {
    gtk_init(&argc, &argv);
    AppState state = {};
    GtkDesktop desktop = {};
    desktop.state = &state;
    g_desktop = &desktop;
    state.main_window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    gtk_widget_show(static_cast<GtkWidget *>(state.main_window));
    g_unix_signal_add(SIGTERM, cancel, nullptr);
    const WideText failed = platform_wide_from_system(argv[1]);
    const Owned<WString> chosen(GTK_FRONTEND.choose_folder(&state, failed.get()));
    const NarrowText name =
        platform_system_from_wide(chosen != nullptr ? wstring_text(chosen.get()) : L"(none)");
    std::printf("%s", name.get());
    gtk_widget_destroy(static_cast<GtkWidget *>(state.main_window));
    return 0;
}
