// What a layer's buffers hold after its mesh was built, also when the driver does not lend their memory.
#include <algorithm>
#include <cstring>
#include <vector>
#include "gl_test.h"
#include "render/mesh.h"
#include "sim/layer.h"

static const GLenum BUFFER_TARGETS[] = {GL_ARRAY_BUFFER, GL_ELEMENT_ARRAY_BUFFER};
static const f32 GREY[4] = {0.6F, 0.6F, 0.6F, 1.0F};

// The driver's own functions while a test stands in for them, and the target that it fails for.
static PFNGLUNMAPBUFFERPROC unmap_buffer;
static PFNGLMAPBUFFERPROC map_buffer;
static GLenum failing_target;

// Loses what was written, as a driver does whose memory goes away, and says so.
static GLboolean GLAPIENTRY unmap_and_lose(GLenum target) {
    const GLboolean kept = unmap_buffer(target);
    if (target != failing_target) {
        return kept;
    }
    GLint size = 0;
    glGetBufferParameteriv(target, GL_BUFFER_SIZE, &size);
    const std::vector<u8> rubbish(static_cast<size_t>(size), 0xAB);
    glBufferSubData(target, 0, size, rubbish.data());
    return GL_FALSE;
}

static void *GLAPIENTRY map_or_refuse(GLenum target, GLenum access) {
    return target == failing_target ? nullptr : map_buffer(target, access);
}

class MeshUploadTest : public GlTest {
protected:
    void SetUp() override {
        GlTest::SetUp();
        unmap_buffer = glUnmapBuffer;
        map_buffer = glMapBuffer;
        failing_target = 0;
    }
    void TearDown() override {
        glUnmapBuffer = unmap_buffer;
        glMapBuffer = map_buffer;
        GlTest::TearDown();
    }
};

static void expect_mesh_in_buffers(const Layer *layer) {
    LayerMesh mesh = layer_mesh_create(layer);
    ASSERT_GT(mesh.index_count, 0);
    EXPECT_EQ(mesh.index_count, layer->index_count);
    std::vector<u32> indices(static_cast<size_t>(mesh.index_count));
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, layer->ebo);
    glGetBufferSubData(GL_ELEMENT_ARRAY_BUFFER, 0, static_cast<GLsizeiptr>(indices.size() * sizeof(u32)),
                       indices.data());
    EXPECT_TRUE(std::equal(indices.begin(), indices.end(), mesh.indices));
    std::vector<f32> numbers(static_cast<size_t>(mesh.vertex_count) * 6);
    glBindBuffer(GL_ARRAY_BUFFER, layer->vbo);
    glGetBufferSubData(GL_ARRAY_BUFFER, 0, static_cast<GLsizeiptr>(numbers.size() * sizeof(f32)),
                       numbers.data());
    EXPECT_EQ(std::memcmp(numbers.data(), mesh.vertices, numbers.size() * sizeof(f32)), 0);
    GLint size = 0;
    glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &size);
    EXPECT_EQ(size, mesh.vertex_count * 24);
    layer_mesh_free(&mesh);
}

static Layer *add_island(TestScene *scene) {
    return scene->add_layer("ISLAND", GREY,
                            [](f32 x, f32 y, f32) { return x > 0.4F && y < 0.6F ? 1.0F : 0.0F; });
}

TEST_F(MeshUploadTest, FillsTheLayersBuffers) {
    TestScene scene(6, 5, 5.0F);
    Layer *layer = add_island(&scene);
    layer_build_mesh(layer);
    expect_mesh_in_buffers(layer);

    for (i32 i = 0; i < 30; ++i) {
        layer->top[i] = layer->bottom[i];
    }
    layer_build_mesh(layer);
    EXPECT_EQ(layer->index_count, 0);
    GLint size = 0;
    glGetBufferParameteriv(GL_ARRAY_BUFFER, GL_BUFFER_SIZE, &size);
    EXPECT_EQ(size, 0) << "an absent layer takes no memory of the graphics";
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(MeshUploadTest, IsRepeatedWhenTheDriverLostTheMemory) {
    glUnmapBuffer = unmap_and_lose;
    for (const GLenum target : BUFFER_TARGETS) {
        failing_target = target;
        TestScene scene(6, 5, 5.0F);
        Layer *layer = add_island(&scene);
        layer_build_mesh(layer);
        expect_mesh_in_buffers(layer);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
}

TEST_F(MeshUploadTest, DoesWithoutMemoryThatIsNotLent) {
    glMapBuffer = map_or_refuse;
    for (const GLenum target : BUFFER_TARGETS) {
        failing_target = target;
        TestScene scene(6, 5, 5.0F);
        Layer *layer = add_island(&scene);
        layer_build_mesh(layer);
        expect_mesh_in_buffers(layer);
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    }
}
