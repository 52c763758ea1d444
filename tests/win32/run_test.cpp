// "Run Process" through the real dialog: texts, states, pictures as they come.
#include <gtest/gtest.h>

#include "app/commands.h"
#include "tests/app/app_scene.h"
#include "tests/win32/dialog_driver.h"
#include "tests/win32/painted_frames.h"
#include "tests/win32/window_driver.h"

static const std::string HEAD = "--- Handling \"Run\" command ---\r\n\r\n";

// A program with a layout loaded.
struct LoadedDesktop : Desktop {
    bool ready;
    LoadedDesktop() { ready = desktop_start(this) && load_layout(this, write_layout(*this)); }
};

static bool ends_with(const std::string &text, const std::string &end) {
    return text.size() >= end.size() && text.compare(text.size() - end.size(), end.size(), end) == 0;
}

TEST(RunProcess, ConsoleLogStatusAndTitle) {
    const LoadedDesktop desktop;
    ASSERT_TRUE(desktop.ready);
    menu_choose(desktop, MENU_RUN);
    HWND dialog = file_dialog_wait(L"Open process file");
    ASSERT_NE(dialog, nullptr);
    EXPECT_EQ(desktop.main, GetWindow(dialog, GW_OWNER));
    EXPECT_EQ(file_dialog_filter(dialog), "Text Files (*.txt)");
    EXPECT_EQ(menu_enabled(desktop), "about");
    EXPECT_EQ(console_text(desktop), HEAD);
    file_dialog_accept(dialog, write_process(desktop, L"p.txt", depositions(2)));
    ASSERT_TRUE(console_shows(desktop, BROWSE_HINT));
    desktop_settle(desktop);

    const std::string shown = mask_seconds(console_text(desktop));
    const size_t running = shown.find("Running process ...\r\n\r\n");
    ASSERT_NE(running, std::string::npos);
    const std::string run = shown.substr(running);
    EXPECT_EQ(run,
              "Running process ...\r\n\r\n"
              "Executing D1 deposition ... \r\nCompleted in # s\r\n\r\n"
              "Executing D2 deposition ... \r\nCompleted in # s\r\n\r\n"
              "All process steps completed in # sec\r\n\r\n" +
                  BROWSE_HINT);
    EXPECT_EQ(status_text(desktop, 3), "") << "there is no run before the first";
    EXPECT_EQ(window_text(desktop.main), "Cross section after D2 deposition");
    EXPECT_EQ(menu_enabled(desktop), "save run load about");
    const std::string log = desktop_log(desktop);
    EXPECT_NE(log.find("Prepare run\r\nSelecting the proces file\r\n"), std::string::npos);
    EXPECT_NE(log.find("Running process thread\r\n"), std::string::npos);
}

TEST(RunProcess, SubstrateAloneReportsNoStepTime) {
    LoadedDesktop desktop;
    ASSERT_TRUE(desktop.ready);
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"p.txt", "")));
    EXPECT_EQ(g_app->image_count, 1);
    EXPECT_EQ(window_text(desktop.main), "The substrate");
    EXPECT_EQ(console_text(desktop).find("Completed in"), std::string::npos);
}

TEST(RunProcess, StatusBarNamesTheRunBefore) {
    LoadedDesktop desktop;
    ASSERT_TRUE(desktop.ready);
    const std::wstring one = write_process(desktop, L"one.txt", "");
    const std::wstring two = write_process(desktop, L"two.txt", "");
    ASSERT_TRUE(run_process(&desktop, one));
    EXPECT_EQ(status_text(desktop, 3), "");
    ASSERT_TRUE(run_process(&desktop, two));
    EXPECT_EQ(status_text(desktop, 3), test_utf8(one));
    ASSERT_TRUE(run_process(&desktop, two));
    EXPECT_EQ(status_text(desktop, 3), test_utf8(two));
}

TEST(RunProcess, CancelStartsNothing) {
    const LoadedDesktop desktop;
    ASSERT_TRUE(desktop.ready);
    menu_choose(desktop, MENU_RUN);
    HWND dialog = file_dialog_wait(L"Open process file");
    ASSERT_NE(dialog, nullptr);
    file_dialog_cancel(dialog);
    desktop_settle(desktop);
    EXPECT_EQ(HEAD + "Process file selection canceled\r\n\r\n", console_text(desktop));
    EXPECT_EQ(menu_enabled(desktop), "run load about");
    EXPECT_EQ(status_text(desktop, 3), "Not loaded");
    EXPECT_EQ(g_app->image_count, 0);
}

struct RefusedRun {
    const char *name;
    std::string process;
    const char *fault;
};

class RunProcessRefuses : public testing::TestWithParam<RefusedRun> {};

