// window_texts.h: the fixed texts and measures of the window, the same in every front end.
#pragma once
#include "app/app_state.h"
#include "app/frontend.h"

// Pixels at a scale of 100 %, or the screen's if those are fewer.
inline constexpr i32 WINDOW_WIDTH = 1200;
inline constexpr i32 WINDOW_HEIGHT = 800;
inline constexpr f32 RENDER_SHARE = 0.6F;  // of the height inside the window, for the render area
inline constexpr i32 MENU_ITEM_COUNT = 5;
inline constexpr i32 STATUS_PART_COUNT = 4;

struct MenuItem {
    MenuCommand command;
    const wchar_t *label;  // "&" stands before the mnemonic
};

// In the order of the menu bar.
extern const MenuItem MENU_ITEMS[MENU_ITEM_COUNT];

struct StatusField {
    i32 right_edge;       // pixels at a scale of 100 %
    const wchar_t *text;  // at start
};

extern const StatusField STATUS_FIELDS[STATUS_PART_COUNT];

struct FileDialogTexts {
    const wchar_t *title;
    const wchar_t *filter_name;
    const wchar_t *pattern;
    const wchar_t *extension;  // added to a name without one
};

// The fixed texts of the dialog for files of that kind.
FileDialogTexts file_dialog_texts(FileKind kind);

// Whether the name ends in the extension of that kind, whatever its case.
bool file_is_of_kind(const wchar_t *path, FileKind kind);

// Title of the dialog for another folder to save into.
extern const wchar_t *const FOLDER_DIALOG_TITLE;

// Why files that were dropped on the window are not opened.
extern const wchar_t *const DROP_WRONG_KIND;
extern const wchar_t *const DROP_DURING_RUN;
extern const wchar_t *const DROP_NO_LAYOUT;

extern const char *const ABOUT_TEXT;

// The caption of the About box, a new string, freed with nstring_free.
NString *about_caption();
