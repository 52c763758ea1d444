#include "platform/memory.h"

#include <atomic>
#include <cassert>
#include <cstdio>
#include <cstdlib>

static std::atomic<MemoryFailureHook> failure_hook{nullptr};
static MemoryLastAct last_acts[MEMORY_LAST_ACTS];
static i32 last_act_count = 0;
static std::atomic<bool> in_last_acts{false};
static std::atomic<i64> trip_countdown{-1};
static std::atomic<i64> live_blocks{0};

void memory_set_failure_hook(MemoryFailureHook hook) {
    failure_hook = hook;
}

void memory_add_last_act(MemoryLastAct act) {
    assert(act != nullptr && last_act_count < MEMORY_LAST_ACTS);
    last_acts[last_act_count++] = act;
}

void memory_trip_after(i64 count) {
    trip_countdown = count;
}

i64 memory_live_blocks() {
    return live_blocks;
}

[[noreturn]] static void memory_fail(const char *message) {
    trip_countdown = -1;  // telling the user may allocate
    MemoryFailureHook hook = failure_hook;
    if (hook != nullptr) {
        hook(message);
    } else {
        std::fprintf(stderr, "%s\n", message);
    }
    memory_end_beside_threads(-1);
}

// Without the handlers of a usual exit: other threads are at work, and would find what they use taken down.
void memory_end_beside_threads(i32 status) {
    if (!in_last_acts.exchange(true)) {
        for (i32 i = 0; i < last_act_count; ++i) {
            last_acts[i]();
        }
    }
    std::fflush(stdout);
    std::_Exit(status);
}

void memory_end_program() {
    memory_fail("Memory allocation error");
}

static bool trip_reached() {
    const i64 left = trip_countdown.load(std::memory_order_relaxed);
    if (left < 0) {
        return false;
    }
    return trip_countdown.fetch_sub(1) == 0;
}

// count * size, at least 1; 0 when the product does not fit or the count is negative.
static size_t block_bytes(i64 count, size_t size) {
    if (count < 0 || (size != 0 && static_cast<u64>(count) > static_cast<u64>(PTRDIFF_MAX) / size)) {
        return 0;
    }
    const size_t bytes = static_cast<size_t>(count) * size;
    return bytes == 0 ? 1 : bytes;
}

void *memory_try_allocate(i64 count, size_t size) {
    const size_t bytes = block_bytes(count, size);
    if (bytes == 0 || trip_reached()) {
        return nullptr;
    }
    void *block = std::malloc(bytes);
    if (block != nullptr) {
        ++live_blocks;
    }
    return block;
}

void *memory_try_reallocate(void *block, i64 count, size_t size) {
    const size_t bytes = block_bytes(count, size);
    if (bytes == 0 || trip_reached()) {
        return nullptr;
    }
    void *moved = std::realloc(block, bytes);
    if (moved != nullptr && block == nullptr) {
        ++live_blocks;
    }
    return moved;
}

void *memory_allocate(i64 count, size_t size) {
    void *block = memory_try_allocate(count, size);
    if (block == nullptr) {
        memory_fail("Memory allocation error");
    }
    return block;
}

void *memory_allocate_zeroed(i64 count, size_t size) {
    const size_t bytes = block_bytes(count, size);
    void *block = bytes == 0 || trip_reached() ? nullptr : std::calloc(1, bytes);
    if (block == nullptr) {
        memory_fail("Memory allocation error");
    }
    ++live_blocks;
    return block;
}

void *memory_reallocate(void *block, i64 count, size_t size) {
    void *moved = memory_try_reallocate(block, count, size);
    if (moved == nullptr) {
        memory_fail("Memory reallocation error");
    }
    return moved;
}

void memory_free(void *block) {
    if (block != nullptr) {
        --live_blocks;
        std::free(block);
    }
}

void *array_reserve_one(void *items, i32 count, i32 *capacity, size_t item_size, i32 first_capacity) {
    assert(capacity != nullptr && count >= 0 && *capacity >= 0 && first_capacity > 0);
    assert(items == nullptr || count <= *capacity);
    if (items != nullptr && count < *capacity) {
        return items;
    }
    i64 grown = *capacity > 0 ? *capacity : first_capacity;
    if (items != nullptr && *capacity > 0) {
        grown *= 2;
    }
    if (grown > I32_MAX) {
        grown = count < I32_MAX ? I32_MAX : -1;  // -1: no count can number one more item
    }
    void *moved = memory_reallocate(items, grown, item_size);
    *capacity = static_cast<i32>(grown);
    return moved;
}
