// Polygons counted by layer and datatype, in lists and through the hierarchy.
#include "gds/gds_pairs.h"

#include <gtest/gtest.h>

#include <map>

#include "gds/gds_cell_pairs.h"
#include "gds/gds_flatten.h"
#include "gds/gds_placement.h"
#include "tests/gds/gds_bytes.h"
#include "tests/gds/gds_load.h"
#include "tests/support/test_support.h"

static void add_box(GdsBytes *stream, u16 layer, u16 datatype, Box box) {
    stream->record(GDS_RECORD_BOUNDARY).record_u16(GDS_RECORD_LAYER, {layer});
    stream->record_u16(GDS_RECORD_DATATYPE, {datatype});
    stream->xy({{box.x_min, box.y_min},
                {box.x_max, box.y_min},
                {box.x_max, box.y_max},
                {box.x_min, box.y_max},
                {box.x_min, box.y_min}});
    stream->record(GDS_RECORD_ENDEL);
}

// "66/20 3 (0, 0, 10, 20)" a pair.
static std::vector<std::string> words_of(const GdsPairList &list) {
    std::vector<std::string> words;
    for (i32 i = 0; i < list.count; ++i) {
        const GdsPair &pair = list.items[i];
        words.push_back(std::to_string(pair.layer) + "/" + std::to_string(pair.datatype) + " " +
                        std::to_string(pair.count) + " (" + std::to_string(pair.box.x_min) + ", " +
                        std::to_string(pair.box.y_min) + ", " + std::to_string(pair.box.x_max) + ", " +
                        std::to_string(pair.box.y_max) + ")");
    }
    return words;
}

using Words = std::vector<std::string>;

TEST(GdsPairs, AddUpWhateverTheirOrder) {
    TestRandom random = test_random_start(4);
    GdsPairList list = {};
    const Owned<GdsPairList> owner(&list);
    std::map<std::pair<i32, i32>, i64> expected;
    for (i32 i = 0; i < 20000; ++i) {
        const i32 layer = test_random_i32(&random, 0, i % 3 == 0 ? 65535 : 40);
        const i32 datatype = test_random_i32(&random, 0, 20);
        const GdsPair pair = {static_cast<u16>(layer), static_cast<u16>(datatype), 1 + i % 5, {i, i, i, i}};
        gds_pairs_add(&list, &pair);
        expected[{layer, datatype}] += 1 + i % 5;
    }
    gds_pairs_sort(&list);
    ASSERT_EQ(list.count, static_cast<i32>(expected.size()));
    i32 at = 0;
    for (const auto &[numbers, count] : expected) {
        EXPECT_EQ(list.items[at].layer, numbers.first);
        EXPECT_EQ(list.items[at].datatype, numbers.second);
        EXPECT_EQ(list.items[at].count, count);
        EXPECT_EQ(gds_pairs_find(&list, numbers.first, numbers.second), &list.items[at]);
        ++at;
    }
    EXPECT_EQ(gds_pairs_find(&list, 5, 21), nullptr);
    EXPECT_EQ(gds_pairs_find(&list, 70000, 0), nullptr);
    EXPECT_EQ(gds_pairs_find(&list, 0, -1), nullptr);
}

TEST(GdsPairs, CountsStayAtTheLargestNumber) {
    EXPECT_EQ(gds_count_add(I64_MAX - 1, 1), I64_MAX);
    EXPECT_EQ(gds_count_add(I64_MAX, 1), I64_MAX);
    EXPECT_EQ(gds_count_add(2, 3), 5);
    EXPECT_EQ(gds_count_times(4294836225, 4294836225), I64_MAX) << "1.8e19";
    EXPECT_EQ(gds_count_times(4294836225, 2), 8589672450);
    EXPECT_EQ(gds_count_times(0, I64_MAX), 0);
    EXPECT_EQ(gds_count_times(I64_MAX, 0), 0);
    EXPECT_EQ(gds_count_times(I64_MAX, 1), I64_MAX);
}

