#include "tests/win32/console_record.h"

#include <gtest/gtest.h>

#include <atomic>
#include <mutex>

#include "tests/win32/import_patch.h"
#include "tests/win32/window_driver.h"

using SendFunction = LRESULT WINAPI(HWND, UINT, WPARAM, LPARAM);

static SendFunction *send_original;
static DWORD main_thread;
static std::mutex written_mutex;
static std::wstring written;
static i32 texts_written;
static std::wstring hold_text;       // empty: nobody is to be held
static std::atomic<bool> hold_next;  // the text was written; its writer is to be held
static std::atomic<bool> held;

static void record(const wchar_t *text) {
    const std::lock_guard<std::mutex> lock(written_mutex);
    written += text;
    ++texts_written;
    if (!hold_text.empty() && std::wstring(text).find(hold_text) != std::wstring::npos) {
        hold_text.clear();
        hold_next = true;
    }
}

static LRESULT WINAPI send_recorded(HWND window, UINT message, WPARAM wparam, LPARAM lparam) {
    if (message == EM_REPLACESEL) {
        record(reinterpret_cast<const wchar_t *>(lparam));
    }
    const LRESULT result = send_original(window, message, wparam, lparam);
    if (GetCurrentThreadId() != main_thread && hold_next.exchange(false)) {
        held = true;
        while (held) {
            Sleep(2);
        }
    }
    return result;
}

void console_record_watch() {
    send_original = import_replace<SendFunction>("SendMessageW", send_recorded);
}

void console_record_start(DWORD user_interface_thread) {
    const std::lock_guard<std::mutex> lock(written_mutex);
    main_thread = user_interface_thread;
    written.clear();
    texts_written = 0;
    hold_text.clear();
    hold_next = false;
}

std::string console_written() {
    const std::lock_guard<std::mutex> lock(written_mutex);
    return test_utf8(written);
}

i32 console_texts_written() {
    const std::lock_guard<std::mutex> lock(written_mutex);
    return texts_written;
}

void console_forget_written() {
    const std::lock_guard<std::mutex> lock(written_mutex);
    written.clear();
    texts_written = 0;
}

void console_hold_at(const std::wstring &text) {
    const std::lock_guard<std::mutex> lock(written_mutex);
    hold_text = text;
}

bool console_wait_held() {
    const bool is_held = wait_until([] { return held.load(); });
    EXPECT_TRUE(is_held) << "the worker does not write the text that it is awaited at";
    return is_held;
}

void console_release() {
    const std::lock_guard<std::mutex> lock(written_mutex);
    hold_text.clear();
    hold_next = false;
    held = false;
}

void console_hold_again_at(const std::wstring &text) {
    const std::lock_guard<std::mutex> lock(written_mutex);
    hold_text = text;
    held = false;
}
