#include "tests/support/film_stack.h"

FilmStack::FilmStack(i32 grid_n, i32 grid_m) : stack() {
    stack.grid_n = grid_n;
    stack.grid_m = grid_m;
    stack.spacing = 1.0F;
    stack.width = static_cast<f32>(grid_n);
    stack.depth = static_cast<f32>(grid_m);
}

FilmStack::~FilmStack() {
    for (Layer *layer : layers) {
        layer_free(layer);
    }
}

Layer *FilmStack::add(const FilmFunction &heights, f32 alpha) {
    Layer *layer = layer_create(stack.grid_n, stack.grid_m, stack.spacing);
    layer->color[3] = alpha;
    for (i32 i = 0; i < stack.grid_n * stack.grid_m; ++i) {
        const FilmHeights film = heights(i % stack.grid_n, i / stack.grid_n);
        layer->bottom[i] = film.bottom;
        layer->top[i] = film.top;
    }
    layers.push_back(layer);
    stack.layers = layers.data();
    stack.layer_count = static_cast<i32>(layers.size());
    return layer;
}

Layer *FilmStack::add_columns(const std::vector<FilmHeights> &columns, f32 alpha) {
    return add([&](i32 n, i32) { return columns[static_cast<size_t>(n)]; }, alpha);
}
