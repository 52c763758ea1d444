#include <gtest/gtest.h>

#include "app/commands.h"
#include "gds/gds_read.h"
#include "log/log.h"
#include "platform/platform.h"
#include "tests/app/app_scene.h"
#include "tests/app/test_frontend.h"

TEST(LoadGdsCommand, LoadsALayout) {
    const TemporaryFolder folder;
    TestFrontEnd front;
    front.layout_path = folder.file(L"a.gds");
    const std::string path = test_utf8(front.layout_path);
    test_file_write(front.layout_path, small_layout_bytes());

    load_gds_command(&front.state);

    EXPECT_EQ(front.state.load_result, 0);
    ASSERT_NE(front.state.layout, nullptr);
    EXPECT_EQ(front.state.layout->cell_count, 1);
    EXPECT_EQ(path, test_utf8(wstring_text(front.state.gds_path)));
    EXPECT_EQ(path, front.status()[1]);
    EXPECT_EQ(front.title(), "");
    EXPECT_TRUE(front.menu()[MENU_RUN]);
    const std::string console = mask_seconds(front.console());
    const std::string head = "--- Handling \"Load GDS\" command ---\r\n\r\nLoading GDS database " + path +
                             " and calculating cell sizes. Please wait ...\r\n\r\n";
    const std::string tail = "GDS database finished loading in # s\r\n\r\n";
    EXPECT_EQ(head, console.substr(0, head.size()));
    ASSERT_GT(console.size(), head.size() + tail.size()) << "the list of cells stands between";
    EXPECT_EQ(tail, console.substr(console.size() - tail.size()));
}

TEST(LoadGdsCommand, CallsComeInOrder) {
    const TemporaryFolder folder;
    TestFrontEnd front;
    front.layout_path = folder.file(L"a.gds");
    const std::string path = test_utf8(front.layout_path);
    test_file_write(front.layout_path, small_layout_bytes());
    load_gds_command(&front.state);

    std::vector<std::string> calls = front.calls();
    const std::string expected[] = {
        "clear",
        "console --- Handling \"Load GDS\" command ---",
        "enable 10 0",
        "enable 8 0",
        "redraw",
        "choose layout",
        "console Loading GDS database " + path + " and calculating cell sizes. Please wait ...",
        "paint now",
        "console CELLS IN DATABASE:\r\n",
        "status 1 " + path,
        "enable 4 1",
        "title ",
    };
    i32 at = 0;
    for (const std::string &call : expected) {
        const i32 found = call_index(calls, call, at);
        ASSERT_GE(found, at) << call;
        at = found + 1;
    }
    EXPECT_EQ(calls[0], "clear") << "the console is cleared before anything is said";
}

TEST(LoadGdsCommand, CancelKeepsTheLayoutAndNamesTheProgram) {
    TestFrontEnd front;
    front.state.layout = nullptr;
    load_gds_command(&front.state);
    EXPECT_EQ(front.state.load_result, -1);
    EXPECT_EQ(front.title(), "Quarn");
    EXPECT_EQ(front.console(),
              "--- Handling \"Load GDS\" command ---\r\n\r\nHandling \"Load GDS\" command canceled\r\n\r\n");
    EXPECT_TRUE(front.menu()[MENU_LOAD_GDS]);
    EXPECT_FALSE(front.menu()[MENU_RUN]);
}

TEST(LoadGdsCommand, FailureKeepsThePreviousLayout) {
    const TemporaryFolder folder;
    TestFrontEnd front;
    front.layout_path = folder.file(L"good.gds");
    test_file_write(front.layout_path, small_layout_bytes());
    load_gds_command(&front.state);
    const GdsDatabase *before = front.state.layout;
    const std::string good_path = test_utf8(front.layout_path);
    front.forget_calls();

    front.layout_path = folder.file(L"missing.gds");
    load_gds_command(&front.state);

    EXPECT_EQ(front.state.load_result, GDS_ERROR_OPEN);
    EXPECT_EQ(before, front.state.layout);
    EXPECT_EQ(good_path, test_utf8(wstring_text(front.state.gds_path)));
    EXPECT_EQ(good_path, front.status()[1]);
    EXPECT_EQ(call_index(front.calls(), "title "), -1) << "the title is left alone";
    EXPECT_TRUE(front.menu()[MENU_RUN]) << "the previous layout can be run";
    const std::string tail = "Loading GDS database failed with error: 1\r\n\r\n";
    const std::string console = front.console();
    ASSERT_GT(console.size(), tail.size());
    EXPECT_EQ(tail, console.substr(console.size() - tail.size()));
}

