// The dialog for another folder, which comes when images could not be saved.
#include <filesystem>

#include "tests/gtk/window_driver.h"

static const char *const TITLE = "Save images into folder";

static bool open_dialog(WindowProgram *window, const std::string &failed) {
    const WindowCall call = {{window->files.path(failed)}, {}, QUARN_FOLDER_DIALOG_PROGRAM};
    program_launch(window, call);
    return program_connect(window) && accessible_exists(window_dialog(*window, TITLE));
}

static std::string printed(WindowProgram *window) {
    EXPECT_TRUE(program_wait(window)) << program_report(*window);
    EXPECT_EQ(window->result.status, 0) << window->result.error;
    EXPECT_EQ(window->result.error, "");
    return window->result.output;
}

TEST(FolderDialog, GivesTheFolderThatIsChosen) {
    NEEDS_WINDOW();
    WindowProgram window;
    const std::string other = window.files.path("other f\xC3\xB6lder");
    std::filesystem::create_directory(other);
    ASSERT_TRUE(open_dialog(&window, "job 2024-05-01 13-45-10")) << program_report(window);
    window_choose(window, TITLE, other);
    EXPECT_EQ(printed(&window), other);
}

// The folder above the one that failed; when that is gone too, the nearest one that is there.
TEST(FolderDialog, StartsAboveTheFolderThatFailed) {
    NEEDS_WINDOW();
    for (const char *failed : {"jobs/a 2024", "jobs/gone/b 2024"}) {
        WindowProgram window;
        std::filesystem::create_directories(window.files.path("jobs/inside"));
        ASSERT_TRUE(open_dialog(&window, failed)) << program_report(window);
        Accessible dialog = window_dialog(window, TITLE);
        EXPECT_SOON(true, accessible_exists(accessible_find(dialog, "table cell", "inside")))
            << failed << "\n"
            << accessible_tree(dialog);
        window_cancel(window, TITLE);
        EXPECT_EQ(printed(&window), "(none)");
    }
}

TEST(FolderDialog, IsCancelledWithTheProgram) {
    NEEDS_WINDOW();
    WindowProgram window;
    ASSERT_TRUE(open_dialog(&window, "a 2024")) << program_report(window);
    program_signal(window.run, SIGTERM);
    EXPECT_EQ(printed(&window), "(none)");
}
