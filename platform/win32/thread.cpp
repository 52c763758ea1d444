#include <windows.h>

#include "platform/memory.h"
#include "platform/platform.h"

struct PlatformThread {
    HANDLE handle;
    PlatformThreadFunction function;
    void *argument;
    i32 result;
};

static DWORD WINAPI run_thread(void *start) {
    auto *thread = static_cast<PlatformThread *>(start);
    thread->result = thread->function(thread->argument);
    return 0;
}

PlatformThread *platform_thread_start(PlatformThreadFunction function, void *argument) {
    auto *thread = memory_new_zeroed<PlatformThread>();
    thread->function = function;
    thread->argument = argument;
    thread->handle = CreateThread(nullptr, 0, run_thread, thread, 0, nullptr);
    if (thread->handle == nullptr) {
        memory_free(thread);
        return nullptr;
    }
    return thread;
}

i32 platform_thread_join(PlatformThread *thread) {
    WaitForSingleObject(thread->handle, INFINITE);
    CloseHandle(thread->handle);
    const i32 result = thread->result;
    memory_free(thread);
    return result;
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
    ReleaseSemaphore(semaphore->counter, 1, nullptr);
}

void platform_semaphore_wait(PlatformSemaphore *semaphore) {
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
