// process_fuzz.cpp: random bytes through the reader of process files. A folder of inputs given as the
// first argument is filled with seeds before the run.
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>

#include "log/log.h"
#include "platform/owned_file.h"
#include "process/process_file.h"

static const char *const SEEDS[] = {
    "settings -version 3 -N 500 -angle 20 -use_nm -heights -legend\n"
    "gds -cell TOP\nlocation -x 0 -y -1.5 -dx 2000 -dy 1e3\n"
    "deposition -name OXIDE -type ox -thickness 100 -sc 0.5 -color 255 0 0 50 -alpha 0.5\n"
    "coating -name SOG -type sg -thickness 250 -dop 0.75 -rr 0.5 -color 1 2 3 4\n"
    "photo -name GATE -mask_id 12 -datatype 44 -type 1 -res 250 -taper 80 -rr 500 -thickness 600\n"
    "etch -targets ox sg -depth 300 -iso 0.5\n"
    "strip -name GATE\nrelease -targets ox -name FREE\ndump\nstop\nfoo\n",
    "settings -version 3\r\ngds -cell A\r\nlocation -x 0 -y 0 -dx 10 -dy 5\r\n\r\n# comment\r\n",
    "gen -version 3\ngds\nlocation\ndeposition\ncoating\nphoto\netch\nstrip\nrelease\n",
    "settings -version 2.5 -N -1\nsettings -N 99999999999 -angle x\ngds -cell -x\n"
    "location -x nan -y inf -dx -4 -dy 5um\ndeposition -name A -type -scolor red -sc 2 -alpha -1\n",
    "settings -version 3\ndeposition -name A -type a -color 1 2 -3\ndeposition -name A -type a -color 1.5\n"
    "etch -targets\tb a -depth\n",
};

static void write_file(const std::filesystem::path &path, const std::string &text) {
    std::ofstream stream(path, std::ios::binary);
    stream.write(text.data(), static_cast<std::streamsize>(text.size()));
}

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer calls it by this name
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv) {
    diagnostic_set_sink([](const wchar_t *) {});  // else they would be kept for a console
    for (i32 i = 1; i < *argc; ++i) {
        const char *argument = (*argv)[i];
        if (argument[0] == '-' || !std::filesystem::is_directory(argument)) {
            continue;
        }
        std::filesystem::path folder = argument;
        i32 number = 0;
        for (const char *seed : SEEDS) {
            write_file(folder / ("seed-" + std::to_string(number++)), seed);
        }
        write_file(folder / "seed-long",
                   std::string(SEEDS[0]) + "gds -cell " + std::string(3000, 'c') + " -x");
        write_file(folder / "seed-zero", std::string(SEEDS[1]) + std::string(1, '\0') + "dump" + '\0' + "\n");
        break;
    }
    return 0;
}

static void expect(bool condition, const char *what) {
    if (!condition) {
        std::fprintf(stderr, "broken promise: %s\n", what);
        std::abort();
    }
}

// What holds for every file, and what the simulation relies on when a file is accepted.
static void check_result(const Stack &stack, i32 result) {
    expect(result == 0 || result == 1, "the result is 0 or 1");
    expect(stack.steps != nullptr && stack.steps->count >= 1, "the substrate is there");
    for (i32 i = 0; i < stack.steps->count; ++i) {
        const ProcessStep *step = stack.steps->items[i];
        bool is_film = step->kind == STEP_DEPOSITION || step->kind == STEP_COATING;
        expect(!is_film || (step->material != nullptr && step->label != nullptr), "a film has its texts");
        expect(step->title != nullptr || i == 0 || step->kind == STEP_DUMP, "a step has a title");
    }
    if (result == 0) {
        expect(stack.grid_n >= 200 && stack.grid_n <= 2000, "the grid is in its range");
        expect(stack.camera_angle >= 0 && stack.camera_angle <= 89, "the angle is in its range");
        expect(stack.cell_name != nullptr, "there is a cell");
        expect(!(stack.width <= 0.0F) && !(stack.depth <= 0.0F), "the section has an extent");
    }
}

// NOLINTNEXTLINE(readability-identifier-naming): the fuzzer calls it by this name
extern "C" int LLVMFuzzerTestOneInput(const u8 *bytes, size_t size) {
    if (size == 0) {
        return 0;  // a stream over no memory cannot be opened
    }
    i64 blocks = memory_live_blocks();
    std::string copy(reinterpret_cast<const char *>(bytes), size);
    OwnedFile file(fmemopen(copy.data(), size, "r"));
    expect(file != nullptr, "a stream over memory opens");
    Stack stack = {};
    i32 result = process_read_stream(&stack, file.get());
    file.reset();
    check_result(stack, result);
    memory_free(stack.cell_name);
    memory_free(stack.process_text);
    step_list_free(stack.steps);
    expect(memory_live_blocks() == blocks, "everything is given back");
    return 0;
}
