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
#include "tests/app/app_inputs.h"
#include "tests/app/test_frontend.h"

// A user whose data lies in a folder of the test.
struct UserFixture {
    TemporaryFolder folder;
    TestFrontEnd front;  // finds the installed files in `folder`
    std::string previous;

    UserFixture() : front(test_utf8(folder.path).c_str()) {
        const char *before = std::getenv("XDG_DATA_HOME");
        previous = before != nullptr ? before : "";
        setenv("XDG_DATA_HOME", test_utf8(folder.path).c_str(), 1);
        test_file_write(colors(), "Red word 255, 0, 0\n");
    }
    ~UserFixture() { setenv("XDG_DATA_HOME", previous.c_str(), 1); }
    UserFixture(const UserFixture &) = delete;
    UserFixture &operator=(const UserFixture &) = delete;

    std::wstring colors() const { return folder.file(L"colors.txt"); }
    std::wstring log() const { return folder.file(L"Dalvine/Quarn/log.txt"); }
};

TEST(AppOpenFiles, MakesTheDataFolderAndTheLog) {
    UserFixture fixture;
    EXPECT_EQ(app_open_files(&fixture.front.state), 0);
    EXPECT_EQ(wstring_text(fixture.front.state.appdata_path), fixture.folder.file(L"Dalvine/Quarn"));
    EXPECT_EQ(test_file_read(fixture.log()), "--- QUARN LOG FILE ---\n");
    EXPECT_EQ(fixture.front.state.picture_style.width, 1920);
    EXPECT_EQ(g_app, &fixture.front.state);
    f32 rgb[3] = {};
    EXPECT_EQ(color_lookup("Red", rgb), 0);
}

TEST(AppOpenFiles, TruncatesTheLogOfTheStartBefore) {
    UserFixture fixture;
    EXPECT_EQ(app_open_files(&fixture.front.state), 0);
    log_write(L"of the first start");
    app_end(&fixture.front.state);
    EXPECT_EQ(test_file_read(fixture.log()), "--- QUARN LOG FILE ---\nof the first start\n");
    app_start(&fixture.front.state, &TEST_FRONTEND, test_utf8(fixture.folder.path).c_str());
    EXPECT_EQ(app_open_files(&fixture.front.state), 0);
    EXPECT_EQ(test_file_read(fixture.log()), "--- QUARN LOG FILE ---\n");
}

TEST(AppOpenFiles, FailsWithoutADataFolder) {
    UserFixture fixture;
    test_file_write(fixture.folder.file(L"Dalvine"), "a file in the place of the folder");
    EXPECT_EQ(app_open_files(&fixture.front.state), 1);
    EXPECT_EQ(fixture.front.messages(), "Could not initialize application data folder.\n");
}

TEST(AppOpenFiles, FailsWithoutColourNames) {
    UserFixture fixture;
    EXPECT_TRUE(platform_file_delete(fixture.colors().c_str()));
    EXPECT_EQ(app_open_files(&fixture.front.state), 1);
    EXPECT_EQ(fixture.front.messages(), "Could not load color file. Redo installation.\n");
}

TEST(AppWelcome, TellsWhatToDoFirst) {
    const TestFrontEnd front;
    app_welcome();
    EXPECT_EQ(
        front.console(),
        "Select menu \"Load GDS\" to load a GDS database and then menu \"Run Process\" to run a process "
        "file\r\n\r\n");
}

TEST(AppClose, EndsAnIdleProgramAtOnce) {
    TestFrontEnd front;
    EXPECT_EQ(app_close(&front.state), 1);
    EXPECT_EQ(front.console(), "Cleaning up ...\r\n");
    EXPECT_EQ(front.state.quit_pending, 0);
}

// Closing during a run only asks for its end; the end of the run then ends the program.
TEST(AppClose, WaitsForTheEndOfARun) {
    const TemporaryFolder folder;
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
            EXPECT_EQ(front.state.stop_requested, 1);
        }
    };
    EXPECT_EQ(front.run(), 0);
    EXPECT_EQ(close_result, 0);
    EXPECT_EQ(front.run_done_result, 1) << "the program should end";
    EXPECT_EQ(front.status()[STATUS_PROCESS], "Closing after this step");
    const std::string console = front.console();
    EXPECT_EQ(console.find("Executing B"), std::string::npos);
    EXPECT_EQ(console.find("Use left and right arrows"), std::string::npos);
    EXPECT_NE(console.find("Cleaning up ...\r\n"), std::string::npos);
}

// The worker sets and clears `running` itself; what the user does just before or after must find the
// program in a run all the same.
TEST(RunActive, KeepsCommandsOutAtBothEndsOfARun) {
    TestFrontEnd front;
    front.state.run_active = 1;
    front.layout_path = L"none.gds";
    load_gds_command(&front.state);
    EXPECT_EQ(run_command(&front.state), 1);
    save_images_command(&front.state);
    EXPECT_TRUE(front.calls().empty());
    EXPECT_TRUE(front.status().empty());
    EXPECT_EQ(app_close(&front.state), 0);
    EXPECT_EQ(front.state.quit_pending, 1);
    menu_update(&front.state);
    EXPECT_FALSE(front.menu()[MENU_LOAD_GDS]);
}

TEST(DataFileFind, TakesTheFirstPlaceThatHasTheFile) {
    const TemporaryFolder folder;
    const TestFrontEnd front;
    test_file_write(folder.file(L"x.txt"), "");
    const TemporaryFolder other;
    test_file_write(other.file(L"y.txt"), "");
    DataPlaces places = data_places(folder.path.c_str());
    EXPECT_EQ(places.count, 1) << "a folder that is given is searched alone";
    Owned<WString> path(data_file_find(&places, L"x.txt"));
    EXPECT_EQ(folder.file(L"x.txt"), wstring_text(path.get()));
    const CurrentFolder elsewhere(other.path);  // where there is one
    EXPECT_EQ(data_file_find(&places, L"y.txt"), nullptr);
    EXPECT_EQ(front.diagnostics(), test_utf8(folder.file(L"y.txt")) + ": there is no such file\n");
    data_places_free(&places);

    const CurrentFolder current(folder.path);
    places = data_places(nullptr);
    EXPECT_EQ(places.count, 4);
    path.reset(data_file_find(&places, L"x.txt"));
    EXPECT_STREQ(wstring_text(path.get()), L"x.txt") << "the current folder comes first";
    data_places_free(&places);
}
