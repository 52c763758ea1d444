#include "render/draw_pace.h"

#include <vector>
#include "gl_test.h"
#include "sim/layer.h"

class DrawPaceTest : public GlTest {};

// Stand-ins for entry points of OpenGL, whose pointers are open to a test.
struct PaceRecord {
    i32 marks = 0, waits = 0, deletions = 0;
    i32 under_way = 0, most_under_way = 0;
};
static PaceRecord record;
static PFNGLFENCESYNCPROC real_mark;
static PFNGLCLIENTWAITSYNCPROC real_wait;
static PFNGLDELETESYNCPROC real_delete;

static GLsync GLAPIENTRY mark_counted(GLenum condition, GLbitfield flags) {
    ++record.marks;
    ++record.under_way;
    record.most_under_way =
        record.under_way > record.most_under_way ? record.under_way : record.most_under_way;
    return real_mark(condition, flags);
}

static GLenum GLAPIENTRY wait_counted(GLsync mark, GLbitfield flags, GLuint64 timeout) {
    ++record.waits;
    --record.under_way;
    return real_wait(mark, flags, timeout);
}

static void GLAPIENTRY delete_counted(GLsync mark) {
    ++record.deletions;
    real_delete(mark);
}

struct CountedSync {
    CountedSync() {
        record = {};
        real_mark = glFenceSync;
        real_wait = glClientWaitSync;
        real_delete = glDeleteSync;
        glFenceSync = mark_counted;
        glClientWaitSync = wait_counted;
        glDeleteSync = delete_counted;
    }
    ~CountedSync() {
        glFenceSync = real_mark;
        glClientWaitSync = real_wait;
        glDeleteSync = real_delete;
    }
    CountedSync(const CountedSync &) = delete;
    CountedSync &operator=(const CountedSync &) = delete;
};

// Triangles of one point each, which cover nothing: pieces end with every 50,000 of them.
TEST_F(DrawPaceTest, TwoPiecesAtMostAreUnderWay) {
    constexpr i32 TRIANGLES = 170000;
    const std::vector<u32> zeros(3 * TRIANGLES, 0);
    GLuint buffer = 0;
    glGenBuffers(1, &buffer);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER, static_cast<GLsizeiptr>(zeros.size() * sizeof(u32)), zeros.data(),
                 GL_STATIC_DRAW);
    DrawPace pace = {};
    {
        const CountedSync counted;
        draw_pace_triangles(&pace, 0, 0);
        draw_pace_triangles(&pace, 0, 3 * 30000);
        EXPECT_EQ(record.marks, 0);
        draw_pace_triangles(&pace, 0, 3 * 20000);
        EXPECT_EQ(record.marks, 1);
        draw_pace_triangles(&pace, 0, 3 * TRIANGLES);
        EXPECT_EQ(record.marks, 4) << "behind 50, 100, 150 and 200 thousand";
        EXPECT_EQ(record.waits, 3) << "for all but the last";
        EXPECT_EQ(record.most_under_way, 2);
        EXPECT_EQ(pace.indices, 3 * 20000);
        draw_pace_end(&pace);
    }
    EXPECT_EQ(record.deletions, 4);
    EXPECT_EQ(pace.piece, nullptr);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glDeleteBuffers(1, &buffer);
}

// A sheet of more triangles than a piece has; what is drawn shows every one of them.
TEST_F(DrawPaceTest, NothingIsLeftOutBetweenPieces) {
    const f32 green[4] = {0.2F, 0.8F, 0.2F, 1.0F};
    TestScene scene(300, 200, 4.0F);
    scene.add_layer("SHEET", green, [](f32 x, f32, f32) { return 0.3F + 0.1F * x; });
    scene.plain_meshes = true;
    scene.render();
    EXPECT_GT(scene.layers[0]->index_count, 2 * 3 * 50000);
    for (i32 m = 1; m < 40; ++m) {
        for (i32 n = 1; n < 40; ++n) {
            const f32 x = static_cast<f32>(n) / 40.0F;
            EXPECT_FALSE(is_white(
                scene.pixel_at(x * 4.0F, static_cast<f32>(m) / 40.0F * scene.stack.depth, 0.3F + 0.1F * x)));
        }
    }
}
