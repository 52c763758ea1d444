// Pages of 2 MB instead of 4 KB, where the system is set to give them to those who ask.
#include <sys/mman.h>
#include <unistd.h>

#include <cassert>

#include "platform/memory.h"

static constexpr i64 WORTH_ASKING = i64{1} << 22;  // two large pages

void memory_expect_use(void *block, i64 size) {
    assert(block != nullptr && size >= 0);
    if (size < WORTH_ASKING) {
        return;
    }
    // Whole pages around the block: a mapping of which all has the same kind can grow without being copied.
    // Only a wish, whose failure changes nothing.
    const auto page = static_cast<i64>(sysconf(_SC_PAGESIZE));
    const i64 before = static_cast<i64>(reinterpret_cast<u64>(block) % static_cast<u64>(page));
    const i64 length = (before + size + page - 1) / page * page;
    static_cast<void>(madvise(static_cast<u8 *>(block) - before, static_cast<size_t>(length), MADV_HUGEPAGE));
}
