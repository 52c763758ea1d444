#include "tests/desktop/memory_trips.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>

#include "platform/memory.h"
#include "tests/app/app_scene.h"
#include "tests/support/test_support.h"

static const char *const ALLOCATIONS = "allocations: ";

i64 trip_environment(const char *name, i64 otherwise) {
    const char *value = std::getenv(name);
    return value != nullptr ? std::atoll(value) : otherwise;
}

std::string trip_allocations_line(i64 trip) {
    i64 left = 0;
    for (void *block = memory_try_allocate(1, 1); block != nullptr && left < trip;
         block = memory_try_allocate(1, 1)) {
        memory_free(block);
        ++left;
    }
    return ALLOCATIONS + std::to_string(trip - left) + "\n";
}

i64 trip_take_allocations(std::string *shown) {
    const size_t at = shown->rfind(ALLOCATIONS);
    if (at == std::string::npos) {
        return -1;
    }
    const i64 count = std::atoll(shown->c_str() + at + std::string(ALLOCATIONS).size());
    shown->resize(at);
    return count;
}

std::string trip_comparable(const std::string &shown) {
    std::string text = mask_seconds(shown);
    const size_t at = text.find("\"p ");
    return at == std::string::npos ? text
                                   : text.replace(at, std::string("\"p 2026-01-02 03-04-05").size(), "\"p");
}

static bool has_message(const std::string &text) {
    return text.find("Memory allocation error\n") != std::string::npos ||
           text.find("Memory reallocation error\n") != std::string::npos;
}

void trip_check(i64 trip, const TrippedRun &run, const std::string &plain, TripCounts *counts) {
    const std::string all = run.shown + run.other;
    EXPECT_EQ(all.find("(null)"), std::string::npos) << trip << "\n" << all;
    if (run.status == TEST_OUT_OF_MEMORY) {
        const bool box = run.shown.find("box: ") != std::string::npos;
        EXPECT_TRUE(has_message(box ? run.shown : run.other)) << trip << "\n" << all;
        ++(box ? counts->boxes : counts->terminal);
        return;
    }
    EXPECT_EQ(run.status, 0) << trip << "\n" << all;
    const bool same = trip_comparable(run.shown) == plain;
    EXPECT_TRUE(same || all.find("memory") != std::string::npos) << trip << "\n" << all;
    ++(same ? counts->same : counts->told);
}

void trip_report(const TripCounts &counts) {
    std::printf("%d in a box, %d on the terminal, %d runs as usual, %d told\n", counts.boxes, counts.terminal,
                counts.same, counts.told);
    std::fflush(stdout);
}
