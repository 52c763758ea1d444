#include "app/batch/batch_options.h"

#include <cassert>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <thread>

#include "app/app_state.h"
#include "app/batch/option_reader.h"
#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/terminal.h"

static constexpr i32 MOST_JOBS = 256;

// Values of the options without a letter.
enum LongOption {
    OPTION_FORMAT = 256,
    OPTION_NO_IMAGES,
    OPTION_CHECK,
    OPTION_CELLS,
    OPTION_LAYERS,
    OPTION_STARTER,
    OPTION_CELL,
    OPTION_DUMP,
    OPTION_DATA,
    OPTION_STEPS,
    OPTION_PROFILE,
    OPTION_MESH,
    OPTION_REPORT,
    OPTION_CUT,
    OPTION_CUTS,
    OPTION_JOBS,
    OPTION_VERSION,
};

static const OptionForm OPTIONS[] = {
    {"output", true, 'o'},
    {"format", true, OPTION_FORMAT},
    {"no-images", false, OPTION_NO_IMAGES},
    {"check", false, OPTION_CHECK},
    {"cells", false, OPTION_CELLS},
    {"layers", false, OPTION_LAYERS},
    {"starter", false, OPTION_STARTER},
    {"cell", true, OPTION_CELL},
    {"dump", true, OPTION_DUMP},
    {"data", true, OPTION_DATA},
    {"steps", true, OPTION_STEPS},
    {"profile", true, OPTION_PROFILE},
    {"mesh", true, OPTION_MESH},
    {"report", true, OPTION_REPORT},
    {"cut", true, OPTION_CUT},
    {"cuts", true, OPTION_CUTS},
    {"jobs", true, OPTION_JOBS},
    {"width", true, PICTURE_OPTION_WIDTH},
    {"quality", true, PICTURE_OPTION_QUALITY},
    {"z-scale", true, PICTURE_OPTION_Z_SCALE},
    {"title", true, PICTURE_OPTION_TITLE},
    {"background", true, PICTURE_OPTION_BACKGROUND},
    {"help", false, 'h'},
    {"version", false, OPTION_VERSION},
};

static const char *const HELP_TEXT =
    "Usage: quarn-batch [options] LAYOUT.gds PROCESS.txt\n"
    "\n"
    "Runs a process file on a GDSII layout and saves a picture of the cross section\n"
    "after every step, and the extracted polygons as Polygon.gds.\n"
    "\n"
    "  -o, --output DIR      folder for the pictures, created with its parents; without\n"
    "                        it a new folder beside the process file, named after it\n"
    "                        and the time\n"
    "      --format FORMAT   bmp (the default) or png\n" PICTURE_OPTIONS_HELP
    "      --no-images       simulate only: no graphics, no pictures\n"
    "      --check           read both files and report every fault; simulate nothing\n"
    "      --cells           list the cells of LAYOUT.gds, where they lie and their layers;\n"
    "                        needs no process file\n"
    "      --layers          list the layers and datatypes of each cell of LAYOUT.gds,\n"
    "                        with the number of polygons and where they lie\n"
    "      --starter         print a process file to begin with: LAYOUT.gds [CELL]\n"
    "      --cell NAME       the cell for --layers or --starter\n"
    "      --dump DIR        folder for the VertexData.txt of a dump step, created with\n"
    "                        its parents; without it the current folder, where two\n"
    "                        runs at a time write the same file\n"
    "      --steps LIST      save only these pictures: numbers, ranges (3-5), names of\n"
    "                        steps and \"last\", with commas between; the run is the same\n"
    "      --profile FORMATS save the cut face of each step as svg, pdf, csv or gds, or\n"
    "                        several of them with commas between\n"
    "      --mesh FORMATS    save the films of each step as solids: glb, stl or both\n"
    "      --report FILE     save the run as a page for any browser; with cuts a name\n"
    "                        without a folder, in the folder of each cut\n"
    "      --cut NAME=X,Y,DX,DY\n"
    "                        cut this section instead of the one that the process file\n"
    "                        names (in its units), into a folder NAME of the output;\n"
    "                        may be given several times\n"
    "      --cuts FILE       the same for each line of a table of comma separated values\n"
    "                        with the header name,x,y,dx,dy and, if wanted, cell\n"
    "      --jobs N          cuts at a time; without it as many as there are cores\n"
    "      --data DIR        where colors.txt, surface.shader and point.shader lie\n"
    "  -h, --help            show this text\n"
    "      --version         show the version\n"
    "\n"
    "Exit status: 0 done, 1 wrong usage, 2 the layout did not load, 3 faults in the\n"
    "process file or its set-up, 4 something could not be written, 5 no graphics,\n"
    "130 interrupted, 255 lack of memory. The pictures made until then are saved.\n";

