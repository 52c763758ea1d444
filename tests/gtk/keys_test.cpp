// The window without a mouse: by keys alone, and as a screen reader drives it.
#include "tests/gtk/window_driver.h"

static void finish_dialog(const WindowProgram &window, const char *title, const std::string &name) {
    window_choose(window, title, window.files.path(name));
}

TEST(Keyboard, EveryCommandByItsLetter) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("p.txt", process_text(deposition_line("A")));
    ASSERT_TRUE(program_open(&window));
    window_key(window, "alt+a");
    ASSERT_TRUE(accessible_exists(window_dialog(window, "Quarn 3.0.0"))) << program_report(window);
    screen_key("Return");
    ASSERT_TRUE(dialog_gone(window, "Quarn 3.0.0"));
    window_key(window, "alt+l");
    finish_dialog(window, "Open GDS file", "a.gds");
    ASSERT_SOON(MENU_LOADED, window_menu(window));
    window_key(window, "alt+r");
    finish_dialog(window, "Open process file", "p.txt");
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    window_key(window, "Left");
    EXPECT_SOON("The substrate", window_title(window));
    window_key(window, "alt+s");  // "Save images", since "Stop" is greyed
    EXPECT_SOON(true, window_console_has(window, "Saved polygons to ")) << program_report(window);
    window_key(window, "alt+F4");
    ASSERT_TRUE(program_wait(&window));
    EXPECT_EQ(window.result.status, 0) << window.result.error;
}

TEST(Keyboard, CommandsByTheirShortcuts) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("p.txt", process_text(deposition_line("A") + deposition_line("B")));
    ASSERT_TRUE(program_open(&window));
    window_key(window, "F1");
    ASSERT_TRUE(accessible_exists(window_dialog(window, "Quarn 3.0.0"))) << program_report(window);
    screen_key("Return");
    ASSERT_TRUE(dialog_gone(window, "Quarn 3.0.0"));
    window_key(window, "ctrl+o");
    finish_dialog(window, "Open GDS file", "a.gds");
    ASSERT_SOON(MENU_LOADED, window_menu(window));
    window_key(window, "ctrl+r");
    finish_dialog(window, "Open process file", "p.txt");
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    const struct {
        const char *key;
        const char *title;
    } browsing[] = {{"Home", "The substrate"},
                    {"End", "Cross section after B deposition"},
                    {"KP_Home", "The substrate"},
                    {"Home", "The substrate"},
                    {"Right", "Cross section after A deposition"},
                    {"End", "Cross section after B deposition"},
                    {"End", "Cross section after B deposition"}};
    for (const auto &step : browsing) {
        window_key(window, step.key);
        EXPECT_SOON(step.title, window_picture(window)) << step.key;
        EXPECT_SOON(step.title, window_title(window)) << step.key;
    }
    window_key(window, "ctrl+s");
    EXPECT_SOON(true, window_console_has(window, "Saved polygons to ")) << program_report(window);
    window_key(window, "ctrl+q");
    ASSERT_TRUE(program_wait(&window));
    EXPECT_EQ(window.result.status, 0) << window.result.error;
    EXPECT_EQ(window.result.error, "");
}

TEST(Keyboard, TheKeyOfAGreyedCommandSaysWhy) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    const std::string console = WELCOME_TEXT;
    const char *const no_layout = "Note: no layout is loaded: load one before a process file can be run\n";
    const char *const no_images = "Note: there are no images to save: run a process file first\n";
    window_key(window, "ctrl+r");
    EXPECT_SOON(console + no_layout, window_console(window));
    window_key(window, "ctrl+s");
    EXPECT_SOON(console + no_layout + no_images, window_console(window));
    window_key(window, "Home");  // and nothing to browse in
    program_close(&window);

    WindowProgram running;
    ASSERT_TRUE(program_open_held(&running)) << program_report(running);
    std::string before = window_console(running);
    for (const char *key : {"ctrl+s", "ctrl+o", "ctrl+r"}) {
        window_key(running, key);
        before += "Note: the run has not ended: images can be saved, and files opened, when it has\n";
        EXPECT_SOON(before, window_console(running)) << key;
    }
    EXPECT_EQ(window_menu(running), MENU_RUNNING);
    window_key(running, "ctrl+q");
    EXPECT_SOON("Closing after this step", std::string(window_status(running).at(3)));
    gate_open(running);
    ASSERT_TRUE(program_wait(&running));
    EXPECT_EQ(running.result.status, 0) << running.result.error;
}

