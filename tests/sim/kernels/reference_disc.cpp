#include <cmath>
#include <cstring>
#include "reference.h"

namespace reference {

std::vector<GridOffset> offsets(i32 n, i32 m, f32 spacing) {
    std::vector<GridOffset> table;
    for (i32 dy = 1 - m; dy <= m - 1; ++dy) {
        for (i32 dx = 1 - n; dx <= n - 1; ++dx) {
            const f32 x = static_cast<f32>(dx) * spacing;
            const f32 y = static_cast<f32>(dy) * spacing;
            const f32 xx = x * x;
            const f32 yy = y * y;
            const f32 sum = xx + yy;
            table.push_back({dx, dy, sqrtf(sum)});
        }
    }
    return table;
}

void sort_by_distance(std::vector<GridOffset> *offsets) {
    std::vector<GridOffset> &table = *offsets;
    const size_t count = table.size();
    if (count < 3) {
        return;
    }
    for (size_t width = 1; width < count; width *= 2) {
        for (size_t start = 0; start < count; start += 2 * width) {
            const size_t middle = start + width < count ? start + width : count;
            const size_t end = start + 2 * width < count ? start + 2 * width : count;
            std::vector<GridOffset> merged;
            size_t left = start;
            size_t right = middle;
            while (left < middle || right < end) {
                const bool take_left =
                    right >= end || (left < middle && table[right].distance >= table[left].distance);
                merged.push_back(take_left ? table[left++] : table[right++]);
            }
            std::memcpy(table.data() + start, merged.data(), merged.size() * sizeof(GridOffset));
        }
    }
}

PointLists disc(const std::vector<GridOffset> &offsets, f32 spacing, f32 radius) {
    PointLists lists;
    for (const GridOffset &entry : offsets) {
        if (!(entry.distance <= radius)) {
            break;
        }
        lists.points.push_back({entry.dx, entry.dy});
    }
    for (const GridOffset &entry : offsets) {
        const i64 dx = entry.dx + 1;
        const i64 dy = entry.dy;
        const f32 root = sqrtf(static_cast<f32>(dx * dx + dy * dy));
        const f32 right = spacing * root;
        if (entry.distance > radius && radius >= right) {
            lists.edge.push_back({entry.dx, entry.dy});
        }
    }
    return lists;
}

}  // namespace reference
