// distance_transform.h: the exact squared distance, in grid points, to the nearest open point of a
// mask. Method: A. Meijster, J. Roerdink, W. Hesselink, "A general algorithm for computing distance
// transforms in linear time", 2000.
#pragma once
#include "platform/owned.h"

inline constexpr i64 DISTANCE_NONE = I64_MAX;  // no open point anywhere

struct DistanceTransform {
    i32 mask_n, mask_m;
    i32 *column_distances;  // to the nearest open point of the same column; -1 without one
    i32 *nearest;           // scratch of one row: column of the open point that is nearest ...
    i32 *starts;            // ... from this column on
};

// The transform of a mask of mask_n columns and mask_m rows, indexed row * mask_n + column, freed with
// distance_transform_free. An open point is one whose byte is 0. The mask may be freed before it.
DistanceTransform *distance_transform_create(const u8 *mask, i32 mask_n, i32 mask_m);

// Frees the transform; null is ignored.
void distance_transform_free(DistanceTransform *transform);

template <>
struct Freed<DistanceTransform> {
    void operator()(DistanceTransform *transform) const { distance_transform_free(transform); }
};

// The squared distances of one row (0 to mask_m - 1): mask_n of them, DISTANCE_NONE where there is no open
// point.
void distance_transform_row(const DistanceTransform *transform, i32 row, i64 *squares);
