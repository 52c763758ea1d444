#include "app/gtk/status_bar.h"

#include <cassert>

#include "app/gtk/gtk_desktop.h"
#include "app/gtk/gtk_text.h"
#include "platform/thread_role.h"

static constexpr i32 MARGIN = 4;  // pixels

static void set_text(GtkWidget *label, const wchar_t *text) {
    const NarrowText shown = gtk_text_from_wide(text);
    gtk_label_set_text(GTK_LABEL(label), shown.get());
    // The window may be too narrow for a long path.
    gtk_widget_set_tooltip_text(label, shown[0] != 0 ? shown.get() : nullptr);
}

static bool is_caption(i32 part) {
    return part != STATUS_LAYOUT && part != STATUS_PROCESS;
}

// The paths share the width that the captions leave; of a long one its end is shown.
static GtkWidget *create_label(i32 part) {
    GtkWidget *label = gtk_label_new(nullptr);
    gtk_label_set_xalign(GTK_LABEL(label), 0.0F);
    gtk_label_set_single_line_mode(GTK_LABEL(label), TRUE);
    if (!is_caption(part)) {
        gtk_label_set_ellipsize(GTK_LABEL(label), PANGO_ELLIPSIZE_START);
        gtk_label_set_width_chars(GTK_LABEL(label), 1);
        gtk_label_set_max_width_chars(GTK_LABEL(label), 1);
        gtk_widget_set_hexpand(label, TRUE);
    }
    gtk_widget_set_margin_start(label, MARGIN);
    gtk_widget_set_margin_end(label, MARGIN);
    gtk_widget_set_margin_top(label, MARGIN / 2);
    gtk_widget_set_margin_bottom(label, MARGIN / 2);
    return label;
}

GtkWidget *status_bar_create() {
    assert(thread_role_fits(THREAD_WINDOW));
    GtkWidget *bar = gtk_box_new(GTK_ORIENTATION_HORIZONTAL, MARGIN);
    for (i32 i = 0; i < STATUS_PART_COUNT; ++i) {
        GtkWidget *label = create_label(i);
        g_desktop->status.labels[i] = label;
        set_text(label, STATUS_FIELDS[i].text);
        gtk_box_pack_start(GTK_BOX(bar), label, is_caption(i) ? FALSE : TRUE, TRUE, 0);
    }
    AtkObject *accessible = gtk_widget_get_accessible(bar);
    atk_object_set_name(accessible, "Status bar");
    atk_object_set_role(accessible, ATK_ROLE_STATUSBAR);
    return bar;
}

void status_bar_set(StatusPart part, const wchar_t *text) {
    assert(thread_role_fits(THREAD_WINDOW) && !is_caption(part));
    set_text(g_desktop->status.labels[part], text);
}
