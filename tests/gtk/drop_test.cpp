// Files dropped on the window.
#include "tests/gtk/window_driver.h"

TEST(Drop, ALayoutIsLoadedAndAProcessFileRun) {
    NEEDS_WINDOW();
    WindowProgram window;
    const std::string name = "l\xC3\xA4nge 1%.gds";
    window.files.write(name, small_layout_bytes());
    window.files.write("p.txt", process_text(deposition_line("A")));
    ASSERT_TRUE(program_open(&window));
    EXPECT_EQ(window_drop(window, {window.files.path(name)}), DROP_DONE);
    EXPECT_SOON(true, window_console_has(window, "GDS database finished loading in "));
    ASSERT_SOON(MENU_LOADED, window_menu(window));
    EXPECT_EQ(window.files.path(name), window_status(window)[1]);
    EXPECT_EQ(window_drop(window, {window.files.path("p.txt")}), DROP_DONE);
    EXPECT_TRUE(window_run_done(window)) << program_report(window);
    EXPECT_EQ(window_picture(window), "Cross section after A deposition");
    program_close(&window);
}

TEST(Drop, BothAtOnceInAnyOrder) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("p.txt", process_text(""));
    ASSERT_TRUE(program_open(&window));
    EXPECT_EQ(window_drop(window, {window.files.path("p.txt"), window.files.path("a.gds")}), DROP_DONE);
    EXPECT_TRUE(window_run_done(window)) << program_report(window);
    EXPECT_EQ(window_picture(window), "The substrate");
    program_close(&window);
}

// What comes of it, rather than the answer to the drag, since a window may say "of use" before it looks.
TEST(Drop, WhatIsOfNoUseIsAnsweredAndChangesNothing) {
    NEEDS_WINDOW();
    const struct {
        const char *name;
        const char *message;
    } drops[] = {
        {"p.txt", "A process file needs a layout. Load the layout first, or drop both files together."},
        {"picture.png",
         "Quarn opens layouts (.gds) and process files (.txt). Nothing else can be dropped here."},
        {"gds", "Quarn opens layouts (.gds) and process files (.txt). Nothing else can be dropped here."},
    };
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    for (const auto &drop : drops) {
        window.files.write(drop.name, process_text(""));
        EXPECT_NE(window_drop(window, {window.files.path(drop.name)}), DROP_SILENCE);
        EXPECT_EQ(drop.message, window_message(window)) << drop.name;
        EXPECT_EQ(window_menu(window), MENU_IDLE) << drop.name;
        EXPECT_EQ(window_console(window), WELCOME_TEXT) << drop.name;
    }
    program_close(&window);
}

// A signal closes the box and the window.
TEST(Drop, TheAnswerDoesNotKeepTheProgram) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("picture.png", "x");
    ASSERT_TRUE(program_open(&window));
    EXPECT_NE(window_drop(window, {window.files.path("picture.png")}), DROP_SILENCE);
    ASSERT_TRUE(accessible_exists(window_dialog(window, "Quarn")));
    program_signal(window.run, SIGTERM);
    ASSERT_TRUE(program_wait(&window));
    EXPECT_EQ(window.result.status, 0) << window.result.error;
    EXPECT_EQ(window.result.error, "");
}

TEST(Drop, NothingIsTakenDuringARun) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open_held(&window)) << program_report(window);
    const std::string console = window_console(window);
    for (const char *name : {"a.gds", "p.txt"}) {
        EXPECT_NE(window_drop(window, {window.files.path(name)}), DROP_SILENCE);
    }
    EXPECT_EQ(console, window_console(window));
    EXPECT_EQ(window_menu(window), MENU_RUNNING);
    gate_open(window);
    EXPECT_TRUE(window_run_done(window)) << program_report(window);
    program_close(&window);
}
