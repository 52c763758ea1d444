#include "process/process_file.h"

#include <cassert>
#include <cerrno>
#include <cstring>

#include "log/log.h"
#include "log/text.h"
#include "platform/memory.h"
#include "platform/owned_file.h"
#include "platform/platform.h"
#include "process/color_table.h"
#include "process/hints.h"
#include "process/line_hints.h"
#include "process/process_arguments.h"
#include "process/process_error.h"
#include "process/process_text.h"
#include "process/raw_hints.h"
#include "process/read_film.h"
#include "process/read_patterning.h"
#include "process/read_settings.h"
#include "process/reader_state.h"

// A line of so many pieces, a million characters, is no line of text.
static constexpr i32 ENDLESS_LINE_PIECES = 1000;

struct StepCommand {
    const char *word;
    void (*read)(ProcessStep *step, const char *line);
};

static const StepCommand STEP_COMMANDS[] = {
    {"coating", read_coating}, {"dump", read_dump}, {"deposition", read_deposition},
    {"release", read_release}, {"etch", read_etch}, {"photo", read_photo},
    {"strip", read_strip},
};

struct SetupCommand {
    const char *word;
    void (*read)(Stack *stack, const char *line);
};

static const SetupCommand SETUP_COMMANDS[] = {
    {"location", read_location},
    {"gds", read_gds},
    {"settings", read_settings},
};

static void append_substrate(Stack *stack) {
    auto *step = memory_new_zeroed<ProcessStep>();
    f32 rgb[3] = {};
    color_lookup("beige", rgb);
    step->kind = STEP_DEPOSITION;
    step->color_r = rgb[0];
    step->color_g = rgb[1];
    step->color_b = rgb[2];
    step->alpha = 1.0F;
    step->material = process_text_copy(SUBSTRATE_MATERIAL).release();
    step->label = process_text_copy("SUBSTRATE").release();
    material_table_add(g_reader.materials, step->material, nullptr);
    step_list_append(stack->steps, step);
}

static void check_first_command(const char *word) {
    // "gen" passes here though no command has that name; the messages call the settings line so.
    // Kept on purpose: the line is reported once, as an unknown command.
    if (g_reader.settings_seen || std::strcmp(word, "settings") == 0 || std::strcmp(word, "gen") == 0) {
        return;
    }
    process_error("First command in process file needs to be the \"gen\" settings command");
    g_reader.settings_seen = true;
}

static void read_command(Stack *stack, const char *word, const char *line) {
    for (const StepCommand &command : STEP_COMMANDS) {
        if (std::strcmp(word, command.word) == 0) {
            auto *step = memory_new_zeroed<ProcessStep>();
            step->line_number = g_reader.line_number;
            command.read(step, line);
            step_list_append(stack->steps, step);
            return;
        }
    }
    for (const SetupCommand &command : SETUP_COMMANDS) {
        if (std::strcmp(word, command.word) == 0) {
            command.read(stack, line);
            return;
        }
    }
    if (std::strcmp(word, "stop") == 0) {
        g_reader.stop_seen = true;
        return;
    }
    process_error("Unknown command");
}

// Reads one line; cuts it at its end. False for an empty line or a comment.
static bool read_line(Stack *stack, RawLine *raw) {
    char *line = raw->text;
    if (line[0] == '#' || line[std::strspn(line, " \r\n\t")] == 0) {
        return false;
    }
    line[std::strcspn(line, "\r\n")] = 0;
    char word[PROCESS_LINE_SIZE];
    if (std::sscanf(line, "%1023s", word) != 1) {
        process_error("Unknown command");
        return true;
    }
    char chosen[PROCESS_LINE_SIZE];
    if (g_reader.section != nullptr && std::strcmp(word, "location") == 0) {
        section_choice_line(g_reader.section, chosen);
        line = chosen;
    }
    if (!raw->continued) {
        line_hints(line, g_reader.line_number, g_reader.units);
    }
    check_first_command(word);
    read_command(stack, word, line);
    return true;
}

