#include "app/win32/picture_clipboard.h"

#include <cassert>
#include <cstring>

#include "image/image_on_white.h"
#include "image/png.h"
#include "platform/thread_role.h"

static constexpr i32 TRIES = 10;
static constexpr DWORD PAUSE_MS = 20;

// A block for the clipboard: a header, which may have no bytes, and what follows it. Freed with GlobalFree;
// null when memory is lacking.
static HGLOBAL block_of(const BITMAPINFOHEADER *header, size_t header_size, const u8 *bytes, size_t size) {
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, header_size + size);
    if (block != nullptr) {
        auto *to = static_cast<u8 *>(GlobalLock(block));
        std::memcpy(to, header, header_size);
        std::memcpy(to + header_size, bytes, size);
        GlobalUnlock(block);
    }
    return block;
}

// Header and pixels; rows and colours lie as in the picture.
static HGLOBAL bitmap_of(const PixelImage *picture) {
    BITMAPINFOHEADER header = {};
    header.biSize = sizeof(header);
    header.biWidth = picture->width;
    header.biHeight = picture->height;
    header.biPlanes = 1;
    header.biBitCount = 32;
    header.biCompression = BI_RGB;
    const size_t size = static_cast<size_t>(picture->width) * static_cast<size_t>(picture->height) * 4;
    header.biSizeImage = static_cast<DWORD>(size);
    return block_of(&header, sizeof(header), picture->pixels, size);
}

// The bytes of a PNG file.
static HGLOBAL png_of(const PixelImage *picture) {
    i64 size = 0;
    const Owned<u8[]> bytes = png_try_encode(picture, &size);
    const BITMAPINFOHEADER none = {};
    return bytes != nullptr ? block_of(&none, 0, bytes.get(), static_cast<size_t>(size)) : nullptr;
}

// Programs that watch the clipboard open it for a moment whenever it changes.
static bool open_clipboard(HWND owner) {
    for (i32 i = 0; i < TRIES; ++i) {
        if (OpenClipboard(owner) != FALSE) {
            return true;
        }
        Sleep(PAUSE_MS);
    }
    return false;
}

// Hands a block over to the clipboard, which is open; one that it does not take is freed.
static bool hand_over(UINT format, HGLOBAL block) {
    if (block == nullptr) {
        return false;
    }
    const bool taken = format != 0 && SetClipboardData(format, block) != nullptr;
    if (!taken) {
        GlobalFree(block);
    }
    return taken;
}

bool picture_clipboard_set(HWND owner, PixelImage *picture) {
    assert(thread_role_fits(THREAD_WINDOW) && picture != nullptr && !image_is_empty(picture));
    HGLOBAL png = png_of(picture);
    image_lay_on_white(picture);
    HGLOBAL bitmap = bitmap_of(picture);
    if (bitmap == nullptr || !open_clipboard(owner)) {
        GlobalFree(png);
        GlobalFree(bitmap);
        return false;
    }
    EmptyClipboard();
    hand_over(RegisterClipboardFormatW(L"PNG"), png);  // first: many programs take the first that they know
    const bool taken = hand_over(CF_DIB, bitmap);
    CloseClipboard();
    return taken;
}
