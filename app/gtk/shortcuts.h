// shortcuts.h: the keys of the menu's commands, beside their underlined letters.
#pragma once
#include <gtk/gtk.h>

#include "app/app_state.h"

struct Shortcut {
    MenuCommand command;
    guint key;
    GdkModifierType modifiers;
};

inline constexpr i32 SHORTCUT_COUNT = 4;
extern const Shortcut SHORTCUTS[SHORTCUT_COUNT];

// The key as users read it, in their language ("Ctrl+O"), freed with g_free; null when the command has none.
char *shortcut_label(MenuCommand command);
