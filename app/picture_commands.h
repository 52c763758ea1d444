// picture_commands.h: the menu of the picture, the same in every window: its texts, what in it is greyed and
// checked, and what its commands do as far as no window is needed. User-interface thread.
#pragma once
#include "app/app_state.h"
#include "app/picture_wish.h"

// Ids of the commands, beyond those of the menu bar.
enum PictureCommand {
    PICTURE_COPY = 21,
    PICTURE_SAVE = 22,
    PICTURE_FINE = 23,
    PICTURE_SCALE = 30,  // the first of VERTICAL_SCALE_COUNT, in the order of VERTICAL_SCALES
};

struct PictureMenuItem {
    i32 command;
    const wchar_t *label;  // "&" stands before the mnemonic
};

inline constexpr i32 PICTURE_MENU_COUNT = 3;

// In the order of the menu; the menu of the scales follows.
extern const PictureMenuItem PICTURE_MENU_ITEMS[PICTURE_MENU_COUNT];

// What opens the menu of the scales.
extern const wchar_t *const PICTURE_SCALE_LABEL;
extern const PictureMenuItem PICTURE_SCALE_ITEMS[VERTICAL_SCALE_COUNT];

// Whether there is a command of that id.
bool picture_command_exists(i32 command);

// False: greyed, since there is no picture.
bool picture_command_enabled(const AppState *state, i32 command);

// Whether it is what holds from the next run on.
bool picture_command_checked(const AppState *state, i32 command);

// Does one of the commands that choose: what holds becomes its opposite, or the scale of that id. Returns the
// key under which the choice is kept, or null for a command of another kind. `value` receives what is kept
// there.
const wchar_t *picture_command_choose(AppState *state, i32 command, const wchar_t **value);

// The picture on show in its full size; a new one, freed with image_free. One that is not transparent is as
// it looks on white; a transparent one keeps its alpha, for programs that take it. Null when there is none,
// or no memory for it.
PixelImage *picture_to_copy(const AppState *state);

// Tells in a message box and on the console that there is no picture in the clipboard.
void picture_copy_failed();

// Asks where the picture is to be saved. A new string, freed with wstring_free; null when cancelled. A file
// that is there is returned only when the user wants it replaced.
//   name     proposed
//   format   in: that of the proposed name; out: that of the kind of files chosen, for names whose extension
//            tells of none
using PictureSaveDialog = WString *(*)(AppState *state, const wchar_t *name, ImageFormat *format);

// Writes the picture on show as "Save images" would, under a name that the user is asked for; its extension
// tells the format. What is not written is told with its reason in a message box and on the console, and the
// user is asked again until the picture is saved or the user cancels. The picture is the one on show at the
// call, whatever a run shows meanwhile.
void picture_save_command(AppState *state, PictureSaveDialog ask);

// The fixed texts of that dialog.
extern const wchar_t *const PICTURE_SAVE_TITLE;

struct PictureFileKind {
    const wchar_t *filter_name;
    const wchar_t *pattern;
};

// What it offers; ImageFormat is the index.
extern const PictureFileKind PICTURE_FILE_KINDS[IMAGE_FORMAT_COUNT];

// The format of which the extension of a file name tells, whatever its case; IMAGE_FORMAT_COUNT when it tells
// of none.
i32 picture_format_of(const wchar_t *path);
