#include "export/solid_walk.h"

#include <cassert>

void solid_walk(const Stack *stack, SolidTaker take, void *context) {
    assert(stack != nullptr && take != nullptr);
    const SolidFloor floor = solid_floor_create(stack);
    bool going = true;
    for (i32 slot = 0; slot < stack->layer_count && going; ++slot) {
        if (stack->layers[slot] == nullptr) {
            continue;
        }
        const SolidFilm film = solid_film_create(stack, slot, &floor);
        const SolidMesh mesh = solid_mesh_create(&film);
        if (mesh.index_count > 0) {
            going = take(context, slot, &mesh);
        }
    }
}
