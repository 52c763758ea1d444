#include "process/process_text.h"

#include <cassert>
#include <cstring>

NarrowText process_text_copy(const char *text) {
    return text != nullptr ? process_text_join(text, "") : NarrowText();
}

NarrowText process_text_join(const char *first, const char *second) {
    assert(first != nullptr && second != nullptr);
    const size_t first_length = std::strlen(first);
    const size_t second_length = std::strlen(second);
    NarrowText text = memory_scratch<char>(static_cast<i64>(first_length + second_length + 1));
    std::memcpy(text.get(), first, first_length);
    std::memcpy(text.get() + first_length, second, second_length);
    text[first_length + second_length] = 0;
    return text;
}
