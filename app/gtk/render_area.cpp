#include "app/gtk/render_area.h"

#include <cassert>
#include <cstring>

#include "app/gtk/gtk_desktop.h"
#include "app/gtk/gtk_text.h"
#include "app/presentation.h"
#include "image/image_on_white.h"
#include "image/image_pack.h"
#include "image/image_smooth.h"
#include "log/log.h"
#include "platform/thread_role.h"

static void drop_scaled(RenderArea *area) {
    if (area->scaled != nullptr) {
        cairo_surface_destroy(area->scaled);
        area->scaled = nullptr;
    }
}

// Fine lines and figures survive in a smaller picture; a larger one stays sharp.
static PixelImage *scaled_picture(const PixelImage *picture, f32 scale) {
    return scale < 1.0F ? image_scale_smooth(picture, scale) : image_scale(picture, scale);
}

// Right way up, opaque.
static cairo_surface_t *surface_of(const PixelImage *image) {
    cairo_surface_t *surface = cairo_image_surface_create(CAIRO_FORMAT_RGB24, image->width, image->height);
    if (cairo_surface_status(surface) != CAIRO_STATUS_SUCCESS) {
        return surface;  // draws nothing
    }
    cairo_surface_flush(surface);
    u8 *rows = cairo_image_surface_get_data(surface);
    const size_t row_size = static_cast<size_t>(image->width) * 4;
    const size_t stride = static_cast<size_t>(cairo_image_surface_get_stride(surface));
    for (i32 y = 0; y < image->height; ++y) {
        const u8 *from = image->pixels + row_size * static_cast<size_t>(image->height - 1 - y);
        u8 *to = rows + static_cast<size_t>(y) * stride;
        for (i32 x = 0; x < image->width; ++x) {
            u32 pixel = static_cast<u32>(from[0] | (from[1] << 8) | (from[2] << 16));
            std::memcpy(to, &pixel, sizeof(pixel));
            from += 4;
            to += sizeof(pixel);
        }
    }
    cairo_surface_mark_dirty(surface);
    return surface;
}

static void draw_picture(RenderArea *area, cairo_t *cairo, i32 pixel_scale) {
    const PicturePlace place =
        picture_place(area->picture->width, area->picture->height, area->width, area->height);
    if (place.width < 1 || place.height < 1) {
        return;
    }
    if (area->scaled == nullptr) {
        const Owned<PixelImage> scaled(scaled_picture(area->picture, place.scale));
        area->scaled = surface_of(scaled.get());
    }
    const i32 top = area->height - place.y - place.height;
    cairo_surface_set_device_scale(area->scaled, pixel_scale, pixel_scale);
    cairo_set_source_surface(cairo, area->scaled, static_cast<f64>(place.x) / pixel_scale,
                             static_cast<f64>(top) / pixel_scale);
    cairo_pattern_set_filter(cairo_get_source(cairo), CAIRO_FILTER_NEAREST);
    cairo_paint(cairo);
}

// The area's size in pixels of the screen; another size needs another scaled picture.
static void update_size(AppState *state) {
    RenderArea *area = &g_desktop->area;
    const i32 pixel_scale = gtk_widget_get_scale_factor(area->widget);
    const i32 width = gtk_widget_get_allocated_width(area->widget) * pixel_scale;
    const i32 height = gtk_widget_get_allocated_height(area->widget) * pixel_scale;
    if (width != area->width || height != area->height) {
        drop_scaled(area);
    }
    area->width = width;
    area->height = height;
    state->render_width = width;
    state->render_height = height;
}

// Takes the picture over, or none.
static void keep_picture(RenderArea *area, PixelImage *picture) {
    drop_scaled(area);
    image_free(area->picture);
    area->picture = picture;
    if (picture != nullptr) {
        image_lay_on_white(picture);
    }
}

static gboolean on_draw(GtkWidget *widget, cairo_t *cairo, gpointer state) {
    RenderArea *area = &g_desktop->area;
    update_size(static_cast<AppState *>(state));
    // The background of every picture, whatever the theme's is.
    cairo_set_source_rgb(cairo, 1.0, 1.0, 1.0);
    cairo_paint(cairo);
    if (area->picture != nullptr) {
        draw_picture(area, cairo, gtk_widget_get_scale_factor(widget));
    } else {
        log_write(L"No bitmap to render");
    }
    return TRUE;
}

static void on_size(GtkWidget *, GdkRectangle *, gpointer state) {
    update_size(static_cast<AppState *>(state));
}

static gboolean on_wheel(GtkWidget *, GdkEvent *event, gpointer console) {
    return gtk_widget_event(static_cast<GtkWidget *>(console), event);
}

static void on_destroy(GtkWidget *, gpointer) {
    drop_scaled(&g_desktop->area);
    image_free(g_desktop->area.picture);
    g_desktop->area = {};
}

GtkWidget *render_area_create(AppState *state, GtkWidget *console) {
    assert(thread_role_fits(THREAD_WINDOW) && state != nullptr && console != nullptr);
    GtkWidget *widget = gtk_drawing_area_new();
    g_desktop->area.widget = widget;
    gtk_widget_add_events(widget, GDK_SCROLL_MASK | GDK_SMOOTH_SCROLL_MASK);
    g_signal_connect(widget, "draw", G_CALLBACK(on_draw), state);
    g_signal_connect(widget, "size-allocate", G_CALLBACK(on_size), state);
    g_signal_connect(widget, "scroll-event", G_CALLBACK(on_wheel), console);
    g_signal_connect(widget, "destroy", G_CALLBACK(on_destroy), nullptr);
    AtkObject *accessible = gtk_widget_get_accessible(widget);
    atk_object_set_name(accessible, "Cross section");
    atk_object_set_role(accessible, ATK_ROLE_IMAGE);
    return widget;
}

void render_area_show(const PixelImage *picture) {
    assert(thread_role_fits(THREAD_WINDOW));
    RenderArea *area = &g_desktop->area;
    if (area->widget == nullptr) {
        return;
    }
    keep_picture(area, picture != nullptr ? image_unpack(picture) : nullptr);
    const NarrowText description =
        gtk_text_from_wide(picture != nullptr ? wstring_text(picture->title) : nullptr);
    atk_object_set_description(gtk_widget_get_accessible(area->widget), description.get());
    gtk_widget_queue_draw(area->widget);
}
