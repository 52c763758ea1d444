// memory.h: heap blocks and growable arrays. Lack of memory ends the program in one place.
#pragma once
#include "platform/base.h"

// What is called when memory is lacking, with "Memory allocation error" or "Memory reallocation
// error". It should tell the user; when it returns, the program exits with code -1.
using MemoryFailureHook = void (*)(const char *message);

// Sets the hook; null restores the default, which writes the message to standard error.
void memory_set_failure_hook(MemoryFailureHook hook);

// What is done after the hook, as the last act of a program that lack of memory ends, since the handlers of a
// usual exit are not called then: other threads are still at work. At most MEMORY_LAST_ACTS, kept to the end
// of the program; one that lacks memory itself ends the program at once.
using MemoryLastAct = void (*)();
inline constexpr i32 MEMORY_LAST_ACTS = 4;

// Adds one act, done after those added before.
void memory_add_last_act(MemoryLastAct act);

// For tests: lets `count` more allocations or reallocations succeed and the next one fail.
// A negative count switches the trip off.
void memory_trip_after(i64 count);

// Number of blocks that were handed out and are not yet freed; for tests and benchmarks.
i64 memory_live_blocks();

// A block of count * size bytes, uninitialised or zeroed. Never null (a block of 0 bytes is a
// valid pointer). The caller frees it with memory_free.
void *memory_allocate(i64 count, size_t size);

// The same, with every byte 0.
void *memory_allocate_zeroed(i64 count, size_t size);

// Like memory_allocate, but a failure is the caller's: null, and nobody is told.
void *memory_try_allocate(i64 count, size_t size);

// Like memory_reallocate in the same way: null, and the block stays as it is.
void *memory_try_reallocate(void *block, i64 count, size_t size);

// The block with room for count * size bytes, its content kept. Failure: "Memory reallocation error".
void *memory_reallocate(void *block, i64 count, size_t size);

// Ends the program as a failed memory_allocate does; for callers of memory_try_allocate.
[[noreturn]] void memory_end_program();

// Ends the program with a status in the same manner, but without telling of lack of memory: last acts, and no
// handlers of a usual exit, since other threads are at work.
[[noreturn]] void memory_end_beside_threads(i32 status);

// Frees a block of any of the above; null is ignored.
void memory_free(void *block);

// Makes room for one more item in a growable array: when count + 1 exceeds the capacity, the
// capacity doubles until it fits (0 becomes first_capacity).
//   items     the array's pointer; may be null when the capacity is 0
//   returns   the pointer to store back
void *array_reserve_one(void *items, i32 count, i32 *capacity, size_t item_size, i32 first_capacity);

// The sizes below are those of one item also where the items are pointers, which the check for a
// mistaken sizeof of a pointer cannot know.
// NOLINTBEGIN(bugprone-sizeof-expression)

template <typename T>
T *memory_new_array(i64 count) {
    return static_cast<T *>(memory_allocate(count, sizeof(T)));
}

template <typename T>
T *memory_new_zeroed(i64 count = 1) {
    return static_cast<T *>(memory_allocate_zeroed(count, sizeof(T)));
}

// Appends one item to a growable array of pointer, count and capacity. The item may be one of the
// array's own.
template <typename T>
void array_append(T **items, i32 *count, i32 *capacity, const T &item, i32 first_capacity = 512) {
    if (*items != nullptr && *count < *capacity) {
        (*items)[(*count)++] = item;
        return;
    }
    const T copy = item;
    *items = static_cast<T *>(array_reserve_one(*items, *count, capacity, sizeof(T), first_capacity));
    (*items)[(*count)++] = copy;
}

// NOLINTEND(bugprone-sizeof-expression)
