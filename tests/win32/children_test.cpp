// The children of the main window: styles, places, fonts, texts.
#include <commctrl.h>
#include <gtest/gtest.h>

#include <cstring>

#include "tests/win32/import_patch.h"
#include "tests/win32/window_driver.h"

static LOGFONTW font_of(HWND window) {
    LOGFONTW font = {};
    auto *handle = reinterpret_cast<HFONT>(SendMessageW(window, WM_GETFONT, 0, 0));
    EXPECT_NE(GetObjectW(handle, sizeof(font), &font), 0);
    return font;
}

// Place inside the main window.
static RECT place_of(const Desktop &desktop, HWND child) {
    RECT place = {};
    GetWindowRect(child, &place);
    MapWindowPoints(nullptr, desktop.main, reinterpret_cast<POINT *>(&place), 2);
    return place;
}

TEST(Children, ClassesAndStyles) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    const struct {
        HWND window;
        const char *name;
        LONG style, ex_style;
    } children[] = {
        {desktop.render, "RenderClass", WS_CHILD | WS_VISIBLE | WS_BORDER, 0},
        {desktop.console, "Edit",
         WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_BORDER | ES_READONLY | ES_AUTOVSCROLL | ES_MULTILINE |
             ES_NOHIDESEL,
         WS_EX_CLIENTEDGE},
        {desktop.status, "msctls_statusbar32", WS_CHILD | WS_VISIBLE, 0},
    };
    for (const auto &child : children) {
        EXPECT_EQ(window_class(child.window), child.name);
        LONG style = GetWindowLongW(child.window, GWL_STYLE);
        EXPECT_EQ(child.style, style & child.style) << child.name;
        EXPECT_EQ(child.ex_style, GetWindowLongW(child.window, GWL_EXSTYLE) & WS_EX_CLIENTEDGE) << child.name;
        EXPECT_EQ(desktop.main, GetParent(child.window));
    }
    EXPECT_EQ(GetWindowLongW(desktop.console, GWL_STYLE) & (WS_HSCROLL | ES_AUTOHSCROLL), 0)
        << "long lines are broken";
}

TEST(Children, WindowIsOfFixedSize) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    EXPECT_EQ(window_class(desktop.main), "MainClass");
    LONG style = GetWindowLongW(desktop.main, GWL_STYLE);
    EXPECT_EQ(WS_SYSMENU | WS_MINIMIZEBOX, style & (WS_SYSMENU | WS_MINIMIZEBOX));
    EXPECT_EQ(style & (WS_MAXIMIZEBOX | WS_THICKFRAME | WS_CLIPCHILDREN), 0);
    EXPECT_EQ(GetClassLongPtrW(desktop.main, GCL_STYLE), static_cast<ULONG_PTR>(CS_OWNDC));
    EXPECT_EQ(GetClassLongPtrW(desktop.render, GCL_STYLE),
              static_cast<ULONG_PTR>(CS_OWNDC | CS_HREDRAW | CS_VREDRAW));
    EXPECT_NE(GetClassLongPtrW(desktop.main, GCLP_HICON), 0U) << "the icon is not loaded";
    EXPECT_NE(GetClassLongPtrW(desktop.main, GCLP_HICONSM), 0U);
    EXPECT_EQ(GetClassLongPtrW(desktop.main, GCLP_HBRBACKGROUND), 0U);
    EXPECT_EQ(GetClassLongPtrW(desktop.render, GCLP_HBRBACKGROUND), 0U);
}

// 60 % of the height for the render area, the status bar at the bottom, the console between them.
static void expect_layout(const Desktop &desktop) {
    RECT client = {};
    GetClientRect(desktop.main, &client);
    RECT render = place_of(desktop, desktop.render);
    RECT console = place_of(desktop, desktop.console);
    RECT status = place_of(desktop, desktop.status);
    auto render_height = static_cast<LONG>(static_cast<f32>(client.bottom) * 0.6F);
    const LONG status_height = status.bottom - status.top;

    EXPECT_EQ(render.left, 0);
    EXPECT_EQ(render.top, 0);
    EXPECT_EQ(client.right, render.right);
    EXPECT_EQ(render_height, render.bottom);
    EXPECT_EQ(console.left, 0);
    EXPECT_EQ(render_height, console.top);
    EXPECT_EQ(client.right, console.right);
    EXPECT_EQ(client.bottom - status_height, console.bottom);
    EXPECT_EQ(client.bottom, status.bottom);
    EXPECT_EQ(client.right, g_app->render_width);
    EXPECT_EQ(render_height, g_app->render_height);
}

TEST(Children, LayoutAtStart) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    expect_layout(desktop);
}

TEST(Children, LayoutFollowsTheSize) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    for (const auto &size : {SIZE{900, 700}, SIZE{401, 333}, SIZE{1000, 555}}) {
        SetWindowPos(desktop.main, nullptr, 0, 0, size.cx, size.cy, SWP_NOMOVE | SWP_NOZORDER);
        desktop_settle(desktop);
        expect_layout(desktop);
    }
}

