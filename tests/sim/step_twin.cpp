#include "step_twin.h"

#include <algorithm>
#include <cmath>

#include "platform/trigonometry.h"

using Points = std::vector<std::pair<i32, i32>>;

struct TwinDisc {
    Points points, edge;
};

TwinStack twin_create(i32 grid_n, i32 grid_m, i32 margin, f32 spacing) {
    TwinStack stack = {};
    stack.grid_n = grid_n;
    stack.grid_m = grid_m;
    stack.margin = margin;
    stack.spacing = spacing;
    const size_t points = static_cast<size_t>(grid_n) * static_cast<size_t>(grid_m);
    stack.height.assign(points, 0.0F);
    stack.top_layer.assign(points, 0);
    const i32 wide = grid_n + 2 * margin;
    const i32 deep = grid_m + 2 * margin;
    for (i32 dy = 1 - deep; dy < deep; ++dy) {
        for (i32 dx = 1 - wide; dx < wide; ++dx) {
            const f32 x = static_cast<f32>(dx) * spacing;
            const f32 y = static_cast<f32>(dy) * spacing;
            const f32 x_square = x * x;
            const f32 y_square = y * y;
            const f32 square = x_square + y_square;
            stack.table.push_back({dx, dy, std::sqrt(square)});
        }
    }
    std::stable_sort(stack.table.begin(), stack.table.end(),
                     [](const TwinOffset &a, const TwinOffset &b) { return a.distance < b.distance; });
    return stack;
}

static TwinDisc twin_disc(const TwinStack &stack, f32 radius) {
    TwinDisc disc;
    bool inside = true;
    for (const TwinOffset &entry : stack.table) {
        inside = inside && entry.distance <= radius;
        if (inside) {
            disc.points.emplace_back(entry.dx, entry.dy);
        }
        const i32 right = entry.dx + 1;
        const f32 root = std::sqrt(static_cast<f32>(right * right + entry.dy * entry.dy));
        const f32 distance = stack.spacing * root;
        if (entry.distance > radius && radius >= distance) {
            disc.edge.emplace_back(entry.dx, entry.dy);
        }
    }
    return disc;
}

static bool in_grid(i32 n, i32 m, i32 grid_n, i32 grid_m) {
    return n >= 0 && m >= 0 && n < grid_n && m < grid_m;
}

static size_t at(i32 n, i32 m, i32 grid_n) {
    return static_cast<size_t>(m) * static_cast<size_t>(grid_n) + static_cast<size_t>(n);
}

// The extreme of the input over the disc that slides along each row: largest (sign 1, from 0) or
// smallest (sign -1, from the largest f32).
static std::vector<f32> twin_extreme(const TwinStack &stack, const TwinDisc &disc, const std::vector<f32> &in,
                                     i32 sign) {
    std::vector<f32> out(in.size());
    auto take = [&](f32 value, f32 *extreme) {
        if (sign > 0 ? value > *extreme : value < *extreme) {
            *extreme = value;
        }
    };
    for (i32 m = 0; m < stack.grid_m; ++m) {
        f32 extreme = 0.0F;
        for (i32 n = 0; n < stack.grid_n; ++n) {
            bool anew = n == 0;
            for (const auto &[dx, dy] : disc.edge) {
                if (!anew && in_grid(n + dx, m + dy, stack.grid_n, stack.grid_m)) {
                    anew = in[at(n + dx, m + dy, stack.grid_n)] == extreme;
                }
            }
            if (anew) {
                extreme = sign > 0 ? 0.0F : F32_MAX;
                for (const auto &[dx, dy] : disc.points) {
                    if (in_grid(n + dx, m + dy, stack.grid_n, stack.grid_m)) {
                        take(in[at(n + dx, m + dy, stack.grid_n)], &extreme);
                    }
                }
            } else {
                for (const auto &[dx, dy] : disc.edge) {
                    if (in_grid(n - dx - 1, m + dy, stack.grid_n, stack.grid_m)) {
                        take(in[at(n - dx - 1, m + dy, stack.grid_n)], &extreme);
                    }
                }
            }
            out[at(n, m, stack.grid_n)] = extreme;
        }
    }
    return out;
}

