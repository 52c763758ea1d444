#include "platform/memory_ahead.h"

#include <pthread.h>
#include <sys/mman.h>
#include <unistd.h>

#include <cassert>

#include "platform/platform.h"

#ifndef MADV_POPULATE_WRITE
#define MADV_POPULATE_WRITE 23  // since Linux 5.14; older ones refuse it, and then nothing is made ready
#endif

static constexpr i32 ASKED_MOST = 8;

struct AskedPages {
    void *begin;
    size_t size;
};

struct MemoryAhead {
    PlatformThread *thread;
    PlatformSemaphore *asked_or_ended;
    pthread_mutex_t work;   // held while pages are made ready; taken before `queue`
    pthread_mutex_t queue;  // guards what follows
    AskedPages asked[ASKED_MOST];
    i32 asked_count;
    bool ended;
};

// Makes the pages ready that were asked for first. False at the end.
static bool make_ready(MemoryAhead *ahead) {
    pthread_mutex_lock(&ahead->work);
    pthread_mutex_lock(&ahead->queue);
    const bool ended = ahead->ended;
    AskedPages pages = {};
    if (ahead->asked_count > 0) {
        pages = ahead->asked[0];
        --ahead->asked_count;
        for (i32 i = 0; i < ahead->asked_count; ++i) {
            ahead->asked[i] = ahead->asked[i + 1];
        }
    }
    pthread_mutex_unlock(&ahead->queue);
    if (pages.size > 0 && !ended) {
        // Unlike writing, this changes no byte that others may be writing.
        static_cast<void>(madvise(pages.begin, pages.size, MADV_POPULATE_WRITE));
    }
    pthread_mutex_unlock(&ahead->work);
    return !ended;
}

static i32 run_ahead(void *argument) {
    auto *ahead = static_cast<MemoryAhead *>(argument);
    do {
        platform_semaphore_wait(ahead->asked_or_ended);
    } while (make_ready(ahead));
    return 0;
}

MemoryAhead *memory_ahead_create() {
    auto *ahead = memory_new_zeroed<MemoryAhead>();
    ahead->asked_or_ended = platform_semaphore_create();
    pthread_mutex_init(&ahead->work, nullptr);
    pthread_mutex_init(&ahead->queue, nullptr);
    ahead->thread = platform_thread_start(run_ahead, ahead);
    if (ahead->thread == nullptr) {
        memory_ahead_free(ahead);
        return nullptr;
    }
    return ahead;
}

void memory_ahead_ask(MemoryAhead *ahead, void *begin, i64 size) {
    assert(begin != nullptr && size >= 0);
    if (ahead == nullptr) {
        return;
    }
    // Whole pages inside the part.
    const u64 page = static_cast<u64>(sysconf(_SC_PAGESIZE));
    const u64 address = reinterpret_cast<u64>(begin);
    const u64 first = (address + page - 1) / page * page;
    const u64 end = (address + static_cast<u64>(size)) / page * page;
    if (end <= first) {
        return;
    }
    pthread_mutex_lock(&ahead->queue);
    if (ahead->asked_count < ASKED_MOST) {
        ahead->asked[ahead->asked_count++] = {static_cast<u8 *>(begin) + (first - address), end - first};
    }
    pthread_mutex_unlock(&ahead->queue);
    platform_semaphore_post(ahead->asked_or_ended);
}

void memory_ahead_settle(MemoryAhead *ahead) {
    if (ahead == nullptr) {
        return;
    }
    pthread_mutex_lock(&ahead->queue);
    ahead->asked_count = 0;
    pthread_mutex_unlock(&ahead->queue);
    pthread_mutex_lock(&ahead->work);
    pthread_mutex_unlock(&ahead->work);
}

void memory_ahead_free(MemoryAhead *ahead) {
    if (ahead == nullptr) {
        return;
    }
    if (ahead->thread != nullptr) {
        pthread_mutex_lock(&ahead->queue);
        ahead->ended = true;
        pthread_mutex_unlock(&ahead->queue);
        platform_semaphore_post(ahead->asked_or_ended);
        platform_thread_join(ahead->thread);
    }
    pthread_mutex_destroy(&ahead->work);
    pthread_mutex_destroy(&ahead->queue);
    platform_semaphore_free(ahead->asked_or_ended);
    memory_free(ahead);
}
