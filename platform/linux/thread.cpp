#include <pthread.h>
#include <semaphore.h>
#include <time.h>

#include <cassert>
#include <cerrno>

#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/thread_context.h"

struct PlatformThread {
    pthread_t handle;
    PlatformThreadFunction function;
    void *argument;
    void *context;  // of the thread that started it
    i32 result;
};

template <>
struct Freed<PlatformThread> {
    void operator()(PlatformThread *thread) const { memory_free(thread); }
};

static void *run_thread(void *start) {
    auto *thread = static_cast<PlatformThread *>(start);
    thread_context_set(thread->context);
    thread->result = thread->function(thread->argument);
    return nullptr;
}

PlatformThread *platform_thread_start(PlatformThreadFunction function, void *argument) {
    assert(function != nullptr);
    Owned<PlatformThread> thread(memory_new_zeroed<PlatformThread>());
    thread->function = function;
    thread->argument = argument;
    thread->context = thread_context();
    if (pthread_create(&thread->handle, nullptr, run_thread, thread.get()) != 0) {
        return nullptr;
    }
    return thread.release();
}

i32 platform_thread_join(PlatformThread *thread) {
    assert(thread != nullptr);
    const Owned<PlatformThread> joined(thread);
    pthread_join(joined->handle, nullptr);
    return joined->result;
}

struct PlatformSemaphore {
    sem_t counter;
};

PlatformSemaphore *platform_semaphore_create() {
    auto *semaphore = memory_new_zeroed<PlatformSemaphore>();
    sem_init(&semaphore->counter, 0, 0);
    return semaphore;
}

void platform_semaphore_post(PlatformSemaphore *semaphore) {
    assert(semaphore != nullptr);
    sem_post(&semaphore->counter);
}

void platform_semaphore_wait(PlatformSemaphore *semaphore) {
    assert(semaphore != nullptr);
    // A signal handler may wake the thread before its turn.
    while (sem_wait(&semaphore->counter) != 0 && errno == EINTR) {
    }
}

static constexpr i64 NANOSECONDS_OF_SECOND = 1'000'000'000;

bool platform_semaphore_wait_for(PlatformSemaphore *semaphore, i32 milliseconds) {
    timespec until = {};
    clock_gettime(CLOCK_MONOTONIC, &until);
    const i64 nanoseconds = i64{until.tv_nsec} + i64{milliseconds} * 1'000'000;
    until.tv_sec += nanoseconds / NANOSECONDS_OF_SECOND;
    until.tv_nsec = nanoseconds % NANOSECONDS_OF_SECOND;
    int result = 0;
    do {
        result = sem_clockwait(&semaphore->counter, CLOCK_MONOTONIC, &until);
    } while (result != 0 && errno == EINTR);
    return result == 0;
}

void platform_semaphore_free(PlatformSemaphore *semaphore) {
    if (semaphore != nullptr) {
        sem_destroy(&semaphore->counter);
        memory_free(semaphore);
    }
}