static BatchParse wrong_usage() {
    std::fputs("Try 'quarn-batch --help' for more information.\n", stderr);
    return BATCH_PARSE_WRONG;
}

// "a, b and c can be written"
static void tell_formats() {
    for (i32 i = 0; i < IMAGE_FORMAT_COUNT; ++i) {
        const char *before = i == 0 ? "" : i + 1 < IMAGE_FORMAT_COUNT ? ", " : " and ";
        std::fprintf(stderr, "%s%s", before, IMAGE_FORMATS[i].name);
    }
    std::fputs(" can be written\n", stderr);
}

static bool read_format(const char *name, ImageFormat *format) {
    for (i32 i = 0; i < IMAGE_FORMAT_COUNT; ++i) {
        if (std::strcmp(name, IMAGE_FORMATS[i].name) == 0) {
            *format = static_cast<ImageFormat>(i);
            return true;
        }
    }
    terminal_printf(stderr, "quarn-batch: unknown format '%s': ", name);
    tell_formats();
    return false;
}

static bool read_folder(const char *option, const char *name, const char **folder) {
    if (name[0] == 0) {
        std::fprintf(stderr, "quarn-batch: option '%s' needs the name of a folder\n", option);
        return false;
    }
    *folder = name;
    return true;
}

static bool read_jobs(const char *value, i32 *jobs) {
    char *end = nullptr;
    const long number = std::strtol(value, &end, 10);
    if (end == value || *end != 0 || number < 1 || number > MOST_JOBS) {
        terminal_printf(stderr, "quarn-batch: --jobs takes a number from 1 to %d, not '%s'\n", MOST_JOBS,
                        value);
        return false;
    }
    *jobs = static_cast<i32>(number);
    return true;
}

static bool read_file(const char *option, const char *name, const char **file) {
    if (name[0] == 0) {
        std::fprintf(stderr, "quarn-batch: option '%s' needs the name of a file\n", option);
        return false;
    }
    *file = name;
    return true;
}

// "svg, pdf, csv and gds can be written"
static void tell_exports(bool solids) {
    i32 count = 0;
    for (const ExportFormatForm &form : EXPORT_FORMATS) {
        count += form.is_solid == solids ? 1 : 0;
    }
    i32 told = 0;
    for (const ExportFormatForm &form : EXPORT_FORMATS) {
        if (form.is_solid == solids) {
            const char *before = told == 0 ? "" : told + 1 < count ? ", " : " and ";
            std::fprintf(stderr, "%s%s", before, form.name);
            ++told;
        }
    }
    std::fputs(" can be written\n", stderr);
}

// "svg,pdf": formats of drawings, or of solids, with commas between.
static bool read_exports(const char *option, bool solids, const char *value, BatchOptions *options) {
    while (true) {
        const size_t length = std::strcspn(value, ",");
        i32 found = -1;
        for (i32 i = 0; i < EXPORT_FORMAT_COUNT; ++i) {
            const ExportFormatForm *form = &EXPORT_FORMATS[i];
            const bool same =
                std::strlen(form->name) == length && std::strncmp(form->name, value, length) == 0;
            found = same && form->is_solid == solids ? i : found;
        }
        if (found < 0) {
            terminal_printf(stderr, "quarn-batch: unknown format '%.*s' for %s: ", static_cast<int>(length),
                            value, option);
            tell_exports(solids);
            return false;
        }
        options->formats[found] = true;
        if (value[length] == 0) {
            return true;
        }
        value += length + 1;
    }
}