TEST(LoadGdsCommand, SecondLayoutReplacesTheFirst) {
    const TemporaryFolder folder;
    TestFrontEnd front;
    front.layout_path = folder.file(L"one.gds");
    test_file_write(front.layout_path, small_layout_bytes());
    load_gds_command(&front.state);
    front.layout_path = folder.file(L"two.gds");
    test_file_write(front.layout_path, layout_bytes({{1, 0, 0, 10, 10}, {2, 0, 0, 10, 10}}));
    load_gds_command(&front.state);
    EXPECT_EQ(front.state.layout->cells[0].polygon_count, 2);
    EXPECT_EQ(test_utf8(front.layout_path), front.status()[1]);
}

// Seconds are told, of the milliseconds that the clock counts.
TEST(LoadGdsCommand, TellsTheElapsedTime) {
    static f64 now_ms;
    now_ms = 50.0;
    platform_clock_replace([] { return now_ms += 1250.0; });
    const TemporaryFolder folder;
    TestFrontEnd front;
    front.layout_path = folder.file(L"a.gds");
    test_file_write(front.layout_path, small_layout_bytes());
    load_gds_command(&front.state);
    platform_clock_replace(nullptr);
    EXPECT_NE(std::string::npos, front.console().find("GDS database finished loading in 1.250 s\r\n\r\n"));
}

TEST(LoadGdsCommand, WhyALayoutFailedStandsInTheConsole) {
    const TemporaryFolder folder;
    TestFrontEnd front;
    front.layout_path = folder.file(L"missing.gds");
    diagnostic_set_sink(nullptr);  // as in the desktop programs
    load_gds_command(&front.state);
    const std::string told = "Loading GDS database failed with error: 1\r\n\r\n";
    const size_t end = front.console().find(told) + told.size();
    const std::string note = "Note: " + test_utf8(front.layout_path) + ": error 1: ";
    EXPECT_EQ(note, front.console().substr(end, note.size()));
}

TEST(LoadGdsCommand, ALayoutThatIsCutOffSaysSoInTheConsole) {
    const TemporaryFolder folder;
    TestFrontEnd front;
    front.layout_path = folder.file(L"cut.gds");
    // ENDLIB takes the last 4 bytes; one byte is left of it.
    std::string bytes = small_layout_bytes();
    bytes.resize(bytes.size() - 3);
    test_file_write(front.layout_path, bytes);
    diagnostic_set_sink(nullptr);
    load_gds_command(&front.state);
    const std::string note = "Note: " + test_utf8(front.layout_path) +
                             ": warning: the file ends inside the record at byte offset " +
                             std::to_string(bytes.size() - 1) + ", without ENDLIB; it may be incomplete\r\n";
    EXPECT_NE(std::string::npos, front.console().find("GDS database finished loading in"));
    ASSERT_GE(front.console().size(), note.size());
    EXPECT_EQ(note, front.console().substr(front.console().size() - note.size()));
}

TEST(LoadGdsCommand, AReloadSaysThatThePictureIsOfTheLayoutBefore) {
    const TemporaryFolder folder;
    TestFrontEnd front;
    front.layout_path = folder.file(L"a.gds");
    test_file_write(front.layout_path, small_layout_bytes());
    diagnostic_set_sink(nullptr);
    load_gds_command(&front.state);
    EXPECT_EQ(std::string::npos, front.console().find("Note: "));
    images_create(&front.state, 1);
    front.state.images[0] = image_create(1, 1, L"The substrate");
    front.state.image_count = 1;
    load_gds_command(&front.state);
    const std::string note = "Note: the picture on show belongs to the layout that was loaded before\r\n";
    ASSERT_GE(front.console().size(), note.size());
    EXPECT_EQ(note, front.console().substr(front.console().size() - note.size()));
}
