// Another program that takes the picture in the clipboard, and writes it to the file of its last argument:
// width and height as a line of text, then red, green and blue of each pixel, rows from the top. Without a
// picture it writes nothing and ends with 2. With --png before the file it writes the bytes of the
// clipboard's PNG instead. With --keep before the file it is the one that keeps clipboards for programs that
// end: it prints "ready", and takes the picture when it is asked to.
#include <gtk/gtk.h>

#include <cstdio>
#include <cstring>

static int write_picture(const char *path) {
    g_autoptr(GdkPixbuf) picture = gtk_clipboard_wait_for_image(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD));
    if (picture == nullptr) {
        return 2;
    }
    std::FILE *file = std::fopen(path, "wb");
    if (file == nullptr) {
        return 1;
    }
    const int width = gdk_pixbuf_get_width(picture);
    const int height = gdk_pixbuf_get_height(picture);
    const auto channels = static_cast<size_t>(gdk_pixbuf_get_n_channels(picture));
    const auto stride = static_cast<size_t>(gdk_pixbuf_get_rowstride(picture));
    std::fprintf(file, "%d %d\n", width, height);
    for (size_t y = 0; y < static_cast<size_t>(height); ++y) {
        for (size_t x = 0; x < static_cast<size_t>(width); ++x) {
            std::fwrite(gdk_pixbuf_read_pixels(picture) + y * stride + x * channels, 1, 3, file);
        }
    }
    return std::fclose(file) == 0 ? 0 : 1;
}

static int write_png(const char *path) {
    const GdkAtom format = gdk_atom_intern("image/png", FALSE);
    GtkSelectionData *data =
        gtk_clipboard_wait_for_contents(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD), format);
    gint size = 0;
    const guchar *bytes = data != nullptr ? gtk_selection_data_get_data_with_length(data, &size) : nullptr;
    std::FILE *file = bytes != nullptr && size > 0 ? std::fopen(path, "wb") : nullptr;
    int result = 2;
    if (file != nullptr) {
        const bool written =
            std::fwrite(bytes, 1, static_cast<size_t>(size), file) == static_cast<size_t>(size);
        result = std::fclose(file) == 0 && written ? 0 : 1;
    }
    if (data != nullptr) {
        gtk_selection_data_free(data);
    }
    return result;
}

struct Keeper {
    const char *path;
    int result;
};

static gboolean end_main_loop(gpointer) {
    gtk_main_quit();
    return G_SOURCE_REMOVE;
}

// A program that is about to end asks; what the library does after this gives the answer.
static gboolean on_request(GtkWidget *, GdkEventSelection *request, gpointer data) {
    if (request->target == gdk_atom_intern("SAVE_TARGETS", FALSE)) {
        auto *keeper = static_cast<Keeper *>(data);
        keeper->result = write_picture(keeper->path);
        g_idle_add(end_main_loop, nullptr);
    }
    return FALSE;
}

static int keep(const char *path) {
    Keeper keeper = {path, 2};
    GtkWidget *window = gtk_invisible_new();
    const GdkAtom manager = gdk_atom_intern("CLIPBOARD_MANAGER", FALSE);
    g_signal_connect(window, "selection-request-event", G_CALLBACK(on_request), &keeper);
    if (!gtk_selection_owner_set(window, manager, GDK_CURRENT_TIME)) {
        return 1;
    }
    gdk_display_sync(gdk_display_get_default());
    std::puts("ready");
    std::fflush(stdout);
    gtk_main();
    return keeper.result;
}

int main(int argc, char **argv) {
    gtk_init(&argc, &argv);
    if (argc == 3 && std::strcmp(argv[1], "--keep") == 0) {
        return keep(argv[2]);
    }
    if (argc == 3 && std::strcmp(argv[1], "--png") == 0) {
        return write_png(argv[2]);
    }
    return argc == 2 ? write_picture(argv[1]) : 1;
}
