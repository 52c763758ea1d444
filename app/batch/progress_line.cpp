#include "app/batch/progress_line.h"

#include <cassert>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <mutex>

#include "platform/owned.h"
#include "platform/platform.h"
#include "platform/terminal.h"
#include "platform/thread_context.h"
#include "platform/utf8.h"

static constexpr i32 USUAL_COLUMNS = 80;
static constexpr i32 MOST_COLUMNS = 200;

// One for the program. Nothing here needs memory of the heap while it holds the lock, so that lack of memory
// can be told at any time.
struct ProgressLine {
    std::mutex lock;
    char text[MOST_COLUMNS * 4];  // what is to be shown, UTF-8; without a terminator
    size_t size;
    i32 columns;     // that it may take
    i32 shown;       // columns that are shown; 0 for none
    bool line_open;  // the last text on the terminal did not end its line
};

static ProgressLine progress_line;

bool progress_line_is_possible() {
#ifndef _WIN32
    const char *kind = std::getenv("TERM");
    if (kind == nullptr || kind[0] == 0 || std::strcmp(kind, "dumb") == 0) {
        return false;
    }
#endif
    return platform_is_terminal(stderr);
}

// What goes to the terminal at once.
struct TerminalPiece {
    char bytes[MOST_COLUMNS * 5 + 8];  // a line of the longest characters, and the blanks that take one away
    size_t length;
};

static void add_character(TerminalPiece *piece, char character) {
    piece->bytes[piece->length++] = character;
}

static void add_blanks(TerminalPiece *piece, i32 count) {
    for (i32 i = 0; i < count; ++i) {
        add_character(piece, ' ');
    }
}

// Not by terminal_write, which shows what moves the cursor instead of sending it.
static void send(const TerminalPiece *piece) {
    std::fwrite(piece->bytes, 1, piece->length, stderr);
    std::fflush(stderr);
}

static void take_away() {
    if (progress_line.shown > 0) {
        TerminalPiece piece = {};
        add_character(&piece, '\r');
        add_blanks(&piece, progress_line.shown);
        add_character(&piece, '\r');
        send(&piece);
        progress_line.shown = 0;
    }
}

static void show() {
    if (progress_line.size == 0 || progress_line.line_open) {
        return;
    }
    TerminalPiece piece = {};
    add_character(&piece, '\r');
    std::memcpy(piece.bytes + piece.length, progress_line.text, progress_line.size);
    piece.length += progress_line.size;
    add_blanks(&piece, progress_line.shown - progress_line.columns);  // what is left of a longer one
    progress_line.shown = progress_line.columns;
    send(&piece);
}

// Keeps what fits and nothing that moves the cursor. A letter beyond ASCII counts as two, which those of some
// scripts take.
static void keep_fitting(const char *text, i32 room) {
    progress_line.size = 0;
    progress_line.columns = 0;
    while (*text != 0) {
        u32 code = 0;
        text += utf8_clean_decode(text, &code);
        const i32 width = code < 0x80 ? 1 : 2;
        if (progress_line.columns + width > room) {
            break;
        }
        progress_line.columns += width;
        progress_line.size += static_cast<size_t>(utf8_encode(code, progress_line.text + progress_line.size));
    }
}

static i32 columns_of_terminal() {
    const i32 columns = platform_terminal_columns(stderr);
    return columns <= 0 ? USUAL_COLUMNS : columns < MOST_COLUMNS ? columns : MOST_COLUMNS;
}

void progress_line_show(const wchar_t *text) {
    if (thread_context() != nullptr) {
        return;
    }
    const NarrowText bytes = text != nullptr ? platform_system_from_wide(text) : nullptr;
    const std::lock_guard<std::mutex> guard(progress_line.lock);
    if (bytes == nullptr) {
        take_away();
        progress_line.size = 0;
    } else {
        keep_fitting(bytes.get(), columns_of_terminal() - 1);
        show();
    }
}

bool progress_line_write_text(std::FILE *stream, const char *first, const char *second, const char *third) {
    assert(stream != nullptr && first != nullptr && second != nullptr && third != nullptr);
    if (!platform_is_terminal(stream)) {
        return terminal_write(stream, first, second, third);  // without the lock: it may block
    }
    const std::lock_guard<std::mutex> guard(progress_line.lock);
    take_away();
    const bool written = terminal_write(stream, first, second, third);
    const int reason = errno;
    for (const char *part : {first, second, third}) {
        const size_t length = std::strlen(part);
        progress_line.line_open = length > 0 ? part[length - 1] != '\n' : progress_line.line_open;
    }
    show();
    errno = reason;
    return written;
}
