#include "tests/win32/window_driver.h"

#include <commctrl.h>
#include <gtest/gtest.h>
#include <shlobj.h>

#include <atomic>
#include <cstring>

#include "app/win32/desktop.h"
#include "platform/memory.h"
#include "tests/app/app_inputs.h"
#include "tests/win32/console_record.h"
#include "tests/win32/dialog_driver.h"
#include "tests/win32/import_patch.h"
#include "tests/win32/painted_frames.h"

// User data.

static std::wstring user_data_path;

static HRESULT WINAPI known_folder(REFKNOWNFOLDERID, DWORD, HANDLE, PWSTR *path) {
    *path = nullptr;
    if (user_data_path.empty()) {
        return E_FAIL;
    }
    const size_t size = (user_data_path.size() + 1) * sizeof(wchar_t);
    *path = static_cast<PWSTR>(CoTaskMemAlloc(size));
    std::memcpy(*path, user_data_path.c_str(), size);
    return S_OK;
}

void desktop_redirect_user_data(const std::wstring &path) {
    static bool patched = false;
    if (!patched) {
        patched = true;
        import_replace<HRESULT WINAPI(REFKNOWNFOLDERID, DWORD, HANDLE, PWSTR *)>("SHGetKnownFolderPath",
                                                                                 known_folder);
    }
    user_data_path = path;
}

std::wstring desktop_log_path(const Desktop &desktop) {
    return desktop.file(L"local\\Dalvine\\Quarn\\log.txt");
}

std::string desktop_log(const Desktop &desktop) {
    return test_file_read(desktop_log_path(desktop));
}

// Start and end.

// The program's own file, wherever the tests lie.
static std::wstring program_path;

static decltype(GetModuleFileNameW) *module_name_original;

static DWORD WINAPI module_name(HMODULE module, wchar_t *name, DWORD capacity) {
    if (module != nullptr || program_path.empty() || program_path.size() + 1 > capacity) {
        return module_name_original(module, name, capacity);
    }
    std::wcscpy(name, program_path.c_str());
    return static_cast<DWORD>(program_path.size());
}

void desktop_redirect_program(const std::wstring &path) {
    if (module_name_original == nullptr) {
        module_name_original = import_replace("GetModuleFileNameW", module_name);
    }
    program_path = path;
}

static i32 redirected_dots_per_inch;
static decltype(GetDeviceCaps) *device_caps_original;

static int WINAPI device_caps(HDC device, int index) {
    return index == LOGPIXELSY ? redirected_dots_per_inch : device_caps_original(device, index);
}

void desktop_redirect_scale(i32 dots_per_inch) {
    if (device_caps_original == nullptr) {
        device_caps_original = import_replace("GetDeviceCaps", device_caps);
    }
    redirected_dots_per_inch = dots_per_inch;
}

// By the width, which is never redirected; every screen has the same scale in both directions.
i32 screen_scaled(i32 pixels) {
    HDC screen = GetDC(nullptr);
    const int dots_per_inch = GetDeviceCaps(screen, LOGPIXELSX);
    ReleaseDC(nullptr, screen);
    return pixels * dots_per_inch / 96;
}

static void copy_data_files(const std::wstring &folder) {
    desktop_redirect_program(L"");
    const WideText program = platform_program_folder();
    for (const wchar_t *name : {L"colors.txt", L"surface.shader", L"point.shader", L"quarn.ico"}) {
        const std::wstring source = std::wstring(program.get()) + L"\\window_tests_data\\" + name;
        if (!CopyFileW(source.c_str(), (folder + L"\\" + name).c_str(), FALSE)) {
            ADD_FAILURE() << "cannot copy " << test_utf8(source);
        }
    }
}

Desktop::Desktop() : thread(), thread_id(), main(), render(), console(), status() {
    static bool installed = false;
    if (!installed) {
        installed = true;
        console_record_watch();
        painted_frames_watch();
    }
    wchar_t current[MAX_PATH] = {};
    GetCurrentDirectoryW(MAX_PATH, current);
    home = current;
    desktop_redirect_user_data(file(L"local"));
    CreateDirectoryW(user_data_path.c_str(), nullptr);
    copy_data_files(folder.path);
    SetCurrentDirectoryW(folder.path.c_str());
    desktop_redirect_program(file(L"program\\quarn.exe"));  // with nothing beside it
}

