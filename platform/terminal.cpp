#include "platform/terminal.h"

#include <cassert>
#include <cstdarg>
#include <cstring>

#include "platform/owned.h"
#include "platform/utf8.h"

static constexpr size_t PIECE_SIZE = 512;
static constexpr size_t LONGEST_SHOWN = 4;  // of one character: its UTF-8, or "\x1b"

// What is shown of a text goes out in pieces.
struct ShownOutput {
    std::FILE *stream;
    char piece[PIECE_SIZE];
    size_t length;
    bool failed;
};

static void shown_flush(ShownOutput *shown) {
    shown->failed |= std::fwrite(shown->piece, 1, shown->length, shown->stream) != shown->length;
    shown->length = 0;
}

static void shown_append(ShownOutput *shown, const char *bytes, size_t length) {
    if (shown->length + length > PIECE_SIZE) {
        shown_flush(shown);
    }
    std::memcpy(shown->piece + shown->length, bytes, length);
    shown->length += length;
}

// Whether the character is a command to some terminal: C0 controls, delete, and C1 controls.
static bool is_control(u32 code, const char *next) {
    if (code == '\n' || code == '\t' || (code == '\r' && *next == '\n')) {
        return false;
    }
    return code < 0x20 || (code >= 0x7F && code <= 0x9F);
}

static void shown_text(ShownOutput *shown, const char *text) {
    while (*text != 0) {
        u32 code = 0;
        i32 length = utf8_decode(text, &code);
        if (length == 0) {  // a byte that is no UTF-8, which an older terminal takes for a character
            code = static_cast<u8>(*text);
            length = 1;
        }
        if (is_control(code, text + length)) {
            char words[LONGEST_SHOWN + 1];
            std::snprintf(words, sizeof(words), "\\x%02x", code & 0xFFU);
            shown_append(shown, words, LONGEST_SHOWN);
        } else {
            shown_append(shown, text, static_cast<size_t>(length));
        }
        text += length;
    }
}

bool terminal_write(std::FILE *stream, const char *first, const char *second, const char *third) {
    assert(stream != nullptr && first != nullptr && second != nullptr && third != nullptr);
    if (!platform_is_terminal(stream)) {
        // One write, so that the texts of two threads do not mix.
        return std::fprintf(stream, "%s%s%s", first, second, third) >= 0 && std::fflush(stream) == 0;
    }
    ShownOutput shown;
    shown.stream = stream;
    shown.length = 0;
    shown.failed = false;
    shown_text(&shown, first);
    shown_text(&shown, second);
    shown_text(&shown, third);
    shown_flush(&shown);
    return !shown.failed && std::fflush(stream) == 0;
}

bool terminal_vprintf(std::FILE *stream, const char *format, va_list arguments) {
    assert(stream != nullptr && format != nullptr);
    va_list counting;
    va_copy(counting, arguments);
    const int length = std::vsnprintf(nullptr, 0, format, counting);
    va_end(counting);
    const i64 room = length < 0 ? 1 : i64{length} + 1;
    const auto text = memory_scratch<char>(room);
    text[0] = 0;
    std::vsnprintf(text.get(), static_cast<size_t>(room), format, arguments);
    return terminal_write(stream, text.get(), "", "");
}

bool terminal_printf(std::FILE *stream, const char *format, ...) {
    va_list arguments;
    va_start(arguments, format);
    const bool written = terminal_vprintf(stream, format, arguments);
    va_end(arguments);
    return written;
}
