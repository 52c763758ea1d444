#include "tests/gds/gds_load.h"

#include "gds/gds_read.h"
#include "tests/support/test_support.h"

GdsLoaded gds_load_path(const std::wstring &path) {
    GdsLoaded loaded = {0, Owned<GdsDatabase>(memory_new_zeroed<GdsDatabase>())};
    loaded.result = gds_read(loaded.database.get(), path.c_str());
    return loaded;
}

GdsLoaded gds_load_bytes(const std::string &bytes) {
    const TemporaryFolder folder;
    test_file_write(folder.file(L"layout.gds"), bytes);
    return gds_load_path(folder.file(L"layout.gds"));
}

GdsCell *find_cell(const GdsLoaded &loaded, const std::string &name) {
    for (i32 i = 0; i < loaded.database->cell_count; ++i) {
        if (name == nstring_text(loaded.database->cells[i].name)) {
            return &loaded.database->cells[i];
        }
    }
    return nullptr;
}
