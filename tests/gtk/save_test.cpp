// "Save images" in the window: the folder, its files, and what cannot be written.
#include <sys/resource.h>

#include <ctime>
#include <filesystem>

#include "tests/gtk/window_driver.h"

namespace fs = std::filesystem;

static const char *const SAVE_BANNER = "--- Handling \"Save images\" command ---\n";

// A window with a finished run of "my run.txt" in the folder "jobs".
static bool open_done(WindowProgram *window, const std::string &steps) {
    fs::create_directory(window->files.path("jobs"));
    window->files.write("jobs/my run.txt", process_text(steps));
    const bool opened = program_open(window, {{"a.gds", window->files.path("jobs/my run.txt")}});
    EXPECT_TRUE(window_run_done(*window)) << program_report(*window);
    return opened;
}

// The folders that a save in the next seconds would make (the program's clock runs in UTC).
static std::vector<std::string> coming_folders(const WindowProgram &window) {
    std::vector<std::string> folders;
    const std::time_t now = std::time(nullptr);
    for (std::time_t later = 0; later < DEADLINE_SECONDS; ++later) {
        const std::time_t second = now + later;
        std::tm parts = {};
        gmtime_r(&second, &parts);
        char name[64] = "";
        std::strftime(name, sizeof name, "jobs/my run %Y-%m-%d %H-%M-%S", &parts);
        folders.push_back(window.files.path(name));
    }
    return folders;
}

// What the console tells of the save, with the folder's name as "#"; and that folder.
static std::string saved_text(const WindowProgram &window, std::string *folder) {
    const std::string console = window_console(window);
    std::string text = console.substr(console.find(SAVE_BANNER));
    const size_t quote = text.find('"', std::string(SAVE_BANNER).size());
    const size_t end = text.find('"', quote + 1);
    if (quote == std::string::npos || end == std::string::npos) {
        return text;
    }
    *folder = text.substr(quote + 1, end - quote - 1);
    for (size_t at = text.find(*folder); at != std::string::npos; at = text.find(*folder)) {
        text.replace(at, folder->size(), "#");
    }
    return text;
}

TEST(SaveImages, PicturesAreAsTheCommandLineWantsThem) {
    NEEDS_WINDOW();
    WindowProgram window;
    window.files.write("p.txt", process_text(""));
    ASSERT_TRUE(program_open(&window, {{"--width", "400", "--background=navy", "a.gds", "p.txt"}, {}}));
    EXPECT_TRUE(window_run_done(window)) << program_report(window);
    window_command(window, "Save images");
    EXPECT_SOON(true, window_console_has(window, "Saved polygons to "));
    std::string bytes;
    for (const auto &entry : fs::recursive_directory_iterator(window.files.path("."))) {
        if (entry.path().extension() == ".bmp") {
            bytes = test_file_read(entry.path().wstring());
        }
    }
    ASSERT_GT(bytes.size(), 58U);
    EXPECT_EQ(static_cast<u8>(bytes[18]) + static_cast<u8>(bytes[19]) * 256, 400)
        << "the width in the header";
    // The lower left corner: blue 128, green and red 0, opaque.
    EXPECT_EQ(bytes.substr(54, 4), std::string("\x80\0\0\xFF", 4));
    program_close(&window);
}

TEST(SaveImages, WritesWhatTheProgramWithoutAWindowWrites) {
    NEEDS_WINDOW();
    WindowProgram window;
    const std::string steps = deposition_line("A") + deposition_line("B");
    ASSERT_TRUE(open_done(&window, steps));
    window_command(window, "Save images");
    EXPECT_SOON(true, window_console_has(window, "Saved polygons to "));
    EXPECT_SOON(MENU_DONE, window_menu(window));
    std::string folder;
    EXPECT_EQ(std::string(SAVE_BANNER) +
                  "Saving images to folder \"#\". Please wait ...\n"
                  "Saving images completed\n"
                  "Saved polygons to \"Polygons.gds\" in the image output directory\n\n",
              saved_text(window, &folder));
    EXPECT_TRUE(text_matches(folder, window.files.path("jobs/my run ####-##-## ##-##-##"))) << folder;
    const ProgramResult reference = window.files.run({"-o", "out", "a.gds", "jobs/my run.txt"});
    ASSERT_EQ(reference.status, 0) << reference.error;
    const std::vector<std::string> names = window.files.list("out");
    ASSERT_EQ(names.size(), 4U) << "three pictures and the polygons";
    const std::string saved = folder.substr(window.files.path("").size());
    EXPECT_EQ(names, window.files.list(saved));
    for (const std::string &name : names) {
        EXPECT_TRUE(window.files.read("out/" + name) == window.files.read(saved + "/" + name)) << name;
    }
    program_close(&window);
}

