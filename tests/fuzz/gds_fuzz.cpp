// gds_fuzz.cpp: random bytes through the reader of layouts, then every cell flattened and written. A
// folder of inputs given as the first argument is filled with seeds before the run.
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "gds/gds_cell_pairs.h"
#include "gds/gds_flatten.h"
#include "gds/gds_read.h"
#include "gds/gds_stream.h"
#include "gds/gds_write.h"
#include "log/log.h"
#include "platform/memory.h"
#include "tests/gds/gds_bytes.h"

static constexpr i32 POLYGON_ROOM = 2000;  // polygons until the limit of flattening stops it
static constexpr i32 CELLS_USED = 8;       // cells that are flattened
static constexpr i64 STEPS_MOST = 100000;  // that flattening one may take, as the sanitizers are slow
static constexpr size_t SIZE_MOST = 1500;  // bytes of a layout

static const std::vector<Point> RING = {{0, 0}, {40, 0}, {40, 30}, {0, 0}};

static std::string seed_elements() {
    GdsBytes bytes;
    bytes.head().begin("TOP").boundary(5, RING).path(6, 2, 8, {{0, 0}, {50, 0}, {50, 50}});
    bytes.path(7, 1, 8, {{0, 0}, {9, 9}})
        .path(7, 4, -8, {{0, 0}, {9, 9}})
        .sref("LEAF", {7, 7}, 0x8000, 1.5, 30.0);
    bytes.aref("LEAF", 3, 2, {0, 0}, {30, 0}, {0, 20}, 0, 1.0, 90.0);
    bytes.record(GDS_RECORD_TEXT).record_u16(GDS_RECORD_LAYER, {1}).record_u16(GDS_RECORD_STRANS, {0});
    bytes.xy({{1, 1}}).record(GDS_RECORD_ENDEL);
    bytes.record(GDS_RECORD_NODE).xy({{1, 1}}).record(GDS_RECORD_ENDEL);
    bytes.record(GDS_RECORD_BOX).xy({{1, 1}}).record(GDS_RECORD_ENDEL).end();
    return bytes.begin("LEAF").boundary(7, RING).end().close().bytes;
}

static std::string seed_arrays() {
    GdsBytes bytes;
    bytes.head().begin("TOP").aref("MID", 300, 200, {0, 0}, {655350, 0}, {0, 655350}).end();
    bytes.begin("MID").aref("LEAF", 3, 2, {0, 0}, {70000, 70000}, {-70000, 70000}, 0, 2.0, 45.0);
    bytes.end().begin("FLAT").aref("LEAF", 4095, 4095, {0, 0}, {655350, 0}, {0, 655350}).end();
    return bytes.begin("LEAF").boundary(7, RING).end().close().bytes;
}

static std::string seed_chain() {
    GdsBytes bytes;
    bytes.head();
    for (i32 i = 0; i < 5; ++i) {
        std::string next = "C" + std::to_string(i + 1);
        bytes.begin("C" + std::to_string(i)).sref(next, {0, 0}).sref(next, {i, 1}).end();
    }
    return bytes.begin("C5").boundary(1, RING).sref("C1", {0, 0}).end().close().bytes;
}

// Arrays of the largest size in each other, and cells that all refer to all.
static std::string seed_contrived() {
    GdsBytes bytes;
    bytes.head().begin("TOP").aref("MID", 65535, 65535, {0, 0}, {65535, 0}, {0, 65535}).end();
    bytes.begin("MID").aref("LEAF", 65535, 65535, {0, 0}, {458745, 458745}, {-458745, -458745}, 0, 1.0, 45.0);
    bytes.end().begin("LEAF").boundary(7, RING).sref("A", {0, 0}, 0, 1.0, 45.0).end();
    const std::string cells = "ABCDEF";
    for (const char cell : cells) {
        bytes.begin(std::string(1, cell)).boundary(1, RING);
        for (const char other : cells) {
            bytes.sref(std::string(1, other), {3, cell});
        }
        bytes.end();
    }
    return bytes.close().bytes;
}

