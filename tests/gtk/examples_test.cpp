// The window gives what the program without one gives: console text, pictures and dumps of every example; and
// the user's language changes nothing of it.
#include <cstdlib>

#include "tests/gtk/window_driver.h"

// A command of the program without a window, going on beside the window.
struct Reference {
    TemporaryFolder folder;  // its current folder
    TemporaryFolder scratch;
    ProgramRun run;
};

static void reference_start(Reference *reference, const WindowProgram &window, const std::string &layout) {
    ProgramCall call =
        window.files.call({"-o", window.files.path("out"), layout, window.files.path("p.txt")});
    call.folder = test_utf8(reference->folder.path);
    reference->run = program_start(call, test_utf8(reference->scratch.path));
}

// The example's steps up to a "stop", and a dump behind them.
static std::string with_dump(const std::string &process) {
    const size_t stop = process.find("\nstop");
    return process.substr(0, stop == std::string::npos ? process.size() : stop + 1) + "dump\n";
}

// Loads and runs by dropping the files; what the console shows of both, one behind the other.
static std::string load_and_run(const WindowProgram &window, const std::string &layout) {
    EXPECT_EQ(window_drop(window, {layout}), DROP_DONE);
    EXPECT_SOON(true, window_console_has(window, "GDS database finished loading in "));
    EXPECT_SOON(MENU_LOADED, window_menu(window));
    const std::string console = window_console(window);
    EXPECT_EQ(window_drop(window, {window.files.path("p.txt")}), DROP_DONE);
    EXPECT_TRUE(window_run_done(window)) << program_report(window);
    return console + window_console(window);
}

// The folder that "Save images" has made.
static std::string save(const WindowProgram &window) {
    window_command(window, "Save images");
    EXPECT_SOON(true, window_console_has(window, "Saved polygons to "));
    for (const std::string &name : window.files.list()) {
        if (name.rfind("p 2", 0) == 0) {
            return name;
        }
    }
    return "no folder";
}

static void expect_same_files(const WindowProgram &window, const std::string &saved) {
    const std::vector<std::string> names = window.files.list("out");
    EXPECT_GT(names.size(), 10U);
    EXPECT_EQ(names, window.files.list(saved));
    for (const std::string &name : names) {
        const std::string other = std::string(saved).append("/").append(name);
        EXPECT_TRUE(window.files.read("out/" + name) == window.files.read(other)) << name;
    }
}

struct Example {
    const char *folder;
    const char *name;
};

class Examples : public testing::TestWithParam<Example> {};

TEST_P(Examples, AsWithoutAWindow) {
    NEEDS_WINDOW();
    const std::string example =
        std::string(QUARN_SOURCE_FOLDER) + "/examples/" + GetParam().folder + "/" + GetParam().name;
    WindowProgram window;
    window.files.write("p.txt", with_dump(test_file_read(test_wide(example + ".txt"))));
    Reference reference;
    reference_start(&reference, window, example + ".gds");
    ASSERT_TRUE(program_open(&window));
    const std::string text = load_and_run(window, example + ".gds");
    ProgramResult expected = program_finish(&reference.run);
    ASSERT_EQ(expected.status, 0) << expected.error;
    expected.output.erase(expected.output.find("--- Handling \"Save images\" command ---"));
    EXPECT_EQ(mask_seconds(expected.output), mask_seconds(text));
    EXPECT_TRUE(test_file_read(reference.folder.file(L"VertexData.txt")) ==
                window.files.read("VertexData.txt"));
    expect_same_files(window, save(window));
    program_close(&window);
}

INSTANTIATE_TEST_SUITE_P(Window, Examples,
                         testing::Values(Example{"cmos-inverter", "cmos_inverter"},
                                         Example{"damascene", "damascene"},
                                         Example{"mems-cantilever", "mems_cantilever"},
                                         Example{"standard-cell", "standard_cell"},
                                         Example{"waveguide-lens", "waveguide_lens"}),
                         [](const auto &example) { return example.param.name; });

// A language whose decimals have a comma, made for this test.
static bool make_language(const std::string &folder) {
    const std::string command =
        "localedef -i de_DE -f UTF-8 '" + folder + "/de_DE.UTF-8' >'" + folder + "/log' 2>&1";
    return std::system(command.c_str()) == 0;
}

TEST(Language, DecimalsKeepTheirPoint) {
    NEEDS_WINDOW();
    WindowProgram window;
    const std::string languages = test_utf8(window.files.scratch.path);
    if (!make_language(languages)) {
        GTEST_SKIP() << "no language with decimal commas: " << window.files.read("log");
    }
    window.files.write("p.txt", process_text(deposition_line("A")) + "dump\n");
    const WindowCall call = {{}, {"LC_ALL=de_DE.UTF-8", "LOCPATH=" + languages}};
    ASSERT_TRUE(program_open(&window, call));
    const std::string text = load_and_run(window, window.files.path("a.gds"));
    ProgramResult expected =
        window.files.run({"-o", "out", window.files.path("a.gds"), window.files.path("p.txt")});
    EXPECT_EQ(expected.status, 0) << expected.error;
    expected.output.erase(expected.output.find("--- Handling \"Save images\" command ---"));
    EXPECT_NE(text.find("Grid spacing: 0.050 um\n"), std::string::npos) << text;
    EXPECT_EQ(mask_seconds(expected.output), mask_seconds(text));
    EXPECT_EQ(window.files.read("VertexData.txt").find(','), std::string::npos);
    program_close(&window);
}
