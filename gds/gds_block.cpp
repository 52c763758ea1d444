#include "gds/gds_block.h"

#include <cassert>

#include "platform/memory.h"

static_assert(sizeof(GdsBlock) == 8, "what lies behind the record is aligned to 8 bytes");

void *gds_block_add(GdsBlock **chain, i64 size) {
    assert(chain != nullptr && size >= 0);
    auto *block = static_cast<GdsBlock *>(memory_allocate(static_cast<i64>(sizeof(GdsBlock)) + size, 1));
    block->next = *chain;
    *chain = block;
    return block + 1;
}

void gds_blocks_free(GdsBlock **chain) {
    assert(chain != nullptr);
    while (*chain != nullptr) {
        GdsBlock *next = (*chain)->next;
        memory_free(*chain);
        *chain = next;
    }
}
