// Damaged streams: cut at every byte, lengths that lie, handlers given too little, memory that runs out.
#include <gtest/gtest.h>

#include <cstring>

#include "gds/gds_flatten.h"
#include "gds/gds_read.h"
#include "gds/gds_reader.h"
#include "platform/memory.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_load.h"
#include "tests/support/test_support.h"

// One of everything.
static std::string full_stream() {
    GdsBytes bytes;
    bytes.head().begin("TOP").box(5, -10, -10, 20, 30).path(6, 2, 8, {{0, 0}, {50, 0}, {50, 50}});
    bytes.sref("LEAF", {7, 7}, 0x8000, 1.5, 30.0).aref("LEAF", 3, 2, {0, 0}, {30, 0}, {0, 20});
    bytes.record(GDS_RECORD_TEXT).record_u16(GDS_RECORD_LAYER, {1}).xy({{1, 1}}).record(GDS_RECORD_ENDEL);
    bytes.record(GDS_RECORD_NODE).xy({{1, 1}}).record(GDS_RECORD_ENDEL).end();
    return bytes.begin("LEAF").box(7, 0, 0, 4, 4).end().close().bytes;
}

// Loads, flattens every cell if that is possible, frees; returns the result of loading.
static i32 load_and_use(const std::wstring &path, const std::string &bytes) {
    test_file_write(path, bytes);
    GdsLoaded loaded = gds_load_path(path);
    for (i32 i = 0; i < loaded.database->cell_count && loaded.result == 0; ++i) {
        const Owned<PolygonList> list(polygon_list_create());
        FlattenContext context = {list.get(), {-100, -100, 100, 100}, I64_MAX, 1, 0, 0.001F};
        const GdsInstance instance = {&loaded.database->cells[i], GDS_PLACEMENT_IDENTITY, 1};
        EXPECT_EQ(gds_flatten(&context, &instance), 0);
    }
    return loaded.result;
}

TEST(GdsHostile, CutAtEveryByte) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"cut.gds");
    const std::string whole = full_stream();
    const size_t units_end = GdsBytes().head().bytes.size();
    const size_t top_end =
        whole.find("LEAF", whole.find("LEAF", whole.find("LEAF") + 1) + 1) - 32;  // before BGNSTR
    for (size_t size = 0; size <= whole.size(); ++size) {
        const i32 result = load_and_use(path, whole.substr(0, size));
        // Without UNITS 3; with TOP whole and LEAF not, its references lead nowhere; else it loads.
        const bool leaf_missing = size >= top_end && size < whole.size() - 4;
        const i32 expected = size < units_end ? 3 : leaf_missing ? 27 : 0;
        EXPECT_EQ(result, expected) << "cut after " << size << " of " << whole.size() << " bytes";
    }
}

TEST(GdsHostile, LengthsThatLie) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"lie.gds");
    std::string whole = full_stream();
    for (size_t at = 0; at < whole.size();) {
        const size_t length = gds_u16(reinterpret_cast<const u8 *>(whole.data()) + at);
        for (const u32 lie : {0U, 1U, 3U, 4U, 5U, 6U, 8U, 11U, 12U, 13U, 20U, 100U, 32768U, 65535U}) {
            std::string bytes = whole;
            bytes.replace(at, 2, bytes_u16(lie));
            const i32 result = load_and_use(path, bytes);
            EXPECT_GE(result, 0);
            EXPECT_LE(result, 28);
            if (lie < 4) {
                EXPECT_EQ(result, 4);
            }
        }
        at += length;
    }
}

TEST(GdsHostile, EveryByteChanged) {
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"changed.gds");
    const std::string whole = full_stream();
    TestRandom random = test_random_start(5);
    for (size_t at = 0; at < whole.size(); ++at) {
        std::string bytes = whole;
        bytes[at] = static_cast<char>(test_random_u32(&random));
        const i32 result = load_and_use(path, bytes);
        EXPECT_GE(result, 0);
        EXPECT_LE(result, 28);
    }
}

// Every handler, in every element, with data of every small size in a block of exactly that size.
TEST(GdsHostile, HandlersStayInsideTheirData) {
    const GdsElement elements[] = {ELEMENT_NONE, ELEMENT_BOUNDARY, ELEMENT_PATH, ELEMENT_SREF,
                                   ELEMENT_AREF, ELEMENT_TEXT,     ELEMENT_NODE, ELEMENT_BOX};
    for (u32 code = 0; code < 0x4000; ++code) {
        const bool data_type_used = (code & 0xFF) <= 6;
        for (i32 size = 0; size <= 34 && data_type_used; size += size < 18 ? 1 : 8) {
            for (const GdsElement element : elements) {
                const Owned<GdsDatabase> database(memory_new_zeroed<GdsDatabase>());
                GdsReader reader = {};
                reader.database = database.get();
                reader.in_structure = true;
                reader.element = element;
                const auto data = memory_scratch<u8>(size);
                std::memset(data.get(), 0x41, static_cast<size_t>(size));
                reader.record = {static_cast<u16>(code), size + 4, size, data.get()};
                const i32 error = gds_reader_record(&reader, 0);
                EXPECT_LE(error, 28);
                gds_reader_end(&reader);
            }
        }
    }
}

TEST(GdsHostile, NothingLeaksAfterAnyResult) {
    const TemporaryFolder folder;
    const std::string whole = full_stream();
    const i64 before = memory_live_blocks();
    for (size_t size = 0; size <= whole.size(); size += 7) {
        load_and_use(folder.file(L"leak.gds"), whole.substr(0, size));
        ASSERT_EQ(memory_live_blocks(), before) << "blocks left after a cut at " << size;
    }
}

static void read_with_memory_for(const std::wstring &path, i64 allocations) {
    memory_set_failure_hook(nullptr);
    {
        const Owned<GdsDatabase> database(memory_new_zeroed<GdsDatabase>());
        memory_trip_after(allocations);
        gds_read(database.get(), path.c_str());
        memory_trip_after(-1);
    }
    std::fputs("Memory: no allocation error\n", stderr);  // for the same simple pattern
    std::exit(0);
}

TEST(GdsHostileDeathTest, LackOfMemoryEndsTheProgram) {
    testing::FLAGS_gtest_death_test_style = "fast";
    const TemporaryFolder folder;
    const std::wstring path = folder.file(L"memory.gds");
    test_file_write(path, full_stream());
    // One allocation after the other fails, until all succeed.
    i64 allocations = 0;
    for (bool done = false; !done && allocations < 1000; ++allocations) {
        auto ends_well = [&done](int status) {
            done = testing::ExitedWithCode(0)(status);
            return done || testing::ExitedWithCode(TEST_OUT_OF_MEMORY)(status);
        };
        EXPECT_EXIT(read_with_memory_for(path, allocations), ends_well, "Memory.*allocation error")
            << "allocation " << allocations;
    }
    EXPECT_GT(allocations, 15) << "the file, its stream, the lists, the names, the store, the list of cells";
}
