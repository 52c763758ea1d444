// Lack of memory in quarn-batch: the message and the exit status, whichever allocation fails on whichever
// thread, in a whole run. The usual run tries a sample of the allocations, the environment asks for all of
// them (see tests/desktop/memory_trips.h).
#include <gtest/gtest.h>

#include <algorithm>
#include <csignal>

#include "tests/app/batch_fixture.h"
#include "tests/desktop/memory_trips.h"

struct TrippedJob {
    const char *name;
    std::vector<std::string> options;
    bool draws;
    i64 files;  // that it leaves: pictures, heights, polygons
};

class QuarnBatchMemory : public testing::TestWithParam<TrippedJob> {};

// Runs the job in a folder of its own.
//   trip   allocations that succeed before one fails; -1: none fails
static TrippedRun run_tripped(const TrippedJob &job, i64 trip) {
    const BatchFixture files;
    files.write("p.txt", process_text(deposition_line("A") + "dump\n" + deposition_line("B")));
    std::vector<std::string> arguments = job.options;
    arguments.insert(arguments.end(), {"-o", "p out", "a.gds", "p.txt"});
    ProgramCall call = files.call(arguments);
    call.program = QUARN_TRIPPED_BATCH_PROGRAM;
    if (trip >= 0) {
        call.environment.push_back("QUARN_TEST_TRIP=" + std::to_string(trip));
    }
    const ProgramResult result = files.run_call(call);
    EXPECT_EQ(result.signal, 0) << trip << (result.signal == SIGALRM ? ": hangs" : "");
    return {result.status, result.output + result.error, result.error, trip_take_files(files.folder.path)};
}

TEST_P(QuarnBatchMemory, IsToldWhicheverAllocationFails) {
    const TrippedJob &job = GetParam();
    if (job.draws) {
        NEEDS_GRAPHICS();
    }
    TrippedRun plain = run_tripped(job, -1);
    const i64 count = trip_take_allocations(&plain.shown);
    ASSERT_GT(count, 500) << plain.shown;
    EXPECT_EQ(plain.status, 0) << plain.shown;
    EXPECT_EQ(std::count(plain.files.begin(), plain.files.end(), '\n'), job.files) << plain.files;
    plain.shown = trip_comparable(plain.shown);
    TripCounts counts = {};
    trip_each(count, 1, plain, &counts, [&](i64 trip) { return run_tripped(job, trip); });
    trip_report(counts);
    EXPECT_GT(counts.terminal, 4);
}

static const TrippedJob JOBS[] = {
    {"Pictures", {}, true, 5},
    {"PicturesAsPng", {"--format", "png"}, true, 5},
    {"NoPictures", {"--no-images"}, false, 2},
    {"Exports", {"--no-images", "--profile", "csv,gds", "--mesh", "stl"}, false, 13},  // those without a date
};

INSTANTIATE_TEST_SUITE_P(Each, QuarnBatchMemory, testing::ValuesIn(JOBS),
                         [](const auto &job) { return std::string(job.param.name); });
