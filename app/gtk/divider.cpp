#include "app/gtk/divider.h"

#include <cassert>

#include "app/gtk/gtk_desktop.h"
#include "platform/thread_role.h"

static constexpr i32 SMALLEST_PART = 40;  // pixels

// Where it is and no placing has put it, the user has.
static void notice_move(Divider *divider) {
    const i32 position = gtk_paned_get_position(divider->pane);
    if (divider->position >= 0 && position != divider->position) {
        divider->share = static_cast<f32>(position) / static_cast<f32>(divider->window_height);
        divider->moved = true;
        divider->position = position;
    }
}

// Only now is it known where a placing has put it: each part has a smallest height.
static void on_size(GtkWidget *, GdkRectangle *, gpointer) {
    Divider *divider = &g_desktop->divider;
    if (divider->position < 0 && divider->height > 0) {
        divider->position = gtk_paned_get_position(divider->pane);
    }
}

static void on_destroy(GtkWidget *, gpointer) {
    g_desktop->divider.pane = nullptr;
}

GtkWidget *divider_create(GtkWidget *upper, GtkWidget *lower, f32 share) {
    assert(thread_role_fits(THREAD_WINDOW) && share > 0.0F && share < 1.0F);
    GtkWidget *pane = gtk_paned_new(GTK_ORIENTATION_VERTICAL);
    g_desktop->divider = {GTK_PANED(pane), share, false, 0, 0, -1};
    gtk_widget_set_size_request(upper, -1, SMALLEST_PART);
    gtk_widget_set_size_request(lower, -1, SMALLEST_PART);
    // The library leaves the position alone when the lower part takes all of a change.
    gtk_paned_pack1(GTK_PANED(pane), upper, FALSE, FALSE);
    gtk_paned_pack2(GTK_PANED(pane), lower, TRUE, FALSE);
    g_signal_connect(pane, "size-allocate", G_CALLBACK(on_size), nullptr);
    g_signal_connect(pane, "destroy", G_CALLBACK(on_destroy), nullptr);
    atk_object_set_name(gtk_widget_get_accessible(pane), "Divider");
    return pane;
}

void divider_place(i32 height, i32 window_height) {
    assert(thread_role_fits(THREAD_WINDOW) && height > 0);
    Divider *divider = &g_desktop->divider;
    if (height == divider->height && window_height == divider->window_height) {
        return;
    }
    notice_move(divider);
    divider->height = height;
    divider->window_height = window_height;
    divider->position = -1;
    gtk_paned_set_position(divider->pane, truncate_i32(static_cast<f32>(window_height) * divider->share));
}

bool divider_was_moved() {
    Divider *divider = &g_desktop->divider;
    if (divider->pane != nullptr) {
        notice_move(divider);
    }
    return divider->moved;
}

f32 divider_share() {
    Divider *divider = &g_desktop->divider;
    if (divider->pane != nullptr) {
        notice_move(divider);
    }
    return divider->share;
}
