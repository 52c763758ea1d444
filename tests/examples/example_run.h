// example_run.h: run an example of the project on a small grid and read back its dump.
#pragma once
#include <map>
#include <string>
#include <vector>

// One layer at one grid point of a dump.
struct DumpLayer {
    double bottom, top, thickness;  // micrometres
};

// One grid point of a dump.
struct DumpPoint {
    int top_layer;
    double height;                    // micrometres
    std::map<int, DumpLayer> layers;  // by slot number; removed layers are missing
};

// The heights that a run wrote: by column (multiples of 20) and row.
struct Dump {
    std::map<int, std::vector<DumpPoint>> columns;
    std::string text;     // the file itself
    std::string console;  // what the run printed
    int exit_status;
};

// Runs the steps of examples/FOLDER/NAME.txt up to and with the line that begins with `last_line`
// (an empty text: all steps) on a grid of `grid_n` columns, then dumps. Fails the running test when
// the program fails.
Dump example_run(const std::string &folder, const std::string &name, const std::string &last_line,
                 int grid_n);

// What the program printed on standard output and standard error.
struct BatchRun {
    int exit_status;
    std::string console;
};

// Runs a process file, given as its text, without pictures; or lists the cells.
//   layout   "FOLDER/NAME.gds" of the examples
BatchRun batch_run(const std::string &process_file, const std::string &layout);
BatchRun batch_cells(const std::string &layout);

// What the program says of a layout, without a process file.
//   options   of the command line, before the layout
BatchRun batch_layout(const std::string &options, const std::string &layout);
