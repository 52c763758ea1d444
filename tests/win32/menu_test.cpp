// Which commands are enabled, at every turn of the program's life.
#include <gtest/gtest.h>
#include <windows.h>
// After windows.h, which names the types that this one is written in.
#include <commdlg.h>

#include <cstring>

#include "app/commands.h"
#include "tests/win32/dialog_driver.h"
#include "tests/win32/import_patch.h"
#include "tests/win32/window_driver.h"

TEST(Menu, IdleLoadedRunningStoppingDone) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    EXPECT_EQ(menu_enabled(desktop), "load about") << "idle";
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
    EXPECT_EQ(menu_enabled(desktop), "run load about") << "loaded";

    ASSERT_TRUE(run_start_held(&desktop, write_process(desktop, L"p.txt", depositions(3)), L"Executing D2"));
    EXPECT_EQ(menu_enabled(desktop), "stop about") << "running";
    menu_choose(desktop, MENU_STOP);
    desktop_settle(desktop);
    EXPECT_EQ(menu_enabled(desktop), "about") << "stopping";
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    EXPECT_EQ(menu_enabled(desktop), "save run load about") << "done";

    // A second run, to its end.
    ASSERT_TRUE(run_start_held(&desktop, write_process(desktop, L"p.txt", depositions(1)), L"Executing D1"));
    EXPECT_EQ(menu_enabled(desktop), "stop about") << "running again";
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
    EXPECT_EQ(menu_enabled(desktop), "save run load about") << "done again";
}

TEST(Menu, RunningAlreadyInTheFirstStep) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
    ASSERT_TRUE(run_start_held(&desktop, write_process(desktop, L"p.txt", depositions(1)), L"Executing D1"));
    EXPECT_EQ(menu_enabled(desktop), "stop about");
    console_release();
    ASSERT_TRUE(run_wait_end(desktop));
}

struct MenuDialog {
    const char *name;
    MenuCommand command;
    const wchar_t *title;
};

TEST(Menu, AllButAboutAreGreyedDuringFileDialogs) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
    ASSERT_TRUE(run_process(&desktop, write_process(desktop, L"p.txt", "")));
    const MenuDialog dialogs[] = {{"load", MENU_LOAD_GDS, L"Open GDS file"},
                                  {"run", MENU_RUN, L"Open process file"}};
    for (const MenuDialog &shown : dialogs) {
        menu_choose(desktop, shown.command);
        HWND dialog = file_dialog_wait(shown.title);
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(menu_enabled(desktop), "about") << shown.name;
        EXPECT_FALSE(IsWindowEnabled(desktop.main)) << "the dialog does not hold its owner back";
        file_dialog_cancel(dialog);
        desktop_settle(desktop);
        EXPECT_EQ(menu_enabled(desktop), "save run load about") << shown.name;
        EXPECT_TRUE(IsWindowEnabled(desktop.main));
    }
}

static OPENFILENAMEW asked_file;
static decltype(GetOpenFileNameW) *open_file_original;

static BOOL APIENTRY open_file_watched(OPENFILENAMEW *dialog) {
    asked_file = *dialog;
    return open_file_original(dialog);
}

TEST(Menu, WhatTheFileDialogsAskFor) {
    Desktop desktop;
    open_file_original = import_replace("GetOpenFileNameW", open_file_watched);
    ASSERT_TRUE(desktop_start(&desktop));
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
    const struct {
        MenuCommand command;
        std::wstring title, filter, extension;
    } dialogs[] = {
        {MENU_LOAD_GDS, L"Open GDS file", std::wstring(L"GDS Files (*.gds)\0*.gds\0", 24), L"gds"},
        {MENU_RUN, L"Open process file", std::wstring(L"Text Files (*.txt)\0*.txt\0", 25), L"txt"},
    };
    for (const auto &shown : dialogs) {
        menu_choose(desktop, shown.command);
        HWND dialog = file_dialog_wait(shown.title.c_str());
        ASSERT_NE(dialog, nullptr);
        EXPECT_EQ(desktop.main, asked_file.hwndOwner);
        EXPECT_EQ(asked_file.nMaxFile, 260U);
        EXPECT_EQ(asked_file.Flags, static_cast<DWORD>(OFN_EXPLORER | OFN_FILEMUSTEXIST | OFN_PATHMUSTEXIST |
                                                       OFN_HIDEREADONLY));
        EXPECT_EQ(std::memcmp(shown.filter.c_str(), asked_file.lpstrFilter,
                              (shown.filter.size() + 1) * sizeof(wchar_t)),
                  0)
            << "name, pattern, and a zero behind the last";
        EXPECT_EQ(shown.extension, asked_file.lpstrDefExt);
        EXPECT_EQ(shown.title, asked_file.lpstrTitle);
        EXPECT_STREQ(asked_file.lpstrFile, L"");
        file_dialog_cancel(dialog);
        desktop_settle(desktop);
    }
}

TEST(Menu, About) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    const std::string console = console_text(desktop);
    menu_choose(desktop, MENU_ABOUT);
    const MessageBoxSeen box = message_box_wait();
    EXPECT_EQ(box.caption, "Quarn 3.0.0");
    // The box may show the line breaks at the end or not.
    const std::string text = "Quarn: software to render semicon process cross sections ";
    EXPECT_EQ(text, box.text.substr(0, text.size()));
    EXPECT_EQ(desktop.main, box.owner);
    EXPECT_EQ(box.button_count, 1);
    EXPECT_EQ(menu_enabled(desktop), "load about") << "About greys nothing";
    message_box_press_ok(box);
    EXPECT_EQ(console, console_text(desktop));
}

TEST(Menu, AboutDuringARun) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    ASSERT_TRUE(load_layout(&desktop, write_layout(desktop)));
    ASSERT_TRUE(run_start_held(&desktop, write_process(desktop, L"p.txt", depositions(3)), L"Executing D1"));
    menu_choose(desktop, MENU_ABOUT);
    const MessageBoxSeen box = message_box_wait();
    console_release();
    EXPECT_TRUE(run_wait_end(desktop)) << "the run goes on behind the box";
    EXPECT_EQ(g_app->image_count, 4);
    message_box_press_ok(box);
    desktop_settle(desktop);
    EXPECT_EQ(menu_enabled(desktop), "save run load about");
}

TEST(Menu, OtherCommandIdsDoNothing) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    const std::string console = console_text(desktop);
    for (const WPARAM id : {0, 1, 2, 3, 5, 9, 11, 1000}) {
        PostMessageW(desktop.main, WM_COMMAND, id, 0);
    }
    desktop_settle(desktop);
    EXPECT_EQ(console, console_text(desktop));
    EXPECT_EQ(menu_enabled(desktop), "load about");
    EXPECT_FALSE(message_box_is_up());
}
