// shared_number.h: a number that the user-interface thread and the worker share.
#pragma once
#include <atomic>
#include "platform/base.h"

// Writing it releases and reading it acquires: who sees the number also sees what was written before it. It
// is copied like the other fields of its record, which is done only while there is one thread.
struct SharedNumber {
    std::atomic<i32> value{0};

    SharedNumber() = default;
    SharedNumber(const SharedNumber &other) : value(other.load()) {}
    ~SharedNumber() = default;
    SharedNumber &operator=(const SharedNumber &other) { return *this = other.load(); }
    SharedNumber &operator=(i32 number) {
        value.store(number, std::memory_order_release);
        return *this;
    }
    i32 load() const { return value.load(std::memory_order_acquire); }
    operator i32() const { return load(); }
};