Desktop::~Desktop() {
    console_release();
    if (thread != nullptr && WaitForSingleObject(thread, 0) != WAIT_OBJECT_0 && main != nullptr) {
        desktop_close(this);
    }
    // A file dialog may have left the program in another folder.
    SetCurrentDirectoryW(home.c_str());
    if (thread != nullptr) {
        CloseHandle(thread);
    }
}

static std::wstring named_layout, named_process;

static const wchar_t *named_or_null(const std::wstring &path) {
    return path.empty() ? nullptr : path.c_str();
}

void desktop_name_files(const std::wstring &layout, const std::wstring &process) {
    named_layout = layout;
    named_process = process;
}

static PictureOptions named_pictures = NO_PICTURE_OPTIONS;

void desktop_name_pictures(const PictureOptions &pictures) {
    named_pictures = pictures;
}

static DWORD WINAPI desktop_thread(void *) {
    return static_cast<DWORD>(desktop_run(GetModuleHandleW(nullptr), named_or_null(named_layout),
                                          named_or_null(named_process), &named_pictures));
}

void desktop_launch(Desktop *desktop) {
    if (desktop->thread != nullptr) {
        CloseHandle(desktop->thread);
    }
    desktop->main = desktop->render = desktop->console = desktop->status = nullptr;
    desktop->thread = CreateThread(nullptr, 0, desktop_thread, nullptr, 0, &desktop->thread_id);
    console_record_start(desktop->thread_id);
}

static bool find_windows(Desktop *desktop) {
    desktop->main = window_of_process(GetCurrentProcessId(), "MainClass");
    if (desktop->main == nullptr) {
        return false;
    }
    desktop->render = GetDlgItem(desktop->main, 3);
    desktop->console = GetDlgItem(desktop->main, 2);
    desktop->status = GetDlgItem(desktop->main, 1);
    return desktop->render != nullptr && desktop->console != nullptr && desktop->status != nullptr;
}

// Posted behind all that is to be worked off; means nothing to the program.
static constexpr UINT WM_SETTLED = WM_APP + 1;

static std::atomic<bool> settled;

static LRESULT CALLBACK message_taken(int code, WPARAM removed, LPARAM message) {
    if (code == HC_ACTION && removed == PM_REMOVE &&
        reinterpret_cast<const MSG *>(message)->message == WM_SETTLED) {
        settled = true;
    }
    return CallNextHookEx(nullptr, code, removed, message);
}

bool desktop_start(Desktop *desktop) {
    desktop_launch(desktop);
    bool up = wait_until([&] {
        return WaitForSingleObject(desktop->thread, 0) == WAIT_OBJECT_0 || message_box_is_up() ||
               (find_windows(desktop) && console_written().find("Select menu") != std::string::npos);
    });
    up = up && desktop->console != nullptr && WaitForSingleObject(desktop->thread, 0) != WAIT_OBJECT_0;
    EXPECT_TRUE(up) << "the program does not come up";
    if (up) {
        // Goes with the thread.
        SetWindowsHookExW(WH_GETMESSAGE, message_taken, nullptr, desktop->thread_id);
        desktop_settle(*desktop);
    }
    return up;
}

i32 desktop_wait_end(Desktop *desktop, i32 seconds) {
    DWORD code = 0;
    if (WaitForSingleObject(desktop->thread, static_cast<DWORD>(seconds) * 1000) != WAIT_OBJECT_0) {
        ADD_FAILURE() << "the program does not end";
        return -1000;
    }
    GetExitCodeThread(desktop->thread, &code);
    return static_cast<i32>(code);
}

i32 desktop_close(Desktop *desktop) {
    PostMessageW(desktop->main, WM_CLOSE, 0, 0);
    return desktop_wait_end(desktop);
}

bool desktop_answers(const Desktop &desktop, u32 milliseconds) {
    DWORD_PTR result = 0;
    return SendMessageTimeoutW(desktop.main, WM_NULL, 0, 0, SMTO_NORMAL, milliseconds, &result) != 0;
}

void desktop_settle(const Desktop &desktop) {
    settled = false;
    PostMessageW(desktop.main, WM_SETTLED, 0, 0);
    EXPECT_TRUE(wait_until([&] {
        return settled.load() || WaitForSingleObject(desktop.thread, 0) == WAIT_OBJECT_0;
    })) << "the message loop hangs";
}

// Texts.

std::string status_text(const Desktop &desktop, i32 part) {
    wchar_t text[1024] = {};
    SendMessageW(desktop.status, SB_GETTEXTW, static_cast<WPARAM>(part), reinterpret_cast<LPARAM>(text));
    return test_utf8(text);
}

