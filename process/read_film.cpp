#include "process/read_film.h"

#include <cassert>

#include "process/color_table.h"
#include "process/process_arguments.h"
#include "process/process_error.h"
#include "process/process_text.h"
#include "process/reader_state.h"

static const char *const DEPOSITION_ARGUMENTS[] = {"-name",  "-type",   "-thickness", "-sc",
                                                   "-color", "-scolor", "-alpha",     nullptr};
static const char *const COATING_ARGUMENTS[] = {"-name",  "-type",   "-thickness", "-dop", "-rr",
                                                "-color", "-scolor", "-alpha",     nullptr};

static void read_material(ProcessStep *step, const char *line) {
    step->material = read_string_argument(line, "-name").release();
    if (material_table_has(g_reader.materials, step->material)) {
        process_error("Material %s in -name argument already defined. Choose another name.", step->material);
    }
    step->material_type = read_string_argument(line, "-type").release();
}

// One colour of 0..255 scaled by a brightness of 0..100, as 0..1.
static f32 scaled_color(i32 value, i32 percentage) {
    const f64 product = static_cast<f64>(value) * static_cast<f64>(percentage);
    return static_cast<f32>(product / 25500.0);
}

static void read_color_numbers(ProcessStep *step, const char *line) {
    i32 values[4] = {};  // red, green, blue, brightness percentage
    read_integer_arguments(line, "-color", values, 4);
    if (values[0] > 255 || values[1] > 255 || values[2] > 255 || values[3] > 100) {
        process_error("Invalid value(s) in -color argument");
    }
    step->color_r = scaled_color(values[0], values[3]);
    step->color_g = scaled_color(values[1], values[3]);
    step->color_b = scaled_color(values[2], values[3]);
}

static void read_color_name(ProcessStep *step, const char *line, const char *unknown_name_message) {
    const NarrowText name = read_string_argument(line, "-scolor");
    f32 rgb[3] = {};
    if (color_lookup(name.get(), rgb) != 0) {
        process_error("%s", unknown_name_message);
    }
    step->color_r = rgb[0];
    step->color_g = rgb[1];
    step->color_b = rgb[2];
}

static void read_color_and_alpha(ProcessStep *step, const char *line, const char *unknown_name_message) {
    if (argument_present(line, "-color")) {
        read_color_numbers(step, line);
    } else if (argument_present(line, "-scolor")) {
        read_color_name(step, line, unknown_name_message);
    } else {
        process_error("Missing -color or -scolor argument");
    }
    step->alpha = 1.0F;
    read_optional_decimal(line, "-alpha", &step->alpha);
    if (step->alpha < 0.0F || step->alpha > 1.0F) {
        process_error("Invalid -alpha argument");
    }
}

// Makes the material known to the lines below and gives the step its texts.
static void finish_film(ProcessStep *step, const char *title_end) {
    g_reader.deposited_thickness += step->thickness;
    material_table_add(g_reader.materials, step->material, step->material_type);
    step->label = process_text_copy(step->material).release();
    step->title = process_text_join(step->material, title_end).release();
}

void read_deposition(ProcessStep *step, const char *line) {
    assert(step != nullptr && line != nullptr);
    check_arguments(line, DEPOSITION_ARGUMENTS);
    step->kind = STEP_DEPOSITION;
    read_material(step, line);
    read_nanometre_argument(line, "-thickness", &step->thickness);
    // The text search also finds "-sc" at the start of "-scolor", whose name is then no decimal.
    // Kept on purpose: a file that is refused here has to be refused everywhere.
    read_optional_decimal(line, "-sc", &step->step_coverage);
    if (step->step_coverage < 0.0F || step->step_coverage > 1.0F) {
        process_error("Invalid -sc argument: step coverage need to be between 0.0 and 1.0");
    }
    read_color_and_alpha(step, line, "Color name is not a recognized X11 color");
    finish_film(step, " deposition");
}

void read_coating(ProcessStep *step, const char *line) {
    assert(step != nullptr && line != nullptr);
    check_arguments(line, COATING_ARGUMENTS);
    step->kind = STEP_COATING;
    read_material(step, line);
    read_nanometre_argument(line, "-thickness", &step->thickness);
    step->dop = 1.0F;
    read_optional_decimal(line, "-dop", &step->dop);
    if (step->dop < 0.0F || step->dop > 1.0F) {
        process_error("Invalid -dop argument");
    }
    read_optional_length(line, "-rr", &step->rr);
    if (step->rr < 0.0F || step->rr > 1.0F) {
        process_error("Value of -rr argument needs to be between 0.0 and 1.0");
    }
    read_color_and_alpha(step, line, "Color name is unrecognized");
    finish_film(step, " coating");
}
