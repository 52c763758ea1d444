#include "app/batch/batch_output.h"

#include <atomic>
#include <cassert>
#include <cerrno>
#include <cstdarg>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#ifdef _WIN32
#include <windows.h>
#else
#include <fcntl.h>

#include <csignal>
#endif

#include "app/batch/progress_line.h"
#include "log/text.h"
#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/thread_context.h"

static constexpr const char *ERROR_PREFIX = "quarn-batch: ";
static constexpr size_t SHORT_TEXT = 512;

// One for the program: sinks come without a record to look into.
struct BatchOutput {
    std::atomic<BatchConsole> console;  // where console text goes
    std::atomic<i32> error;             // errno of the first failed write to standard output; 0: none
    u32 code_page;                      // on Windows that of the caller's console; 0 when there is none
};

static BatchOutput output = {};

#ifdef _WIN32
static void restore_console() {
    SetConsoleOutputCP(output.code_page);
}
#endif

void batch_streams_open() {
#ifdef _WIN32
    // A console shows the texts as UTF-8 while the program runs.
    output.code_page = GetConsoleOutputCP();
    if (output.code_page != 0 && SetConsoleOutputCP(CP_UTF8) != FALSE) {
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

static bool write_bytes(std::FILE *stream, const char *prefix, const wchar_t *text, const char *suffix) {
    char short_text[SHORT_TEXT];
    NarrowText longer;
    char *bytes = to_bytes(text, short_text, &longer);
    drop_carriage_returns(bytes);
    return progress_line_write_text(stream, prefix, bytes, suffix);
}

static void write_text(std::FILE *stream, const char *prefix, const wchar_t *text, const char *suffix) {
    const bool written = write_bytes(stream, prefix, text, suffix);
    if (!written && stream == stdout && output.error == 0) {
        output.error = errno != 0 ? errno : EIO;
    }
}

void batch_output_printf(const char *format, ...) {
    assert(format != nullptr);
    va_list arguments;
    va_start(arguments, format);
    const NarrowText text = text_format_narrow(format, arguments);
    va_end(arguments);
    const bool written = progress_line_write_text(stdout, text.get(), "", "");
    if (!written && output.error == 0) {
        output.error = errno != 0 ? errno : EIO;
    }
}

void batch_console_to(BatchConsole console) {
    output.console = console;
}

void batch_console_append(const wchar_t *text) {
    assert(text != nullptr);
    auto *texts = static_cast<BatchTexts *>(thread_context());
    if (texts != nullptr) {
        texts->console(texts, text);
        return;
    }
    switch (output.console) {
        case BATCH_CONSOLE_NOWHERE: break;
        case BATCH_CONSOLE_ERROR: write_text(stderr, "", text, ""); break;
        case BATCH_CONSOLE_OUTPUT: write_text(stdout, "", text, ""); break;
    }
}

bool batch_write_console(std::FILE *file, const wchar_t *text) {
    assert(file != nullptr && text != nullptr);
    return write_bytes(file, "", text, "");
}

void batch_write_error(const wchar_t *text) {
    assert(text != nullptr);
    write_text(stderr, ERROR_PREFIX, text, "\n");
}

void batch_error_line(const wchar_t *text) {
    assert(text != nullptr);
    auto *texts = static_cast<BatchTexts *>(thread_context());
    if (texts != nullptr) {
        texts->error_line(texts, text);
    } else {
        batch_write_error(text);
    }
}

bool batch_output_finish() {
    progress_line_show(nullptr);
    if (std::fflush(stdout) != 0 && output.error == 0) {
        output.error = errno;
    }
    if (output.error == 0) {
        return true;
    }
    std::fprintf(stderr, "%sstandard output: %s\n", ERROR_PREFIX, std::strerror(output.error));
    return false;
}
