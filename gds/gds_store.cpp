#include "gds/gds_store.h"

#include <algorithm>
#include <cassert>

#include "platform/memory.h"

static_assert(sizeof(GdsStoreBlock) == 8, "what lies behind the record is aligned to 8 bytes");

static constexpr i64 FIRST_BLOCK = i64{1} << 14;  // bytes, so that a small layout stays small
static constexpr i64 LAST_BLOCK = i64{1} << 22;   // what is not used of it costs addresses only

void gds_store_grow(GdsStore *store, i64 size) {
    assert(store != nullptr && size >= 0);
    store->block_size = std::clamp(store->block_size * 2, FIRST_BLOCK, LAST_BLOCK);
    const i64 room = std::max(store->block_size, size + 8) / 8 * 8;
    const i64 bytes = static_cast<i64>(sizeof(GdsStoreBlock)) + room;
    auto *block = static_cast<GdsStoreBlock *>(memory_allocate(bytes, 1));
    block->next = store->blocks;
    store->blocks = block;
    store->room = reinterpret_cast<u8 *>(block + 1);
    store->room_size = room;
}

void gds_store_clear(GdsStore *store) {
    assert(store != nullptr);
    while (store->blocks != nullptr) {
        GdsStoreBlock *next = store->blocks->next;
        memory_free(store->blocks);
        store->blocks = next;
    }
    *store = GdsStore{};
}
