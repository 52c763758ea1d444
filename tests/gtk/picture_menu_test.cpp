// The menu on the picture: how it opens, and what its entries do.
#include <sys/resource.h>

#include <cstring>

#include "image/image_on_white.h"
#include "tests/gtk/window_driver.h"

static const char *const SAVE_TITLE = "Save this picture as";
static const char *const ENTRIES[] = {"Copy picture", "Save this picture as...", "Fine pictures",
                                      "Vertical scale"};

// An entry of the menu while it is open; nothing while it is not.
static Accessible entry(const WindowProgram &window, const std::string &name) {
    return accessible_find(window.application, "", name);
}

static bool menu_is_open(const WindowProgram &window) {
    return accessible_exists(entry(window, ENTRIES[0]));
}

// The entries that are not greyed, ", " between them.
static std::string enabled_entries(const WindowProgram &window) {
    std::string enabled;
    for (const char *name : ENTRIES) {
        if (accessible_has_state(entry(window, name), STATE_SENSITIVE)) {
            enabled += (enabled.empty() ? "" : ", ") + std::string(name);
        }
    }
    return enabled;
}

// The middle of a part of the window, which is clicked with a button of the mouse.
static void click_on(const WindowProgram &window, const char *part, u32 button) {
    const ScreenBox box = accessible_box(window_part(window, part));
    screen_click(box.x + box.width / 2, box.y + box.height / 2, button);
}

static void open_menu(const WindowProgram &window) {
    click_on(window, "Cross section", 3);
    ASSERT_SOON(true, menu_is_open(window)) << program_report(window);
}

static void close_menu(const WindowProgram &window) {
    screen_key("Escape");
    EXPECT_SOON(false, menu_is_open(window));
}

// Opens the menu and takes the entry of that letter.
static void take_entry(const WindowProgram &window, const char *letter) {
    ASSERT_NO_FATAL_FAILURE(open_menu(window));
    screen_key(letter);
    EXPECT_SOON(false, menu_is_open(window));
}

static void take_scale(const WindowProgram &window, const char *letter) {
    ASSERT_NO_FATAL_FAILURE(open_menu(window));
    screen_key("v");
    ASSERT_SOON(true, accessible_exists(entry(window, "50"))) << program_report(window);
    screen_key(letter);
    EXPECT_SOON(false, menu_is_open(window));
}

// What is checked: "fine" or "plain", and the scales.
static std::string checked_entries(const WindowProgram &window) {
    open_menu(window);
    const bool fine = accessible_has_state(entry(window, "Fine pictures"), STATE_CHECKED);
    std::string checked = fine ? "fine" : "plain";
    screen_key("v");
    EXPECT_SOON(true, accessible_exists(entry(window, "50")));
    for (const char *scale : {"1", "2", "5", "10", "50"}) {
        checked += accessible_has_state(entry(window, scale), STATE_CHECKED) ? std::string(" ") + scale : "";
    }
    screen_key("Escape");
    screen_key("Escape");
    EXPECT_SOON(false, menu_is_open(window));
    return checked;
}

// Answers the dialog with a path, by its button: the list of names that begin alike would take the key.
static void save_as(const WindowProgram &window, const std::string &path) {
    const Accessible dialog = window_dialog(window, SAVE_TITLE);
    ASSERT_TRUE(accessible_exists(dialog)) << program_report(window);
    const Accessible field = accessible_find(dialog, "text", "*");
    ASSERT_SOON(true, accessible_text(field).size() > 4) << "the proposed name";
    accessible_set_text(field, path);
    EXPECT_SOON(path, accessible_text(field));
    EXPECT_TRUE(accessible_activate(accessible_find(dialog, "push button", "Save")));
    ASSERT_TRUE(dialog_gone(window, SAVE_TITLE)) << accessible_tree(dialog);
}

static bool open_done(WindowProgram *window) {
    window->files.write("p.txt", process_text(deposition_line("A") + deposition_line("B")));
    const bool opened = program_open(window, {{"a.gds", "p.txt"}});
    EXPECT_TRUE(window_run_done(*window)) << program_report(*window);
    return opened;
}

