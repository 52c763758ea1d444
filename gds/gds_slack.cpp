#include "gds/gds_slack.h"

#include <algorithm>
#include <cassert>
#include <cstring>

bool boxes_overlap(const Box *window, const Box *box) {
    return window->x_min < box->x_max && window->x_max > box->x_min && window->y_max > box->y_min &&
           window->y_min < box->y_max;
}

static void narrow(Range *range, i64 low, i64 high) {
    range->low = std::max(range->low, low);
    range->high = std::min(range->high, high);
}

void slack_note(FlattenSlack *slack, const Box *window, const Box *box, bool overlap) {
    narrow(&slack->x, i64{I32_MIN} - box->x_min, i64{I32_MAX} - box->x_max);
    narrow(&slack->y, i64{I32_MIN} - box->y_min, i64{I32_MAX} - box->y_max);
    // Distances at which one of the four comparisons turns.
    const i64 left = i64{window->x_min} - box->x_max;
    const i64 right = i64{window->x_max} - box->x_min;
    const i64 below = i64{window->y_min} - box->y_max;
    const i64 above = i64{window->y_max} - box->y_min;
    if (overlap) {
        narrow(&slack->x, left + 1, right - 1);
        narrow(&slack->y, below + 1, above - 1);
    } else if (left >= 0) {
        slack->x.high = std::min(slack->x.high, left);
    } else if (right <= 0) {
        slack->x.low = std::max(slack->x.low, right);
    } else if (below >= 0) {
        slack->y.high = std::min(slack->y.high, below);
    } else {
        slack->y.low = std::max(slack->y.low, above);
    }
}

void slack_narrow(FlattenSlack *slack, const FlattenSlack *other) {
    narrow(&slack->x, other->x.low, other->x.high);
    narrow(&slack->y, other->y.low, other->y.high);
}

void memos_add(CellMemos *memos, const FlattenMemo *memo) {
    assert(memos != nullptr && memo != nullptr);
    memos->at[memos->next] = *memo;
    memos->next = (memos->next + 1) % CELL_MEMOS;
    memos->count = std::min(memos->count + 1, CELL_MEMOS);
}

// Equal, or both the same nan.
static bool same_bits(f32 a, f32 b) {
    u32 a_bits = 0;
    u32 b_bits = 0;
    std::memcpy(&a_bits, &a, sizeof(a));
    std::memcpy(&b_bits, &b, sizeof(b));
    return a_bits == b_bits;
}

const FlattenMemo *memos_find(const CellMemos *memos, const PlacedGroup *group, FlattenSlack *slack) {
    assert(memos != nullptr && group != nullptr && slack != nullptr);
    for (i32 i = 0; i < memos->count; ++i) {
        const FlattenMemo *memo = &memos->at[i];
        const GdsPlacement *at = &memo->placement;
        const FlattenSlack left = {{memo->slack.x.low - (group->x.low - at->origin.x),
                                    memo->slack.x.high - (group->x.high - at->origin.x)},
                                   {memo->slack.y.low - (group->y.low - at->origin.y),
                                    memo->slack.y.high - (group->y.high - at->origin.y)}};
        const bool within = left.x.low <= 0 && left.x.high >= 0 && left.y.low <= 0 && left.y.high >= 0;
        if (within && at->flags == group->placement.flags && same_bits(at->mag, group->placement.mag) &&
            same_bits(at->angle, group->placement.angle) &&
            (memo->frame == 0 || memo->frame == group->frame)) {
            slack_narrow(slack, &left);
            return memo;
        }
    }
    return nullptr;
}
