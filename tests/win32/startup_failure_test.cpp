// Every way in which the start can fail: its message box, and exit code 1.
#include <gtest/gtest.h>

#include <cwchar>

#include "platform/memory.h"
#include "tests/win32/dialog_driver.h"
#include "tests/win32/import_patch.h"
#include "tests/win32/window_driver.h"

struct StartupFailure {
    const char *name;
    void (*arrange)(const Desktop &desktop);
    const char *messages;  // of the boxes in their order, a line each
};

// Functions of the system that refuse.

static void *refuse_pointer() {
    SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
}

static decltype(RegisterClassExW) *register_original;
static const wchar_t *refused_class;

static ATOM WINAPI register_refusing(const WNDCLASSEXW *window_class) {
    return std::wcscmp(window_class->lpszClassName, refused_class) == 0 ? ATOM{0}
                                                                        : register_original(window_class);
}

static void refuse_class(const wchar_t *name) {
    refused_class = name;
    register_original = import_replace("RegisterClassExW", register_refusing);
}

static decltype(CreateWindowExW) *create_original;

static HWND WINAPI create_refusing(DWORD ex_style, LPCWSTR name, LPCWSTR title, DWORD style, int x, int y,
                                   int width, int height, HWND parent, HMENU menu, HINSTANCE instance,
                                   LPVOID argument) {
    if (reinterpret_cast<u64>(name) > 0xFFFF && std::wcscmp(name, refused_class) == 0) {
        return nullptr;
    }
    return create_original(ex_style, name, title, style, x, y, width, height, parent, menu, instance,
                           argument);
}

static void refuse_window(const wchar_t *name) {
    refused_class = name;
    create_original = import_replace("CreateWindowExW", create_refusing);
}

static decltype(CreateFontW) *font_original;
static int refused_height;

static HFONT WINAPI font_refusing(int height, int width, int escapement, int orientation, int weight,
                                  DWORD italic, DWORD underline, DWORD strikeout, DWORD charset,
                                  DWORD out_precision, DWORD clip_precision, DWORD quality, DWORD pitch,
                                  LPCWSTR face) {
    if (height == refused_height) {
        return nullptr;
    }
    return font_original(height, width, escapement, orientation, weight, italic, underline, strikeout,
                         charset, out_precision, clip_precision, quality, pitch, face);
}

static void refuse_font(int height) {
    refused_height = height;
    font_original = import_replace("CreateFontW", font_refusing);
}

static BOOL WINAPI refuse_current(HDC, HGLRC) {
    return FALSE;
}

static BOOL WINAPI refuse_format(HDC, int, const PIXELFORMATDESCRIPTOR *) {
    return FALSE;
}

static const char *const NO_FOLDER = "Could not initialize application data folder.\n";
static const char *const NO_COLORS = "Could not load color file. Redo installation.\n";
static const char *const NO_CLASS = "Main window class registration failed\n";
static const char *const NO_RENDER_CLASS =
    "Main window class registration failed\nMain window creation failed\n";
static const char *const NO_GRAPHICS = "Could not initialize graphics\nMain window creation failed\n";

static const StartupFailure FAILURES[] = {
    {"NoKnownFolder", [](const Desktop &) { desktop_redirect_user_data(L""); }, NO_FOLDER},
    {"FileInPlaceOfTheDataFolder",
     [](const Desktop &desktop) {
         CreateDirectoryW(desktop.file(L"local\\Dalvine").c_str(), nullptr);
         test_file_write(desktop.file(L"local\\Dalvine\\Quarn"), "a file");
     },
     NO_FOLDER},
    {"FileInPlaceOfItsParent",
     [](const Desktop &desktop) { test_file_write(desktop.file(L"local\\Dalvine"), "a file"); }, NO_FOLDER},
    {"NoDriveOfTheDataFolder", [](const Desktop &) { desktop_redirect_user_data(L"?:\\nowhere"); },
     NO_FOLDER},
    {"NoColors", [](const Desktop &desktop) { DeleteFileW(desktop.file(L"colors.txt").c_str()); }, NO_COLORS},
    {"BrokenColors",
     [](const Desktop &desktop) { test_file_write(desktop.file(L"colors.txt"), "no table at all\n"); },
     NO_COLORS},
    {"MainClass", [](const Desktop &) { refuse_class(L"MainClass"); }, NO_CLASS},
    {"MainWindow", [](const Desktop &) { refuse_window(L"MainClass"); }, "Main window creation failed\n"},
    {"RenderClass", [](const Desktop &) { refuse_class(L"RenderClass"); }, NO_RENDER_CLASS},
    {"RenderWindow", [](const Desktop &) { refuse_window(L"RenderClass"); },
     "Creating render window failed\nMain window creation failed\n"},
    {"Console", [](const Desktop &) { refuse_window(L"Edit"); },
     "Creating console window failed\nMain window creation failed\n"},
    {"ConsoleFont", [](const Desktop &) { refuse_font(14); },
     "Creating console window font failed\nMain window creation failed\n"},
    {"StatusBar", [](const Desktop &) { refuse_window(L"msctls_statusbar32"); },
     "Creating status bar failed\nMain window creation failed\n"},
    {"StatusBarFont", [](const Desktop &) { refuse_font(11); },
     "Creating status bar font failed\nMain window creation failed\n"},
    {"ChoosePixelFormat",
     [](const Desktop &) { import_patch("ChoosePixelFormat", reinterpret_cast<void *>(refuse_pointer)); },
     NO_GRAPHICS},
    {"SetPixelFormat", [](const Desktop &) { import_replace("SetPixelFormat", refuse_format); }, NO_GRAPHICS},
    {"Context",
     [](const Desktop &) { import_patch("wglCreateContext", reinterpret_cast<void *>(refuse_pointer)); },
     NO_GRAPHICS},
    {"MakeCurrent", [](const Desktop &) { import_replace("wglMakeCurrent", refuse_current); }, NO_GRAPHICS},
    {"EntryPoints",
     [](const Desktop &) { import_patch("wglGetProcAddress", reinterpret_cast<void *>(refuse_pointer)); },
     NO_GRAPHICS},
};

class StartupFails : public testing::TestWithParam<StartupFailure> {};

TEST_P(StartupFails, TellsWhyAndEndsWithOne) {
    Desktop desktop;
    const i64 blocks = memory_live_blocks();
    GetParam().arrange(desktop);
    desktop_launch(&desktop);
    std::string messages;
    auto ended = [&] { return WaitForSingleObject(desktop.thread, 0) == WAIT_OBJECT_0; };
    while (wait_until([&] { return ended() || message_box_is_up(); }) && !ended()) {
        const MessageBoxSeen box = message_box_wait();
        messages += box.text + "\n";
        EXPECT_EQ(box.caption, "Quarn");
        EXPECT_EQ(box.owner, nullptr);
        EXPECT_EQ(box.button_count, 1);
        message_box_press_ok(box);
    }
    EXPECT_EQ(GetParam().messages, messages);
    EXPECT_EQ(desktop_wait_end(&desktop), 1);
    EXPECT_EQ(blocks, memory_live_blocks());
}

INSTANTIATE_TEST_SUITE_P(Each, StartupFails, testing::ValuesIn(FAILURES),
                         [](const auto &failure) { return std::string(failure.param.name); });
