// Start and end of a program with a window, without the window. The data folder is found through the
// environment here.
#include "app/startup.h"

#include <gtest/gtest.h>

#include <cstdlib>

#include "app/commands.h"
#include "app/data_files.h"
#include "app/frontend.h"
#include "log/log.h"
#include "process/color_table.h"
#include "tests/app/app_scene.h"
#include "tests/app/test_frontend.h"

// A user whose data lies in a folder of the test.
struct UserScene {
    TemporaryFolder folder;
    TestFrontEnd front;
    std::string previous;

    UserScene() {
        const char *before = std::getenv("XDG_DATA_HOME");
        previous = before != nullptr ? before : "";
        setenv("XDG_DATA_HOME", test_utf8(folder.path).c_str(), 1);
        test_file_write(colors(), "Red word 255, 0, 0\n");
    }
    ~UserScene() {
        app_end(&front.state);
        g_app = &front.state;
        setenv("XDG_DATA_HOME", previous.c_str(), 1);
    }
    UserScene(const UserScene &) = delete;
    UserScene &operator=(const UserScene &) = delete;

    std::wstring colors() const { return folder.file(L"colors.txt"); }
    std::wstring log() const { return folder.file(L"Dalvine/Quarn/log.txt"); }
};

TEST(AppStart, MakesTheDataFolderAndTheLog) {
    UserScene scene;
    EXPECT_EQ(0, app_start(&scene.front.state, scene.colors().c_str()));
    EXPECT_EQ(scene.folder.file(L"Dalvine/Quarn"), wstring_text(scene.front.state.appdata_path));
    EXPECT_EQ("--- QUARN LOG FILE ---\n", test_file_read(scene.log()));
    EXPECT_EQ(1920, scene.front.state.image_width);
    EXPECT_EQ(&scene.front.state, g_app);
    f32 rgb[3] = {};
    EXPECT_EQ(0, color_lookup("Red", rgb));
}

TEST(AppStart, TruncatesTheLogOfTheStartBefore) {
    UserScene scene;
    EXPECT_EQ(0, app_start(&scene.front.state, scene.colors().c_str()));
    log_write(L"of the first start");
    app_end(&scene.front.state);
    EXPECT_EQ("--- QUARN LOG FILE ---\nof the first start\n", test_file_read(scene.log()));
    EXPECT_EQ(0, app_start(&scene.front.state, scene.colors().c_str()));
    EXPECT_EQ("--- QUARN LOG FILE ---\n", test_file_read(scene.log()));
}

TEST(AppStart, FailsWithoutADataFolder) {
    UserScene scene;
    test_file_write(scene.folder.file(L"Dalvine"), "a file in the place of the folder");
    EXPECT_EQ(1, app_start(&scene.front.state, scene.colors().c_str()));
    EXPECT_EQ("Could not initialize application data folder.\n", scene.front.messages());
}

TEST(AppStart, FailsWithoutColourNames) {
    UserScene scene;
    EXPECT_EQ(1, app_start(&scene.front.state, scene.folder.file(L"none.txt").c_str()));
    EXPECT_EQ("Could not load color file. Redo installation.\n", scene.front.messages());
}

TEST(AppWelcome, TellsWhatToDoFirst) {
    TestFrontEnd front;
    app_welcome();
    EXPECT_EQ(
        "Select menu \"Load GDS\" to load a GDS database and then menu \"Run Process\" to run a process "
        "file\r\n\r\n",
        front.console());
}

TEST(AppClose, EndsAnIdleProgramAtOnce) {
    TestFrontEnd front;
    EXPECT_EQ(1, app_close(&front.state));
    EXPECT_EQ("Cleaning up ...\r\n", front.console());
    EXPECT_EQ(0, front.state.quit_pending);
}

// Closing during a run only asks for its end; the end of the run then ends the program.
TEST(AppClose, WaitsForTheEndOfARun) {
    TemporaryFolder folder;
    TestFrontEnd front;
    front.layout_path = folder.file(L"layout.gds");
    test_file_write(front.layout_path, small_layout_bytes());
    load_gds_command(&front.state);
    front.process_path = folder.file(L"p.txt");
    test_file_write(front.process_path, process_text(deposition_line("A") + deposition_line("B")));
    i32 close_result = -1;
    front.on_console = [&](const std::string &text) {
        if (text.find("Executing A") != std::string::npos) {
            close_result = app_close(&front.state);
            EXPECT_EQ(1, front.state.stop_requested);
        }
    };
    EXPECT_EQ(0, front.run());
    EXPECT_EQ(0, close_result);
    EXPECT_EQ(1, front.run_done_result) << "the program should end";
    EXPECT_EQ("Closing after this step", front.status()[STATUS_PROCESS]);
    std::string console = front.console();
    EXPECT_EQ(std::string::npos, console.find("Executing B"));
    EXPECT_EQ(std::string::npos, console.find("Use left and right arrows"));
    EXPECT_NE(std::string::npos, console.find("Cleaning up ...\r\n"));
}

// The worker sets and clears `running` itself; what the user does just before or after must find the
// program in a run all the same.
TEST(RunActive, KeepsCommandsOutAtBothEndsOfARun) {
    TestFrontEnd front;
    front.state.run_active = 1;
    front.layout_path = L"none.gds";
    load_gds_command(&front.state);
    EXPECT_EQ(1, run_command(&front.state));
    save_images_command(&front.state);
    EXPECT_TRUE(front.calls().empty());
    EXPECT_TRUE(front.status().empty());
    EXPECT_EQ(0, app_close(&front.state));
    EXPECT_EQ(1, front.state.quit_pending);
    menu_update(&front.state);
    EXPECT_FALSE(front.menu()[MENU_LOAD_GDS]);
}

TEST(DataFileFind, TakesTheFirstPlaceThatHasTheFile) {
    TemporaryFolder folder;
    TestFrontEnd front;
    test_file_write(folder.file(L"x.txt"), "");
    TemporaryFolder other;
    test_file_write(other.file(L"y.txt"), "");
    DataPlaces places = data_places(folder.path.c_str());
    EXPECT_EQ(1, places.count) << "a folder that is given is searched alone";
    WString *path = data_file_find(&places, L"x.txt");
    EXPECT_EQ(folder.file(L"x.txt"), wstring_text(path));
    wstring_free(path);
    CurrentFolder elsewhere(other.path);  // where there is one
    EXPECT_EQ(nullptr, data_file_find(&places, L"y.txt"));
    EXPECT_EQ(test_utf8(folder.file(L"y.txt")) + ": there is no such file\n", front.diagnostics());
    data_places_free(&places);

    CurrentFolder current(folder.path);
    places = data_places(nullptr);
    EXPECT_EQ(4, places.count);
    path = data_file_find(&places, L"x.txt");
    EXPECT_STREQ(L"x.txt", wstring_text(path)) << "the current folder comes first";
    wstring_free(path);
    data_places_free(&places);
}
