#include "export/page_pack.h"

#include <algorithm>
#include <cassert>
#include <cstring>
#include <utility>

#include "export/page_deflate.h"
#include "export/page_plane.h"
#include "sim/stack_layers.h"

// A plane is unpacked after at most so many others, so that a page can show any step soon without having kept
// all the steps before.
static constexpr i32 LARGEST_DEPTH = 16;

// Planes being packed.
struct Packing {
    PageWriter *page;
    PageStep *step;
    i64 points;
    Owned<PageDeflate> deflate;
    Owned<i32[]> plane, reference;
    Owned<u32[]> best, tried;  // what remains of the plane
    Owned<u8[]> bytes;
};

template <typename T>
static Owned<T[]> try_array(i64 count) {
    return Owned<T[]>(static_cast<T *>(memory_try_allocate(count, sizeof(T))));
}

static bool start_packing(Packing *packing) {
    packing->points = i64{packing->page->grid_n} * packing->page->grid_m;
    packing->deflate.reset(page_deflate_try_create());
    packing->plane = try_array<i32>(packing->points);
    packing->reference = try_array<i32>(packing->points);
    packing->best = try_array<u32>(packing->points);
    packing->tried = try_array<u32>(packing->points);
    packing->bytes = try_array<u8>(packing->points);
    return packing->deflate != nullptr && packing->plane != nullptr && packing->reference != nullptr &&
           packing->best != nullptr && packing->tried != nullptr && packing->bytes != nullptr;
}

static bool heights_equal(const f32 *a, const f32 *b, i64 points) {
    // The middle mostly tells planes apart that are level at the edge.
    const i64 middle = points / 2;
    return std::memcmp(a + middle, b + middle, sizeof(f32)) == 0 &&
           std::memcmp(a, b, static_cast<size_t>(points) * sizeof(f32)) == 0;
}

// A kept plane with these heights: `likely` is looked at first. Null when there is none.
static PagePlane *find_plane(const Packing *packing, const f32 *heights, PagePlane *likely) {
    if (likely != nullptr && heights_equal(likely->heights, heights, packing->points)) {
        return likely;
    }
    for (i32 i = 0; i < packing->page->kept_count; ++i) {
        PagePlane *plane = packing->page->kept[i];
        if (plane != likely && heights_equal(plane->heights, heights, packing->points)) {
            return plane;
        }
    }
    return nullptr;
}

// Packs the plane as its difference from the one of two references (or from none) that leaves the least.
// Returns whether there was memory for it.
static bool pack_plane(Packing *packing, PagePlane *plane, PagePlane *const references[2]) {
    const PageWriter *page = packing->page;
    page_plane_quantize(plane->heights, packing->points, page->quanta, packing->plane.get());
    i64 least =
        page_plane_remainder(packing->plane.get(), nullptr, page->grid_n, page->grid_m, packing->best.get());
    PagePlaneForm form = {-1, 0};
    for (i32 i = 0; i < 2; ++i) {
        const PagePlane *reference = references[i];
        if (reference == nullptr || reference->depth >= LARGEST_DEPTH || least == 0) {
            continue;
        }
        page_plane_quantize(reference->heights, packing->points, page->quanta, packing->reference.get());
        const i64 left = page_plane_remainder(packing->plane.get(), packing->reference.get(), page->grid_n,
                                              page->grid_m, packing->tried.get());
        if (left < least) {
            least = left;
            form.reference = reference->number;
            plane->depth = reference->depth + 1;
            std::swap(packing->best, packing->tried);
        }
    }
    form.bytes = page_plane_bytes(packing->best.get(), packing->points);
    for (i32 i = 0; i < form.bytes; ++i) {
        page_plane_byte(packing->best.get(), packing->points, i, packing->bytes.get());
        if (!page_deflate_put(packing->deflate.get(), packing->bytes.get(), packing->points)) {
            return false;
        }
    }
    packing->step->planes[packing->step->plane_count++] = form;
    return true;
}

// The plane of the page with these heights: one that is kept, or a new one, kept from here on and packed.
//   before   the same surface before the step, or null
//   below    the film's bottom, for its top
// Null when memory is lacking.
static PagePlane *take_plane(Packing *packing, const f32 *heights, PagePlane *before, PagePlane *below) {
    PagePlane *found = find_plane(packing, heights, before);
    if (found != nullptr) {
        return found;
    }
    Owned<f32[]> copy = try_array<f32>(packing->points);
    auto *plane = static_cast<PagePlane *>(memory_try_allocate(1, sizeof(PagePlane)));
    if (copy == nullptr || plane == nullptr) {
        memory_free(plane);
        return nullptr;
    }
    std::memcpy(copy.get(), heights, static_cast<size_t>(packing->points) * sizeof(f32));
    PageWriter *page = packing->page;
    *plane = {copy.release(), page->plane_count + packing->step->plane_count, 0, false};
    page->kept[page->kept_count++] = plane;
    PagePlane *const references[2] = {before, below};
    return pack_plane(packing, plane, references) ? plane : nullptr;
}

// The planes of a film after the step; null when it is not there.
struct FilmPlanes {
    PagePlane *bottom, *top;
};

// Null when memory is lacking.
static char *try_copy_text(const char *text) {
    const char *from = text != nullptr ? text : "";
    const size_t size = std::strlen(from) + 1;
    auto *copy = static_cast<char *>(memory_try_allocate(static_cast<i64>(size), 1));
    if (copy != nullptr) {
        std::memcpy(copy, from, size);
    }
    return copy;
}

