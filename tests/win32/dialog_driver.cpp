#include "tests/win32/dialog_driver.h"

#include <commdlg.h>
#include <dlgs.h>
#include <gtest/gtest.h>

#include <vector>

#include "app/window_texts.h"
#include "tests/win32/window_driver.h"

static std::vector<HWND> dialogs() {
    return windows_of_process(GetCurrentProcessId(), DIALOG_CLASS);
}

// File dialogs have a field to type into, message boxes have none.
static HWND name_field(HWND dialog) {
    for (HWND child : windows_below(dialog)) {
        const bool in_combo =
            window_class(GetParent(child)) == "ComboBox" && GetDlgCtrlID(GetParent(child)) != cmb1;
        if (window_class(child) == "Edit" && (GetDlgCtrlID(child) == edt1 || in_combo)) {
            return child;
        }
    }
    return nullptr;
}

static bool wait_gone(HWND dialog) {
    const bool gone = wait_until([&] { return !IsWindow(dialog); });
    EXPECT_TRUE(gone) << "the dialog stays: " << window_text(dialog);
    return gone;
}

// File dialogs.

HWND file_dialog_wait(const wchar_t *title) {
    HWND found = nullptr;
    wait_until([&] {
        for (HWND dialog : dialogs()) {
            if (name_field(dialog) != nullptr && window_text(dialog) == test_utf8(title)) {
                found = dialog;
            }
        }
        return found != nullptr;
    });
    EXPECT_NE(found, nullptr) << "no dialog \"" << test_utf8(title) << "\" comes up";
    return found;
}

std::string file_dialog_name(HWND dialog) {
    return window_text(name_field(dialog));
}

void file_dialog_type(HWND dialog, const std::wstring &path) {
    HWND field = name_field(dialog);
    SendMessageW(field, WM_SETTEXT, 0, reinterpret_cast<LPARAM>(path.c_str()));
    EXPECT_EQ(window_text(field), test_utf8(path));
    PostMessageW(dialog, WM_COMMAND, IDOK, reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDOK)));
}

void file_dialog_accept(HWND dialog, const std::wstring &path) {
    file_dialog_type(dialog, path);
    wait_gone(dialog);
}

void file_dialog_cancel(HWND dialog) {
    PostMessageW(dialog, WM_COMMAND, IDCANCEL, reinterpret_cast<LPARAM>(GetDlgItem(dialog, IDCANCEL)));
    wait_gone(dialog);
}

std::string file_dialog_filter(HWND dialog) {
    return window_text(GetDlgItem(dialog, cmb1));
}

HWND folder_dialog_find() {
    for (HWND dialog : dialogs()) {
        if (window_text(dialog) == test_utf8(FOLDER_DIALOG_TITLE)) {
            return dialog;
        }
    }
    return nullptr;
}

void folder_dialog_cancel(const std::function<bool()> &condition) {
    EXPECT_TRUE(wait_until([&] {
        HWND dialog = folder_dialog_find();
        if (dialog != nullptr) {
            file_dialog_cancel(dialog);
        }
        return condition();
    })) << "the command does not end";
}

// Message boxes.

static MessageBoxSeen message_box_find() {
    MessageBoxSeen box = {};
    for (HWND dialog : dialogs()) {
        if (name_field(dialog) != nullptr) {
            continue;
        }
        box.window = dialog;
        box.owner = GetWindow(dialog, GW_OWNER);
        box.caption = window_text(dialog);
        for (HWND child : windows_below(dialog)) {
            const std::string name = window_class(child);
            const bool visible = (GetWindowLongW(child, GWL_STYLE) & WS_VISIBLE) != 0;
            box.button_count += name == "Button" && visible ? 1 : 0;
            const std::string text = window_text(child);
            if (name == "Static" && !text.empty()) {
                box.text = text;
            }
        }
    }
    return box;
}

bool message_box_is_up() {
    return message_box_find().window != nullptr;
}

MessageBoxSeen message_box_wait(i32 seconds) {
    MessageBoxSeen box = {};
    wait_until(
        [&] {
            box = message_box_find();
            return box.window != nullptr && !box.text.empty();
        },
        seconds);
    EXPECT_NE(box.window, nullptr) << "no message box comes up";
    return box;
}

void message_box_press_ok(const MessageBoxSeen &box) {
    if (box.window != nullptr) {
        PostMessageW(box.window, WM_COMMAND, IDOK, 0);
        wait_gone(box.window);
    }
}
