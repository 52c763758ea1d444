// gds_store.h: memory that is taken piece by piece and freed at once, for what a layout has millions of.
#pragma once
#include "platform/memory_ahead.h"

// What a block holds lies right behind this record, aligned to 8 bytes.
struct GdsStoreBlock {
    GdsStoreBlock *next;
};

// All zero is an empty store.
struct GdsStore {
    GdsStoreBlock *blocks;  // owned, the latest first
    u8 *room;               // what is left of the latest block, aligned to 8 bytes
    i64 room_size;
    i64 block_size;        // bytes of the latest block; they double up to a limit
    bool in_a_hurry;       // whether memory is made ready ahead once blocks have grown to their limit
    MemoryAhead *ahead;    // owned; null before that
    GdsStoreBlock *spare;  // owned; the block that will be the next one, or null
};

// Adds a block with room for at least `size` bytes; what was left of the one before is lost.
void gds_store_grow(GdsStore *store, i64 size);

// So many bytes in a row, uninitialised, aligned to 8 bytes. They are not taken: the next call gives the same
// ones, until gds_store_take. Lack of memory ends the program.
inline void *gds_store_room(GdsStore *store, i64 size) {
    if (store->room_size < size) {
        gds_store_grow(store, size);
    }
    return store->room;
}

// The same bytes as gds_store_room gives, which now are the caller's until the store is cleared.
inline void *gds_store_take(GdsStore *store, i64 size) {
    const i64 taken = (size + 7) / 8 * 8;
    void *room = gds_store_room(store, taken);
    store->room += taken;
    store->room_size -= taken;
    return room;
}

// Ends the hurry: nothing is made ready ahead any more.
void gds_store_rest(GdsStore *store);

// Frees all blocks; the store is empty afterwards.
void gds_store_clear(GdsStore *store);