static bool read_picture_option(int option, const char *value, BatchOptions *options) {
    const char *fault = picture_option_read(&options->pictures, static_cast<PictureOption>(option), value);
    if (fault != nullptr) {
        terminal_printf(stderr, "quarn-batch: %s '%s'\n", fault, value);
    }
    return fault == nullptr;
}

static bool read_cell(const char *name, const char **cell) {
    if (name[0] == 0) {
        std::fputs("quarn-batch: the name of the cell is empty\n", stderr);
        return false;
    }
    *cell = name;
    return true;
}

static const char *mode_option(BatchMode mode) {
    switch (mode) {
        case BATCH_CHECK: return "--check";
        case BATCH_CELLS: return "--cells";
        case BATCH_LAYERS: return "--layers";
        case BATCH_STARTER: return "--starter";
        default: return "";
    }
}

// Anything else than a run; one of these at most.
static bool take_mode(BatchMode mode, BatchOptions *options) {
    const BatchMode before = options->mode;
    options->mode = mode;
    if (before == BATCH_RUN || before == mode) {
        return true;
    }
    const bool in_order = before < mode;
    std::fprintf(stderr, "quarn-batch: %s and %s exclude each other\n", mode_option(in_order ? before : mode),
                 mode_option(in_order ? mode : before));
    return false;
}

// One option that option_next has found.
static BatchParse take_option(int option, const char *value, BatchOptions *options) {
    bool good = true;
    switch (option) {
        case 'o': good = read_folder("--output", value, &options->output_folder); break;
        case OPTION_DUMP: good = read_folder("--dump", value, &options->dump_folder); break;
        case OPTION_DATA: good = read_folder("--data", value, &options->data_folder); break;
        case OPTION_STEPS: options->step_list = value; break;
        case OPTION_PROFILE: good = read_exports("--profile", false, value, options); break;
        case OPTION_MESH: good = read_exports("--mesh", true, value, options); break;
        case OPTION_REPORT: good = read_file("--report", value, &options->page_path); break;
        case OPTION_CUT:
            array_append(&options->cuts, &options->cut_count, &options->cut_capacity, value);
            break;
        case OPTION_CUTS: good = read_file("--cuts", value, &options->cuts_file); break;
        case OPTION_JOBS: good = read_jobs(value, &options->jobs); break;
        case OPTION_FORMAT: good = read_format(value, &options->format); break;
        case OPTION_NO_IMAGES: options->no_images = true; break;
        case OPTION_CHECK: good = take_mode(BATCH_CHECK, options); break;
        case OPTION_CELLS: good = take_mode(BATCH_CELLS, options); break;
        case OPTION_LAYERS: good = take_mode(BATCH_LAYERS, options); break;
        case OPTION_STARTER: good = take_mode(BATCH_STARTER, options); break;
        case OPTION_CELL: good = read_cell(value, &options->cell_name); break;
        case PICTURE_OPTION_WIDTH:
        case PICTURE_OPTION_QUALITY:
        case PICTURE_OPTION_Z_SCALE:
        case PICTURE_OPTION_TITLE:
        case PICTURE_OPTION_BACKGROUND: good = read_picture_option(option, value, options); break;
        case 'h': std::fputs(HELP_TEXT, stdout); return BATCH_PARSE_END;
        case OPTION_VERSION: std::printf("%s %s\n", PROGRAM_NAME, PROGRAM_VERSION); return BATCH_PARSE_END;
        default: good = false; break;  // told by option_next
    }
    return good ? BATCH_PARSE_OK : wrong_usage();
}

static bool exports_anything(const BatchOptions *options) {
    bool any = options->page_path != nullptr;
    for (const bool wanted : options->formats) {
        any = any || wanted;
    }
    return any;
}

