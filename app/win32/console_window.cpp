#include "app/win32/console_window.h"

#include <algorithm>
#include <cassert>
#include <cwchar>

#include "app/app_state.h"
#include "app/win32/win32_desktop.h"
#include "log/log.h"
#include "log/text.h"
#include "platform/owned.h"
#include "platform/thread_role.h"

// Characters, of two bytes each: room for the cells of the largest layouts. The control would take 30,000,
// which some hundred cells fill.
static constexpr i64 CONSOLE_MOST = 4'000'000;

// Characters that go into the control in one go, some 400 cells of a list. A click of the user waits for one
// piece; small pieces take longer in all, since the control walks over its lines for each.
static constexpr i64 PIECE = 32'000;

static constexpr i64 QUEUE_FIRST_ROOM = PIECE * 4;

static constexpr UINT_PTR QUEUE_TIMER = 'Q';  // the control's own timers have small numbers

static constexpr i32 FONT_HEIGHT = 14;  // pixels at 100 %

static LRESULT CALLBACK console_proc(HWND control, UINT message, WPARAM wparam, LPARAM lparam);

i32 console_window_create(HWND parent) {
    const DWORD style =
        WS_CHILD | WS_VISIBLE | WS_VSCROLL | WS_BORDER | ES_READONLY | ES_AUTOVSCROLL | ES_MULTILINE |
        ES_NOHIDESEL;  // the console never has the focus, and what is marked in it is shown all the same
    assert(thread_role_fits(THREAD_WINDOW) && parent != nullptr);
    ConsoleWindow *console = &g_desktop->console;
    console->control = CreateWindowExW(WS_EX_CLIENTEDGE, L"Edit", nullptr, style, 0, 0, 0, 0, parent,
                                       reinterpret_cast<HMENU>(static_cast<INT_PTR>(CHILD_CONSOLE)),
                                       GetModuleHandleW(nullptr), nullptr);
    if (console->control == nullptr) {
        message_show(L"Creating console window failed");
        return -1;
    }
    console->control_limit = SendMessageW(console->control, EM_GETLIMITTEXT, 0, 0);
    console->full = false;
    // NOLINTNEXTLINE(performance-no-int-to-ptr)
    console->control_proc = reinterpret_cast<WNDPROC>(
        SetWindowLongPtrW(console->control, GWLP_WNDPROC, reinterpret_cast<LONG_PTR>(console_proc)));
    // 650 is the orientation and the weight is the default: kept so, as another weight would change the
    // width of the text.
    console->font =
        CreateFontW(window_scaled(FONT_HEIGHT), 0, 0, 650, 0, FALSE, FALSE, FALSE, DEFAULT_CHARSET,
                    OUT_OUTLINE_PRECIS, CLIP_DEFAULT_PRECIS, CLEARTYPE_QUALITY, VARIABLE_PITCH, L"Consolas");
    if (console->font == nullptr) {
        message_show(L"Creating console window font failed");
        return -1;
    }
    SendMessageW(console->control, WM_SETFONT, reinterpret_cast<WPARAM>(console->font), TRUE);
    return 0;
}

void console_window_free() {
    if (g_desktop->console.font != nullptr) {
        DeleteObject(g_desktop->console.font);
    }
    memory_free(g_desktop->console.queue.text);
    g_desktop->console = {};
}

// Past console_proc, which would bring the queue into the control.
static LRESULT ask_control(const ConsoleWindow *console, UINT message, WPARAM wparam, LPARAM lparam) {
    return CallWindowProcW(console->control_proc, console->control, message, wparam, lparam);
}

// The control applies its limit to what the program appends as well as to what a user types, so it is raised
// where that is needed.
static void show(const ConsoleWindow *console, const wchar_t *text, i64 length) {
    const LRESULT end = ask_control(console, WM_GETTEXTLENGTH, 0, 0);
    const bool beyond_limit = end + length > console->control_limit;
    if (beyond_limit) {
        SendMessageW(console->control, EM_SETLIMITTEXT, CONSOLE_MOST * 2, 0);
    }
    ask_control(console, EM_SETSEL, static_cast<WPARAM>(end), end);
    SendMessageW(console->control, EM_REPLACESEL, FALSE, reinterpret_cast<LPARAM>(text));
    if (beyond_limit) {
        SendMessageW(console->control, EM_SETLIMITTEXT, static_cast<WPARAM>(console->control_limit), 0);
    }
    const LRESULT first_line = SendMessageW(console->control, EM_GETFIRSTVISIBLELINE, 0, 0);
    const LRESULT line_count = ask_control(console, EM_GETLINECOUNT, 0, 0);
    SendMessageW(console->control, EM_LINESCROLL, 0, line_count - first_line);
}

static i64 queue_length(const ConsoleQueue *queue) {
    return queue->end - queue->start;
}

static void queue_free(ConsoleWindow *console) {
    if (console->queue.text != nullptr) {
        KillTimer(console->control, QUEUE_TIMER);
        memory_free(console->queue.text);
        console->queue = {};
    }
}

static void queue_add(ConsoleQueue *queue, const wchar_t *text, i64 length) {
    if (queue->text == nullptr || queue->end + length > queue->capacity) {
        queue->capacity = std::max(QUEUE_FIRST_ROOM, (queue->end + length) * 2);
        queue->text =
            static_cast<wchar_t *>(memory_reallocate(queue->text, queue->capacity, sizeof(wchar_t)));
    }
    assert(queue->text != nullptr);
    std::wmemcpy(queue->text + queue->end, text, static_cast<size_t>(length));
    queue->end += length;
}

