#include "gds/gds_names.h"

#include <algorithm>
#include <cassert>
#include <cstring>

static constexpr i64 FIRST_SLOTS = 64;

// The step of FNV-1a (Fowler, Noll, Vo) for up to eight bytes at a time, with the upper half of each product
// brought down, since the bytes that differ mostly come last. Which number a name gets is seen nowhere else.
static u64 hash_of(const char *text, i64 length) {
    u64 hash = 14695981039346656037U ^ static_cast<u64>(length);
    while (length > 0) {
        u64 piece = 0;
        const i64 size = std::min(length, i64{8});
        std::memcpy(&piece, text, static_cast<size_t>(size));
        hash = (hash ^ piece) * 0x9E3779B97F4A7C15U;
        hash ^= hash >> 32;
        text += size;
        length -= size;
    }
    return hash;
}

static bool is_name(const GdsName *name, u64 hash, const char *text, i64 length) {
    return name->hash == hash && name->string.count == static_cast<u64>(length) &&
           std::memcmp(name->string.text, text, static_cast<size_t>(length)) == 0;
}

// The slot of the name, or the free one where it belongs. There must be a free one.
static GdsName **find_slot(const GdsNames *names, u64 hash, const char *text, i64 length) {
    const u64 mask = static_cast<u64>(names->slot_count) - 1;
    u64 at = hash & mask;
    while (names->slots[at] != nullptr && !is_name(names->slots[at], hash, text, length)) {
        at = (at + 1) & mask;
    }
    return &names->slots[at];
}

// Keeps half of the slots free, so that searches are short.
static void make_slots(GdsNames *names) {
    if (names->count * 2 < names->slot_count) {
        return;
    }
    const Owned<GdsName *[]> before(names->slots);
    const i64 count_before = names->slot_count;
    names->slot_count = std::max(FIRST_SLOTS, count_before * 2);
    names->slots = memory_new_zeroed<GdsName *>(names->slot_count);
    const u64 mask = static_cast<u64>(names->slot_count) - 1;
    for (i64 i = 0; i < count_before; ++i) {
        GdsName *name = before.get()[i];
        if (name != nullptr) {
            u64 at = name->hash & mask;
            while (names->slots[at] != nullptr) {
                at = (at + 1) & mask;
            }
            names->slots[at] = name;
        }
    }
}

static GdsName *new_name(GdsNames *names, u64 hash, const char *text, i64 length) {
    const i64 size = static_cast<i64>(sizeof(GdsName)) + length + 1;
    auto *name = static_cast<GdsName *>(gds_store_take(&names->store, size));
    name->string.text = reinterpret_cast<char *>(name + 1);
    name->string.count = static_cast<u64>(length);
    name->hash = hash;
    name->cell = -1;
    std::memcpy(name->string.text, text, static_cast<size_t>(length));
    name->string.text[length] = 0;
    return name;
}

GdsName *gds_names_add(GdsNames *names, const char *text, i64 length) {
    assert(names != nullptr && text != nullptr && length >= 0);
    make_slots(names);
    const u64 hash = hash_of(text, length);
    GdsName **slot = find_slot(names, hash, text, length);
    if (*slot == nullptr) {
        *slot = new_name(names, hash, text, length);
        ++names->count;
    }
    return *slot;
}

GdsName *gds_names_find(const GdsNames *names, const char *text, i64 length) {
    assert(names != nullptr && text != nullptr && length >= 0);
    return names->slot_count > 0 ? *find_slot(names, hash_of(text, length), text, length) : nullptr;
}

void gds_names_clear(GdsNames *names) {
    assert(names != nullptr);
    gds_store_clear(&names->store);
    memory_free(names->slots);
    *names = GdsNames{};
}