TEST(Children, ConsoleFont) {
    Desktop desktop;
    desktop_redirect_scale(96);
    ASSERT_TRUE(desktop_start(&desktop));
    LOGFONTW font = font_of(desktop.console);
    EXPECT_EQ(font.lfHeight, 14);
    EXPECT_EQ(font.lfWidth, 0);
    EXPECT_EQ(font.lfEscapement, 0);
    EXPECT_EQ(font.lfOrientation, 650);
    EXPECT_EQ(font.lfWeight, 0);
    EXPECT_EQ(font.lfItalic + font.lfUnderline + font.lfStrikeOut, 0);
    EXPECT_EQ(font.lfCharSet, DEFAULT_CHARSET);
    EXPECT_EQ(font.lfOutPrecision, OUT_OUTLINE_PRECIS);
    EXPECT_EQ(font.lfClipPrecision, CLIP_DEFAULT_PRECIS);
    EXPECT_EQ(font.lfQuality, CLEARTYPE_QUALITY);
    EXPECT_EQ(font.lfPitchAndFamily, VARIABLE_PITCH);
    EXPECT_EQ(test_utf8(font.lfFaceName), "Consolas");
}

TEST(Children, StatusBarFont) {
    Desktop desktop;
    desktop_redirect_scale(96);
    ASSERT_TRUE(desktop_start(&desktop));
    LOGFONTW font = font_of(desktop.status);
    EXPECT_EQ(font.lfHeight, 11);
    EXPECT_EQ(font.lfWidth + font.lfEscapement + font.lfOrientation + font.lfWeight, 0);
    EXPECT_EQ(font.lfItalic + font.lfUnderline + font.lfStrikeOut, 0);
    EXPECT_EQ(font.lfCharSet, DEFAULT_CHARSET);
    EXPECT_EQ(font.lfOutPrecision + font.lfClipPrecision + font.lfQuality + font.lfPitchAndFamily, 0);
    EXPECT_EQ(test_utf8(font.lfFaceName), "");
}

TEST(Children, StatusBarParts) {
    Desktop desktop;
    desktop_redirect_scale(96);
    ASSERT_TRUE(desktop_start(&desktop));
    const INT edges[8] = {};
    ASSERT_EQ(SendMessageW(desktop.status, SB_GETPARTS, 8, reinterpret_cast<LPARAM>(edges)), 4);
    EXPECT_EQ(std::vector<INT>(edges, edges + 4), (std::vector<INT>{80, 600, 680, 1200}));
    const char *const texts[] = {"GDS file:", "Not loaded", "Process file:", "Not loaded"};
    for (i32 i = 0; i < 4; ++i) {
        EXPECT_EQ(texts[i], status_text(desktop, i));
    }
}

TEST(Children, MenuBar) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    HMENU menu = GetMenu(desktop.main);
    const struct {
        UINT id;
        const char *label;
    } items[] = {{10, "&Save images"}, {4, "&Run Process"}, {6, "&Stop"}, {8, "&Load GDS"}, {7, "&About"}};
    ASSERT_EQ(GetMenuItemCount(menu), 5);
    for (i32 i = 0; i < 5; ++i) {
        wchar_t label[64] = {};
        GetMenuStringW(menu, static_cast<UINT>(i), label, 64, MF_BYPOSITION);
        EXPECT_EQ(items[i].label, test_utf8(label));
        EXPECT_EQ(items[i].id, GetMenuItemID(menu, i));
    }
}

TEST(Children, ConsoleIsWhiteAndOthersAreNotColoured) {
    Desktop desktop;
    ASSERT_TRUE(desktop_start(&desktop));
    HDC context = GetDC(desktop.console);
    SetBkColor(context, RGB(1, 2, 3));
    auto brush = SendMessageW(desktop.main, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(context),
                              reinterpret_cast<LPARAM>(desktop.console));
    EXPECT_EQ(RGB(255, 255, 255), GetBkColor(context));
    LOGBRUSH seen = {};
    ASSERT_NE(GetObjectW(reinterpret_cast<HGDIOBJ>(brush), sizeof(seen), &seen), 0);
    EXPECT_EQ(seen.lbStyle, static_cast<UINT>(BS_SOLID));
    EXPECT_EQ(RGB(255, 255, 255), seen.lbColor);
    EXPECT_EQ(brush, SendMessageW(desktop.main, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(context),
                                  reinterpret_cast<LPARAM>(desktop.console)))
        << "one brush for all";

    SetBkColor(context, RGB(1, 2, 3));
    EXPECT_EQ(SendMessageW(desktop.main, WM_CTLCOLORSTATIC, reinterpret_cast<WPARAM>(context),
                           reinterpret_cast<LPARAM>(desktop.status)),
              0);
    EXPECT_EQ(RGB(1, 2, 3), GetBkColor(context));
    ReleaseDC(desktop.console, context);
}

// Graphics of the render window.

static PIXELFORMATDESCRIPTOR asked_format;
static decltype(ChoosePixelFormat) *choose_original;

static int WINAPI choose_watched(HDC device, const PIXELFORMATDESCRIPTOR *format) {
    asked_format = *format;
    return choose_original(device, format);
}

TEST(Children, PixelFormat) {
    Desktop desktop;
    choose_original = import_replace("ChoosePixelFormat", choose_watched);
    ASSERT_TRUE(desktop_start(&desktop));
    PIXELFORMATDESCRIPTOR expected = {};
    expected.nSize = 40;
    expected.nVersion = 1;
    expected.dwFlags = PFD_DRAW_TO_WINDOW | PFD_SUPPORT_OPENGL | PFD_DOUBLEBUFFER | PFD_GENERIC_ACCELERATED |
                       PFD_SUPPORT_COMPOSITION;
    expected.iPixelType = PFD_TYPE_RGBA;
    expected.cColorBits = 32;
    expected.cDepthBits = 32;
    expected.cStencilBits = 8;
    EXPECT_EQ(std::memcmp(&expected, &asked_format, sizeof(expected)), 0);
}