// PART has poly 66/20 at (0, 0, 10, 20) and a contact 66/44 at (2, 2, 4, 4). TOP has a well of its own, PART
// turned by 90 degrees at (100, 0), which takes (x, y) to (100 - y, x), and an array of 3 x 2, 50 and 40
// apart from (0, 200), the last one at (100, 240).
static GdsBytes part_and_top() {
    GdsBytes stream;
    stream.head().begin("PART");
    add_box(&stream, 66, 20, {0, 0, 10, 20});
    add_box(&stream, 66, 44, {2, 2, 4, 4});
    stream.boundary(3, {});
    stream.end().begin("TOP");
    add_box(&stream, 64, 20, {-500, -500, 500, 500});
    stream.sref("PART", {100, 0}, 0, 1.0, 90.0);
    stream.aref("PART", 3, 2, {0, 200}, {150, 200}, {0, 280});
    stream.end()
        .begin("EMPTY")
        .end()
        .begin("ABOVE")
        .sref("TOP", {1000, 0})
        .sref("TOP", {3000, 0})
        .end()
        .close();
    return stream;
}

TEST(GdsCellPairs, CountPolygonsAsTheyArePlaced) {
    const GdsLoaded loaded = gds_load_bytes(part_and_top().bytes);
    ASSERT_EQ(loaded.result, 0);
    GdsCellPairs pairs = {};
    const Owned<GdsCellPairs> owner(&pairs);
    ASSERT_EQ(gds_cell_pairs_count(loaded.database.get(), nullptr, &pairs), GDS_CELL_PAIRS_DONE);
    ASSERT_EQ(pairs.cell_count, 4);
    EXPECT_EQ(words_of(pairs.lists[0]), (Words{"66/20 1 (0, 0, 10, 20)", "66/44 1 (2, 2, 4, 4)"}))
        << "a boundary without points is none";
    // The turned poly lies at (80, 0, 100, 10), the arrayed ones from (0, 200) to (110, 260); the contacts at
    // (96, 2, 98, 4) and from (2, 202) to (104, 244); but a quarter turn is an f32 slightly beside 90
    // degrees, which takes the 2 to 1.99..., cut to 1.
    EXPECT_EQ(words_of(pairs.lists[1]), (Words{"64/20 1 (-500, -500, 500, 500)", "66/20 7 (0, 0, 110, 260)",
                                               "66/44 7 (2, 1, 104, 244)"}));
    EXPECT_EQ(words_of(pairs.lists[2]), Words{});
    EXPECT_EQ(words_of(pairs.lists[3]),
              (Words{"64/20 2 (500, -500, 3500, 500)", "66/20 14 (1000, 0, 3110, 260)",
                     "66/44 14 (1002, 1, 3104, 244)"}));
    EXPECT_EQ((std::vector<u8>(pairs.used, pairs.used + 4)), (std::vector<u8>{1, 1, 0, 0}));
}

TEST(GdsCellPairs, AreThoseThatFlatteningMeets) {
    const GdsLoaded loaded = gds_load_bytes(part_and_top().bytes);
    GdsCellPairs pairs = {};
    const Owned<GdsCellPairs> owner(&pairs);
    ASSERT_EQ(gds_cell_pairs_count(loaded.database.get(), find_cell(loaded, "ABOVE"), &pairs),
              GDS_CELL_PAIRS_DONE);
    EXPECT_EQ(pairs.lists[2].count, 0);
    const Owned<PolygonList> polygons(polygon_list_create());
    FlattenContext context = {};
    context.out = polygons.get();
    context.window = {-10000, -10000, 10000, 10000};
    context.smallest = I64_MAX;
    context.scale = 1.0F;
    const GdsInstance instance = {find_cell(loaded, "ABOVE"), GDS_PLACEMENT_IDENTITY, 1};
    ASSERT_EQ(gds_flatten(&context, &instance), 0);
    GdsPairList met = {};
    const Owned<GdsPairList> met_owner(&met);
    for (i32 i = 0; i < polygons->count; ++i) {
        const FlatPolygon &flat = polygons->items[i];
        auto side = [](f32 value) { return static_cast<i32>(value) - 10000; };
        const GdsPair pair = {flat.layer,
                              flat.datatype,
                              1,
                              {side(flat.x_min), side(flat.y_min), side(flat.x_max), side(flat.y_max)}};
        gds_pairs_add(&met, &pair);
    }
    gds_pairs_sort(&met);
    EXPECT_EQ(words_of(pairs.lists[3]), words_of(met));
}

