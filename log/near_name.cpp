#include "log/near_name.h"

#include <algorithm>
#include <cassert>
#include <cstring>

// Costs: a letter of the other case, and any other difference, which always weighs more than the letter case
// of a whole name.
static constexpr i32 CASE_COST = 1;
static constexpr i32 EDIT_COST = 100;
static constexpr i32 EDITS_MOST = 3;
static constexpr i32 FAR_COST = 1 << 20;
static constexpr i32 LENGTH_MOST = 64;  // longer names are near only in equal letters

static char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

static i32 letter_cost(char a, char b) {
    if (a == b) {
        return 0;
    }
    return lower(a) == lower(b) ? CASE_COST : EDIT_COST;
}

// Names of one length that differ in letter case only; -1 when they differ in more.
static i32 case_cost(const char *a, const char *b, i32 length) {
    i32 cost = 0;
    for (i32 i = 0; i < length; ++i) {
        const i32 letter = letter_cost(a[i], b[i]);
        if (letter == EDIT_COST) {
            return -1;
        }
        cost += letter;
    }
    return cost;
}

// The cheapest way from a to b by whole-row dynamic programming (Wagner and Fischer, The String-to-String
// Correction Problem, 1974), with neighbours that change places (Damerau, 1964). Only a band about the
// diagonal is looked at, since ways that leave it have too many edits; what lies beside it costs at least
// FAR_COST.
static i32 edit_cost(const char *a, i32 a_length, const char *b, i32 b_length) {
    i32 rows[3][LENGTH_MOST + 1];
    i32 *before = rows[0];  // of the row two above
    i32 *above = rows[1];
    i32 *row = rows[2];
    for (i32 k = 0; k <= b_length; ++k) {
        above[k] = k * EDIT_COST;
        before[k] = FAR_COST;
        row[k] = FAR_COST;
    }
    for (i32 i = 1; i <= a_length; ++i) {
        const i32 first = std::max(1, i - EDITS_MOST);
        const i32 last = std::min(b_length, i + EDITS_MOST);
        row[first - 1] = first == 1 ? i * EDIT_COST : FAR_COST;
        for (i32 k = first; k <= last; ++k) {
            row[k] = std::min({above[k] + EDIT_COST, row[k - 1] + EDIT_COST,
                               above[k - 1] + letter_cost(a[i - 1], b[k - 1])});
            const bool swapped = i > 1 && k > 1 && lower(a[i - 1]) == lower(b[k - 2]) &&
                                 lower(a[i - 2]) == lower(b[k - 1]) && lower(a[i - 1]) != lower(a[i - 2]);
            if (swapped) {
                row[k] = std::min(row[k], before[k - 2] + EDIT_COST);
            }
        }
        if (last < b_length) {
            row[last + 1] = FAR_COST;
        }
        i32 *spare = before;
        before = above;
        above = row;
        row = spare;
    }
    return above[b_length];
}

// -1 when the names are not near.
static i32 name_cost(const char *a, const char *b) {
    auto a_length = static_cast<i64>(std::strlen(a));
    auto b_length = static_cast<i64>(std::strlen(b));
    if (a_length == b_length) {
        const i32 cost = case_cost(a, b, static_cast<i32>(a_length));
        if (cost >= 0) {
            return cost;
        }
    }
    const i64 longest = std::max(a_length, b_length);
    if (longest > LENGTH_MOST || std::max(a_length - b_length, b_length - a_length) > EDITS_MOST) {
        return -1;
    }
    const i32 allowed = static_cast<i32>(std::min<i64>(EDITS_MOST, std::min(a_length, b_length) / 3));
    const i32 cost = edit_cost(a, static_cast<i32>(a_length), b, static_cast<i32>(b_length));
    return cost / EDIT_COST <= allowed ? cost : -1;
}

void near_name_try(NearName *near, const char *candidate) {
    assert(near != nullptr && near->wanted != nullptr && candidate != nullptr);
    const i32 cost = name_cost(near->wanted, candidate);
    if (cost >= 0 && (near->best == nullptr || cost < near->best_cost)) {
        near->best = candidate;
        near->best_cost = cost;
    }
}