static void twin_smooth(TwinStack *stack, f32 radius) {
    const TwinDisc disc = twin_disc(*stack, radius);
    TwinLayer &layer = stack->layers.back();
    std::vector<f32> smooth(layer.top.size());
    for (i32 m = 0; m < stack->grid_m; ++m) {
        f64 sum = 0.0;
        i32 count = 0;
        auto add = [&](i32 n, i32 row, i32 sign) {
            if (in_grid(n, row, stack->grid_n, stack->grid_m)) {
                const f64 value = static_cast<f64>(layer.top[at(n, row, stack->grid_n)]);
                sum = sign > 0 ? sum + value : sum - value;
                count += sign;
            }
        };
        for (i32 n = 0; n < stack->grid_n; ++n) {
            if (n == 0) {
                for (const auto &[dx, dy] : disc.points) {
                    add(dx, m + dy, 1);
                }
            } else {
                for (const auto &[dx, dy] : disc.edge) {
                    add(n + dx, m + dy, -1);
                    add(n - dx - 1, m + dy, 1);
                }
            }
            f32 mean = static_cast<f32>(sum / count);
            const f32 own = layer.top[at(n, m, stack->grid_n)];
            const f32 rise = mean - own;
            if (n == 0 && static_cast<f64>(rise) < 0.0001) {
                mean = own;
            }
            smooth[at(n, m, stack->grid_n)] = mean;
        }
    }
    for (size_t i = 0; i < smooth.size(); ++i) {
        if (smooth[i] > layer.bottom[i]) {
            layer.top[i] = smooth[i];
            stack->height[i] = smooth[i];
            stack->top_layer[i] = static_cast<i32>(stack->layers.size());
        } else {
            layer.top[i] = layer.bottom[i];
        }
    }
}

static TwinLayer twin_layer(const TwinStack &stack, const char *material) {
    return {true, material, stack.height, stack.height, 1};
}

static void twin_deposition(TwinStack *stack, const ProcessStep *step) {
    TwinLayer layer = twin_layer(*stack, step->material);
    for (f32 &top : layer.top) {
        top = top + step->thickness;
    }
    const f32 radius = step->step_coverage * step->thickness;
    layer.top = twin_extreme(*stack, twin_disc(*stack, radius), layer.top, 1);
    stack->height = layer.top;
    std::fill(stack->top_layer.begin(), stack->top_layer.end(), static_cast<i32>(stack->layers.size()));
    stack->layers.push_back(layer);
    twin_smooth(stack, step->thickness * 0.1F);
}