// Takes the lines that begin with "Note: " off the end of a text. Returns how many.
static i32 cut_notes(std::string *text) {
    i32 count = 0;
    for (size_t at = text->rfind("\nNote: "); at != std::string::npos; at = text->rfind("\nNote: ")) {
        EXPECT_EQ(text->size() - 1, text->find('\n', at + 1)) << "nothing but notes follows";
        text->erase(at + 1);
        ++count;
    }
    return count;
}

// Where the window asks for another folder after a failure, nobody names one.
static void refuse_another_folder(const WindowProgram &window) {
    const char *const title = "Save images into folder";
    EXPECT_SOON(true, window_menu(window) == MENU_DONE || dialog_shows(window, title));
    if (dialog_shows(window, title)) {
        window_cancel(window, title);
    }
}

// Saves, expects this message (with the folder's name as "#") in a box and on the console behind `before`,
// with the system's reason in a note below it, and gives the folder.
static std::string expect_failure(const WindowProgram &window, const std::string &message,
                                  const std::string &before = "") {
    window_command(window, "Save images");
    std::string shown = window_message(window);
    EXPECT_SOON(true, window_console_has(window, shown + "\n\nNote: "));
    refuse_another_folder(window);
    EXPECT_SOON(MENU_DONE, window_menu(window));
    std::string folder;
    std::string told = saved_text(window, &folder);
    EXPECT_LE(1, cut_notes(&told)) << told;
    EXPECT_EQ(SAVE_BANNER + before + message + "\n\n", told);
    std::string expected = message;
    EXPECT_EQ(shown, expected.replace(expected.find('#'), 1, folder));
    return folder;
}

// Two saves within a second meet the same folder; here every folder of the next seconds is there already.
TEST(SaveImages, AFolderThatIsThereIsLeftAlone) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_done(&window, ""));
    for (const std::string &folder : coming_folders(window)) {
        fs::create_directory(folder);
    }
    expect_failure(window, "Output folder \"#\" already exists. Saving images failed. Try again.");
    for (const auto &folder : fs::directory_iterator(window.files.path("jobs"))) {
        EXPECT_TRUE(!folder.is_directory() || fs::is_empty(folder)) << folder;
    }
    program_close(&window);
}

// Nothing is lost: the images go into the folder that the user names instead.
TEST(SaveImages, AnotherFolderCanBeNamed) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_done(&window, deposition_line("A")));
    const std::string other = window.files.path("other");
    fs::create_directory(other);
    fs::remove_all(window.files.path("jobs"));
    window_command(window, "Save images");
    EXPECT_NE(window_message(window).find("the path doesn't exist anymore"), std::string::npos);
    window_choose(window, "Save images into folder", other);
    EXPECT_SOON(true, window_console_has(window, "Saved polygons to ")) << program_report(window);
    EXPECT_SOON(MENU_DONE, window_menu(window));
    EXPECT_EQ(window.files.list("other"),
              (std::vector<std::string>{"000 The substrate.bmp", "001 Cross section after A deposition.bmp",
                                        "Polygon.gds"}));
    program_close(&window);
}

TEST(SaveImages, TheProcessFilesFolderMayBeGone) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_done(&window, ""));
    fs::remove_all(window.files.path("jobs"));
    expect_failure(
        window,
        "Output folder \"#\" could not be created because the path doesn't exist anymore. Try again.");
    program_close(&window);
}

// A name has room for 255 bytes.
TEST(SaveImages, AnotherFaultOfTheFolderIsTold) {
    NEEDS_WINDOW();
    WindowProgram window;
    std::string name = std::string(240, 'p') + ".txt";
    window.files.write(name, process_text(""));
    ASSERT_TRUE(program_open(&window, {{"a.gds", name}}));
    ASSERT_TRUE(window_run_done(window)) << program_report(window);
    expect_failure(window, "Unknown error creating output folder \"#\". Saving images failed. Try again.");
    program_close(&window);
}

// All others and the polygons are written. No file may be larger than 5 MB: the picture of a layer of 5 um
// is, those without it are not.
TEST(SaveImages, APictureThatCannotBeWrittenIsTold) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_done(&window,
                          "deposition -name A -type t_A -thickness 5000 -sc 0 -color 200 100 50 100\n"
                          "release -targets t_A\n"));
    const rlimit limit = {5000000, 5000000};
    ASSERT_EQ(prlimit(window.run.process, RLIMIT_FSIZE, &limit, nullptr), 0);
    const std::string folder = expect_failure(window, "Error while saving image(s) to output folder \"#\"",
                                              "Saving images to folder \"#\". Please wait ...\n");
    std::vector<std::string> names = window.files.list(folder.substr(window.files.path("").size()));
    ASSERT_EQ(names.size(), 3U) << testing::PrintToString(names);
    EXPECT_EQ(names[0], "000 The substrate.bmp");
    EXPECT_EQ(names[1].substr(0, 4), "002 ");
    EXPECT_EQ(names[2], "Polygon.gds");
    program_close(&window);
}
