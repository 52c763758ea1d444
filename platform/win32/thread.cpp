#include <windows.h>

#include <cassert>

#include "platform/memory.h"
#include "platform/platform.h"
#include "platform/thread_context.h"

struct PlatformThread {
    HANDLE handle;
    PlatformThreadFunction function;
    void *argument;
    void *context;  // of the thread that started it
    i32 result;
};

template <>
struct Freed<PlatformThread> {
    void operator()(PlatformThread *thread) const { memory_free(thread); }
};

static DWORD WINAPI run_thread(void *start) {
    auto *thread = static_cast<PlatformThread *>(start);
    thread_context_set(thread->context);
    thread->result = thread->function(thread->argument);
    return 0;
}

PlatformThread *platform_thread_start(PlatformThreadFunction function, void *argument) {
    assert(function != nullptr);
    Owned<PlatformThread> thread(memory_new_zeroed<PlatformThread>());
    thread->function = function;
    thread->argument = argument;
    thread->context = thread_context();
    thread->handle = CreateThread(nullptr, 0, run_thread, thread.get(), 0, nullptr);
    if (thread->handle == nullptr) {
        return nullptr;
    }
    return thread.release();
}

i32 platform_thread_join(PlatformThread *thread) {
    assert(thread != nullptr);
    const Owned<PlatformThread> joined(thread);
    WaitForSingleObject(joined->handle, INFINITE);
    CloseHandle(joined->handle);
    return joined->result;
}

struct PlatformSemaphore {
    HANDLE counter;
};

PlatformSemaphore *platform_semaphore_create() {
    auto *semaphore = memory_new_zeroed<PlatformSemaphore>();
    semaphore->counter = CreateSemaphoreW(nullptr, 0, I32_MAX, nullptr);
    if (semaphore->counter == nullptr) {
        memory_end_program();  // the system refuses it for lack of memory only
    }
    return semaphore;
}

void platform_semaphore_post(PlatformSemaphore *semaphore) {
    assert(semaphore != nullptr);
    ReleaseSemaphore(semaphore->counter, 1, nullptr);
}

void platform_semaphore_wait(PlatformSemaphore *semaphore) {
    assert(semaphore != nullptr);
    WaitForSingleObject(semaphore->counter, INFINITE);
}

bool platform_semaphore_wait_for(PlatformSemaphore *semaphore, i32 milliseconds) {
    return WaitForSingleObject(semaphore->counter, static_cast<DWORD>(milliseconds)) == WAIT_OBJECT_0;
}

void platform_semaphore_free(PlatformSemaphore *semaphore) {
    if (semaphore != nullptr) {
        CloseHandle(semaphore->counter);
        memory_free(semaphore);
    }
}
