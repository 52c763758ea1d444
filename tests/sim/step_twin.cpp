#include "step_twin.h"

TwinStack twin_create(i32 grid_n, i32 grid_m, i32 margin, f32 spacing, const PolygonList *polygons) {
    TwinStack stack = {};
    stack.grid_n = grid_n;
    stack.grid_m = grid_m;
    stack.margin = margin;
    stack.spacing = spacing;
    stack.polygons = polygons;
    stack.cells.resize(static_cast<size_t>(grid_n) * static_cast<size_t>(grid_m));
    stack.offsets = reference::offsets(grid_n + 2 * margin, grid_m + 2 * margin, spacing);
    reference::sort_by_distance(&stack.offsets);
    return stack;
}

static reference::PointLists twin_disc(const TwinStack &stack, f32 radius) {
    return reference::disc(stack.offsets, stack.spacing, radius);
}

// The next slot, which is also the number of layers.
static i32 next_slot(const TwinStack &stack) {
    return static_cast<i32>(stack.layers.size());
}

// A layer of no thickness on the surface.
static TwinLayer twin_layer(const TwinStack &stack, const char *material) {
    TwinLayer layer = {true, material, {}, {}, 1};
    for (const GridCell &cell : stack.cells) {
        layer.bottom.push_back(cell.height);
    }
    layer.top = layer.bottom;
    return layer;
}

static void twin_smooth(TwinStack *stack, f32 radius) {
    TwinLayer &layer = stack->layers.back();
    std::vector<f32> smooth(layer.top.size());
    reference::smooth(twin_disc(*stack, radius), layer.top.data(), smooth.data(), stack->grid_n,
                      stack->grid_m);
    for (size_t i = 0; i < smooth.size(); ++i) {
        if (smooth[i] > layer.bottom[i]) {
            layer.top[i] = smooth[i];
            stack->cells[i] = {smooth[i], next_slot(*stack)};
        } else {
            layer.top[i] = layer.bottom[i];
        }
    }
}

static void twin_deposition(TwinStack *stack, const ProcessStep *step) {
    TwinLayer layer = twin_layer(*stack, step->material);
    std::vector<f32> grown = layer.bottom;
    for (f32 &top : grown) {
        top = top + step->thickness;
    }
    const reference::PointLists disc = twin_disc(*stack, step->step_coverage * step->thickness);
    reference::dilate(disc, grown.data(), layer.top.data(), stack->grid_n, stack->grid_m);
    for (size_t i = 0; i < stack->cells.size(); ++i) {
        stack->cells[i] = {layer.top[i], next_slot(*stack)};
    }
    stack->layers.push_back(layer);
    twin_smooth(stack, step->thickness * 0.1F);
}

// Fills the layer; returns the mean height of the surface.
static f32 twin_coat(const TwinStack &stack, const ProcessStep *step, TwinLayer *layer) {
    f64 sum = 0.0;
    for (const GridCell &cell : stack.cells) {
        sum += static_cast<f64>(cell.height);
    }
    const f32 mean = static_cast<f32>(sum / static_cast<f64>(stack.cells.size()));
    for (size_t i = 0; i < layer->top.size(); ++i) {
        const f32 height = layer->bottom[i];
        const f32 down = mean - height;
        const f32 share = down * step->dop;
        const f32 level = share + height;
        const f32 top = level + step->thickness;
        layer->top[i] = top > height ? top : height;
    }
    return mean;
}

static void twin_coating(TwinStack *stack, const ProcessStep *step) {
    TwinLayer layer = twin_layer(*stack, step->material);
    twin_coat(*stack, step, &layer);
    stack->layers.push_back(layer);
    twin_smooth(stack, step->rr * step->thickness);
}

static void twin_photo(TwinStack *stack, const ProcessStep *step) {
    TwinLayer layer = twin_layer(*stack, "_PR_");
    const f32 mean = twin_coat(*stack, step, &layer);
    const i32 mask_n = stack->grid_n + 2 * stack->margin;
    const i32 mask_m = stack->grid_m + 2 * stack->margin;
    std::vector<u8> drawn(static_cast<size_t>(mask_n) * static_cast<size_t>(mask_m));
    std::vector<u8> mask = drawn;
    const f32 critical =
        reference::rasterize(stack->polygons, drawn.data(), mask_n, mask_m, stack->spacing,
                             {static_cast<u32>(step->mask_id), step->one_datatype ? step->mask_datatype : -1},
                             static_cast<u32>(step->mask_type));
    reference::apply_resolution(twin_disc(*stack, step->resolution * 0.5F), drawn.data(), mask.data(), mask_n,
                                mask_m);
    const i32 angle = static_cast<i32>(step->taper);
    const TaperInput input = {stack->offsets.data(),
                              static_cast<i32>(stack->offsets.size()),
                              stack->spacing,
                              stack->grid_n,
                              stack->grid_m,
                              stack->margin,
                              mask.data(),
                              mean,
                              step->thickness > critical && angle < 90 ? 90 : angle};
    reference::taper(&input, layer.bottom.data(), layer.top.data(), stack->cells.data(), next_slot(*stack));
    stack->layers.push_back(layer);
    twin_smooth(stack, step->rr * step->thickness);
}

