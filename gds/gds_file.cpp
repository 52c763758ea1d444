#include "gds/gds_file.h"

#include <cassert>
#include <cerrno>

#include "log/progress.h"

size_t gds_file_read(GdsFile *file, u8 *bytes, size_t room) {
    assert(file != nullptr && file->file != nullptr && bytes != nullptr);
    if (file->ended) {
        return 0;
    }
    errno = 0;
    const size_t got = std::fread(bytes, 1, room, file->file);
    file->taken += static_cast<i64>(got);
    progress_show_share(L"reading the layout", file->taken, file->size);
    if (got < room) {
        file->ended = true;
        if (std::ferror(file->file) != 0) {
            file->read_error = errno != 0 ? errno : EIO;
        }
    }
    return got;
}
