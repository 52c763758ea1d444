#include "gds/gds_store.h"

#include <algorithm>
#include <cassert>

#include "platform/memory.h"

static_assert(sizeof(GdsStoreBlock) == 8, "what lies behind the record is aligned to 8 bytes");

static constexpr i64 FIRST_BLOCK = i64{1} << 14;  // bytes, so that a small layout stays small
static constexpr i64 LAST_BLOCK = i64{1} << 22;   // what is not used of it costs little

// The next block in a hurry: its pages have been made ready while the one before was filled, and those of the
// one after it are asked for.
static GdsStoreBlock *next_in_a_hurry(GdsStore *store) {
    if (store->ahead == nullptr) {
        store->ahead = memory_ahead_create();
        if (store->ahead == nullptr) {
            store->in_a_hurry = false;
        }
    }
    GdsStoreBlock *block = store->spare;
    store->spare = static_cast<GdsStoreBlock *>(memory_allocate(LAST_BLOCK, 1));
    memory_ahead_ask(store->ahead, store->spare, LAST_BLOCK);
    return block != nullptr ? block : static_cast<GdsStoreBlock *>(memory_allocate(LAST_BLOCK, 1));
}

void gds_store_grow(GdsStore *store, i64 size) {
    assert(store != nullptr && size >= 0);
    store->block_size = std::clamp(store->block_size * 2, FIRST_BLOCK, LAST_BLOCK);
    const auto header = static_cast<i64>(sizeof(GdsStoreBlock));
    i64 bytes = store->block_size;
    GdsStoreBlock *block = nullptr;
    if (bytes == LAST_BLOCK && size <= LAST_BLOCK - header && store->in_a_hurry) {
        block = next_in_a_hurry(store);
    } else {
        bytes = std::max(bytes, header + (size + 7) / 8 * 8);
        block = static_cast<GdsStoreBlock *>(memory_allocate(bytes, 1));
    }
    block->next = store->blocks;
    store->blocks = block;
    store->room = reinterpret_cast<u8 *>(block + 1);
    store->room_size = bytes - header;
}

void gds_store_rest(GdsStore *store) {
    assert(store != nullptr);
    memory_ahead_free(store->ahead);
    memory_free(store->spare);
    store->ahead = nullptr;
    store->spare = nullptr;
    store->in_a_hurry = false;
}

void gds_store_clear(GdsStore *store) {
    assert(store != nullptr);
    gds_store_rest(store);
    while (store->blocks != nullptr) {
        GdsStoreBlock *next = store->blocks->next;
        memory_free(store->blocks);
        store->blocks = next;
    }
    *store = GdsStore{};
}