static std::string process_field(const WindowProgram &window) {
    return window_status(window).at(3);
}

static std::wstring settings_file(const WindowProgram &window) {
    return window.files.scratch.file(L"data/Dalvine/Quarn/window.ini");
}

TEST(PictureMenu, OpensByTheMouseAndByKeys) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open(&window));
    EXPECT_FALSE(menu_is_open(window));
    const char *const without_a_picture = "Fine pictures, Vertical scale";
    for (const char *key : {"Menu", "shift+F10"}) {
        window_key(window, key);  // as the window comes up
        ASSERT_SOON(true, menu_is_open(window)) << key;
        EXPECT_EQ(enabled_entries(window), without_a_picture);
        close_menu(window);
    }
    ASSERT_NO_FATAL_FAILURE(open_menu(window));
    EXPECT_EQ(enabled_entries(window), without_a_picture);
    close_menu(window);
    // The console has a menu of its own, the status bar none.
    click_on(window, "Console", 1);
    ASSERT_SOON(true, accessible_has_state(window_part(window, "Console"), STATE_FOCUSED));
    window_key(window, "shift+F10");
    EXPECT_SOON(true, accessible_exists(entry(window, "Select All"))) << program_report(window);
    EXPECT_FALSE(menu_is_open(window));
    screen_key("Escape");
    EXPECT_SOON(false, accessible_exists(entry(window, "Select All")));
    click_on(window, "Cross section", 1);
    ASSERT_SOON(true, accessible_has_state(window_part(window, "Cross section"), STATE_FOCUSED));
    window_key(window, "Menu");
    EXPECT_SOON(true, menu_is_open(window)) << "a click brings the focus back to the picture";
    close_menu(window);
    EXPECT_EQ(window_menu(window), MENU_IDLE) << "the menu bar stays as it is";
    program_close(&window);
}

TEST(PictureMenu, HasAllEntriesWithAPicture) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_done(&window));
    ASSERT_NO_FATAL_FAILURE(open_menu(window));
    EXPECT_EQ(enabled_entries(window),
              "Copy picture, Save this picture as..., Fine pictures, Vertical scale");
    close_menu(window);
    window_key(window, "Left");
    EXPECT_SOON("Cross section after A deposition", window_picture(window)) << "the arrows browse again";
    program_close(&window);
}

// The pictures that quarn-batch makes of the same run, in "out".
static void make_reference(const WindowProgram &window, const char *format) {
    const ProgramResult result =
        window.files.run({"-o", std::string("out-") + format, "--format", format, "a.gds", "p.txt"});
    ASSERT_EQ(result.status, 0) << result.error;
}

// What clipboard_program writes of the picture in a BMP file: width and height, then red, green, blue on
// white from the top.
static std::string as_clipboard(const std::string &bmp) {
    i32 size[2] = {};
    std::memcpy(size, bmp.data() + 18, sizeof size);
    std::string text = std::to_string(size[0]) + " " + std::to_string(size[1]) + "\n";
    for (i32 y = size[1] - 1; y >= 0; --y) {
        for (i32 x = 0; x < size[0]; ++x) {
            const auto *pixel = reinterpret_cast<const u8 *>(bmp.data()) + 54 + (i64{y} * size[0] + x) * 4;
            for (i32 c = 2; c >= 0; --c) {
                text += static_cast<char>(color_over_white(pixel[c], pixel[3]));
            }
        }
    }
    return text;
}

// What another program gets from the clipboard, asked with those arguments.
static std::string clipboard(const WindowProgram &window, std::vector<std::string> arguments = {}) {
    arguments.emplace_back("clipboard");
    ProgramCall call = window.files.call(arguments);
    call.program = QUARN_CLIPBOARD_PROGRAM;
    const ProgramResult result = window.files.run_call(call);
    return result.status == 0 ? window.files.read("clipboard") : "";
}

