// owned.h: owners for what a function allocates for itself, so that every return frees it. Records and arrays
// that outlive the function are plain pointers with a *_create and a *_free; `release` hands a block over to
// them. Nothing owned may live between a setjmp and its jump, which would leave it unfreed.
#pragma once
#include <memory>
#include <type_traits>
#include "platform/memory.h"

// How an owned thing is freed. Arrays go back with memory_free; the header of each record that has a *_free
// says so with a specialisation of its own.
template <typename T>
struct Freed;

template <typename T>
struct Freed<T[]> {
    static_assert(std::is_trivially_destructible_v<T>, "memory_free calls no destructor");
    void operator()(T *block) const { memory_free(block); }
};

// The owner of one record, Owned<Layer>, or of an array, Owned<f32[]>; empty when null.
template <typename T>
using Owned = std::unique_ptr<T, Freed<T>>;

// Owned texts, zero-terminated: wide, and in bytes (UTF-8 unless told otherwise).
using WideText = Owned<wchar_t[]>;
using NarrowText = Owned<char[]>;

// An array for a function's own use: uninitialised or zeroed, `count` items, 0 allowed. Lack of memory ends
// the program as with memory_allocate.
template <typename T>
Owned<T[]> memory_scratch(i64 count) {
    return Owned<T[]>(memory_new_array<T>(count));
}

template <typename T>
Owned<T[]> memory_scratch_zeroed(i64 count) {
    return Owned<T[]>(memory_new_zeroed<T>(count));
}

// Changes the size of an owned array, which may move; its content is kept. False, and nothing has changed,
// when memory for it is lacking.
template <typename T>
bool memory_try_resize(Owned<T[]> *block, i64 count) {
    void *moved = memory_try_reallocate(block->get(), count, sizeof(T));
    if (moved != nullptr) {
        static_cast<void>(block->release());  // the block before is gone
        block->reset(static_cast<T *>(moved));
    }
    return moved != nullptr;
}

// array_append for a growable array of a function's own; empty at the start, with count and capacity 0.
template <typename T>
void array_append(Owned<T[]> *items, i32 *count, i32 *capacity, const T &item, i32 first_capacity = 512) {
    T *plain = items->release();
    array_append(&plain, count, capacity, item, first_capacity);
    items->reset(plain);
}
