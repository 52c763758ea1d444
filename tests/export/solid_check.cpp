#include "solid_check.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <utility>

SolidSoup solid_soup(const SolidMesh *mesh) {
    SolidSoup soup;
    for (i64 i = 0; i < mesh->index_count; ++i) {
        soup.corners.push_back(solid_place(mesh, mesh->vertices[mesh->indices[i]]));
    }
    return soup;
}

using Place = std::array<f32, 3>;

static Place place_of(SolidVertex vertex) {
    return {vertex.x + 0.0F, vertex.y + 0.0F, vertex.z + 0.0F};  // -0 is 0
}

// Each edge from its smaller end to its larger one, and whether a triangle runs through it that way.
template <typename End>
static std::string edges_fault(const std::vector<End> &corners, const char *kind) {
    struct Edge {
        End low, high;
        i32 forward;
        bool operator<(const Edge &other) const {
            return low != other.low     ? low < other.low
                   : high != other.high ? high < other.high
                                        : forward < other.forward;
        }
    };
    std::vector<Edge> edges;
    for (size_t i = 0; i < corners.size(); i += 3) {
        for (size_t k = 0; k < 3; ++k) {
            const End from = corners[i + k];
            const End to = corners[i + (k + 1) % 3];
            if (from == to) {
                return std::string("a triangle has an edge without length, by ") + kind;
            }
            edges.push_back(from < to ? Edge{from, to, 1} : Edge{to, from, 0});
        }
    }
    std::sort(edges.begin(), edges.end());
    for (size_t i = 0; i < edges.size();) {
        size_t end = i;
        i32 forward = 0;
        while (end < edges.size() && edges[end].low == edges[i].low && edges[end].high == edges[i].high) {
            forward += edges[end].forward;
            ++end;
        }
        if (end - i != 2 || forward != 1) {
            return "an edge has " + std::to_string(end - i) + " faces, " + std::to_string(forward) +
                   " of them in one direction, by " + kind;
        }
        i = end;
    }
    return "";
}

using Vector = std::array<f64, 3>;

static Vector difference(SolidVertex a, SolidVertex b) {
    return {f64{a.x} - f64{b.x}, f64{a.y} - f64{b.y}, f64{a.z} - f64{b.z}};
}

static Vector cross(const Vector &a, const Vector &b) {
    return {a[1] * b[2] - a[2] * b[1], a[2] * b[0] - a[0] * b[2], a[0] * b[1] - a[1] * b[0]};
}

static Vector area_vector(const SolidSoup &soup, size_t first) {
    const SolidVertex *at = soup.corners.data() + first;
    return cross(difference(at[1], at[0]), difference(at[2], at[0]));
}

std::string solid_soup_fault(const SolidSoup &soup) {
    std::vector<Place> places;
    places.reserve(soup.corners.size());
    for (const SolidVertex &vertex : soup.corners) {
        places.push_back(place_of(vertex));
    }
    for (size_t i = 0; i < soup.corners.size(); i += 3) {
        const Vector area = area_vector(soup, i);
        if (!(area[0] * area[0] + area[1] * area[1] + area[2] * area[2] > 0.0)) {
            return "a triangle has no area";
        }
    }
    return edges_fault(places, "places");
}

std::string solid_mesh_fault(const SolidMesh *mesh) {
    std::vector<u32> numbers;
    std::vector<bool> used(static_cast<size_t>(mesh->vertex_count), false);
    for (i64 i = 0; i < mesh->index_count; ++i) {
        if (mesh->indices[i] >= mesh->vertex_count) {
            return "a triangle has a corner that is not there";
        }
        numbers.push_back(mesh->indices[i]);
        used[mesh->indices[i]] = true;
    }
    if (std::count(used.begin(), used.end(), false) > 0) {
        return "a vertex is not used";
    }
    std::vector<Place> exact;
    exact.reserve(numbers.size());
    for (const u32 number : numbers) {
        exact.push_back(place_of(mesh->vertices[number]));
    }
    const std::string by_number = edges_fault(numbers, "numbers");
    const std::string by_place = edges_fault(exact, "exact places");
    return !by_number.empty() ? by_number : !by_place.empty() ? by_place : solid_soup_fault(solid_soup(mesh));
}