static void write_seed(const std::filesystem::path &path, const std::string &bytes) {
    std::ofstream stream(path, std::ios::binary);
    stream.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

// NOLINTNEXTLINE(readability-identifier-naming): the name that libFuzzer calls
extern "C" int LLVMFuzzerInitialize(int *argc, char ***argv) {
    diagnostic_set_sink([](const wchar_t *) {});  // else they would be kept for a console
    for (i32 i = 1; i < *argc; ++i) {
        const char *argument = (*argv)[i];
        if (argument[0] == '-' || !std::filesystem::is_directory(argument)) {
            continue;
        }
        std::filesystem::path folder = argument;
        write_seed(folder / "seed-elements", seed_elements());
        write_seed(folder / "seed-arrays", seed_arrays());
        write_seed(folder / "seed-chain", seed_chain());
        write_seed(folder / "seed-contrived", seed_contrived());
        write_seed(folder / "seed-cut", seed_elements().substr(0, 301));
        write_seed(folder / "seed-empty", GdsBytes().head().close().bytes);
        break;
    }
    return 0;
}

static void expect(bool condition, const char *what) {
    if (!condition) {
        std::fprintf(stderr, "broken promise: %s\n", what);
        std::abort();
    }
}

// A list that is full but for POLYGON_ROOM. Only its last part is ever touched.
static FlatPolygon *nearly_full_items() {
    static auto *items = memory_new_array<FlatPolygon>(GDS_FLATTEN_LIMIT);
    return items;
}

// What flattening finds of a cell is among its pairs.
static void use_pairs(const GdsDatabase *database, const GdsCell *cell, const PolygonList *found) {
    GdsCellPairs pairs = {};
    const Owned<GdsCellPairs> owner(&pairs);
    expect(gds_cell_pairs_count(database, cell, &pairs) == GDS_CELL_PAIRS_DONE, "the pairs can be counted");
    const GdsPairList *list = &pairs.lists[cell - database->cells];
    for (i32 i = 0; i < found->count; ++i) {
        const FlatPolygon *polygon = &found->items[i];
        expect(gds_pairs_find(list, polygon->layer, polygon->datatype) != nullptr,
               "a polygon's pair is listed");
    }
}

static void use_cell(const GdsDatabase *database, GdsCell *cell) {
    PolygonList list = {};
    list.items = nearly_full_items();
    list.capacity = GDS_FLATTEN_LIMIT;
    list.count = GDS_FLATTEN_LIMIT - POLYGON_ROOM;
    FlatPolygon *first = list.items + list.count;
    FlattenContext context = {&list, {-100, -50, 4000, 3000}, I64_MAX, 3, 0, 0.001F};
    context.step_limit = STEPS_MOST;
    GdsInstance instance = {cell, {{5, -5}, 1.0F, 0.1F, 0}, 1};
    i32 result = gds_flatten(&context, &instance);
    expect(result == 0 || result == GDS_FLATTEN_LIMIT_REACHED, "the result of flattening is 0 or 30");
    expect((list.count == GDS_FLATTEN_LIMIT || context.steps > STEPS_MOST) == (result != 0),
           "30 comes with a full list or too many steps");
    expect(context.skipped >= 0 && context.smallest >= 0, "counts and sizes are not negative");
    PolygonList found = {first, static_cast<i32>(list.items + list.count - first), POLYGON_ROOM, 0.0F, 0, 0};
    expect(gds_write_polygons(database, L"/dev/null", &found) == 0, "the polygons can be written");
    use_pairs(database, cell, &found);
    for (i32 i = 0; i < found.count; ++i) {
        static_cast<void>(Owned<FlatPoint[]>(first[i].points));
    }
}

// NOLINTNEXTLINE(readability-identifier-naming): the name that libFuzzer calls
extern "C" int LLVMFuzzerTestOneInput(const u8 *bytes, size_t size) {
    if (size == 0 || size > SIZE_MOST) {
        return 0;  // a stream over no memory cannot be opened
    }
    std::string layout(reinterpret_cast<const char *>(bytes), size);
    std::FILE *file = fmemopen(layout.data(), size, "rb");
    expect(file != nullptr, "the bytes can be opened");
    nearly_full_items();
    i64 blocks = memory_live_blocks();
    Owned<GdsDatabase> database(memory_new_zeroed<GdsDatabase>());
    const i32 result = gds_read_file(database.get(), file, L"fuzz");
    expect(result >= 0 && result <= 28, "the result of reading is a known one");
    for (i32 i = 0; i < database->cell_count; ++i) {
        const GdsCell *cell = &database->cells[i];
        bool sized = result == GDS_OK || result == GDS_ERROR_UNITS;
        expect(!sized || cell->bbox_valid == 1, "every cell has its extent");
        expect(cell->visiting == 0, "no cell is left as being visited");
        if (sized && i < CELLS_USED) {
            use_cell(database.get(), &database->cells[i]);
        }
    }
    database.reset();
    expect(memory_live_blocks() == blocks, "every block is freed");
    return 0;
}
