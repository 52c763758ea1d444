#include "tests/desktop/memory_trips.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <functional>
#include <sstream>

#include "platform/memory.h"
#include "platform/platform.h"
#include "tests/app/app_inputs.h"
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

static const char *const SIZE_MARK = ", size ";
static const char *const BYTES_MARK = ", bytes ";
static constexpr size_t NUMBER_LENGTH = 4;  // of a picture's name, with the blank

static std::string file_line(const std::wstring &path, const std::wstring &name) {
    const std::string bytes = test_file_read(path);
    return test_utf8(name) + SIZE_MARK + std::to_string(bytes.size()) + BYTES_MARK +
           std::to_string(std::hash<std::string>()(bytes)) + "\n";
}

std::string trip_take_files(const std::wstring &folder) {
    std::string lines;
    for (const std::wstring &name : test_folder_list(folder)) {
        const std::wstring path = folder + PLATFORM_SEPARATOR + name;
        const bool temporary = name.compare(0, 6, L"quarn-") == 0;
        if (name == L"VertexData.txt" || temporary) {
            lines += file_line(path, name);
        } else if (name.compare(0, 2, L"p ") == 0) {
            for (const std::wstring &picture : test_folder_list(path)) {
                lines += file_line(path + PLATFORM_SEPARATOR + picture, picture);
            }
        } else {
            continue;
        }
        std::filesystem::remove_all(path);
    }
    return lines;
}

// Whether a line begins with one text and contains the other.
static bool has_line(const std::string &text, const std::string &start, const std::string &part) {
    std::istringstream lines(text);
    for (std::string line; std::getline(lines, line);) {
        if (line.compare(0, start.size(), start) == 0 && line.find(part) != std::string::npos) {
            return true;
        }
    }
    return false;
}

// Windows removes no file that is open, so there the one that was being written stays under its temporary
// name.
static bool may_stay(const std::string &line) {
    return PLATFORM_SEPARATOR[0] == L'\\' && line.compare(0, 6, "quarn-") == 0;
}

// Expects that no file is in parts, or lies under a name that it would not have kept.
//   as_always   else pictures have the same numbers and sizes only
static void expect_whole_files(i64 trip, const TrippedRun &run, const TrippedRun &plain, bool as_always) {
    std::istringstream lines(run.files);
    for (std::string line; std::getline(lines, line);) {
        if (may_stay(line)) {
            continue;
        }
        const size_t size = line.find(SIZE_MARK);
        const std::string start = as_always ? line : line.substr(0, NUMBER_LENGTH);
        const std::string rest = as_always ? "" : line.substr(size, line.find(BYTES_MARK) - size);
        EXPECT_TRUE(has_line(plain.files, start, rest)) << trip << "\n" << line;
    }
}

// The last is told of a picture, since those before it are kept.
static bool has_message(const std::string &text) {
    return text.find("Memory allocation error\n") != std::string::npos ||
           text.find("Memory reallocation error\n") != std::string::npos ||
           text.find(": no memory for a picture") != std::string::npos;
}

void trip_check(i64 trip, const TrippedRun &run, const TrippedRun &plain, TripCounts *counts) {
    const std::string all = run.shown + run.other;
    EXPECT_EQ((all + run.files).find("(null)"), std::string::npos) << trip << "\n" << all << run.files;
    if (run.status == TEST_OUT_OF_MEMORY) {
        const bool box = run.shown.find("box: ") != std::string::npos;
        EXPECT_TRUE(has_message(box ? run.shown : run.other)) << trip << "\n" << all;
        expect_whole_files(trip, run, plain, true);
        ++(box ? counts->boxes : counts->terminal);
        return;
    }
    // A file beside the pictures that lacks memory is one that could not be written.
    const bool file_refused = run.status == 4 && all.find(": memory is lacking") != std::string::npos;
    EXPECT_TRUE(run.status == 0 || file_refused) << run.status << ", " << trip << "\n" << all;
    const bool same = trip_comparable(run.shown) == plain.shown;
    EXPECT_TRUE(!same || run.files == plain.files) << trip << " leaves\n" << run.files;
    EXPECT_TRUE(same || run.shown.find("memory") != std::string::npos) << trip << "\n" << all;
    expect_whole_files(trip, run, plain, false);
    ++(same ? counts->same : counts->told);
}

void trip_report(const TripCounts &counts) {
    std::printf("%d in a box, %d on the terminal, %d runs as usual, %d told\n", counts.boxes, counts.terminal,
                counts.same, counts.told);
    std::fflush(stdout);
}