// Shows that many of the characters that wait. They leave the queue first, as a hook of another program may
// read the console while the control takes them.
static void queue_show(ConsoleWindow *console, i64 length) {
    ConsoleQueue *queue = &console->queue;
    const WideText piece = memory_scratch<wchar_t>(length + 1);
    std::wmemcpy(piece.get(), queue->text + queue->start, static_cast<size_t>(length));
    piece[length] = 0;
    queue->start += length;
    if (queue_length(queue) == 0) {
        queue_free(console);
    }
    show(console, piece.get(), length);
}

// How many of the characters that wait come next: whole lines, or as much of a long one as does not end
// within a line end or a character of two units.
static i64 next_piece(const ConsoleQueue *queue) {
    const wchar_t *text = queue->text + queue->start;
    if (queue_length(queue) <= PIECE) {
        return queue_length(queue);
    }
    i64 length = PIECE;
    while (length > 0 && text[length - 1] != L'\n') {
        --length;
    }
    if (length > 0) {
        return length;
    }
    const wchar_t last = text[PIECE - 1];
    return last == L'\r' || IS_HIGH_SURROGATE(last) ? PIECE - 1 : PIECE;
}

void console_window_catch_up() {
    assert(thread_role_fits(THREAD_WINDOW));
    ConsoleWindow *console = &g_desktop->console;
    if (console->queue.text != nullptr) {
        queue_show(console, queue_length(&console->queue));
    }
}

// Shows a text, or has it wait where it is long or others wait.
static void show_in_turn(ConsoleWindow *console, const wchar_t *text, i64 length) {
    const bool waits = console->queue.text != nullptr;
    if (!waits && length <= PIECE) {
        show(console, text, length);
        return;
    }
    queue_add(&console->queue, text, length);
    // A timer strikes when there is nothing else to do, in the loops of menus and dialogs too.
    if (!waits && SetTimer(console->control, QUEUE_TIMER, USER_TIMER_MINIMUM, nullptr) == 0) {
        console_window_catch_up();
    }
}

static bool needs_whole_text(UINT message) {
    switch (message) {
        case WM_GETTEXT:
        case WM_GETTEXTLENGTH:
        case EM_GETLINECOUNT:
        case EM_SETSEL:
        case WM_COPY:
        case WM_CONTEXTMENU:
        case WM_LBUTTONDOWN:
        case WM_NCLBUTTONDOWN:
        case WM_VSCROLL:
        case WM_MOUSEWHEEL: return true;
        default: return false;
    }
}

static LRESULT CALLBACK console_proc(HWND control, UINT message, WPARAM wparam, LPARAM lparam) {
    ConsoleWindow *console = &g_desktop->console;
    if (message == WM_TIMER && wparam == QUEUE_TIMER) {
        if (console->queue.text != nullptr) {
            queue_show(console, next_piece(&console->queue));
        }
        return 0;
    }
    if (needs_whole_text(message)) {
        console_window_catch_up();
    }
    return CallWindowProcW(console->control_proc, control, message, wparam, lparam);
}

static void tell_full(ConsoleWindow *console) {
    const Owned<WString> note(
        wstring_make(L"\r\nNote: the console is full; what follows is in %ls\\log.txt\r\n",
                     wstring_text(g_app->appdata_path)));
    show_in_turn(console, wstring_text(note.get()), static_cast<i64>(note->count));
    log_write(L"The console is full; what follows would stand there");
}

// A line of the log ends by itself.
static void append_to_log(const wchar_t *text) {
    auto length = static_cast<int>(std::wcslen(text));
    while (length > 0 && (text[length - 1] == L'\r' || text[length - 1] == L'\n')) {
        --length;
    }
    if (length > 0) {
        log_write(L"%.*ls", length, text);
    }
}

// In the user-interface thread.
static void append(const wchar_t *text) {
    assert(thread_role_fits(THREAD_WINDOW));
    ConsoleWindow *console = &g_desktop->console;
    if (console->control == nullptr) {
        return;
    }
    const auto length = static_cast<i64>(std::wcslen(text));
    const i64 before = ask_control(console, WM_GETTEXTLENGTH, 0, 0) + queue_length(&console->queue);
    if (!console->full && before + length > CONSOLE_MOST) {
        console->full = true;
        tell_full(console);
    }
    if (console->full) {
        append_to_log(text);
    } else {
        show_in_turn(console, text, length);
    }
}

void console_window_append(const wchar_t *text) {
    assert(text != nullptr);
    HWND main = g_desktop->main.window;
    if (main != nullptr && GetWindowThreadProcessId(main, nullptr) != GetCurrentThreadId()) {
        SendMessageW(main, WM_APP_CONSOLE_APPEND, 0, reinterpret_cast<LPARAM>(text));
    } else {
        append(text);
    }
}

void console_window_clear() {
    assert(thread_role_fits(THREAD_WINDOW));
    queue_free(&g_desktop->console);
    SetWindowTextW(g_desktop->console.control, L"");
    g_desktop->console.full = false;
}

LRESULT console_window_colors(HDC context, HWND control, HBRUSH brush) {
    if (GetDlgCtrlID(control) != CHILD_CONSOLE) {
        return 0;
    }
    SetBkColor(context, RGB(255, 255, 255));
    return reinterpret_cast<LRESULT>(brush);
}