// With cuts there is a page in the folder of each, so that only the name can be chosen.
static bool page_is_possible(const BatchOptions *options) {
    const char *path = options->page_path;
    const bool has_cuts = options->cut_count > 0 || options->cuts_file != nullptr;
    if (path == nullptr || !has_cuts) {
        return true;
    }
    const bool in_folder = std::strpbrk(path, PLATFORM_SEPARATOR[0] == L'/' ? "/" : "/\\:") != nullptr;
    return !in_folder && std::strcmp(path, ".") != 0 && std::strcmp(path, "..") != 0;
}

// The one or two names that are left when the options are taken out.
static BatchParse take_files(int count, char **names, BatchOptions *options) {
    const bool needs_process = options->mode == BATCH_RUN || options->mode == BATCH_CHECK;
    if (count < 1 || (count < 2 && needs_process)) {
        std::fprintf(stderr, "quarn-batch: %s\n", count < 1 ? "no layout given" : "no process file given");
        return wrong_usage();
    }
    if (count > 2) {
        terminal_printf(stderr, "quarn-batch: too many files: '%s'\n", names[2]);
        return wrong_usage();
    }
    const bool with_process = options->mode == BATCH_RUN || options->mode == BATCH_CHECK;
    if (!with_process && (options->cut_count > 0 || options->cuts_file != nullptr)) {
        std::fprintf(stderr, "quarn-batch: %s takes no cuts\n", mode_option(options->mode));
        return wrong_usage();
    }
    if (!with_process && exports_anything(options)) {
        std::fprintf(stderr, "quarn-batch: %s writes no exports\n", mode_option(options->mode));
        return wrong_usage();
    }
    if (!page_is_possible(options)) {
        terminal_printf(stderr, "quarn-batch: with cuts --report takes a name without a folder, not '%s'\n",
                        options->page_path);
        return wrong_usage();
    }
    options->layout_path = names[0];
    const char *second = count > 1 ? names[1] : nullptr;
    if (options->mode != BATCH_STARTER) {
        options->process_path = second;
        return BATCH_PARSE_OK;
    }
    if (second != nullptr && options->cell_name != nullptr) {
        std::fputs("quarn-batch: the cell is given twice\n", stderr);
        return wrong_usage();
    }
    return second == nullptr || read_cell(second, &options->cell_name) ? BATCH_PARSE_OK : wrong_usage();
}

BatchParse batch_options_parse(int argc, char **argv, BatchOptions *options) {
    assert(argv != nullptr && options != nullptr);
    *options = BatchOptions{};
    const u32 cores = std::thread::hardware_concurrency();  // 0 when nobody knows
    options->jobs = cores > 0 && cores <= MOST_JOBS ? static_cast<i32>(cores) : 1;
    options->pictures = NO_PICTURE_OPTIONS;
    // option_next begins its messages with the first item.
    static char program_name[] = "quarn-batch";
    if (argc > 0) {
        argv[0] = program_name;
    }
    OptionReader reader = {};
    reader.forms = OPTIONS;
    reader.form_count = static_cast<int>(sizeof(OPTIONS) / sizeof(OPTIONS[0]));
    reader.argc = argc;
    reader.argv = argv;
    reader.next = 1;
    int option = 0;
    while ((option = option_next(&reader)) != OPTION_END) {
        const BatchParse result = take_option(option, reader.value, options);
        if (result != BATCH_PARSE_OK) {
            return result;
        }
    }
    if (options->cell_name != nullptr && options->mode != BATCH_LAYERS && options->mode != BATCH_STARTER) {
        std::fputs("quarn-batch: option '--cell' needs --layers or --starter\n", stderr);
        return wrong_usage();
    }
    return take_files(reader.name_count, argv + 1, options);
}

void batch_options_free(BatchOptions *options) {
    memory_free(options->cuts);
    options->cuts = nullptr;
    options->cut_count = 0;
    options->cut_capacity = 0;
}
