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