TEST(PictureMenu, CopiesThePictureOnShow) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_done(&window));
    ASSERT_NO_FATAL_FAILURE(make_reference(window, "bmp"));
    const struct {
        const char *key, *picture, *file;
    } pictures[] = {
        {"Home", "The substrate", "out-bmp/000 The substrate.bmp"},
        {"End", "Cross section after B deposition", "out-bmp/002 Cross section after B deposition.bmp"}};
    for (const auto &picture : pictures) {
        window_key(window, picture.key);
        ASSERT_SOON(picture.picture, window_picture(window));
        ASSERT_NO_FATAL_FAILURE(take_entry(window, "c"));
        const std::string expected = as_clipboard(window.files.read(picture.file));
        EXPECT_SOON(true, clipboard(window) == expected) << picture.picture;
    }
    EXPECT_EQ(window_console(window).find("clipboard"), std::string::npos);
    program_close(&window);
}

TEST(PictureMenu, CopiesAPngWithWhatIsTransparent) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("p.txt", process_text(deposition_line("A") + deposition_line("B")));
    ASSERT_TRUE(program_open(&window, {{"--background", "none", "a.gds", "p.txt"}}));
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    const ProgramResult made =
        window.files.run({"-o", "out", "--format", "png", "--background", "none", "a.gds", "p.txt"});
    ASSERT_EQ(made.status, 0) << made.error;
    ASSERT_NO_FATAL_FAILURE(take_entry(window, "c"));
    std::string png = window.files.read("out/002 Cross section after B deposition.png");
    std::string copied;
    EXPECT_SOON(true, (copied = clipboard(window, {"--png"})).size() > 8) << program_report(window);
    // The file tells which program made it; all else is the same.
    for (std::string *bytes : {&png, &copied}) {
        const size_t at = bytes->find("IDAT");
        ASSERT_NE(at, std::string::npos);
        EXPECT_EQ((*bytes)[25], 6) << "colours with alpha";
        *bytes = bytes->substr(at);
    }
    EXPECT_TRUE(copied == png);
    program_close(&window);
}

TEST(PictureMenu, WhatWasCopiedOutlivesTheProgram) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_done(&window));
    ASSERT_NO_FATAL_FAILURE(make_reference(window, "bmp"));
    ProgramCall call = window.files.call({"--keep", "kept"});
    call.program = QUARN_CLIPBOARD_PROGRAM;
    const TemporaryFolder scratch;
    ProgramRun keeper = program_start(call, test_utf8(scratch.path));
    ASSERT_TRUE(program_wait_for(&keeper, "ready"));
    ASSERT_NO_FATAL_FAILURE(take_entry(window, "c"));
    EXPECT_SOON(true, !clipboard(window).empty());
    program_close(&window);
    const ProgramResult kept = program_finish(&keeper);
    EXPECT_EQ(kept.status, 0) << kept.error;
    const std::string bmp = window.files.read("out-bmp/002 Cross section after B deposition.bmp");
    EXPECT_TRUE(window.files.read("kept") == as_clipboard(bmp));
}

TEST(PictureMenu, SavesThePictureOnShow) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_done(&window));
    ASSERT_NO_FATAL_FAILURE(make_reference(window, "png"));
    ASSERT_NO_FATAL_FAILURE(make_reference(window, "bmp"));
    const std::string name = "Cross section after A deposition";
    const std::string bmp = window.files.read("out-bmp/001 " + name + ".bmp");
    const std::string png = window.files.read("out-png/001 " + name + ".png");
    window_key(window, "Left");
    ASSERT_SOON(name, window_picture(window));
    ASSERT_NO_FATAL_FAILURE(take_entry(window, "s"));
    const Accessible dialog = window_dialog(window, SAVE_TITLE);
    EXPECT_SOON("001 " + name + ".bmp", accessible_text(accessible_find(dialog, "text", "*")))
        << "the name that \"Save images\" gives";
    window_cancel(window, SAVE_TITLE);
    EXPECT_SOON(MENU_DONE, window_menu(window));

    const struct {
        const char *typed, *file;
        const std::string *bytes;
    } saves[] = {{"one.png", "one.png", &png}, {"two.BMP", "two.BMP", &bmp}, {"three", "three.bmp", &bmp}};
    for (const auto &save : saves) {
        ASSERT_NO_FATAL_FAILURE(take_entry(window, "s"));
        save_as(window, window.files.path(save.typed));
        EXPECT_SOON(true, window.files.exists(save.file)) << save.typed;
        EXPECT_TRUE(window.files.read(save.file) == *save.bytes) << save.typed;
    }
    EXPECT_FALSE(window.files.exists("three")) << "a name without an extension gets one";
    program_close(&window);
}

