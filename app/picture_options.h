// picture_options.h: the options of a command line that tell how pictures look, the same in every program.
#pragma once
#include "app/app_state.h"

// What picture_option_read takes; beyond the letters of options and the codes of a program's own.
enum PictureOption {
    PICTURE_OPTION_WIDTH = 512,
    PICTURE_OPTION_QUALITY,
    PICTURE_OPTION_Z_SCALE,
    PICTURE_OPTION_TITLE,
    PICTURE_OPTION_BACKGROUND,
};

inline constexpr i32 PICTURE_OPTION_COUNT = 5;

struct PictureOptionForm {
    const char *name;  // without its dashes; each takes a value
    PictureOption option;
};

extern const PictureOptionForm PICTURE_OPTION_FORMS[PICTURE_OPTION_COUNT];

// What --help says of them. A macro, so that it can stand between other literals.
#define PICTURE_OPTIONS_HELP                                                             \
    "      --width PIXELS    of every picture, 320 to 16384 (1920 without it); texts\n"  \
    "                        and legend grow along\n"                                    \
    "      --quality QUALITY plain (the default) or fine: smooth, with scale bars and\n" \
    "                        the thickness of each film\n"                               \
    "      --z-scale FACTOR  draw heights 0.1 to 1000 times as high as they are\n"       \
    "      --title TEXT      written at the top of every picture\n"                      \
    "      --background COLOR\n"                                                         \
    "                        a name of colors.txt, \"#RRGGBB\", or none: transparent\n"

// Texts point into the command line.
struct PictureOptions {
    i32 width;  // pixels
    bool fine;
    f32 vertical_scale;
    const char *title;       // null: none
    const char *background;  // null: white
    bool quality_given;  // whether the command line says so: then it counts more than what a window remembers
    bool scale_given;
};

inline constexpr PictureOptions NO_PICTURE_OPTIONS = {PICTURE_WIDTH, false, 1.0F, nullptr,
                                                      nullptr,       false, false};

// Takes the value of one option. Returns null, or what is wrong, as in "--width takes a number from 320 to
// 16384, not", to be followed by the value.
const char *picture_option_read(PictureOptions *options, PictureOption option, const char *value);

// Sets the style of the application's pictures. Needs the colour names (app_load_colors). Returns null, or a
// new text that tells of a colour that is not there.
WString *picture_options_apply(const PictureOptions *options, AppState *state);

// Null, or a new text that tells why pictures of a width (pixels) cannot be drawn. Needs the context that is
// to draw them.
WString *picture_width_fault(i32 width);

// Both for a program with a window: what is wrong is told in a message box. Returns 0 or 1.
i32 picture_options_start(const PictureOptions *options, AppState *state);
