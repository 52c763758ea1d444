// gds_block.h: chains of memory blocks that are freed at once, for what a layout has millions of.
#pragma once
#include "platform/base.h"

// What a block holds lies right behind this record, aligned to 8 bytes.
struct GdsBlock {
    GdsBlock *next;
};

// Adds a block with room for `size` bytes to the chain (null at the start), and returns that room. Lack of
// memory ends the program.
void *gds_block_add(GdsBlock **chain, i64 size);

// Frees all blocks; the chain is null afterwards.
void gds_blocks_free(GdsBlock **chain);
