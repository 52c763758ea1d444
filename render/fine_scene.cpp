#include "render/fine_scene.h"

#include <GL/glew.h>
#include <cassert>
#include "platform/platform.h"
#include "render/annotations.h"
#include "render/fine_mesh.h"
#include "render/ground.h"
#include "render/multisample.h"

// What one picture is drawn of besides the layers' own buffers.
struct FinePicture {
    FineSection section;
    FineBatches batches;  // of the translucent films
    u32 batch_buffer;     // their indices
};

static void load_mesh(Layer *layer, const LayerMesh *mesh) {
    layer_load_mesh(layer, mesh);
    layer->mesh_source = {};  // no mesh that another picture could keep
}

static FinePicture picture_create(const Scene *scene) {
    const Stack *stack = scene->stack;
    const Vector3 eye = scene->camera->eye;
    FinePicture picture = {fine_section_create(stack), {}, 0};
    FineMesher mesher = fine_mesher_create(
        &picture.section, {eye.x / stack->spacing, eye.y, eye.z / scene->style->vertical_scale});
    FineOrder order = {};
    for (i32 film = 0; film < picture.section.face.film_count; ++film) {
        const LayerMesh mesh = fine_mesher_next(&mesher, &order);
        load_mesh(stack->layers[picture.section.face.slots[film]], &mesh);
    }
    picture.batches = fine_order_batches(&order);
    glGenBuffers(1, &picture.batch_buffer);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, picture.batch_buffer);
    glBufferData(GL_ELEMENT_ARRAY_BUFFER,
                 static_cast<GLsizeiptr>(picture.batches.index_count * i64{sizeof(u32)}),
                 picture.batches.indices.get(), GL_DYNAMIC_DRAW);
    return picture;
}

// Some of a layer's triangles, of indices in a buffer.
static void draw_triangles(const Scene *scene, const Layer *layer, u32 buffer, i64 first, i64 count) {
    const u32 program = scene->surface_program->name;
    glUniform3f(glGetUniformLocation(program, "color"), layer->color[0], layer->color[1], layer->color[2]);
    glUniform1f(glGetUniformLocation(program, "alpha"), layer->color[3]);
    glBindVertexArray(layer->vao);
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, buffer);
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(count), GL_UNSIGNED_INT,
                   reinterpret_cast<const void *>(static_cast<size_t>(first) * sizeof(u32)));
    glBindBuffer(GL_ELEMENT_ARRAY_BUFFER, 0);
    glBindVertexArray(0);
}

// Opaque films first, the upper ones before what they hide; then light goes through the others from the back
// to the front.
static void draw_films(const Scene *scene, const FinePicture *picture) {
    const FineSection *section = &picture->section;
    Layer **layers = scene->stack->layers;
    for (i32 film = section->face.film_count - 1; film >= 0; --film) {
        const Layer *layer = layers[section->face.slots[film]];
        if (layer->index_count > 0) {
            draw_triangles(scene, layer, layer->ebo, 0, layer->index_count);
        }
    }
    glDepthMask(GL_FALSE);
    for (i32 i = 0; i < picture->batches.count; ++i) {
        const FineBatch *batch = &picture->batches.items[i];
        draw_triangles(scene, layers[section->face.slots[batch->film]], picture->batch_buffer, batch->first,
                       batch->count);
    }
    glDepthMask(GL_TRUE);
}

// The camera's transform with the picture moved by parts of its own width and height.
static Matrix4 moved_transform(const Camera *camera, f32 across, f32 upwards) {
    Matrix4 moved = camera->transform;
    for (i32 first = 0; first < 16; first += 4) {  // of a column
        const f32 depth = moved.m[first + 3];
        moved.m[first] += across * depth;
        moved.m[first + 1] += upwards * depth;
    }
    return moved;
}

static void draw_pass(const Scene *scene, const FinePicture *picture, i32 image_height, f32 dx, f32 dy) {
    ground_start(scene->style);
    scene_set_viewport(scene, image_height);
    GLint viewport[4];
    glGetIntegerv(GL_VIEWPORT, viewport);
    if (viewport[2] < 1 || viewport[3] < 1) {
        return;
    }
    const Matrix4 transform = moved_transform(scene->camera, 2.0F * dx / static_cast<f32>(viewport[2]),
                                              2.0F * dy / static_cast<f32>(viewport[3]));
    scene_use_surface_program(scene, &transform);
    draw_films(scene, picture);
    glUseProgram(0);
}

void fine_scene_render(const Scene *scene, i32 image_height) {
    assert(scene != nullptr && scene->stack != nullptr && scene->camera != nullptr);
    assert(scene->surface_program != nullptr && scene->style != nullptr && image_height > 0);
    assert(platform_gl_is_current());
    const FinePicture picture = picture_create(scene);
    const Owned<MultisampleTarget> target(multisample_create(scene->style->width, image_height));
    for (i32 pass = 0; pass < target->passes; ++pass) {
        f32 dx = 0.0F;
        f32 dy = 0.0F;
        multisample_begin(target.get(), pass, &dx, &dy);
        draw_pass(scene, &picture, image_height, dx, dy);
        multisample_end(target.get(), pass);
    }
    glDeleteBuffers(1, &picture.batch_buffer);
    scene_set_viewport(scene, image_height);
    annotations_draw(scene, image_height);
    ground_end();
}