// Adds a film for a slot that had none. False when memory is lacking.
static bool add_film(PageWriter *page, const Layer *layer, i32 slot) {
    PageFilm film = {};
    film.slot = slot;
    film.name = try_copy_text(layer->legend_name);
    film.material = try_copy_text(layer->material_name);
    std::memcpy(film.color, layer->color, sizeof(film.color));
    page->films[page->film_count++] = film;
    return film.name != nullptr && film.material != nullptr;
}

// Finds or packs the planes of every layer. False when memory is lacking.
//   next   empty, with room for all films
static bool take_planes(Packing *packing, const Stack *stack, FilmPlanes *next) {
    PageWriter *page = packing->page;
    i32 film = 0;
    for (i32 slot = 0; slot < stack->layer_count; ++slot) {
        const Layer *layer = stack->layers[slot];
        if (layer == nullptr) {
            continue;
        }
        assert(layer_fits(layer, stack));
        while (film < page->film_count && page->films[film].slot < slot) {
            ++film;
        }
        if (film == page->film_count && !add_film(page, layer, slot)) {
            return false;
        }
        // A slot that comes to hold a layer is behind all that did before.
        assert(page->films[film].slot == slot);
        const FilmPlanes before = {page->films[film].bottom, page->films[film].top};
        FilmPlanes *after = &next[film];
        after->bottom = take_plane(packing, layer->bottom, before.bottom, nullptr);
        after->top =
            after->bottom == nullptr ? nullptr : take_plane(packing, layer->top, before.top, after->bottom);
        if (after->top == nullptr) {
            return false;
        }
    }
    return true;
}

// Tells the step what is other than before, and lets the films be as they are now.
static void change_films(PageWriter *page, PageStep *step, const FilmPlanes *next) {
    for (i32 i = 0; i < page->film_count; ++i) {
        PageFilm *film = &page->films[i];
        const FilmPlanes after = next[i];
        if (after.bottom == nullptr && film->bottom != nullptr) {
            step->removed[step->removed_count++] = i;
        } else if (after.bottom != film->bottom || after.top != film->top) {
            step->changes[step->change_count++] = {i, after.bottom->number, after.top->number};
        }
        film->bottom = after.bottom;
        film->top = after.top;
    }
}

static void free_plane(PagePlane *plane) {
    memory_free(plane->heights);
    memory_free(plane);
}

// Frees the planes that no film has.
static void drop_planes(PageWriter *page) {
    for (i32 i = 0; i < page->kept_count; ++i) {
        page->kept[i]->used = false;
    }
    for (i32 i = 0; i < page->film_count; ++i) {
        if (page->films[i].bottom != nullptr) {
            page->films[i].bottom->used = true;
            page->films[i].top->used = true;
        }
    }
    i32 count = 0;
    for (i32 i = 0; i < page->kept_count; ++i) {
        if (page->kept[i]->used) {
            page->kept[count++] = page->kept[i];
        } else {
            free_plane(page->kept[i]);
        }
    }
    page->kept_count = count;
}

// Takes back the films that a step without memory added; their planes are dropped like any that no film has.
static void drop_films(PageWriter *page, i32 count) {
    for (i32 i = count; i < page->film_count; ++i) {
        memory_free(page->films[i].name);
        memory_free(page->films[i].material);
    }
    page->film_count = count;
}

// Lets an owned list have room for `count` items. False when memory is lacking.
template <typename T>
static bool reserve(T **items, i32 count) {
    void *moved = memory_try_reallocate(*items, count, sizeof(T));
    if (moved != nullptr) {
        *items = static_cast<T *>(moved);
    }
    return moved != nullptr;
}

// Room for all that a step can add to the lists.
static bool reserve_lists(PageWriter *page, PageStep *step, i32 layer_count) {
    const i32 films = page->film_count + layer_count;
    return reserve(&page->films, films) && reserve(&page->kept, page->kept_count + 2 * layer_count) &&
           reserve(&step->changes, films) && reserve(&step->removed, films) &&
           reserve(&step->planes, 2 * layer_count);
}

// Gives back what the step did not need; else its lists stay a little too long.
static void trim_lists(PageStep *step) {
    reserve(&step->changes, step->change_count);
    reserve(&step->removed, step->removed_count);
    reserve(&step->planes, step->plane_count);
}

bool page_pack_step(PageWriter *page, const Stack *stack, PageStep *step) {
    assert(page != nullptr && stack != nullptr && step != nullptr && step->block == nullptr);
    assert(stack->grid_n == page->grid_n && stack->grid_m == page->grid_m);
    const i32 film_count = page->film_count;
    const i32 layer_count = stack_count_layers(stack);
    Packing packing = {};
    packing.page = page;
    packing.step = step;
    const Owned<FilmPlanes[]> next = try_array<FilmPlanes>(i64{film_count} + layer_count);
    bool complete = next != nullptr && reserve_lists(page, step, layer_count) && start_packing(&packing);
    if (complete) {
        std::fill(next.get(), next.get() + film_count + layer_count, FilmPlanes{});
        complete = take_planes(&packing, stack, next.get());
    }
    if (complete) {
        step->block = page_deflate_finish(packing.deflate.get(), &step->block_size).release();
        complete = step->block != nullptr;
    }
    if (complete) {
        page->plane_count += step->plane_count;
        change_films(page, step, next.get());
        trim_lists(step);
    } else {
        drop_films(page, film_count);
    }
    drop_planes(page);
    return complete;
}
