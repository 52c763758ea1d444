#include "render/draw_pace.h"

#include <GL/glew.h>
#include <cassert>
#include "platform/platform.h"

static constexpr i32 PIECE_INDICES = 3 * 50000;
static constexpr GLuint64 PATIENCE_NS = 10'000'000'000;  // drawing goes on without the wait after that

static bool can_wait() {
    return GLEW_VERSION_3_2 || GLEW_ARB_sync;
}

static void wait_for_piece(void *piece) {
    if (piece != nullptr) {
        const GLsync mark = static_cast<GLsync>(piece);
        glClientWaitSync(mark, GL_SYNC_FLUSH_COMMANDS_BIT, PATIENCE_NS);
        glDeleteSync(mark);
    }
}

static void end_piece(DrawPace *pace) {
    void *const piece = glFenceSync(GL_SYNC_GPU_COMMANDS_COMPLETE, 0);
    glFlush();  // the driver begins with it
    wait_for_piece(pace->piece);
    pace->piece = piece;
    pace->indices = 0;
}

void draw_pace_triangles(DrawPace *pace, i32 first, i32 count) {
    assert(pace != nullptr && first >= 0 && count >= 0 && first % 3 == 0 && count % 3 == 0);
    assert(platform_gl_is_current());
    const bool in_pieces = can_wait();
    const i32 end = first + count;
    i32 start = first;
    while (start < end) {
        const i32 room = in_pieces ? PIECE_INDICES - pace->indices : I32_MAX;
        const i32 here = end - start < room ? end - start : room;
        // The last argument is a place in the buffer, in the form of a pointer.
        glDrawElements(GL_TRIANGLES, here, GL_UNSIGNED_INT,
                       reinterpret_cast<const void *>(static_cast<size_t>(start) * sizeof(u32)));
        start += here;
        pace->indices += here;
        if (in_pieces && pace->indices == PIECE_INDICES) {
            end_piece(pace);
        }
    }
}

void draw_pace_end(DrawPace *pace) {
    assert(pace != nullptr);
    if (pace->piece != nullptr) {
        glDeleteSync(static_cast<GLsync>(pace->piece));
    }
    *pace = {};
}
