#include "app/win32/picture_clipboard.h"

#include <cassert>
#include <cstring>

#include "platform/thread_role.h"

static constexpr i32 TRIES = 10;
static constexpr DWORD PAUSE_MS = 20;

// Header and pixels, freed with GlobalFree; null when memory is lacking. Rows and colours lie as in the
// picture.
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
    HGLOBAL block = GlobalAlloc(GMEM_MOVEABLE, sizeof(header) + size);
    if (block == nullptr) {
        return nullptr;
    }
    auto *bytes = static_cast<u8 *>(GlobalLock(block));
    std::memcpy(bytes, &header, sizeof(header));
    std::memcpy(bytes + sizeof(header), picture->pixels, size);
    GlobalUnlock(block);
    return block;
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

bool picture_clipboard_set(HWND owner, const PixelImage *picture) {
    assert(thread_role_fits(THREAD_WINDOW) && picture != nullptr && !image_is_empty(picture));
    HGLOBAL block = bitmap_of(picture);
    if (block == nullptr) {
        return false;
    }
    bool taken = false;
    if (open_clipboard(owner)) {
        EmptyClipboard();
        taken = SetClipboardData(CF_DIB, block) != nullptr;  // the system's from here on
        CloseClipboard();
    }
    if (!taken) {
        GlobalFree(block);
    }
    return taken;
}