static std::vector<EtchClass> twin_classes(const TwinStack &stack, const ProcessStep *step, bool resist) {
    std::vector<EtchClass> classes;
    for (const TwinLayer &layer : stack.layers) {
        EtchClass made = ETCH_STOPS;
        for (i32 k = 0; k < step->target_materials.count; ++k) {
            made = layer.material == step->target_materials.items[k] ? ETCH_TARGET : made;
        }
        made = resist && layer.material == "_PR_" ? ETCH_RESIST : made;
        classes.push_back(layer.alive ? made : ETCH_STOPS);
    }
    return classes;
}

static void twin_etch(TwinStack *stack, const ProcessStep *step) {
    const std::vector<EtchClass> classes = twin_classes(*stack, step, true);
    std::vector<EtchLayer> layers;
    for (size_t slot = 0; slot < classes.size(); ++slot) {
        TwinLayer &layer = stack->layers[slot];
        layers.push_back({layer.alive ? layer.top.data() : nullptr, layer.bottom.data(), classes[slot]});
        layer.changed = classes[slot] != ETCH_STOPS ? 1 : layer.changed;
    }
    const EtchStack etched = {stack->cells.data(), stack->grid_n, stack->grid_m, layers.data(),
                              next_slot(*stack)};
    reference::etch_lateral(&etched, twin_disc(*stack, step->iso * step->depth));
    reference::etch_vertical(&etched, step->depth);
}

static size_t at(const TwinStack &stack, i32 n, i32 m) {
    return static_cast<size_t>(m) * static_cast<size_t>(stack.grid_n) + static_cast<size_t>(n);
}

// Whether the layer is present at the point or beside it.
static bool twin_near(const TwinStack &stack, const TwinLayer &layer, i32 n, i32 m) {
    for (i32 row = m - 1; row <= m + 1; ++row) {
        for (i32 column = n - 1; column <= n + 1; ++column) {
            if (column >= 0 && row >= 0 && column < stack.grid_n && row < stack.grid_m) {
                const size_t i = at(stack, column, row);
                if (layer.top[i] - layer.bottom[i] != 0.0F) {
                    return true;
                }
            }
        }
    }
    return false;
}

static void twin_surface(TwinStack *stack) {
    for (i32 m = 0; m < stack->grid_m; ++m) {
        for (i32 n = 0; n < stack->grid_n; ++n) {
            const size_t i = at(*stack, n, m);
            for (i32 slot = next_slot(*stack) - 1; slot >= 0; --slot) {
                const TwinLayer &layer = stack->layers[static_cast<size_t>(slot)];
                if (layer.alive && twin_near(*stack, layer, n, m)) {
                    stack->cells[i] = {layer.top[i], slot};
                    break;
                }
            }
        }
    }
}

static void twin_release(TwinStack *stack, const ProcessStep *step) {
    const std::vector<EtchClass> classes = twin_classes(*stack, step, false);
    for (size_t slot = 0; slot < classes.size(); ++slot) {
        if (classes[slot] != ETCH_STOPS) {
            stack->layers[slot].top = stack->layers[slot].bottom;
            stack->layers[slot].changed = 1;
        }
    }
    twin_surface(stack);
}

static void twin_strip(TwinStack *stack) {
    for (TwinLayer &layer : stack->layers) {
        layer.alive = layer.alive && layer.material != "_PR_";
    }
    twin_surface(stack);
}

void twin_execute(TwinStack *stack, const ProcessStep *step) {
    switch (step->kind) {
        case STEP_COATING: twin_coating(stack, step); break;
        case STEP_DEPOSITION: twin_deposition(stack, step); break;
        case STEP_PHOTO: twin_photo(stack, step); break;
        case STEP_ETCH: twin_etch(stack, step); break;
        case STEP_STRIP: twin_strip(stack); break;
        case STEP_RELEASE: twin_release(stack, step); break;
        default: break;
    }
}
