#include "image/image_notes.h"

#include <cassert>
#include <cstring>

#include "platform/utf8.h"

ImageNotes *image_notes_try_create() {
    auto *notes = static_cast<ImageNotes *>(memory_try_allocate(1, sizeof(ImageNotes)));
    if (notes != nullptr) {
        *notes = {};
    }
    return notes;
}

void image_notes_free(ImageNotes *notes) {
    if (notes == nullptr) {
        return;
    }
    memory_free(notes->texts);
    memory_free(notes);
}

// Lets the items point at their texts, which lie behind one another: keyword, text, keyword, ...
static void find_items(ImageNotes *notes) {
    const char *next = notes->texts;
    for (i32 i = 0; i < notes->count; ++i) {
        notes->items[i].keyword = next;
        notes->items[i].text = next + std::strlen(next) + 1;
        next = notes->items[i].text + std::strlen(notes->items[i].text) + 1;
    }
}

ImageNotes *image_notes_try_copy(const ImageNotes *notes) {
    assert(notes != nullptr);
    Owned<ImageNotes> copy(image_notes_try_create());
    Owned<char[]> texts(static_cast<char *>(memory_try_allocate(notes->texts_size, 1)));
    if (copy == nullptr || texts == nullptr) {
        return nullptr;
    }
    *copy = *notes;
    if (notes->texts_size > 0) {
        std::memcpy(texts.get(), notes->texts, static_cast<size_t>(notes->texts_size));
    }
    copy->texts = texts.release();
    find_items(copy.get());
    return copy.release();
}

// Writes a text as UTF-8 without control characters. Returns the bytes with their terminator; with a null
// `out` they are only counted.
static i64 write_clean(const char *text, char *out) {
    i64 size = 0;
    while (*text != 0) {
        u32 code = 0;
        text += utf8_clean_decode(text, &code);
        char bytes[4];
        const i32 count = utf8_encode(code, bytes);
        if (out != nullptr) {
            std::memcpy(out + size, bytes, static_cast<size_t>(count));
        }
        size += count;
    }
    if (out != nullptr) {
        out[size] = 0;
    }
    return size + 1;
}

bool image_notes_try_add(ImageNotes *notes, const char *keyword, const char *text) {
    assert(notes != nullptr && keyword != nullptr && keyword[0] != 0 && std::strlen(keyword) < 80);
    assert(text != nullptr && notes->count < MOST_IMAGE_NOTES);
    if (text[0] == 0) {
        return true;
    }
    const i64 keyword_size = static_cast<i64>(std::strlen(keyword)) + 1;
    const i64 size = notes->texts_size + keyword_size + write_clean(text, nullptr);
    void *moved = memory_try_reallocate(notes->texts, size, 1);
    if (moved == nullptr) {
        return false;
    }
    notes->texts = static_cast<char *>(moved);
    char *place = notes->texts + notes->texts_size;
    std::memcpy(place, keyword, static_cast<size_t>(keyword_size));
    write_clean(text, place + keyword_size);
    notes->texts_size = size;
    ++notes->count;
    find_items(notes);
    return true;
}
