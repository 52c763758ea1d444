// Writes the picture in the clipboard to the file of the first argument: width and height as a line of text,
// then red, green and blue of each pixel, rows from the top. Without a picture it writes nothing and ends
// with 2.
#include <gtk/gtk.h>

#include <cstdio>

int main(int argc, char **argv) {
    gtk_init(&argc, &argv);
    g_autoptr(GdkPixbuf) picture = gtk_clipboard_wait_for_image(gtk_clipboard_get(GDK_SELECTION_CLIPBOARD));
    if (picture == nullptr) {
        return 2;
    }
    std::FILE *file = std::fopen(argv[1], "wb");
    if (file == nullptr) {
        return 1;
    }
    const int width = gdk_pixbuf_get_width(picture);
    const int height = gdk_pixbuf_get_height(picture);
    const int channels = gdk_pixbuf_get_n_channels(picture);
    std::fprintf(file, "%d %d\n", width, height);
    for (int y = 0; y < height; ++y) {
        const guint8 *row = gdk_pixbuf_read_pixels(picture) +
                            static_cast<size_t>(y) * static_cast<size_t>(gdk_pixbuf_get_rowstride(picture));
        for (int x = 0; x < width; ++x) {
            std::fwrite(row + x * channels, 1, 3, file);
        }
    }
    return std::fclose(file) == 0 ? 0 : 1;
}
