#include "app/picture_notes.h"

#include <cassert>
#include <cstdio>
#include <cwchar>

#include "render/picture_layout.h"

static constexpr f64 METRES_PER_MICROMETRE = 1e-6;

static bool add_file_name(ImageNotes *notes, const char *keyword, const WString *path) {
    const wchar_t *name = wstring_text(path);
    for (const wchar_t *next = name; *next != 0; ++next) {
        if (*next == L'/' || *next == PLATFORM_SEPARATOR[0]) {
            name = next + 1;
        }
    }
    const NarrowText text = platform_system_from_wide(name);
    return image_notes_try_add(notes, keyword, text.get());
}

static bool add_program(ImageNotes *notes) {
    char text[64];
    std::snprintf(text, sizeof(text), "%s %s", PROGRAM_NAME, PROGRAM_VERSION);
    return image_notes_try_add(notes, "Software", text);
}

// As the location command has it.
static bool add_cut(ImageNotes *notes, const Stack *stack) {
    const bool nanometres = stack->lengths_in_nm != 0;
    const f64 unit = nanometres ? 1000.0 : 1.0;
    char text[160];
    std::snprintf(text, sizeof(text), "x %.7g y %.7g dx %.7g dy %.7g %s",
                  static_cast<f64>(stack->origin_x) * unit, static_cast<f64>(stack->origin_y) * unit,
                  static_cast<f64>(stack->width) * unit, static_cast<f64>(stack->asked_depth) * unit,
                  nanometres ? "nm" : "um");
    return image_notes_try_add(notes, "Cut", text);
}

static bool add_step(ImageNotes *notes, const Stack *stack, i32 step_index) {
    char number[16];
    std::snprintf(number, sizeof(number), "%d", step_index);
    const char *title = stack->steps->items[step_index]->title;
    const bool named = step_index > 0 && title != nullptr;
    const Owned<NString> text(string_format("%s %s", number, named ? title : "substrate"));
    return text != nullptr && text->text != nullptr && image_notes_try_add(notes, "Step", text->text);
}

static void set_lengths(ImageNotes *notes, const AppState *state, i32 image_height) {
    const Scene scene = {state->stack, state->camera, nullptr, nullptr, &state->picture_style};
    const PictureLayout layout = picture_layout(&scene, image_height);
    const PictureScale scale = picture_scale(&scene, &layout);
    if (scale.across > 0.0 && scale.upwards > 0.0) {
        notes->pixel_width = METRES_PER_MICROMETRE / scale.across;
        notes->pixel_height = METRES_PER_MICROMETRE / scale.upwards;
    }
}

ImageNotes *picture_notes_create(const AppState *state, i32 step_index, i32 image_height) {
    assert(state != nullptr && state->stack != nullptr && state->camera != nullptr && image_height > 0);
    const Stack *stack = state->stack;
    Owned<ImageNotes> notes(image_notes_try_create());
    const bool complete =
        notes != nullptr && add_program(notes.get()) &&
        add_file_name(notes.get(), "Layout", state->gds_path) &&
        image_notes_try_add(notes.get(), "Cell", stack->cell_name != nullptr ? stack->cell_name : "") &&
        add_file_name(notes.get(), "Process file", state->process_path) && add_cut(notes.get(), stack) &&
        add_step(notes.get(), stack, step_index);
    if (!complete) {
        return nullptr;
    }
    set_lengths(notes.get(), state, image_height);
    return notes.release();
}
