#include "app/gtk/main_window.h"

#include <cassert>

#include "app/gtk/desktop_commands.h"
#include "app/gtk/drop_target.h"
#include "app/gtk/gtk_desktop.h"
#include "app/gtk/window_settings.h"
#include "app/window_texts.h"
#include "log/log.h"
#include "platform/thread_role.h"

// The smallest inside below the menu bar that shows something of every part.
static constexpr i32 SMALLEST_WIDTH = 320;
static constexpr i32 SMALLEST_HEIGHT = 240;

static gboolean on_close(GtkWidget *, GdkEvent *, gpointer state) {
    desktop_close(static_cast<AppState *>(state));
    return TRUE;  // the window stays until the main loop has ended
}

static i32 status_bar_height() {
    gint height = 0;
    gtk_widget_get_preferred_height(g_desktop->parts.status_bar, nullptr, &height);
    return height;
}

// Where a part lies below the menu bar.
static gboolean place_part(GtkOverlay *overlay, GtkWidget *part, GdkRectangle *place, gpointer) {
    const i32 height = gtk_widget_get_allocated_height(GTK_WIDGET(overlay));
    const i32 status_height = status_bar_height();
    place->x = 0;
    place->width = gtk_widget_get_allocated_width(GTK_WIDGET(overlay));
    if (part == g_desktop->parts.status_bar) {
        place->y = height - status_height;
        place->height = status_height;
    } else {
        place->y = 0;
        place->height = MAX(1, height - status_height);
        divider_place(place->height, height);
    }
    return TRUE;
}

// An overlay lays its parts out by a function of ours; they do not overlap.
static GtkWidget *create_body(AppState *state) {
    GtkWidget *body = gtk_overlay_new();
    GtkWidget *ground = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 0);
    gtk_widget_set_size_request(ground, SMALLEST_WIDTH, SMALLEST_HEIGHT);
    gtk_container_add(GTK_CONTAINER(body), ground);
    g_signal_connect(body, "get-child-position", G_CALLBACK(place_part), nullptr);
    log_write(L"Register the render window");
    GtkWidget *console = console_view_create();
    g_desktop->parts = {render_area_create(state, console), status_bar_create()};
    const WindowSettings settings = window_settings_read(state);
    GtkWidget *upper_parts = divider_create(g_desktop->parts.render_area, console, settings.render_share);
    gtk_overlay_add_overlay(GTK_OVERLAY(body), upper_parts);
    gtk_overlay_add_overlay(GTK_OVERLAY(body), g_desktop->parts.status_bar);
    return body;
}

// The usual size, or that of the smallest screen if it is smaller.
static void set_start_size(GtkWindow *window) {
    GdkDisplay *display = gdk_display_get_default();
    i32 width = WINDOW_WIDTH;
    i32 height = WINDOW_HEIGHT;
    for (i32 i = 0; i < gdk_display_get_n_monitors(display); ++i) {
        GdkRectangle area = {};
        gdk_monitor_get_workarea(gdk_display_get_monitor(display, i), &area);
        if (area.width > 0 && area.height > 0) {
            width = MIN(width, area.width);
            height = MIN(height, area.height);
        }
    }
    gtk_window_set_default_size(window, width, height);
    gtk_window_set_position(window, GTK_WIN_POS_CENTER);
}

void main_window_create(AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW) && state->main_window == nullptr);
    GtkWidget *window = gtk_window_new(GTK_WINDOW_TOPLEVEL);
    state->main_window = window;
    GtkWidget *column = gtk_box_new(GTK_ORIENTATION_VERTICAL, 0);
    gtk_container_add(GTK_CONTAINER(window), column);
    gtk_box_pack_start(GTK_BOX(column), menu_bar_create(), FALSE, FALSE, 0);
    gtk_box_pack_start(GTK_BOX(column), create_body(state), TRUE, TRUE, 0);
    state->render_window = g_desktop->parts.render_area;
    state->status_bar = g_desktop->parts.status_bar;
    set_start_size(GTK_WINDOW(window));
    drop_target_create(state, window);
    g_signal_connect(window, "delete-event", G_CALLBACK(on_close), state);
    window_keys_connect(state, window);
    picture_menu_connect(state, window, g_desktop->parts.render_area);
}

void main_window_show(AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW) && state->main_window != nullptr);
    gtk_widget_show_all(static_cast<GtkWidget *>(state->main_window));
}

void main_window_destroy(AppState *state) {
    assert(thread_role_fits(THREAD_WINDOW));
    if (state->main_window == nullptr) {
        return;
    }
    if (divider_was_moved()) {
        const WindowSettings settings = {divider_share()};
        window_settings_write(state, &settings);
    }
    gtk_widget_destroy(static_cast<GtkWidget *>(state->main_window));
    state->main_window = nullptr;
    state->render_window = nullptr;
    state->status_bar = nullptr;
    g_desktop->parts = {};
}
