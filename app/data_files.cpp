#include "app/data_files.h"

#include <cassert>

#include "log/log.h"
#include "platform/memory.h"
#include "platform/platform.h"

static void add_place(DataPlaces *places, WString *folder) {
    assert(places->count < DATA_PLACE_COUNT);
    places->folders[places->count++] = folder;
}

DataPlaces data_places(const wchar_t *data_folder) {
    DataPlaces places = {};
    if (data_folder != nullptr) {
        add_place(&places, wstring_make(L"%ls%ls", data_folder, PLATFORM_SEPARATOR));
        return places;
    }
    add_place(&places, wstring_copy(L""));  // the current folder
    const WideText program = platform_program_folder();
    if (program != nullptr) {
        const wchar_t *s = PLATFORM_SEPARATOR;
        add_place(&places, wstring_make(L"%ls%ls", program.get(), s));
        // The installed tree may have been moved as a whole.
        add_place(&places, wstring_make(L"%ls%ls..%lsshare%lsquarn%ls", program.get(), s, s, s, s));
    }
    const WideText installed = platform_wide_from_system(QUARN_INSTALLED_DATA);
    add_place(&places, wstring_make(L"%ls%ls", installed.get(), PLATFORM_SEPARATOR));
    return places;
}

void data_places_free(DataPlaces *places) {
    for (i32 i = 0; i < places->count; ++i) {
        wstring_free(places->folders[i]);
    }
    places->count = 0;
}

WString *data_file_find(const DataPlaces *places, const wchar_t *name) {
    assert(places != nullptr && places->count > 0 && name != nullptr);
    for (i32 i = 0; i < places->count; ++i) {
        Owned<WString> path(wstring_make(L"%ls%ls", wstring_text(places->folders[i]), name));
        if (platform_file_exists(wstring_text(path.get()))) {
            return path.release();
        }
    }
    for (i32 i = 0; i < places->count; ++i) {
        diagnostic_write(L"%ls%ls: there is no such file", wstring_text(places->folders[i]), name);
    }
    return nullptr;
}

WString *data_file_or_name(const DataPlaces *places, const wchar_t *name) {
    WString *path = data_file_find(places, name);
    return path != nullptr ? path : wstring_copy(name);
}
