#include "process/read_patterning.h"

#include <cassert>

#include "process/process_arguments.h"
#include "process/process_error.h"
#include "process/process_text.h"
#include "process/reader_state.h"

// "-dop" is not listed though it is read: a line that has it is reported and its value used all the
// same. Kept on purpose: a file that is refused here has to be refused everywhere.
static const char *const PHOTO_ARGUMENTS[] = {"-name",  "-mask_id", "-datatype",  "-type", "-res",
                                              "-taper", "-rr",      "-thickness", nullptr};
static const char *const ETCH_ARGUMENTS[] = {"-targets", "-depth", "-name", "-iso", nullptr};
static const char *const RELEASE_ARGUMENTS[] = {"-targets", "-name", nullptr};
static const char *const STRIP_ARGUMENTS[] = {"-name", nullptr};

static constexpr i32 DATATYPE_MAX = 65535;  // as large as a layout's 16 bits can be

// Looked for as a word of its own, unlike the other arguments: a name that holds it, as in "POLY-datatype",
// is just a name.
static void read_datatype(ProcessStep *step, const char *line) {
    const char *word = argument_word(line, "-datatype");
    if (word == nullptr) {
        return;
    }
    step->one_datatype = true;
    read_integer_arguments(word, "-datatype", &step->mask_datatype, 1);
    if (step->mask_datatype > DATATYPE_MAX) {
        process_error("Invalid -datatype value for the mask datatype number");
    }
}

static void read_mask(ProcessStep *step, const char *line) {
    read_integer_arguments(line, "-mask_id", &step->mask_id, 1);
    if (step->mask_id < 0) {
        process_error("Invalid -mask_id value for the mask layer number");
    }
    read_datatype(step, line);
    read_integer_arguments(line, "-type", &step->mask_type, 1);
    if (step->mask_type != 0 && step->mask_type != 1) {
        process_error("Invalid -type argument: mask type needs to be  1 (dark type) or 0 (clear type)");
    }
}

static void read_resolution(ProcessStep *step, const char *line) {
    read_length_argument(line, "-res", &step->resolution);
    if (step->resolution < 0.0F) {
        process_error("Invalid -res argument: needs to be a positive number");
    }
    if (step->resolution > g_reader.max_resolution) {
        g_reader.max_resolution = step->resolution;
    }
    if (step->resolution < g_reader.min_resolution) {
        g_reader.min_resolution = step->resolution;
    }
}

static void read_taper(ProcessStep *step, const char *line) {
    i32 degrees = 90;
    if (argument_present(line, "-taper")) {
        read_integer_arguments(line, "-taper", &degrees, 1);
    }
    step->taper = static_cast<f32>(degrees);
}

void read_photo(ProcessStep *step, const char *line) {
    assert(step != nullptr && line != nullptr);
    check_arguments(line, PHOTO_ARGUMENTS);
    if (!g_reader.strip_done) {
        process_error("Strip process missing after previous photo command");
    }
    g_reader.strip_done = false;
    step->kind = STEP_PHOTO;
    step->resist_ref = read_string_argument(line, "-name").release();
    read_mask(step, line);
    read_resolution(step, line);
    read_taper(step, line);
    read_nanometre_argument(line, "-thickness", &step->thickness);
    step->dop = 1.0F;
    read_optional_decimal(line, "-dop", &step->dop);
    if (step->dop < 0.0F || step->dop > 1.0F) {
        process_error("Invalid -dop argument");
    }
    read_optional_length(line, "-rr", &step->rr);
    if (step->rr < 0.0F || step->rr > 1.0F) {
        process_error("Invalid -rr argument");
    }
    step->color_r = 0.8F;
    step->color_g = 0.8F;
    step->color_b = 0.9F;
    step->alpha = 1.0F;
    step->label = process_text_copy("PR").release();
    step->title = process_text_join(step->resist_ref, " photo").release();
}

void read_strip(ProcessStep *step, const char *line) {
    assert(step != nullptr && line != nullptr);
    step->kind = STEP_STRIP;
    step->resist_ref = process_text_copy("stand alone").release();
    if (g_reader.strip_done) {
        process_error("No prior photo process");
    }
    g_reader.strip_done = true;
    check_arguments(line, STRIP_ARGUMENTS);
    if (argument_present(line, "-name")) {
        step->name = read_string_argument(line, "-name").release();
        step->title = process_text_join(step->name, " photoresist strip").release();
    } else {
        step->title = process_text_copy("photoresist strip").release();
    }
}

// "etching of " and the names, joined by single blanks.
static NarrowText title_of_targets(const NameList *targets) {
    NarrowText title = process_text_copy("etching of ");
    for (i32 i = 0; i < targets->count; ++i) {
        const NarrowText separated = process_text_join(title.get(), i > 0 ? " " : "");
        title = process_text_join(separated.get(), targets->items[i]);
    }
    return title;
}

// The name, when there is one, and the title of an etch or a release.
static void read_etch_name(ProcessStep *step, const char *line, const NameList *targets) {
    if (argument_present(line, "-name")) {
        step->name = read_string_argument(line, "-name").release();
        step->title = process_text_join(step->name, " etching").release();
    } else {
        step->title = title_of_targets(targets).release();
    }
}

void read_etch(ProcessStep *step, const char *line) {
    assert(step != nullptr && line != nullptr);
    check_arguments(line, ETCH_ARGUMENTS);
    step->kind = STEP_ETCH;
    name_list_create(&step->target_materials);
    NameList targets;
    name_list_create(&targets);
    const Owned<NameList> targets_owner(&targets);
    read_targets_argument(line, &step->target_materials, &targets);
    read_nanometre_argument(line, "-depth", &step->depth);
    read_optional_decimal(line, "-iso", &step->iso);
    if (step->iso < 0.0F || step->iso > 1.0F) {
        process_error(
            "The value of the -iso argument needs to be between 0.0 (anisotropic) and 1.0 (full isotropic)");
    }
    read_etch_name(step, line, &targets);
}

void read_release(ProcessStep *step, const char *line) {
    assert(step != nullptr && line != nullptr);
    check_arguments(line, RELEASE_ARGUMENTS);
    step->kind = STEP_RELEASE;
    name_list_create(&step->target_materials);
    NameList targets;
    name_list_create(&targets);
    const Owned<NameList> targets_owner(&targets);
    read_targets_argument(line, &step->target_materials, &targets);
    read_etch_name(step, line, &targets);
}

void read_dump(ProcessStep *step, const char * /*line*/) {
    assert(step != nullptr);
    step->kind = STEP_DUMP;
}