static f32 twin_coat(TwinStack *stack, const ProcessStep *step, TwinLayer *layer) {
    f64 sum = 0.0;
    for (const f32 height : stack->height) {
        sum += static_cast<f64>(height);
    }
    const f32 mean = static_cast<f32>(sum / static_cast<f64>(stack->height.size()));
    for (size_t i = 0; i < layer->top.size(); ++i) {
        const f32 height = stack->height[i];
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
    twin_coat(stack, step, &layer);
    stack->layers.push_back(layer);
    twin_smooth(stack, step->rr * step->thickness);
}

static bool twin_contains(const TwinPolygon &polygon, f32 x, f32 y) {
    bool inside = false;
    const size_t count = polygon.points.size();
    for (size_t i = 0; i < count; ++i) {
        auto [xi, yi] = polygon.points[i];
        auto [xj, yj] = polygon.points[(i + count - 1) % count];
        if ((yi > y) != (yj > y)) {
            const f32 across = (xj - xi) * (y - yi);
            const f32 crossing = across / (yj - yi) + xi;
            inside = x < crossing ? !inside : inside;
        }
    }
    return inside;
}

static std::vector<u8> twin_rasterize(const TwinStack &stack, i32 mask_id, i32 mask_type, f32 *critical) {
    const i32 wide = stack.grid_n + 2 * stack.margin;
    const i32 deep = stack.grid_m + 2 * stack.margin;
    const size_t points = static_cast<size_t>(wide) * static_cast<size_t>(deep);
    std::vector<u8> mask(points, static_cast<u8>(1 - mask_type));
    *critical = F32_MAX;
    for (const TwinPolygon &polygon : stack.polygons) {
        if (polygon.layer != mask_id) {
            continue;
        }
        auto cell = [&](f32 place) { return static_cast<i32>(std::floor(place / stack.spacing)); };
        for (i32 j = std::max(cell(polygon.y_min), 0); j < std::min(cell(polygon.y_max), deep); ++j) {
            for (i32 i = std::max(cell(polygon.x_min), 0); i < std::min(cell(polygon.x_max), wide); ++i) {
                if (twin_contains(polygon, static_cast<f32>(i) * stack.spacing,
                                  static_cast<f32>(j) * stack.spacing)) {
                    mask[at(i, j, wide)] = static_cast<u8>(mask_type);
                }
            }
        }
        const f32 side = std::min(polygon.y_max - polygon.y_min, polygon.x_max - polygon.x_min);
        *critical = std::min(*critical, side);
    }
    return mask;
}

static std::vector<u8> twin_filter(const TwinStack &stack, const std::vector<u8> &in, f32 radius) {
    i32 wide = stack.grid_n + 2 * stack.margin;
    i32 deep = stack.grid_m + 2 * stack.margin;
    const TwinDisc disc = twin_disc(stack, radius);
    std::vector<u8> out(in.size());
    for (i32 j = 0; j < deep; ++j) {
        i32 total = 0;
        i32 set = 0;
        auto add = [&](i32 i, i32 row, i32 sign) {
            if (in_grid(i, row, wide, deep)) {
                total += sign;
                set += in[at(i, row, wide)] != 0 ? sign : 0;
            }
        };
        for (i32 i = 0; i < wide; ++i) {
            for (const auto &[dx, dy] : i == 0 ? disc.points : disc.edge) {
                add(i + dx, j + dy, i == 0 ? 1 : -1);
                if (i != 0) {
                    add(i - dx - 1, j + dy, 1);
                }
            }
            out[at(i, j, wide)] = static_cast<f32>(set) > static_cast<f32>(total) * 0.5F ? 1 : 0;
        }
    }
    return out;
}

// Distance from a grid point to the nearest open point of the mask nearer than `limit`, or -1.
static f32 twin_opening(const TwinStack &stack, const std::vector<u8> &mask, i32 n, i32 m, f32 limit) {
    const i32 wide = stack.grid_n + 2 * stack.margin;
    const i32 deep = stack.grid_m + 2 * stack.margin;
    for (const TwinOffset &entry : stack.table) {
        if (!(entry.distance < limit)) {
            return -1.0F;
        }
        const i32 i = n + stack.margin + entry.dx;
        const i32 j = m + stack.margin + entry.dy;
        if (in_grid(i, j, wide, deep) && mask[at(i, j, wide)] == 0) {
            return entry.distance;
        }
    }
    return -1.0F;
}

static void twin_photo(TwinStack *stack, const ProcessStep *step) {
    TwinLayer layer = twin_layer(*stack, "_PR_");
    const f32 mean = twin_coat(stack, step, &layer);
    f32 critical = 0.0F;
    const std::vector<u8> drawn = twin_rasterize(*stack, step->mask_id, step->mask_type, &critical);
    std::vector<u8> mask = twin_filter(*stack, drawn, step->resolution * 0.5F);
    i32 angle = static_cast<i32>(step->taper);
    angle = step->thickness > critical && angle < 90 ? 90 : angle;
    const f64 tangent = exact_tan(angle * 3.141592653589793 / 180);
    for (i32 m = 0; m < stack->grid_m; ++m) {
        for (i32 n = 0; n < stack->grid_n; ++n) {
            const size_t i = at(n, m, stack->grid_n);
            f32 *top = &layer.top[i];
            const f32 bottom = layer.bottom[i];
            const size_t padded = at(n + stack->margin, m + stack->margin, stack->grid_n + 2 * stack->margin);
            if (mask[padded] == 0 || bottom >= *top) {
                *top = bottom;
                continue;
            }
            const f32 rise = *top - mean;
            const f32 s =
                twin_opening(*stack, mask, n, m, static_cast<f32>(static_cast<f64>(rise) / tangent));
            if (s >= 0.0F) {
                const f64 wide_top = static_cast<f64>(*top);
                const f64 wide_rise = wide_top - static_cast<f64>(mean);
                const f64 lowered = wide_top - (wide_rise - static_cast<f64>(s) * tangent);
                *top = lowered > static_cast<f64>(bottom) ? static_cast<f32>(lowered) : bottom;
            }
            stack->height[i] = *top;
            stack->top_layer[i] = static_cast<i32>(stack->layers.size());
        }
    }
    stack->layers.push_back(layer);
    twin_smooth(stack, step->rr * step->thickness);
}

static std::vector<i32> twin_classes(const TwinStack &stack, const ProcessStep *step, bool resist) {
    std::vector<i32> classes;
    for (const TwinLayer &layer : stack.layers) {
        i32 made = 0;
        for (i32 k = 0; k < step->target_materials.count; ++k) {
            made = layer.material == step->target_materials.items[k] ? 1 : made;
        }
        made = resist && layer.material == "_PR_" ? 2 : made;
        classes.push_back(layer.alive ? made : 0);
    }
    return classes;
}

static void twin_etch_lateral(TwinStack *stack, const std::vector<i32> &classes, f32 radius) {
    std::vector<f32> eroded = twin_extreme(*stack, twin_disc(*stack, radius), stack->height, -1);
    auto record = [&](f32 height, i32 slot) {
        stack->height[0] = height;
        stack->top_layer[0] = slot;
    };
    for (size_t i = 0; i < eroded.size(); ++i) {
        if (!(eroded[i] < stack->height[i])) {
            continue;
        }
        for (i32 slot = static_cast<i32>(stack->layers.size()) - 1; slot >= 1; --slot) {
            TwinLayer &layer = stack->layers[static_cast<size_t>(slot)];
            if (!layer.alive || layer.top[i] - layer.bottom[i] == 0.0F) {
                continue;
            }
            if (eroded[i] >= layer.top[i]) {
                break;
            }
            if (classes[static_cast<size_t>(slot)] == 0) {
                record(layer.top[i], slot);
            } else if (layer.bottom[i] < eroded[i]) {
                layer.top[i] = eroded[i];
                record(eroded[i], slot);
                break;
            } else {
                layer.top[i] = layer.bottom[i];
            }
        }
    }
}

// Takes the budget from one layer; true when the etch stops in it.
static bool twin_take(TwinLayer *layer, size_t i, i32 etch_class, f32 *budget) {
    if (etch_class == 0) {
        return true;
    }
    const f32 thickness = layer->top[i] - layer->bottom[i];
    const f32 cost = etch_class == 2 ? thickness * 2.0F : thickness;
    if (cost > *budget) {
        const f32 share = etch_class == 2 ? *budget * 0.5F : *budget;
        layer->top[i] = layer->top[i] - share;
        return true;
    }
    layer->top[i] = layer->bottom[i];
    *budget = *budget - cost;
    return false;
}

static void twin_etch(TwinStack *stack, const ProcessStep *step) {
    std::vector<i32> classes = twin_classes(*stack, step, true);
    twin_etch_lateral(stack, classes, step->iso * step->depth);
    for (size_t i = 0; i < stack->height.size(); ++i) {
        f32 budget = step->depth;
        for (size_t slot = stack->layers.size(); slot-- > 0;) {
            TwinLayer &layer = stack->layers[slot];
            if (layer.alive && layer.top[i] != layer.bottom[i] &&
                twin_take(&layer, i, classes[slot], &budget)) {
                stack->height[i] = layer.top[i];
                stack->top_layer[i] = static_cast<i32>(slot);
                break;
            }
        }
    }
    for (size_t slot = 0; slot < classes.size(); ++slot) {
        stack->layers[slot].changed = classes[slot] != 0 ? 1 : stack->layers[slot].changed;
    }
}

static bool twin_near(const TwinStack &stack, const TwinLayer &layer, i32 n, i32 m) {
    for (i32 row = m - 1; row <= m + 1; ++row) {
        for (i32 column = n - 1; column <= n + 1; ++column) {
            if (in_grid(column, row, stack.grid_n, stack.grid_m)) {
                const size_t i = at(column, row, stack.grid_n);
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
            for (size_t slot = stack->layers.size(); slot-- > 0;) {
                const TwinLayer &layer = stack->layers[slot];
                if (layer.alive && twin_near(*stack, layer, n, m)) {
                    const size_t i = at(n, m, stack->grid_n);
                    stack->height[i] = layer.top[i];
                    stack->top_layer[i] = static_cast<i32>(slot);
                    break;
                }
            }
        }
    }
}

static void twin_release(TwinStack *stack, const ProcessStep *step) {
    std::vector<i32> classes = twin_classes(*stack, step, false);
    for (size_t slot = 0; slot < classes.size(); ++slot) {
        if (classes[slot] != 0) {
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
