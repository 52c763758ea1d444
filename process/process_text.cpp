#include "process/process_text.h"

#include <cstring>

#include "platform/memory.h"

char *process_text_copy(const char *text) {
    return text != nullptr ? process_text_join(text, "") : nullptr;
}

char *process_text_join(const char *first, const char *second) {
    const size_t first_length = std::strlen(first);
    const size_t second_length = std::strlen(second);
    auto *text = memory_new_array<char>(static_cast<i64>(first_length + second_length + 1));
    std::memcpy(text, first, first_length);
    std::memcpy(text + first_length, second, second_length);
    text[first_length + second_length] = 0;
    return text;
}