TEST_P(RunProcessRefuses, AndKeepsThePicturesOfTheRunBefore) {
    LoadedDesktop desktop;
    ASSERT_TRUE(desktop.ready);
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"good.txt", depositions(2))));
    const std::string status = status_text(desktop, 3);
    const std::wstring path = desktop.file(L"bad.txt");
    test_file_write(path, GetParam().process);
    menu_choose(desktop, MENU_RUN);
    HWND dialog = file_dialog_wait(L"Open process file");
    ASSERT_NE(dialog, nullptr);
    file_dialog_accept(dialog, path);
    ASSERT_TRUE(console_shows(desktop, "Run process canceled\r\n\r\n"));
    desktop_settle(desktop);

    const std::string shown = console_text(desktop);
    EXPECT_NE(shown.find(GetParam().fault), std::string::npos) << shown;
    EXPECT_TRUE(ends_with(without_notes(shown), "Run process canceled\r\n\r\n")) << shown;
    EXPECT_EQ(menu_enabled(desktop), "save run load about");
    EXPECT_EQ(status, status_text(desktop, 3));
    EXPECT_EQ(test_utf8(wstring_text(g_app->process_path)), test_utf8(desktop.file(L"good.txt")));
    ASSERT_EQ(g_app->image_count, 3);
    painted_frames_forget();
    key_press(desktop.main, VK_LEFT);
    desktop_settle(desktop);  // the system may have asked for a paint of its own
    ASSERT_TRUE(wait_until([] { return painted_frames_count() > 0; }));
    EXPECT_EQ(window_text(desktop.main), "Cross section after D1 deposition");
    EXPECT_EQ(painted_frames().back().wrong_pixels, 0);
}

static std::string with_cell(const std::string &text, const std::string &cell) {
    std::string out = text;
    return out.replace(out.find("TOP"), 3, cell);
}

static const RefusedRun REFUSED_RUNS[] = {
    {"UnknownCommand", process_text("nonsense\n"), "Error in line 4: Unknown command"},
    {"SeveralFaults", process_text("nonsense\ndeposition\nnonsense\n"), "Error in line 6: Unknown command"},
    {"NoSuchCell", with_cell(process_text(""), "MISSING"), "MISSING"},
    {"EmptyFile", "", "Run process canceled"},
};

INSTANTIATE_TEST_SUITE_P(Each, RunProcessRefuses, testing::ValuesIn(REFUSED_RUNS),
                         [](const auto &run) { return std::string(run.param.name); });

TEST(RunProcess, PicturesAppearOneByOneWhileTheWindowAnswers) {
    LoadedDesktop desktop;
    ASSERT_TRUE(desktop.ready);
    painted_frames_forget();
    ASSERT_TRUE(run_start(&desktop, write_process(desktop, L"p.txt", depositions(10))));
    i32 asked = 0;
    i32 answered = 0;
    auto ended = [] { return ends_with(console_written(), BROWSE_HINT); };
    while (!ended() && asked < 20000) {
        ++asked;
        answered += desktop_answers(desktop, 2000) ? 1 : 0;
        Sleep(1);
    }
    EXPECT_GT(asked, 10);
    EXPECT_EQ(asked, answered) << "the window did not answer within two seconds";
    // Every picture was shown when it was new, in order, and was painted right; the system may ask for
    // a picture again in between.
    i32 newest = -1;
    for (const PaintedFrame &frame : painted_frames()) {
        EXPECT_EQ(desktop.thread_id, frame.thread_id);
        EXPECT_EQ(frame.wrong_pixels, 0) << "picture " << frame.image;
        EXPECT_TRUE(frame.image == newest || frame.image == newest + 1) << frame.image << " after " << newest;
        newest = frame.image;
    }
    EXPECT_EQ(newest, 10);
}

TEST(RunProcess, TitleFollowsTheSteps) {
    LoadedDesktop desktop;
    ASSERT_TRUE(desktop.ready);
    ASSERT_TRUE(run_start_held(&desktop, write_process(desktop, L"p.txt", depositions(3)), L"Executing D2"));
    EXPECT_EQ(window_text(desktop.main), "Cross section after D1 deposition");
    EXPECT_EQ(g_app->image_count, 2);
    EXPECT_EQ(g_app->current_image, 1);
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    EXPECT_EQ(window_text(desktop.main), "Cross section after D3 deposition");
}

TEST(RunProcess, DumpMakesNoPictureAndWritesIntoTheCurrentFolder) {
    LoadedDesktop desktop;
    ASSERT_TRUE(desktop.ready);
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"p.txt", depositions(1) + "dump\n")));
    EXPECT_EQ(g_app->image_count, 2);
    EXPECT_TRUE(test_file_exists(desktop.file(L"VertexData.txt")));
    EXPECT_EQ(window_text(desktop.main), "Cross section after D1 deposition");
}

TEST(RunProcess, ANewRunStartsWithItsFirstPicture) {
    LoadedDesktop desktop;
    ASSERT_TRUE(desktop.ready);
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"three.txt", depositions(2))));
    EXPECT_EQ(g_app->image_count, 3);
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"one.txt", "")));
    EXPECT_EQ(g_app->image_count, 1);
    EXPECT_EQ(g_app->current_image, 0);
    EXPECT_EQ(window_text(desktop.main), "The substrate");
}

TEST(RunProcess, CommandsThatAreGreyedDoNothingDuringARun) {
    LoadedDesktop desktop;
    ASSERT_TRUE(desktop.ready);
    ASSERT_TRUE(run_start_held(&desktop, write_process(desktop, L"p.txt", depositions(1)), L"Executing D1"));
    // A shortcut key or another program may send what the menu does not offer.
    const std::string before = console_text(desktop);
    for (const WPARAM command : {4, 8, 10}) {
        SendMessageW(desktop.main, WM_COMMAND, command, 0);
    }
    EXPECT_EQ(before, console_text(desktop));
    EXPECT_FALSE(message_box_is_up());
    console_release();
    EXPECT_TRUE(run_wait_end(desktop));
}
