// The desktop program's start and end: the idle window, the log, what is missing on a machine, the command
// line.
#include <filesystem>
#include <sstream>

#include "tests/gtk/window_driver.h"

namespace fs = std::filesystem;

using Texts = std::vector<std::string>;

// The lines of the log about a start, in their order, without those about single shaders and those about an
// empty render area, which come as often as it is painted.
static Texts log_lines(const WindowProgram &program) {
    Texts lines;
    std::istringstream log(program_log(program));
    for (std::string line; std::getline(log, line);) {
        const bool shader = line.find("hader") != std::string::npos || line.find("Program link") == 0;
        if (line != "No bitmap to render" && (!shader || line == "Shaders loaded and compiled")) {
            lines.push_back(line);
        }
    }
    return lines;
}

static const Texts START_LINES = {
    "--- QUARN LOG FILE ---",     "Register the main window",   "Start creating the main window",
    "Register the render window", "OpenGL Initialized",         "Main window created",
    "Main window shown",          "Shaders loaded and compiled"};

TEST(Start, IdleWindow) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    EXPECT_SOON(MENU_IDLE, window_menu(window));
    EXPECT_EQ(window_console(window), WELCOME_TEXT);
    EXPECT_SOON("Quarn", window_title(window));
    EXPECT_EQ((Texts{"GDS file:", "Not loaded", "Process file:", "Not loaded"}), window_status(window));
    EXPECT_EQ(window_picture(window), "");
    EXPECT_EQ(log_lines(window), START_LINES);
    EXPECT_SOON(true, program_log(window).find("\nNo bitmap to render\n") != std::string::npos);
    const ScreenBox box = screen_window_box(program_window(window));
    EXPECT_EQ(box.width, 1200);
    EXPECT_EQ(box.height, 800);
    program_close(&window);
}

TEST(Start, TheLogIsThatOfTheLastStart) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    window_load(window, window.files.path("a.gds"));
    program_close(&window);
    ASSERT_NE(program_log(window).find("Loading GDS file"), std::string::npos);
    ASSERT_TRUE(program_open(&window));
    EXPECT_EQ(log_lines(window), START_LINES);
    program_close(&window);
}

TEST(Start, AboutTellsNameAndVersion) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    window_command(window, "About");
    const Accessible about = window_dialog(window, "Quarn 3.0.0");
    ASSERT_TRUE(accessible_exists(about)) << program_report(window);
    std::vector<Accessible> labels = accessible_find_all(about, "label");
    ASSERT_EQ(labels.size(), 1U) << accessible_tree(about);
    EXPECT_EQ(accessible_text(labels[0]), "Quarn: software to render semicon process cross sections \n\n");
    screen_key("Return");
    EXPECT_TRUE(dialog_gone(window, "Quarn 3.0.0"));
    EXPECT_EQ(window_menu(window), MENU_IDLE);
    program_close(&window);
}

// A program that ends before it has a window: what it says on the terminal and in a message box.
struct FailedStart {
    const char *name;
    Texts environment;
    const char *terminal;  // part of it
    Texts messages;        // of the boxes, in their order; none without a display to show them on
};

TEST(Start, WhatIsMissingIsTold) {
    NEEDS_WINDOW();
    const FailedStart cases[] = {
        {"no display", {"DISPLAY=", "WAYLAND_DISPLAY="}, "there is no display", {}},
        {"no graphics",
         {"__EGL_VENDOR_LIBRARY_FILENAMES=/nonexistent"},
         "",
         {"Could not initialize graphics", "Main window creation failed"}},
        {"no data folder",
         {"XDG_DATA_HOME=/dev/null"},
         "",
         {"Could not initialize application data folder."}},
    };
    for (const FailedStart &failed : cases) {
        WindowProgram window;
        program_launch(&window, {{}, failed.environment});
        for (const std::string &message : failed.messages) {
            EXPECT_TRUE(program_connect(&window)) << failed.name;
            EXPECT_EQ(window_message(window), message) << failed.name;
        }
        ASSERT_TRUE(program_wait(&window)) << failed.name;
        EXPECT_EQ(window.result.status, 1) << failed.name << window.result.error;
        EXPECT_NE(window.result.error.find(failed.terminal), std::string::npos) << window.result.error;
    }
}

// A copy of the program without the files that lie beside the built one.
static std::string lonely_program(const WindowProgram &window) {
    std::string copy = test_utf8(window.files.scratch.path) + "/quarn";
    fs::copy_file(QUARN_PROGRAM, copy);
    return copy;
}

static void copy_data(const WindowProgram &window, const std::string &name) {
    fs::copy_file(std::string(QUARN_SOURCE_FOLDER) + "/data/" + name, window.files.path(name));
}

TEST(Start, ColorsAreNeeded) {
    NEEDS_WINDOW();
    WindowProgram window;
    program_launch(&window, {{}, {}, lonely_program(window)});
    ASSERT_TRUE(program_connect(&window));
    EXPECT_EQ(window_message(window), "Could not load color file. Redo installation.");
    ASSERT_TRUE(program_wait(&window));
    EXPECT_EQ(window.result.status, 1) << window.result.error;
}

TEST(Start, AMissingShaderIsToldOnTheConsole) {
    NEEDS_WINDOW();
    WindowProgram window;
    copy_data(window, "colors.txt");
    copy_data(window, "surface.shader");
    WindowCall call;
    call.program = lonely_program(window);
    ASSERT_TRUE(program_open(&window, call));
    const std::string console = window_console(window);
    EXPECT_NE(console.find("point.shader"), std::string::npos) << console;
    EXPECT_EQ(console.find("surface.shader"), std::string::npos) << console;
    EXPECT_SOON(MENU_IDLE, window_menu(window));
    program_close(&window);
}

