#include "tests/examples/example_run.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <sstream>
#ifndef _WIN32
#include <sys/wait.h>
#endif

#include "tests/support/test_support.h"

// The example's process file with another grid, cut behind one line, and a dump at its end.
static std::string process_text(const std::string &path, const std::string &last_line, int grid_n) {
    std::istringstream lines(test_file_read(test_wide(path)));
    std::string text;
    bool found = last_line.empty();
    for (std::string line; std::getline(lines, line);) {
        if (line.rfind("stop", 0) == 0) {
            break;
        }
        const size_t grid = line.find(" -N ");
        if (grid != std::string::npos) {
            const size_t number = grid + 4;
            line.replace(number, line.find(' ', number) - number, std::to_string(grid_n));
        }
        text += line + "\n";
        if (!last_line.empty() && line.rfind(last_line, 0) == 0) {
            found = true;
            break;
        }
    }
    EXPECT_TRUE(found) << path << " has no line that begins with " << last_line;
    return text + "dump\n";
}

static void parse_dump(Dump *dump) {
    std::istringstream lines(dump->text);
    DumpPoint point = {};
    int column = -1;
    auto finish = [&]() {
        if (column >= 0) {
            dump->columns[column].push_back(point);
        }
        point = {};
        column = -1;
    };
    for (std::string line; std::getline(lines, line);) {
        int top_layer = 0;
        int row = 0;
        int slot = 0;
        double height = 0;
        DumpLayer layer = {};
        if (std::sscanf(line.c_str(), "TOPLAYER: %d\tHEIGHT: %lf", &top_layer, &height) == 2) {
            finish();
            point.top_layer = top_layer;
            point.height = height;
        } else if (std::sscanf(line.c_str(), "M: %d\tN: %d\tL: %d\tBOT: %lf\tTOP: %lf\tTHI: %lf", &row,
                               &column, &slot, &layer.bottom, &layer.top, &layer.thickness) == 6) {
            point.layers[slot] = layer;
        }
    }
    finish();
}

#ifdef _WIN32
static const std::string CHANGE_FOLDER = "cd /d ";
#else
static const std::string CHANGE_FOLDER = "cd ";
#endif

// The exit status of a command of the system's shell; -1 when a signal ended it.
static int shell(const std::string &command) {
    int status = std::system(command.c_str());
#ifndef _WIN32
    status = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
#endif
    return status;
}

// Runs the program in a folder with these arguments; what it prints goes to console.txt there. Returns its
// exit status.
static int run_program(const TemporaryFolder &folder, const std::string &arguments) {
    return shell(CHANGE_FOLDER + "\"" + test_utf8(folder.path) + "\" && \"" QUARN_BATCH "\" " + arguments +
                 " > console.txt 2>&1");
}

static std::string layout_argument(const std::string &layout) {
    return " \"" QUARN_SOURCE_DIR "/examples/" + layout + "\"";
}

// On the process file in the folder.
static int run_batch(const TemporaryFolder &folder, const std::string &layout) {
    return run_program(folder, "--no-images --data \"" QUARN_SOURCE_DIR "/data\" -o out" +
                                   layout_argument(layout) + " process.txt");
}

BatchRun batch_run(const std::string &process_file, const std::string &layout) {
    const TemporaryFolder scratch;
    test_file_write(scratch.file(L"process.txt"), process_file);
    const int status = run_batch(scratch, layout);
    return {status, test_text_read(scratch.file(L"console.txt"))};
}

BatchRun batch_layout(const std::string &options, const std::string &layout) {
    const TemporaryFolder scratch;
    const int status = run_program(scratch, options + layout_argument(layout));
    return {status, test_text_read(scratch.file(L"console.txt"))};
}

BatchRun batch_cells(const std::string &layout) {
    return batch_layout("--cells", layout);
}

Dump example_run(const std::string &folder, const std::string &name, const std::string &last_line,
                 int grid_n) {
    Dump dump = {};
    const TemporaryFolder scratch;
    const std::string example = folder + "/" + name;
    test_file_write(scratch.file(L"process.txt"),
                    process_text(QUARN_SOURCE_DIR "/examples/" + example + ".txt", last_line, grid_n));
    dump.exit_status = run_batch(scratch, example + ".gds");
    dump.console = test_text_read(scratch.file(L"console.txt"));
    EXPECT_EQ(dump.exit_status, 0) << dump.console;
    if (dump.exit_status == 0) {
        dump.text = test_text_read(scratch.file(L"VertexData.txt"));
        parse_dump(&dump);
    }
    return dump;
}
