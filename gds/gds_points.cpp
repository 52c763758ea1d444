#include "gds/gds_points.h"

#include <cassert>
#include <cstddef>

#ifdef __SSE2__
#include <emmintrin.h>

// Two points, or one twice: four numbers, x y x y.
struct PointPair {
    __m128i numbers;
};

// The smallest and the largest of each number of the pairs met.
struct PairBox {
    __m128i smallest, largest;
};

static __m128i select(__m128i mask, __m128i yes, __m128i no) {
    return _mm_or_si128(_mm_and_si128(mask, yes), _mm_andnot_si128(mask, no));
}

static PairBox pair_box(PointPair pair) {
    return {pair.numbers, pair.numbers};
}

static void pair_box_grow(PairBox *box, PointPair pair) {
    box->smallest = select(_mm_cmpgt_epi32(box->smallest, pair.numbers), pair.numbers, box->smallest);
    box->largest = select(_mm_cmpgt_epi32(pair.numbers, box->largest), pair.numbers, box->largest);
}

// Both points of the pairs together.
static Box pair_box_whole(PairBox pairs) {
    const __m128i small_other = _mm_unpackhi_epi64(pairs.smallest, pairs.smallest);
    const __m128i large_other = _mm_unpackhi_epi64(pairs.largest, pairs.largest);
    pair_box_grow(&pairs, {small_other});
    pair_box_grow(&pairs, {large_other});
    Box box;
    static_assert(sizeof(box) == 16 && offsetof(Box, x_max) == 8, "stored as x_min y_min x_max y_max");
    _mm_storeu_si128(reinterpret_cast<__m128i *>(&box), _mm_unpacklo_epi64(pairs.smallest, pairs.largest));
    return box;
}

static PointPair pair_at(const Point *points) {
    return {_mm_loadu_si128(reinterpret_cast<const __m128i *>(points))};
}

// The same as bytes of a record: the bytes of each half of a number, then its halves change places.
static PointPair pair_from(__m128i bytes) {
    const __m128i halves = _mm_or_si128(_mm_slli_epi16(bytes, 8), _mm_srli_epi16(bytes, 8));
    return {
        _mm_shufflehi_epi16(_mm_shufflelo_epi16(halves, _MM_SHUFFLE(2, 3, 0, 1)), _MM_SHUFFLE(2, 3, 0, 1))};
}

static PointPair pair_take(const u8 *bytes, Point *points) {
    const PointPair pair = pair_from(_mm_loadu_si128(reinterpret_cast<const __m128i *>(bytes)));
    _mm_storeu_si128(reinterpret_cast<__m128i *>(points), pair.numbers);
    return pair;
}

Box gds_points_take(const u8 *bytes, i32 count, Point *points) {
    assert(bytes != nullptr && count >= 0 && (points != nullptr || count == 0));
    if (count < 2) {
        if (count == 0) {
            return BOX_EMPTY;
        }
        const PointPair one = pair_from(_mm_loadl_epi64(reinterpret_cast<const __m128i *>(bytes)));
        _mm_storel_epi64(reinterpret_cast<__m128i *>(points), one.numbers);
        return {points->x, points->y, points->x, points->y};
    }
    // The last pair may have one point in common with the one before.
    const i32 last = count - 2;
    PairBox box = pair_box(pair_take(bytes + i64{8} * last, points + last));
    for (i32 i = 0; i < last; i += 2) {
        pair_box_grow(&box, pair_take(bytes + i64{8} * i, points + i));
    }
    return pair_box_whole(box);
}

Box gds_points_box(const Point *points, i32 count) {
    assert(count >= 0 && (points != nullptr || count == 0));
    if (count < 2) {
        return count == 0 ? BOX_EMPTY : Box{points->x, points->y, points->x, points->y};
    }
    const i32 last = count - 2;
    PairBox box = pair_box(pair_at(points + last));
    for (i32 i = 0; i < last; i += 2) {
        pair_box_grow(&box, pair_at(points + i));
    }
    return pair_box_whole(box);
}

#else
#include "gds/gds_placement.h"
#include "gds/gds_stream.h"

Box gds_points_take(const u8 *bytes, i32 count, Point *points) {
    assert(bytes != nullptr && count >= 0 && (points != nullptr || count == 0));
    Box box = BOX_EMPTY;
    for (i32 i = 0; i < count; ++i, bytes += 8) {
        points[i] = {gds_i32(bytes), gds_i32(bytes + 4)};
        box_grow_point(&box, points[i]);
    }
    return box;
}

Box gds_points_box(const Point *points, i32 count) {
    assert(count >= 0 && (points != nullptr || count == 0));
    Box box = BOX_EMPTY;
    for (i32 i = 0; i < count; ++i) {
        box_grow_point(&box, points[i]);
    }
    return box;
}

#endif
