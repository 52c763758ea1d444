#include "app/gtk/shortcuts.h"

static constexpr auto NO_MODIFIER = static_cast<GdkModifierType>(0);

const Shortcut SHORTCUTS[SHORTCUT_COUNT] = {
    {MENU_SAVE_IMAGES, GDK_KEY_s, GDK_CONTROL_MASK},
    {MENU_RUN, GDK_KEY_r, GDK_CONTROL_MASK},
    {MENU_LOAD_GDS, GDK_KEY_o, GDK_CONTROL_MASK},
    {MENU_ABOUT, GDK_KEY_F1, NO_MODIFIER},
};

char *shortcut_label(MenuCommand command) {
    for (const Shortcut &shortcut : SHORTCUTS) {
        if (shortcut.command == command) {
            return gtk_accelerator_get_label(shortcut.key, shortcut.modifiers);
        }
    }
    return nullptr;
}