f64 solid_soup_volume(const SolidSoup &soup) {
    f64 sum = 0.0;
    for (size_t i = 0; i < soup.corners.size(); i += 3) {
        const Vector a = difference(soup.corners[i], soup.corners[0]);
        const Vector area = area_vector(soup, i);
        sum += a[0] * area[0] + a[1] * area[1] + a[2] * area[2];
    }
    return sum / 6.0;
}

f64 solid_soup_plan(const SolidSoup &soup) {
    f64 sum = 0.0;
    for (size_t i = 0; i < soup.corners.size(); i += 3) {
        sum += std::fmax(area_vector(soup, i)[2], 0.0);
    }
    return sum / 2.0;
}

static f64 thickness(const Layer *layer, i64 point) {
    return solid_film_is_there(layer, point) ? f64{layer->top[point]} - f64{layer->bottom[point]} : 0.0;
}

f64 solid_heights_volume(const Layer *layer) {
    const i64 grid_n = layer->grid_n;
    f64 sum = 0.0;
    for (i64 m = 0; m + 1 < layer->grid_m; ++m) {
        for (i64 n = 0; n + 1 < grid_n; ++n) {
            const i64 point = m * grid_n + n;
            // Two triangles of spacing^2 / 2, each as thick as the mean of its corners.
            sum += thickness(layer, point) + 2.0 * thickness(layer, point + 1) +
                   2.0 * thickness(layer, point + grid_n) + thickness(layer, point + grid_n + 1);
        }
    }
    return sum * f64{layer->spacing} * f64{layer->spacing} / 6.0;
}

// What a soup is made with: corners by their grid points and surface.
struct PlainBuilder {
    const SolidFilm *film;
    SolidSoup soup;
};

// Micrometres.
static SolidVertex corner(const SolidFilm *film, i64 point, bool top) {
    const i64 m = point / film->grid_n;
    const i64 n = point % film->grid_n;
    return {static_cast<f32>(n) * film->spacing, static_cast<f32>(m) * film->spacing,
            top ? film->top[point] : film->bottom[point]};
}

static void add(PlainBuilder *builder, SolidVertex a, SolidVertex b, SolidVertex c) {
    const Place places[3] = {place_of(a), place_of(b), place_of(c)};
    if (places[0] != places[1] && places[1] != places[2] && places[2] != places[0]) {
        builder->soup.corners.insert(builder->soup.corners.end(), {a, b, c});
    }
}

static void add_both(PlainBuilder *builder, i64 a, i64 b, i64 c) {
    const SolidFilm *film = builder->film;
    if ((film->there[a] | film->there[b] | film->there[c]) != 0) {
        add(builder, corner(film, a, true), corner(film, b, true), corner(film, c, true));
        add(builder, corner(film, a, false), corner(film, c, false), corner(film, b, false));
    }
}

// The wall over the line from a to b, the section on its left.
static void add_wall(PlainBuilder *builder, i64 a, i64 b) {
    const SolidFilm *film = builder->film;
    if ((film->there[a] | film->there[b]) != 0) {
        add(builder, corner(film, a, false), corner(film, b, false), corner(film, b, true));
        add(builder, corner(film, a, false), corner(film, b, true), corner(film, a, true));
    }
}

SolidSoup plain_solid(const SolidFilm *film) {
    PlainBuilder builder = {film, {}};
    const i64 grid_n = film->grid_n;
    const i64 last_row = (i64{film->grid_m} - 1) * grid_n;
    for (i64 m = 0; m + 1 < film->grid_m; ++m) {
        for (i64 n = 0; n + 1 < grid_n; ++n) {
            const i64 point = m * grid_n + n;
            add_both(&builder, point, point + 1, point + grid_n);
            add_both(&builder, point + 1, point + grid_n + 1, point + grid_n);
        }
        add_wall(&builder, m * grid_n + grid_n - 1, (m + 1) * grid_n + grid_n - 1);
        add_wall(&builder, (m + 1) * grid_n, m * grid_n);
    }
    for (i64 n = 0; n + 1 < grid_n; ++n) {
        add_wall(&builder, n, n + 1);
        add_wall(&builder, last_row + n + 1, last_row + n);
    }
    return std::move(builder.soup);
}