TEST(Start, ABrokenShaderIsToldOnTheConsole) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("surface.shader", "nonsense");
    ASSERT_TRUE(program_open(&window));  // the current folder's file comes first
    EXPECT_NE(std::string(WELCOME_TEXT), window_console(window));
    window_load(window, window.files.path("a.gds"));
    EXPECT_SOON(MENU_LOADED, window_menu(window));
    program_close(&window);
}

TEST(CommandLine, HelpAndVersionNeedNoDisplay) {
    const BatchFixture fixture;
    for (const char *option : {"--help", "--version"}) {
        ProgramCall call = fixture.call({option});
        call.program = QUARN_PROGRAM;
        call.environment = {"DISPLAY=", "WAYLAND_DISPLAY="};
        const ProgramResult result = fixture.run_call(call);
        EXPECT_EQ(result.status, 0) << option;
        EXPECT_EQ(result.error, "") << option;
        const char *expected = std::string(option) == "--help"
                                   ? "Usage: quarn [options] [LAYOUT.gds [PROCESS.txt]]\n"
                                   : "Quarn 3.0.0\n";
        EXPECT_EQ(result.output.find(expected), 0U) << result.output;
    }
}

TEST(CommandLine, WrongUsageIsTold) {
    NEEDS_WINDOW();
    const BatchFixture fixture;
    for (const Texts &arguments : {Texts{"--bogus"}, Texts{"a.gds", "p.txt", "more"}}) {
        ProgramCall call = fixture.call(arguments);
        call.program = QUARN_PROGRAM;
        const ProgramResult result = fixture.run_call(call);
        EXPECT_EQ(result.status, 1);
        EXPECT_NE(result.error.find("Try 'quarn --help'"), std::string::npos) << result.error;
    }
}

TEST(CommandLine, ALayoutIsLoaded) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window, {{"a.gds"}, {}}));
    EXPECT_SOON(MENU_LOADED, window_menu(window));
    EXPECT_SOON(true, window_console_has(window, "GDS database finished loading in "));
    EXPECT_EQ((Texts{"GDS file:", "a.gds", "Process file:", "Not loaded"}), window_status(window));
    program_close(&window);
}

TEST(CommandLine, BothFilesAreRun) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("p.txt", process_text(deposition_line("A")));
    ASSERT_TRUE(program_open(&window, {{"a.gds", "p.txt"}, {}}));
    EXPECT_TRUE(window_run_done(window)) << program_report(window);
    EXPECT_EQ(window_title(window), "Cross section after A deposition");
    EXPECT_EQ(window_picture(window), "Cross section after A deposition");
    program_close(&window);
}

TEST(CommandLine, AColorThatIsNotThereIsTold) {
    NEEDS_WINDOW();
    WindowProgram window;
    program_launch(&window, {{"--background", "chocolat", "a.gds"}, {}});
    ASSERT_TRUE(program_connect(&window));
    EXPECT_EQ(window_message(window),
              "--background: unknown color \"chocolat\"; did you mean \"chocolate\"?");
    ASSERT_TRUE(program_wait(&window));
    EXPECT_EQ(window.result.status, 1);
}

TEST(CommandLine, WhatCannotBeReadIsTold) {
    NEEDS_WINDOW();
    const struct {
        Texts arguments;
        const char *console;  // part of it
        const char *menu;
    } cases[] = {
        {{"missing.gds", "p.txt"}, "Loading GDS database failed with error: 1\n\n", MENU_IDLE},
        {{"p.txt", "p.txt"}, "Loading GDS database failed with error: ", MENU_IDLE},
        {{"a.gds", "missing.txt"}, "Run process canceled\n\n", MENU_LOADED},
        {{"a.gds", "a.gds"}, "Run process canceled\n\n", MENU_LOADED},
    };
    for (const auto &bad : cases) {
        WindowProgram window;
        window.files.write("p.txt", process_text(""));
        ASSERT_TRUE(program_open(&window, {bad.arguments, {}}));
        EXPECT_SOON(true, window_console_has(window, bad.console)) << testing::PrintToString(bad.arguments);
        EXPECT_SOON(bad.menu, window_menu(window)) << testing::PrintToString(bad.arguments);
        EXPECT_EQ(window_picture(window), "");
        program_close(&window);
    }
}

TEST(Close, SignalsCloseTheWindow) {
    NEEDS_WINDOW();
    for (const i32 signal : {SIGTERM, SIGINT}) {
        WindowProgram window;
        ASSERT_TRUE(program_open(&window));
        program_signal(window.run, signal);
        ASSERT_TRUE(program_wait(&window));
        EXPECT_EQ(window.result.status, 0) << "signal " << signal;
        EXPECT_EQ(window.result.error, "");
    }
}

// The screen's size is given by the caller of the tests, see CMakeLists.txt.
TEST(SmallScreen, TheWindowFillsIt) {
    NEEDS_WINDOW();
    if (screen_width() >= 1200 || screen_height() >= 800) {
        GTEST_SKIP() << "the screen is large";
    }
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    const ScreenBox box = screen_window_box(program_window(window));
    EXPECT_LE(box.width, screen_width());
    EXPECT_LE(box.height, screen_height());
    for (const char *part : {"Cross section", "Console", "Status bar"}) {
        const ScreenBox place = accessible_box(window_part(window, part));
        EXPECT_GT(place.height, 0) << part;
        EXPECT_LE(place.y + place.height, screen_height()) << part;
        EXPECT_LE(place.x + place.width, screen_width()) << part;
    }
    program_close(&window);
}
