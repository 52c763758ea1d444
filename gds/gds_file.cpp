#include "gds/gds_file.h"

#include <cassert>
#include <cerrno>

size_t gds_file_read(GdsFile *file, u8 *bytes, size_t room) {
    assert(file != nullptr && file->file != nullptr && bytes != nullptr);
    if (file->ended) {
        return 0;
    }
    errno = 0;
    const size_t got = std::fread(bytes, 1, room, file->file);
    if (got < room) {
        file->ended = true;
        if (std::ferror(file->file) != 0) {
            file->read_error = errno != 0 ? errno : EIO;
        }
    }
    return got;
}