std::string console_text(const Desktop &desktop) {
    return window_text(desktop.console);
}

std::string without_notes(const std::string &text) {
    std::string out;
    for (size_t at = 0; at < text.size();) {
        size_t end = text.find("\r\n", at);
        end = end == std::string::npos ? text.size() : end + 2;
        if (text.compare(at, 6, "Note: ") != 0) {
            out += text.substr(at, end - at);
        }
        at = end;
    }
    return out;
}

bool console_shows(const Desktop &desktop, const std::string &text, i32 seconds) {
    const bool shown =
        wait_until([&] { return console_text(desktop).find(text) != std::string::npos; }, seconds);
    EXPECT_TRUE(shown) << "the console lacks \"" << text << "\"; it shows\n" << console_text(desktop);
    return shown;
}

// Menu and keys.

std::string menu_enabled(const Desktop &desktop) {
    static const struct {
        UINT command;
        const char *name;
    } items[] = {{10, "save"}, {4, "run"}, {6, "stop"}, {8, "load"}, {7, "about"}};
    std::string enabled;
    for (const auto &item : items) {
        const UINT state = GetMenuState(GetMenu(desktop.main), item.command, MF_BYCOMMAND);
        const bool known = state == MF_ENABLED || state == MF_GRAYED;
        if (state == MF_ENABLED || !known) {
            enabled += std::string(enabled.empty() ? "" : " ") + (known ? "" : "?") + item.name;
        }
    }
    return enabled;
}

void menu_choose(const Desktop &desktop, MenuCommand command) {
    EXPECT_EQ(GetMenuState(GetMenu(desktop.main), static_cast<UINT>(command), MF_BYCOMMAND),
              static_cast<UINT>(MF_ENABLED))
        << "command " << command << " is greyed";
    PostMessageW(desktop.main, WM_COMMAND, static_cast<WPARAM>(command), 0);
}

void desktop_repaint(const Desktop &desktop) {
    RedrawWindow(desktop.render, nullptr, nullptr, RDW_INVALIDATE | RDW_UPDATENOW);
    desktop_settle(desktop);
}

void key_press(HWND window, WPARAM key) {
    PostMessageW(window, WM_KEYDOWN, key, 0x00000001);
    PostMessageW(window, WM_KEYUP, key, static_cast<LPARAM>(0xC0000001));
}

// Commands.

bool load_layout(Desktop *desktop, const std::wstring &path) {
    menu_choose(*desktop, MENU_LOAD_GDS);
    HWND dialog = file_dialog_wait(L"Open GDS file");
    if (dialog == nullptr) {
        return false;
    }
    file_dialog_accept(dialog, path);
    const bool done = console_shows(*desktop, "GDS database f");  // finished loading, or failed with error
    desktop_settle(*desktop);
    return done;
}

bool run_start(Desktop *desktop, const std::wstring &path) {
    menu_choose(*desktop, MENU_RUN);
    HWND dialog = file_dialog_wait(L"Open process file");
    if (dialog == nullptr) {
        return false;
    }
    console_forget_written();
    file_dialog_accept(dialog, path);
    return console_shows(*desktop, "Running process ...");
}

bool run_start_held(Desktop *desktop, const std::wstring &path, const std::wstring &text) {
    console_hold_at(text);
    return run_start(desktop, path) && console_wait_held();
}

bool run_wait_end(const Desktop &desktop) {
    const bool done = wait_until([&] {
        const std::string text = console_written();
        return text.size() >= BROWSE_HINT.size() &&
               text.compare(text.size() - BROWSE_HINT.size(), BROWSE_HINT.size(), BROWSE_HINT) == 0;
    });
    EXPECT_TRUE(done) << "the run does not end; the console got\n" << console_written();
    desktop_settle(desktop);
    return done;
}

bool run_process(Desktop *desktop, const std::wstring &path) {
    return run_start(desktop, path) && run_wait_end(*desktop);
}

// Files.

std::wstring write_layout(const Desktop &desktop, const std::wstring &name) {
    test_file_write(desktop.file(name), small_layout_bytes());
    return desktop.file(name);
}

std::wstring write_process(const Desktop &desktop, const std::wstring &name, const std::string &steps) {
    test_file_write(desktop.file(name), process_text(steps));
    return desktop.file(name);
}

std::string depositions(i32 count) {
    std::string lines;
    for (i32 i = 1; i <= count; ++i) {
        lines += deposition_line("D" + std::to_string(i));
    }
    return lines;
}
