#include "log/log.h"

#include <cassert>
#include <cstdarg>
#include <cstdio>
#include <mutex>
#include <utility>

#include "log/text.h"
#include "platform/owned_file.h"
#include "platform/platform.h"
#include "platform/terminal.h"
#include "platform/thread_role.h"

static WString *g_log_path = nullptr;
static ConsoleSink console_sink = nullptr;
static ConsoleClearSink console_clear_sink = nullptr;
static thread_local bool console_muted = false;
static MessageSink message_sink = nullptr;
static DiagnosticSink diagnostic_sink = nullptr;

static constexpr i32 WAITING_LINES_MOST = 256;  // of one command; a screenful is what people read

// Diagnostics that wait for the console.
struct WaitingLines {
    wchar_t **items;  // owned, each of them too
    i32 count;
    i32 capacity;
    i32 dropped;
};

static WaitingLines waiting;
static std::mutex waiting_lock;

static WaitingLines take_waiting_lines() {
    const std::lock_guard<std::mutex> hold(waiting_lock);
    WaitingLines taken = waiting;
    waiting = {};
    return taken;
}

// Forgets the lines, and shows them on the console first when asked to. Returns how many more there were.
static i32 end_waiting_lines(bool show) {
    const WaitingLines taken = take_waiting_lines();
    const Owned<wchar_t *[]> items(taken.items);
    for (i32 i = 0; i < taken.count; ++i) {
        const WideText line(items[i]);
        if (show) {
            console_printf_w(L"Note: %ls\r\n", line.get());
        }
    }
    return taken.dropped;
}

// Held while a line is added: finding the end of the file and writing there are two steps on Windows, and a
// line of the other thread would be lost in between. Nothing of ours is allocated meanwhile: the box for lack
// of memory waits for the user-interface thread, which may want to write a line itself.
static std::mutex log_file_lock;

// Adds text to a file that is opened and closed for it, so that it is on disk when the program
// dies later. A file that cannot be opened is passed over.
static void log_file_write(const char *mode, const wchar_t *text) {
    OwnedFile file(platform_file_open(wstring_text(g_log_path), mode));
    if (file == nullptr) {
        return;
    }
    const NarrowText bytes = platform_system_from_wide(text);
    {
        const std::lock_guard<std::mutex> hold(log_file_lock);
        std::fputs(bytes.get(), file.get());
        std::fputs("\n", file.get());
        file.reset();
    }
}

void log_start(const wchar_t *path) {
    assert(thread_role_fits(THREAD_WINDOW));
    log_end();
    if (path == nullptr) {
        return;
    }
    g_log_path = wstring_copy(path);
    log_file_write("w", L"--- QUARN LOG FILE ---");
}

static void log_line(const wchar_t *line) {
    if (g_log_path != nullptr) {
        log_file_write("a", line);
    }
    platform_debug_output(line);
    platform_debug_output(L"\n");
}

void log_write(const wchar_t *format, ...) {
    assert(format != nullptr);
    va_list arguments;
    va_start(arguments, format);
    const WideText line = text_format_wide(format, arguments);
    va_end(arguments);
    log_line(line.get());
}

void log_end() {
    assert(thread_role_fits(THREAD_WINDOW));
    wstring_free(g_log_path);
    g_log_path = nullptr;
    end_waiting_lines(false);
}

void console_set_sink(ConsoleSink append, ConsoleClearSink clear) {
    assert(thread_role_fits(THREAD_WINDOW));
    console_sink = append;
    console_clear_sink = clear;
}

void console_append(const wchar_t *text) {
    assert(text != nullptr);
    if (console_sink != nullptr && !console_muted) {
        console_sink(text);
    }
}

bool console_mute(bool muted) {
    const bool before = console_muted;
    console_muted = muted;
    return before;
}

void console_append_narrow(const char *text) {
    assert(text != nullptr);
    const WideText wide = text_widen(text);
    console_append(wide.get());
}

void console_printf_w(const wchar_t *format, ...) {
    assert(format != nullptr);
    va_list arguments;
    va_start(arguments, format);
    const WideText text = text_format_wide(format, arguments);
    va_end(arguments);
    console_append(text.get());
}

void console_printf(const char *format, ...) {
    assert(format != nullptr);
    va_list arguments;
    va_start(arguments, format);
    const NarrowText text = text_format_narrow(format, arguments);
    va_end(arguments);
    console_append_narrow(text.get());
}

void console_clear() {
    if (console_clear_sink != nullptr) {
        console_clear_sink();
    }
}

static void message_memory_failure(const char *message) {
    wchar_t wide[64];
    size_t length = 0;
    for (; message[length] != 0 && length < 63; ++length) {
        wide[length] = static_cast<wchar_t>(message[length]);
    }
    wide[length] = 0;
    message_show(wide);
}

void message_set_sink(MessageSink sink) {
    assert(thread_role_fits(THREAD_WINDOW));
    message_sink = sink;
    memory_set_failure_hook(sink != nullptr ? message_memory_failure : nullptr);
}

void message_show(const wchar_t *text) {
    assert(text != nullptr);
    if (message_sink != nullptr) {
        message_sink(text);
        return;
    }
    const NarrowText bytes = platform_system_from_wide(text);
    terminal_write(stderr, "Quarn: ", bytes.get(), "\n");
}

void diagnostic_set_sink(DiagnosticSink sink) {
    assert(thread_role_fits(THREAD_WINDOW));
    diagnostic_sink = sink;
}

// Keeps a line for the console; takes it over. Room is made without the end on lack of memory, since nobody
// may be kept waiting for the lock meanwhile.
static void diagnostic_keep(WideText line) {
    const std::lock_guard<std::mutex> hold(waiting_lock);
    if (waiting.count == waiting.capacity && waiting.count < WAITING_LINES_MOST) {
        const i32 capacity = waiting.capacity > 0 ? waiting.capacity * 2 : 16;
        void *moved = memory_try_reallocate(waiting.items, capacity, sizeof(wchar_t *));
        if (moved != nullptr) {
            waiting.items = static_cast<wchar_t **>(moved);
            waiting.capacity = capacity;
        }
    }
    if (waiting.count < waiting.capacity) {
        waiting.items[waiting.count++] = line.release();
    } else {
        ++waiting.dropped;
    }
}

void diagnostic_write(const wchar_t *format, ...) {
    assert(format != nullptr);
    va_list arguments;
    va_start(arguments, format);
    WideText line = text_format_wide(format, arguments);
    va_end(arguments);
    if (diagnostic_sink != nullptr) {
        diagnostic_sink(line.get());
    } else {
        log_line(line.get());
        diagnostic_keep(std::move(line));
    }
}

void diagnostics_show() {
    const i32 dropped = end_waiting_lines(true);
    if (dropped > 0) {
        console_printf_w(L"Note: and %d more, which the log file has\r\n", dropped);
    }
}
