#include "app/gtk/picture_clipboard.h"

#include <gtk/gtk.h>

#include <cassert>

#include "platform/thread_role.h"

// Rows from the top; red, green, blue. Freed with g_object_unref; null when memory is lacking.
static GdkPixbuf *pixbuf_of(const PixelImage *picture) {
    GdkPixbuf *pixbuf = gdk_pixbuf_new(GDK_COLORSPACE_RGB, FALSE, 8, picture->width, picture->height);
    if (pixbuf == nullptr) {
        return nullptr;
    }
    guchar *rows = gdk_pixbuf_get_pixels(pixbuf);
    const auto stride = static_cast<size_t>(gdk_pixbuf_get_rowstride(pixbuf));
    for (i32 y = 0; y < picture->height; ++y) {
        const u8 *from = picture->pixels + i64{picture->height - 1 - y} * picture->width * 4;
        guchar *to = rows + static_cast<size_t>(y) * stride;
        for (i32 x = 0; x < picture->width; ++x, from += 4, to += 3) {
            to[0] = from[2];
            to[1] = from[1];
            to[2] = from[0];
        }
    }
    return pixbuf;
}

bool picture_clipboard_set(const PixelImage *picture) {
    assert(thread_role_fits(THREAD_WINDOW) && picture != nullptr && !image_is_empty(picture));
    g_autoptr(GdkPixbuf) pixbuf = pixbuf_of(picture);
    if (pixbuf == nullptr) {
        return false;
    }
    GtkClipboard *clipboard = gtk_clipboard_get(GDK_SELECTION_CLIPBOARD);
    gtk_clipboard_set_image(clipboard, pixbuf);
    gtk_clipboard_set_can_store(clipboard, nullptr, 0);  // it is stored when the main loop ends
    return true;
}