static void read_lines(Stack *stack, std::FILE *file) {
    RawLine line = {};
    RawHints raw_hints = {};
    bool command_seen = false;
    i32 pieces = 0;  // of the line under way
    while (!g_reader.stop_seen && !platform_interrupted() && raw_line_next(&line, file)) {
        ++g_reader.line_number;
        kept_text_add(&g_reader.kept, &line);
        pieces = line.unfinished ? pieces + 1 : 0;
        if (pieces == ENDLESS_LINE_PIECES) {
            process_error("Line without end");
            return;
        }
        raw_line_hints(&line, g_reader.line_number, &raw_hints);
        command_seen |= read_line(stack, &line);
    }
    if (!command_seen && std::ferror(file) == 0 && !platform_interrupted()) {
        hint_write(0, g_reader.line_number == 0 ? L"the file is empty"
                                                : L"the file has no command, only comments and empty lines");
    }
}

// What a chosen section has in the place of commands that the file lacks, and of its cell.
static void complete_section(Stack *stack) {
    if (g_reader.section == nullptr) {
        return;
    }
    if (!g_reader.location_seen) {
        char chosen[PROCESS_LINE_SIZE];
        section_choice_line(g_reader.section, chosen);
        g_reader.line_number = 0;
        read_location(stack, chosen);
    }
    if (g_reader.section->cell != nullptr) {
        memory_free(stack->cell_name);
        stack->cell_name = process_text_copy(g_reader.section->cell).release();
        g_reader.gds_seen = true;
    }
}

// What can only be told when every line is known.
static void check_whole_file(Stack *stack) {
    if (!g_reader.gds_seen || !g_reader.location_seen || !g_reader.settings_seen) {
        process_error("Missing gds, location/cut, or settings/gen command");
    }
    g_reader.line_number = 0;
    stack->steps->items[0]->thickness = 0.05F * stack->width;
    stack->max_bias = g_reader.max_bias;
    stack->min_resolution = g_reader.min_resolution;
    stack->max_resolution = g_reader.max_resolution;
    const f32 limit = 0.25F * stack->width;
    if (stack->max_resolution > limit) {
        process_error(
            "The maximum photo resolution (%.3f micron) can not exceed %.0f%% of the cross section width",
            static_cast<f64>(stack->max_resolution), 25.0);
    }
    if (stack->max_bias > limit) {
        process_error(
            "The max patterning bias (%.3f micron) can not exceed %.0f%% of the cross section width",
            static_cast<f64>(stack->max_bias), 25.0);
    }
}

// A file that the system cannot read to its end must not be taken for a whole one.
static void report_read_failure() {
    const WideText reason = text_widen(std::strerror(errno));
    diagnostic_write(L"The process file cannot be read beyond line %d: %ls", g_reader.line_number,
                     reason.get());
    g_reader.fault_seen = true;
}

static i32 read_stream(Stack *stack, std::FILE *file, const wchar_t *path, const SectionChoice *section) {
    assert(stack->steps == nullptr && stack->cell_name == nullptr && "the stack has to be zeroed");
    reader_state_start();
    g_reader.section = section;
    hints_start(path);
    stack->steps = step_list_create();
    append_substrate(stack);
    read_lines(stack, file);
    const bool failed = std::ferror(file) != 0;
    if (g_reader.stop_seen && !failed) {
        kept_text_add_rest(&g_reader.kept, file);
    }
    stack->process_text = kept_text_take(&g_reader.kept);
    if (platform_interrupted()) {
        hints_end();
        reader_state_end();
        return 1;
    }
    if (failed) {
        report_read_failure();
    }
    complete_section(stack);
    check_whole_file(stack);
    hints_end();
    reader_state_end();
    return g_reader.fault_seen ? 1 : 0;
}

// The faults are on the console; those who look at the diagnostics only learn that there are any.
static void report_fault_count(const wchar_t *path) {
    if (g_reader.fault_count > 0) {
        diagnostic_write(L"%ls: %d %ls, see above", path, g_reader.fault_count,
                         g_reader.fault_count == 1 ? L"fault" : L"faults");
    }
}

i32 process_read_stream(Stack *stack, std::FILE *file) {
    assert(stack != nullptr && file != nullptr);
    return read_stream(stack, file, L"process file", nullptr);
}

i32 process_read_file(Stack *stack, const wchar_t *path, const SectionChoice *section) {
    assert(stack != nullptr && path != nullptr);
    const OwnedFile file(platform_input_open(path, "r"));
    if (file == nullptr) {
        diagnostic_write(L"%ls: %ls", path, platform_error_text());
        console_printf_w(L"Failed to open process file: %ls\r\n", path);
        return 1;
    }
    const i32 result = read_stream(stack, file.get(), path, section);
    report_fault_count(path);
    return result;
}
