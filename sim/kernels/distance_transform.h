// distance_transform.h: the exact squared distance, in grid points, to the nearest open point of a
// mask. Method: A. Meijster, J. Roerdink, W. Hesselink, "A general algorithm for computing distance
// transforms in linear time", 2000.
#pragma once
#include "platform/base.h"

inline constexpr i64 DISTANCE_NONE = I64_MAX;  // no open point anywhere

struct DistanceTransform {
    i32 mask_n, mask_m;
    i32 *column_distances;  // to the nearest open point of the same column; -1 without one
    i32 *nearest;           // scratch of one row: column of the open point that is nearest ...
    i32 *starts;            // ... from this column on
};

// An open point is one whose byte is 0. The mask may be freed afterwards. Freed with
// distance_transform_free.
DistanceTransform distance_transform_create(const u8 *mask, i32 mask_n, i32 mask_m);
void distance_transform_free(DistanceTransform *transform);

// The squared distances of one row, mask_n of them.
void distance_transform_row(const DistanceTransform *transform, i32 row, i64 *squares);
