// page_deflate.h: bytes packed piece by piece into a block that a browser unpacks by itself ("deflate" of its
// DecompressionStream, which is zlib's format).
#pragma once
#include "platform/owned.h"

struct PageDeflate;

// An empty block in the making, freed with page_deflate_free. Null when memory is lacking.
PageDeflate *page_deflate_try_create();

void page_deflate_free(PageDeflate *deflate);  // takes null

template <>
struct Freed<PageDeflate> {
    void operator()(PageDeflate *deflate) const { page_deflate_free(deflate); }
};

// Packs `size` more bytes. False when memory is lacking; the block is then of no use.
bool page_deflate_put(PageDeflate *deflate, const u8 *bytes, i64 size);

// Ends the block and hands it over with its size; nothing can be packed afterwards. Null when memory is
// lacking.
Owned<u8[]> page_deflate_finish(PageDeflate *deflate, i64 *size);
