#include "app/batch/batch_output.h"

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>

#include <csignal>
#endif

#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/terminal.h"

static constexpr const char *ERROR_PREFIX = "quarn-batch: ";
static constexpr size_t SHORT_TEXT = 512;

static std::atomic<i32> output_error{0};  // errno of the first failed write to standard output; any thread

#ifdef _WIN32
static UINT console_code_page = 0;  // that of the caller's console; 0 when there is none

static void restore_console() {
    SetConsoleOutputCP(console_code_page);
}
#endif

void batch_streams_open() {
#ifdef _WIN32
    // A console shows the texts as UTF-8 while the program runs.
    console_code_page = GetConsoleOutputCP();
    if (console_code_page != 0 && SetConsoleOutputCP(CP_UTF8) != FALSE) {
        std::atexit(restore_console);
        memory_add_last_act(restore_console);
    }
#else
    // A reader that goes away and a limit of the size of files are failures to write like others, no reason
    // to end.
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN);
    // The stand-in is opened the wrong way round, so that its use fails instead of losing text silently.
    for (int descriptor = 0; descriptor <= 2; ++descriptor) {
        if (fcntl(descriptor, F_GETFD) == -1) {
            open("/dev/null", descriptor == 0 ? O_WRONLY : O_RDONLY);
        }
    }
#endif
}

// Removes the carriage return of every "\r\n".
static void drop_carriage_returns(char *text) {
    char *kept = text;
    for (const char *next = text; *next != 0; ++next) {
        if (next[0] != '\r' || next[1] != '\n') {
            *kept++ = *next;
        }
    }
    *kept = 0;
}

// Short plain text goes without the heap, so that a lack of memory can still be told.
//   longer   owns the bytes of any other text
static char *to_bytes(const wchar_t *text, char short_text[SHORT_TEXT], NarrowText *longer) {
    size_t length = 0;
    while (length + 1 < SHORT_TEXT && text[length] > 0 && text[length] < 0x80) {
        short_text[length] = static_cast<char>(text[length]);
        ++length;
    }
    short_text[length] = 0;
    if (text[length] == 0) {
        return short_text;
    }
    *longer = platform_system_from_wide(text);
    return longer->get();
}

static void write_text(std::FILE *stream, const char *prefix, const wchar_t *text, const char *suffix) {
    char short_text[SHORT_TEXT];
    NarrowText longer;
    char *bytes = to_bytes(text, short_text, &longer);
    drop_carriage_returns(bytes);
    const bool written = terminal_write(stream, prefix, bytes, suffix);
    if (!written && stream == stdout && output_error == 0) {
        output_error = errno != 0 ? errno : EIO;
    }
}

void batch_console_append(const wchar_t *text) {
    write_text(stdout, "", text, "");
}

void batch_console_append_error(const wchar_t *text) {
    write_text(stderr, "", text, "");
}

void batch_error_line(const wchar_t *text) {
    write_text(stderr, ERROR_PREFIX, text, "\n");
}

bool batch_output_finish() {
    if (std::fflush(stdout) != 0 && output_error == 0) {
        output_error = errno;
    }
    if (output_error == 0) {
        return true;
    }
    std::fprintf(stderr, "%sstandard output: %s\n", ERROR_PREFIX, std::strerror(output_error));
    return false;
}
