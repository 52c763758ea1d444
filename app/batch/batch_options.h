// batch_options.h: the command line of quarn-batch. GNU conventions: options and files in any order,
// "--" ends the options, long options may be shortened.
#pragma once
#include "app/picture_options.h"
#include "export/export_formats.h"
#include "image/image_file.h"

// What the program ends with. 130 is what a shell shows for a program ended by Ctrl-C.
enum BatchStatus {
    BATCH_DONE = 0,
    BATCH_USAGE = 1,           // wrong usage, or a colour file that cannot be read
    BATCH_LAYOUT_FAILED = 2,   // the layout did not load
    BATCH_PROCESS_FAILED = 3,  // faults in the process file or its set-up
    BATCH_WRITE_FAILED = 4,    // a picture, a dump, a folder or the standard output could not be written
    BATCH_NO_GRAPHICS = 5,
    BATCH_INTERRUPTED = 130,
    BATCH_NO_MEMORY = -1,  // as platform/memory.h ends the program; a shell shows 255
};

enum BatchMode {
    BATCH_RUN,      // the whole job
    BATCH_CHECK,    // --check: read both files, report every fault
    BATCH_CELLS,    // --cells: list the cells of the layout
    BATCH_LAYERS,   // --layers: list the layers and datatypes of its cells
    BATCH_STARTER,  // --starter: print a process file to begin with
};

// Texts point into the command line.
struct BatchOptions {
    BatchMode mode;
    bool no_images;
    ImageFormat format;
    const char *layout_path;
    const char *process_path;           // null when not given (BATCH_RUN and BATCH_CHECK always have one)
    const char *cell_name;              // null when not given (BATCH_LAYERS and BATCH_STARTER only)
    const char *output_folder;          // null when not given
    const char *dump_folder;            // null when not given
    const char *data_folder;            // null when not given
    const char *step_list;              // pictures that are saved; null: all
    bool formats[EXPORT_FORMAT_COUNT];  // --profile and --mesh
    const char *page_path;              // --report; null when not given
    const char **cuts;                  // the values of --cut; owned
    i32 cut_count, cut_capacity;
    const char *cuts_file;  // null when not given
    i32 jobs;               // cuts at a time, at least 1
    PictureOptions pictures;
};

enum BatchParse {
    BATCH_PARSE_OK,
    BATCH_PARSE_END,    // --help or --version: printed to standard output, nothing more to do
    BATCH_PARSE_WRONG,  // told on standard error
};

// Reads the command line; the order of argv's items may change. One call at a time.
BatchParse batch_options_parse(int argc, char **argv, BatchOptions *options);

// Frees what the record owns.
void batch_options_free(BatchOptions *options);