// 65535 x 65535 of 65535 x 65535 of 65535 x 65535 elements.
TEST(GdsCellPairs, ArraysAreMultiplied) {
    GdsBytes stream;
    stream.head().begin("A");
    add_box(&stream, 1, 2, {0, 0, 1, 1});
    stream.end();
    for (const char *name : {"B", "C", "D"}) {
        const std::string below(1, static_cast<char>(name[0] - 1));
        stream.begin(name).aref(below, 65535, 65535, {0, 0}, {65535, 0}, {0, 65535}).end();
    }
    const GdsLoaded loaded = gds_load_bytes(stream.close().bytes);
    GdsCellPairs pairs = {};
    const Owned<GdsCellPairs> owner(&pairs);
    ASSERT_EQ(gds_cell_pairs_count(loaded.database.get(), nullptr, &pairs), GDS_CELL_PAIRS_DONE);
    EXPECT_EQ(words_of(pairs.lists[1]), Words{"1/2 4294836225 (0, 0, 65535, 65535)"});
    // The second array's last element lies at (65534, 65534).
    EXPECT_EQ(words_of(pairs.lists[2]), Words{"1/2 9223372036854775807 (0, 0, 131069, 131069)"});
    EXPECT_EQ(pairs.lists[3].items[0].count, I64_MAX);
}

TEST(GdsCellPairs, CirclesEndAndDepthIsNoMatter) {
    GdsBytes stream;
    stream.head().begin("A");
    add_box(&stream, 1, 0, {0, 0, 5, 5});
    stream.sref("B", {10, 0}).sref("A", {7, 7}).end().begin("B");
    add_box(&stream, 2, 0, {0, 0, 5, 5});
    stream.sref("A", {100, 0}).end();
    constexpr i32 DEPTH = 20000;
    for (i32 i = 0; i < DEPTH; ++i) {
        stream.begin("N" + std::to_string(i)).sref(i == 0 ? "A" : "N" + std::to_string(i - 1), {1, 0}).end();
    }
    const GdsLoaded loaded = gds_load_bytes(stream.close().bytes);
    ASSERT_EQ(loaded.result, 0);
    GdsCellPairs pairs = {};
    const Owned<GdsCellPairs> owner(&pairs);
    ASSERT_EQ(gds_cell_pairs_count(loaded.database.get(), &loaded.database->cells[DEPTH + 1], &pairs),
              GDS_CELL_PAIRS_DONE);
    EXPECT_EQ(words_of(pairs.lists[0]), (Words{"1/0 1 (0, 0, 5, 5)", "2/0 1 (10, 0, 15, 5)"}));
    EXPECT_EQ(words_of(pairs.lists[DEPTH + 1]),
              (Words{"1/0 1 (20000, 0, 20005, 5)", "2/0 1 (20010, 0, 20015, 5)"}));
}

// Cell number n has the pairs 0 to n; the first 2828 have 2828 x 2829 / 2 = 4,000,206 together.
TEST(GdsCellPairs, TooManyAreTold) {
    GdsBytes stream;
    stream.head();
    for (i32 i = 0; i < 2828; ++i) {
        stream.begin("C" + std::to_string(i));
        add_box(&stream, static_cast<u16>(i), 7, {0, 0, 1, 1});
        if (i > 0) {
            stream.sref("C" + std::to_string(i - 1), {0, 0});
        }
        stream.end();
    }
    const ConsoleCapture capture;
    const GdsLoaded loaded = gds_load_bytes(stream.close().bytes);
    GdsCellPairs pairs = {};
    const Owned<GdsCellPairs> owner(&pairs);
    EXPECT_EQ(gds_cell_pairs_count(loaded.database.get(), nullptr, &pairs), GDS_CELL_PAIRS_MANY);
    EXPECT_NE(
        capture.diagnostics().find("more than 4000000 pairs of layer and datatype in all, the limit; it was "
                                   "reached in cell \"C2827\""),
        std::string::npos)
        << capture.diagnostics();
}
