#include "app/gtk/gtk_desktop.h"

GtkDesktop *g_desktop = nullptr;
