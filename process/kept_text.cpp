#include "process/kept_text.h"

#include <cassert>

#include "platform/platform.h"

static constexpr i64 FIRST_CAPACITY = 4096;

static void add_bytes(KeptText *kept, const char *bytes, i64 size) {
    const i64 room = KEPT_TEXT_MOST - kept->size;
    size = size < room ? size : room;
    if (kept->bytes == nullptr) {
        kept->capacity = FIRST_CAPACITY;
        kept->bytes = memory_new_array<char>(kept->capacity);
    }
    if (kept->size + size >= kept->capacity) {  // the terminator has room too
        kept->capacity = 2 * kept->capacity + size;
        kept->bytes = static_cast<char *>(memory_reallocate(kept->bytes, kept->capacity, 1));
    }
    for (i64 i = 0; i < size; ++i) {
        kept->bytes[kept->size++] = bytes[i] != 0 ? bytes[i] : ' ';
    }
}

void kept_text_add(KeptText *kept, const RawLine *line) {
    assert(kept != nullptr && line != nullptr && line->size >= 0 && line->size < PROCESS_LINE_SIZE);
    add_bytes(kept, line->text, line->size);
}

void kept_text_add_rest(KeptText *kept, std::FILE *file) {
    assert(kept != nullptr && file != nullptr);
    // Asked for only: setting the place, be it to where it is, loses it in files of text on Windows.
    if (std::ftell(file) < 0) {
        return;  // a pipe
    }
    char piece[4096];
    while (kept->size < KEPT_TEXT_MOST && !platform_interrupted()) {
        const size_t count = std::fread(piece, 1, sizeof(piece), file);
        add_bytes(kept, piece, static_cast<i64>(count));
        if (count < sizeof(piece)) {
            break;
        }
    }
}

char *kept_text_take(KeptText *kept) {
    assert(kept != nullptr);
    add_bytes(kept, "", 0);
    char *text = kept->bytes;
    text[kept->size] = 0;
    *kept = {};
    return text;
}