TEST(PictureMenu, AnotherKindOfFilesCountsMoreThanTheProposedName) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_done(&window));
    ASSERT_NO_FATAL_FAILURE(take_entry(window, "s"));
    const Accessible dialog = window_dialog(window, SAVE_TITLE);
    const std::string name = "002 Cross section after B deposition";
    const Accessible field = accessible_find(dialog, "text", "*");
    ASSERT_SOON(name + ".bmp", accessible_text(field));
    const ScreenBox kinds = accessible_box(accessible_find(dialog, "combo box", "BMP Files (*.bmp)"));
    ASSERT_GT(kinds.width, 0) << accessible_tree(dialog);
    screen_click(kinds.x + kinds.width / 2, kinds.y + kinds.height / 2);
    ASSERT_SOON(true,
                accessible_exists(accessible_find(window.application, "menu item", "PNG Files (*.png)")));
    screen_key("Down");
    screen_key("Return");
    EXPECT_SOON(true, accessible_exists(accessible_find(dialog, "combo box", "PNG Files (*.png)")));
    EXPECT_TRUE(accessible_activate(accessible_find(dialog, "push button", "Save")));
    EXPECT_SOON(true, window.files.exists(name + ".png"));
    EXPECT_EQ(window.files.read(name + ".png").substr(1, 3), "PNG");
    program_close(&window);
}

TEST(PictureMenu, AsksBeforeAFileIsReplaced) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_done(&window));
    window.files.write("old.bmp", "old");
    // Without the extension it is this program that asks.
    ASSERT_NO_FATAL_FAILURE(take_entry(window, "s"));
    save_as(window, window.files.path("old"));
    const Accessible box = window_dialog(window, "Quarn");
    ASSERT_TRUE(accessible_exists(box)) << program_report(window);
    screen_key("Escape");
    ASSERT_TRUE(dialog_gone(window, "Quarn"));
    window_cancel(window, SAVE_TITLE);  // which comes again
    EXPECT_EQ(window.files.read("old.bmp"), "old");

    ASSERT_NO_FATAL_FAILURE(take_entry(window, "s"));
    save_as(window, window.files.path("old"));
    EXPECT_EQ(window_message(window),
              "\"" + window.files.path("old.bmp") + "\" is there already. Replace it?");
    EXPECT_SOON(true, window.files.read("old.bmp").substr(0, 2) == "BM");
    program_close(&window);
}

TEST(PictureMenu, AFailedSaveSaysWhyAndAsksAgain) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_done(&window));
    // A disk that takes a byte less than the picture has as BMP, and much more than it has as PNG.
    ASSERT_NO_FATAL_FAILURE(make_reference(window, "bmp"));
    const size_t size = window.files.read("out-bmp/002 Cross section after B deposition.bmp").size();
    const rlimit limit = {size - 1, size - 1};
    ASSERT_EQ(prlimit(window.run.process, RLIMIT_FSIZE, &limit, nullptr), 0);
    ASSERT_NO_FATAL_FAILURE(take_entry(window, "s"));
    save_as(window, window.files.path("new.bmp"));
    const std::string message = window_message(window);
    const std::string start = "The picture could not be saved as \"" + window.files.path("new.bmp") + "\": ";
    EXPECT_EQ(message.substr(0, start.size()), start);
    EXPECT_GT(message.size(), start.size()) << "the system's reason";
    EXPECT_SOON(true, window_console_has(window, message + "\n\n"));
    save_as(window, window.files.path("good.png"));  // it asks again
    EXPECT_SOON(true, window.files.exists("good.png"));
    EXPECT_EQ(window.files.list(), (std::vector<std::string>{"a.gds", "good.png", "out-bmp", "p.txt"}))
        << "no part of a picture";
    program_close(&window);
}

