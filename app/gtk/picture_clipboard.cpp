#include "app/gtk/picture_clipboard.h"

#include <gtk/gtk.h>

#include <cassert>

#include "image/image_on_white.h"
#include "image/png.h"
#include "platform/thread_role.h"

static const char *const PNG_TARGET = "image/png";

// Rows from the top; red, green, blue, on white. Freed with g_object_unref; null when memory is lacking.
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
            const u32 alpha = picture->transparent ? from[3] : 255;
            to[0] = color_over_white(from[2], alpha);
            to[1] = color_over_white(from[1], alpha);
            to[2] = color_over_white(from[0], alpha);
        }
    }
    return pixbuf;
}

// Another program asks for the picture in one of the formats. Without memory for it there is no answer.
static void on_asked(GtkClipboard *, GtkSelectionData *answer, guint, gpointer data) {
    const auto *picture = static_cast<const PixelImage *>(data);
    const GdkAtom target = gtk_selection_data_get_target(answer);
    if (target == gdk_atom_intern_static_string(PNG_TARGET)) {
        i64 size = 0;
        const Owned<u8[]> bytes = png_try_encode(picture, &size);
        if (bytes != nullptr && size <= G_MAXINT) {
            gtk_selection_data_set(answer, target, 8, bytes.get(), static_cast<gint>(size));
        }
        return;
    }
    g_autoptr(GdkPixbuf) pixbuf = pixbuf_of(picture);
    if (pixbuf != nullptr) {
        gtk_selection_data_set_pixbuf(answer, pixbuf);
    }
}

static void on_replaced(GtkClipboard *, gpointer data) {
    image_free(static_cast<PixelImage *>(data));
}

bool picture_clipboard_set(Owned<PixelImage> picture) {
    assert(thread_role_fits(THREAD_WINDOW) && picture != nullptr && !image_is_empty(picture.get()));
    g_autoptr(GtkTargetList) formats = gtk_target_list_new(nullptr, 0);
    gtk_target_list_add_image_targets(formats, 0, TRUE);  // PNG is the first of them
    gint count = 0;
    GtkTargetEntry *table = gtk_target_table_new_from_list(formats, &count);
    GtkClipboard *clipboard = gtk_clipboard_get(GDK_SELECTION_CLIPBOARD);
    const bool taken = gtk_clipboard_set_with_data(clipboard, table, static_cast<guint>(count), on_asked,
                                                   on_replaced, picture.get()) != FALSE;
    gtk_target_table_free(table, count);
    if (taken) {
        static_cast<void>(picture.release());                // until on_replaced
        gtk_clipboard_set_can_store(clipboard, nullptr, 0);  // it is stored when the main loop ends
    }
    return taken;
}