TEST(Keyboard, FullScreenAndBack) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    u64 id = program_window(window);
    const i32 width = screen_window_box(id).width;
    window_key(window, "F11");
    EXPECT_SOON(screen_width(), screen_window_box(id).width);
    EXPECT_SOON(screen_height(), screen_window_box(id).height);
    window_key(window, "F11");
    EXPECT_SOON(width, screen_window_box(id).width);
    program_close(&window);
}

// Where the pointer rests on a command, and what a screen reader says of it.
TEST(Keyboard, CommandsTellTheirShortcuts) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    const char *const keys[] = {"Ctrl+S", "Ctrl+R", "", "Ctrl+O", "F1"};
    for (size_t i = 0; i < 5; ++i) {
        EXPECT_EQ(keys[i], accessible_description(window_part(window, MENU_LABELS[i]))) << MENU_LABELS[i];
    }
    program_close(&window);
}

TEST(Keyboard, TheSameLetterStopsARun) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open_held(&window)) << program_report(window);
    window_key(window, "alt+s");
    EXPECT_SOON(MENU_STOPPING, window_menu(window));
    gate_open(window);
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    program_close(&window);
}

TEST(Keyboard, TheMenuBarByF10) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("p.txt", process_text(deposition_line("A")));
    ASSERT_TRUE(program_open(&window, {{"a.gds", "p.txt"}}));
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    // The arrows move in the menu while it is open; greyed commands are passed over.
    for (const char *key : {"F10", "Right", "Right", "Return"}) {
        window_key(window, key);
    }
    window_cancel(window, "Open GDS file");
    EXPECT_SOON(MENU_DONE, window_menu(window));
    EXPECT_EQ(window_picture(window), "Cross section after A deposition");
    for (const char *key : {"F10", "Escape", "Left"}) {
        window_key(window, key);
    }
    EXPECT_SOON("The substrate", window_picture(window)) << "with the menu closed the arrows browse again";
    program_close(&window);
}

TEST(Keyboard, BrowsesWhereverTheFocusIs) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("p.txt", process_text(deposition_line("A")));
    ASSERT_TRUE(program_open(&window, {{"a.gds", "p.txt"}}));
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    const std::string console = window_console(window);
    const char *titles[] = {"The substrate", "Cross section after A deposition"};
    i32 next = 0;
    for (const char *part : {"Console", "Cross section", "Status bar"}) {
        const ScreenBox box = accessible_box(window_part(window, part));
        screen_click(box.x + box.width / 2, box.y + box.height / 2);
        window_key(window, "Left");
        EXPECT_SOON(titles[next], window_picture(window)) << part;
        next = 1 - next;
        window_key(window, "x");  // nothing can be typed
        window_key(window, "Delete");
        window_key(window, "Tab");
        window_key(window, "Left");
        EXPECT_SOON(titles[next], window_picture(window)) << part;
        next = 1 - next;
    }
    EXPECT_EQ(console, window_console(window));
    program_close(&window);
}

// What a screen reader does to a command; the window must go on answering while the dialog is open.
TEST(ScreenReader, CommandsCanBeActivated) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    EXPECT_TRUE(accessible_activate(window_part(window, "Load GDS")));
    ASSERT_TRUE(accessible_exists(window_dialog(window, "Open GDS file"))) << program_report(window);
    EXPECT_EQ(window_menu(window), MENU_STOPPING);
    window_choose(window, "Open GDS file", window.files.path("a.gds"));
    EXPECT_SOON(MENU_LOADED, window_menu(window));
    EXPECT_TRUE(accessible_activate(window_part(window, "About")));
    ASSERT_TRUE(accessible_exists(window_dialog(window, "Quarn 3.0.0"))) << program_report(window);
    screen_key("Return");
    EXPECT_TRUE(dialog_gone(window, "Quarn 3.0.0"));
    program_close(&window);
}