TEST(PictureMenu, ChoicesHoldFromTheNextRunOnAndAreRemembered) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_done(&window));
    EXPECT_FALSE(test_file_exists(settings_file(window))) << "what nobody has chosen is not kept";
    EXPECT_EQ(checked_entries(window), "plain 1");
    ASSERT_NO_FATAL_FAILURE(take_entry(window, "f"));
    EXPECT_SOON("Fine pictures from the next run on", process_field(window));
    ASSERT_NO_FATAL_FAILURE(take_scale(window, "5"));
    EXPECT_SOON("Vertical scale 5 from the next run on", process_field(window));
    EXPECT_EQ(checked_entries(window), "fine 5");
    window_run(window, window.files.path("p.txt"));
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    EXPECT_SOON("p.txt", process_field(window)) << "the run's own text";
    program_close(&window);
    EXPECT_EQ(test_file_read(settings_file(window)), "[picture]\nfine=1\nvertical-scale=5\n");

    ASSERT_TRUE(program_open(&window));
    EXPECT_EQ(checked_entries(window), "fine 5");
    EXPECT_EQ("Not loaded", process_field(window)) << "a start says nothing";
    ASSERT_NO_FATAL_FAILURE(take_entry(window, "f"));
    EXPECT_SOON("Plain pictures from the next run on", process_field(window));
    program_close(&window);
    EXPECT_EQ(test_file_read(settings_file(window)), "[picture]\nfine=0\nvertical-scale=5\n");

    test_file_write(settings_file(window), "[picture]\nfine=maybe\nvertical-scale=3\n[picture");
    ASSERT_TRUE(program_open(&window));
    EXPECT_EQ(checked_entries(window), "plain 1");
    program_close(&window);
}

TEST(PictureMenu, WorksDuringARun) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(program_open_held(&window)) << program_report(window);
    const std::string console = window_console(window);
    ASSERT_NO_FATAL_FAILURE(take_scale(window, "2"));
    EXPECT_SOON("Vertical scale 2 from the next run on", process_field(window));
    ASSERT_NO_FATAL_FAILURE(take_entry(window, "s"));
    save_as(window, window.files.path("held.png"));
    EXPECT_SOON(true, window.files.exists("held.png"));
    ASSERT_NO_FATAL_FAILURE(take_entry(window, "c"));
    EXPECT_SOON(true, !clipboard(window).empty());
    EXPECT_EQ(window_menu(window), MENU_RUNNING);
    EXPECT_EQ(window_console(window), console) << "nothing comes between the run's own texts";
    gate_open(window);
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    program_close(&window);
}

static void expect_end_by_signal(WindowProgram *window) {
    program_signal(window->run, SIGTERM);
    ASSERT_TRUE(program_wait(window));
    EXPECT_EQ(window->result.status, 0) << window->result.error;
    EXPECT_EQ(window->result.error, "");
}

TEST(PictureMenu, TheDialogGoesWithTheProgram) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_done(&window));
    ASSERT_NO_FATAL_FAILURE(take_entry(window, "s"));
    ASSERT_TRUE(accessible_exists(window_dialog(window, SAVE_TITLE)));
    expect_end_by_signal(&window);
}

TEST(PictureMenu, TheQuestionGoesWithTheProgram) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_done(&window));
    window.files.write("old.bmp", "old");
    ASSERT_NO_FATAL_FAILURE(take_entry(window, "s"));
    save_as(window, window.files.path("old"));
    ASSERT_TRUE(accessible_exists(window_dialog(window, "Quarn"))) << program_report(window);
    expect_end_by_signal(&window);
    EXPECT_EQ(window.files.read("old.bmp"), "old");
}
